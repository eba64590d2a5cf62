#!/usr/bin/env python3
"""The studentised range refined, plain, in R and in SciPy: errors against 36-digit integration and times, as Markdown.

    benchmarks/multiple_comparison/refined_peers.py build/bench/src/libOrvanth.Core.Math.Shield.so

Errors are the largest by df over the Tukey rows of tests/data/accuracy/refined_multiple_comparison.tsv. Times are of
one call for 10 groups at the upper 5 per cent point, the least of several.
"""
import ctypes
import subprocess
import sys
import time
from pathlib import Path

import numpy as np
from scipy import stats

ROOT = Path(__file__).resolve().parents[2]
ROOT_TWO = 2 ** 0.5


def rows():
    for line in (ROOT / "tests/data/accuracy/refined_multiple_comparison.tsv").read_text().splitlines():
        cells = line.split("\t")
        if cells[0] == "Tukey":
            yield int(cells[1]), float(cells[2]), cells[4] == "upper", float.fromhex(cells[5]), *map(float, cells[6:8])


def library_function(shield, name):
    function = shield[name]
    function.restype = ctypes.c_double
    coefficients = (ctypes.c_double * 200)(*[0.5 ** 0.5] * 200)
    return lambda x, k, df, upper: function(ctypes.c_double(x), ctypes.c_int32(k), ctypes.c_double(df), coefficients,
                                            ctypes.c_int32(upper))


def run_r(text):
    done = subprocess.run(["Rscript", "-e", text], check=True, capture_output=True, text=True).stdout
    return [float(value) for value in done.split()]


def r_call(x, k, df, upper):
    return f"ptukey({x * ROOT_TWO!r},{k},{str(df).replace('inf', 'Inf')},lower.tail={'FALSE' if upper else 'TRUE'})"


def scipy_value(x, k, df, upper):
    law = stats.studentized_range(k, df)
    return law.sf(x * ROOT_TWO) if upper else law.cdf(x * ROOT_TWO)


def least(call, repeats):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        call()
        times.append(time.perf_counter() - start)
    return min(times) * 1e6


def errors(cells, refined, plain):
    calls = ",".join(r_call(x, k, df, upper) for k, df, upper, x, _, _ in cells)
    table = {}
    for (k, df, upper, x, below, above), r in zip(cells, run_r(f"cat(sprintf('%.17g', c({calls})), sep='\\n')")):
        exact = above if upper else below
        found = [f(x, k, df, upper) for f in (refined, plain)] + [r, scipy_value(x, k, df, upper)]
        new = [error for value in found for error in (abs(value - exact), abs(value / exact - 1))]
        table[df] = np.fmax(table.get(df, np.full(8, np.nan)), new)  # no value: NaN
    heads = [f"{who}, {what}" for who in ("refined", "plain", "R", "SciPy") for what in ("absolute", "relative")]
    print("| df | " + " | ".join(heads) + " |\n" + "|---" * 9 + "|")
    for df, row in table.items():
        print(f"| {df:g} | " + " | ".join("" if np.isnan(error) else f"{error:.1e}" for error in row) + " |")


def times(refined, plain, quantile):
    print("\n| df | refined, us | plain, us | R, us | SciPy, us |\n|---|---|---|---|---|")
    for df in (1, 2, 5, 10, 100, 999, 1000, 1e7, float("inf")):
        x = quantile(0.05, 10, df, 1)
        r = run_r(f"cat(min(sapply(1:5, function(i) system.time(for (j in 1:300) {r_call(x, 10, df, True)})[3])) / 300 * 1e6)")
        found = [least(lambda: f(x, 10, df, 1), 200) for f in (refined, plain)] + r
        found.append(least(lambda: scipy_value(x, 10, df, True), 5))
        print(f"| {df:g} | " + " | ".join(f"{value:.3g}" for value in found) + " |", flush=True)


def main(library):
    shield = ctypes.CDLL(library)
    refined, plain = (library_function(shield, name) for name in ("SafeRefinedMCaCDF", "SafeMCaCDF"))
    errors(list(rows()), refined, plain)
    times(refined, plain, library_function(shield, "SafeRefinedMCaICDF"))


main(sys.argv[1])
