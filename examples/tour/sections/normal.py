"""z-tests and normal quantiles."""
import math
import re

import matplotlib.pyplot as plt
import numpy as np

from palette import BLUE, GREY, RED

# Standard normal points as printed in the tables of the textbooks, to their digits.
POINTS = [(0.90, 1.2816), (0.95, 1.6449), (0.975, 1.9600), (0.99, 2.3263), (0.995, 2.5758), (0.9995, 3.2905)]


def instruments(page, name):
    """The columns of a one-way data file, one instrument each."""
    lines = page.data(f"nist/anova/{name}.dat").read_text().splitlines()
    rows = [line.split() for line in lines if re.fullmatch(r"\s*(\d+\.\d+\s+)+\d+\.\d+\s*", line)]
    return np.array(rows, dtype=float).T


def certified(page, name, quantity):
    for line in page.data("nist/certified.tsv").read_text().splitlines():
        if line.startswith(f"{name}\t{quantity}\t"):
            return float(line.split("\t")[2])
    raise KeyError(f"{name} {quantity}")


def run(core, page):
    page.section("Normal distribution: quantiles and z-tests",
                 "Quantiles beside the printed tables, then a z-test between two instruments that "
                 "measured the atomic weight of silver 24 times each.")
    page.compare([(f"quantile at {p}", core.NormalICDF(p, 0, 1, 0), z) for p, z in POINTS],
                 "Normal quantiles beside the printed table", tolerance=5e-5)

    first, second = instruments(page, "AtmWtAgt")
    sd = certified(page, "AtmWtAgt", "residual_sd")
    error = sd * math.sqrt(1 / first.size + 1 / second.size)
    z = (first.mean() - second.mean()) / error
    # With two groups the square of this statistic is the certified F of the analysis of variance.
    page.compare([("z squared (certified F)", z * z, certified(page, "AtmWtAgt", "f_statistic"))],
                 "Two instruments: z-test with the certified residual standard deviation", tolerance=1e-8)
    p = 2 * core.NormalCDF(abs(z), 0, 1, 1)
    page.table(("", "value"), [("difference of means", f"{first.mean() - second.mean():.6e}"),
                               ("its standard error", f"{error:.6e}"), ("z", z), ("two-sided p", p)])

    half = core.NormalICDF(0.025, 0, 1, 1) * sd / math.sqrt(first.size)
    grid = np.linspace(-5, 5, 401)
    figure, (left, right) = plt.subplots(1, 2)
    left.plot(grid, [core.NormalPDF(x, 0, 1) for x in grid], color=BLUE)
    for side in (-1, 1):
        tail = [x for x in grid if side * x >= abs(z)]
        left.fill_between(tail, [core.NormalPDF(x, 0, 1) for x in tail], color=RED)
        left.axvline(side * abs(z), color=RED)
    left.set_title(f"|z| = {abs(z):.2f}, p = {p:.1e}")
    left.set_xlabel("z")
    for i, values in enumerate((first, second)):
        jitter = np.linspace(-0.12, 0.12, values.size)
        right.plot(i + 1 + jitter, (values - 107.868) * 1e6, ".", color=GREY)
        right.errorbar(i + 1, (values.mean() - 107.868) * 1e6, half * 1e6, fmt="o", capsize=6, color=BLUE)
    right.set_xticks((1, 2), ("instrument 1", "instrument 2"))
    right.set_ylabel("atomic weight − 107.868, in 1e−6")
    right.set_title("means with 95 % intervals")
    page.figure(figure, "The test statistic in its null distribution, and both instruments' measurements.")
