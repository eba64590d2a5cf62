"""Velocity of an enzyme against concentration (R's Puromycin): Michaelis and Menten's curve, top at most 205."""
import numpy as np

import orvanth

concentration = np.array([0.02, 0.02, 0.06, 0.06, 0.11, 0.11, 0.22, 0.22, 0.56, 0.56, 1.10, 1.10])
velocity = np.array([76, 47, 97, 107, 123, 139, 159, 152, 191, 201, 207, 200], dtype=float)


def squares(x):
    """Residual sum of squares and its gradient; x is the top in hundreds, and the concentration of half of it."""
    share = concentration / (x[1] + concentration)
    residual = 100 * x[0] * share - velocity
    slope = np.array([100 * share, -100 * x[0] * share / (x[1] + concentration)])
    return residual @ residual, 2 * slope @ residual


for top in (None, 2.05):
    fit = orvanth.minimize(squares, [1.0, 0.1], jac=True, bounds=[(0, top), (0.001, None)], ftol=1e-15,
                           gtol=1e-6)
    print(f"top {100 * fit.x[0]:.2f}, half at {fit.x[1]:.5f}, sum of squares {fit.fun:.2f}")
