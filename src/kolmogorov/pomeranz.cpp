#include "kolmogorov/pomeranz.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "frame/platform.hpp"
#include "kolmogorov/log_factorial.hpp"

namespace orvanth::kolmogorov {

namespace {

// The scaling base is a power of two, so scaling is exact.
constexpr std::int32_t kScaleBits = 350;
constexpr double kStepTolerance = 1e-15;

// Lanes of a block of the convolution, kept in registers; rows of steps have as many zeros before
// and after them.
constexpr std::int32_t kLanes = 16;

// next[j] for j = jlow..jup: the sum of before[k] * step[j - k] over k from min(kup, j) down to klow,
// in that order from 0.0. All lanes of a block take every k: where k > j the step is a zero, and the
// sum stays 0.0.
ORVANTH_VECTOR_CLONES
void Convolve(const double* before, const double* step, double* next, std::int32_t jlow, std::int32_t jup,
              std::int32_t klow, std::int32_t kup) {
    for (std::int32_t first = jlow; first <= jup; first += kLanes) {
        double sums[kLanes] = {};
        for (std::int32_t k = std::min(kup, std::min(jup, first + kLanes - 1)); k >= klow; --k) {
            const double factor = before[k];
            const double* const shifted = step + (first - k);
            for (std::int32_t lane = 0; lane < kLanes; ++lane) sums[lane] += factor * shifted[lane];
        }
        const std::int32_t lanes = std::min(kLanes, jup - first + 1);
        for (std::int32_t lane = 0; lane < lanes; ++lane) next[first + lane] = sums[lane];
    }
}

// The steps between neighbouring boundary points have three lengths, or none: row r holds q^j / j!.
class Steps {
public:
    Steps(std::int32_t n, double a2) : stride_(static_cast<std::size_t>(n) + 2 + 2 * kLanes), values_(4 * stride_) {
        const double lengths[3] = {(2.0 * a2) / n, (1.0 - 2.0 * a2) / n, a2 / n};
        for (std::size_t r = 0; r < 4; ++r) Row(r)[0] = 1.0;
        for (std::size_t r = 0; r < 3; ++r)
            for (std::int32_t j = 1; j <= n + 1; ++j) Row(r)[j] = (Row(r)[j - 1] * lengths[r]) / j;
    }
    double* Row(std::size_t r) { return values_.data() + r * stride_ + kLanes; }

    // The row whose first power is the length w.
    const double* RowOfLength(double w) {
        std::size_t r = 0;
        while (r < 3 && !(std::fabs(w - Row(r)[1]) <= kStepTolerance)) ++r;
        return Row(r);
    }

private:
    std::size_t stride_;
    std::vector<double> values_;
};

}  // namespace

void CalcFloorCeil(std::int32_t n, double t, double* A, double* Atflo, double* Atcei) {
    const std::int32_t ell = static_cast<std::int32_t>(t);
    double z = t - ell;
    const double w = std::ceil(t) - t;
    for (std::int32_t i = 1; i <= 2 * n + 2; ++i) {
        const std::int32_t half = i / 2;
        const bool odd = i % 2 != 0;
        if (z > 0.5) {
            Atflo[i] = half - ell - (odd ? 1 : 2);
            Atcei[i] = half + ell + (odd ? 1 : 0);
        } else if (z > 0.0) {
            Atflo[i] = half - ell - 1;
            Atcei[i] = half + ell;
        } else {
            Atflo[i] = half - ell - (odd ? 0 : 1);
            Atcei[i] = half + ell - (odd ? 0 : 1);
        }
    }
    if (z > 0.0 && z <= 0.5) Atcei[1] = ell + 1;
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
    const std::size_t points = 2 * static_cast<std::size_t>(n) + 3;
    const std::size_t width = static_cast<std::size_t>(n) + 2;
    std::vector<double> A(points), Atflo(points), Atcei(points), V(2 * width);
    CalcFloorCeil(n, t, A.data(), Atflo.data(), Atcei.data());
    Steps steps(n, A[2]);

    double* before = V.data() + width;
    double* next = V.data();
    next[1] = 0.0;
    before[1] = scale;
    std::swap(before, next);  // swapped back at the first step
    std::int32_t scalings = 1;
    for (std::size_t i = 2; i < points; ++i) {
        const std::int32_t jlow = std::max(static_cast<std::int32_t>(2.0 + Atflo[i]), 1);
        const std::int32_t jup = std::min(static_cast<std::int32_t>(Atcei[i]), n + 1);
        const std::int32_t klow = std::max(static_cast<std::int32_t>(2.0 + Atflo[i - 1]), 1);
        const std::int32_t kup = static_cast<std::int32_t>(Atcei[i - 1]);
        const double w = (A[i] - A[i - 1]) / n;
        std::swap(before, next);
        Convolve(before, steps.RowOfLength(w), next, jlow, jup, klow, kup);
        double smallest = scale;
        for (std::int32_t j = jlow; j <= jup; ++j) smallest = std::min(smallest, next[j]);
        if (smallest < 1e-280) {
            for (std::int32_t j = jlow; j <= jup; ++j) next[j] *= scale;
            ++scalings;
        }
    }
    const double sum = next[n + 1];
    const double w = std::log(sum) + (LogFactorial(n) - (scalings * kScaleBits) * 0.6931471805599453);
    return w >= 0.0 ? 1.0 : std::exp(w);
}

}  // namespace orvanth::kolmogorov
