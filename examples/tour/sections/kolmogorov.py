"""Kolmogorov's test of a real sample against a fully specified distribution."""
import csv

import matplotlib.pyplot as plt
import numpy as np
from orvanth import stats

from palette import BLUE, NAVY, PALE, RED, SKY


def run(core, page):
    page.section("Kolmogorov's test with its exact distribution",
                 "The plant weights of all three groups, against a normal distribution that was fixed beforehand: "
                 "mean 5, standard deviation 0.7. The statistic is the largest distance between the two "
                 "distribution functions; its p-value is that of the finite sample.")
    with open(page.data("tour/plant_growth.csv")) as file:
        weights = np.sort([float(row["weight"]) for row in csv.DictReader(file)])
    n = weights.size
    theory = np.array([core.NormalCDF(x, 5.0, 0.7, 0) for x in weights])
    steps = np.arange(1, n + 1) / n
    d = max(np.max(steps - theory), np.max(theory - steps + 1 / n))
    point = core.KolmogorovICDF(0.05, n, 1)
    page.table(("", "value"), [("observations", n), ("D", float(d)), ("exact p-value", core.KolmogorovCDF(d, n, 1)),
                               ("exact 95 % point of D", point)])
    page.compare([("P(D <= 0.274), n = 10", core.KolmogorovCDF(0.274, 10, 0), 0.628479615456504275)],
                 "Beside Marsaglia, Tsang and Wang (2003)", tolerance=1e-13)
    page.compare([(f"P(D > x), n = {size}, x = {x}", core.KolmogorovICDF(alpha, size, 1), x)
                  for size, alpha, x in ((5, 0.05, 0.56328), (10, 0.05, 0.40925), (20, 0.01, 0.35241))],
                 "Percentage points beside Miller's table (1956)", tolerance=2e-5)
    result = stats.ks_1samp(weights, "normal", args=(5.0, 0.7))
    band = result.confidence_band(0.95)[1]
    page.compare([("D", float(result.statistic), float(d)), ("p-value", float(result.pvalue), core.KolmogorovCDF(d, n, 1)),
                  ("half the width of the 95 % band", float(band.high[0] - steps[0]), point)],
                 "The same test through orvanth.stats", tolerance=1e-12, headers=("orvanth.stats", "exports"))

    grid = np.linspace(3.2, 6.8, 300)
    curve = np.array([core.NormalCDF(x, 5.0, 0.7, 0) for x in grid])
    figure, (left, right) = plt.subplots(1, 2)
    left.fill_between(grid, np.clip(curve - point, 0, 1), np.clip(curve + point, 0, 1), color=PALE,
                      label="exact 95 % band")
    left.plot(grid, curve, color=BLUE, label="normal, fixed beforehand")
    left.step(np.r_[grid[0], weights, grid[-1]], np.r_[0, steps, 1], where="post", color=RED, label="sample")
    left.set_xlabel("dried weight")
    left.legend(loc="upper left")
    x = np.linspace(0.02, 0.5, 200)
    for size, colour in ((5, SKY), (30, BLUE), (1000, NAVY)):
        right.plot(x, [core.KolmogorovCDF(v, size, 0) for v in x], color=colour, label=f"n = {size}")
    right.axvline(d, color=RED)
    right.set_xlabel("D")
    right.set_title("P(D <= x); the sample's D in red")
    right.legend()
    page.figure(figure, "The sample stays inside the band in which 19 of 20 samples of this size lie as a whole.")
