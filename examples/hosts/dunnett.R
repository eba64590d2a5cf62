# Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple comparison
# procedure for comparing several treatments with a control", JASA 50, 1955.
library(orvanth)

drugs <- list(c(9.76, 8.80, 7.68, 9.36), c(12.80, 9.68, 12.16, 9.20, 10.55))
control <- c(7.40, 8.50, 7.20, 8.24, 9.84, 8.32)

groups <- c(drugs, list(control))
n <- lengths(groups)
df <- sum(n - 1)
s <- sqrt(sum(sapply(groups, function(g) sum((g - mean(g))^2))) / df)
t <- (sapply(drugs, mean) - mean(control)) / (s * sqrt(1 / lengths(drugs) + 1 / length(control)))
p <- pdunnett(abs(t), length(groups), df, sqrt(n / (n + length(control))), lower.tail = FALSE)
cat(sprintf("drug %d: t = %.3f, p = %.4f\n", seq_along(drugs), t, p), sep = "")
invisible("prints:
drug 1: t = 0.857, p = 0.6201
drug 2: t = 3.694, p = 0.0058
")
