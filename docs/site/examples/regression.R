# Yield against variety and dose, with a column for each variety beside the intercept: one column is redundant.
library(orvanth)

variety <- c("A", "A", "A", "B", "B", "B", "C", "C", "C")
x <- cbind(intercept = 1, `variety A` = variety == "A", `variety B` = variety == "B", `variety C` = variety == "C",
           dose = c(1, 2, 4, 1, 3, 4, 2, 3, 5))
y <- c(5.1, 5.9, 8.2, 6.3, 8.1, 9.0, 4.9, 6.2, 8.1)
repeat {
    fit <- tryCatch(orvanth_ols(x, y), orvanth_collinear = identity)
    if (!inherits(fit, "error")) break
    cat(fit$name, "is redundant\n")
    x <- x[, -fit$column]
}
cat(sprintf("%s: %.4f\n", names(fit$coefficients), fit$coefficients), sep = "")
