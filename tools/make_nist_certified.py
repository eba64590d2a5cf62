#!/usr/bin/env python3
"""Writes tests/data/nist/certified.tsv from the .dat files beside it: the certified values as printed, and the same
quantities by exact rational arithmetic on the decimal data, rounded once to a double.

    tools/make_nist_certified.py > tests/data/nist/certified.tsv
"""
import re
from decimal import Decimal, getcontext
from fractions import Fraction
from pathlib import Path

FOLDER = Path(__file__).resolve().parents[1] / "tests" / "data" / "nist"
LINEAR = ("Norris", "Pontius", "NoInt1", "NoInt2", "Filip", "Longley", "Wampler1", "Wampler2", "Wampler3", "Wampler4",
          "Wampler5")
ANOVA = ("SiRstvt", "AtmWtAgt", "SmLs01t", "SmLs04t", "SmLs07t")
DEGREE = {"Norris": 1, "Pontius": 2, "Filip": 10} | {f"Wampler{i}": 5 for i in range(1, 6)}
NUMBER = r"[-+]?\d[\d.]*(?:E[-+]?\d+)?|[-+]?\.\d+"
getcontext().prec = 60


def lines(path):
    """The lines of the certified values and of the data, as the head of the file gives them."""
    text = path.read_text(errors="replace").splitlines()
    spans = [re.search(rf"{what} *\(lines +(\d+) to +(\d+)\)", "\n".join(text[:12])) for what in
             ("Certified Values", "Data")]
    return [text[int(s[1]) - 1:int(s[2])] for s in spans]


def root(value):
    """The square root of a rational number in 60 digits."""
    return Fraction((Decimal(value.numerator) / Decimal(value.denominator)).sqrt())


def inverse(matrix):
    """Gauss-Jordan elimination in rational numbers."""
    n = len(matrix)
    rows = [list(r) + [Fraction(int(i == j)) for j in range(n)] for i, r in enumerate(matrix)]
    for i in range(n):
        pivot = next(k for k in range(i, n) if rows[k][i] != 0)
        rows[i], rows[pivot] = rows[pivot], rows[i]
        rows[i] = [v / rows[i][i] for v in rows[i]]
        for k in range(n):
            if k != i and rows[k][i] != 0:
                rows[k] = [a - rows[k][i] * b for a, b in zip(rows[k], rows[i])]
    return [r[n:] for r in rows]


def linear(name):
    """[(quantity, printed, exact)] of a regression."""
    certified, data = lines(FOLDER / "linear" / f"{name}.dat")
    rows = [[Fraction(Decimal(v)) for v in line.split()] for line in data if line.strip()]
    y = [r[0] for r in rows]
    constant = not name.startswith("NoInt")
    if name in DEGREE:
        x = [[r[1] ** k for k in range(DEGREE[name] + 1)] for r in rows]
    else:
        x = [([Fraction(1)] if constant else []) + r[1:] for r in rows]
    first = 0 if constant else 1
    n, p = len(x), len(x[0])
    solver = inverse([[sum(r[i] * r[j] for r in x) for j in range(p)] for i in range(p)])
    xy = [sum(r[i] * v for r, v in zip(x, y)) for i in range(p)]
    b = [sum(solver[i][j] * xy[j] for j in range(p)) for i in range(p)]
    residual = sum((v - sum(c * w for c, w in zip(b, r))) ** 2 for r, v in zip(x, y))
    middle = sum(y) / n if constant else Fraction(0)
    regression = sum((v - middle) ** 2 for v in y) - residual
    df, rest = p - int(constant), n - p
    printed = [re.findall(NUMBER, re.sub(r"^\s*B\d+", "", line)) for line in certified if re.match(r"\s*B\d+ ", line)]
    table = {key: re.findall(NUMBER, line) for line in certified for key in ("Regression", "Residual")
             if re.match(rf"{key} +\d", line)}
    single = {key: re.search(rf"{key} +({NUMBER})", "\n".join(certified))[1]
              for key in ("Standard Deviation", "R-Squared")}
    found = []
    for k, (value, deviation) in enumerate(printed):
        found += [(f"B{k + first}", value, b[k]),
                  (f"B{k + first}_sd", deviation, root(solver[k][k] * residual / rest))]
    f = regression / df / (residual / rest) if residual else None
    return found + [
        ("residual_sd", single["Standard Deviation"], root(residual / rest)),
        ("r_squared", single["R-Squared"], regression / (regression + residual)),
        ("regression_df", table["Regression"][0], Fraction(df)),
        ("regression_ss", table["Regression"][1], regression),
        ("regression_ms", table["Regression"][2], regression / df),
        ("f_statistic", table["Regression"][3] if len(table["Regression"]) > 3 else "Infinity", f),
        ("residual_df", table["Residual"][0], Fraction(rest)),
        ("residual_ss", table["Residual"][1], residual),
        ("residual_ms", table["Residual"][2], residual / rest)]


def anova(name):
    """[(quantity, printed, exact)] of a one-way analysis of variance; a column of the data is a group."""
    certified, data = lines(FOLDER / "anova" / f"{name}.dat")
    groups = list(zip(*[[Fraction(Decimal(v)) for v in line.split()] for line in data]))
    n, k = sum(map(len, groups)), len(groups)
    total = sum(map(sum, groups)) / n
    between = sum(len(g) * (sum(g) / len(g) - total) ** 2 for g in groups)
    within = sum((v - sum(g) / len(g)) ** 2 for g in groups for v in g)
    rows = [re.findall(NUMBER, line) for line in certified if re.match(r"(Between|Within) ", line)]
    text = "\n".join(certified)
    return [("between_df", rows[0][0], Fraction(k - 1)), ("between_ss", rows[0][1], between),
            ("between_ms", rows[0][2], between / (k - 1)),
            ("f_statistic", rows[0][3], between / (k - 1) / (within / (n - k))),
            ("within_df", rows[1][0], Fraction(n - k)), ("within_ss", rows[1][1], within),
            ("within_ms", rows[1][2], within / (n - k)),
            ("r_squared", re.search(rf"R-Squared +({NUMBER})", text)[1], between / (between + within)),
            ("residual_sd", re.search(rf"Standard Deviation +({NUMBER})", text)[1], root(within / (n - k)))]


def main():
    print("# dataset\tquantity\tcertified value as printed in the .dat file\t"
          "exact value: rational arithmetic on the .dat data, rounded to double")
    for names, kind in ((LINEAR, linear), (ANOVA, anova)):
        for name in names:
            for quantity, printed, exact in kind(name):
                print(name, quantity, printed, "inf" if exact is None else f"{float(exact):.17g}", sep="\t")


main()
