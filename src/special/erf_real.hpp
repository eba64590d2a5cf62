// The number type in which Boost's error functions are evaluated: a double whose frexp, ldexp and floor are made
// of bits instead of calls of the C runtime, which take a third of the time from 1.5 on. The operations are those
// of a double, and so are the bits of the result.
#ifndef ORVANTH_SPECIAL_ERF_REAL_HPP
#define ORVANTH_SPECIAL_ERF_REAL_HPP

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orvanth {

struct ErfReal {
    double value = 0.0;

    constexpr ErfReal() = default;
    constexpr ErfReal(double v) : value(v) {}

    constexpr ErfReal& operator+=(ErfReal b) { return *this = value + b.value; }
    constexpr ErfReal& operator*=(ErfReal b) { return *this = value * b.value; }

    friend constexpr ErfReal operator-(ErfReal a) { return -a.value; }
    friend constexpr ErfReal operator+(ErfReal a, ErfReal b) { return a.value + b.value; }
    friend constexpr ErfReal operator-(ErfReal a, ErfReal b) { return a.value - b.value; }
    friend constexpr ErfReal operator*(ErfReal a, ErfReal b) { return a.value * b.value; }
    friend constexpr ErfReal operator/(ErfReal a, ErfReal b) { return a.value / b.value; }
    friend constexpr bool operator==(ErfReal a, ErfReal b) { return a.value == b.value; }
    friend constexpr bool operator!=(ErfReal a, ErfReal b) { return a.value != b.value; }
    friend constexpr bool operator<(ErfReal a, ErfReal b) { return a.value < b.value; }
    friend constexpr bool operator>(ErfReal a, ErfReal b) { return a.value > b.value; }
    friend constexpr bool operator<=(ErfReal a, ErfReal b) { return a.value <= b.value; }
    friend constexpr bool operator>=(ErfReal a, ErfReal b) { return a.value >= b.value; }
};

inline ErfReal exp(ErfReal x) { return std::exp(x.value); }
inline ErfReal fabs(ErfReal x) { return std::fabs(x.value); }

// For what the error functions ask: normal positive numbers, powers of two in range, integers of 63 bits.
inline ErfReal frexp(ErfReal x, int* exponent) {
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(x.value);
    *exponent = static_cast<int>(bits >> 52) - 1022;
    return std::bit_cast<double>((bits & 0x000FFFFFFFFFFFFFu) | 0x3FE0000000000000u);
}
inline ErfReal ldexp(ErfReal x, int exponent) {
    return x.value * std::bit_cast<double>(static_cast<std::uint64_t>(1023 + exponent) << 52);
}
inline ErfReal floor(ErfReal x) { return static_cast<double>(static_cast<std::int64_t>(x.value)); }

}  // namespace orvanth

template <>
class std::numeric_limits<orvanth::ErfReal> : public std::numeric_limits<double> {};

#endif
