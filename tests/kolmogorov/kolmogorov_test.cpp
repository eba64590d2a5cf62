// The two exports: regions, edges, failures, properties.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>

#include <boost/math/tools/toms748_solve.hpp>

#include "frame/policies.hpp"
#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/kolmogorov.hpp"
#include "kolmogorov/pelz_good.hpp"
#include "kolmogorov/pomeranz.hpp"
#include "kolmogorov/tails.hpp"
#include "orvanth/kolmogorov.h"
#include "support/call.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::kolmogorov;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;

constexpr unsigned kSeed = 20240120;
constexpr const char* kUnbracketed =
    "Error in function boost::math::tools::bracket_and_solve_root<double>: "
    "Unable to bracket root, last nearest value was ";

double At(std::int32_t n, double w) { return std::sqrt(w / n); }

TEST(KolmogorovCDF, NegativeXIsAnsweredForAnyN) {
    for (double n : {10.0, -3.0, 0.0, 1e300, kNaN}) {
        EXPECT_EQ(KolmogorovCDF(-0.5, n, 0), 0.0);
        EXPECT_EQ(KolmogorovCDF(-0.5, n, 1), 1.0);
    }
}

TEST(KolmogorovCDF, ZeroIsAnsweredByTheClosedForms) {
    for (double n : {1.0, 10.0, 1000.0, 1e6}) {
        EXPECT_EQ(KolmogorovCDF(0, n, 0), 0.0);
        EXPECT_EQ(KolmogorovCDF(-0.0, n, 1), 1.0);
    }
}

TEST(KolmogorovCDF, OneObservation) {
    EXPECT_EQ(KolmogorovCDF(0.5, 1, 0), 0.0);
    EXPECT_EQ(KolmogorovCDF(0.75, 1, 0), 0.5);
    EXPECT_EQ(KolmogorovCDF(1, 1, 0), 1.0);
    EXPECT_EQ(KolmogorovCDF(0.5, 1, 1), 1.0);
    EXPECT_EQ(KolmogorovCDF(0.75, 1, 1), 0.5);
    EXPECT_EQ(KolmogorovCDF(1, 1, 1), 0.0);
    EXPECT_EQ(KolmogorovCDF(0.5, 2, 0), 0.5);
}

TEST(KolmogorovCDF, WorkedValues) {
    EXPECT_NEAR(KolmogorovCDF(0.2, 10, 0), 0.25128096, 5e-9);
    EXPECT_NEAR(KolmogorovCDF(0.3, 10, 0), 0.7294644252, 5e-11);
    EXPECT_NEAR(KolmogorovCDF(0.1, 141, 0), 0.88871554, 5e-9);
    EXPECT_NEAR(KolmogorovCDF(0.21, 100, 1), 0.00023947345, 5e-12);
    EXPECT_NEAR(KolmogorovCDF(0.05, 1000, 1), 0.013012075, 5e-10);
}

TEST(KolmogorovCDF, NIsTruncatedTowardZero) {
    EXPECT_EQ(KolmogorovCDF(0.3, 7.9, 0), KolmogorovCDF(0.3, 7, 0));
    EXPECT_EQ(KolmogorovCDF(0.3, 10.9, 1), KolmogorovCDF(0.3, 10, 1));
}

TEST(Kolmogorov, TheWholeWordOfTheComplementCounts) {
    for (std::int32_t word : {1, 0x100, 0x10000, INT32_MIN, -1}) {
        EXPECT_EQ(KolmogorovCDF(0.3, 10, word), KolmogorovCDF(0.3, 10, 1)) << word;
        EXPECT_EQ(KolmogorovCDF(-1, 10, word), 1.0) << word;
        EXPECT_EQ(KolmogorovICDF(0.05, 40, word), KolmogorovICDF(0.05, 40, 1)) << word;
    }
    EXPECT_NE(KolmogorovCDF(0.3, 10, 0), KolmogorovCDF(0.3, 10, 1));
    EXPECT_NE(KolmogorovICDF(0.05, 40, 0), KolmogorovICDF(0.05, 40, 1));
}

TEST(KolmogorovCDF, EachRegionTakesTheMethodOfTheDecisionTable) {
    EXPECT_EQ(KolmogorovCumulative(100, At(100, 0.754)), DurbinMatrix(100, At(100, 0.754)));
    EXPECT_EQ(KolmogorovCumulative(100, At(100, 0.7547)), Pomeranz(100, At(100, 0.7547)));
    EXPECT_EQ(KolmogorovCumulative(100, 0.2), 1.0 - 2.0 * SmirnovUpperTail(100, 0.2)) << "w = 4.0 belongs above";
    EXPECT_EQ(KolmogorovCumulative(100, 0.1999), Pomeranz(100, 0.1999));
    EXPECT_EQ(KolmogorovCumulative(141, 0.02), DurbinMatrix(141, 0.02));
    EXPECT_EQ(KolmogorovCumulative(141, 0.1), PelzGood(141, 0.1));
    EXPECT_EQ(KolmogorovComplement(141, At(141, 2.21)), 2.0 * SmirnovUpperTail(141, At(141, 2.21)));
    EXPECT_EQ(KolmogorovComplement(141, At(141, 2.19)), 1.0 - PelzGood(141, At(141, 2.19)));
    EXPECT_EQ(KolmogorovComplement(140, At(140, 2.21)), 1.0 - Pomeranz(140, At(140, 2.21)));
    for (std::int32_t n : {20, 60, 140}) {
        const double below = At(n, 0.7546929), above = At(n, 0.7546931);
        EXPECT_EQ(KolmogorovCumulative(n, below), DurbinMatrix(n, below)) << n;
        EXPECT_EQ(KolmogorovCumulative(n, above), Pomeranz(n, above)) << n;
        EXPECT_NE(Pomeranz(n, below), DurbinMatrix(n, below)) << n;
        EXPECT_NE(Pomeranz(n, above), DurbinMatrix(n, above)) << n;
    }
    // n^2 x^3 = 2 divides matrix and series.
    const double inside = std::cbrt(1.9999 / 1e6), outside = std::cbrt(2.0001 / 1e6);
    EXPECT_EQ(KolmogorovCumulative(1000, inside), DurbinMatrix(1000, inside));
    EXPECT_EQ(KolmogorovCumulative(1000, outside), PelzGood(1000, outside));
    // The matrix serves samples up to n = 100000.
    const double x = std::cbrt(1.99 / 1e10);
    EXPECT_EQ(KolmogorovCumulative(100000, x), DurbinMatrix(100000, x));
    EXPECT_EQ(KolmogorovCumulative(100001, x), PelzGood(100001, x));
}

TEST(KolmogorovCDF, TailsAddToOneWithinRoundingOrWithin6em7WhereTheirMethodsDiffer) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(0.1, 6), strength(0.03, 17);
    for (int i = 0; i < 2000; ++i) {
        const double n = std::floor(std::pow(10, exponent(random))), x = std::sqrt(strength(random) / n);
        const double lower = KolmogorovCDF(x, n, 0), upper = KolmogorovCDF(x, n, 1);
        const bool unrelated = n > 140 && n * x * x >= 2.2;
        EXPECT_NEAR(lower + upper, 1, unrelated ? 6e-7 : 3e-16) << "seed " << kSeed << " n " << n << " x " << x;
    }
}

TEST(KolmogorovCDF, TheSumOfTheTailsIsFarthestFromOneWhereTheirMethodsPart) {
    const double x = At(141, 2.2000001);
    const double off = KolmogorovCDF(x, 141, 0) + KolmogorovCDF(x, 141, 1) - 1;
    EXPECT_NEAR(std::fabs(off), 5.17e-7, 0.02e-7);
}

TEST(KolmogorovCDF, RisesWithX) {
    for (double n : {2.0, 10.0, 100.0, 140.0, 1000.0, 100000.0}) {
        double before = 0;
        for (int i = 1; i < 400; ++i) {
            const double p = KolmogorovCDF(std::sqrt(i * 0.01 / n), n, 0);
            EXPECT_GE(p, before - 1e-7) << n << " " << i;  // a step of that size stands where regions meet
            before = p;
        }
    }
}

TEST(KolmogorovCDF, SenselessInputGivesNaNAndReturnsAtOnce) {
    for (double n : {-1.0, -1e300, 2147483648.0, 1e300, std::numeric_limits<double>::infinity(), kNaN})
        for (std::int32_t complement : {0, 1}) {
            EXPECT_TRUE(std::isnan(KolmogorovCDF(0.1, n, complement))) << n;
            EXPECT_EQ(CallWithErrno(7, [=] { return KolmogorovCDF(0.1, n, complement); }).errnoAfter, 7);
        }
    EXPECT_TRUE(std::isnan(KolmogorovCDF(kNaN, 10, 0)));
    EXPECT_EQ(KolmogorovCDF(std::numeric_limits<double>::infinity(), 10, 0), 1.0);
    for (double n : {0.0, 0.5, -0.5}) {
        const double p = KolmogorovCDF(0.1, n, 0);
        EXPECT_TRUE(p == 0.0 || p == 1.0) << n;
    }
    EXPECT_NEAR(KolmogorovCDF(3e-5, 2147483647.0, 0), 0.95, 0.06);
}

TEST(KolmogorovCDF, EveryBitPatternIsAnsweredByAProbabilityOrNaN) {
    std::mt19937_64 random(kSeed);
    const auto anything = [&] { return std::bit_cast<double>(random()); };
    const double sizes[] = {0,   0.5, 1, 2, 3, 20, 21, 140, 141, 3001, 100000, 200001, 2147483647.0, 2147483648.0,
                            kNaN};
    for (int i = 0; i < 3000; ++i) {
        const double n = i % 3 == 0 ? anything() : sizes[random() % std::size(sizes)];
        // Beside the points where a closed form ends, or anywhere.
        const double edges[] = {anything(), 0.5 / n, 1 / n, 1 - 1 / n, 1, std::sqrt(18 / n), std::sqrt(370 / n)};
        const double edge = edges[random() % std::size(edges)];
        const double x = i % 2 == 0 ? edge : std::nextafter(edge, i % 4 == 1 ? -kInfinity : kInfinity);
        for (std::int32_t complement : {0, 1}) {
            const double p = KolmogorovCDF(x, n, complement);
            EXPECT_TRUE(std::isnan(p) || (p >= -1e-15 && p <= 1 + 1e-15))
                << std::hexfloat << "seed " << kSeed << " x " << x << " n " << n << " p " << p;
        }
    }
}

TEST(KolmogorovCDF, UnderflowOfTheRuntimeDoesNotReachErrno) {
    EXPECT_EQ(CallWithErrno(0, [] { return KolmogorovCDF(0.6, 1000, 1); }).errnoAfter, 0);
    EXPECT_EQ(CallWithErrno(0, [] { return KolmogorovCDF(0.0006, 1000, 0); }).errnoAfter, 0);
}

TEST(KolmogorovICDF, TheSearchHas24BitsAGrowthOf2AndACapOf100) {
    const auto search = [](double p, double n, int bits, double growth, std::uintmax_t cap) {
        const auto [a, b] = boost::math::tools::bracket_and_solve_root(
            [=](double x) { return KolmogorovCDF(x, n, 0) - p; }, 1.36 / std::sqrt(n), growth, true,
            boost::math::tools::eps_tolerance<double>(bits), cap, DefaultPolicy());
        return (b - a) * 0.5 + a;
    };
    int bitsShow = 0, growthShows = 0;
    for (double p : {0.01, 0.1, 0.3, 0.5, 0.7, 0.9, 0.99})
        for (double n : {10.0, 50.0, 300.0, 5000.0}) {
            EXPECT_EQ(KolmogorovICDF(p, n, 0), search(p, n, 24, 2.0, 100)) << p << " " << n;
            bitsShow += KolmogorovICDF(p, n, 0) != search(p, n, 23, 2.0, 100);
            growthShows += KolmogorovICDF(p, n, 0) != search(p, n, 24, 3.0, 100);
        }
    EXPECT_GT(bitsShow, 0);
    EXPECT_GT(growthShows, 0);
    // The cap is reached only where the start lies far off, for a size that no sample has.
    EXPECT_EQ(KolmogorovICDF(0.5, 1e-150, 0), search(0.5, 1e-150, 24, 2.0, 100));
    EXPECT_NE(KolmogorovICDF(0.5, 1e-150, 0), search(0.5, 1e-150, 24, 2.0, 99));
}

TEST(KolmogorovICDF, BothTailsGiveTheSamePoint) {
    EXPECT_NEAR(KolmogorovICDF(0.95, 100, 0), 0.13403, 5e-6);
    EXPECT_NEAR(KolmogorovICDF(0.05, 100, 1), 0.13403, 5e-6);
}

TEST(KolmogorovICDF, InvertsTheDistribution) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(0.4, 5), probability(0.001, 0.999);
    for (int i = 0; i < 200; ++i) {
        const double n = std::floor(std::pow(10, exponent(random))), p = probability(random);
        const double x = KolmogorovICDF(p, n, 0);
        EXPECT_LE(KolmogorovCDF(x * (1 - 2e-7), n, 0), p + 1e-9) << "seed " << kSeed << " n " << n << " p " << p;
        EXPECT_GE(KolmogorovCDF(x * (1 + 2e-7), n, 0), p - 1e-9) << "seed " << kSeed << " n " << n << " p " << p;
    }
}

TEST(KolmogorovICDF, ZeroAndOneArePointsOfTheWalk) {
    const double start = 1.36 / std::sqrt(25.0);
    const auto isPointOfWalk = [&](double x) {
        const double steps = std::log2(x / start);
        return steps == std::round(steps);
    };
    const double low = KolmogorovICDF(0, 25, 0), high = KolmogorovICDF(1, 25, 0);
    EXPECT_TRUE(isPointOfWalk(low));
    EXPECT_TRUE(isPointOfWalk(high));
    EXPECT_EQ(KolmogorovCDF(low, 25, 0), 0.0);
    EXPECT_GT(KolmogorovCDF(2 * low, 25, 0), 0.0);
    EXPECT_EQ(KolmogorovCDF(high, 25, 0), 1.0);
    EXPECT_LT(KolmogorovCDF(high / 2, 25, 0), 1.0);
}

TEST(KolmogorovICDF, TheStartUsesNAndTheEvaluationsItsWholePart) {
    EXPECT_NE(KolmogorovICDF(0, 7.9, 0), KolmogorovICDF(0, 7, 0));
    EXPECT_NEAR(KolmogorovICDF(0.5, 7.9, 0) / KolmogorovICDF(0.5, 7, 0), 1, 3e-7);
}

TEST(KolmogorovICDF, AProbabilityThatNoXReachesThrows) {
    for (double p : {-0.1, 1.5, kNaN, kInfinity, -kInfinity})
        for (std::int32_t complement : {0, 1}) {
            errno = 7;
            EXPECT_EQ(ThrownText<boost::math::evaluation_error>([=] {
                          KolmogorovICDF(p, 20, complement);
                      }).find(kUnbracketed),
                      0u)
                << p;
            EXPECT_EQ(errno, 7);
        }
}

TEST(KolmogorovICDF, TheFailureTellsThePoint299BinaryPlacesFromTheStart) {
    const auto told = [](double p, double n, std::int32_t complement) {
        const std::string text = ThrownText<boost::math::evaluation_error>([=] { KolmogorovICDF(p, n, complement); });
        return std::stod(text.substr(std::string(kUnbracketed).size()));
    };
    for (double n : {1.0, 20.0, 1e6}) {
        const double up = std::ldexp(1.36 / std::sqrt(n), 299), down = std::ldexp(1.36 / std::sqrt(n), -299);
        EXPECT_EQ(told(1.5, n, 0), up);
        EXPECT_EQ(told(-0.1, n, 1), up);
        EXPECT_EQ(told(-0.1, n, 0), down);
        EXPECT_EQ(told(1.5, n, 1), down);
        EXPECT_EQ(told(kNaN, n, 0), down);
        EXPECT_EQ(told(kNaN, n, 1), down);
    }
}

TEST(KolmogorovICDF, ASenselessSampleSizeThrowsAndReturnsAtOnce) {
    for (double n : {-5.0, -0.5, kNaN, kInfinity, 1e300})
        EXPECT_EQ(ThrownText<boost::math::evaluation_error>([=] { KolmogorovICDF(0.5, n, 0); }).find(kUnbracketed),
                  0u)
            << n;
}

TEST(KolmogorovICDF, EveryBitPatternIsAnsweredOrThrows) {
    std::mt19937_64 random(kSeed);
    int answered = 0;
    for (int i = 0; i < 3000; ++i) {
        const double n = i % 2 == 0 ? std::bit_cast<double>(random()) : static_cast<double>(random() % 300);
        const double p = i % 3 == 0 ? std::bit_cast<double>(random()) : static_cast<double>(random() % 1001) / 1000;
        try {
            const double x = KolmogorovICDF(p, n, i % 5 == 0);
            EXPECT_GE(x, 0) << std::hexfloat << "seed " << kSeed << " p " << p << " n " << n;
            ++answered;
        } catch (const boost::math::evaluation_error&) {
        }
    }
    EXPECT_GT(answered, 500);
}

TEST(KolmogorovICDF, BelowOneObservationThereIsOnlyTheJumpAtOne) {
    EXPECT_EQ(ThrownText<boost::math::evaluation_error>([] { KolmogorovICDF(0.5, 0, 0); }).find(kUnbracketed), 0u);
    EXPECT_NEAR(KolmogorovICDF(0.5, 0.5, 0), 1.0, 2e-7);
}

TEST(KolmogorovICDF, MessagesOfTheSearchAreThoseOfItsPolicy) {
    // The walk always ends with ordered ends of different sign, so these two are raised here by hand.
    const auto solve = [](double a, double b) {
        std::uintmax_t evaluations = 100;
        boost::math::tools::toms748_solve([](double x) { return x; }, a, b, a, b,
                                          boost::math::tools::eps_tolerance<double>(24), evaluations,
                                          DefaultPolicy());
    };
    EXPECT_EQ(ThrownText<std::domain_error>([&] { solve(2, 1); }),
              "Error in function boost::math::tools::toms748_solve<double>: Parameters a and b out of order: a=2");
    EXPECT_EQ(ThrownText<std::domain_error>([&] { solve(1, 2); }),
              "Error in function boost::math::tools::toms748_solve<double>: Parameters a and b do not bracket the "
              "root: a=1");
}

TEST(Published, PercentagePointsWhereThePrintedFigureIsRight) {
    int compared = 0;
    for (const auto& row : orvanth::test::ReadTable("published/kolmogorov_percentage_points.tsv")) {
        const double n = std::stod(row[0]), alpha = std::stod(row[1]);
        EXPECT_NEAR(KolmogorovICDF(alpha, n, 1), std::stod(row[4]), 2e-7) << n << " " << alpha;
        if (row[5] == "yes") {
            EXPECT_NEAR(KolmogorovICDF(alpha, n, 1), std::stod(row[2]), 5.2e-6) << n << " " << alpha;
        }
        ++compared;
    }
    EXPECT_EQ(compared, 100);
}

std::string Region(double n, double x) {
    if (KolmogorovCumulativeSpecial(static_cast<std::int32_t>(n), x)) return "closed form";
    const double w = n * x * x;
    if (n <= 140) return w < 0.754693 ? "matrix, n <= 140" : w < 4 ? "recursion" : "one-sided tail, n <= 140";
    if (w * x * n <= 2.0 && n <= 100000) return "matrix, n > 140";
    return w < 2.2 ? "series, w < 2.2" : "series and one-sided tail";
}

struct Errors {
    int rows = 0;
    double lower = 0, upper = 0;
};

// The record of docs/accuracy/kolmogorov.md.
const std::map<std::string, Errors> kRecorded = {{"closed form", {0, 2e-14, 3e-12}},
                                                 {"matrix, n <= 140", {0, 4e-15, 4e-15}},
                                                 {"recursion", {0, 2e-13, 2e-10}},
                                                 {"one-sided tail, n <= 140", {0, 6e-15, 1e-11}},
                                                 {"matrix, n > 140", {0, 2e-14, 1e-15}},
                                                 {"series, w < 2.2", {0, 3.5e-5, 2e-5}},
                                                 {"series and one-sided tail", {0, 6e-7, 2e-6}}};

TEST(Published, ExactValuesAndTheErrorOfEachRegion) {
    std::map<std::string, Errors> worst;
    for (const auto& row : orvanth::test::ReadTable("published/kolmogorov_exact.tsv")) {
        const double n = std::stod(row[0]), x = std::stod(row[1]), lower = std::stod(row[2]),
                     upper = std::stod(row[3]);
        Errors& errors = worst[Region(n, x)];
        ++errors.rows;
        if (lower > 0) errors.lower = std::max(errors.lower, std::fabs(KolmogorovCDF(x, n, 0) / lower - 1));
        if (upper > 0) errors.upper = std::max(errors.upper, std::fabs(KolmogorovCDF(x, n, 1) / upper - 1));
    }
    std::printf("  | region | points | worst relative error of P(D <= x) | of P(D > x) |\n  |---|---|---|---|\n");
    for (const auto& [region, errors] : worst) {
        std::printf("  | %s | %d | %.1e | %.1e |\n", region.c_str(), errors.rows, errors.lower, errors.upper);
        const auto recorded = kRecorded.find(region);
        ASSERT_NE(recorded, kRecorded.end()) << region;
        EXPECT_LE(errors.lower, recorded->second.lower) << region;
        EXPECT_LE(errors.upper, recorded->second.upper) << region;
    }
}

}  // namespace
