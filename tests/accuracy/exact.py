"""The functions in as many digits as the answer needs, by series of positive terms: slow, simple and independent.

Every function takes doubles and returns an mpf with at least 30 correct digits.
"""
from mpmath import mp, mpf

DIGITS = 40
DEEP = 380  # a complement of 1e-330 still has its digits


_digits = [DEEP]


def deep(function):
    def call(*arguments):
        with mp.workdps(_digits[-1]):
            return function(*[mpf(a) for a in arguments])
    return call


def gamma_lower(a, x):
    """x^a e^-x / Gamma(a + 1) times a series of positive terms."""
    if x == 0:
        return mpf(0)
    term = total = mpf(1)
    n = a
    smallest = mpf(10) ** -(mp.dps + 5)
    while True:
        n += 1
        term *= x / n
        total += term
        if n > x and term < total * smallest:
            break
    return mp.exp(a * mp.log(x) - x - mp.loggamma(a + 1)) * total


def log_beta(a, b):
    return mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)


def beta_lower(a, b, x):
    """The series that converges fast on this side of the mean, the complement of the other otherwise."""
    if x == 0 or x == 1:
        return mpf(x)
    if x > (a + 1) / (a + b + 2):
        return 1 - beta_lower(b, a, 1 - x)
    term = total = mpf(1)
    n = mpf(0)
    smallest = mpf(10) ** -(mp.dps + 5)
    while True:
        term *= x * (a + b + n) / (a + 1 + n)
        n += 1
        total += term
        if term < total * smallest:
            break
    return mp.exp(a * mp.log(x) + b * mp.log1p(-x) - mp.log(a) - log_beta(a, b)) * total


gamma_p = deep(gamma_lower)
gamma_q = deep(lambda a, x: 1 - gamma_lower(a, x))
beta_i = deep(beta_lower)
beta_ic = deep(lambda a, b, x: 1 - beta_lower(a, b, x))
gamma_density = deep(lambda a, x: mp.exp((a - 1) * mp.log(x) - x - mp.loggamma(a)))
beta_density = deep(lambda a, b, x: mp.exp((a - 1) * mp.log(x) + (b - 1) * mp.log1p(-x) - log_beta(a, b)))
normal_tail = deep(lambda z: mp.erfc(z / mp.sqrt(2)) / 2)


def f_parts(x, df1, df2):
    v = mpf(df1) * mpf(x)
    return v / (v + df2), df2 / (v + df2)


@deep
def fisher_lower(x, df1, df2):
    return beta_lower(df1 / 2, df2 / 2, f_parts(x, df1, df2)[0])


@deep
def fisher_upper(x, df1, df2):
    return beta_lower(df2 / 2, df1 / 2, f_parts(x, df1, df2)[1])


@deep
def fisher_density(x, df1, df2):
    v = df1 * x
    return mp.exp(df1 / 2 * mp.log(df1) + df2 / 2 * mp.log(df2) + (df1 / 2 - 1) * mp.log(x)
                  - (df1 + df2) / 2 * mp.log(v + df2) - log_beta(df1 / 2, df2 / 2))


@deep
def student_lower(x, df):
    if x == 0:
        return mpf(0.5)
    half = beta_lower(df / 2, mpf(0.5), df / (df + x * x)) / 2
    return half if x < 0 else 1 - half


@deep
def student_density(x, df):
    return mp.exp(-(df + 1) / 2 * mp.log1p(x * x / df) - log_beta(df / 2, mpf(0.5))) / mp.sqrt(df)


@deep
def binomial_probability(k, n, p):
    return mp.binomial(n, k) * p ** k * (1 - p) ** (n - k)


@deep
def hypergeometric_probability(x, r, n, N):
    return mp.binomial(r, x) * mp.binomial(N - r, n - x) / mp.binomial(N, n)


def hypergeometric_sum(x, r, n, N, upper):
    with mp.workdps(DIGITS):
        low, high = max(0, int(r + n - N)), int(min(r, n))
        points = range(int(x) + 1, high + 1) if upper else range(low, int(x) + 1)
        return mp.fsum(hypergeometric_probability(k, r, n, N) for k in points)


def refined(start, probability, target, density, steps=5):
    """Newton's method on the logarithm of a probability, from an x that is right to several digits."""
    _digits.append(DIGITS + 5 + max(0, -int(mp.log10(mpf(target)))))
    try:
        with mp.workdps(DIGITS):
            x, goal = mpf(start), mp.log(mpf(target))
            for _ in range(steps):
                value = probability(x)
                move = (mp.log(value) - goal) * value / density(x)
                x -= move
                if abs(move) < abs(x) * mpf(10) ** -28:
                    return x
            raise ArithmeticError(f"no convergence from {start!r} for a probability of {target!r}")
    finally:
        _digits.pop()
