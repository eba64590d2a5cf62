#include "frame/policies.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include <boost/exception/exception.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/trunc.hpp>

#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::ThrownText;

TEST(Policies, AreFourTypes) {
    EXPECT_FALSE((std::is_same_v<RoundDownPolicy, RoundUpPolicy>));
    EXPECT_FALSE((std::is_same_v<DefaultPolicy, RoundDownPolicy>));
    using Quantile = RoundUpPolicy::discrete_quantile_type;
    EXPECT_EQ(Quantile::value, boost::math::policies::integer_round_up);
}

TEST(Policies, TextNamesTypeAndSeventeenDigits) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { RaiseDomain("f<%1%>(%1%, %1%)", "bad value %1%.", 0.1); }),
              "Error in function f<double>(double, double): bad value 0.10000000000000001.");
    EXPECT_EQ(ThrownText<std::domain_error>([] { RaiseDomain("f<%1%>(%1%)", "bad %1%", -1, kLongDouble); }),
              "Error in function f<long double>(long double): bad -1");
}

TEST(Policies, MissingTemplateAndMessageHaveTextsOfTheirOwn) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { RaiseDomain(nullptr, nullptr, 2); }),
              "Error in function Unknown function operating on type double: "
              "Cause unknown: error caused by bad argument with value 2");
    EXPECT_EQ(ThrownText<std::overflow_error>([] { RaiseOverflow("f<%1%>(%1%)"); }),
              "Error in function f<double>(double): Overflow Error");
    EXPECT_EQ(ThrownText<std::overflow_error>([] { RaiseOverflow(nullptr, "bad"); }),
              "Error in function Unknown function operating on type double: bad");
    EXPECT_STREQ(TypeNamedBy(nullptr, nullptr), kLongDouble);
    EXPECT_STREQ(TypeNamedBy(nullptr, "numeric overflow"), kDouble);
    EXPECT_STREQ(TypeNamedBy("f", "bad"), kLongDouble);
}

TEST(Policies, ARoundingErrorOfBoostComesThroughTheSamePlace) {
    constexpr const char* text =
        "Error in function boost::math::itrunc<double>(double): Value 10000000000 can not be represented in the "
        "target "
        "integer type.";
    EXPECT_EQ(ThrownText<boost::math::rounding_error>([] { boost::math::itrunc(1e10, DefaultPolicy()); }), text);
    EXPECT_EQ(ThrownText<boost::math::rounding_error>([] {
                  Silent silent;
                  boost::math::itrunc(1e10, DefaultPolicy());
              }),
              text);
}

TEST(Policies, TheObjectThatTravelsIsTheCloneableWrapper) {
    using Wrapper =
        boost::exception_detail::clone_impl<boost::exception_detail::error_info_injector<std::domain_error>>;
    EXPECT_THROW(RaiseDomain("f", "m", 1), Wrapper);
    EXPECT_THROW(RaiseDomain("f", "m", 1), boost::exception);
    EXPECT_THROW(RaiseDomain("f", "m", 1), std::logic_error);
    EXPECT_THROW(RaiseOverflow("f"), std::runtime_error);
    EXPECT_THROW(RaiseEvaluation("f", "m", 1), boost::math::evaluation_error);
}

TEST(Policies, SilentNotesAndGoesOn) {
    errno = 7;
    {
        Silent silent;
        EXPECT_TRUE(std::isnan(RaiseDomain("f", "m", 1)));
        EXPECT_EQ(RaiseEvaluation("f", "m", 1.5), 1.5);
        EXPECT_EQ(RaiseOverflow("f"), kInfinity);
    }
    EXPECT_EQ(errno, 34);
}

TEST(Policies, RoundingErrorsAreNotSilenced) {
    errno = 7;
    EXPECT_THROW(
        {
            Silent silent;
            RaiseRounding("f", "m %1%", 1);
        },
        boost::math::rounding_error);
    EXPECT_EQ(errno, 7);
    EXPECT_EQ(Silent::Current(), nullptr);
}

TEST(Policies, ErrnoOfTheRuntimeDoesNotLeak) {
    for (int before : {0, 7}) {
        errno = before;
        {
            Silent silent;
            errno = ERANGE;
        }
        EXPECT_EQ(errno, before);
        {
            Throwing throwing;
            errno = ERANGE;
        }
        EXPECT_EQ(errno, before);
    }
}

TEST(Policies, AnInnerSilentTellsTheOuterOne) {
    errno = 0;
    {
        Silent outer;
        {
            Silent inner;
            RaiseDomain("f", "m", 1);
        }
        errno = 0;
    }
    EXPECT_EQ(errno, 33);
}

TEST(Policies, FailuresInsideBoostArriveHere) {
    EXPECT_EQ(ThrownText<std::domain_error>([] { boost::math::lgamma(-2.0, DefaultPolicy()); }),
              "Error in function boost::math::lgamma<long double>(long double): "
              "Evaluation of lgamma at a negative integer -2.");
    Silent silent;
    EXPECT_TRUE(std::isnan(boost::math::lgamma(-2.0, DefaultPolicy())));
}

TEST(Policies, NarrowingPassesNaNAndStopsInfinity) {
    EXPECT_TRUE(std::isnan(Narrow(kNaN, "f")));
    EXPECT_EQ(Narrow(kLargest, "f"), kLargest);
    EXPECT_EQ(ThrownText<std::overflow_error>([] { Narrow(kInfinity, "f<%1%>(%1%)"); }),
              "Error in function f<double>(double): numeric overflow");
}

TEST(PoliciesThread, ErrnoBelongsToItsThread) {
    errno = 0;
    Silent silent;
    RaiseDomain("f", "m", 1);
    int noted = 0, left = 0;
    std::thread([&] {
        EXPECT_EQ(&ErrnoOfThread(), &errno);
        {
            Silent other;
            RaiseOverflow("f");
        }
        noted = std::exchange(errno, 7);
        { Throwing throwing; }
        left = errno;
    }).join();
    EXPECT_EQ(noted, 34);
    EXPECT_EQ(left, 7);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(&ErrnoOfThread(), &errno);
}

TEST(PoliciesThread, SilenceBelongsToOneThread) {
    Silent silent;
    bool thrown = false;
    std::thread([&] {
        try {
            RaiseDomain("f", "m", 1);
        } catch (const std::domain_error&) {
            thrown = true;
        }
    }).join();
    EXPECT_TRUE(thrown);
}

}  // namespace
