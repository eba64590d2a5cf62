// Least squares by Householder QR in the order of the columns as given, stopping at the first column that is
// collinear with those before it.
//
// The reflections and the downdating of the partial column norms are those of the pivoted factorisation of
// LAPACK (G. Quintana-Orti, X. Sun, C. H. Bischof, SIAM J. Sci. Comput. 19 (1998) 1486; norm updates: Z. Drmac,
// Z. Bujanovic, ACM Trans. Math. Softw. 35 (2008) 12), but no column ever moves, for a statistician wants to
// know which term of the model repeats the earlier ones. The argument lists are in LAPACK's style, and argument
// errors are reported under the names of the routines whose shape they have: DGELSY and DGEQP3.
//
// `work` as a whole: [0, mn) is left alone; CollinearityQR gets the rest, of which its first 2n elements are
// the norms `vn1` and `vn2` and the others the room of dlarf; dormqr gets what is behind the first 2 mn.
#ifndef ORVANTH_LINALG_COLLINEARITY_QR_HPP
#define ORVANTH_LINALG_COLLINEARITY_QR_HPP

#include <cstdint>

namespace orvanth {

// Solves the least-squares problem. On INFO 0, a holds R and the reflectors, b is Q transposed times b, x the
// coefficients. INFO i > 0: column i is collinear with columns 1 to i - 1; b and x are unchanged.
void CollinearityLeastSquares(const std::int32_t* m, const std::int32_t* n, const std::int32_t* nrhs, double* a,
                              const std::int32_t* lda, double* b, const std::int32_t* ldb, std::int32_t* jpvt,
                              double* tau, const double* tolerance, double* x, const std::int32_t* ldx, double* work,
                              const std::int32_t* lwork, std::int32_t* info);

// The factorisation with its argument checks; jpvt becomes the identity.
void CollinearityQR(const std::int32_t* m, const std::int32_t* n, double* a, const std::int32_t* lda,
                    std::int32_t* jpvt, double* tau, double* work, const std::int32_t* lwork, std::int32_t* info,
                    const double* tolerance);

// The factorisation itself. `vn1` and `vn2` hold the norms of the n columns; `work` has room for n elements.
void CollinearityQRStep(const std::int32_t* m, const std::int32_t* n, double* a, const std::int32_t* lda, double* tau,
                        double* vn1, double* vn2, double* work, std::int32_t* info, const double* tolerance);

}  // namespace orvanth

#endif
