"""Maximum likelihood within bounds: a dose-response curve, fitted one step at a time."""
import math

import matplotlib.pyplot as plt
import numpy as np

from palette import BLUE, GREY, INK, RED

EVALUATE, NEW_ITERATE, CONVERGED = 1, 2, 3
CENTRE = 1.8  # doses are centred, so that level and slope hardly disturb each other


def minimise(core, objective, start, lower, upper, watch=None):
    """The caller's loop: solution, f there, the path of iterates and the code of the last step."""
    x, g, f = np.array(start, dtype=float), np.zeros(len(start)), np.zeros(1)
    low, high = np.array(lower, dtype=float), np.array(upper, dtype=float)
    kind = np.array([(0, 1, 3, 2)[math.isfinite(a) + 2 * math.isfinite(b)] for a, b in zip(low, high)], np.int32)
    state = core.LBFGSBStart(x.size, 5, low, high, kind, 10.0, 1e-6)
    path, evaluations = [x.copy()], 0
    while True:
        code = core.LBFGSBStep(state, x, f, g)
        if code == EVALUATE:
            f[0], g[:] = objective(x)
            evaluations += 1
        elif code == NEW_ITERATE:
            path.append(x.copy())
            if watch:
                watch(len(path) - 1, evaluations, x, f[0], g)
        else:
            break
    core.LBFGSBEnd(state)
    return x, f[0], np.array(path), code


def run(core, page):
    page.section("Minimiser: a dose-response curve within bounds",
                 "How many beetles die at which dose of carbon disulphide? The probit model says "
                 "P(death) = c + (1 - c) Phi(level + slope (dose - 1.8)), where c is the share that would have died "
                 "anyway. Level is free, the slope is not negative, and c lies between two bounds. Phi and its "
                 "density, which makes the gradient, are the library's NormalCDF and NormalPDF; the minimiser asks "
                 "for them step by step.")
    dose, exposed, killed = np.loadtxt(page.data("tour/beetle_mortality.csv"), delimiter=",", skiprows=1).T
    distance = dose - CENTRE
    survived = exposed - killed

    def probabilities(parameters, at):
        """P(death), P(survival) and the normal density; each tail is computed, none is subtracted."""
        level, slope, natural = parameters
        z = [level + slope * t for t in at]
        upper = np.array([core.NormalCDF(v, 0, 1, 1) for v in z])
        lower = np.array([core.NormalCDF(v, 0, 1, 0) for v in z])
        return natural + (1 - natural) * lower, (1 - natural) * upper, np.array([core.NormalPDF(v, 0, 1) for v in z])

    def objective(parameters):
        died, lived, density = probabilities(parameters, distance)
        f = -(killed @ np.log(died) + survived @ np.log(lived))
        pull = survived / lived - killed / died  # -d(log likelihood) / d(P(death))
        along = pull * (1 - parameters[2]) * density
        return f, np.array([along.sum(), along @ distance, pull @ (lived / (1 - parameters[2]))])

    iterates = []

    def watch(iterate, evaluations, x, f, g):
        iterates.append((iterate, evaluations, f"{f:.10f}", f"{x[0]:.6f}", f"{x[1]:.6f}", f"{max(abs(g[:2])):.1e}"))

    page.text("First with c = 0, held there by its two bounds.")
    x, f, path, code = minimise(core, objective, (0, 1, 0), (-math.inf, 0, 0), (math.inf, math.inf, 0), watch)
    page.table(("iterate", "evaluations", "-log likelihood", "level", "slope", "largest gradient"), iterates,
               "The iterates, one for each step with the code 2")
    died, lived, _ = probabilities(x, distance)
    cells = list(zip(killed, exposed * died)) + list(zip(survived, exposed * lived))
    deviance = 2 * sum(seen * math.log(seen / fitted) for seen, fitted in cells if seen > 0)
    page.compare([("intercept", x[0] - CENTRE * x[1], -34.935), ("slope", x[1], 19.728), ("deviance", deviance, 10.12),
                  ("code of the last step", code, CONVERGED)], "Probit fit beside the published one")

    free, lowest, _, code = minimise(core, objective, (0, 1, 0.1), (-math.inf, 0, 0), (math.inf, math.inf, 0.5))
    capped, _, _, _ = minimise(core, objective, (0, 1, 0.1), (-math.inf, 0, 0), (math.inf, 15, 0.5))
    fits = [("c = 0", x), ("0 <= c <= 0.5", free), ("0 <= c <= 0.5, slope <= 15", capped)]
    page.table(("bounds", "level", "slope", "c", "log10 dose that kills half of the rest", "-log likelihood"),
               [(name, *map(float, v), float(CENTRE - v[0] / v[1]), float(objective(v)[0])) for name, v in fits],
               "The same loop under other bounds")
    gain = 2 * (f - lowest)
    page.text(f"Letting c go free gains {gain:.3f} in twice the log likelihood, and c ends at {free[2]:.3f}.")

    grid = np.linspace(1.66, 1.91, 200)
    figure, (left, right) = plt.subplots(1, 2)
    levels, slopes = np.meshgrid(np.linspace(-0.6, 1.4, 41), np.linspace(0.5, 27, 41))
    height = np.array([[objective(np.array([a, b, 0]))[0] for a, b in zip(*row)] for row in zip(levels, slopes)])
    left.contour(levels, slopes, np.log(height - f + 0.3), 14, colors=GREY, linewidths=0.8)
    left.plot(path[:, 0], path[:, 1], "o-", color=RED, markersize=4, linewidth=1.2)
    left.set(xlabel="level", ylabel="slope", title=f"{len(path) - 1} iterates", xlim=(-0.6, 1.4), ylim=(0.5, 27),
             xticks=(-0.5, 0, 0.5, 1))
    right.plot(dose, killed / exposed, "o", color=INK)
    for (name, v), colour in zip(fits, (RED, BLUE, GREY)):
        right.plot(grid, probabilities(v, grid - CENTRE)[0], color=colour, label=name)
    right.set(xlabel="log10 dose", ylabel="share killed")
    right.legend(loc="lower center", bbox_to_anchor=(0.5, 1.0))
    page.figure(figure, "Left: the path of the minimiser over the likelihood's contours. Right: the fits.")
