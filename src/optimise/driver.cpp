#include <algorithm>
#include <new>

#include "optimise/driver_state.hpp"
#include "orvanth/optimise.h"

namespace {

using namespace orvanth;

// What a step answers. The order in which the prefixes are tried is the order of the codes.
enum StepCode : std::int32_t {
    kOther = 0,
    kEvaluate = 1,
    kNewIterate = 2,
    kConverged = 3,
    kAbnormal = 4,
    kRejected = 5,
};

StepCode Classify(const LBFGSBDriverState& state) {
    if (TaskHasPrefix(state, "FG")) return kEvaluate;
    if (TaskHasPrefix(state, "NEW_X")) return kNewIterate;
    if (TaskHasPrefix(state, "CONV")) return kConverged;
    if (TaskHasPrefix(state, "ABNO")) return kAbnormal;
    if (TaskHasPrefix(state, "ERROR")) return kRejected;
    return kOther;
}

bool HasFinished(const LBFGSBDriverState& state) {
    return TaskHasPrefix(state, "CONV") || TaskHasPrefix(state, "ABNO") || TaskHasPrefix(state, "ERROR");
}

// Left uninitialised: the workspace of a large problem is written once, by the library.
template <class T>
bool Allocate(std::unique_ptr<T[]>& block, std::int64_t length) {
    block.reset(new (std::nothrow) T[static_cast<std::size_t>(length)]);
    return block != nullptr;
}

bool AllocateBlocks(LBFGSBDriverState& state) {
    const std::int64_t n = state.n;
    const std::int64_t workspace = WorkspaceLength(state.n, state.m);
    return n >= 0 && workspace >= 0 && Allocate(state.x, n) && Allocate(state.l, n) && Allocate(state.u, n) &&
           Allocate(state.nbd, n) && Allocate(state.g, n) && Allocate(state.wa, workspace) &&
           Allocate(state.iwa, 3 * n);
}

}  // namespace

// Nothing is validated here: a bad argument surfaces on the first step.
ORVANTH_API(LBFGSBDriverState*)
LBFGSBStart(std::int32_t n, std::int32_t m, const double* l, const double* u, const std::int32_t* nbd, double factr,
            double pgtol) {
    std::unique_ptr<LBFGSBDriverState> state(new (std::nothrow) LBFGSBDriverState);
    if (state == nullptr) return nullptr;
    state->n = n;
    state->m = m;
    if (!AllocateBlocks(*state)) return nullptr;
    std::fill_n(state->g.get(), n, 0.0);
    std::copy_n(l, n, state->l.get());
    std::copy_n(u, n, state->u.get());
    std::copy_n(nbd, n, state->nbd.get());
    state->factr = factr;
    state->pgtol = pgtol;
    SetTask(*state, "START");
    return state.release();
}

ORVANTH_API(std::int32_t) LBFGSBStep(LBFGSBDriverState* state, double* x, double* f, double* g) {
    if (state == nullptr) return kRejected;
    const std::int32_t n = state->n;
    std::copy_n(x, n, state->x.get());
    std::copy_n(g, n, state->g.get());
    state->f = *f;

    Advance(*state);

    // Unconditional: x may have been projected or moved, and all three restored after a failed
    // line search.
    std::copy_n(state->x.get(), n, x);
    std::copy_n(state->g.get(), n, g);
    *f = state->f;
    return Classify(*state);
}

ORVANTH_API(void) LBFGSBEnd(LBFGSBDriverState* state) {
    if (state == nullptr) return;
    if (!HasFinished(*state)) {
        SetTask(*state, "STOP");
        Advance(*state);
    }
    delete state;
}
