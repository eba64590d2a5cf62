#include "kolmogorov/pomeranz.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "frame/platform.hpp"
#include "kolmogorov/lanes.hpp"
#include "kolmogorov/log_factorial.hpp"

namespace orvanth::kolmogorov {

namespace {

// The scaling base is a power of two, so scaling is exact. A row is scaled by 2^350 when an element of it falls
// below 1e-280: the next products then stay clear of underflow at 1e-308.
constexpr std::int32_t kScaleBits = 350;
constexpr double kScaleBelow = 1e-280;
constexpr double kStepTolerance = 1e-15;
constexpr double kLn2 = 0.6931471805599453;
constexpr std::int32_t kBlock = 2 * kLanes;

// next[j] for j = jlow to jup is the sum of before[k] * step[j - k], from 0.0 and with k from min(kup, j) down to
// klow. kBlock sums run side by side. A sum that starts at a smaller k than the block does first adds products
// with 0.0, which do not change it, so the bits are those of separate sums.
// Up to kBlock - 1 elements past jup are overwritten, and as many steps on either side are read.

ORVANTH_VECTOR_CLONES
void Convolve(const double* before, const double* step, double* next, std::int32_t jlow, std::int32_t jup,
              std::int32_t klow, std::int32_t kup) {
    for (std::int32_t j = jlow; j <= jup; j += kBlock) {
        Lanes low = {}, high = {};
        for (std::int32_t k = std::min(kup, j + kBlock - 1); k >= klow; --k) {
            Lanes lowSteps, highSteps;
            Load(step + (j - k), lowSteps);
            Load(step + (j - k) + kLanes, highSteps);
            low += before[k] * lowSteps;
            high += before[k] * highSteps;
        }
        Store(low, next + j);
        Store(high, next + j + kLanes);
    }
}

ORVANTH_VECTOR_CLONES
bool AnyBelow(const double* first, const double* last, double limit) {
    int below = 0;
    for (; first < last; ++first) below |= *first < limit;
    return below != 0;
}

}  // namespace

void CalcFloorCeil(std::int32_t n, double t, double* A, double* atflo, double* atcei) {
    const std::int32_t ell = static_cast<std::int32_t>(t);
    double z = t - ell;
    const double w = std::ceil(t) - t;
    struct Offsets {
        std::int32_t floor, ceiling;
    };
    const Offsets even = z > 0.5   ? Offsets{-ell - 2, ell}
                         : z > 0.0 ? Offsets{-ell - 1, ell}
                                   : Offsets{-ell - 1, ell - 1};
    const Offsets odd = z > 0.5 ? Offsets{-ell - 1, ell + 1} : z > 0.0 ? Offsets{-ell - 1, ell} : Offsets{-ell, ell};
    for (std::int32_t i = 1; i <= 2 * n + 2; ++i) {
        const Offsets& offsets = i % 2 == 0 ? even : odd;
        atflo[i] = i / 2 + offsets.floor;
        atcei[i] = i / 2 + offsets.ceiling;
    }
    if (z > 0.0 && z <= 0.5) atcei[1] = ell + 1;
    if (z > w) z = w;
    A[0] = A[1] = 0.0;
    A[2] = z;
    A[3] = 1.0 - z;
    for (std::int32_t i = 4; i <= 2 * n + 1; ++i) A[i] = A[i - 2] + 1.0;
    A[2 * n + 2] = n;
}

double Pomeranz(std::int32_t n, double x) {
    const double scale = std::ldexp(1.0, kScaleBits);
    const double t = n * x;
    // The distance j - k never passes 2 t + 3, so the rows of steps end there.
    const std::int32_t reach = std::min(n + 1, 2 * static_cast<std::int32_t>(t) + 3);
    const std::size_t points = 2 * static_cast<std::size_t>(n) + 3;
    const std::size_t width = static_cast<std::size_t>(n + 2 + kBlock);
    const std::size_t stepWidth = static_cast<std::size_t>(reach + 1 + 2 * kBlock);
    // One block of zeros: A, atflo, atcei, two rows of V, and four rows of steps between zeros.
    std::vector<double> block(3 * points + 2 * width + 4 * stepWidth);
    double* const A = block.data();
    double* const atflo = A + points;
    double* const atcei = atflo + points;
    double* before = atcei + points;
    double* next = before + width;
    double* const steps = next + width + kBlock;
    CalcFloorCeil(n, t, A, atflo, atcei);

    // Neighbouring boundary points are one of three lengths q apart, or coincide. Row r holds q^j / j!.
    const double lengths[3] = {(2.0 * A[2]) / n, (1.0 - 2.0 * A[2]) / n, A[2] / n};
    double* row[4];
    for (std::size_t r = 0; r < 4; ++r) row[r] = steps + r * stepWidth;
    for (double* each : row) each[0] = 1.0;
    for (std::int32_t j = 1; j <= reach; ++j)
        for (std::size_t r = 0; r < 3; ++r) row[r][j] = (row[r][j - 1] * lengths[r]) / j;

    next[1] = scale;
    std::int32_t scalings = 1;
    for (std::size_t i = 2; i < points; ++i) {
        const std::int32_t jlow = std::max(static_cast<std::int32_t>(2.0 + atflo[i]), 1);
        const std::int32_t jup = std::min(static_cast<std::int32_t>(atcei[i]), n + 1);
        const std::int32_t klow = std::max(static_cast<std::int32_t>(2.0 + atflo[i - 1]), 1);
        const std::int32_t kup = std::min(static_cast<std::int32_t>(atcei[i - 1]), n + 1);
        const double w = (A[i] - A[i - 1]) / n;
        std::size_t r = 0;
        while (r < 3 && !(std::fabs(w - row[r][1]) <= kStepTolerance)) ++r;
        std::swap(before, next);
        Convolve(before, row[r], next, jlow, jup, klow, kup);
        if (AnyBelow(next + jlow, next + jup + 1, kScaleBelow)) {
            for (std::int32_t j = jlow; j <= jup; ++j) next[j] *= scale;
            ++scalings;
        }
    }
    const double sum = next[n + 1];
    const double w = std::log(sum) + (LogFactorial(n) - (scalings * kScaleBits) * kLn2);
    return w >= 0.0 ? 1.0 : std::exp(w);
}

}  // namespace orvanth::kolmogorov
