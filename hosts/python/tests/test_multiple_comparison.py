"""All pairs, comparisons with a control and with the best."""
import data
import numpy as np
import orvanth
import pandas as pd
import pytest
import scipy.stats
from hypothesis import given, settings
from hypothesis import strategies as st
from orvanth import stats
from orvanth.stats import _laws as laws

PLANTS = data.groups("tour/plant_growth.csv")
BLOOD = data.groups("tour/blood_count.csv")
RECOVERY = data.groups("stats/recovery.csv")


def simulated(seed, *shape):
    return np.random.default_rng(seed).normal(size=shape)


def tail_by_quadrature(x, lam, df, two_sided):
    """The upper tail for comparisons with a control, by plain high-order rules over the latent value and the scale."""
    def rule(low, high, count=400):
        nodes, weights = np.polynomial.legendre.leggauss(count)
        return (low + high) / 2 + (high - low) / 2 * nodes, weights * (high - low) / 2
    y, weight_y = rule(-9, 9)
    s, weight_s = rule(1e-3, 4.5)
    density = np.exp(np.log(s) * (df - 1) - df * s * s / 2 + df / 2 * np.log(df / 2) - scipy.special.gammaln(df / 2)) * 2
    inside = np.ones((s.size, y.size))
    for one in lam:
        c = 1 / np.sqrt(1 - one * one)
        high = scipy.special.ndtr((x * s[:, None] + one * y) * c)
        inside *= high - scipy.special.ndtr((-x * s[:, None] + one * y) * c) if two_sided else high
    return 1 - weight_s * density @ (inside @ (weight_y * scipy.stats.norm.pdf(y)))


@pytest.mark.parametrize("test, file, names", [
    ("tukey_hsd", "tour/plant_growth.csv", None), ("tukey_hsd", "stats/insect_sprays.csv", None), ("dunnett", "tour/blood_count.csv", "control"),
    ("dunnett", "stats/recovery.csv", "b0")])
def test_printed_results(test, file, names):
    found = data.groups(file)
    result = stats.tukey_hsd(found) if test == "tukey_hsd" else stats.dunnett(found, control=names)
    interval = result.confidence_interval()
    rows = data.printed(test, file.split("/")[1].removesuffix(".csv"))
    assert rows
    for case, quantity, value, unit in rows:
        one, other = case.split(" - ")
        at = (result.names.index(one), result.names.index(other)) if test == "tukey_hsd" else result.names.index(one)
        arrays = {"difference": getattr(result, "difference", result.statistic), "t": result.statistic, "p": result.pvalue,
                  "standard error": result.standard_error, "low": interval.low, "high": interval.high}
        # R prints TukeyHSD from a law that is good to about 1e-7.
        assert arrays[quantity][at] == pytest.approx(value, abs=max(unit, 1e-7)), (case, quantity)


@pytest.mark.parametrize("sizes", [(10, 10, 10), (5, 5), (3, 8, 4, 6), (2, 2, 2, 2, 2, 2)])
def test_tukey_beside_scipy(sizes):
    groups = [simulated(i, n) + 0.4 * i for i, n in enumerate(sizes)]
    ours, theirs = stats.tukey_hsd(*groups), scipy.stats.tukey_hsd(*groups)
    assert np.allclose(ours.statistic, theirs.statistic, rtol=1e-13, atol=1e-14)
    assert np.allclose(ours.pvalue, theirs.pvalue, rtol=0, atol=1e-6)
    for level in (0.9, 0.95, 0.99):
        mine, scipys = ours.confidence_interval(level), theirs.confidence_interval(level)
        assert np.allclose(mine.low, scipys.low, atol=2e-6) and np.allclose(mine.high, scipys.high, atol=2e-6)


@pytest.mark.parametrize("law, file", [(laws.PAIRS, "studentized_range"), (laws.TWO_SIDED, "dunnett_two_sided"),
                                       (laws.ONE_SIDED, "dunnett_one_sided")])
def test_quantiles_of_published_tables(law, file):
    for alpha, groups, df, _, point, _ in data.rows(f"published/{file}.tsv"):
        if df == "inf":  # of no data
            continue
        k = int(groups) + (law != laws.PAIRS)
        found = laws.quantile(law, 1 - float(alpha), k, float(df), laws.equal_sizes(k))
        # At df = 1 the table's own quadrature is good to 3e-5: P(q > 49.0696949; 10, 1) is 0.05000135.
        relative = 3e-5 if law == laws.PAIRS and df == "1" else 1e-8
        assert found * (np.sqrt(2) if law == laws.PAIRS else 1) == pytest.approx(float(point), rel=relative), (groups, df)


def test_dunnett_of_unequal_sizes():
    result = stats.dunnett(BLOOD, control="control")
    assert np.allclose(result.statistic, [0.857032125934, 3.69375231124], rtol=1e-11)
    assert np.allclose(result.pvalue, [0.6201019800, 0.0058253608], atol=1e-10)
    assert np.allclose(stats.dunnett(BLOOD, control="control", alternative="greater").pvalue, [0.3249776109, 0.0029138830],
                       atol=1e-10)
    half = result.confidence_interval(0.95).high - result.difference
    assert np.allclose(half / result.standard_error, 2.5134829036, rtol=1e-8)


@pytest.mark.parametrize("alternative", ["two-sided", "less", "greater"])
def test_dunnett_is_its_integral(alternative):
    groups = [simulated(i, n) + 0.5 * i for i, n in enumerate((4, 9, 6, 5))]
    result = stats.dunnett(*groups[1:], control=groups[0], alternative=alternative)
    lam = np.sqrt([n / (n + 4) for n in (9, 6, 5)])
    distance = {"two-sided": abs, "greater": np.positive, "less": np.negative}[alternative](result.statistic)
    for x, p in zip(distance, result.pvalue):
        assert p == pytest.approx(tail_by_quadrature(x, lam, 20, alternative == "two-sided"), abs=1e-9)
    interval = result.confidence_interval()
    assert np.isinf(interval.high).all() == (alternative == "greater")
    assert np.isinf(interval.low).all() == (alternative == "less")
    end = {"two-sided": interval.low, "greater": interval.low, "less": interval.high}[alternative]
    point = np.abs((end - result.difference) / result.standard_error)
    assert tail_by_quadrature(point[0], lam, 20, alternative == "two-sided") == pytest.approx(0.05, abs=1e-9)


def test_dunnett_alternatives_mirror():
    less = stats.dunnett(BLOOD, control="control", alternative="less")
    mirrored = stats.dunnett({n: -np.array(v) for n, v in BLOOD.items()}, control="control", alternative="greater")
    assert np.array_equal(less.pvalue, mirrored.pvalue)
    assert np.array_equal(less.confidence_interval().high, -mirrored.confidence_interval().low)


def test_the_same_digits_every_time():
    first = stats.dunnett(BLOOD, control="control")
    again = stats.dunnett(BLOOD, control="control")
    assert np.array_equal(first.pvalue, again.pvalue)
    assert np.array_equal(first.confidence_interval(), again.confidence_interval())


def test_comparison_with_the_best():
    result = stats.hsu_mcb(PLANTS)
    interval = result.confidence_interval()
    assert np.allclose(interval.low, [-1.0508439060, -1.4218439060, -0.0628439060], atol=2e-8)
    assert np.allclose(interval.high, [0.0628439060, 0, 1.0508439060], atol=2e-8)
    assert result.may_be_best().tolist() == [True, False, True]
    assert interval.high[1] == 0
    mirrored = stats.hsu_mcb({n: -np.array(v) for n, v in PLANTS.items()}, best="smallest")
    assert np.array_equal(mirrored.confidence_interval().low, -interval.high)
    assert np.array_equal(mirrored.may_be_best(), result.may_be_best()) and np.array_equal(mirrored.pvalue, result.pvalue)


def best_by_its_definition(groups, level):
    """The intervals of Hsu (1996), group by group."""
    k, n = len(groups), np.array([len(g) for g in groups], dtype=float)
    mean, df = np.array([np.mean(g) for g in groups]), n.sum() - k
    s = np.sqrt(sum(np.sum((g - np.mean(g)) ** 2) for g in groups) / df)
    point = [orvanth.RefinedMCbICDF(level, k, df, [*np.sqrt([n[j] / (n[j] + n[i]) for j in range(k) if j != i]), 0], 0)
             for i in range(k)]

    def bound(i, j, sign, reference):
        return mean[i] - mean[j] + sign * point[reference] * s * np.sqrt(1 / n[i] + 1 / n[j])
    high = [max(0, min(bound(i, j, 1, i) for j in range(k) if j != i)) for i in range(k)]
    possible = {i for i in range(k) if high[i] > 0}
    low = [0 if possible == {i} else min(0, min(bound(i, j, -1, j) for j in possible - {i})) for i in range(k)]
    return np.array(low), np.array(high)


@settings(max_examples=25, deadline=None)
@given(st.lists(st.integers(2, 9), min_size=2, max_size=5), st.integers(0, 10**6), st.sampled_from([0.0, 1.0, 5.0]))
def test_comparison_with_the_best_by_its_definition(sizes, seed, spread):
    groups = [simulated(seed + i, n) + spread * ((seed >> i) % 3) for i, n in enumerate(sizes)]
    interval = stats.hsu_mcb(*groups).confidence_interval(0.9)
    low, high = best_by_its_definition(groups, 0.9)
    assert np.allclose(interval.low, low, atol=1e-9) and np.allclose(interval.high, high, atol=1e-9)


def test_p_of_the_best_is_the_level_of_exclusion():
    result = stats.hsu_mcb(RECOVERY, best="smallest")
    for i, p in enumerate(result.pvalue):
        if 1e-4 < p < 0.9:
            assert result.may_be_best(1 - 0.99 * p)[i] and not result.may_be_best(1 - 1.01 * p)[i]


TESTS = {"tukey": stats.tukey_hsd, "best": stats.hsu_mcb,
         "control": lambda *s, **how: stats.dunnett(*s[:-1], control=s[-1], **how)}


@pytest.mark.parametrize("name", TESTS)
def test_many_data_sets_are_each_by_itself(name):
    test, many = TESTS[name], simulated(3, 3, 40, 20)
    many[2] += np.linspace(0, 3, 40)[:, None]
    together = test(*many)
    assert together.df.shape == (40,)
    interval = together.confidence_interval()
    for i in (0, 1, 17, 39):
        alone = test(*many[:, i])
        assert np.allclose(together.statistic[i], alone.statistic, rtol=1e-13, atol=1e-15)
        assert np.allclose(together.pvalue[i], alone.pvalue, rtol=0, atol=1e-12)
        assert np.allclose(np.array(interval)[:, i], alone.confidence_interval(), rtol=1e-12)
    # The bits of a data set do not depend on its company, nor on the layout.
    half = test(*many[:, 10:11])
    assert np.array_equal(half.pvalue[0], together.pvalue[10])
    turned = test(*np.ascontiguousarray(np.swapaxes(many, 1, 2)), axis=-2)
    assert np.array_equal(turned.pvalue, together.pvalue)
    grid = test(*many.reshape(3, 8, 5, 20))
    assert np.array_equal(grid.pvalue, together.pvalue.reshape(8, 5, *together.pvalue.shape[1:]))


@pytest.mark.parametrize("law", [laws.PAIRS, laws.ONE_SIDED, laws.TWO_SIDED])
@pytest.mark.parametrize("k", [2, 3, 10, 100])
def test_polynomials_follow_the_law(law, k):
    random = np.random.default_rng(k)
    x = np.concatenate([random.random(12) * 6, np.linspace(2, 4, 12), [0.0, 1.0, 2.0, 40.0, 3e5, 2e6]])
    if law == laws.ONE_SIDED:
        x = np.concatenate([x, np.linspace(-3, -0.05, 8)])
    for df in (1.0, 5.0, 27.0, 400.0) if k < 100 else (27.0, 2000.0):
        lam = laws.equal_sizes(k) if law == laws.PAIRS or k == 100 else np.append(random.random(k - 1) * 0.9, 0.0)
        tail = laws.upper_tail(law, x, k, df, lam, True)
        assert np.allclose(tail, laws.upper_tail(law, x, k, df, lam, False), rtol=1e-8, atol=1e-10 if k == 100 else 1e-18)
        assert ((tail >= 0) & (tail <= 1)).all()


@pytest.mark.parametrize("name", TESTS)
def test_missing_observations(name):
    test, many = TESTS[name], simulated(4, 3, 6, 5)
    many[0, 1, 2] = many[2, 1, 0] = np.nan  # the second data set lacks two observations
    many[1, 3] = np.nan                     # the fourth one lacks a group
    spread = test(*many)
    lost = np.isnan(spread.pvalue).reshape(6, -1).all(axis=1)
    assert lost.tolist() == [False, True, False, True, False, False]
    assert not np.isnan(spread.pvalue[~lost]).any()
    left = test(*many, nan_policy="omit")
    assert left.df.tolist() == [12, 10, 12, 0, 12, 12]
    alone = test(*(g[~np.isnan(g)] for g in many[:, 1]))
    assert np.allclose(left.pvalue[1], alone.pvalue, atol=1e-9)
    assert np.allclose(np.array(left.confidence_interval())[:, 1], alone.confidence_interval(), rtol=1e-12)
    assert np.isnan(left.pvalue[3]).all() and np.isnan(np.array(left.confidence_interval())[:, 3]).all()
    with pytest.raises(ValueError, match="sample 0 contains NaN"):
        test(*many, nan_policy="raise")


def test_pandas():
    frame = pd.DataFrame([(name, v) for name, values in BLOOD.items() for v in values], columns=["group", "count"])
    by_group = frame.groupby("group")["count"]
    expected = stats.dunnett(BLOOD["drug_a"], BLOOD["drug_b"], control=BLOOD["control"])
    for result in (stats.dunnett(by_group, control="control"), stats.dunnett(BLOOD, control="control"),
                   stats.dunnett(*[pd.Series(BLOOD[n], name=n) for n in BLOOD], control="control")):
        assert np.array_equal(result.pvalue, expected.pvalue) and result.names == ["drug_a", "drug_b", "control"]
    wide = pd.DataFrame({name: pd.Series(values) for name, values in BLOOD.items()})
    filled = stats.tukey_hsd(wide, nan_policy="omit")
    assert filled.names == list(BLOOD) and np.allclose(filled.pvalue, stats.tukey_hsd(BLOOD).pvalue, atol=1e-12)


def test_texts():
    text = str(stats.tukey_hsd(PLANTS))
    assert "trt2 - trt1      0.8650   0.0120   0.1738   1.5562" in text and text.startswith("Tukey's HSD, all pairs")
    assert "4 data sets, shape (2, 2); the first of them:" in str(stats.tukey_hsd(*simulated(1, 3, 2, 2, 5)))
    assert "drug_b - control" in str(stats.dunnett(BLOOD, control="control"))
    assert str(stats.hsu_mcb(PLANTS)).splitlines()[3].endswith("no")


def test_errors_say_what_is_wrong():
    for test in (stats.tukey_hsd, stats.hsu_mcb):
        with pytest.raises(ValueError, match="at least 2 samples are needed, not 1"):
            test([1.0, 2.0])
        with pytest.raises(ValueError, match="at least 2 samples are needed, not 0"):
            test()
        with pytest.raises(ValueError, match=r"one array of shape \(3, 5\); give each group"):
            test(np.ones((3, 5)))
    with pytest.raises(ValueError, match="more observations than groups are needed, not 2 in 2 groups"):
        stats.tukey_hsd([1.0], [2.0])
    with pytest.raises(ValueError, match="sample 1 has no observation"):
        stats.tukey_hsd([1.0, 2.0], [])
    with pytest.raises(ValueError, match="different numbers of data sets"):
        stats.tukey_hsd(np.ones((3, 4)), np.ones((2, 4)))
    with pytest.raises(ValueError, match="nan_policy"):
        stats.tukey_hsd([1.0, 2], [2.0, 3], nan_policy="drop")
    with pytest.raises(ValueError, match="confidence level is 95"):
        stats.tukey_hsd([1.0, 2], [2.0, 3]).confidence_interval(95)
    with pytest.raises(ValueError, match='no group "placebo"'):
        stats.dunnett(BLOOD, control="placebo")
    with pytest.raises(ValueError, match="alternative"):
        stats.dunnett([1.0, 2], control=[2.0, 3], alternative="both")
    with pytest.raises(ValueError, match="2 names for 3 samples"):
        stats.tukey_hsd(*simulated(1, 3, 5), names=["a", "b"])
    with pytest.raises(ValueError, match="best"):
        stats.hsu_mcb([1.0, 2], [2.0, 3], best="tallest")


def test_without_variance():
    result = stats.tukey_hsd([1.0, 1.0], [2.0, 2.0], [2.0, 2.0])
    assert result.pvalue[0, 1] == 0 and np.isnan(result.pvalue[1, 2])
    one = stats.tukey_hsd([1.0, 2.0, 3.0], [5.0])  # a single observation is a group
    assert one.df == 2 and 0 < one.pvalue[0, 1] < 1
    assert np.isnan(stats.tukey_hsd([1.0, np.inf], [2.0, 3.0]).pvalue).any()
