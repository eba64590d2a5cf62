#!/usr/bin/env python3
"""Judges the counts of tools/coverage.sh: judge.py <directory of objects>

At least 99.5 % of the lines and 97 % of the branches have to run, and each line that does not has to be in
uncovered.tsv with its reason. A line is named by its text, so that changes before it do not matter.
"""
import json
import os
import re
import subprocess
import sys
from collections import Counter, defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LEAST_LINES, LEAST_BRANCHES = 99.5, 97.0
TABLES = (".def", ".inc")  # many files include them as rows; a row counts where it is used


def counts_of(notes):
    """What gcov says of one object, also of one that no test ran."""
    result = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", str(notes)],
                            capture_output=True, text=True, check=True, cwd=notes.parent)
    return [json.loads(line) for line in result.stdout.splitlines() if line]


def own_file(directory, file):
    path = os.path.relpath(os.path.normpath(os.path.join(directory, file)), ROOT)
    return path if path.startswith("src/") and not path.endswith(TABLES) else None


def is_code(text):
    """Braces alone have a counter, for the destructors behind them, and no condition."""
    return re.sub(r"//.*|/\*.*?\*/", "", text).strip() not in ("", "{", "}", "{}", "};", "else")


def merge(build):
    """The runs of each line of src/, and of each branch by line.

    The objects that a file is compiled into add up, and so do the instantiations of one template where they have the
    same branches. The two ways out of a call that may throw, back and to a handler, are no condition of the source and
    are left out.
    """
    lines, branches = defaultdict(Counter), defaultdict(dict)
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        reports = [report for found in pool.map(counts_of, sorted(build.rglob("*.gcno"))) for report in found]
    for report in reports:
        for entry in report["files"]:
            file = own_file(report["current_working_directory"], entry["file"])
            if file is None:
                continue
            starts = {f["name"]: (f["start_line"], f["start_column"]) for f in entry["functions"]}
            for line in entry["lines"]:
                number = line["line_number"]
                lines[file][number] += line["count"]
                ways = line["branches"]
                throws = [way["throw"] for way in ways] + [False]
                kept = [way["count"] for i, way in enumerate(ways) if not throws[i] and not throws[i + 1]]
                key = starts.get(line.get("function_name")), tuple(throws)
                before = branches[file].setdefault(number, {}).get(key, [0] * len(kept))
                branches[file][number][key] = [a + b for a, b in zip(before, kept)]
    return lines, branches


def share(run, all_):
    return 100 * run / all_ if all_ else 100.0


def main():
    reasons = [tuple(row.split("\t")) for row in (HERE / "uncovered.tsv").read_text().splitlines()
               if row and not row.startswith("#")]
    named = Counter((file, text) for file, text, _ in reasons)
    sources = {file: [line.strip() for line in (ROOT / file).read_text().split("\n")] for file, _ in named}
    all_lines = lines_run = all_branches = branches_run = 0
    unnamed, met, partly = [], Counter(), []
    lines, branches = merge(Path(sys.argv[1]).resolve())
    for file in sorted(lines):
        source = (ROOT / file).read_text().split("\n")
        for number, count in sorted(lines[file].items()):
            text = source[number - 1].strip()
            if not is_code(text):
                continue
            all_lines += 1
            lines_run += count > 0
            taken = [run > 0 for counts in branches[file][number].values() for run in counts]
            all_branches += len(taken)
            branches_run += sum(taken)
            if count == 0:
                met[file, text] += 1
                if met[file, text] > named[file, text]:
                    unnamed.append(f"{file}:{number}: {text}")
            elif not all(taken):
                partly.append(f"{file}:{number}: {sum(taken)} of {len(taken)} branches: {text}")
    print("\n".join(partly))
    print(f"lines    {share(lines_run, all_lines):.2f} % ({lines_run} of {all_lines})")
    print(f"branches {share(branches_run, all_branches):.2f} % ({branches_run} of {all_branches})")
    for (file, text), count in named.items():
        if sources[file].count(text) < count:
            unnamed.append(f"{file}: uncovered.tsv names a line that is not there: {text}")
        elif met[file, text] < count:
            print(f"note: {file}: uncovered.tsv names a line that runs here: {text}")
    for line in unnamed:
        print(f"does not run and has no reason: {line}")
    failed = unnamed or share(lines_run, all_lines) < LEAST_LINES or share(branches_run, all_branches) < LEAST_BRANCHES
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
