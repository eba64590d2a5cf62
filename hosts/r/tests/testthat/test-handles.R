test_that("a stream gives the library's numbers and goes on", {
    stream <- orvanth_stream(1)
    expect_identical(orvanth_integers(stream, 10)[1:5], c(1L, 5L, 8L, 8L, 7L))
    expect_identical(orvanth_integers(orvanth_stream(7), 5), orvanth_integers(orvanth_stream(7), 5))
    expect_identical(orvanth_integers(orvanth_stream(2^32 - 3), 5), orvanth_integers(orvanth_stream(-3), 5))
    expect_length(orvanth_integers(orvanth_stream(-2^31), 3), 3)
    expect_error(orvanth_stream(0.5), "whole number")
    expect_error(orvanth_integers(1, 5), "orvanth_stream")
})

test_that("a stream that was saved and loaded is an error and no crash", {
    stream <- unserialize(serialize(orvanth_stream(1), NULL))
    expect_error(orvanth_integers(stream, 5), "handle is 0")
})

test_that("normal variates are fixed by the seed", {
    expect_identical(orvanth_normals(4, seed = 5), orvanth_normals(10, seed = 5)[1:4])
    expect_equal(orvanth_normals(4, 3, 2, seed = 5), 3 + 2 * orvanth_normals(4, seed = 5))
    expect_error(orvanth_normals(3, sd = 0, seed = 1), "sigma")
})

test_that("the minimiser finds what optim finds", {
    rosenbrock <- function(x) 100 * (x[2] - x[1]^2)^2 + (1 - x[1])^2
    slope <- function(x) c(-400 * x[1] * (x[2] - x[1]^2) - 2 * (1 - x[1]), 200 * (x[2] - x[1]^2))
    ours <- orvanth_minimize(c(-1.2, 1), rosenbrock, slope)
    expect_identical(ours$convergence, 0L)
    expect_equal(ours$par, c(1, 1), tolerance = 1e-3)
    peer <- optim(c(-1.2, 1), rosenbrock, slope, method = "L-BFGS-B", upper = c(0.5, Inf))
    bounded <- orvanth_minimize(c(-1.2, 1), rosenbrock, slope, upper = c(0.5, Inf))
    expect_equal(bounded$par, peer$par, tolerance = 1e-4)
    expect_equal(bounded$value, peer$value, tolerance = 1e-6)
    expect_equal(orvanth_minimize(c(-1.2, 1), rosenbrock)$par, c(1, 1), tolerance = 1e-3)
})

test_that("what fn raises passes through, and limits are told", {
    expect_error(orvanth_minimize(1, function(x) stop("no value here")), "no value here")
    expect_identical(orvanth_minimize(c(-1.2, 1), function(x) sum((x^2 - 3)^2), control = list(maxit = 1))$convergence, 1L)
    expect_error(orvanth_minimize(1, function(x) x^2, control = list(mxit = 1)), "mxit")
    expect_error(orvanth_minimize(1, function(x) x^2, lower = 2, upper = 1))
    expect_identical(names(orvanth_minimize(c(a = 1, b = 2), function(x) sum(x^2))$par), c("a", "b"))
    expect_identical(orvanth_minimize(c(a = 1), function(x) (x[["a"]] - 3)^2, upper = 2)$par, c(a = 2))
})
