#!/usr/bin/env python3
"""Makes index.html and benchmarks.md of what the benchmark programs left in a folder.

    benchmarks/report.py build/bench-report

Every export of the signature table needs a row of this library; what has none is an error.
"""
import json
import math
import platform
import re
import subprocess
import sys
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tools"))
import page  # noqa: E402
from signature_table import exports  # noqa: E402

TITLES = {"instructions": "Instructions of one call", "peers-kolmogorov": "SciPy and R: Kolmogorov",
          "peers-linalg": "R and NumPy: least squares", "peers-multiple_comparison": "SciPy and Rmath: studentised range",
          "peers-random": "NumPy: random numbers", "peers-shield": "The cost of the shield",
          "peers-dotnet": ".NET on Mono", "peers-stats": "SciPy and simulation: the tests of orvanth.stats",
          "peers-cluster": "Dask beside plain processes"}

# Exports that are measured together with another.
TOGETHER = {"DeleteRandomStream": "CreateRandomStream", "LBFGSBStart": "LBFGSBStep", "LBFGSBEnd": "LBFGSBStep"}
CONTENDERS = {"export": "here", "direct": "LAPACK", "loop": "plain loop"}
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# A ratio between this and its inverse is level.
LEVEL = 0.95
# Why rows are behind a peer: exports, peers, the reason. The first match counts.
REASONS = (
    ("LBFGSBStep", "setulb|packaged", "the boundary of each step: the checks of the state and the reading of the task"),
    ("LBFGSBStep", "R", "an older version of the method, which needs fewer evaluations here: docs/accuracy/optimise.md"),
    ("OLS", "LS|LAPACK", "OLS tests every column for collinearity before it goes on"),
    ("CreateRandomStream", "Boost", "the stream is a block of the heap with a checked marker"),
    (".*", "Boost|LAPACK|plain loop|plain", "the same calculation without the boundary: errno and exceptions are kept apart"),
    ("Hypergeometric.*", ".*", "the probability is exact to the last digits; the peers lose digits with N"),
    ("(Beta|FisherF|StudentT|Binomial)(Regularized.*|CDF|ICDF|PS)", "Rmath|GSL",
     "the peer uses another method for the incomplete beta function; here the bits of results are kept"),
    ("Normal.*|.*PDF|Gamma.*|LogXplus1|Erf.*|InverseErf.*", "Rmath|GSL",
     "a short function by another method; the boundary is a large share of our time"),
)
# What the cost grows with, and the exponent to expect.
GROWTH = (("MCcCDF", "", "k, equal lambda", "0 to 1: the error functions do not grow with k, the products do"),
          ("MCcCDF", "unequal", "k, unequal lambda", "1"),
          ("KolmogorovCDF", "lower tail, p = 0.95", "n", "matrix and recursion up to 140, constant above"),
          ("FNCHypergeometricCDF", "", "points of the support", "0.5: the table holds a multiple of the deviation"),
          ("FNCHypergeometricMoments", "", "points of the support", "0.5"),
          ("LBFGSBStep", "", "n", "1"),
          ("growth RandomNormalVariable", "", "numbers", "1"))


def parsed(name):
    """export, contender, what remains of a benchmark's name"""
    parts = name.split("/")
    if parts[0] in ("Tail", "Quantile"):
        return {"Tail": "KolmogorovCDF", "Quantile": "KolmogorovICDF"}[parts[0]], "here", parts[1:]
    if parts[0] == "least squares: OLS":
        return "OLS", "here", parts[2:]
    if parts[0] == "least squares: LS":
        return "OLS", "LS", parts[2:]
    return parts[0], CONTENDERS.get(parts[1], parts[1]) if len(parts) > 1 else "", parts[2:]


# What a bare number in the name of a case means, by program.
NUMBERS = {"multiple_comparison_bench": "k", "noncentral_hypergeometric_bench": "points", "optimise_bench": "n",
           "random_bench": "count"}


def case_text(program, parts):
    """The case by its arguments: 'k = 3, unequal'. Without any it is the random sample of the accuracy tests."""
    texts = []
    for part in parts:
        if part.isdigit() and program in NUMBERS:
            texts.append(f"{NUMBERS[program]} = {part}")
        else:
            texts.append(part.replace(":", " = "))
    return ", ".join(texts)


def read(folder):
    """{export: {what: {contender: (median ns, spread as a share)}}}"""
    found, context = {}, None
    for path in sorted(folder.glob("*_bench.json")):
        data = json.loads(path.read_text())
        context = context or data["context"]
        runs, labels = {}, {}
        for row in data["benchmarks"]:
            if row.get("run_type") == "iteration" and "error_occurred" not in row:
                labels[row["run_name"]] = row.get("label", "")
                runs.setdefault(row["run_name"], []).append(row["cpu_time"] * NANOSECONDS[row["time_unit"]])
        for name, times in runs.items():
            export, contender, rest = parsed(name)
            low, median, high = np.percentile(times, [25, 50, 75])
            what = labels.get(name) or case_text(path.stem, rest)
            found.setdefault(export, {}).setdefault(what, {})[contender] = (median, (high - low) / median)
    if not found:
        sys.exit(f"report.py: {folder} holds no *_bench.json; run ./bench")
    return found, context


def missing(found):
    names = {e for e, what in found.items() if any("here" in c for c in what.values())}
    return [row.name for row in exports() if TOGETHER.get(row.name, row.name) not in names]


def ratios(cases):
    """{contender: geometric mean of its time over ours}"""
    logs = {}
    for contenders in cases.values():
        if "here" in contenders:
            for name, (time, _) in contenders.items():
                if name != "here":
                    logs.setdefault(name, []).append(math.log(time / contenders["here"][0]))
    return {name: math.exp(sum(v) / len(v)) for name, v in logs.items()}


def shown(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3), ("ns", 1.0)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.2g} ns"


def natural(item):
    """Numbers in a case's name in their order."""
    return [(0, int(word), "") if word.isdigit() else (1, 0, word) for word in re.split(r"(\d+)", item[0])]


def size_of(what):
    match = re.search(r"(?:n|k|points|count) = (\d+)", what)
    return int(match.group(1)) if match else None


def growth_points(found, export, condition):
    """(size, ns) of ours for the cases that have the condition beside the size, and nothing else."""
    points = []
    for what, contenders in found.get(export, {}).items():
        rest = ", ".join(w for w in what.split(", ") if not re.fullmatch(r"(n|k|points|count) = \d+", w))
        if rest == condition and "here" in contenders and size_of(what):
            points.append((size_of(what), contenders["here"][0]))
    return sorted(points)


def outcome(ratio):
    return "ahead" if ratio > 1 / LEVEL else "behind" if ratio < LEVEL else "level"


def comparisons(found):
    """[(export, case, peer, ratio)] of every row that has a peer, in the order of the table."""
    rows = []
    for row in exports():
        for what, contenders in sorted(found.get(row.name, {}).items(), key=natural):
            if "here" in contenders:
                rows += [(row.name, what, peer, time / contenders["here"][0])
                         for peer, (time, _) in sorted(contenders.items()) if peer != "here"]
    return rows


def reason(export, peer):
    for names, peers, text in REASONS:
        if re.fullmatch(names, export) and re.fullmatch(peers, peer):
            return text
    return "not examined"


def summary(rows):
    """One line; by peer how many rows are ahead, level and behind; which rows are behind and why."""
    def count(chosen):
        return [sum(outcome(r) == o for *_, r in chosen) for o in ("ahead", "level", "behind")]

    total = "{} comparisons with peers: {} ahead, {} level, {} behind".format(len(rows), *count(rows))
    by_peer = [["peer", "ahead", "level", "behind"]]
    by_peer += [[peer, *map(str, count([r for r in rows if r[2] == peer]))] for peer in sorted({r[2] for r in rows})]
    behind = {}
    for export, what, peer, ratio in rows:
        if outcome(ratio) == "behind":
            behind.setdefault(reason(export, peer), []).append(f"{export}{f' ({what})' if what else ''} {peer} {ratio:.2f}")
    why = [["why", "behind: peer's time over ours"]] + [[text, "; ".join(cases)] for text, cases in behind.items()]
    return total, by_peer, why


def main():
    if len(sys.argv) != 2:
        sys.exit("report.py: give the folder with the *_bench.json, as in the heading of this file")
    folder = Path(sys.argv[1])
    found, context = read(folder)
    without = missing(found)
    machine = next((line.split(":")[1].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                    if line.startswith("model name")), platform.machine())
    packages = subprocess.run(["dpkg-query", "-W", "-f=${Package} ${Version}; ", "g++", "libboost-dev",
                               "libopenblas0-pthread", "r-mathlib", "libgsl-dev", "python3-scipy"],
                              capture_output=True, text=True).stdout
    # [(title, [row, ...])], a row a list of cells; the first row of a table is its head.
    groups, tables = {}, []
    for row in exports():
        groups.setdefault(row.folder, []).append(row.name)
    # The shield's own functions, beside the exports that they refine.
    groups["multiple_comparison"] += [name for name in found if name.startswith("Refined")]
    for family, names in groups.items():
        head = ["export", "case", "here", "spread", "peers: time, ratio to ours", "mean ratio"]
        body = []
        for name in names:
            if name in TOGETHER:
                body.append([name, "", "", "", f"with {TOGETHER[name]}", ""])
                continue
            mean = ", ".join(f"{peer} {r:.2f}" for peer, r in sorted(ratios(found.get(name, {})).items()))
            for what, contenders in sorted(found.get(name, {}).items(), key=natural):
                if "here" not in contenders:
                    continue
                time, spread = contenders["here"]
                peers = "; ".join(f"{p} {shown(t)}, {t / time:.2f}" for p, (t, _) in sorted(contenders.items()) if p != "here")
                body.append([name, what, shown(time), f"{100 * spread:.0f} %", peers, mean])
                mean = ""
        tables.append((family, [head] + body))
    body = []
    for export, condition, label, expected in GROWTH:
        points = growth_points(found, export, condition)
        if len(points) > 1:
            slope = np.polyfit(*np.log(np.array(points, dtype=float)).T, 1)[0]
            body.append([export.removeprefix("growth "), label, ", ".join(f"{n}: {shown(t)}" for n, t in points),
                         f"{slope:.2f}", expected])
    ols = [(int(m) * int(n) ** 2, t["here"][0]) for what, t in found.get("OLS", {}).items() if "here" in t
           for m, n in [re.search(r"(\d+)x(\d+)", what).groups()]]
    if len(ols) > 1:
        slope = np.polyfit(*np.log(np.array(sorted(ols), dtype=float)).T, 1)[0]
        body.append(["OLS", "rows times columns squared", ", ".join(f"{s:.1e}: {shown(t)}" for s, t in sorted(ols)),
                     f"{slope:.2f}", "1 where the factorisation rules"])
    tables.append(("How cost grows", [["export", "with", "cost", "fitted exponent", "expected"]] + body))
    intro = [f"Machine: {machine}, {context['num_cpus']} processors. {packages}One OpenBLAS thread.",
             "Each figure is the median of repeated runs in random order; the spread is the distance of the quartiles."
             " A ratio is the peer's time over ours: above 1 the peer takes longer. A row is level if the ratio is"
             f" between {LEVEL} and {1 / LEVEL:.2f}. A case without a text is the random sample of the accuracy tests."]
    # Tables of errors are at home in docs/accuracy; of a peer's report only the times are taken.
    extra = [(TITLES.get(p.stem, p.stem), re.sub(r"^Largest error.*?(?=^Times)", "", p.read_text().strip(), flags=re.M | re.S))
             for p in sorted(folder.glob("*.md")) if p.stem != "benchmarks"]
    rows = comparisons(found)
    total, by_peer, why = summary(rows)

    def as_markdown(table):
        return ["| " + " | ".join(table[0]) + " |", "|" + "---|" * len(table[0])] + [
            "| " + " | ".join(r) + " |" for r in table[1:]] + [""]

    markdown = ["# Benchmarks", "", "Made by `./bench`.", "", f"**{total}.**", "", *as_markdown(by_peer),
                "## Which rows are behind, and why", "", *as_markdown(why), "## Machine", "",
                *sum(([line, ""] for line in intro), [])]
    for title, table in tables:
        markdown += [f"## {title}", "", *as_markdown(table)]
    markdown += ["## Accuracy", "", "Errors beside R and SciPy: [accuracy/exports.md](accuracy/exports.md).", ""]
    for title, text in extra:
        markdown += [f"## {title}", "", text, ""]
    (folder / "benchmarks.md").write_text("\n".join(markdown))
    curves = [(f"{export.removeprefix('growth ')}: {label}", growth_points(found, export, condition))
              for export, condition, label, _ in GROWTH]
    (folder / "index.html").write_text(page.page(total, by_peer, why, intro, rows, tables, curves, extra))
    print(total)
    if without:
        sys.exit("report.py: no row for " + ", ".join(without) + "; add one to the benchmark of its family")


if __name__ == "__main__":
    main()
