#include "optimise/driver_state.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

// gfortran appends an underscore to the name, and the lengths of the character arguments.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" void setulb_(const std::int32_t* n, const std::int32_t* m, double* x, const double* l, const double* u,
                        const std::int32_t* nbd, double* f, double* g, const double* factr, const double* pgtol,
                        double* wa, std::int32_t* iwa, char* task, const std::int32_t* iprint, char* csave,
                        std::int32_t* lsave, std::int32_t* isave, double* dsave, std::size_t taskLength,
                        std::size_t csaveLength);

namespace orvanth {

std::int64_t WorkspaceLength(std::int32_t n, std::int32_t m) {
    if (n <= 0 || m <= 0) return 0;
    constexpr std::int64_t kLongest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t pairs = m;
    const std::int64_t perPair = 11 * pairs + 8 + 2 * std::int64_t{n};
    if (perPair > kLongest / pairs) return -1;
    const std::int64_t length = perPair * pairs + 5 * std::int64_t{n};
    return length <= kLongest ? length : -1;
}

namespace {

template <class T>
bool Allocate(std::unique_ptr<T[]>& block, std::int64_t length) {
    // A new-expression throws for an array beyond the address space, even one that throws nothing else.
    if (length > static_cast<std::int64_t>(PTRDIFF_MAX / sizeof(T))) return false;
    block.reset(new (std::nothrow) T[static_cast<std::size_t>(length)]());
    return block != nullptr;
}

}  // namespace

bool AllocateArrays(LBFGSBDriverState& state) {
    const std::int64_t n = state.n;
    const std::int64_t workspace = WorkspaceLength(state.n, state.m);
    return n >= 0 && workspace >= 0 && Allocate(state.l, n) && Allocate(state.u, n) && Allocate(state.nbd, n) &&
           Allocate(state.wa, workspace) && Allocate(state.iwa, 3 * n);
}

void SetTask(LBFGSBDriverState& state, std::string_view text) {
    std::fill_n(std::copy(text.begin(), text.end(), state.task), kTaskLength - static_cast<int>(text.size()), ' ');
}

void Advance(LBFGSBDriverState& state, double* x, double* f, double* g) {
    setulb_(&state.n, &state.m, x, state.l.get(), state.u.get(), state.nbd.get(), f, g, &state.factr, &state.pgtol,
            state.wa.get(), state.iwa.get(), state.task, &state.iprint, state.csave, state.lsave, state.isave,
            state.dsave, kTaskLength, kTaskLength);
}

}  // namespace orvanth
