#!/usr/bin/env python3
"""Judges the counts of tools/coverage.sh: judge.py <json of gcovr>

At least 99.5 % of the lines and 97 % of the branches have to run, and each line that does not has to be in
uncovered.tsv with its reason. A line is named by its text, so that changes before it do not matter.
"""
import json
import sys
from collections import Counter
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LEAST_LINES, LEAST_BRANCHES = 99.5, 97.0


def share(run, all_):
    return 100 * run / all_ if all_ else 100.0


def main():
    reasons = [tuple(row.split("\t")) for row in (HERE / "uncovered.tsv").read_text().splitlines()
               if row and not row.startswith("#")]
    named = Counter((file, text) for file, text, _ in reasons)
    sources = {file: [line.strip() for line in (ROOT / file).read_text().split("\n")] for file, _ in named}
    lines = lines_run = branches = branches_run = 0
    unnamed, met, partly = [], Counter(), []
    for entry in json.loads(Path(sys.argv[1]).read_text())["files"]:
        file = entry["file"]
        source = (ROOT / file).read_text().split("\n")
        for line in entry["lines"]:
            if line.get("gcovr/noncode") or line.get("gcovr/excluded"):
                continue
            number, text = line["line_number"], source[line["line_number"] - 1].strip()
            lines += 1
            lines_run += line["count"] > 0
            taken = [branch["count"] > 0 for branch in line["branches"]]
            branches += len(taken)
            branches_run += sum(taken)
            if line["count"] == 0:
                met[file, text] += 1
                if met[file, text] > named[file, text]:
                    unnamed.append(f"{file}:{number}: {text}")
            elif not all(taken):
                partly.append(f"{file}:{number}: {sum(taken)} of {len(taken)} branches: {text}")
    print("\n".join(partly))
    print(f"lines    {share(lines_run, lines):.2f} % ({lines_run} of {lines})")
    print(f"branches {share(branches_run, branches):.2f} % ({branches_run} of {branches})")
    for (file, text), count in named.items():
        if sources[file].count(text) < count:
            unnamed.append(f"{file}: uncovered.tsv names a line that is not there: {text}")
        elif met[file, text] < count:
            print(f"note: {file}: uncovered.tsv names a line that runs here: {text}")
    for line in unnamed:
        print(f"does not run and has no reason: {line}")
    failed = unnamed or share(lines_run, lines) < LEAST_LINES or share(branches_run, branches) < LEAST_BRANCHES
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
