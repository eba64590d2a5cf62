// Integers of 32 bits where the arguments of an export, which nobody tests, lead beyond them.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_WRAP_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_WRAP_HPP

#include <cstdint>

namespace orvanth {

// Arithmetic that wraps around.
constexpr std::int32_t FNCWrap(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}
constexpr std::int32_t FNCSum(std::int32_t a, std::int32_t b) { return FNCWrap(std::int64_t{a} + b); }
constexpr std::int32_t FNCDifference(std::int32_t a, std::int32_t b) { return FNCWrap(std::int64_t{a} - b); }

// A double as an integer, toward zero. What no 32-bit integer holds, a NaN included, gives the most negative one.
constexpr std::int32_t FNCTruncate(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
    return static_cast<std::int32_t>(value);
}

}  // namespace orvanth

#endif
