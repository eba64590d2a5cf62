#!/usr/bin/env python3
"""NumPy's times on the tasks of random_bench, nanoseconds a number."""
import time

import numpy as np
from scipy.special import ndtri

COUNT = 1 << 20


def nanoseconds(call):
    call()
    return min(timed(call) for _ in range(9)) / COUNT * 1e9


def timed(call):
    start = time.perf_counter()
    call()
    return time.perf_counter() - start


twister, pcg = np.random.Generator(np.random.MT19937(1)), np.random.Generator(np.random.PCG64(1))
raw = np.random.MT19937(1)
print("| task | ns |\n|---|---|")
print(f"| MT19937 words | {nanoseconds(lambda: raw.random_raw(COUNT)):.2f} |")
print(f"| normal by inversion (MT19937, ndtri) | {nanoseconds(lambda: ndtri(twister.random(COUNT))):.2f} |")
print(f"| normal by ziggurat (PCG64) | {nanoseconds(lambda: pcg.standard_normal(COUNT)):.2f} |")
print(f"| indices (PCG64) | {nanoseconds(lambda: pcg.integers(0, COUNT, COUNT, dtype=np.int32)):.2f} |")
