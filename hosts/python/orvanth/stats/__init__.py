"""The tests people come for, with the names, arguments and results that SciPy's users know.

Each takes many data sets in one call: observations lie along ``axis``, all other axes are data sets, and results have
the shape of the data sets. Missing values follow ``nan_policy``; pandas objects are taken as they are. Results print
as a table and have ``confidence_interval(level)`` and ``plot()`` where there is one to show; plots need matplotlib.

Where an argument is a Dask array nothing is computed yet: the result has Dask arrays in place of arrays, over the same
chunks of data sets, with the bits of one call over everything (``ols``: to rounding). ``result.compute()`` gives the
result in memory.

Left out for want of a distribution: powers of t and F tests (noncentral t and F; ``simulate_power``
simulates designs instead), one-sided Kolmogorov tests.
"""
from . import kolmogorov, multiple_comparison, proportions, regression, resampling, tables
from ._results import ConfidenceInterval
from .kolmogorov import *  # noqa: F401,F403
from .multiple_comparison import *  # noqa: F401,F403
from .proportions import *  # noqa: F401,F403
from .regression import *  # noqa: F401,F403
from .resampling import *  # noqa: F401,F403
from .tables import *  # noqa: F401,F403

__all__ = ["ConfidenceInterval"]
for _family in (kolmogorov, multiple_comparison, proportions, regression, resampling, tables):
    __all__ += _family.__all__
