#include "kolmogorov/durbin_matrix.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "frame/platform.hpp"
#include "kolmogorov/lanes.hpp"

namespace orvanth::kolmogorov {

namespace {

// A matrix is scaled by 1e-140 when its central element passes 1e140 (Marsaglia, Tsang, Wang 2003).
constexpr double kLarge = 1e140;
constexpr std::int32_t kLargeExponent = 140;

std::size_t Area(std::int32_t m) { return static_cast<std::size_t>(m) * static_cast<std::size_t>(m); }

double Central(const double* V, std::int32_t m) { return V[(m / 2) * m + m / 2]; }

// The matrix whose n-th power holds the probability, into m * m elements.
void Build(std::int32_t m, double h, double* H) {
    const auto at = [&](std::int32_t i, std::int32_t j) -> double& { return H[i * m + j]; };
    for (std::int32_t i = 0; i < m; ++i)
        for (std::int32_t j = 0; j < m; ++j) at(i, j) = i - j + 1 >= 0 ? 1.0 : 0.0;
    for (std::int32_t i = 0; i < m; ++i) {
        const double power = std::pow(h, i + 1);
        at(i, 0) -= power;
        at(m - 1, m - 1 - i) -= power;
    }
    const double b = 2.0 * h - 1.0;
    if (b > 0) at(m - 1, 0) += std::pow(b, m);
    // One division at a time, since division by a precomputed factorial rounds differently. Away from the first
    // column and the last row every element is 1.0 before, so one quotient serves a whole diagonal.
    const auto divide = [](double element, std::int32_t last) {
        for (std::int32_t g = 1; g <= last; ++g) element /= g;
        return element;
    };
    for (std::int32_t i = 0; i < m; ++i) at(i, 0) = divide(at(i, 0), i + 1);
    for (std::int32_t j = 1; j < m; ++j) at(m - 1, j) = divide(at(m - 1, j), m - j);
    double inverse = 1.0;
    for (std::int32_t distance = 1; distance < m; ++distance) {
        inverse /= distance;
        for (std::int32_t i = distance, j = 1; i < m - 1; ++i, ++j) at(i, j) = inverse;
    }
}

}  // namespace

namespace {

// A tile of C: four rows from i, kLanes * vectors columns from j. Its sums stay in registers.
template <int vectors>
[[gnu::always_inline]] inline void MultiplyTile(const double* A, const double* B, double* C, std::int32_t m,
                                                std::int32_t i, std::int32_t j) {
    Lanes sum[4][vectors] = {};
    const double* const rows = A + i * m;
    for (std::int32_t k = 0; k < m; ++k) {
        Lanes b[vectors];
        for (int v = 0; v < vectors; ++v) Load(B + k * m + j + v * kLanes, b[v]);
        for (std::int32_t r = 0; r < 4; ++r)
            for (int v = 0; v < vectors; ++v) sum[r][v] += rows[r * m + k] * b[v];
    }
    for (std::int32_t r = 0; r < 4; ++r)
        for (int v = 0; v < vectors; ++v) Store(sum[r][v], C + (i + r) * m + j + v * kLanes);
}

}  // namespace

// In tiles. Each element is summed from 0.0 in ascending order, so the bits are those of the plain triple loop.
// Where m is no multiple of the tile, the last tile overlaps the one before and computes some elements twice.
ORVANTH_VECTOR_CLONES
void MatrixMultiply(const double* A, const double* B, double* C, std::int32_t m) {
    if (m < kLanes) {
        for (std::int32_t i = 0; i < m; ++i)
            for (std::int32_t j = 0; j < m; ++j) {
                double sum = 0.0;
                for (std::int32_t k = 0; k < m; ++k) sum += A[i * m + k] * B[k * m + j];
                C[i * m + j] = sum;
            }
        return;
    }
    for (std::int32_t top = 0; top < m; top += 4) {
        const std::int32_t i = std::min(top, m - 4);
        std::int32_t j = 0;
        for (; j + 2 * kLanes <= m; j += 2 * kLanes) MultiplyTile<2>(A, B, C, m, i, j);
        for (; j < m; j += kLanes) MultiplyTile<1>(A, B, C, m, i, std::min(j, m - kLanes));
    }
}

std::int32_t MatrixRenormalize(double* V, std::int32_t m, std::int32_t e) {
    for (std::size_t i = 0; i < Area(m); ++i) V[i] *= 1e-140;
    return e + kLargeExponent;
}

namespace {

// B is scratch. The levels of the recursion use it in turn, each after the level below it has returned.
std::int32_t Power(const double* A, std::int32_t eA, double* V, std::int32_t m, std::int32_t n, double* B) {
    if (n == 1) {
        std::copy(A, A + Area(m), V);
        return eA;
    }
    const std::int32_t eHalf = Power(A, eA, V, m, n / 2, B);
    MatrixMultiply(V, V, B, m);
    std::int32_t eB = 2 * eHalf;
    if (Central(B, m) > kLarge) eB = MatrixRenormalize(B, m, eB);
    std::int32_t eV = eB;
    if (n % 2 == 0) {
        std::copy(B, B + Area(m), V);
    } else {
        MatrixMultiply(A, B, V, m);
        eV = eA + eB;
    }
    if (Central(V, m) > kLarge) eV = MatrixRenormalize(V, m, eV);
    return eV;
}

}  // namespace

std::int32_t MatrixPower(const double* A, std::int32_t eA, double* V, std::int32_t m, std::int32_t n) {
    std::vector<double> B(Area(m));
    return Power(A, eA, V, m, n, B.data());
}

double DurbinMatrix(std::int32_t n, double x) {
    const double nd = n;
    const double t = nd * x;
    const std::int32_t k = static_cast<std::int32_t>(t) + 1;
    const std::int32_t m = 2 * k - 1;
    std::vector<double> block(3 * Area(m));
    double* const H = block.data();
    double* const Q = H + Area(m);
    Build(m, k - t, H);
    std::int32_t eQ = Power(H, 0, Q, m, n, Q + Area(m));
    double s = Q[(k - 1) * m + k - 1];
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
