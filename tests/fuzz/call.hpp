// A call that can be written down, repeated and judged.
#ifndef ORVANTH_TESTS_FUZZ_CALL_HPP
#define ORVANTH_TESTS_FUZZ_CALL_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvanth::fuzz {

struct Parameter {
    std::string type;
    std::string name;
    bool IsPointer() const { return type.ends_with('*'); }
    bool IsConst() const { return type.starts_with("const "); }
};

// What the manual says; one row for each export, written by documented.py.
struct DocumentedText {
    const char* exceptionClass;
    std::vector<const char*> pieces;  // these stand in the text in this order
};
struct DocumentedView {
    const char* descriptor;
    bool honoursOffset, readsRows, readsColumns;
};
struct Documented {
    const char* name;
    bool errno33, errno34, memory, positiveStatus;
    std::vector<int> statuses;
    std::vector<DocumentedText> texts;
    std::vector<DocumentedView> views;
};

// One word for each parameter: the bits of a double, an integer, or the seed of an array, a descriptor or a handle.
// One more word is the seed of the shapes.
struct Call {
    std::vector<std::uint64_t> words;
    int errnoBefore = 0;
};

struct Outcome {
    std::uint64_t result = 0;   // the bits of a double, or the integer
    std::uint64_t written = 0;  // a hash of everything written through pointers
    double outputs[2] = {};     // what is behind double pointers to single values
    int errnoAfter = 0;
    std::string exceptionClass, text;
    std::string violation;  // found while the arrays were at hand

    bool operator==(const Outcome& other) const {
        return result == other.result && written == other.written && errnoAfter == other.errnoAfter &&
               exceptionClass == other.exceptionClass && text == other.text;
    }
};

struct Export {
    const char* name;
    std::string result, failure, threads;
    std::vector<Parameter> parameters;
    Documented documented;
    Outcome (*run)(const Export&, const Call&);  // null where another export's run calls it

    bool HasFailure(std::string_view word) const { return failure.find(word) != std::string::npos; }
    int Find(std::string_view parameter) const;  // its position, or -1
    bool HasPointers() const;
};

const std::vector<Export>& Exports();

double AsDouble(std::uint64_t word);
std::uint64_t AsWord(double value);
std::uint64_t AsWord(std::int32_t value);
std::int32_t AsInt(std::uint64_t word);

Call RandomCall(const Export& which, std::uint64_t seed);

// Called with true just before an export is entered and with false after it. The memory test lets allocations fail
// between the two.
inline void (*aroundExport)(bool enters) = nullptr;
class Entered {
public:
    Entered() {
        if (aroundExport != nullptr) aroundExport(true);
    }
    ~Entered() {
        if (aroundExport != nullptr) aroundExport(false);
    }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
};

// Errno is set before the call and read after it; an exception is caught.
Outcome Make(const Export& which, const Call& call);

// What is wrong, in words; empty if nothing is.
std::string Judge(const Export& which, const Call& call, const Outcome& outcome);

// Name(arguments), as a reader understands it, and the line that repeats it.
std::string Describe(const Export& which, const Call& call);
std::string RepeatLine(const Export& which, const Call& call);
std::string Describe(const Outcome& outcome);

// The three exports of the minimiser, as one run of the calls that belong together.
Outcome RunMinimiser(const Export& which, const Call& call);

}  // namespace orvanth::fuzz

#endif
