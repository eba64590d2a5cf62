#!/usr/bin/env python3
"""Runs the programs that the pages show and compares what they print with what the pages say.

    programs_test.py WORK_FOLDER LIBRARIES PYTHON_PACKAGE ASSEMBLY_FOLDER R_LIBRARY

A program of C or C++ is compiled against the shield in LIBRARIES, one of C# against the assembly. Options after the
five folders choose tasks.
"""
import difflib
import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from site_pages import programs  # noqa: E402

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror", "-O1"]


def commands(language, source, work, libraries, assembly):
    """What makes the program, and what runs it."""
    link = [f"-I{ROOT}/include", str(source), f"-L{libraries}", "-lOrvanth.Core.Math.Shield", "-lm",
            f"-Wl,-rpath,{libraries}", "-o", str(work / source.stem)]
    exe = assembly / f"{source.stem}.exe"
    return {"Python": ([], ["/usr/bin/python3", str(source)]),
            "C": (["gcc", "-std=c11", *WARNINGS, *link], [str(work / source.stem)]),
            "C++": (["g++", "-std=c++20", *WARNINGS, *link], [str(work / source.stem)]),
            "C#": (["mcs", "-nologo", "-warnaserror", f"-out:{exe}", f"-r:{assembly}/Orvanth.Core.Math.dll", str(source)],
                   ["mono", str(exe)]),
            "R": ([], ["Rscript", str(source)])}[language]


def main(arguments):
    work, libraries, package, assembly, r_library = (Path(a).resolve() for a in arguments[:5])
    work.mkdir(parents=True, exist_ok=True)
    environment = dict(os.environ, PYTHONPATH=str(package), R_LIBS=str(r_library), OPENBLAS_NUM_THREADS="1")
    tasks = arguments[5:] or sorted({f.stem for folder in programs.FOLDERS for _, ending, _ in programs.LANGUAGES
                                     for f in folder.glob(f"*.{ending}")})
    failures, count = 0, 0
    for task in tasks:
        for language, _, source in programs.sources(task):
            make, run = commands(language, source, work, libraries, assembly)
            if make:
                subprocess.run(make, check=True)
            result = subprocess.run(run, env=environment, capture_output=True, text=True)
            wanted, got = programs.printed(task, source), result.stdout.rstrip("\n")
            count += 1
            if result.returncode != 0 or wanted != got:
                failures += 1
                print(f"{source.relative_to(ROOT)} ended with {result.returncode} and does not print what the page says")
                print(result.stderr + "\n".join(difflib.unified_diff(wanted.splitlines(), got.splitlines(), "said", "printed",
                                                                     lineterm="")))
    print(f"{count} programs of {len(tasks)} tasks, {failures} failures")
    return 1 if failures or count < 36 and len(arguments) == 5 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]) if len(sys.argv) > 5 else __doc__)
