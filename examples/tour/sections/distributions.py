"""Percentage points of chi-squared, F and t, and the power of a test."""
import math

import matplotlib.pyplot as plt
import numpy as np

from palette import MID, NAVY, RED, SKY

# Printed percentage points (Pearson and Hartley, Biometrika Tables for Statisticians, 1954).
CHI_SQUARED = {(1, 0.05): 3.84146, (5, 0.05): 11.0705, (10, 0.01): 23.2093, (30, 0.05): 43.7730}
STUDENT_T = {(1, 0.025): 12.706, (5, 0.025): 2.571, (10, 0.005): 3.169, (30, 0.025): 2.042}
FISHER_F = {(1, 10, 0.05): 4.96, (4, 20, 0.05): 2.87, (5, 10, 0.01): 5.64, (10, 30, 0.05): 2.16}


def power(core, shift, n, alpha=0.05):
    """Power of the two-sided z-test for a shift of the mean, in standard deviations."""
    z = core.NormalICDF(alpha / 2, 0, 1, 1)
    at = shift * math.sqrt(n)
    return core.NormalCDF(z, at, 1, 1) + core.NormalCDF(-z, at, 1, 0)


def run(core, page):
    page.section("Chi-squared, F and t: percentage points and power",
                 "The upper percentage points that every table prints, and how large a sample a shift needs.")
    page.compare([(f"chi-squared, df {df}, upper {a}", core.ChiSquaredICDF(a, df, 1), x)
                  for (df, a), x in CHI_SQUARED.items()]
                 + [(f"t, df {df}, upper {a}", core.StudentTICDF(a, df, 1), x) for (df, a), x in STUDENT_T.items()]
                 + [(f"F, df {d1} and {d2}, upper {a}", core.FisherFICDF(a, d1, d2, 1), x)
                    for (d1, d2, a), x in FISHER_F.items()],
                 "Upper percentage points beside the printed tables", tolerance=3e-3)
    f = 15.9467335677930  # certified for two instruments' measurements of the atomic weight of silver
    page.compare([("p of the certified F on 1 and 46 df", core.FisherFCDF(f, 1, 46, 1),
                   2 * core.StudentTCDF(math.sqrt(f), 46, 1))],
                 "The same test on two ways", tolerance=1e-12, headers=("by F", "by t"))
    page.table(("shift", "n = 10", "n = 25", "n = 100"),
               [(shift, *(power(core, shift, n) for n in (10, 25, 100))) for shift in (0.2, 0.5, 0.8)],
               "Power of the two-sided test at 5 %")

    figure, (left, right) = plt.subplots(1, 2)
    x = np.linspace(0.01, 20, 300)
    for df, colour in ((2, SKY), (5, MID), (10, NAVY)):
        left.plot(x, [core.ChiSquaredPDF(v, df) for v in x], color=colour, label=f"df = {df}")
    left.set_title("chi-squared densities")
    left.legend()
    shifts = np.linspace(0, 1.2, 200)
    for n, colour in ((10, SKY), (25, MID), (100, NAVY)):
        right.plot(shifts, [power(core, s, n) for s in shifts], color=colour, label=f"n = {n}")
    right.axhline(0.8, color=RED, linestyle=":")
    right.set_xlabel("shift in standard deviations")
    right.set_title("power")
    right.legend()
    page.figure(figure, "Densities, and the power of the test against the shift.")
