// Handles: every misuse is a status with words, and none reaches freed storage.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

void ExpectRefused(std::int32_t answer, std::int32_t want, std::int32_t status, const char* words) {
    EXPECT_EQ(answer, want);
    EXPECT_EQ(LastStatus(), status);
    EXPECT_NE(std::string(LastErrorText()).find(words), std::string::npos) << LastErrorText();
}

TEST(ShieldStream, DrawsWhatTheCoreDraws) {
    const RandomStreamHandle core = CreateRandomStream(7), stream = SafeCreateRandomStream(7);
    std::vector<std::int32_t> want(1000), got(1000);
    EXPECT_EQ(RandomUniformInteger(core, want.data(), 1000), 0);
    EXPECT_EQ(SafeRandomUniformInteger(stream, got.data(), 1000), 0);
    EXPECT_EQ(got, want);
    EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
    EXPECT_EQ(DeleteRandomStream(core), 0);
}

TEST(ShieldStream, MisuseIsAStatus) {
    std::int32_t values[4];
    const RandomStreamHandle stream = SafeCreateRandomStream(1);
    ExpectRefused(SafeRandomUniformInteger(stream, values, -1), -3, ORVANTH_STATUS_ARGUMENT, "count is negative");
    ExpectRefused(SafeRandomUniformInteger(stream, nullptr, 4), -3, ORVANTH_STATUS_ARGUMENT, "values is null");
    EXPECT_EQ(SafeRandomUniformInteger(stream, nullptr, 0), 0);
    // The same place and kind with a generation that was not reached: a number that was never a handle.
    const RandomStreamHandle later = stream + (RandomStreamHandle{1} << 30);
    ExpectRefused(SafeDeleteRandomStream(later), -1006, ORVANTH_STATUS_HANDLE, "no handle");
    EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
    ExpectRefused(SafeDeleteRandomStream(stream), -1006, ORVANTH_STATUS_HANDLE, "deleted before");
    ExpectRefused(SafeRandomUniformInteger(stream, values, 4), -1006, ORVANTH_STATUS_HANDLE, "deleted before");
    ExpectRefused(SafeDeleteRandomStream(0), -5, ORVANTH_STATUS_HANDLE, "means none");
    for (RandomStreamHandle never :
         {RandomStreamHandle{1}, RandomStreamHandle{-1}, stream + 4096, reinterpret_cast<RandomStreamHandle>(values)})
        ExpectRefused(SafeDeleteRandomStream(never), -1006, ORVANTH_STATUS_HANDLE, "no handle");
}

TEST(ShieldStream, ANewStreamInAnOldPlaceHasAnotherHandle) {
    std::set<RandomStreamHandle> seen, places;
    // More than the places that the other tests leave free.
    for (int i = 0; i < 4000; ++i) {
        const RandomStreamHandle stream = SafeCreateRandomStream(i);
        EXPECT_TRUE(seen.insert(stream).second);
        places.insert(stream >> 2 & 0xFFFF);
        EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
    }
    EXPECT_LT(places.size(), seen.size()) << "a place that is free is taken before a new one is made";
    for (RandomStreamHandle old : seen) EXPECT_EQ(SafeDeleteRandomStream(old), -1006);
}

TEST(ShieldStream, ManyLiveAtOnce) {
    std::vector<RandomStreamHandle> streams;
    for (int i = 0; i < 2500; ++i) streams.push_back(SafeCreateRandomStream(i));
    EXPECT_EQ(std::set<RandomStreamHandle>(streams.begin(), streams.end()).size(), 2500u);
    for (RandomStreamHandle stream : streams) EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
}

TEST(ShieldStream, NormalVariatesAreTheCoresAndTheirFailuresAreTold) {
    double want[6], got[6];
    RandomNormalVariables(want, 3, 2, 1, 2, 5);
    EXPECT_EQ(SafeRandomNormalVariables(got, 3, 2, 1, 2, 5), 0);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got[i], want[i]);
    RandomNormalVariable(want, 6, -1, 3, 8);
    EXPECT_EQ(SafeRandomNormalVariable(got, 6, -1, 3, 8), 0);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got[i], want[i]);
    testing::internal::CaptureStdout();
    ExpectRefused(SafeRandomNormalVariable(got, 6, 0, 0, 1), -3, ORVANTH_STATUS_ARGUMENT, "sigma");
    ExpectRefused(SafeRandomNormalVariable(got, -6, 0, 1, 1), -3, ORVANTH_STATUS_ARGUMENT, "count");
    ExpectRefused(SafeRandomNormalVariables(nullptr, 6, 1, 0, 1, 1), -3, ORVANTH_STATUS_ARGUMENT, "values");
    EXPECT_EQ(SafeRandomNormalVariables(nullptr, 6, 0, 0, 1, 1), 0);
    EXPECT_EQ(SafeRandomNormalVariable(nullptr, 0, 0, 1, 1), 0);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "nothing is printed for a host";
}

// One unbounded variable, f = x^2.
std::int32_t Minimise(LBFGSBDriverState* state, double& x) {
    double f = 0, g = 0;
    for (;;) {
        const std::int32_t code = SafeLBFGSBStep(state, &x, &f, &g);
        if (code == 1) {
            f = x * x;
            g = 2 * x;
        } else if (code != 2) {
            return code;
        }
    }
}

TEST(ShieldMinimiser, RunsToItsEndAndRefusesToRunOn) {
    const double bound = 0;
    const std::int32_t kind = 0;
    LBFGSBDriverState* state = SafeLBFGSBStart(1, 5, &bound, &bound, &kind, 1e7, 1e-5);
    double x = 3, f = 0, g = 0;
    EXPECT_EQ(Minimise(state, x), 3);
    EXPECT_NEAR(x, 0, 1e-6);
    ExpectRefused(SafeLBFGSBStep(state, &x, &f, &g), 3, ORVANTH_STATUS_ARGUMENT, "has ended");
    SafeLBFGSBEnd(state);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    ExpectRefused(SafeLBFGSBStep(state, &x, &f, &g), 5, ORVANTH_STATUS_HANDLE, "deleted before");
    SafeLBFGSBEnd(state);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_HANDLE);
    SafeLBFGSBEnd(nullptr);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    ExpectRefused(SafeLBFGSBStep(nullptr, &x, &f, &g), 5, ORVANTH_STATUS_HANDLE, "means none");
}

TEST(ShieldMinimiser, SaysWhyAProblemIsRejected) {
    const double low = 1, high = 0;
    const std::int32_t free = 0, both = 2, wrong = 4, negative = -1;
    double x = 0, f = 0, g = 0;
    const auto expect = [&](LBFGSBDriverState* state, const char* words) {
        ExpectRefused(SafeLBFGSBStep(state, &x, &f, &g), 5, ORVANTH_STATUS_ARGUMENT, words);
        SafeLBFGSBEnd(state);
    };
    expect(SafeLBFGSBStart(0, 5, nullptr, nullptr, nullptr, 1, 0), "n is not positive");
    expect(SafeLBFGSBStart(1, 0, &low, &high, &free, 1, 0), "m is not positive");
    expect(SafeLBFGSBStart(1, 5, &low, &high, &free, -1, 0), "factr is negative");
    expect(SafeLBFGSBStart(1, 5, &low, &high, &wrong, 1, 0), "kind of bound");
    expect(SafeLBFGSBStart(1, 5, &low, &high, &negative, 1, 0), "kind of bound");
    expect(SafeLBFGSBStart(1, 5, &low, &high, &both, 1, 0), "lower bound is above");
    EXPECT_EQ(SafeLBFGSBStart(-1, 5, &low, &high, &free, 1, 0), nullptr);
    EXPECT_STREQ(LastErrorArgument(), "n");
    EXPECT_EQ(SafeLBFGSBStart(1, 5, &low, nullptr, &free, 1, 0), nullptr);
    EXPECT_STREQ(LastErrorArgument(), "u");
    EXPECT_EQ(SafeLBFGSBStart(1, 5, nullptr, nullptr, nullptr, 1, 0), nullptr);
    EXPECT_STREQ(LastErrorArgument(), "l");
    EXPECT_EQ(SafeLBFGSBStart(1, 5, &low, &high, nullptr, 1, 0), nullptr);
    EXPECT_STREQ(LastErrorArgument(), "nbd");
}

TEST(ShieldMinimiser, AWorkspaceBeyondWhatItsIndicesHoldIsNoMemory) {
    const double bound = 0;
    const std::int32_t free = 0;
    EXPECT_EQ(SafeLBFGSBStart(1, 20000, &bound, &bound, &free, 1, 0), nullptr);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_MEMORY);
    EXPECT_NE(std::string(LastErrorText()).find("2^31 doubles"), std::string::npos);
}

TEST(ShieldMinimiser, NullArraysAreRefusedAtAStep) {
    const double bound = 0;
    const std::int32_t free = 0;
    LBFGSBDriverState* state = SafeLBFGSBStart(1, 5, &bound, &bound, &free, 1e7, 1e-5);
    double x = 3, f = 0, g = 0;
    const auto expect = [](std::int32_t answer, const char* argument) {
        ExpectRefused(answer, 5, ORVANTH_STATUS_ARGUMENT, "x, f or g is null");
        EXPECT_STREQ(LastErrorArgument(), argument);
    };
    expect(SafeLBFGSBStep(state, nullptr, &f, &g), "x");
    expect(SafeLBFGSBStep(state, &x, nullptr, &g), "f");
    expect(SafeLBFGSBStep(state, &x, &f, nullptr), "g");
    EXPECT_EQ(Minimise(state, x), 3) << "a refused step leaves the minimisation as it was";
    SafeLBFGSBEnd(state);
    state = SafeLBFGSBStart(0, 5, nullptr, nullptr, nullptr, 1e7, 1e-5);
    ExpectRefused(SafeLBFGSBStep(state, nullptr, &f, nullptr), 5, ORVANTH_STATUS_ARGUMENT, "n is not positive");
    SafeLBFGSBEnd(state);
}

// A gradient with the wrong sign: every trial point is worse than the start.
TEST(ShieldMinimiser, AFailedLineSearchIsNoSolution) {
    const double bound = 0;
    const std::int32_t free = 0;
    LBFGSBDriverState* state = SafeLBFGSBStart(1, 5, &bound, &bound, &free, 1e7, 1e-5);
    double x = 3, f = 0, g = 0;
    std::int32_t code = 0;
    while ((code = SafeLBFGSBStep(state, &x, &f, &g)) == 1) {
        f = x * x;
        g = -2 * x;
    }
    ExpectRefused(code, 4, ORVANTH_STATUS_NO_SOLUTION, "line search failed");
    EXPECT_EQ(x, 3);
    SafeLBFGSBEnd(state);
}

TEST(ShieldMinimiser, AStreamIsNoMinimiser) {
    const RandomStreamHandle stream = SafeCreateRandomStream(1);
    double x = 0, f = 0, g = 0;
    ExpectRefused(SafeLBFGSBStep(reinterpret_cast<LBFGSBDriverState*>(stream), &x, &f, &g), 5, ORVANTH_STATUS_HANDLE,
                  "no handle");
    EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
}

}  // namespace
