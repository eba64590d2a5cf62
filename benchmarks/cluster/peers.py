#!/usr/bin/env python3
"""What Dask adds and costs on one machine, beside plain processes in the same run, as Markdown.

    OPENBLAS_NUM_THREADS=1 benchmarks/cluster/peers.py build/bench/python
"""
import multiprocessing
import os
import statistics
import subprocess
import sys
import time
from pathlib import Path

WORKERS = 2
ELEMENTS = 2**20          # 8 MB of doubles
CHUNKS = (2, 8, 32, 128, 512)
ROUNDS = 5
# One worker's share of work with matrices; prints its wall time.
MATRICES = """
import time
import numpy as np, orvanth
a = np.random.default_rng(1).normal(size=(400, 200))
orvanth.linalg.svd(a)
begin = time.perf_counter()
for _ in range(10):
    orvanth.linalg.svd(a)
print(time.perf_counter() - begin)
"""


def work(x):
    import orvanth
    return orvanth.StudentTCDF(x, 17, 0)


def plain_worker(pipe, values):
    """A process that works on its part each time it is told to."""
    work(values[:1])
    while pipe.recv():
        work(values)
        pipe.send(time.process_time())


def seconds(call):
    begin = time.perf_counter()
    call()
    return time.perf_counter() - begin


def cpu_of_workers(client):
    return sum(client.run(time.process_time).values())


def row(*cells):
    print("| " + " | ".join(str(c) for c in cells) + " |", flush=True)


def scaling(client, x):
    """Every way once a round, so that all ways of a round meet the same load; ratios are taken within a round."""
    import dask
    import dask.array as da
    from distributed import wait
    context = multiprocessing.get_context("fork")
    pipes, used = [], [0.0] * WORKERS
    for part in PARTS:
        mine, theirs = context.Pipe()
        context.Process(target=plain_worker, args=(theirs, part), daemon=True).start()
        pipes.append(mine)

    def plain():
        for pipe in pipes:
            pipe.send(True)
        used[:] = [pipe.recv() for pipe in pipes]

    def there_and_back():
        da.from_array(x, chunks=ELEMENTS // 8).map_blocks(work, dtype=float).compute()

    def threads():
        with dask.config.set(scheduler="threads", num_workers=WORKERS):
            there_and_back()

    plain()
    ways = {"one process, one call": (0, lambda: work(x)), f"{WORKERS} plain processes": (WORKERS, plain)}
    for chunks in CHUNKS:
        held = client.persist(da.from_array(x, chunks=ELEMENTS // chunks))
        wait(held)
        ways[f"Dask, data on the workers in {chunks} chunks"] = \
            chunks, lambda held=held: held.map_blocks(work, dtype=float).sum().compute()
    ways["Dask, data sent to the workers and results sent back"] = 8, there_and_back
    ways[f"Dask's {WORKERS} threads in one process"] = 8, threads
    wall, cpu = ({way: [] for way in ways} for _ in range(2))
    for _ in range(ROUNDS):
        for way, (_, call) in ways.items():
            before = time.process_time() + cpu_of_workers(client) + sum(used)
            wall[way].append(seconds(call))
            cpu[way].append(time.process_time() + cpu_of_workers(client) + sum(used) - before)
    alone, control = list(ways)[:2]

    def ratio(times, over, way):
        return statistics.median(a / b for a, b in zip(times[over], times[way]))
    row("way", "chunks", "ms of work in a chunk", "CPU time over one process's", "times as fast",
        "of the plain processes")
    row(*["---"] * 6)
    for way, (chunks, _) in ways.items():
        row(way, chunks or "", f"{1e3 * min(cpu[alone]) / chunks:.2g}" if chunks else "",
            f"{1 / ratio(cpu, alone, way):.2f}", f"{ratio(wall, alone, way):.2f}",
            f"{100 * ratio(wall, control, way):.0f} %")


def costs(client):
    """Of an empty task, and of bringing numbers to a worker or making them there."""
    import numpy as np
    from distributed import wait
    from orvanth import random
    tasks = 500
    empty = min(seconds(lambda: client.gather(client.map(lambda i: i, range(tasks), pure=False))) for _ in range(3))
    values = np.zeros(2**21)
    here = min(client.nthreads())
    moved = min(seconds(lambda: wait(client.scatter(values, workers=[here], hash=False))) for _ in range(3))
    made = min(seconds(lambda: random.normals(1, values.size)) for _ in range(3))
    print()
    row("cost", "measured")
    row("---", "---")
    row("a task that does nothing", f"{1e3 * empty / tasks:.1f} ms")
    row("bringing an array of 16 MB from the client to a worker", f"{1e3 * moved:.0f} ms")
    row("making as many normal variates on the worker", f"{1e3 * made:.0f} ms")


def blas_threads(package):
    """Two processes that decompose matrices, with one and with two BLAS threads each, in turn."""
    taken = {1: [], WORKERS: []}
    for _ in range(3):
        for threads, times in taken.items():
            environment = dict(os.environ, OPENBLAS_NUM_THREADS=str(threads), PYTHONPATH=package)
            running = [subprocess.Popen([sys.executable, "-c", MATRICES], env=environment, stdout=subprocess.PIPE,
                                        text=True) for _ in range(WORKERS)]
            times.append(max(float(p.communicate()[0]) for p in running))
    one, many = (statistics.median(times) for times in taken.values())
    print()
    row(f"{WORKERS} processes at once, each 10 decompositions of 400 by 200", "median ms", "ratio")
    row("---", "---", "---")
    row("one BLAS thread each", f"{1e3 * one:.0f}", "1")
    row(f"{WORKERS} BLAS threads each", f"{1e3 * many:.0f}", f"{many / one:.2f}")


if __name__ == "__main__":
    package = str(Path(sys.argv[1]).resolve())
    sys.path.insert(0, package)
    os.environ["OPENBLAS_NUM_THREADS"], os.environ["PYTHONPATH"] = "1", package
    import numpy as np
    from distributed import Client, LocalCluster
    x = np.random.default_rng(1).normal(size=ELEMENTS)
    PARTS = np.array_split(x, WORKERS)
    with LocalCluster(n_workers=WORKERS, threads_per_worker=1, processes=True, host="127.0.0.1",
                      dashboard_address=None, silence_logs=50) as cluster, Client(cluster) as client:
        client.run(work, np.zeros(1))
        scaling(client, x)
        costs(client)
    blas_threads(package)
    print(f"\nTask: `StudentTCDF` of {ELEMENTS} elements, {ROUNDS} rounds; {os.cpu_count()} processors, "
          f"load at the end {os.getloadavg()[0]:.0f}.")
