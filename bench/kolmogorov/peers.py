#!/usr/bin/env python3
"""Times of SciPy's kstwo and of R's ks.test machinery on the grid of kolmogorov_bench, in microseconds."""
import shutil
import subprocess
import time

from scipy.stats import kstwo

PROBABILITIES = (0.01, 0.5, 0.95, 0.999)


def microseconds(call, budget=0.3):
    call()
    runs, start = 0, time.perf_counter()
    while time.perf_counter() - start < budget:
        call()
        runs += 1
    return (time.perf_counter() - start) / runs * 1e6


print("| n | p | SciPy cdf | SciPy quantile |\n|---|---|---|---|")
for n in (10, 100, 1000, 100000, 1000000):
    for p in PROBABILITIES:
        x = kstwo.ppf(p, n)
        print(f"| {n} | {p} | {microseconds(lambda: kstwo.cdf(x, n)):.1f} "
              f"| {microseconds(lambda: kstwo.ppf(p, n)):.1f} |", flush=True)

if shutil.which("Rscript"):
    script = """
    for (n in c(10, 100, 1000)) for (x in c(0.5, 0.83, 1.36, 1.95) / sqrt(n)) {
      f <- function() .Call(stats:::C_pKolmogorov2x, x, n)
      f(); runs <- max(10, min(20000, round(2e5 / n)))
      s <- system.time(for (i in seq_len(runs)) f())[["elapsed"]]
      cat(sprintf("| R | %d | x sqrt(n) = %.2f | %.1f |\\n", n, x * sqrt(n), s / runs * 1e6))
    }"""
    subprocess.run(["Rscript", "-e", script], check=False)
