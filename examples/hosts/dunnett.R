# Two drugs against a control: blood counts of C. W. Dunnett, Journal of the American Statistical Association 50 (1955).
library(orvanth)

control <- c(7.40, 8.50, 7.20, 8.24, 9.84, 8.32)
drugs <- list(A = c(9.76, 8.80, 7.68, 9.36), B = c(12.80, 9.68, 12.16, 9.20, 10.55))

groups <- c(drugs, list(control))
n <- lengths(groups)
df <- sum(n) - length(groups)
s <- sqrt(sum(sapply(groups, function(g) sum((g - mean(g))^2))) / df)
statistic <- (sapply(drugs, mean) - mean(control)) / (s * sqrt(1 / lengths(drugs) + 1 / length(control)))
lambda <- sqrt(n / (n + length(control)))
p <- pdunnett(abs(statistic), length(groups), df, lambda, lower.tail = FALSE)
print(round(cbind(statistic, p), 4))
invisible("prints:
  statistic      p
A    0.8570 0.6201
B    3.6938 0.0058
")
