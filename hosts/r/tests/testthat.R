library(testthat)
library(orvanth)
test_check("orvanth")
