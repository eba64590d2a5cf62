"""What would end a process that bound the plain exports."""
import subprocess
import sys
import threading
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import orvanth


def test_ten_thousand_failures_in_threads_and_each_thread_has_its_own_text():
    wrong = []

    def work(number):
        with np.errstate(all="ignore"):
            for _ in range(2500):
                if not np.isnan(orvanth.beta(-1 - number, 1)) or not orvanth.last_error().endswith(f"(got a={-1 - number})."):
                    wrong.append(number)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    [t.start() for t in threads]
    [t.join() for t in threads]
    assert wrong == []


def test_the_interpreters_lock_is_released():
    x = np.full(20000, 0.95)
    lam = np.full(3, 0.7)
    started, ended = threading.Event(), threading.Event()

    def long_call():
        started.set()
        orvanth.mcc_cdf(x, 3, 10, lam)
        ended.set()

    thread = threading.Thread(target=long_call)
    thread.start()
    started.wait()
    assert not ended.is_set(), "this thread runs while the call does"
    thread.join()


def test_matrices_from_many_threads():
    a = np.sin(np.arange(1000.0)).reshape(200, 5)
    b = np.cos(np.arange(200.0))
    want = orvanth.linalg.lstsq(a, b)
    with ThreadPoolExecutor(4) as pool:
        assert all(np.array_equal(want, x) for x in pool.map(lambda _: orvanth.linalg.lstsq(a, b), range(400)))


def test_a_subinterpreter_is_refused_in_words():
    code = ("import _xxsubinterpreters as s\ni = s.create()\n"
            "try:\n    s.run_string(i, 'import orvanth')\nexcept s.RunFailedError as e:\n    print(e)\n")
    answer = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True)
    assert answer.returncode == 0 and "cannot be imported in a subinterpreter" in answer.stdout, answer


def test_misused_handles_do_not_end_the_process():
    lib = orvanth.linalg.lib
    assert lib.SafeDeleteRandomStream(12345678) == -1006
    assert lib.LastStatus() == lib.HANDLE
    assert "no handle" in str(lib.error())
