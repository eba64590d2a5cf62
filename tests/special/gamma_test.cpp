#include "special/gamma.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <stdexcept>

#include "frame/failure.hpp"
#include "orvanth/special.h"
#include "support/call.hpp"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;
using orvanth::test::Wide;
using orvanth::test::WorstUlps;

constexpr unsigned kSeed = 20240123;

TEST(Gamma, RangeIsClosedAtOneHundredSeventyOne) {
    EXPECT_NEAR(Gamma(171) / 7.257415615307999e306, 1, 1e-13);
    EXPECT_TRUE(std::isnan(Gamma(171.5)));
    EXPECT_TRUE(std::isnan(Gamma(std::nextafter(171.0, 172.0))));
}

TEST(Gamma, OutsideTheRangeErrnoIsLeftAlone) {
    for (int before : {0, 7}) {
        const auto negative = CallWithErrno(before, [] { return Gamma(-0.5); });
        EXPECT_TRUE(std::isnan(negative.value));
        EXPECT_EQ(negative.errnoAfter, before);
        const auto zero = CallWithErrno(before, [] { return Gamma(0); });
        EXPECT_EQ(zero.value, kInfinity);
        EXPECT_EQ(zero.errnoAfter, before);
    }
}

TEST(Gamma, ATinyArgumentOverflowsWithErrno34) {
    const auto call = CallWithErrno(0, [] { return Gamma(1e-310); });
    EXPECT_EQ(call.value, kInfinity);
    EXPECT_EQ(call.errnoAfter, 34);
}

TEST(GammaLn, PolesThrowAndOtherNegativeArgumentsDoNot) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { GammaLn(0); }),
              "Error in function boost::math::lgamma<long double>(long double): "
              "Evaluation of lgamma at a negative integer 0.");
    EXPECT_NE(ThrownText<std::domain_error>([] { GammaLn(-3); }), "");
    EXPECT_NEAR(GammaLn(-0.5), std::log(3.5449077018110321), 1e-15);
}

TEST(GammaDerivative, AtZero) {
    EXPECT_EQ(GammaDerivative(1, 0), 1);
    EXPECT_EQ(GammaDerivative(2, 0), 0);
    EXPECT_EQ(ThrownText<std::overflow_error>([] { GammaDerivative(0.5, 0); }),
              "Error in function boost::math::gamma_p_derivative<long double>(long double, long double): "
              "Overflow Error");
}

TEST(InverseGammaRegularized, ACertainEventGivesTheLargestDouble) {
    const auto call = CallWithErrno(7, [] { return InverseGammaRegularized(2, 1); });
    EXPECT_EQ(call.value, kLargest);
    EXPECT_EQ(call.errnoAfter, 7);
    EXPECT_EQ(InverseGammaRegularizedC(2, 0), kLargest);
    EXPECT_EQ(InverseGammaRegularized(2, 0), 0);
    EXPECT_EQ(InverseGammaRegularizedC(2, 1), 0);
}

TEST(IncompleteGamma, AZeroShapeThrowsOrIsNotedByExport) {
    EXPECT_THROW(GammaRegularized(0, 1), std::domain_error);
    EXPECT_THROW(GammaRegularizedC(0, 1), std::domain_error);
    const auto call = CallWithErrno(0, [] { return IncompleteGammaUpper(0, 1); });
    EXPECT_EQ(call.errnoAfter, 33);
}

TEST(IncompleteGamma, BeyondDoubleIsInfinityWithErrno34) {
    const auto call = CallWithErrno(0, [] { return IncompleteGammaUpper(200, 1); });
    EXPECT_EQ(call.value, kInfinity);
    EXPECT_EQ(call.errnoAfter, 34);
}

// From shape 170 on the complement of a small lower part comes from Gamma(a) itself, which is 169! here.
TEST(IncompleteGamma, BelowTheMeanTheUpperPartHasTheDigitsOfTheFactorial) {
    for (double x : {1e-3, 1.0, 60.0})
        EXPECT_NEAR(IncompleteGammaUpper(170, x) / 4.2690680090047052749e304, 1, 1e-15);
}

// Far above the mean the upper part is summed: what the lower one leaves of Gamma(a) would have no digits.
TEST(IncompleteGamma, FarAboveTheMeanTheUpperPartIsSummed) {
    EXPECT_NEAR(IncompleteGammaUpper(170, 300) / 5.0220366802276875e288, 1, 1e-12);
    EXPECT_NEAR(IncompleteGammaUpper(170, 1500) / 2.3419184661941606e-115, 1, 1e-12);
    EXPECT_NEAR(IncompleteGammaUpper(200, 700) / 2.0572670084088527e262, 1, 1e-12);
}

TEST(Gamma, AgreesWithFiftyDigits) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> wide(0.01, 171), exponent(-3, 2.5);
    WorstUlps gamma("Gamma", 9), logGamma("GammaLn", 3), p("GammaRegularized", 750), q("GammaRegularizedC", 750),
        density("GammaDerivative", 900);
    for (int i = 0; i < 1500; ++i) {
        const double x = wide(random), a = std::pow(10, exponent(random)), y = a * std::pow(10, exponent(random) / 4);
        gamma.Add(Gamma(x), tgamma(Wide(x)), x);
        const Wide log = lgamma(Wide(x));
        if (abs(log) > 0.1) logGamma.Add(GammaLn(x), log, x);
        const Wide wp = GammaP(Wide(a), Wide(y)), wq = GammaQ(Wide(a), Wide(y));
        if (wp > 1e-290) p.Add(GammaRegularized(a, y), wp, a, y);
        if (wq > 1e-290) q.Add(GammaRegularizedC(a, y), wq, a, y);
        const Wide d = GammaPDerivative(Wide(a), Wide(y));
        if (d > 1e-290) density.Add(GammaDerivative(a, y), d, a, y);
    }
}

TEST(Gamma, InversesInvert) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-2, 4), probability(1e-6, 1 - 1e-6);
    for (int i = 0; i < 3000; ++i) {
        const double a = std::pow(10, exponent(random)), p = probability(random);
        const double x = InverseGammaRegularized(a, p), y = InverseGammaRegularizedC(a, p);
        if (x < 1e-300 || y < 1e-300) continue;
        EXPECT_NEAR(GammaRegularized(a, x) / p, 1, 2e-11) << "seed " << kSeed << " a " << a << " p " << p;
        EXPECT_NEAR(GammaRegularizedC(a, y) / p, 1, 2e-11) << "seed " << kSeed << " a " << a << " p " << p;
    }
}

TEST(Gamma, TailsAddToOne) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-2, 4);
    for (int i = 0; i < 3000; ++i) {
        const double a = std::pow(10, exponent(random)), x = a * std::pow(10, exponent(random) / 6);
        EXPECT_NEAR(GammaRegularized(a, x) + GammaRegularizedC(a, x), 1, 5e-15) << a << " " << x;
    }
}

}  // namespace
