"""Every golden row through the ufuncs, an export's rows in one call."""
import golden
import numpy as np
import orvanth
import pytest

ROWS = golden.rows()


def columns(rows, ufunc):
    """One column for each argument: integers where the ufunc takes them."""
    made = []
    for i in range(len(rows[0][0])):
        column = [arguments[i] for arguments, *_ in rows]
        if ufunc.types[0][i] == "l":
            column = np.array([int(v) for v in column], dtype=np.int64)
        made.append(np.array(column))
    return made


# The refined functions are no exports and have rows of their own.
@pytest.mark.parametrize("name", sorted(n for n in orvanth.ufuncs if not n.startswith("Refined")))
def test_rows(name):
    ufunc = getattr(orvanth, name)
    byte_holds = [r for r in ROWS[name] if not any(v in (256, 257, 512, -256) for v in r[0] if isinstance(v, float))]
    groups = {}
    for row in byte_holds:  # arrays of one length together
        groups.setdefault(tuple(len(a) for a in row[0] if isinstance(a, list)), []).append(row)
    for rows in groups.values():
        with np.errstate(all="ignore"):
            got = ufunc(*columns(rows, ufunc))
        got = np.array(got if ufunc.nout > 1 else [got])
        for i, (arguments, throws, result, _, tolerance) in enumerate(rows):
            if result == "any":
                continue
            if throws:
                assert np.isnan(got[:, i]).all(), (name, arguments)
                continue
            want = golden.number(result)
            for value, one in zip(got[:, i], want if isinstance(want, list) else [want]):
                if one != -12345:  # left as it was by a plain call
                    assert golden.matches(value, one, tolerance), (name, arguments, value, one)


def test_every_failing_row_raises_its_flag():
    for name in ("BinomialCDF", "NormalICDF", "GammaRegularized", "LogXplus1", "InverseErf"):
        ufunc = getattr(orvanth, name)
        for arguments, throws, result, errno, _ in ROWS[name]:
            if not (throws or errno in ("33", "34")) or any(v in (256, 257, 512, -256) for v in arguments):
                continue
            cells = [int(v) if t == "l" else v for v, t in zip(arguments, ufunc.types[0])]
            with np.errstate(all="raise"), pytest.raises(FloatingPointError):
                ufunc(*cells)
            assert orvanth.last_error() != ""
