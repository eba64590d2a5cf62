#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <boost/math/special_functions/prime.hpp>

#include "distributions/hypergeometric_kernel.hpp"
#include "frame/policies.hpp"
#include "orvanth/distributions.h"
#include "support/call.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ConvertTo;
using orvanth::test::Integer;
using orvanth::test::Rational;
using orvanth::test::ThrownText;

constexpr unsigned kSeed = 20240905;
constexpr double kAboveIntegers = 3e9;

template <class Function>
bool EndsWith(Function function, const std::string& end) {
    const std::string text = ThrownText<std::domain_error>(function);
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

Integer Choose(int n, int k) {
    Integer result = 1;
    for (int i = 0; i < k; ++i) result = result * (n - i) / (i + 1);
    return result;
}

Rational ExactRatio(int x, int r, int n, int N) {
    return ConvertTo<Rational>(Choose(r, x) * Choose(N - r, n - x)) / ConvertTo<Rational>(Choose(N, n));
}

double ExactProbability(int x, int r, int n, int N) { return static_cast<double>(ExactRatio(x, r, n, N)); }

TEST(HypergeometricPDF, CountsAreCutOffTowardsZero) {
    EXPECT_EQ(HypergeometricPDF(2, 3.9, 6, 20), HypergeometricPDF(2, 3, 6, 20));
    EXPECT_EQ(HypergeometricPDF(2, 5, 6.7, 20), HypergeometricPDF(2, 5, 6, 20));
    EXPECT_EQ(HypergeometricPDF(2, 5, 6, 20.9), HypergeometricPDF(2, 5, 6, 20));
    EXPECT_EQ(HypergeometricPDF(0, -0.9, 6, 20), 1);
}

// The Lanczos form of this certain event is 1 + 3e-11 and 1 + 4e-11.
TEST(HypergeometricPDF, RoundingDoesNotLeadBeyondOne) {
    for (double N : {123456.0, 200000.0}) {
        EXPECT_EQ(HypergeometricPDF(0, 0, 0, N), 1);
        EXPECT_EQ(HypergeometricCDF(0, 0, 0, N, 0), 1);
    }
}

TEST(HypergeometricPDF, BrokenVariateIsNamedAtTheEndOfTheText) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricPDF(2.5, 5, 6, 20); }),
              "Error in function boost::math::pdf(const hypergeometric_distribution<double>&, const double&): "
              "Random variable out of range: must be an integer but got 2.5");
}

TEST(HypergeometricPDF, NaNAndInfinityAreRoundingErrorsUnderTrunc) {
    EXPECT_THROW(HypergeometricPDF(kNaN, 5, 6, 20), boost::math::rounding_error);
    EXPECT_EQ(ThrownText<boost::math::rounding_error>([] { HypergeometricCDF(-kInfinity, 5, 6, 20, 0); }),
              "Error in function boost::math::trunc<double>(double): Value -inf can not be represented in the "
              "target integer type.");
}

TEST(HypergeometricPDF, VariateBeyondSigned32BitsIsARoundingErrorUnderItrunc) {
    EXPECT_EQ(ThrownText<boost::math::rounding_error>([] {
                  HypergeometricPDF(kAboveIntegers, 5, 6, 20);
              }).rfind("Error in function boost::math::itrunc<int>(int): Value ", 0),
              0U);
    EXPECT_THROW(HypergeometricPDF(2147483648.0, 5, 6, 20), boost::math::rounding_error);
    EXPECT_THROW(HypergeometricPDF(2147483647.5, 5, 6, 20), std::domain_error);
    EXPECT_THROW(HypergeometricPDF(-2147483648.0, 5, 6, 20), std::domain_error);
    EXPECT_THROW(HypergeometricPDF(-2147483649.0, 5, 6, 20), boost::math::rounding_error);
}

TEST(HypergeometricCDF, MinusOneIsComplainedOfAsBroken) {
    EXPECT_TRUE(EndsWith([] { HypergeometricCDF(-1, 5, 6, 20, 0); },
                         "Random variable out of range: must be an integer but got -1"));
}

TEST(HypergeometricCDF, OutsideTheSupportThrowsAndTheEndsAreAnswered) {
    EXPECT_TRUE(EndsWith([] { HypergeometricCDF(6, 5, 6, 20, 0); }, "must be less than both n and r but got 6"));
    EXPECT_TRUE(EndsWith([] { HypergeometricCDF(1, 15, 8, 20, 0); }, "must be > 0 and > m + r - N but got 1"));
    EXPECT_EQ(HypergeometricCDF(5, 5, 6, 20, 0), 1);
    EXPECT_EQ(HypergeometricCDF(5, 5, 6, 20, 1), 0);
    EXPECT_DOUBLE_EQ(HypergeometricCDF(3, 15, 8, 20, 0), ExactProbability(3, 15, 8, 20));
}

TEST(HypergeometricCDF, OnlyTheLowByteOfTheFlagCounts) {
    EXPECT_EQ(HypergeometricCDF(2, 5, 6, 20, 0x100), HypergeometricCDF(2, 5, 6, 20, 0));
    EXPECT_EQ(HypergeometricCDF(2, 5, 6, 20, 0x101), HypergeometricCDF(2, 5, 6, 20, 1));
}

TEST(HypergeometricICDF, TooManyMarkedIsTheConstructorsComplaint) {
    constexpr const char* text =
        "Error in function boost::math::hypergeometric_distribution<double>::hypergeometric_distribution: "
        "Parameter r out of range: must be <= N but got 21";
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricICDF(2, 21.5, 30, 20, 0); }), text);
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricPDF(kNaN, 21.5, 30, 20); }), text);
    EXPECT_TRUE(
        EndsWith([] { HypergeometricICDF(2, 5, 30, 20, 0); }, "Parameter n out of range: must be <= N but got 30"));
}

TEST(HypergeometricICDF, TheTailsNameABadProbabilityUnderTheirOwnTemplates) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricICDF(1.5, 5, 6, 20, 0); }),
              "Error in function boost::math::quantile(const hypergeometric_distribution<double>&, double): "
              "Probability argument is 1.5, but must be >= 0 and <= 1 !");
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricICDF(kNaN, 5, 6, 20, 1); }),
              "Error in function quantile(const complemented2_type<hypergeometric_distribution<double>, double>&): "
              "Probability argument is nan, but must be >= 0 and <= 1 !");
}

TEST(HypergeometricICDF, ZeroAndOneGiveTheEndsOfTheSupport) {
    EXPECT_EQ(HypergeometricICDF(0, 15, 8, 20, 0), 3);
    EXPECT_EQ(HypergeometricICDF(1, 15, 8, 20, 0), 8);
    EXPECT_EQ(HypergeometricICDF(0, 15, 8, 20, 1), 8);
    EXPECT_EQ(HypergeometricICDF(1, 15, 8, 20, 1), 3);
}

// At p = 1/2 and 15 of 30 marked, sample 1: P(X <= 0) is 1/2. A p above it by less than the slack
// still gives 0; what counts as slack grows by 2 N epsilon above population 104729.
TEST(HypergeometricICDF, SlackIsFiftyEpsilonsUpToThe10000thPrimeAndGrowsWithNAbove) {
    const auto quantile = [](double excess, double N) {
        const double below = HypergeometricCDF(0, 10, 1000, N, 0);
        return HypergeometricICDF(below * (1 + excess), 10, 1000, N, 0);
    };
    constexpr double epsilon = 0x1p-52;
    // The walk starts from the upper end: the lower tail is above one half.
    ASSERT_GT(HypergeometricCDF(0, 10, 1000, 104729, 0), 0.5);
    const auto upper = [](double excess, double N) {
        const double above = HypergeometricCDF(0, 10, 1000, N, 1);
        return HypergeometricICDF(above * (1 - excess), 10, 1000, N, 1);
    };
    // Rounded up: to 1 already while the tail above 0 is within the slack of the target.
    EXPECT_EQ(upper(10 * epsilon, 104729), 1);
    EXPECT_EQ(upper(1000 * epsilon, 104729), 1);
    EXPECT_EQ(upper(-10 * epsilon, 104729), 1);
    EXPECT_EQ(upper(-1000 * epsilon, 104729), 0);
    EXPECT_EQ(upper(-1000 * epsilon, 104730), 1);
    EXPECT_EQ(upper(-150000 * epsilon, 104730), 1);
    EXPECT_EQ(upper(-300000 * epsilon, 104730), 0);
    EXPECT_EQ(quantile(0.01, 104729), 1);
}

TEST(HypergeometricICDF, OnlyTheLowByteOfTheFlagCounts) {
    EXPECT_EQ(HypergeometricICDF(0.3, 5, 6, 20, 0x100), HypergeometricICDF(0.3, 5, 6, 20, 0));
    EXPECT_EQ(HypergeometricICDF(0.3, 5, 6, 20, 0x101), HypergeometricICDF(0.3, 5, 6, 20, 1));
    EXPECT_NE(HypergeometricICDF(0.3, 5, 6, 20, 1), HypergeometricICDF(0.3, 5, 6, 20, 0));
    EXPECT_EQ(ThrownText<std::domain_error>([] { HypergeometricICDF(2, 5, 6, 20, 0x100); }),
              ThrownText<std::domain_error>([] { HypergeometricICDF(2, 5, 6, 20, 0); }));
}

// One marked item in a sample of half the population: P(X <= 0) is 1/2 as a double. A p below it is
// reached by 1/2 and stays at 0 from 50 epsilons on; nearer than that it goes to 1.
TEST(HypergeometricICDF, LowerSlackIsFiftyEpsilonsToTheLastBit) {
    constexpr double halfEpsilon = 0x1p-53;
    for (double N : {2.0, 172.0, 104728.0}) {
        EXPECT_EQ(HypergeometricICDF(0.5 * (1 - 98 * halfEpsilon), 1, N / 2, N, 0), 1) << N;
        EXPECT_EQ(HypergeometricICDF(0.5 * (1 - 99 * halfEpsilon), 1, N / 2, N, 0), 0) << N;
    }
}

// The upper tail above 0 is 1/4. A q above it is met by it up to 50 epsilons.
TEST(HypergeometricICDF, UpperSlackIsFiftyEpsilonsToTheLastBit) {
    constexpr double epsilon = 0x1p-52;
    for (double N : {4.0, 172.0, 104728.0}) {
        EXPECT_EQ(HypergeometricICDF(0.25 * (1 + 49 * epsilon), 1, N / 4, N, 1), 1) << N;
        EXPECT_EQ(HypergeometricICDF(0.25 * (1 + 50 * epsilon), 1, N / 4, N, 1), 0) << N;
    }
}

TEST(HypergeometricICDF, InvertsTheDistributionAtEveryStep) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < 300; ++i) {
        const int N = std::uniform_int_distribution<int>(1, i % 2 ? 170 : 3000)(random);
        const int r = std::uniform_int_distribution<int>(0, N)(random);
        const int n = std::uniform_int_distribution<int>(0, N)(random);
        const HypergeometricCounts counts = {r, n, N};
        for (std::int64_t x = counts.Lowest(); x <= counts.Highest(); ++x) {
            const double at = static_cast<double>(x);
            if (HypergeometricPDF(at, r, n, N) < 1e-7) continue;
            // A p in the middle of a step goes to its upper end.
            const double p = HypergeometricCDF(at, r, n, N, 0) - HypergeometricPDF(at, r, n, N) / 2;
            EXPECT_EQ(HypergeometricICDF(p, r, n, N, 0), at) << r << ' ' << n << ' ' << N << " seed " << kSeed;
            EXPECT_EQ(HypergeometricICDF(1 - p, r, n, N, 1), at) << r << ' ' << n << ' ' << N;
        }
    }
}

TEST(Hypergeometric, BordersBetweenTheThreeFormsAreSeamless) {
    for (int N : {169, 170, 171, 172})
        for (int x : {10, 25, 40})
            EXPECT_NEAR(HypergeometricPDF(x, 80, 50, N) / ExactProbability(x, 80, 50, N), 1, 1e-14) << N << ' ' << x;
    for (int N : {104723, 104728, 104729})
        for (int x : {0, 10, 25, 40})
            EXPECT_NEAR(HypergeometricPDF(x, 80, 50, N) / ExactProbability(x, 80, 50, N), 1, 1e-15) << N << ' ' << x;
    // The Lanczos form has fewer digits, and the ones it has are kept.
    EXPECT_NEAR(HypergeometricPDF(10, 80, 50, 104730) / ExactProbability(10, 80, 50, 104730), 1, 1e-10);
    EXPECT_NEAR(HypergeometricPDF(10, 80, 50, 104730), 3.7657096874048409e-22, 1e-35);
}

TEST(Hypergeometric, PrimePopulationsGiveTheirReciprocal) {
    for (unsigned i : {100U, 5000U, 9998U, 9999U}) {
        const double N = boost::math::prime(i);
        EXPECT_DOUBLE_EQ(HypergeometricPDF(1, 1, 1, N), 1 / N);
        EXPECT_DOUBLE_EQ(HypergeometricPDF(0, 1, 1, N), 1 - 1 / N);
    }
}

TEST(Hypergeometric, EveryProbabilityOfASmallPopulationIsExact) {
    for (int N = 0; N <= 14; ++N)
        for (int r = 0; r <= N; ++r)
            for (int n = 0; n <= N; ++n) {
                Rational sum = 0;
                for (int x = std::max(0, n + r - N); x <= std::min(n, r); ++x) {
                    const Rational p = ExactRatio(x, r, n, N);
                    sum += p;
                    EXPECT_NEAR(HypergeometricPDF(x, r, n, N), static_cast<double>(p), 4e-16);
                    EXPECT_NEAR(HypergeometricCDF(x, r, n, N, 0), static_cast<double>(sum), 8e-16);
                    EXPECT_NEAR(HypergeometricCDF(x, r, n, N, 1), static_cast<double>(1 - sum), 8e-16);
                }
                EXPECT_EQ(sum, 1);
            }
}

TEST(Hypergeometric, MarkedAndDrawnChangePlaces) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < 400; ++i) {
        const int N = std::uniform_int_distribution<int>(1, i % 2 ? 5000 : 2000000)(random);
        const int r = std::uniform_int_distribution<int>(0, N)(random);
        const int n = std::uniform_int_distribution<int>(0, N)(random);
        const double x = std::floor(static_cast<double>(r) * n / N);
        const double tolerance = N <= kLargestLongFactorial ? 1e-14 : 1e-9;
        EXPECT_NEAR(HypergeometricPDF(x, r, n, N) / HypergeometricPDF(x, n, r, N), 1, tolerance)
            << r << ' ' << n << ' ' << N << " seed " << kSeed;
        EXPECT_NEAR(HypergeometricCDF(x, r, n, N, 0) + HypergeometricCDF(x, r, n, N, 1), 1, 1e-13);
        EXPECT_NEAR(HypergeometricPDF(x, r, n, N) / HypergeometricPDF(n - x, N - r, n, N), 1, tolerance);
    }
}

// The upward walk over every count, with each probability computed afresh.
std::int64_t WalkOverEveryCount(double p, const HypergeometricCounts& counts) {
    std::int64_t x = counts.Lowest();
    double sum = HypergeometricProbability(x, counts);
    while (sum < p) {
        const double term = HypergeometricProbability(x + 1, counts);
        if (sum + term / 2 > p) break;
        ++x;
        sum += term;
    }
    return sum < p * (1 + 50 * 0x1p-52) && x != counts.Highest() ? x + 1 : x;
}

TEST(Hypergeometric, NegligibleTermsAreSkippedWithoutChangingTheWalk) {
    const HypergeometricCounts counts = {2000, 2000, 4000};
    ASSERT_EQ(HypergeometricProbability(300, counts), 0);
    for (double p : {5e-324, 1e-323, 1e-320, 1e-310, 1e-308, 1e-306, 1e-300, 9.9e-286, 1e-285, 1.1e-285, 1e-280,
                     1e-200, 1e-100, 1e-10, 0.01, 0.4})
        EXPECT_EQ(HypergeometricQuantile(p, 1 - p, counts), WalkOverEveryCount(p, counts)) << p;
    // The same from above, where the distribution is its own mirror image.
    for (double q : {1e-320, 1e-300, 1e-10, 0.01})
        EXPECT_NEAR(static_cast<double>(HypergeometricQuantile(1, q, counts)),
                    2000 - static_cast<double>(WalkOverEveryCount(q, counts)), 1)
            << q;
}

TEST(Hypergeometric, LargestPopulationsAnswerInBoundedTime) {
    constexpr double half = 2147483648.0;
    EXPECT_NEAR(HypergeometricCDF(536870912, half / 2, half / 2, half, 0), 0.5, 1e-4);
    EXPECT_NEAR(HypergeometricICDF(0.5, half / 2, half / 2, half, 0), 536870912, 2);
    EXPECT_NEAR(HypergeometricICDF(1e-300, half / 2, half / 2, half, 1), 536870912 + 37 * 11585.2, 3000);
    EXPECT_NEAR(HypergeometricPDF(0, 1, 1050646197, 2101292394), 0.5, 1e-6);
    EXPECT_NEAR(HypergeometricPDF(1, 1, 4294967295.0, 4294967295.0), 1, 1e-5);
    EXPECT_NEAR(HypergeometricProbability(0, {1, 1, 4294967295}), 1, 1e-5);
    EXPECT_NEAR(HypergeometricICDF(0.3, half, half, 4294967295.0, 0), 1073733232, 100);
}

// n + r - N below -2^31 or above 2^31 changes its sign in 32 bits.
TEST(Hypergeometric, LowerEndOfTheVariateTestIsToldIn32Bits) {
    EXPECT_TRUE(EndsWith([] { HypergeometricPDF(0, 0, 0, 4e9); }, "must be > 0 and > m + r - N but got 0"));
    EXPECT_EQ(HypergeometricPDF(0, 3e9, 3e9, 3e9), 0);
    EXPECT_EQ(HypergeometricCDF(0, 3e9, 3e9, 3e9, 0), 0);
    EXPECT_EQ(HypergeometricICDF(0.5, 0, 0, 4e9, 0), 0);
    EXPECT_EQ(HypergeometricICDF(0.5, 3e9, 3e9, 3e9, 0), 3e9);
}

TEST(Hypergeometric, CountsOutsideTheUnsignedRangeWrapAround) {
    EXPECT_EQ(HypergeometricPDF(2, 4294967296.0 + 5, 6, 20), HypergeometricPDF(2, 5, 6, 20));
    EXPECT_TRUE(EndsWith([] { HypergeometricPDF(2, -1, 6, 20); }, "must be <= N but got 4294967295"));
    EXPECT_EQ(HypergeometricPDF(0, kNaN, kNaN, kNaN), 1);
    EXPECT_EQ(HypergeometricPDF(0, 1e300, -kInfinity, 20), 1);
}

TEST(Hypergeometric, CountsUpTo2To31AndProbabilitiesDownTo1e300GiveNoNaN) {
    std::mt19937_64 random(kSeed);
    const auto uniform = [&random](double low, double high) {
        return std::uniform_real_distribution<>(low, high)(random);
    };
    for (int i = 0; i < 3000; ++i) {
        const double N = std::floor(std::exp2(uniform(0, 31)));
        const double r = std::floor(i % 3 ? uniform(0, N + 1) : std::exp2(uniform(0, std::log2(N))));
        const double n = std::floor(std::exp2(uniform(0, std::fmin(20, std::log2(N)))));
        const double low = std::fmax(0, n + r - N);
        const double high = std::fmin(n, r);
        const double p = i % 2 ? uniform(0, 1) : std::pow(10, -uniform(0, 300));
        for (double x :
             {low, high, std::floor(uniform(low, high)), std::fmin(high, std::fmax(low, std::floor(r * n / N)))}) {
            EXPECT_FALSE(std::isnan(HypergeometricPDF(x, r, n, N))) << x << ' ' << r << ' ' << n << ' ' << N;
            for (TailFlag tail : {0, 1})
                EXPECT_FALSE(std::isnan(HypergeometricCDF(x, r, n, N, tail)))
                    << x << ' ' << r << ' ' << n << ' ' << N;
        }
        for (TailFlag tail : {0, 1}) {
            const double x = HypergeometricICDF(p, r, n, N, tail);
            EXPECT_TRUE(x >= low && x <= high) << p << ' ' << r << ' ' << n << ' ' << N;
        }
    }
}

TEST(Hypergeometric, NothingSetsErrno) {
    for (int before : {0, 7}) {
        EXPECT_EQ(CallWithErrno(before, [] { return HypergeometricPDF(0, 5000, 5000, 10000); }).errnoAfter, before);
        EXPECT_EQ(CallWithErrno(before, [] { return HypergeometricPDF(0, 5e8, 5e8, 1e9); }).errnoAfter, before);
        errno = before;
        EXPECT_THROW(HypergeometricICDF(2, 5, 6, 20, 0), std::domain_error);
        EXPECT_EQ(errno, before);
    }
}

TEST(Hypergeometric, ThreadsGetTheSameAnswers) {
    const auto work = [] {
        std::vector<double> results;
        for (double N : {100.0, 3000.0, 200000.0})
            for (double x = 0; x < 20; ++x) {
                results.push_back(HypergeometricPDF(x, 50, 40, N));
                results.push_back(HypergeometricCDF(x, 50, 40, N, 1));
                results.push_back(HypergeometricICDF(x / 20, 50, 40, N, 0));
            }
        return results;
    };
    const std::vector<double> alone = work();
    std::vector<std::vector<double>> together(4);
    std::vector<std::thread> threads;
    for (auto& results : together) threads.emplace_back([&results, work] { results = work(); });
    for (std::thread& thread : threads) thread.join();
    for (const auto& results : together) EXPECT_EQ(results, alone);
}

}  // namespace
