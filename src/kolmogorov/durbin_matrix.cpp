#include "kolmogorov/durbin_matrix.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "frame/platform.hpp"

namespace orvanth::kolmogorov {

namespace {

constexpr double kLarge = 1e140;
constexpr std::int32_t kLargeExponent = 140;

std::size_t Area(std::int32_t m) { return static_cast<std::size_t>(m) * static_cast<std::size_t>(m); }

double Central(const double* V, std::int32_t m) { return V[(m / 2) * m + m / 2]; }

// The matrix whose n-th power holds the probability.
std::vector<double> Build(std::int32_t m, double h) {
    std::vector<double> H(Area(m));
    const auto at = [&](std::int32_t i, std::int32_t j) -> double& { return H[static_cast<std::size_t>(i * m + j)]; };
    for (std::int32_t i = 0; i < m; ++i)
        for (std::int32_t j = 0; j < m; ++j) at(i, j) = i - j + 1 >= 0 ? 1.0 : 0.0;
    for (std::int32_t i = 0; i < m; ++i) {
        at(i, 0) -= std::pow(h, i + 1);
        at(m - 1, i) -= std::pow(h, m - i);
    }
    const double b = 2.0 * h - 1.0;
    if (b > 0) at(m - 1, 0) += std::pow(b, m);
    // One division at a time: a precomputed factorial would round otherwise.
    for (std::int32_t i = 0; i < m; ++i)
        for (std::int32_t j = 0; j < m && i - j + 1 > 0; ++j)
            for (std::int32_t g = 1; g <= i - j + 1; ++g) at(i, j) /= g;
    return H;
}

// Columns of a block of the product, kept in registers.
constexpr std::int32_t kLanes = 8;

// Two rows by one block of columns: each element starts at 0.0 and is summed in ascending order of
// the inner index, hence has the bits of the plain triple loop. Row lengths of B are `stride`, which
// covers whole blocks; what stands in B beyond column m reaches no element that is used.
ORVANTH_VECTOR_CLONES
void MultiplyBlocks(const double* A, const double* B, double* C, std::int32_t m, std::int32_t stride) {
    for (std::int32_t i = 0; i < m; i += 2) {
        const double* const upper = A + i * m;
        const double* const lower = i + 1 < m ? upper + m : upper;
        for (std::int32_t j = 0; j < m; j += kLanes) {
            double sums[2][kLanes] = {};
            for (std::int32_t k = 0; k < m; ++k) {
                const double* const other = B + k * stride + j;
                const double first = upper[k], second = lower[k];
                for (std::int32_t lane = 0; lane < kLanes; ++lane) {
                    sums[0][lane] += first * other[lane];
                    sums[1][lane] += second * other[lane];
                }
            }
            const std::int32_t lanes = std::min(kLanes, m - j);
            std::copy(sums[0], sums[0] + lanes, C + i * m + j);
            if (i + 1 < m) std::copy(sums[1], sums[1] + lanes, C + (i + 1) * m + j);
        }
    }
}

}  // namespace

void MatrixMultiply(const double* A, const double* B, double* C, std::int32_t m) {
    const std::int32_t stride = (m + kLanes - 1) / kLanes * kLanes;
    std::vector<double> padded(static_cast<std::size_t>(stride) * static_cast<std::size_t>(m));
    for (std::int32_t k = 0; k < m; ++k) std::copy(B + k * m, B + (k + 1) * m, padded.data() + k * stride);
    MultiplyBlocks(A, padded.data(), C, m, stride);
}

void MatrixRenormalize(double* V, std::int32_t m, std::int32_t* e) {
    for (std::size_t i = 0; i < Area(m); ++i) V[i] *= 1e-140;
    *e += kLargeExponent;
}

void MatrixPower(const double* A, std::int32_t eA, double* V, std::int32_t* eV, std::int32_t m, std::int32_t n) {
    if (n == 1) {
        std::copy(A, A + Area(m), V);
        *eV = eA;
        return;
    }
    MatrixPower(A, eA, V, eV, m, n / 2);
    std::vector<double> B(Area(m));
    MatrixMultiply(V, V, B.data(), m);
    std::int32_t eB = 2 * *eV;
    if (Central(B.data(), m) > kLarge) MatrixRenormalize(B.data(), m, &eB);
    if (n % 2 == 0) {
        std::copy(B.begin(), B.end(), V);
        *eV = eB;
    } else {
        MatrixMultiply(A, B.data(), V, m);
        *eV = eA + eB;
    }
    if (Central(V, m) > kLarge) MatrixRenormalize(V, m, eV);
}

double DurbinMatrix(std::int32_t n, double x) {
    const double nd = n;
    const double t = nd * x;
    const std::int32_t k = static_cast<std::int32_t>(t) + 1;
    const std::int32_t m = 2 * k - 1;
    const std::vector<double> H = Build(m, k - t);
    std::vector<double> Q(Area(m));
    std::int32_t eQ = 0;
    MatrixPower(H.data(), 0, Q.data(), &eQ, m, n);
    double s = Q[static_cast<std::size_t>((k - 1) * m + k - 1)];
    for (std::int32_t i = 1; i <= n; ++i) {
        s = (i * s) / nd;
        if (s < 1e-140) {
            s *= kLarge;
            eQ -= kLargeExponent;
        }
    }
    return std::pow(10.0, static_cast<double>(eQ)) * s;
}

}  // namespace orvanth::kolmogorov
