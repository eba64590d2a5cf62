#!/usr/bin/env python3
"""Errors of R's and SciPy's studentised range against the 36-digit reference, by df, as Markdown.

    benchmarks/multiple_comparison/refined_peers.py

The errors of the refined forms on the same rows are printed by multiple_comparison_refined_test.
"""
import subprocess
from pathlib import Path

import numpy as np
from scipy import stats

ROOT = Path(__file__).resolve().parents[2]


def rows():
    for line in (ROOT / "tests/data/accuracy/refined_multiple_comparison.tsv").read_text().splitlines():
        cells = line.split("\t")
        if cells[0] == "Tukey":
            yield int(cells[1]), float(cells[2]), cells[4], float.fromhex(cells[5]) * 2 ** 0.5, *map(float, cells[6:8])


def r_values(cells):
    calls = ",".join(f"ptukey({q!r},{k},{str(df).replace('inf', 'Inf')},lower.tail={'FALSE' if side == 'upper' else 'TRUE'})"
                     for k, df, side, q, _, _ in cells)
    text = subprocess.run(["Rscript", "-e", f"cat(sprintf('%.17g', c({calls})), sep='\\n')"], check=True,
                          capture_output=True, text=True).stdout
    return [float(value) for value in text.split()]


def main():
    cells = list(rows())
    table = {}
    for (k, df, side, q, lower, upper), r in zip(cells, r_values(cells)):
        law = stats.studentized_range(k, df)
        found = law.sf(q) if side == "upper" else law.cdf(q)
        exact = upper if side == "upper" else lower
        row = table.setdefault(df, np.zeros(4))
        errors = (abs(r - exact), abs(r / exact - 1), abs(found - exact), abs(found / exact - 1))
        table[df] = np.fmax(row, errors)
    print("| df | R, absolute | R, relative | SciPy, absolute | SciPy, relative |\n|---|---|---|---|---|")
    for df, row in table.items():
        print(f"| {df:g} | " + " | ".join(f"{error:.1e}" for error in row) + " |")


main()
