#!/usr/bin/env python3
"""Writes tests/data/accuracy/reference.tsv: a stratified random sample of arguments for the exports with a closed
definition, and what they give exactly. Takes about ten minutes; starts of quantiles come from a built library.

    tools/make_accuracy_reference.py build/dev/src/libOrvanth.Core.Math.so > tests/data/accuracy/reference.tsv
    tools/make_accuracy_reference.py LIBRARY --compare 400    compares the first 400 rows with the file; seconds
"""
import math
import random
import sys
from pathlib import Path

from mpmath import mp, mpf

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/accuracy"))
import exact  # noqa: E402
from host import Core  # noqa: E402

COUNT = 96
SEED = 20261121
mp.dps = exact.DIGITS
rng = random.Random(SEED)


def strata(low, high, logarithmic=True):
    """One value in each of COUNT strata, in random order."""
    edges = [(i + rng.random()) / COUNT for i in range(COUNT)]
    rng.shuffle(edges)
    if logarithmic:
        return [math.exp(math.log(low) + e * (math.log(high) - math.log(low))) for e in edges]
    return [low + e * (high - low) for e in edges]


def shapes(low=0.05, high=2e3):
    return strata(low, high)


def at_deviations(mean, deviation, z, low=0.0, high=math.inf):
    """A point z standard deviations from the mean, on a log scale where it would leave the support."""
    x = mean + z * deviation
    if x <= low:
        x = low + (mean - low) * math.exp(z)
    if x >= high:
        x = high - (high - mean) * math.exp(-z)
    return min(max(x, low + 1e-290), math.nextafter(high, 0) if high < math.inf else x)


def gamma_points():
    for a, z in zip(shapes(), strata(-7, 9, False)):
        yield a, at_deviations(a, math.sqrt(a), z)


def beta_points():
    for a, b, z in zip(shapes(), shapes(), strata(-7, 7, False)):
        mean = a / (a + b)
        yield a, b, at_deviations(mean, math.sqrt(mean * (1 - mean) / (a + b + 1)), z, 0, 1)


def fisher_points():
    for df1, df2, z in zip(strata(1, 1000), strata(1, 1000), strata(-3, 4, False)):
        yield math.exp(z * math.sqrt(1 / df1 + 1 / df2)), df1, df2


def student_points():
    for df, x in zip(strata(0.7, 1e4), strata(-9, 9, False)):
        yield x, df


def probabilities():
    """Of the smaller tail; the other comes from the exports' complements."""
    return strata(1e-12, 0.5)


def binomial_points(whole=True):
    for n, p, z in zip(strata(2, 1e5), strata(0.001, 0.999, False), strata(-6, 6, False)):
        n = float(round(n))
        k = round(at_deviations(n * p, math.sqrt(n * p * (1 - p)), z, -0.5, n + 0.5))
        yield float(min(max(k, 0), n)), n, p


def hypergeometric_points():
    for N, share, part, z in zip(strata(4, 20000), strata(0.05, 0.95, False), strata(0.02, 0.5, False),
                                 strata(-5, 5, False)):
        N = round(N)
        r, n = max(1, round(N * share)), max(1, round(N * part))
        mean = n * r / N
        deviation = math.sqrt(max(mean * (1 - r / N) * (N - n) / max(N - 1, 1), 0.1))
        low, high = max(0, r + n - N), min(r, n)
        yield float(min(max(round(mean + z * deviation), low), high)), float(r), float(n), float(N)


def rows(core):
    """(export, arguments, exact value)"""
    for x in strata(1e-3, 170):
        yield "Gamma", (x,), mp.gamma(mpf(x))
    for x in strata(1e-3, 1e10):
        yield "GammaLn", (x,), mp.loggamma(mpf(x))
    for a, x in gamma_points():
        p, q = exact.gamma_p(a, x), exact.gamma_q(a, x)
        yield "GammaRegularized", (a, x), p
        yield "GammaRegularizedC", (a, x), q
        yield "GammaDerivative", (a, x), exact.gamma_density(a, x)
        if a < 160:
            yield "IncompleteGammaLower", (a, x), p * mp.gamma(mpf(a))
            yield "IncompleteGammaUpper", (a, x), q * mp.gamma(mpf(a))
        scale = rng.uniform(0.1, 10)
        y = x * scale
        if y == 0:
            continue
        yield "GammaPDF", (y, a, scale), exact.gamma_density(a, mpf(y) / mpf(scale)) / mpf(scale)
        yield "GammaCDF", (y, a, scale, 0), exact.gamma_p(a, mpf(y) / mpf(scale))
        yield "GammaCDF", (y, a, scale, 1), exact.gamma_q(a, mpf(y) / mpf(scale))
        yield "ChiSquaredPDF", (x, a), exact.gamma_density(mpf(a) / 2, mpf(x) / 2) / 2
        yield "ChiSquaredCDF", (x, a, 0), exact.gamma_p(mpf(a) / 2, mpf(x) / 2)
        yield "ChiSquaredCDF", (x, a, 1), exact.gamma_q(mpf(a) / 2, mpf(x) / 2)
    for a, p in zip(shapes(), probabilities()):
        x = exact.refined(core.InverseGammaRegularized(a, p), lambda x: exact.gamma_p(a, x), p,
                          lambda x: exact.gamma_density(a, x))
        yield "InverseGammaRegularized", (a, p), x
        yield "GammaICDF", (p, a, 2.0, 0), 2 * x
        yield "ChiSquaredICDF", (p, 2 * a, 0), 2 * x
        x = exact.refined(core.InverseGammaRegularizedC(a, p), lambda x: exact.gamma_q(a, x), p,
                          lambda x: -exact.gamma_density(a, x))
        yield "InverseGammaRegularizedC", (a, p), x
        yield "GammaICDF", (p, a, 2.0, 1), 2 * x
        yield "ChiSquaredICDF", (p, 2 * a, 1), 2 * x
    for a, b in zip(shapes(), shapes()):
        yield "Beta", (a, b), mp.exp(exact.log_beta(mpf(a), mpf(b)))
    for a, b, x in beta_points():
        i, c, d = exact.beta_i(a, b, x), exact.beta_ic(a, b, x), exact.beta_density(a, b, x)
        yield "BetaRegularized", (a, b, x), i
        yield "BetaRegularizedC", (a, b, x), c
        yield "BetaDerivative", (a, b, x), d
        yield "BetaPDF", (x, a, b), d
        yield "BetaCDF", (x, a, b, 0), i
        yield "BetaCDF", (x, a, b, 1), c
    for a, b, p in zip(shapes(0.2), shapes(0.2), probabilities()):
        for inverse, quantile, tail, function, sign in (
                (core.InverseBetaRegularized, "InverseBetaRegularized", 0, exact.beta_i, 1),
                (core.InverseBetaRegularizedC, "InverseBetaRegularizedC", 1, exact.beta_ic, -1)):
            start = inverse(a, b, p)
            if not 1e-200 < start < 1 - 1e-9:
                continue  # next to 1 a double is too coarse a start
            x = exact.refined(start, lambda x: function(a, b, x), p,
                              lambda x: sign * exact.beta_density(a, b, x))
            yield quantile, (a, b, p), x
            yield "BetaICDF", (p, a, b, tail), x
    for x in strata(-5.5, 5.5, False):
        yield "Erf", (x,), mp.erf(mpf(x))
    for x in strata(-3, 26, False):
        yield "ErfC", (x,), mp.erfc(mpf(x))
    for p in strata(1e-6, 1):
        p = math.copysign(p if rng.random() < 0.5 else 1 - p, rng.random() - 0.5)
        yield "InverseErf", (p,), mp.erfinv(mpf(p))
    for z in strata(1e-300, 1):
        with mp.workdps(exact.DEEP):
            yield "InverseErfC", (z,), exact.refined(core.InverseErfC(z), lambda x: mp.erfc(x), z,
                                                     lambda x: -2 / mp.sqrt(mp.pi) * mp.exp(-x * x))
    for x in strata(1e-17, 1e10):
        x = x if x >= 1 or rng.random() < 0.5 else -x
        yield "LogXplus1", (x,), mp.log1p(mpf(x))
    for x, df1, df2 in fisher_points():
        yield "FisherFPDF", (x, df1, df2), exact.fisher_density(x, df1, df2)
        yield "FisherFCDF", (x, df1, df2, 0), exact.fisher_lower(x, df1, df2)
        yield "FisherFCDF", (x, df1, df2, 1), exact.fisher_upper(x, df1, df2)
    for df1, df2, p in zip(strata(1, 1000), strata(1, 1000), probabilities()):
        for tail, function, sign in ((0, exact.fisher_lower, 1), (1, exact.fisher_upper, -1)):
            yield "FisherFICDF", (p, df1, df2, tail), exact.refined(
                core.FisherFICDF(p, df1, df2, tail), lambda x: function(x, df1, df2), p,
                lambda x: sign * exact.fisher_density(x, df1, df2))
    for x, df in student_points():
        yield "StudentTPDF", (x, df), exact.student_density(x, df)
        yield "StudentTCDF", (x, df, 0), exact.student_lower(x, df)
        yield "StudentTCDF", (x, df, 1), exact.student_lower(-x, df)
    for df, p in zip(strata(0.7, 1e4), probabilities()):
        for tail, sign in ((0, 1), (1, -1)):
            yield "StudentTICDF", (p, df, tail), exact.refined(
                core.StudentTICDF(p, df, tail), lambda x: exact.student_lower(sign * x, df), p,
                lambda x: sign * exact.student_density(x, df))
    for z in strata(-37, 8, False):
        mean, sd = rng.uniform(-5, 5), rng.uniform(0.1, 10)
        x = mean + z * sd
        exact_z = (mpf(x) - mpf(mean)) / mpf(sd)
        yield "NormalPDF", (x, mean, sd), mp.npdf(exact_z) / mpf(sd)
        yield "NormalCDF", (x, mean, sd, 0), exact.normal_tail(-exact_z)
        yield "NormalCDF", (x, mean, sd, 1), exact.normal_tail(exact_z)
    for p in probabilities():
        z = exact.refined(core.NormalICDF(p, 0, 1, 0), lambda x: exact.normal_tail(-x), p, mp.npdf)
        yield "NormalICDF", (p, 0.0, 1.0, 0), z
        yield "NormalICDF", (p, 0.0, 1.0, 1), -z
    for k, n, p in binomial_points():
        yield "BinomialPDF", (k, n, p), exact.binomial_probability(k, n, p)
        if k < n:
            yield "BinomialCDF", (k, n, p, 0), exact.beta_ic(k + 1, n - k, p)
            yield "BinomialCDF", (k, n, p, 1), exact.beta_i(k + 1, n - k, p)
    for x, r, n, N in hypergeometric_points():
        yield "HypergeometricPDF", (x, r, n, N), exact.hypergeometric_probability(x, r, n, N)
        for tail in (0, 1):
            total = exact.hypergeometric_sum(x, r, n, N, tail)
            if total != 0:
                yield "HypergeometricCDF", (x, r, n, N, tail), total


def lines(core):
    for name, arguments, value in rows(core):
        if 1e-290 < abs(value) < 1e290:
            yield "\t".join([name, " ".join(a.hex() if isinstance(a, float) else str(a) for a in arguments),
                             mp.nstr(value, 30, strip_zeros=False)])


def main(arguments):
    if len(arguments) == 3 and arguments[1] == "--compare":
        standing = (ROOT / "tests/data/accuracy/reference.tsv").read_text().splitlines()[1:int(arguments[2]) + 1]
        for number, (made, kept) in enumerate(zip(lines(Core(arguments[0])), standing), 2):
            if made != kept:
                sys.exit(f"reference.tsv:{number} is\n{kept}\nand not what is made:\n{made}")
        print(f"the first {len(standing)} rows of reference.tsv are as made")
        return
    if len(arguments) != 1:
        sys.exit("make_accuracy_reference.py: give the path of a built library, as in the heading of this file")
    print(f"# Written by tools/make_accuracy_reference.py (seed {SEED}); export, arguments, exact value to 30 digits.")
    last = None
    for line in lines(Core(arguments[0])):
        name = line.split("\t")[0]
        if name != last:
            print(f"\r{name:30}", end="", file=sys.stderr)
            last = name
        print(line)
    print(file=sys.stderr)


main(sys.argv[1:])
