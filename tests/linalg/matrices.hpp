// Matrices in guarded storage, random designs and plain-loop products for the tests of linear algebra.
#ifndef ORVANTH_TESTS_LINALG_MATRICES_HPP
#define ORVANTH_TESTS_LINALG_MATRICES_HPP

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "orvanth/linalg.h"

namespace orvanth::test {

inline constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
inline constexpr std::uint64_t kSeed = 20240607;

// A quiet NaN with a pattern of its own: who reads it is poisoned, who writes it is found out.
inline const double kRogue = std::bit_cast<double>(std::uint64_t{0x7FF8DEADBEEFCAFE});

inline bool IsRogue(double x) { return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(kRogue); }

inline bool SameBits(const std::vector<double>& a, const std::vector<double>& b) {
    return std::ranges::equal(
        a, b, [](double x, double y) { return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y); });
}

inline std::vector<double> RogueVector(int length) {
    return std::vector<double>(static_cast<std::size_t>(length), kRogue);
}

// How much longer than usual the random tests run.
inline int Multiplier() {
    const char* text = std::getenv("TEST_MULTIPLIER");
    return text == nullptr ? 1 : std::max(1, std::atoi(text));
}

// A view inside rogue storage: before it, behind it, and below each column.
struct Matrix {
    Matrix(int rows, int columns, int offset = 0, int padding = 0)
        : descriptor{offset, std::max(1, rows + padding), rows, columns},
          storage(
              static_cast<std::size_t>(std::max(0, offset) + descriptor.leadingDimension * std::max(0, columns) + 8),
              kRogue) {}

    int Rows() const { return descriptor.rows; }
    int Columns() const { return descriptor.columns; }
    double& operator()(int i, int j) { return storage[Index(i, j)]; }
    double operator()(int i, int j) const { return storage[Index(i, j)]; }
    double* Data() { return storage.data(); }
    const MatrixDescriptor* Descriptor() const { return &descriptor; }
    std::size_t Index(int i, int j) const {
        return static_cast<std::size_t>(descriptor.offset) + static_cast<std::size_t>(i) +
               static_cast<std::size_t>(j) * static_cast<std::size_t>(descriptor.leadingDimension);
    }

    // Whether everything outside the view still holds the rogue pattern.
    bool IsPaddingIntact() const {
        std::vector<bool> inside(storage.size(), false);
        for (int j = 0; j < Columns(); ++j)
            for (int i = 0; i < Rows(); ++i) inside[Index(i, j)] = true;
        for (std::size_t k = 0; k < storage.size(); ++k)
            if (!inside[k] && !IsRogue(storage[k])) return false;
        return true;
    }

    MatrixDescriptor descriptor;
    std::vector<double> storage;
};

template <class Function>
void FillBy(Matrix& a, Function element) {
    for (int j = 0; j < a.Columns(); ++j)
        for (int i = 0; i < a.Rows(); ++i) a(i, j) = element(i, j);
}

inline void FillRandom(Matrix& a, std::mt19937_64& random, double scale = 1.0) {
    std::uniform_real_distribution<double> uniform(-1, 1);
    FillBy(a, [&](int, int) { return scale * uniform(random); });
}

inline Matrix Identity(int n) {
    Matrix a(n, n);
    FillBy(a, [](int i, int j) { return i == j ? 1.0 : 0.0; });
    return a;
}

inline Matrix Transposed(const Matrix& a) {
    Matrix t(a.Columns(), a.Rows());
    FillBy(t, [&](int i, int j) { return a(j, i); });
    return t;
}

inline Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix c(a.Rows(), b.Columns());
    FillBy(c, [&](int i, int j) {
        long double sum = 0;
        for (int k = 0; k < a.Columns(); ++k) sum += static_cast<long double>(a(i, k)) * b(k, j);
        return static_cast<double>(sum);
    });
    return c;
}

inline double LargestColumnSum(const Matrix& a) {
    double largest = 0;
    for (int j = 0; j < a.Columns(); ++j) {
        double sum = 0;
        for (int i = 0; i < a.Rows(); ++i) sum += std::fabs(a(i, j));
        if (!(sum <= largest)) largest = sum;
    }
    return largest;
}

// ||a - b|| / (max(m, n) ||scale|| eps): what a backward stable algorithm keeps below a small constant.
inline double ScaledResidual(const Matrix& a, const Matrix& b, const Matrix& scale) {
    Matrix difference(a.Rows(), a.Columns());
    FillBy(difference, [&](int i, int j) { return a(i, j) - b(i, j); });
    const double size = std::max({1, scale.Rows(), scale.Columns()});
    const double norm = LargestColumnSum(scale);
    return LargestColumnSum(difference) / (size * (norm > 0 ? norm : 1.0) * kEpsilon);
}

// ||QᵀQ - I|| / (m eps).
inline double Orthogonality(const Matrix& q) {
    const Matrix product = Product(Transposed(q), q);
    const Matrix identity = Identity(q.Columns());
    Matrix difference(q.Columns(), q.Columns());
    FillBy(difference, [&](int i, int j) { return product(i, j) - identity(i, j); });
    return LargestColumnSum(difference) / (std::max(1, q.Rows()) * kEpsilon);
}

inline Matrix UpperTriangle(const Matrix& a, int rows) {
    Matrix r(rows, a.Columns());
    FillBy(r, [&](int i, int j) { return i <= j ? a(i, j) : 0.0; });
    return r;
}

// The status of a call that LAPACK rejects, with the text of its report, wherever it is printed.
struct Rejection {
    int info;
    std::string report;
};

template <class Function>
Rejection Rejected(Function call) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Rejection r{call(), {}};
    r.report = testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    return r;
}

inline constexpr double kResidualBound = 30;
inline constexpr int kSizes[] = {0, 1, 2, 3, 5, 10, 50};

}  // namespace orvanth::test

#endif
