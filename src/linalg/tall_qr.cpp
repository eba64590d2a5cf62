#include "linalg/tall_qr.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include <cblas.h>

#include "linalg/column_products.hpp"
#include "linalg/lapack.hpp"

namespace orvanth {
namespace {

constexpr std::size_t kMostColumns = 32;
constexpr std::int32_t kFewestRowsAColumn = 32;
constexpr std::int64_t kFewestElements = 1 << 17;  // 1 MB: below, the cache holds the design

// Rows that are taken together: with 32 columns 128 kB, well within the second cache.
constexpr std::int32_t kRowsTogether = 512;

// Two rounds of Cholesky give an orthogonal Q as long as the condition of the scaled columns is below about 1e7
// (Yamamoto). The part of a column that is orthogonal to those before it is at least this share of its length.
constexpr double kLeastPart = 1e-6;

// Against the collinearity test, which the length of that part passes with this factor to spare. Its rounding error
// is below 1 % at kLeastPart.
constexpr double kSpare = 2;

// Squares of lengths in this range, and the products between them, neither overflow nor lose digits.
constexpr double kLeastSquare = 1e-200, kLargestSquare = 1e200;

// A column with more than this share of its rest on the diagonal has next to nothing to reflect. LAPACK may then
// leave it as it is, with a factor of 0.
constexpr double kMostOnDiagonal = 0.9;

// A square matrix of at most kMostColumns, and the view of its first n rows and columns.
class Square {
public:
    explicit Square(std::int32_t n) : n_(n) {}
    MatrixView View() noexcept { return {elements_.data(), n_, n_, kMostColumns}; }

private:
    std::int32_t n_;
    std::array<double, kMostColumns * kMostColumns> elements_{};
};

void Assign(const MatrixView& to, const MatrixView& from) {
    for (std::int32_t j = 0; j < to.columns; ++j) std::copy_n(from.Column(j), to.rows, to.Column(j));
}

template <class Function>
void ForRows(const MatrixView& a, Function function) {
    for (std::int32_t first = 0; first < a.rows; first += std::min(kRowsTogether, a.rows - first))
        function(a.Block(first, 0, std::min(kRowsTogether, a.rows - first), a.columns));
}

// a := a r^-1.
void DivideBy(const MatrixView& r, const MatrixView& a) {
    cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, a.rows, a.columns, 1.0, r.first,
                r.leadingDimension, a.first, a.leadingDimension);
}

// r := product of two upper triangles.
void MultiplyFromLeft(const MatrixView& left, const MatrixView& r) {
    cblas_dtrmm(CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit, r.rows, r.columns, 1.0, left.first,
                left.leadingDimension, r.first, r.leadingDimension);
}

bool IsCholeskyDone(const MatrixView& g) {
    std::int32_t info = 0;
    LAPACK_dpotrf("U", &g.columns, g.first, &g.leadingDimension, &info);
    return info == 0;
}

// Every column has a large part of its own, by the diagonal of the triangular factor, and none stops the call.
bool IsFarFromCollinear(const MatrixView& products, const MatrixView& r, double tolerance) {
    for (std::int32_t i = 0; i < r.columns; ++i) {
        const double length = std::sqrt(products(i, i)), part = r(i, i);
        // A tolerance that is not a number stops no call.
        if (!(part >= kLeastPart * length) || kSpare * tolerance * length >= part) return false;
    }
    return true;
}

bool AreSquaresModerate(const MatrixView& products) {
    for (std::int32_t i = 0; i < products.columns; ++i)
        if (!(products(i, i) >= kLeastSquare && products(i, i) <= kLargestSquare)) return false;
    return true;
}

// The first rows of Q less a diagonal of signs, factored without pivoting: L holds the tops of the reflectors below
// the diagonal, U stands above. The signs are those with which nothing cancels, and U has a diagonal of 1 at least.
// Returns the largest share on the diagonal.
double FactorTop(const MatrixView& top, std::array<double, kMostColumns>& signs) {
    double most = 0;
    for (std::int32_t j = 0; j < top.columns; ++j) {
        double& diagonal = top(j, j);
        most = std::max(most, std::fabs(diagonal));
        signs[static_cast<std::size_t>(j)] = std::copysign(1.0, -diagonal);
        diagonal -= signs[static_cast<std::size_t>(j)];
        for (std::int32_t i = j + 1; i < top.rows; ++i) top(i, j) /= diagonal;
        for (std::int32_t k = j + 1; k < top.columns; ++k)
            for (std::int32_t i = j + 1; i < top.rows; ++i) top(i, k) -= top(i, j) * top(j, k);
    }
    return most;
}

}  // namespace

bool IsTall(const MatrixView& a) noexcept {
    return a.columns <= std::int32_t{kMostColumns} && a.rows / kFewestRowsAColumn >= a.columns &&
           std::int64_t{a.rows} * a.columns >= kFewestElements;
}

bool FactorTall(const MatrixView& a, double* tau, double tolerance) {
    const std::int32_t n = a.columns;
    const MatrixView firstRows = a.Block(0, 0, n, n);
    std::array<double, kMostColumns> signs;
    Square productsStorage(n), rStorage(n), topStorage(n);
    const MatrixView products = productsStorage.View(), r = rStorage.View(), top = topStorage.View();

    // The first pass only reads.
    ForRows(a, [&](const MatrixView& rows) { AddColumnProducts(rows, products); });
    if (!AreSquaresModerate(products)) return false;
    Assign(r, products);
    if (!IsCholeskyDone(r) || !IsFarFromCollinear(products, r, tolerance)) return false;
    Assign(top, firstRows);
    DivideBy(r, top);
    if (!(FactorTop(top, signs) <= kMostOnDiagonal)) return false;

    // The second pass leaves Q, up to the rounding of its first round, and its products.
    Square againStorage(n);
    const MatrixView again = againStorage.View();
    ForRows(a, [&](const MatrixView& rows) {
        DivideBy(r, rows);
        AddColumnProducts(rows, again);
    });
    IsCholeskyDone(again);  // it cannot fail: the products are those of nearly orthogonal columns
    for (std::int32_t j = 0; j < n; ++j) std::fill(r.Column(j) + j + 1, r.Column(j) + n, 0.0);
    MultiplyFromLeft(again, r);
    Assign(top, firstRows);
    DivideBy(again, top);
    FactorTop(top, signs);

    // The third pass: V below the first rows is Q U^-1, and Q still has to be divided by `again`.
    Square upperStorage(n);
    const MatrixView upper = upperStorage.View();
    for (std::int32_t j = 0; j < n; ++j) std::copy_n(again.Column(j), j + 1, upper.Column(j));
    MultiplyFromLeft(top, upper);
    ForRows(a.Block(n, 0, a.rows - n, n), [&](const MatrixView& rows) { DivideBy(upper, rows); });

    for (std::int32_t j = 0; j < n; ++j) {
        tau[j] = -top(j, j) * signs[static_cast<std::size_t>(j)];
        for (std::int32_t i = 0; i < n; ++i)
            firstRows(i, j) = i > j ? top(i, j) : signs[static_cast<std::size_t>(i)] * r(i, j);
    }
    return true;
}

}  // namespace orvanth
