#!/usr/bin/env python3
"""Changes the sources of the library one place at a time and looks whether a test sees it.

  mutate.py [--seed N] [--count N] [--family NAME] [--file PATH] [--list] [--summary] [--again]

A mutant is one change: a comparison, the last digit of a constant, an integer by one, a flag, an operator. The changes
are drawn with the seed from all of src/, --count of them, evenly by lines of code; --family and --file draw from a part.
Each is built in a copy of the tree, build/mutation/tree, and judged by the tests of its family, the quickest first, by
those of another family that test it too, and by the golden rows of the family's exports. The first test that fails, or
runs five times as long as it should, kills it.

The verdicts are kept in build/mutation/verdicts.jsonl, so that a run that was stopped goes on where it was; --again
judges the survivors of earlier runs once more, --summary counts what is there. A mutant that lives is a missing test, or
it changes nothing that a caller can see; the second kind is explained in tests/mutation/survivors.tsv. The exit status
is 1 if a survivor is not explained.
"""
import argparse
import json
import os
import random
import re
import resource
import shutil
import subprocess
import sys
import time
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

from signature_table import exports

ROOT = Path(__file__).resolve().parent.parent
PLACE = ROOT / "build" / "mutation"
TREE, BUILD, VERDICTS = PLACE / "tree", PLACE / "build", PLACE / "verdicts.jsonl"
EXPLAINED = ROOT / "tests" / "mutation" / "survivors.tsv"
# Whose golden rows judge a folder beside its own: the folders that stand on it.
STAND_ON = {"frame": ("special", "distributions"), "special": ("distributions",)}
# Test programs of another folder that test this one too.
SHARED_TESTS = {"special": ("continuous_test",), "distributions": ("reach_test", "extremes_test")}
# A table of numbers and a header that everything includes get no more than this many mutants.
FEW = 3
WIDE_HEADERS = tuple(f"src/frame/{name}.hpp" for name in ("failure", "policies", "boost_detail", "platform", "flags"))
ENVIRONMENT = {**os.environ, "OPENBLAS_NUM_THREADS": "1", "CCACHE_BASEDIR": str(ROOT), "CCACHE_NOHASHDIR": "1"}

SWAPS = {
    "comparison": {"<": ("<=", ">"), "<=": ("<",), ">": (">=", "<"), ">=": (">",), "==": ("!=",), "!=": ("==",)},
    "flag": {"true": ("false",), "false": ("true",), "&&": ("||",), "||": ("&&",), "!": ("",),
             "IsSet": ("IsWholeWordSet",), "IsWholeWordSet": ("IsSet",)},
    "operator": {"+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "+=": ("-=",), "-=": ("+=",)},
}
KIND = {token: kind for kind, tokens in SWAPS.items() for token in tokens}
# Binary operators stand between spaces, which pointers, templates and signs do not.
TOKEN = re.compile(r"(?<= )(?:<=|>=|==|!=|<|>|&&|\|\||\+=|-=|\+|-|\*|/)(?= )|(?<=[ (])!(?=[\w(:])"
                   r"|\b(?:true|false|IsSet|IsWholeWordSet)\b"
                   r"|(?<![\w.])(?:0x[0-9a-fA-F.]+(?:p[-+]?\d+)?|\d+\.?\d*(?:[eE][-+]?\d+)?|\.\d+)(?![\w.])")
HIDDEN = re.compile(r'//.*|/\*.*?\*/|"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'')
NOT_CODE = re.compile(r"\s*(#|static_assert|template|using|namespace|extern|class \w+;|struct \w+;|RESERVED|INFO)")


@dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    column: int
    old: str
    new: str
    kind: str
    text: str  # the line as it is

    @property
    def family(self):
        return self.file.split("/")[1]

    @property
    def change(self):
        """The place within the line, such as `<#2 -> <=`: independent of lines before it."""
        number = sum(m.group() == self.old and m.start() <= self.column for m in TOKEN.finditer(mask(self.text)))
        return f"{self.old}#{number} -> {self.new or '(nothing)'}"

    @property
    def key(self):
        return f"{self.file}\t{self.text.strip()}\t{self.change}"


def mask(line):
    """The line with comments and strings blanked out."""
    return HIDDEN.sub(lambda m: " " * len(m.group()), line)


def other_numbers(token):
    """An integer goes up and down by one, of any other constant the last digit of its digits changes."""
    if re.fullmatch(r"\d+", token):
        return ([str(int(token) - 1)] if token != "0" else []) + [str(int(token) + 1)]
    digits, exponent = re.fullmatch(r"(0x[0-9a-fA-F.]+|[\d.]+)(.*)", token).groups()
    if digits == "0x" or not exponent and re.fullmatch(r"0x[0-9a-fA-F]+", digits):
        return [hex(int(token, 16) + 1)] if digits != "0x" else []
    at = len(digits) - 1 - digits[::-1].find(digits.rstrip(".")[-1])
    base = 16 if digits.startswith("0x") else 10
    value = int(digits[at], base)
    new = format(value - 1 if value == base - 1 else value + 1, "x")
    return [digits[:at] + new + digits[at + 1:] + exponent]


def mutants_of(path):
    found = []
    for number, text in enumerate(path.read_text().split("\n")):
        if NOT_CODE.match(text):
            continue
        for match in TOKEN.finditer(mask(text)):
            token = match.group()
            kind = KIND.get(token, "constant")
            news = SWAPS[kind][token] if kind in SWAPS else other_numbers(token)
            found += [Mutant(str(path.relative_to(ROOT)), number, match.start(), token, new, kind, text) for new in news]
    return found


def all_mutants(family, file):
    paths = sorted(p for pattern in ("*.cpp", "*.hpp", "*.inc") for p in (ROOT / "src").rglob(pattern))
    # The generated forms of the shield repeat one pattern for every export; two folders are built for Windows only.
    paths = [p for p in paths if not re.match(r"src/(shield/(forms/|each_forms)|windows/|reference_lapack/)",
                                              p.relative_to(ROOT).as_posix())]
    by_file = {p.relative_to(ROOT).as_posix(): mutants_of(p) for p in paths}
    return {name: found for name, found in by_file.items()
            if (not family or name.split("/")[1] == family) and (not file or name == file)}


def draw(by_file, count, seed):
    chosen = []
    for name, found in by_file.items():
        found = sorted(found, key=lambda m: (m.line, m.column, m.new))
        random.Random(f"{seed} {name}").shuffle(found)
        few = name.endswith(".inc") or name in WIDE_HEADERS
        places, kept = set(), []
        for mutant in found:  # one change for a place
            if (mutant.line, mutant.column) not in places:
                places.add((mutant.line, mutant.column))
                kept.append(mutant)
        chosen.append((name, kept[:FEW] if few else kept))
    # A share of the places of every file, so that no file is left out for long.
    order = [((i + random.Random(f"{seed} {name} {i}").random()) / len(found), mutant)
             for name, found in chosen for i, mutant in enumerate(found)]
    return [mutant for _, mutant in sorted(order, key=lambda pair: (pair[0], pair[1].key))][:count]


def copy_tree():
    """Brings the copy to the state of the sources; a mutant that an interrupted run left is undone by this."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=ROOT, stdout=subprocess.PIPE,
                            text=True, check=True).stdout.split("\0")
    wanted = [name for name in listed if (ROOT / name).is_file()]
    wanted += [p.relative_to(ROOT).as_posix() for p in (ROOT / "third_party").rglob("*") if p.is_file()]
    for name in wanted:
        to = TREE / name
        if not to.exists() or to.read_bytes() != (ROOT / name).read_bytes():
            to.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / name, to)
            os.utime(to)


def run(command, seconds=None):
    """The status of a command, None where its time ran out, and what it printed."""
    def limits():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
        resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
    log = PLACE / "output.txt"
    with open(log, "w+", errors="replace") as output:
        try:
            status = subprocess.run(command, cwd=BUILD, env=ENVIRONMENT, stdin=subprocess.DEVNULL, stdout=output,
                                    stderr=subprocess.STDOUT, preexec_fn=limits, timeout=seconds).returncode
        except subprocess.TimeoutExpired:
            status = None
    return status, log.read_text(errors="replace")[-200000:]


class Judge:
    """The tests of the families, with the seconds that each takes on the unchanged sources."""

    def __init__(self):
        status, text = run(["cmake", "-G", "Ninja", "-S", str(TREE), "-B", str(BUILD), "-DCMAKE_BUILD_TYPE=Release",
                            "-DORVANTH_CXX_OPTIONS=-O1", "-DORVANTH_WERROR=OFF", "-DORVANTH_TESTS=ON"])
        if status != 0:
            sys.exit(text)
        listed = json.loads(subprocess.run(["ctest", "--show-only=json-v1"], cwd=BUILD, stdout=subprocess.PIPE, text=True,
                                           check=True).stdout)
        self.tests = {}
        for test in listed["tests"]:
            name = test["name"]
            if re.search(r"(_test|_is_current)$", name):
                folder = next(Path(p["value"]) for p in test["properties"] if p["name"] == "WORKING_DIRECTORY")
                # ctest leaves the command of a program out that is not built yet.
                command = [str(folder / name)] if name.endswith("_test") else test["command"]
                self.tests.setdefault(folder.name, []).append((name, command))
        self.seconds = {}

    def of(self, mutant):
        """Name, command and target of each test that judges the mutant."""
        families = (mutant.family, *STAND_ON.get(mutant.family, ()))
        golden = ":".join(f"GoldenRows.{e.name}" for e in exports() if e.folder in families)
        tests = []
        shared = [test for found in self.tests.values() for test in found
                  if test[0] in SHARED_TESTS.get(mutant.family, ())]
        for name, command in [*self.tests.get(mutant.family, ()), *shared]:
            if name.endswith("_is_current"):
                if mutant.file.endswith(".inc"):
                    tests.append((name, command, None))
            else:
                tests.append((name, [*command, "--gtest_brief=1", "--gtest_fail_fast"], name))
        if mutant.family not in ("shield", "linalg", "optimise", "random"):
            tests.append((f"golden {'+'.join(families)}", [str(BUILD / "tests/golden/golden_test"), "--gtest_brief=1",
                          "--gtest_fail_fast", f"--gtest_filter={golden}"], "golden_test"))
        return tests

    def prepare(self, mutant):
        """Builds and times the tests of the unchanged sources."""
        tests = self.of(mutant)
        new = [test for test in tests if test[0] not in self.seconds]
        if new:
            status, text = run(["ninja", "-j1", *sorted({target for _, _, target in new if target})])
            if status != 0:
                sys.exit("the unchanged sources do not build:\n" + text[-3000:])
            for name, command, _ in new:
                start = time.time()
                status, text = run(command)
                if status != 0:
                    sys.exit(f"{name} fails on the unchanged sources:\n{text[-3000:]}")
                self.seconds[name] = time.time() - start
        return sorted(tests, key=lambda test: self.seconds[test[0]])

    def verdict(self, mutant):
        tests = self.prepare(mutant)
        path = TREE / mutant.file
        source = path.read_text()
        lines = source.split("\n")
        line = lines[mutant.line]
        assert line == mutant.text, f"{mutant.file} has changed"
        lines[mutant.line] = line[:mutant.column] + mutant.new + line[mutant.column + len(mutant.old):]
        try:
            path.write_text("\n".join(lines))
            for name, command, target in tests:
                if target:
                    status, text = run(["ninja", "-j1", target])
                    if status != 0:
                        return "invalid", "does not compile"
                status, text = run(command, 5 * self.seconds[name] + 5)
                if status is None:
                    return "killed", f"{name}: time"
                if status != 0:
                    failed = re.search(r"\[  FAILED  \] ([\w./]+)", text)
                    return "killed", f"{name}: {failed.group(1) if failed else f'status {status}'}"
            return "survived", ", ".join(name for name, _, _ in tests)
        finally:
            path.write_text(source)


def read_verdicts():
    verdicts = {}
    if VERDICTS.exists():
        for line in VERDICTS.read_text().splitlines():
            record = json.loads(line)
            verdicts[record["key"]] = record  # the last one holds
    return verdicts


def read_explained():
    rows = [line.split("\t") for line in EXPLAINED.read_text().splitlines() if line and not line.startswith("#")]
    return {"\t".join(row[:3]): row[3] for row in rows}


def summarise(verdicts):
    """Prints the counts by family and the survivors; False if one of them is not explained."""
    explained = read_explained()
    counts = {}
    unexplained = []
    for key, record in sorted(verdicts.items()):
        verdict = record["verdict"]
        if verdict == "invalid":
            continue
        if verdict == "survived":
            verdict = "equivalent" if key in explained else "survived"
            if verdict == "survived":
                unexplained.append(key)
        counts.setdefault(key.split("/")[1], Counter())[verdict] += 1
        counts.setdefault("all", Counter())[verdict] += 1
    print(f"{'family':28}{'mutants':>9}{'killed':>9}{'equivalent':>12}{'survived':>10}{'killed of those that change':>29}")
    for family, count in sorted(counts.items(), key=lambda item: (item[0] == "all", item[0])):
        changing = count["killed"] + count["survived"]
        share = 100 * count["killed"] / changing if changing else 100
        print(f"{family:28}{sum(count.values()):9}{count['killed']:9}{count['equivalent']:12}{count['survived']:10}"
              f"{share:27.1f} %")
    for key in unexplained:
        print("survived, not explained: " + key.replace("\t", "   "))
    return not unexplained


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--family", default="")
    parser.add_argument("--file", default="")
    parser.add_argument("--list", action="store_true", help="print the mutants and build nothing")
    parser.add_argument("--summary", action="store_true")
    parser.add_argument("--again", action="store_true", help="judge the survivors of earlier runs once more")
    options = parser.parse_args()
    by_file = all_mutants(options.family, options.file)
    verdicts = read_verdicts()
    if options.again:
        chosen = [m for found in by_file.values() for m in found
                  if verdicts.get(m.key, {}).get("verdict") == "survived" and m.key not in read_explained()]
    else:
        chosen = [m for m in draw(by_file, options.count, options.seed) if m.key not in verdicts]
    if options.list:
        for mutant in chosen:
            print(f"{mutant.file}:{mutant.line + 1}: {mutant.change}   {mutant.text.strip()}")
        return
    if not options.summary and chosen:
        PLACE.mkdir(parents=True, exist_ok=True)
        BUILD.mkdir(exist_ok=True)
        copy_tree()
        judge = Judge()
        for number, mutant in enumerate(chosen):
            start = time.time()
            verdict, why = judge.verdict(mutant)
            with open(VERDICTS, "a") as file:
                file.write(json.dumps({"key": mutant.key, "verdict": verdict, "why": why, "kind": mutant.kind}) + "\n")
            print(f"{number + 1}/{len(chosen)} {time.time() - start:5.1f} s {verdict:9} {mutant.file}:{mutant.line + 1} "
                  f"{mutant.change}   {mutant.text.strip()[:80]}   [{why[:80]}]", flush=True)
    sys.exit(0 if summarise(read_verdicts()) else 1)


if __name__ == "__main__":
    main()
