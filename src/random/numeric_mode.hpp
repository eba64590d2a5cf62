// The numeric mode of the vector layer and its error callback: one of each per thread.
#ifndef ORVANTH_RANDOM_NUMERIC_MODE_HPP
#define ORVANTH_RANDOM_NUMERIC_MODE_HPP

#include <cstdint>

namespace orvanth {

// Bits 0-3 accuracy, 8-15 error mode, 18-21 floating-point mode.
inline constexpr std::uint32_t kDefaultNumericMode = 6658;
inline constexpr std::uint32_t kAccuracyField = 0xF;
inline constexpr std::uint32_t kErrorField = 0xFF00;
inline constexpr std::uint32_t kFloatingPointField = 0x3C0000;
inline constexpr std::uint32_t kCallbackBit = 0x1000;

inline constexpr std::int32_t kDomainError = 1;
inline constexpr std::int32_t kSingularity = 2;

struct NumericError {
    std::int32_t code;
    std::int32_t index;
    double argument1;
    double argument2;
    double result1;  // what the callback leaves here is stored
    double result2;
    const char* function;
};

using NumericErrorCallback = std::int32_t (*)(NumericError*);

std::uint32_t NumericMode();

// Changes the fields in which `mode` has bits; returns the old word.
std::uint32_t SetNumericMode(std::uint32_t mode);

// Null removes the callback. Returns the old one.
NumericErrorCallback SetNumericErrorCallback(NumericErrorCallback callback);

// Hands an error to the callback, if one is installed and the mode asks for it; returns what is to
// be stored.
double ReportNumericError(std::int32_t code, std::int32_t index, double argument, double result,
                          const char* function);

}  // namespace orvanth

#endif
