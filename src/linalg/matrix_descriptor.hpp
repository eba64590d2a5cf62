// How a pointer and a descriptor become LAPACK's arguments.
//
// LAPACK takes its integers by reference, so the exports pass the addresses of the descriptor's own fields:
// `rows` as M, `columns` as N or NRHS, `leadingDimension` as LDA. Nothing is copied and nothing is checked
// here; LAPACK's own argument tests are the library's.
#ifndef ORVANTH_LINALG_MATRIX_DESCRIPTOR_HPP
#define ORVANTH_LINALG_MATRIX_DESCRIPTOR_HPP

#include <cstdint>
#include <type_traits>

#include "orvanth/types.h"

namespace orvanth {

static_assert(sizeof(MatrixDescriptor) == 16 && std::is_standard_layout_v<MatrixDescriptor>);

// The first element of the view, for the exports that honour `offset`. The others start at the pointer itself.
template <class Real>
Real* First(Real* matrix, const MatrixDescriptor* descriptor) noexcept {
    return matrix + descriptor->offset;
}

// The character arguments of LAPACK.
constexpr const char* Transposition(std::int32_t transpose) noexcept { return transpose != 0 ? "T" : "N"; }
constexpr const char* Triangle(std::int32_t upper) noexcept { return upper != 0 ? "U" : "L"; }

}  // namespace orvanth

#endif
