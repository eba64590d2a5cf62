#!/usr/bin/env python3
"""Tests of orvanth.stats beside SciPy's and beside simulation, one thread, CPU time, as Markdown.

    OPENBLAS_NUM_THREADS=1 benchmarks/stats/peers.py build/bench/python
"""
import sys
import time

import numpy as np

DATA_SETS = 10_000
PEER_SETS = 20          # SciPy's time for one is long and steady
SIMULATED = 4_000_000   # standard error of a p-value near 0.1: 1.5e-4
ERROR = 1e-9            # ours is below it


def seconds(call, repetitions=5):
    """(the least time, result); what an earlier call remembers of its law is forgotten first."""
    from orvanth.stats import _laws
    best = float("inf")
    for _ in range(repetitions):
        _laws._panel.cache_clear()
        before = time.process_time()
        result = call()
        best = min(best, time.process_time() - before)
    return best, result


def row(*cells):
    print("| " + " | ".join(cells) + " |", flush=True)


def tukey(stats, scipy_stats):
    random = np.random.default_rng(1)
    many = random.normal(size=(3, DATA_SETS, 10)) + np.array([0, 0.4, 0.8])[:, None, None]
    here, result = seconds(lambda: stats.tukey_hsd(*many))
    alone, _ = seconds(lambda: [stats.tukey_hsd(*many[:, i]) for i in range(PEER_SETS)])
    there, theirs = seconds(lambda: [scipy_stats.tukey_hsd(*many[:, i]) for i in range(PEER_SETS)], 2)
    error = max(np.abs(result.pvalue[i] - r.pvalue).max() for i, r in enumerate(theirs))
    here, alone, there = here / DATA_SETS * 1e6, alone / PEER_SETS * 1e6, there / PEER_SETS * 1e6
    row(f"`tukey_hsd`, 3 groups of 10, {DATA_SETS:,} data sets in one call", f"{here:.2f}", "SciPy, one after the other",
        f"{there:,.0f}", f"{there / here:,.0f}", f"{error:.1e}", "")
    row("`tukey_hsd`, 3 groups of 10, one data set a call", f"{alone:,.0f}", "SciPy", f"{there:,.0f}",
        f"{there / alone:,.0f}", f"{error:.1e}", "")
    if there / here < 500 or error > 1e-6:
        sys.exit(f"tukey_hsd: {there / here:.0f} times as fast as SciPy, p-values {error:.1e} apart; 500 and 1e-6 are wanted")


def simulated_dunnett(groups, control, random):
    """p-values by simulation of the law: the largest |t| of the comparisons under equal means, SIMULATED times."""
    sizes = np.array([len(g) for g in groups], dtype=float)
    everything, df = [*groups, control], sum(map(len, groups)) + len(control) - len(groups) - 1
    s2 = sum(((np.asarray(g) - np.mean(g)) ** 2).sum() for g in everything) / df
    t = [(np.mean(g) - np.mean(control)) / np.sqrt(s2 * (1 / len(g) + 1 / len(control))) for g in groups]
    beyond = np.zeros(len(groups))
    for _ in range(SIMULATED // 100_000):
        mean = random.normal(size=100_000) / np.sqrt(len(control))
        scale = np.sqrt(random.chisquare(df, 100_000) / df)
        largest = np.zeros(100_000)
        for n in sizes:
            z = (random.normal(size=100_000) / np.sqrt(n) - mean) / np.sqrt(1 / n + 1 / len(control))
            np.maximum(largest, np.abs(z) / scale, out=largest)
        beyond += [(largest > abs(one)).sum() for one in t]
    return beyond / SIMULATED


def dunnett(stats):
    random = np.random.default_rng(2)
    groups = [random.normal(size=n) + m for n, m in ((8, 0.9), (6, 0.5), (9, 1.1), (7, 0.0))]
    control = random.normal(size=12)
    alone, result = seconds(lambda: [stats.dunnett(*groups, control=control) for _ in range(PEER_SETS)])
    alone, result = alone / PEER_SETS * 1e6, result[0]
    there, p = seconds(lambda: simulated_dunnett(groups, control, random), 1)
    error = np.abs(p - result.pvalue).max()
    equal = there * 1e6 / alone * (error / ERROR) ** 2
    row("`dunnett`, 4 groups of unequal size and a control", f"{alone:,.0f}", f"simulation of the law, {SIMULATED:,} times",
        f"{there * 1e6:,.0f}", f"{there * 1e6 / alone:,.0f}", f"{error:.1e}", f"{equal:.0e}")
    if equal < 1000:
        sys.exit(f"dunnett: only {equal:.0f} times as fast as a simulation at equal error; 1000 are wanted")
    many = [random.normal(size=(DATA_SETS, n)) for n in (12, 8, 6, 9, 7)]
    here, _ = seconds(lambda: stats.dunnett(*many[1:], control=many[0]))
    row(f"the same, {DATA_SETS:,} data sets in one call", f"{here / DATA_SETS * 1e6:.2f}", "the simulation, one after the other",
        f"{there * 1e6:,.0f}", f"{there / here * DATA_SETS:,.0f}", "", "")


def others(stats, scipy_stats):
    random = np.random.default_rng(3)
    many = random.normal(size=(2000, 25))
    here, result = seconds(lambda: stats.ks_1samp(many, "normal", (0, 1)))
    there, theirs = seconds(lambda: [scipy_stats.ks_1samp(many[i], scipy_stats.norm.cdf, method="exact").pvalue
                                     for i in range(PEER_SETS)], 3)
    row("`ks_1samp`, 25 observations, 2,000 data sets", f"{here / 2000 * 1e6:.1f}", "SciPy, one after the other",
        f"{there / PEER_SETS * 1e6:,.0f}", f"{there / PEER_SETS / here * 2000:,.0f}",
        f"{np.abs(result.pvalue[:PEER_SETS] - theirs).max():.1e}", "")
    tables = random.integers(1, 40, size=(2000, 2, 2))
    here, result = seconds(lambda: stats.fisher_exact(tables).pvalue)
    there, theirs = seconds(lambda: [scipy_stats.fisher_exact(t)[1] for t in tables[:PEER_SETS]], 3)
    row("`fisher_exact` with the odds ratio, 2,000 tables", f"{here / 2000 * 1e6:.1f}", "SciPy without it, one after the other",
        f"{there / PEER_SETS * 1e6:,.0f}", f"{there / PEER_SETS / here * 2000:,.0f}",
        f"{np.abs(result[:PEER_SETS] - theirs).max():.1e}", "")


def main(package):
    sys.path.insert(0, package)
    import scipy.stats
    from orvanth import stats
    print("Microseconds of CPU time a data set. The ratio is the peer's time over ours. The difference is the largest of the "
          f"p-values; ours are good to {ERROR:g}. The time of a simulation grows with the square of its digits: at equal "
          "error it takes longer by the square of the ratio of errors. Debian's SciPy has no Dunnett test; the simulation "
          "here draws from the law of its statistic.\n")
    print("| test | here | peer | its time | ratio | difference | ratio at equal error |\n|---|---|---|---|---|---|---|")
    tukey(stats, scipy.stats)
    dunnett(stats)
    others(stats, scipy.stats)


if __name__ == "__main__":
    main(sys.argv[1])
