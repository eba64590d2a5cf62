"""Entrance scores and grades of fifteen law schools: the correlation and its bootstrap interval (B. Efron, 1979)."""
import numpy as np

from orvanth import stats

score = np.array([576, 635, 558, 578, 666, 580, 555, 661, 651, 605, 653, 575, 545, 572, 594], dtype=float)
grade = np.array([3.39, 3.30, 2.81, 3.03, 3.44, 3.07, 3.00, 3.43, 3.36, 3.13, 3.12, 2.74, 2.76, 2.88, 2.96])


def correlation(x, y):
    x, y = x - x.mean(), y - y.mean()
    return (x @ y) / np.sqrt((x @ x) * (y @ y))


result = stats.bootstrap((score, grade), correlation, n_resamples=2000, paired=True, vectorized=False, seed=1)
resampled = np.sort(result.bootstrap_distribution)  # result.confidence_interval interpolates between two of them
print(f"correlation {result.statistic:.4f}, 95 % interval {resampled[49]:.4f} to {resampled[1950]:.4f}")
