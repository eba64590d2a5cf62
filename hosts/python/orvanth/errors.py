"""What went wrong, in the library's own words."""
import numpy as np

from . import _ufuncs


class ArgumentError(ValueError):
    """An argument was refused before anything was calculated."""


class CollinearityError(np.linalg.LinAlgError):
    """A column is a combination of the columns before it.

    ``column`` is its number from 0, ``name`` its name if names were given, otherwise None.
    """

    def __init__(self, text, column, name=None):
        super().__init__(text)
        self.column = column
        self.name = name


def last_error():
    """The text of the first element that failed in this thread's last failing call of a function over arrays.

    Empty if none has failed since the last call of ``last_error``.

    Examples
    --------
    >>> import numpy as np, orvanth
    >>> with np.errstate(invalid="ignore"):
    ...     p = orvanth.binomial_cdf(11, 10, 0.5)
    >>> p, orvanth.last_error().split(': ')[1]
    (nan, 'Number of Successes argument is 11, but must be <= Number of Trials !')
    """
    status, text = _ufuncs.last_failure()
    _ufuncs.clear_failure()
    return text if status else ""
