// What the last call of each thread into the shield reported: a kind, a text and the argument at fault.
//
// All of it lies in fixed storage of the thread, so nothing is allocated while an exception is handled.
#ifndef ORVANTH_SHIELD_LAST_FAILURE_HPP
#define ORVANTH_SHIELD_LAST_FAILURE_HPP

#include <array>
#include <cstdint>
#include <string_view>

#include "frame/platform.hpp"
#include "orvanth/shield.h"

namespace orvanth::shield {

enum class Status : std::int32_t {
#define STATUS(name, value, words) name = value,
#include "shield/shield.def"
};

struct LastFailure {
    Status status;
    const char* argument;
    char text[ORVANTH_TEXT_LENGTH];
};
extern constinit ORVANTH_THREAD_LOCAL LastFailure lastFailure;

// An argument as a text shows it.
class Value {
public:
    explicit constexpr Value(double value) : real_(value), kind_(Kind::kReal) {}
    explicit constexpr Value(std::int32_t value) : integer_(value), kind_(Kind::kInteger) {}
    explicit constexpr Value(std::int64_t value) : integer_(value), kind_(Kind::kInteger) {}
    explicit constexpr Value(const void*) : integer_(0), kind_(Kind::kArray) {}

private:
    friend class Writer;
    enum class Kind { kReal, kInteger, kArray };
    union {
        double real_;
        std::int64_t integer_;
    };
    Kind kind_;
};

// Writes into a fixed buffer and stops at its end.
class Writer {
public:
    explicit Writer(char (&text)[ORVANTH_TEXT_LENGTH]) : at_(text), end_(text + ORVANTH_TEXT_LENGTH - 1) {
        *at_ = '\0';
    }
    Writer& Add(std::string_view piece) noexcept;
    Writer& Add(const Value& value) noexcept;

private:
    char* at_;
    char* end_;
};

// What the shield knows of an export; made by tools/generate_hosts.py.
inline constexpr std::size_t kMostArguments = 8;
struct Facts {
    const char* name;
    std::array<const char*, kMostArguments> arguments;
    bool isSilent = false;          // failures may be noted in errno
    bool usesWorkspace = false;     // one call at a time in the process
    bool hasReservedValue = false;  // `reserved` stands for "no result"
    double reserved = 0;
    const char* reservedWords = "";
    const char* routine = "the routine";  // the LAPACK routine behind a status
    const char* routineArguments = "";    // their names, comma between
    const char* positiveInfo = "";        // what a positive INFO means, % for the number
    unsigned nullable = 0;                // bit i: argument i may be null
    unsigned tailFlags = 0;               // bit i: argument i is a TailFlag
};

// Each fills lastFailure. `arguments` are the values of the call, as many as the export has.
void NoteErrno(const Facts& facts, int code, const Value* arguments) noexcept;
void NoteReserved(const Facts& facts, const Value* arguments) noexcept;
void NoteInfo(const Facts& facts, std::int32_t info) noexcept;
void NoteArgument(const Facts& facts, int index, std::string_view what) noexcept;
void NoteOutOfRange(const Facts& facts, int index, std::int64_t value) noexcept;
void Note(Status status, std::string_view subject, std::string_view what, const char* argument = "") noexcept;

// Called while an exception is handled: its kind, and its text unless that of an earlier failure is wanted.
Status NoteException(bool withText = true) noexcept;

// What is reported for a kind in errno: 34 for an overflow, otherwise 33.
void SetErrno(Status status) noexcept;

}  // namespace orvanth::shield

#endif
