#!/usr/bin/env python3
"""Runs the first call of docs/site/start/c.md as printed: installs the library, compiles the program, compares its output.
Compares the programs that README.md shows with their files, which other tests run.

    readme.py BUILD_FOLDER                what is built there is installed in place of building the preset release
    readme.py --build                     builds the preset release too, as the page says
    readme.py --programs                  compares the programs only
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FIRST_CALL = "docs/site/start/c.md"


def block(name, kind="run"):
    page = FIRST_CALL if kind == "run" else "README.md"
    marked = rf"<!-- {kind}: {re.escape(name)} -->\n```\w*\n(.*?)```\n"
    found = re.findall(marked, (ROOT / page).read_text(), re.S)
    if len(found) != 1:
        sys.exit(f"{page}: one block is needed after '<!-- {kind}: {name} -->', there are {len(found)}")
    return found[0]


def compare_programs():
    """Each program of the test of Dunnett is in README.md, and all say that they print what README.md says."""
    files = sorted((ROOT / "examples/hosts").glob("dunnett.*"))
    for file in files:
        name = str(file.relative_to(ROOT))
        program, printed = re.split(r"^.*prints:\n", file.read_text(), flags=re.M)
        if program != block(name, "shown"):
            sys.exit(f"README.md does not show {name} as it is")
        if "".join(printed.splitlines(keepends=True)[:-1]) != block("output", "shown"):
            sys.exit(f"{name} says that it prints something else than README.md")
    if len(files) != 5:
        sys.exit(f"five programs are expected, there are {len(files)}")
    print(f"README.md shows {len(files)} programs as they are")


def main(argument):
    install = block("install")
    if argument != "--build":
        lines = install.splitlines()
        install = lines[-1].replace("build/release", f'"{Path(argument).resolve()}"')
        if not lines[-1].startswith("cmake --install build/release "):
            sys.exit(f"{FIRST_CALL}: the last command of the installation is not the expected one: {lines[-1]}")
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, HOME=home)
        environment.pop("LD_LIBRARY_PATH", None)

        def shell(text, folder):
            done = subprocess.run(["bash", "-euo", "pipefail", "-c", text], cwd=folder, env=environment,
                                  capture_output=True, text=True)
            if done.returncode != 0:
                sys.exit(f"{FIRST_CALL}: these commands end with {done.returncode}:\n{text}\n{done.stdout}{done.stderr}")
            return done.stdout

        shell(install, ROOT)
        Path(home, "first.c").write_text(block("first.c"))
        printed = shell(block("compile"), home)
    if printed != block("output"):
        sys.exit(f"{FIRST_CALL} says that the first call prints {block('output')!r}; it prints {printed!r}")
    print(f"the first call of {FIRST_CALL} prints what it says: " + printed.strip())


compare_programs()
if sys.argv[1] != "--programs":
    main(sys.argv[1])
