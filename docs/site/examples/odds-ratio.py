"""Convictions of like-sex twins of criminals: 2 of 17 dizygotic and 10 of 13 monozygotic twins (R. A. Fisher, 1962)."""
from orvanth import stats

result = stats.fisher_exact([[2, 15], [10, 3]])
interval = result.confidence_interval(0.95)
print(f"95 % interval of the odds ratio: {interval.low:.5f} to {interval.high:.5f}, p = {result.pvalue:.7f}")
