#include <algorithm>
#include <new>

#include "frame/failure.hpp"
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

}  // namespace

// Nothing is validated here: a bad argument surfaces on the first step.
ORVANTH_API(LBFGSBDriverState*)
LBFGSBStart(std::int32_t n, std::int32_t m, const double* l, const double* u, const std::int32_t* nbd, double factr,
            double pgtol) {
    Silent silent;
    std::unique_ptr<LBFGSBDriverState> state(new (std::nothrow) LBFGSBDriverState);
    if (state == nullptr) return nullptr;
    state->n = n;
    state->m = m;
    if (!AllocateArrays(*state)) return nullptr;
    std::copy_n(l, n, state->l.get());
    std::copy_n(u, n, state->u.get());
    std::copy_n(nbd, n, state->nbd.get());
    state->factr = factr;
    state->pgtol = pgtol;
    SetTask(*state, "START");
    return state.release();
}

// x, f and g are the minimiser's to change: it projects and moves x, and restores all three after a failed line
// search.
ORVANTH_API(std::int32_t) LBFGSBStep(LBFGSBDriverState* state, double* x, double* f, double* g) {
    Silent silent;
    if (state == nullptr) return kRejected;
    // The minimiser would take the task of a rejection for a wish to start, with the same bad arguments.
    if (TaskHasPrefix(*state, "ERROR")) return kRejected;
    Advance(*state, x, f, g);
    return Classify(*state);
}

ORVANTH_API(void) LBFGSBEnd(LBFGSBDriverState* state) {
    if (state == nullptr) return;
    if (!HasFinished(*state)) {
        SetTask(*state, "STOP");
        Advance(*state, nullptr, nullptr, nullptr);  // at this task none of them is read or written
    }
    delete state;
}
