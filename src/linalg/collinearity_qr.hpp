// Least squares by Householder QR in the order of the columns as given, stopping at the first column that is
// collinear with those before it.
//
// The reflections and the downdating of the partial column norms are those of the pivoted factorisation of
// LAPACK (G. Quintana-Orti, X. Sun, C. H. Bischof, SIAM J. Sci. Comput. 19 (1998) 1486; norm updates: Z. Drmac,
// Z. Bujanovic, ACM Trans. Math. Softw. 35 (2008) 12), but no column ever moves: a statistician wants to know
// which term of the model repeats the earlier ones.
#ifndef ORVANTH_LINALG_COLLINEARITY_QR_HPP
#define ORVANTH_LINALG_COLLINEARITY_QR_HPP

#include <cstdint>

#include "linalg/matrix_view.hpp"

namespace orvanth {

struct Workspace {
    double* first;
    std::int32_t length;
};

// Solves the least-squares problem. Status 0: `a` holds R and the reflectors, `tau` their factors, `b` is Q
// transposed times b, `x` the coefficients. Status i > 0: column i is collinear with columns 1 to i - 1; `b` and `x`
// are unchanged. Below 0: a rejected argument, by the numbers of LAPACK's DGELSY and DGEQP3.
std::int32_t CollinearityLeastSquares(const MatrixView& a, const MatrixView& b, const MatrixView& x, double* tau,
                                      double tolerance, const Workspace& workspace);

// The factorisation alone, with its argument checks.
std::int32_t CollinearityQR(const MatrixView& a, double* tau, double tolerance, const Workspace& workspace);

}  // namespace orvanth

#endif
