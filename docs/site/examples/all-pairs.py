"""All pairs of three groups: weight of dried plants under a control and two treatments (R's PlantGrowth)."""
from itertools import combinations

import numpy as np

import orvanth

groups = {
    "control": [4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14],
    "treatment 1": [4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69],
    "treatment 2": [6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26],
}
values = np.array(list(groups.values()))
k, n = values.shape
df = k * (n - 1)
error = np.sqrt(values.var(axis=1, ddof=1).mean() * 2 / n)  # of a difference of two means
equal = np.full(k, np.sqrt(0.5))  # groups of equal size
half = error * orvanth.mca_icdf(0.95, k, df, equal)
for (a, first), (b, second) in combinations(zip(groups, values), 2):
    difference = second.mean() - first.mean()
    p = orvanth.mca_cdf(abs(difference) / error, k, df, equal, upper=True)
    print(f"{b} - {a}: {difference:.3f}, interval {difference - half:.3f} to {difference + half:.3f}, p = {p:.4f}")
