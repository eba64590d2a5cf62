// Statuses of the random exports, and the message of a failed check.
#ifndef ORVANTH_RANDOM_BAD_PARAMETER_HPP
#define ORVANTH_RANDOM_BAD_PARAMETER_HPP

#include <cstdint>

namespace orvanth {

inline constexpr std::int32_t kStatusOk = 0;
inline constexpr std::int32_t kStatusBadArgument = -3;
inline constexpr std::int32_t kStatusNullStream = -5;
inline constexpr std::int32_t kStatusNotAStream = -1006;

// The routines by which the messages name the exports. The parameter numbers count their arguments.
inline constexpr const char* kDeleteRoutine = "vslDeleteStream";
inline constexpr const char* kNormalRoutine = "vdRngGaussian";
inline constexpr const char* kIntegerRoutine = "viRngUniform";

// Prints the message on standard output and flushes it.
void ReportBadParameter(const char* routine, std::int32_t parameter);

}  // namespace orvanth

#endif
