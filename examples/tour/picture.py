#!/usr/bin/env python3
"""Makes the picture of README.md, docs/images/dunnett.svg: the blood counts of the section on multiple comparisons.

  picture.py LIBRARY             writes the picture
  picture.py LIBRARY --check     says whether the picture is that of this library
"""
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.path[:0] = [str(HERE), str(ROOT / "tools")]
from host import Core  # noqa: E402
from palette import PALETTE, drawing, variables  # noqa: E402
from sections.multiple_comparison import OneWay, blood_figure, lambda_against  # noqa: E402

PICTURE = ROOT / "docs/images/dunnett.svg"


def picture(library):
    blood = OneWay(ROOT / "tests/data/tour/blood_count.csv")
    figure = blood_figure(Core(library), blood, lambda_against(blood, 0))
    figure.set_size_inches(8, 2.8)
    # A page may be dark where the reader's system is light, so the picture brings its own ground.
    svg = drawing(figure, "dunnett", transparent=False, facecolor=PALETTE["paper"][0])
    return svg.replace("<defs>", f"<style>{variables()}*{{stroke-linejoin:round}}</style><defs>", 1)


def main(arguments):
    if len(arguments) not in (1, 2) or arguments[1:] not in ([], ["--check"]):
        print(__doc__, file=sys.stderr)
        return 2
    made = picture(arguments[0])
    if len(arguments) == 1:
        PICTURE.parent.mkdir(parents=True, exist_ok=True)
        PICTURE.write_text(made, encoding="utf-8")
    elif not PICTURE.exists() or PICTURE.read_text(encoding="utf-8") != made:
        print("docs/images/dunnett.svg is stale: run examples/tour/picture.py LIBRARY", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
