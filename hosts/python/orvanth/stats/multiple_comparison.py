"""Simultaneous comparisons of group means: all pairs, with a control, with the best."""
from dataclasses import dataclass, field

import numpy as np

from . import _laws as laws
from ._axis import samples as gather
from ._dask import takes_dask
from ._results import ConfidenceInterval, first, heading, percent, single_data_set, table

__all__ = ["DunnettResult", "HsuMCBResult", "TukeyHSDResult", "dunnett", "hsu_mcb", "tukey_hsd"]

_ALTERNATIVES = ("two-sided", "less", "greater")


def one_way(sizes, means, squares):
    """(variance within groups, its degrees of freedom) of shape (...); NaN and 0 where a group is empty."""
    complete = (sizes > 0).all(axis=-1)
    df = np.where(complete, sizes.sum(axis=-1) - sizes.shape[-1], 0)
    with np.errstate(divide="ignore", invalid="ignore"):
        return np.where(df > 0, squares.sum(axis=-1) / df, np.nan), df


def standard_errors(variance, sizes):
    """Of the difference of each two groups, shape (..., k, k)."""
    with np.errstate(divide="ignore", invalid="ignore"):
        return np.sqrt(variance[..., None, None] * (1 / sizes[..., :, None] + 1 / sizes[..., None, :]))


def differences(means):
    """Mean i less mean j, shape (..., k, k)."""
    with np.errstate(invalid="ignore"):  # infinite observations
        return means[..., :, None] - means[..., None, :]


def _ratio(difference, error):
    with np.errstate(divide="ignore", invalid="ignore"):
        return difference / error


def tukey_core(sizes, means, squares, batch):
    """(difference, p-value, standard error, df) from the moments of shape (..., k): arrays, and nothing checked."""
    k = sizes.shape[-1]
    variance, df = one_way(sizes, means, squares)
    error = standard_errors(variance, sizes)
    difference = differences(means)
    i, j = np.triu_indices(k, 1)
    t = _ratio(np.abs(difference[..., i, j]), error[..., i, j])
    tails = laws.upper_tail(laws.PAIRS, t, k, df, laws.equal_sizes(k), batch)
    p = np.ones(difference.shape)
    p[..., i, j] = p[..., j, i] = tails
    p[..., range(k), range(k)] = np.where(np.isnan(variance), np.nan, 1.0)[..., None]
    return difference, p, error, df


def dunnett_core(sizes, means, squares, control, alternative, lam, batch):
    """(t, p-value, difference, standard error, df) of the other groups, shape (..., k - 1)."""
    variance, df = one_way(sizes, means, squares)
    error = np.delete(standard_errors(variance, sizes)[..., control, :], control, -1)
    difference = np.delete(differences(means)[..., control], control, -1)
    t = _ratio(difference, error)
    law = laws.TWO_SIDED if alternative == "two-sided" else laws.ONE_SIDED
    distance = {"two-sided": np.abs(t), "greater": t, "less": -t}[alternative]
    p = laws.upper_tail(law, distance, sizes.shape[-1], df, lam if lam.ndim == 1 else lam[..., None, :], batch)
    return t, p, difference, error, df


def hsu_core(sizes, means, squares, batch, lams):
    """(mean less the best other mean, p-value, differences, standard errors, df); large means are wanted."""
    k = sizes.shape[-1]
    variance, df = one_way(sizes, means, squares)
    error = standard_errors(variance, sizes)
    difference = differences(means)
    itself = np.eye(k, dtype=bool)
    ahead = np.where(itself, -np.inf, _ratio(-difference, error)).max(axis=-1)  # of the rival that is furthest ahead
    p = np.stack([laws.upper_tail(laws.ONE_SIDED, ahead[..., i], k, df, lams[i], batch) for i in range(k)], axis=-1)
    return np.where(itself, np.inf, difference).min(axis=-1), p, difference, error, df


def hsu_bounds(difference, error, points):
    """The constrained ends of mean less best other mean (Hsu 1996, section 4.2); ``points`` has shape (..., k)."""
    k = difference.shape[-1]
    itself = np.eye(k, dtype=bool)
    upper = np.where(itself, np.inf, difference + points[..., :, None] * error).min(axis=-1)
    upper = np.maximum(upper, 0.0)
    # Only groups that may be the best bound the others from below, each with its own point.
    rival = (upper > 0)[..., None, :] & ~itself
    lower = np.where(rival, difference - points[..., None, :] * error, np.inf).min(axis=-1)
    lower = np.minimum(lower, 0.0)
    missing = np.isnan(points).any(axis=-1, keepdims=True) | np.isnan(difference).any(axis=(-1, -2))[..., None]
    return np.where(missing, np.nan, lower), np.where(missing, np.nan, upper)


@dataclass(repr=False)
class TukeyHSDResult:
    """Of ``tukey_hsd``; arrays have shape (..., k, k), element (i, j) being group i less group j.

    Attributes
    ----------
    statistic : differences of the means
    pvalue : p-values, adjusted for all pairs
    standard_error : of the differences
    df : degrees of freedom of the variance within groups, shape (...)
    names : of the groups
    confidence_level : of the intervals that are printed
    """

    statistic: np.ndarray
    pvalue: np.ndarray
    standard_error: np.ndarray
    df: np.ndarray
    names: list
    confidence_level: float = 0.95

    def confidence_interval(self, confidence_level=None):
        """Simultaneous intervals of all differences."""
        level = self.confidence_level if confidence_level is None else confidence_level
        k = len(self.names)
        point = laws.quantile(laws.PAIRS, level, k, self.df, laws.equal_sizes(k))
        half = point[..., None, None] * self.standard_error
        return ConfidenceInterval(self.statistic - half, self.statistic + half)

    def _rows(self, level):
        interval = self.confidence_interval(level)
        arrays = [first(a, 2) for a in (self.statistic, self.pvalue, interval.low, interval.high)]
        for i, one in enumerate(self.names):
            for j, other in enumerate(self.names):
                if i != j:
                    yield (f"{one} - {other}", *(a[i, j] for a in arrays))

    def __str__(self):
        title = f"Tukey's HSD, all pairs of {len(self.names)} groups ({percent(self.confidence_level)} intervals)"
        return heading(title, self.df.shape) + "\n" + table(
            ("comparison", "difference", "p-value", "low", "high"), self._rows(self.confidence_level))

    __repr__ = __str__

    def plot(self, ax=None, confidence_level=None):
        """The simultaneous intervals of the pairs i < j; returns the axes of matplotlib."""
        from . import plots
        level = self.confidence_level if confidence_level is None else confidence_level
        single_data_set(self.df.shape, "compare one of them")
        rows = [r for i, r in enumerate(self._rows(level)) if i // (len(self.names) - 1) <= i % (len(self.names) - 1)]
        return plots.intervals(ax, rows, f"all pairs, simultaneous {percent(level)} intervals", "difference of means")


@takes_dask({"samples": 1})
def tukey_hsd(*samples, axis=-1, nan_policy="propagate", confidence_level=0.95, names=None):
    """Tukey's test of all pairs of means, with simultaneous intervals.

    Parameters
    ----------
    sample1, sample2, ... : array_like
        Observations of each group, along ``axis``; the other axes are data sets, each tested by itself. Or one
        DataFrame with a column for each group, a mapping, or a grouped Series.
    axis : the axis of the observations
    nan_policy : "propagate" (a NaN makes its data set NaN), "omit" or "raise"
    confidence_level : of the intervals that are printed
    names : of the groups; by default those of the pandas objects, or numbers from 0

    Returns
    -------
    result : TukeyHSDResult
        ``statistic`` (difference of the means), ``pvalue``, ``confidence_interval(level)``, ``plot()``

    Notes
    -----
    The groups have normal observations with one variance. With unequal sizes the method is that of Tukey and Kramer,
    whose intervals are a little too wide (Hayter 1984). A group may have a single observation. A data set that "omit"
    leaves with an empty group, or without a degree of freedom, gives NaN.

    With several data sets, p-values come from polynomials through the law, within 1e-11 of it for ten groups and 1e-9
    for a hundred. They depend on the data set alone, however many others there are.

    References
    ----------
    J. W. Tukey, Comparing individual means in the analysis of variance, Biometrics 5, 1949.
    C. Y. Kramer, Extension of multiple range tests to group means with unequal numbers of replications, Biometrics 12,
    1956.
    A. J. Hayter, A proof of the conjecture that the Tukey-Kramer multiple comparisons procedure is conservative,
    Annals of Statistics 12, 1984.

    Examples
    --------
    Minutes to relief with three brands of headache medicine, as in the documentation of ``scipy.stats.tukey_hsd``:

    >>> from orvanth import stats
    >>> group0 = [24.5, 23.5, 26.4, 27.1, 29.9]
    >>> group1 = [28.4, 34.2, 29.5, 32.2, 30.1]
    >>> group2 = [26.1, 28.3, 24.3, 26.2, 27.8]
    >>> result = stats.tukey_hsd(group0, group1, group2)
    >>> print(result)
    Tukey's HSD, all pairs of 3 groups (95% intervals)
    comparison  difference  p-value      low     high
    0 - 1          -4.6000   0.0144  -8.2492  -0.9508
    0 - 2          -0.2600   0.9803  -3.9092   3.3892
    1 - 0           4.6000   0.0144   0.9508   8.2492
    1 - 2           4.3400   0.0203   0.6908   7.9892
    2 - 0           0.2600   0.9803  -3.3892   3.9092
    2 - 1          -4.3400   0.0203  -7.9892  -0.6908
    >>> result.confidence_interval(0.99).low.round(3)[0]
    array([-4.88, -9.48, -5.14])
    """
    groups = gather(samples, axis, nan_policy, names, "tukey_hsd")
    difference, p, error, df = tukey_core(*groups.moments(), groups.batch)
    return TukeyHSDResult(difference, p, error, df, groups.names, confidence_level)


@dataclass(repr=False)
class DunnettResult:
    """Of ``dunnett``; arrays have shape (..., k), one element for each sample.

    Attributes
    ----------
    statistic : t statistics
    pvalue : p-values, adjusted for all comparisons
    difference : mean of the sample less that of the control
    standard_error : of the differences
    df : degrees of freedom of the variance within groups, shape (...)
    names : of the samples, and the name of the control last
    alternative : "two-sided", "less" or "greater"
    confidence_level : of the intervals that are printed
    """

    statistic: np.ndarray
    pvalue: np.ndarray
    difference: np.ndarray
    standard_error: np.ndarray
    df: np.ndarray
    names: list
    alternative: str = "two-sided"
    confidence_level: float = 0.95
    _lam: np.ndarray = field(default=None)

    def confidence_interval(self, confidence_level=None):
        """Simultaneous intervals of mean less mean of the control; one-sided as the alternative is."""
        level = self.confidence_level if confidence_level is None else confidence_level
        law = laws.TWO_SIDED if self.alternative == "two-sided" else laws.ONE_SIDED
        half = laws.quantile(law, level, len(self.names), self.df, self._lam)[..., None] * self.standard_error
        low, high = self.difference - half, self.difference + half
        if self.alternative == "greater":
            high = np.where(np.isnan(high), high, np.inf)
        if self.alternative == "less":
            low = np.where(np.isnan(low), low, -np.inf)
        return ConfidenceInterval(low, high)

    def _rows(self, level):
        interval = self.confidence_interval(level)
        arrays = [first(a, 1) for a in (self.difference, self.statistic, self.pvalue, interval.low, interval.high)]
        for i, name in enumerate(self.names[:-1]):
            yield (f"{name} - {self.names[-1]}", *(a[i] for a in arrays))

    def __str__(self):
        title = f"Dunnett's test, comparisons with a control, {self.alternative} " \
                f"({percent(self.confidence_level)} intervals)"
        return heading(title, self.df.shape) + "\n" + table(
            ("comparison", "difference", "t", "p-value", "low", "high"), self._rows(self.confidence_level))

    __repr__ = __str__

    def plot(self, ax=None, confidence_level=None):
        """The simultaneous intervals; returns the axes of matplotlib."""
        from . import plots
        level = self.confidence_level if confidence_level is None else confidence_level
        single_data_set(self.df.shape, "compare one of them")
        rows = [(r[0], r[1], *r[3:]) for r in self._rows(level)]
        return plots.intervals(ax, rows, f"against {self.names[-1]}, simultaneous {percent(level)} intervals",
                               "difference from the control")


@takes_dask({"samples": 1, "control": 1})
def dunnett(*samples, control, alternative="two-sided", axis=-1, nan_policy="propagate", confidence_level=0.95,
            names=None):
    """Dunnett's test of several means against that of a control, with simultaneous intervals.

    Parameters
    ----------
    sample1, sample2, ... : array_like
        As for ``tukey_hsd``. Of a DataFrame, a mapping or a grouped Series ``control`` names the control.
    control : array_like, or the name of one of the groups
    alternative : "two-sided", "less" or "greater": whether means differ from that of the control, are below or above
    axis : the axis of the observations
    nan_policy : "propagate" (a NaN makes its data set NaN), "omit" or "raise"
    confidence_level : of the intervals that are printed
    names : of the samples, without the control

    Returns
    -------
    result : DunnettResult
        ``statistic`` (t), ``pvalue``, ``confidence_interval(level)``, ``plot()``

    Notes
    -----
    The law is integrated, not simulated: the same data give the same digits every time. Sizes may be unequal: with
    the sizes n0 of the control and ni, nj of two samples the correlation of their comparisons is li * lj, li being
    sqrt(ni / (ni + n0)), which the law takes exactly. What ``tukey_hsd`` says of several data sets holds here, except
    that "omit" takes the law itself for each data set.

    References
    ----------
    C. W. Dunnett, A multiple comparison procedure for comparing several treatments with a control, Journal of the
    American Statistical Association 50, 1955.

    Examples
    --------
    Blood counts of animals under two drugs, from Dunnett's paper, which gives p = 0.620 and 0.0058:

    >>> from orvanth import stats
    >>> control = [7.40, 8.50, 7.20, 8.24, 9.84, 8.32]
    >>> drug_a = [9.76, 8.80, 7.68, 9.36]
    >>> drug_b = [12.80, 9.68, 12.16, 9.20, 10.55]
    >>> print(stats.dunnett(drug_a, drug_b, control=control, names=["drug a", "drug b"]))
    Dunnett's test, comparisons with a control, two-sided (95% intervals)
    comparison        difference       t  p-value      low    high
    drug a - control      0.6500  0.8570   0.6201  -1.2563  2.5563
    drug b - control      2.6280  3.6938   0.0058   0.8397  4.4163
    """
    if alternative not in _ALTERNATIVES:
        raise ValueError(f'alternative is "{alternative}"; it must be "two-sided", "less" or "greater"')
    if isinstance(control, str) or np.isscalar(control):
        groups = gather(samples, axis, nan_policy, None, "dunnett")
        if str(control) not in groups.names:
            raise ValueError(f'there is no group "{control}" to be the control; the groups are '
                             f'{", ".join(groups.names)}')
        at = groups.names.index(str(control))
        groups.values.append(groups.values.pop(at))
        groups.names.append(groups.names.pop(at))
    else:
        named = None if names is None else [*names, "control"]
        groups = gather((*samples, control), axis, nan_policy, named, "dunnett")
        if names is None and not hasattr(control, "name"):
            groups.names[-1] = "control"
    sizes, means, squares = groups.moments()
    k = len(groups.names)
    lam = laws.against(sizes if groups.omit else [v.shape[-1] for v in groups.values], k - 1)
    t, p, difference, error, df = dunnett_core(sizes, means, squares, k - 1, alternative, lam, groups.batch)
    return DunnettResult(t, p, difference, error, df, groups.names, alternative, confidence_level, lam)


@dataclass(repr=False)
class HsuMCBResult:
    """Of ``hsu_mcb``; arrays have shape (..., k), one element for each group.

    Attributes
    ----------
    statistic : mean less the best mean of the others
    pvalue : of the hypothesis that the group is the best: small if another one is significantly better
    df : degrees of freedom of the variance within groups, shape (...)
    names : of the groups
    best : "largest" or "smallest"
    confidence_level : of the intervals that are printed
    """

    statistic: np.ndarray
    pvalue: np.ndarray
    df: np.ndarray
    names: list
    best: str = "largest"
    confidence_level: float = 0.95
    _difference: np.ndarray = field(default=None)
    _error: np.ndarray = field(default=None)
    _lams: list = field(default=None)

    def confidence_interval(self, confidence_level=None):
        """Simultaneous intervals of mean less the best of the others, constrained to contain 0 or end there."""
        level = self.confidence_level if confidence_level is None else confidence_level
        k = len(self.names)
        points = np.stack([laws.quantile(laws.ONE_SIDED, level, k, self.df, lam) for lam in self._lams], axis=-1)
        low, high = hsu_bounds(self._difference, self._error, points)
        return ConfidenceInterval(low, high) if self.best == "largest" else ConfidenceInterval(-high, -low)

    def may_be_best(self, confidence_level=None):
        """Which groups the intervals do not exclude from being the best."""
        interval = self.confidence_interval(confidence_level)
        return interval.high > 0 if self.best == "largest" else interval.low < 0

    def _rows(self, level):
        interval = self.confidence_interval(level)
        arrays = [first(a, 1) for a in (self.statistic, self.pvalue, interval.low, interval.high)]
        for i, name in enumerate(self.names):
            yield (name, *(a[i] for a in arrays))

    def __str__(self):
        title = f"Hsu's comparisons with the best, the {self.best} mean ({percent(self.confidence_level)} intervals)"
        may = first(self.may_be_best(), 1)
        rows = [(*row, "yes" if m else "no") for row, m in zip(self._rows(self.confidence_level), may)]
        return heading(title, self.df.shape) + "\n" + table(
            ("group", "less best other", "p-value", "low", "high", "may be best"), rows)

    __repr__ = __str__

    def plot(self, ax=None, confidence_level=None):
        """The intervals of mean less best other mean; returns the axes of matplotlib."""
        from . import plots
        level = self.confidence_level if confidence_level is None else confidence_level
        single_data_set(self.df.shape, "compare one of them")
        return plots.with_the_best(ax, list(self._rows(level)), self.may_be_best(level), self.best,
                                   f"comparison with the best, {percent(level)}\nred: not the best")


@takes_dask({"samples": 1})
def hsu_mcb(*samples, best="largest", axis=-1, nan_policy="propagate", confidence_level=0.95, names=None):
    """Hsu's multiple comparisons with the best: each mean less the best of the others, with simultaneous intervals.

    Parameters
    ----------
    sample1, sample2, ... : array_like
        As for ``tukey_hsd``.
    best : whether the "largest" or the "smallest" mean is wanted
    axis : the axis of the observations
    nan_policy : "propagate" (a NaN makes its data set NaN), "omit" or "raise"
    confidence_level : of the intervals that are printed
    names : of the groups

    Returns
    -------
    result : HsuMCBResult
        ``statistic``, ``pvalue``, ``confidence_interval(level)``, ``may_be_best(level)``, ``plot()``

    Notes
    -----
    With the largest mean wanted: a group whose interval ends at 0 from below is not the best; one whose interval
    begins at 0 is the best. With unequal sizes each group in turn is the reference of a one-sided comparison with its
    own point (Hsu 1996, section 4.2). The p-value is the least level at which the group is excluded.

    References
    ----------
    J. C. Hsu, Multiple Comparisons: Theory and Methods, Chapman and Hall, 1996.
    J. C. Hsu, Constrained simultaneous confidence intervals for multiple comparisons with the best, Annals of
    Statistics 12, 1984.

    Examples
    --------
    Dried weights of plants under a control and two treatments (Dobson 1983), the heaviest being the best. The point
    for these three groups of 10 is 1.99742, so that the intervals are those of the formula in Hsu's book:

    >>> from orvanth import stats
    >>> ctrl = [4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14]
    >>> trt1 = [4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69]
    >>> trt2 = [6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26]
    >>> print(stats.hsu_mcb(ctrl, trt1, trt2, names=["ctrl", "trt1", "trt2"]))
    Hsu's comparisons with the best, the largest mean (95% intervals)
    group  less best other  p-value      low    high  may be best
    ctrl           -0.4940   0.0768  -1.0508  0.0628          yes
    trt1           -0.8650   0.0042  -1.4218  0.0000           no
    trt2            0.4940   0.9892  -0.0628  1.0508          yes
    """
    if best not in ("largest", "smallest"):
        raise ValueError(f'best is "{best}"; it must be "largest" or "smallest"')
    groups = gather(samples, axis, nan_policy, names, "hsu_mcb")
    sizes, means, squares = groups.moments()
    sign = 1.0 if best == "largest" else -1.0
    known = sizes if groups.omit else [v.shape[-1] for v in groups.values]
    lams = [laws.against(known, i) for i in range(len(groups.names))]
    statistic, p, difference, error, df = hsu_core(sizes, sign * means, squares, groups.batch, lams)
    return HsuMCBResult(sign * statistic, p, df, groups.names, best, confidence_level, difference, error, lams)
