"""The data files of the tests of ``orvanth.stats``."""
import csv
from decimal import Decimal
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3] / "tests" / "data"


def groups(path):
    """{group: [values]} of a file with the columns group and value."""
    found = {}
    with open(ROOT / path) as file:
        for name, value in list(csv.reader(file))[1:]:
            found.setdefault(name, []).append(float(value))
    return found


def rows(path):
    """The lines of a table without its comments, split at tabs."""
    lines = (ROOT / path).read_text().splitlines()
    return [line.split("\t") for line in lines if line and not line.startswith("#")]


def printed(test, data):
    """[(case, quantity, value, half a unit of the last printed figure)]"""
    return [(case, quantity, float(text), 0.501 * 10.0 ** Decimal(text).as_tuple().exponent)
            for t, d, case, quantity, text, _ in rows("stats/printed.tsv") if (t, d) == (test, data)]
