"""A Tukey test for each of a million time stamps, on a cluster that loses a worker.

Three groups of 40 plants are measured at every time stamp. The data would take 960 MB; the two workers together are
allowed 600 MB. So each chunk of time stamps is made on the worker that tests it, from a seed of its own, and only
p-values come back. A bootstrap follows, in which each chunk of resamples has a stream of its own.

In the middle one worker process is killed. Dask gives its tasks to the other one, starts the process again, and the
result has the same bits as that of one process without Dask.

    examples/cluster/run.sh             about two minutes on two cores
    examples/cluster/run.sh --small     a twentieth of it
"""
import argparse
import contextlib
import functools
import hashlib
import os
import resource
import signal
import subprocess
import sys
import tempfile
import threading
import time

import dask.array as da
import numpy as np
from distributed import Client, futures_of
from distributed.diagnostics.progressbar import TextProgressBar

import orvanth
from orvanth import random, stats

SEED = 20261121
GROUPS = ("control", "treatment a", "treatment b")
PLANTS = 40
WORKERS, WORKER_MEMORY = 2, 300  # MB
PAIRS = [(0, 1), (0, 2), (1, 2)]


class Plan:
    """How the work is divided. Worker numbers of the seed: first the chunks of each group, then those of resamples."""

    def __init__(self, small):
        self.chunks, self.stamps, self.resamples = (20, 2500, 250) if small else (100, 10_000, 1000)  # in each chunk

    def plants(self, group, chunk):
        """The measurements of one group at the time stamps of one chunk; the treatments have a growing effect."""
        noise = random.normals(random.helper_seed(SEED, group * self.chunks + chunk), self.stamps * PLANTS)
        elapsed = (chunk * self.stamps + np.arange(self.stamps)) / (self.chunks * self.stamps)
        return 10 + 0.4 * group * elapsed[:, None] + noise.reshape(self.stamps, PLANTS)

    def resampled(self, chunk):
        """Bootstrap distribution of treatment b less control at the last time stamp: the resamples of one chunk."""
        control, treated = (self.plants(group, self.chunks - 1)[-1] for group in (0, 2))
        seed = random.helper_seed(SEED, len(GROUPS) * self.chunks + chunk)
        result = stats.bootstrap((treated, control), difference, n_resamples=self.resamples, seed=seed)
        return result.bootstrap_distribution


def difference(a, b, axis):
    return a.mean(axis=axis) - b.mean(axis=axis)


def of_pairs(p):
    return np.stack([p[:, i, j] for i, j in PAIRS], axis=1)


def in_one_process(plan):
    """Chunk after chunk with NumPy's arrays."""
    p = [of_pairs(stats.tukey_hsd(*(plan.plants(g, i) for g in range(len(GROUPS)))).pvalue) for i in range(plan.chunks)]
    return np.concatenate(p), np.concatenate([plan.resampled(i) for i in range(plan.chunks)])


def with_dask(plan):
    """The same as Dask arrays: nothing is computed here."""
    def made(function, *shape):
        chunks = ((shape[0],) * plan.chunks, *((n,) for n in shape[1:]))
        return da.map_blocks(functools.partial(of_block, function), chunks=chunks, dtype=float,
                             meta=np.empty((0,) * len(shape)))
    groups = [made(functools.partial(plan.plants, g), plan.stamps, PLANTS) for g in range(len(GROUPS))]
    p = stats.tukey_hsd(*groups).pvalue
    p = p.map_blocks(of_pairs, drop_axis=2, chunks=(p.chunks[0], len(PAIRS)), dtype=float, meta=np.empty((0, 0)))
    return p, made(plan.resampled, plan.resamples)


def of_block(function, block_id=None):
    return function(block_id[0])


@contextlib.contextmanager
def cluster():
    """A scheduler and workers, each a process of its own, on free ports of this machine alone."""
    package = os.path.dirname(os.path.dirname(os.path.abspath(orvanth.__file__)))  # the workers run in another folder
    environment = dict(os.environ, OPENBLAS_NUM_THREADS="1", OMP_NUM_THREADS="1", PYTHONPATH=package)
    with tempfile.TemporaryDirectory() as folder, contextlib.ExitStack() as stack:
        address = os.path.join(folder, "scheduler.json")

        def start(program, *arguments):
            command = [sys.executable, "-m", f"distributed.cli.dask_{program}", "--scheduler-file", address,
                       "--host", "127.0.0.1", "--dashboard-address", "127.0.0.1:0", *arguments]
            process = subprocess.Popen(command, env=environment, cwd=folder, stderr=subprocess.DEVNULL)
            stack.callback(stop, process)

        start("scheduler", "--port", "0")
        for number in range(WORKERS):
            start("worker", "--name", f"worker {number + 1}", "--nthreads", "1", "--memory-limit", f"{WORKER_MEMORY}MB",
                  "--local-directory", folder)
        client = stack.enter_context(Client(scheduler_file=address, timeout=120))
        client.wait_for_workers(WORKERS, timeout=120)
        yield client


def stop(process):
    process.terminate()
    try:
        process.wait(30)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Progress(TextProgressBar):
    """Dask's bar on a terminal; in a file a line every two seconds."""

    def __init__(self, futures):
        super().__init__(futures, interval="100ms" if sys.stdout.isatty() else "2s")

    def _draw_bar(self, remaining, all, **more):
        if sys.stdout.isatty():
            super()._draw_bar(remaining, all, **more)
        else:
            done = (all - remaining) / all
            bar = "#" * int(self.width * done)
            print(f"[{bar:<{self.width}}] | {int(100 * done)}% Completed | {self.elapsed:.1f} s", flush=True)

    def _draw_stop(self, **more):
        if sys.stdout.isatty():
            super()._draw_stop(**more)


def kill_a_worker(client, futures, killed):
    """Kills the process of worker 1 without warning as soon as a third of the chunks are done."""
    while sum(f.status == "finished" for f in futures) < len(futures) / 3:
        time.sleep(0.02)
    names = {worker["name"]: address for address, worker in client.scheduler_info()["workers"].items()}
    address = names["worker 1"]
    process = client.run(os.getpid, workers=[address])[address]
    held = sum(address in holders for holders in client.who_has(futures).values())
    done = sum(f.status == "finished" for f in futures)
    os.kill(process, signal.SIGKILL)
    killed.append(process)
    print(f"\n*** worker 1 is killed (SIGKILL): {done} of {len(futures)} chunks were done, "
          f"{held} of them are lost with it\n", flush=True)


def largest_memory():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss // 1024


def show(what, results, seconds):
    print(f"{what}: {seconds:.1f} s")
    for name, values in zip(("p-values", "bootstrap"), results):
        print(f"  {name:10} {str(values.shape):13} sha256 {hashlib.sha256(np.ascontiguousarray(values)).hexdigest()}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--small", action="store_true", help="50,000 time stamps")
    plan = Plan(parser.parse_args().small)
    stamps = plan.chunks * plan.stamps
    print(f"{stamps} time stamps of {len(GROUPS)} groups of {PLANTS} plants: "
          f"{stamps * len(GROUPS) * PLANTS * 8 / 1e6:.0f} MB in {plan.chunks} chunks; "
          f"{WORKERS} workers of {WORKER_MEMORY} MB each; {os.cpu_count()} cores")

    start = time.perf_counter()
    expected = in_one_process(plan)
    show("\none process, no Dask", expected, time.perf_counter() - start)
    print(f"  largest memory of the process: {largest_memory()} MB\n", flush=True)

    killed = []
    with cluster() as client:
        start = time.perf_counter()
        lazy = with_dask(plan)
        held = client.persist(list(lazy))
        threading.Thread(target=kill_a_worker, args=(client, futures_of(held[0]), killed), daemon=True).start()
        Progress(futures_of(held))
        results = client.gather(client.compute(held))
        show(f"a scheduler and {WORKERS} workers, one of them killed", results, time.perf_counter() - start)
        client.wait_for_workers(WORKERS, timeout=60)
        memory, processes = client.run(largest_memory), client.run(os.getpid)
        revived = set(processes.values()) & set(killed)
        print(f"  largest memory of a worker: {max(memory.values())} MB; workers at the end: {len(processes)}")

    low, high = np.quantile(results[1], [0.025, 0.975])
    for (i, j), found in zip(PAIRS, (results[0] < 0.05).sum(axis=0)):
        print(f"{GROUPS[i]} and {GROUPS[j]}: p < 0.05 at {found} time stamps")
    print(f"treatment b less control at the end: 95% bootstrap interval {low:.3f} to {high:.3f}, "
          f"{results[1].size} resamples in {plan.chunks} streams")
    same = all(a.tobytes() == b.tobytes() for a, b in zip(results, expected))
    print("the same bits" if same else "THE RESULTS DIFFER")
    return 0 if same and killed and not revived else 1


if __name__ == "__main__":
    sys.exit(main())
