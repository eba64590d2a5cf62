#!/usr/bin/env python3
"""Instructions of the headline calls by callgrind, as Markdown: the same on every run and every idle or busy machine.

    benchmarks/instructions.py build/bench/benchmarks/headline_calls

Two runs that differ in the number of calls give the cost of one; under valgrind the portable roads are taken.
"""
import re
import subprocess
import sys


def instructions(program, call, times):
    run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, call, str(times)],
                         capture_output=True, text=True, check=True)
    return int(re.search(r"Collected : (\d+)", run.stderr).group(1))


def main():
    if len(sys.argv) != 2:
        sys.exit("instructions.py: give the path of headline_calls, as in the heading of this file")
    calls = subprocess.run([sys.argv[1]], capture_output=True, text=True, check=True).stdout.split()
    print("| call | instructions |\n|---|---|")
    for call in calls:
        print(f"{call}", end=" ", flush=True, file=sys.stderr)
        print(f"| {call} | {(instructions(sys.argv[1], call, 150) - instructions(sys.argv[1], call, 50)) / 100:.0f} |")
    print(file=sys.stderr)


main()
