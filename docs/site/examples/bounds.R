# Velocity of an enzyme against concentration (R's Puromycin): Michaelis and Menten's curve, top at most 205.
library(orvanth)

concentration <- c(0.02, 0.02, 0.06, 0.06, 0.11, 0.11, 0.22, 0.22, 0.56, 0.56, 1.10, 1.10)
velocity <- c(76, 47, 97, 107, 123, 139, 159, 152, 191, 201, 207, 200)
# x is the top in hundreds, and the concentration of half of it.
residual <- function(x) 100 * x[1] * concentration / (x[2] + concentration) - velocity
gradient <- function(x) {
    share <- concentration / (x[2] + concentration)
    2 * c(sum(residual(x) * 100 * share), -sum(residual(x) * 100 * x[1] * share / (x[2] + concentration)))
}
for (top in c(Inf, 2.05)) {
    fit <- orvanth_minimize(c(1, 0.1), function(x) sum(residual(x)^2), gradient, lower = c(0, 0.001),
                            upper = c(top, Inf), control = list(lmm = 10, factr = 4.5, pgtol = 1e-6))
    cat(sprintf("top %.2f, half at %.5f, sum of squares %.2f\n", 100 * fit$par[1], fit$par[2], fit$value))
}
