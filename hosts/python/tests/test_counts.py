"""Fisher's test, the hypergeometric test, proportions."""
import itertools

import data
import numpy as np
import pandas as pd
import pytest
import scipy.stats
from hypothesis import given, settings
from hypothesis import strategies as st
from orvanth import stats

ALTERNATIVES = ("two-sided", "less", "greater")
FISHER = sorted({(d, c) for t, d, c, *_ in data.rows("stats/printed.tsv") if t == "fisher_exact"})
BINOM = sorted({(d, c) for t, d, c, *_ in data.rows("stats/printed.tsv") if t == "binom_test"})


@pytest.mark.parametrize("numbers, alternative", FISHER)
def test_printed_tables(numbers, alternative):
    result = stats.fisher_exact(np.array(numbers.split(), dtype=int).reshape(2, 2), alternative)
    interval = result.confidence_interval()
    found = {"p": result.pvalue, "odds": result.statistic, "low": interval.low, "high": interval.high}
    for _, quantity, value, unit in data.printed("fisher_exact", numbers):
        # R's root finder leaves four or five figures of the odds.
        assert found[quantity] == pytest.approx(value, abs=unit, rel=3e-4 if quantity != "p" else 0), quantity


def test_fisher_to_many_digits():
    tea, twins = stats.fisher_exact([[3, 1], [1, 3]]), stats.fisher_exact([[2, 15], [10, 3]])
    assert tea.pvalue == pytest.approx(34 / 70, rel=1e-14) and tea.statistic == pytest.approx(6.4083196582, rel=1e-10)
    assert np.allclose(tea.confidence_interval(), [0.211735595447, 626.243530589], rtol=1e-11)
    assert twins.statistic == pytest.approx(0.0469366390497, rel=1e-11)
    assert np.allclose(twins.confidence_interval(), [0.00331716395066, 0.363189602357], rtol=1e-11)


small = st.integers(0, 30)


@settings(max_examples=100, deadline=None)
@given(small, small, small, small, st.sampled_from(ALTERNATIVES))
def test_fisher_beside_scipy(a, b, c, d, alternative):
    table = [[a, b], [c, d]]
    result = stats.fisher_exact(table, alternative)
    assert result.pvalue == pytest.approx(scipy.stats.fisher_exact(table, alternative)[1], rel=1e-9)
    theirs = scipy.stats.contingency.odds_ratio(table)
    if np.isnan(theirs.statistic):
        assert np.isnan(result.statistic)
    else:
        assert result.statistic == pytest.approx(theirs.statistic, rel=1e-6)
        interval = theirs.confidence_interval(0.9, alternative)
        assert np.allclose(result.confidence_interval(0.9), interval, rtol=1e-6)


def test_many_tables_and_large_ones():
    tables = np.array([[[a, b], [c, d]] for a, b, c, d in itertools.product((0, 1, 5), repeat=4)])
    together = stats.fisher_exact(tables.reshape(9, 9, 2, 2))
    assert together.pvalue.shape == (9, 9)
    interval = together.confidence_interval()
    for i, table in enumerate(tables):
        alone = stats.fisher_exact(table)
        at = divmod(i, 9)
        assert together.pvalue[at] == alone.pvalue
        assert np.array_equal([together.statistic[at], interval.low[at], interval.high[at]],
                              [alone.statistic, *alone.confidence_interval()], equal_nan=True)
    ends = (tables[:, 0, 0] == 0) | (tables[:, 1, 1] == 0), (tables[:, 0, 1] == 0) | (tables[:, 1, 0] == 0)
    assert ((interval.low.ravel() == 0) == ends[0]).all() and (np.isinf(interval.high.ravel()) == ends[1]).all()
    big = [[3000, 7000], [2500, 80000]]
    result, theirs = stats.fisher_exact([[300, 700], [250, 8000]]), scipy.stats.contingency.odds_ratio([[300, 700], [250, 8000]])
    assert np.allclose(result.confidence_interval(), theirs.confidence_interval(), rtol=1e-6)
    assert stats.fisher_exact(big).statistic == pytest.approx(3000 * 80000 / 7000 / 2500, rel=1e-3)
    frame = pd.DataFrame([[2, 15], [10, 3]], index=["dizygotic", "monozygotic"], columns=["convicted", "not"])
    assert stats.fisher_exact(frame).pvalue == stats.fisher_exact([[2, 15], [10, 3]]).pvalue


def test_interval_and_estimate_fit_the_law():
    result = stats.fisher_exact([[12, 6], [5, 29]])
    low, high = result.confidence_interval(0.8)
    law = scipy.stats.nchypergeom_fisher
    assert law.sf(11, 52, 17, 18, low) == pytest.approx(0.1, rel=1e-9)
    assert law.cdf(12, 52, 17, 18, high) == pytest.approx(0.1, rel=1e-9)
    assert law.mean(52, 17, 18, result.statistic) == pytest.approx(12, rel=1e-10)


@settings(max_examples=60, deadline=None)
@given(st.integers(1, 300), st.data())
def test_hypergeometric_by_its_definition(M, more):
    n, N = more.draw(st.integers(0, M)), more.draw(st.integers(0, M))
    low, high = max(0, n + N - M), min(n, N)
    k = more.draw(st.integers(low, high))
    pmf = scipy.stats.hypergeom(M, n, N).pmf(np.arange(low, high + 1))
    seen = pmf[k - low]
    expected = {"two-sided": pmf[pmf <= seen * (1 + 1e-7)].sum(), "less": pmf[:k - low + 1].sum(),
                "greater": pmf[k - low:].sum()}
    for alternative, p in expected.items():
        assert stats.hypergeom_test(k, M, n, N, alternative).pvalue == pytest.approx(p, rel=1e-8)


def test_tails_stay_exact():
    p = stats.hypergeom_test(180, 1000, 200, 200, "greater").pvalue
    assert p == pytest.approx(scipy.stats.hypergeom.sf(179, 1000, 200, 200), rel=1e-9) and p < 1e-120
    assert stats.binom_test(0, 1000, 0.5).pvalue == pytest.approx(2 * 0.5**1000, rel=1e-12)


@pytest.mark.parametrize("numbers, alternative", BINOM)
def test_printed_proportions(numbers, alternative):
    k, n, p = (float(v) for v in numbers.split())
    result = stats.binom_test(k, n, p, alternative)
    interval = result.confidence_interval()
    found = {"p": result.pvalue, "estimate": result.statistic, "low": interval.low, "high": interval.high}
    for _, quantity, value, unit in data.printed("binom_test", numbers):
        assert found[quantity] == pytest.approx(value, abs=unit, rel=1e-14), quantity


@settings(max_examples=100, deadline=None)
@given(st.integers(1, 500), st.data(), st.floats(1e-6, 1 - 1e-6))
def test_binomial_beside_scipy(n, more, p):
    k = more.draw(st.integers(0, n))
    for alternative in ALTERNATIVES:
        ours, theirs = stats.binom_test(k, n, p, alternative), scipy.stats.binomtest(k, n, p, alternative)
        # SciPy 1.10 loses half of the digits far out: 1.738379645e-292 for 1.73837967349169e-292 at n = 214, k = 15.
        assert ours.pvalue == pytest.approx(theirs.pvalue, rel=1e-9, abs=1e-200)
        assert np.allclose(ours.proportion_ci(0.9), theirs.proportion_ci(0.9), rtol=1e-8)


def test_arrays_of_proportions():
    k = np.arange(11)
    interval = stats.proportion_ci(k, 10)
    assert interval.low[0] == 0 and interval.high[-1] == 1 and (np.diff(interval.low) > 0).all()
    result = stats.binom_test(k[:, None], 10, [0.1, 0.5])
    assert result.pvalue.shape == (11, 2) and result.pvalue[3, 0] == stats.binom_test(3, 10, 0.1).pvalue
    assert "22 data sets" in str(result)
    assert stats.binomtest is stats.binom_test


def test_errors_say_what_is_wrong():
    for call, text in ((lambda: stats.fisher_exact([[1, 2, 3], [4, 5, 6]]), "shape"),
                       (lambda: stats.fisher_exact([[1, -2], [3, 4]]), "whole numbers"),
                       (lambda: stats.fisher_exact([[1, 2.5], [3, 4]]), "whole numbers"),
                       (lambda: stats.fisher_exact([[1, np.nan], [3, 4]]), "whole numbers"),
                       (lambda: stats.fisher_exact([[2**31 - 1, 1], [3, 4]]), "totals"),
                       (lambda: stats.fisher_exact([[1, 2], [3, 4]], "both"), "alternative"),
                       (lambda: stats.fisher_exact([[1, 2], [3, 4]]).confidence_interval(1), "confidence level"),
                       (lambda: stats.binom_test(4, 3), "must not exceed n"),
                       (lambda: stats.binom_test(0, 0), "without a trial"),
                       (lambda: stats.binom_test(1, 3, 1.5), "p must be"),
                       (lambda: stats.proportion_ci(1, 3, 95), "confidence level"),
                       (lambda: stats.hypergeom_test(5, 8, 4, 4), "no possible count"),
                       (lambda: stats.hypergeom_test(2, 8, 9, 4), "must not exceed M")):
        with pytest.raises(ValueError, match=text):
            call()
