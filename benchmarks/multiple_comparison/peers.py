#!/usr/bin/env python3
"""Errors of the studentised range against the exact integral, and SciPy's times, as Markdown.

    benchmarks/multiple_comparison/peers.py build/bench/src/libOrvanth.Core.Math.so

The exact integral is a composite Gauss-Legendre rule of thousands of points in both directions, good to 1e-13.
"""
import subprocess
import sys
import time
from pathlib import Path

import numpy as np
from scipy import special, stats
from scipy.optimize import brentq

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from host import Core  # noqa: E402

GROUPS, FREEDOM, LEVELS = (3, 5, 10, 20), (2, 3, 5, 10, 30, 120, 1000), (0.5, 0.9, 0.95, 0.99)


def composite(low, high, panels, order=20):
    nodes, weights = np.polynomial.legendre.leggauss(order)
    edges = np.linspace(low, high, panels + 1)
    half = np.diff(edges)[:, None] / 2
    return (edges[:-1, None] + half * (nodes + 1)).ravel(), (half * weights).ravel()


LATENT, LATENT_WEIGHTS = composite(-9, 9, 40)
LATENT_WEIGHTS = LATENT_WEIGHTS * np.exp(-LATENT ** 2 / 2) / np.sqrt(2 * np.pi)


def scale_rule(df):
    """Points s and weights of the density of s = sqrt(chi^2 / df)."""
    s, w = composite(max(0, 1 - 9 / np.sqrt(df)), 1 + 9 / np.sqrt(df), 60)
    logarithm = np.log(2) + df / 2 * np.log(df / 2) - special.gammaln(df / 2) + (df - 1) * np.log(s) - df * s ** 2 / 2
    return s, w * np.exp(logarithm)


def exact_cdf(q, k, rule):
    s, w = rule
    inner = special.ndtr(LATENT) - special.ndtr(LATENT - q * s[:, None])
    return float(w @ (k * (inner ** (k - 1) @ LATENT_WEIGHTS)))


def rmath(expressions):
    text = "cat(sprintf('%.17g', c(" + ",".join(expressions) + ")), sep='\\n')"
    return np.array(subprocess.run(["Rscript", "-e", text], check=True, capture_output=True, text=True)
                    .stdout.split(), dtype=float)


def microseconds(call, repeats=5):
    call()
    best = np.inf
    for _ in range(repeats):
        start = time.perf_counter()
        call()
        best = min(best, time.perf_counter() - start)
    return best * 1e6


def main():
    if len(sys.argv) != 2:
        sys.exit("peers.py: give the path of the built library, as in the heading of this file")
    core = Core(sys.argv[1])
    scale = np.array([np.sqrt(0.5)])
    root_two = np.sqrt(2.0)
    cells = []
    for df in FREEDOM:
        rule = scale_rule(df)
        for k in GROUPS:
            for p in LEVELS:
                q = brentq(lambda q: exact_cdf(q, k, rule) - p, 0.05, 400, xtol=1e-12, rtol=1e-14)
                cells.append((df, k, p, q, exact_cdf(q, k, rule)))
        print(f"df = {df}: exact values made", file=sys.stderr)
    r_cdf = rmath([f"ptukey({q!r},{k},{df})" for df, k, _, q, _ in cells])
    r_quantile = rmath([f"qtukey({p!r},{k},{df})" for df, k, p, _, _ in cells])
    errors = {}
    for (df, k, p, q, exact), rp, rq in zip(cells, r_cdf, r_quantile):
        slot = errors.setdefault(df, np.zeros(6))
        lam = np.full(k, scale[0])
        found = (abs(core.MCaCDF(q / root_two, k, df, lam, 0) - exact), abs(rp - exact),
                 abs(stats.studentized_range.cdf(q, k, df) - exact),
                 abs(root_two * core.MCaICDF(p, k, df, lam, 0) / q - 1), abs(rq / q - 1),
                 abs(stats.studentized_range.ppf(p, k, df) / q - 1))
        errors[df] = np.fmax(slot, found)
    print("Largest error over k = 3, 5, 10, 20 and p = 0.5, 0.9, 0.95, 0.99:\n")
    print("| df | CDF here | Rmath | SciPy | quantile (relative) here | Rmath | SciPy |\n|---|---|---|---|---|---|---|")
    for df, row in errors.items():
        print(f"| {df} | " + " | ".join(f"{e:.1e}" for e in row) + " |")
    lam = np.full(3, scale[0])
    print("\nTimes, microseconds, k = 3, df = 10:\n\n| call | here, through ctypes | SciPy | ratio |\n|---|---|---|---|")
    for label, ours, theirs in (
            ("CDF at q = 3.5", lambda: core.MCaCDF(3.5 / root_two, 3, 10, lam, 0),
             lambda: stats.studentized_range.cdf(3.5, 3, 10)),
            ("quantile at 0.95", lambda: core.MCaICDF(0.95, 3, 10, lam, 0),
             lambda: stats.studentized_range.ppf(0.95, 3, 10))):
        here, there = microseconds(ours), microseconds(theirs)
        print(f"| {label} | {here:.0f} | {there:.0f} | {there / here:.0f} |")


main()
