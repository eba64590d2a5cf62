"""Yield against variety and dose, with a column for each variety beside the intercept: one column is redundant."""
import numpy as np

import orvanth

names = ["intercept", "variety A", "variety B", "variety C", "dose"]
variety = np.array([0, 0, 0, 1, 1, 1, 2, 2, 2])
dose = np.array([1, 2, 4, 1, 3, 4, 2, 3, 5])
y = np.array([5.1, 5.9, 8.2, 6.3, 8.1, 9.0, 4.9, 6.2, 8.1])
x = np.column_stack([np.ones(9), variety == 0, variety == 1, variety == 2, dose])
while True:
    try:
        fit = orvanth.linalg.ols(x, y, names=names)
        break
    except orvanth.CollinearityError as error:
        print(f"{names[error.column]} is redundant")
        x = np.delete(x, error.column, axis=1)
        names.pop(error.column)
for name, coefficient in zip(names, fit.coefficients):
    print(f"{name}: {coefficient:.4f}")
