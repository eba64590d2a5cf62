# Every golden row of a function over vectors, through the R function: Rscript golden.R ROOT
library(orvanth)
root <- commandArgs(TRUE)[1]
source(file.path(root, "hosts", "r", "tests", "testthat", "helper-exports.R"))

number <- function(text) {
    if (startsWith(text, "[")) return(vapply(strsplit(substr(text, 2, nchar(text) - 1), ",")[[1]], number, 0, USE.NAMES = FALSE))
    # R reads a subnormal hexadecimal number exactly only with its own digits shifted, so bits below 2^-1022 go by parts.
    match <- regmatches(text, regexec("^(-?0x[0-9a-fA-F.]+)p([-+]?[0-9]+)$", text))[[1]]
    if (length(match) == 3 && as.numeric(match[3]) < -1000)
        return(as.numeric(paste0(match[2], "p0")) * 2^-600 * 2^(as.numeric(match[3]) + 600))
    as.numeric(text)
}

matches <- function(got, want, tolerance, scaled) {
    if (is.nan(want) || is.nan(got)) return(is.nan(want) && is.nan(got))
    if (is.infinite(want) || is.infinite(got)) return(got == want)
    # The scale of the studentised range is sqrt(2) times that of the row: two roundings.
    bound <- if (tolerance != "exact") as.numeric(tolerance) else if (scaled) 4.5e-16 else 0
    abs(got - want) <= bound * abs(want) || (want == 0 && abs(got) <= 1e-300)
}

reserved <- list(BinomialPS = -1, FNCHypergeometricCDF = -4.4462302923349974e+196,
                 FNCHypergeometricICDF = -4.4462302923349974e+196)

check <- function(row) {
    export <- exports[[row[1]]]
    values <- lapply(strsplit(row[2], " ")[[1]], number)
    missing <- vapply(values, function(v) anyNA(v), NA) & strsplit(export$kinds, "")[[1]] != "a"
    tail <- which(strsplit(export$kinds, "")[[1]] == "t")
    # A flag here is TRUE or FALSE; what its low byte holds is not R's affair.
    if (length(tail) && !values[[tail]] %in% 0:1) return(NA)
    if (length(tail)) values[[tail]] <- values[[tail]] == 0
    scaled <- export$name %in% c("orv_ptukey", "orv_qtukey")
    if (export$name == "orv_ptukey") values[[1]] <- values[[1]] * sqrt(2)
    names(values) <- export$arguments
    got <- unlist(suppressWarnings(do.call(export$name, values)))
    if (export$name == "orv_qtukey") got <- got / sqrt(2)
    # NaN in, NaN out, as everywhere in R.
    if (any(missing)) return(all(is.nan(got)))
    if (row[4] == "any") return(TRUE)
    if (row[3] == "throws") return(all(is.nan(got)))
    want <- number(row[4])
    if (!is.null(reserved[[row[1]]]) && !is.nan(want) && want == reserved[[row[1]]]) want <- NaN
    all(mapply(function(g, w) w == -12345 && !is.nan(w) || matches(g, w, row[7], scaled), got, want))
}

checked <- 0
failed <- 0
skipped <- 0
for (file in c("special", "continuous", "discrete", "kolmogorov", "multiple_comparison", "noncentral_hypergeometric")) {
    lines <- readLines(file.path(root, "tests", "data", "golden", paste0(file, ".tsv")))
    for (line in lines[!startsWith(lines, "#") & lines != ""]) {
        row <- strsplit(line, "\t", fixed = TRUE)[[1]]
        if (is.null(exports[[row[1]]])) stop("no R function for ", row[1])
        ok <- check(row)
        if (is.na(ok)) {
            skipped <- skipped + 1
            next
        }
        checked <- checked + 1
        if (!ok) {
            failed <- failed + 1
            if (failed <= 10) message("differs: ", line)
        }
    }
}
cat(sprintf("golden rows through R: %d of %d agree, %d flags that R does not have\n", checked - failed, checked, skipped))
if (failed > 0 || checked < 8000) quit(status = 1)
