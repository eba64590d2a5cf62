#include "linalg/block_reflector.hpp"

#include <algorithm>

#include <cblas.h>

namespace orvanth {
namespace {

// product := factor product, or its transpose; the factor is the unit lower triangle at the top of V.
void MultiplyByTop(CBLAS_TRANSPOSE transpose, const MatrixView& v, const MatrixView& product) {
    cblas_dtrmm(CblasColMajor, CblasLeft, CblasLower, transpose, CblasUnit, product.rows, product.columns, 1.0,
                v.first, v.leadingDimension, product.first, product.leadingDimension);
}

// c := c + alpha op(a) b.
void AddProduct(CBLAS_TRANSPOSE transpose, double alpha, const MatrixView& a, const MatrixView& b,
                const MatrixView& c) {
    const std::int32_t inner = transpose == CblasTrans ? a.rows : a.columns;
    if (c.rows == 0 || inner == 0) return;
    cblas_dgemm(CblasColMajor, transpose, CblasNoTrans, c.rows, c.columns, inner, alpha, a.first, a.leadingDimension,
                b.first, b.leadingDimension, 1.0, c.first, c.leadingDimension);
}

}  // namespace

void ExtendTriangularFactor(const BlockReflector& q, std::int32_t k, double tau) {
    // Column k is -tau T V' v_k, whose first element of v_k is a one that is not stored.
    double* const column = q.t.Column(k);
    for (std::int32_t i = 0; i < k; ++i) column[i] = -tau * q.v(k, i);
    const std::int32_t below = q.v.rows - k - 1;
    if (k > 0) {
        if (below > 0)
            cblas_dgemv(CblasColMajor, CblasTrans, below, k, -tau, &q.v(k + 1, 0), q.v.leadingDimension,
                        &q.v(k + 1, k), 1, 1.0, column, 1);
        cblas_dtrmv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit, k, q.t.first, q.t.leadingDimension, column,
                    1);
    }
    column[k] = tau;
}

void JoinTriangularFactors(const BlockReflector& q, std::int32_t firstColumns) {
    const std::int32_t otherColumns = q.v.columns - firstColumns;
    if (otherColumns == 0) return;
    const MatrixView& v = q.v;
    const MatrixView t1 = q.t.Block(0, 0, firstColumns, firstColumns);
    const MatrixView t2 = q.t.Block(firstColumns, firstColumns, otherColumns, otherColumns);
    const MatrixView t12 = q.t.Block(0, firstColumns, firstColumns, otherColumns);

    // T12 = -T1 V1' V2 T2, where V2 begins `firstColumns` rows further down with a unit lower triangle.
    for (std::int32_t j = 0; j < otherColumns; ++j)
        for (std::int32_t i = 0; i < firstColumns; ++i) t12(i, j) = v(firstColumns + j, i);
    cblas_dtrmm(CblasColMajor, CblasRight, CblasLower, CblasNoTrans, CblasUnit, firstColumns, otherColumns, 1.0,
                &v(firstColumns, firstColumns), v.leadingDimension, t12.first, t12.leadingDimension);
    const std::int32_t below = v.rows - v.columns;
    AddProduct(CblasTrans, 1.0, v.Block(v.columns, 0, below, firstColumns),
               v.Block(v.columns, firstColumns, below, otherColumns), t12);
    cblas_dtrmm(CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit, firstColumns, otherColumns, -1.0,
                t1.first, t1.leadingDimension, t12.first, t12.leadingDimension);
    cblas_dtrmm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, firstColumns, otherColumns, 1.0,
                t2.first, t2.leadingDimension, t12.first, t12.leadingDimension);
}

void ApplyTransposed(const BlockReflector& q, const MatrixView& c, double* room, std::int32_t roomLength) {
    const std::int32_t k = q.v.columns, below = q.v.rows - k;
    if (k == 0) return;
    const MatrixView tail = q.v.Block(k, 0, below, k);
    const std::int32_t together = std::max(1, roomLength / k);
    for (std::int32_t j = 0; j < c.columns; j += together) {
        const std::int32_t columns = std::min(together, c.columns - j);
        const MatrixView top = c.Block(0, j, k, columns), rest = c.Block(k, j, below, columns);
        const MatrixView w{room, k, columns, k};

        // W = T' V' C, then C - V W.
        for (std::int32_t l = 0; l < columns; ++l) std::copy_n(top.Column(l), k, w.Column(l));
        MultiplyByTop(CblasTrans, q.v, w);
        AddProduct(CblasTrans, 1.0, tail, rest, w);
        cblas_dtrmm(CblasColMajor, CblasLeft, CblasUpper, CblasTrans, CblasNonUnit, k, columns, 1.0, q.t.first,
                    q.t.leadingDimension, w.first, k);
        AddProduct(CblasNoTrans, -1.0, tail, w, rest);
        MultiplyByTop(CblasNoTrans, q.v, w);
        for (std::int32_t l = 0; l < columns; ++l)
            for (std::int32_t i = 0; i < k; ++i) top(i, l) -= w(i, l);
    }
}

}  // namespace orvanth
