#include "linalg/collinearity_qr.hpp"

#include <algorithm>
#include <cstddef>

#include "linalg/collinearity_qr_step.hpp"
#include "linalg/lapack.hpp"
#include "linalg/tall_qr.hpp"

namespace orvanth {
namespace {

std::int32_t Rejected(const char (&routine)[7], std::int32_t argument) {
    ReportArgument(routine, argument);
    return -argument;
}

}  // namespace

std::int32_t CollinearityQR(const MatrixView& a, double* tau, double tolerance, const Workspace& workspace) {
    const std::int32_t m = a.rows, n = a.columns, mn = std::min(m, n);
    // The numbers and the smallest workspace are those of DGEQP3, to which DGELSY leaves all but mn elements.
    if (m < 0) return Rejected("DGEQP3", 1);
    if (n < 0) return Rejected("DGEQP3", 2);
    if (a.leadingDimension < std::max(1, m)) return Rejected("DGEQP3", 4);
    if (workspace.length < (mn == 0 ? 1 : mn + 3 * std::int64_t{n} + 1)) return Rejected("DGEQP3", 8);
    if (mn == 0) return 0;

    if (IsTall(a) && FactorTall(a, tau, tolerance)) return 0;

    const PartialNorms norms{workspace.first, workspace.first + n, workspace.first + 2 * std::ptrdiff_t{n}};
    for (std::int32_t j = 0; j < n; ++j) {
        norms.vn1[j] = norms.vn2[j] = Norm2(m, a.Column(j));
        if (j < mn) norms.initialNorm[j] = norms.vn2[j] == 0 ? 1.0 : norms.vn2[j];
    }
    // More than n elements are left, and for more than kPlainColumns columns of at most 10000 elements kPanelRoom.
    return CollinearityQRStep(a, tau, tolerance, norms, {norms.initialNorm + mn, workspace.length - 2 * n - mn});
}

std::int32_t CollinearityLeastSquares(const MatrixView& a, const MatrixView& b, const MatrixView& x, double* tau,
                                      double tolerance, const Workspace& workspace) {
    const std::int32_t m = a.rows, n = a.columns, nrhs = b.columns, mn = std::min(m, n);
    // The numbers and the smallest workspace are those of DGELSY, although it has other arguments behind them.
    if (m < 0) return Rejected("DGELSY", 1);
    if (n < 0) return Rejected("DGELSY", 2);
    if (nrhs < 0) return Rejected("DGELSY", 3);
    if (a.leadingDimension < std::max(1, m)) return Rejected("DGELSY", 5);
    if (b.leadingDimension < std::max({1, m, n})) return Rejected("DGELSY", 7);
    const bool isEmpty = mn == 0 || nrhs == 0;
    const std::int64_t most = std::max({2 * std::int64_t{mn}, std::int64_t{n} + 1, std::int64_t{mn} + nrhs});
    if (workspace.length < (isEmpty ? 1 : mn + most)) return Rejected("DGELSY", 12);
    if (isEmpty) return 0;

    const std::int32_t collinear = CollinearityQR(a, tau, tolerance, workspace);
    if (collinear != 0) return collinear;

    // Its status is not looked at here: the steps below run regardless, and it is what the caller gets.
    std::int32_t info = 0;
    const Workspace forProduct{workspace.first + 2 * std::ptrdiff_t{mn}, workspace.length - 2 * mn};
    LAPACK_dormqr("Left", "Transpose", &m, &nrhs, &n, a.first, &a.leadingDimension, tau, b.first, &b.leadingDimension,
                  forProduct.first, &forProduct.length, &info);

    // Each pass starts one element, not one column, further on. Kept: for a single right-hand side it is the
    // copy of the first n rows, and for more of them the later columns of x do not come from those of b.
    for (std::int32_t j = 0; j < nrhs; ++j) Copy(n, b.first + j, x.first + j);

    // No permutation follows, because the columns never moved.
    const double alpha = 1.0;
    dtrsm_("Left", "Upper", "No transpose", "Non-unit", &n, &nrhs, &alpha, a.first, &a.leadingDimension, x.first,
           &x.leadingDimension, 4, 5, 12, 8);
    return info;
}

}  // namespace orvanth
