// The workspace that dgesdd needs.
#ifndef ORVANTH_LINALG_SVD_WORKSPACE_HPP
#define ORVANTH_LINALG_SVD_WORKSPACE_HPP

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orvanth {

// The singular vectors that are wanted; the letters are JOBZ of dgesdd.
enum class SvdVectors : char { kAll = 'A', kThin = 'S' };

// The smallest LWORK that dgesdd accepts (LAPACK 3.7 and later), in 64 bits: dgesdd counts in 32 and wraps around
// from about n = 26754 on.
constexpr std::int64_t SvdWorkLength(SvdVectors vectors, std::int32_t m, std::int32_t n) noexcept {
    const std::int64_t smaller = std::min(m, n), larger = std::max(m, n);
    if (smaller <= 0) return 1;
    // Far beyond 32 bits. Four squares of 2^31 would not fit 64 bits.
    if (smaller >= std::int64_t{1} << 30) return std::numeric_limits<std::int64_t>::max();
    const std::int64_t bidiagonal = 3 * smaller * smaller + 4 * smaller;
    // From this ratio of the dimensions on, dgesdd begins with a QR or LQ factorisation.
    if (larger < smaller * 11 / 6) return 3 * smaller + std::max(larger, bidiagonal);
    if (vectors == SvdVectors::kThin) return smaller * smaller + 3 * smaller + bidiagonal;
    return smaller * smaller + std::max(3 * smaller + bidiagonal, smaller + larger);
}

}  // namespace orvanth

#endif
