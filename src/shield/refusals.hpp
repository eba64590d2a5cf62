// What is refused before an export is called: pointers that are null where storage is needed, and sizes that
// nobody behind the boundary tests. LAPACK's own tests stay LAPACK's.
#ifndef ORVANTH_SHIELD_REFUSALS_HPP
#define ORVANTH_SHIELD_REFUSALS_HPP

#include <cstdint>
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

// What the arguments so far say about how much storage the next pointer needs.
struct Extent {
    bool matrixIsEmpty = false;    // the first matrix has no elements: nothing is read or written
    std::int32_t lastInteger = 0;  // the length of an array stands before it
    bool hasMatrix = false;
};

template <class Argument>
void Learn(Extent& extent, Argument argument) {
    if constexpr (std::is_same_v<Argument, std::int32_t>) {
        extent.lastInteger = argument;
    } else if constexpr (std::is_same_v<Argument, const MatrixDescriptor*>) {
        if (argument != nullptr && !extent.hasMatrix) {
            extent.hasMatrix = true;
            extent.matrixIsEmpty = argument->rows <= 0 || argument->columns <= 0;
        }
    }
}

// The number of the argument that is refused, from 1, or 0.
template <auto Function, const Facts& facts, class... Arguments>
inline int Refuse(Arguments... arguments) noexcept {
    constexpr bool isMatrixExport = (std::is_same_v<Arguments, const MatrixDescriptor*> || ...);
    Extent extent;
    if constexpr (isMatrixExport) (Learn(extent, arguments), ...);
    int refused = 0, index = 0;
    const auto test = [&](auto argument) {
        using Argument = decltype(argument);
        if constexpr (!isMatrixExport) Learn(extent, argument);
        if constexpr (std::is_pointer_v<Argument>) {
            constexpr bool isCounted = std::is_same_v<Argument, const double*> && !isMatrixExport;
            constexpr bool isDescriptor = std::is_same_v<Argument, const MatrixDescriptor*>;
            bool isUnused = (facts.nullable >> index & 1) != 0;
            if constexpr (isMatrixExport && !isDescriptor) isUnused |= extent.matrixIsEmpty;
            if constexpr (isCounted) {
                isUnused |= extent.lastInteger == 0;
                if (refused == 0 && extent.lastInteger < 0) {
                    NoteArgument(facts, index, "has a negative length");
                    refused = index + 1;
                }
            }
            if (refused == 0 && argument == nullptr && !isUnused) {
                NoteArgument(facts, index, "is null");
                refused = index + 1;
            }
        }
        ++index;
    };
    (test(arguments), ...);
    if (refused == 0) refused = OwnTest<Function>::Find(facts, arguments...);
    return refused;
}

}  // namespace orvanth::shield

#endif
