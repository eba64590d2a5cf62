// Every export of the signature table as something that takes the words of a call.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <typeinfo>

#include <boost/math/policies/error_handling.hpp>

#include <bit>

#include "fuzz/call.hpp"
#include "fuzz/storage.hpp"
#include "orvanth/core_math.h"

namespace orvanth::fuzz {

double AsDouble(std::uint64_t word) { return std::bit_cast<double>(word); }
std::uint64_t AsWord(double value) { return std::bit_cast<std::uint64_t>(value); }
std::uint64_t AsWord(std::int32_t value) { return static_cast<std::uint32_t>(value); }
std::int32_t AsInt(std::uint64_t word) { return static_cast<std::int32_t>(word); }

namespace {

// "(double x, const double* y)" as parameters.
std::vector<Parameter> Parameters(std::string text) {
    std::vector<Parameter> parameters;
    text = text.substr(1, text.size() - 2);
    std::istringstream list(text);
    for (std::string one; std::getline(list, one, ',');) {
        one.erase(0, one.find_first_not_of(' '));
        const std::size_t space = one.rfind(' ');
        parameters.push_back({one.substr(0, space), one.substr(space + 1)});
    }
    return parameters;
}

template <class Function>
void Catch(Outcome& outcome, Function function) {
    const auto note = [&](const char* name, const std::exception& error) {
        outcome.errnoAfter = errno;
        outcome.exceptionClass = name;
        outcome.text = error.what();
    };
    try {
        function();
        outcome.errnoAfter = errno;
    } catch (const boost::math::rounding_error& error) {
        note("boost::math::rounding_error", error);
    } catch (const boost::math::evaluation_error& error) {
        note("boost::math::evaluation_error", error);
    } catch (const std::bad_alloc& error) {
        note("std::bad_alloc", error);
    } catch (const std::domain_error& error) {
        note("std::domain_error", error);
    } catch (const std::overflow_error& error) {
        note("std::overflow_error", error);
    } catch (const std::exception& error) {
        note(typeid(error).name(), error);
    } catch (...) {
        outcome.errnoAfter = errno;
        outcome.exceptionClass = "no std::exception";
    }
}

template <auto function>
struct Runner;
template <class Result, class... Arguments, Result (*function)(Arguments...)>
struct Runner<function> {
    static Outcome Run(const Export& which, const Call& call) {
        Storage storage(which, call);
        Outcome outcome;
        // Braces fix the order of evaluation to that of the arguments.
        const std::tuple<Arguments...> arguments{storage.Next<Arguments>()...};
        errno = call.errnoBefore;
        Catch(outcome, [&] {
            const Entered entered;
            if constexpr (std::is_void_v<Result>)
                std::apply(function, arguments);
            else if constexpr (std::is_same_v<Result, double>)
                outcome.result = AsWord(std::apply(function, arguments));
            else if constexpr (std::is_same_v<Result, RandomStreamHandle>) {
                const RandomStreamHandle stream = std::apply(function, arguments);
                outcome.result = stream != 0;
                if (stream != 0) DeleteRandomStream(stream);
            } else
                outcome.result = static_cast<std::uint64_t>(std::int64_t{std::apply(function, arguments)});
        });
        const int errnoAfter = outcome.errnoAfter;
        storage.Inspect(outcome);
        outcome.errnoAfter = errnoAfter;
        return outcome;
    }
};

// The minimiser's three exports make sense only together: the start runs all of them.
using RunFunction = Outcome (*)(const Export&, const Call&);
template <auto function>
constexpr RunFunction RunOf(const char*) {
    return &Runner<function>::Run;
}
template <>
constexpr RunFunction RunOf<&::LBFGSBStart>(const char*) {
    return &RunMinimiser;
}
template <>
constexpr RunFunction RunOf<&::LBFGSBStep>(const char*) {
    return nullptr;
}
template <>
constexpr RunFunction RunOf<&::LBFGSBEnd>(const char*) {
    return nullptr;
}

const std::vector<Documented>& Manual() {
    static const std::vector<Documented> rows{
#include "documented.inc"
    };
    return rows;
}

const Documented& Find(const char* name) {
    for (const Documented& row : Manual())
        if (std::strcmp(row.name, name) == 0) return row;
    throw std::logic_error(std::string("the manual has no entry for ") + name);
}

}  // namespace

const std::vector<Export>& Exports() {
    static const std::vector<Export> exports{
#define EXPORT(folder, name, result, arguments, failure, threads) \
    {#name, #result, #failure, #threads, Parameters(#arguments), Find(#name), RunOf<&::name>(#name)},
#include "frame/exports.def"
#undef EXPORT
    };
    return exports;
}

int Export::Find(std::string_view parameter) const {
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (parameters[i].name == parameter) return static_cast<int>(i);
    return -1;
}

bool Export::HasPointers() const {
    for (const Parameter& parameter : parameters)
        if (parameter.IsPointer()) return true;
    return false;
}

Outcome Make(const Export& which, const Call& call) { return which.run(which, call); }

std::string Describe(const Export& which, const Call& call) {
    std::ostringstream text;
    text.precision(17);
    text << which.name << '(';
    for (std::size_t i = 0; i < which.parameters.size(); ++i) {
        const std::string& type = which.parameters[i].type;
        text << (i > 0 ? ", " : "");
        if (type == "double")
            text << AsDouble(call.words[i]);
        else if (type == "int32_t" || type == "TailFlag")
            text << AsInt(call.words[i]);
        else
            text << which.parameters[i].name;
    }
    text << "), errno " << call.errnoBefore << " before";
    return text.str();
}

std::string RepeatLine(const Export& which, const Call& call) {
    std::ostringstream text;
    text << "repeat " << which.name << std::hex;
    for (std::uint64_t word : call.words) text << ' ' << word;
    text << ' ' << call.errnoBefore;
    return text.str();
}

std::string Describe(const Outcome& outcome) {
    char text[160];
    std::snprintf(text, sizeof text, "%.17g or %lld, outputs %.17g %.17g, errno %d ", AsDouble(outcome.result),
                  static_cast<long long>(outcome.result), outcome.outputs[0], outcome.outputs[1], outcome.errnoAfter);
    return text + outcome.exceptionClass + " " + outcome.text;
}

}  // namespace orvanth::fuzz
