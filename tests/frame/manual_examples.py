#!/usr/bin/env python3
"""Compiles the examples of the manual entries, runs them, and compares what they give with what the entries say.

    manual_examples.py COMPILER INCLUDE_FOLDER LIBRARY

A line 'Name(arguments) = value' is compared in the digits shown. A block of statements has to print its lines
'// prints: TEXT'.
"""
import re
import subprocess
import sys
import tempfile
from decimal import Decimal
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import manual  # noqa: E402
from signature_table import exports, folders  # noqa: E402

MARK = "== example "


def arguments_in_c(export, call):
    """The arguments between the brackets as C: arrays and descriptors become compound literals."""
    inside = re.fullmatch(rf"{export.name}\((.*)\)", call)
    if not inside:
        raise ValueError(f"{export.name}: '{call}' is no call of it")
    pieces = re.findall(r"\{[^}]*\}|[^,{}]+", re.sub(r"\s*,\s*", ",", inside[1]))
    if len(pieces) != len(export.arguments):
        raise ValueError(f"{export.name}: '{call}' has {len(pieces)} arguments, not {len(export.arguments)}")
    texts = []
    for piece, argument in zip(pieces, export.arguments):
        piece = re.sub(r"\bnan\b", "NAN", re.sub(r"\binf\b", "INFINITY", piece.strip()))
        if piece.startswith("{"):
            base = argument.type.removeprefix("const ").rstrip("*")
            piece = f"&({base})" + piece if base == "MatrixDescriptor" else f"({base}[])" + piece
        texts.append(piece)
    return ", ".join(texts)


def run(compiler, include, library, program):
    """What the program prints before each mark, by number."""
    with tempfile.TemporaryDirectory() as folder:
        source, binary = Path(folder, "examples.c"), Path(folder, "examples")
        source.write_text(program)
        subprocess.run([compiler, "-std=c11", "-Wall", "-Wextra", "-Wno-unused-variable", f"-I{include}", str(source),
                        "-o", str(binary), str(library), f"-Wl,-rpath,{Path(library).parent}", "-lm"], check=True)
        done = subprocess.run([str(binary)], capture_output=True, text=True)
    printed, current = {}, None
    for line in done.stdout.splitlines():
        if line.startswith(MARK):
            current = printed.setdefault(int(line[len(MARK):]), [])
        else:
            current.append(line.rstrip())
    if done.returncode != 0:
        number = max(printed, default=0)
        sys.exit(f"the examples stopped with code {done.returncode} at number {number}: {done.stderr.strip()}")
    return printed


def same(got, shown):
    """Whether a number agrees with the digits shown."""
    if shown.lstrip("+-") in ("nan", "inf"):
        return got.lstrip("-") == "nan" if "nan" in shown else got == shown.lstrip("+")
    if got.lstrip("-") in ("nan", "inf"):
        return False
    half = Decimal((0, (1,), Decimal(shown).as_tuple().exponent)) / 2
    return abs(Decimal(got) - Decimal(shown)) <= half * (1 + Decimal("1e-9"))


def collect():
    scalars, codes = [], []
    for folder in folders():
        entries = manual.read(folder)[1]
        for export in exports():
            if export.folder == folder and export.name in entries:
                entry = entries[export.name]
                scalars += [(export, call, value) for call, value in entry.scalar_examples()]
                codes += [(export, code, lines) for code, lines in entry.code_examples()]
    return scalars, codes


def main(compiler, include, library):
    scalars, codes = collect()
    wrong = []
    lines = ["#include <math.h>", "#include <stdint.h>", "#include <stdio.h>", '#include "orvanth/core_math.h"', "",
             "int main(void) {", '    setvbuf(stdout, NULL, _IONBF, 0);']
    for number, (export, call, _) in enumerate(scalars):
        lines.append(f'    printf("{MARK}{number}\\n%.17g\\n", (double){export.name}({arguments_in_c(export, call)}));')
    printed = run(compiler, include, library, "\n".join(lines + ["    return 0;", "}", ""]))
    for number, (_, call, value) in enumerate(scalars):
        if not same(printed[number][-1], value):
            wrong.append(f"{call} is {printed[number][-1]}, the manual says {value}")

    # Each block stands in a main of its own for the reader; here in a function of its own.
    lines = ["#include <stdint.h>", "#include <stdio.h>", '#include "orvanth/core_math.h"', ""]
    for number, (_, code, _) in enumerate(codes):
        lines += [f"static int example{number}(void) {{", code.rstrip(), "    return 0;", "}", ""]
    lines += ["int main(void) {", "    setvbuf(stdout, NULL, _IONBF, 0);"]
    for number in range(len(codes)):
        lines += [f'    printf("{MARK}{number}\\n");', f"    if (example{number}() != 0) return 1;"]
    printed = run(compiler, include, library, "\n".join(lines + ["    return 0;", "}", ""]))
    for number, (export, _, want) in enumerate(codes):
        if printed[number] != want:
            wrong.append(f"{export.name}: the example prints {printed[number]}, the manual says {want}")

    print(f"{len(scalars)} calls and {len(codes)} programs of the manual ran")
    sys.exit("\n".join(wrong) if wrong else 0)


if __name__ == "__main__":
    main(*sys.argv[1:])
