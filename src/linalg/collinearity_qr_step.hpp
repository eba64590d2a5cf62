// The factorisation behind CollinearityQR, without argument checks.
#ifndef ORVANTH_LINALG_COLLINEARITY_QR_STEP_HPP
#define ORVANTH_LINALG_COLLINEARITY_QR_STEP_HPP

#include <cstdint>

#include "linalg/collinearity_qr.hpp"
#include "linalg/matrix_view.hpp"

namespace orvanth {

// One element a column.
struct PartialNorms {
    double* vn1;          // the norm of the part that is not yet reduced, downdated row by row of R
    double* vn2;          // that norm when it was last formed from the elements
    double* initialNorm;  // the norm before any reflection, 1 for a column of zeros
};

// The number, from one, of the first column that is collinear with those before it, or 0. The columns before it
// are factored then, and the others have all their reflections. `room` holds at least as many elements as `a` has
// columns, and for more than kPlainColumns columns kPanelRoom elements.
std::int32_t CollinearityQRStep(const MatrixView& a, double* tau, double tolerance, const PartialNorms& norms,
                                const Workspace& room);

// Up to this number of columns one reflection at a time is as fast as a panel of them, for 200 rows and for 2000.
inline constexpr std::int32_t kPlainColumns = 48;

// The columns of a panel, and the room that its triangular factor and the product with 32 other columns take.
inline constexpr std::int32_t kPanelColumns = 32;
inline constexpr std::int32_t kPanelRoom = kPanelColumns * (kPanelColumns + 32);

}  // namespace orvanth

#endif
