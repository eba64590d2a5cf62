// Normal variates and index draws: checks, bits, distribution.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <thread>

#include "frame/policies.hpp"
#include "orvanth/kolmogorov.h"
#include "orvanth/random.h"
#include "orvanth/special.h"
#include "random/numeric_mode.hpp"
#include "random/transforms.hpp"
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
