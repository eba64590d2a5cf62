#include "special/quantile_search.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <boost/math/policies/error_handling.hpp>

#include "orvanth/distributions.h"
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

struct QuantileRow {
    double p, first, second;
    TailFlag tail;
    double value;
};

// The values of the next two tests come from 330 digits: the hypergeometric series where a parameter is tiny, the
// continued fraction where both are large.
TEST(InverseBeta, ATinyParameterKeepsTheShapeOfItsSmallMass) {
    for (QuantileRow row : {QuantileRow{1.9e-12, 7.2e-13, 1.87, 1, 0.029427852184563958229},
                            {2e-10, 1e-12, 0.5, 1, 5.5355859962260607995e-87},
                            {1e-250, 1e-252, 2, 1, 1.3685394711738377475e-44},
                            {5e-14, 9e-14, 40, 1, 0.012665318918491378395}})
        // The logarithm of the result is proportional to p: one unit of p moves 1e-14 of the smallest.
        EXPECT_NEAR(BetaICDF(row.p, row.first, row.second, row.tail) / row.value, 1, 1e-13) << row.first;
    EXPECT_NEAR(FisherFICDF(1.9e-12, 3.74, 1.44e-12, 0) / 1.2698725876838128015e-11, 1, 1e-13);
}

TEST(InverseBeta, LargeParametersAreAnsweredToElevenDigits) {
    for (QuantileRow row : {QuantileRow{1e-10, 4e12, 2e9, 0, 0.99979881376787350602},
                            {0.3, 2e13, 2e11, 0, 0.99999833343424176385},
                            {0.001, 1.8e14, 1e8, 1, 1.0004371589933397978},
                            {1e-30, 3e12, 4e12, 1, 1.0000123826348523373},
                            {0.05, 6e12, 2e14, 0, 0.99999903620393957464},
                            {0.2, 5e12, 3e7, 1, 1.0002173600339131376},
                            {1e-12, 2e8, 9e12, 0, 0.99929670541372905339}})
        EXPECT_NEAR(FisherFICDF(row.p, row.first, row.second, row.tail), row.value, 1e-11) << row.first;
}

}  // namespace
