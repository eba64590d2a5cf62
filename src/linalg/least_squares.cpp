// Least squares and triangular systems. LS and OLS honour `offset`, SolveTriangularSystem does not.
#include <memory>

#include "frame/load_state.hpp"
#include "linalg/collinearity_qr.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "orvanth/linalg.h"

using namespace orvanth;

ORVANTH_API(int32_t)
LS(double* a, const MatrixDescriptor* aDescriptor, double* b, const MatrixDescriptor* bDescriptor) {
    std::int32_t info = 0;
    LAPACK_dgels("N", &aDescriptor->rows, &aDescriptor->columns, &bDescriptor->columns,
                 ViewFromOffset(a, aDescriptor).first, &aDescriptor->leadingDimension,
                 ViewFromOffset(b, bDescriptor).first, &bDescriptor->leadingDimension, LapackWork, &LapackWorkLength,
                 &info);
    return info;
}

ORVANTH_API(int32_t)
OLS(double* a, const MatrixDescriptor* aDescriptor, double* b, const MatrixDescriptor* bDescriptor, double* x,
    const MatrixDescriptor* xDescriptor, double* tau, double tolerance) {
    const std::int32_t columns = aDescriptor->columns;
    const auto pivots = std::make_unique<std::int32_t[]>(columns > 0 ? static_cast<std::size_t>(columns) : 0);
    std::int32_t info = 0;
    CollinearityLeastSquares(&aDescriptor->rows, &aDescriptor->columns, &bDescriptor->columns,
                             ViewFromOffset(a, aDescriptor).first, &aDescriptor->leadingDimension,
                             ViewFromOffset(b, bDescriptor).first, &bDescriptor->leadingDimension, pivots.get(), tau,
                             &tolerance, ViewFromOffset(x, xDescriptor).first, &xDescriptor->leadingDimension,
                             LapackWork, &LapackWorkLength, &info);
    return info;
}

ORVANTH_API(int32_t)
SolveTriangularSystem(const double* a, const MatrixDescriptor* aDescriptor, int32_t upper, int32_t transpose,
                      double* b, const MatrixDescriptor* bDescriptor) {
    std::int32_t info = 0;
    LAPACK_dtrtrs(Triangle(upper), Transposition(transpose), "N", &aDescriptor->columns, &bDescriptor->columns, a,
                  &aDescriptor->leadingDimension, b, &bDescriptor->leadingDimension, &info);
    return info;
}
