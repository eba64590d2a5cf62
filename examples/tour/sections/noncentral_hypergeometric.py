"""Exact analysis of two classic 2 x 2 tables."""
import csv

import matplotlib.pyplot as plt
import mpmath
import numpy as np
from orvanth import stats

from palette import BLUE, PALE, RED, SOFT

ACCURACY = 1e-14


def bracketed_root(function, low, high):
    """A zero between low and high, by mpmath's bracketing solver."""
    return float(mpmath.findroot(lambda t: mpmath.mpf(function(float(t))), (low, high), solver="anderson",
                                 tol=1e-20, maxsteps=200, verify=False))


def tables(page):
    """x, n, m, N of each table: the count, the margins and the total."""
    with open(page.data("tour/tea_tasting.csv")) as file:
        tea = [[int(v) for v in row[1:]] for row in list(csv.reader(file))[1:]]
    with open(page.data("tour/twin_convictions.csv")) as file:
        twins = [[int(v) for v in row[1:]] for row in list(csv.reader(file))[1:]]
    for (a, b), (c, d) in (tea, twins):
        yield a, a + b, a + c, a + b + c + d


def two_sided_p(core, x, n, m, N):
    support = range(max(0, n + m - N), min(n, m) + 1)
    p = {k: core.HypergeometricPDF(k, m, n, N) for k in support}
    return sum(v for v in p.values() if v <= p[x] * (1 + 1e-7))


def interval(core, x, n, m, N, level=0.95):
    """The odds ratios at which each tail of the count is half of what is left out."""
    half = (1 - level) / 2
    upper_tail = lambda log_odds: core.FNCHypergeometricCDF(x - 1, n, m, N, np.exp(log_odds), 1, ACCURACY) - half
    lower_tail = lambda log_odds: core.FNCHypergeometricCDF(x, n, m, N, np.exp(log_odds), 0, ACCURACY) - half
    return tuple(float(np.exp(bracketed_root(tail, -12, 12))) for tail in (upper_tail, lower_tail))


def likeliest_odds(core, x, n, m, N):
    """The conditional estimate: the odds whose mean is the count seen."""
    mean, variance = np.zeros(1), np.zeros(1)

    def excess(log_odds):
        core.FNCHypergeometricMoments(n, m, N, np.exp(log_odds), mean, variance)
        return mean[0] - x
    return float(np.exp(bracketed_root(excess, -12, 12)))


def analyse(core, page, name, table, published):
    x, n, m, N = table
    low, high = interval(core, *table)
    page.compare([("two-sided exact p", two_sided_p(core, *table), published["p"]),
                  ("conditional odds ratio", likeliest_odds(core, *table), published["odds"]),
                  ("95 % interval from", low, published["low"]), ("95 % interval to", high, published["high"])],
                 f"{name}: [{x} {n - x}; {m - x} {N - n - m + x}]", tolerance=2e-6)
    return low, high


def run(core, page):
    page.section("Exact odds ratios: the lady tasting tea, and convicted twins",
                 "Fisher's two tables. The exact interval of the odds ratio consists of all odds at which neither "
                 "tail of the noncentral hypergeometric distribution falls below 2.5 %; a root search over the "
                 "exported distribution finds its ends.")
    tea, twins = tables(page)
    analyse(core, page, "Tea tasting", tea,
            {"p": 34 / 70, "odds": 6.4083196582, "low": 0.211735595447, "high": 626.243530589})
    low, high = analyse(core, page, "Convictions of twins", twins,
                        {"p": 0.0005367241, "odds": 0.0469366390497, "low": 0.00331716395066,
                         "high": 0.363189602357})

    result = stats.fisher_exact([[2, 15], [10, 3]])
    ends = result.confidence_interval(0.95)
    page.compare([("two-sided exact p", float(result.pvalue), 0.0005367241),
                  ("conditional odds ratio", float(result.statistic), 0.0469366390497),
                  ("95 % interval from", float(ends.low), 0.00331716395066),
                  ("95 % interval to", float(ends.high), 0.363189602357)],
                 "Convictions of twins through orvanth.stats", tolerance=1e-7)

    x, n, m, N = twins
    odds = np.geomspace(1e-3, 2, 200)
    figure, axes = plt.subplots()
    axes.loglog(odds, [core.FNCHypergeometricCDF(x, n, m, N, w, 0, ACCURACY) for w in odds],
                color=BLUE, label=f"P(X ≤ {x})")
    axes.loglog(odds, [core.FNCHypergeometricCDF(x - 1, n, m, N, w, 1, ACCURACY) for w in odds],
                color=RED, label=f"P(X ≥ {x})")
    axes.axhline(0.025, color=SOFT, linestyle=":")
    axes.axvspan(low, high, color=PALE, label="exact 95 % interval")
    axes.set_ylim(1e-6, 2)
    axes.set_xlabel("odds ratio")
    axes.set_ylabel("tail probability")
    axes.legend()
    page.figure(figure, "Twins: both tails of the count of convicted dizygotic twins against the odds ratio.")
