// The random streams and the minimiser, with handles of the shield's own in place of addresses, and without a
// message on standard output: what the core would print there is told as status and text.
#include <cmath>
#include <memory>
#include <new>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"
#include "shield/handles.hpp"
#include "shield/last_failure.hpp"

using namespace orvanth::shield;

namespace {

constexpr std::int32_t kBadArgument = -3, kNoHandle = -5, kNotAStream = -1006;  // statuses of the random exports
constexpr std::int32_t kEvaluate = 1, kNewIterate = 2, kAbnormal = 4, kRejected = 5;  // codes of a step

ORVANTH_CONSTINIT_MUTEX HandleTable handles;

struct Minimiser {
    LBFGSBDriverState* state = nullptr;
    std::int32_t n = 0;
    std::int32_t ended = 0;  // the code it ended with
    const char* flaw = "";   // what the first step will reject
};

void Succeed() { lastFailure.status = Status::Ok; }

// Notes what is wrong with a handle; `argument` is its name.
[[gnu::cold]] void NoteAccess(const char* name, const char* argument, HandleTable::Handle handle, Access access) {
    if (handle == 0)
        Note(Status::Handle, name, "the handle is 0, which means none", argument);
    else if (access == Access::InUse)
        Note(Status::NotReentrant, name, "the handle is in use by another call", argument);
    else
        Note(Status::Handle, name,
             access == Access::Deleted ? "the handle was deleted before" : "the number is no handle", argument);
    SetErrno(Status::Handle);
}

std::int32_t StreamStatus(HandleTable::Handle handle, Access access) {
    if (handle == 0) return kNoHandle;
    return access == Access::InUse ? ORVANTH_REFUSED - 1 : kNotAStream;
}

[[gnu::cold]] std::int32_t RefuseArgument(const char* name, const char* what, const char* argument) {
    Note(Status::Argument, name, what, argument);
    SetErrno(Status::Argument);
    return kBadArgument;
}

// 0, or the status of the argument at fault.
std::int32_t TestNormal(const char* name, const double* values, std::int32_t count, const char* countName,
                        double sigma) {
    if (sigma <= 0) return RefuseArgument(name, "sigma is not greater than 0", "sigma");
    if (count < 0) return RefuseArgument(name, "the count is negative", countName);
    if (count > 0 && values == nullptr) return RefuseArgument(name, "values is null", "values");
    return 0;
}

// What the minimiser rejects at its first step. Where several hold, its last test gives the reason.
const char* FindFlaw(std::int32_t n, std::int32_t m, const double* l, const double* u, const std::int32_t* nbd,
                     double factr) {
    const char* flaw = "";
    if (n <= 0) flaw = "n is not positive";
    if (m <= 0) flaw = "m is not positive";
    if (factr < 0) flaw = "factr is negative";
    for (std::int32_t i = 0; i < n; ++i) {
        if (nbd[i] < 0 || nbd[i] > 3)
            flaw = "a kind of bound is not 0 to 3";
        else if (nbd[i] == 2 && l[i] > u[i])
            flaw = "a lower bound is above its upper bound";
    }
    return flaw;
}

}  // namespace

ORVANTH_SHIELD_API(RandomStreamHandle) SafeCreateRandomStream(int32_t seed) {
    Succeed();
    const RandomStreamHandle stream = CreateRandomStream(seed);
    const HandleTable::Handle handle =
        stream == 0 ? 0 : handles.Insert(Kind::Stream, reinterpret_cast<void*>(stream));
    if (handle == 0) {
        if (stream != 0) DeleteRandomStream(stream);
        Note(Status::Memory, "CreateRandomStream", "out of memory");
        SetErrno(Status::Memory);
    }
    return static_cast<RandomStreamHandle>(handle);
}

ORVANTH_SHIELD_API(int32_t) SafeDeleteRandomStream(RandomStreamHandle stream) {
    Succeed();
    const auto handle = static_cast<HandleTable::Handle>(stream);
    Hold hold(handles, Kind::Stream, handle);
    if (hold.Result() != Access::Granted) {
        NoteAccess("DeleteRandomStream", "stream", handle, hold.Result());
        return StreamStatus(handle, hold.Result());
    }
    const auto status = DeleteRandomStream(reinterpret_cast<RandomStreamHandle>(hold.Object()));
    hold.Remove();
    return status;
}

ORVANTH_SHIELD_API(int32_t) SafeRandomUniformInteger(RandomStreamHandle stream, int32_t* values, int32_t count) {
    Succeed();
    const auto handle = static_cast<HandleTable::Handle>(stream);
    const Hold hold(handles, Kind::Stream, handle);
    if (hold.Result() != Access::Granted) {
        NoteAccess("RandomUniformInteger", "stream", handle, hold.Result());
        return StreamStatus(handle, hold.Result());
    }
    if (count < 0) return RefuseArgument("RandomUniformInteger", "the count is negative", "count");
    if (count > 0 && values == nullptr) return RefuseArgument("RandomUniformInteger", "values is null", "values");
    return RandomUniformInteger(reinterpret_cast<RandomStreamHandle>(hold.Object()), values, count);
}

ORVANTH_SHIELD_API(int32_t)
SafeRandomNormalVariable(double* values, int32_t count, double mean, double sigma, int32_t seed) {
    Succeed();
    const std::int32_t refused = TestNormal("RandomNormalVariable", values, count, "count", sigma);
    return refused != 0 ? refused : RandomNormalVariable(values, count, mean, sigma, seed);
}

// Without columns nothing is drawn and nothing is tested.
ORVANTH_SHIELD_API(int32_t)
SafeRandomNormalVariables(double* values, int32_t rows, int32_t columns, double mean, double sigma, int32_t seed) {
    Succeed();
    const std::int32_t refused = columns > 0 ? TestNormal("RandomNormalVariables", values, rows, "rows", sigma) : 0;
    return refused != 0 ? refused : RandomNormalVariables(values, rows, columns, mean, sigma, seed);
}

ORVANTH_SHIELD_API(LBFGSBDriverState*)
SafeLBFGSBStart(int32_t n, int32_t m, const double* l, const double* u, const int32_t* nbd, double factr,
                double pgtol) {
    Succeed();
    if (n < 0 || (n > 0 && (l == nullptr || u == nullptr || nbd == nullptr))) {
        RefuseArgument("LBFGSBStart", n < 0 ? "n is negative" : "a bound array is null",
                       n < 0          ? "n"
                       : l == nullptr ? "l"
                       : u == nullptr ? "u"
                                      : "nbd");
        return nullptr;
    }
    std::unique_ptr<Minimiser> minimiser(new (std::nothrow) Minimiser);
    LBFGSBDriverState* const state = minimiser == nullptr ? nullptr : LBFGSBStart(n, m, l, u, nbd, factr, pgtol);
    HandleTable::Handle handle = 0;
    if (state != nullptr) {
        *minimiser = {state, n, 0, FindFlaw(n, m, l, u, nbd, factr)};
        handle = handles.Insert(Kind::Minimiser, minimiser.get());
    }
    if (handle == 0) {
        LBFGSBEnd(state);
        Note(Status::Memory, "LBFGSBStart", "out of memory, or a workspace of 2^31 doubles or more");
        SetErrno(Status::Memory);
        return nullptr;
    }
    static_cast<void>(minimiser.release());
    return reinterpret_cast<LBFGSBDriverState*>(handle);
}

ORVANTH_SHIELD_API(int32_t) SafeLBFGSBStep(LBFGSBDriverState* state, double* x, double* f, double* g) {
    Succeed();
    const auto handle = reinterpret_cast<HandleTable::Handle>(state);
    const Hold hold(handles, Kind::Minimiser, handle);
    if (hold.Result() != Access::Granted) {
        NoteAccess("LBFGSBStep", "state", handle, hold.Result());
        return kRejected;
    }
    auto& minimiser = *static_cast<Minimiser*>(hold.Object());
    if (minimiser.ended != 0) {
        RefuseArgument("LBFGSBStep", "the minimisation has ended; a further step makes no sense", "state");
        return minimiser.ended;
    }
    if (f == nullptr || (minimiser.n > 0 && (x == nullptr || g == nullptr))) {
        RefuseArgument("LBFGSBStep", "x, f or g is null", x == nullptr ? "x" : f == nullptr ? "f" : "g");
        return kRejected;
    }
    const std::int32_t code = LBFGSBStep(minimiser.state, x, f, g);
    if (code != kEvaluate && code != kNewIterate) minimiser.ended = code;
    if (code == kRejected) RefuseArgument("LBFGSBStart", minimiser.flaw, "");
    if (code == kAbnormal) {
        Note(Status::NoSolution, "LBFGSBStep", "the line search failed for good; x, f and g are the last good point");
        SetErrno(Status::NoSolution);
    }
    return code;
}

ORVANTH_SHIELD_API(void) SafeLBFGSBEnd(LBFGSBDriverState* state) {
    Succeed();
    if (state == nullptr) return;
    const auto handle = reinterpret_cast<HandleTable::Handle>(state);
    Hold hold(handles, Kind::Minimiser, handle);
    if (hold.Result() != Access::Granted) {
        NoteAccess("LBFGSBEnd", "state", handle, hold.Result());
        return;
    }
    const std::unique_ptr<Minimiser> minimiser(static_cast<Minimiser*>(hold.Object()));
    LBFGSBEnd(minimiser->state);
    hold.Remove();
}
