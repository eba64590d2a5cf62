#!/usr/bin/env python3
"""clang-tidy's rule for names (.clang-tidy) over src/ without what is compiled for Windows alone.

A folder is looked at as one text, for most of the time goes into the headers that its files share. Where names of two
files collide in that text, the files are looked at one by one, which takes three times as long: give them names of
their own. A text that was clean is left out until it, a header of
src/ or the rule has changed; the marks are in build/names.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
MARKS = ROOT / "build" / "names"
BUILD = MARKS / "clang"


def run(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True)


def findings(name, sources):
    """The lines of clang-tidy that tell of a name, or of a text that does not compile."""
    text = MARKS / f"{name}.cpp"
    text.write_text("".join(f'#include "{source}"\n' for source in sources))
    found = run("clang-tidy-14", "-p", str(MARKS), "--quiet", "--checks=-*,readability-identifier-naming", str(text))
    if not found.stdout and found.returncode:
        return [f"error: {found.stderr.strip()}"]
    return [line for line in found.stdout.splitlines() if "readability-identifier-naming" in line or "error:" in line]


def look_at(folder, files, common):
    """`files` are pairs of a source and the command that compiles it."""
    sources = [source for source, _ in files]
    known = hashlib.sha256(common + b"".join(source.read_bytes() for source in sources)).hexdigest()
    mark = MARKS / f"{folder}.clean"
    if mark.exists() and mark.read_text() == known:
        return []
    found = findings(folder, sources)
    collisions = [line for line in found if "error:" in line]
    if collisions:
        print(f"names: the files of {folder} one by one, because of", *collisions, sep="\n  ")
        found = [line for source in sources for line in findings(f"{folder}.{source.stem}", [source])]
    if not found:
        mark.write_text(known)
    return found


def main():
    MARKS.mkdir(parents=True, exist_ok=True)
    # The commands that compile each file by itself.
    made = run("cmake", "--preset", "clang", "-B", str(BUILD), "-DORVANTH_FOLDERS_AS_ONE=OFF", "-DORVANTH_TESTS=OFF")
    if made.returncode:
        sys.exit(made.stdout + made.stderr)
    folders = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if source.suffix == ".cpp" and source.is_relative_to(ROOT / "src"):
            files = folders.setdefault("-".join(source.parent.relative_to(ROOT / "src").parts), {})
            files.setdefault(source, entry["command"])
    folders = {folder: sorted(files.items()) for folder, files in folders.items()}

    database = []
    for folder, files in folders.items():
        for name, command in [(folder, files[0][1])] + [(f"{folder}.{source.stem}", own) for source, own in files]:
            database.append({"directory": str(BUILD), "file": str(MARKS / f"{name}.cpp"),
                             "command": command.rsplit(" -c ", 1)[0] + f" -c {MARKS / name}.cpp"})
    (MARKS / "compile_commands.json").write_text(json.dumps(database))

    shared = run("git", "ls-files", "src/*.hpp", "src/*.inc", ".clang-tidy", "tools/check_names.py").stdout.split()
    common = b"".join((ROOT / file).read_bytes() for file in shared)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        looks = pool.map(lambda folder: look_at(folder, folders[folder], common), folders)
        found = sorted({line.replace(f"{ROOT}/", "") for lines in looks for line in lines})
    if found:
        sys.exit("\n".join(["names that break the rule of .clang-tidy:", *found]))
    print("names: clean")


main()
