"""Entrance scores and grades of fifteen law schools: the correlation and its bootstrap interval (B. Efron, 1979)."""
import numpy as np

import orvanth

score = np.array([576, 635, 558, 578, 666, 580, 555, 661, 651, 605, 653, 575, 545, 572, 594], dtype=float)
grade = np.array([3.39, 3.30, 2.81, 3.03, 3.44, 3.07, 3.00, 3.43, 3.36, 3.13, 3.12, 2.74, 2.76, 2.88, 2.96])


def correlation(x, y):
    x, y = x - x.mean(), y - y.mean()
    return (x @ y) / np.sqrt((x @ x) * (y @ y))


with orvanth.RandomStream(1) as stream:
    draws = [stream.indices(15) for _ in range(2000)]
resampled = np.sort([correlation(score[i], grade[i]) for i in draws])
print(f"correlation {correlation(score, grade):.4f}, 95 % interval {resampled[49]:.4f} to {resampled[1950]:.4f}")
