"""Kolmogorov's test of samples."""
import data
import numpy as np
import pandas as pd
import pytest
import scipy.stats
from hypothesis import given, settings
from hypothesis import strategies as st
from orvanth import stats

WEIGHTS = np.concatenate(list(data.groups("tour/plant_growth.csv").values()))


def test_printed_results():
    results = {"linspace": stats.ks_1samp(np.linspace(-15, 15, 9), "normal", args=(0, 1)),
               "plant_growth": stats.ks_1samp(WEIGHTS, "normal", args=(5, 0.7))}
    for name, result in results.items():
        for _, quantity, value, unit in data.printed("ks_1samp", name):
            assert {"statistic": result.statistic, "p": result.pvalue}[quantity] == pytest.approx(value, abs=max(unit, 1e-15))


def test_the_law_of_every_size():
    """Samples that lie at a distance D from the uniform distribution, beside the exact law."""
    checked = 0
    for n, x, _, tail in data.rows("published/kolmogorov_exact.tsv"):
        n, x, tail = int(n), float(x), float(tail)
        if x < 0.5 / n + 1e-12:
            continue
        # All observations of an evenly spread sample, moved so that the largest distance is x.
        sample = np.clip((np.arange(n) + 0.5) / n - (x - 0.5 / n), 0.0, 1.0)
        result = stats.ks_1samp(sample, lambda v: v)
        assert result.statistic == pytest.approx(x, rel=1e-12)
        assert result.pvalue == pytest.approx(tail, rel=2e-10 if n <= 140 else 2e-6, abs=0.0 if n <= 140 else 0.1 / n**2), (n, x)
        checked += 1
    assert checked > 80


@settings(max_examples=40, deadline=None)
@given(st.lists(st.floats(-4, 4), min_size=1, max_size=60))
def test_beside_scipy(values):
    ours = stats.ks_1samp(values, scipy.stats.norm.cdf)
    theirs = scipy.stats.ks_1samp(values, scipy.stats.norm.cdf, method="exact")
    assert ours.statistic == pytest.approx(theirs.statistic, rel=1e-13)
    assert ours.pvalue == pytest.approx(theirs.pvalue, rel=1e-8, abs=1e-12)
    assert ours.statistic_sign == theirs.statistic_sign
    assert ours.statistic_location == theirs.statistic_location


def test_many_samples_and_missing_values():
    many = np.random.default_rng(1).normal(size=(4, 5, 12))
    together = stats.ks_1samp(many, "normal", (0, 1))
    assert together.pvalue.shape == (4, 5)
    assert together.pvalue[2, 3] == stats.ks_1samp(many[2, 3], "normal", (0, 1)).pvalue
    assert np.array_equal(stats.ks_1samp(np.moveaxis(many, -1, 0), "normal", (0, 1), axis=0).pvalue, together.pvalue)
    holes = many[0].copy()
    holes[0, 4], holes[3] = np.nan, np.nan
    assert np.isnan(stats.ks_1samp(holes, "normal", (0, 1)).pvalue).tolist() == [True, False, False, True, False]
    left = stats.ks_1samp(holes, "normal", (0, 1), nan_policy="omit")
    assert left.pvalue[0] == stats.ks_1samp(np.delete(holes[0], 4), "normal", (0, 1)).pvalue
    assert np.isnan(left.pvalue).tolist() == [False, False, False, True, False]
    with pytest.raises(ValueError, match="contains NaN"):
        stats.ks_1samp(holes, "normal", (0, 1), nan_policy="raise")
    assert stats.ks_1samp(pd.Series(many[0, 0]), "normal", (0, 1)).pvalue == together.pvalue[0, 0]


def test_band():
    x, band = stats.ks_1samp(WEIGHTS, "normal", args=(5, 0.7)).confidence_band(0.95)
    middle = np.arange(1, 31) / 30
    half = 0.24170  # the 95 % point for 30 observations: L. H. Miller, JASA 51 (1956)
    assert np.array_equal(x, np.sort(WEIGHTS))
    assert np.allclose(band.low, np.maximum(middle - half, 0), atol=1e-5)
    assert np.allclose(band.high, np.minimum(middle + half, 1), atol=1e-5)


def test_errors_say_what_is_wrong():
    for call, text in ((lambda: stats.ks_1samp([], "normal"), "no observation"),
                       (lambda: stats.ks_1samp(1.0, "normal"), "single number"),
                       (lambda: stats.ks_1samp([1.0], "norm"), "normal, student_t"),
                       (lambda: stats.ks_1samp([1.0], "normal", (0, 1), alternative="less"), "no law of the one-sided"),
                       (lambda: stats.ks_1samp([1.0], "normal", (0, 1), method="asymp"), "exact"),
                       (lambda: stats.ks_1samp([1.0, 2.0], lambda x: 2 * x), "outside 0 to 1"),
                       (lambda: stats.ks_1samp([1.0, 2.0], "normal", (0, 1), axis=1), "no axis 1")):
        with pytest.raises(ValueError, match=text):
            call()
