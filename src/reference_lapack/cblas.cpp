// The functions of CBLAS that the library calls, by way of Fortran BLAS. Matrices are stored by columns: every call
// of the library says so. The CBLAS of reference LAPACK is not used, since it keeps two flags in global variables and
// ends the process at a wrong argument.
#include <cblas.h>

#include <cstddef>
#include <cstdint>

// The hidden length of a CHARACTER argument comes behind the last argument.
// NOLINTBEGIN(readability-identifier-naming): the names are the linker's.
extern "C" {
using Int = std::int32_t;
double dnrm2_(const Int* n, const double* x, const Int* stepX);
void dcopy_(const Int* n, const double* x, const Int* stepX, double* y, const Int* stepY);
void dgemv_(const char* transpose, const Int* m, const Int* n, const double* alpha, const double* a, const Int* lda,
            const double* x, const Int* stepX, const double* beta, double* y, const Int* stepY, std::size_t);
void dtrmv_(const char* upLo, const char* transpose, const char* diagonal, const Int* n, const double* a,
            const Int* lda, double* x, const Int* stepX, std::size_t, std::size_t, std::size_t);
void dgemm_(const char* transposeA, const char* transposeB, const Int* m, const Int* n, const Int* k,
            const double* alpha, const double* a, const Int* lda, const double* b, const Int* ldb, const double* beta,
            double* c, const Int* ldc, std::size_t, std::size_t);
void dsyrk_(const char* upLo, const char* transpose, const Int* n, const Int* k, const double* alpha, const double* a,
            const Int* lda, const double* beta, double* c, const Int* ldc, std::size_t, std::size_t);
void dtrmm_(const char* side, const char* upLo, const char* transpose, const char* diagonal, const Int* m,
            const Int* n, const double* alpha, const double* a, const Int* lda, double* b, const Int* ldb,
            std::size_t, std::size_t, std::size_t, std::size_t);
void dtrsm_(const char* side, const char* upLo, const char* transpose, const char* diagonal, const Int* m,
            const Int* n, const double* alpha, const double* a, const Int* lda, double* b, const Int* ldb,
            std::size_t, std::size_t, std::size_t, std::size_t);
}

namespace {

const char* Letter(CBLAS_TRANSPOSE transpose) { return transpose == CblasNoTrans ? "N" : "T"; }
const char* Letter(CBLAS_UPLO upLo) { return upLo == CblasUpper ? "U" : "L"; }
const char* Letter(CBLAS_DIAG diagonal) { return diagonal == CblasUnit ? "U" : "N"; }
const char* Letter(CBLAS_SIDE side) { return side == CblasLeft ? "L" : "R"; }

}  // namespace

extern "C" {

double cblas_dnrm2(Int n, const double* x, Int stepX) { return dnrm2_(&n, x, &stepX); }

void cblas_dcopy(Int n, const double* x, Int stepX, double* y, Int stepY) { dcopy_(&n, x, &stepX, y, &stepY); }

void cblas_dgemv(CBLAS_LAYOUT, CBLAS_TRANSPOSE transpose, Int m, Int n, double alpha, const double* a, Int lda,
                 const double* x, Int stepX, double beta, double* y, Int stepY) {
    dgemv_(Letter(transpose), &m, &n, &alpha, a, &lda, x, &stepX, &beta, y, &stepY, 1);
}

void cblas_dtrmv(CBLAS_LAYOUT, CBLAS_UPLO upLo, CBLAS_TRANSPOSE transpose, CBLAS_DIAG diagonal, Int n,
                 const double* a, Int lda, double* x, Int stepX) {
    dtrmv_(Letter(upLo), Letter(transpose), Letter(diagonal), &n, a, &lda, x, &stepX, 1, 1, 1);
}

void cblas_dgemm(CBLAS_LAYOUT, CBLAS_TRANSPOSE transposeA, CBLAS_TRANSPOSE transposeB, Int m, Int n, Int k,
                 double alpha, const double* a, Int lda, const double* b, Int ldb, double beta, double* c, Int ldc) {
    dgemm_(Letter(transposeA), Letter(transposeB), &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc, 1, 1);
}

void cblas_dsyrk(CBLAS_LAYOUT, CBLAS_UPLO upLo, CBLAS_TRANSPOSE transpose, Int n, Int k, double alpha,
                 const double* a, Int lda, double beta, double* c, Int ldc) {
    dsyrk_(Letter(upLo), Letter(transpose), &n, &k, &alpha, a, &lda, &beta, c, &ldc, 1, 1);
}

void cblas_dtrmm(CBLAS_LAYOUT, CBLAS_SIDE side, CBLAS_UPLO upLo, CBLAS_TRANSPOSE transpose, CBLAS_DIAG diagonal,
                 Int m, Int n, double alpha, const double* a, Int lda, double* b, Int ldb) {
    dtrmm_(Letter(side), Letter(upLo), Letter(transpose), Letter(diagonal), &m, &n, &alpha, a, &lda, b, &ldb, 1, 1, 1,
           1);
}

void cblas_dtrsm(CBLAS_LAYOUT, CBLAS_SIDE side, CBLAS_UPLO upLo, CBLAS_TRANSPOSE transpose, CBLAS_DIAG diagonal,
                 Int m, Int n, double alpha, const double* a, Int lda, double* b, Int ldb) {
    dtrsm_(Letter(side), Letter(upLo), Letter(transpose), Letter(diagonal), &m, &n, &alpha, a, &lda, b, &ldb, 1, 1, 1,
           1);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
