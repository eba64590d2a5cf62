// A failed assertion inside the library ends the process with a line and without a dialog box.
#include <gtest/gtest.h>

#define BOOST_ENABLE_ASSERT_HANDLER
#include <boost/assert.hpp>

namespace {

TEST(AssertionDeathTest, EndsTheProcessWithALine) {
    EXPECT_EXIT(BOOST_ASSERT(1 + 1 == 3), testing::ExitedWithCode(3),
                "Assertion failed: 1 \\+ 1 == 3, file .*, line");
}

}  // namespace
