"""The golden rows as NumPy columns."""
from pathlib import Path

import numpy as np

DATA = Path(__file__).resolve().parents[3] / "tests" / "data" / "golden"
FILES = ("special", "continuous", "discrete", "kolmogorov", "multiple_comparison", "noncentral_hypergeometric")


def number(text):
    if text.startswith("["):
        return [number(t) for t in text[1:-1].split(",")]
    return float.fromhex(text) if "x" in text else float(text)


def rows():
    """{export: [(arguments, throws, result or text, errno, tolerance)]}"""
    found = {}
    for name in FILES:
        for line in (DATA / f"{name}.tsv").read_text().splitlines():
            if line and not line.startswith("#"):
                export, arguments, outcome, result, errno, _, tolerance = line.split("\t")
                found.setdefault(export, []).append(
                    ([number(a) for a in arguments.split(" ")], outcome == "throws", result, errno, tolerance))
    return found


def matches(got, want, tolerance):
    if np.isnan(want) or np.isnan(got):
        return np.isnan(want) and np.isnan(got)
    if np.isinf(want) or np.isinf(got):
        return got == want
    if tolerance == "exact":
        return got == want and np.signbit(got) == np.signbit(want)
    return abs(got - want) <= float(tolerance) * abs(want) or (want == 0 and abs(got) <= 1e-300)
