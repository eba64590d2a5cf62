import numpy as np
import orvanth
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from orvanth import linalg

LAYOUTS = [np.ascontiguousarray, np.asfortranarray, lambda a: np.repeat(np.repeat(a, 2, 0), 3, 1)[::2, ::3],
           lambda a: a[::-1][::-1], lambda a: a.astype(np.float32).astype(np.float64)]


@pytest.mark.parametrize("layout", LAYOUTS)
@pytest.mark.parametrize("shape", [(5, 3), (3, 3), (2, 4), (1, 1)])
def test_factorisations(layout, shape):
    a = layout(np.round(np.sin(np.arange(shape[0] * shape[1]) * 1.7 + 1), 3).reshape(shape).astype(np.float32).astype(float))
    before = a.copy()
    q, r = linalg.qr(a)
    assert np.allclose(q @ r, a) and np.allclose(q.T @ q, np.eye(q.shape[1]))
    q, r, p = linalg.qr(a, pivoting=True)
    assert np.allclose(q @ r, a[:, p]) and sorted(p) == list(range(shape[1]))
    for full in (False, True):
        u, s, vt = linalg.svd(a, full_matrices=full)
        k = len(s)
        assert np.allclose(u[:, :k] * s @ vt[:k], a) and np.allclose(s, np.linalg.svd(a)[1])
    symmetric = a @ a.T
    w, v = linalg.eigh(symmetric)
    assert np.allclose(symmetric @ v, v * w) and np.array_equal(linalg.eigvalsh(symmetric).round(9), w.round(9))
    assert np.allclose(linalg.lstsq(a, np.ones(shape[0])), np.linalg.lstsq(a, np.ones(shape[0]), rcond=None)[0])
    assert np.array_equal(a, before)


def test_overwrite_only_when_asked():
    a = np.asfortranarray(np.eye(3) + 1)
    linalg.qr(a, mode="r", overwrite_a=True)
    assert not np.array_equal(a, np.eye(3) + 1)


def test_ols_names_the_redundant_column():
    x = np.column_stack([np.ones(6), np.arange(6.0), np.arange(6.0) * 2 + 1, np.arange(6.0) ** 2])
    with pytest.raises(orvanth.CollinearityError, match="column 3 .*double") as caught:
        linalg.ols(x, np.arange(6.0), names=["one", "t", "double", "square"])
    assert (caught.value.column, caught.value.name) == (2, "double")
    fit = linalg.ols(x[:, [0, 1, 3]], 2 + 3 * np.arange(6.0))
    assert np.allclose(fit.coefficients, [2, 3, 0]) and fit.df_residual == 3
    assert fit.residual_sum_of_squares == pytest.approx(0, abs=1e-20)
    assert "coefficient" in str(fit)


def test_triangular_and_several_right_hand_sides():
    a = np.array([[2.0, 1, 0], [0, 3, 1], [0, 0, 4]])
    b = np.arange(6.0).reshape(3, 2)
    assert np.allclose(a @ linalg.solve_triangular(a, b), b)
    assert np.allclose(a.T @ linalg.solve_triangular(a.T, b, lower=True), b)
    assert np.allclose(a.T @ linalg.solve_triangular(a, b, transpose=True), b)
    with pytest.raises(np.linalg.LinAlgError, match="diagonal element 2"):
        linalg.solve_triangular(np.diag([1.0, 0, 2]), np.ones(3))


def test_failures_have_words():
    with pytest.raises(np.linalg.LinAlgError, match="lacks full rank"):
        linalg.lstsq([[1.0, 0], [1, 0]], [1.0, 2])
    for order in (1, 2, 5):
        bad = np.eye(order)
        bad[order - 1, 0] = np.inf
        for function in (linalg.svd, linalg.eigh):
            with pytest.raises(np.linalg.LinAlgError, match="not finite"):
                function(bad)
    assert linalg.eigvalsh([[1.0, np.nan], [0.0, 2.0]]).tolist() == [1, 2], "the upper triangle is not read"
    with pytest.raises(ValueError, match="workspace of 10000"):
        linalg.svd(np.ones((60, 60)), full_matrices=True)
    with pytest.raises(ValueError, match="2 dimensions|must be a matrix"):
        linalg.qr(np.ones(3))
    with pytest.raises(ValueError, match="3 rows"):
        linalg.lstsq(np.ones((3, 1)), np.ones(4))


@settings(max_examples=30, deadline=None)
@given(st.integers(1, 12), st.integers(1, 12), st.integers(0, 10**6))
def test_singular_values_are_those_of_numpy(m, n, seed):
    a = np.random.default_rng(seed).normal(size=(m, n))
    assert np.allclose(linalg.svd(a)[1], np.linalg.svd(a, compute_uv=False), atol=1e-12)
