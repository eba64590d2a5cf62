"""Density and distribution of each law, with its parameters varied."""
import numpy as np

from site_pages.plots import COLOURS, LINES, MARKERS, axes, label, plot


def curves(core, x, density, distribution, variants, name, top=None):
    """Two panels: density and distribution function, one line for each set of parameters."""
    figure, (left, right) = axes(1, 2)
    for style, (title, parameters) in zip(LINES, variants):
        left.plot(x, [getattr(core, density)(v, *parameters) for v in x], style, label=title)
        right.plot(x, [getattr(core, distribution)(v, *parameters, 0) for v in x], style)
    if top:
        left.set_ylim(0, top)
    label(left, density, name, "density", legend=True)
    label(right, distribution, name, "P(X \u2264 x)")
    return figure


def counts(core, k, probability, distribution, variants, name):
    """Two panels for a law of whole numbers: points with stems, and steps."""
    figure, (left, right) = axes(1, 2)
    for i, (title, values, cumulative) in enumerate(zip(*variants)):
        shift = 0.15 * (i - 1)
        left.vlines(k + shift, 0, values, color=COLOURS[i], linewidth=1)
        left.plot(k + shift, values, MARKERS[i], markersize=4, label=title)
        right.step(k, cumulative, LINES[i], where="post")
    left.set_ylim(top=1.45 * max(max(values) for values in variants[1]))  # room for the legend
    label(left, probability, name, "P(X = k)", legend=True)
    label(right, distribution, name, "P(X \u2264 k)")
    return figure


def pair(stem, folder="distributions"):
    return (f"{stem}PDF", f"{stem}CDF", folder)


@plot("law-normal", "Density and distribution function of the normal distribution: the mean moves the bell, the standard "
      "deviation widens it.", pair("Normal"))
def normal(core):
    return curves(core, np.linspace(-8, 7, 301), "NormalPDF", "NormalCDF",
                  [("mean 0, sd 1", (0, 1)), ("mean 0, sd 2", (0, 2)), ("mean 3, sd 1", (3, 1))], "x")


@plot("law-student", "Density and distribution function of Student's t: the fewer degrees of freedom, the heavier the tails.",
      pair("StudentT"))
def student(core):
    return curves(core, np.linspace(-5, 5, 201), "StudentTPDF", "StudentTCDF",
                  [("df 1", (1,)), ("df 3", (3,)), ("df 10", (10,)), ("df 100", (100,))], "t")


@plot("law-chi", "Density and distribution function of chi-squared: more degrees of freedom move the mass to the right; with 1 "
      "the density is infinite at 0.", pair("ChiSquared"))
def chi(core):
    return curves(core, np.linspace(0.01, 20, 300), "ChiSquaredPDF", "ChiSquaredCDF",
                  [("df 1", (1,)), ("df 2", (2,)), ("df 4", (4,)), ("df 9", (9,))], "x", top=0.6)


@plot("law-fisher", "Density and distribution function of Fisher's F with 1 and 5, 3 and 10, 10 and 10, 50 and 50 degrees of "
      "freedom: the larger both are, the closer to 1.", pair("FisherF"))
def fisher(core):
    return curves(core, np.linspace(0.01, 4, 300), "FisherFPDF", "FisherFCDF",
                  [("df 1, 5", (1, 5)), ("df 3, 10", (3, 10)), ("df 10, 10", (10, 10)), ("df 50, 50", (50, 50))], "F", top=1.8)


@plot("law-gamma", "Density and distribution function of the gamma distribution: shape 1 is the exponential, larger shapes are "
      "humps, the scale stretches.", pair("Gamma"))
def gamma(core):
    return curves(core, np.linspace(0.01, 14, 300), "GammaPDF", "GammaCDF",
                  [("shape 1, scale 1", (1, 1)), ("shape 1, scale 3", (1, 3)), ("shape 3, scale 1", (3, 1)),
                   ("shape 6, scale 1", (6, 1))], "x", top=0.7)


@plot("law-beta", "Density and distribution function of the beta distribution: U-shaped for parameters below 1, flat at 1, a "
      "hump above.", pair("Beta"))
def beta(core):
    return curves(core, np.linspace(0.002, 0.998, 300), "BetaPDF", "BetaCDF",
                  [("a 0.5, b 0.5", (0.5, 0.5)), ("a 1, b 1", (1, 1)), ("a 2, b 5", (2, 5)), ("a 8, b 3", (8, 3))], "x", top=3.6)


@plot("law-binomial", "Point probabilities and steps of the binomial distribution for 20 trials with success fractions 0.1, 0.3 "
      "and 0.7.", pair("Binomial"))
def binomial(core):
    k, fractions = np.arange(21), (0.1, 0.3, 0.7)
    return counts(core, k, "BinomialPDF", "BinomialCDF",
                  ([f"n 20, p {p}" for p in fractions], [[core.BinomialPDF(i, 20, p) for i in k] for p in fractions],
                   [[core.BinomialCDF(i, 20, p, 0) for i in k] for p in fractions]), "k")


@plot("law-hypergeometric", "Point probabilities and steps of the hypergeometric distribution: a sample of 10 from 50 with 5, 15 "
      "and 30 marked items.", pair("Hypergeometric"))
def hypergeometric(core):
    k, marked = np.arange(11), (5, 15, 30)

    def value(function, i, r, *tail):
        return function(min(i, r), r, 10, 50, *tail) if tail or i <= r else 0
    return counts(core, k, "HypergeometricPDF", "HypergeometricCDF",
                  ([f"{r} of 50 marked" for r in marked],
                   [[value(core.HypergeometricPDF, i, r) for i in k] for r in marked],
                   [[value(core.HypergeometricCDF, i, r, 0) for i in k] for r in marked]), "marked in a sample of 10")


@plot("law-noncentral", "Point probabilities and steps of the noncentral hypergeometric distribution for odds 0.3, 1 and 4: "
      "larger odds move the mass to larger counts.", ("FNCHypergeometricCDF", "noncentral_hypergeometric"))
def noncentral(core):
    k, odds = np.arange(11), (0.3, 1.0, 4.0)
    cumulative = [[core.FNCHypergeometricCDF(int(i), 10, 20, 50, o, 0, 0) for i in k] for o in odds]
    return counts(core, k, "P(X = k)", "FNCHypergeometricCDF",
                  ([f"odds {o:g}" for o in odds], [np.diff(c, prepend=0) for c in cumulative], cumulative),
                  "20 of 50 marked, sample of 10")


@plot("law-kolmogorov", "Distribution function of Kolmogorov's statistic for samples of 5, 20 and 100, and its 5 percent point, "
      "which falls with the root of the sample size.", ("KolmogorovCDF", "KolmogorovICDF", "kolmogorov"))
def kolmogorov(core):
    figure, (left, right) = axes(1, 2)
    x = np.linspace(0.02, 0.75, 250)
    for style, n in zip(LINES, (5, 20, 100)):
        left.plot(x, [core.KolmogorovCDF(v, n, 0) for v in x], style, label=f"n {n}")
    sizes = np.unique(np.round(np.geomspace(3, 10000, 40)))
    for style, level in zip(LINES, (0.05, 0.01)):
        right.loglog(sizes, [core.KolmogorovICDF(level, n, 1) for n in sizes], style, label=f"P(D > x) = {level}")
    label(left, "KolmogorovCDF", "x", "P(D \u2264 x)", legend=True)
    label(right, "KolmogorovICDF", "sample size n", "critical value x", legend=True)
    return figure


@plot("law-comparison", "Distribution functions of the largest of several comparisons with 5 groups and 20 degrees of freedom, "
      "beside a single t test, and the 95 percent points of all three as the number of groups grows.",
      ("MCaCDF", "MCbCDF", "MCcCDF", "MCaICDF", "MCbICDF", "MCcICDF", "multiple_comparison"))
def comparison(core):
    figure, (left, right) = axes(1, 2)
    x, names = np.linspace(0, 5, 120), (("MCb", "with the best (MCb)"), ("MCc", "with a control (MCc)"), ("MCa", "all pairs (MCa)"))
    equal = np.full(30, np.sqrt(0.5))
    left.plot(x, [2 * core.StudentTCDF(v, 20, 0) - 1 for v in x], ":", label="one t test")
    sizes = np.arange(3, 31, 3)
    for style, (stem, title) in zip(LINES, names):
        colour = left.plot(x, [getattr(core, stem + "CDF")(v, 5, 20, equal, 0) for v in x], style, label=title)[0].get_color()
        right.plot(sizes, [getattr(core, stem + "ICDF")(0.95, int(k), 20, equal, 0) for k in sizes], style, color=colour, label=title)
    label(left, "5 groups, 20 degrees of freedom", "x", "P(largest \u2264 x)", legend=True)
    label(right, "95 % points", "number of groups", "x")
    return figure


def special(core, x, lines, title, y, limits=None):
    figure, axis = axes(height=3.2)
    for style, (name, function) in zip(LINES, lines):
        axis.plot(x, [function(v) for v in x], style, label=name)
    if limits:
        axis.set_ylim(*limits)
    label(axis, title, "x", y, legend=True)
    return figure


@plot("law-error", "The error function, its complement, and their inverses.",
      ("Erf", "ErfC", "InverseErf", "InverseErfC"))
def error(core):
    figure, (left, right) = axes(1, 2)
    x = np.linspace(-3, 3, 200)
    left.plot(x, [core.Erf(v) for v in x], "-", label="Erf")
    left.plot(x, [core.ErfC(v) for v in x], "--", label="ErfC")
    p = np.linspace(-0.9999, 0.9999, 400)
    right.plot(p, [core.InverseErf(v) for v in p], "-", label="InverseErf")
    right.plot(p + 1, [core.InverseErfC(v + 1) for v in p], "--", label="InverseErfC")
    label(left, None, "x", None, legend=True)
    label(right, None, "argument", "x", legend=True)
    return figure


@plot("law-incomplete-gamma", "The regularized incomplete gamma functions P and Q for a of 0.5, 2 and 8: P rises from 0 to 1, Q "
      "falls from 1 to 0, and they cross near a.", ("GammaRegularized", "GammaRegularizedC"))
def incomplete_gamma(core):
    figure, (left, right) = axes(1, 2)
    x = np.linspace(0, 16, 200)
    for style, a in zip(LINES, (0.5, 2, 8)):
        left.plot(x, [core.GammaRegularized(a, v) for v in x], style, label=f"a {a}")
        right.semilogy(x, [core.GammaRegularizedC(a, v) for v in x], style)
    label(left, "GammaRegularized", "x", "P(a, x)", legend=True)
    label(right, "GammaRegularizedC, on a logarithmic scale", "x", "Q(a, x)")
    return figure


@plot("law-incomplete-beta", "The regularized incomplete beta function for four pairs of parameters.",
      ("BetaRegularized", "BetaRegularizedC"))
def incomplete_beta(core):
    return special(core, np.linspace(0, 1, 200),
                   [(f"a {a}, b {b}", lambda v, a=a, b=b: core.BetaRegularized(a, b, v))
                    for a, b in ((0.5, 0.5), (1, 3), (5, 2), (20, 20))], "BetaRegularized", "I_x(a, b)")


@plot("law-gamma-function", "The gamma function from 0 to 5 with its minimum near 1.46, and the logarithm of its absolute value "
      "from -4 to 5, with poles at whole numbers from 0 down.", ("Gamma", "GammaLn"))
def gamma_function(core):
    figure, (left, right) = axes(1, 2)
    x = np.linspace(0.15, 5, 300)
    left.plot(x, [core.Gamma(v) for v in x])
    label(left, "Gamma", "x", None)
    for low in (-4, -3, -2, -1, 0):
        x = np.linspace(low + 0.004, low + 0.996 if low < 0 else 5, 300)
        right.plot(x, [core.GammaLn(v) for v in x], color=COLOURS[0])
    label(right, "GammaLn", "x", None)
    return figure


@plot("law-random", "Histogram of ten thousand variates of seed 1 with the density of the normal distribution over it.",
      ("RandomNormalVariable", "random"))
def variates(core):
    values = np.empty(10000)
    core.RandomNormalVariable(values, len(values), 0, 1, 1)
    figure, axis = axes(height=3)
    axis.hist(values, 60, density=True, color=COLOURS[0], alpha=0.45, label="RandomNormalVariable, seed 1")
    x = np.linspace(-4, 4, 200)
    axis.plot(x, [core.NormalPDF(v, 0, 1) for v in x], color=COLOURS[1], label="NormalPDF")
    label(axis, None, "value", "density", legend=True)
    return figure
