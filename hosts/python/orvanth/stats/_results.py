"""What results have in common: intervals, tables, the data set that is shown."""
from typing import NamedTuple

import numpy as np


class ConfidenceInterval(NamedTuple):
    """The ends of an interval, or of an array of intervals."""

    low: object
    high: object


def shown(value):
    """A number in a table."""
    if isinstance(value, str):
        return value
    return str(int(value)) if isinstance(value, (int, np.integer)) else f"{value:.4g}" if abs(value) < 1e-3 and value else f"{value:.4f}"


def table(headers, rows):
    """Lines of aligned columns: the first to the left, the others to the right."""
    cells = [list(headers)] + [[shown(c) for c in row] for row in rows]
    widths = [max(len(row[i]) for row in cells) for i in range(len(headers))]
    return "\n".join("  ".join([row[0].ljust(widths[0])] + [c.rjust(w) for c, w in zip(row[1:], widths[1:])]).rstrip()
                     for row in cells)


def heading(title, shape):
    """The title of a table, which says of many data sets which one is shown."""
    if not shape:
        return title
    return f"{title}\n{int(np.prod(shape))} data sets, shape {tuple(shape)}; the first of them:"


def first(array, axes):
    """Of an array of shape (..., axes of one data set) the part of the first data set."""
    array = np.asarray(array)
    return array[(0,) * (array.ndim - axes)]


def percent(level):
    return f"{100 * level:g}%"


def single_data_set(shape, what):
    if shape:
        raise ValueError(f"a plot shows one data set; this result has {int(np.prod(shape))}: {what}")
