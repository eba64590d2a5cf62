"""Accuracy where exact values are sums of whole numbers or stand in a table: Kolmogorov and noncentral hypergeometric."""
import importlib.util
import math
import random
import warnings
from fractions import Fraction

import numpy as np

from signature_table import ROOT
from site_pages.plot_accuracy import EDGE, colours
from site_pages.plots import axes, label, plot

LOW, HIGH = -1, 9  # the scale of the errors, powers of ten


def units(value, exact):
    """The error in units in the last place; Fraction keeps all digits of both."""
    if not math.isfinite(value):
        return 10.0 ** HIGH
    return float(abs(Fraction(value) - exact) / Fraction(math.ulp(float(exact))))


def panels(columns, points, errors, x, y, name):
    """A panel for each owner of errors, on the same scale of colours."""
    figure, drawn = axes(1, columns, height=3.6, sharey=True)
    drawn = np.atleast_1d(drawn)
    for panel, (who, found) in zip(drawn, errors.items()):
        shown = np.clip(np.log10(np.maximum(found, 10.0 ** LOW)), LOW, HIGH)
        scatter = panel.scatter(points[0], points[1], c=shown, s=20, cmap=colours(), vmin=LOW, vmax=HIGH, edgecolors=EDGE,
                                linewidths=0.5)
        panel.set_xscale("log")
        panel.set_yscale("log")
        label(panel, f"{name}: {who}", x, y if panel is drawn[0] else None)
    bar = figure.colorbar(scatter, ax=list(drawn), location="bottom", shrink=0.6, aspect=40)
    bar.set_ticks(range(LOW, HIGH + 1, 2), labels=[f"1e{e}" for e in range(LOW, HIGH + 1, 2)])
    bar.set_label("error, units in the last place")
    bar.outline.set_visible(False)
    return figure


def scipy_stats():
    if importlib.util.find_spec("scipy") is None:
        return None
    from scipy import stats
    return stats


@plot("accuracy-KolmogorovCDF", "Errors of P(D > x) over sample size and argument against 110 exact values: near rounding for the "
      "matrix and the closed form, up to 1e6 units for small tails to a sample size of 140, and 1e9 and more where the series "
      "serves above 140, here and in SciPy alike.", ("KolmogorovCDF",), "Each point is an exact value. Dark is accurate. The upper tail.")
def kolmogorov(core):
    rows = [line.split("\t") for line in (ROOT / "tests/data/published/kolmogorov_exact.tsv").read_text().splitlines()
            if not line.startswith("#")]
    rows = [(float(n), float(x), Fraction(upper)) for n, x, _, upper in rows if Fraction(upper) > 0]
    errors = {"here": [units(core.KolmogorovCDF(x, n, 1), exact) for n, x, exact in rows]}
    stats = scipy_stats()
    if stats:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            errors["SciPy"] = [units(float(stats.kstwo.sf(x, int(n))), exact) for n, x, exact in rows]
    return panels(len(errors), ([r[0] for r in rows], [r[1] for r in rows]), errors, "sample size n", "x", "P(D > x)")


def noncentral_cases():
    """[(x, n, m, N, odds, exact upper tail)] of random distributions, the sums as fractions."""
    generator, cases = random.Random(20261121), []
    while len(cases) < 150:
        total = generator.randint(4, 90)
        n, m = generator.randint(1, total - 1), generator.randint(1, total - 1)
        odds = 2.0 ** generator.uniform(-8, 8)
        support = range(max(0, n + m - total), min(n, m) + 1)
        if len(support) < 3:
            continue
        weights = [math.comb(m, i) * math.comb(total - m, n - i) * Fraction(odds) ** (i - support[0]) for i in support]
        cut = generator.randrange(len(support) - 1)
        cases.append((support[cut], n, m, total, odds, sum(weights[cut + 1:]) / sum(weights)))
    return cases


@plot("accuracy-FNCHypergeometricCDF", "Errors of P(X > x) over odds and size of the tail for 150 random distributions against exact "
      "sums: median 0.4, worst 124 units here; SciPy beside it loses its digits in small tails.", ("FNCHypergeometricCDF",),
      "Each point is a random distribution with a population of up to 90. Dark is accurate. The upper tail.")
def noncentral(core):
    cases = noncentral_cases()
    errors = {"here": [units(core.FNCHypergeometricCDF(x, n, m, total, odds, 1, 0), exact) for x, n, m, total, odds, exact in cases]}
    stats = scipy_stats()
    if stats:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            errors["SciPy"] = [units(float(stats.nchypergeom_fisher.sf(x, total, m, n, odds)), exact)
                               for x, n, m, total, odds, exact in cases]
    return panels(len(errors), ([c[4] for c in cases], [float(c[5]) for c in cases]), errors, "odds", "P(X > x)", "P(X > x)")
