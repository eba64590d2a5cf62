"""Distributions, special functions, linear algebra, random numbers and a minimiser, from Orvanth.Core.Math.

Every scalar function is there twice: as a ufunc under the library's own name (``NormalCDF(x, mean, sd, tail)``) and
as a function whose tails are named (``normal_cdf(x, mean, sd, upper=True)``). Both broadcast, take ``out`` and
``where`` and release the interpreter's lock. An element that fails is NaN; ``numpy.errstate`` decides whether that
warns, raises or calls, and ``last_error()`` has the library's text.

``orvanth.linalg``, ``orvanth.random`` and ``minimize`` raise exceptions. ``orvanth.stats`` has the tests that rest on
the distributions.
"""
from . import _ufuncs  # first: it says so if this interpreter cannot hold NumPy's ufuncs
from ._version import __version__  # noqa: F401
from . import functions, linalg, random  # noqa: F401
from .errors import ArgumentError, CollinearityError, last_error  # noqa: F401
from .functions import *  # noqa: F401,F403
from .optimize import OptimizeResult, minimize  # noqa: F401
from .random import RandomStream  # noqa: F401
from . import stats  # noqa: F401,E402  it rests on all of the above

ufuncs = {name: f for name, f in vars(_ufuncs).items() if hasattr(f, "nin")}
globals().update(ufuncs)
__all__ = ["ArgumentError", "CollinearityError", "OptimizeResult", "RandomStream", "last_error", "linalg", "minimize",
           "random", "stats", *functions.__all__, *ufuncs]
