"""Special functions beside printed tables."""


def run(core, page):
    page.section("Special functions beside printed tables",
                 "Values as printed in the handbook of Abramowitz and Stegun (1964), to their digits.")
    page.compare([("Γ(1.5)", core.Gamma(1.5), 0.8862269255), ("ln Γ(101) = ln 100!", core.GammaLn(101), 363.7393755556),
                  ("B(2, 3)", core.Beta(2, 3), 1 / 12), ("erf 1", core.Erf(1), 0.8427007929),
                  ("erfc 2", core.ErfC(2), 0.0046777350), ("P(2.5, 2.5)", core.GammaRegularized(2.5, 2.5), 0.5841198),
                  ("I_0.5(2, 3)", core.BetaRegularized(2, 3, 0.5), 0.6875), ("ln(1 + 1e-10)", core.LogXplus1(1e-10), 1e-10)],
                 tolerance=1e-7)
