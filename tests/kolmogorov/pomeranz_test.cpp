// The points and the recursion of Pomeranz.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/log_factorial.hpp"
#include "kolmogorov/pomeranz.hpp"

namespace {

using namespace orvanth::kolmogorov;

constexpr unsigned kSeed = 20240119;

struct Limits {
    std::vector<double> A, floors, ceilings;
    Limits(std::int32_t n, double t) : A(static_cast<std::size_t>(2 * n + 3)), floors(A.size()), ceilings(A.size()) {
        CalcFloorCeil(n, t, A.data(), floors.data(), ceilings.data());
    }
};

TEST(CalcFloorCeil, AreFloorAndCeilingOfThePoints) {
    const std::int32_t n = 12;
    for (double t : {0.6, 0.75, 1.7, 0.3, 2.25, 5.01}) {
        const Limits limits(n, t);
        for (std::size_t i = 2; i < limits.A.size() - 1; ++i) {
            // Every other point is itself t apart from a whole number, and rounding hides it.
            const double down = limits.A[i] - t, up = limits.A[i] + t;
            if (std::fabs(down - std::round(down)) > 1e-9) {
                EXPECT_EQ(limits.floors[i], std::floor(down)) << t << " " << i;
            }
            if (std::fabs(up - std::round(up)) > 1e-9) {
                EXPECT_EQ(limits.ceilings[i], std::ceil(up)) << t << " " << i;
            }
        }
        EXPECT_EQ(limits.A.back(), n);
    }
}

TEST(CalcFloorCeil, WholeTTakesTheThirdCase) {
    const Limits limits(10, 3.0);
    EXPECT_EQ(limits.A[2], 0.0);
    EXPECT_EQ(limits.A[3], 1.0);
    EXPECT_EQ(limits.floors[4], 2 - 3 - 1);
    EXPECT_EQ(limits.floors[5], 2 - 3);
    EXPECT_EQ(limits.ceilings[4], 2 + 3 - 1);
    EXPECT_EQ(limits.ceilings[5], 2 + 3);
}

TEST(CalcFloorCeil, AHalfTakesTheSecondCase) {
    const Limits limits(10, 3.5);
    EXPECT_EQ(limits.A[2], 0.5);
    EXPECT_EQ(limits.A[3], 0.5);
    EXPECT_EQ(limits.floors[4], 2 - 3 - 1);
    EXPECT_EQ(limits.ceilings[1], 4);
}

// The recursion as written down, one sum after the other. A row is scaled when an element of it is below scaleBelow.
double PlainPomeranz(std::int32_t n, double x, double scaleBelow = 1e-280, double stepTolerance = 1e-15) {
    const double scale = std::ldexp(1.0, 350), t = n * x;
    const std::size_t width = static_cast<std::size_t>(n) + 2;
    const Limits limits(n, t);
    const auto& A = limits.A;
    std::vector<std::vector<double>> V(2, std::vector<double>(width)), H(4, std::vector<double>(width));
    const double q[3] = {(2.0 * A[2]) / n, (1.0 - 2.0 * A[2]) / n, A[2] / n};
    for (std::size_t r = 0; r < 4; ++r) {
        H[r][0] = 1.0;
        for (std::size_t j = 1; j < width && r < 3; ++j) H[r][j] = (H[r][j - 1] * q[r]) / static_cast<double>(j);
    }
    V[1][1] = scale;
    std::size_t r1 = 0, r2 = 1;
    std::int32_t count = 1;
    for (std::size_t i = 2; i < A.size(); ++i) {
        const std::int32_t jlow = std::max(static_cast<std::int32_t>(2 + limits.floors[i]), 1);
        const std::int32_t jup = std::min(static_cast<std::int32_t>(limits.ceilings[i]), n + 1);
        const std::int32_t klow = std::max(static_cast<std::int32_t>(2 + limits.floors[i - 1]), 1);
        const std::int32_t kup0 = static_cast<std::int32_t>(limits.ceilings[i - 1]);
        const double w = (A[i] - A[i - 1]) / n;
        std::size_t s = 0;
        while (!(std::fabs(w - H[s][1]) <= stepTolerance)) ++s;
        r1 = 1 - r1;
        r2 = 1 - r2;
        double smallest = scale;
        for (std::int32_t j = jlow; j <= jup; ++j) {
            double sum = 0;
            for (std::int32_t k = std::min(kup0, j); k >= klow; --k)
                sum += V[r1][static_cast<std::size_t>(k)] * H[s][static_cast<std::size_t>(j - k)];
            V[r2][static_cast<std::size_t>(j)] = sum;
            smallest = std::min(smallest, sum);
        }
        if (smallest < scaleBelow) {
            for (std::int32_t j = jlow; j <= jup; ++j) V[r2][static_cast<std::size_t>(j)] *= scale;
            ++count;
        }
    }
    const double w = std::log(V[r2][width - 1]) + (LogFactorial(n) - (count * 350) * 0.6931471805599453);
    return w >= 0 ? 1.0 : std::exp(w);
}

TEST(Pomeranz, HasTheBitsOfThePlainRecursion) {
    std::mt19937_64 random(kSeed);
    for (int trial = 0; trial < 300; ++trial) {
        const std::int32_t n = std::uniform_int_distribution<std::int32_t>(2, 140)(random);
        double x = std::sqrt(std::uniform_real_distribution<double>(0.76, 3.99)(random) / n);
        if (trial % 3 == 0) x = std::round(n * x) / n;          // n x whole
        if (trial % 3 == 1) x = (std::floor(n * x) + 0.5) / n;  // n x a half
        if (x * n < 1 || x >= 1) continue;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Pomeranz(n, x)), std::bit_cast<std::uint64_t>(PlainPomeranz(n, x)))
            << "seed " << kSeed << " n " << n << " x " << x;
    }
}

TEST(Pomeranz, ARowIsScaledWhenAnElementFallsBelowTenToTheMinus280) {
    // Whether the last row is scaled shows in the rounding of the final logarithm. For n about 200 its only element
    // lies near the limit: between 1e-280 and 1e-279 in the first case, between 1e-281 and 1e-280 in the second.
    EXPECT_EQ(Pomeranz(199, 0.125), PlainPomeranz(199, 0.125));
    EXPECT_NE(Pomeranz(199, 0.125), PlainPomeranz(199, 0.125, 1e-279));
    EXPECT_EQ(Pomeranz(202, 0.0614), PlainPomeranz(202, 0.0614));
    EXPECT_NE(Pomeranz(202, 0.0614), PlainPomeranz(202, 0.0614, 1e-281));
}

TEST(Pomeranz, StepsAreToldApartByTenToTheMinus15) {
    // n x is a little above 15, so three of the four steps differ by about 1e-15 to 1e-14.
    for (const auto& [n, x] : {std::pair{20, 0.75000000000000244}, {60, 0.250000000000001}}) {
        EXPECT_EQ(Pomeranz(n, x), PlainPomeranz(n, x)) << n;
        EXPECT_NE(Pomeranz(n, x), PlainPomeranz(n, x, 1e-280, 1e-14)) << n;
    }
}

TEST(Pomeranz, ALogarithmAtOrAboveZeroGivesExactlyOne) {
    int ones = 0;
    for (std::int32_t n = 10; n <= 60; ++n) {
        const double p = Pomeranz(n, 0.95);
        EXPECT_LE(p, 1.0) << n;
        EXPECT_NEAR(p, 1.0, 1e-12) << n;
        ones += p == 1.0;
    }
    EXPECT_GT(ones, 5);
}

TEST(Pomeranz, AgreesWithTheMatrix) {
    for (std::int32_t n : {5, 20, 60, 140})
        for (double w : {0.6, 0.754693, 1.0}) {
            const double x = std::sqrt(w / n);
            EXPECT_NEAR(Pomeranz(n, x), DurbinMatrix(n, x), 1e-12) << n << " " << w;
        }
}

}  // namespace
