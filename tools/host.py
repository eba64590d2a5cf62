"""A host's view of the library: loads it by name and binds every export by the signature table."""
import ctypes

import numpy as np

from signature_table import exports


class MatrixDescriptor(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int32) for name in ("offset", "leadingDimension", "rows", "columns")]


class _Array:
    """A pointer argument: a numpy array in place, or None for a null pointer."""
    dtype = None

    @classmethod
    def from_param(cls, value):
        if value is None:
            return None
        if not isinstance(value, np.ndarray) or value.dtype != cls.dtype:
            raise TypeError(f"a numpy array of {np.dtype(cls.dtype).name} or None is needed, not {value!r}")
        if not (value.flags.c_contiguous or value.flags.f_contiguous):
            raise TypeError("the array is not contiguous; pass numpy.asfortranarray(array)")
        return ctypes.c_void_p(value.ctypes.data)


class _Doubles(_Array):
    dtype = np.float64


class _Integers(_Array):
    dtype = np.int32


class _Descriptor:
    @staticmethod
    def from_param(value):
        return ctypes.byref(value)


_TYPES = {"double": ctypes.c_double, "int32_t": ctypes.c_int32, "TailFlag": ctypes.c_int32,
          "double*": _Doubles, "const double*": _Doubles, "int32_t*": _Integers, "const int32_t*": _Integers,
          "const MatrixDescriptor*": _Descriptor, "RandomStreamHandle": ctypes.c_ssize_t,
          "LBFGSBDriverState*": ctypes.c_void_p, "void": None}


class Core:
    """The exports as methods."""
    MatrixDescriptor = MatrixDescriptor

    def __init__(self, path):
        library = ctypes.CDLL(str(path))
        self.names = [row.name for row in exports()]
        for row in exports():
            function = getattr(library, row.name)
            function.restype = _TYPES[row.result]
            function.argtypes = [_TYPES[a.type] for a in row.arguments]
            setattr(self, row.name, function)

    @staticmethod
    def matrix(values):
        """The values as a column-major array and the descriptor of the whole of it."""
        array = np.array(values, dtype=np.float64, order="F")
        if array.ndim == 1:
            array = array.reshape(-1, 1, order="F")
        rows, columns = array.shape
        return array, MatrixDescriptor(0, max(rows, 1), rows, columns)
