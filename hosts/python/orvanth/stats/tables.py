"""Exact tests of counts drawn without replacement: Fisher's test of a 2 by 2 table, and a single count."""
from dataclasses import dataclass

import numpy as np

from .. import _ufuncs
from ._dask import takes_dask
from ._discrete import check_alternative, check_level, counts, increasing_roots, one_of
from ._results import ConfidenceInterval, first, heading, percent, table

__all__ = ["FisherExactResult", "HypergeomTestResult", "fisher_exact", "hypergeom_test"]

# Of the sums of the noncentral hypergeometric law.
_ACCURACY = 1e-14


def hypergeom_core(x, marked, drawn, total, alternative):
    """p-values of counts inside their support."""
    def call(function, y, *more):
        with np.errstate(all="ignore"):
            return function(y, marked, drawn, total, *more)

    low, high = np.maximum(0.0, marked + drawn - total), np.minimum(marked, drawn)

    def upper(y):
        return np.where(y > low, call(_ufuncs.HypergeometricCDF, np.maximum(y - 1, low), 1), 1.0)
    mode = np.clip(np.floor((marked + 1) * (drawn + 1) / (total + 2)), low, high)
    return one_of(alternative, lambda y: call(_ufuncs.HypergeometricPDF, y),
                  lambda y: call(_ufuncs.HypergeometricCDF, y, 0), upper, x, low, high, mode)


def odds_core(x, drawn, marked, total):
    """The odds ratio whose mean count is x; 0 and infinity at the ends of the support, NaN if there is one point."""
    low, high = np.maximum(0, marked + drawn - total), np.minimum(marked, drawn)
    inside = (low < x) & (x < high)

    def excess(log_odds):
        with np.errstate(all="ignore"):
            return np.where(inside, _moments(drawn, marked, total, np.exp(log_odds))[0] - x, 0.0)
    odds = np.exp(increasing_roots(excess, _start(x, drawn, marked, total)))
    return np.where(inside, odds, np.where(low == high, np.nan, np.where(x == low, 0.0, np.inf)))


def _moments(drawn, marked, total, odds):
    return _ufuncs.FNCHypergeometricMoments(drawn, marked, total, odds)


def _start(x, drawn, marked, total):
    """The logarithm of the odds ratio with a half added to each count."""
    return np.log((x + 0.5) * (total - drawn - marked + x + 0.5) / ((drawn - x + 0.5) * (marked - x + 0.5)))


def odds_bounds(x, drawn, marked, total, below, above):
    """The odds at which P(X >= x) is ``below``, and P(X <= x) is ``above``; a probability of 0 gives 0 or infinity."""
    low, high = np.maximum(0, marked + drawn - total), np.minimum(marked, drawn)
    start = _start(x, drawn, marked, total)

    def bound(tail, probability, solvable, otherwise):
        def excess(log_odds):
            with np.errstate(all="ignore"):
                return np.where(solvable, tail(np.exp(log_odds)) - probability, 0.0)
        if probability == 0:
            return np.full(np.shape(x), otherwise)
        return np.where(solvable, np.exp(increasing_roots(excess, start)), otherwise)

    def fnc(y, odds, upper):
        return _ufuncs.FNCHypergeometricCDF(y, drawn, marked, total, odds, upper, _ACCURACY)
    # The upper tail rises with the odds, the lower one falls.
    return (bound(lambda odds: fnc(x - 1, odds, 1), below, x > low, 0.0),
            bound(lambda odds: -fnc(x, odds, 0), -above, x < high, np.inf))


@dataclass(repr=False)
class FisherExactResult:
    """Of ``fisher_exact``; arrays have the shape of the tables.

    Attributes
    ----------
    statistic : conditional maximum likelihood estimate of the odds ratio
    pvalue : of the alternative
    sample_odds_ratio : a d / (b c)
    table : the counts, shape (..., 2, 2)
    alternative : "two-sided", "less" or "greater"
    """

    statistic: np.ndarray
    pvalue: np.ndarray
    sample_odds_ratio: np.ndarray
    table: np.ndarray
    alternative: str = "two-sided"

    def confidence_interval(self, confidence_level=0.95):
        """The exact interval of the odds ratio, one-sided as the alternative is."""
        check_level(confidence_level)
        outside = 1 - confidence_level
        below, above = {"two-sided": (outside / 2, outside / 2), "greater": (outside, 0.0),
                        "less": (0.0, outside)}[self.alternative]
        low, high = odds_bounds(*_margins(self.table.astype(np.int64)), below, above)
        return ConfidenceInterval(low[()], high[()])

    def __str__(self):
        interval = self.confidence_interval()
        rows = [("odds ratio, conditional", first(self.statistic, 0)), (f"{percent(0.95)} interval from", first(interval.low, 0)),
                (f"{percent(0.95)} interval to", first(interval.high, 0)), ("p-value", first(self.pvalue, 0))]
        (a, b), (c, d) = first(self.table, 2)
        return heading(f"Fisher's exact test of [{a:g} {b:g}; {c:g} {d:g}], {self.alternative}",
                       np.shape(self.pvalue)) + "\n" + table(("", "value"), rows)

    __repr__ = __str__


def _margins(counted):
    """(count, first row, first column, total) of each table."""
    return (counted[..., 0, 0], counted[..., 0, :].sum(axis=-1), counted[..., :, 0].sum(axis=-1),
            counted.sum(axis=(-1, -2)))


@takes_dask({"table": 2})
def fisher_exact(table, alternative="two-sided"):
    """Fisher's exact test of 2 by 2 tables, with the conditional odds ratio and its exact interval.

    Parameters
    ----------
    table : array_like of shape (..., 2, 2)
        Counts; the axes before the last two are data sets. A DataFrame of 2 by 2 counts is one table.
    alternative : "two-sided", "less" or "greater": whether the odds ratio differs from 1, is below or above it

    Returns
    -------
    result : FisherExactResult
        ``statistic`` (conditional odds ratio), ``pvalue``, ``sample_odds_ratio``, ``confidence_interval(level)``

    Notes
    -----
    The two-sided p-value is the probability of all tables with these margins that are no likelier than the observed
    one. ``statistic`` is the conditional estimate, as R gives it; ``scipy.stats.fisher_exact`` gives
    ``sample_odds_ratio`` there. The ends of the interval are the odds at which a tail of Fisher's noncentral
    hypergeometric law is half of what the interval leaves out. The interval and the two-sided p-value follow different
    rules and may disagree.

    References
    ----------
    R. A. Fisher, The logic of inductive inference, Journal of the Royal Statistical Society 98, 1935.

    Examples
    --------
    Convictions of like-sex twins of convicted criminals, from Fisher's paper. R's ``fisher.test`` gives the same
    p-value, 0.0005367, and 0.04693661 (0.003325764, 0.363182271), the ends to four figures:

    >>> from orvanth import stats
    >>> result = stats.fisher_exact([[2, 15], [10, 3]])
    >>> print(result)
    Fisher's exact test of [2 15; 10 3], two-sided
                                 value
    odds ratio, conditional     0.0469
    95% interval from           0.0033
    95% interval to             0.3632
    p-value                  0.0005367
    """
    check_alternative(alternative)
    counted = counts("the counts of a table", table)
    if counted.ndim < 2 or counted.shape[-2:] != (2, 2):
        raise ValueError(f"a table has shape (2, 2) or (..., 2, 2), not {counted.shape}")
    counts("the totals of tables", counted.sum(axis=(-1, -2)))
    x, drawn, marked, total = (m.astype(np.int64) for m in _margins(counted))
    p = hypergeom_core(*(m.astype(float) for m in (x, marked, drawn, total)), alternative)
    with np.errstate(divide="ignore", invalid="ignore"):
        sample = counted[..., 0, 0] * counted[..., 1, 1] / (counted[..., 0, 1] * counted[..., 1, 0])
    return FisherExactResult(odds_core(x, drawn, marked, total)[()], np.asarray(p)[()], sample, counted, alternative)


@dataclass(repr=False)
class HypergeomTestResult:
    """Of ``hypergeom_test``: ``statistic`` (the count), ``expected``, ``pvalue``, ``alternative``."""

    statistic: np.ndarray
    expected: np.ndarray
    pvalue: np.ndarray
    alternative: str = "two-sided"

    def __str__(self):
        rows = [("count", first(self.statistic, 0)), ("expected", first(self.expected, 0)), ("p-value", first(self.pvalue, 0))]
        return heading(f"Hypergeometric test, {self.alternative}", np.shape(self.pvalue)) + "\n" + table(("", "value"), rows)

    __repr__ = __str__


@takes_dask({"k": 0, "M": 0, "n": 0, "N": 0})
def hypergeom_test(k, M, n, N, alternative="two-sided"):
    """Exact test of the count of marked items in a sample without replacement, as in tests for enrichment.

    Parameters
    ----------
    k : count of marked items in the sample
    M : size of the population
    n : marked items in the population
    N : size of the sample
    alternative : "two-sided", "less" or "greater": whether the sample differs from one at random, holds fewer or more
        marked items

    The names of the arguments are those of ``scipy.stats.hypergeom``. All are arrays that broadcast.

    Returns
    -------
    result : HypergeomTestResult
        ``statistic`` (the count), ``expected``, ``pvalue``

    Notes
    -----
    The two-sided p-value is the probability of all counts that are no likelier than the observed one.

    Examples
    --------
    Fisher's lady names 3 of the 4 cups with milk first among 8. The chance of 3 or more is 17/70:

    >>> from orvanth import stats
    >>> print(stats.hypergeom_test(3, 8, 4, 4, alternative="greater"))
    Hypergeometric test, greater
               value
    count     3.0000
    expected  2.0000
    p-value   0.2429
    """
    check_alternative(alternative)
    k, M, n, N = np.broadcast_arrays(*(counts(name, v) for name, v in (("k", k), ("M", M), ("n", n), ("N", N))))
    if (n > M).any() or (N > M).any():
        raise ValueError("n and N are parts of the population and must not exceed M")
    if (k < np.maximum(0, n + N - M)).any() or (k > np.minimum(n, N)).any():
        raise ValueError("k is no possible count: it must be from max(0, n + N - M) to min(n, N)")
    p = hypergeom_core(k, n, N, M, alternative)
    with np.errstate(invalid="ignore"):
        return HypergeomTestResult(k[()], (n * N / M)[()], np.asarray(p)[()], alternative)
