import pickle
import re
from pathlib import Path

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


def test_helper_seeds_are_those_of_the_page():
    page = (Path(__file__).resolve().parents[3] / "docs/accuracy/random.md").read_text()
    rows = re.search(r"\| seed \| worker \| helper seed \|\n.*\n((?:\|.*\n)+)", page).group(1).splitlines()
    assert len(rows) >= 6
    for row in rows:
        seed, worker, expected = (int(cell) for cell in row.strip("|").split("|"))
        assert random.helper_seed(seed, worker) == expected
        assert random.helper_seed(seed, np.array([worker]))[0] == expected


def test_helper_seeds_of_one_seed_differ():
    assert len(np.unique(random.helper_seed(5, np.arange(10**6)))) == 10**6
    assert len(np.unique(random.helper_seed(-1, np.arange(2**32 - 10**5, 2**32)))) == 10**5
    assert random.helper_seed(-1, 3) == random.helper_seed(2**32 - 1, 3)
    assert random.helper_seed(np.uint32(7), np.uint8(3)) == random.helper_seed(7, 3)


def test_streams_of_workers_have_no_visible_dependence():
    # 200 streams of 400 variates: the largest of 19900 correlations of independent ones is below 0.3.
    streams = np.stack([random.normals(int(s), 400) for s in random.helper_seed(1, np.arange(200))])
    correlations = np.corrcoef(streams)[np.triu_indices(200, 1)]
    assert np.abs(correlations).max() < 0.3
    assert abs(correlations.std() * np.sqrt(400) - 1) < 0.05
    assert len(np.unique(streams[:, 0])) == 200


def test_helper_seeds_refuse_what_is_no_worker():
    for worker in (-1, 2**32, 1.0, [0, -1]):
        with pytest.raises(ValueError, match="worker"):
            random.helper_seed(1, worker)
    with pytest.raises(ValueError, match="seed"):
        random.helper_seed(2**32, 0)
