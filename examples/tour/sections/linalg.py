"""Least squares with standard errors, principal components, and a collinear column caught."""
import csv
import math

import matplotlib.pyplot as plt
import numpy as np
from orvanth import CollinearityError, stats

from palette import BLUE, GREY, RED

# The stack-loss regression as tabled with the data: estimate and standard error.
STACK_LOSS = {"constant": (-39.9196744201, 11.8959968506), "air flow": (0.7156402005, 0.1348581854),
              "water temperature": (1.2952861244, 0.3680242653),
              "acid concentration": (-0.1521225191, 0.1562940432)}
LONGLEY = ["constant", "price deflator", "national product", "unemployed", "armed forces", "population", "year"]


def regression(core, design, response):
    """Coefficients, standard errors, t, two-sided p, residuals and residual sum of squares."""
    a, descriptor = core.matrix(design)
    b, column = core.matrix(response)
    rows, columns = a.shape
    x, coefficients = core.matrix(np.zeros(columns))
    tau = np.zeros(columns)
    status = core.OLS(a, descriptor, b, column, x, coefficients, tau, 1e-9)
    if status != 0:
        raise ValueError(f"OLS: status {status}")
    # What OLS leaves in its storage is R; the rows of its inverse carry the standard errors.
    inverse, square = core.matrix(np.eye(columns))
    core.SolveTriangularSystem(a, descriptor, 1, 0, inverse, square)
    given, view = core.matrix(design)
    rss = core.Xb(given, view, x, np.array(response, dtype=float))
    df = rows - columns
    errors = [math.sqrt(rss / df * sum(v * v for v in row)) for row in inverse]
    t = [estimate / error for estimate, error in zip(x[:, 0], errors)]
    p = [2 * core.StudentTCDF(abs(value), df, 1) for value in t]
    # The residuals are Q times what is left of Q transposed times y below the coefficients.
    b[:columns] = 0
    core.QR_Qy(a, descriptor, 0, tau, b, column)
    return x[:, 0], errors, t, p, b[:, 0], rss


def stack_loss(page):
    with open(page.data("tour/stack_loss.csv")) as file:
        table = list(csv.DictReader(file))
    predictors = np.array([[float(row[name]) for name in ("air_flow", "water_temp", "acid_conc")] for row in table])
    return predictors, np.array([float(row["stack_loss"]) for row in table])


def longley(page):
    lines = page.data("nist/linear/Longley.dat").read_text().splitlines()[60:]
    table = np.array([line.split() for line in lines if line.strip()], dtype=float)
    return np.column_stack([np.ones(len(table)), table[:, 1:]]), table[:, 0]


def certified(page, name):
    lines = (line.split("\t") for line in page.data("nist/certified.tsv").read_text().splitlines())
    return {fields[1]: float(fields[2]) for fields in lines if fields[0] == name}


def components(core, page, predictors):
    """Principal components of the standardised columns by two roads."""
    centred = predictors - predictors.mean(axis=0)
    centred /= np.sqrt((centred ** 2).sum(axis=0))
    rows, columns = centred.shape
    a, view = core.matrix(centred)
    u, left = core.matrix(np.zeros((rows, columns)))
    vt, right = core.matrix(np.zeros((columns, columns)))
    s = np.zeros(columns)
    core.ThinSVD(a, view, s, u, left, vt, right)

    correlation, square = core.matrix(centred.T @ centred)
    z, vectors = core.matrix(np.zeros((columns, columns)))
    w, found = np.zeros(columns), np.zeros(1, dtype=np.int32)
    core.EigenSymmetric(correlation, square, w, found, z, vectors)
    page.compare([(f"component {k + 1}", s[k] ** 2, w[columns - 1 - k])
                  for k in range(columns)],
                 "Variances of the principal components: ThinSVD of the data beside EigenSymmetric of their "
                 "correlations", tolerance=1e-12, headers=("singular value squared", "eigenvalue"))
    scores = u * s
    figure, axes = plt.subplots()
    axes.scatter(scores[:, 0], scores[:, 1], color=GREY)
    for i, (x, y) in enumerate(scores[:, :2]):
        axes.annotate(str(i + 1), (x, y), fontsize=8, xytext=(3, 3), textcoords="offset points")
    for name, x, y in zip(("air flow", "water temperature", "acid concentration"), vt[0], vt[1]):
        axes.annotate("", (0.35 * x, 0.35 * y), (0, 0), arrowprops={"arrowstyle": "->", "color": BLUE})
        axes.text(0.37 * x, 0.37 * y, name, color=BLUE)
    axes.set_xlabel(f"first component, {s[0] ** 2 / columns:.0%} of the variance")
    axes.set_ylim(-0.45, 0.45)
    axes.set_ylabel(f"second, {s[1] ** 2 / columns:.0%}")
    page.figure(figure, "The days of the stack-loss plant in their first two principal components; days 1 to 3 "
                        "stand apart.")


def run(core, page):
    page.section("Linear algebra: two classic regressions",
                 "Least squares in the caller's own storage: the design goes in, R, the reflectors and the "
                 "coefficients come back. Standard errors come from R by a triangular solve, p-values from the "
                 "library's Student distribution.")
    predictors, loss = stack_loss(page)
    design = np.column_stack([np.ones(len(loss)), predictors])
    x, errors, t, p, residuals, rss = regression(core, design, loss)
    rows = []
    for k, (name, (estimate, error)) in enumerate(STACK_LOSS.items()):
        rows += [(name, x[k], estimate), ("  standard error", errors[k], error)]
    page.compare(rows, "Brownlee's stack loss beside the tabled regression", tolerance=1e-9)
    page.table(("", "t", "p"), [(name, t[k], f"{p[k]:.2e}") for k, name in enumerate(STACK_LOSS)])

    q, view = core.matrix(design)
    tau = np.zeros(q.shape[1])
    core.QR(q, view, tau)
    core.QR_Q(q, view, tau)
    leverage = (q ** 2).sum(axis=1)
    scale = math.sqrt(rss / (len(loss) - design.shape[1]))
    studentised = residuals / (scale * np.sqrt(1 - leverage))
    figure, axes = plt.subplots()
    fitted = loss - residuals
    axes.axhline(0, color=GREY, linewidth=1)
    axes.scatter(fitted, studentised, color=[RED if abs(v) > 2 else BLUE for v in studentised])
    for i in np.flatnonzero(np.abs(studentised) > 1.5):
        axes.annotate(f"day {i + 1}", (fitted[i], studentised[i]), xytext=(5, 4), textcoords="offset points")
    axes.set_xlabel("fitted stack loss")
    axes.set_ylabel("standardised residual")
    page.figure(figure, "Residuals of the stack-loss regression: day 21 is the one that later analyses discard.")

    design, employed = longley(page)
    values = certified(page, "Longley")
    x, errors, t, p, _, rss = regression(core, design, employed)
    page.compare([row for k, name in enumerate(LONGLEY)
                  for row in ((name, x[k], values[f"B{k}"]), ("  standard error", errors[k], values[f"B{k}_sd"]))]
                 + [("residual sum of squares", rss, values["residual_ss"])],
                 "Longley's employment data, almost collinear, beside NIST's certified values", tolerance=1e-9)
    page.table(("", "t", "p"), [(name, t[k], f"{p[k]:.2e}") for k, name in enumerate(LONGLEY)])

    page.text("A redundant term is named, not hidden: with the sum of unemployed and armed forces as one more "
              "column, OLS stops at that column's number and leaves the right-hand side alone.")
    redundant = np.column_stack([design, design[:, 3] + design[:, 4]])
    a, view = core.matrix(redundant)
    b, column = core.matrix(employed)
    out, coefficients = core.matrix(np.zeros(8))
    status = core.OLS(a, view, b, column, out, coefficients, np.zeros(8), 1e-9)
    page.compare([("column that OLS stops at", status, 8), ("largest change of the right-hand side",
                                                           float(np.abs(b[:, 0] - employed).max()), 0.0)],
                 "Exactly collinear design", tolerance=0, headers=("computed", "expected"))

    fit = stats.ols(design[:, 1:], employed, names=LONGLEY[1:])
    page.compare([("price deflator", fit.coefficients[1], values["B1"]),
                  ("  standard error", fit.standard_errors[1], values["B1_sd"]),
                  ("R squared", float(fit.r_squared), 0.995479004577296), ("F", float(fit.fvalue), 330.285339234588)],
                 "Longley's data through orvanth.stats, beside NIST's certified values", tolerance=1e-9)
    try:
        stats.ols(redundant[:, 1:], employed, names=[*LONGLEY[1:], "unemployed + armed forces"])
    except CollinearityError as error:
        page.text(f"orvanth.stats names the redundant term: {error}.")
    components(core, page, predictors)
