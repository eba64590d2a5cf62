"""Ordinary least squares with what is read off it."""
from dataclasses import dataclass

import numpy as np

from .. import _ufuncs, linalg
from ._axis import check_policy
from ._dask import takes_dask
from ._discrete import check_level
from ._results import ConfidenceInterval, percent, single_data_set, table

__all__ = ["OLSResult", "ols"]


@dataclass(repr=False)
class OLSResult:
    """Of ``ols``. With responses of shape (..., m), (...) stands before every shape.

    Attributes
    ----------
    names : of the terms
    coefficients, standard_errors, tvalues, pvalues : one for each term
    residuals : of the rows that were used
    df_residual : degrees of freedom of the residuals
    residual_standard_error : the estimate of the standard deviation
    r_squared, adjusted_r_squared : the part of the sum of squares that the terms explain
    fvalue, f_pvalue : of all terms but the intercept together, on df_model and df_residual degrees of freedom
    covariance : of the coefficients over the variance, the same for all responses
    """

    names: list
    coefficients: np.ndarray
    standard_errors: np.ndarray
    tvalues: np.ndarray
    pvalues: np.ndarray
    residuals: np.ndarray
    df_residual: int
    residual_standard_error: np.ndarray
    r_squared: np.ndarray
    adjusted_r_squared: np.ndarray
    fvalue: np.ndarray
    f_pvalue: np.ndarray
    df_model: int
    covariance: np.ndarray

    def confidence_interval(self, confidence_level=0.95):
        """Of each coefficient, by Student's t."""
        check_level(confidence_level)
        half = _ufuncs.StudentTICDF((1 - confidence_level) / 2, self.df_residual, 1) * self.standard_errors
        return ConfidenceInterval(self.coefficients - half, self.coefficients + half)

    def __str__(self):
        if self.coefficients.ndim > 1:
            return f"Least squares of {int(np.prod(self.coefficients.shape[:-1]))} responses on {', '.join(self.names)}"
        columns = (self.coefficients, self.standard_errors, self.tvalues, self.pvalues)
        text = "Least squares\n" + table(("term", "coefficient", "standard error", "t", "p-value"), zip(self.names, *columns))
        text += f"\nresidual standard error {self.residual_standard_error:.4g} on {self.df_residual} degrees of freedom"
        text += f"\nR squared {self.r_squared:.4f}, adjusted {self.adjusted_r_squared:.4f}"
        if self.df_model > 0:
            text += f"\nF {self.fvalue:.4g} on {self.df_model} and {self.df_residual} degrees of freedom, " \
                    f"p-value {self.f_pvalue:.4g}"
        return text

    __repr__ = __str__

    def plot(self, ax=None, confidence_level=0.95):
        """The intervals of the coefficients; returns the axes of matplotlib."""
        from . import plots
        single_data_set(self.coefficients.shape[:-1], "fit one of them")
        interval = self.confidence_interval(confidence_level)
        rows = zip(self.names, self.coefficients, self.pvalues, interval.low, interval.high)
        return plots.intervals(ax, rows, f"least squares, {percent(confidence_level)} intervals", "coefficient")


def _design(x, names, intercept):
    own = [str(c) for c in x.columns] if hasattr(x, "columns") else None
    if own is None and getattr(x, "name", None) is not None:
        own = [str(x.name)]
    try:
        design = np.asarray(x, dtype=np.float64)
    except (TypeError, ValueError) as error:
        raise ValueError(f"x must hold numbers; code categories as columns first ({error})") from None
    if design.ndim == 1:
        design = design[:, None]
    if design.ndim != 2:
        raise ValueError(f"x must be a matrix with a row for each observation, not an array of {design.ndim} axes")
    names = own if names is None else [str(n) for n in names]
    names = [f"x{j + 1}" for j in range(design.shape[1])] if names is None else names
    if len(names) != design.shape[1]:
        raise ValueError(f"{len(names)} names for {design.shape[1]} columns")
    if intercept:
        design, names = np.column_stack([np.ones(len(design)), design]), ["(intercept)", *names]
    return design, names


@takes_dask({"y": 1}, unless=("nan_policy", "omit"))
def ols(x, y, names=None, intercept=True, axis=-1, nan_policy="propagate", tolerance=1e-9):
    """Least squares with standard errors, t, p and F; a redundant term is named.

    Parameters
    ----------
    x : (m, p) matrix, DataFrame or one column
    y : m observations along ``axis``; the other axes are responses to the same x
    names : of the columns; by default those of the DataFrame, or x1, x2, ...
    intercept : whether a constant term comes first
    axis : the axis of the observations in y
    nan_policy : "propagate" (a NaN in a response makes its results NaN; one in x all of them), "omit" (rows with a NaN
        in x or in any response are left out) or "raise"
    tolerance : a term is redundant if what is left of its length is at most this part of it

    Returns
    -------
    result : OLSResult

    Raises
    ------
    CollinearityError
        a term is a combination of the terms before it; ``name`` is its name

    Examples
    --------
    Brownlee's stack losses, as R prints them with ``summary(lm(stack.loss ~ ., stackloss))``:

    >>> from orvanth import stats
    >>> air = [80, 80, 75, 62, 62, 62, 62, 62, 58, 58, 58, 58, 58, 58, 50, 50, 50, 50, 50, 56, 70]
    >>> water = [27, 27, 25, 24, 22, 23, 24, 24, 23, 18, 18, 17, 18, 19, 18, 18, 19, 19, 20, 20, 20]
    >>> acid = [89, 88, 90, 87, 87, 87, 93, 93, 87, 80, 89, 88, 82, 93, 89, 86, 72, 79, 80, 82, 91]
    >>> loss = [42, 37, 37, 28, 18, 18, 19, 20, 15, 14, 14, 13, 11, 12, 8, 7, 8, 8, 9, 15, 15]
    >>> print(stats.ols(list(zip(air, water, acid)), loss, names=["air", "water", "acid"]))
    Least squares
    term         coefficient  standard error        t    p-value
    (intercept)     -39.9197         11.8960  -3.3557     0.0038
    air               0.7156          0.1349   5.3066  5.799e-05
    water             1.2953          0.3680   3.5196     0.0026
    acid             -0.1521          0.1563  -0.9733     0.3440
    residual standard error 3.243 on 17 degrees of freedom
    R squared 0.9136, adjusted 0.8983
    F 59.9 on 3 and 17 degrees of freedom, p-value 3.016e-09
    """
    check_policy(nan_policy)
    design, names = _design(x, names, intercept)
    y = np.moveaxis(np.asarray(y, dtype=np.float64), axis, -1)
    if y.ndim == 0 or y.shape[-1] != len(design):
        raise ValueError(f"x has {len(design)} rows and y has {y.shape[-1] if y.ndim else 1} observations")
    shape, responses = y.shape[:-1], y.reshape(-1, y.shape[-1])
    missing = np.isnan(design).any(axis=1) | np.isnan(responses).any(axis=0)
    if nan_policy == "raise" and missing.any():
        raise ValueError("x or y contains NaN; nan_policy='omit' leaves these rows out")
    if nan_policy == "omit":
        design, responses = design[~missing], responses[:, ~missing]
    m, p = design.shape
    if p == 0:
        raise ValueError("there is no term to fit")
    if m <= p:
        raise ValueError(f"{m} observations are too few for {p} terms: at least {p + 1} are needed")
    if not np.isfinite(design).all():
        if np.isinf(design).any():
            raise ValueError("x contains an infinity")
        design, responses = np.nan_to_num(design), np.full(responses.shape, np.nan)
    else:
        linalg.ols(design, np.zeros(m), tolerance, names)  # names a redundant term
    result = _fit(names, design, responses, intercept)
    for name in ("coefficients", "standard_errors", "tvalues", "pvalues", "residuals"):
        setattr(result, name, getattr(result, name).reshape(*shape, -1))
    for name in ("residual_standard_error", "r_squared", "adjusted_r_squared", "fvalue", "f_pvalue"):
        setattr(result, name, getattr(result, name).reshape(shape)[()])
    return result


def _fit(names, design, responses, intercept):
    """The result for responses of shape (count, m)."""
    m, p = design.shape
    q, r = linalg.qr(design)
    inverse = linalg.solve_triangular(r, np.eye(p))
    coefficients = np.ascontiguousarray(linalg.solve_triangular(r, q.T @ responses.T).T)
    residuals = responses - coefficients @ design.T
    df, model = m - p, p - bool(intercept)
    rss = (residuals * residuals).sum(axis=-1)
    centred = responses - responses.mean(axis=-1, keepdims=True) if intercept else responses
    total = (centred * centred).sum(axis=-1)
    with np.errstate(all="ignore"):
        variance = rss / df
        errors = np.sqrt(variance[:, None] * (inverse * inverse).sum(axis=1))
        t = coefficients / errors
        tails = np.minimum(2 * _ufuncs.StudentTCDF(np.abs(t), df, 1), 1.0)
        r2 = 1 - rss / total
        adjusted = 1 - (1 - r2) * (m - bool(intercept)) / df
        f = (total - rss) / model / variance if model else np.full(len(rss), np.nan)
        f_tail = np.where(np.isinf(f), 0.0, _ufuncs.FisherFCDF(np.maximum(f, 0), model, df, 1)) if model else f
    return OLSResult(names, coefficients, errors, t, tails, residuals, df, np.sqrt(variance), r2, adjusted, f, f_tail, model,
                     inverse @ inverse.T)
