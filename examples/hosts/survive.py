"""A host in Python that goes on after failures."""
import numpy as np

import orvanth

# More successes than trials, among calls that are right.
with np.errstate(invalid="ignore"):
    p = orvanth.binomial_cdf([3, 11, 5], 10, 0.5)
print(p)
print(orvanth.last_error())

# A closed stream.
with orvanth.RandomStream(1) as stream:
    print(stream.indices(5))
try:
    stream.indices(5)
except orvanth.ArgumentError as error:
    print(error)

# A design with a redundant column.
x = np.column_stack([np.ones(5), [1, 2, 4, 7, 9], [2, 4, 8, 14, 18]])
try:
    orvanth.linalg.ols(x, [1, 2, 3, 4, 5], names=["intercept", "dose", "dose in grains"])
except orvanth.CollinearityError as error:
    print(error)
"""prints:
[0.171875          nan 0.62304688]
Error in function boost::math::cdf(binomial_distribution<double> const&, double): Number of Successes argument is 11, but must be <= Number of Trials !
[0 2 4 4 3]
RandomUniformInteger: the handle is 0, which means none
OLS: column 3 is collinear with the columns before it (dose in grains)
"""
