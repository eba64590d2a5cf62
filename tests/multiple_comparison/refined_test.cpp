// The refined forms against 36-digit integration, and their edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>

#include "frame/failure.hpp"
#include "multiple_comparison/families.hpp"
#include "multiple_comparison/refined.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

using Refined = double (*)(double, std::int32_t, double, std::span<const double>, bool);
struct RefinedFamily {
    Refined cumulative;
    Refined quantile;
    Export plain;
};
const std::map<std::string, RefinedFamily> kRefined = {{"Tukey", {RefinedTukeyCDF, RefinedTukeyICDF, MCaCDF}},
                                                       {"Hsu", {RefinedHsuCDF, RefinedHsuICDF, MCbCDF}},
                                                       {"Dunnett", {RefinedDunnettCDF, RefinedDunnettICDF, MCcCDF}}};

// The coefficients of a row: "equal", or numbers with commas between them.
std::vector<double> Coefficients(const std::string& cell) {
    if (cell == "equal") return kEqualGroups;
    std::vector<double> found;
    std::istringstream stream(cell);
    for (std::string number; std::getline(stream, number, ',');) found.push_back(std::stod(number));
    return found;
}

// Every row of a table of probabilities: both tails, and the quantile of the tail that the row names.
void ExpectAgreement(const std::string& table, int fewest) {
    double worstProbability = 0, worstTail = 0, worstQuantile = 0;
    int rows = 0;
    for (const auto& row : ReadTable(table)) {
        const RefinedFamily& family = kRefined.at(row[0]);
        const std::int32_t k = std::stoi(row[1]);
        const double df = std::stod(row[2]), x = std::strtod(row[5].c_str(), nullptr);
        const std::vector<double> lambda = Coefficients(row[3]);
        const bool upper = row[4] == "upper";
        const std::string where = row[0] + " k " + row[1] + " df " + row[2] + " " + row[4] + " x " + row[5];
        for (const bool side : {false, true}) {
            const double exact = std::stod(row[side ? 7 : 6]);
            const double found = family.cumulative(x, k, df, lambda, side);
            const double error = std::fabs(found - exact);
            EXPECT_LE(error, 1e-10) << where;
            worstProbability = std::max(worstProbability, error);
            if (side != upper) continue;
            // Each row stands at a level of the tail that it names.
            EXPECT_LE(error / exact, 1e-9) << where;
            worstTail = std::max(worstTail, error / exact);
            const double quantile = family.quantile(exact, k, df, lambda, side);
            // Near x = 0 a one-sided quantile has an absolute error.
            const double relative = std::fabs(quantile - x) / std::max(std::fabs(x), row[0] == "Hsu" ? 1e-2 : 0.0);
            EXPECT_LE(relative, 1e-8) << where;
            worstQuantile = std::max(worstQuantile, relative);
        }
        ++rows;
    }
    EXPECT_GE(rows, fewest);
    std::printf("  worst: probability %.1e, relative in a tail %.1e, quantile %.1e in %d rows\n", worstProbability,
                worstTail, worstQuantile, rows);
}

TEST(Refined, AgreesWithIntegrationTo36Digits) { ExpectAgreement("accuracy/refined_multiple_comparison.tsv", 200); }

TEST(Refined, AgreesWithDirectIntegrationForUnequalCoefficientsToo) {
    ExpectAgreement("accuracy/refined_direct.tsv", 36);
}

TEST(Refined, TailsAddToOneForUnequalAndNegativeCoefficients) {
    std::mt19937_64 random(20260412);
    std::uniform_real_distribution<double> coefficient(-0.95, 0.95), point(-1, 6), exponent(0, 4);
    for (int trial = 0; trial < 60; ++trial) {
        const std::int32_t k = 2 + trial % 7;
        std::vector<double> lambda(static_cast<std::size_t>(k));
        for (double& l : lambda) l = coefficient(random);
        const double df = std::pow(10, exponent(random)), x = point(random);
        for (const Refined function : {RefinedHsuCDF, RefinedDunnettCDF}) {
            const double sum = function(x, k, df, lambda, false) + function(x, k, df, lambda, true);
            EXPECT_NEAR(sum, 1.0, 1e-10) << "trial " << trial << " k " << k << " df " << df << " x " << x;
        }
        if (df > 3 && df < 1000) {
            EXPECT_NEAR(RefinedDunnettCDF(std::fabs(x), k, df, lambda, false),
                        MCcCDF(std::fabs(x), k, df, lambda.data(), 0), 2e-5);
            EXPECT_NEAR(RefinedHsuCDF(x, k, df, lambda, false), MCbCDF(x, k, df, lambda.data(), 0), 2e-5);
        }
    }
}

TEST(Refined, QuantileInvertsBothTailsForUnequalCoefficients) {
    const std::array<double, 5> lambda = {0.3, 0.9, 0.6, 0.6, 0};
    for (const auto& [name, family] : kRefined)
        for (const double df : {1.0, 7.5, 1000.0, kInfinity})
            for (const double p : {1e-12, 1e-4, 0.3, 0.5, 0.95, 0.999999})
                for (const bool upper : {false, true}) {
                    const std::span<const double> used =
                        name == "Tukey" ? std::span<const double>(kEqualGroups) : std::span<const double>(lambda);
                    const double x = family.quantile(p, 5, df, used, upper);
                    EXPECT_NEAR(family.cumulative(x, 5, df, used, upper) / p, 1.0, 2e-8)
                        << name << " df " << df << " p " << p << " upper " << upper;
                }
}

TEST(Refined, SteepCoefficientsLieBetweenTheirBounds) {
    for (const double l : {0.95, 0.99, 0.999, kLargestCoefficient}) {
        const std::vector<double> lambda(5, l);
        for (const double df : {3.0, 10.0, kInfinity})
            for (const double x : {1.0, 2.5, 8.0}) {
                const std::array<double, 2> pair = {l, l};
                const double one = RefinedHsuCDF(x, 2, df, pair, true), two = RefinedDunnettCDF(x, 2, df, pair, true);
                const double hsu = RefinedHsuCDF(x, 5, df, lambda, true);
                const double dunnett = RefinedDunnettCDF(x, 5, df, lambda, true);
                // A single comparison, and four times that. With equal coefficients near 1 both are close.
                EXPECT_GT(hsu, one) << "lambda " << l << " df " << df << " x " << x;
                EXPECT_LT(hsu, 4 * one) << "lambda " << l << " df " << df << " x " << x;
                EXPECT_GT(dunnett, two) << "lambda " << l << " df " << df << " x " << x;
                EXPECT_LT(dunnett, 4 * two) << "lambda " << l << " df " << df << " x " << x;
                // Both ends at once hardly occur.
                if (x > 2) {
                    EXPECT_NEAR(dunnett / hsu, 2.0, 1e-2);
                }
                EXPECT_NEAR(hsu + RefinedHsuCDF(x, 5, df, lambda, false), 1.0, 1e-10);
                EXPECT_NEAR(dunnett + RefinedDunnettCDF(x, 5, df, lambda, false), 1.0, 1e-10);
            }
    }
}

TEST(Refined, TwoGroupsAreStudentsDistribution) {
    const std::array<double, 2> lambda = {0.6, 0.6};
    // Cauchy's distribution at df = 1, and arctan's series for a small x.
    const double pi = std::acos(-1.0);
    for (const double x : {1e-9, 0.3, 2.0, 1e6}) {
        EXPECT_NEAR(RefinedDunnettCDF(x, 2, 1, lambda, false) / (2 / pi * std::atan(x)), 1, 1e-14);
        EXPECT_NEAR(RefinedDunnettCDF(x, 2, 1, lambda, true) / (2 / pi * std::atan(1 / x)), 1, 1e-14);
        EXPECT_NEAR(RefinedHsuCDF(-x, 2, 1, lambda, false) / (std::atan(1 / x) / pi), 1, 1e-14);
    }
    for (const double p : {1e-12, 1e-5, 2e-4, 0.2})
        EXPECT_NEAR(RefinedDunnettICDF(p, 2, 1, lambda, false) / std::tan(pi / 2 * p), 1, 1e-12);
    EXPECT_NEAR(RefinedDunnettCDF(1e-8, 2, kInfinity, lambda, false) / (1e-8 * std::sqrt(2 / pi)), 1, 1e-14);
}

// Their difference has the variance 1 whatever the coefficient; only the equal one takes the short way.
TEST(Refined, TwoGroupsOfAllPairsAreStudentsWithAnyCoefficient) {
    const double student = 2 / std::acos(-1.0) * std::atan(2.0);
    for (const double l : {std::sqrt(0.5), 0.6, -0.3}) {
        const std::array<double, 2> lambda = {l, l};
        EXPECT_NEAR(RefinedTukeyCDF(2, 2, 1, lambda, false), student, 1e-12) << l;
    }
}

TEST(Refined, ExtremeArgumentsEnd) {
    const std::span<const double> lambda(kEqualGroups);
    for (const auto& [name, family] : kRefined)
        for (const double df : {kLeastDf, 0.3, 1.0, 1e14, 1e300, kInfinity}) {
            for (const double x : {-1e300, -40.0, 1e-300, 1e-10, 40.0, 1e10, 1e300}) {
                const double lower = family.cumulative(x, 4, df, lambda, false);
                const double upper = family.cumulative(x, 4, df, lambda, true);
                EXPECT_NEAR(lower + upper, 1.0, 1e-9) << name << " df " << df << " x " << x;
            }
            for (const double p : {1e-300, 0.5, 1 - 1e-16})
                for (const bool upper : {false, true}) {
                    const double x = family.quantile(p, 4, df, lambda, upper);
                    EXPECT_TRUE(std::isnan(x) || std::fabs(x) < 1e308) << name << " df " << df << " p " << p;
                }
        }
}

TEST(Refined, EndsOfTheRange) {
    const std::span<const double> lambda(kEqualGroups);
    for (const auto& [name, family] : kRefined) {
        EXPECT_EQ(family.cumulative(kInfinity, 4, 10, lambda, false), 1.0);
        EXPECT_EQ(family.cumulative(kInfinity, 4, 10, lambda, true), 0.0);
        EXPECT_EQ(family.cumulative(-kInfinity, 4, 10, lambda, true), 1.0);
        EXPECT_EQ(family.cumulative(2, 1, 10, lambda, false), 1.0);
        if (name != "Hsu") {
            EXPECT_EQ(family.cumulative(0, 4, 10, lambda, false), 0.0);
            EXPECT_EQ(family.cumulative(-1, 4, 10, lambda, true), 1.0);
        }
        for (const double bad : {0.0, 1.0, -0.1, kNaN})
            for (const std::int32_t k : {2, 4})
                for (const bool upper : {false, true})
                    EXPECT_TRUE(std::isnan(family.quantile(bad, k, 10, lambda, upper)))
                        << name << " p " << bad << " k " << k << (upper ? " upper" : "");
        for (const double df : {0.0, -1.0, kNaN}) {
            EXPECT_TRUE(std::isnan(family.cumulative(2, 4, df, lambda, false)));
            EXPECT_TRUE(std::isnan(family.quantile(0.9, 4, df, lambda, false)));
        }
        EXPECT_TRUE(std::isnan(family.cumulative(kNaN, 4, 10, lambda, false)));
        EXPECT_TRUE(std::isnan(family.cumulative(2, 0, 10, lambda, false)));
        EXPECT_TRUE(std::isnan(family.quantile(0.9, 1, 10, lambda, false)));
        EXPECT_TRUE(std::isnan(family.cumulative(2, 4, 10, std::array<double, 4>{1, 1, 1, 1}, false)));
        EXPECT_TRUE(std::isnan(family.cumulative(2, 4, 10, std::span<const double>{}, false)))
            << "too few coefficients";
    }
}

// Only 1 / sqrt 2 makes a distribution of all pairs; with another coefficient the formula has another limit than 1.
TEST(Refined, AllPairsWithAnotherCoefficientFollowTheFormula) {
    for (const double lambda : {0.5, 0.65, 0.8})
        for (const double df : {8.0, 1e9}) {
            const std::vector<double> one{lambda};
            const double lower = RefinedTukeyCDF(2.5, 4, df, one, false);
            const std::array<double, 4> all = {lambda, lambda, lambda, lambda};
            EXPECT_NEAR(lower, MCaCDF(2.5, 4, df, all.data(), 0), 1e-6) << lambda << " df " << df;
            EXPECT_EQ(RefinedTukeyCDF(2.5, 4, df, one, true), 1.0 - lower);
        }
    // Near the limit, by sums over 40000 points; the probability leaves it over the smallest scales only.
    EXPECT_NEAR(RefinedTukeyCDF(1000, 2, 2, std::vector<double>{0.1}, false), 0.999999000001499, 1e-11);
    EXPECT_NEAR(RefinedTukeyCDF(1000, 5, 1, std::vector<double>{-0.4}, false), 0.511766391804397, 1e-11);
    EXPECT_NEAR(RefinedTukeyCDF(1000, 100, 1, std::vector<double>{0.93}, false) / 16.43079703012819, 1, 1e-11);
    const std::vector<double> flat{0.5};
    const double limit = RefinedTukeyCDF(1e6, 4, 20, flat, false);
    EXPECT_LT(limit, 0.9);
    EXPECT_TRUE(std::isnan(RefinedTukeyICDF(0.99, 4, 20, flat, false))) << "no x reaches this probability";
    const double median = RefinedTukeyICDF(0.5 * limit, 4, 20, flat, false);
    EXPECT_NEAR(RefinedTukeyCDF(median, 4, 20, flat, false), 0.5 * limit, 1e-9);
}

TEST(Refined, GroupsAndCoefficientsOutsideTheirRangeGiveNaN) {
    const std::vector<double> lambda(4, 0.5);
    for (const auto& [name, family] : kRefined) {
        EXPECT_FALSE(std::isnan(family.cumulative(2, 5, 10, lambda, false))) << name;
        EXPECT_TRUE(std::isnan(family.cumulative(2, 0, 10, lambda, false))) << name;
        EXPECT_TRUE(std::isnan(family.cumulative(2, 46342, 10, lambda, false))) << name;
        EXPECT_EQ(std::isnan(family.cumulative(2, 6, 10, lambda, false)), name != "Tukey") << name;
        EXPECT_TRUE(std::isnan(family.cumulative(2, 5, 0, lambda, false))) << name;
        EXPECT_TRUE(std::isnan(family.cumulative(2, 5, kNaN, lambda, false))) << name;
    }
}

}  // namespace
