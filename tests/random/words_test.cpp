// Mersenne Twister words and the life of a stream.
#include <algorithm>
#include <cmath>

#include "orvanth/random.h"
#include "streams.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

TEST(MersenneTwister, WordsOfOneWordKeys) {
    int compared = 0;
    for (const auto& row : ReadTable("published/mt19937_words.tsv")) {
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

}  // namespace
