// The process-wide state that exists from load on.
#ifndef ORVANTH_FRAME_LOAD_STATE_HPP
#define ORVANTH_FRAME_LOAD_STATE_HPP

#include <cstdint>

namespace orvanth {

// What the noncentral hypergeometric code returns where it has no value: finite, and no NaN.
extern const double FNCInvalidValue;

// LAPACK workspace shared by all fixed-workspace calls, without a lock and never released.
extern const std::int32_t LapackWorkLength;
extern double* const LapackWork;
extern std::int32_t* const LapackIntWork;

}  // namespace orvanth

#endif
