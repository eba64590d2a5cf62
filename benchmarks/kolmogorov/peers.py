#!/usr/bin/env python3
"""The grid of kolmogorov_bench beside SciPy's kstwo and the machinery of R's ks.test, in one run.

  peers.py build/bench/benchmarks/kolmogorov/kolmogorov_bench

Processor time in microseconds, so that a busy machine does not decide; the ratio is that of the faster
peer to this library. R has the cumulative probability alone, and is asked up to n = 1000.
"""
import json
import shutil
import subprocess
import sys
import time

from scipy.stats import kstwo

SIZES = (10, 100, 1000, 100000, 1000000)
PROBABILITIES = (0.01, 0.5, 0.95, 0.999)
GRID = [(n, p) for n in SIZES for p in PROBABILITIES]


def own_times(program):
    text = subprocess.run([program, "--benchmark_format=json", "--benchmark_min_time=0.05"],
                          check=True, capture_output=True, text=True).stdout
    unit = {"ns": 1e-3, "us": 1.0, "ms": 1e3}
    return {row["name"]: row["cpu_time"] * unit[row["time_unit"]] for row in json.loads(text)["benchmarks"]}


def processor_time(call, budget=0.15):
    call()
    runs, start = 0, time.process_time()
    while time.process_time() - start < budget:
        call()
        runs += 1
    return (time.process_time() - start) / runs * 1e6


def r_times():
    """P(D <= x) by n and p, or nothing where R is not installed."""
    if not shutil.which("Rscript"):
        return {}
    calls = [(n, p, kstwo.ppf(p, n)) for n, p in GRID if n <= 1000]
    rows = ", ".join(f"c({n}, {p}, {x!r})" for n, p, x in ((n, p, float(x)) for n, p, x in calls))
    script = f"""for (row in list({rows})) {{
      f <- function() .Call(stats:::C_pKolmogorov2x, row[3], row[1])
      f(); runs <- 0; start <- proc.time()[["user.self"]]
      while (proc.time()[["user.self"]] - start < 0.15) {{ for (i in 1:20) f(); runs <- runs + 20 }}
      cat(row[1], row[2], (proc.time()[["user.self"]] - start) / runs * 1e6, "\\n")
    }}"""
    output = subprocess.run(["Rscript", "-e", script], check=False, capture_output=True, text=True).stdout
    return {(int(float(n)), float(p)): float(t) for n, p, t in map(str.split, output.splitlines())}


def shown(figure):
    """Three figures, without an exponent."""
    if figure is None:
        return ""
    return f"{figure:.0f}" if figure >= 100 else f"{figure:.3g}"


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    own, r = own_times(arguments[0]), r_times()
    for title, tail, probability, quantile, second in (
            ("Lower tail: P(D <= x), and the x where it is p", "lower", kstwo.cdf, kstwo.ppf, r),
            ("Upper tail: P(D > x), and the x where it is 1 - p", "upper", kstwo.sf, kstwo.isf, {})):
        print(f"\n{title}\n\n| n | p | P here | SciPy | R | ratio | x here | SciPy | ratio |\n" + "|---" * 9 + "|")
        for n, p in GRID:
            row = f"n:{n}/p:{PROBABILITIES.index(p)}"
            x, argument = kstwo.ppf(p, n), p if tail == "lower" else 1 - p
            tails = [processor_time(lambda: probability(x, n)), second.get((n, p))]
            points = processor_time(lambda: quantile(argument, n))
            here, here_x = own[f"Tail/{tail}/{row}"], own[f"Quantile/{tail}/{row}"]
            ratio = min(t for t in tails if t) / here
            figures = [here, *tails, ratio, here_x, points, points / here_x]
            print(f"| {n} | {p} | " + " | ".join(shown(f) for f in figures) + " |", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
