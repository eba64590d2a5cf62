# Forward differences; backward ones where the upper bound is in the way.
.differences <- function(fn, x, f, upper) {
    vapply(seq_along(x), function(i) {
        step <- 1.4901161193847656e-08 * max(1, abs(x[i]))
        if (x[i] + step > upper[i]) step <- -step
        moved <- x
        moved[i] <- moved[i] + step
        (fn(moved) - f) / (moved[i] - x[i])
    }, 0)
}

orvanth_minimize <- function(par, fn, gr = NULL, ..., lower = -Inf, upper = Inf,
                             control = list()) {
    settings <- list(lmm = 5, factr = 1e7, pgtol = 0, maxit = 100)
    unknown <- setdiff(names(control), names(settings))
    if (length(unknown)) stop("unknown in control: ", paste(unknown, collapse = ", "))
    settings[names(control)] <- control
    n <- length(par)
    if (!is.numeric(par) || n == 0L) stop("par must be numbers")
    lower <- rep_len(as.double(lower), n)
    upper <- rep_len(as.double(upper), n)
    if (anyNA(lower) || anyNA(upper)) stop("a bound is missing")
    low <- is.finite(lower)
    high <- is.finite(upper)
    kinds <- ifelse(low, ifelse(high, 2L, 1L), ifelse(high, 3L, 0L))
    labelled <- function(x) structure(x, names = names(par))
    counts <- c(`function` = 0L, gradient = 0L)
    value <- function(x) {
        counts[1L] <<- counts[1L] + 1L
        f <- as.double(fn(labelled(x), ...))
        if (length(f) != 1L) stop("fn gave ", length(f), " numbers, not one")
        f
    }

    state <- .Call(C_minimiser_start, as.integer(settings$lmm), ifelse(low, lower, 0), ifelse(high, upper, 0), kinds,
                   as.double(settings$factr), as.double(settings$pgtol))
    on.exit(.Call(C_minimiser_end, state))
    x <- as.double(par)
    f <- 0
    gradient <- numeric(n)
    iterations <- 0L
    repeat {
        step <- .Call(C_minimiser_step, state, x, f, gradient)
        x <- step[[2L]]
        f <- step[[3L]]
        gradient <- step[[4L]]
        code <- step[[1L]]
        if (code == 1L) {
            f <- value(x)
            counts[2L] <- counts[2L] + 1L
            gradient <- if (is.null(gr)) .differences(value, x, f, upper) else as.double(gr(labelled(x), ...))
            if (length(gradient) != n) stop("gr gave ", length(gradient), " numbers, not ", n)
        } else if (code == 2L) {
            iterations <- iterations + 1L
            if (iterations >= settings$maxit) break
        } else {
            break
        }
    }
    if (code == 5L) stop(step[[5L]])
    text <- switch(as.character(code), `2` = "the limit of iterations was reached", `3` = "converged", step[[5L]])
    list(par = labelled(x), value = f, counts = counts,
         convergence = switch(as.character(code), `2` = 1L, `3` = 0L, 52L), message = text)
}
