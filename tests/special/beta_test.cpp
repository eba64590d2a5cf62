#include "special/beta.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
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

constexpr unsigned kSeed = 20240124;
constexpr const char* kIncomplete =
    "Error in function boost::math::ibeta<long double>(long double, long double, long double): ";

TEST(Beta, AZeroParameterThrowsAndTheRegularizedFormAnswers) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { Beta(0, 1); }),
              "Error in function boost::math::beta<long double>(long double,long double): "
              "The arguments to the beta function must be greater than zero (got a=0).");
    EXPECT_EQ(BetaRegularized(0, 1, 0.5), 1);
    EXPECT_EQ(BetaRegularizedC(0, 1, 0.5), 0);
    EXPECT_EQ(BetaRegularized(1, 0, 0.5), 0);
    EXPECT_EQ(BetaRegularizedC(1, 0, 0.5), 1);
}

TEST(Beta, MinusOneLeavesAsAnExceptionWithItsText) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { Beta(-1, 1); }).find("Error in function "), 0u);
    EXPECT_EQ(
        ThrownText<std::domain_error>([] { BetaRegularized(-1, 1, 0.5); }),
        std::string(kIncomplete) + "The argument a to the incomplete beta function must be >= zero (got a=-1).");
}

TEST(Beta, BothParametersZeroNamesX) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { BetaRegularized(0, 0, 0.5); }),
              std::string(kIncomplete) +
                  "The arguments a and b to the incomplete beta function cannot both be zero, with x=0.5.");
}

TEST(Beta, OverflowIsReportedByTheNarrowingCheck) {
    EXPECT_EQ(ThrownText<std::overflow_error>([] { Beta(1e-310, 3); }),
              "Error in function boost::math::beta<double>(double,double): numeric overflow");
}

TEST(Beta, VanishesAtInfinity) {
    for (double a : {0.3, 1.0, 60.0, kInfinity})
        for (const auto& call : {CallWithErrno(0, [=] { return Beta(a, kInfinity); }),
                                 CallWithErrno(0, [=] { return Beta(kInfinity, a); })}) {
            EXPECT_EQ(call.value, 0);
            EXPECT_EQ(call.errnoAfter, 0);
        }
}

TEST(BetaDerivative, AtTheEnds) {
    EXPECT_DOUBLE_EQ(BetaDerivative(1, 3, 0), 3);
    EXPECT_EQ(BetaDerivative(2, 3, 0), 0);
    const auto pole = CallWithErrno(0, [] { return BetaDerivative(0.5, 3, 0); });
    EXPECT_EQ(pole.value, kInfinity);
    EXPECT_EQ(pole.errnoAfter, 34);
    EXPECT_EQ(BetaDerivative(3, 2, 1), 0);
    EXPECT_DOUBLE_EQ(BetaDerivative(3, 1, 1), 3);
}

TEST(BetaDerivative, ABadParameterIsNotedAndTheCalculationGoesOn) {
    EXPECT_EQ(CallWithErrno(0, [] { return BetaDerivative(-1, 2, 0.5); }).errnoAfter, 33);
    // At x = 0 the later step overwrites the note: the calculation did go on.
    const auto call = CallWithErrno(0, [] { return BetaDerivative(-1, 2, 0); });
    EXPECT_EQ(call.value, kInfinity);
    EXPECT_EQ(call.errnoAfter, 34);
}

TEST(InverseBeta, ThePlainFormStopsAndTheComplementFormGoesOn) {
    double result = -5, complement = -5;
    const auto call = CallWithErrno(0, [] { return InverseBetaRegularized(-1, 1, 0.5); });
    EXPECT_TRUE(std::isnan(call.value));
    EXPECT_EQ(call.errnoAfter, 33);
    InverseBetaRegularized2(-1, 1, 0.5, &result, &complement);
    EXPECT_TRUE(std::isnan(result));
    EXPECT_EQ(complement, -5);
    EXPECT_EQ(CallWithErrno(0, [] { return InverseBetaRegularizedC(-1, 1, 0.5); }).errnoAfter, 33);
    InverseBetaRegularizedC2(-1, 1, 0.5, &result, &complement);
    EXPECT_NE(complement, -5);
}

TEST(InverseBeta, UniformIsExactAndANullComplementIsAccepted) {
    EXPECT_EQ(InverseBetaRegularized(1, 1, 0.3), 0.3);
    double result = 0;
    InverseBetaRegularized2(2, 3, 0.4, &result, nullptr);
    EXPECT_EQ(result, InverseBetaRegularized(2, 3, 0.4));
    InverseBetaRegularizedC2(2, 3, 0.4, &result, nullptr);
    EXPECT_EQ(result, InverseBetaRegularizedC(2, 3, 0.4));
}

TEST(InverseBeta, TheComplementKeepsItsDigitsNearOne) {
    double x = 0, y = 0;
    InverseBetaRegularized2(5, 0.5, 0.99999, &x, &y);
    EXPECT_GT(y, 0);
    EXPECT_NEAR(BetaRegularized(0.5, 5, y) / 1e-5, 1, 1e-9);
}

TEST(InverseBeta, ATinyBesideAHugeParameterPutsTheMassAtAnEnd) {
    double x = 7, complement = 7;
    InverseBetaRegularized2(1e-13, 1e13, 0.3, &x, &complement);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(complement, 1);
    InverseBetaRegularized2(1e13, 1e-13, 0.3, &x, &complement);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(complement, 0);
}

TEST(InverseBeta, TinyProbabilitiesDoNotThrow) {
    for (double p : {1e-51, 1e-100, 1e-300, 5e-324})
        for (double a : {0.3, 0.9, 2.0, 9.0, 300.0, 1e5})
            for (double b : {0.3, 2.0, 50.0, 1e5}) {
                const double x = InverseBetaRegularized(a, b, p);
                if (x > 1e-290 && x < 0.99 && p > 1e-301) {
                    EXPECT_NEAR(BetaRegularized(a, b, x) / p, 1, 1e-9 * (1 + a)) << a << " " << b << " " << p;
                }
                double result = 0, complement = 0;
                InverseBetaRegularizedC2(b, a, p, &result, &complement);
                EXPECT_EQ(complement, x) << a << " " << b << " " << p;
            }
}

TEST(Beta, LimitsOfHugeParametersJoinTheGeneralForm) {
    // Just inside and just outside the border of 1e14.
    for (double b : {0.5, 3.0, 1e3}) {
        const double y = (b + 1) / 1e14;  // so near to x = 1 that the complement is exact
        EXPECT_NEAR(BetaRegularizedC(b, 1.0000001e14, y) / BetaRegularizedC(b, 0.9999999e14, y), 1, 1e-4) << b;
    }
    EXPECT_NEAR(BetaRegularized(1e20, 1e20, 0.5), 0.5, 1e-15);
    EXPECT_EQ(BetaRegularized(1e100, 1e100, 0.4), 0);
}

// Both tails against integrals with 60 digits. Boost.Math's own power terms have a relative error of 7e-9 at 1e8 and
// of 3e-3 at 3e13.
TEST(Beta, TailsOfTwoLargeParameters) {
    struct Case {
        double a, b, x, lower, upper;
    };
    for (const Case& c : {Case{1e8, 3e8, 0.24996, 0.032332481008547305, 0.9676675189914527},
                          Case{1e8, 3e8, 0.25004, 0.96766079418818852, 0.032339205811811485},
                          Case{1e10, 3e10, 0.249997, 0.082928059713982595, 0.91707194028601741},
                          Case{1e12, 1e12, 0.4999998, 0.28580382247115217, 0.71419617752884783},
                          Case{1e12, 3e12, 0.2500004, 0.96766412262868271, 0.032335877371317289},
                          Case{3e13, 9e13, 0.24999995, 0.10295160158045798, 0.89704839841954202}}) {
        EXPECT_NEAR(BetaRegularized(c.a, c.b, c.x), c.lower, 5e-10 * c.lower);
        EXPECT_NEAR(BetaRegularizedC(c.a, c.b, c.x), c.upper, 5e-10 * c.upper);
        const double y = 1 - c.x;
        if (1 - y == c.x) {
            EXPECT_NEAR(BetaRegularized(c.b, c.a, y), c.upper, 5e-10 * c.upper);
        }
    }
}

TEST(Beta, TheVarianceOfHugeParametersMayUnderflow) {
    EXPECT_EQ(BetaRegularized(1e308, 1e308, 0.5), 0.5);
    EXPECT_EQ(BetaRegularizedC(1e308, 1e308, 0.5), 0.5);
    EXPECT_EQ(BetaRegularized(1e308, 1e308, 0.51), 1);
    const double a = 1.8446744073709552e19, b = 4.3084842848631482e192;
    EXPECT_NEAR(BetaRegularized(a, b, a / b), 0.5, 1e-6);
}

TEST(Beta, OneInfiniteParameterPutsTheMassAtAnEnd) {
    for (double other : {0.3, 60.0, 3.2792006278212911e39, 1e307})
        for (double x : {1e-300, 0.5, 0.999}) {
            EXPECT_EQ(BetaRegularized(kInfinity, other, x), 0) << other;
            EXPECT_EQ(BetaRegularizedC(kInfinity, other, x), 1) << other;
            EXPECT_EQ(BetaRegularized(other, kInfinity, x), 1) << other;
            EXPECT_EQ(BetaRegularizedC(other, kInfinity, x), 0) << other;
        }
    EXPECT_TRUE(std::isnan(BetaRegularized(kInfinity, kInfinity, 0.5)));
}

// Both tails of two small parameters are their ratio to all digits; 1 / (a b) overflows for some of these.
TEST(Beta, TailsOfTwoSmallParameters) {
    for (double a : {1e-307, 1e-291, 1e-279, 1e-190, 1e-101, 1e-30})
        for (double b : {1e-307, 1e-291, 1e-100, 1e-60, 1e-21, 1e-19, 1e-18})
            for (double x : {0.25, 0.999}) {
                EXPECT_NEAR(BetaRegularized(a, b, x) * (1 + a / b), 1, 1e-14) << a << " " << b;
                EXPECT_NEAR(BetaRegularizedC(a, b, x) * (1 + b / a), 1, 1e-14) << a << " " << b;
                EXPECT_NEAR(BetaRegularizedC(b, a, x) * (1 + a / b), 1, 1e-14) << a << " " << b;
            }
}

// x^(a + 1) loses its digits below the normal range, where I = x^a (1 + a (1 - x)) for b = 2 still has some.
TEST(Beta, TailsOfWholeParametersWhereAPowerUnderflows) {
    const double twoUnits = 2 * std::numeric_limits<double>::denorm_min();
    EXPECT_NEAR(BetaRegularized(1000, 2, 123.0 / 256), 2.4076476780770738e-316, twoUnits);
    EXPECT_NEAR(BetaRegularized(1000, 2, 245.0 / 512), 4.1133597681753208e-318, twoUnits);
    EXPECT_NEAR(BetaRegularizedC(2, 1000, 67.0 / 128), 6.9112897588008e-320, twoUnits);
}

TEST(Beta, AgreesWithFiftyDigits) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-2, 2.3), unit(0.001, 0.999);
    WorstUlps beta("Beta", 360), lower("BetaRegularized", 400), upper("BetaRegularizedC", 400),
        density("BetaDerivative", 400);
    for (int i = 0; i < 1200; ++i) {
        const double a = std::pow(10, exponent(random)), b = std::pow(10, exponent(random)), x = unit(random);
        beta.Add(Beta(a, b), test::beta(Wide(a), Wide(b)), a, b);
        const Wide p = IncompleteBeta(Wide(a), Wide(b), Wide(x)), q = IncompleteBetaC(Wide(a), Wide(b), Wide(x));
        if (p > 1e-290) lower.Add(BetaRegularized(a, b, x), p, a, b, x);
        if (q > 1e-290) upper.Add(BetaRegularizedC(a, b, x), q, a, b, x);
        const Wide d = IncompleteBetaDerivative(Wide(a), Wide(b), Wide(x));
        if (d > 1e-290) density.Add(BetaDerivative(a, b, x), d, a, b, x);
    }
}

TEST(Beta, InversesInvert) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-0.7, 3), probability(1e-5, 1 - 1e-5);
    for (int i = 0; i < 3000; ++i) {
        const double a = std::pow(10, exponent(random)), b = std::pow(10, exponent(random)), p = probability(random);
        const double x = InverseBetaRegularized(a, b, p);
        if (x < 1e-290 || x > 1 - 1e-9) continue;
        EXPECT_NEAR(BetaRegularized(a, b, x), p, 1e-9) << "seed " << kSeed << " " << a << " " << b << " " << p;
        EXPECT_NEAR(InverseBetaRegularizedC(a, b, 1 - p), x, 1e-9) << a << " " << b << " " << p;
    }
}

TEST(Beta, SymmetryOfTheTails) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-2, 3);
    for (int i = 0; i < 3000; ++i) {
        const double a = std::pow(10, exponent(random)), b = std::pow(10, exponent(random));
        const double x = static_cast<double>(random() % 1023 + 1) / 1024;  // 1 - x is exact
        EXPECT_NEAR(BetaRegularized(a, b, x), BetaRegularizedC(b, a, 1 - x), 1e-13) << a << " " << b << " " << x;
        EXPECT_NEAR(BetaRegularized(a, b, x) + BetaRegularizedC(a, b, x), 1, 1e-13) << a << " " << b << " " << x;
    }
}

}  // namespace
