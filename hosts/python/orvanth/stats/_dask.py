"""Dask arrays as arguments of the tests: the same functions, called for each chunk of data sets by ``blockwise``.

The axes of the data sets are divided as the chunks are. Axes of observations are rejoined into one chunk first.
"""
import dataclasses
import functools
import inspect
import sys
import warnings

import numpy as np

from ._axis import observations
from ._results import table


def takes_dask(core, unless=None):
    """Lets a test take Dask arrays in the arguments that ``core`` names.

    ``core`` gives the number of last axes that belong to one data set. 1 stands for the axis of the observations,
    which the argument ``axis`` of the test names if it has one. An argument may hold several arrays. ``unless`` is an
    argument and the value of it that no chunk can serve by itself.
    """
    def decorate(function):
        signature = inspect.signature(function)

        @functools.wraps(function)
        def wrapped(*args, **kwargs):
            if not (_has_dask(args) or _has_dask(kwargs)):
                return function(*args, **kwargs)
            bound = signature.bind(*args, **kwargs)
            for name, value in bound.arguments.items():
                if name not in core and _has_dask(value):
                    raise ValueError(f"{name} is a Dask array; every chunk needs the whole of it, so give it as an "
                                     f"array in memory: {name}.compute()")
                if (name, value) == unless:
                    raise ValueError(f'{name} is "{value}", which concerns all data sets together; '
                                     "Dask arrays are tested chunk by chunk")
            return _by_chunks(wrapped, bound, core)
        return wrapped
    return decorate


def _has_dask(value):
    module = sys.modules.get("dask.array")  # where it is not imported there are no such arrays
    if module is None:
        return False
    if isinstance(value, (tuple, list)):
        return any(map(_has_dask, value))
    if isinstance(value, dict):
        return any(map(_has_dask, value.values()))
    return isinstance(value, module.Array)


@dataclasses.dataclass(frozen=True)
class _Place:
    """Stands in the arguments for an array, of which each chunk has its own part."""

    number: int


def _by_chunks(function, bound, core):
    import dask.array as da
    arrays, cores = [], []
    axis = bound.arguments.get("axis", -1)

    def take(value, axes):
        """The argument with places for its arrays, which go into ``arrays``."""
        if isinstance(value, dict) and _has_dask(value):
            return {key: take(v, axes) for key, v in value.items()}
        if isinstance(value, (tuple, list)) and _has_dask(value):
            return type(value)([take(v, axes) for v in value])
        if axes and (value is None or np.isscalar(value)):  # the name of a control
            return value
        array = value if _has_dask(value) else da.asarray(np.asarray(value))
        if any(np.isnan(n) for n in array.shape):
            raise ValueError("the shape of a Dask array is not known; call its compute_chunk_sizes() first")
        if array.ndim < axes:
            raise ValueError(f"a Dask array has shape {array.shape}; its last {axes} axes must hold a data set")
        if axes == 1:
            observations(np.zeros((1,) * array.ndim), axis, "propagate", "a Dask array")  # for its errors
            array = da.moveaxis(array, axis, -1)
        arrays.append(array.rechunk({array.ndim - 1 - i: -1 for i in range(axes)}))
        cores.append(axes)
        return _Place(len(arrays) - 1)

    for name, value in list(bound.arguments.items()):
        if name in core:
            bound.arguments[name] = take(value, core[name])
    if "axis" in bound.arguments:
        bound.arguments["axis"] = -1
    run = functools.partial(_run, function, bound.args, bound.kwargs)

    shapes = [a.shape[:a.ndim - c] for a, c in zip(arrays, cores)]
    try:
        axes = len(np.broadcast_shapes(*shapes))
    except ValueError:
        raise ValueError(f"the arrays hold different numbers of data sets: {', '.join(map(str, shapes))}") from None
    # One and two data sets along each axis show which parts of a result belong to data sets, and what is wrong.
    with warnings.catch_warnings(), np.errstate(all="ignore"):
        warnings.simplefilter("ignore")
        probes = [_probe(run, arrays, cores, size) for size in (1, 2)[:1 + (axes > 0)]]

    operands, label = [], axes
    for array, c in zip(arrays, cores):
        operands += [array, (*reversed(range(array.ndim - c)), *range(label, label + c))]
        label += c
    boxes = da.blockwise(functools.partial(_boxed, run, axes), tuple(reversed(range(axes))), *operands,
                         concatenate=True, dtype=object, meta=np.empty((0,) * axes, dtype=object),
                         token=function.__name__)
    return _result(boxes, *probes)


@dataclasses.dataclass
class _Probe:
    """What a test, a part or a method of its result gives for data sets of this shape."""

    shape: tuple
    result: object

    def holds_data_sets(self):
        """Whether the result is an array over the data sets."""
        return isinstance(self.result, (np.ndarray, np.generic)) and self.result.shape[:len(self.shape)] == self.shape


def _probe(run, arrays, cores, size):
    """Of ``size`` data sets along each axis that has as many."""
    own = [a.shape[a.ndim - c:] for a, c in zip(arrays, cores)]
    shapes = [tuple(min(n, size) for n in a.shape[:a.ndim - c]) for a, c in zip(arrays, cores)]
    return _Probe(np.broadcast_shapes(*shapes), run(*(np.broadcast_to(_plain(o), s + o) for o, s in zip(own, shapes))))


def _plain(shape):
    """A data set that every test takes: counts are 1, observations are between 0 and 1."""
    return (np.arange(shape[0]) + 0.5) / max(shape[0], 1) if len(shape) == 1 else np.ones(shape)


def _run(function, args, kwargs, *arrays):
    """The test of the data sets of one chunk."""
    def fill(value):
        if isinstance(value, _Place):
            return arrays[value.number]
        if type(value) is dict:
            return {key: fill(v) for key, v in value.items()}
        if type(value) in (tuple, list):
            return type(value)([fill(v) for v in value])
        return value
    return function(*fill(args), **fill(kwargs))


def _boxed(run, axes, *arrays):
    """The result of a chunk as the only element of an array, whatever the size of the chunk."""
    return _box(run(*arrays), axes)


def _box(result, axes):
    box = np.empty(1, dtype=object)
    box[0] = result
    return box.reshape((1,) * axes)


def _result(boxes, *probes):
    result = probes[0].result
    return DaskResult(boxes, probes) if dataclasses.is_dataclass(result) else _lazy(boxes, (), *probes)


def _lazy(boxes, path, *probes):
    """A result, or the part of it at ``path``, with Dask arrays in place of the arrays over data sets."""
    import dask.array as da
    parts = [p.result for p in probes]
    if all(p.holds_data_sets() for p in probes):
        axes = len(probes[0].shape)
        data_sets, own = tuple(reversed(range(axes))), parts[0].shape[axes:]
        names = tuple(range(axes, axes + len(own)))
        return da.blockwise(functools.partial(_unboxed, path), data_sets + names, boxes, data_sets,
                            new_axes=dict(zip(names, own)), dtype=parts[0].dtype,
                            meta=np.empty((0,) * (axes + len(own)), dtype=parts[0].dtype),
                            token=str(path[-1] if path and isinstance(path[-1], str) else "result").strip("_"))

    def step(key, values):
        return _lazy(boxes, (*path, key), *(dataclasses.replace(p, result=v) for p, v in zip(probes, values)))
    if dataclasses.is_dataclass(parts[0]):
        fields = [f.name for f in dataclasses.fields(parts[0])]
        return type(parts[0])(**{f: step(f, [getattr(p, f) for p in parts]) for f in fields})
    if isinstance(parts[0], (tuple, list)):
        items = [step(i, values) for i, values in enumerate(zip(*parts))]
        return type(parts[0])(*items) if hasattr(parts[0], "_fields") else type(parts[0])(items)
    return parts[0]


def _unboxed(path, box):
    value = box.item()
    for key in path:
        value = getattr(value, key) if isinstance(key, str) else value[key]
    return np.asarray(value)


def _called(method, args, kwargs, box):
    return _box(getattr(box.item(), method)(*args, **kwargs), box.ndim)


class DaskResult:
    """The result of a test of Dask arrays: its arrays are Dask arrays, and nothing is computed yet.

    Methods of the result, such as ``confidence_interval(level)``, are called chunk by chunk and give Dask arrays too.
    ``compute()`` gives the result with arrays in memory; printing a table and ``plot()`` need that.
    """

    def __init__(self, boxes, probes):
        self._boxes, self._probes = boxes, probes
        self._fields = _lazy(boxes, (), *probes)

    def __getattr__(self, name):
        import dask.array as da
        if name.startswith("_"):
            raise AttributeError(name)
        value = getattr(self._fields, name)
        if not inspect.ismethod(value):
            return value
        if name == "plot":
            return lambda *args, **kwargs: self.compute().plot(*args, **kwargs)

        @functools.wraps(value)
        def method(*args, **kwargs):
            probes = [dataclasses.replace(p, result=getattr(p.result, name)(*args, **kwargs)) for p in self._probes]
            data_sets = tuple(reversed(range(self._boxes.ndim)))
            boxes = da.blockwise(functools.partial(_called, name, args, kwargs), data_sets, self._boxes, data_sets,
                                 dtype=object, meta=self._boxes._meta, token=name)
            return _result(boxes, *probes)
        return method

    def __dir__(self):
        return [*super().__dir__(), *(n for n in dir(self._fields) if not n.startswith("_"))]

    def compute(self, **kwargs):
        """The result in memory. Keyword arguments are those of ``dask.compute``."""
        import dask
        arrays = []
        _replaced(self._fields, lambda array: arrays.append(array))
        computed = iter(dask.compute(*arrays, **kwargs))
        return _replaced(self._fields, lambda _: np.asarray(next(computed))[()])

    def __repr__(self):
        shape, chunks = self._boxes.shape, int(np.prod(self._boxes.numblocks))
        rows = [(f.name, str(v.shape), str(v.dtype)) for f in dataclasses.fields(self._fields)
                if _has_dask(v := getattr(self._fields, f.name)) and not f.name.startswith("_") and hasattr(v, "shape")]
        return f"{type(self._fields).__name__} of Dask arrays, not computed: {int(np.prod(shape))} data sets, shape " \
               f"{shape}, in {chunks} chunks\n" + table(("array", "shape", "type"), rows)


def _replaced(value, change):
    """``value`` with every Dask array in it changed."""
    if dataclasses.is_dataclass(value):
        return type(value)(**{f.name: _replaced(getattr(value, f.name), change) for f in dataclasses.fields(value)})
    if type(value) is list or isinstance(value, tuple):
        items = [_replaced(v, change) for v in value]
        return type(value)(*items) if hasattr(value, "_fields") else type(value)(items)
    return change(value) if _has_dask(value) else value
