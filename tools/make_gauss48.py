#!/usr/bin/env python3
"""Writes the 48-point Gauss-Hermite and Gauss-Legendre rules, each value the exact one rounded to
the nearest double: positive nodes in descending order, then their negatives in the same order.

  make_gauss48.py > src/multiple_comparison/gauss48.inc
"""
import mpmath as mp

mp.mp.dps = 60
POINTS = 48


def newton(value_and_slope, start):
    x = mp.mpf(start)
    for _ in range(60):
        value, slope = value_and_slope(x)
        step = value / slope
        x -= step
        if abs(step) < mp.mpf(10) ** -52:
            return x
    raise ArithmeticError("no convergence")


def bracketed(function, low, high):
    """A root in a bracket, then polished by Newton."""
    sign = function(low)[0] > 0
    for _ in range(60):
        middle = (low + high) / 2
        if (function(middle)[0] > 0) == sign:
            low = middle
        else:
            high = middle
    return newton(function, (low + high) / 2)


def positive_roots(function, top):
    """The positive roots in descending order, found by scanning for changes of sign."""
    cells, roots = 1500, []
    before = function(mp.mpf(0))[0]
    for i in range(1, cells + 1):
        x = top * i / cells
        value = function(x)[0]
        if (value > 0) != (before > 0):
            roots.append(bracketed(function, top * (i - 1) / cells, x))
        before = value
    if len(roots) != POINTS // 2:
        raise ArithmeticError(f"{len(roots)} positive roots, not {POINTS // 2}")
    return roots[::-1]


def hermite(x):
    """The orthonormal Hermite polynomial of degree 48 and its slope sqrt(2 * 48) * (that of degree 47)."""
    before, value = mp.mpf(0), mp.pi ** mp.mpf("-0.25")
    for k in range(1, POINTS + 1):
        before, value = value, x * mp.sqrt(mp.mpf(2) / k) * value - mp.sqrt(mp.mpf(k - 1) / k) * before
    return value, mp.sqrt(2 * mp.mpf(POINTS)) * before


def legendre(x):
    before, value = mp.mpf(0), mp.mpf(1)
    for k in range(1, POINTS + 1):
        before, value = value, ((2 * k - 1) * x * value - (k - 1) * before) / k
    return value, POINTS * (before - x * value) / (1 - x * x)


def rule(name, function, top, weight):
    roots = positive_roots(function, mp.mpf(top))
    weights = [weight(x, function(x)[1]) for x in roots]
    yield f"inline constexpr Rule48 {name} = {{"
    for values in (roots + [-x for x in roots], weights + weights):
        yield "    {" + ", ".join(float(v).hex() for v in values[:1]) + ","
        yield from ("     " + float(v).hex() + ("," if i + 2 < POINTS else "},") for i, v in enumerate(values[1:]))
    yield "};"


def main():
    print("// Written by tools/make_gauss48.py > src/multiple_comparison/gauss48.inc; do not edit.")
    print("// clang-format off")
    print("\n".join(rule("GaussHermite48", hermite, 10, lambda x, slope: 2 / slope ** 2)))
    print("\n".join(rule("GaussLegendre48", legendre, 1 - mp.mpf(10) ** -9,
                         lambda x, slope: 2 / ((1 - x * x) * slope ** 2))))
    print("// clang-format on")


if __name__ == "__main__":
    main()
