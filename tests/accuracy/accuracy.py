#!/usr/bin/env python3
"""Errors of the exports against tests/data/accuracy/reference.tsv, in units in the last place.

    accuracy.py LIBRARY                      compares with docs/accuracy/record.tsv; fails where an error grew
    accuracy.py LIBRARY --write [--peers]    writes the record and docs/accuracy/exports.md; with SciPy and R beside it
"""
import math
import subprocess
import sys
from decimal import Decimal, getcontext
from pathlib import Path
from statistics import median

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from host import Core  # noqa: E402

REFERENCE = ROOT / "tests/data/accuracy/reference.tsv"
RECORD = ROOT / "docs/accuracy/record.tsv"
PAGE = ROOT / "docs/accuracy/exports.md"
PEER_RECORD = ROOT / "docs/accuracy/peers.tsv"
# The C runtime and the compiler move last digits: what a figure may grow by.
SLACK_SHARE, SLACK_ULPS = 1.05, 1.0
getcontext().prec = 40

# How R and SciPy say it; a, b, c, d are the arguments in order, t the tail flag.
PEERS = {
    "Gamma": ("gamma(a)", "sp.gamma(a)"), "GammaLn": ("lgamma(a)", "sp.gammaln(a)"),
    "GammaRegularized": ("pgamma(b,a)", "sp.gammainc(a,b)"),
    "GammaRegularizedC": ("pgamma(b,a,lower=FALSE)", "sp.gammaincc(a,b)"),
    "GammaDerivative": ("dgamma(b,a)", "st.gamma.pdf(b,a)"),
    "InverseGammaRegularized": ("qgamma(b,a)", "sp.gammaincinv(a,b)"),
    "InverseGammaRegularizedC": ("qgamma(b,a,lower=FALSE)", "sp.gammainccinv(a,b)"),
    "Beta": ("beta(a,b)", "sp.beta(a,b)"),
    "BetaRegularized": ("pbeta(c,a,b)", "sp.betainc(a,b,c)"),
    "BetaRegularizedC": ("pbeta(c,a,b,lower=FALSE)", "st.beta.sf(c,a,b)"),
    "BetaDerivative": ("dbeta(c,a,b)", "st.beta.pdf(c,a,b)"),
    "InverseBetaRegularized": ("qbeta(c,a,b)", "sp.betaincinv(a,b,c)"),
    "InverseBetaRegularizedC": ("qbeta(c,a,b,lower=FALSE)", "st.beta.isf(c,a,b)"),
    "Erf": (None, "sp.erf(a)"), "ErfC": (None, "sp.erfc(a)"), "InverseErf": (None, "sp.erfinv(a)"),
    "InverseErfC": (None, "sp.erfcinv(a)"), "LogXplus1": ("log1p(a)", "sp.log1p(a)"),
    "GammaPDF": ("dgamma(a,b,scale=c)", "st.gamma.pdf(a,b,scale=c)"),
    "GammaCDF": ("pgamma(a,b,scale=c,lower=d==0)", "where(d, st.gamma.sf(a,b,scale=c), st.gamma.cdf(a,b,scale=c))"),
    "GammaICDF": ("qgamma(a,b,scale=c,lower=d==0)", "where(d, st.gamma.isf(a,b,scale=c), st.gamma.ppf(a,b,scale=c))"),
    "ChiSquaredPDF": ("dchisq(a,b)", "st.chi2.pdf(a,b)"),
    "ChiSquaredCDF": ("pchisq(a,b,lower=c==0)", "where(c, st.chi2.sf(a,b), st.chi2.cdf(a,b))"),
    "ChiSquaredICDF": ("qchisq(a,b,lower=c==0)", "where(c, st.chi2.isf(a,b), st.chi2.ppf(a,b))"),
    "BetaPDF": ("dbeta(a,b,c)", "st.beta.pdf(a,b,c)"),
    "BetaCDF": ("pbeta(a,b,c,lower=d==0)", "where(d, st.beta.sf(a,b,c), st.beta.cdf(a,b,c))"),
    "BetaICDF": ("qbeta(a,b,c,lower=d==0)", "where(d, st.beta.isf(a,b,c), st.beta.ppf(a,b,c))"),
    "FisherFPDF": ("df(a,b,c)", "st.f.pdf(a,b,c)"),
    "FisherFCDF": ("pf(a,b,c,lower=d==0)", "where(d, st.f.sf(a,b,c), st.f.cdf(a,b,c))"),
    "FisherFICDF": ("qf(a,b,c,lower=d==0)", "where(d, st.f.isf(a,b,c), st.f.ppf(a,b,c))"),
    "StudentTPDF": ("dt(a,b)", "st.t.pdf(a,b)"),
    "StudentTCDF": ("pt(a,b,lower=c==0)", "where(c, st.t.sf(a,b), st.t.cdf(a,b))"),
    "StudentTICDF": ("qt(a,b,lower=c==0)", "where(c, st.t.isf(a,b), st.t.ppf(a,b))"),
    "NormalPDF": ("dnorm(a,b,c)", "st.norm.pdf(a,b,c)"),
    "NormalCDF": ("pnorm(a,b,c,lower=d==0)", "where(d, st.norm.sf(a,b,c), st.norm.cdf(a,b,c))"),
    "NormalICDF": ("qnorm(a,b,c,lower=d==0)", "where(d, st.norm.isf(a,b,c), st.norm.ppf(a,b,c))"),
    "BinomialPDF": ("dbinom(a,b,c)", "st.binom.pmf(a,b,c)"),
    "BinomialCDF": ("pbinom(a,b,c,lower=d==0)", "where(d, st.binom.sf(a,b,c), st.binom.cdf(a,b,c))"),
    "HypergeometricPDF": ("dhyper(a,b,d-b,c)", "st.hypergeom.pmf(a,d,b,c)"),
    "HypergeometricCDF": ("phyper(a,b,d-b,c,lower=e==0)", "where(e, st.hypergeom.sf(a,d,b,c), st.hypergeom.cdf(a,d,b,c))"),
}


def reference():
    """{export: [(arguments, exact value)]}"""
    rows = {}
    for line in REFERENCE.read_text().splitlines():
        if line.startswith("#"):
            continue
        name, arguments, exact = line.split("\t")
        values = [float.fromhex(a) if "x" in a else int(a) for a in arguments.split()]
        rows.setdefault(name, []).append((values, Decimal(exact)))
    return rows


def ulps(got, exact):
    if not math.isfinite(got):
        return math.inf
    return float(abs(Decimal(got) - exact) / Decimal(math.ulp(float(exact))))


def errors(values, rows):
    return [ulps(value, exact) for value, (_, exact) in zip(values, rows)]


def figures(found, rows):
    """median, worst, and the arguments of the worst"""
    worst = max(range(len(found)), key=found.__getitem__)
    return median(found), found[worst], " ".join(f"{a:.6g}" for a in rows[worst][0])


def through_r(name, rows):
    expression = PEERS.get(name, (None, None))[0]
    if expression is None:
        return None
    columns = list(zip(*[values for values, _ in rows]))
    script = ";".join(f"{letter} <- c({','.join(repr(float(v)) for v in column)})"
                      for letter, column in zip("abcde", columns))
    # R's flags are not vectorised, so the rows are taken apart.
    text = (f"{script}; f <- Vectorize(function({','.join('abcde'[:len(columns)])}) {expression});"
            f"cat(sprintf('%.17g', suppressWarnings(f({','.join('abcde'[:len(columns)])}))), sep='\\n')")
    output = subprocess.run(["Rscript", "-"], input=text, capture_output=True, text=True, check=True).stdout.split()
    return [float(v) if v not in ("NA", "NaN") else math.nan for v in output]


def through_scipy(name, rows):
    import warnings

    import numpy as np
    from scipy import special, stats
    expression = PEERS.get(name, (None, None))[1]
    if expression is None:
        return None
    columns = {letter: np.array(column, dtype=float)
               for letter, column in zip("abcde", zip(*[values for values, _ in rows]))}
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return list(eval(expression, {"sp": special, "st": stats, "where": np.where}, columns))


def cell(value):
    return "lost" if math.isinf(value) else f"{value:.2f}" if value < 100 else f"{value:.3g}"


def main(arguments):
    if not arguments or set(arguments[1:]) - {"--write", "--peers"}:
        sys.exit(__doc__)
    core = Core(arguments[0])
    rows = reference()
    found = {name: figures(errors([getattr(core, name)(*values) for values, _ in cases], cases), cases)
             for name, cases in rows.items()}
    if "--write" not in arguments:
        recorded = {}
        for line in RECORD.read_text().splitlines()[1:]:
            name, _, middle, worst, _ = line.split("\t")
            recorded[name] = (float(middle), float(worst))
        grown = []
        for name, (middle, worst, where) in found.items():
            print(f"  {name:26} median {cell(middle):>8}  worst {cell(worst):>8} ulp")
            limits = [figure * SLACK_SHARE + SLACK_ULPS for figure in recorded.get(name, (-math.inf, -math.inf))]
            if middle > limits[0] or worst > limits[1]:
                grown.append(f"{name}: median {middle:.2f}, worst {worst:.2f} at {where}; recorded "
                             f"{recorded.get(name, 'nothing')}")
        sys.exit("\n".join(["errors grew; if that is meant, run accuracy.py LIBRARY --write"] + grown) if grown else 0)
    RECORD.write_text("export\tpoints\tmedian\tworst\tat\n" + "".join(
        f"{name}\t{len(rows[name])}\t{m:.3f}\t{w:.3f}\t{at}\n" for name, (m, w, at) in found.items()))
    lines = ["# Accuracy export by export", "",
             "Errors in units in the last place over a stratified random sample (`tests/data/accuracy/reference.tsv`, 30 exact",
             "digits by the series in `tests/accuracy/exact.py`). Written by", "",
             "    tests/accuracy/accuracy.py build/dev/src/libOrvanth.Core.Math.so --write --peers", "",
             "and held by the test `accuracy`: a figure that grows fails it. A value that is lost (infinite, NaN) is called",
             "lost. **Bold**: a peer's worst error is less than half of ours. Arguments reach from 0.05 to 2000 (shapes), nine",
             "standard deviations from the mean, probabilities down to 1e-12 for quantiles and 1e-290 for values.", "",
             "| export | points | median | worst | at | R median | R worst | SciPy median | SciPy worst |",
             "|---|---|---|---|---|---|---|---|---|"]
    peers = []
    for name, (middle, worst, where) in found.items():
        cells = [name, str(len(rows[name])), cell(middle), cell(worst), where]
        for peer, through in (("R", through_r), ("SciPy", through_scipy)):
            values = through(name, rows[name]) if "--peers" in arguments else None
            if values is None:
                cells += ["", ""]
                continue
            peer_middle, peer_worst, _ = figures(errors(values, rows[name]), rows[name])
            peers.append(f"{name}\t{peer}\t{peer_middle:.3f}\t{peer_worst:.3f}\n")
            better = peer_worst < worst / 2 and worst > 2
            cells += [cell(peer_middle), f"**{cell(peer_worst)}**" if better else cell(peer_worst)]
        print(" ".join(cells), file=sys.stderr)
        lines.append("| " + " | ".join(cells) + " |")
    PAGE.write_text("\n".join(lines) + "\n")
    PEER_RECORD.write_text("export\tpeer\tmedian\tworst\n" + "".join(peers))


if __name__ == "__main__":
    main(sys.argv[1:])
