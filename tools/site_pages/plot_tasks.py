"""The plots of the how-to pages; their data are those of the programs."""
import itertools
import re

import numpy as np

from site_pages.plots import COLOURS, INK, axes, label, plot
from site_pages.programs import sources



def numbers(task, name):
    """The numbers that the Python program of a task gives to a name: one list, or a list of lists."""
    file = next(f for language, _, f in sources(task) if language == "Python")
    text = re.search(rf"^{name} = (?:np\.array\()?([\[{{].*?[\]}}])(?:, dtype=float)?\)?$", file.read_text(), re.M | re.S)[1]
    return eval(text, {})  # a literal of the program


def pooled(groups):
    values = [np.array(g, dtype=float) for g in groups]
    df = sum(len(v) - 1 for v in values)
    return values, df, np.sqrt(sum(((v - v.mean()) ** 2).sum() for v in values) / df)


def intervals(rows, x, height):
    """Named intervals, one below the other; those that leave out 0 are filled."""
    figure, axis = axes(height=height)
    for i, (name, centre, low, high) in enumerate(reversed(rows)):
        away = low > 0 or high <= 0
        colour = COLOURS[1 if away else 0]
        axis.plot([low, high], [i, i], color=colour, linewidth=3, solid_capstyle="butt")
        axis.plot(centre, i, "D" if away else "o", color=colour, markersize=9)
    axis.axvline(0, color=INK, linewidth=1, linestyle=":")
    axis.set_yticks(range(len(rows)), [row[0] for row in reversed(rows)])
    axis.set_ylim(-0.6, len(rows) - 0.4)
    axis.grid(axis="y", visible=False)
    label(axis, None, x)
    return figure


@plot("dunnett", "Intervals of two drugs against the control: drug 1 from -1.3 to 2.6 includes 0, drug 2 from 0.8 to 4.4 does not.")
def dunnett(core):
    values, df, s = pooled(numbers("dunnett", "groups"))
    n = np.array([len(v) for v in values], dtype=float)
    q = core.MCcICDF(0.95, len(values), df, np.sqrt(n / (n + n[-1])), 0)
    rows = []
    for i, v in enumerate(values[:-1]):
        difference, half = v.mean() - values[-1].mean(), q * s * np.sqrt(1 / n[i] + 1 / n[-1])
        rows.append((f"drug {i + 1}", difference, difference - half, difference + half))
    return intervals(rows, "difference from the control", 2.2)


def plants():
    groups = numbers("all-pairs", "groups")
    values, df, s = pooled(groups.values())
    return list(groups), values, df, s * np.sqrt(2 / len(values[0])), np.full(len(groups), np.sqrt(0.5))


@plot("all-pairs", "Intervals of three differences: treatment 2 minus treatment 1 lies above 0, from 0.17 to 1.56; the two "
      "differences from the control include 0.")
def all_pairs(core):
    names, values, df, error, equal = plants()
    half = error * core.MCaICDF(0.95, len(values), df, equal, 0)
    rows = [(f"{names[b]}\n\u2212 {names[a]}", values[b].mean() - values[a].mean(), values[b].mean() - values[a].mean() - half,
             values[b].mean() - values[a].mean() + half) for a, b in itertools.combinations(range(3), 2)]
    return intervals(rows, "difference of the means", 2.8)


@plot("best", "Each group's difference from the best of the others with its interval: treatment 1 ends at 0 and is not the best; "
      "control and treatment 2 may be.")
def best(core):
    names, values, df, error, equal = plants()
    half = error * core.MCbICDF(0.95, len(values), df, equal, 0)
    rows = []
    for i, v in enumerate(values):
        difference = v.mean() - max(w.mean() for j, w in enumerate(values) if j != i)
        rows.append((names[i], difference, min(0, difference - half), max(0, difference + half)))
    return intervals(rows, "difference from the best of the others", 2.6)


@plot("exact-test", "The steps of twelve ordered times, the exponential curve with mean 100 inside the band of the test, and the "
      "largest distance between them, 0.2966.")
def exact_test(core):
    hours = np.array(numbers("exact-test", "hours"))
    n = len(hours)
    figure, axis = axes(height=3.3)
    steps, x = np.arange(n + 1) / n, np.concatenate([[0], hours, [200]])
    critical = core.KolmogorovICDF(0.05, n, 1)
    axis.fill_between(x, np.clip(np.append(steps, 1) - critical, 0, 1), np.clip(np.append(steps, 1) + critical, 0, 1), step="post",
                      alpha=0.2, color=COLOURS[0], label="band of the 5 % test")
    axis.step(x, np.append(steps, 1), where="post", color=COLOURS[0], label="sample")
    t = np.linspace(0, 200, 200)
    axis.plot(t, [core.GammaCDF(v, 1, 100, 0) for v in t], "--", color=COLOURS[1], label="exponential, mean 100")
    law = np.array([core.GammaCDF(v, 1, 100, 0) for v in hours])
    i = int(np.argmax(np.maximum(steps[1:] - law, law - steps[:-1])))
    axis.plot([hours[i]] * 2, [law[i], steps[i + 1]], color=INK, linewidth=2.5, label="D")
    label(axis, None, "hours", "P(time \u2264 x)", legend=True)
    return figure


@plot("odds-ratio", "Two tail probabilities against the odds ratio on a logarithmic scale: they cross 0.025 at 0.0033 and at 0.363, "
      "the ends of the interval.")
def odds_ratio(core):
    odds = np.geomspace(1e-4, 3, 200)
    figure, axis = axes(height=3.2)
    axis.semilogx(odds, [core.FNCHypergeometricCDF(1, 17, 12, 30, o, 1, 0) for o in odds], "-", label="P(X \u2265 2)")
    axis.semilogx(odds, [core.FNCHypergeometricCDF(2, 17, 12, 30, o, 0, 0) for o in odds], "--", label="P(X \u2264 2)")
    axis.axhline(0.025, color=INK, linestyle=":", linewidth=1.2, label="0.025")
    axis.axvspan(0.00332, 0.36319, alpha=0.15, color=COLOURS[2], label="95 % interval")
    label(axis, None, "odds ratio", "probability of the tail", legend=True)
    return figure


@plot("regression", "Yield against dose: three parallel lines with slope 1, one for each variety, through nine points.")
def regression(core):
    figure, axis = axes(height=3.1)
    dose = np.array(numbers("regression", "dose"))
    variety, y = np.array(numbers("regression", "variety")), np.array(numbers("regression", "y"))
    design = np.column_stack([np.ones(9), variety == 0, variety == 1, dose]).astype(float)
    a, view = core.matrix(design)
    b, target = core.matrix(y)
    x, result = core.matrix(np.zeros(4))
    assert core.OLS(a, view, b, target, x, result, np.empty(4), 1e-9) == 0
    intercept, first, second, slope = x[:, 0]
    for i, (name, level) in enumerate((("A", intercept + first), ("B", intercept + second), ("C", intercept))):
        axis.plot(dose[variety == i], y[variety == i], "os^"[i], color=COLOURS[i])
        axis.plot([0.5, 5.5], [level + 0.5 * slope, level + 5.5 * slope], ["-", "--", "-."][i], color=COLOURS[i],
                  label=f"variety {name}")
    label(axis, None, "dose", "yield", legend=True)
    return figure


@plot("bootstrap", "Histogram of two thousand bootstrap correlations, skewed to the left, with the interval from 0.45 to 0.96 and "
      "the correlation of the data, 0.776.")
def bootstrap(core):
    score = np.array(numbers("bootstrap", "score"), dtype=float)
    grade = np.array(numbers("bootstrap", "grade"))
    stream, index = core.CreateRandomStream(1), np.empty(15, dtype=np.int32)
    found = []
    for _ in range(2000):
        core.RandomUniformInteger(stream, index, 15)
        found.append(np.corrcoef(score[index], grade[index])[0, 1])
    core.DeleteRandomStream(stream)
    found = np.sort(found)
    figure, axis = axes(height=3)
    axis.hist(found, 50, color=COLOURS[0], alpha=0.5)
    axis.axvspan(found[49], found[1950], alpha=0.15, color=COLOURS[2], label="95 % interval")
    axis.axvline(np.corrcoef(score, grade)[0, 1], color=COLOURS[1], label="correlation of the data")
    label(axis, None, "correlation", "samples", legend=True)
    return figure


@plot("bounds", "Velocity against concentration with two fitted curves: the free one reaches 212.7, the bounded one 205.")
def bounds(core):
    figure, axis = axes(height=3.1)
    axis.plot(numbers("bounds", "concentration"), numbers("bounds", "velocity"), "o", color=COLOURS[0], label="measured")
    c = np.linspace(0, 1.2, 200)
    for style, colour, (top, half, name) in zip(("-", "--"), COLOURS[1:], ((212.68, 0.06412, "free"),
                                                                                (205, 0.05709, "top at most 205"))):
        axis.plot(c, top * c / (half + c), style, color=colour, label=name)
        axis.axhline(top, color=colour, linewidth=0.8, linestyle=":")
    label(axis, None, "concentration", "velocity", legend=True)
    return figure


@plot("cluster", "The 800 smallest of twenty thousand p-values in order, and the line of Benjamini and Hochberg, which they cross "
      "at 426.")
def cluster(core):
    data = np.empty(200000)
    core.RandomNormalVariable(data, len(data), 0, 1, 1)
    data = data.reshape(10, 20000).T.copy()
    data[:500, :5] += 4
    treated, control = data[:, :5], data[:, 5:]
    t = abs(treated.mean(axis=1) - control.mean(axis=1)) / np.sqrt((treated.var(axis=1, ddof=1) + control.var(axis=1, ddof=1)) / 5)
    p = np.sort([2 * core.StudentTCDF(v, 8, 1) for v in np.sort(t)[::-1][:800]])
    figure, axis = axes(height=3.1)
    rank = np.arange(1, 801)
    axis.semilogy(rank, p, color=COLOURS[0], label="p-values in order")
    axis.semilogy(rank, 0.05 * rank / 20000, "--", color=COLOURS[1], label="0.05 rank / 20000")
    axis.axvline(426, color=INK, linestyle=":", linewidth=1.2)
    axis.annotate("426 found", (426, 1e-7), xytext=(8, 0), textcoords="offset points")
    label(axis, None, "rank", "p-value", legend=True)
    return figure


@plot("overview", "Three small plots: intervals of Dunnett's test, a distribution with its tail, and a bounded fit.")
def overview(core):
    figure, (left, middle, right) = axes(1, 3, height=2.4)
    names, values, df, error, equal = plants()
    half = error * core.MCaICDF(0.95, 3, df, equal, 0)
    for i, (a, b) in enumerate(itertools.combinations(range(3), 2)):
        difference = values[b].mean() - values[a].mean()
        colour = COLOURS[1 if difference - half > 0 else 0]
        left.plot([difference - half, difference + half], [i, i], color=colour, linewidth=3)
        left.plot(difference, i, "o", color=colour)
    left.axvline(0, color=INK, linewidth=1, linestyle=":")
    left.set_yticks([])
    label(left, "which groups differ?")
    x = np.linspace(-4, 4, 200)
    density = np.array([core.StudentTPDF(v, 5) for v in x])
    middle.plot(x, density, color=COLOURS[0])
    middle.fill_between(x, density, where=x > 2.015, color=COLOURS[1], alpha=0.6)
    middle.set_yticks([])
    label(middle, "how far in the tail?")
    c = np.linspace(0, 1.2, 100)
    right.plot(numbers("bounds", "concentration"), numbers("bounds", "velocity"), "o", color=COLOURS[0], markersize=4)
    right.plot(c, 212.68 * c / (0.06412 + c), color=COLOURS[1])
    label(right, "which curve fits?")
    return figure
