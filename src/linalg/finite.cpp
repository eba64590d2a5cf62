#include "linalg/finite.hpp"

#include <algorithm>
#include <cmath>

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

bool IsFinite(const MatrixView& a) noexcept {
    for (std::ptrdiff_t j = 0; j < a.columns; ++j)
        if (!IsRunFinite(a.Column(j), a.rows)) return false;
    return true;
}

bool HasNaNInLowerTriangle(const MatrixView& a) noexcept {
    for (std::ptrdiff_t j = 0; j < a.columns; ++j) {
        const double* const diagonal = &a(j, j);
        const std::ptrdiff_t length = a.columns - j;
        // The sum tells finite runs quickly; only a run that is not finite is searched.
        if (IsRunFinite(diagonal, length)) continue;
        if (std::any_of(diagonal, diagonal + length, [](double x) { return std::isnan(x); })) return true;
    }
    return false;
}

}  // namespace orvanth
