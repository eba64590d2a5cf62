"""Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple comparison
procedure for comparing several treatments with a control", JASA 50, 1955."""
from orvanth import stats

groups = [
    [9.76, 8.80, 7.68, 9.36],
    [12.80, 9.68, 12.16, 9.20, 10.55],
    [7.40, 8.50, 7.20, 8.24, 9.84, 8.32],  # the control last
]
result = stats.dunnett(*groups[:-1], control=groups[-1])
for i, (t, p) in enumerate(zip(result.statistic, result.pvalue)):
    print(f"drug {i + 1}: t = {t:.3f}, p = {p:.4f}")
