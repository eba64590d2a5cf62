"""Dense linear algebra on arrays of any layout. Nothing of the caller's is overwritten unless asked.

Errors are ``numpy.linalg.LinAlgError`` where a matrix has no answer, and ``ArgumentError`` where an argument was
refused, with the library's text.
"""
from dataclasses import dataclass, field

import numpy as np

from . import _library as lib
from .errors import CollinearityError

__all__ = ["eigh", "eigvalsh", "lstsq", "ols", "qr", "residual_sum_of_squares", "solve_triangular", "svd", "OLSResult"]


def _matrix(a, overwrite=False, name="a"):
    """A matrix of doubles in Fortran order; the caller's own storage only if `overwrite` allows it."""
    made = np.array(a, dtype=np.float64, order="F", copy=not overwrite)
    if made.ndim != 2:
        raise ValueError(f"{name} must be a matrix, not an array of {made.ndim} dimensions")
    return made


def _finite(a):
    """LAPACK's iterations answer an infinity or a NaN with NaNs or with a status, depending on the order."""
    if not np.isfinite(a).all():
        raise np.linalg.LinAlgError("the matrix has an element that is not finite")
    return a


def _check(info):
    if info != 0:
        raise lib.error()


def _factored_q(factors, tau):
    """The columns of Q from LAPACK's compact form."""
    q = np.array(factors[:, :min(factors.shape)], order="F")
    _check(lib.SafeQR_Q(lib.address(q), lib.descriptor(q), lib.address(tau)))
    return q


def qr(a, mode="reduced", pivoting=False, overwrite_a=False):
    """QR factorisation, a = q r, or a[:, p] = q r with pivoting.

    Parameters
    ----------
    a : (m, n) array
    mode : "reduced" for (q, r), "r" for r alone, "raw" for LAPACK's compact form (factors, tau)
    pivoting : whether columns are chosen by their remaining length; then p comes last, numbered from 0
    overwrite_a : whether a matrix of doubles in Fortran order may be used as working storage

    Examples
    --------
    >>> import numpy as np
    >>> from orvanth import linalg
    >>> q, r = linalg.qr([[3.0, 1.0], [4.0, 2.0]])
    >>> np.allclose(q @ r, [[3, 1], [4, 2]]), round(float(abs(r[0, 0])), 12)
    (True, 5.0)
    """
    if mode not in ("reduced", "r", "raw"):
        raise ValueError(f'mode is "{mode}"; it must be "reduced", "r" or "raw"')
    factors = _matrix(a, overwrite_a)
    tau = np.zeros(min(factors.shape))
    shape = lib.descriptor(factors)
    pivots = np.zeros(factors.shape[1], dtype=np.int32)  # 0: the column is free
    if pivoting:
        _check(lib.SafeQRP(lib.address(factors), shape, lib.address(tau), lib.address(pivots)))
    else:
        _check(lib.SafeQR(lib.address(factors), shape, lib.address(tau)))
    if mode == "raw":
        answer = (factors, tau)
    else:
        r = np.triu(factors[:min(factors.shape)])
        answer = (r,) if mode == "r" else (_factored_q(factors, tau), r)
    if pivoting:
        answer += (pivots - 1,)
    return answer[0] if len(answer) == 1 else answer


def svd(a, full_matrices=False, overwrite_a=False):
    """Singular value decomposition, a = u @ diag(s) @ vt, with s descending.

    With ``full_matrices`` u and vt are square; that form works in a fixed workspace and takes small matrices only.

    Examples
    --------
    >>> import numpy as np
    >>> from orvanth import linalg
    >>> u, s, vt = linalg.svd(np.diag([1.0, 3.0, 2.0]))
    >>> s.round(12)
    array([3., 2., 1.])
    """
    a = _finite(_matrix(a, overwrite_a))
    m, n = a.shape
    k = min(m, n)
    s = np.zeros(k)
    u = np.zeros((m, m if full_matrices else k), order="F")
    vt = np.zeros((n if full_matrices else k, n), order="F")
    if k == 0:
        return (np.eye(m), s, np.eye(n)) if full_matrices else (u, s, vt)
    form = lib.SafeFullSVD if full_matrices else lib.SafeThinSVD
    _check(form(lib.address(a), lib.descriptor(a), lib.address(s), lib.address(u), lib.descriptor(u), lib.address(vt),
                lib.descriptor(vt)))
    return u, s, vt


def eigh(a, overwrite_a=False):
    """Eigenvalues, ascending, and eigenvectors, as columns, of a symmetric matrix. Only its lower triangle is read.

    Examples
    --------
    >>> from orvanth import linalg
    >>> w, v = linalg.eigh([[2.0, 0.0], [1.0, 2.0]])
    >>> w.round(12)
    array([1., 3.])
    """
    return _eigen(a, True, overwrite_a)


def eigvalsh(a, overwrite_a=False):
    """Eigenvalues, ascending, of a symmetric matrix. Only its lower triangle is read.

    Examples
    --------
    >>> from orvanth import linalg
    >>> linalg.eigvalsh([[2.0, 9.0], [1.0, 2.0]]).round(12)
    array([1., 3.])
    """
    return _eigen(a, False, overwrite_a)


def _eigen(a, vectors, overwrite_a):
    a = _matrix(a, overwrite_a)
    n = a.shape[1]
    if a.shape[0] != n:
        raise ValueError(f"a must be square, not {a.shape[0]} by {n}")
    _finite(np.tril(a))
    w, found = np.zeros(n), np.zeros(1, dtype=np.int32)
    z = np.zeros((n, n), order="F") if vectors else None
    if n > 0:
        _check(lib.SafeEigenSymmetric(lib.address(a), lib.descriptor(a), lib.address(w), lib.address(found),
                                      lib.address(z), lib.descriptor(a)))
    return (w, z) if vectors else w


def _right_hand_side(b, rows, name="b"):
    made = np.array(b, dtype=np.float64, order="F")
    if made.ndim not in (1, 2) or made.shape[0] != rows:
        raise ValueError(f"{name} must have {rows} rows, and is an array of shape {made.shape}")
    return made


def lstsq(a, b, overwrite_a=False):
    """The x of full rank problems that makes a @ x closest to b, or the shortest x where a is wide.

    Examples
    --------
    >>> from orvanth import linalg
    >>> linalg.lstsq([[1.0, 0.0], [1.0, 1.0], [1.0, 2.0]], [1.0, 3.0, 5.0]).round(12)
    array([1., 2.])
    """
    a = _matrix(a, overwrite_a)
    m, n = a.shape
    b = _right_hand_side(b, m)
    columns = 1 if b.ndim == 1 else b.shape[1]
    x = np.zeros((max(m, n), columns), order="F")
    x[:m] = b.reshape(m, columns)
    if m > 0 and n > 0 and columns > 0:
        _check(lib.SafeLS(lib.address(a), lib.descriptor(a), lib.address(x), lib.descriptor(x)))
    return x[:n, 0].copy() if b.ndim == 1 else x[:n].copy()


@dataclass
class OLSResult:
    """Of ``ols``: ``coefficients`` in the order of the columns, ``residual_sum_of_squares``, ``df_residual``."""

    coefficients: np.ndarray
    residual_sum_of_squares: float
    df_residual: int
    names: list = field(default_factory=list)

    def __str__(self):
        width = max([len(n) for n in self.names] + [11])
        lines = [f"{'column':<{width}}  coefficient"]
        lines += [f"{n:<{width}}  {c:.6g}" for n, c in zip(self.names, self.coefficients)]
        return "\n".join(lines + [f"residual sum of squares {self.residual_sum_of_squares:.6g} on "
                                  f"{self.df_residual} degrees of freedom"])


def ols(x, y, tolerance=1e-9, names=None):
    """Ordinary least squares that keeps the columns in their order and names the first redundant one.

    Parameters
    ----------
    x : (m, n) design matrix, m >= n
    y : (m,) response
    tolerance : a column is redundant if what is left of its length is at most this part of it
    names : of the columns, for messages and for the result

    Raises
    ------
    CollinearityError
        with ``column``, counted from 0, and ``name``

    Examples
    --------
    >>> from orvanth import linalg
    >>> x = [[1, 2, 3], [1, 3, 4], [1, 5, 6], [1, 7, 8]]
    >>> linalg.ols(x, [1, 2, 3, 5], names=["one", "dose", "dose + one"])
    Traceback (most recent call last):
        ...
    orvanth.errors.CollinearityError: OLS: column 3 is collinear with the columns before it (dose + one)
    >>> fit = linalg.ols([row[:2] for row in x], [1, 2, 3, 5])
    >>> fit.coefficients.round(4)
    array([-0.4915,  0.7627])
    """
    design = _matrix(x, name="x")
    a = design.copy(order="F")
    m, n = a.shape
    if m < n:
        raise ValueError(f"x has {m} rows and {n} columns; at least as many rows as columns are needed")
    b = _right_hand_side(y, m, "y")
    if b.ndim != 1:
        raise ValueError("y must be a vector")
    names = [str(name) for name in names] if names is not None else []
    if names and len(names) != n:
        raise ValueError(f"{len(names)} names for {n} columns")
    response = b.copy()
    coefficients, tau = np.zeros(n), np.zeros(n)
    if n > 0:
        info = lib.SafeOLS(lib.address(a), lib.descriptor(a), lib.address(b), lib.descriptor(b),
                           lib.address(coefficients), lib.descriptor(coefficients), lib.address(tau), tolerance)
        if info > 0:
            name = names[info - 1] if names else None
            raise CollinearityError(str(lib.error()) + (f" ({name})" if name else ""), info - 1, name)
        _check(info)
    return OLSResult(coefficients, residual_sum_of_squares(design, coefficients, response), m - n,
                     names or [str(j) for j in range(n)])


def residual_sum_of_squares(x, b, y):
    """The sum of squares of y - x @ b.

    Examples
    --------
    >>> from orvanth import linalg
    >>> linalg.residual_sum_of_squares([[1.0, 2.0]], [3.0, 4.0], [10.0])
    1.0
    """
    x = np.asfortranarray(x, dtype=np.float64)
    b, y = np.ascontiguousarray(b, dtype=np.float64), np.ascontiguousarray(y, dtype=np.float64)
    if x.ndim != 2 or b.shape != (x.shape[1],) or y.shape != (x.shape[0],):
        raise ValueError(f"shapes do not fit: x {x.shape}, b {b.shape}, y {y.shape}")
    total = lib.SafeXb(lib.address(x), lib.descriptor(x), lib.address(b), lib.address(y))
    if lib.LastStatus() != 0:
        raise lib.error()
    return total


def solve_triangular(a, b, lower=False, transpose=False):
    """The x with a @ x = b for a triangular a, or its transpose.

    Examples
    --------
    >>> from orvanth import linalg
    >>> linalg.solve_triangular([[2.0, 1.0], [0.0, 4.0]], [4.0, 8.0])
    array([1., 2.])
    """
    a = np.asfortranarray(a, dtype=np.float64)
    if a.ndim != 2 or a.shape[0] != a.shape[1]:
        raise ValueError(f"a must be a square matrix, not of shape {a.shape}")
    x = _right_hand_side(b, a.shape[0])
    if x.size:
        _check(lib.SafeSolveTriangularSystem(lib.address(a), lib.descriptor(a), not lower, transpose, lib.address(x),
                                             lib.descriptor(x)))
    return x
