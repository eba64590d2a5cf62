"""What exact tests of counts share: alternatives, the two-sided rule, a search for roots of many functions at once."""
import numpy as np

ALTERNATIVES = ("two-sided", "less", "greater")
# Points whose probability exceeds that of the observed one by rounding alone count as no likelier.
_TIE = 1 + 1e-7


def check_alternative(alternative):
    if alternative not in ALTERNATIVES:
        raise ValueError(f'alternative is "{alternative}"; it must be "two-sided", "less" or "greater"')


def check_level(level):
    if not 0 < level < 1:
        raise ValueError(f"the confidence level is {level}; it must be between 0 and 1")


def counts(name, values, largest=2**31 - 1):
    """Whole numbers from 0 to ``largest`` as doubles."""
    values = np.asarray(values, dtype=float)
    if not (np.isfinite(values) & (values == np.floor(values)) & (values >= 0) & (values <= largest)).all():
        raise ValueError(f"{name} must be whole numbers from 0 to {largest}")
    return values


def two_sided(pmf, lower, upper, x, low, high, mode):
    """The probability of all points that are no likelier than ``x``, of a law with one mode on low to high.

    ``pmf(y)``, ``lower(y)`` = P(X <= y) and ``upper(y)`` = P(X >= y) are called inside the support only. The point on
    the other side of the mode is found by bisection, so that the cost grows with the logarithm of the support.
    """
    limit = pmf(x) * _TIE
    left = x < mode

    def likelier(y):
        return pmf(np.clip(y, low, high)) > limit

    # On the other side points from `far` outwards are no likelier, the point `near` is.
    near, far = mode, np.where(left, high + 1, low - 1)
    while (np.abs(far - near) > 1).any():
        middle = np.trunc((near + far) / 2)
        inside = likelier(middle) & (middle >= low) & (middle <= high)
        near, far = np.where(inside, middle, near), np.where(inside, far, middle)
        far = np.where(np.abs(far - near) < 1, near + np.where(left, 1, -1), far)
    bottom, top = np.where(left, x, far), np.where(left, far, x)
    tails = np.where(bottom >= low, lower(np.clip(bottom, low, high)), 0.0) + \
        np.where(top <= high, upper(np.clip(top, low, high)), 0.0)
    return np.where(likelier(mode), np.minimum(tails, 1.0), 1.0)


def one_of(alternative, pmf, lower, upper, x, low, high, mode):
    """The p-value of the alternative."""
    if alternative == "less":
        return lower(x)
    if alternative == "greater":
        return upper(x)
    return two_sided(pmf, lower, upper, x, low, high, mode)


def increasing_roots(function, start, widest=700.0):
    """Where each element of an increasing ``function`` of an array is 0, to the last digits.

    A bracket grows from ``start`` on; then Chandrupatla's choice of bisection and inverse quadratic interpolation
    (Advances in Engineering Software 28, 1997), each element by its own.
    """
    low, high, step = start - 0.5, start + 0.5, 1.0
    at_low, at_high = function(low), function(high)
    while ((at_low > 0) | (at_high < 0)).any() and step < widest:
        low, high = np.where(at_low > 0, low - step, low), np.where(at_high < 0, high + step, high)
        at_low, at_high, step = function(low), function(high), 2 * step
    a, b, c = high, low, high
    fa, fb, fc = at_high, at_low, at_high
    part, root, done = np.full(np.shape(a), 0.5), np.full(np.shape(a), np.nan), np.zeros(np.shape(a), dtype=bool)
    for _ in range(200):
        x = a + part * (b - a)
        fx = function(x)
        same = np.sign(fx) == np.sign(fa)
        c, fc = np.where(same, a, b), np.where(same, fa, fb)
        b, fb = np.where(same, b, a), np.where(same, fb, fa)
        a, fa = x, fx
        smaller = np.abs(fa) < np.abs(fb)
        best, at_best = np.where(smaller, a, b), np.where(smaller, fa, fb)
        with np.errstate(divide="ignore", invalid="ignore"):
            least = 2e-16 * (np.abs(best) + 1) / np.abs(b - a)
            # An element that has its root keeps it, so that its bits depend on no other one.
            ends = (least > 0.5) | (at_best == 0) | np.isnan(fx)
            root, done = np.where(ends & ~done, best, root), done | ends
            if done.all():
                break
            xi, phi = (a - b) / (c - b), (fa - fb) / (fc - fb)
            quadratic = (phi * phi < xi) & ((1 - phi) ** 2 < 1 - xi)
            guess = fa / (fb - fa) * fc / (fb - fc) + (c - a) / (b - a) * fa / (fc - fa) * fb / (fc - fb)
        part = np.clip(np.where(quadratic & np.isfinite(guess), guess, 0.5), np.minimum(least, 0.5),
                       1 - np.minimum(least, 0.5))
    return root
