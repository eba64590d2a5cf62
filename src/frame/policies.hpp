// The error policies and the one place where failure is raised.
//
// Boost.Math runs under one of four policy types. All of them send what Boost detects to this
// file, where it is either thrown or, for the extent of a SilentCall, noted in errno. Evaluation
// is in 64-bit double; the texts name the type that each function is documented with.
#ifndef ORVANTH_FRAME_POLICIES_HPP
#define ORVANTH_FRAME_POLICIES_HPP

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <limits>

#include <boost/math/policies/error_handling.hpp>
#include <boost/math/policies/policy.hpp>

#include "frame/platform.hpp"

namespace orvanth {

namespace bmp = boost::math::policies;

// Failures throw.
using DefaultPolicy =
    bmp::policy<bmp::domain_error<bmp::user_error>, bmp::pole_error<bmp::user_error>,
                bmp::overflow_error<bmp::user_error>, bmp::underflow_error<bmp::ignore_error>,
                bmp::denorm_error<bmp::ignore_error>, bmp::evaluation_error<bmp::user_error>,
                bmp::rounding_error<bmp::user_error>, bmp::indeterminate_result_error<bmp::ignore_error>,
                bmp::promote_float<true>, bmp::promote_double<false>>;

// Failures set errno and answer with a NaN, an infinity or the value reached; rounding errors
// throw all the same. Boost reports both policies' failures to the same handlers, so a call under
// this policy stands inside a SilentCall; max_root_iterations only keeps the two types apart.
using BoundaryPolicy = bmp::normalise<DefaultPolicy, bmp::max_root_iterations<200>>::type;

using RoundDownPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_down>>::type;
using RoundUpPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_up>>::type;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kLargest = std::numeric_limits<double>::max();

// Type names as they stand in the texts.
inline constexpr const char* kDouble = "double";
inline constexpr const char* kLongDouble = "long double";

// errno after the call is errno before it: what the C runtime's exp, log or pow stores on the way
// does not reach the caller. The first object of every export that computes with them and throws.
class ErrnoKeeper {
public:
    ErrnoKeeper() noexcept : before_(errno) {}
    ~ErrnoKeeper() { errno = before_; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int before_;
};

// The extent in which failures are silent: the first object of every export under BoundaryPolicy.
// On leaving, errno is the last failure noted, or what it was before; the runtime's own stores are
// dropped. Objects nest.
class SilentCall {
public:
    SilentCall() noexcept : outer_(current_), errno_(errno) { current_ = this; }
    ~SilentCall() {
        errno = errno_;
        current_ = outer_;
        if (noted_ && outer_ != nullptr) outer_->Note(errno_);
    }
    SilentCall(const SilentCall&) = delete;
    SilentCall& operator=(const SilentCall&) = delete;

    void Note(int code) noexcept {
        errno_ = code;
        noted_ = true;
    }
    static SilentCall* Current() noexcept { return current_; }

private:
    static constinit ORVANTH_THREAD_LOCAL SilentCall* current_;
    SilentCall* outer_;
    int errno_;
    bool noted_ = false;
};

// Raised inside a SilentCall these note 33 or 34 and return; elsewhere they throw. The texts are
// templates: %1% in `function` is the type name, %1% in `message` the value with 17 digits.
// Return values: NaN; an infinity; the value reached.
double RaiseDomain(const char* function, const char* message, double value, const char* type = kDouble);
double RaiseOverflow(const char* function, const char* message = nullptr, const char* type = kDouble);
double RaiseEvaluation(const char* function, const char* message, double reached, const char* type = kDouble);

// Always thrown.
[[noreturn]] void RaiseRounding(const char* function, const char* message, double value, const char* type = kDouble);

// The check that every special function's result passes on its way out: a magnitude beyond the
// largest double is an overflow, under "numeric overflow" and type double. A NaN passes.
inline double Narrow(double value, const char* function) {
    if (std::fabs(value) > kLargest) return RaiseOverflow(function, "numeric overflow");
    return value;
}

// The type that Boost's own failure names, which depends on the function that reports it.
const char* TypeNamedBy(const char* function, const char* message);

}  // namespace orvanth

// Where Boost.Math delivers what it detects.
namespace boost::math::policies {

template <class T>
T user_domain_error(const char* function, const char* message, const T& value) {
    return static_cast<T>(
        orvanth::RaiseDomain(function, message, static_cast<double>(value), orvanth::TypeNamedBy(function, message)));
}
template <class T>
T user_pole_error(const char* function, const char* message, const T& value) {
    return user_domain_error(function, message, value);
}
template <class T>
T user_overflow_error(const char* function, const char* message, const T&) {
    return static_cast<T>(orvanth::RaiseOverflow(function, message, orvanth::TypeNamedBy(function, message)));
}
template <class T>
T user_evaluation_error(const char* function, const char* message, const T& value) {
    return static_cast<T>(orvanth::RaiseEvaluation(function, message, static_cast<double>(value),
                                                   orvanth::TypeNamedBy(function, message)));
}
template <class T, class Target>
T user_rounding_error(const char* function, const char* message, const T& value, const Target&) {
    orvanth::RaiseRounding(function, message, static_cast<double>(value), orvanth::TypeNamedBy(function, message));
}

}  // namespace boost::math::policies

#endif
