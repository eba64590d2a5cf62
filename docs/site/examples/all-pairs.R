# All pairs of three groups: weight of dried plants under a control and two treatments (R's PlantGrowth).
library(orvanth)

groups <- list(
    control = c(4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14),
    `treatment 1` = c(4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69),
    `treatment 2` = c(6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26))
k <- length(groups)
n <- 10
df <- k * (n - 1)
means <- sapply(groups, mean)
error <- sqrt(mean(sapply(groups, var)) / n)  # of a mean; the range of k means is on this scale
half <- error * orv_qtukey(0.95, k, df)
for (pair in combn(k, 2, simplify = FALSE)) {
    difference <- unname(means[pair[2]] - means[pair[1]])
    p <- orv_ptukey(abs(difference) / error, k, df, lower.tail = FALSE)
    cat(sprintf("%s - %s: %.3f, interval %.3f to %.3f, p = %.4f\n", names(groups)[pair[2]], names(groups)[pair[1]],
                difference, difference - half, difference + half, p))
}
