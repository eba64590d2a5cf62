#!/usr/bin/env python3
"""Probabilities of the three multiple-comparison statistics by 36-digit integration.

    tools/make_refined_reference.py > tests/data/accuracy/refined_multiple_comparison.tsv

Groups of equal size: every coefficient is 1 / sqrt 2. The conditional probability at a known scale is a
trapezoidal sum of step 1/10 over the latent value, tabulated at Chebyshev points and interpolated; the scale is
integrated by a trapezoidal sum in a doubly exponential variable. Both are made again with half the step for
a few points, which must agree to 16 digits. Needs python3-mpmath; runs for some minutes.
"""
import random
import sys

from mpmath import mp, mpf

mp.dps = 36
SEED = 20261121
WIDTH, ORDER = mpf(1) / 2, 22
FIRST, LAST = -20, 32                           # panels of V = sqrt 2 v, from -10 to 16
GROUPS = (2, 3, 5, 10, 30, 100)
FREEDOM = (1, 1.5, 2, 3, 5, 10, 30, 120, 999, 1000, 20000, 1e7, float("inf"))
LEVELS = (("lower", 1e-12), ("lower", 1e-6), ("lower", 1e-3), ("lower", 0.1), ("lower", 0.5), ("upper", 0.3),
          ("upper", 0.05), ("upper", 1e-3), ("upper", 1e-6), ("upper", 1e-9), ("upper", 1e-12))


def below(z):
    return mp.erfc(-z / mp.sqrt(2)) / 2


class Latent:
    """The conditional probabilities (lower, upper) of every statistic at one V."""

    def __init__(self, step):
        self.step = step
        count = int(mpf(13) / step)
        self.y = [i * step for i in range(-count, count + 1)]
        self.weight = [step * mp.npdf(y) for y in self.y]
        self.whole = [below(y) for y in self.y]

    def at(self, V):
        q = [below(y - V) for y in self.y]
        found = {}
        for k in GROUPS:
            m, pairs, one, two = k - 1, [0, 0], [0, 0], [0, 0]
            for w, a, left, right in zip(self.weight, self.whole, q, reversed(q)):
                hit = (1 - right) ** m
                one[0] += w * hit
                one[1] += w * (1 - hit)
                if V < 0:
                    continue
                whole, part = a ** m, (a - left) ** m
                pairs[0] += k * w * part
                pairs[1] += k * w * (whole - part)
                hit = (1 - left - right) ** m
                two[0] += w * hit
                two[1] += w * (1 - hit)
            found["Tukey", k], found["Hsu", k], found["Dunnett", k] = pairs, one, two
        return found


CHEBYSHEV = [mp.cos(mp.pi * (2 * i + 1) / (2 * ORDER)) for i in range(ORDER)]
BARYCENTRIC = [(-1) ** i * mp.sin(mp.pi * (2 * i + 1) / (2 * ORDER)) for i in range(ORDER)]


def tabulate(latent):
    table = {}
    for panel in range(FIRST, LAST):
        print(f"panel {panel}", file=sys.stderr, flush=True)
        columns = [latent.at((panel + (1 + c) / 2) * WIDTH) for c in CHEBYSHEV]
        for key in columns[0]:
            table[(*key, panel)] = [column[key] for column in columns]
    return table


def conditional(table, statistic, k, side, V):
    """The probability at V; beyond the table, where it is below 1e-20 or above 1 - 1e-20, 0 or 1."""
    panel = int(mp.floor(V / WIDTH))
    if panel < FIRST or panel >= LAST:
        return mpf((panel >= LAST) == (side == 0))
    c = (V / WIDTH - panel) * 2 - 1
    top = bottom = mpf(0)
    for node, w, value in zip(CHEBYSHEV, BARYCENTRIC, table[statistic, k, panel]):
        if c == node:
            return value[side]
        factor = w / (c - node)
        top += factor * value[side]
        bottom += factor
    return top / bottom


def scale_points(df, step):
    """Points s and weights of the density of s = sqrt(chi^2 / df), down to where it is below exp(-75)."""
    n = mpf(df)
    constant = mp.log(2) + n / 2 * mp.log(n / 2) - n / 2 - mp.loggamma(n / 2)
    unit = 1 / mp.sqrt(n + 1)
    points = []
    for sign in (1, -1):
        i = 0 if sign > 0 else 1
        while True:
            w = sign * i * step
            t = unit * (mp.sinh(w) if n > 20 else 2 * w + 1 - mp.exp(-2 * w))
            slope = unit * (mp.cosh(w) if n > 20 else 2 + 2 * mp.exp(-2 * w))
            exponent = constant + n * (t - mp.expm1(2 * t) / 2) + mp.log(slope)
            if exponent < -75:
                break
            points.append((mp.exp(t), step * mp.exp(exponent)))
            i += 1
    return points


def probability(table, statistic, k, x, points, side):
    total = mpf(0)
    for s, weight in points:
        total += weight * conditional(table, statistic, k, side, mp.sqrt(2) * mpf(x) * s)
    return total


def quantile(table, statistic, k, points, side, level):
    """A double near the quantile: regula falsi on the logarithm, to 1 per cent of the level."""
    low, high = (mpf(-9), mpf(9)) if statistic == "Hsu" else (mpf(-35), mpf(35))
    x_of = mp.sinh if statistic == "Hsu" else mp.exp
    if statistic == "Hsu":
        low, high = mpf(-32), mpf(32)
    for _ in range(60):
        middle = (low + high) / 2
        p = probability(table, statistic, k, x_of(middle), points, side)
        if abs(p / mpf(level) - 1) < 0.05:
            break
        if (p < level) == (side == 0):
            low = middle
        else:
            high = middle
    return float(x_of(middle))


def main():
    generator = random.Random(SEED)
    table = tabulate(Latent(mpf(1) / 10))
    check = Latent(mpf(1) / 20)
    for V in (mpf("0.37"), mpf("2.11"), mpf("5.9"), mpf("10.3")):
        for (statistic, k), exact in check.at(V).items():
            for side in (0, 1):
                found = conditional(table, statistic, k, side, V)
                if exact[side] > mpf(10) ** -30:
                    print(statistic, k, side, mp.nstr(V, 4), mp.nstr(abs(found / exact[side] - 1), 3), file=sys.stderr)
    print(f"# Written by tools/make_refined_reference.py > tests/data/accuracy/refined_multiple_comparison.tsv")
    print(f"# 36-digit integration with mpmath {__import__('mpmath').__version__}, seed {SEED}, coefficients 1 / sqrt 2.")
    print("# statistic, k, df, coefficients, side, x, P(X <= x), P(X > x)", flush=True)
    for df in FREEDOM:
        coarse = [(mpf(1), mpf(1))] if df == float("inf") else scale_points(df, mpf(1) / 5)
        fine = coarse if df == float("inf") else scale_points(df, mpf(1) / 24)
        cells = [(s, k, side, p) for s in ("Tukey", "Hsu", "Dunnett") for k in GROUPS for side, p in LEVELS]
        for statistic, k, name, level in generator.sample(cells, 30):
            x = quantile(table, statistic, k, coarse, int(name == "upper"), level)
            lower, upper = (probability(table, statistic, k, x, fine, side) for side in (0, 1))
            if abs(lower + upper - 1) > mpf(10) ** -15:
                print("sum", statistic, k, df, x, mp.nstr(lower + upper - 1, 3), file=sys.stderr)
            print(statistic, k, repr(df), "equal", name, x.hex(), mp.nstr(lower, 22), mp.nstr(upper, 22), sep="\t", flush=True)


main()
