// The collinearity-stopping least squares once more: plain loops in long double, without LAPACK.
#ifndef ORVANTH_TESTS_LINALG_OLS_MODEL_HPP
#define ORVANTH_TESTS_LINALG_OLS_MODEL_HPP

#include <algorithm>
#include <cmath>
#include <vector>

#include "linalg/matrices.hpp"

namespace orvanth::test {

struct OlsModel {
    using Real = long double;
    using Grid = std::vector<std::vector<Real>>;  // [column][row]

    OlsModel(const Matrix& givenA, const Matrix& givenB, double tolerance)
        : m(givenA.Rows()), n(givenA.Columns()), mn(std::min(m, n)), a(Columns(givenA)), b(Columns(givenB)) {
        Factor(tolerance);
        if (info == 0 && m >= n) Solve();
    }

    int m, n, mn;
    Grid a, b;
    std::vector<Real> tau;
    int info = 0;
    Real narrowest = 1e300L;  // how near the collinearity test came to the other answer, as a ratio

private:
    static Grid Columns(const Matrix& matrix) {
        Grid grid(static_cast<std::size_t>(matrix.Columns()));
        for (int j = 0; j < matrix.Columns(); ++j)
            for (int i = 0; i < matrix.Rows(); ++i) grid[static_cast<std::size_t>(j)].push_back(matrix(i, j));
        return grid;
    }
    static Real Length(const std::vector<Real>& column, int from) {
        Real sum = 0;
        for (std::size_t i = static_cast<std::size_t>(from); i < column.size(); ++i) sum += column[i] * column[i];
        return std::sqrt(sum);
    }
    // (I - tau v vᵀ) applied to a column, v being 1 at `i` and the reflector's tail below.
    static void Reflect(const std::vector<Real>& v, int i, Real scalar, std::vector<Real>& column) {
        const auto first = static_cast<std::size_t>(i);
        Real sum = column[first];
        for (std::size_t k = first + 1; k < column.size(); ++k) sum += v[k] * column[k];
        column[first] -= scalar * sum;
        for (std::size_t k = first + 1; k < column.size(); ++k) column[k] -= scalar * sum * v[k];
    }

    // Exact norms at every step in place of downdated ones: they differ by rounding alone.
    void Factor(double tolerance) {
        std::vector<Real> initial;
        for (const auto& column : a) {
            const Real length = Length(column, 0);
            initial.push_back(length == 0 ? 1 : length);
        }
        for (int i = 0; i < mn; ++i) {
            auto& column = a[static_cast<std::size_t>(i)];
            const Real left = Length(column, i), threshold = tolerance * initial[static_cast<std::size_t>(i)];
            if (threshold > 0 && left > 0)
                narrowest = std::min(narrowest, std::max(left / threshold, threshold / left));
            if (threshold >= left) {
                info = i + 1;
                return;
            }
            Real& pivot = column[static_cast<std::size_t>(i)];
            const Real tail = Length(column, i + 1);
            tau.push_back(0);
            if (tail != 0) {
                const Real beta = pivot > 0 ? -left : left;
                tau.back() = (beta - pivot) / beta;
                for (std::size_t k = static_cast<std::size_t>(i) + 1; k < column.size(); ++k)
                    column[k] /= pivot - beta;
                pivot = beta;
            }
            for (std::size_t j = static_cast<std::size_t>(i) + 1; j < a.size(); ++j)
                Reflect(column, i, tau.back(), a[j]);
        }
    }

    void Solve() {
        for (auto& column : b)
            for (int i = 0; i < n; ++i)
                Reflect(a[static_cast<std::size_t>(i)], i, tau[static_cast<std::size_t>(i)], column);
    }
};

// What the export makes of its storage for x: pass k copies n elements from the storage of b, moved on by k
// elements, to the storage of x, moved on by k, and then the columns of x, as they stand, are solved for.
inline std::vector<long double> SolvedStorage(const OlsModel& model, const std::vector<long double>& b,
                                              std::vector<long double> x, int ldx, int nrhs) {
    for (int k = 0; k < nrhs; ++k)
        for (int i = 0; i < model.n; ++i) x[static_cast<std::size_t>(i + k)] = b[static_cast<std::size_t>(i + k)];
    for (int k = 0; k < nrhs; ++k) {
        long double* const column = x.data() + static_cast<std::ptrdiff_t>(k) * ldx;
        for (int i = model.n - 1; i >= 0; --i) {
            for (int j = i + 1; j < model.n; ++j)
                column[i] -= model.a[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] * column[j];
            column[i] /= model.a[static_cast<std::size_t>(i)][static_cast<std::size_t>(i)];
        }
    }
    return x;
}

}  // namespace orvanth::test

#endif
