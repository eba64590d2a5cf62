"""Counts: exact bounds on proportions, Fisher's exact test, and what a sampling plan lets pass."""
import csv
from fractions import Fraction

import matplotlib.pyplot as plt
import numpy as np
from orvanth import stats

from palette import MID, NAVY, RED

LOWER, UPPER = 0, 1  # BoundSelector
ACCEPT, SAMPLE = 2, 80  # the plan: accept the lot with at most 2 defective items in 80


def bounds(core, successes, trials, level=0.95):
    """The two-sided exact interval: half of what is missing to the level goes to each bound."""
    half = (1 - level) / 2
    return core.BinomialPS(half, successes, trials, LOWER), core.BinomialPS(half, successes, trials, UPPER)


def twins(core, page):
    page.section("Exact bounds for a real count",
                 "Fisher's twins (1935): like-sex twins of convicted criminals, and how many were convicted too. The "
                 "bounds of Clopper and Pearson hold their level for every true proportion, however small the count.")
    with open(page.data("tour/twin_convictions.csv")) as file:
        groups = {row["kind"]: (int(row["convicted"]), int(row["not_convicted"])) for row in csv.DictReader(file)}
    rows = []
    for kind, (convicted, others) in groups.items():
        low, high = bounds(core, convicted, convicted + others)
        rows.append((kind, f"{convicted} of {convicted + others}", convicted / (convicted + others), low, high))
    page.table(("twins", "convicted", "proportion", "lower 95 %", "upper 95 %"), rows)

    convicted, others = groups["dizygotic"]
    drawn = convicted + others
    marked = sum(c for c, _ in groups.values())
    total = sum(sum(group) for group in groups.values())
    page.compare([("twins: P(2 or fewer of the 12 convicted among the 17)",
                   core.HypergeometricCDF(convicted, marked, drawn, total, 0), float(Fraction(619, 1330665))),
                  ("tea: P(exactly 3 of 4 cups right)", core.HypergeometricPDF(3, 4, 4, 8), 16 / 70),
                  ("tea: P(3 or more right)", core.HypergeometricCDF(2, 4, 4, 8, 1), 17 / 70)],
                 "Fisher's exact tests beside the fractions (619/1330665 is the one he gives)", tolerance=1e-13)

    low, high = stats.proportion_ci([c for c, _ in groups.values()], [sum(g) for g in groups.values()])
    few = stats.hypergeom_test(convicted, M=total, n=marked, N=drawn, alternative="less")
    page.compare([(f"{row[0]}: {end} bound", float(value), row[column]) for row, lower, upper in zip(rows, low, high)
                  for end, value, column in (("lower", lower, 3), ("upper", upper, 4))]
                 + [("twins: P(2 or fewer of the 12 convicted among the 17)", float(few.pvalue), 619 / 1330665)],
                 "The same through orvanth.stats", tolerance=1e-12, headers=("orvanth.stats", "exports"))


def lot_acceptance(core, page):
    page.section("What a sampling plan lets pass",
                 f"A lot is accepted if a sample of {SAMPLE} holds at most {ACCEPT} defective items. How good is an "
                 "accepted lot? For a long running process the binomial distribution answers, and the quality that "
                 "passes with a given probability is an exact upper bound. For one lot the sample is drawn without "
                 "replacement, and the hypergeometric distribution answers.")
    published = ((0.95, 1.03), (0.50, 3.33), (0.10, 6.52))
    page.compare([(f"% defective accepted with probability {p}", 100 * core.BinomialPS(p, ACCEPT, SAMPLE, UPPER), q)
                  for p, q in published],
                 "Operating characteristic, beside the three digits of the tables of MIL-STD-105 (letter J, AQL 1 %)",
                 tolerance=5e-3)

    figure, (left, right) = plt.subplots(1, 2)
    percent = np.linspace(0, 10, 101)
    left.plot(percent, [core.BinomialCDF(ACCEPT, SAMPLE, p / 100, 0) for p in percent], color=NAVY,
              label="process (binomial)")
    for lot, colour in ((1000, MID), (200, RED)):
        defective = np.arange(0, lot // 10 + 1)
        accepted = [core.HypergeometricCDF(min(ACCEPT, d), d, SAMPLE, lot, 0) for d in defective.tolist()]
        left.plot(100 * defective / lot, accepted, color=colour, label=f"lot of {lot}")
    left.set_xlabel("% defective")
    left.set_ylabel("P(accepted)")
    left.legend()

    # How often the exact interval holds the true proportion: never less than it promises.
    trials = 30
    intervals = [bounds(core, k, trials) for k in range(trials + 1)]
    truth = np.linspace(0.005, 0.995, 397)
    coverage = [sum(core.BinomialPDF(k, trials, p) for k, (low, high) in enumerate(intervals) if low <= p <= high)
                for p in truth.tolist()]
    right.plot(truth, coverage, color=NAVY, linewidth=1)
    right.axhline(0.95, color=RED)
    right.set_xlabel(f"true proportion, {trials} trials")
    right.set_ylabel("coverage of the exact 95 % interval")
    page.figure(figure, "Left: a small lot is judged more sharply than a process. Right: the exact interval keeps its "
                        "level everywhere.")
    worst = min(coverage)
    page.holds(f"the exact 95 % interval covers every true proportion at least that often; the least is {worst:.4f}",
               worst >= 0.95)

    risk = core.HypergeometricCDF(ACCEPT, 60, SAMPLE, 1000, 0)
    page.text(f"A lot of 1000 with 60 defective items passes with probability {risk:.4f}. In a sample of {SAMPLE} from "
              f"it the median count is {core.HypergeometricICDF(0.5, 60, SAMPLE, 1000, 0):.0f}, and 99 of 100 samples "
              f"hold at most {core.HypergeometricICDF(0.99, 60, SAMPLE, 1000, 0):.0f}; for a process with 6 % defective "
              f"items these are {core.BinomialICDF(0.5, SAMPLE, 0.06, 0, 1):.0f} and "
              f"{core.BinomialICDF(0.99, SAMPLE, 0.06, 0, 1):.0f}.")


def run(core, page):
    twins(core, page)
    lot_acceptance(core, page)
