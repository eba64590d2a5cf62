// The record of one minimisation and the Fortran entry that works on it.
#ifndef ORVANTH_OPTIMISE_DRIVER_STATE_HPP
#define ORVANTH_OPTIMISE_DRIVER_STATE_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "orvanth/types.h"

namespace orvanth {

inline constexpr int kTaskLength = 60;

}  // namespace orvanth

// What setulb needs from call to call, apart from x, f and g, which stay with the caller.
struct LBFGSBDriverState {
    std::int32_t n = 0;
    std::int32_t m = 0;
    std::unique_ptr<double[]> l;
    std::unique_ptr<double[]> u;
    std::unique_ptr<std::int32_t[]> nbd;
    double factr = 0.0;
    double pgtol = 0.0;
    std::unique_ptr<double[]> wa;
    std::unique_ptr<std::int32_t[]> iwa;
    char task[orvanth::kTaskLength + 1] = {};  // blank-padded; one zero byte behind it
    std::int32_t iprint = -1;                  // no progress report, no file
    // The library's own saved values, which it sets on its first call.
    char csave[orvanth::kTaskLength] = {};
    std::int32_t lsave[4] = {};
    std::int32_t isave[44] = {};
    double dsave[29] = {};
};

namespace orvanth {

// Doubles in `wa`, or -1 if setulb's own 32-bit offsets into it could not hold the number. Where
// n or m is not positive setulb rejects the problem before it looks at the workspace: 0.
std::int64_t WorkspaceLength(std::int32_t n, std::int32_t m);

// Allocates the arrays for the state's n and m; false if there is no memory or no valid length. All elements are
// zero: setulb reads some elements of `wa` before it writes them, and its path would depend on what they held.
bool AllocateArrays(LBFGSBDriverState& state);

// Whether the first characters of the task are `text`.
inline bool TaskHasPrefix(const LBFGSBDriverState& state, std::string_view text) {
    return std::string_view(state.task, kTaskLength).starts_with(text);
}

// `text` followed by blanks; the zero byte behind the 60 characters is left alone.
void SetTask(LBFGSBDriverState& state, std::string_view text);

// One call of setulb on the caller's x, f and g. It keeps no pointer to them.
void Advance(LBFGSBDriverState& state, double* x, double* f, double* g);

}  // namespace orvanth

#endif
