// The error policies and the one place where failure is raised.
//
// All policy types send what Boost.Math detects to this file. There it is thrown, or noted in errno
// while a Silent object is alive on the calling thread. Evaluation is in 64-bit double. The messages
// name the type that each function is documented with.
#ifndef ORVANTH_FRAME_POLICIES_HPP
#define ORVANTH_FRAME_POLICIES_HPP

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include <boost/math/policies/error_handling.hpp>
#include <boost/math/policies/policy.hpp>

#include "frame/errno_of_thread.hpp"
#include "frame/platform.hpp"

namespace orvanth {

namespace bmp = boost::math::policies;

// What Boost detects goes to the handlers at the end of this file.
using DefaultPolicy =
    bmp::policy<bmp::domain_error<bmp::user_error>, bmp::pole_error<bmp::user_error>,
                bmp::overflow_error<bmp::user_error>, bmp::underflow_error<bmp::ignore_error>,
                bmp::denorm_error<bmp::ignore_error>, bmp::evaluation_error<bmp::user_error>,
                bmp::rounding_error<bmp::user_error>, bmp::indeterminate_result_error<bmp::ignore_error>,
                bmp::promote_float<true>, bmp::promote_double<false>>;

// For a calculation whose overflow the caller reports under a text of its own: an infinity comes back.
using LateOverflowPolicy = bmp::normalise<DefaultPolicy, bmp::overflow_error<bmp::ignore_error>>::type;

using RoundDownPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_down>>::type;
using RoundUpPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_up>>::type;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kLargest = std::numeric_limits<double>::max();

// Type names as they stand in the texts.
inline constexpr const char* kDouble = "double";
inline constexpr const char* kLongDouble = "long double";

// The first object of every export whose failures throw. Its destructor puts errno back: what the C
// runtime's exp, log or pow stored on the way does not reach the caller.
class Throwing {
public:
    Throwing() noexcept : errno_(ErrnoOfThread()), before_(errno_) {}
    ~Throwing() { errno_ = before_; }
    Throwing(const Throwing&) = delete;
    Throwing& operator=(const Throwing&) = delete;

private:
    int& errno_;
    int before_;
};

// While this object is alive, failures on this thread set errno and do not throw. The first object of
// every silent export. Its destructor sets errno to the last failure noted, or to its value before;
// what the C runtime stored on the way is dropped. Objects nest.
class Silent {
public:
    Silent() noexcept : outer_(current_), code_(ErrnoOfThread()), errno_(ErrnoOfThread()) { current_ = this; }
    ~Silent() {
        errno_ = code_;
        current_ = outer_;
        if (noted_ && outer_ != nullptr) outer_->Note(code_);
    }
    Silent(const Silent&) = delete;
    Silent& operator=(const Silent&) = delete;

    void Note(int code) noexcept {
        code_ = code;
        noted_ = true;
    }
    static Silent* Current() noexcept { return current_; }

private:
    template <class Calculation>
    friend auto Try(Calculation calculation);
    // Forgets the failures noted so far; true if there were any.
    bool Withdraw(int before) noexcept {
        code_ = before;
        return std::exchange(noted_, false);
    }

    static constinit ORVANTH_THREAD_LOCAL Silent* current_;
    Silent* outer_;
    int code_;  // what errno is set to at the end
    bool noted_ = false;
    int& errno_;
};

// A value, and whether a failure was noted on the way to it.
template <class Value>
struct Tried {
    Value value;
    bool failed;
};

// Runs a calculation that has a substitute if it fails. Its failures reach neither errno nor the caller's own
// Silent object.
template <class Calculation>
auto Try(Calculation calculation) {
    const int before = ErrnoOfThread();
    Silent silent;
    const auto value = calculation();
    return Tried<std::remove_const_t<decltype(value)>>{value, silent.Withdraw(before)};
}

// While a Silent object is alive these note 33 or 34 and return; elsewhere they throw. The texts are
// templates: %1% in `function` is the type name, %1% in `message` the value with 17 digits.
// Return values: NaN; an infinity; the value reached.
[[gnu::cold]] double RaiseDomain(const char* function, const char* message, double value, const char* type = kDouble);
[[gnu::cold]] double RaiseOverflow(const char* function, const char* message = nullptr, const char* type = kDouble);
[[gnu::cold]] double RaiseEvaluation(const char* function, const char* message, double reached,
                                     const char* type = kDouble);

// Always thrown.
[[noreturn, gnu::cold]] void RaiseRounding(const char* function, const char* message, double value,
                                           const char* type = kDouble);

// Throws std::bad_alloc, as an allocation of that size would.
[[noreturn, gnu::cold]] void RaiseOutOfMemory();

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
