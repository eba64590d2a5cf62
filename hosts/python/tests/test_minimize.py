import _thread
import threading

import numpy as np
import orvanth
import pytest
from orvanth import minimize


def valley(x):
    s, t = x[1:] - x[:-1] ** 2, 1 - x[:-1]
    g = np.zeros_like(x)
    g[:-1] += -400 * x[:-1] * s - 2 * t
    g[1:] += 200 * s
    return (100 * s**2 + t**2).sum(), g


def test_the_three_forms_of_gradient_agree():
    x0 = np.full(4, -1.2)
    together = minimize(valley, x0, jac=True)
    apart = minimize(lambda x: valley(x)[0], x0, jac=lambda x: valley(x)[1])
    differences = minimize(lambda x: valley(x)[0], x0)
    assert together.success and np.array_equal(together.x, apart.x) and together.nit == apart.nit
    assert np.allclose(differences.x, 1, atol=1e-3)
    assert np.allclose(together.x, 1, atol=1e-4) and (x0 == -1.2).all()


def test_bounds_of_every_kind():
    answer = minimize(lambda x: (((x - 3) ** 2).sum(), 2 * (x - 3)), [0.0, 0, 5, 9], jac=True,
                      bounds=[(None, 1), (None, None), (4, np.inf), (3.5, 8)])
    assert np.allclose(answer.x, [1, 3, 4, 3.5])
    with pytest.raises(orvanth.ArgumentError, match="lower bound is above"):
        minimize(lambda x: x[0], [0.0], bounds=[(2, 1)])
    with pytest.raises(ValueError, match="1 bounds for 2"):
        minimize(lambda x: x[0], [0.0, 1], bounds=[(2, 1)])


def test_the_callers_exceptions_pass_through():
    class Mine(Exception):
        pass

    def fails(x):
        raise Mine("here")

    for arguments in (dict(fun=fails), dict(fun=lambda x: x[0] ** 2, jac=fails),
                      dict(fun=lambda x: (x[0] ** 2, 2 * x), jac=True, callback=fails)):
        with pytest.raises(Mine, match="here"):
            minimize(x0=[1.0], **arguments)


def test_callback_sees_iterates_and_may_stop():
    seen = []

    def stop_third(x):
        seen.append(x)
        if len(seen) == 3:
            raise StopIteration

    answer = minimize(valley, np.full(4, -1.2), jac=True, callback=stop_third)
    assert len(seen) == 3 == answer.nit and answer.status == 99 and not answer.success


def test_keyboard_interrupt_is_honoured():
    def slow(x):
        if slow.calls == 5:
            _thread.interrupt_main()
        slow.calls += 1
        return valley(x)

    slow.calls = 0
    with pytest.raises(KeyboardInterrupt):
        minimize(slow, np.full(40, -1.2), jac=True, maxiter=10**6, ftol=0, gtol=0)


def test_limits_and_nesting():
    assert minimize(valley, np.full(4, -1.2), jac=True, maxiter=2).status == 1
    inner = minimize(lambda x: minimize(lambda y: ((y - x[0]) ** 2).sum(), [0.0]).fun + x[0] ** 2, [1.0], gtol=1e-3)
    assert abs(inner.x[0]) < 1e-2


def test_field_names_are_scipys():
    answer = minimize(valley, np.full(4, -1.2), jac=True)
    assert set(answer) == {"x", "fun", "jac", "nfev", "njev", "nit", "status", "success", "message"}
    assert answer.x is answer["x"] and "nfev" in repr(answer)


def test_threads_minimise_at_the_same_time():
    want = minimize(valley, np.full(8, -1.2), jac=True).x
    got = []
    threads = [threading.Thread(target=lambda: got.append(minimize(valley, np.full(8, -1.2), jac=True).x)) for _ in range(4)]
    [t.start() for t in threads]
    [t.join() for t in threads]
    assert len(got) == 4 and all(np.array_equal(want, x) for x in got)
