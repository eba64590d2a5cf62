// Calls an export of any golden-row signature with arguments given as text.
#ifndef ORVANTH_TESTS_GOLDEN_INVOKE_HPP
#define ORVANTH_TESTS_GOLDEN_INVOKE_HPP

#include <cerrno>
#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include <boost/math/policies/error_handling.hpp>

#include "golden/golden_row.hpp"
#include "orvanth/core_math.h"

namespace orvanth::golden {

// The kinds of argument that a row can write down; the others have tests of their own.
template <class T>
inline constexpr bool kIsText =
    std::is_same_v<T, double> || std::is_same_v<T, std::int32_t> || std::is_same_v<T, const double*>;
template <class T>
inline constexpr bool kIsOutput = std::is_same_v<T, double*>;

template <class Function>
struct Signature;
template <class Result, class... Arguments>
struct Signature<Result (*)(Arguments...)> {
    static constexpr bool kHasRows = (std::is_same_v<Result, double> ||
                                      std::is_void_v<Result>)&&((kIsText<Arguments> || kIsOutput<Arguments>)&&...);
};

inline std::string ClassOf(const std::exception& error) {
    if (dynamic_cast<const boost::math::rounding_error*>(&error)) return "boost::math::rounding_error";
    if (dynamic_cast<const boost::math::evaluation_error*>(&error)) return "boost::math::evaluation_error";
    if (dynamic_cast<const std::domain_error*>(&error)) return "std::domain_error";
    if (dynamic_cast<const std::overflow_error*>(&error)) return "std::overflow_error";
    return "another exception";
}

class ArgumentReader {
public:
    explicit ArgumentReader(const Row& row) : row_(row), outputs_(8, kOutputBefore) {}

    template <class T>
    T Next() {
        if constexpr (kIsOutput<T>) {
            return &outputs_.at(used_++);
        } else {
            if (at_ == row_.arguments.size()) throw std::runtime_error(row_.place + ": too few arguments");
            const std::string& text = row_.arguments[at_++];
            if constexpr (std::is_same_v<T, double>) {
                return ParseDouble(text);
            } else if constexpr (std::is_same_v<T, std::int32_t>) {
                return static_cast<std::int32_t>(std::stoll(text));
            } else {
                array_ = ParseArray(text);
                return array_.data();
            }
        }
    }

    void CheckAllRead() const {
        if (at_ != row_.arguments.size()) throw std::runtime_error(row_.place + ": too many arguments");
    }
    std::vector<double> Outputs() const { return {outputs_.begin(), outputs_.begin() + used_}; }

private:
    const Row& row_;
    std::size_t at_ = 0;
    std::ptrdiff_t used_ = 0;
    std::vector<double> outputs_;
    std::vector<double> array_;
};

// No exception can leave a DLL for 32-bit Windows. There the rows that throw go to the same objects linked into the
// test.
#if defined(_WIN32) && defined(__i386__)
#define ORVANTH_FOR_ROWS_THAT_THROW(name) &name
#else
#define ORVANTH_FOR_ROWS_THAT_THROW(name) nullptr
#endif
template <class Function>
Function FunctionFor(const Row& row, Function exported, Function linkedIn) {
    return row.throws && linkedIn != nullptr ? linkedIn : exported;
}

template <class Result, class... Arguments>
Outcome Invoke(Result (*function)(Arguments...), const Row& row, int errnoBefore) {
    ArgumentReader reader(row);
    // Braces fix the order of evaluation to that of the arguments.
    const std::tuple<Arguments...> arguments{reader.Next<Arguments>()...};
    reader.CheckAllRead();
    Outcome outcome;
    errno = errnoBefore;
    try {
        if constexpr (std::is_void_v<Result>) {
            std::apply(function, arguments);
            outcome.errnoAfter = errno;
            outcome.values = reader.Outputs();
        } else {
            const double value = std::apply(function, arguments);
            outcome.errnoAfter = errno;
            outcome.values = {value};
        }
    } catch (const std::exception& error) {
        outcome.errnoAfter = errno;
        outcome.exceptionClass = ClassOf(error);
        outcome.text = error.what();
        for (double output : reader.Outputs())
            outcome.outputsUntouched = outcome.outputsUntouched && output == kOutputBefore;
    }
    return outcome;
}

}  // namespace orvanth::golden

#endif
