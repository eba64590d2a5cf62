// Properties of the compiler and the platform that the library relies on, checked at compile time.
#ifndef ORVANTH_FRAME_ASSUMPTIONS_HPP
#define ORVANTH_FRAME_ASSUMPTIONS_HPP

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cstdint>
#include <limits>

#include "orvanth/types.h"

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);
static_assert(FLT_EVAL_METHOD == 0, "doubles are evaluated in 64 bits: -msse2 -mfpmath=sse");
static_assert(sizeof(int) == 4 && CHAR_BIT == 8);
static_assert(EDOM == 33 && ERANGE == 34, "callers and the manual name these numbers");
static_assert(sizeof(MatrixDescriptor) == 16);
static_assert(sizeof(RandomStreamHandle) == sizeof(void*));

#if defined(__FAST_MATH__)
#error "build without -ffast-math: it changes digits and removes NaN"
#endif
#if defined(NDEBUG)
#error "build without NDEBUG: the assertions of Boost.Math stay on in every build type"
#endif

#endif
