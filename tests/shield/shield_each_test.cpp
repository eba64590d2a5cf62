// The array forms: steps, ranges of integers, inner arrays, reports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

template <class T>
char* At(T& value) {
    return reinterpret_cast<char*>(&value);
}

TEST(ShieldEach, AStepOfZeroRepeatsAndANegativeStepRunsBackwards) {
    double x[] = {-1, 0, 2}, mean = 0.5, sd = 2, results[3];
    std::int64_t tail = 0;
    char* pointers[] = {At(x[2]), At(mean), At(sd), At(tail), At(results[0])};
    const intptr_t count = 3, steps[] = {-8, 0, 0, 0, 8};
    EachReport report;
    EachNormalCDF(pointers, &count, steps, &report);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(results[i], NormalCDF(x[2 - i], 0.5, 2, 0)) << i;
    EXPECT_EQ(report.failures, 0);
    EXPECT_EQ(report.first, -1);
}

TEST(ShieldEach, ElementsOfUnalignedRecordsAreReached) {
    constexpr int kRecord = 13;  // a byte, a double, a float
    std::vector<char> records(3 * kRecord);
    for (int i = 0; i < 3; ++i) {
        const double x = 0.25 * i;
        std::memcpy(&records[static_cast<std::size_t>(i * kRecord + 1)], &x, sizeof x);
    }
    double results[3];
    char* pointers[] = {&records[1], At(results[0])};
    const intptr_t count = 3, steps[] = {kRecord, 8};
    EachErf(pointers, &count, steps, nullptr);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(results[i], Erf(0.25 * i));
}

TEST(ShieldEach, AThrowCostsOneElementOnly) {
    double k[] = {1, 11, 2, 12, 3}, n = 10, p = 0.5, results[5];
    std::int64_t tail = 0;
    char* pointers[] = {At(k[0]), At(n), At(p), At(tail), At(results[0])};
    const intptr_t count = 5, steps[] = {8, 0, 0, 0, 8};
    EachReport report;
    EachBinomialCDF(pointers, &count, steps, &report);
    EXPECT_EQ(report.failures, 2);
    EXPECT_EQ(report.first, 1);
    EXPECT_EQ(report.status, ORVANTH_STATUS_DOMAIN);
    EXPECT_NE(std::strstr(report.text, "argument is 11,"), nullptr) << report.text;
    EXPECT_STREQ(LastErrorText(), report.text);
    for (int i : {0, 2, 4}) EXPECT_EQ(results[i], BinomialCDF(k[i], 10, 0.5, 0));
    for (int i : {1, 3}) EXPECT_TRUE(std::isnan(results[i]));
}

TEST(ShieldEach, IntegersAreCheckedIntoRange) {
    double x = 0.3, n = 10, results[4];
    std::int64_t complement[] = {0, std::int64_t{1} << 32, 1, std::numeric_limits<std::int64_t>::min()};
    char* pointers[] = {At(x), At(n), At(complement[0]), At(results[0])};
    const intptr_t count = 4, steps[] = {0, 0, 8, 8};
    EachReport report;
    EachKolmogorovCDF(pointers, &count, steps, &report);
    EXPECT_EQ(results[0], KolmogorovCDF(0.3, 10, 0));
    EXPECT_TRUE(std::isnan(results[1]) && std::isnan(results[3])) << "2^32 must not become 0";
    EXPECT_EQ(results[2], KolmogorovCDF(0.3, 10, 1));
    EXPECT_EQ(report.failures, 2);
    EXPECT_EQ(report.status, ORVANTH_STATUS_ARGUMENT);
    EXPECT_STREQ(report.text, "KolmogorovCDF: argument complement is 4294967296, which is out of its range");
    EXPECT_STREQ(LastErrorArgument(), "complement");
}

TEST(ShieldEach, ATailFlagIsWhatOneByteCanHold) {
    double x = 1, mean = 0, sd = 1, results[6];
    std::int64_t tail[] = {0,   1,   -1,
                           255, 256, std::numeric_limits<std::int32_t>::min()};  // the last: a missing value
    char* pointers[] = {At(x), At(mean), At(sd), At(tail[0]), At(results[0])};
    const intptr_t count = 6, steps[] = {0, 0, 0, 8, 8};
    EachReport report;
    EachNormalCDF(pointers, &count, steps, &report);
    EXPECT_EQ(results[0], NormalCDF(1, 0, 1, 0));
    for (int i : {1, 2, 3}) EXPECT_EQ(results[i], NormalCDF(1, 0, 1, 1));
    for (int i : {4, 5}) EXPECT_TRUE(std::isnan(results[i]));
    EXPECT_EQ(report.failures, 2);
    EXPECT_EQ(report.first, 4);
}

TEST(ShieldEach, InnerArraysMayBeStridedAndMustBeLongEnough) {
    double x = 2, df = 12, results[3];
    double lambda[] = {0.6, -9, 0.7, -9, 0.5, -9, 0.3, -9};
    std::int64_t tail = 0, k[] = {3, 4, 5};
    char* pointers[] = {At(x), At(k[0]), At(df), At(lambda[0]), At(tail), At(results[0])};
    const intptr_t dimensions[] = {3, 4}, steps[] = {0, 8, 0, 0, 0, 8, 16};
    EachReport report;
    EachMCcCDF(pointers, dimensions, steps, &report);
    const double packed[] = {0.6, 0.7, 0.5, 0.3};
    EXPECT_EQ(results[0], MCcCDF(2, 3, 12, packed, 0));
    EXPECT_EQ(results[1], MCcCDF(2, 4, 12, packed, 0));
    EXPECT_TRUE(std::isnan(results[2]));
    EXPECT_STREQ(report.text, "MCcCDF: argument k is 5, which is out of its range");
    const intptr_t backwards[] = {0, 8, 0, 0, 0, 8, -16};
    pointers[3] = At(lambda[6]);
    const intptr_t one[] = {1, 4};
    EachMCcCDF(pointers, one, backwards, &report);
    const double reversed[] = {0.3, 0.5, 0.7};
    EXPECT_EQ(results[0], MCcCDF(2, 3, 12, reversed, 0));
}

// A step of 0 lets one element stand for an array of any length, also for one whose bytes cannot be counted.
TEST(ShieldEach, AnInnerArrayBeyondTheAddressSpaceIsOutOfMemory) {
    double x = 2, df = 12, lambda = 0.6, result = 0;
    std::int64_t tail = 0, k = 3;
    char* pointers[] = {At(x), At(k), At(df), At(lambda), At(tail), At(result)};
    constexpr intptr_t kMoreBytesThanCanBeCounted = INTPTR_MAX / 4 + 1;
    const intptr_t dimensions[] = {1, kMoreBytesThanCanBeCounted}, steps[] = {0, 0, 0, 0, 0, 0, 0};
    EachReport report;
    EachMCcCDF(pointers, dimensions, steps, &report);
    EXPECT_TRUE(std::isnan(result));
    EXPECT_EQ(report.status, ORVANTH_STATUS_MEMORY);
}

TEST(ShieldEach, ALengthThatNoArrayHasIsRefusedUnderItsOwnName) {
    double x = 2, df = 12, results[3], lambda[] = {0.6, -9, 0.7, -9};
    std::int64_t tail[] = {0, 300, 300}, k[] = {-1, std::int64_t{1} << 40, 3};
    char* pointers[] = {At(x), At(k[0]), At(df), At(lambda[0]), At(tail[0]), At(results[0])};
    const intptr_t steps[] = {0, 8, 0, 0, 8, 8, 16}, length[] = {3, 2}, none[] = {1, 0};
    EachReport report;
    EachMCcCDF(pointers, length, steps, &report);
    EXPECT_STREQ(report.text, "MCcCDF: argument k is -1, which is out of its range");
    EXPECT_EQ(report.failures, 3);
    for (double result : results) EXPECT_TRUE(std::isnan(result));
    // The first of two bad integers is named.
    pointers[1] = At(k[1]);
    pointers[4] = At(tail[1]);
    const intptr_t one[] = {1, 2};
    EachMCcCDF(pointers, one, steps, &report);
    EXPECT_STREQ(report.text, "MCcCDF: argument k is 1099511627776, which is out of its range");
    // Strided arrays without elements are not copied.
    std::int64_t zero = 0;
    pointers[1] = At(zero);
    pointers[4] = At(tail[0]);
    EachMCcCDF(pointers, none, steps, &report);
    EXPECT_NE(report.status, ORVANTH_STATUS_MEMORY);
    EXPECT_NE(report.status, ORVANTH_STATUS_ARGUMENT) << "k = 0 is answered by the export";
}

TEST(ShieldEach, EveryKindOfFailureIsOnRecord) {
    double p[] = {0, 0.5, 1.5}, mean = 0, sd = 1, results[3];
    std::int64_t tail = 0;
    char* pointers[] = {At(p[0]), At(mean), At(sd), At(tail), At(results[0])};
    const intptr_t count = 3, steps[] = {8, 0, 0, 0, 8};
    EachReport report;
    EachNormalICDF(pointers, &count, steps, &report);
    EXPECT_EQ(report.status, ORVANTH_STATUS_OVERFLOW);
    EXPECT_EQ(report.kinds, 1u << ORVANTH_STATUS_OVERFLOW | 1u << ORVANTH_STATUS_DOMAIN);
}

TEST(ShieldEach, NoElementsIsASuccess) {
    SafeBeta(-1, 1);
    const intptr_t count = 0, steps[] = {8, 8};
    char* pointers[] = {nullptr, nullptr};
    EachReport report{9, 9, 9, 9, "stale"};
    EachErf(pointers, &count, steps, &report);
    EXPECT_EQ(report.failures, 0);
    EXPECT_EQ(report.status, ORVANTH_STATUS_OK);
    EXPECT_STREQ(report.text, "");
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
}

TEST(ShieldEach, TwoResultsHaveTwoSteps) {
    double a = 2, b = 3, p[] = {0.25, -1}, results[2], complements[2];
    char* pointers[] = {At(a), At(b), At(p[0]), At(results[1]), At(complements[0])};
    const intptr_t count = 2, steps[] = {0, 0, 8, -8, 8};
    EachReport report;
    EachInverseBetaRegularized2(pointers, &count, steps, &report);
    double result = 0, complement = 0;
    InverseBetaRegularized2(2, 3, 0.25, &result, &complement);
    EXPECT_EQ(results[1], result);
    EXPECT_EQ(complements[0], complement);
    EXPECT_EQ(report.failures, 1);
    EXPECT_EQ(report.first, 1);
}

}  // namespace
