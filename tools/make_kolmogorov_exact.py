#!/usr/bin/env python3
"""Writes the computed columns of tests/data/published/kolmogorov_exact.tsv: both tails of the Kolmogorov statistic.

    tools/make_kolmogorov_exact.py > FILE        all rows; about an hour, nearly all of it for n of 500 and more
    tools/make_kolmogorov_exact.py --compare 50  compares the rows with n up to 50 with the file; seconds

Steck's determinant: with g_i = max(0, i/n - x) and h_i = min(1, (i-1)/n + x), P(D_n <= x) is n! times the determinant
of the matrix with the elements (h_i - g_j)^(j-i+1) / (j-i+1)! where j >= i - 1 and h_i > g_j, and 0 elsewhere. G. P. Steck,
"Rectangle probabilities for uniform order statistics and the probability that the empirical distribution function lies
between two distribution functions", Annals of Mathematical Statistics 42 (1971). Evaluated in integers of fixed point.
"""
import sys
from decimal import ROUND_HALF_EVEN, Decimal, localcontext
from fractions import Fraction
from math import factorial
from pathlib import Path

FILE = Path(__file__).resolve().parents[1] / "tests" / "data" / "published" / "kolmogorov_exact.tsv"


def cumulative(n, x, bits):
    """P(D_n <= x) as an integer in units of 2^-bits; x is a rational number."""
    if 2 * n * x <= 1:
        return 0
    if x >= 1:
        return 1 << bits

    def fixed(value):
        return (value.numerator << bits) // value.denominator

    g = [fixed(max(Fraction(0), Fraction(i, n) - x)) for i in range(1, n + 1)]
    h = [fixed(min(Fraction(1), Fraction(i - 1, n) + x)) for i in range(1, n + 1)]
    powers = {}

    def element(base, m):
        """base^m / m!; far from the edges the base depends on m alone, so the values repeat."""
        key = (base >> 64, m)
        if key not in powers:
            value = 1 << bits
            square, rest = base, m
            while rest:
                if rest & 1:
                    value = value * square >> bits
                square = square * square >> bits
                rest >>= 1
            powers[key] = value // factorials[m]
        return powers[key]

    factorials = [factorial(m) for m in range(n + 1)]
    # The elements below the diagonal are 1, so the determinant comes by one recursion.
    d = [1 << bits]
    for k in range(1, n + 1):
        total = 0
        for i in range(k, 0, -1):
            base = h[i - 1] - g[k - 1]
            if base <= 0:
                break
            term = element(base, k - i + 1) * d[i - 1] >> bits
            total += term if (k - i) % 2 == 0 else -term
        d.append(total)
    return factorials[n] * d[n]


def tails(n, x):
    """P(D_n <= x) and P(D_n > x) to 20 significant digits, proved by a second evaluation with more bits."""
    exact = Fraction(x)
    bits = int(13 * n) + 400 if n < 200 else int(12 * n) + 1000
    values = []
    for precision in (bits, bits * 3 // 2):
        p = Fraction(cumulative(n, exact, precision), 1 << precision)
        values.append((p, 1 - p))
    if abs(values[0][0] - values[1][0]) > Fraction(1, 10**45):
        raise ArithmeticError(f"n = {n}, x = {x}: too few bits")
    return [text(v) for v in values[1]]


def text(value):
    if value == 0:
        return "0"
    with localcontext() as context:
        context.prec = 200
        number = Decimal(value.numerator) / Decimal(value.denominator)
        context.prec, context.rounding = 20, ROUND_HALF_EVEN
        mantissa, exponent = f"{+number:.19e}".split("e")
        return f"{mantissa}e{int(exponent):+d}"


def main(arguments):
    largest = int(arguments[1]) if len(arguments) == 2 and arguments[0] == "--compare" else None
    if arguments and largest is None:
        sys.exit(__doc__)
    compared = 0
    for number, line in enumerate(FILE.read_text().splitlines(), 1):
        if line.startswith("#"):
            made = line
        elif largest is not None and int(line.split("\t")[0]) > largest:
            continue
        else:
            n, x = line.split("\t")[:2]
            made = "\t".join([n, x, *tails(int(n), float(x))])
            compared += 1
        if largest is None:
            print(made, flush=True)
        elif made != line:
            sys.exit(f"{FILE.name}:{number} is\n{line}\nand not what is made:\n{made}")
    if largest is not None:
        print(f"{compared} rows with n up to {largest} are as made")


main(sys.argv[1:])
