"""Dask arrays in the place of arrays: results stay lazy, and have the bits of one call over everything."""
import dataclasses
import pickle
import warnings

import numpy as np
import orvanth
import pytest
from orvanth import random, stats

da = pytest.importorskip("dask.array", reason="Dask is not installed: python3-dask brings it")
import dask  # noqa: E402

SETS = 23


@pytest.fixture(autouse=True)
def in_this_thread():
    with dask.config.set(scheduler="synchronous"):
        yield


def groups(*sizes, shape=(SETS,)):
    """Samples in memory, and as Dask arrays that are divided along every axis."""
    values = [random.normals(5 + i, int(np.prod(shape)) * n).reshape(*shape, n) + 0.3 * i for i, n in enumerate(sizes)]
    return values, [da.from_array(v, chunks=(7, *[4] * (v.ndim - 1))) for v in values]


def same(lazy, expected):
    """Dask arrays with the shape, type and bits of arrays."""
    if isinstance(expected, tuple):
        assert type(lazy) is type(expected)
        for one, other in zip(lazy, expected):
            same(one, other)
        return
    expected = np.asarray(expected)
    assert isinstance(lazy, da.Array)
    assert (lazy.shape, lazy.dtype) == (expected.shape, expected.dtype)
    assert np.array_equal(lazy.compute(), expected, equal_nan=expected.dtype.kind == "f")


def same_result(lazy, expected):
    for field in dataclasses.fields(expected):
        if isinstance(getattr(expected, field.name), (np.ndarray, np.generic, tuple)):
            if not field.name.startswith("_"):
                same(getattr(lazy, field.name), getattr(expected, field.name))
        elif not field.name.startswith("_"):
            assert getattr(lazy, field.name) == getattr(expected, field.name), field.name
    assert str(lazy.compute()) == str(expected)


# The ufuncs

def test_ufuncs_take_dask_arrays():
    x = np.linspace(-3, 3, 25)
    lazy = da.from_array(x, chunks=10)
    same(orvanth.NormalCDF(lazy, 0, 1, 0), orvanth.NormalCDF(x, 0, 1, 0))
    same(orvanth.normal_cdf(lazy, 0, 1, upper=True), orvanth.normal_cdf(x, 0, 1, upper=True))
    same(orvanth.StudentTCDF(lazy[:, None], da.arange(1, 4, chunks=2), 1),
         orvanth.StudentTCDF(x[:, None], np.arange(1, 4), 1))


def test_ufuncs_over_vectors_take_dask_arrays():
    x, lam = np.linspace(0, 5, 25), np.full(3, 0.7)
    lazy = da.from_array(x, chunks=10)
    same(orvanth.MCaCDF(lazy, 3, 10, lam, 1), orvanth.MCaCDF(x, 3, 10, lam, 1))
    same(orvanth.RefinedMCaCDF(lazy, 3, 10, lam, 1), orvanth.RefinedMCaCDF(x, 3, 10, lam, 1))


def test_nothing_is_computed_before_compute():
    def fail(block):
        raise AssertionError("computed")
    x = da.ones(10, chunks=5).map_blocks(fail, dtype=float, meta=np.empty(0))
    lazy = orvanth.NormalCDF(x, 0, 1, 0)
    results = [stats.ks_1samp(x, "normal", (0, 1)), stats.tukey_hsd(x, x, x), stats.binom_test(x, 10),
               stats.proportion_ci(x, 10)]
    results[1].confidence_interval()
    assert all(map(repr, results))
    with pytest.raises(AssertionError, match="computed"):
        lazy.compute()
    with pytest.raises(AssertionError, match="computed"):
        results[1].compute()


def test_errstate_holds_where_the_elements_are_computed():
    lazy = orvanth.NormalCDF(da.zeros(4, chunks=2), 0, -1, 0)
    with np.errstate(invalid="raise"):
        with pytest.raises(FloatingPointError):
            lazy.compute(scheduler="synchronous")
    with np.errstate(invalid="ignore"):
        assert np.isnan(lazy.compute(scheduler="synchronous")).all()

    with np.errstate(invalid="raise"), warnings.catch_warnings():
        warnings.simplefilter("ignore")
        assert np.isnan(lazy.compute(scheduler="threads")).all()  # other threads have the states they began with

    def strictly(block):
        with np.errstate(invalid="raise"):
            return orvanth.NormalCDF(block, 0, -1, 0)
    with pytest.raises(FloatingPointError):
        da.zeros(4, chunks=2).map_blocks(strictly, dtype=float, meta=np.empty(0)).compute(scheduler="threads")


# The tests

@pytest.mark.parametrize("sizes", [(10, 10, 10), (6, 9, 12, 4)])
def test_comparisons_of_means(sizes):
    values, lazy = groups(*sizes)
    named = {"best": "smallest", "names": list("abcd"[:len(sizes)])}
    for test, more in ((stats.tukey_hsd, {}), (stats.hsu_mcb, named)):
        expected, result = test(*values, **more), test(*lazy, **more)
        same_result(result, expected)
        same(result.confidence_interval(0.9), expected.confidence_interval(0.9))
    expected = stats.dunnett(*values[1:], control=values[0], alternative="greater")
    result = stats.dunnett(*lazy[1:], control=lazy[0], alternative="greater")
    same_result(result, expected)
    same(result.confidence_interval(), expected.confidence_interval())
    same(stats.hsu_mcb(*lazy).may_be_best(0.5), stats.hsu_mcb(*values).may_be_best(0.5))


def test_the_axis_and_the_number_of_axes_are_free():
    values, lazy = groups(5, 7, shape=(9, 6))
    expected = stats.tukey_hsd(*values)
    same_result(stats.tukey_hsd(*lazy), expected)
    same_result(stats.tukey_hsd(*(da.moveaxis(x, -1, 1) for x in lazy), axis=1), expected)
    same_result(stats.tukey_hsd(lazy[0], values[1]), expected)
    same_result(stats.tukey_hsd({"a": lazy[0], "b": lazy[1]}), stats.tukey_hsd({"a": values[0], "b": values[1]}))
    single = [v[0, 0] for v in values]
    same_result(stats.tukey_hsd(*(x[0, 0] for x in lazy)), stats.tukey_hsd(*single))
    same_result(stats.tukey_hsd(lazy[0], single[1]), stats.tukey_hsd(values[0], single[1]))
    named = {"a": values[0], "b": values[1], "c": values[1] + 1}
    same_result(stats.dunnett({k: da.from_array(v, chunks=(3, 3, 3)) for k, v in named.items()}, control="b"),
                stats.dunnett(named, control="b"))


def test_missing_values():
    values, lazy = groups(8, 8, 8)
    holes = [np.where(random.normals(20 + i, v.size).reshape(v.shape) > 1, np.nan, v) for i, v in enumerate(values)]
    lazy = [da.from_array(h, chunks=(5, 3)) for h in holes]
    for policy in ("propagate", "omit"):
        same_result(stats.tukey_hsd(*lazy, nan_policy=policy), stats.tukey_hsd(*holes, nan_policy=policy))
        same_result(stats.dunnett(*lazy[1:], control=lazy[0], nan_policy=policy),
                    stats.dunnett(*holes[1:], control=holes[0], nan_policy=policy))
        result, expected = (stats.hsu_mcb(*g, nan_policy=policy) for g in (lazy, holes))
        same(result.confidence_interval(), expected.confidence_interval())
    with pytest.raises(ValueError, match="contains NaN"):
        stats.tukey_hsd(*lazy, nan_policy="raise").compute()


def test_kolmogorov():
    (values,), (lazy,) = groups(30)
    for cdf, args in (("normal", (0.1, 1)), (lambda x: orvanth.NormalCDF(x, 0, 1, 0), ())):
        result, expected = stats.ks_1samp(lazy, cdf, args), stats.ks_1samp(values, cdf, args)
        same_result(result, expected)
        same(result.confidence_band(0.9), expected.confidence_band(0.9))


def test_counts():
    k, n = np.arange(20.0), np.full(20, 25.0)
    lazy = da.from_array(k, chunks=6)
    same_result(stats.binom_test(lazy, n, p=0.4), stats.binom_test(k, n, p=0.4))
    same_result(stats.binom_test(lazy[:, None], 30, p=da.from_array(np.array([0.2, 0.5]), chunks=1)),
                stats.binom_test(k[:, None], 30, p=np.array([0.2, 0.5])))
    same(stats.binom_test(lazy, 25).proportion_ci(0.9), stats.proportion_ci(k, 25, 0.9))
    same(stats.proportion_ci(lazy, 25), stats.proportion_ci(k, 25))
    same_result(stats.hypergeom_test(lazy, 80, 30, 25), stats.hypergeom_test(k, 80, 30, 25))
    tables = np.array([[[a, 9], [7, 3 + a]] for a in range(20)])
    lazy = da.from_array(tables, chunks=(6, 1, 2))
    same_result(stats.fisher_exact(lazy), stats.fisher_exact(tables))
    same(stats.fisher_exact(lazy).confidence_interval(), stats.fisher_exact(tables).confidence_interval())


def test_least_squares():
    x, (values,) = np.linspace(0, 1, 12), groups(12)[0]
    lazy = da.from_array(values, chunks=(7, 5))
    result, expected = stats.ols(x, lazy), stats.ols(x, values)
    assert result.names == expected.names and result.df_residual == 10
    for name in ("coefficients", "pvalues", "residuals", "fvalue", "r_squared"):
        one, other = getattr(result, name), getattr(expected, name)
        assert one.shape == other.shape and np.allclose(one, other, rtol=1e-9)
    assert np.allclose(result.confidence_interval().low, expected.confidence_interval().low)
    assert np.allclose(result.covariance, expected.covariance, rtol=1e-13)


def test_bootstrap():
    (values,), (lazy,) = groups(15)
    result, expected = (stats.bootstrap(v, np.mean, n_resamples=40, seed=3) for v in (lazy, values))
    same_result(result, expected)
    same(result.interval(0.9, "basic"), expected.interval(0.9, "basic"))

    def difference(a, b, axis):
        return a.mean(axis) - b.mean(axis)
    two = [values, values[:, :9] + 1]
    same_result(stats.bootstrap([lazy, da.from_array(two[1], chunks=(3, 4))], difference, n_resamples=40),
                stats.bootstrap(two, difference, n_resamples=40))


def test_what_is_printed_and_computed():
    values, lazy = groups(10, 10)
    result = stats.tukey_hsd(*lazy)
    assert repr(result).splitlines()[0] == \
        "TukeyHSDResult of Dask arrays, not computed: 23 data sets, shape (23,), in 4 chunks"
    assert "pvalue" in dir(result) and "confidence_interval" in dir(result)
    computed = result.compute()
    assert type(computed) is stats.TukeyHSDResult and isinstance(computed.pvalue, np.ndarray)
    assert np.array_equal(computed.confidence_interval().low, stats.tukey_hsd(*values).confidence_interval().low)
    again = pickle.loads(pickle.dumps(result))
    assert np.array_equal(again.pvalue.compute(), computed.pvalue)
    with pytest.raises(AttributeError):
        result.nothing
    pytest.importorskip("matplotlib").use("Agg")
    assert stats.tukey_hsd(*(x[0] for x in lazy)).plot() is not None
    with pytest.raises(ValueError, match="one data set"):
        result.plot()


def test_each_chunk_is_tested_once_for_all_arrays():
    seen = []

    def note(block):
        seen.append(len(block))
        return block
    (values, _), _ = groups(5, 5)
    lazy = da.from_array(values, chunks=(7, 5)).map_blocks(note, dtype=float, meta=np.empty((0, 0)))
    stats.tukey_hsd(lazy, values).compute()
    assert sorted(seen) == [2, 7, 7, 7]


def test_errors_say_what_is_wrong():
    values, lazy = groups(10, 10)
    unknown = lazy[0][lazy[0][:, 0] > 0]
    for call, text in ((lambda: stats.tukey_hsd(lazy[0]), "each group as an argument of its own"),
                       (lambda: stats.tukey_hsd(*lazy, axis=5), "no axis 5"),
                       (lambda: stats.tukey_hsd(*lazy, nan_policy="drop"), "nan_policy"),
                       (lambda: stats.tukey_hsd(lazy[0], lazy[1][:5]), "different numbers of data sets"),
                       (lambda: stats.tukey_hsd(unknown, lazy[1]), "compute_chunk_sizes"),
                       (lambda: stats.dunnett(*lazy, control=lazy[0], alternative="more"), "alternative"),
                       (lambda: stats.fisher_exact(lazy[0]), "shape"),
                       (lambda: stats.fisher_exact(lazy[0][0]), "2 axes"),
                       (lambda: stats.ols(lazy[0].T, values[0][0]), "x is a Dask array"),
                       (lambda: stats.ols(np.arange(10), lazy[0], nan_policy="omit"), "all data sets together"),
                       (lambda: stats.ols(np.arange(9), lazy[0]), "observations")):
        with pytest.raises(ValueError, match=text):
            call()
