// What the library relies on in the C mathematics of the platform, under both precisions of the x87 unit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include "support/precision_word.hpp"

namespace {

using orvanth::test::PrecisionWord;

constexpr std::uint16_t kWords[] = {0x27f, 0x37f};  // 53 and 64 bits

// A call that the compiler does not work out.
template <class Function, class... Arguments>
double Value(Function function, Arguments... arguments) {
    volatile double values[] = {arguments...};
    if constexpr (sizeof...(arguments) == 1)
        return function(values[0]);
    else if constexpr (sizeof...(arguments) == 2)
        return function(values[0], values[1]);
    else
        return function(values[0], values[1], values[2]);
}

// x as a sum of two numbers of 26 bits, whose products are exact.
std::pair<double, double> Halves(double x) {
    const double scaled = 134217729.0 * x;
    const double high = scaled - (scaled - x);
    return {high, x - high};
}

// Products of double-double numbers need the rounding error of a * b as fma(a, b, -a * b).
TEST(CMathematics, FusedMultiplyAddGivesTheRoundingErrorOfAProduct) {
    std::mt19937_64 random(20240229);
    std::uniform_real_distribution<double> uniform(1, 2);
    for (const std::uint16_t word : kWords)
        for (int i = 0; i < 20000; ++i) {
            const double a = uniform(random), b = std::ldexp(uniform(random), i % 400 - 200);
            const double product = a * b;
            const auto [aHigh, aLow] = Halves(a);
            const auto [bHigh, bLow] = Halves(b);
            const double error = ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow;
            const PrecisionWord set(word);
            ASSERT_EQ(Value([](double x, double y, double z) { return std::fma(x, y, z); }, a, b, -product), error)
                << std::hexfloat << a << " * " << b;
        }
}

// In 64 bits the sum below is rounded to a tie first, and the tie then goes the wrong way.
TEST(CMathematics, FusedMultiplyAddRoundsOnce) {
    const double a = 1 + 0x1p-52;
    for (const std::uint16_t word : kWords) {
        const PrecisionWord set(word);
        EXPECT_EQ(Value([](double x, double y, double z) { return std::fma(x, y, z); }, a, a, 0x1p-53),
                  1 + 0x1p-51 + 0x1p-52);
        EXPECT_EQ(Value([](double x, double y, double z) { return std::fma(x, y, z); }, 0x1p-600, 0x1p-500, 1.0),
                  1.0);
    }
}

struct Known {
    const char* name;
    double value, exact;  // rounded from 200 bits
};

TEST(CMathematics, FunctionsAreGoodToTwoUnitsInTheLastPlace) {
    const double y = 1 - 0x1.5314ba6072241p-15;
    for (const std::uint16_t word : kWords) {
        const PrecisionWord set(word);
        const Known known[] = {
            {"pow", Value([](double a, double b) { return std::pow(a, b); }, y, 128559.0), 0x1.6abdb51fbbf1ap-8},
            {"pow", Value([](double a, double b) { return std::pow(a, b); }, 1.0001, -3.25e6),
             0x1.1b918f4c85a6cp-469},
            {"exp", Value([](double a) { return std::exp(a); }, -5.19), 0x1.6d2ac30b0d38bp-8},
            {"exp", Value([](double a) { return std::exp(a); }, 705.3), 0x1.725dfda43691cp+1017},
            {"log", Value([](double a) { return std::log(a); }, y), -0x1.53167b83747c1p-15},
            {"log", Value([](double a) { return std::log(a); }, 1.9e300), 0x1.59b56cc42cf13p+9},
            {"log1p", Value([](double a) { return std::log1p(a); }, -3e-5), -0x1.f752f39f97b03p-16},
            {"expm1", Value([](double a) { return std::expm1(a); }, 0.37), 0x1.ca7af15d10873p-2},
            {"cos", Value([](double a) { return std::cos(a); }, 1e5), -0x1.ffac3841b3da7p-1},
            {"sin", Value([](double a) { return std::sin(a); }, 2.5), 0x1.326af0dcfcab1p-1},
        };
        for (const Known& k : known)
            EXPECT_LE(std::fabs(k.value - k.exact), 2 * std::numeric_limits<double>::epsilon() * std::fabs(k.exact))
                << k.name << " under " << std::hex << word;
    }
}

}  // namespace
