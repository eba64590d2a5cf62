#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "frame/failure.hpp"
#include "multiple_comparison/families.hpp"
#include "multiple_comparison/mc.hpp"
#include "multiple_comparison/normal_form.hpp"
#include "multiple_comparison/plain_mc.hpp"
#include "orvanth/multiple_comparison.h"
#include "support/call.hpp"
#include "support/many_digits.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;
using plain::Statistic;
using plain::StudentT;

constexpr unsigned kSeed = 20240121;

// The rules: what a 48-point Gauss rule must integrate, it integrates.

TEST(GaussHermite48, IntegratesEveryMonomialUpToDegree95) {
    Wide moment = sqrt(Pi());  // of t^0 under exp(-t^2)
    for (int degree = 0; degree <= 95; ++degree) {
        Wide sum = 0, size = 0;
        for (std::size_t i = 0; i < kRulePoints; ++i) {
            const Wide term = Wide(GaussHermite48.weights[i]) * pow(Wide(GaussHermite48.nodes[i]), degree);
            sum += term;
            size += abs(term);
        }
        const Wide want = degree % 2 == 0 ? moment : Wide(0);
        EXPECT_LT(static_cast<double>(abs(sum - want) / size), (degree + 2) * 1.2e-16) << degree;
        if (degree % 2 == 0) moment *= Wide(degree + 1) / 2;
    }
}

TEST(GaussLegendre48, IntegratesEveryMonomialUpToDegree95) {
    for (int degree = 0; degree <= 95; ++degree) {
        Wide sum = 0;
        for (std::size_t i = 0; i < kRulePoints; ++i)
            sum += Wide(GaussLegendre48.weights[i]) * pow(Wide(GaussLegendre48.nodes[i]), degree);
        const Wide want = degree % 2 == 0 ? Wide(2) / (degree + 1) : Wide(0);
        EXPECT_LT(static_cast<double>(abs(sum - want)), 2e-16) << degree;
    }
}

TEST(GaussRules, StandInTheStatedOrder) {
    EXPECT_EQ(GaussHermite48.nodes[0], 8.975315081931686);
    EXPECT_EQ(GaussHermite48.nodes[23], 0.15949293584886248);
    EXPECT_EQ(GaussHermite48.weights[0], 7.935551460773996e-36);
    EXPECT_EQ(GaussHermite48.weights[23], 0.31100103037796306);
    EXPECT_EQ(GaussLegendre48.nodes[0], 0.9987710072524261);
    EXPECT_EQ(GaussLegendre48.nodes[23], 0.03238017096286936);
    EXPECT_EQ(GaussLegendre48.weights[0], 0.0031533460523058385);
    EXPECT_EQ(GaussLegendre48.weights[23], 0.06473769681268392);
    for (const Rule48* rule : {&GaussHermite48, &GaussLegendre48})
        for (std::size_t i = 0; i < kHalfRule; ++i) {
            EXPECT_EQ(rule->nodes[i + kHalfRule], -rule->nodes[i]);
            EXPECT_EQ(rule->weights[i + kHalfRule], rule->weights[i]);
            if (i > 0) {
                EXPECT_LT(rule->nodes[i], rule->nodes[i - 1]);
            }
        }
}

// The fast evaluation keeps every bit of the plain one.

TEST(NormalForm, HasTheBitsOfOneMinusPhi) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> wide(-12, 12), small(-1, 1);
    for (int i = 0; i < 200000; ++i) {
        const double z = i % 2 ? wide(random) : small(random) * std::exp2(-std::floor(i / 1000.0));
        EXPECT_EQ(NormalForm(z), plain::U(z)) << std::hexfloat << z;
        EXPECT_EQ(NormalForms(z).at, plain::U(z)) << std::hexfloat << z;
        EXPECT_EQ(NormalForms(z).mirrored, plain::U(-z)) << std::hexfloat << z;
    }
    const double half = 0.5 * std::sqrt(2.0), certain = kCertain * std::sqrt(2.0);
    for (double z : {0.0, -0.0, half, std::nextafter(half, 0), std::nextafter(half, 1), certain,
                     std::nextafter(certain, 0), 40.0, kInfinity})
        for (double signedZ : {z, -z}) {
            EXPECT_EQ(NormalForm(signedZ), plain::U(signedZ)) << signedZ;
            EXPECT_EQ(NormalForms(signedZ).at, plain::U(signedZ)) << signedZ;
            EXPECT_EQ(NormalForms(signedZ).mirrored, plain::U(-signedZ)) << signedZ;
        }
}

// Equal, unequal, runs of equal ones, negative, zero, one, and a bad last element.
std::vector<double> RandomLambda(std::mt19937_64& random, std::int32_t k, int kind) {
    std::uniform_real_distribution<double> coefficient(-0.99, 0.99);
    std::vector<double> lambda(static_cast<std::size_t>(k), kind % 2 ? kEqual : coefficient(random));
    if (kind >= 2)
        for (std::size_t j = 0; j < lambda.size(); ++j)
            if (j == 0 || kind % 3 != 0 || random() % 2) lambda[j] = coefficient(random);
    if (kind == 5) lambda[lambda.size() / 2] = 0;
    if (kind == 6) lambda.back() = 7;  // never read, unless it is the first
    if (kind == 7) lambda[0] = 1;
    if (kind == 6 && k == 1) lambda[0] = 0.5;
    return lambda;
}

TEST(MC, HasTheBitsOfThePlainDoubleLoop) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-1, 6), exponent(-0.5, 3.2);
    for (int trial = 0; trial < 240; ++trial) {
        const std::int32_t k = 1 + static_cast<std::int32_t>(random() % 12);
        const double df = trial % 5 == 0 ? kInfinity : std::pow(10, exponent(random)), x = point(random);
        const std::vector<double> lambda = RandomLambda(random, k, trial % 8);
        for (const Family& family : kFamilies) {
            const double fast = family.cumulative(x, k, df, lambda.data(), 0);
            const double slow = plain::Cumulative(family.statistic, x, k, df, lambda.data());
            EXPECT_EQ(std::bit_cast<std::uint64_t>(fast), std::bit_cast<std::uint64_t>(slow))
                << "seed " << kSeed << " trial " << trial << " k " << k << " df " << df << " x " << x << ": " << fast
                << " " << slow;
        }
    }
}

TEST(MC, ConditionalCDFHasTheBitsOfThePlainLoop) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(0, 8), scale(0.05, 3);
    for (int trial = 0; trial < 400; ++trial) {
        const std::int32_t k = 1 + static_cast<std::int32_t>(random() % 20);
        const double x = point(random), s = scale(random);
        const std::vector<double> lambda = RandomLambda(random, k, trial % 7);
        DunnettDistribution dunnett(k, 10, lambda.data());
        HsuDistribution hsu(k, 10, lambda.data());
        TukeyDistribution tukey(k, 10, lambda.data());
        EXPECT_EQ(dunnett.ConditionalCDF(x, s), plain::Conditional(Statistic::kDunnett, x, s, k, lambda.data()));
        EXPECT_EQ(hsu.ConditionalCDF(x, s), plain::Conditional(Statistic::kHsu, x, s, k, lambda.data()));
        EXPECT_EQ(tukey.ConditionalCDF(x, s), plain::Conditional(Statistic::kTukey, x, s, k, lambda.data()));
        EXPECT_EQ(tukey.ConditionalCDF(s, x), plain::Conditional(Statistic::kTukey, s, x, k, lambda.data()));
    }
}

// Edges.

TEST(MC, OneGroupIsAnEmptyProduct) {
    for (const Family& family : kFamilies) EXPECT_NEAR(family.cumulative(1.3, 1, kInfinity, &kEqual, 0), 1, 1e-14);
}

TEST(MC, InfiniteXGivesTheCeiling) {
    for (const Family& family : kFamilies) {
        EXPECT_NEAR(family.cumulative(kInfinity, 4, 10, kEqualGroups.data(), 0), 0.9999999, 1e-10);
        EXPECT_NEAR(family.cumulative(kInfinity, 4, 1000, kEqualGroups.data(), 0), 1, 1e-14);
    }
}

TEST(MCc, ZeroGivesZero) {
    EXPECT_EQ(MCcCDF(0, 2, 10, kEqualGroups.data(), 0), 0.0);
    EXPECT_EQ(MCcCDF(0, 5, 1e9, kEqualGroups.data(), 0), 0.0);
}

TEST(MCc, NegativeXAlternatesWithK) {
    EXPECT_LT(MCcCDF(-1, 2, 10, kEqualGroups.data(), 0), 0);
    EXPECT_GT(MCcCDF(-1, 3, 10, kEqualGroups.data(), 0), 0);
}

TEST(MC, LambdaZeroIsAProductOfOneFactor) {
    const double zero[3] = {0, 0, 0};
    const double inside = 1 - 2 * plain::U(-1.7);
    EXPECT_NEAR(MCcCDF(1.7, 3, kInfinity, zero, 0), inside * inside, 1e-14);
}

TEST(MC, ALambdaThatIsNotReadMayBeAnything) {
    const double lambda[3] = {0.5, 0.6, 3.0};
    EXPECT_GT(MCbCDF(2, 3, 10, lambda, 0), 0.8);
    EXPECT_GT(MCcCDF(2, 3, 10, lambda, 0), 0.8);
    const double first[3] = {kEqual, 3.0, 3.0};
    EXPECT_GT(MCaCDF(3, 3, 10, first, 0), 0.8);
}

TEST(MC, ALambdaOfOneMakesAnInfiniteScale) {
    const double one[2] = {1, 1};
    EXPECT_GT(MCbCDF(2, 2, 10, one, 0), 0.9);
    // v + a is exactly 0 nowhere on the rule but at x = 0 with a NaN: 0 times infinity.
    EXPECT_NE(ThrownText<std::domain_error>([&] { MCaCDF(0.0, 2, 10, std::vector<double>{kNaN, 1}.data(), 0); }), "");
}

TEST(MC, DfJustBelowAThousandRunsTheOuterRule) {
    const double below = MCcCDF(2.5, 3, 999.999, kEqualGroups.data(), 0);
    const double at = MCcCDF(2.5, 3, 1000, kEqualGroups.data(), 0);
    EXPECT_NE(below, at);
    EXPECT_NEAR(below, at, 1e-3);
    EXPECT_EQ(at, MCcCDF(2.5, 3, kInfinity, kEqualGroups.data(), 0));
}

TEST(MC, OneDegreeOfFreedomWorks) { EXPECT_NEAR(MCcCDF(12.706204736, 2, 1, kEqualGroups.data(), 0), 0.95, 1e-6); }

TEST(MC, WorkedValues) {
    EXPECT_NEAR(MCaCDF(3.877 / std::sqrt(2.0), 3, 10, kEqualGroups.data(), 0), 0.95001, 5e-6);
    EXPECT_NEAR(MCcCDF(2.57, 3, 10, kEqualGroups.data(), 0), 0.95014, 5e-6);
    EXPECT_NEAR(MCbCDF(2.15, 3, 10, kEqualGroups.data(), 0), 0.94995, 5e-6);
    EXPECT_NEAR(MCaICDF(0.95, 3, 10, kEqualGroups.data(), 0), 2.7413, 5e-5);
    EXPECT_NEAR(MCcICDF(0.95, 3, 10, kEqualGroups.data(), 0), 2.5683, 5e-5);
    EXPECT_NEAR(MCbICDF(0.95, 3, 10, kEqualGroups.data(), 0), 2.1506, 5e-5);
}

// Quantiles.

TEST(MCICDF, TheRoadOfOneCall) {
    // Bracket, both ends, root: the pieces lead to what the export returns.
    TukeyDistribution tukey(3, 10, kEqualGroups.data());
    const auto [low, high] = tukey.QuantileRange(1.0 - 0.95);
    EXPECT_EQ(low, -StudentT(10, (1.0 - 0.95) / 2));
    EXPECT_EQ(high, -StudentT(10, (1.0 - 0.95) / 6));
    EXPECT_LT(tukey.CDF(low), 0.95);
    EXPECT_GT(tukey.CDF(high), 0.95);
    const double x = MCaICDF(0.95, 3, 10, kEqualGroups.data(), 0);
    EXPECT_EQ(x, tukey.ICDF(0.95));
    EXPECT_NEAR(tukey.CDF(x), 0.95, 1e-7);
}

TEST(MCICDF, TwoGroupsAreTheStudentQuantileItself) {
    for (double p : {0.5, 0.9, 0.999}) {
        EXPECT_EQ(MCcICDF(p, 2, 7, kEqualGroups.data(), 0), -StudentT(7, (1.0 - p) / 2));
        EXPECT_EQ(MCaICDF(p, 2, 7, kEqualGroups.data(), 0), -StudentT(7, (1.0 - p) / 2));
        EXPECT_EQ(MCbICDF(p, 2, 7, kEqualGroups.data(), 0), -StudentT(7, 1.0 - p));
    }
}

TEST(MCICDF, InvertsTheDistribution) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> probability(0.02, 0.9999), exponent(0.3, 2.9);
    for (int trial = 0; trial < 40; ++trial) {
        const std::int32_t k = 3 + static_cast<std::int32_t>(random() % 8);
        const double df = std::pow(10, exponent(random)), p = probability(random);
        for (const Family& family : kFamilies) {
            const double x = family.quantile(p, k, df, kEqualGroups.data(), 0);
            EXPECT_LE(family.cumulative(x - 3e-7 * std::fabs(x), k, df, kEqualGroups.data(), 0), p);
            EXPECT_GE(family.cumulative(x + 3e-7 * std::fabs(x), k, df, kEqualGroups.data(), 0), p);
        }
    }
}

TEST(MCICDF, ProbabilityZero) {
    for (Export quantile : {MCaICDF, MCcICDF}) EXPECT_NEAR(quantile(0, 3, 10, kEqualGroups.data(), 0), 0, 1e-6);
    EXPECT_EQ(ThrownText<std::overflow_error>([] { MCbICDF(0, 3, 10, kEqualGroups.data(), 0); }),
              "Error in function boost::math::quantile(const students_t_distribution<double>&, double): "
              "Overflow Error");
}

// Failures.

TEST(MCFailure, DegreesOfFreedom) {
    for (double df : {0.0, -1.0})
        for (const Family& family : kFamilies) {
            EXPECT_NE(ThrownText<std::domain_error>([&] { family.cumulative(2, 3, df, kEqualGroups.data(), 0); })
                          .find("chi_squared_distribution<double>::chi_squared_distribution: Degrees of freedom "
                                "argument is "),
                      std::string::npos);
        }
    for (double df : {0.0, -1.0, kInfinity, kNaN})
        for (const Family& family : kFamilies) {
            EXPECT_NE(
                ThrownText<std::domain_error>([&] {
                    family.quantile(0.9, 3, df, kEqualGroups.data(), 0);
                }).find("students_t_distribution<double>::students_t_distribution: Degrees of freedom argument is "),
                std::string::npos);
        }
    EXPECT_NO_THROW(MCcCDF(2, 3, kInfinity, kEqualGroups.data(), 0)) << "an infinite df works here";
}

TEST(MCFailure, NaNReachesANormalProbability) {
    for (const Family& family : kFamilies)
        EXPECT_EQ(ThrownText<std::domain_error>([&] { family.cumulative(kNaN, 3, 10, kEqualGroups.data(), 0); })
                      .find("Error in function boost::math::cdf(const normal_distribution<double>&, double): "
                            "Random variate x is "),
                  0u);
    const double beyond[3] = {1.5, 0.5, 0.5};
    for (const Family& family : kFamilies)
        EXPECT_NE(ThrownText<std::domain_error>([&] { family.cumulative(2, 3, 10, beyond, 0); }), "");
}

TEST(MCFailure, ProbabilityOneOverflows) {
    for (const Family& family : kFamilies) {
        EXPECT_NE(ThrownText<std::overflow_error>([&] { family.quantile(1, 3, 10, kEqualGroups.data(), 0); }), "");
        EXPECT_NE(ThrownText<std::overflow_error>([&] { family.quantile(0, 3, 10, kEqualGroups.data(), 1); }), "");
    }
}

TEST(MCFailure, AboveTheCeilingNothingIsBracketed) {
    for (const Family& family : kFamilies)
        EXPECT_EQ(ThrownText<std::domain_error>([&] { family.quantile(0.99999999, 3, 10, kEqualGroups.data(), 0); })
                      .find("Error in function boost::math::tools::toms748_solve<double>: "
                            "Parameters a and b do not bracket the root: a="),
                  0u);
}

TEST(MCFailure, ErrnoStaysAsItWas) {
    errno = 7;
    MCcCDF(9, 5, 3, kEqualGroups.data(), 0);
    EXPECT_EQ(errno, 7);
    EXPECT_THROW(MCcICDF(1, 3, 10, kEqualGroups.data(), 0), std::overflow_error);
    EXPECT_EQ(errno, 7);
}

// Published tables: the printed figure where it is right, and the recomputed point as far as the rule
// with its cut-off of 1e-7 allows.

void CompareWithTable(const std::string& name, Export quantile, int groupsBeyond, double unit, double ruleError) {
    double worst = 0;
    for (const auto& row : orvanth::test::ReadTable("published/" + name)) {
        const double alpha = std::stod(row[0]), df = row[2] == "inf" ? 1e6 : std::stod(row[2]);
        const double recomputed = std::stod(row[4]) / unit;
        const double x = quantile(alpha, std::stoi(row[1]) + groupsBeyond, df, kEqualGroups.data(), 1);
        const double error = std::fabs(x / recomputed - 1);
        // At df = 1 and 2 the tails cut from the scale weigh heavily.
        EXPECT_LT(error, df <= 2 ? 150 * ruleError : ruleError) << name << " " << row[1] << " " << row[2];
        if (df > 2) worst = std::max(worst, error);
        const std::size_t point = row[3].find('.');
        const double half = 0.5 * std::pow(10, -static_cast<double>(row[3].size() - point - 1));
        if (row[5] == "yes" && df > 2) {
            EXPECT_NEAR(x * unit, std::stod(row[3]), half * 1.01) << name << " " << row[1] << " " << row[2];
        }
    }
    std::printf("  %s: worst relative error for df > 2 %.1e\n", name.c_str(), worst);
}

TEST(Published, StudentizedRange) { CompareWithTable("studentized_range.tsv", MCaICDF, 0, std::sqrt(2.0), 2e-5); }
TEST(Published, DunnettTwoSided) { CompareWithTable("dunnett_two_sided.tsv", MCcICDF, 1, 1, 2e-6); }
TEST(Published, DunnettOneSided) { CompareWithTable("dunnett_one_sided.tsv", MCbICDF, 1, 1, 2e-6); }

TEST(MCThread, ManyThreadsShareOneLambda) {
    const std::vector<double> lambda = {kEqual, 0.5, 0.5, 0.6, 0.2};
    const double alone[3] = {MCaICDF(0.95, 5, 12, lambda.data(), 0), MCbICDF(0.95, 5, 12, lambda.data(), 0),
                             MCcICDF(0.95, 5, 12, lambda.data(), 0)};
    std::vector<std::thread> threads;
    std::vector<int> agree(8, 0);
    for (std::size_t t = 0; t < agree.size(); ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 3; ++i) agree[t] += kFamilies[i].quantile(0.95, 5, 12, lambda.data(), 0) == alone[i];
        });
    for (std::thread& thread : threads) thread.join();
    for (int count : agree) EXPECT_EQ(count, 3);
}

}  // namespace
