#include "shield/last_failure.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <stdexcept>
#include <type_traits>

#include <boost/math/policies/error_handling.hpp>

namespace orvanth::shield {

constinit ORVANTH_THREAD_LOCAL LastFailure lastFailure{Status::Ok, "", ""};

Writer& Writer::Add(std::string_view piece) noexcept {
    const auto length = std::min(piece.size(), static_cast<std::size_t>(end_ - at_));
    std::memcpy(at_, piece.data(), length);
    at_ += length;
    *at_ = '\0';
    return *this;
}

// std::to_chars writes into the buffer given and allocates nothing.
Writer& Writer::Add(const Value& value) noexcept {
    if (value.kind_ == Value::Kind::kArray) return Add("{...}");
    char digits[40];
    const auto written = value.kind_ == Value::Kind::kReal
                             ? std::to_chars(digits, digits + sizeof digits, value.real_)
                             : std::to_chars(digits, digits + sizeof digits, value.integer_);
    return Add(std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)));
}

namespace {

Writer Begin(Status status, const char* argument = "") {
    lastFailure.status = status;
    lastFailure.argument = argument;
    return Writer(lastFailure.text);
}

// "NormalCDF(x = 0, mean = 0, sd = -1, tail = 0): "
void AddCall(Writer& text, const Facts& facts, const Value* arguments) {
    text.Add(facts.name).Add("(");
    for (std::size_t i = 0; i < kMostArguments && facts.arguments[i] != nullptr; ++i)
        text.Add(i == 0 ? "" : ", ").Add(facts.arguments[i]).Add(" = ").Add(arguments[i]);
    text.Add("): ");
}

// The piece of a list with commas that has this number, from 1; empty beyond its end.
std::string_view Piece(std::string_view list, std::int64_t number) {
    for (; number > 1; --number) {
        const std::size_t comma = list.find(',');
        if (comma == std::string_view::npos) return {};
        list.remove_prefix(comma + 1);
    }
    return list.substr(0, list.find(','));
}

}  // namespace

void NoteErrno(const Facts& facts, int code, const Value* arguments) noexcept {
    const bool overflow = code == ERANGE;
    Writer text = Begin(overflow ? Status::Overflow : Status::Domain);
    AddCall(text, facts, arguments);
    text.Add(overflow ? "the result is too large for a double"
                      : "a parameter or an argument is outside its range, or the calculation did not converge");
}

void NoteReserved(const Facts& facts, const Value* arguments) noexcept {
    Writer text = Begin(Status::NoValue);
    AddCall(text, facts, arguments);
    text.Add(facts.reservedWords);
}

void NoteInfo(const Facts& facts, std::int32_t info) noexcept {
    if (info == ORVANTH_NO_MEMORY) return Note(Status::Memory, facts.name, "out of memory");
    if (info < 0) {
        const std::string_view name = Piece(facts.routineArguments, -std::int64_t{info});
        Begin(Status::Argument)
            .Add(facts.name)
            .Add(": ")
            .Add(facts.routine)
            .Add(" rejected its argument ")
            .Add(Value(-std::int64_t{info}))
            .Add(name.empty() ? "" : ", ")
            .Add(name)
            .Add(name.starts_with("LWORK") ? ": the workspace of 10000 doubles is too small" : "");
        return;
    }
    const std::string_view words = facts.positiveInfo;
    const std::size_t number = std::min(words.find('%'), words.size());
    Writer text = Begin(Status::NoSolution);
    text.Add(facts.name).Add(": ").Add(words.substr(0, number));
    if (number < words.size())
        text.Add(Value(info)).Add(words.substr(number + 1));
    else
        text.Add("INFO ").Add(Value(info));
}

void NoteArgument(const Facts& facts, int index, std::string_view what) noexcept {
    const char* name = facts.arguments[static_cast<std::size_t>(index)];
    Begin(Status::Argument, name).Add(facts.name).Add(": argument ").Add(name).Add(" ").Add(what);
}

void NoteOutOfRange(const Facts& facts, int index, std::int64_t value) noexcept {
    const char* name = facts.arguments[static_cast<std::size_t>(index)];
    Begin(Status::Argument, name)
        .Add(facts.name)
        .Add(": argument ")
        .Add(name)
        .Add(" is ")
        .Add(Value(value))
        .Add(", which is out of its range");
}

void Note(Status status, std::string_view subject, std::string_view what, const char* argument) noexcept {
    Begin(status, argument).Add(subject).Add(": ").Add(what);
}

Status NoteException(bool withText) noexcept {
    const auto note = [withText](Status status, std::string_view text) {
        if (withText) Begin(status).Add(text);
        return status;
    };
    try {
        throw;
    } catch (const boost::math::rounding_error& error) {
        return note(Status::Rounding, error.what());
    } catch (const boost::math::evaluation_error& error) {
        return note(Status::Evaluation, error.what());
    } catch (const std::domain_error& error) {
        return note(Status::Domain, error.what());
    } catch (const std::overflow_error& error) {
        return note(Status::Overflow, error.what());
    } catch (const std::bad_alloc&) {
        return note(Status::Memory, "out of memory");
    } catch (const std::exception& error) {
        return note(Status::Other, error.what());
    } catch (...) {
        return note(Status::Other, "an exception of unknown type");
    }
}

void SetErrno(Status status) noexcept { errno = status == Status::Overflow ? ERANGE : EDOM; }

}  // namespace orvanth::shield

using namespace orvanth::shield;

ORVANTH_SHIELD_API(int32_t) LastStatus(void) { return static_cast<std::int32_t>(lastFailure.status); }

ORVANTH_SHIELD_API(const int32_t*) LastStatusAddress(void) {
    static_assert(std::is_same_v<std::underlying_type_t<Status>, std::int32_t>);
    return reinterpret_cast<const std::int32_t*>(&lastFailure.status);
}

ORVANTH_SHIELD_API(const char*) LastErrorText(void) {
    return lastFailure.status == Status::Ok ? "" : lastFailure.text;
}

ORVANTH_SHIELD_API(const char*) LastErrorArgument(void) {
    return lastFailure.status == Status::Ok ? "" : lastFailure.argument;
}

ORVANTH_SHIELD_API(const char*) StatusWords(int32_t status) {
    switch (static_cast<Status>(status)) {
#define STATUS(name, value, words) \
    case Status::name:             \
        return words;
#include "shield/shield.def"
    }
    return "no status of this library";
}
