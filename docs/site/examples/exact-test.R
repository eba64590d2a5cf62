# Do these twelve times between failures follow an exponential distribution with mean 100 hours?
library(orvanth)

hours <- c(3.2, 8.1, 11.4, 17.9, 25.0, 31.7, 38.3, 52.6, 60.4, 77.1, 98.5, 143.0)
n <- length(hours)
law <- orv_pgamma(hours, 1, scale = 100)  # exponential: gamma with shape 1
distance <- max(seq_len(n) / n - law, law - (seq_len(n) - 1) / n)
p <- pkolmogorov(distance, n, lower.tail = FALSE)
critical <- qkolmogorov(0.05, n, lower.tail = FALSE)
cat(sprintf("D = %.4f, p = %.4f, critical value at 5 %%: %.4f\n", distance, p, critical))
