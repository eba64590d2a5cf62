// The refined multiple-comparison functions that the shield has beside its forms of the exports.
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

using Form = double (*)(double, std::int32_t, double, const double*, TailFlag);
using Each = void (*)(char* const*, const intptr_t*, const intptr_t*, EachReport*);

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kRootHalf = std::sqrt(0.5);

struct Family {
    const char* name;
    Form cumulative, quantile, plainCumulative, plainQuantile;
    Each eachCumulative, eachQuantile;
    double lowest;  // the x with probability 0
};
const Family kFamilies[] = {
    {"RefinedMCa", SafeRefinedMCaCDF, SafeRefinedMCaICDF, SafeMCaCDF, SafeMCaICDF, EachRefinedMCaCDF,
     EachRefinedMCaICDF, 0.0},
    {"RefinedMCb", SafeRefinedMCbCDF, SafeRefinedMCbICDF, SafeMCbCDF, SafeMCbICDF, EachRefinedMCbCDF,
     EachRefinedMCbICDF, -kInfinity},
    {"RefinedMCc", SafeRefinedMCcCDF, SafeRefinedMCcICDF, SafeMCcCDF, SafeMCcICDF, EachRefinedMCcCDF,
     EachRefinedMCcICDF, 0.0},
};

// A call that fails: a NaN, errno, a status and words about the function and the value.
void ExpectFailure(double result, std::int32_t status, const char* function, const char* words) {
    EXPECT_TRUE(std::isnan(result)) << function << " " << words;
    EXPECT_EQ(errno, status == ORVANTH_STATUS_OVERFLOW ? 34 : 33) << function << " " << words;
    EXPECT_EQ(LastStatus(), status) << function << " " << words;
    EXPECT_NE(std::strstr(LastErrorText(), function), nullptr) << LastErrorText();
    EXPECT_NE(std::strstr(LastErrorText(), words), nullptr) << LastErrorText();
}

TEST(ShieldRefined, AgreeWithThePlainFormsWhereTheseAreAccurate) {
    const std::vector<double> lambda(4, kRootHalf);
    for (const Family& family : kFamilies)
        for (double df : {5.0, 12.0, 60.0}) {
            for (TailFlag tail : {0, 1, 0x100, -1}) {
                EXPECT_NEAR(family.cumulative(2.5, 4, df, lambda.data(), tail),
                            family.plainCumulative(2.5, 4, df, lambda.data(), tail), 2e-7)
                    << family.name;
                EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
            }
            EXPECT_NEAR(
                family.quantile(0.95, 4, df, lambda.data(), 0) / family.plainQuantile(0.95, 4, df, lambda.data(), 0),
                1, 3e-6)
                << family.name;
        }
}

TEST(ShieldRefined, HaveValuesWhereThePlainFormsHaveNone) {
    const std::vector<double> lambda(4, kRootHalf);
    for (const Family& family : kFamilies) {
        const double x = family.quantile(1e-12, 4, 10, lambda.data(), 1);
        EXPECT_NEAR(family.cumulative(x, 4, 10, lambda.data(), 1) / 1e-12, 1, 1e-7) << family.name;
        EXPECT_TRUE(std::isnan(family.plainQuantile(1e-12, 4, 10, lambda.data(), 1)));
        const double known = family.quantile(0.95, 4, kInfinity, lambda.data(), 0);
        EXPECT_NEAR(family.cumulative(known, 4, kInfinity, lambda.data(), 0), 0.95, 1e-9) << family.name;
        EXPECT_TRUE(std::isnan(family.plainQuantile(0.95, 4, kInfinity, lambda.data(), 0)));
    }
}

TEST(ShieldRefined, LeaveErrnoAloneWhereTheySucceed) {
    const std::vector<double> lambda(3, kRootHalf);
    for (const Family& family : kFamilies) {
        errno = 7;
        family.cumulative(300, 3, 1e6, lambda.data(), 1);  // underflows inside
        EXPECT_EQ(errno, 7) << family.name;
        EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
        family.quantile(0.99, 3, 4, lambda.data(), 0);
        EXPECT_EQ(errno, 7) << family.name;
    }
}

TEST(ShieldRefined, FailuresAreToldAsThoseOfTheExports) {
    const std::vector<double> lambda(5, 0.5);
    for (const Family& family : kFamilies) {
        const auto both = [&](std::int32_t k, double df, const double* coefficients, std::int32_t status,
                              const char* words) {
            for (Form form : {family.cumulative, family.quantile}) {
                errno = 0;
                ExpectFailure(form(0.5, k, df, coefficients, 0), status, family.name, words);
            }
        };
        for (double df : {0.0, 0.0009, -3.0, -kInfinity})
            both(3, df, lambda.data(), ORVANTH_STATUS_DOMAIN, "Degrees of freedom argument is ");
        both(3, NAN, lambda.data(), ORVANTH_STATUS_DOMAIN, "Degrees of freedom argument is nan");
        for (double bad : {0.99991, 1.0, -1.0, 2.0, static_cast<double>(NAN)}) {
            const double coefficients[] = {bad, 0.5, 0.5};
            both(3, 10, coefficients, ORVANTH_STATUS_DOMAIN, "Coefficient lambda is ");
        }
        both(0, 10, nullptr, ORVANTH_STATUS_DOMAIN, "Number of groups is 0, but must be from ");
        both(-1, 10, lambda.data(), ORVANTH_STATUS_ARGUMENT, "argument lambda has a negative length");
        both(3, 10, nullptr, ORVANTH_STATUS_ARGUMENT, "argument lambda is null");
        errno = 0;
        ExpectFailure(family.cumulative(NAN, 3, 10, lambda.data(), 0), ORVANTH_STATUS_DOMAIN, family.name,
                      "Random variate x is nan");
        ExpectFailure(family.quantile(0.5, 1, 10, lambda.data(), 0), ORVANTH_STATUS_DOMAIN, family.name,
                      "Number of groups is 1, but must be from 2 to 46341 !");
        for (double p : {-0.1, 1.5, kInfinity, static_cast<double>(NAN)})
            ExpectFailure(family.quantile(p, 3, 10, lambda.data(), 0), ORVANTH_STATUS_DOMAIN, family.name,
                          "Probability argument is ");
        for (TailFlag tail : {0, 1})
            ExpectFailure(family.quantile(1.0 - tail, 3, 10, lambda.data(), tail), ORVANTH_STATUS_OVERFLOW,
                          family.name, "Overflow Error");
        const double first[] = {kRootHalf, kRootHalf, NAN};  // the last coefficient does not count
        EXPECT_FALSE(std::isnan(family.cumulative(2, 3, 10, first, 0))) << family.name;
    }
    const std::vector<double> many(46342, kRootHalf);
    ExpectFailure(SafeRefinedMCaCDF(2, 46342, 10, many.data(), 0), ORVANTH_STATUS_DOMAIN, "RefinedMCaCDF",
                  "Number of groups is 46342");
    const double other[] = {0.5, 0.5, 0.5};
    ExpectFailure(SafeRefinedMCaICDF(0.999999, 3, 10, other, 0), ORVANTH_STATUS_DOMAIN, "RefinedMCaICDF",
                  "No double x has the probability 0.99999899999999997 !");
}

TEST(ShieldRefined, TheLowestProbabilityHasTheLowestQuantile) {
    const std::vector<double> lambda(3, kRootHalf);
    for (const Family& family : kFamilies)
        for (TailFlag tail : {0, 1}) {
            errno = 0;
            const double x = family.quantile(tail, 3, 10, lambda.data(), tail);
            if (std::isinf(family.lowest)) {
                ExpectFailure(x, ORVANTH_STATUS_OVERFLOW, family.name, "Overflow Error");
            } else {
                EXPECT_EQ(x, 0.0) << family.name;
                EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
            }
        }
}

template <class T>
char* At(T& value) {
    return reinterpret_cast<char*>(&value);
}

TEST(ShieldRefined, ArrayFormsEqualTheSafeFormsAndGoOnBehindAFailure) {
    double first[] = {0.9, 0.5, 7, 0.01}, h = kRootHalf, lambda[] = {h, -9, h, -9, h, -9, h, -9};
    double df[] = {3, 0, 12, kInfinity}, results[4];
    std::int64_t k[] = {3, 3, 4, 5}, tail = 1;
    const double packed[] = {h, h, h, h};
    char* pointers[] = {At(first[0]), At(k[0]), At(df[0]), At(lambda[0]), At(tail), At(results[0])};
    const intptr_t dimensions[] = {4, 4}, steps[] = {8, 8, 8, 0, 0, 8, 16};
    for (const Family& family : kFamilies) {
        EachReport report;
        family.eachCumulative(pointers, dimensions, steps, &report);
        EXPECT_EQ(results[0], family.cumulative(0.9, 3, 3, packed, 1)) << family.name;
        EXPECT_TRUE(std::isnan(results[1])) << "df is 0";
        EXPECT_EQ(results[2], family.cumulative(7, 4, 12, packed, 1)) << family.name;
        EXPECT_TRUE(std::isnan(results[3])) << "the array is shorter than k";
        EXPECT_EQ(report.failures, 2);
        EXPECT_EQ(report.first, 1);
        EXPECT_EQ(report.kinds, 1u << ORVANTH_STATUS_DOMAIN | 1u << ORVANTH_STATUS_ARGUMENT);
        EXPECT_NE(std::strstr(report.text, "Degrees of freedom argument is 0"), nullptr) << report.text;
        first[2] = 0.05;
        family.eachQuantile(pointers, dimensions, steps, &report);
        EXPECT_EQ(results[2], family.quantile(0.05, 4, 12, packed, 1)) << family.name;
        EXPECT_EQ(report.failures, 2);
        first[2] = 7;
    }
}

}  // namespace
