# Entrance scores and grades of fifteen law schools: the correlation and its bootstrap interval (B. Efron, 1979).
library(orvanth)

score <- c(576, 635, 558, 578, 666, 580, 555, 661, 651, 605, 653, 575, 545, 572, 594)
grade <- c(3.39, 3.30, 2.81, 3.03, 3.44, 3.07, 3.00, 3.43, 3.36, 3.13, 3.12, 2.74, 2.76, 2.88, 2.96)
stream <- orvanth_stream(1)
resampled <- sort(replicate(2000, {
    i <- orvanth_integers(stream, 15) + 1  # the library counts from 0
    cor(score[i], grade[i])
}))
cat(sprintf("correlation %.4f, 95 %% interval %.4f to %.4f\n", cor(score, grade), resampled[50], resampled[1951]))
