// The products of the columns of a block of rows.
#ifndef ORVANTH_LINALG_COLUMN_PRODUCTS_HPP
#define ORVANTH_LINALG_COLUMN_PRODUCTS_HPP

#include "linalg/matrix_view.hpp"

namespace orvanth {

// g := g + a' a, upper triangle. For a few columns and some hundred rows; processors with vectors of eight doubles
// take half the time of dsyrk, which copies its operands first.
void AddColumnProducts(const MatrixView& a, const MatrixView& g);

}  // namespace orvanth

#endif
