#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>

#include "frame/policies.hpp"
#include "orvanth/kolmogorov.h"
#include "orvanth/random.h"
#include "orvanth/special.h"
#include "random/erf_inv.hpp"
#include "random/numeric_mode.hpp"
#include "random/random_stream.hpp"
#include "random/transforms.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using Wide = boost::multiprecision::cpp_bin_float_50;

// Of the sweep in RandomBits.
constexpr std::uint64_t kRecordedNormalHash = 0;
constexpr std::uint64_t kRecordedIntegerHash = 0;

struct Stream {
    RandomStream* stream = nullptr;
    explicit Stream(std::uint32_t seed) { vslNewStream(&stream, kMersenneTwister, seed); }
    ~Stream() { vslDeleteStream(&stream); }
    std::vector<std::uint32_t> Words(std::int32_t count) {
        std::vector<std::uint32_t> words(static_cast<std::size_t>(count));
        FillUniformWords(stream, count, words.data());
        return words;
    }
};

// A stream whose next words are those given: tempering is undone.
std::uint32_t Untemper(std::uint32_t y) {
    y ^= y >> 18;
    y ^= (y << 15) & 0xefc60000u;
    std::uint32_t z = y;
    for (int i = 0; i < 5; ++i) z = y ^ ((z << 7) & 0x9d2c5680u);
    y = z;
    for (int i = 0; i < 3; ++i) z = y ^ (z >> 11);
    return z;
}

struct ScriptedStream : Stream {
    explicit ScriptedStream(const std::vector<std::uint32_t>& words) : Stream(1) {
        stream->position = 0;
        for (std::size_t i = 0; i < words.size(); ++i) stream->state[i] = Untemper(words[i]);
    }
};

std::uint64_t Hash(const void* data, std::size_t size) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ static_cast<const unsigned char*>(data)[i]) * 0x100000001b3u;
    return hash;
}

template <class Function>
std::string Printed(Function function) {
    testing::internal::CaptureStdout();
    function();
    return testing::internal::GetCapturedStdout();
}

// erfinv(x) by Newton's method in 50 digits.
Wide ExactErfInv(double x) {
    Wide y = InverseErf(x);
    for (int i = 0; i < 4; ++i) y -= (erf(y) - Wide(x)) * sqrt(boost::math::constants::pi<Wide>()) / 2 * exp(y * y);
    return y;
}

double UlpError(double got, const Wide& want) {
    const double nearest = std::fabs(static_cast<double>(want));
    const double ulp = std::nextafter(nearest, 10) - nearest;
    return static_cast<double>(abs(Wide(got) - want) / Wide(ulp));
}

double ErfInv(double x) {
    double y = 0;
    vdErfInv(1, &x, &y);
    return y;
}

// Words.

TEST(MersenneTwister, WordsOfOneWordKeys) {
    int compared = 0;
    for (const auto& row : orvanth::test::ReadTable("published/mt19937_words.tsv")) {
        if (row[0] != "array" || row[1].find(',') != std::string::npos) continue;
        const std::int32_t index = std::stoi(row[2]);
        EXPECT_EQ(Stream(static_cast<std::uint32_t>(std::stoul(row[1], nullptr, 0))).Words(index).back(),
                  std::stoul(row[3]))
            << row[1] << " " << index;
        ++compared;
    }
    EXPECT_GT(compared, 20);
}

TEST(MersenneTwister, TheReferenceKeyOfFourWords) {
    Stream s(0);
    const std::uint32_t key[4] = {0x123, 0x234, 0x345, 0x456};
    EXPECT_EQ(SeedMersenneTwister(0, s.stream, 4, key), 0);
    EXPECT_EQ(s.Words(5), (std::vector<std::uint32_t>{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
}

TEST(MersenneTwister, SeedsAreTheirBitPatterns) {
    EXPECT_EQ(Stream(0).Words(3), (std::vector<std::uint32_t>{3626764237, 1654615998, 3255389356}));
    EXPECT_EQ(Stream(12345).Words(3), (std::vector<std::uint32_t>{1789368711, 3146859322, 43676229}));
    std::int32_t negative[20], positive[20];
    const RandomStreamHandle a = CreateRandomStream(-7);
    RandomUniformInteger(a, negative, 20);
    DeleteRandomStream(a);
    Stream b(static_cast<std::uint32_t>(-7));
    FillUniformIntegers(b.stream, 20, positive, 0, 20);
    EXPECT_TRUE(std::equal(negative, negative + 20, positive));
}

TEST(MersenneTwister, ALengthBelowOneStandsForTheKeyOne) {
    Stream s(99);
    const std::uint32_t unused = 5;
    EXPECT_EQ(SeedMersenneTwister(0, s.stream, 0, &unused), 0);
    EXPECT_EQ(s.Words(5), Stream(1).Words(5));
}

TEST(MersenneTwister, NeitherLeapfrogNorSkipAhead) {
    Stream s(1);
    const std::uint32_t key = 1;
    EXPECT_EQ(SeedMersenneTwister(1, s.stream, 1, &key), -1002);
    EXPECT_EQ(SeedMersenneTwister(2, s.stream, 1, &key), -1003);
    EXPECT_EQ(SeedMersenneTwister(3, s.stream, 1, &key), -2);
    EXPECT_EQ(SeedMersenneTwister(-1, s.stream, 1, &key), -2);
}

TEST(MersenneTwister, TheSequenceDoesNotDependOnHowItIsDrawn) {
    const std::vector<std::uint32_t> whole = Stream(77).Words(5000);
    Stream s(77);
    std::vector<std::uint32_t> parts;
    for (std::int32_t n : {400, 0, 223, 1, 1, 624, 1247, 7, -3, 2000}) {
        if (n > 0)
            for (std::uint32_t word : s.Words(n)) parts.push_back(word);
        else
            FillUniformWords(s.stream, n, nullptr);
    }
    EXPECT_TRUE(std::equal(parts.begin(), parts.end(), whole.begin()));
}

TEST(MersenneTwister, UniformDoublesOnTheirGrid) {
    ScriptedStream s({0u, 0x80000000u, 0xffffffffu, 1u});
    double u[4];
    FillUniformDoubles(s.stream, 4, u, -1.0, 1.0);
    EXPECT_EQ(u[0], -1.0);
    EXPECT_EQ(u[1], 0.0);
    EXPECT_EQ(u[2], 1.0 - std::ldexp(1, -31));
    EXPECT_EQ(u[3], -1.0 + std::ldexp(1, -31));
}

TEST(MersenneTwister, AMarkerThatIsNotOneIsNoStream) {
    Stream s(1);
    s.stream->marker = 2;
    EXPECT_EQ(CheckStream(s.stream), -1006);
    const std::string message = Printed([&] {
        RandomStream* copy = s.stream;
        EXPECT_EQ(vslDeleteStream(&copy), -1006);
        EXPECT_EQ(copy, s.stream);
    });
    EXPECT_EQ(message, "\nMKL ERROR: Parameter 1 was incorrect on entry to vslDeleteStream.\n");
    s.stream->marker = 1;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(s.stream) % 64, 0u);
}

TEST(MersenneTwister, AnUnknownGeneratorIsReported) {
    RandomStream* stream = nullptr;
    const std::string message = Printed([&] { EXPECT_EQ(vslNewStream(&stream, 0x700000, 1), -1000); });
    EXPECT_EQ(message, "\nMKL ERROR: Parameter 2 was incorrect on entry to vslNewStream.\n");
}

TEST(RandomStream, ThousandsAreMadeAndDeleted) {
    for (std::int32_t i = 0; i < 5000; ++i) {
        std::int32_t values[3];
        const RandomStreamHandle stream = CreateRandomStream(i);
        EXPECT_EQ(RandomUniformInteger(stream, values, 3), 0);
        EXPECT_EQ(DeleteRandomStream(stream), 0);
    }
}

// The inverse error function.

TEST(VdErfInv, IsAccurateOnEveryIntervalAndAtItsBorders) {
    double worst = 0;
    for (std::int32_t k = 0; k < kErfInvRows; ++k) {
        const std::uint64_t low = (static_cast<std::uint64_t>(0xFFB - k)) << 50,
                            high = low + (std::uint64_t{1} << 50) - 1;
        for (std::uint64_t bits : {low, low + 1, (low + high) / 2, low + (high - low) / 3, high - 1, high}) {
            const double w = std::bit_cast<double>(bits), x = 1.0 - w;
            if (x <= 0 || x >= 1) continue;
            worst = std::max(worst, UlpError(ErfInv(x), ExactErfInv(x)));
            EXPECT_EQ(ErfInv(-x), -ErfInv(x));
        }
    }
    std::printf("  worst error over the intervals %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(VdErfInv, IsAccurateOnADenseSubsetOfTheGrid) {
    double worst = 0;
    for (std::uint32_t i = 0; i < 4000; ++i) {
        const std::uint32_t y = i * 1073741u + i;
        const double u = y * std::ldexp(1, -31) - 1.0;
        if (u == 0 || u == -1) continue;
        worst = std::max(worst, UlpError(ErfInv(u), ExactErfInv(u)));
    }
    std::printf("  worst error over 4000 points of the grid %.3f ulp\n", worst);
    EXPECT_LT(worst, 1);
}

TEST(VdErfInv, TheLargestDoubleBelowOneComesFromTheLastRow) {
    EXPECT_EQ(ErfInv(std::nextafter(1.0, 0.0)), 5.8635847487551676);
    EXPECT_EQ(ErfInv(std::nextafter(-1.0, 0.0)), -5.8635847487551676);
}

TEST(VdErfInv, HeadsAndSlopesOfTheTable) {
    EXPECT_EQ(ErfInvCoefficientTable[0][15], 0.8871351778507233);
    EXPECT_EQ(ErfInvCoefficientTable[0][16], -0.014563386095687747);
    EXPECT_EQ(ErfInvCoefficientTable[120][15], 4.335293412208557);
    EXPECT_EQ(ErfInvCoefficientTable[120][16], -0.05999011639505625);
}

TEST(VdErfInv, SpecialCases) {
    EXPECT_TRUE(std::isnan(ErfInv(kNaN)));
    EXPECT_TRUE(std::isnan(ErfInv(kInfinity)));
    EXPECT_TRUE(std::isnan(ErfInv(1.5)));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ErfInv(-0.0)), std::bit_cast<std::uint64_t>(-0.0));
    EXPECT_EQ(ErfInv(1.0), kInfinity);
    EXPECT_EQ(ErfInv(-1.0), -kInfinity);
    for (double x : {1e-11, -2.9e-11, 1e-300, 5e-324})
        EXPECT_LE(UlpError(ErfInv(x), Wide(x) * sqrt(boost::math::constants::pi<Wide>()) / 2), 1) << x;
}

std::int32_t lastCode, lastIndex;
std::int32_t NoteError(NumericError* error) {
    lastCode = error->code;
    lastIndex = error->index;
    error->result1 = 42;
    return 0;
}

TEST(VdErfInv, TheCallbackLearnsCodeAndIndexAndItsResultIsStored) {
    const NumericErrorCallback old = SetNumericErrorCallback(NoteError);
    double values[300] = {};
    values[290] = -1.0;
    vdErfInv(300, values, values);
    EXPECT_EQ(values[290], 42);
    EXPECT_EQ(lastCode, kSingularity);
    EXPECT_EQ(lastIndex, 290);
    values[3] = 7;
    vdErfInv(5, values, values);
    EXPECT_EQ(lastCode, kDomainError);
    EXPECT_EQ(SetNumericErrorCallback(old), NoteError);
}

TEST(NumericModeWord, FieldsChangeOnlyWhereTheNewWordHasBits) {
    const std::uint32_t old = SetNumericMode(0x140000);
    EXPECT_EQ(NumericMode() & kFloatingPointField, 0x140000u);
    EXPECT_EQ(NumericMode() & ~kFloatingPointField, old & ~kFloatingPointField);
    SetNumericMode(old);
    std::thread([] { EXPECT_EQ(NumericMode(), 6658u); }).join();
}

TEST(ErfInvBoundary, RowsOfTheCallback) {
    const auto after = [](std::int32_t code, double argument, double result) {
        NumericError error{code, 0, argument, 0, result, 1.5, ""};
        EXPECT_EQ(ErfInvBoundaryCallback(&error), 0);
        return error.result1;
    };
    EXPECT_EQ(after(2, 0, 1), -744.4400719213812);
    EXPECT_EQ(after(2, -1, 1), -5.8635847487551676);
    EXPECT_EQ(after(2, 1, 1), 5.8635847487551676);
    EXPECT_EQ(after(1, 3, -1), -5.8635847487551676);
    EXPECT_EQ(after(1, 3, 1), 5.8635847487551676);
    EXPECT_EQ(after(3, 3, 1.25), 1.25);
}

// Variates.

TEST(VdRngGaussian, EdgeWords) {
    ScriptedStream s({0u, 0x80000000u, 0xffffffffu});
    double z[3];
    EXPECT_EQ(vdRngGaussian(2, s.stream, 3, z, 0.0, 1.0), 0);
    EXPECT_EQ(z[0], -8.292361075813595);
    EXPECT_EQ(z[1], 0.0);
    EXPECT_NEAR(z[2], 4.40545919213 * std::sqrt(2.0), 1e-10);
    EXPECT_EQ(s.stream->position, 3) << "one word to each variate";
}

TEST(VdRngGaussian, ModeAndCallbackStandAsBefore) {
    const NumericErrorCallback old = SetNumericErrorCallback(NoteError);
    const std::uint32_t mode = NumericMode();
    Stream s(1);
    double z[10];
    vdRngGaussian(2, s.stream, 10, z, 0, 1);
    EXPECT_EQ(NumericMode(), mode);
    EXPECT_EQ(SetNumericErrorCallback(old), NoteError);
}

TEST(VdRngGaussian, ChecksStandInTheirOrder) {
    Stream s(1);
    double z[4];
    const auto refused = [&](std::int32_t method, RandomStream* stream, std::int32_t n, double* values,
                             double sigma) {
        std::int32_t status = 0;
        const std::string text = Printed([&] { status = vdRngGaussian(method, stream, n, values, 0, sigma); });
        return std::to_string(status) + text;
    };
    const auto message = [](int status, int parameter) {
        return std::to_string(status) + "\nMKL ERROR: Parameter " + std::to_string(parameter) +
               " was incorrect on entry to vdRngGaussian.\n";
    };
    EXPECT_EQ(refused(-1, nullptr, -1, nullptr, 0), message(-3, 1));
    EXPECT_EQ(refused(3, nullptr, -1, nullptr, 0), message(-5, 2));
    EXPECT_EQ(refused(3, s.stream, -1, nullptr, 0), message(-3, 3));
    EXPECT_EQ(refused(3, s.stream, 0, nullptr, 0), "0");
    EXPECT_EQ(refused(3, s.stream, 1, nullptr, 0), message(-3, 4));
    EXPECT_EQ(refused(3, s.stream, 1, z, 0), message(-3, 1));
    EXPECT_EQ(refused(2, s.stream, 1, z, 0), message(-3, 6));
    EXPECT_EQ(s.stream->position, kStateWords) << "nothing was drawn";
}

TEST(ViRngUniform, ChecksStandInTheirOrder) {
    Stream s(1);
    std::int32_t v[4];
    const auto status = [&](std::int32_t method, RandomStream* stream, std::int32_t n, std::int32_t* values,
                            std::int32_t a, std::int32_t b) {
        std::int32_t result = 0;
        const std::string text = Printed([&] { result = viRngUniform(method, stream, n, values, a, b); });
        return std::to_string(result) + (text.empty() ? "" : text.substr(22, 1));
    };
    EXPECT_EQ(status(-1, nullptr, -1, nullptr, 1, 0), "-31");
    EXPECT_EQ(status(1, nullptr, -1, nullptr, 1, 0), "-52");
    EXPECT_EQ(status(1, s.stream, -1, nullptr, 1, 0), "-33");
    EXPECT_EQ(status(1, s.stream, 0, nullptr, 1, 0), "0");
    EXPECT_EQ(status(1, s.stream, 2, nullptr, 1, 0), "-34");
    EXPECT_EQ(status(1, s.stream, 2, v, 1, 0), "-31");
    EXPECT_EQ(status(0, s.stream, 2, v, 1, 1), "-35");
}

TEST(ViRngUniform, ANegativeBoundHasATrueFloor) {
    ScriptedStream s({0xc0000000u, 0u, 0x40000000u, 0x80000000u, 0xffffffffu});
    std::int32_t v[5];
    EXPECT_EQ(viRngUniform(0, s.stream, 5, v, -2, 0), 0);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 5), (std::vector<std::int32_t>{-1, -2, -2, -1, -1}));
    std::int32_t zeros[3];
    Stream t(1);
    viRngUniform(0, t.stream, 3, zeros, 0, 1);
    EXPECT_EQ(zeros[0] | zeros[1] | zeros[2], 0);
    EXPECT_EQ(t.stream->position, 3);
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
    RandomNormalVariable(z, 3, 0, kInfinity, 1);
    EXPECT_EQ(z[0], -kInfinity);
    EXPECT_EQ(z[1], kInfinity);
}

TEST(RandomUniformInteger, BeginsAsStatedAndContinuesItsSequence) {
    std::int32_t v[10];
    RandomStreamHandle stream = CreateRandomStream(1);
    EXPECT_EQ(RandomUniformInteger(stream, v, 10), 0);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 5), (std::vector<std::int32_t>{1, 5, 8, 8, 7}));
    DeleteRandomStream(stream);
    const std::string message = Printed([] { EXPECT_EQ(DeleteRandomStream(0), -5); });
    EXPECT_EQ(message, "\nMKL ERROR: Parameter 1 was incorrect on entry to vslDeleteStream.\n");
}

// A hash over a fixed sweep: the same at every optimisation level, in every build and on every processor.
TEST(RandomBits, AreThoseOfTheRecordedHash) {
    std::vector<double> whole(100000), parts(whole.size());
    RandomNormalVariable(whole.data(), 100000, 0.25, 1.5, 2024);
    EXPECT_EQ(Hash(whole.data(), whole.size() * sizeof(double)), kRecordedNormalHash);
    Stream s(2024);
    // Blocks of seven, at every alignment.
    for (std::size_t i = 0; i < parts.size(); i += 7)
        vdRngGaussian(2, s.stream, static_cast<std::int32_t>(std::min<std::size_t>(7, parts.size() - i)),
                      parts.data() + i, 0.25, 1.5);
    EXPECT_EQ(Hash(parts.data(), parts.size() * sizeof(double)), kRecordedNormalHash);
    std::vector<std::int32_t> integers(100000);
    Stream t(2024);
    viRngUniform(0, t.stream, 100000, integers.data(), 0, 100000);
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

TEST(RandomThread, NormalCallsFromManyThreadsAgree) {
    std::vector<std::vector<double>> z(6, std::vector<double>(3000));
    std::vector<std::thread> threads;
    for (auto& values : z) threads.emplace_back([&values] { RandomNormalVariable(values.data(), 3000, 0, 1, 9); });
    for (std::thread& thread : threads) thread.join();
    for (const auto& values : z) EXPECT_EQ(values, z[0]);
}

}  // namespace
