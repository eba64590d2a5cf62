// The hypergeometric probability by long factorials, against exact numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "distributions/hypergeometric_kernel.hpp"
#include "distributions/hypergeometric_primes.hpp"
#include "orvanth/distributions.h"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using orvanth::test::ConvertTo;
using orvanth::test::Integer;
// After 104729 products the relative error is below 2^-300.
using orvanth::test::Wide320;

constexpr unsigned kSeed = 20261121;

struct TableEntry {
    double high;
    float low;
    int exponent;
};
constexpr TableEntry kTable[] = {
#include "distributions/factorial_table.inc"
};

Integer Product(int first, int last) {
    if (last - first > 8) {
        const int middle = (first + last) / 2;
        return Product(first, middle) * Product(middle + 1, last);
    }
    Integer product = 1;
    for (int k = first; k <= last; ++k) product *= k;
    return product;
}

const std::vector<Wide320>& Factorials() {
    static const std::vector<Wide320> factorials = [] {
        std::vector<Wide320> made = {1};
        for (std::int64_t k = 1; k <= kLargestLongFactorial; ++k) made.push_back(made.back() * k);
        return made;
    }();
    return factorials;
}

Wide320 WideProbability(std::int64_t x, const HypergeometricCounts& c) {
    const auto factorial = [&](std::int64_t k) { return Factorials()[static_cast<std::size_t>(k)]; };
    return factorial(c.n) * factorial(c.r) * factorial(c.N - c.n) * factorial(c.N - c.r) /
           (factorial(c.N) * factorial(x) * factorial(c.n - x) * factorial(c.r - x) * factorial(c.N - c.n - c.r + x));
}

// The distance of two neighbouring doubles at `value`.
Wide320 UnitInLastPlace(const Wide320& value) { return ldexp(Wide320(1), std::max(ilogb(value), -1022) - 52); }

// Counts errors in units of the last place.
class Judge {
public:
    void Add(std::int64_t x, const HypergeometricCounts& c) {
        const Wide320 want = WideProbability(x, c);
        const double got = HypergeometricPDF(static_cast<double>(x), static_cast<double>(c.r),
                                             static_cast<double>(c.n), static_cast<double>(c.N));
        const Wide320 error = abs(Wide320(got) - want) / UnitInLastPlace(want);
        // The reference decides: its own error is far below the distance from a half.
        ASSERT_GT(abs(error - 0.5), ldexp(Wide320(1), -200)) << Where(x, c);
        ASSERT_LE(error, 1) << Where(x, c);
        ++calls_;
        correct_ += error < 0.5;
        worst_ = std::max(worst_, static_cast<double>(error));
    }
    void Report(const char* what) const {
        std::printf("| %s | %d calls | %.3g %% correctly rounded | worst %.6f units |\n", what, calls_,
                    100.0 * correct_ / calls_, worst_);
    }
    double CorrectShare() const { return static_cast<double>(correct_) / calls_; }
    int Calls() const { return calls_; }

private:
    static std::string Where(std::int64_t x, const HypergeometricCounts& c) {
        return std::to_string(x) + ", " + std::to_string(c.r) + ", " + std::to_string(c.n) + ", " +
               std::to_string(c.N) + " seed " + std::to_string(kSeed);
    }
    int calls_ = 0;
    int correct_ = 0;
    double worst_ = 0;
};

class RandomCalls {
public:
    std::int64_t Whole(std::int64_t low, std::int64_t high) {
        return std::uniform_int_distribution<std::int64_t>(low, high)(random_);
    }
    HypergeometricCounts Counts() {
        const double share = std::uniform_real_distribution<>(0, 1)(random_);
        const auto N = static_cast<std::int64_t>(171 * std::pow(104730.0 / 171, share));
        return {Whole(0, N), Whole(0, N), N};
    }
    // One in four anywhere in the support, where the probability is often denormal or 0; else near the mean.
    std::int64_t Variate(const HypergeometricCounts& c) {
        if (Whole(0, 3) == 0) return Whole(c.Lowest(), c.Highest());
        const double N = static_cast<double>(c.N), r = static_cast<double>(c.r), n = static_cast<double>(c.n);
        const double deviation = std::sqrt(n * (r / N) * (1 - r / N) * (1 - n / N));
        const double at = n * r / N + deviation * std::uniform_real_distribution<>(-8, 8)(random_);
        return std::clamp(static_cast<std::int64_t>(std::round(at)), c.Lowest(), c.Highest());
    }

private:
    std::mt19937_64 random_{kSeed};
};

// k! is (high + low) 2^exponent to 77 bits, with high its nearest double.
void ExpectFactorial(int k, const Integer& factorial) {
    const TableEntry& entry = kTable[k / 6];
    // Scaled so that all parts are whole: high has 52 bits after the point, low at most 52 + 54 + 24.
    constexpr int kScale = 160;
    const Integer sum = Integer(std::ldexp(entry.high, 52)) * (Integer(1) << (kScale - 52)) +
                        Integer(std::ldexp(static_cast<double>(entry.low), kScale));
    const Integer want = factorial << kScale;
    const Integer error = abs((sum << entry.exponent) - want);
    EXPECT_LE(error, want >> 77) << k;
    EXPECT_LE(std::fabs(entry.low), 0x1p-53) << k;
    EXPECT_TRUE(entry.high >= 1 && entry.high < 2) << k;
}

TEST(FactorialTable, FirstHundredsAndLastEntriesAreTheExactFactorials) {
    Integer factorial = 1;
    int k = 0;
    for (; k <= 1800; k += 6) {
        for (int i = k - 5; k > 0 && i <= k; ++i) factorial *= i;
        ExpectFactorial(k, factorial);
    }
    for (const int spot : {10002, 30000, 65538, 104718, 104724}) {
        factorial *= Product(k - 5, spot);
        k = spot + 6;
        ExpectFactorial(spot, factorial);
    }
}

TEST(FactorialTable, EveryEntryAgreesWithARunningProductOf320Bits) {
    ASSERT_EQ(std::size(kTable), 17455U);
    for (std::size_t i = 0; i < std::size(kTable); ++i) {
        const Wide320& want = Factorials()[6 * i];
        const Wide320 got = ldexp(Wide320(kTable[i].high) + static_cast<double>(kTable[i].low), kTable[i].exponent);
        ASSERT_LE(abs(got - want), want * 0x1p-77) << 6 * i;
    }
}

TEST(HypergeometricLongFactorials, TwentyThousandRandomCallsAreWithinOneUnitAndAlmostAllCorrectlyRounded) {
    RandomCalls random;
    Judge judge;
    while (judge.Calls() < 20000 && !HasFatalFailure()) {
        const HypergeometricCounts counts = random.Counts();
        judge.Add(random.Variate(counts), counts);
    }
    judge.Report("N from 171 to 104729");
    EXPECT_GT(judge.CorrectShare(), 0.99);
}

TEST(HypergeometricLongFactorials, BordersOfPopulationAndSupportAreWithinOneUnit) {
    RandomCalls random;
    Judge judge;
    for (const std::int64_t N : {171, 172, 173, 174, 175, 176, 177, 104723, 104724, 104728, 104729})
        for (int i = 0; i < 60; ++i) {
            std::vector<std::int64_t> sizes = {0, 1, 2, N / 2, N - 2, N - 1, N, random.Whole(0, N)};
            const HypergeometricCounts counts = {sizes[static_cast<std::size_t>(i) % 8],
                                                 sizes[static_cast<std::size_t>(random.Whole(0, 7))], N};
            for (const std::int64_t x : {counts.Lowest(), counts.Highest(), random.Variate(counts)}) {
                judge.Add(x, counts);
                if (HasFatalFailure()) return;
            }
        }
    judge.Report("borders");
    EXPECT_GT(judge.CorrectShare(), 0.99);
}

// Proves the reference of the tests above by whole numbers alone, and the second opinion with it.
TEST(HypergeometricLongFactorials, ReferenceAndPrimeFormAgreeWithExactRationals) {
    RandomCalls random;
    for (int i = 0; i < 200; ++i) {
        const HypergeometricCounts c = random.Counts();
        const std::int64_t x = random.Variate(c);
        Integer above = 1;
        Integer below = 1;
        for (const auto& [prime, power] : test::PrimeFactors(x, c))
            (power > 0 ? above : below) *= pow(Integer(prime), static_cast<unsigned>(std::abs(power)));
        const Wide320 exact = ConvertTo<Wide320>(above) / ConvertTo<Wide320>(below);
        const Wide320 reference = WideProbability(x, c);
        ASSERT_LE(abs(reference - exact), exact * ldexp(Wide320(1), -290))
            << x << ' ' << c.r << ' ' << c.n << ' ' << c.N;
        const double want = static_cast<double>(exact);
        ASSERT_EQ(test::ProbabilityByPrimes(x, c), want);
        ASSERT_NEAR(HypergeometricProbability(x, c), want, std::nextafter(want, 1) - want);
    }
}

}  // namespace
