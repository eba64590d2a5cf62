// What is refused before an export is called: pointers that are null where storage is needed, and sizes that
// nobody behind the boundary tests. LAPACK's own tests stay LAPACK's.
#ifndef ORVANTH_SHIELD_REFUSALS_HPP
#define ORVANTH_SHIELD_REFUSALS_HPP

#include <cstdint>
#include <span>
#include <type_traits>

#include "orvanth/core_math.h"
#include "shield/last_failure.hpp"

namespace orvanth::shield {

// Further tests of one export; answers the number of the argument that is refused, from 1, or 0.
template <auto Function>
struct OwnTest {
    template <class... Arguments>
    static int Find(const Facts&, Arguments...) {
        return 0;
    }
};

// Without a LAPACK routine behind it nobody else looks at this descriptor.
template <>
struct OwnTest<&Xb> {
    static int Find(const Facts& facts, const double*, const MatrixDescriptor* d, const double*, const double*) {
        if (d->columns > 1 && d->leadingDimension < d->rows) {
            NoteArgument(facts, 1, "has a leadingDimension below its rows");
            return 2;
        }
        return 0;
    }
};

// The routine behind OLS does not test x: the solve at its end would be left out and status 0 returned.
template <>
struct OwnTest<&OLS> {
    static int Find(const Facts& facts, double*, const MatrixDescriptor* a, double*, const MatrixDescriptor* b,
                    double*, const MatrixDescriptor* x, double*, double) {
        if (a->rows > 0 && a->columns > 0 && b->columns > 0 && x->leadingDimension < a->columns) {
            NoteArgument(facts, 5, "has a leadingDimension below the columns of a");
            return 6;
        }
        return 0;
    }
};

// What is looked at of one argument before the call.
struct Seen {
    enum Kind { kValue, kLength, kDescriptor, kArray, kStorage };
    Kind kind = kValue;
    bool isNull = false;
    std::int64_t count = 0;  // a length, or 0 for a matrix without elements
};

template <class Argument>
Seen See(Argument argument) {
    if constexpr (std::is_same_v<Argument, std::int32_t>) {
        return {Seen::kLength, false, argument};
    } else if constexpr (std::is_same_v<Argument, const MatrixDescriptor*>) {
        if (argument == nullptr) return {Seen::kDescriptor, true, 0};
        return {Seen::kDescriptor, false, argument->rows > 0 && argument->columns > 0};
    } else if constexpr (std::is_pointer_v<Argument>) {
        return {std::is_same_v<Argument, const double*> ? Seen::kArray : Seen::kStorage, argument == nullptr, 0};
    } else {
        return {};
    }
}

template <class Argument>
bool MayBeRefused(Argument argument) {
    if constexpr (std::is_pointer_v<Argument>)
        return argument == nullptr;
    else if constexpr (std::is_same_v<Argument, std::int32_t>)
        return argument < 0;
    else
        return false;
}

// The number of the first pointer that is refused, from 1, or 0. The length of an array stands before it.
int RefusedPointer(const Facts& facts, std::span<const Seen> arguments) noexcept;

// The number of the argument that is refused, from 1, or 0.
template <auto Function, const Facts& facts, class... Arguments>
inline int Refuse(Arguments... arguments) noexcept {
    // In nearly every call no pointer is null and no integer negative. One condition: a call has no branch for each
    // argument.
    if constexpr ((std::is_pointer_v<Arguments> || ...)) {
        if ((int{MayBeRefused(arguments)} | ...) != 0) [[unlikely]] {
            const Seen seen[] = {See(arguments)...};
            if (const int refused = RefusedPointer(facts, seen); refused != 0) return refused;
        }
    }
    return OwnTest<Function>::Find(facts, arguments...);
}

}  // namespace orvanth::shield

#endif
