"""What the tests take: samples along an axis, missing values, and pandas objects."""
from dataclasses import dataclass

import numpy as np

NAN_POLICIES = ("propagate", "omit", "raise")


@dataclass
class Samples:
    """Samples with the observations along the last axis and the same axes of data sets before it.

    ``omit`` says that NaNs are missing observations; ``batch`` that there are axes of data sets.
    """

    values: list
    names: list
    omit: bool
    shape: tuple  # of the data sets

    @property
    def batch(self):
        return len(self.shape) > 0

    def moments(self):
        """(sizes, means, sums of squares about the means), each of shape (..., groups)."""
        found = [moments(v, self.omit) for v in self.values]
        return [np.stack([f[i] if f[i].shape == self.shape else np.broadcast_to(f[i], self.shape) for f in found], axis=-1)
                for i in range(3)]


def moments(values, omit):
    """(size, mean, sum of squares about the mean) along the last axis."""
    if omit:
        there = ~np.isnan(values)
        size = there.sum(axis=-1)
        with np.errstate(invalid="ignore"):
            mean = np.where(there, values, 0.0).sum(axis=-1) / size
            squares = np.where(there, values - mean[..., None], 0.0)
        return size, mean, (squares * squares).sum(axis=-1)
    size = np.full(values.shape[:-1], values.shape[-1])
    mean = values.sum(axis=-1) / values.shape[-1]
    with np.errstate(invalid="ignore"):  # infinities: the results are NaN
        squares = values - mean[..., None]
    return size, mean, (squares * squares).sum(axis=-1)


def check_policy(nan_policy):
    if nan_policy not in NAN_POLICIES:
        raise ValueError(f'nan_policy is "{nan_policy}"; it must be "propagate", "omit" or "raise"')


def observations(values, axis, nan_policy, name="the sample"):
    """An array of doubles with the observations along its last axis.

    Rows are contiguous, so that the sum of a data set has the same bits in any layout and any company.
    """
    check_policy(nan_policy)
    values = np.asarray(values, dtype=np.float64)
    if values.ndim == 0:
        raise ValueError(f"{name} is a single number; an array of observations is needed")
    if not -values.ndim <= axis < values.ndim:
        raise ValueError(f"{name} has {values.ndim} axes; there is no axis {axis}")
    values = np.ascontiguousarray(np.moveaxis(values, axis, -1))
    if nan_policy == "raise" and np.isnan(values).any():
        raise ValueError(f"{name} contains NaN; nan_policy='omit' leaves missing observations out")
    return values


def samples(arguments, axis, nan_policy, names, test, needed=2):
    """The samples of a test: arrays, Series, or one DataFrame, mapping or groupby with a sample in each item.

    ``test`` is the name of the test for the texts of errors.
    """
    given, found = list(arguments), None
    if len(given) == 1:
        given, found, axis = _items(given[0], axis)
    if len(given) < needed:
        if given and np.ndim(given[0]) > 1:
            raise ValueError(f"{test} was given one array of shape {np.shape(given[0])}; give each group as an argument of "
                             f"its own, as in {test}(*array)")
        raise ValueError(f"{test} compares groups: at least {needed} samples are needed, not {len(given)}")
    names = _names(given, names if names is not None else found)
    values = [observations(g, axis, nan_policy, f"sample {n}") for g, n in zip(given, names)]
    for value, name in zip(values, names):
        if value.shape[-1] == 0:
            raise ValueError(f"sample {name} has no observation")
    if sum(v.shape[-1] for v in values) <= len(values):
        raise ValueError(f"{test} estimates a variance within groups: more observations than groups are needed, "
                         f"not {sum(v.shape[-1] for v in values)} in {len(values)} groups")
    try:
        shape = np.broadcast_shapes(*(v.shape[:-1] for v in values))
    except ValueError:
        shapes = ", ".join(str(v.shape[:-1]) for v in values)
        raise ValueError(f"the samples hold different numbers of data sets: {shapes}") from None
    return Samples(values, names, nan_policy == "omit", shape)


def _items(argument, axis):
    """(samples, names, axis) of one argument that holds several samples."""
    if hasattr(argument, "columns"):  # a DataFrame: one sample in each column
        return [argument[c] for c in argument.columns], list(argument.columns), 0
    if hasattr(argument, "items"):  # a mapping, but no Series
        if hasattr(argument, "dtype"):
            return [argument], None, axis
        return list(argument.values()), list(argument.keys()), axis
    if hasattr(argument, "get_group"):  # a grouped Series
        pairs = list(argument)
        return [values for _, values in pairs], [name for name, _ in pairs], axis
    return [argument], None, axis


def _names(given, names):
    if names is not None:
        names = [str(n) for n in names]
        if len(names) != len(given):
            raise ValueError(f"{len(names)} names for {len(given)} samples")
        return names
    own = [getattr(g, "name", None) for g in given]
    if all(n is not None for n in own) and len(set(own)) == len(own):
        return [str(n) for n in own]
    return [str(i) for i in range(len(given))]
