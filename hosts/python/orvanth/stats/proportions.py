"""Exact inference for proportions."""
from dataclasses import dataclass

import numpy as np

from .. import _ufuncs
from ._dask import takes_dask
from ._discrete import check_alternative, check_level, counts, one_of
from ._results import ConfidenceInterval, first, heading, percent, table

__all__ = ["BinomTestResult", "binom_test", "binomtest", "proportion_ci"]


def _counts(k, n):
    k, n = np.broadcast_arrays(counts("k", k), counts("n", n))
    if (k > n).any():
        raise ValueError("k counts successes and must not exceed n, the number of trials")
    if (n == 0).any():
        raise ValueError("n is 0: without a trial there is no proportion")
    return k, n


def binom_core(k, n, p, alternative):
    """p-values of counts k of n."""
    def call(function, y, *more):
        with np.errstate(all="ignore"):
            return function(y, n, p, *more)

    def upper(y):
        return np.where(y > 0, call(_ufuncs.BinomialCDF, np.maximum(y - 1, 0), 1), 1.0)
    return one_of(alternative, lambda y: call(_ufuncs.BinomialPDF, y), lambda y: call(_ufuncs.BinomialCDF, y, 0), upper,
                  k, np.zeros(np.shape(k)), n, np.clip(np.floor((n + 1) * p), 0, n))


@takes_dask({"k": 0, "n": 0})
def proportion_ci(k, n, confidence_level=0.95, alternative="two-sided"):
    """The exact interval of Clopper and Pearson for a proportion.

    Parameters
    ----------
    k : successes, an array
    n : trials, an array
    confidence_level : from 0 to 1
    alternative : "two-sided", "less" (the interval begins at 0) or "greater" (it ends at 1)

    Returns
    -------
    interval : ConfidenceInterval
        ``low`` and ``high``

    References
    ----------
    C. J. Clopper, E. S. Pearson, The use of confidence or fiducial limits illustrated in the case of the binomial,
    Biometrika 26, 1934.

    Examples
    --------
    Mendel's plants with 682 of 925 giants, as in the help of R's ``binom.test``, which prints 0.7076683 and 0.7654066:

    >>> from orvanth import stats
    >>> interval = stats.proportion_ci(682, 925)
    >>> print(f"{interval.low:.7f} {interval.high:.7f}")
    0.7076683 0.7654066
    """
    check_alternative(alternative)
    check_level(confidence_level)
    k, n = _counts(k, n)
    outside = (1 - confidence_level) / (2 if alternative == "two-sided" else 1)
    low = np.zeros(k.shape) if alternative == "less" else _ufuncs.BinomialPS(outside, k, n, 0)
    high = np.ones(k.shape) if alternative == "greater" else _ufuncs.BinomialPS(outside, k, n, 1)
    return ConfidenceInterval(np.asarray(low)[()], np.asarray(high)[()])


@dataclass(repr=False)
class BinomTestResult:
    """Of ``binom_test``; arrays have the shape of the counts.

    Attributes
    ----------
    k, n : successes and trials
    statistic : the estimate k / n
    pvalue : of the alternative
    p : the proportion of the hypothesis
    alternative : "two-sided", "less" or "greater"
    """

    k: np.ndarray
    n: np.ndarray
    statistic: np.ndarray
    pvalue: np.ndarray
    p: np.ndarray
    alternative: str = "two-sided"

    def proportion_ci(self, confidence_level=0.95):
        """The exact interval of the proportion, one-sided as the alternative is."""
        return proportion_ci(self.k, self.n, confidence_level, self.alternative)

    confidence_interval = proportion_ci

    def __str__(self):
        interval = self.proportion_ci()
        rows = [("proportion", first(self.statistic, 0)), (f"{percent(0.95)} interval from", first(interval.low, 0)),
                (f"{percent(0.95)} interval to", first(interval.high, 0)), ("p-value", first(self.pvalue, 0))]
        title = f"Exact binomial test of {first(self.k, 0):g} successes in {first(self.n, 0):g} trials against " \
                f"{first(self.p, 0):g}, {self.alternative}"
        return heading(title, np.shape(self.pvalue)) + "\n" + table(("", "value"), rows)

    __repr__ = __str__


@takes_dask({"k": 0, "n": 0, "p": 0})
def binom_test(k, n, p=0.5, alternative="two-sided"):
    """Exact test of a proportion. ``binomtest``, SciPy's name, is the same function.

    Parameters
    ----------
    k : successes
    n : trials
    p : the proportion of the hypothesis
    alternative : "two-sided", "less" or "greater": whether the proportion differs from p, is below or above it

    All are arrays that broadcast.

    Returns
    -------
    result : BinomTestResult
        ``statistic`` (k / n), ``pvalue``, ``proportion_ci(level)``

    Notes
    -----
    The two-sided p-value is the probability of all counts that are no likelier than the observed one.

    Examples
    --------
    Mendel's plants against a proportion of 3/4, as in the help of R's ``binom.test``, which prints p = 0.3825:

    >>> from orvanth import stats
    >>> print(stats.binom_test(682, 925, p=3/4))
    Exact binomial test of 682 successes in 925 trials against 0.75, two-sided
                        value
    proportion         0.7373
    95% interval from  0.7077
    95% interval to    0.7654
    p-value            0.3825
    """
    check_alternative(alternative)
    k, n = _counts(k, n)
    p = np.asarray(p, dtype=float)
    if not ((p >= 0) & (p <= 1)).all():
        raise ValueError("p must be from 0 to 1")
    k, n, p = np.broadcast_arrays(k, n, p)
    return BinomTestResult(k[()], n[()], (k / n)[()], np.asarray(binom_core(k, n, p, alternative))[()], p[()], alternative)


binomtest = binom_test
