"""Which of three treatments gives the heaviest plants? Hsu's comparison of each with the best of the others."""
from orvanth import stats

groups = {
    "control": [4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14],
    "treatment 1": [4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69],
    "treatment 2": [6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26],
}
result = stats.hsu_mcb(*groups.values(), names=list(groups))
interval = result.confidence_interval(0.95)
for name, difference, low, high in zip(groups, result.statistic, interval.low, interval.high):
    verdict = "may be the best" if high > 0 else "is not the best"
    print(f"{name}: {difference:.3f} from the best of the others, interval {low:.3f} to {high:.3f}: {verdict}")
