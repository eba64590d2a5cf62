#include "special/quantile_search.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <boost/math/policies/error_handling.hpp>

#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::ThrownText;

TEST(Bisect, FindsTheFirstDoubleThatIsNotBelowTheRoot) {
    for (double root : {5e-323, 1e-310, 1e-200, 0.3, 1.0, 7e250, kLargest}) {
        int steps = 0;
        const double found = Bisect(0, kLargest, [&](double x) { return ++steps, x < root; });
        EXPECT_EQ(found, root);
        EXPECT_LE(steps, 64);
    }
    EXPECT_EQ(Bisect(0, 0.5, [](double) { return true; }), 0.5);
    EXPECT_EQ(Bisect(0, 0.5, [](double x) { return x <= 0; }), 0) << "below the smallest double";
}

double Fail(double value) {
    RaiseOverflow("f<%1%>");
    return value;
}

constexpr auto kAnyNumber = [](double x) { return !std::isnan(x); };

TEST(SearchOrFinish, TheFirstValueStandsIfNothingFailed) {
    Silent silent;
    EXPECT_EQ(SearchOrFinish(
                  "f<%1%>", [] { return 3.0; }, kAnyNumber, [] { return 4.0; }),
              3);
}

TEST(SearchOrFinish, ASubstituteLeavesErrnoAsItWas) {
    for (int before : {0, 7}) {
        const auto failed = CallWithErrno(before, [] {
            Silent silent;
            return SearchOrFinish(
                "f<%1%>", [] { return Fail(3); }, kAnyNumber, [] { return 4.0; });
        });
        EXPECT_EQ(failed.value, 4);
        EXPECT_EQ(failed.errnoAfter, before);
        const auto refused = CallWithErrno(before, [] {
            Throwing throwing;
            return SearchOrFinish(
                "f<%1%>", [] { return kNaN; }, kAnyNumber, [] { return 4.0; });
        });
        EXPECT_EQ(refused.value, 4);
        EXPECT_EQ(refused.errnoAfter, before);
    }
}

TEST(SearchOrFinish, WhereBothFailTheValueReachedComesWithErrno33OrIsThrown) {
    const auto both = [] {
        return SearchOrFinish(
            "f<%1%>", [] { return Fail(3); }, kAnyNumber, [] { return Fail(4); });
    };
    const auto silent = CallWithErrno(7, [&] {
        Silent scope;
        return both();
    });
    EXPECT_EQ(silent.value, 3);
    EXPECT_EQ(silent.errnoAfter, 33);
    EXPECT_EQ(ThrownText<boost::math::evaluation_error>([&] {
                  Throwing scope;
                  both();
              }),
              "Error in function f<long double>: Root finding evaluation exceeded 200 iterations, giving up now.");
}

TEST(Try, KeepsAnEarlierFailureOfTheSameCall) {
    const auto call = CallWithErrno(0, [] {
        Silent silent;
        RaiseDomain("f<%1%>", "bad %1%", 1);
        return Try([] { return Fail(2); }).value;
    });
    EXPECT_EQ(call.value, 2);
    EXPECT_EQ(call.errnoAfter, 33);
}

}  // namespace
