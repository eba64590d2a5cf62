#!/usr/bin/env python3
"""The exported set of the built library equals the signature table, in both directions.

  compare_exports.py LIBRARY
"""
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from signature_table import exports  # noqa: E402

listing = subprocess.run(["nm", "-D", "--defined-only", sys.argv[1]], check=True, capture_output=True, text=True)
visible = {line.split()[-1].split("@")[0] for line in listing.stdout.splitlines()}
table = {row.name for row in exports()}
dynamic = subprocess.run(["readelf", "-d", sys.argv[1]], check=True, capture_output=True, text=True).stdout

wrong = [f"visible, but in no row of the table: {name}" for name in sorted(visible - table)]
wrong += [f"in the table, but not visible: {name}" for name in sorted(table - visible)]
if "Library soname: [libOrvanth.Core.Math.so.1]" not in dynamic:
    wrong.append("the SONAME is not libOrvanth.Core.Math.so.1")
for other in ("libblas.so", "liblapack.so"):
    if other in dynamic:
        wrong.append(f"{other} is linked; link OpenBLAS itself, whose xerbla returns")
print("\n".join(wrong) or f"{len(table)} exports, and nothing else")
sys.exit(1 if wrong else 0)
