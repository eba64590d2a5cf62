// Seeds that are used together: those of neighbours, and those made from a seed and the number of a worker.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "orvanth/special.h"
#include "streams.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

// The finaliser of MurmurHash3 (A. Appleby, 2008, public domain): a bijection of the 32-bit words.
std::uint32_t Mix(std::uint32_t h) {
    h = (h ^ (h >> 16)) * 0x85ebca6bu;
    h = (h ^ (h >> 13)) * 0xc2b2ae35u;
    return h ^ (h >> 16);
}

// As docs/accuracy/random.md gives it.
std::uint32_t HelperSeed(std::uint32_t seed, std::uint32_t worker) { return Mix(Mix(seed + 0x9e3779b9u) + worker); }

// The rows '| seed | worker | helper seed |' of the page.
TEST(HelperSeeds, AreThoseOfThePage) {
    std::ifstream page(std::string(ORVANTH_TEST_DATA) + "/../../docs/accuracy/random.md");
    std::string line;
    int rows = 0;
    while (std::getline(page, line)) {
        unsigned long seed = 0, worker = 0, helper = 0;
        if (std::sscanf(line.c_str(), "| %lu | %lu | %lu |", &seed, &worker, &helper) != 3) continue;
        EXPECT_EQ(HelperSeed(static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(worker)), helper) << line;
        ++rows;
    }
    EXPECT_EQ(rows, 6);
}

TEST(HelperSeeds, OfOneSeedAreAllDifferent) {
    for (const std::uint32_t seed : {0u, 1u, 20261121u, 0xffffffffu}) {
        std::vector<std::uint32_t> helpers(200000);
        for (std::uint32_t worker = 0; worker < helpers.size(); ++worker) helpers[worker] = HelperSeed(seed, worker);
        std::ranges::sort(helpers);
        EXPECT_EQ(std::ranges::adjacent_find(helpers), helpers.end()) << seed;
    }
}

// One word of each of many streams, by the order of their seeds: uniform, and without correlation between neighbours.
void ExpectIndependent(const std::vector<std::uint32_t>& words, const std::string& what) {
    std::vector<int> cells(256);
    double products = 0;
    const auto centred = [](std::uint32_t word) { return word * 0x1p-32 - 0.5; };
    for (std::size_t j = 0; j < words.size(); ++j) {
        ++cells[words[j] >> 24];
        if (j > 0) products += centred(words[j - 1]) * centred(words[j]);
    }
    const double count = static_cast<double>(words.size()), each = count / 256;
    double chiSquared = 0;
    for (const int cell : cells) chiSquared += (cell - each) * (cell - each) / each;
    const double p = GammaRegularizedC(255 / 2.0, chiSquared / 2);
    EXPECT_GT(p, 1e-5) << what;
    EXPECT_LT(p, 1 - 1e-5) << what;
    EXPECT_LT(std::fabs(products) * 12 / std::sqrt(count), 4.5) << what;
}

TEST(Seeds, NeighboursGiveStreamsWithoutVisibleDependence) {
    constexpr std::size_t kSeeds = 20000;
    std::vector<std::uint32_t> places[4];
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
        const std::vector<std::uint32_t> words = WordsOf(seed, 625);
        const std::size_t at[] = {0, 1, 396, 624};
        for (std::size_t i = 0; i < 4; ++i) places[i].push_back(words[at[i]]);
    }
    for (std::size_t i = 0; i < 4; ++i) ExpectIndependent(places[i], "place " + std::to_string(i));
}

}  // namespace
