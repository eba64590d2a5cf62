// Calls with extreme and valid arguments: the value is right, nothing is thrown and errno stays as it was.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <stdexcept>

#include "frame/failure.hpp"
#include "orvanth/core_math.h"
#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;

constexpr unsigned kSeed = 20261121;

// The value to a relative tolerance, and errno as it was before.
#define EXPECT_QUIET(call, expected, tolerance)                                         \
    for (int before : {0, 7}) {                                                         \
        const auto outcome = CallWithErrno(before, [&] { return call; });               \
        EXPECT_NEAR(outcome.value, expected, (tolerance)*std::fabs(expected)) << #call; \
        EXPECT_EQ(outcome.errnoAfter, before) << #call;                                 \
    }

TEST(Reach, GammaTailsOfALargeShapeAtTinyXAreZeroAndOne) {
    EXPECT_QUIET(GammaRegularized(200, 1e-9), 0, 0);
    EXPECT_QUIET(GammaRegularizedC(200, 1e-9), 1, 0);
    EXPECT_QUIET(ChiSquaredCDF(1e-9, 400, 0), 0, 0);
    EXPECT_QUIET(ChiSquaredCDF(1e-9, 400, 1), 1, 0);
    EXPECT_QUIET(GammaCDF(1e-9, 200, 1, 0), 0, 0);
    EXPECT_QUIET(GammaCDF(1e-9, 200, 1, 1), 1, 0);
    EXPECT_QUIET(BetaRegularized(200, 1e15, 1e-25), 0, 0);
    EXPECT_QUIET(BetaCDF(1e-25, 200, 1e15, 1), 1, 0);
    EXPECT_QUIET(FisherFCDF(1e-12, 400, 1e15, 0), 0, 0);
    for (double a = 150; a <= 1e6; a *= 1.3)
        for (double x = 1e-300; x < 1; x *= 1e7) {
            EXPECT_QUIET(GammaRegularized(a, x), 0, 0);
            EXPECT_QUIET(GammaRegularizedC(a, x), 1, 0);
        }
}

TEST(Reach, GammaTailsOfAHugeShapeAreNotLimitedByTheNumberOfTerms) {
    // 5, 10 and 30 standard deviations from the mean; the values are those of the normal distribution with the
    // correction for the skewness, to its accuracy.
    EXPECT_QUIET(GammaRegularized(1e11, 1e11 - 5 * std::sqrt(1e11)), 2.8663e-7, 1e-3);
    EXPECT_QUIET(GammaRegularizedC(1e11, 1e11 + 5 * std::sqrt(1e11)), 2.8669e-7, 1e-3);
    EXPECT_QUIET(GammaRegularizedC(1e14, 1e14 + 10 * std::sqrt(1e14)), 7.6199e-24, 1e-3);
    EXPECT_QUIET(GammaRegularizedC(1e14, 1e14 - 30 * std::sqrt(1e14)), 1, 0);
    EXPECT_QUIET(GammaRegularized(1e14, 1), 0, 0);
    // Both forms at the border between them.
    const double below = 1e9, above = std::nextafter(below, kInfinity);
    for (double deviations : {-8.0, -3.0, -0.5, 0.0, 2.0, 6.0}) {
        const double x = below + deviations * std::sqrt(below);
        EXPECT_NEAR(GammaRegularized(below, x) / GammaRegularized(above, x), 1, 1e-8) << deviations;
        EXPECT_NEAR(GammaRegularizedC(below, x) / GammaRegularizedC(above, x), 1, 1e-8) << deviations;
    }
}

TEST(Reach, InverseBetaOfATinyProbability) {
    EXPECT_QUIET(InverseBetaRegularized(0.5, 3, 1e-100), 2.8444444444444444e-201, 1e-13);
    EXPECT_QUIET(BetaICDF(1e-100, 0.5, 3, 0), 2.8444444444444444e-201, 1e-13);
    EXPECT_QUIET(FisherFICDF(1e-100, 1, 4, 0), 1.7777777777777778e-200, 1e-13);
    EXPECT_NEAR(BinomialPS(1e-200, 0.79, 8, 0) / 7.6906425805395884e-255, 1, 1e-12);
}

TEST(Reach, UniformInverseGivesEveryProbabilityBack) {
    for (double p : {1e-300, 1e-60, 1e-51, 1e-10, 0.3, 0.999}) {
        EXPECT_QUIET(InverseBetaRegularized(1, 1, p), p, 0);
        double x = 0, y = 0;
        InverseBetaRegularizedC2(1, 1, p, &x, &y);
        EXPECT_EQ(y, p);
    }
}

TEST(Reach, InverseBeta2OfANaNGivesTwoNaNs) {
    for (int bad = 0; bad < 3; ++bad) {
        double x = -5, y = -5;
        const auto argument = [=](int i, double value) { return i == bad ? kNaN : value; };
        errno = 7;
        InverseBetaRegularized2(argument(0, 2), argument(1, 3), argument(2, 0.5), &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << bad;
        x = y = -5;
        InverseBetaRegularizedC2(argument(0, 2), argument(1, 3), argument(2, 0.5), &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << bad;
        EXPECT_EQ(errno, 7);
    }
}

TEST(Reach, BinomialTailsOfBillionsOfTrials) {
    EXPECT_QUIET(BinomialCDF(38, 2e9, 0.27, 0), 0, 0);
    EXPECT_QUIET(BinomialCDF(38, 2e9, 0.27, 1), 1, 0);
    EXPECT_QUIET(BetaRegularized(39, 2013392262, 0.270872), 1, 0);
    EXPECT_QUIET(BetaRegularizedC(39, 2013392262, 0.270872), 0, 0);
    // The sum of 39 terms in 60 digits.
    EXPECT_QUIET(BinomialCDF(38, 2e9, 4e-7, 0), 1.5288231e-282, 1e-6);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(0, 9.33), unit(0, 1), decimal(-300, 0);
    for (int i = 0; i < 3000; ++i) {
        const double n = std::round(std::pow(10, exponent(random)));
        const double k = std::fmin(std::floor(std::pow(10, 3 * unit(random))), n);
        const double p = i % 2 == 0 ? unit(random) : std::pow(10, decimal(random));
        const double lower = BinomialCDF(k, n, p, 0), upper = BinomialCDF(k, n, p, 1);
        EXPECT_NEAR(lower + upper, 1, 1e-7) << k << " " << n << " " << p;
    }
}

TEST(Reach, StudentQuantilesFarOutInTheTails) {
    EXPECT_QUIET(StudentTICDF(1.478e-289, 8, 0), -2.80100703e36, 1e-8);
    for (double p = 1.47e-289; p < 1.49e-289; p *= 1.0003) {
        const auto call = CallWithErrno(7, [=] { return StudentTICDF(p, 8, 0); });
        EXPECT_NEAR(call.value / (-2.80100703e36 * std::pow(p / 1.478e-289, -1.0 / 8)), 1, 1e-8) << p;
        EXPECT_EQ(call.errnoAfter, 7);
    }
    EXPECT_QUIET(StudentTICDF(0.26331, 0.0018, 0), -1.12362774e153, 1e-8);
    EXPECT_QUIET(StudentTICDF(1.2428332181275492e-168, 3, 0),
                 -std::cbrt(6 * std::sqrt(3.0) / 3.14159265358979323846 / 3 / 1.2428332181275492e-168), 1e-8);
    EXPECT_EQ(StudentTICDF(0.26331, 1e-5, 0), -kInfinity);
    EXPECT_EQ(CallWithErrno(0, [] { return StudentTICDF(0.26331, 1e-5, 1); }).errnoAfter, 34);
}

TEST(Reach, QuantilesWhereTheSearchOfBoostReachesItsLimit) {
    EXPECT_QUIET(BetaICDF(5.0979e-18, 1.00994, 0.28609, 0), 2.62013578e-17, 1e-8);
    EXPECT_QUIET(FisherFICDF(3.474e-19, 1.785, 2.018, 1), 1.98872170e18, 1e-8);
    EXPECT_QUIET(InverseGammaRegularized(1981, 5e-324), 722.499352, 1e-8);
}

TEST(Reach, LogGammaStandsUpToTheOverflow) {
    EXPECT_NEAR(GammaLn(1e30) / 6.8077552789821368e31, 1, 1e-15);
    EXPECT_NEAR(GammaLn(2.5e305) / 1.7555118602376453e308, 1, 1e-15);
    EXPECT_EQ(ThrownText<std::overflow_error>([] { GammaLn(2.6e305); }),
              "Error in function boost::math::lgamma<double>(double): numeric overflow");
}

// The parity of the whole part does not fit an int there.
TEST(Reach, LogGammaFarBelowZero) {
    EXPECT_NEAR(GammaLn(-2147483647.5) / -43996705664.977575756, 1, 1e-15);
    EXPECT_NEAR(GammaLn(-2147483648.25) / -43996705680.746674113, 1, 1e-15);
    EXPECT_NEAR(GammaLn(-18811300000000.5) / -556165092648971.60683, 1, 1e-15);
}

TEST(Reach, TheTestsOfTheRegularizedBetaComeInTheOrderABZeroX) {
    EXPECT_EQ(BetaRegularized(0, 1, 1.5), 1);
    EXPECT_EQ(BetaRegularizedC(1, 0, -1), 1);
    EXPECT_NE(ThrownText<std::domain_error>([] { BetaRegularized(-1, 1, 1.5); }).find("(got a=-1)"),
              std::string::npos);
    EXPECT_NE(ThrownText<std::domain_error>([] { BetaRegularizedC(1, -2, 1.5); }).find("(got b=-2)"),
              std::string::npos);
    EXPECT_NE(ThrownText<std::domain_error>([] { BetaRegularized(1, 1, 1.5); }).find("(got x=1.5)"),
              std::string::npos);
}

TEST(Reach, OverflowOfTheGammaDerivativeNamesLongDouble) {
    EXPECT_EQ(ThrownText<std::overflow_error>([] { GammaDerivative(0.01, 5e-324); }),
              "Error in function boost::math::gamma_p_derivative<long double>(long double, long double): "
              "Overflow Error");
}

TEST(Reach, GammaOfATinyArgumentIsItsReciprocal) {
    EXPECT_QUIET(Gamma(1e-308), 1e308, 1e-15);
    EXPECT_QUIET(Gamma(5.6e-309), 1 / 5.6e-309, 1e-15);
    EXPECT_EQ(CallWithErrno(0, [] { return Gamma(5.5e-309); }).errnoAfter, 34);
}

TEST(Reach, IncompleteGammaHasAValueWhereverItFitsADouble) {
    EXPECT_QUIET(IncompleteGammaLower(171.5, 160), 1.8145307493975e307, 1e-12);
    EXPECT_QUIET(IncompleteGammaUpper(171.5, 160), 7.6688368174272e307, 1e-12);
    // Gamma(171.65) itself is beyond a double.
    EXPECT_QUIET(IncompleteGammaUpper(171.65, 172), 9.8280192827751e307, 1e-12);
    EXPECT_QUIET(IncompleteGammaLower(171.65, 172), 1.0680799927861e308, 1e-12);
    // Here x^a exp(-x) is.
    EXPECT_QUIET(IncompleteGammaLower(1000, 2.04), 5.560228760025e305, 1e-11);
    EXPECT_QUIET(IncompleteGammaUpper(400, kInfinity), 0, 0);
    for (double a : {150.0, 171.0, 171.6, 171.7, 172.0, 200.0, 1e4, 1e300, kInfinity})
        for (double x : {0.0, 1e-300, 1e-9, 1.0, 100.0, 171.0, 300.0, 1e4, 1e300, kInfinity})
            for (auto* function : {IncompleteGammaLower, IncompleteGammaUpper}) {
                const auto call = CallWithErrno(0, [=] { return function(a, x); });
                EXPECT_FALSE(std::isnan(call.value)) << a << " " << x;
                EXPECT_EQ(call.errnoAfter, std::isinf(call.value) ? 34 : 0) << a << " " << x;
            }
}

// A probability: the middle, both tails, down to 1e-300.
double AnyProbability(std::mt19937_64& random) {
    std::uniform_real_distribution<double> unit(0, 1), decimal(-300, 0), near(-20, 0);
    const double kind = unit(random);
    return kind < 0.4 ? unit(random) : std::pow(10, kind < 0.7 ? near(random) : decimal(random));
}

double AnyParameter(std::mt19937_64& random) {
    std::uniform_real_distribution<double> unit(0, 1), usual(-2, 3), wide(-6, 6), whole(0, 9.33);
    const double kind = unit(random);
    if (kind < 0.7) return std::pow(10, usual(random));
    return kind < 0.85 ? std::pow(10, wide(random)) : std::round(std::pow(10, whole(random)));
}

// The forward function a little below and a little above x encloses p, whichever way it goes. The slack is the error
// of the forward function.
template <class Tail>
void ExpectRoot(Tail tail, double x, double p, const std::string& call) {
    if (!(x > 1e-300 && x < 1e150)) return;
    const double low = tail(x * (1 - 1e-9)), high = tail(x * (1 + 1e-9)), slack = 1e-7 * p;
    EXPECT_TRUE(std::fmin(low, high) <= p + slack && std::fmax(low, high) >= p - slack)
        << call << " gives " << x << ", where the forward function is " << tail(x) << " for " << p;
}

TEST(Reach, QuantilesAreRootsAndLeaveErrnoAlone) {
    std::mt19937_64 random(kSeed);
    for (int i = 0; i < 4000; ++i) {
        const double p = AnyProbability(random), a = AnyParameter(random), b = AnyParameter(random);
        const TailFlag tail = i & 1, other = 1 - tail;
        const bool small = p <= 0.5;
        const double tested = small ? p : 1 - p;
        char arguments[120];
        std::snprintf(arguments, sizeof arguments, "(%.17g, %.17g, %.17g, %d)", p, a, b, tail);
        errno = 7;
        const double gamma = GammaICDF(p, a, 1, tail), chi = ChiSquaredICDF(p, a, tail),
                     beta = BetaICDF(p, a, b, tail), fisher = FisherFICDF(p, a, b, tail),
                     student = StudentTICDF(p, a, tail);
        if (std::isfinite(student)) {
            EXPECT_EQ(errno, 7) << arguments;
        }
        for (double value : {gamma, chi, beta, fisher, student}) EXPECT_FALSE(std::isnan(value)) << arguments;
        const TailFlag side = small ? tail : other;
        ExpectRoot([=](double x) { return GammaCDF(x, a, 1, side); }, gamma, tested,
                   std::string("gamma") + arguments);
        ExpectRoot([=](double x) { return ChiSquaredCDF(x, a, side); }, chi, tested, std::string("chi") + arguments);
        ExpectRoot([=](double x) { return FisherFCDF(x, a, b, side); }, fisher, tested, std::string("F") + arguments);
        if (beta < 0.5)
            ExpectRoot([=](double x) { return BetaCDF(x, a, b, side); }, beta, tested,
                       std::string("beta") + arguments);
        if (std::fabs(p - 0.5) > 1e-6)
            ExpectRoot([=](double t) { return StudentTCDF(t, a, 1); }, std::fabs(student), tested,
                       std::string("t") + arguments);
    }
}

TEST(Reach, ForwardFunctionsGiveNumbersAndLeaveErrnoAlone) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> unit(0, 1), decimal(-300, 20);
    for (int i = 0; i < 6000; ++i) {
        const double a = AnyParameter(random), b = AnyParameter(random);
        const double x = i % 3 == 0 ? std::pow(10, decimal(random)) : a * std::pow(10, 4 * unit(random) - 2);
        const double z = i % 2 == 0 ? unit(random) : std::fmin(std::pow(10, decimal(random)), 1);
        const TailFlag tail = i & 1;
        for (double value :
             {GammaRegularized(a, x), GammaRegularizedC(a, x), GammaCDF(x, a, b, tail), ChiSquaredCDF(x, a, tail),
              ChiSquaredPDF(x, a), GammaPDF(x, a, b), BetaCDF(z, a, b, tail), FisherFCDF(x, a, b, tail),
              FisherFPDF(x, a, b), StudentTCDF(x, a, tail), StudentTPDF(x, a), BetaRegularized(a, b, z),
              BetaRegularizedC(a, b, z)}) {
            EXPECT_FALSE(std::isnan(value)) << a << " " << b << " " << x << " " << z;
        }
        for (TailFlag side : {0, 1}) {
            const double value = CallWithErrno(0, [=] { return FisherFCDF(x, a, b, side); }).errnoAfter +
                                 CallWithErrno(0, [=] { return BetaCDF(z, a, b, side); }).errnoAfter +
                                 CallWithErrno(0, [=] { return GammaCDF(x, a, 1, side); }).errnoAfter;
            EXPECT_EQ(value, 0) << a << " " << b << " " << x << " " << z;
        }
    }
}

TEST(Reach, ParametersBelowTheReciprocalsOfDoublesAreAnswered) {
    for (double tiny : {5e-324, 1e-310, 1e-301}) {
        EXPECT_QUIET(BetaRegularized(tiny, 2, 0.3), 1, 0);
        EXPECT_QUIET(BetaRegularized(tiny, tiny, 0.3), 0.5, 1e-15);
        EXPECT_QUIET(BetaRegularizedC(2, tiny, 0.3), 1, 0);
        EXPECT_QUIET(GammaRegularized(tiny, 0.3), 1, 0);
        EXPECT_QUIET(InverseGammaRegularized(tiny, 0.3), 0, 0);
        EXPECT_EQ(CallWithErrno(0, [=] { return StudentTICDF(0.3, tiny, 0); }).errnoAfter, 34);
    }
}

TEST(FisherFPDF, TinyAndHugeDegreesOfFreedomOverflowNoSquare) {
    EXPECT_FALSE(std::isnan(FisherFPDF(1.7605840602419282e-165, 3.6027336480208004e-56, 1.4186105368473327e-275)));
    EXPECT_FALSE(std::isnan(FisherFPDF(1, 1e200, 1e200)));
}

}  // namespace
