#include "frame/failure.hpp"

#include <cerrno>
#include <charconv>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include <boost/exception/exception.hpp>
#include <boost/throw_exception.hpp>

#include "frame/policies.hpp"

namespace orvanth {

constinit ORVANTH_THREAD_LOCAL Silent* Silent::current_ = nullptr;

namespace {

// 2 + digits * 30103 / 100000 for the 53 digits of a double.
constexpr int kValueDigits = 17;

std::string ReplaceAll(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

std::string Opening(const char* function, const char* type) {
    return "Error in function " +
           ReplaceAll(function ? function : "Unknown function operating on type %1%", "%1%", type) + ": ";
}

std::string Text(const char* function, const char* message, const char* type) {
    return Opening(function, type) + message;
}

std::string Text(const char* function, const char* message, double value, const char* type) {
    char digits[32];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, kValueDigits).ptr;
    return ReplaceAll(
        Opening(function, type) + (message ? message : "Cause unknown: error caused by bad argument with value %1%"),
        "%1%", std::string_view(digits, end));
}

// The object that travels wraps the class so that boost::current_exception can clone it.
template <class Error>
[[noreturn]] void Throw(const std::string& text) {
    boost::throw_exception(boost::enable_current_exception(boost::enable_error_info(Error(text))));
}

}  // namespace

double RaiseDomain(const char* function, const char* message, double value, const char* type) {
    if (Silent* silent = Silent::Current()) {
        silent->Note(EDOM);
        return kNaN;
    }
    Throw<std::domain_error>(Text(function, message, value, type));
}

double RaiseOverflow(const char* function, const char* message, const char* type) {
    if (Silent* silent = Silent::Current()) {
        silent->Note(ERANGE);
        return kInfinity;
    }
    Throw<std::overflow_error>(Text(function, message ? message : "Overflow Error", type));
}

double RaiseEvaluation(const char* function, const char* message, double reached, const char* type) {
    if (Silent* silent = Silent::Current()) {
        silent->Note(EDOM);
        return reached;
    }
    Throw<boost::math::evaluation_error>(Text(function, message, reached, type));
}

void RaiseRounding(const char* function, const char* message, double value, const char* type) {
    Throw<boost::math::rounding_error>(Text(function, message, value, type));
}

void RaiseOutOfMemory() { throw std::bad_alloc(); }

const char* TypeNamedBy(const char* function, const char* message) {
    const std::string_view where = function ? function : "";
    if (message != nullptr && std::string_view(message) == "numeric overflow") return kDouble;
    // All of them are evaluated in double. Only the texts differ: those of special functions name long double.
    for (const char* own : {"distribution", "discrete_quantile", "tools::", "trunc<", "round<", "log1p<"})
        if (where.find(own) != std::string_view::npos) return kDouble;
    return kLongDouble;
}

}  // namespace orvanth
