// Mersenne Twister words, and the numbers made of them without a transform.
#include <algorithm>
#include <cmath>
#include <set>

#include "streams.hpp"
#include "support/table.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;
using Words = std::vector<std::uint32_t>;

TEST(MersenneTwister, DeliversThePublishedWordsOfOneWordKeys) {
    int compared = 0;
    for (const auto& row : ReadTable("published/mt19937_words.tsv")) {
        if (row[0] != "array" || row[1].find(',') != std::string::npos) continue;
        const auto seed = static_cast<std::uint32_t>(std::stoul(row[1], nullptr, 0));
        EXPECT_EQ(WordsOf(seed, std::stoul(row[2])).back(), std::stoul(row[3])) << row[1] << " " << row[2];
        ++compared;
    }
    EXPECT_GT(compared, 20);
}

TEST(MersenneTwister, FirstWordsOfThreeSeeds) {
    EXPECT_EQ(WordsOf(1, 5), (Words{577090037, 2444712010, 3639700191, 3445702192, 3280387012}));
    EXPECT_EQ(WordsOf(0, 3), (Words{3626764237, 1654615998, 3255389356}));
    EXPECT_EQ(WordsOf(12345, 3), (Words{1789368711, 3146859322, 43676229}));
}

TEST(MersenneTwister, TheSequenceDoesNotDependOnHowItIsDrawn) {
    const Words whole = WordsOf(77, 5000);
    MersenneTwister twister(77);
    Words parts;
    for (const std::size_t n : {400, 0, 223, 1, 1, 624, 1247, 7, 2000})
        for (const std::uint32_t word : NextWords(twister, n)) parts.push_back(word);
    EXPECT_TRUE(std::equal(parts.begin(), parts.end(), whole.begin()));
}

TEST(MersenneTwister, RefillsWhenTheNextWordIsNeededAndNotBefore) {
    MersenneTwister twister(5);
    EXPECT_EQ(twister.position, kStateWords);
    NextWords(twister, 624);
    EXPECT_EQ(twister.position, kStateWords);
    const std::uint32_t first = twister.state[0];
    NextWords(twister, 0);
    EXPECT_EQ(twister.state[0], first);
    NextWords(twister, 1);
    EXPECT_EQ(twister.position, 1);
    EXPECT_NE(twister.state[0], first);
}

// Two seeds lead to the same state only if two words of the first pass agree, and then the third does not.
TEST(MersenneTwister, DifferentSeedsHaveDifferentFirstWords) {
    std::set<Words> starts;
    constexpr std::uint32_t kSeeds = 20000;
    for (std::uint32_t i = 0; i < kSeeds; ++i) starts.insert(WordsOf(i % 2 == 0 ? i : 0u - i, 3));
    EXPECT_EQ(starts.size(), kSeeds);
}

TEST(MersenneTwister, UniformDoublesOnTheirGrid) {
    MersenneTwister twister = ScriptedTwister({0u, 0x80000000u, 0xffffffffu, 1u});
    double u[4];
    FillUniformDoubles(twister, u, -1.0, 1.0);
    EXPECT_EQ(u[0], -1.0);
    EXPECT_EQ(u[1], 0.0);
    EXPECT_EQ(u[2], 1.0 - std::ldexp(1, -31));
    EXPECT_EQ(u[3], -1.0 + std::ldexp(1, -31));
}

TEST(MersenneTwister, UniformIntegersAreTheFloorAndReachNeitherBelowZeroNorTheBound) {
    const Words edges{0u, 0x7fffffffu, 0x80000000u, 0xffffffffu};
    std::int32_t v[4];
    MersenneTwister ofTwo = ScriptedTwister(edges);
    FillUniformIntegers(ofTwo, v, 2);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 4), (std::vector<std::int32_t>{0, 0, 1, 1}));
    MersenneTwister ofAll = ScriptedTwister(edges);
    FillUniformIntegers(ofAll, v, 2147483647);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 4),
              (std::vector<std::int32_t>{0, 1073741823, 1073741823, 2147483646}));
    EXPECT_EQ(ofAll.position, 4) << "one word to each integer";
}

}  // namespace
