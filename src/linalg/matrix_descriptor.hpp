// How a pointer and a descriptor become a view. Nothing is checked here: the argument tests of LAPACK, and of the
// routines written in its manner, are the library's.
#ifndef ORVANTH_LINALG_MATRIX_DESCRIPTOR_HPP
#define ORVANTH_LINALG_MATRIX_DESCRIPTOR_HPP

#include <cstdint>
#include <type_traits>

#include "linalg/matrix_view.hpp"
#include "orvanth/types.h"

namespace orvanth {

static_assert(sizeof(MatrixDescriptor) == 16 && std::is_standard_layout_v<MatrixDescriptor>);

// For the exports that ignore `offset`: the view starts at the pointer itself.
inline MatrixView ViewFromPointer(double* matrix, const MatrixDescriptor* descriptor) noexcept {
    return {matrix, descriptor->rows, descriptor->columns, descriptor->leadingDimension};
}

// For the exports that honour `offset`. The null pointer of an empty matrix stays null: adding to it is undefined.
inline MatrixView ViewFromOffset(double* matrix, const MatrixDescriptor* descriptor) noexcept {
    return ViewFromPointer(matrix != nullptr ? matrix + descriptor->offset : nullptr, descriptor);
}

// The character arguments of LAPACK.
constexpr const char* Transposition(std::int32_t transpose) noexcept { return transpose != 0 ? "T" : "N"; }
constexpr const char* Triangle(std::int32_t upper) noexcept { return upper != 0 ? "U" : "L"; }

}  // namespace orvanth

#endif
