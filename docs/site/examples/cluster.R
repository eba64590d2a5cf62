# Twenty thousand t tests in several processes: which genes differ between five treated and five untreated samples?
library(orvanth)

genes <- 20000
# Simulated data, a row a gene; the first 500 genes respond to the treatment.
data <- matrix(orvanth_normals(genes * 10, seed = 1), genes)
data[1:500, 1:5] <- data[1:500, 1:5] + 4

# Two-sided p-values of the t tests of a block of genes. A process sends back one number a gene.
p_values <- function(block) {
    treated <- block[, 1:5]
    control <- block[, 6:10]
    squares <- rowSums((treated - rowMeans(treated))^2) + rowSums((control - rowMeans(control))^2)
    t <- abs(rowMeans(treated) - rowMeans(control)) / sqrt(squares / 4 / 5)
    2 * orv_pt(t, 8, lower.tail = FALSE)
}
blocks <- split(seq_len(genes), rep(1:4, each = genes / 4))
p <- unlist(parallel::mclapply(blocks, function(i) p_values(data[i, ]), mc.cores = 2), use.names = FALSE)

# Benjamini and Hochberg: at most 5 % of what is found is expected to be false.
found <- which(p.adjust(p, "BH") <= 0.05)
cat(sprintf("found %d genes, %d of them by chance\n", length(found), sum(found > 500)))
