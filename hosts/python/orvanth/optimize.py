"""Minimisation of a smooth function under bounds on its variables, by L-BFGS-B 3.0."""
import numpy as np

from . import _library as lib
from .errors import ArgumentError

__all__ = ["OptimizeResult", "minimize"]

_EVALUATE, _NEW_ITERATE, _CONVERGED, _ABNORMAL, _REJECTED = 1, 2, 3, 4, 5


class OptimizeResult(dict):
    """``x``, ``fun``, ``jac``, ``nfev``, ``njev``, ``nit``, ``status``, ``success`` and ``message``, as attributes too."""

    def __getattr__(self, name):
        try:
            return self[name]
        except KeyError:
            raise AttributeError(name) from None

    __setattr__ = dict.__setitem__

    def __dir__(self):
        return list(self)

    def __repr__(self):
        return "\n".join(f"{name:>8}: {value!r}" for name, value in self.items())


def _bounds(bounds, n):
    """Lower and upper bounds and the kind of each: 0 none, 1 lower, 2 both, 3 upper."""
    lower, upper = np.full(n, -np.inf), np.full(n, np.inf)
    if bounds is not None:
        bounds = list(zip(bounds.lb, bounds.ub)) if hasattr(bounds, "lb") else list(bounds)
        if len(bounds) != n:
            raise ValueError(f"{len(bounds)} bounds for {n} variables")
        for i, (low, high) in enumerate(bounds):
            lower[i] = -np.inf if low is None else low
            upper[i] = np.inf if high is None else high
    kinds = np.array([[0, 3], [1, 2]], dtype=np.int32)[np.isfinite(lower).astype(int), np.isfinite(upper).astype(int)]
    return np.where(np.isfinite(lower), lower, 0.0), np.where(np.isfinite(upper), upper, 0.0), \
        np.ascontiguousarray(kinds, dtype=np.int32)


class _Objective:
    """The value and the gradient at a point, with the calls counted."""

    def __init__(self, fun, jac, args, bounds):
        self.fun, self.jac, self.args, self.bounds = fun, jac, args, bounds
        self.nfev = self.njev = 0

    def value(self, x):
        self.nfev += 1
        answer = self.fun(x.copy(), *self.args)
        if self.jac is True:
            return float(answer[0]), np.asarray(answer[1], dtype=np.float64)
        return float(answer), None

    def __call__(self, x):
        f, gradient = self.value(x)
        self.njev += 1
        if callable(self.jac):
            gradient = np.asarray(self.jac(x.copy(), *self.args), dtype=np.float64)
        elif gradient is None:
            gradient = self.differences(x, f)
        if gradient.shape != x.shape:
            raise ValueError(f"the gradient has the shape {gradient.shape}, not {x.shape}")
        return f, gradient

    def differences(self, x, f):
        """Forward differences; backward ones where the upper bound is in the way."""
        lower, upper, kinds = self.bounds
        gradient = np.empty_like(x)
        for i in range(len(x)):
            step = 1.4901161193847656e-08 * max(1.0, abs(x[i]))
            if kinds[i] >= 2 and x[i] + step > upper[i]:
                step = -step
            moved = x.copy()
            moved[i] += step
            gradient[i] = (self.value(moved)[0] - f) / (moved[i] - x[i])
        return gradient


def minimize(fun, x0, args=(), jac=None, bounds=None, callback=None, maxcor=10, ftol=2.220446049250313e-09, gtol=1e-5,
             maxiter=15000, maxfun=15000):
    """Minimises a function of several variables.

    Parameters
    ----------
    fun : callable, fun(x, *args); the value, or value and gradient where ``jac`` is True
    x0 : the start; it is moved onto the bounds
    jac : callable for the gradient, True, or None for differences
    bounds : one pair (lower, upper) for each variable, None or an infinity for no bound
    callback : called with x after each iteration; StopIteration ends the run
    maxcor : correction pairs kept
    ftol : ends where f falls by at most this part of it
    gtol : ends where no component of the projected gradient is larger
    maxiter, maxfun : limits

    Returns
    -------
    OptimizeResult
        status 0: converged; 1: a limit was reached; 2: the line search failed; 99: the callback asked for the end

    Whatever ``fun``, ``jac`` or ``callback`` raise passes through, KeyboardInterrupt included.

    Examples
    --------
    >>> from orvanth import minimize
    >>> answer = minimize(lambda x: ((x - 2) ** 2).sum(), [0.0, 0.0], bounds=[(0, 1), (None, None)])
    >>> answer.x.round(5), answer.success
    (array([1., 2.]), True)
    """
    if jac is not None and jac is not True and not callable(jac):
        raise ValueError("jac must be a callable, True or None")
    x = np.array(x0, dtype=np.float64).ravel()
    n = len(x)
    if n == 0:
        raise ValueError("x0 is empty")
    limits = _bounds(bounds, n)
    objective = _Objective(fun, jac, args, limits)
    f, g = np.zeros(1), np.zeros(n)
    state = lib.SafeLBFGSBStart(n, maxcor, *map(lib.address, limits), ftol / np.finfo(float).eps, gtol)
    if not state:
        raise lib.error()
    nit, status, message = 0, 1, ""
    try:
        while True:
            code = lib.SafeLBFGSBStep(state, lib.address(x), lib.address(f), lib.address(g))
            if code == _EVALUATE:
                if objective.nfev >= maxfun:
                    message = f"{maxfun} evaluations were not enough"
                    break
                f[0], g[:] = objective(x)
            elif code == _NEW_ITERATE:
                nit += 1
                if callback is not None:
                    try:
                        callback(x.copy())
                    except StopIteration:
                        status, message = 99, "the callback asked for the end"
                        break
                if nit >= maxiter:
                    message = f"{maxiter} iterations were not enough"
                    break
            elif code == _REJECTED:
                raise ArgumentError(str(lib.error()))
            else:
                status = 0 if code == _CONVERGED else 2
                message = "converged" if code == _CONVERGED else lib.LastErrorText().decode()
                break
    finally:
        lib.SafeLBFGSBEnd(state)
    return OptimizeResult(x=x, fun=float(f[0]), jac=g, nfev=objective.nfev, njev=objective.njev, nit=nit,
                          status=status, success=status == 0, message=message)
