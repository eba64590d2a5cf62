"""Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple comparison
procedure for comparing several treatments with a control", JASA 50, 1955."""
import numpy as np

import orvanth

groups = [
    [9.76, 8.80, 7.68, 9.36],
    [12.80, 9.68, 12.16, 9.20, 10.55],
    [7.40, 8.50, 7.20, 8.24, 9.84, 8.32],  # the control last
]
n = np.array([len(g) for g in groups])
mean = np.array([np.mean(g) for g in groups])
df = sum(n - 1)
s = np.sqrt(sum(np.var(g) * len(g) for g in groups) / df)
t = (mean - mean[-1])[:-1] / (s * np.sqrt(1 / n + 1 / n[-1])[:-1])
p = orvanth.mcc_cdf(abs(t), len(groups), df, np.sqrt(n / (n + n[-1])), upper=True)
for i in range(len(t)):
    print(f"drug {i + 1}: t = {t[i]:.3f}, p = {p[i]:.4f}")
"""prints:
drug 1: t = 0.857, p = 0.6201
drug 2: t = 3.694, p = 0.0058
"""
