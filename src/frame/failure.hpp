// The one place where failure is raised: thrown, or noted in errno while a Silent object is alive on the calling
// thread. The messages name the type that each function is documented with.
#ifndef ORVANTH_FRAME_FAILURE_HPP
#define ORVANTH_FRAME_FAILURE_HPP

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "frame/errno_of_thread.hpp"
#include "frame/platform.hpp"

namespace orvanth {

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

}  // namespace orvanth

#endif
