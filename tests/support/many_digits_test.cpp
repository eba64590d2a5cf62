// The numbers that judge the other tests.
#include "support/many_digits.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "support/errors.hpp"

namespace {

using namespace orvanth::test;

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(UlpError, CountsSpacingsOfTheNearestDouble) {
    EXPECT_EQ(UlpError(1 + 0x1p-52, 1), 1);
    EXPECT_EQ(UlpError(-1, Wide(-1) - Wide(0x1p-53)), 0.5);
    EXPECT_EQ(UlpError(2, 2 + Wide(0x1p-52)), 0.5);
    EXPECT_EQ(RelativeError(1, -2), 1.5);
}

TEST(UlpError, ANaNIsInfinitelyWrong) {
    EXPECT_EQ(UlpError(kNaN, 1), kInfinity);
    EXPECT_EQ(UlpError(1, kNaN), kInfinity);
    EXPECT_EQ(RelativeError(kNaN, 1), kInfinity);
}

TEST(ManyDigits, WideHasFiftyDigitsAndWide320Has320Bits) {
    EXPECT_NE(1 + Wide(std::ldexp(1, -165)), 1);
    EXPECT_EQ(1 + Wide(std::ldexp(1, -170)), 1);
    EXPECT_NE(1 + Wide320(std::ldexp(1, -319)), 1);
    EXPECT_EQ(1 + Wide320(std::ldexp(1, -321)), 1);
}

TEST(ManyDigits, IntegersOf64BitsAreTakenWhole) {
    const std::int64_t least = std::numeric_limits<std::int64_t>::min();
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(Integer(least).Text(), "-9223372036854775808");
    EXPECT_EQ(Integer(most).Text(), "18446744073709551615");
    EXPECT_EQ(Wide(most) - 1, Wide(most - 1));
    EXPECT_NE(Wide(most) - 1, Wide(most));
    EXPECT_EQ(static_cast<std::int64_t>(Wide(least)), least);
    EXPECT_EQ(static_cast<std::int64_t>(Wide(-3) / 2), -1);
}

TEST(ManyDigits, IntegersAreDividedTowardsZeroAndFractionsExactly) {
    EXPECT_EQ(Integer(-7) / 2, -3);
    EXPECT_EQ(Rational(-7) / 2 * 2, -7);
    EXPECT_EQ((pow(Integer(3), 200) << 7) >> 7, pow(Integer(3), 200));
    EXPECT_EQ(ConvertTo<Rational>(Integer(1)) / 3, Rational(1) / 3);
    EXPECT_EQ(ConvertTo<Wide>(pow(Integer(2), 100)), Wide(0x1p100));
    EXPECT_EQ(ConvertTo<Wide320>(pow(Integer(2), 100)), Wide320(0x1p100));
}

TEST(ManyDigits, NothingIsLessOrGreaterThanANaN) {
    const Wide none = kNaN;
    EXPECT_FALSE(none < 1 || none > 1 || none == 1 || none == none);
    EXPECT_TRUE(std::isnan(static_cast<double>(abs(none))));
}

TEST(ManyDigits, AssignmentToItselfAndCopiesKeepTheValue) {
    Integer a = pow(Integer(7), 300);
    Integer b = a;
    b += 1;
    a = *&a;
    EXPECT_EQ(a, pow(Integer(7), 300));
    EXPECT_EQ(b - a, 1);
    std::ostringstream text;
    text << Rational(-1) / 3 << ' ' << Wide(0.5);
    EXPECT_EQ(text.str(), "-1/3 0.5");
}

}  // namespace
