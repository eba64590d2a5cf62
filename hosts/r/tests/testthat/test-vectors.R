test_that("arguments are recycled as in base R", {
    expect_equal(orv_pnorm(c(-1, 0, 1), 0, 1), pnorm(c(-1, 0, 1)), tolerance = 1e-14)
    expect_equal(orv_pnorm(c(-1, 0, 1, 2, 3), c(0, 1)), pnorm(c(-1, 0, 1, 2, 3), c(0, 1)), tolerance = 1e-14)
    expect_equal(orv_pbinom(0:6, c(6, 7, 8), 0.5), pbinom(0:6, c(6, 7, 8), 0.5), tolerance = 1e-14)
    expect_identical(pdunnett(2, c(3, 4, 5), 10), vapply(3:5, function(k) pdunnett(2, k, 10), 0))
    expect_identical(orv_pnorm(numeric(0)), numeric(0))
    expect_identical(orv_pnorm(1, numeric(0)), numeric(0))
})

test_that("a vector longer than a block is calculated to its end", {
    x <- seq(-4, 4, length.out = 1001)
    expect_equal(orv_pnorm(x), pnorm(x), tolerance = 1e-14)
    expect_equal(orv_pnorm(x, c(0, 1, 2)[1:2]), suppressWarnings(pnorm(x, c(0, 1))), tolerance = 1e-14)
})

test_that("the first argument as long as the result gives its attributes", {
    q <- matrix(c(1, 2, 3, 4), 2, dimnames = list(c("a", "b"), NULL))
    expect_identical(attributes(pdunnett(q, 3, 10)), attributes(q))
    expect_identical(names(orv_pnorm(c(a = 1, b = 2), c(x = 0))), c("a", "b"))
    expect_identical(names(orv_pnorm(0, c(x = 0, y = 1))), c("x", "y"))
    expect_identical(names(fnc_hypergeometric_moments(5, 8, 20, c(u = 1, v = 2))$mean), c("u", "v"))
    integers <- c(a = 1L, b = 2L)
    expect_identical(names(orv_pnorm(integers)), c("a", "b"))
})

test_that("NA stays NA and NaN stays NaN without a warning", {
    expect_silent(p <- orv_pnorm(c(NA, NaN, 0)))
    expect_identical(is.na(p), c(TRUE, TRUE, FALSE))
    expect_identical(is.nan(p), c(FALSE, TRUE, FALSE))
    expect_silent(p <- orv_pbinom(c(NA, 3), 10, 0.5))
    expect_true(is.na(p[1]) && !is.nan(p[1]))
    expect_silent(p <- pfnchypergeom(c(NA, 12L), 17, 28, 41, 1.46))
    expect_true(is.na(p[1]) && p[2] > 0.5)
    expect_silent(p <- pkolmogorov(-1, NA))
    expect_true(is.na(p))
})

test_that("an element without a value is NaN with R's warning, and the others are right", {
    expect_warning(p <- orv_pbinom(c(3, 11, 5), 10, 0.5), "NaNs produced")
    expect_identical(is.nan(p), c(FALSE, TRUE, FALSE))
    expect_equal(p[-2], pbinom(c(3, 5), 10, 0.5), tolerance = 1e-14)
    expect_match(orvanth_last_error(), "Number of Successes argument is 11, but must be <= Number of Trials", fixed = TRUE)
    expect_identical(orvanth_last_error(), "")
})

test_that("the warning has the call and the library's text", {
    w <- tryCatch(orv_pbinom(c(NA, 3, 11, 12), 10, 0.5), warning = identity)
    expect_s3_class(w, "orvanth_warning")
    expect_identical(conditionMessage(w), gettext("NaNs produced", domain = "R"))
    expect_identical(as.character(conditionCall(w)[[1]]), "orv_pbinom")
    expect_match(w$text, "argument is 11", fixed = TRUE)
    expect_identical(c(w$status, w$first, w$count), c(1, 3, 2))
})

test_that("a value that stands for no result is NaN", {
    expect_warning(b <- binomial_ps(0.025, 3, 10, c(0, 2)), "NaNs produced")
    expect_identical(is.nan(b), c(FALSE, TRUE))
    expect_match(orvanth_last_error(), "boundSelector must be 0 or 1")
    expect_warning(p <- pfnchypergeom(0, 15, 6, 20, -1), "NaNs produced")
    expect_true(is.nan(p))
})

test_that("counts must be whole, and a value in between means the count below", {
    expect_warning(p <- pdunnett(2, 3.5, 10), "NaNs produced")
    expect_identical(orvanth_last_error(), "MCcCDF: k = 3.5 is not a whole number")
    expect_identical(pfnchypergeom(12.7, 17, 28, 41, 1.46), pfnchypergeom(12, 17, 28, 41, 1.46))
    expect_warning(pdunnett(2, 1e10, 10), "NaNs produced")
    expect_match(orvanth_last_error(), "k")
})

test_that("the tail is one TRUE or FALSE", {
    expect_error(orv_pnorm(1, lower.tail = NA), "lower.tail")
    expect_error(orv_pnorm(1, lower.tail = c(TRUE, FALSE)), "lower.tail")
    expect_equal(orv_pnorm(1, lower.tail = FALSE), pnorm(1, lower.tail = FALSE), tolerance = 1e-14)
    expect_equal(pkolmogorov(0.2, 10) + pkolmogorov(0.2, 10, lower.tail = FALSE), 1)
})

test_that("text, factors and complex numbers are refused", {
    for (x in list("1", factor(1), 1i, list(1), NULL)) expect_error(orv_pnorm(x), "non-numeric argument")
    expect_error(pdunnett(2, 3, 10, "a"), "non-numeric argument")
})

test_that("lambda of one number stands for groups of equal size", {
    expect_identical(pdunnett(2.5, 4, 12), pdunnett(2.5, 4, 12, rep(sqrt(0.5), 4)))
    expect_identical(phsu(2.5, 4, 12), phsu(2.5, 4, 12, rep(sqrt(0.5), 4)))
    expect_warning(pdunnett(2.5, 4, 12, c(0.5, 0.5)), "NaNs produced")
})

test_that("functions with base R's names agree with base R", {
    p <- c(0.01, 0.3, 0.5, 0.99)
    expect_equal(orv_qgamma(p, 3, 2), qgamma(p, 3, 2), tolerance = 1e-12)
    expect_equal(orv_qgamma(p, 3, scale = 2), qgamma(p, 3, scale = 2), tolerance = 1e-12)
    expect_equal(orv_qt(p, 5, lower.tail = FALSE), qt(p, 5, lower.tail = FALSE), tolerance = 1e-12)
    expect_equal(orv_pf(2, 3, 7), pf(2, 3, 7), tolerance = 1e-12)
    expect_identical(orv_qbinom(p, 10, 0.4), as.numeric(qbinom(p, 10, 0.4)))
    expect_equal(orv_ptukey(3.5, 3, 20), ptukey(3.5, 3, 20), tolerance = 1e-6)
    expect_equal(orv_qtukey(0.95, 3, 20), qtukey(0.95, 3, 20), tolerance = 1e-5)
    # R counts white and black balls, this library the whole urn.
    expect_equal(phypergeom(3, 5, 8, 20), phyper(3, 5, 15, 8), tolerance = 1e-12)
})

test_that("no exported name hides one of base R", {
    ours <- getNamespaceExports("orvanth")
    for (package in c("base", "stats", "utils", "methods", "graphics", "grDevices"))
        expect_identical(intersect(ours, getNamespaceExports(package)), character(0))
    expect_true(all(vapply(exports, function(e) e$name %in% ours, NA)))
})

test_that("a NaN that the library does not flag gives the warning too", {
    expect_warning(g <- orv_gamma(c(-0.5, 5)), "NaNs produced")
    expect_identical(is.nan(g), c(TRUE, FALSE))
    expect_identical(orvanth_last_error(), "Gamma: there is no value here")
})
