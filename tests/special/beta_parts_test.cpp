// The parts of the incomplete beta function that are calculated here have the bits of Boost.Math's own.
#include "special/beta_parts.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include "frame/boost_detail.hpp"
#include "frame/policies.hpp"

namespace {

using namespace orvanth;

class Sample {
public:
    double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    double Between(double low, double high) { return low * std::exp(Uniform() * std::log(high / low)); }

    // Small, middle and large parameters, some of them whole or half of a whole number.
    double Parameter() {
        const double kind = Uniform();
        const double a = kind < 0.5 ? Between(0.05, 60) : kind < 0.9 ? Between(1, 3000) : Between(1e-3, 1e6);
        const double part = Uniform();
        return part < 0.7 || a < 1 ? a : std::floor(a) + (part < 0.85 ? 0.5 : 0);
    }
    // Half of the points lie around the mean.
    double Point(double a, double b) {
        const double mean = a / (a + b), deviation = std::sqrt(mean * (1 - mean) / (a + b + 1));
        const double near = mean + 10 * deviation * (Uniform() - 0.5);
        if (Uniform() < 0.5 && near > 0 && near < 1) return near;
        return Uniform() < 0.9 ? Uniform() : Between(1e-300, 1);
    }

private:
    std::mt19937_64 engine_{20261121};
};

bool HasSameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

// Boost.Math called with InnerPolicy takes the parts made here, with DefaultPolicy it takes its own.
TEST(BetaParts, TheIncompleteBetaFunctionKeepsEveryBit) {
    Sample sample;
    Silent silent;
    int different = 0;
    for (int i = 0; i < 200000; ++i) {
        const double a = sample.Parameter(), b = i % 5 == 0 ? 0.5 : sample.Parameter(), x = sample.Point(a, b);
        double derivative = 0, ownDerivative = 0;
        const bool wantsDerivative = i % 3 == 0, upper = i % 2 == 0;
        using boost::math::detail::ibeta_imp;
        const double made = ibeta_imp(a, b, x, InnerPolicy(), upper, true, wantsDerivative ? &derivative : nullptr);
        const double own =
            ibeta_imp(a, b, x, DefaultPolicy(), upper, true, wantsDerivative ? &ownDerivative : nullptr);
        if (HasSameBits(made, own) && HasSameBits(derivative, ownDerivative)) continue;
        if (++different <= 5)
            ADD_FAILURE() << std::hexfloat << a << " " << b << " " << x << ": " << made << " " << own;
    }
    EXPECT_EQ(different, 0);
}

TEST(BetaParts, EachHasItsRange) {
    EXPECT_TRUE(FastBetaPowerTerms(3, 5, 0.9, 0.1, 1));
    EXPECT_TRUE(FastBetaPowerTerms(30, 50, 0.375, 0.625, 1));
    EXPECT_FALSE(FastBetaPowerTerms(100, 2, 0.8, 0.2, 1));  // one power is near 1, the other far from it
    EXPECT_FALSE(FastBetaPowerTerms(1e5, 2, 0.1, 0.9, 1));  // 0.1^100000
    EXPECT_TRUE(FastBetaSeriesFactor(3, 0.5, 0.2));
    EXPECT_FALSE(FastBetaSeriesFactor(500, 0.5, 1e-3));
    EXPECT_FALSE(FastBetaSeriesFactor(1, 0.5, 0));
    EXPECT_TRUE(UpperGammaFromPrefix(0.7, 3, GammaPrefix(0.7, 3)));
    EXPECT_FALSE(UpperGammaFromPrefix(0.5, 3, GammaPrefix(0.5, 3)));  // by erfc
    EXPECT_FALSE(UpperGammaFromPrefix(0.7, 1, GammaPrefix(0.7, 1)));  // by a series
}

TEST(BetaParts, UpperGammaKeepsEveryBit) {
    Sample sample;
    for (int i = 0; i < 20000; ++i) {
        const double a = sample.Between(0.01, 40), x = sample.Between(0.5, 2000);
        const auto made = UpperGammaFromPrefix(a, x, GammaPrefix(a, x));
        const double own = boost::math::gamma_q(a, x, DefaultPolicy());
        EXPECT_TRUE(!made || HasSameBits(*made, own)) << a << " " << x;
    }
}

TEST(BetaParts, TheSeriesStopsAfterTheTermsAllowed) {
    const BetaSum whole = SumBetaSeries(2.5, 0.5, 0.3, 1, 0, 1000);
    EXPECT_TRUE(whole.ended);
    for (std::uintmax_t most : {1u, 2u, 3u, 4u}) {
        const BetaSum cut = SumBetaSeries(2.5, 0.5, 0.3, 1, 0, most);
        EXPECT_FALSE(cut.ended) << most;
        EXPECT_LT(cut.value, whole.value) << most;
    }
    double expected = 0, coefficient = 1;
    for (int n = 0; n < 3; ++n) {
        expected += coefficient / (2.5 + n);
        coefficient *= (0.5 + n) * 0.3 / (n + 1);
    }
    EXPECT_EQ(SumBetaSeries(2.5, 0.5, 0.3, 1, 0, 3).value, expected);
}

}  // namespace
