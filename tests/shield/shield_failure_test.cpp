// What the shield tells of a failure: status, text, argument, errno and the value returned.
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <string>

#include "frame/load_state.hpp"
#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

TEST(ShieldFailure, ASuccessClearsWhatTheCallBeforeTold) {
    SafeBeta(-1, 1);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_DOMAIN);
    errno = 7;
    EXPECT_EQ(SafeBeta(1, 1), 1.0);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    EXPECT_STREQ(LastErrorText(), "");
    EXPECT_STREQ(LastErrorArgument(), "");
    EXPECT_EQ(errno, 7) << "errno is set, never cleared";
}

TEST(ShieldFailure, AnExceptionIsANaNWithItsWholeText) {
    EXPECT_TRUE(std::isnan(SafeBeta(-1, 1)));
    EXPECT_EQ(errno, EDOM);
    EXPECT_STREQ(
        LastErrorText(),
        "Error in function boost::math::beta<long double>(long double,long double): The arguments to the beta "
        "function must be greater than zero (got a=-1).");
    EXPECT_TRUE(std::isnan(SafeLogXplus1(-1)));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OVERFLOW);
    EXPECT_EQ(errno, ERANGE);
}

TEST(ShieldFailure, ASilentFailureNamesTheCall) {
    EXPECT_TRUE(std::isnan(SafeNormalCDF(0, 0, -1, 0)));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_DOMAIN);
    EXPECT_TRUE(std::string(LastErrorText()).starts_with("NormalCDF(x = 0, mean = 0, sd = -1, tail = 0): "));
    EXPECT_EQ(SafeNormalICDF(0, 0, 1, 0), -HUGE_VAL);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OVERFLOW);
}

// NormalPDF answers an infinite x ahead of its parameter test, which has noted errno already.
TEST(ShieldFailure, AValueMayComeWithAFailure) {
    EXPECT_EQ(SafeNormalPDF(HUGE_VAL, 0, -1), 0.0);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_DOMAIN);
}

TEST(ShieldFailure, WhatTheCoreLeavesUnflaggedIsNoFailure) {
    EXPECT_TRUE(std::isnan(SafeGamma(-0.5)));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
}

TEST(ShieldFailure, ReservedValuesAreToldAsWhatTheyAre) {
    EXPECT_EQ(SafeBinomialPS(0.05, 1, 10, 2), -1.0);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_NO_VALUE);
    EXPECT_NE(std::string(LastErrorText()).find("boundSelector must be 0 or 1"), std::string::npos);
    const double noValue = SafeFNCHypergeometricCDF(3, 3, 3, 0, 1, 0, 1e-7);
    EXPECT_EQ(noValue, FNCHypergeometricCDF(3, 3, 3, 0, 1, 0, 1e-7));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_NO_VALUE);
    double mean = 0, variance = 0;
    SafeFNCHypergeometricMoments(2, 3, 20, -1, &mean, &variance);
    EXPECT_TRUE(std::isnan(mean));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_NO_VALUE);
}

TEST(ShieldFailure, NullPointersAreRefusedByName) {
    EXPECT_TRUE(std::isnan(SafeMCcCDF(1, 3, 10, nullptr, 0)));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_ARGUMENT);
    EXPECT_STREQ(LastErrorText(), "MCcCDF: argument lambda is null");
    EXPECT_STREQ(LastErrorArgument(), "lambda");
    double mean = 5;
    SafeFNCHypergeometricMoments(2, 3, 20, 1, &mean, nullptr);
    EXPECT_STREQ(LastErrorArgument(), "variance");
    EXPECT_TRUE(std::isnan(mean)) << "a host that looks at the other result must not take the old value for it";
}

TEST(ShieldFailure, ThePointerToTheComplementMayBeNull) {
    double result = 0, want = 0;
    SafeInverseBetaRegularized2(2, 3, 0.25, &result, nullptr);
    InverseBetaRegularized2(2, 3, 0.25, &want, nullptr);
    EXPECT_EQ(result, want);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    SafeInverseBetaRegularizedC2(2, 3, 0.25, nullptr, &result);
    EXPECT_STREQ(LastErrorArgument(), "result");
}

TEST(ShieldFailure, ANegativeLengthIsRefused) {
    const double lambda[] = {0.5};
    EXPECT_TRUE(std::isnan(SafeMCaCDF(1, -1, 10, lambda, 0)));
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_ARGUMENT);
}

TEST(ShieldFailure, EveryStatusHasWords) {
    for (std::int32_t status = ORVANTH_STATUS_OK; status <= ORVANTH_STATUS_HANDLE; ++status)
        EXPECT_STRNE(StatusWords(status), StatusWords(-1)) << status;
}

}  // namespace
