#!/usr/bin/env python3
"""Probabilities of the three multiple-comparison statistics by direct 30-digit integration, coefficient by coefficient.

    tools/make_refined_direct.py build/dev/src/libOrvanth.Core.Math.Shield.so > tests/data/accuracy/refined_direct.tsv

A stratified sample: any number of groups, any df, equal, unequal and negative coefficients, both tails. The library
gives the places x near the levels, nothing else. Both integrals are trapezoidal sums; the first row of each df is
computed again with half the steps, and the largest relative difference is printed to stderr. A second argument leaves
out the rows below a df. Needs python3-mpmath.
"""
import ctypes
import random
import sys

from mpmath import mp, mpf

mp.dps = 30
SEED = 20261122
GROUPS = (3, 4, 7, 10, 20, 50, 100)
FREEDOM = (1, 1.3, 2, 3.5, 6, 7.9, 8, 15, 60, 400, 5000, 1e6, float("inf"))
UPPER = (0.3, 0.05, 1e-3, 1e-6, 1e-9, 1e-12)
LOWER = (0.5, 0.1, 1e-3, 1e-6, 1e-9, 1e-12)
LETTERS = {"Tukey": "a", "Hsu": "b", "Dunnett": "c"}


def below(z):
    return mp.erfc(-z / mp.sqrt(2)) / 2


def latent_points(step):
    """(y, weight with the normal density) up to a density of 1e-30."""
    count = int(11.8 / step)
    return [(i * step, step * mp.npdf(i * step)) for i in range(-count, count + 1)]


def conditional(statistic, k, runs, v, latent, side):
    """P(statistic <= v) or, for side 1, P(statistic > v) at a known scale; runs are (coefficient, count)."""
    total = mpf(0)
    for y, weight, fixed in latent:
        if statistic == "Tukey":
            part = (fixed - below(y - mp.sqrt(2) * v)) ** (k - 1)
            total += k * weight * (fixed ** (k - 1) - part if side else part)
            continue
        hit = mpf(1)
        for coefficient, count in runs:
            c = 1 / mp.sqrt(1 - mpf(coefficient) ** 2)
            if statistic == "Hsu":
                one = below(c * (coefficient * y + v))
            else:
                one = below(c * (coefficient * y + v)) - below(c * (coefficient * y - v))
            hit *= one ** count
        total += weight * (1 - hit if side else hit)
    return total


def scale_points(df, step, x):
    """Points s and weights of the density of s = sqrt(chi^2 / df) above exp(-60), dense near s = 1 / x."""
    n = mpf(df)
    constant = mp.log(2) + n / 2 * mp.log(n / 2) - n / 2 - mp.loggamma(n / 2)
    unit = 1 / mp.sqrt(n + 1)
    shift = -mp.log1p(abs(x)) if n <= 20 else mpf(0)
    points = []
    for sign in (1, -1):
        i = 0 if sign > 0 else 1
        while True:
            w = sign * i * step
            t = shift + unit * (mp.sinh(w) if n > 20 else 2 * w + 1 - mp.exp(-2 * w))
            slope = unit * (mp.cosh(w) if n > 20 else 2 + 2 * mp.exp(-2 * w))
            exponent = constant + n * (t - mp.expm1(2 * t) / 2) + mp.log(slope)
            if exponent < -60 and (sign < 0 or t > 0):
                break
            points.append((mp.exp(t), step * mp.exp(exponent)))
            i += 1
    return points


def probability(statistic, k, x, df, runs, side, fine=1):
    latent = [(y, weight, below(y)) for y, weight in latent_points(mpf(1) / (9 * fine))]
    points = [(mpf(1), mpf(1))] if df == float("inf") else scale_points(df, mpf(1) / (20 * fine), x)
    total = mpf(0)
    for s, weight in points:
        v = x * s
        # Far out a conditional probability is 0 or 1 to more digits than are wanted.
        if v > 14:
            total += weight * (0 if side else 1)
        elif v < -14:
            total += weight * side
        else:
            total += weight * conditional(statistic, k, runs, v, latent, side)
    return total


def main(library, first_df="0"):
    shield = ctypes.CDLL(library)
    generator = random.Random(SEED)
    print("# Written by tools/make_refined_direct.py LIBRARY > tests/data/accuracy/refined_direct.tsv")
    print(f"# 30-digit integration with mpmath, seed {SEED}.")
    print("# statistic, k, df, coefficients, side, x, P(X <= x), P(X > x)", flush=True)
    worst = mpf(0)
    for df in FREEDOM:
        cells = [(s, k, "equal") for s in sorted(LETTERS) for k in generator.sample(GROUPS, 1 + (s == "Tukey"))]
        for statistic in ("Hsu", "Dunnett"):
            low = -0.95 if generator.random() < 0.5 else 0.2
            cells.append((statistic, 4, [round(generator.uniform(low, 0.95), 3) for _ in range(4)]))
        for row, (statistic, k, coefficients) in enumerate(cells):
            side = int(generator.random() < 0.6)
            level = generator.choice(UPPER if side else LOWER)
            if df < float(first_df):
                continue
            values = [0.5 ** 0.5] * k if coefficients == "equal" else coefficients
            quantile = shield[f"SafeRefinedMC{LETTERS[statistic]}ICDF"]
            quantile.restype = ctypes.c_double
            x = quantile(ctypes.c_double(level), ctypes.c_int32(k), ctypes.c_double(df), (ctypes.c_double * k)(*values),
                         ctypes.c_int32(side))
            if coefficients == "equal":
                runs, shown = [(1 / mp.sqrt(2), k - 1)], "equal"
            else:
                runs, shown = [(c, 1) for c in coefficients[:k - 1]], ",".join(map(repr, coefficients))
            found = probability(statistic, k, mpf(x), df, runs, side)
            if row == 0:
                again = probability(statistic, k, mpf(x), df, runs, side, 2)
                worst = max(worst, abs(again / found - 1))
                print("half the steps change", mp.nstr(worst, 3), file=sys.stderr, flush=True)
            pair = (1 - found, found) if side else (found, 1 - found)
            print(statistic, k, repr(df), shown, "upper" if side else "lower", x.hex(),
                  *(mp.nstr(p, 20) for p in pair), sep="\t", flush=True)


main(*sys.argv[1:])
