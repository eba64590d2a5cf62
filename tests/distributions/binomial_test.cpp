#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "distributions/binomial_quantile.hpp"
#include "frame/policies.hpp"
#include "orvanth/distributions.h"
#include "orvanth/special.h"
#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;

constexpr unsigned kSeed = 20240906;
constexpr const char* kConstructor =
    "Error in function boost::math::binomial_distribution<double>::binomial_distribution: ";

TEST(BinomialPDF, NoTrialsHaveNoSuccessForSure) {
    EXPECT_EQ(BinomialPDF(0, 0, 0.5), 1);
    EXPECT_EQ(BinomialPDF(0, 0, 0), 1);
    EXPECT_EQ(BinomialPDF(0, 0, 1), 1);
}

TEST(BinomialPDF, CertainFractionsPutTheMassAtOnePoint) {
    EXPECT_EQ(BinomialPDF(0, 10, 0), 1);
    EXPECT_EQ(BinomialPDF(1, 10, 0), 0);
    EXPECT_EQ(BinomialPDF(10, 10, 1), 1);
    EXPECT_EQ(BinomialPDF(9.5, 10, 1), 0);
    EXPECT_EQ(BinomialPDF(0, 10, 0.25), std::pow(0.75, 10));
    EXPECT_EQ(BinomialPDF(10, 10, 0.25), std::pow(0.25, 10));
}

TEST(BinomialPDF, FormulaExtendsToABrokenCount) {
    const double want = std::exp(std::lgamma(11) - std::lgamma(3.5) - std::lgamma(8.5)) * std::pow(0.5, 10);
    EXPECT_NEAR(BinomialPDF(2.5, 10, 0.5), want, 1e-14);
}

TEST(BinomialPDF, FractionIsTestedBeforeTrialsBeforeSuccesses) {
    const std::string fraction =
        std::string(kConstructor) + "Success fraction argument is 2, but must be >= 0 and <= 1 !";
    const std::string trials = std::string(kConstructor) + "Number of Trials argument is -1, but must be >= 0 !";
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPDF(-1, -1, 2); }), fraction);
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPDF(-1, -1, 0.5); }), trials);
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPDF(-1, 3, 0.5); }),
              "Error in function boost::math::pdf(binomial_distribution<double> const&, double): Number of Successes "
              "argument is -1, but must be >= 0 !");
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPDF(kInfinity, 3, 0.5); }),
              "Error in function boost::math::pdf(binomial_distribution<double> const&, double): Number of Successes "
              "argument is inf, but must be >= 0 !");
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialICDF(7, -1, 2, 0, 0); }), fraction);
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialICDF(7, -1, 0.5, 0, 0); }), trials);
    EXPECT_THROW(BinomialPDF(0, kNaN, 0.5), std::domain_error);
    EXPECT_THROW(BinomialPDF(0, kInfinity, 0.5), std::domain_error);
    EXPECT_THROW(BinomialPDF(0, 5, kNaN), std::domain_error);
    EXPECT_THROW(BinomialPDF(kNaN, 5, 0.5), std::domain_error);
}

TEST(BinomialCDF, BrokenCountIsNotRounded) {
    EXPECT_EQ(BinomialCDF(2.5, 10, 0.5, 0), BetaRegularizedC(3.5, 7.5, 0.5));
    EXPECT_EQ(BinomialCDF(2.5, 10, 0.5, 1), BetaRegularized(3.5, 7.5, 0.5));
}

TEST(BinomialCDF, OnlyTheLowByteOfTheFlagCounts) {
    EXPECT_EQ(BinomialCDF(3, 10, 0.4, 0x100), BinomialCDF(3, 10, 0.4, 0));
    EXPECT_EQ(BinomialCDF(3, 10, 0.4, 0x101), BinomialCDF(3, 10, 0.4, 1));
    EXPECT_NE(BinomialCDF(3, 10, 0.4, 1), BinomialCDF(3, 10, 0.4, 0));
}

TEST(BinomialCDF, ThirtyEightOfTwoThousandMillionIsZero) {
    EXPECT_EQ(BinomialCDF(38, 2e9, 0.27, 0), 0);
    EXPECT_EQ(BinomialCDF(38, 2e9, 0.27, 1), 1);
}

TEST(BinomialCDF, AllTrialsGiveOneAndInTheUpperTailZero) {
    EXPECT_EQ(BinomialCDF(10, 10, 0.5, 0), 1);
    EXPECT_EQ(BinomialCDF(10, 10, 0.5, 1), 0);
    EXPECT_EQ(BinomialCDF(10, 10, 1, 0), 1);
    EXPECT_EQ(BinomialCDF(9, 10, 1, 0), 0);
    EXPECT_EQ(BinomialCDF(9, 10, 1, 1), 1);
    EXPECT_EQ(BinomialCDF(0, 10, 0, 0), 1);
    EXPECT_EQ(BinomialCDF(0, 10, 0, 1), 0);
}

TEST(BinomialCDF, MoreSuccessesThanTrialsThrow) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialCDF(11, 10, 0.5, 0); }),
              "Error in function boost::math::cdf(binomial_distribution<double> const&, double): Number of Successes "
              "argument is 11, but must be <= Number of Trials !");
}

TEST(BinomialCDF, TailsAddUpAndRise) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < 2000; ++i) {
        const double n = std::floor(std::pow(10, std::uniform_real_distribution<>(0, 6)(random)));
        const double p = std::uniform_real_distribution<>(0, 1)(random);
        const double k = std::floor(std::uniform_real_distribution<>(0, 1)(random) * n);
        const double lower = BinomialCDF(k, n, p, 0);
        EXPECT_NEAR(lower + BinomialCDF(k, n, p, 1), 1, 1e-15) << k << ' ' << n << ' ' << p << " seed " << kSeed;
        EXPECT_NEAR(lower, BinomialCDF(n - k - 1, n, 1 - p, 1), 1e-9 + (k == n ? 1 : 0));
        if (k + 1 <= n) {
            EXPECT_GE(BinomialCDF(k + 1, n, p, 0), lower - 1e-14);
            EXPECT_NEAR(BinomialCDF(k + 1, n, p, 0) - lower, BinomialPDF(k + 1, n, p), 1e-10);
        }
    }
}

TEST(BinomialICDF, RoundingsDifferByOneBetweenTwoSteps) {
    EXPECT_EQ(BinomialICDF(0.5, 10, 0.4, 0, 0), 3);
    EXPECT_EQ(BinomialICDF(0.5, 10, 0.4, 0, 1), 4);
}

TEST(BinomialICDF, RoundUpFlagCountsAsAWholeWordAndTailFlagByItsLowByte) {
    EXPECT_EQ(BinomialICDF(0.5, 10, 0.4, 0, 0x100), 4);
    EXPECT_EQ(BinomialICDF(0.3, 10, 0.4, 0x100, 0), BinomialICDF(0.3, 10, 0.4, 0, 0));
    EXPECT_EQ(BinomialICDF(0.3, 10, 0.4, 0x101, 0), BinomialICDF(0.3, 10, 0.4, 1, 0));
    EXPECT_NE(BinomialICDF(0.3, 10, 0.4, 1, 0), BinomialICDF(0.3, 10, 0.4, 0, 0));
    EXPECT_EQ(BinomialICDF(1, 10, 0.4, 0x100, 0), 10);
    EXPECT_EQ(BinomialICDF(1, 10, 0.4, 0x101, 0), 0);
}

TEST(BinomialICDF, OneGivesAllTrialsAndInTheUpperTailNone) {
    for (int32_t up : {0, 1}) {
        EXPECT_EQ(BinomialICDF(1, 10, 0.4, 0, up), 10);
        EXPECT_EQ(BinomialICDF(1, 10, 0.4, 1, up), 0);
        EXPECT_EQ(BinomialICDF(0, 10, 0.4, 0, up), 0);
        EXPECT_EQ(BinomialICDF(0, 10.5, 0.4, 1, up), 10.5);
    }
}

TEST(BinomialICDF, NoTrialsGiveZeroBelowOne) {
    for (double probability : {0.0, 1e-300, 0.5, 1 - 0x1p-53}) EXPECT_EQ(BinomialICDF(probability, 0, 0.4, 0, 1), 0);
}

TEST(BinomialICDF, ProbabilityIsJudgedAfterTheTailsSwap) {
    constexpr const char* text =
        "Error in function boost::math::quantile(binomial_distribution<double> const&, double): Probability argument "
        "is -0.5, but must be >= 0 and <= 1 !";
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialICDF(-0.5, 10, 0.4, 0, 0); }), text);
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialICDF(1.5, 10, 0.4, 1, 0); }), text);
    EXPECT_THROW(BinomialICDF(kNaN, 10, 0.4, 1, 0), std::domain_error);
}

TEST(BinomialICDF, CertainSuccessIsRoundedToTheLastStepOfTheDistribution) {
    for (double n : {1.0, 5.0, 10.0, 50.0, 1000.0})
        for (double probability : {0.01, 0.3, 0.5, 0.99}) {
            EXPECT_EQ(BinomialICDF(probability, n, 1, 0, 0), n - 1) << n;
            EXPECT_EQ(BinomialICDF(probability, n, 1, 0, 1), n) << n;
        }
}

TEST(BinomialICDF, BracketsEveryProbability) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < 3000; ++i) {
        const double n = std::floor(std::pow(10, std::uniform_real_distribution<>(0, i % 2 ? 2 : 9)(random)));
        const double p = std::pow(10, std::uniform_real_distribution<>(-6, 0)(random));
        const double probability = std::uniform_real_distribution<>(0, 1)(random);
        const double down = BinomialICDF(probability, n, p, 0, 0);
        const double up = BinomialICDF(probability, n, p, 0, 1);
        ASSERT_EQ(down, std::floor(down));
        const bool atZero = probability <= std::pow(1 - p, n);
        EXPECT_EQ(up - down, atZero ? 0 : 1) << probability << ' ' << n << ' ' << p << " seed " << kSeed;
        if (!atZero) {
            EXPECT_LE(BinomialCDF(down, n, p, 0), probability);
        }
        EXPECT_GE(BinomialCDF(up, n, p, 0), probability);
        // The upper tail searches with 1 - probability, exact below for these multiples of 2^-20.
        const double grid = std::ceil(probability * 0x1p20) / 0x1p20;
        EXPECT_EQ(BinomialICDF(1 - grid, n, p, 1, 1), BinomialICDF(grid, n, p, 0, 1));
    }
}

TEST(BinomialICDF, SmallUpperTailKeepsItsDigits) {
    // 1 - 1e-14 has two digits of the tail left; the search runs on the tail itself.
    for (int i = 0; i < 200; ++i) {
        const double tail = 1e-14 * (1 + i / 200.0);
        const double up = BinomialICDF(tail, 1e6, 0.5, 1, 1);
        EXPECT_LE(BinomialCDF(up, 1e6, 0.5, 1), tail);
        EXPECT_GT(BinomialCDF(up - 1, 1e6, 0.5, 1), tail);
    }
}

// With more than 100 trials the search steps out from its estimate by a factor of 1.01, at most 200
// times. For tiny fractions the estimate is some 10 where the solution is below 1, which is too far.
TEST(BinomialICDF, TinyFractionsWithProbabilitiesNextToOneAreAnEvaluationError) {
    const auto roundedDown = [](double probability, double n, double p) {
        return ThrownText<boost::math::evaluation_error>([=] { BinomialICDF(probability, n, p, 0, 0); });
    };
    const std::string text =
        "Error in function boost::math::do_inverse_discrete_quantile<double>: Unable to bracket root, last nearest "
        "value was ";
    EXPECT_EQ(roundedDown(1 - 0x1p-53, 810, 5.8373906739175449e-12).rfind(text, 0), 0U);
    EXPECT_EQ(roundedDown(1 - 0x8p-53, 403, 4.3506101424213234e-12).rfind(text, 0), 0U);
    // Just near enough rounded down, not rounded up, where the search starts one further away.
    EXPECT_EQ(BinomialICDF(1 - 0x3p-53, 557, 3.1471570420139038e-10, 0, 0), 1);
    EXPECT_THROW(BinomialICDF(1 - 0x3p-53, 557, 3.1471570420139038e-10, 0, 1), boost::math::evaluation_error);
    EXPECT_EQ(BinomialICDF(1 - 0x3p-53, 557, 1e-6, 0, 1), 4);
}

TEST(BinomialPS, TinyTailAreaOfAFractionalCountGivesItsBound) {
    for (int before : {0, 7}) {
        const auto call = CallWithErrno(before, [] { return BinomialPS(1e-200, 0.79, 8, 0); });
        EXPECT_NEAR(call.value / 7.6906425805395856e-255, 1, 1e-12);
        EXPECT_EQ(call.errnoAfter, before);
    }
}

TEST(BinomialPS, UnknownSelectorIsAnsweredBeforeEverythingElse) {
    EXPECT_EQ(BinomialPS(0.025, 3, -5, 2), -1);
    EXPECT_EQ(BinomialPS(kNaN, kNaN, kNaN, -1), -1);
    EXPECT_EQ(BinomialPS(0.025, 3, 10, 0x100), -1);
    EXPECT_EQ(BinomialPS(0.025, 3, 10, 0x101), -1);
}

TEST(BinomialPS, NoSuccessAndNoFailureNeedNoAlpha) {
    for (double alpha : {0.025, -3.0, 7.0, kNaN}) {
        EXPECT_EQ(BinomialPS(alpha, 0, 10, 0), 0);
        EXPECT_EQ(BinomialPS(alpha, 10, 10, 1), 1);
    }
}

TEST(BinomialPS, MoreSuccessesThanTrialsThrow) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPS(0.025, 5, 3, 0); }),
              "Error in function boost::math::binomial_distribution<double>::find_lower_bound_on_p: Number of "
              "Successes argument is 5, but must be <= Number of Trials !");
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPS(0.025, -5, -3, 1); }),
              "Error in function boost::math::binomial_distribution<double>::find_upper_bound_on_p: Number of "
              "Trials argument is -3, but must be >= 0 !");
}

TEST(BinomialPS, BadAlphaIsNamedByTheInverse) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPS(1.5, 3, 10, 0); }),
              "Error in function boost::math::ibeta_inv<double>(double,double,double): Argument p outside the range "
              "[0,1] in the incomplete beta function inverse (got p=1.5).");
    EXPECT_EQ(ThrownText<std::domain_error>([] { BinomialPS(-0.5, 3, 10, 1); }),
              "Error in function boost::math::ibetac_inv<double>(double,double,double): Argument q outside the range "
              "[0,1] in the incomplete beta function inverse (got q=-0.5).");
    EXPECT_TRUE(std::isnan(BinomialPS(kNaN, 3, 10, 0)));
    EXPECT_TRUE(std::isnan(BinomialPS(kNaN, 3, 10, 1)));
}

TEST(BinomialPS, BoundsAreThoseWhoseTailsAreAlpha) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < 2000; ++i) {
        const double n = std::floor(std::pow(10, std::uniform_real_distribution<>(0, 6)(random)));
        const double k = std::floor(std::uniform_real_distribution<>(0, 1)(random) * n);
        const double alpha = std::pow(10, std::uniform_real_distribution<>(-12, 0)(random));
        const double low = BinomialPS(alpha, k, n, 0);
        const double high = BinomialPS(alpha, k, n, 1);
        if (k > 0) {
            EXPECT_NEAR(BinomialCDF(k - 1, n, low, 1) / alpha, 1, 2e-9) << k << ' ' << n << ' ' << alpha;
        }
        if (k < n) {
            // The bound is a double: near 1 its last digit is much of what is missing to 1.
            EXPECT_NEAR(BinomialCDF(k, n, high, 0) / alpha, 1, 2e-9 + 4e-16 * (n - k) / (1 - high))
                << k << ' ' << n << ' ' << alpha;
        }
        if (alpha < 0.5) {
            EXPECT_LT(low, high) << " seed " << kSeed;
        }
    }
}

// Whatever happens with extreme arguments, it is a value or one of the four classes, and soon.
TEST(Binomial, ExtremeArgumentsComeBack) {
    std::vector<double> counts = {1e-300, 0.5, 1, 1e9, 2147483648.0, 4294967295.0, 1e15};
    for (double n : counts)
        for (double p : {1e-300, 1e-10, 0.5, 1 - 0x1p-53}) {
            for (double k : {0.0, 1e-300, n * p, n * 0.5, n}) {
                const double pdf = BinomialPDF(k, n, p);
                EXPECT_TRUE(pdf >= 0 && pdf <= 1.0001) << k << ' ' << n << ' ' << p << ' ' << pdf;
                for (TailFlag tail : {0, 1}) {
                    const double cdf = BinomialCDF(k, n, p, tail);
                    EXPECT_TRUE(cdf >= 0 && cdf <= 1) << k << ' ' << n << ' ' << p << ' ' << cdf;
                }
            }
            for (double probability : {1e-300, 1e-10, 0.5, 1 - 0x1p-53})
                for (TailFlag tail : {0, 1}) {
                    const double quantile = BinomialICDF(probability, n, p, tail, 1);
                    EXPECT_TRUE(quantile >= 0 && quantile <= std::ceil(n)) << probability << ' ' << n << ' ' << p;
                }
        }
}

// A failure is an exception; what comes back is a number.
TEST(Binomial, CountsUpTo2To31AndProbabilitiesDownTo1e300GiveNoNaN) {
    std::mt19937 random(kSeed);
    const auto uniform = [&random](double low, double high) {
        return std::uniform_real_distribution<>(low, high)(random);
    };
    const auto number = [](auto call) {
        try {
            return call();
        } catch (const std::exception&) {
            return 0.0;
        }
    };
    for (int i = 0; i < 3000; ++i) {
        const double n = std::floor(std::exp2(uniform(0, 31)));
        const double p = i % 3 == 0 ? uniform(0, 1) : std::pow(10, -uniform(0, i % 3 == 1 ? 15 : 300));
        const double alpha = i % 2 ? uniform(0, 1) : std::pow(10, -uniform(0, 300));
        const double k = std::floor(i % 2 ? std::exp2(uniform(0, std::log2(n))) : uniform(0, n));
        for (int32_t flag : {0, 1}) {
            EXPECT_FALSE(std::isnan(number([=] { return BinomialPDF(k, n, p); }))) << k << ' ' << n << ' ' << p;
            EXPECT_FALSE(std::isnan(number([=] { return BinomialCDF(k, n, p, flag); }))) << k << ' ' << n << ' ' << p;
            EXPECT_FALSE(std::isnan(number([=] { return BinomialICDF(alpha, n, p, flag, i & 1); })))
                << alpha << ' ' << n << ' ' << p;
            EXPECT_FALSE(std::isnan(number([=] { return BinomialPS(alpha, k, n, flag); })))
                << alpha << ' ' << k << ' ' << n;
        }
    }
}

TEST(Binomial, NothingSetsErrno) {
    for (int before : {0, 7}) {
        EXPECT_EQ(CallWithErrno(before, [] { return BinomialPDF(1000, 1000, 1e-10); }).errnoAfter, before);
        EXPECT_EQ(CallWithErrno(before, [] { return BinomialCDF(900, 1000, 1e-10, 1); }).errnoAfter, before);
        EXPECT_EQ(CallWithErrno(before, [] { return BinomialPS(1e-15, 3, 1000, 0); }).errnoAfter, before);
        errno = before;
        EXPECT_THROW(BinomialPS(2, 3, 1000, 0), std::domain_error);
        EXPECT_EQ(errno, before);
    }
}

TEST(Binomial, ThreadsGetTheSameAnswers) {
    const auto work = [] {
        std::vector<double> results;
        for (double n : {5.0, 300.0, 1e6})
            for (double p : {0.01, 0.4, 0.9}) {
                results.push_back(BinomialPDF(2, n, p));
                results.push_back(BinomialCDF(2, n, p, 1));
                results.push_back(BinomialICDF(0.7, n, p, 0, 1));
                results.push_back(BinomialPS(p, 2, n, 1));
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
