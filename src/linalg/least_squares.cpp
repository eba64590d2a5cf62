// Least squares and triangular systems. LS and OLS honour `offset`, SolveTriangularSystem does not.
#include "frame/failure.hpp"
#include "frame/load_state.hpp"
#include "linalg/collinearity_qr.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "orvanth/linalg.h"

using namespace orvanth;

ORVANTH_API(int32_t)
LS(double* a, const MatrixDescriptor* aDescriptor, double* b, const MatrixDescriptor* bDescriptor) {
    Silent silent;
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
    Silent silent;
    return CollinearityLeastSquares(ViewFromOffset(a, aDescriptor), ViewFromOffset(b, bDescriptor),
                                    ViewFromOffset(x, xDescriptor), tau, tolerance, {LapackWork, LapackWorkLength});
}

ORVANTH_API(int32_t)
SolveTriangularSystem(const double* a, const MatrixDescriptor* aDescriptor, int32_t upper, int32_t transpose,
                      double* b, const MatrixDescriptor* bDescriptor) {
    Silent silent;
    std::int32_t info = 0;
    LAPACK_dtrtrs(Triangle(upper), Transposition(transpose), "N", &aDescriptor->columns, &bDescriptor->columns, a,
                  &aDescriptor->leadingDimension, b, &bDescriptor->leadingDimension, &info);
    return info;
}
