#!/usr/bin/env python3
"""Writes the coefficient table of the inverse error function: erfinv(x)/x as a function of
w = 1 - |x| on 212 intervals, four in each binade of w from 1 down to 2^-53.

  make_erf_inv_table.py > src/random/erf_inv_table.inc          the whole table, some seconds
  make_erf_inv_table.py --rows 0,3,211                          these rows alone

On interval k the variable is t = m - 1.125, where w = (m + j/4) 2^E with m in [1, 1.25). Each row
interpolates at Chebyshev nodes in 60 digits. Column 0 to 14: the polynomial in t, of which the
constant and the slope are mere tails; column 15 and 16: head of the constant and of the slope,
rounded to 26 bits, so that the product of the slope's head with a short factor is exact.
The fit has degree 12, which leaves 3e-18 relative; columns 13 and 14 are zero.
"""
import sys

import mpmath as mp

mp.mp.dps = 60
ROWS = 212
DEGREE = 12
COLUMNS = 15


def erf_inv(x, w):
    """erfinv(x) for x = 1 - w > 0 by Newton's method on erfc, exact in the tail."""
    y = mp.sqrt(-mp.log(w * (2 - w))) if w < 0.5 else x * mp.sqrt(mp.pi) / 2
    for _ in range(200):
        # Halley's step, cubic.
        f = mp.erfc(y) - w
        step = f / (-2 / mp.sqrt(mp.pi) * mp.exp(-y * y))
        step /= 1 + y * step
        y -= step
        if abs(step) < mp.mpf(10) ** -55 * y:
            return y
    raise ArithmeticError("no convergence")


def interval(k):
    """Lowest mantissa quarter and exponent of w on interval k."""
    bits = 0xFFB - k  # sign and exponent, then the top two bits of the mantissa
    return mp.mpf(bits & 3) / 4, (bits >> 2) - 1023


def function(k, t):
    quarter, exponent = interval(k)
    w = (mp.mpf("1.125") + t + quarter) * mp.mpf(2) ** exponent
    x = 1 - w
    if abs(x) < mp.mpf(10) ** -20:
        return mp.sqrt(mp.pi) / 2
    return erf_inv(x, w) / x


def row(k):
    n = DEGREE + 1
    half = mp.mpf(1) / 8
    angles = [(2 * i + 1) * mp.pi / (2 * n) for i in range(n)]
    values = [function(k, half * mp.cos(a)) for a in angles]
    chebyshev = [2 * mp.fsum(v * mp.cos(j * a) for v, a in zip(values, angles)) / n for j in range(n)]
    chebyshev[0] /= 2
    # To powers of s = t / half by the recurrence of the Chebyshev polynomials.
    before, current = [mp.mpf(1)], [mp.mpf(0), mp.mpf(1)]
    powers = [mp.mpf(0)] * n
    for j in range(n):
        polynomial = before if j == 0 else current
        for i, c in enumerate(polynomial):
            powers[i] += chebyshev[j] * c
        if j > 0:
            following = [mp.mpf(0)] + [2 * c for c in current]
            for i, c in enumerate(before):
                following[i] -= c
            before, current = current, following
    powers = [p / half ** i for i, p in enumerate(powers)] + [mp.mpf(0)] * (COLUMNS - n)
    head, slope = head_of(powers[0]), head_of(powers[1])
    powers[0] -= mp.mpf(head)
    powers[1] -= mp.mpf(slope)
    return [float(p) for p in powers] + [head, slope]


def head_of(value):
    """The nearest number of 26 significant bits."""
    exponent = mp.frexp(value)[1] - 26
    return float(mp.ldexp(mp.nint(mp.ldexp(value, -exponent)), exponent))


def line(k):
    return "    {" + ", ".join("0" if v == 0 else v.hex() for v in row(k)) + "},"


def main(arguments):
    if arguments[:1] == ["--rows"]:
        for k in map(int, arguments[1].split(",")):
            print(line(k))
        return
    print("// Written by tools/make_erf_inv_table.py > src/random/erf_inv_table.inc; do not edit.")
    print("// clang-format off")
    for k in range(ROWS):
        print(line(k), flush=True)
    print("// clang-format on")


if __name__ == "__main__":
    main(sys.argv[1:])
