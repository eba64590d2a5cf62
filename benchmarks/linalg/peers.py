#!/usr/bin/env python3
"""Least squares by OLS and LS, by R's lm.fit and by NumPy's lstsq, one thread each, in microseconds of CPU time.

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

SIZES = ((100, 5), (200, 40), (1000, 20), (20000, 60), (100000, 20), (2000, 500))


def microseconds(calls, repeats, budget=4.0):
    """The least CPU time of each call, over batches of `repeats`: one call may be shorter than a tick of the clock.
    They take turns, so that a busy machine slows all of them alike."""
    best = [float("inf")] * len(calls)
    for call in calls:
        call()
    start = time.perf_counter()
    while time.perf_counter() - start < budget:
        for i, call in enumerate(calls):
            before = time.process_time()
            for _ in range(repeats):
                call()
            best[i] = min(best[i], (time.process_time() - before) / repeats)
    return [seconds * 1e6 for seconds in best]


def lm_fit(m, n):
    if not shutil.which("Rscript"):
        return float("nan")
    script = f"""set.seed(1); x <- matrix(runif({m * n}), {m}); y <- runif({m}); best <- Inf
    for (batch in 1:7) {{ runs <- {max(1, 2000000 // (m * n))}
      s <- system.time(for (i in seq_len(runs)) lm.fit(x, y))[["user.self"]] / runs; best <- min(best, s) }}
    cat(best * 1e6)"""
    return float(subprocess.run(["Rscript", "-e", script], capture_output=True, text=True, check=True).stdout)


def main(library):
    core = Core(library)
    random = np.random.default_rng(1)
    print("| design | OLS | LS | R lm.fit | NumPy lstsq | OLS / LS | OLS / NumPy |\n|---|---|---|---|---|---|---|")
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

        here, blocked, numpy = microseconds([ols, ls, lambda: np.linalg.lstsq(design, response, rcond=None)],
                                            max(1, 2000000 // (m * n)))
        row = [here, blocked, lm_fit(m, n), numpy, here / blocked, here / numpy]
        print(f"| {m} x {n} | " + " | ".join(f"{value:,.0f}" for value in row[:4]) +
              f" | {row[4]:.2f} | {row[5]:.2f} |", flush=True)


if __name__ == "__main__":
    main(sys.argv[1])
