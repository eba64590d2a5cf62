"""The bootstrap over index streams of a seed, and the power of designs by simulation."""
import inspect
from dataclasses import dataclass

import numpy as np

from .. import random
from ._axis import observations
from ._dask import takes_dask
from ._discrete import check_level
from ._results import ConfidenceInterval, percent, shown, single_data_set, table
from .multiple_comparison import dunnett, tukey_hsd

__all__ = ["BootstrapResult", "PowerResult", "bootstrap", "simulate_power"]

_METHODS = ("percentile", "basic")
# Numbers of a batch: 64 MB of doubles.
_BATCH = 8_000_000


@dataclass(repr=False)
class BootstrapResult:
    """Of ``bootstrap``, with the fields of SciPy's.

    Attributes
    ----------
    confidence_interval : ConfidenceInterval at the level and by the method that were asked for
    bootstrap_distribution : the statistic of each resample, along the last axis
    standard_error : standard deviation of the bootstrap distribution
    statistic : of the data themselves
    """

    confidence_interval: ConfidenceInterval
    bootstrap_distribution: np.ndarray
    standard_error: np.ndarray
    statistic: np.ndarray
    confidence_level: float = 0.95
    method: str = "percentile"

    def interval(self, confidence_level=0.95, method=None):
        """Another interval of the same resamples."""
        return _interval(self.bootstrap_distribution, self.statistic, confidence_level, method or self.method)

    def __str__(self):
        title = f"Bootstrap, {self.bootstrap_distribution.shape[-1]} resamples"
        if np.ndim(self.statistic):
            return f"{title}, statistics of shape {np.shape(self.statistic)}"
        level = percent(self.confidence_level)
        rows = [("statistic", self.statistic), ("standard error", self.standard_error),
                (f"{level} interval from", self.confidence_interval.low), (f"{level} interval to", self.confidence_interval.high)]
        return f"{title}, {self.method} interval\n" + table(("", "value"), rows)

    __repr__ = __str__

    def plot(self, ax=None):
        """The bootstrap distribution with the interval; returns the axes of matplotlib."""
        from . import plots
        single_data_set(np.shape(self.statistic), "resample one of them")
        return plots.distribution(ax, self.bootstrap_distribution, float(self.statistic), self.confidence_interval,
                                  f"bootstrap, {percent(self.confidence_level)} {self.method} interval")


def _interval(distribution, statistic, level, method):
    check_level(level)
    if method not in _METHODS:
        raise ValueError(f'method is "{method}"; it must be "percentile" or "basic"')
    low, high = np.quantile(distribution, [(1 - level) / 2, (1 + level) / 2], axis=-1)
    if method == "basic":
        low, high = 2 * statistic - high, 2 * statistic - low
    return ConfidenceInterval(low[()], high[()])


@takes_dask({"data": 1})
def bootstrap(data, statistic, *, n_resamples=9999, batch=None, vectorized=None, paired=False, axis=-1,
              confidence_level=0.95, method="percentile", seed=0, nan_policy="propagate"):
    """The bootstrap distribution of a statistic, with its interval and standard error.

    Parameters
    ----------
    data : one array of observations, or a tuple or list of samples as for ``scipy.stats.bootstrap``
    statistic : function of the samples. If it takes ``axis`` it is called with many resamples at once.
    n_resamples : number of resamples
    batch : resamples of one call of ``statistic``; by default as many as 64 MB hold
    vectorized : whether ``statistic`` takes ``axis``; by default its signature tells
    paired : whether the samples are resampled together
    axis : the axis of the observations; other axes are data sets, which all get the same indices
    confidence_level : of the interval
    method : "percentile" or "basic"
    seed : of the stream of indices, one 32-bit number; the same seed gives the same resamples on every machine
    nan_policy : "propagate" or "raise"

    Returns
    -------
    result : BootstrapResult
        ``confidence_interval``, ``standard_error``, ``bootstrap_distribution``, ``interval(level, method)``, ``plot()``

    Notes
    -----
    Resample b takes the next numbers of the stream: n for the first sample, then those of the others. So ``batch``
    changes no digit, and fewer resamples are the first ones of more. Intervals corrected for bias (BCa) are left out.

    References
    ----------
    B. Efron, R. J. Tibshirani, An Introduction to the Bootstrap, Chapman and Hall, 1993.

    Examples
    --------
    Survival of seven treated mice in days, from chapter 2 of the book: the standard error of the mean of 1000
    resamples was 23.02 there, of infinitely many it is 23.36.

    >>> import numpy as np
    >>> from orvanth import stats
    >>> result = stats.bootstrap([94, 197, 16, 38, 99, 141, 23], np.mean, seed=0)
    >>> print(f"{result.statistic:.2f} {result.standard_error:.0f}")
    86.86 23
    """
    samples = [observations(d, axis, nan_policy, f"sample {i}") for i, d in enumerate(_as_samples(data))]
    if nan_policy == "omit":
        raise ValueError('nan_policy is "omit"; a bootstrap takes "propagate" or "raise"')
    if any(s.shape[-1] < 2 for s in samples):
        raise ValueError("each sample needs at least 2 observations")
    n_resamples = int(n_resamples)
    if n_resamples < 1:
        raise ValueError(f"n_resamples is {n_resamples}; at least 1 is needed")
    sizes = [s.shape[-1] for s in samples]
    if paired and len(set(sizes)) > 1:
        raise ValueError(f"paired samples have one size, not {sizes}")
    if method not in _METHODS:
        raise ValueError(f'method is "{method}"; it must be "percentile" or "basic"')
    check_level(confidence_level)
    if vectorized is None:
        vectorized = _takes_axis(statistic)
    call = _vectorized(statistic, vectorized)
    batch = max(1, _BATCH // sum(s.size for s in samples)) if batch is None else int(batch)
    parts = []
    with random.RandomStream(seed) as stream:
        for begin in range(0, n_resamples, batch):
            count = min(batch, n_resamples - begin)
            indices = [[stream.indices(n) for n in (sizes[:1] if paired else sizes)] for _ in range(count)]
            chosen = [np.array([i[0 if paired else j] for i in indices]) for j in range(len(samples))]
            parts.append(np.asarray(call(*(s[..., c] for s, c in zip(samples, chosen)))))
    distribution = np.concatenate(parts, axis=-1)
    observed = np.asarray(call(*samples))[()]
    error = distribution.std(axis=-1, ddof=1)[()] if n_resamples > 1 else np.full(np.shape(observed), np.nan)[()]
    return BootstrapResult(_interval(distribution, observed, confidence_level, method), distribution, error, observed,
                           confidence_level, method)


def _as_samples(data):
    """SciPy takes a sequence of samples; a plain sequence of numbers or an array is one sample."""
    if hasattr(data, "dtype") or hasattr(data, "columns"):
        return [data]
    data = list(data)
    return [data] if all(np.ndim(d) == 0 for d in data) else data


def _takes_axis(statistic):
    try:
        return "axis" in inspect.signature(statistic).parameters
    except (TypeError, ValueError):  # functions without a readable signature
        return False


def _vectorized(statistic, vectorized):
    """The statistic along the last axis."""
    if vectorized:
        # Rows are contiguous: the sum of a resample has the same bits beside any number of other data sets.
        return lambda *samples: statistic(*map(np.ascontiguousarray, samples), axis=-1)

    def one_by_one(*samples):
        shape = np.broadcast_shapes(*(s.shape[:-1] for s in samples))
        whole = [np.broadcast_to(s, (*shape, s.shape[-1])) for s in samples]
        values = [float(statistic(*(s[at] for s in whole))) for at in np.ndindex(shape)]
        return np.array(values).reshape(shape)
    return one_by_one


@dataclass(repr=False)
class PowerResult:
    """Of ``simulate_power``: one element for each size.

    Attributes
    ----------
    sizes : observations in each group
    power : the part of the simulated experiments in which a comparison that the means call for was significant
    standard_error : of that part
    n_simulations, alpha, test : as asked for
    """

    sizes: np.ndarray
    power: np.ndarray
    standard_error: np.ndarray
    n_simulations: int
    alpha: float
    test: str

    def __str__(self):
        rows = [(str(n), p, e) for n, p, e in zip(self.sizes, self.power, self.standard_error)]
        return f"Power of {self.test} at {shown(self.alpha)}, {self.n_simulations} simulated experiments of each size\n" + \
            table(("size of a group", "power", "standard error"), rows)

    __repr__ = __str__

    def plot(self, ax=None):
        """Power against size with twice the error of the simulation; returns the axes of matplotlib."""
        from . import plots
        return plots.power(ax, self.sizes, self.power, self.standard_error,
                           f"power of {self.test}, level {self.alpha:g}")


def simulate_power(means, sd, sizes, test="tukey_hsd", alternative="two-sided", alpha=0.05, n_simulations=2000, seed=0):
    """The power of a design with groups of one size, by simulation.

    Parameters
    ----------
    means : of the groups; for "dunnett" that of the control comes first
    sd : the common standard deviation
    sizes : observations in each group, one or several to compare
    test : "tukey_hsd" or "dunnett"
    alternative : of "dunnett"
    alpha : the level
    n_simulations : experiments for each size
    seed : of the stream of normal variates

    Returns
    -------
    result : PowerResult
        ``power``, ``standard_error``, ``plot()``

    Notes
    -----
    Power here is the chance that at least one pair of groups with different means is found different. All sizes use
    the same variates, so that differences between sizes are clearer than the standard errors say.

    Examples
    --------
    With two groups this is the power of a t test. R's ``power.t.test(n = 20, delta = 1, sd = 1)`` gives 0.8689528:

    >>> from orvanth import stats
    >>> result = stats.simulate_power([0, 1], 1, 20, n_simulations=20000)
    >>> bool(abs(result.power[0] - 0.8689528) < 3 * result.standard_error[0])
    True
    """
    means, sizes = np.asarray(means, dtype=float), np.atleast_1d(np.asarray(sizes, dtype=int))
    if means.ndim != 1 or means.size < 2:
        raise ValueError("means holds the mean of each group: at least 2 are needed")
    if not np.ptp(means) > 0:
        raise ValueError("the means are equal: there is no difference to find")
    if not sd > 0:
        raise ValueError(f"sd is {sd}; it must be above 0")
    if (sizes < 2).any():
        raise ValueError("each group needs at least 2 observations")
    if test not in ("tukey_hsd", "dunnett"):
        raise ValueError(f'test is "{test}"; it must be "tukey_hsd" or "dunnett"')
    check_level(alpha)
    n_simulations = int(n_simulations)
    largest = int(sizes.max())
    noise = random.normals(seed, means.size * n_simulations * largest).reshape(means.size, n_simulations, largest)
    power = []
    for n in sizes:
        groups = means[:, None, None] + sd * noise[..., :n]
        if test == "tukey_hsd":
            p, real = tukey_hsd(*groups).pvalue, means[:, None] != means
        else:
            p, real = dunnett(*groups[1:], control=groups[0], alternative=alternative).pvalue, means[1:] != means[0]
        power.append(((p < alpha) & real).reshape(n_simulations, -1).any(axis=1).mean())
    power = np.array(power)
    return PowerResult(sizes, power, np.sqrt(power * (1 - power) / n_simulations), n_simulations, alpha, test)
