"""How the ufuncs behave as NumPy's own do."""
import numpy as np
import orvanth
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

ordinary = st.floats(-30, 30)
positive = st.floats(0.01, 50)
probability = st.floats(1e-9, 1 - 1e-9)


def test_broadcasting_out_and_where():
    x, df = np.linspace(-3, 3, 7)[:, None], np.array([1.0, 5.0, 30.0])
    table = orvanth.StudentTCDF(x, df, False)
    assert table.shape == (7, 3) and table[2, 1] == orvanth.StudentTCDF(x[2, 0], 5.0, False)
    out = np.full(3, -1.0)
    assert orvanth.student_t_cdf(1.0, df, out=out, where=[True, False, True]) is out
    assert out[1] == -1 and out[0] == table[0, 0] * 0 + orvanth.StudentTCDF(1.0, 1.0, 0)


def test_strides_and_types():
    x = np.arange(12.0).reshape(3, 4)[::-1, ::2] / 10
    assert (orvanth.erf(x) == orvanth.erf(x.copy())).all()
    assert orvanth.erf(np.float32(0.5)).dtype == np.float64
    assert orvanth.normal_cdf(1, 0, 1) == orvanth.normal_cdf(1.0, 0.0, 1.0)
    with pytest.raises(TypeError):
        orvanth.MCcCDF(1.0, 3.5, 10, [0.5] * 4, False)  # a count is no real number


def test_tails_by_name():
    assert orvanth.normal_cdf(1.5, 0, 1, upper=True) == orvanth.NormalCDF(1.5, 0, 1, 1)
    assert orvanth.fnc_hypergeometric_cdf(3, 5, 10, 20, 2.0, accuracy=1e-7) == \
        orvanth.FNCHypergeometricCDF(3, 5, 10, 20, 2.0, 0, 1e-7)
    with pytest.raises(TypeError):
        orvanth.normal_cdf(1.5, 0, 1, True)


def test_vectors_as_a_core_dimension():
    lam = np.array([[0.7, 0.7, 0.7], [0.5, 0.6, 0.7]])
    both = orvanth.mcc_cdf(2.0, 3, 10, lam)
    assert both.shape == (2,) and both[1] == orvanth.MCcCDF(2.0, 3, 10.0, lam[1].copy(), 0)
    assert (orvanth.mcc_cdf(2.0, 3, 10, np.asfortranarray(lam)) == both).all()
    with np.errstate(invalid="ignore"):
        assert np.isnan(orvanth.mcc_cdf(2.0, 4, 10, lam)).all()
    assert "argument k is 4" in orvanth.last_error()


@pytest.mark.parametrize("state, seen", [("raise", FloatingPointError), ("warn", RuntimeWarning)])
def test_errstate_decides(state, seen):
    with np.errstate(invalid=state, over="ignore"):
        with (pytest.raises(seen) if state == "raise" else pytest.warns(seen)):
            orvanth.normal_cdf(0, 0, -1)
        orvanth.normal_icdf(0, 0, 1)
    with np.errstate(over=state, invalid="ignore"):
        with (pytest.raises(seen) if state == "raise" else pytest.warns(seen)):
            orvanth.normal_icdf([1.5, 0.0], 0, 1)  # the first failure is not the only one told


def test_errstate_may_call():
    calls = []
    with np.errstate(invalid="call", call=lambda kind, flag: calls.append(kind)):
        orvanth.beta(-1, 1)
    assert calls == ["invalid value"]
    assert "(got a=-1)" in orvanth.last_error()
    assert orvanth.last_error() == ""


def test_only_our_own_flags_are_raised():
    with np.errstate(all="raise"):
        assert orvanth.normal_cdf(-45, 0, 1) == 0  # underflows inside
        assert orvanth.gamma_regularized(5, 1e300) == 1
        assert np.isnan(orvanth.gamma(-0.5))  # left unflagged by the library


def test_a_value_out_of_range_of_an_integer_is_a_failure():
    with np.errstate(invalid="ignore"):
        assert np.isnan(orvanth.KolmogorovCDF(0.3, 10, 2**40))
        assert np.isnan(orvanth.NormalCDF(0, 0, 1, 256))
    assert "256" in orvanth.last_error()


@settings(max_examples=60, deadline=None)
@given(ordinary, positive)
def test_tails_add_to_one(x, df):
    assert orvanth.student_t_cdf(x, df) + orvanth.student_t_cdf(x, df, upper=True) == pytest.approx(1, abs=1e-13)


@settings(max_examples=60, deadline=None)
@given(probability, positive, positive)
def test_quantiles_invert(p, a, b):
    x = orvanth.gamma_icdf(p, 1 + a, b)
    assert orvanth.gamma_cdf(x, 1 + a, b) == pytest.approx(p, rel=1e-9)


@settings(max_examples=60, deadline=None)
@given(st.lists(ordinary, min_size=1, max_size=20), st.integers(0, 3))
def test_arrays_equal_their_elements(values, shift):
    x = np.roll(np.array(values), shift)[::-1]
    assert [orvanth.normal_cdf(v, 1, 2) for v in x] == list(orvanth.normal_cdf(x, 1, 2))


@settings(max_examples=40, deadline=None)
@given(st.floats(allow_nan=True, allow_infinity=True), st.floats(allow_nan=True, allow_infinity=True),
       st.floats(allow_nan=True, allow_infinity=True))
def test_no_argument_ends_the_process(a, b, c):
    with np.errstate(all="ignore"):
        for f in (orvanth.BetaRegularized, orvanth.HypergeometricPDF, orvanth.BinomialPDF, orvanth.InverseBetaRegularized):
            f(*[a, b, c, a][:f.nin])
