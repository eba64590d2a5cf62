#!/usr/bin/env python3
"""Makes index.html and benchmarks.md of what the benchmark programs left in a folder.

    benchmarks/report.py build/bench-report

Every export of the signature table needs a row of this library; what has none is an error.
"""
import base64
import io
import json
import math
import platform
import re
import subprocess
import sys
from pathlib import Path

import matplotlib
import numpy as np

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tools"))
from signature_table import exports  # noqa: E402

# Exports that are measured together with another.
TOGETHER = {"DeleteRandomStream": "CreateRandomStream", "LBFGSBStart": "LBFGSBStep", "LBFGSBEnd": "LBFGSBStep"}
CONTENDERS = {"export": "here", "direct": "LAPACK", "loop": "plain loop"}
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# What the cost grows with, and the exponent to expect.
GROWTH = (("MCcCDF", "", "k, equal lambda", "0 to 1: the error functions do not grow with k, the products do"),
          ("MCcCDF", "unequal", "k, unequal lambda", "1"),
          ("KolmogorovCDF", "lower p:2", "n", "matrix and recursion up to 140, constant above"),
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


def read(folder):
    """{export: {what: {contender: (median ns, spread as a share)}}}"""
    found, context = {}, None
    for path in sorted(folder.glob("*_bench.json")):
        data = json.loads(path.read_text())
        context = context or data["context"]
        runs = {}
        for row in data["benchmarks"]:
            if row.get("run_type") == "iteration" and "error_occurred" not in row:
                runs.setdefault(row["run_name"], []).append(row["cpu_time"] * NANOSECONDS[row["time_unit"]])
        for name, times in runs.items():
            export, contender, rest = parsed(name)
            low, median, high = np.percentile(times, [25, 50, 75])
            found.setdefault(export, {}).setdefault(" ".join(rest), {})[contender] = (median, (high - low) / median)
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
    match = re.search(r"(?:n:)?(\d+)", what)
    return int(match.group(1)) if match else None


def growth_points(found, export, condition):
    """(size, ns) of ours for the cases that hold the condition's words and no others."""
    wanted, points = set(condition.split()), []
    for what, contenders in found.get(export, {}).items():
        words = {w for w in what.split() if not re.fullmatch(r"(n:)?\d+", w)}
        if words == wanted and "here" in contenders and size_of(what):
            points.append((size_of(what), contenders["here"][0]))
    return sorted(points)


def picture(figure):
    buffer = io.BytesIO()
    figure.savefig(buffer, format="svg", bbox_inches="tight")
    plt.close(figure)
    return f'<img src="data:image/svg+xml;base64,{base64.b64encode(buffer.getvalue()).decode()}">'


def bars(found, names):
    rows = [(n, ratios(found[n])) for n in names if n in found and ratios(found[n])]
    peers = sorted({p for _, r in rows for p in r})
    figure, axes = plt.subplots(figsize=(9, 0.2 * len(rows) * max(2, len(peers) / 2) + 1))
    for k, peer in enumerate(peers):
        places = [i + 0.8 * k / len(peers) for i, (_, r) in enumerate(rows) if peer in r]
        axes.barh(places, [math.log10(r[peer]) for _, r in rows if peer in r], 0.8 / len(peers), label=peer)
    axes.set_yticks([i + 0.35 for i in range(len(rows))], [n for n, _ in rows])
    axes.invert_yaxis()
    axes.axvline(0, color="black", lw=0.8)
    axes.set_xlabel("log10 of the peer's time over ours: to the right we are faster")
    axes.legend(fontsize=8)
    return figure


def curves(found):
    figure, axes = plt.subplots(figsize=(8, 5))
    for export, condition, label, _ in GROWTH:
        points = growth_points(found, export, condition)
        if len(points) > 1:
            axes.loglog(*zip(*points), "o-", label=f"{export.removeprefix('growth ')}: {label}")
    axes.set_xlabel("size")
    axes.set_ylabel("nanoseconds")
    axes.legend(fontsize=8)
    return figure


def accuracy():
    """[(export, {who: (median, worst)})] of the records in docs/accuracy, by tests/accuracy/accuracy.py."""
    table = {}
    for line in (ROOT / "docs/accuracy/record.tsv").read_text().splitlines()[1:]:
        name, _, middle, worst, _ = line.split("\t")
        table[name] = {"here": (float(middle), float(worst))}
    for line in (ROOT / "docs/accuracy/peers.tsv").read_text().splitlines()[1:]:
        name, peer, middle, worst = line.split("\t")
        table[name][peer] = (float(middle), float(worst))
    return list(table.items())


def accuracy_section(rows):
    """HTML: worst errors as bars, and the table; red where a peer's worst is less than half of ours."""
    figure, axes = plt.subplots(figsize=(9, 0.28 * len(rows) + 1))
    for k, who in enumerate(("here", "R", "SciPy")):
        having = [(i, e[who][1]) for i, (_, e) in enumerate(rows) if who in e]
        axes.barh([i + 0.27 * k for i, _ in having], [math.log10(max(w, 0.1) / 0.1) if math.isfinite(w) else 20
                                                     for _, w in having], 0.27, left=-1, label=who)
    axes.set_yticks([i + 0.27 for i in range(len(rows))], [name for name, _ in rows], fontsize=7)
    axes.invert_yaxis()
    axes.set_xlabel("log10 of the worst error in units in the last place")
    axes.legend(fontsize=8)
    body = ["<tr><th>export<th>here: median<th>worst<th>R: median<th>worst<th>SciPy: median<th>worst</tr>"]
    for name, errors in rows:
        worst = errors["here"][1]
        lost = any(worst > 2 and e[1] < worst / 2 for who, e in errors.items() if who != "here")
        cells = "".join(f"<td>{errors[who][0]:.3g}<td>{errors[who][1]:.3g}" if who in errors else "<td><td>"
                        for who in ("here", "R", "SciPy"))
        body.append(f'<tr{" style=color:red" if lost else ""}><td>{name}{cells}</tr>')
    return ("<h2>Accuracy</h2><p>Errors in units in the last place over a stratified random sample, from docs/accuracy. "
            "Red: a peer's worst error is less than half of ours.</p>" + picture(figure) + "<table>" + "".join(body)
            + "</table>")


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
             "Median of repeated, randomly interleaved runs; the spread is the distance of the quartiles. A ratio above 1"
             " says that the peer takes longer."]
    extra = [(p.stem, p.read_text()) for p in sorted(folder.glob("*.md")) if p.stem != "benchmarks"]

    markdown = ["# Benchmarks", "", "Made by `./bench`.", "", *sum(([line, ""] for line in intro), [])]
    page = ["<!doctype html><meta charset=utf-8><title>Benchmarks</title><style>body{font:15px/1.45 sans-serif;"
            "max-width:72em;margin:2em auto;padding:0 1em}table{border-collapse:collapse;font-size:13px}td,th{border-bottom:"
            "1px solid #ddd;padding:2px 8px;text-align:left}img{max-width:100%}pre{font-size:12px}</style><h1>Benchmarks</h1>"]
    page += [f"<p>{line}</p>" for line in intro]
    for title, rows in tables:
        markdown += [f"## {title}", "", "| " + " | ".join(rows[0]) + " |", "|" + "---|" * len(rows[0])]
        markdown += ["| " + " | ".join(r) + " |" for r in rows[1:]] + [""]
        page.append(f"<h2>{title}</h2>")
        if title in groups and any(ratios(found.get(n, {})) for n in groups[title]):
            page.append(picture(bars(found, groups[title])))
        if title == "How cost grows":
            page.append(picture(curves(found)))
        cells = ["".join(f"<{tag}>{c}</{tag}>" for c in r) for tag, r in zip(["th"] + ["td"] * len(rows), rows)]
        page.append("<table>" + "".join(f"<tr>{c}</tr>" for c in cells) + "</table>")
    page.append(accuracy_section(accuracy()))
    markdown += ["## Accuracy", "", "Export by export beside R and SciPy: [accuracy/exports.md](accuracy/exports.md).", ""]
    for title, text in extra:
        markdown += [f"## {title}", "", text, ""]
        page.append(f"<h2>{title}</h2><pre>{text}</pre>")
    (folder / "benchmarks.md").write_text("\n".join(markdown))
    (folder / "index.html").write_text("\n".join(page))
    if without:
        sys.exit("report.py: no row for " + ", ".join(without) + "; add one to the benchmark of its family")


main()
