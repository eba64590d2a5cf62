// Normal variates and index draws: bits and distribution.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <thread>

#include "frame/failure.hpp"
#include "orvanth/kolmogorov.h"
#include "orvanth/random.h"
#include "orvanth/special.h"
#include "random/normal_variates.hpp"
#include "streams.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

// Of the sweep in RandomBits.
constexpr std::uint64_t kRecordedNormalHash = 13977780964369423384u;
constexpr std::uint64_t kRecordedIntegerHash = 3727798482655196915u;
std::uint64_t Hash(const void* data, std::size_t size) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ static_cast<const unsigned char*>(data)[i]) * 0x100000001b3u;
    return hash;
}

std::vector<double> NormalOf(MersenneTwister twister, std::size_t count, double mean, double sigma) {
    std::vector<double> values(count);
    FillNormalVariates(twister, values, mean, sigma);
    return values;
}

TEST(NormalVariates, EdgeWords) {
    const MersenneTwister scripted = ScriptedTwister({0u, 0x80000000u, 0xffffffffu});
    const std::vector<double> z = NormalOf(scripted, 3, 0.0, 1.0);
    EXPECT_EQ(z[0], -8.292361075813595);
    EXPECT_EQ(z[1], 0.0);
    EXPECT_NEAR(z[2], 4.40545919213 * std::sqrt(2.0), 1e-10);
    EXPECT_EQ(NormalOf(scripted, 3, 2.5, 4.0)[1], 2.5) << "the word 2^31 gives the mean itself";
    EXPECT_EQ(NormalOf(scripted, 3, 2.5, 4.0)[0], -5.8635847487551676 * (1.4142135623730951 * 4.0) + 2.5);
}

// Wherever in a vector or a chunk the word 0 stands.
TEST(NormalVariates, TheWordZeroIsTheFiniteCutOffAtEveryPlace) {
    for (std::size_t place = 0; place < 40; ++place) {
        std::vector<std::uint32_t> words(40, 0x9abcdef0u);
        words[place] = 0;
        const std::vector<double> z = NormalOf(ScriptedTwister(words), 40, 0.0, 1.0);
        for (std::size_t i = 0; i < z.size(); ++i) EXPECT_EQ(z[i] == -8.292361075813595, i == place) << place;
    }
}

TEST(NormalVariates, TakeOneWordEach) {
    MersenneTwister twister(1);
    double z[100];
    FillNormalVariates(twister, z, 0, 1);
    EXPECT_EQ(twister.position, 100);
}

TEST(RandomNormalVariable, FirstVariatesOfSeedOne) {
    const double want[5] = {-1.10599544823, 0.174347643676, 1.02548897760, 0.849739591371, 0.718497220438};
    double z[5];
    EXPECT_EQ(RandomNormalVariable(z, 5, 0, 1, 1), 0);
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(z[i], want[i], 2e-11);
}

TEST(RandomNormalVariables, ColumnAfterColumnOfOneStream) {
    double matrix[12], vector[12];
    RandomNormalVariables(matrix, 4, 3, 1, 2, 5);
    RandomNormalVariable(vector, 12, 1, 2, 5);
    EXPECT_TRUE(std::equal(matrix, matrix + 12, vector));
}

TEST(RandomNormalVariable, NaNAndInfinitePass) {
    double z[3];
    RandomNormalVariable(z, 3, 0, kNaN, 1);
    EXPECT_TRUE(std::isnan(z[0]) && std::isnan(z[2]));
    RandomNormalVariable(z, 3, kNaN, 1, 1);
    EXPECT_TRUE(std::isnan(z[1]));
    RandomNormalVariable(z, 3, kInfinity, 1, 1);
    EXPECT_EQ(z[1], kInfinity);
    RandomNormalVariable(z, 3, 0, kInfinity, 1);
    EXPECT_EQ(z[0], -kInfinity);
    EXPECT_EQ(z[1], kInfinity);
}

TEST(RandomNormalVariable, TheSameSeedGivesTheSameNumbers) {
    double first[50], second[50];
    RandomNormalVariable(first, 50, 1, 2, -3);
    RandomNormalVariable(second, 50, 1, 2, -3);
    EXPECT_TRUE(std::equal(first, first + 50, second));
}

TEST(RandomUniformInteger, FirstIndicesOfSeedOne) {
    std::int32_t v[10];
    const RandomStreamHandle stream = CreateRandomStream(1);
    EXPECT_EQ(RandomUniformInteger(stream, v, 10), 0);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 5), (std::vector<std::int32_t>{1, 5, 8, 8, 7}));
    DeleteRandomStream(stream);
}

TEST(RandomUniformInteger, ContinuesOneSequenceFromCallToCall) {
    std::int32_t twice[6], once[6], nothing = -1;
    const RandomStreamHandle stream = CreateRandomStream(5);
    EXPECT_EQ(RandomUniformInteger(stream, twice, 3), 0);
    EXPECT_EQ(RandomUniformInteger(stream, &nothing, 0), 0);
    EXPECT_EQ(RandomUniformInteger(stream, twice + 3, 3), 0);
    DeleteRandomStream(stream);
    MersenneTwister twister(5);
    FillUniformIntegers(twister, {once, 3}, 3);
    EXPECT_TRUE(std::equal(once, once + 3, twice));
    FillUniformIntegers(twister, {once, 3}, 3);
    EXPECT_TRUE(std::equal(once, once + 3, twice + 3));
    EXPECT_EQ(nothing, -1);
}

TEST(RandomUniformInteger, OfOneWritesAZeroAndTakesAWord) {
    const RandomStreamHandle stream = CreateRandomStream(5);
    std::int32_t zero = -1, next[10], expected[10];
    EXPECT_EQ(RandomUniformInteger(stream, &zero, 1), 0);
    EXPECT_EQ(zero, 0);
    RandomUniformInteger(stream, next, 10);
    DeleteRandomStream(stream);
    MersenneTwister twister(5);
    NextWords(twister, 1);
    FillUniformIntegers(twister, expected, 10);
    EXPECT_TRUE(std::equal(next, next + 10, expected));
}

// A hash over a fixed sweep: the same at every optimisation level, in every build and on every processor.
TEST(RandomBits, AreThoseOfTheRecordedHash) {
    std::vector<double> whole(100000), parts(whole.size());
    RandomNormalVariable(whole.data(), 100000, 0.25, 1.5, 2024);
    EXPECT_EQ(Hash(whole.data(), whole.size() * sizeof(double)), kRecordedNormalHash);
    MersenneTwister s(2024);
    // Blocks of seven, at every alignment.
    for (std::size_t i = 0; i < parts.size(); i += 7)
        FillNormalVariates(s, {parts.data() + i, std::min<std::size_t>(7, parts.size() - i)}, 0.25, 1.5);
    EXPECT_EQ(Hash(parts.data(), parts.size() * sizeof(double)), kRecordedNormalHash);
    std::vector<std::int32_t> integers(100000);
    MersenneTwister t(2024);
    FillUniformIntegers(t, integers, 100000);
    EXPECT_EQ(Hash(integers.data(), integers.size() * sizeof(std::int32_t)), kRecordedIntegerHash);
}

// In distribution, with fixed seeds.

TEST(RandomDistribution, NormalVariatesByKolmogorovAndMoments) {
    constexpr std::int32_t kCount = 20000;
    std::vector<double> z(kCount);
    for (std::int32_t seed : {1, 2, 3, 4}) {
        RandomNormalVariable(z.data(), kCount, 0, 1, seed);
        double sum = 0, squares = 0, fourth = 0;
        for (double v : z) {
            sum += v;
            squares += v * v;
            fourth += v * v * v * v;
        }
        EXPECT_LT(std::fabs(sum / std::sqrt(kCount)), 4) << seed;
        EXPECT_LT(std::fabs(squares - kCount) / std::sqrt(2.0 * kCount), 4) << seed;
        EXPECT_LT(std::fabs(fourth - 3.0 * kCount) / std::sqrt(96.0 * kCount), 4) << seed;
        std::sort(z.begin(), z.end());
        double d = 0;
        for (std::int32_t i = 0; i < kCount; ++i) {
            const double p = ErfC(-z[static_cast<std::size_t>(i)] / std::sqrt(2.0)) / 2;
            d = std::max({d, p - i / double(kCount), (i + 1) / double(kCount) - p});
        }
        EXPECT_GT(KolmogorovCDF(d, kCount, 1), 1e-3) << seed;
    }
}

TEST(RandomDistribution, IndicesByChiSquare) {
    constexpr std::int32_t kCells = 1000, kDraws = 200;
    std::vector<std::int32_t> v(kCells);
    std::vector<int> counts(kCells);
    const RandomStreamHandle stream = CreateRandomStream(11);
    for (int i = 0; i < kDraws; ++i) {
        RandomUniformInteger(stream, v.data(), kCells);
        for (std::int32_t index : v) ++counts.at(static_cast<std::size_t>(index));
    }
    DeleteRandomStream(stream);
    double chiSquared = 0;
    for (int count : counts) chiSquared += (count - kDraws) * (count - kDraws) / double(kDraws);
    const double p = GammaRegularizedC((kCells - 1) / 2.0, chiSquared / 2);
    EXPECT_GT(p, 1e-4);
    EXPECT_LT(p, 1 - 1e-4);
}

TEST(RandomThread, NormalCallsAndStreamsOfTheirOwnAgreeFromManyThreads) {
    struct Numbers {
        std::vector<double> normal = std::vector<double>(3000);
        std::vector<std::int32_t> indices = std::vector<std::int32_t>(3000);
        bool operator==(const Numbers&) const = default;
    };
    std::vector<Numbers> all(8);
    std::vector<std::thread> threads;
    for (Numbers& numbers : all)
        threads.emplace_back([&numbers] {
            RandomNormalVariable(numbers.normal.data(), 3000, 0, 1, 9);
            const RandomStreamHandle stream = CreateRandomStream(9);
            RandomUniformInteger(stream, numbers.indices.data(), 3000);
            DeleteRandomStream(stream);
        });
    for (std::thread& thread : threads) thread.join();
    for (const Numbers& numbers : all) EXPECT_TRUE(numbers == all[0]);
}

}  // namespace
