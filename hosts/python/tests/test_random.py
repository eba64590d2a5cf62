import pickle

import numpy as np
import orvanth
import pytest
from orvanth import RandomStream, random


def test_a_seed_fixes_every_number():
    with RandomStream(1) as stream:
        assert list(stream.indices(10)[:5]) == [1, 5, 8, 8, 7]
    assert np.array_equal(random.normals(-1, 5), random.normals(2**32 - 1, 5))


def test_numbers_continue_however_they_are_divided():
    a, b = RandomStream(9), RandomStream(9)
    whole = random.normals(9, 30, mean=2, sigma=3)
    assert np.array_equal(np.concatenate([a.normals(10, 2, 3), a.normals(20, 2, 3)]), whole)
    b.normals(30)
    assert a.position == b.position == 30
    assert np.array_equal(a.indices(7), b.indices(7))


def test_pickling_keeps_seed_and_position():
    stream = RandomStream(4)
    stream.indices(100)
    copy = pickle.loads(pickle.dumps(stream))
    assert (copy.seed, copy.position) == (4, 100)
    assert np.array_equal(copy.indices(50), stream.indices(50))
    assert np.array_equal(copy.normals(5), stream.normals(5))


def test_a_closed_stream_says_so():
    stream = RandomStream(1)
    stream.close()
    stream.close()
    with pytest.raises(orvanth.ArgumentError, match="handle is 0"):
        stream.indices(3)
    assert "closed" in repr(stream)
    with pytest.raises(ValueError):
        pickle.dumps(stream)


def test_bad_arguments_are_exceptions_and_nothing_is_printed(capfd):
    with pytest.raises(orvanth.ArgumentError, match="sigma"):
        random.normals(1, 5, sigma=0)
    with pytest.raises(ValueError):
        random.normals(2**32, 5)
    with pytest.raises(ValueError):
        RandomStream(1).indices(-1)
    assert capfd.readouterr().out == ""
