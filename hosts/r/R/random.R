# A seed as the signed word of the library: 0 to 2^32 - 1, or -2^31 to -1 for the same words.
.seed <- function(seed) {
    if (!is.numeric(seed) || length(seed) != 1L || is.na(seed) || seed != floor(seed) || seed < -2^31 || seed >= 2^32)
        stop("seed must be one whole number of 32 bits")
    if (seed >= 2^31) seed <- seed - 2^32
    # The smallest word is R's missing integer, which is what it reads as.
    if (seed == -2^31) NA_integer_ else as.integer(seed)
}

.count <- function(n) {
    if (!is.numeric(n) || length(n) != 1L || is.na(n) || n != floor(n) || n < 0 || n >= 2^31)
        stop("n must be one whole number from 0 to 2^31 - 1")
    as.integer(n)
}

orvanth_stream <- function(seed) structure(list(pointer = .Call(C_stream_make, .seed(seed))), class = "orvanth_stream")

orvanth_integers <- function(stream, n) {
    if (!inherits(stream, "orvanth_stream")) stop("stream must come from orvanth_stream")
    .Call(C_stream_integers, stream$pointer, .count(n))
}

orvanth_normals <- function(n, mean = 0, sd = 1, seed)
    .Call(C_normals, .count(n), as.double(mean), as.double(sd), .seed(seed))
