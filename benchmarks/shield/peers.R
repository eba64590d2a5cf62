# What R pays: functions of the package orvanth beside those of stats in the same process, in ns of processor time.
#   R_LIBS=build/bench/r-library Rscript benchmarks/shield/peers.R
suppressPackageStartupMessages(library(orvanth))

best <- function(call, repetitions = 7) {
    min(vapply(seq_len(repetitions), function(i) sum(system.time(call(), gcFirst = FALSE)[1:2]), 0))
}
# ns an element of a long vector, and ns a call with one number
elements <- function(f, x) best(function() f(x)) / ( length(x)) * 1e9
scalar <- function(f, x, calls = if (best(function() for (i in 1:100) f(x), 3) > 0.005) 200 else 20000) {
    best(function() for (i in seq_len(calls)) f(x), 5) / calls * 1e9
}

x <- seq(-4, 4, length.out = 1000000)
p <- seq(0.001, 0.999, length.out = 100000)
cases <- list(
    list("`orv_pnorm`", x, function(v) orv_pnorm(v), function(v) pnorm(v)),
    list("`orv_pt`, 17 df", x, function(v) orv_pt(v, 17), function(v) pt(v, 17)),
    list("`orv_qbeta`, 2 and 3", p, function(v) orv_qbeta(v, 2, 3), function(v) qbeta(v, 2, 3)),
    list("`orv_pbinom`, n = 100", 0:99999 %% 100, function(v) orv_pbinom(v, 100, 0.3), function(v) pbinom(v, 100, 0.3)),
    list("`orv_ptukey`, 3 groups, 20 df", seq(0.5, 6, length.out = 200), function(v) orv_ptukey(v, 3, 20),
         function(v) ptukey(v, 3, 20)))

cat("R and stats in the same process, in ns of processor time.\n\n")
cat("| function | ns an element | stats | ratio | ns a scalar call | stats |\n|---|---|---|---|---|---|\n")
for (case in cases) {
    e <- c(elements(case[[3]], case[[2]]), elements(case[[4]], case[[2]]))
    s <- c(scalar(case[[3]], case[[2]][7]), scalar(case[[4]], case[[2]][7]))
    cat(sprintf("| %s | %.0f | %.0f | %.2f | %.0f | %.0f |\n", case[[1]], e[1], e[2], e[2] / e[1], s[1], s[2]))
}
failing <- best(function() for (i in 1:2000) suppressWarnings(orv_pbinom(11, 10, 0.5)), 5) / 2000 * 1e6
cat(sprintf("\nA scalar call that fails, with its warning: %.1f us.\n", failing))
