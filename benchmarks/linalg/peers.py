#!/usr/bin/env python3
"""Least squares by OLS and LS, by R's lm.fit and by NumPy's lstsq, one thread each, in microseconds.

  OPENBLAS_NUM_THREADS=1 benchmarks/linalg/peers.py LIBRARY
"""
import shutil
import subprocess
import sys
import time
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from host import Core  # noqa: E402

SIZES = ((100, 5), (1000, 20), (100000, 20), (2000, 500))


def microseconds(call, budget=1.0):
    call()
    best, start = float("inf"), time.perf_counter()
    while time.perf_counter() - start < budget:
        before = time.perf_counter()
        call()
        best = min(best, time.perf_counter() - before)
    return best * 1e6


def lm_fit(m, n):
    if not shutil.which("Rscript"):
        return float("nan")
    script = f"""set.seed(1); x <- matrix(runif({m * n}), {m}); y <- runif({m}); best <- Inf
    for (batch in 1:7) {{ runs <- {max(1, 2000000 // (m * n))}
      s <- system.time(for (i in seq_len(runs)) lm.fit(x, y))[["elapsed"]] / runs; best <- min(best, s) }}
    cat(best * 1e6)"""
    return float(subprocess.run(["Rscript", "-e", script], capture_output=True, text=True, check=True).stdout)


def main(library):
    core = Core(library)
    random = np.random.default_rng(1)
    print("| design | OLS | LS | R lm.fit | NumPy lstsq |\n|---|---|---|---|---|")
    for m, n in SIZES:
        design, response = np.asfortranarray(random.random((m, n))), random.random(m)
        a, view = core.matrix(design)
        b, column = core.matrix(response)
        x, coefficients = core.matrix(np.zeros(n))
        tau = np.zeros(n)

        def ols():
            np.copyto(a, design)
            np.copyto(b[:, 0], response)
            assert core.OLS(a, view, b, column, x, coefficients, tau, 1e-7) == 0

        def ls():
            np.copyto(a, design)
            np.copyto(b[:, 0], response)
            assert core.LS(a, view, b, column) == 0

        row = [microseconds(ols), microseconds(ls), lm_fit(m, n),
               microseconds(lambda: np.linalg.lstsq(design, response, rcond=None))]
        print(f"| {m} x {n} | " + " | ".join(f"{value:,.0f}" for value in row) + " |", flush=True)


if __name__ == "__main__":
    main(sys.argv[1])
