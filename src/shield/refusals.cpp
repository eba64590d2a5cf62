#include "shield/refusals.hpp"

#include <algorithm>

namespace orvanth::shield {

namespace {

// The arguments of a matrix export are storage of its first matrix, or as large as that one makes them.
int RefusedOfMatrices(const Facts& facts, std::span<const Seen> arguments) {
    const auto first = std::ranges::find_if(
        arguments, [](const Seen& seen) { return seen.kind == Seen::kDescriptor && !seen.isNull; });
    const bool isEmpty = first != arguments.end() && first->count == 0;
    int index = 0;
    for (const Seen& seen : arguments) {
        const bool isUnused = (facts.nullable >> index & 1) != 0 || (isEmpty && seen.kind != Seen::kDescriptor);
        if (seen.isNull && !isUnused) {
            NoteArgument(facts, index, "is null");
            return index + 1;
        }
        ++index;
    }
    return 0;
}

int RefusedOfNumbers(const Facts& facts, std::span<const Seen> arguments) {
    std::int64_t length = 0;
    int index = 0;
    for (const Seen& seen : arguments) {
        if (seen.kind == Seen::kLength) length = seen.count;
        if (seen.kind == Seen::kArray && length < 0) {
            NoteArgument(facts, index, "has a negative length");
            return index + 1;
        }
        const bool isUnused = (facts.nullable >> index & 1) != 0 || (seen.kind == Seen::kArray && length == 0);
        if (seen.isNull && !isUnused) {
            NoteArgument(facts, index, "is null");
            return index + 1;
        }
        ++index;
    }
    return 0;
}

}  // namespace

int RefusedPointer(const Facts& facts, std::span<const Seen> arguments) noexcept {
    const bool hasMatrices =
        std::ranges::any_of(arguments, [](const Seen& seen) { return seen.kind == Seen::kDescriptor; });
    return hasMatrices ? RefusedOfMatrices(facts, arguments) : RefusedOfNumbers(facts, arguments);
}

}  // namespace orvanth::shield
