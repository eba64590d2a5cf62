"""Yield against variety and dose, with a column for each variety beside the intercept: one column is redundant."""
import numpy as np

import orvanth
from orvanth import stats

names = ["variety A", "variety B", "variety C", "dose"]
variety = np.array([0, 0, 0, 1, 1, 1, 2, 2, 2])
dose = np.array([1, 2, 4, 1, 3, 4, 2, 3, 5])
y = np.array([5.1, 5.9, 8.2, 6.3, 8.1, 9.0, 4.9, 6.2, 8.1])
columns = dict(zip(names, [variety == 0, variety == 1, variety == 2, dose]))
while True:
    try:
        fit = stats.ols(np.column_stack(list(columns.values())), y, names=list(columns))  # an intercept comes first
        break
    except orvanth.CollinearityError as error:
        print(f"{error.name} is redundant")
        del columns[error.name]
for name, coefficient in zip(["intercept", *columns], fit.coefficients):
    print(f"{name}: {coefficient:.4f}")
