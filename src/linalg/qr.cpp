// Householder QR and the use of its Q. One LAPACK call each, in the fixed workspace.
#include "frame/failure.hpp"
#include "frame/load_state.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "orvanth/linalg.h"

using namespace orvanth;

ORVANTH_API(int32_t) QR(double* a, const MatrixDescriptor* descriptor, double* tau) {
    Silent silent;
    std::int32_t info = 0;
    LAPACK_dgeqrf(&descriptor->rows, &descriptor->columns, ViewFromOffset(a, descriptor).first,
                  &descriptor->leadingDimension, tau, LapackWork, &LapackWorkLength, &info);
    return info;
}

// `tau` stands before `jpvt`, the reverse of LAPACK's order. `jpvt` goes to LAPACK as the caller filled it.
ORVANTH_API(int32_t) QRP(double* a, const MatrixDescriptor* descriptor, double* tau, int32_t* jpvt) {
    Silent silent;
    std::int32_t info = 0;
    LAPACK_dgeqp3(&descriptor->rows, &descriptor->columns, ViewFromOffset(a, descriptor).first,
                  &descriptor->leadingDimension, jpvt, tau, LapackWork, &LapackWorkLength, &info);
    return info;
}

// As many columns of Q as the factored matrix has.
ORVANTH_API(int32_t) QR_Q(double* a, const MatrixDescriptor* descriptor, const double* tau) {
    Silent silent;
    std::int32_t info = 0;
    LAPACK_dorgqr(&descriptor->rows, &descriptor->columns, &descriptor->columns, ViewFromOffset(a, descriptor).first,
                  &descriptor->leadingDimension, tau, LapackWork, &LapackWorkLength, &info);
    return info;
}

// The rows of `c` are those of the factored matrix: its own `rows` field is not read.
ORVANTH_API(int32_t)
QR_Qy(double* a, const MatrixDescriptor* aDescriptor, int32_t transpose, const double* tau, double* c,
      const MatrixDescriptor* cDescriptor) {
    Silent silent;
    std::int32_t info = 0;
    LAPACK_dormqr("L", Transposition(transpose), &aDescriptor->rows, &cDescriptor->columns, &aDescriptor->columns,
                  ViewFromOffset(a, aDescriptor).first, &aDescriptor->leadingDimension, tau,
                  ViewFromOffset(c, cDescriptor).first, &cDescriptor->leadingDimension, LapackWork, &LapackWorkLength,
                  &info);
    return info;
}
