// Densities for parameters at the ends of the range of doubles, where a step of the general formula leaves the range
// and the density does not. The expected values were made with 400 digits.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "frame/failure.hpp"
#include "orvanth/distributions.h"
#include "orvanth/special.h"
#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;

constexpr double kSubnormalDf = 1e-308;

// A value without a mark, to a relative tolerance of 16 epsilons, or half the smallest double.
template <class Function>
void ExpectUnmarked(double expected, Function function, double tolerance = 16 * 0x1p-52) {
    const auto call = CallWithErrno(7, function);
    EXPECT_NEAR(call.value, expected, tolerance * expected + 5e-324) << "expected " << expected;
    EXPECT_EQ(call.errnoAfter, 7);
}

TEST(DensityExtremes, GammaOfAHugeShapeOrVariate) {
    ExpectUnmarked(0, [] { return GammaDerivative(1e308, 5361.8663397224191); });
    ExpectUnmarked(0, [] { return GammaDerivative(1e308, 1e307); });
    ExpectUnmarked(3.9894228040143268e-155, [] { return GammaDerivative(1e308, 1e308); });
    ExpectUnmarked(0, [] { return GammaDerivative(0.3, kInfinity); });
    ExpectUnmarked(0, [] { return GammaDerivative(kInfinity, 30); });
    EXPECT_TRUE(std::isnan(GammaDerivative(kInfinity, kInfinity)));
    ExpectUnmarked(0, [] { return ChiSquaredPDF(1788.5027593939069, kLargest); });
    ExpectUnmarked(0, [] { return GammaPDF(1e100, 4.3e25, 2.2250738585072014e-308); });
    ExpectUnmarked(0, [] { return GammaPDF(23, 0.0032242021723508461, 1.1125369292536007e-308); });
}

TEST(DensityExtremes, GammaBeyondTheLargestDoubleIsMarked) {
    const auto call = CallWithErrno(7, [] { return GammaPDF(5e-324, 0.025185886335678222, 3.0701708656531826e-10); });
    EXPECT_EQ(call.value, kInfinity);
    EXPECT_EQ(call.errnoAfter, 34);
}

TEST(DensityExtremes, BetaOfTinyParameters) {
    ExpectUnmarked(8.3388506328150482e-315,
                   [] { return BetaPDF(0.9999999994075135, 1.1438006329258989e-310, 5e-324); });
    ExpectUnmarked(2.25e-310, [] { return BetaPDF(0.25, 1e-310, 3); });
    ExpectUnmarked(2.25e-310, [] { return BetaPDF(0.75, 3, 1e-310); });
    ExpectUnmarked(0,
                   [] { return FisherFPDF(4.9406564584124654e-324, 428.36390903313747, 3.2986677085838944e-307); });
    EXPECT_GT(FisherFPDF(4.9406564584124654e-324, 0.71501137319026897, 1.4821969375237396e-323), 0);
}

// The product of the parameters underflows, or its reciprocal overflows. 1/B(a, b) is a b / (a + b) to all digits.
TEST(DensityExtremes, BetaOfTwoSmallParameters) {
    for (double a : {1e-307, 1.5e-300, 1e-298, 1e-250, 1e-160, 1e-100, 1e-40})
        for (double b : {1e-307, 1.5e-300, 1e-201, 1e-152, 1e-100, 1e-40, 1e-19}) {
            const double scale = std::fmin(a, b) / (1 + std::fmin(a, b) / std::fmax(a, b));
            ExpectUnmarked(scale / (0.25 * 0.75), [=] { return BetaDerivative(a, b, 0.25); });
            ExpectUnmarked(scale / (0.25 * 0.75), [=] { return BetaPDF(0.75, a, b); });
        }
    ExpectUnmarked(
        1e19, [] { return BetaDerivative(1e-290, 2e-20, 1e-309); }, 1e-13);
    ExpectUnmarked(
        1e8, [] { return BetaDerivative(1e-301, 0.5, 1e-309); }, 1e-13);
    ExpectUnmarked(5e-201 / 0.75, [] { return FisherFPDF(0.75, 1e-200, 1e-120); });
    ExpectUnmarked(5e-308 / 0.75, [] { return FisherFPDF(0.75, 1e-307, 1e-100); });
}

// Boost.Math's power terms have an error of about the parameters times epsilon, and from 1e16 on a factor of 251.
TEST(DensityExtremes, BetaOfTwoLargeParameters) {
    struct Case {
        double a, b, x, density;
    };
    for (const Case& c :
         {Case{1e8, 1e8, 0.5, 11283.791656850386}, Case{1e16, 1e16, 0.5, 112837916.70955126},
          Case{1e100, 1e100, 0.5, 1.1283791670955126e50}, Case{1e306, 1e306, 0.5, 1.1283791670955126e153}})
        ExpectUnmarked(c.density, [=] { return BetaDerivative(c.a, c.b, c.x); });
    ExpectUnmarked(0, [] { return BetaDerivative(1e100, 1e100, 0.25); });
    ExpectUnmarked(0, [] { return BetaDerivative(1e305, 1e307, 0.25); });
}

// Beside the mean the distance from it has few digits left.
TEST(DensityExtremes, BetaOfTwoLargeParametersBesideTheMean) {
    struct Case {
        double a, b, x, density;
    };
    for (const Case& c :
         {Case{1e8, 1e8, 0.50003, 7872.4343305465755}, Case{2e10, 1e11, 0.16666, 0.0017003913604425744},
          Case{1e12, 3e12, 0.25000002, 1834790.2032149219}, Case{1e18, 3e18, 0.25, 1842635463.8471226},
          Case{1e20, 1e22, 0.00990099009901, 404941348057.58718}}) {
        ExpectUnmarked(
            c.density, [=] { return BetaDerivative(c.a, c.b, c.x); }, 1e-14);
        ExpectUnmarked(
            c.density, [=] { return BetaPDF(c.x, c.a, c.b); }, 1e-14);
    }
    EXPECT_NEAR(BinomialPDF(3e9, 1e10, 0.3), 8.7056342752407183e-6, 1e-14 * 8.7e-6);
    EXPECT_NEAR(BinomialPDF(3.00001e11, 1e12, 0.3), 8.0494495100300733e-8, 1e-14 * 8e-8);
    EXPECT_NEAR(BinomialPDF(3e14, 1e15, 0.3), 2.7529632787052887e-8, 1e-14 * 2.7e-8);
}

TEST(DensityExtremes, BetaOfOneHugeParameter) {
    ExpectUnmarked(0, [] { return FisherFPDF(1.2053865413755419e-275, kLargest, 344.5); });
    ExpectUnmarked(
        5.233347492988623, [] { return FisherFPDF(1, kLargest, 344.5); }, 1e-14);
    ExpectUnmarked(0, [] { return BetaDerivative(1355, kInfinity, 0.5); });
    ExpectUnmarked(0, [] { return BetaDerivative(kInfinity, 1, 1e-300); });
    EXPECT_TRUE(std::isnan(BetaDerivative(kInfinity, kInfinity, 0.5)));
}

// The square of the distance, or that of the standard deviation, leaves the range.
TEST(DensityExtremes, NormalWhereASquareLeavesTheRange) {
    ExpectUnmarked(2.3629477421719937e203, [] {
        return NormalPDF(-2.2250459821188811e-273, -1.9057427998674239e-288, 1.6883246010118262e-204);
    });
    ExpectUnmarked(0, [] { return NormalPDF(-1.879581785320448e188, 1.1125369292536007e-308, 1e154); });
    ExpectUnmarked(1.7136859204780737e-155, [] { return NormalPDF(1.3e154, 0, 1e154); });
    ExpectUnmarked(1.4390843962876858e-155, [] { return NormalPDF(1.35e154, 0, 9e153); });
    ExpectUnmarked(2.4197072451914335e169, [] { return NormalPDF(1e-170, 0, 1e-170); });
    ExpectUnmarked(4.4318484119380072e157, [] { return NormalPDF(3e-160, 0, 1e-160); });
    ExpectUnmarked(5.3990966513188051e-310, [] { return NormalPDF(1e308, -1e308, 1e308); });
    ExpectUnmarked(3.9894228040143267e299, [] { return NormalPDF(0, 0, 1e-300); });
}

// Also of the other two functions: the distance, or root two times the standard deviation, overflows.
TEST(DensityExtremes, NormalProbabilitiesAndQuantilesOfHugeStandardDeviations) {
    ExpectUnmarked(1000, [] { return NormalICDF(0.5, 1000, kLargest, 0); });
    ExpectUnmarked(1000, [] { return NormalICDF(0.5, 1000, kLargest, 1); });
    ExpectUnmarked(0.5 * kLargest, [] { return NormalICDF(0.69146246127401310, 0, kLargest, 0); });
    ExpectUnmarked(0.69146246127401310, [] { return NormalCDF(0.5 * kLargest, 0, kLargest, 0); });
    ExpectUnmarked(0.30853753872598690, [] { return NormalCDF(0.5 * kLargest, 0, kLargest, 1); });
    ExpectUnmarked(0.97724986805182079, [] { return NormalCDF(1e308, -1e308, 1e308, 0); });
}

TEST(DensityExtremes, NormalBeyondTheLargestDoubleIsMarked) {
    const auto call = CallWithErrno(7, [] { return NormalPDF(0, 0, 1e-310); });
    EXPECT_EQ(call.value, kInfinity);
    EXPECT_EQ(call.errnoAfter, 34);
}

TEST(DensityExtremes, StudentTOfSubnormalDegreesOfFreedom) {
    ExpectUnmarked(1.0146215320013762e-319, [] { return StudentTPDF(0.87168159232325049, 1.7688538252408309e-319); });
    ExpectUnmarked(4.9740617100477626e-310, [] { return StudentTPDF(10.052147101230853, kSubnormalDf); });
    ExpectUnmarked(1.22722056996785e-306, [] { return StudentTPDF(0.0040742472236518874, kSubnormalDf); });
    ExpectUnmarked(5e-155, [] { return StudentTPDF(0, kSubnormalDf); });
    ExpectUnmarked(0, [] { return StudentTPDF(-kInfinity, kSubnormalDf); });
    const auto call = CallWithErrno(7, [] { return StudentTPDF(kNaN, kSubnormalDf); });
    EXPECT_TRUE(std::isnan(call.value));
    EXPECT_EQ(call.errnoAfter, 7);
}

}  // namespace
