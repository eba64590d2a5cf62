#include "linalg/collinearity_qr.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory_resource>
#include <vector>

#include "linalg/lapack.hpp"

namespace orvanth {
namespace {

constexpr std::int32_t kQuery = -1;

// What follows a successful check of the arguments: whether `lwork` reaches the length needed.
bool IsWorkTooShort(std::int32_t lwork, std::int64_t needed) noexcept { return lwork < needed && lwork != kQuery; }

// Downdates the norm of one later column after reflection i of m, its element in row i being `element` and what
// lies below it starting at `below`. Cancellation is caught by the ratio to the last exact norm.
void UpdatePartialNorm(double& vn1, double& vn2, double element, const double* below, std::int32_t remaining,
                       double smallRatio) {
    if (vn1 == 0) return;
    const double quotient = std::fabs(element) / vn1;
    const double temp = std::max(0.0, 1.0 - quotient * quotient);
    const double ratio = vn1 / vn2;
    const double temp2 = temp * (ratio * ratio);
    if (temp2 <= smallRatio)
        vn1 = vn2 = remaining > 0 ? Norm2(remaining, below) : 0.0;
    else
        vn1 *= std::sqrt(temp);
}

}  // namespace

void CollinearityQRStep(const std::int32_t* m, const std::int32_t* n, double* a, const std::int32_t* lda, double* tau,
                        double* vn1, double* vn2, double* work, std::int32_t* info, const double* tolerance) {
    const std::int32_t mn = std::min(*m, *n);
    const double smallRatio = std::sqrt(LAPACK_dlamch("Epsilon"));
    if (mn < 1) return;

    // Room for every design that the fixed workspace lets through; only a longer workspace needs the heap.
    alignas(double) std::byte room[2500 * sizeof(double)];
    std::pmr::monotonic_buffer_resource pool(room, sizeof room);
    std::pmr::vector<double> initialNorm(vn2, vn2 + mn, &pool);
    std::replace(initialNorm.begin(), initialNorm.end(), 0.0, 1.0);

    const std::int32_t one = 1;
    for (std::int32_t i = 0; i < mn; ++i) {
        // A NaN passes, and the loop goes on.
        if (*tolerance * initialNorm[i] >= vn1[i]) {
            *info = i + 1;
            return;
        }

        double* const column = a + i + std::ptrdiff_t{i} * *lda;
        double* const later = column + *lda;
        const std::int32_t order = *m - i, laterColumns = *n - i - 1;
        LAPACK_dlarfg(&order, column, order > 1 ? column + 1 : column, &one, &tau[i]);

        const double diagonal = *column;
        *column = 1.0;
        LAPACK_dlarf("Left", &order, &laterColumns, column, &one, &tau[i], later, lda, work);
        *column = diagonal;

        for (std::int32_t j = 0; j < laterColumns; ++j) {
            const double* const element = later + std::ptrdiff_t{j} * *lda;
            UpdatePartialNorm(vn1[i + 1 + j], vn2[i + 1 + j], *element, element + 1, order - 1, smallRatio);
        }
    }
}

void CollinearityQR(const std::int32_t* m, const std::int32_t* n, double* a, const std::int32_t* lda,
                    std::int32_t* jpvt, double* tau, double* work, const std::int32_t* lwork, std::int32_t* info,
                    const double* tolerance) {
    *info = 0;
    if (*m < 0)
        *info = -1;
    else if (*n < 0)
        *info = -2;
    else if (*lda < std::max(1, *m))
        *info = -4;
    const std::int32_t mn = std::min(*m, *n);
    if (*info == 0 && IsWorkTooShort(*lwork, mn == 0 ? 1 : 3 * std::int64_t{*n} + 1)) *info = -8;
    if (*info != 0) {
        ReportArgument("DGEQP3", -*info);
        return;
    }
    if (*lwork == kQuery || mn == 0) return;

    double* const vn1 = work;
    double* const vn2 = work + *n;
    for (std::int32_t j = 0; j < *n; ++j) {
        jpvt[j] = j + 1;  // no column is fixed and none is moved
        vn1[j] = vn2[j] = Norm2(*m, a + std::ptrdiff_t{j} * *lda);
    }
    CollinearityQRStep(m, n, a, lda, tau, vn1, vn2, vn2 + *n, info, tolerance);
}

void CollinearityLeastSquares(const std::int32_t* m, const std::int32_t* n, const std::int32_t* nrhs, double* a,
                              const std::int32_t* lda, double* b, const std::int32_t* ldb, std::int32_t* jpvt,
                              double* tau, const double* tolerance, double* x, const std::int32_t* ldx, double* work,
                              const std::int32_t* lwork, std::int32_t* info) {
    // The numbers are those of DGELSY, although this argument list is longer.
    *info = 0;
    if (*m < 0)
        *info = -1;
    else if (*n < 0)
        *info = -2;
    else if (*nrhs < 0)
        *info = -3;
    else if (*lda < std::max(1, *m))
        *info = -5;
    else if (*ldb < std::max({1, *m, *n}))
        *info = -7;
    const std::int64_t mn = std::min(*m, *n);
    const bool isEmpty = mn == 0 || *nrhs == 0;
    const std::int64_t needed = isEmpty ? 1 : mn + std::max({2 * mn, std::int64_t{*n} + 1, mn + *nrhs});
    if (*info == 0 && IsWorkTooShort(*lwork, needed)) *info = -12;
    if (*info != 0) {
        ReportArgument("DGELSY", -*info);
        return;
    }
    if (*lwork == kQuery || isEmpty) return;

    const auto qrLength = static_cast<std::int32_t>(*lwork - mn);
    CollinearityQR(m, n, a, lda, jpvt, tau, work + mn, &qrLength, info, tolerance);
    if (*info != 0) return;

    // Its INFO is not looked at here: the steps below run regardless, and it is what the caller gets.
    const auto applyLength = static_cast<std::int32_t>(*lwork - 2 * mn);
    LAPACK_dormqr("Left", "Transpose", m, nrhs, n, a, lda, tau, b, ldb, work + 2 * mn, &applyLength, info);

    // Each pass starts one element, not one column, further on. Kept: for a single right-hand side it is the
    // copy of the first n rows, and for more of them the later columns of x do not come from those of b.
    for (std::int32_t j = 0; j < *nrhs; ++j) Copy(*n, b + j, x + j);

    // No permutation follows, because the columns never moved.
    const double alpha = 1.0;
    dtrsm_("Left", "Upper", "No transpose", "Non-unit", n, nrhs, &alpha, a, lda, x, ldx, 4, 5, 12, 8);
}

}  // namespace orvanth
