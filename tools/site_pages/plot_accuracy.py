"""Accuracy: errors in units in the last place over the plane of the arguments, beside R and SciPy, and conditioning."""
import hashlib
import importlib.util
import json
import math
import shutil
from statistics import median

import numpy as np

from signature_table import ROOT
from site_pages.plots import COLOURS, INK, MARKERS, axes, label, plot

CACHE = ROOT / "build" / "docs" / "errors.json"
LEAST, MOST = 0.1, 1e5  # the scale of the errors; what is smaller or larger is shown at its ends
EDGE = "#8a929b"  # around points, so that dark ones are seen on a dark page
STEP = 2.0 ** -20  # of the difference quotient behind the conditioning
TOLD_APART = ("NormalCDF", "BetaCDF", "BinomialCDF", "GammaCDF")
_errors = {}


def _judge():
    """tests/accuracy/accuracy.py: the reference and what R and SciPy call each export."""
    path = ROOT / "tests" / "accuracy" / "accuracy.py"
    specification = importlib.util.spec_from_file_location("accuracy", path)
    module = importlib.util.module_from_spec(specification)
    specification.loader.exec_module(module)
    return module


def conditioning(function, arguments, value):
    """How many units of the result half a unit of each argument moves it by. Whole numbers count as exact."""
    total = 0.0
    for i, x in enumerate(arguments):
        if isinstance(x, int) or float(x).is_integer():
            continue
        moved = [list(arguments), list(arguments)]
        moved[0][i], moved[1][i] = x * (1 + STEP), x * (1 - STEP)
        change = abs(function(*moved[0]) - function(*moved[1])) / (2 * STEP)
        total += change * 2.0 ** -53 / math.ulp(value)
    return total if math.isfinite(total) else None


def prepare(library):
    """Errors of the library, of R and of SciPy where they are installed; kept in build/ for the same library."""
    from host import Core
    judge = _judge()
    peers = {"SciPy": judge.through_scipy if importlib.util.find_spec("scipy") else None,
             "R": judge.through_r if shutil.which("Rscript") else None}
    key = hashlib.sha256(open(library, "rb").read() + judge.REFERENCE.read_bytes()
                         + repr(sorted(n for n, f in peers.items() if f)).encode()).hexdigest()
    if CACHE.exists() and (kept := json.loads(CACHE.read_text()))["key"] == key:
        _errors.update(kept["errors"])
    else:
        core = Core(library)
        for name, rows in judge.reference().items():
            function = getattr(core, name)
            found = {"arguments": [list(map(float, a)) for a, _ in rows],
                     "here": judge.errors([function(*a) for a, _ in rows], rows),
                     "conditioning": [conditioning(function, a, float(exact)) for a, exact in rows]}
            for peer, through in peers.items():
                values = through(name, rows) if through else None
                if values is not None:
                    found[peer] = judge.errors(values, rows)
            _errors[name] = found
        CACHE.parent.mkdir(parents=True, exist_ok=True)
        CACHE.write_text(json.dumps({"key": key, "errors": _errors}))
    from signature_table import exports
    arguments = {e.name: [a.name for a in e.arguments] for e in exports()}
    for name in _errors:
        words = ", ".join(f"{who} median {median(_errors[name][who]):.2g}, worst {max(_errors[name][who]):.3g}"
                          for who in ("here", "SciPy", "R") if who in _errors[name])
        plot(f"accuracy-{name}", f"Errors of {name} in units in the last place over its arguments, and against conditioning: "
             f"{words}.", (name,), "Each point is one argument of the sample. Dark is accurate. In the last panel points below the "
             "line are explained by the rounding of the arguments.")(
                 lambda core, name=name: planes(name, arguments[name]))


def colours():
    """Cividis without its darkest part, which a dark page would swallow."""
    from matplotlib import colormaps, colors
    return colors.ListedColormap(colormaps["cividis"](np.linspace(0.2, 1, 256)))


def clipped(errors):
    return np.clip(np.array(errors, dtype=float), LEAST, MOST)


def plane(name, names):
    """The coordinates of the points and their labels; a normal law is shown by its standardised argument."""
    table = np.array(_errors[name]["arguments"])
    if name in ("NormalPDF", "NormalCDF"):
        return (table[:, 0] - table[:, 1]) / table[:, 2], "(x \u2212 mean) / sd", None, None
    varying = [i for i in range(table.shape[1]) if names[i] not in ("tail", "mean", "scale") and np.ptp(table[:, i]) > 0]
    if len(varying) == 1:
        return table[:, varying[0]], names[varying[0]], None, None
    return table[:, varying[0]], names[varying[0]], table[:, varying[1]], names[varying[1]]


def scale(axis, which, values):
    positive = np.all(values > 0)
    if positive and values.max() > 50 * values.min():
        getattr(axis, f"set_{which}scale")("log")


def planes(name, names):
    found = _errors[name]
    x, xname, y, yname = plane(name, names)
    owners = [who for who in ("here", "SciPy", "R") if who in found]
    if y is None:
        figure, (first, last) = axes(1, 2, height=3.3)
        for who, marker, colour in zip(owners, MARKERS, COLOURS):
            first.plot(x, clipped(found[who]), marker, markersize=3.5, color=colour, label=who, alpha=0.8)
        first.set_yscale("log")
        scale(first, "x", x)
        label(first, name, xname, "error, units", legend=True)
    else:
        figure, panels = axes(2, 2, height=6)
        panels = list(panels.flat)
        last = panels.pop()
        for panel, who in zip(panels, owners):
            drawn = panel.scatter(x, y, c=np.log10(clipped(found[who])), s=16, cmap=colours(), vmin=-1, vmax=5, edgecolors=EDGE, linewidths=0.5)
            scale(panel, "x", x)
            scale(panel, "y", y)
            label(panel, f"{name}: {who}", xname, yname)
        for panel in panels[len(owners):]:
            panel.set_visible(False)
        bar = figure.colorbar(drawn, ax=panels[:len(owners)], location="bottom", shrink=0.6, aspect=40)
        bar.set_ticks(range(-1, 6), labels=["\u2264 0.1", "1", "10", "100", "1000", "1e4", "\u2265 1e5"])
        bar.set_label("error, units in the last place")
        bar.outline.set_visible(False)
    against_conditioning(last, name, "error here")
    return figure


def against_conditioning(axis, name, title):
    found = _errors[name]
    pairs = np.array([(c, e) for c, e in zip(found["conditioning"], found["here"]) if c is not None], dtype=float)
    if len(pairs) == 0 or pairs[:, 0].max() == 0:
        axis.set_visible(False)
        return
    axis.loglog(np.clip(pairs[:, 0], LEAST, MOST), clipped(pairs[:, 1]), "o", markersize=3.5, color=COLOURS[0], alpha=0.8)
    axis.loglog([LEAST, MOST], [LEAST, MOST], "--", color=INK, linewidth=1)
    label(axis, title, "conditioning, units", "error, units")


@plot("conditioning", "Errors of NormalCDF, BetaCDF, BinomialCDF and GammaCDF against conditioning: almost all points lie below the "
      "line where both are equal.")
def told_apart(core):
    figure, panels = axes(2, 2, height=5.4, sharex=True, sharey=True)
    for panel, name in zip(panels.flat, TOLD_APART):
        against_conditioning(panel, name, name)
    for panel in panels[0]:
        panel.set_xlabel("")
    return figure


@plot("accuracy-summary", "Median and worst error of each export on a logarithmic scale, here, in R and in SciPy; the medians here "
      "are mostly below 4 units. A lost value counts as 1e8.")
def summary(core):
    names = list(_errors)
    figure, axis = axes(height=0.24 * len(names) + 1)
    for i, (who, marker) in enumerate(zip(("here", "SciPy", "R"), MARKERS)):
        rows = [(j, _errors[n][who]) for j, n in enumerate(reversed(names)) if who in _errors[n]]
        if rows:
            high = [j + 0.22 * (1 - i) for j, _ in rows]
            middle, worst = ([max(min(f(e), 1e8), LEAST) for _, e in rows] for f in (median, max))
            axis.hlines(high, middle, worst, color=COLOURS[i], linewidth=1.2)
            axis.plot(middle, high, marker, color=COLOURS[i], markersize=4, label=f"{who}: median, worst")
            axis.plot(worst, high, "|", color=COLOURS[i], markersize=6)
    axis.set_xscale("log")
    axis.set_yticks(range(len(names)), list(reversed(names)), fontsize="small")
    axis.set_ylim(-0.8, len(names) - 0.2)
    label(axis, None, "units in the last place", None)
    axis.legend(frameon=False, loc="lower center", bbox_to_anchor=(0.4, 1.0), ncol=3, fontsize="small", columnspacing=1,
                handletextpad=0.4)
    return figure


@plot("kolmogorov-regions", "Regions of the methods over sample size and argument: closed form at both ends, matrix power, recursion "
      "and one-sided tail up to n of 140, series and one-sided tail above.", ("KolmogorovCDF", "kolmogorov"),
      "The regions of the methods. Dashed lines are the points with P(D > x) of 0.5, 0.05 and 1e-6. The closed form also serves "
      "x of at least 1 - 1/n.")
def regions(core):
    figure, axis = axes(height=4)
    small, large, huge = np.geomspace(1.001, 140, 200), np.geomspace(140, 1e5, 200), np.geomspace(1e5, 1e6, 50)

    def fill(n, low, high, colour, hatch, name):
        axis.fill_between(n, np.minimum(low, 1), np.minimum(high, 1), facecolor=colour, alpha=0.3, hatch=hatch,
                          edgecolor=INK, linewidth=0, label=name)
    w = {cut: np.sqrt(cut / small) for cut in (0.754693, 4)}
    matrix = np.clip(w[0.754693], 1 / small, 1)
    recursion = np.clip(w[4], matrix, 1 - 1 / small.clip(2))
    fill(small, 1 / small, matrix, COLOURS[0], "", "matrix power")
    fill(small, matrix, np.maximum(matrix, recursion), COLOURS[1], "//", "recursion")
    fill(small, np.maximum(matrix, recursion), 1 + 0 * small, COLOURS[2], "..", "one-sided tail, doubled")
    for n in (large, huge):
        first = np.maximum((2 / n ** 2) ** (1 / 3), 1 / n) if n is large else 1 / n
        fill(n, 1 / n, first, COLOURS[0], "", None)
        fill(n, first, np.sqrt(2.2 / n), COLOURS[3], "\\\\", "series" if n is large else None)
        fill(n, np.sqrt(2.2 / n), 1 + 0 * n, COLOURS[2], "..", None)
    n = np.concatenate([small, large, huge])
    axis.fill_between(n, 1e-6, 1 / n, facecolor=COLOURS[4], alpha=0.3, linewidth=0, label="closed form")
    sizes = np.unique(np.round(np.geomspace(2, 1e6, 40)))
    for level in (0.5, 0.05, 1e-6):
        axis.plot(sizes, [core.KolmogorovICDF(level, s, 1) for s in sizes], "--", color=INK, linewidth=1)
    axis.set_xscale("log")
    axis.set_yscale("log")
    axis.set_xlim(1, 1e6)
    axis.set_ylim(1e-4, 1)
    label(axis, None, "sample size n", "x")
    axis.legend(frameon=False, fontsize="small", loc="lower left")
    return figure


@plot("comparison-error", "Largest error of the probabilities of MCa, MCb and MCc by degrees of freedom, against exact integrals: "
      "near 1e-7 between 3 and 999 degrees of freedom, larger at 1, at 2 and from 1000 on.",
      ("MCaCDF", "MCbCDF", "MCcCDF", "multiple_comparison"), "Errors against integration to 36 digits, for up to 100 groups.")
def comparison_error(core):
    stems = {"Tukey": "MCa", "Hsu": "MCb", "Dunnett": "MCc"}
    points = {stem: [] for stem in stems.values()}
    for line in (ROOT / "tests/data/accuracy/refined_multiple_comparison.tsv").read_text().splitlines():
        if line.startswith("#"):
            continue
        statistic, k, df, coefficients, _, x, lower, _ = line.split("\t")
        if coefficients == "equal":
            freedom = float(df)
            value = getattr(core, stems[statistic] + "CDF")(float.fromhex(x), int(k), freedom, np.full(int(k), math.sqrt(0.5)), 0)
            points[stems[statistic]].append((min(freedom, 1e5), int(k), max(abs(value - float(lower)), 1e-12)))
    figure, panels = axes(1, 3, height=3.2, sharey=True)
    for panel, (stem, found) in zip(panels, points.items()):
        df, k, error = np.array(found).T
        drawn = panel.scatter(df, error, c=np.log10(k), cmap=colours(), vmin=0.3, vmax=2, s=18, edgecolors=EDGE, linewidths=0.5)
        panel.set_xscale("log")
        panel.set_yscale("log")
        label(panel, stem + "CDF", "degrees of freedom", "absolute error" if stem == "MCa" else None)
    bar = figure.colorbar(drawn, ax=panels, location="bottom", shrink=0.6, aspect=40)
    bar.set_ticks([math.log10(v) for v in (2, 5, 10, 30, 100)], labels=["2", "5", "10", "30", "100"])
    bar.set_label("groups")
    bar.outline.set_visible(False)
    return figure


@plot("benchmarks", "Time of the peers divided by the time here, one bar for each export and peer that is compared, on a logarithmic "
      "scale: bars to the right of 1 are faster here.")
def benchmarks(core):
    rows = {}
    for line in (ROOT / "docs" / "benchmarks.md").read_text().splitlines():
        cells = [c.strip() for c in line.strip("|").split("|")]
        if line.startswith("| ") and len(cells) == 6 and cells[0] in _known():
            rows.setdefault(cells[0], {})
            for part in cells[5].split(", "):
                peer, _, ratio = part.rpartition(" ")
                if peer in ("Boost", "GSL", "Rmath"):
                    rows[cells[0]].setdefault(peer, float(ratio))
    rows = {name: ratios for name, ratios in rows.items() if ratios}
    figure, axis = axes(height=0.3 * len(rows) + 1)
    for i, (peer, hatch) in enumerate((("Boost", ""), ("GSL", "//"), ("Rmath", ".."))):
        found = [(j, r[peer]) for j, r in enumerate(reversed(rows.values())) if peer in r]
        axis.barh([j + 0.26 * (1 - i) for j, _ in found], [math.log10(r) for _, r in found], height=0.24, color=COLOURS[i],
                  hatch=hatch, edgecolor="none", label=peer)
    axis.axvline(0, color=INK, linewidth=1)
    ticks = (0.2, 0.5, 1, 2, 5, 10, 100)
    axis.set_xticks([math.log10(t) for t in ticks], [f"{t:g}" for t in ticks])
    axis.set_yticks(range(len(rows)), list(reversed(rows)), fontsize="small")
    axis.set_ylim(-0.7, len(rows) - 0.3)
    label(axis, None, "time of the peer divided by the time here")
    axis.legend(frameon=False, loc="lower center", bbox_to_anchor=(0.4, 1.0), ncol=3, fontsize="small", columnspacing=1,
                handletextpad=0.4)
    return figure


def _known():
    from signature_table import exports
    return {e.name for e in exports()}
