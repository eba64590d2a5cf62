// Whatever arrives, every export of the special functions and of the continuous distributions returns
// in bounded time: no assertion, no endless loop, no exception but those of the manual.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <limits>
#include <string>
#include <type_traits>

#include "frame/failure.hpp"
#include "orvanth/core_math.h"

namespace {

using namespace orvanth;

constexpr double kExtremes[] = {
    0.0,      -0.0, 5e-324, 1e-310, 1e-300, 1e-20, 0.3,       0.5,        1.0,
    1.5,      2.0,  20.5,   170.7,  1e5,    1e10,  1e20,      1e100,      1e300,
    kLargest, -0.5, -1.0,   -1e5,   -1e300, kNaN,  kInfinity, -kInfinity, 0.9999999999999999};

double complementSeen;

template <class Result, class... Arguments>
struct Caller {
    Result (*function)(Arguments...);

    template <std::size_t... I>
    void Call(const double* values, std::index_sequence<I...>) const {
        (void)function(Value<Arguments>(values[I])...);
    }
    template <class Argument>
    static Argument Value(double value) {
        if constexpr (std::is_same_v<Argument, double>)
            return value;
        else if constexpr (std::is_same_v<Argument, double*>)
            return &complementSeen;
        else
            return static_cast<Argument>(value > 1);
    }
};

template <class Result, class... Arguments>
void Sweep(const char* name, Result (*function)(Arguments...)) {
    constexpr std::size_t arity = sizeof...(Arguments);
    constexpr std::size_t count = std::size(kExtremes);
    const Caller<Result, Arguments...> caller{function};
    std::size_t combinations = 1;
    for (std::size_t i = 0; i < std::min<std::size_t>(arity, 3); ++i) combinations *= count;
    double slowest = 0;
    for (std::size_t c = 0; c < combinations; ++c) {
        double values[8] = {};
        for (std::size_t i = 0, rest = c; i < arity; ++i, rest /= count) values[i] = kExtremes[rest % count];
        const auto start = std::chrono::steady_clock::now();
        try {
            caller.Call(values, std::index_sequence_for<Arguments...>());
        } catch (const std::exception& error) {
            const std::string text = error.what();
            ASSERT_EQ(text.find("Error in function "), 0u) << name << ": " << text;
        }
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        slowest = std::max(slowest, seconds);
        ASSERT_LT(seconds, 5) << name << "(" << values[0] << ", " << values[1] << ", " << values[2] << ")";
    }
    if (slowest > 0.05) std::printf("  %s: slowest call %.2f s\n", name, slowest);
}

#define SWEEP(name) \
    TEST(Extremes, name) { Sweep(#name, ::name); }
SWEEP(Gamma)
SWEEP(GammaLn)
SWEEP(GammaRegularized)
SWEEP(GammaRegularizedC)
SWEEP(GammaDerivative)
SWEEP(IncompleteGammaLower)
SWEEP(IncompleteGammaUpper)
SWEEP(InverseGammaRegularized)
SWEEP(InverseGammaRegularizedC)
SWEEP(Beta)
SWEEP(BetaRegularized)
SWEEP(BetaRegularizedC)
SWEEP(BetaDerivative)
SWEEP(InverseBetaRegularized)
SWEEP(InverseBetaRegularized2)
SWEEP(InverseBetaRegularizedC)
SWEEP(InverseBetaRegularizedC2)
SWEEP(Erf)
SWEEP(ErfC)
SWEEP(InverseErf)
SWEEP(InverseErfC)
SWEEP(LogXplus1)
SWEEP(BetaPDF)
SWEEP(BetaCDF)
SWEEP(BetaICDF)
SWEEP(ChiSquaredPDF)
SWEEP(ChiSquaredCDF)
SWEEP(ChiSquaredICDF)
SWEEP(FisherFPDF)
SWEEP(FisherFCDF)
SWEEP(FisherFICDF)
SWEEP(GammaPDF)
SWEEP(GammaCDF)
SWEEP(GammaICDF)
SWEEP(NormalPDF)
SWEEP(NormalCDF)
SWEEP(NormalICDF)
SWEEP(StudentTPDF)
SWEEP(StudentTCDF)
SWEEP(StudentTICDF)
SWEEP(BinomialPDF)
SWEEP(BinomialCDF)
SWEEP(BinomialICDF)
SWEEP(BinomialPS)
#undef SWEEP

}  // namespace
