"""A bootstrap interval, and a simulated null distribution that the library itself judges."""
import csv

import matplotlib.pyplot as plt
import numpy as np
from orvanth import stats

from palette import BLUE, RED, SKY

RESAMPLES = 4000
SAMPLE = 25
REPEATS = 2000


def run(core, page):
    page.section("Random streams: bootstrap and simulation",
                 "Index vectors from a seeded stream resample the weights of the second treatment group; normal variates "
                 "simulate the distribution of a test statistic, which is then held against its exact distribution.")
    with open(page.data("tour/plant_growth.csv")) as file:
        weights = np.array([float(row["weight"]) for row in csv.DictReader(file) if row["group"] == "trt2"])
    n = weights.size
    stream = core.CreateRandomStream(20240)
    index = np.zeros(n, dtype=np.int32)
    means = np.empty(RESAMPLES)
    for i in range(RESAMPLES):
        core.RandomUniformInteger(stream, index, n)
        means[i] = weights[index].mean()
    core.DeleteRandomStream(stream)
    means.sort()
    low, high = means[int(0.025 * RESAMPLES)], means[int(0.975 * RESAMPLES)]
    half = core.StudentTICDF(0.025, n - 1, 1) * weights.std(ddof=1) / np.sqrt(n)
    page.table(("mean of trt2", "from", "to"), [("bootstrap, 4000 resamples", float(low), float(high)),
                                                ("Student t", weights.mean() - half, weights.mean() + half)],
               f"95 % intervals of the mean, {weights.mean():.4f}")
    resampled = stats.bootstrap(weights, np.mean, n_resamples=RESAMPLES, seed=20240)
    page.holds("orvanth.stats.bootstrap has the same resamples from this seed",
               np.allclose(np.sort(resampled.bootstrap_distribution), means, rtol=1e-14))

    # Kolmogorov's statistic of simulated normal samples follows its own exact distribution.
    draws = np.zeros(SAMPLE * REPEATS)
    core.RandomNormalVariables(draws, SAMPLE, REPEATS, 0.0, 1.0, 1)
    probabilities = np.array([core.NormalCDF(x, 0, 1, 0) for x in draws]).reshape(REPEATS, SAMPLE)
    probabilities.sort(axis=1)
    steps = np.arange(1, SAMPLE + 1) / SAMPLE
    statistic = np.sort(np.maximum(steps - probabilities, probabilities - steps + 1 / SAMPLE).max(axis=1))
    exact = np.array([core.KolmogorovCDF(d, SAMPLE, 0) for d in statistic])
    grid = np.arange(1, REPEATS + 1) / REPEATS
    distance = float(np.maximum(grid - exact, exact - grid + 1 / REPEATS).max())
    p = core.KolmogorovCDF(distance, REPEATS, 1)
    page.table(("", "value"), [("simulated samples", REPEATS), ("largest distance to the exact distribution", distance),
                               ("its own exact p-value", p)],
               f"D of {SAMPLE} simulated normal observations against the exact distribution of D")
    page.holds("at the level of 0.1 % the simulated statistics do not differ from their exact distribution", p > 0.001)
    page.holds("Student's interval and the bootstrap interval overlap in most of their length",
               min(high, weights.mean() + half) - max(low, weights.mean() - half) > half)

    figure, (left, right) = plt.subplots(1, 2)
    left.hist(means, bins=50, color=SKY)
    left.axvspan(low, high, color=BLUE, alpha=0.15)
    left.axvline(weights.mean(), color=BLUE)
    left.set_xlabel("bootstrap mean")
    right.hist(draws, bins=80, density=True, color=SKY)
    x = np.linspace(-4, 4, 200)
    right.plot(x, [core.NormalPDF(v, 0, 1) for v in x], color=RED)
    right.set_xlabel(f"{draws.size} normal variates")
    page.figure(figure, "Bootstrap means of ten plants, and the variates behind the simulation.")
