// The two forms that the shield gives an export: one call, and a loop over strided arrays. No exception
// leaves either. What follows from an export's signature is decided here, by its types; what does not
// stands in its Facts.
#ifndef ORVANTH_SHIELD_GUARD_HPP
#define ORVANTH_SHIELD_GUARD_HPP

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>
#include <tuple>
#include <type_traits>
#include <utility>

#include "frame/errno_of_thread.hpp"
#include "frame/platform.hpp"
#include "orvanth/core_math.h"
#include "orvanth/shield.h"
#include "shield/last_failure.hpp"
#include "shield/refusals.hpp"

namespace orvanth::shield {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// One for the whole process: the exports that use the library's working storage take it.
extern ORVANTH_CONSTINIT_MUTEX std::mutex workspaceLock;

// A result and what the out-pointers got, compared with the value that stands for "no result".
inline bool IsReserved(const Facts& facts, double value) {
    return std::isnan(facts.reserved)
               ? std::isnan(value)
               : std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(facts.reserved);
}

template <class Argument>
inline constexpr bool kIsOutput = std::is_same_v<Argument, double*>;

// Where an export of values gives nothing, its out-pointers get a NaN: a host that looks there sees it.
template <class... Arguments>
void FillOutputs(Arguments... arguments) {
    const auto fill = [](auto argument) {
        if constexpr (kIsOutput<decltype(argument)>)
            if (argument != nullptr) *argument = kNaN;
    };
    (fill(arguments), ...);
}

// What is returned where the export itself gave nothing.
template <class Result, class... Arguments>
Result NoResult(Status status, int refusedArgument, Arguments... arguments) {
    if constexpr (std::is_void_v<Result>)
        FillOutputs(arguments...);
    else if constexpr (std::is_same_v<Result, double>)
        return kNaN;
    else
        return status == Status::Memory ? ORVANTH_NO_MEMORY : ORVANTH_REFUSED - refusedArgument;
}

// The arguments of a call as its text shows them.
template <class... Arguments>
auto Values(const std::tuple<Arguments...>& arguments) {
    return std::apply([](auto... each) { return std::array{Value(each)...}; }, arguments);
}

template <const Facts& facts, class... Arguments>
[[gnu::cold, gnu::noinline]] void NoteErrnoOfCall(int code, const std::tuple<Arguments...>& arguments) noexcept {
    NoteErrno(facts, code, Values(arguments).data());
}

template <const Facts& facts, class... Arguments>
[[gnu::cold, gnu::noinline]] void NoteReservedOfCall(const std::tuple<Arguments...>& arguments) noexcept {
    NoteReserved(facts, Values(arguments).data());
}

// The export, alone or under the lock.
template <auto Function, const Facts& facts, class... Arguments>
auto Call(Arguments... arguments) {
    if constexpr (facts.usesWorkspace) {
        std::lock_guard inside(workspaceLock);
        return Function(arguments...);
    } else {
        return Function(arguments...);
    }
}

template <const Facts& facts, class Argument>
bool IsOutputReserved(Argument argument) {
    if constexpr (kIsOutput<Argument>) return IsReserved(facts, *argument);
    return false;
}

// What came back, judged by the forms of failure other than an exception.
template <const Facts& facts, class Result, class... Arguments>
void JudgeResult(const Result& result, const std::tuple<Arguments...>& arguments) {
    if constexpr (std::is_same_v<Result, std::int32_t>) {
        if (result != 0) NoteInfo(facts, result);
    } else if constexpr (facts.hasReservedValue) {
        if (IsReserved(facts, result)) NoteReservedOfCall<facts>(arguments);
    }
}

// errno is set for a failure and otherwise left as it was; a silent export's own errno is found by calling it with 0.
template <const Facts& facts>
class ErrnoOfCall {
public:
    ErrnoOfCall() noexcept : errno_(ErrnoOfThread()), before_(errno_) { errno_ = 0; }
    template <class... Arguments>
    void Judge(const std::tuple<Arguments...>& arguments) noexcept {
        if (errno_ != 0) [[unlikely]]
            NoteErrnoOfCall<facts>(errno_, arguments);
        else
            errno_ = before_;
    }

private:
    int& errno_;
    int before_;
};

// An export that throws leaves errno alone.
template <const Facts& facts>
requires(!facts.isSilent) class ErrnoOfCall<facts> {
public:
    template <class Call>
    void Judge(const Call&) noexcept {}
};

// One call. The arguments are kept in memory for the text of a failure, so that no register is saved for them.
template <auto Function, const Facts& facts, class... Arguments>
inline auto Safe(Arguments... arguments) noexcept {
    using Result = decltype(Function(arguments...));
    if constexpr ((std::is_pointer_v<Arguments> || ...)) {
        if (const int refused = Refuse<Function, facts>(arguments...); refused != 0) {
            SetErrno(Status::Argument);
            return NoResult<Result>(Status::Argument, refused, arguments...);
        }
    }
    lastFailure.status = Status::Ok;
    const std::tuple<Arguments...> kept(arguments...);
    ErrnoOfCall<facts> errnoOfCall;
    try {
        if constexpr (std::is_void_v<Result>) {
            Call<Function, facts>(arguments...);
            errnoOfCall.Judge(kept);
            if constexpr (facts.hasReservedValue) {
                const bool isReserved = (int{IsOutputReserved<facts>(arguments)} | ...) != 0;
                if (isReserved) NoteReservedOfCall<facts>(kept);
            }
            return;
        } else {
            const Result result = Call<Function, facts>(arguments...);
            errnoOfCall.Judge(kept);
            JudgeResult<facts>(result, kept);
            return result;
        }
    } catch (...) {
        const Status status = NoteException();
        SetErrno(status);
        return NoResult<Result>(status, 0, arguments...);
    }
}

}  // namespace orvanth::shield

#endif
