// LAPACK through its Fortran interface, and what of BLAS is called with it. A CHARACTER argument has a hidden length
// behind the last argument; the LAPACK_ macros of lapack.h pass it, and the declarations below take it openly.
#ifndef ORVANTH_LINALG_LAPACK_HPP
#define ORVANTH_LINALG_LAPACK_HPP

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <cblas.h>
#include <lapack.h>

static_assert(std::is_same_v<lapack_int, std::int32_t>, "LAPACK with 32-bit integers is needed");

extern "C" {
// NOLINTBEGIN(readability-identifier-naming): the names are the linker's.
void dtrsm_(const char* side, const char* uplo, const char* transa, const char* diag, const lapack_int* m,
            const lapack_int* n, const double* alpha, const double* a, const lapack_int* lda, double* b,
            const lapack_int* ldb, std::size_t, std::size_t, std::size_t, std::size_t);
void xerbla_(const char* routine, const lapack_int* argument, std::size_t);
// NOLINTEND(readability-identifier-naming)
}

namespace orvanth {

inline double Norm2(std::int32_t n, const double* x) noexcept { return cblas_dnrm2(n, x, 1); }

inline void Copy(std::int32_t n, const double* from, double* to) noexcept { cblas_dcopy(n, from, 1, to, 1); }

// LAPACK's report of a rejected argument. Both routine names in use have six characters.
inline void ReportArgument(const char (&routine)[7], std::int32_t argument) noexcept {
    xerbla_(routine, &argument, 6);
}

}  // namespace orvanth

#endif
