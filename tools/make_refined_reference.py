#!/usr/bin/env python3
"""Probabilities of the three multiple-comparison statistics by 36-digit integration.

    tools/make_refined_reference.py > tests/data/accuracy/refined_multiple_comparison.tsv

Groups of equal size: every coefficient is 1 / sqrt 2. The conditional probability at a known scale is a
trapezoidal sum of step 1/10 over the latent value, tabulated at steps of 1/20 and interpolated by polynomials of
degree 21. The scale is integrated by a trapezoidal sum in a doubly exponential variable. Both are compared with
the sums of half the step; the largest relative difference is printed to stderr. Needs python3-mpmath.
"""
import random
import sys

from mpmath import mp, mpf

mp.dps = 36
SEED = 20261121
GRID, ORDER = 20, 22                            # table of V = sqrt 2 v in steps of 1/20
FIRST, LAST = -10 * GRID, 16 * GRID
GROUPS = (2, 3, 5, 10, 30, 100)
FREEDOM = (1, 1.5, 2, 3, 5, 10, 30, 120, 999, 1000, 20000, 1e7, float("inf"))
LEVELS = (("lower", 1e-12), ("lower", 1e-6), ("lower", 1e-3), ("lower", 0.1), ("lower", 0.5), ("upper", 0.3),
          ("upper", 0.05), ("upper", 1e-3), ("upper", 1e-6), ("upper", 1e-9), ("upper", 1e-12))


def below(z):
    return mp.erfc(-z / mp.sqrt(2)) / 2


BELOW = {n: below(mpf(n) / (2 * GRID)) for n in range(-2 * (LAST + 13 * GRID), 2 * (LAST + 13 * GRID) + 1)}


def at(n, stride):
    """The conditional probabilities (lower, upper) of every statistic at V = n / 40, step stride / 40 over y."""
    found = {}
    ys = range(-26 * GRID // stride * stride, 26 * GRID + 1, stride)
    weights = [mpf(stride) / (2 * GRID) * mp.npdf(mpf(y) / (2 * GRID)) for y in ys]
    for k in GROUPS:
        m, pairs, one, two = k - 1, [0, 0], [0, 0], [0, 0]
        for w, y in zip(weights, ys):
            left, right = BELOW[y - n], BELOW[-y - n]
            hit = (1 - right) ** m
            one[0] += w * hit
            one[1] += w * (1 - hit)
            if n >= -40:
                whole, part = BELOW[y] ** m, (BELOW[y] - left) ** m
                pairs[0] += k * w * part
                pairs[1] += k * w * (whole - part)
                hit = (1 - left - right) ** m
                two[0] += w * hit
                two[1] += w * (1 - hit)
        found["Tukey", k], found["Hsu", k], found["Dunnett", k] = pairs, one, two
    return found


BARYCENTRIC = [(-1) ** i * mp.binomial(ORDER - 1, i) for i in range(ORDER)]


def conditional(table, statistic, k, side, V):
    """The probability at V; beyond the table, where it is below 1e-20 or above 1 - 1e-20, 0 or 1."""
    place = V * GRID
    first = int(mp.floor(place)) - ORDER // 2 + 1
    if first < FIRST or first + ORDER > LAST:
        return mpf((first + ORDER > LAST) == (side == 0))
    values = table[statistic, k]
    top = bottom = mpf(0)
    for i, w in enumerate(BARYCENTRIC):
        distance = place - (first + i)
        if distance == 0:
            return values[first + i][side]
        factor = w / distance
        top += factor * values[first + i][side]
        bottom += factor
    return top / bottom


def scale_points(df, step, x):
    """Points s and weights of the density of s = sqrt(chi^2 / df) above exp(-75), dense near s = 1 / x."""
    n = mpf(df)
    constant = mp.log(2) + n / 2 * mp.log(n / 2) - n / 2 - mp.loggamma(n / 2)
    unit = 1 / mp.sqrt(n + 1)
    shift = -mp.log1p(abs(mpf(x))) if n <= 20 else mpf(0)
    points = []
    for sign in (1, -1):
        i = 0 if sign > 0 else 1
        while True:
            w = sign * i * step
            t = shift + unit * (mp.sinh(w) if n > 20 else 2 * w + 1 - mp.exp(-2 * w))
            slope = unit * (mp.cosh(w) if n > 20 else 2 + 2 * mp.exp(-2 * w))
            exponent = constant + n * (t - mp.expm1(2 * t) / 2) + mp.log(slope)
            if exponent < -75 and (sign < 0 or t > 0):
                break
            points.append((mp.exp(t), step * mp.exp(exponent)))
            i += 1
    return points


def probability(table, statistic, k, x, df, step, side):
    total = mpf(0)
    points = [(mpf(1), mpf(1))] if df == float("inf") else scale_points(df, step, x)
    for s, weight in points:
        total += weight * conditional(table, statistic, k, side, mp.sqrt(2) * mpf(x) * s)
    return total


def quantile(table, statistic, k, df, side, level):
    """A double near the quantile: bisection until the probability is within 5 per cent of the level."""
    low, high, x_of = (mpf(-32), mpf(32), mp.sinh) if statistic == "Hsu" else (mpf(-32), mpf(32), mp.exp)
    for _ in range(60):
        middle = (low + high) / 2
        p = probability(table, statistic, k, x_of(middle), df, mpf(1) / 4, side)
        if abs(p / mpf(level) - 1) < 0.05:
            break
        if (p < level) == (side == 0):
            low = middle
        else:
            high = middle
    return float(x_of(middle))


def main():
    generator = random.Random(SEED)
    table = {(s, k): {} for s in ("Tukey", "Hsu", "Dunnett") for k in GROUPS}
    for n in range(FIRST, LAST):
        for key, pair in at(2 * n, 4).items():
            table[key][n] = pair
    worst = mpf(0)
    for n in (15, 85, 237, 401):
        for (statistic, k), exact in at(n, 2).items():
            for side in (0, 1):
                if exact[side] > mpf(10) ** -16:
                    found = conditional(table, statistic, k, side, mpf(n) / (2 * GRID))
                    worst = max(worst, abs(found / exact[side] - 1))
    print("conditional probabilities: half the step changes", mp.nstr(worst, 3), file=sys.stderr, flush=True)
    print("# Written by tools/make_refined_reference.py > tests/data/accuracy/refined_multiple_comparison.tsv")
    print(f"# 36-digit integration with mpmath, seed {SEED}, coefficients 1 / sqrt 2.")
    print("# statistic, k, df, coefficients, side, x, P(X <= x), P(X > x)", flush=True)
    worst = mpf(0)
    for df in FREEDOM:
        cells = [(s, k, side, p) for s in ("Tukey", "Hsu", "Dunnett") for k in GROUPS for side, p in LEVELS]
        for row, (statistic, k, name, level) in enumerate(generator.sample(cells, 20)):
            side = int(name == "upper")
            x = quantile(table, statistic, k, df, side, level)
            lower, upper = (probability(table, statistic, k, x, df, mpf(1) / 16, side) for side in (0, 1))
            if row < 2:
                again = probability(table, statistic, k, x, df, mpf(1) / 32, side)
                worst = max(worst, abs(again / (lower, upper)[side] - 1))
            # There the table is too short (it ends at V = -10) or V^(k-1) is no polynomial of degree 21.
            if side == 0 and lower < 1e-5 and (statistic == "Hsu" or k >= 10):
                continue
            print(statistic, k, repr(df), "equal", name, x.hex(), mp.nstr(lower, 22), mp.nstr(upper, 22), sep="\t",
                  flush=True)
    print("studentised probabilities: half the step changes", mp.nstr(worst, 3), file=sys.stderr)


main()
