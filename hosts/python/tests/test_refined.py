"""The refined multiple-comparison functions beside integration to 36 digits."""
from pathlib import Path

import numpy as np
import orvanth
import pytest

DATA = Path(__file__).resolve().parents[3] / "tests" / "data" / "accuracy"
TABLES = ("refined_multiple_comparison.tsv", "refined_direct.tsv")
LETTERS = {"Tukey": "a", "Hsu": "b", "Dunnett": "c"}


def rows(statistic):
    """(k, df, coefficients, upper, x, lower, upper probability) of one statistic."""
    for line in (line for table in TABLES for line in (DATA / table).read_text().splitlines()):
        cells = line.split("\t")
        if cells[0] == statistic:
            k = int(cells[1])
            coefficients = [0.5 ** 0.5] * k if cells[3] == "equal" else [float(c) for c in cells[3].split(",")]
            coefficients += [0.0] * (k - len(coefficients))
            yield (k, float(cells[2]), coefficients, cells[4] == "upper", float.fromhex(cells[5]), *map(float, cells[6:8]))


@pytest.mark.parametrize("statistic", LETTERS)
def test_reference(statistic):
    cumulative = getattr(orvanth, f"refined_mc{LETTERS[statistic]}_cdf")
    quantile = getattr(orvanth, f"refined_mc{LETTERS[statistic]}_icdf")
    count = 0
    for k, df, coefficients, upper, x, below, above in rows(statistic):
        exact = above if upper else below
        assert cumulative(x, k, df, coefficients, upper=upper) == pytest.approx(exact, rel=1e-9)
        floor = 1e-10 if statistic == "Hsu" else 0.0  # near 0 a one-sided quantile has an absolute error
        assert quantile(exact, k, df, coefficients, upper=upper) == pytest.approx(x, rel=1e-8, abs=floor)
        count += 1
    assert count > 50


def test_arrays_of_data_sets_and_failures():
    coefficients = np.full(3, 0.5 ** 0.5)
    p = orvanth.refined_mcc_cdf([2.0, 2.5, 3.0], 3, [[10], [np.inf]], coefficients, upper=True)
    assert p.shape == (2, 3) and p[1, 2] == orvanth.RefinedMCcCDF(3.0, 3, np.inf, coefficients, 1)
    with np.errstate(invalid="ignore"):
        assert np.isnan(orvanth.refined_mca_cdf(2.0, 3, -1, coefficients))
    assert "Degrees of freedom argument is -1" in orvanth.last_error()
    with np.errstate(over="ignore"):
        assert np.isnan(orvanth.refined_mca_icdf(1.0, 3, 10, coefficients))
