// Words into numbers: normal variates by the inverse error function, integers by a multiplicative
// map. One word to each number, in order, without rejection: the output depends on the seed and the
// position alone.
#ifndef ORVANTH_RANDOM_TRANSFORMS_HPP
#define ORVANTH_RANDOM_TRANSFORMS_HPP

#include <cstdint>

#include "random/numeric_mode.hpp"
#include "random/random_stream.hpp"

namespace orvanth {

inline constexpr std::int32_t kInverseCdfMethod = 2;
inline constexpr std::int32_t kUniformMethod = 0;

// n normal variates with mean a and standard deviation sigma. 0, or the status of a failed check.
std::int32_t vdRngGaussian(std::int32_t method, RandomStream* stream, std::int32_t n, double* values, double a,
                           double sigma);

// n integers from a to b - 1. 0, or the status of a failed check.
std::int32_t viRngUniform(std::int32_t method, RandomStream* stream, std::int32_t n, std::int32_t* values,
                          std::int32_t a, std::int32_t b);

// Replaces infinite and undefined results of vdErfInv by the finite cut-off.
std::int32_t ErfInvBoundaryCallback(NumericError* error);

// The message of a failed check, on standard output.
void ReportBadParameter(const char* routine, std::int32_t parameter);

}  // namespace orvanth

#endif
