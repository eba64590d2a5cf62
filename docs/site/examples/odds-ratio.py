"""Convictions of like-sex twins of criminals: 2 of 17 dizygotic and 10 of 13 monozygotic twins (R. A. Fisher, 1962)."""
import math

import orvanth

x, n, m, population = 2, 17, 12, 30  # convicted dizygotic twins, dizygotic twins, all convicted, all


def root(tail_at, target):
    """The odds ratio with a tail of this size, by bisection of its logarithm; the tail rises with the odds."""
    low, high = -30.0, 30.0
    for _ in range(80):
        middle = (low + high) / 2
        low, high = (middle, high) if tail_at(math.exp(middle)) < target else (low, middle)
    return math.exp(low)


lower = root(lambda odds: orvanth.fnc_hypergeometric_cdf(x - 1, n, m, population, odds, accuracy=0, upper=True), 0.025)
upper = root(lambda odds: 1 - orvanth.fnc_hypergeometric_cdf(x, n, m, population, odds, accuracy=0), 0.975)
seen = orvanth.hypergeometric_pdf(x, m, n, population)
probabilities = [orvanth.hypergeometric_pdf(i, m, n, population) for i in range(m + 1)]
p = sum(q for q in probabilities if q <= seen * (1 + 1e-7))
print(f"95 % interval of the odds ratio: {lower:.5f} to {upper:.5f}, p = {p:.7f}")
