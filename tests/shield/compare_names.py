#!/usr/bin/env python3
"""The shield exports its own names and the forms of every export, and nothing else.

  compare_names.py LIBRARY
"""
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from hosts import shield  # noqa: E402

listing = subprocess.run(["nm", "-D", "--defined-only", sys.argv[1]], check=True, capture_output=True, text=True)
visible = {line.split()[-1].split("@")[0] for line in listing.stdout.splitlines()}
named = set(shield.names())
wrong = [f"visible, but made from no row: {name}" for name in sorted(visible - named)]
wrong += [f"made from a row, but not visible: {name}" for name in sorted(named - visible)]
print("\n".join(wrong) or f"{len(named)} functions, and nothing else")
sys.exit(1 if wrong else 0)
