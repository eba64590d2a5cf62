"""All pairs, comparison with a control, comparison with the best: two classic experiments."""
import csv
import itertools
import math

import matplotlib.pyplot as plt
import numpy as np

from palette import BLUE, GREY, INK, RED, SOFT


class OneWay:
    """Group means, pooled variance and its degrees of freedom."""

    def __init__(self, path):
        with open(path) as file:
            rows = list(csv.reader(file))[1:]
        self.names = list(dict.fromkeys(name for name, _ in rows))
        groups = [np.array([float(v) for name, v in rows if name == wanted]) for wanted in self.names]
        self.sizes = [g.size for g in groups]
        self.means = [float(g.mean()) for g in groups]
        self.groups = groups
        self.df = sum(self.sizes) - len(groups)
        self.variance = sum(float(((g - g.mean()) ** 2).sum()) for g in groups) / self.df

    def error(self, i, j):
        return math.sqrt(self.variance * (1 / self.sizes[i] + 1 / self.sizes[j]))

    def t(self, i, j):
        return (self.means[i] - self.means[j]) / self.error(i, j)


def lambda_against(data, control):
    """One coefficient for each group compared with `control`, and a last one that is not read."""
    return np.array([math.sqrt(n / (n + data.sizes[control])) for i, n in enumerate(data.sizes) if i != control] + [0.0])


def blood_figure(core, blood, against):
    """The counts, and how far each drug is from the control: simultaneous intervals, red where 0 is outside."""
    figure, (left, right) = plt.subplots(1, 2)
    for i, values in enumerate(blood.groups):
        left.plot(values, i + np.linspace(-0.12, 0.12, values.size), "o", color=GREY)
        left.plot([values.mean()] * 2, (i - 0.3, i + 0.3), color=INK)
    left.set_yticks(range(3), ("control", "drug 1", "drug 2"))
    left.set_xlabel("blood count")
    point = core.MCcICDF(0.05, 3, blood.df, against, 1)
    for i in (1, 2):
        difference, half = blood.means[i] - blood.means[0], point * blood.error(i, 0)
        colour = RED if abs(difference) > half else BLUE
        right.errorbar(difference, i, xerr=half, fmt="o", capsize=6, color=colour)
        p = core.MCcCDF(abs(blood.t(i, 0)), 3, blood.df, against, 1)
        right.annotate(f"p = {p:.4f}", (difference + half, i), (0, 8), textcoords="offset points", ha="right",
                       color=colour)
    right.axvline(0, color=SOFT, linestyle=":")
    right.set_yticks((1, 2), ("drug 1", "drug 2"))
    right.set_ylim(left.get_ylim())
    right.set_xlabel("drug − control, simultaneous 95 %")
    return figure


def in_the_package(page, plants, blood):
    """The same three questions to the Python package."""
    from orvanth import stats  # the picture of README.md is drawn without it

    weights = dict(zip(plants.names, plants.groups))
    pairs = stats.tukey_hsd(weights)
    best = stats.hsu_mcb(weights).confidence_interval(0.95)
    counts = dict(zip(blood.names, blood.groups))
    two = stats.dunnett(counts, control="control")
    one = stats.dunnett(counts, control="control", alternative="greater")
    page.compare([("trt2 − trt1: p", pairs.pvalue[2, 1], 0.012006423979),
                  ("trt2 − trt1: from", pairs.confidence_interval(0.95).low[2, 1], 0.1737839),
                  ("trt1 − best other, from", best.low[1], -1.4218439060),
                  ("trt1 − best other, to", best.high[1], 0.0),
                  ("drug_b: two-sided p", two.pvalue[1], 0.0058253608),
                  ("drug_b: one-sided p", one.pvalue[1], 0.0029138830)],
                 "Through orvanth.stats, whose laws are the refined forms: one call for each question", tolerance=1e-6)


def run(core, page):
    page.section("Multiple comparisons: plant growth and blood counts",
                 "Three simultaneous questions to one experiment: which groups differ at all, which differ from the "
                 "control, and which may be the best? Every p-value and interval holds for all of its family at once.")
    plants = OneWay(page.data("tour/plant_growth.csv"))
    k = len(plants.names)
    equal = np.full(k, 1 / math.sqrt(2))
    control = plants.names.index("ctrl")

    # All pairs.
    point = core.MCaICDF(0.05, k, plants.df, equal, 1)
    page.compare([("95 % point of the studentised range", point * math.sqrt(2), 3.506426123354)], tolerance=1e-6)
    published = {("ctrl", "trt1"): 0.390871144202, ("ctrl", "trt2"): 0.197995991300, ("trt1", "trt2"): 0.012006423979}
    lines, pairs, compared = [], [], []
    for i, j in itertools.combinations(range(k), 2):
        difference, half = plants.means[j] - plants.means[i], point * plants.error(i, j)
        p = core.MCaCDF(abs(plants.t(i, j)), k, plants.df, equal, 1)
        name = f"{plants.names[j]} − {plants.names[i]}"
        pairs.append((name, difference, half))
        lines.append((name, difference, difference - half, difference + half, p))
        compared.append((f"adjusted p of {name}", p, published[plants.names[i], plants.names[j]]))
    page.table(("all pairs", "difference", "from", "to", "adjusted p"), lines, "Plant growth: all pairwise comparisons")
    page.compare(compared, tolerance=1e-5)

    # Against the control, two-sided.
    two_sided = core.MCcICDF(0.05, k, plants.df, equal, 1)
    rows = [("two-sided 95 % point", two_sided, 2.3334115469),
            ("one-sided 95 % point", core.MCbICDF(0.05, k, plants.df, equal, 1), 1.9974198054)]
    for name, p in (("trt1", 0.3226956858), ("trt2", 0.1534858615)):
        t = abs(plants.t(plants.names.index(name), control))
        rows.append((f"adjusted p of {name}", core.MCcCDF(t, k, plants.df, equal, 1), p))
    page.compare(rows, "Plant growth: both treatments against the control", tolerance=1e-5)

    # With the best: an interval that reaches 0 from below excludes a group from being the best.
    best = core.MCbICDF(0.05, k, plants.df, equal, 1)
    bounds = {"ctrl": (-1.0508439060, 0.0628439060), "trt1": (-1.4218439060, 0.0), "trt2": (-0.0628439060, 1.0508439060)}
    rows, with_best = [], []
    for i, name in enumerate(plants.names):
        rival = max((j for j in range(k) if j != i), key=lambda j: plants.means[j])
        difference, half = plants.means[i] - plants.means[rival], best * plants.error(i, rival)
        low, high = min(difference - half, 0.0), max(difference + half, 0.0)
        with_best.append((name, difference, low, high))
        rows += [(f"{name} − best other, from", low, bounds[name][0]), (f"{name} − best other, to", high, bounds[name][1])]
    page.compare(rows, "Plant growth: comparison with the best", tolerance=1e-5)

    # Unequal groups: the coefficients follow from the group sizes.
    blood = OneWay(page.data("tour/blood_count.csv"))
    against = lambda_against(blood, 0)
    rows = [("lambda of drug_a", against[0], 0.632455532033676), ("lambda of drug_b", against[1], 0.674199862463242),
            ("two-sided 95 % point", core.MCcICDF(0.05, 3, blood.df, against, 1), 2.5134829036),
            ("one-sided 95 % point", core.MCbICDF(0.05, 3, blood.df, against, 1), 2.1210780186)]
    for name, two, one in (("drug_a", 0.6201019800, 0.3249776109), ("drug_b", 0.0058253608, 0.0029138830)):
        t = blood.t(blood.names.index(name), 0)
        rows += [(f"{name}: two-sided p", core.MCcCDF(abs(t), 3, blood.df, against, 1), two),
                 (f"{name}: one-sided p", core.MCbCDF(t, 3, blood.df, against, 1), one)]
    page.compare(rows, "Blood counts, unequal groups: both drugs against the control (Dunnett 1955)", tolerance=1e-4)

    in_the_package(page, plants, blood)
    page.figure(blood_figure(core, blood, against),
                "Blood counts of animals under two drugs: only the second one changes the mean, in red.")

    figure, (left, right) = plt.subplots(1, 2)
    for y, (name, difference, half) in enumerate(pairs):
        colour = RED if abs(difference) > half else BLUE
        left.errorbar(difference, y, xerr=half, fmt="o", capsize=6, color=colour)
    left.set_yticks(range(len(pairs)), [p[0] for p in pairs])
    left.axvline(0, color=SOFT, linestyle=":")
    left.set_title("all pairs, simultaneous 95 %")
    for y, (name, difference, low, high) in enumerate(with_best):
        right.plot((low, high), (y, y), "|-", color=RED if high == 0 else BLUE, markersize=12)
        right.plot(difference, y, "o", color=RED if high == 0 else BLUE)
    right.set_yticks(range(k), plants.names)
    right.axvline(0, color=SOFT, linestyle=":")
    right.set_title("group − best of the others")
    page.figure(figure, "Plant growth: the pair that differs, and the group that cannot be the best, in red.")
