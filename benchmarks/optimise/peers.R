# optim's L-BFGS-B on the problems that peers.py sends: name, evaluations, f.
lines <- readLines(file("stdin"))
chain <- function(x) { n <- length(x); t <- x[-1] - x[-n]^2; 4 * (0.25 * (x[1] - 1)^2 + sum(t^2)) }
chain_g <- function(x) { n <- length(x); t <- x[-1] - x[-n]^2
  c(2 * (x[1] - 1), 8 * t) - c(16 * x[-n] * t, 0) }
odd <- function(x) seq(1, length(x), 2)
rosen <- function(x) { i <- odd(x); sum(100 * (x[i + 1] - x[i]^2)^2 + (1 - x[i])^2) }
rosen_g <- function(x) { i <- odd(x); a <- x[i + 1] - x[i]^2; g <- x
  g[i] <- -400 * a * x[i] - 2 * (1 - x[i]); g[i + 1] <- 200 * a; g }
beale <- function(x) { y <- x[2]; x <- x[1]
  (1.5 - x * (1 - y))^2 + (2.25 - x * (1 - y^2))^2 + (2.625 - x * (1 - y^3))^2 }
beale_g <- function(x) { y <- x[2]; x <- x[1]
  a <- 1.5 - x * (1 - y); b <- 2.25 - x * (1 - y^2); d <- 2.625 - x * (1 - y^3)
  c(-2 * (a * (1 - y) + b * (1 - y^2) + d * (1 - y^3)), 2 * x * (a + 2 * b * y + 3 * d * y^2)) }
powell <- function(x) { i <- seq(1, length(x), 4)
  sum((x[i] + 10 * x[i + 1])^2 + 5 * (x[i + 2] - x[i + 3])^2 + (x[i + 1] - 2 * x[i + 2])^4 + 10 * (x[i] - x[i + 3])^4) }
powell_g <- function(x) { i <- seq(1, length(x), 4); g <- x
  p <- x[i] + 10 * x[i + 1]; q <- x[i + 2] - x[i + 3]; r <- (x[i + 1] - 2 * x[i + 2])^3; s <- (x[i] - x[i + 3])^3
  g[i] <- 2 * p + 40 * s; g[i + 1] <- 20 * p + 4 * r; g[i + 2] <- 10 * q - 8 * r; g[i + 3] <- -10 * q - 40 * s; g }
quadratic <- function(x) { i <- seq_along(x); sum(0.5 * i * (x - 3 * cos(i))^2) }
quadratic_g <- function(x) { i <- seq_along(x); i * (x - 3 * cos(i)) }
data <- read.csv(commandArgs(TRUE)[1])
d <- data$log_dose - 1.8
logistic <- function(b) { t <- b[1] + b[2] * d; sum(data$beetles * log1p(exp(t)) - data$killed * t) }
logistic_g <- function(b) { r <- data$beetles / (1 + exp(-(b[1] + b[2] * d))) - data$killed; c(sum(r), sum(r * d)) }

for (line in lines) {
  part <- strsplit(line, ";")[[1]]
  numbers <- lapply(part[3:5], function(p) as.numeric(strsplit(p, ",")[[1]]))
  f <- get(part[2]); g <- get(paste0(part[2], "_g"))
  result <- optim(numbers[[1]], f, g, method = "L-BFGS-B", lower = numbers[[2]], upper = numbers[[3]],
                  control = list(lmm = 5, factr = 1e7, pgtol = 1e-5, maxit = 10000))
  cat(part[1], result$counts[1], format(result$value, digits = 17), "\n", sep = "\t")
}
