#!/usr/bin/env python3
"""The main job: loads the library as a host does, analyses real data and writes a report.

  tour.py LIBRARY REPORT.html [SECTION ...]
"""
import importlib
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "tools")]
from host import Core  # noqa: E402
from page import Page  # noqa: E402

SECTIONS = ["normal", "special", "distributions", "discrete", "multiple_comparison", "kolmogorov",
            "noncentral_hypergeometric", "linalg", "random", "optimise"]


def main(arguments):
    if len(arguments) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    library, report, *chosen = arguments
    unknown = set(chosen) - set(SECTIONS)
    if unknown:
        print(f"no section {', '.join(sorted(unknown))}; there are: {' '.join(SECTIONS)}", file=sys.stderr)
        return 2
    core = Core(library)
    page = Page("Orvanth.Core.Math: a tour on real data")
    print(f"{len(core.names)} exports resolved in {library}")
    for name in chosen or SECTIONS:
        start = time.monotonic()
        importlib.import_module(f"sections.{name}").run(core, page)
        print(f"  ({name}: {time.monotonic() - start:.1f} s)", flush=True)
    page.write(Path(report))
    print(f"\nThe page with the plots: {report}")
    print(f"{page.checked} checks: values beside published ones and statements; {len(page.disagreements)} fail.")
    for line in page.disagreements:
        print("  " + line)
    return 1 if page.disagreements else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
