#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <stdexcept>

#include <boost/math/special_functions/erf.hpp>

#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "support/call.hpp"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;
using orvanth::test::UlpError;
using orvanth::test::Wide;

constexpr unsigned kSeed = 20240117;

// The faster number type changes no bit of Boost's functions of a double, at the borders of their forms either.
TEST(Erf, HasTheBitsOfTheDirectCall) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-28.5, 28.5), decimal(-320, 2);
    const auto agree = [](double x) {
        EXPECT_EQ(Erf(x), boost::math::erf(x, DefaultPolicy())) << std::hexfloat << x;
        EXPECT_EQ(ErfC(x), boost::math::erfc(x, DefaultPolicy())) << std::hexfloat << x;
    };
    for (int i = 0; i < 200000; ++i) agree(point(random) / (i % 4 + 1));
    for (int i = 0; i < 20000; ++i) agree(std::copysign(std::pow(10.0, decimal(random)), i % 2 - 0.5));
    for (double border : {0.0, 1e-10, 0.5, 1.5, 2.5, 4.5, 5.8, 5.8f + 0.0, 28.0, 1e300, kInfinity})
        for (double x : {border, std::nextafter(border, 0), std::nextafter(border, kInfinity)}) {
            agree(x);
            agree(-x);
        }
}

TEST(Erf, ZeroAndOddSymmetry) {
    EXPECT_EQ(Erf(0), 0);
    EXPECT_EQ(ErfC(0), 1);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(0, 7);
    for (int i = 0; i < 10000; ++i) {
        const double x = point(random);
        EXPECT_EQ(Erf(-x), -Erf(x)) << std::hexfloat << x;
    }
}

TEST(Erf, NaNGivesNaNAndLeavesErrno) {
    for (double (*function)(double) : {Erf, ErfC}) {
        const auto call = CallWithErrno(7, [=] { return function(kNaN); });
        EXPECT_TRUE(std::isnan(call.value));
        EXPECT_EQ(call.errnoAfter, 7);
    }
}

TEST(Erf, InfinityIsBoundedAndSilent) {
    EXPECT_EQ(Erf(kInfinity), 1);
    EXPECT_EQ(Erf(-kInfinity), -1);
    EXPECT_EQ(ErfC(kInfinity), 0);
    EXPECT_EQ(ErfC(-kInfinity), 2);
}

TEST(ErfC, UnderflowOfTheRuntimeDoesNotReachErrno) {
    for (double x : {26.7, 27.0, 30.0, 1e300})
        EXPECT_EQ(CallWithErrno(0, [=] { return ErfC(x); }).errnoAfter, 0) << x;
}

TEST(Erf, AgreesWithFiftyDigits) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-6, 26);
    double worst = 0, worstComplement = 0;
    for (int i = 0; i < 3000; ++i) {
        const double x = point(random);
        worst = std::max(worst, UlpError(Erf(x), erf(Wide(x))));
        worstComplement = std::max(worstComplement, UlpError(ErfC(x), erfc(Wide(x))));
    }
    std::printf("  seed %u; worst error of Erf %.2f ulp, of ErfC %.2f ulp\n", kSeed, worst, worstComplement);
    EXPECT_LT(worst, 2.5);
    EXPECT_LT(worstComplement, 3.5);
}

TEST(InverseErf, EndsAreInfiniteWithErrno34) {
    const auto one = CallWithErrno(0, [] { return InverseErf(1); });
    EXPECT_EQ(one.value, kInfinity);
    EXPECT_EQ(one.errnoAfter, 34);
    EXPECT_EQ(InverseErf(-1), -kInfinity);
    const auto zero = CallWithErrno(7, [] { return InverseErfC(0); });
    EXPECT_EQ(zero.value, kInfinity);
    EXPECT_EQ(zero.errnoAfter, 34);
    const auto two = CallWithErrno(0, [] { return InverseErfC(2); });
    EXPECT_EQ(two.value, -kInfinity);
    EXPECT_EQ(two.errnoAfter, 34);
}

TEST(InverseErf, OutsideTheRangeIsNaNWithErrno33) {
    for (double p : {1.5, -1.0000000000000002, 1e300, -kInfinity, kInfinity}) {
        const auto call = CallWithErrno(0, [=] { return InverseErf(p); });
        EXPECT_TRUE(std::isnan(call.value)) << p;
        EXPECT_EQ(call.errnoAfter, 33) << p;
    }
    for (double z : {-1e-300, 2.0000000000000004, kInfinity, -kInfinity}) {
        const auto call = CallWithErrno(0, [=] { return InverseErfC(z); });
        EXPECT_TRUE(std::isnan(call.value)) << z;
        EXPECT_EQ(call.errnoAfter, 33) << z;
    }
}

TEST(InverseErf, NaNPassesTheRangeTest) {
    for (double (*function)(double) : {InverseErf, InverseErfC}) {
        const auto call = CallWithErrno(0, [=] { return function(kNaN); });
        EXPECT_TRUE(std::isnan(call.value));
        EXPECT_EQ(call.errnoAfter, 0);
    }
}

TEST(InverseErf, ZeroIsExact) {
    EXPECT_EQ(InverseErf(0), 0);
    EXPECT_EQ(InverseErfC(1), 0);
}

TEST(InverseErf, InvertsErf) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-3, 3), tail(1, 26);
    double worst = 0;
    for (int i = 0; i < 3000; ++i) {
        const double x = point(random), t = tail(random);
        EXPECT_NEAR(InverseErf(Erf(x)), x, 4e-13 * std::exp(x * x) * 1e-2 + 1e-15 * std::fabs(x))
            << std::hexfloat << x;
        worst = std::max(worst, std::fabs(InverseErfC(ErfC(t)) / t - 1));
    }
    EXPECT_LT(worst, 2e-15);
}

TEST(LogXplus1, TinyArgumentsComeBackExactly) {
    EXPECT_EQ(LogXplus1(1e-20), 1e-20);
    EXPECT_EQ(LogXplus1(-1e-300), -1e-300);
    EXPECT_TRUE(std::signbit(LogXplus1(-0.0)));
}

TEST(LogXplus1, InfinityGivesNaN) {
    const auto call = CallWithErrno(7, [] { return LogXplus1(kInfinity); });
    EXPECT_TRUE(std::isnan(call.value));
    EXPECT_EQ(call.errnoAfter, 7);
    EXPECT_TRUE(std::isnan(LogXplus1(kNaN)));
}

TEST(LogXplus1, MinusOneThrowsAndLeavesErrno) {
    errno = 7;
    EXPECT_EQ(ThrownText<std::overflow_error>([] { LogXplus1(-1); }),
              "Error in function log1p<double>(double): Overflow Error");
    EXPECT_EQ(errno, 7);
}

TEST(LogXplus1, BelowMinusOneThrows) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { LogXplus1(-1.5); }),
              "Error in function log1p<double>(double): log1p(x) requires x > -1, but got x = -1.5.");
}

TEST(LogXplus1, AgreesWithFiftyDigits) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-18, 18);
    double worst = 0;
    for (int i = 0; i < 5000; ++i) {
        const double magnitude = std::pow(10, exponent(random));
        for (double x : {magnitude, -std::min(magnitude, 0.999)})
            worst = std::max(worst, UlpError(LogXplus1(x), log1p(Wide(x))));
    }
    std::printf("  seed %u; worst error of LogXplus1 %.2f ulp\n", kSeed, worst);
    EXPECT_LT(worst, 3);
}

}  // namespace
