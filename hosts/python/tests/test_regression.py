"""Least squares with standard errors and tests."""
import csv

import data
import numpy as np
import orvanth
import pandas as pd
import pytest
from orvanth import stats


def stack_loss():
    with open(data.ROOT / "tour/stack_loss.csv") as file:
        rows = list(csv.reader(file))
    return pd.DataFrame(np.array(rows[1:], dtype=float), columns=rows[0])


def test_printed_results():
    frame = stack_loss()
    result = stats.ols(frame[["air_flow", "water_temp", "acid_conc"]], frame["stack_loss"])
    interval = result.confidence_interval()
    terms = {"coefficient": result.coefficients, "error": result.standard_errors, "t": result.tvalues, "p": result.pvalues,
             "low": interval.low, "high": interval.high}
    model = {"sigma": result.residual_standard_error, "r_squared": result.r_squared, "adjusted": result.adjusted_r_squared,
             "f": result.fvalue, "f_p": result.f_pvalue}
    rows = data.printed("ols", "stack_loss")
    assert len(rows) == 29
    for case, quantity, value, unit in rows:
        found = model[quantity] if case == "model" else terms[quantity][result.names.index(case)]
        assert found == pytest.approx(value, abs=unit), (case, quantity)
    assert np.allclose(result.residuals[:3], [3.23463723, -1.91748529, 4.55553300])  # R, residuals(lm(...))
    assert result.covariance.shape == (4, 4)
    assert np.allclose(np.sqrt(np.diag(result.covariance)) * result.residual_standard_error, result.standard_errors)


def test_certified_problem():
    """Longley's data, certified by NIST to many digits."""
    lines = (data.ROOT / "nist/linear/Longley.dat").read_text().splitlines()
    table = np.array([line.split() for line in lines[60:76]], dtype=float)
    result = stats.ols(table[:, 1:], table[:, 0])
    assert result.coefficients[0] == pytest.approx(-3482258.63459582, rel=1e-8)
    assert result.standard_errors[0] == pytest.approx(890420.383607373, rel=1e-8)
    assert result.residual_standard_error == pytest.approx(304.854073561965, rel=1e-9)
    assert result.r_squared == pytest.approx(0.995479004577296, rel=1e-12)
    assert result.fvalue == pytest.approx(330.285339234588, rel=1e-8)


def test_a_redundant_term_is_named():
    frame = stack_loss().iloc[:, :3]
    frame["sum"] = frame["air_flow"] + frame["water_temp"]
    with pytest.raises(orvanth.CollinearityError, match=r"column 5 .*\(sum\)") as caught:
        stats.ols(frame, stack_loss()["stack_loss"])
    assert caught.value.name == "sum"
    with pytest.raises(orvanth.CollinearityError, match="constant"):
        stats.ols(np.ones((5, 1)), np.arange(5.0), names=["constant"])


def test_many_responses():
    random = np.random.default_rng(2)
    x, y = random.normal(size=(20, 3)), random.normal(size=(4, 2, 20))
    together = stats.ols(x, y)
    assert together.coefficients.shape == (4, 2, 4) and together.f_pvalue.shape == (4, 2)
    alone = stats.ols(x, y[3, 1])
    assert np.allclose(together.coefficients[3, 1], alone.coefficients, rtol=1e-12)
    assert np.allclose(together.pvalues[3, 1], alone.pvalues, rtol=1e-9)
    assert np.allclose(stats.ols(x, np.moveaxis(y, -1, 0), axis=0).pvalues, together.pvalues, rtol=1e-9)
    assert "8 responses" in str(together)


def test_without_intercept_and_missing_rows():
    x, y = np.array([1.0, 2, 3, 4]), np.array([2.1, 3.9, 6.2, 7.8])
    through_zero = stats.ols(x, y, intercept=False)
    assert through_zero.names == ["x1"] and through_zero.coefficients[0] == pytest.approx((x @ y) / (x @ x), rel=1e-14)
    assert through_zero.r_squared == pytest.approx(1 - (through_zero.residuals**2).sum() / (y @ y), rel=1e-14)
    holes = np.append(y, np.nan)
    longer = np.append(x, 9.0)
    assert np.isnan(stats.ols(longer, holes).coefficients).all()
    assert np.allclose(stats.ols(longer, holes, nan_policy="omit").coefficients, stats.ols(x, y).coefficients)
    assert np.isnan(stats.ols(np.append(x, np.nan), np.append(y, 1.0)).pvalues).all()
    with pytest.raises(ValueError, match="contains NaN"):
        stats.ols(longer, holes, nan_policy="raise")


def test_errors_say_what_is_wrong():
    for call, text in ((lambda: stats.ols([1.0, 2], [1.0, 2]), "2 observations are too few for 2 terms: at least 3"),
                       (lambda: stats.ols(np.ones((3, 1)), [1.0, 2]), "x has 3 rows and y has 2 observations"),
                       (lambda: stats.ols(np.ones((2, 2, 2)), [1.0, 2]), "matrix"),
                       (lambda: stats.ols(pd.DataFrame({"a": ["u", "v"]}), [1.0, 2]), "code categories"),
                       (lambda: stats.ols(np.arange(4.0), np.arange(4.0), names=["a", "b"]), "2 names for 1 columns"),
                       (lambda: stats.ols([1.0, 2, np.inf], [1.0, 2, 3]), "infinity"),
                       (lambda: stats.ols(np.ones((3, 0)), [1.0, 2, 3], intercept=False), "no term")):
        with pytest.raises(ValueError, match=text):
            call()
