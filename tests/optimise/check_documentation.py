#!/usr/bin/env python3
"""Exit 1 if docs/minimiser.md does not show the programs of examples/minimiser as they are."""
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
page = (ROOT / "docs" / "minimiser.md").read_text()
stale = [path.name for path in sorted((ROOT / "examples" / "minimiser").glob("*.c*"))
         if f"\n{path.read_text()}```\n" not in page]
for name in stale:
    print(f"docs/minimiser.md shows another text than examples/minimiser/{name}; copy it there", file=sys.stderr)
sys.exit(1 if stale else 0)
