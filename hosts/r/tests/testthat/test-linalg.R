test_that("least squares agrees with lm", {
    x <- cbind(one = 1, speed = cars$speed)
    fit <- orvanth_ols(x, cars$dist)
    peer <- lm(dist ~ speed, cars)
    expect_equal(unname(fit$coefficients), unname(coef(peer)), tolerance = 1e-12)
    expect_identical(names(fit$coefficients), c("one", "speed"))
    expect_equal(fit$rss, deviance(peer), tolerance = 1e-12)
    expect_equal(fit$df.residual, df.residual(peer))
})

test_that("a redundant column is named and the arguments stay as they were", {
    x <- cbind(one = 1, a = 1:6, b = 3 + 2 * (1:6))
    y <- c(1, 3, 2, 5, 4, 6)
    before <- x + 0
    e <- tryCatch(orvanth_ols(x, y), error = identity)
    expect_s3_class(e, "orvanth_collinear")
    expect_identical(e$column, 3L)
    expect_identical(e$name, "b")
    expect_match(conditionMessage(e), "column 3 is collinear with the columns before it (b)", fixed = TRUE)
    expect_identical(x, before)
})

test_that("wrong shapes are told", {
    expect_error(orvanth_ols(matrix(1, 2, 3), 1:2), "at least as many rows")
    expect_error(orvanth_ols(matrix(1, 3, 2), 1:2), "3 rows")
    expect_error(orvanth_ols(cbind(c(1, NA, 3)), 1:3), "not finite")
    expect_error(orvanth_ols(cbind(1:3), 1:3, NaN), "tolerance")
    expect_error(orvanth_ols(matrix("1", 3, 1), 1:3), "numeric")
    expect_length(orvanth_ols(matrix(0, 3, 0), 1:3)$coefficients, 0)
    expect_equal(orvanth_ols(matrix(0, 3, 0), 1:3)$rss, 14)
})
