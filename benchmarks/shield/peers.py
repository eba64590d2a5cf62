#!/usr/bin/env python3
"""What hosts pay: the shield over the plain exports, and Python's ufuncs beside SciPy's, as Markdown.

    benchmarks/shield/peers.py build/bench-report/shield_bench.json build/bench/python
"""
import json
import sys
import time

import numpy as np

UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
LIMITS = {"Safe": 4.0, "Each": 1.0}  # ns over the export that a successful call and an element may cost


def shield_rows(path):
    """{export: {form: ns an element}}: the fastest of the repetitions, which other work disturbs least."""
    found = {}
    for row in json.loads(open(path).read())["benchmarks"]:
        if row.get("run_type") == "iteration":
            export, form = row["run_name"].removeprefix("shield ").rsplit("/", 1)
            ns = 1e9 / row["items_per_second"]
            forms = found.setdefault(export, {})
            forms[form] = min(ns, forms.get(form, ns))
    return found


def seconds(call, repetitions=9):
    best = float("inf")
    for _ in range(repetitions):
        before = time.process_time()
        call()
        best = min(best, time.process_time() - before)
    return best


def python_rows():
    import orvanth
    import scipy.special as sc
    import scipy.stats as st
    x, p = np.linspace(-4, 4, 50000), np.linspace(0.001, 0.999, 20000)
    cases = [
        ("NormalCDF", x, lambda v: orvanth.NormalCDF(v, 0, 1, 0), lambda v: sc.ndtr(v)),
        ("Erf", x, lambda v: orvanth.Erf(v), lambda v: sc.erf(v)),
        ("StudentTCDF, 17 df", x, lambda v: orvanth.StudentTCDF(v, 17, 0), lambda v: sc.stdtr(17, v)),
        ("GammaRegularized, a = 3", x + 5, lambda v: orvanth.GammaRegularized(3, v), lambda v: sc.gammainc(3, v)),
        ("BetaICDF, 2 and 3", p, lambda v: orvanth.BetaICDF(v, 2, 3, 0), lambda v: sc.betaincinv(2, 3, v)),
        ("BinomialCDF, n = 100", np.arange(20000) % 100, lambda v: orvanth.BinomialCDF(v, 100, 0.3, 0),
         lambda v: st.binom.cdf(v, 100, 0.3)),
    ]
    for name, values, ours, scipys in cases:
        elements = [seconds(lambda: f(values)) / len(values) * 1e9 for f in (ours, scipys)]
        one = float(values[7])

        def thousand(f):
            for _ in range(1000):
                f(one)

        scalar = [seconds(lambda: thousand(f), 5) / 1000 * 1e9 for f in (ours, scipys)]
        yield name, elements, scalar


def failing():
    import orvanth

    def thousand():
        with np.errstate(invalid="ignore"):
            for _ in range(1000):
                orvanth.BinomialCDF(11, 10, 0.5, 0)
    return seconds(thousand, 5) / 1000 * 1e9


def main(report, package):
    sys.path.insert(0, package)
    print("What the shield adds, in ns: a `Safe` call and one element of an `Each` call over the plain export, the "
          "fastest of the repetitions of each. At most "
          f"{LIMITS['Safe']:g} and {LIMITS['Each']:g} are wanted for successful calls.\n")
    print("| export | plain | Safe | over | Each | over |\n|---|---|---|---|---|---|")
    for export, forms in shield_rows(report).items():
        plain = forms["export"]
        cells = []
        for form, limit in LIMITS.items():
            if form in forms:
                over = forms[form] - plain
                mark = " (too much)" if over > limit and not export.startswith(("failing", "Random")) else ""
                cells += [f"{forms[form]:.1f}", f"{over:+.1f}{mark}"]
            else:
                cells += ["", ""]
        print(f"| {export} | {plain:.1f} | " + " | ".join(cells) + " |")
    print("\nPython, NumPy and SciPy in the same process, in ns of processor time.\n")
    print("| function | ns an element | SciPy | ratio | ns a scalar call | SciPy |\n|---|---|---|---|---|---|")
    for name, (ours, scipys), (scalar, scipys_scalar) in python_rows():
        print(f"| {name} | {ours:.0f} | {scipys:.0f} | {scipys / ours:.2f} | {scalar:.0f} | {scipys_scalar:.0f} |")
    print(f"\nA scalar ufunc call that fails, BinomialCDF(11, 10, 0.5, 0): {failing() / 1000:.1f} us.")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
