"""The laws of the statistics of multiple comparisons, on the scale of Student's t.

``PAIRS`` is the largest of all differences of two groups, ``ONE_SIDED`` and ``TWO_SIDED`` the largest difference from
one of them. ``lam`` holds a coefficient for each group: comparisons i and j have the correlation lam[i] * lam[j]. The
last element is not read.
"""
import functools

import numpy as np

from .. import _ufuncs

PAIRS, ONE_SIDED, TWO_SIDED = "a", "b", "c"

# The family of ufuncs that the tests rest on.
_FAMILY = "RefinedMC"

# Points of an interpolating polynomial, for an error below 1e-11; for 100 groups, where the zeros of the tail come close
# to the real axis, below 1e-10.
_POINTS = 32
_ANGLES = (np.arange(_POINTS) + 0.5) * np.pi / _POINTS
_NODES = np.cos(_ANGLES)
_COEFFICIENTS = np.cos(np.outer(np.arange(_POINTS), _ANGLES)) * (2 / _POINTS)
_COEFFICIENTS[0] /= 2
# Beyond 2^20 a statistic is left to the law itself.
_LAST_PANEL = 20


def _cdf(law):
    return getattr(_ufuncs, f"{_FAMILY}{law}CDF")


def _icdf(law):
    return getattr(_ufuncs, f"{_FAMILY}{law}ICDF")


def equal_sizes(k):
    """The coefficients of ``k`` groups of equal size: every correlation is 1/2."""
    return np.full(k, np.sqrt(0.5))


def against(sizes, reference):
    """The coefficients of the other groups against group ``reference``; ``sizes`` has shape (..., k)."""
    sizes = np.asarray(sizes, dtype=float)
    mine, others = sizes[..., reference, None], np.delete(sizes, reference, -1)
    lam = np.zeros(sizes.shape)
    with np.errstate(invalid="ignore"):
        lam[..., :-1] = np.sqrt(others / (others + mine))
    return np.nan_to_num(lam, nan=0.0)  # of empty groups, whose results are NaN anyway


def upper_tail(law, x, k, df, lam, batch):
    """The probability of a statistic above ``x``; x has the shape of df, or one more axis.

    With ``batch`` and one vector ``lam`` for all, tails come from interpolating polynomials, which take a thousandth
    of the time. A tail depends on its own arguments alone, and on no other element of the batch.
    """
    x, df = np.asarray(x, dtype=float), np.asarray(df, dtype=float)
    df = np.broadcast_to(df if df.ndim == x.ndim or df.ndim == 0 else df[..., None], x.shape)
    valid = np.isfinite(x) & (df > 0)
    tail = np.where(np.isnan(x) | ~(df > 0), np.nan, np.where(x > 0, 0.0, 1.0))
    if batch and lam.ndim == 1:
        for one in np.unique(df[valid]):
            chosen = valid & (df == one)
            tail[chosen] = _interpolated(law, x[chosen], k, one, lam)
    else:
        tail = np.where(valid, _direct(law, np.where(valid, x, 0.0), k, np.where(valid, df, 1.0), lam), tail)
    return np.clip(tail, 0.0, 1.0)


def _direct(law, x, k, df, lam):
    with np.errstate(all="ignore"):
        return _cdf(law)(x, k, df, lam, 1)


def _interpolated(law, x, k, df, lam):
    # Panel 0 is [0, 1], panel j is [2^(j-1), 2^j]; below 0 they are mirrored, with numbers from -1 down.
    panels = np.clip(np.frexp(x)[1], 0, None)
    panels = np.where(x < 0, -1 - panels, panels)
    tail = np.empty(x.shape)
    for number in np.unique(panels):
        chosen = panels == number
        coefficients = _panel(law, int(number), k, float(df), lam.tobytes())
        if coefficients is None:
            tail[chosen] = _direct(law, x[chosen], k, df, lam)
        else:
            low, high = _ends(int(number))
            unit = (2 * x[chosen] - (low + high)) / (high - low)
            tail[chosen] = np.exp(np.polynomial.chebyshev.chebval(unit, coefficients))
    return tail


def _ends(number):
    if number < 0:
        low, high = _ends(-1 - number)
        return -high, -low
    return (0.0, 1.0) if number == 0 else (2.0 ** (number - 1), 2.0**number)


@functools.lru_cache(maxsize=4096)
def _panel(law, number, k, df, lam):
    """Chebyshev coefficients of the logarithm of the tail, None where it underflows."""
    if number > _LAST_PANEL:
        return None
    low, high = _ends(number)
    x = (low + high) / 2 + (high - low) / 2 * _NODES
    tail = _direct(law, x, k, df, np.frombuffer(lam))
    return _COEFFICIENTS @ np.log(tail) if (tail > 1e-290).all() else None


def quantile(law, level, k, df, lam):
    """The point that the statistic exceeds with probability 1 - level; NaN where df is below 1."""
    if not 0 < level < 1:
        raise ValueError(f"the confidence level is {level}; it must be between 0 and 1")
    df = np.asarray(df, dtype=float)
    if lam.ndim == 1:  # one evaluation for each value of df
        distinct, where = np.unique(df, return_inverse=True)
        return _quantile(law, level, k, distinct, lam)[where].reshape(df.shape)
    return _quantile(law, level, k, df, lam)


def _quantile(law, level, k, df, lam):
    with np.errstate(all="ignore"):
        found = _icdf(law)(1.0 - level, k, np.where(df > 0, df, 1.0), lam, 1)
    return np.where(df > 0, found, np.nan)
