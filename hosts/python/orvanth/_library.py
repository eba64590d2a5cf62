"""The shield as ctypes loads it, from beside this package's files."""
import ctypes
from pathlib import Path

import numpy as np

from ._native import SIGNATURES, MatrixDescriptor
from .errors import ArgumentError

_PLACES = [Path(__file__).parent / "libOrvanth.Core.Math.Shield.so.1"]


def _load():
    for place in _PLACES:
        if place.exists():
            return ctypes.CDLL(str(place))
    raise ImportError("the library was not found; looked for " + ", ".join(map(str, _PLACES)))


def _through_lapack(function):
    """NumPy gives the OpenBLAS that both share an xerbla of its own. That one sets a Python exception, which ctypes
    finds after the call; the library's status and text are there all the same."""
    def call(*arguments):
        try:
            return function(*arguments)
        except SystemError:
            if LastStatus() == 0:  # noqa: F821
                raise
            return -1
    return call


_library = _load()
for _name, (_result, _arguments) in SIGNATURES.items():
    _function = getattr(_library, _name)
    _function.restype, _function.argtypes = _result, _arguments
    _matrices = any(getattr(a, "_type_", None) is MatrixDescriptor for a in _arguments)
    globals()[_name] = _through_lapack(_function) if _matrices else _function

HANDLE, NOT_REENTRANT, MEMORY, ARGUMENT = 11, 6, 5, 9


def error():
    """The exception for this thread's last failing call."""
    status = LastStatus()  # noqa: F821
    text = LastErrorText().decode()  # noqa: F821
    if status == MEMORY:
        return MemoryError(text)
    if status in (ARGUMENT, HANDLE, NOT_REENTRANT):
        return ArgumentError(text)
    return np.linalg.LinAlgError(text)


def address(array):
    return None if array is None else array.ctypes.data


def descriptor(array):
    """Of a matrix in Fortran order, or of a vector as one column."""
    rows = array.shape[0]
    columns = array.shape[1] if array.ndim == 2 else 1
    return MatrixDescriptor(0, max(1, rows), rows, columns)
