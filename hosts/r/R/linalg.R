orvanth_ols <- function(x, y, tolerance = 1e-9) {
    x <- as.matrix(x)
    if (!is.numeric(x) || !is.numeric(y)) stop("x and y must be numeric")
    storage.mode(x) <- "double"
    y <- as.double(y)
    if (nrow(x) != length(y)) stop("x has ", nrow(x), " rows, and y has ", length(y), " elements")
    if (nrow(x) < ncol(x)) stop("x has ", nrow(x), " rows and ", ncol(x), " columns; at least as many rows are needed")
    if (!all(is.finite(x)) || !all(is.finite(y))) stop("an element of x or y is not finite")
    if (!is.numeric(tolerance) || length(tolerance) != 1L || is.na(tolerance)) stop("tolerance must be one number")
    # Whatever LAPACK would refuse is refused above: its xerbla is R's here, which jumps out of the library.
    found <- .Call(C_ols, x, y, as.double(tolerance))
    if (found[[1L]] != 0L) {
        column <- if (found[[1L]] > 0L) found[[1L]] else NA_integer_
        name <- if (is.na(column) || is.null(colnames(x))) NULL else colnames(x)[column]
        text <- paste0(found[[2L]], if (!is.null(name)) paste0(" (", name, ")"))
        stop(structure(class = c(if (!is.na(column)) "orvanth_collinear", "orvanth_error", "error", "condition"),
                       list(message = text, call = sys.call(), column = column, name = name)))
    }
    coefficients <- found[[3L]]
    names(coefficients) <- colnames(x)
    list(coefficients = coefficients, rss = found[[4L]], df.residual = nrow(x) - ncol(x))
}
