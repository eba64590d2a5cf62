"""Random numbers of the Mersenne Twister, fixed by a seed on every machine."""
import numpy as np

from . import _library as lib

__all__ = ["RandomStream", "helper_seed", "normals"]

_LONGEST = 2**31 - 1
_WORD = 2**32 - 1


def _seed(seed):
    """The seed as a signed word: 0 to 2^32 - 1, or -2^31 to -1 for the same words."""
    seed = int(seed)
    if not -2**31 <= seed < 2**32:
        raise ValueError(f"seed is {seed}; it must fit 32 bits")
    return seed - 2**32 if seed > _LONGEST else seed


def normals(seed, count, mean=0.0, sigma=1.0):
    """The first ``count`` normal variates of a seed.

    Examples
    --------
    >>> from orvanth import random
    >>> bool((random.normals(5, 10)[:4] == random.normals(5, 4)).all())
    True
    """
    count = int(count)
    if not 0 <= count <= _LONGEST:
        raise ValueError(f"count is {count}; it must be from 0 to 2^31 - 1")
    values = np.empty(count)
    if lib.SafeRandomNormalVariable(lib.address(values), count, mean, sigma, _seed(seed)) != 0:
        raise lib.error()
    return values


def helper_seed(seed, worker):
    """The seed of worker 0, 1, 2, ... under a seed, for many workers or chunks that draw at the same time.

    ``worker`` is a number from 0 to 2^32 - 1, or an array of them. Under one seed all workers have different seeds. The
    seed itself is not used for numbers; the main program takes a worker number too. The formula is a mixing of 32-bit
    words, the finaliser of MurmurHash3.

    Examples
    --------
    >>> from orvanth import random
    >>> random.helper_seed(1, 0)
    1895220952
    >>> random.helper_seed(1, [1, 2])
    array([ 709402517, 1606317162], dtype=uint32)
    """
    workers = np.asarray(worker)
    if workers.dtype.kind not in "iu" or ((workers < 0) | (workers >= 2**32)).any():
        raise ValueError(f"worker is {worker}; it must be a whole number from 0 to 2^32 - 1")
    of_seed = _mix(np.uint64(_seed(seed) & _WORD) + np.uint64(0x9E3779B9))
    mixed = _mix(of_seed + workers.astype(np.uint64)).astype(np.uint32)
    return int(mixed) if mixed.ndim == 0 else mixed


def _mix(h):
    """A bijection of 32-bit words, which 64-bit words hold so that products are exact."""
    h = h & np.uint64(_WORD)
    for shift, factor in ((16, 0x85EBCA6B), (13, 0xC2B2AE35)):
        h = (h ^ (h >> np.uint64(shift))) * np.uint64(factor) & np.uint64(_WORD)
    return h ^ (h >> np.uint64(16))


class RandomStream:
    """One sequence of numbers from a seed; every number takes one word of it.

    ``with`` closes it. It can be pickled: seed and position are kept. One thread at a time may use it; another one
    meanwhile gets an ArgumentError.

    Examples
    --------
    >>> from orvanth import RandomStream
    >>> with RandomStream(1) as stream:
    ...     stream.indices(10)[:5]
    array([1, 5, 8, 8, 7], dtype=int32)
    """

    def __init__(self, seed):
        self.seed = int(seed)
        self.position = 0
        self._handle = 0
        self._handle = lib.SafeCreateRandomStream(_seed(seed))
        if self._handle == 0:
            raise lib.error()

    def indices(self, count):
        """``count`` integers, each uniform on 0 to count - 1."""
        count = int(count)
        if not 0 <= count <= _LONGEST:
            raise ValueError(f"count is {count}; it must be from 0 to 2^31 - 1")
        values = np.empty(count, dtype=np.int32)
        if lib.SafeRandomUniformInteger(self._handle, lib.address(values), count) != 0:
            raise lib.error()
        self.position += count
        return values

    def normals(self, count, mean=0.0, sigma=1.0):
        """``count`` normal variates. They are drawn from the seed on, so late positions take longer."""
        values = normals(self.seed, self.position + int(count), mean, sigma)[self.position:]
        self._skip(len(values))
        return values

    def close(self):
        """Releases the stream; a second time does nothing."""
        if self._handle:
            lib.SafeDeleteRandomStream(self._handle)
            self._handle = 0

    def _skip(self, count):
        while count > 0:
            count -= len(self.indices(min(count, 1 << 20)))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __del__(self):
        self.close()

    def __repr__(self):
        return f"RandomStream(seed={self.seed}, position={self.position}{'' if self._handle else ', closed'})"

    def __reduce__(self):
        if not self._handle:
            raise ValueError("a closed stream cannot be pickled")
        return _restore, (self.seed, self.position)


def _restore(seed, position):
    stream = RandomStream(seed)
    stream._skip(position)
    return stream
