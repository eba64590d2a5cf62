#include "frame/load_state.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "frame/flags.hpp"

namespace {

using namespace orvanth;

TEST(LoadState, FNCInvalidValueIsFiniteAndNoNaN) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(FNCInvalidValue), 0xE8C308A501F805DDu);
    EXPECT_TRUE(std::isfinite(FNCInvalidValue));
    EXPECT_EQ(FNCInvalidValue, -4.4462302923349974e+196);
}

TEST(LoadState, WorkspaceStandsFromLoadOn) {
    ASSERT_EQ(LapackWorkLength, 10000);
    for (int i : {0, 9999}) {
        LapackWork[i] = 1.5;
        LapackIntWork[i] = 2;
    }
    EXPECT_EQ(LapackWork[9999], 1.5);
    EXPECT_EQ(LapackIntWork[0], 2);
}

TEST(Flags, OnlyTheLowByteOfATailFlagCounts) {
    EXPECT_FALSE(IsSet(0));
    EXPECT_TRUE(IsSet(1));
    EXPECT_TRUE(IsSet(0x80));
    EXPECT_FALSE(IsSet(0x100));
    EXPECT_TRUE(IsSet(0x101));
    EXPECT_TRUE(IsSet(-1));
}

TEST(Flags, ASelectorCountsAsAWholeWord) {
    EXPECT_FALSE(IsWholeWordSet(0));
    EXPECT_TRUE(IsWholeWordSet(0x100));
}

}  // namespace
