# A host in R that goes on after failures.
library(orvanth)

# More successes than trials, among calls that are right.
p <- withCallingHandlers(orv_pbinom(c(3, 11, 5), 10, 0.5), orvanth_warning = function(w) {
    cat(conditionMessage(w), "at element", w$first, "\n")
    invokeRestart("muffleWarning")
})
print(p)
cat(orvanth_last_error(), "\n")

# A design with a redundant column.
x <- cbind(intercept = 1, dose = c(1, 2, 4, 7, 9), `dose in grains` = c(2, 4, 8, 14, 18))
cat(tryCatch(orvanth_ols(x, 1:5), error = conditionMessage), "\n")
invisible("prints:
NaNs produced at element 2 
[1] 0.1718750       NaN 0.6230469
Error in function boost::math::cdf(binomial_distribution<double> const&, double): Number of Successes argument is 11, but must be <= Number of Trials ! 
OLS: column 3 is collinear with the columns before it (dose in grains) 
")
