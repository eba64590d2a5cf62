// The inverse error function by its table.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <random>

#include "frame/failure.hpp"
#include "orvanth/special.h"
#include "random/erf_inv.hpp"
#include "streams.hpp"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

// erfinv(x) by Newton's method in 50 digits.
Wide ExactErfInv(double x) {
    Wide y = InverseErf(x);
    for (int i = 0; i < 4; ++i) y -= (erf(y) - Wide(x)) * sqrt(Pi()) / 2 * exp(y * y);
    return y;
}

constexpr double kAtOne = 77.0;

double ErfInvOf(double x) {
    double y = 0;
    ErfInv({&x, 1}, &y, kAtOne);
    return y;
}

TEST(ErfInv, IsAccurateOnEveryIntervalAndAtItsBorders) {
    double worst = 0;
    for (std::int32_t k = 0; k < kErfInvRows; ++k) {
        const std::uint64_t low = (static_cast<std::uint64_t>(0xFFB - k)) << 50,
                            high = low + (std::uint64_t{1} << 50) - 1;
        for (std::uint64_t bits : {low, low + 1, (low + high) / 2, low + (high - low) / 3, high - 1, high}) {
            const double w = std::bit_cast<double>(bits), x = 1.0 - w;
            if (x <= 0 || x >= 1) continue;
            worst = std::max(worst, UlpError(ErfInvOf(x), ExactErfInv(x)));
            EXPECT_EQ(ErfInvOf(-x), -ErfInvOf(x));
        }
    }
    std::printf("  worst error over the intervals %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(ErfInv, IsAccurateOnADenseSubsetOfTheGrid) {
    double worst = 0;
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const std::uint32_t y = i * 1073741u + i;
        const double u = y * std::ldexp(1, -31) - 1.0;
        if (u == 0 || u == -1) continue;
        worst = std::max(worst, UlpError(ErfInvOf(u), ExactErfInv(u)));
    }
    std::printf("  worst error over 4000 points of the grid %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(ErfInv, TheLargestDoubleBelowOneComesFromTheLastRow) {
    EXPECT_EQ(ErfInvOf(std::nextafter(1.0, 0.0)), 5.8635847487551676);
    EXPECT_EQ(ErfInvOf(std::nextafter(-1.0, 0.0)), -5.8635847487551676);
}

TEST(ErfInv, HeadsAndSlopesOfTheTable) {
    EXPECT_EQ(ErfInvCoefficientTable[0][15], 0.8871351778507233);
    EXPECT_EQ(ErfInvCoefficientTable[0][16], -0.014563386095687747);
    EXPECT_EQ(ErfInvCoefficientTable[120][15], 4.335293412208557);
    EXPECT_EQ(ErfInvCoefficientTable[120][16], -0.05999011639505625);
}

TEST(ErfInv, TheEndsGetTheGivenValueWithTheirSign) {
    EXPECT_EQ(ErfInvOf(1.0), kAtOne);
    EXPECT_EQ(ErfInvOf(-1.0), -kAtOne);
}

TEST(ErfInv, IsNaNBeyondTheEnds) {
    for (const double x : {kNaN, kInfinity, -kInfinity, 1.5, -1.5, std::nextafter(1.0, 2.0)})
        EXPECT_TRUE(std::isnan(ErfInvOf(x))) << x;
}

TEST(ErfInv, NearZeroItIsTheArgumentTimesHalfTheRootOfPi) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ErfInvOf(0.0)), std::bit_cast<std::uint64_t>(0.0));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ErfInvOf(-0.0)), std::bit_cast<std::uint64_t>(-0.0));
    for (double x : {1e-11, -2.9e-11, 1e-300, 5e-324})
        EXPECT_LE(UlpError(ErfInvOf(x), Wide(x) * sqrt(Pi()) / 2), 1) << x;
}

// In vectors or one by one, in place or not, wherever the special cases stand.
TEST(ErfInv, HasTheBitsOfTheElementwiseFormAtEveryLengthAndPlace) {
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
        std::vector<double> oneByOne(x.size()), inOrder(x.size()), inPlace = x;
        ErfInvOneByOne(x, oneByOne.data(), kAtOne);
        ErfInv(x, inOrder.data(), kAtOne);
        ErfInv(inPlace, inPlace.data(), kAtOne);
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(inOrder[i]), std::bit_cast<std::uint64_t>(oneByOne[i]))
                << n << " " << i << " " << x[i];
            EXPECT_EQ(std::bit_cast<std::uint64_t>(inPlace[i]), std::bit_cast<std::uint64_t>(oneByOne[i]))
                << n << " " << i << " " << x[i];
        }
    }
}

}  // namespace
