#include "linalg/finite.hpp"

#include <cstddef>

namespace orvanth {
namespace {

// Zero times an element is a zero, or a NaN if the element is not finite. Four sums, since one would wait for
// each addition in turn.
bool IsRunFinite(const double* x, std::ptrdiff_t length) noexcept {
    double sum0 = 0, sum1 = 0, sum2 = 0, sum3 = 0;
    std::ptrdiff_t i = 0;
    for (; i + 4 <= length; i += 4) {
        sum0 += 0.0 * x[i];
        sum1 += 0.0 * x[i + 1];
        sum2 += 0.0 * x[i + 2];
        sum3 += 0.0 * x[i + 3];
    }
    for (; i < length; ++i) sum0 += 0.0 * x[i];
    return (sum0 + sum1) + (sum2 + sum3) == 0;
}

}  // namespace

bool IsFinite(const double* a, std::int32_t m, std::int32_t n, std::int32_t lda) noexcept {
    if (lda < m) return true;
    for (std::ptrdiff_t j = 0; j < n; ++j)
        if (!IsRunFinite(a + j * lda, m)) return false;
    return true;
}

bool IsLowerTriangleFinite(const double* a, std::int32_t n, std::int32_t lda) noexcept {
    if (lda < n) return true;
    for (std::ptrdiff_t j = 0; j < n; ++j)
        if (!IsRunFinite(a + j * lda + j, n - j)) return false;
    return true;
}

}  // namespace orvanth
