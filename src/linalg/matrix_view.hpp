// What C++ passes to C++ instead of a pointer and its LAPACK arguments.
#ifndef ORVANTH_LINALG_MATRIX_VIEW_HPP
#define ORVANTH_LINALG_MATRIX_VIEW_HPP

#include <cstddef>
#include <cstdint>

namespace orvanth {

// A matrix in column-major storage that belongs to somebody else. LAPACK takes integers by reference, so calls
// of it pass the addresses of these fields.
struct MatrixView {
    double* first;
    std::int32_t rows, columns, leadingDimension;

    double* Column(std::ptrdiff_t j) const noexcept { return first + j * leadingDimension; }
    double& operator()(std::ptrdiff_t i, std::ptrdiff_t j) const noexcept { return Column(j)[i]; }

    // The part that begins at (i, j).
    MatrixView Block(std::int32_t i, std::int32_t j, std::int32_t blockRows,
                     std::int32_t blockColumns) const noexcept {
        return {Column(j) + i, blockRows, blockColumns, leadingDimension};
    }
};

}  // namespace orvanth

#endif
