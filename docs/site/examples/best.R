# Which of three treatments gives the heaviest plants? Hsu's comparison of each with the best of the others.
library(orvanth)

groups <- list(
    control = c(4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14),
    `treatment 1` = c(4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69),
    `treatment 2` = c(6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26))
k <- length(groups)
n <- 10
means <- sapply(groups, mean)
half <- sqrt(mean(sapply(groups, var)) * 2 / n) * qhsu(0.95, k, k * (n - 1))
for (i in seq_len(k)) {
    difference <- means[i] - max(means[-i])
    low <- min(0, difference - half)
    high <- max(0, difference + half)
    cat(sprintf("%s: %.3f from the best of the others, interval %.3f to %.3f: %s\n", names(groups)[i], difference, low,
                high, if (high > 0) "may be the best" else "is not the best"))
}
