"""The tests people come for, with the names, arguments and results that SciPy's users know.

Each takes many data sets in one call: observations lie along ``axis``, all other axes are data sets, and results have
the shape of the data sets. Missing values follow ``nan_policy``; pandas objects are taken as they are. Results print
as a table and have ``confidence_interval(level)`` and ``plot()`` where there is one to show; plots need matplotlib.

Left out for want of a distribution: powers of t and F tests (noncentral t and F), one-sided Kolmogorov tests.
"""
from . import multiple_comparison
from ._results import ConfidenceInterval
from .multiple_comparison import *  # noqa: F401,F403

__all__ = ["ConfidenceInterval", *multiple_comparison.__all__]
