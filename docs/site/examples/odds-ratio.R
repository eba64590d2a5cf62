# Convictions of like-sex twins of criminals: 2 of 17 dizygotic and 10 of 13 monozygotic twins (R. A. Fisher, 1962).
library(orvanth)

x <- 2            # convicted dizygotic twins
n <- 17           # dizygotic twins
m <- 12           # all convicted
population <- 30

# The odds ratio with a tail of this size, on the scale of its logarithm.
root <- function(tail, target) exp(uniroot(function(l) tail(exp(l)) - target, c(-30, 30), tol = 1e-12)$root)
lower <- root(function(odds) pfnchypergeom(x - 1, n, m, population, odds, lower.tail = FALSE), 0.025)
upper <- root(function(odds) pfnchypergeom(x, n, m, population, odds), 0.025)
probabilities <- dhypergeom(0:m, m, n, population)
p <- sum(probabilities[probabilities <= probabilities[x + 1] * (1 + 1e-7)])
cat(sprintf("95 %% interval of the odds ratio: %.5f to %.5f, p = %.7f\n", lower, upper, p))
