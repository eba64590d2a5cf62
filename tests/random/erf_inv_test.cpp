// The inverse error function of the table, its numeric mode and its callback.
#include <algorithm>
#include <bit>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <random>
#include <thread>

#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "random/erf_inv.hpp"
#include "random/numeric_mode.hpp"
#include "random/transforms.hpp"
#include "streams.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;
using Wide = boost::multiprecision::cpp_bin_float_50;

// erfinv(x) by Newton's method in 50 digits.
Wide ExactErfInv(double x) {
    Wide y = InverseErf(x);
    for (int i = 0; i < 4; ++i) y -= (erf(y) - Wide(x)) * sqrt(boost::math::constants::pi<Wide>()) / 2 * exp(y * y);
    return y;
}

double UlpError(double got, const Wide& want) {
    const double nearest = std::fabs(static_cast<double>(want));
    const double ulp = std::nextafter(nearest, 10) - nearest;
    return static_cast<double>(abs(Wide(got) - want) / Wide(ulp));
}

double ErfInv(double x) {
    double y = 0;
    vdErfInv(1, &x, &y);
    return y;
}
TEST(VdErfInv, IsAccurateOnEveryIntervalAndAtItsBorders) {
    double worst = 0;
    for (std::int32_t k = 0; k < kErfInvRows; ++k) {
        const std::uint64_t low = (static_cast<std::uint64_t>(0xFFB - k)) << 50,
                            high = low + (std::uint64_t{1} << 50) - 1;
        for (std::uint64_t bits : {low, low + 1, (low + high) / 2, low + (high - low) / 3, high - 1, high}) {
            const double w = std::bit_cast<double>(bits), x = 1.0 - w;
            if (x <= 0 || x >= 1) continue;
            worst = std::max(worst, UlpError(ErfInv(x), ExactErfInv(x)));
            EXPECT_EQ(ErfInv(-x), -ErfInv(x));
        }
    }
    std::printf("  worst error over the intervals %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(VdErfInv, IsAccurateOnADenseSubsetOfTheGrid) {
    double worst = 0;
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const std::uint32_t y = i * 1073741u + i;
        const double u = y * std::ldexp(1, -31) - 1.0;
        if (u == 0 || u == -1) continue;
        worst = std::max(worst, UlpError(ErfInv(u), ExactErfInv(u)));
    }
    std::printf("  worst error over 4000 points of the grid %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(VdErfInv, TheLargestDoubleBelowOneComesFromTheLastRow) {
    EXPECT_EQ(ErfInv(std::nextafter(1.0, 0.0)), 5.8635847487551676);
    EXPECT_EQ(ErfInv(std::nextafter(-1.0, 0.0)), -5.8635847487551676);
}

TEST(VdErfInv, HeadsAndSlopesOfTheTable) {
    EXPECT_EQ(ErfInvCoefficientTable[0][15], 0.8871351778507233);
    EXPECT_EQ(ErfInvCoefficientTable[0][16], -0.014563386095687747);
    EXPECT_EQ(ErfInvCoefficientTable[120][15], 4.335293412208557);
    EXPECT_EQ(ErfInvCoefficientTable[120][16], -0.05999011639505625);
}

TEST(VdErfInv, SpecialCases) {
    EXPECT_TRUE(std::isnan(ErfInv(kNaN)));
    EXPECT_TRUE(std::isnan(ErfInv(kInfinity)));
    EXPECT_TRUE(std::isnan(ErfInv(1.5)));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ErfInv(-0.0)), std::bit_cast<std::uint64_t>(-0.0));
    EXPECT_EQ(ErfInv(1.0), kInfinity);
    EXPECT_EQ(ErfInv(-1.0), -kInfinity);
    for (double x : {1e-11, -2.9e-11, 1e-300, 5e-324})
        EXPECT_LE(UlpError(ErfInv(x), Wide(x) * sqrt(boost::math::constants::pi<Wide>()) / 2), 1) << x;
}

// Eight at a time, collected, or one by one; in place or not; wherever the special cases stand.
TEST(VdErfInv, HasTheBitsOfThePortableRoadAtEveryLengthAndPlace) {
    std::mt19937_64 engine(20261121);
    const double odd[] = {0.0, -0.0, 1.0, -1.0, 1.5, kNaN, kInfinity, 1e-300, 1e-16, 0.9375, 1 - 0x1p-8, 1 - 0x1p-53};
    for (std::int32_t n = 0; n < 2100; n += n < 40 ? 1 : 97) {
        std::vector<double> x(static_cast<std::size_t>(n));
        for (double& value : x) {
            const std::uint64_t word = engine();
            value = static_cast<double>(static_cast<std::int64_t>(word)) * 0x1p-63;
            if (word % 5 == 0)
                value = std::copysign(1 - std::ldexp(1 - std::fabs(value), -static_cast<int>(word % 53)), value);
            if (word % 37 == 0) value = odd[(word >> 32) % std::size(odd)];
        }
        std::vector<double> portable(x.size()), inOrder(x.size()), inPlace = x;
        ErfInvPortable(n, x.data(), portable.data());
        vdErfInv(n, x.data(), inOrder.data());
        vdErfInv(n, inPlace.data(), inPlace.data());
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(inOrder[i]), std::bit_cast<std::uint64_t>(portable[i]))
                << n << " " << i << " " << x[i];
            EXPECT_EQ(std::bit_cast<std::uint64_t>(inPlace[i]), std::bit_cast<std::uint64_t>(portable[i]))
                << n << " " << i << " " << x[i];
        }
    }
}

TEST(VdErfInv, TheCallbackLearnsCodeAndIndexAndItsResultIsStored) {
    const NumericErrorCallback old = SetNumericErrorCallback(NoteError);
    double values[300] = {};
    values[290] = -1.0;
    vdErfInv(300, values, values);
    EXPECT_EQ(values[290], 42);
    EXPECT_EQ(lastCode, kSingularity);
    EXPECT_EQ(lastIndex, 290);
    values[3] = 7;
    vdErfInv(5, values, values);
    EXPECT_EQ(lastCode, kDomainError);
    EXPECT_EQ(SetNumericErrorCallback(old), NoteError);
}

TEST(NumericModeWord, FieldsChangeOnlyWhereTheNewWordHasBits) {
    const std::uint32_t old = SetNumericMode(0x140000);
    EXPECT_EQ(NumericMode() & kFloatingPointField, 0x140000u);
    EXPECT_EQ(NumericMode() & ~kFloatingPointField, old & ~kFloatingPointField);
    SetNumericMode(old);
    std::thread([] { EXPECT_EQ(NumericMode(), 6658u); }).join();
}

TEST(ErfInvBoundary, RowsOfTheCallback) {
    const auto after = [](std::int32_t code, double argument, double result) {
        NumericError error{code, 0, argument, 0, result, 1.5, ""};
        EXPECT_EQ(ErfInvBoundaryCallback(&error), 0);
        return error.result1;
    };
    EXPECT_EQ(after(2, 0, 1), -744.4400719213812);
    EXPECT_EQ(after(2, -1, 1), -5.8635847487551676);
    EXPECT_EQ(after(2, 1, 1), 5.8635847487551676);
    EXPECT_EQ(after(1, 3, -1), -5.8635847487551676);
    EXPECT_EQ(after(1, 3, 1), 5.8635847487551676);
    EXPECT_EQ(after(3, 3, 1.25), 1.25);
}

}  // namespace
