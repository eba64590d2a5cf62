#include "shield/refined.hpp"

#include <cmath>
#include <cstddef>
#include <span>

#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "multiple_comparison/refined.hpp"

namespace orvanth::shield {

namespace {

using Form = double (*)(double, std::int32_t, double, std::span<const double>, bool);

// What a cumulative form and a quantile refuse alike; at least `fewest` groups are needed.
void CheckDesign(const char* function, std::int32_t k, std::int32_t fewest, double df,
                 std::span<const double> coefficients) {
    if (k < fewest || k > kMostGroups)
        RaiseDomain(function,
                    fewest == 1 ? "Number of groups is %1%, but must be from 1 to 46341 !"
                                : "Number of groups is %1%, but must be from 2 to 46341 !",
                    k);
    if (!(df >= kLeastDf))
        RaiseDomain(function, "Degrees of freedom argument is %1%, but must be at least 0.001 !", df);
    for (double lambda : coefficients)
        if (!(std::fabs(lambda) <= kLargestCoefficient))
            RaiseDomain(function, "Coefficient lambda is %1%, but must be from -0.9999 to 0.9999 !", lambda);
}

double Cumulative(const char* function, Form form, double x, std::int32_t k, double df,
                  std::span<const double> coefficients, TailFlag tail) {
    Throwing throwing;
    CheckDesign(function, k, 1, df, coefficients);
    if (std::isnan(x)) return RaiseDomain(function, "Random variate x is %1%, but must be a number !", x);
    return form(x, k, df, coefficients, IsSet(tail));
}

// `lowest` is the x with probability 0.
double Quantile(const char* function, Form form, double lowest, double p, std::int32_t k, double df,
                std::span<const double> coefficients, TailFlag tail) {
    Throwing throwing;
    CheckDesign(function, k, 2, df, coefficients);
    if (!(p >= 0 && p <= 1))
        return RaiseDomain(function, "Probability argument is %1%, but must be >= 0 and <= 1 !", p);
    if (p == (IsSet(tail) ? 0.0 : 1.0)) return RaiseOverflow(function);
    if (p == (IsSet(tail) ? 1.0 : 0.0)) return std::isinf(lowest) ? -RaiseOverflow(function) : lowest;
    const double x = form(p, k, df, coefficients, IsSet(tail));
    // All pairs with another coefficient than 1 / sqrt 2 do not reach every probability.
    if (std::isnan(x)) return RaiseDomain(function, "No double x has the probability %1% !", p);
    return x;
}

std::span<const double> First(const double* lambda, std::int32_t k) {
    return {lambda, k > 0 ? std::size_t{1} : std::size_t{0}};
}

std::span<const double> AllButLast(const double* lambda, std::int32_t k) {
    return {lambda, k > 0 ? static_cast<std::size_t>(k) - 1 : std::size_t{0}};
}

}  // namespace

double RefinedMCaCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative("RefinedMCaCDF", RefinedTukeyCDF, x, k, df, First(lambda, k), tail);
}

double RefinedMCaICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile("RefinedMCaICDF", RefinedTukeyICDF, 0.0, p, k, df, First(lambda, k), tail);
}

double RefinedMCbCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative("RefinedMCbCDF", RefinedHsuCDF, x, k, df, AllButLast(lambda, k), tail);
}

double RefinedMCbICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile("RefinedMCbICDF", RefinedHsuICDF, -kInfinity, p, k, df, AllButLast(lambda, k), tail);
}

double RefinedMCcCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative("RefinedMCcCDF", RefinedDunnettCDF, x, k, df, AllButLast(lambda, k), tail);
}

double RefinedMCcICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile("RefinedMCcICDF", RefinedDunnettICDF, 0.0, p, k, df, AllButLast(lambda, k), tail);
}

}  // namespace orvanth::shield
