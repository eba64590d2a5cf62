"""All pairs of three groups: weight of dried plants under a control and two treatments (R's PlantGrowth)."""
from itertools import combinations

from orvanth import stats

groups = {
    "control": [4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14],
    "treatment 1": [4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69],
    "treatment 2": [6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26],
}
names = list(groups)
result = stats.tukey_hsd(*groups.values(), names=names)  # print(result) shows all of it as a table
interval = result.confidence_interval(0.95)
for a, b in combinations(range(len(names)), 2):
    print(f"{names[b]} - {names[a]}: {result.statistic[b, a]:.3f}, interval {interval.low[b, a]:.3f} "
          f"to {interval.high[b, a]:.3f}, p = {result.pvalue[b, a]:.4f}")
