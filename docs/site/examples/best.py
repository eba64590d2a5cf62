"""Which of three treatments gives the heaviest plants? Hsu's comparison of each with the best of the others."""
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
error = np.sqrt(values.var(axis=1, ddof=1).mean() * 2 / n)
half = error * orvanth.mcb_icdf(0.95, k, df, np.full(k, np.sqrt(0.5)))
means = values.mean(axis=1)
for i, name in enumerate(groups):
    difference = means[i] - np.delete(means, i).max()
    low, high = min(0, difference - half), max(0, difference + half)
    verdict = "may be the best" if high > 0 else "is not the best"
    print(f"{name}: {difference:.3f} from the best of the others, interval {low:.3f} to {high:.3f}: {verdict}")
