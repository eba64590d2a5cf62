// Least squares that stops at a collinear column, one column and one reflection at a time. It is the reference
// for the library's own path, which works on panels of columns.
#ifndef ORVANTH_TESTS_LINALG_COLUMN_BY_COLUMN_HPP
#define ORVANTH_TESTS_LINALG_COLUMN_BY_COLUMN_HPP

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "linalg/lapack.hpp"
#include "linalg/matrices.hpp"

namespace orvanth::test {

struct ColumnByColumn {
    // Factors `a` in place, and on success multiplies `b` by Q transposed and fills `x`.
    ColumnByColumn(Matrix& a, Matrix& b, Matrix& x, double tolerance)
        : m(a.Rows()), n(a.Columns()), tau(static_cast<std::size_t>(std::min(m, n))) {
        Factor(a, tolerance);
        if (info != 0) return;
        const std::int32_t one = 1, length = 10000;
        std::vector<double> work(10000);
        LAPACK_dormqr("Left", "Transpose", &m, &one, &n, &a(0, 0), &a.descriptor.leadingDimension, tau.data(),
                      &b(0, 0), &b.descriptor.leadingDimension, work.data(), &length, &info);
        for (int i = 0; i < n; ++i) x(i, 0) = b(i, 0);
        const double alpha = 1.0;
        dtrsm_("Left", "Upper", "No transpose", "Non-unit", &n, &one, &alpha, &a(0, 0),
               &a.descriptor.leadingDimension, &x(0, 0), &x.descriptor.leadingDimension, 4, 5, 12, 8);
    }

    std::int32_t m, n, info = 0;
    std::vector<double> tau;
    double narrowest = 1e300;  // how near the collinearity test came to the other answer, as a ratio

private:
    void Factor(Matrix& a, double tolerance) {
        const std::int32_t one = 1, mn = std::min(m, n);
        const double smallRatio = std::sqrt(std::numeric_limits<double>::epsilon() / 2);
        std::vector<double> vn1(static_cast<std::size_t>(n)), vn2, initialNorm, work(static_cast<std::size_t>(n) + 1);
        for (int j = 0; j < n; ++j) vn1[static_cast<std::size_t>(j)] = Norm2(m, &a(0, j));
        vn2 = initialNorm = vn1;
        std::ranges::replace(initialNorm, 0.0, 1.0);
        for (std::int32_t i = 0; i < mn; ++i) {
            const auto place = static_cast<std::size_t>(i);
            const double threshold = tolerance * initialNorm[place];
            if (threshold > 0 && vn1[place] > 0)
                narrowest = std::min(narrowest, std::max(vn1[place] / threshold, threshold / vn1[place]));
            if (threshold >= vn1[place]) {
                info = i + 1;
                return;
            }
            double* const column = &a(i, i);
            const std::int32_t order = m - i, laterColumns = n - i - 1;
            LAPACK_dlarfg(&order, column, order > 1 ? column + 1 : column, &one, &tau[place]);
            const double diagonal = *column;
            *column = 1.0;
            double* const later = column + a.descriptor.leadingDimension;
            LAPACK_dlarf("Left", &order, &laterColumns, column, &one, &tau[place], later,
                         &a.descriptor.leadingDimension, work.data());
            *column = diagonal;
            for (int j = i + 1; j < n; ++j) {
                double &v1 = vn1[static_cast<std::size_t>(j)], &v2 = vn2[static_cast<std::size_t>(j)];
                if (v1 == 0) continue;
                const double quotient = std::fabs(a(i, j)) / v1;
                const double temp = std::max(0.0, 1.0 - quotient * quotient);
                const double ratio = v1 / v2;
                if (temp * (ratio * ratio) <= smallRatio)
                    v1 = v2 = order > 1 ? Norm2(order - 1, &a(i, j) + 1) : 0.0;
                else
                    v1 *= std::sqrt(temp);
            }
        }
    }
};

}  // namespace orvanth::test

#endif
