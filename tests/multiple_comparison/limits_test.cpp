// The flag, the number of groups, the solver's 24 bits and the largest probability of a quantile.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <typeinfo>

#include "frame/failure.hpp"
#include "multiple_comparison/families.hpp"
#include "support/call.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

TEST(MCTailFlag, OnlyTheLowByteCountsInEveryExport) {
    for (const Family& family : kFamilies) {
        const auto cdf = [&](TailFlag tail) { return family.cumulative(2, 3, 10, kEqualGroups.data(), tail); };
        EXPECT_EQ(cdf(1), 1.0 - cdf(0));
        EXPECT_EQ(cdf(0x100), cdf(0));
        EXPECT_EQ(cdf(0x101), cdf(1));
        EXPECT_EQ(cdf(0x80), cdf(1));
        const auto quantile = [&](double p, TailFlag tail) {
            return family.quantile(p, 3, 10, kEqualGroups.data(), tail);
        };
        EXPECT_EQ(quantile(0.05, 1), quantile(1.0 - 0.05, 0));
        EXPECT_NE(quantile(0.05, 1), quantile(0.05, 0));
        EXPECT_EQ(quantile(0.05, 0x100), quantile(0.05, 0));
        EXPECT_EQ(quantile(0.05, 0x101), quantile(0.05, 1));
        EXPECT_EQ(quantile(0.05, 0x80), quantile(0.05, 1));
    }
}

// The quantiles of chi-squared between which the scale is integrated underflow to the same 0, and nothing is left of
// the probability, which falls with the degrees of freedom.
TEST(MCDegreesOfFreedom, SoFewThatTheScaleUnderflowsGiveZero) {
    for (const Family& family : kFamilies)
        for (double df : {1.2e-10, 9.2819e-11, 1e-20, 1e-150, 2.5305757053317337e-303, 5e-324})
            for (double x : {-1.0, 0.0, 1.0, 1e200, kInfinity})
                for (std::int32_t k : {1, 2, 3})
                    EXPECT_EQ(family.cumulative(x, k, df, kEqualGroups.data(), 0), 0) << df << ' ' << x << ' ' << k;
}

TEST(MCDegreesOfFreedom, AQuantileOfTheFewestIsBeyondTheLargestDouble) {
    for (const Family& family : kFamilies)
        for (std::int32_t k : {2, 7})
            EXPECT_NE(ThrownText<std::overflow_error>([&] {
                          family.quantile(0.7, k, 5e-324, kEqualGroups.data(), 0);
                      }).find("Overflow Error"),
                      std::string::npos);
}

// The number of groups.

TEST(MCGroups, ANegativeNumberThrowsBadAlloc) {
    for (const Family& family : kFamilies)
        for (Export function : {family.cumulative, family.quantile})
            for (std::int32_t k : {-1, -2147483647 - 1}) {
                const std::type_info* type = nullptr;
                try {
                    function(0.9, k, 10, kEqualGroups.data(), 0);
                } catch (const std::bad_alloc& error) {
                    type = &typeid(error);
                }
                ASSERT_NE(type, nullptr) << k;
                EXPECT_TRUE(*type == typeid(std::bad_alloc)) << "the class itself, none derived from it";
            }
}

TEST(MCGroups, NoGroupsAreAnEmptyProductOrHaveNoCoefficient) {
    EXPECT_NEAR(MCbCDF(1, 0, kInfinity, nullptr, 0), 1, 1e-14);
    EXPECT_NEAR(MCcCDF(1, 0, kInfinity, nullptr, 0), 1, 1e-14);
    EXPECT_NE(ThrownText<std::domain_error>([] { MCaCDF(1, 0, 10, nullptr, 0); }).find("Random variate x is "),
              std::string::npos);
}

TEST(MCGroups, AQuantileOfFewerThanTwoThrows) {
    for (const Family& family : kFamilies)
        for (std::int32_t k : {0, 1})
            EXPECT_NE(ThrownText<std::domain_error>([&] {
                          family.quantile(0.9, k, 10, &kEqual, 0);
                      }).find("Probability argument is "),
                      std::string::npos)
                << k;
}

// Points at which one bit fewer, or one bit more, ends the solver at another bracket.
struct BitPoint {
    int family;
    std::int32_t k;
    double p;
    double df;
    unsigned otherBits;
};
constexpr BitPoint kBitPoints[] = {{0, 4, 0.3085, 9, 23}, {0, 4, 0.3221, 17, 25}, {1, 4, 0.3085, 9, 23},
                                   {1, 4, 0.3085, 9, 25}, {2, 3, 0.3068, 8, 23},  {2, 3, 0.3272, 20, 25}};

TEST(MCQuantile, IsTheSolversMidpointAtExactly24Bits) {
    for (const BitPoint& point : kBitPoints) {
        const Family& family = kFamilies[point.family];
        const double x = family.quantile(point.p, point.k, point.df, kEqualGroups.data(), 0);
        EXPECT_EQ(x, plain::Quantile(family.statistic, point.p, point.k, point.df, kEqualGroups.data(), 24))
            << point.family << " " << point.p;
        EXPECT_NE(x,
                  plain::Quantile(family.statistic, point.p, point.k, point.df, kEqualGroups.data(), point.otherBits))
            << point.family << " " << point.p;
    }
}

// The largest probability. `safe`: every upper tail from there on has a quantile. `lost`: an upper tail
// below that has none. The manual states the values of `safe`.
struct Limit {
    double df;
    std::int32_t k;
    double safe;
    Export quantile;
    double lost;
};
constexpr Limit kLimits[] = {
    {1, 3, 1.5e-3, MCcICDF, 1.2e-3},  {1, 10, 1.5e-3, MCaICDF, 6e-4},   {1, 20, 1.5e-3, MCbICDF, 3.5e-4},
    {1.5, 3, 5e-4, MCcICDF, 3e-5},    {2, 3, 5e-5, MCcICDF, 1e-6},      {2, 20, 5e-5, MCaICDF, 5e-7},
    {3, 3, 1e-5, MCcICDF, 2.5e-7},    {10, 3, 1e-5, MCcICDF, 1.6e-6},   {10, 20, 1e-5, MCaICDF, 1e-6},
    {50, 3, 3e-5, MCcICDF, 1e-5},     {999, 3, 3e-5, MCcICDF, 2e-5},    {999, 20, 3e-5, MCaICDF, 2e-5},
    {50, 50, 1.5e-3, MCaICDF, 2e-4},  {999, 60, 1.5e-3, MCaICDF, 1e-3}, {1e6, 20, 3e-5, MCaICDF, 2e-5},
    {1e6, 60, 1.5e-3, MCaICDF, 1e-3},
};

TEST(MCQuantile, LargestProbabilityByDegreesOfFreedomAndGroups) {
    for (const Limit& limit : kLimits) {
        for (const Family& family : kFamilies)
            for (double alpha = limit.safe; alpha < 0.5; alpha *= 2.3)
                EXPECT_NO_THROW(family.quantile(1 - alpha, limit.k, limit.df, kEqualGroups.data(), 0))
                    << limit.df << " " << limit.k << " " << alpha;
        EXPECT_NE(ThrownText<std::domain_error>([&] {
                      limit.quantile(1 - limit.lost, limit.k, limit.df, kEqualGroups.data(), 0);
                  }).find("Parameters a and b do not bracket the root: a="),
                  std::string::npos)
            << limit.df << " " << limit.k;
    }
}

TEST(MCQuantile, WithAKnownScaleOneAndTwoSidedComparisonsReachTheSmallestTails) {
    for (double alpha = 1e-8; alpha < 0.5; alpha *= 3)
        for (std::int32_t k : {3, 10, 100}) {
            EXPECT_NO_THROW(MCbICDF(1 - alpha, k, 1000, kEqualGroups.data(), 0)) << k << " " << alpha;
            EXPECT_NO_THROW(MCcICDF(1 - alpha, k, 1e6, kEqualGroups.data(), 0)) << k << " " << alpha;
        }
}

}  // namespace
