#include "linalg/column_products.hpp"

#include <algorithm>
#include <cstring>

#include <cblas.h>

#include "frame/platform.hpp"

namespace orvanth {
namespace {

void AddByBlas(const MatrixView& a, const MatrixView& g) {
    if (a.rows == 0) return;
    cblas_dsyrk(CblasColMajor, CblasUpper, CblasTrans, a.columns, a.rows, 1.0, a.first, a.leadingDimension, 1.0,
                g.first, g.leadingDimension);
}

#ifdef ORVANTH_WIDE_VECTORS

constexpr std::int32_t kLanes = 8;
constexpr std::int32_t kTile = 4;  // sixteen sums and the columns that they need fit in the registers

typedef double Doubles __attribute__((vector_size(kLanes * sizeof(double))));

ORVANTH_WIDE_VECTORS inline Doubles Load(const double* from) {
    Doubles loaded;
    std::memcpy(&loaded, from, sizeof loaded);
    return loaded;
}

ORVANTH_WIDE_VECTORS inline double Sum(const Doubles& x) {
    return ((x[0] + x[4]) + (x[2] + x[6])) + ((x[1] + x[5]) + (x[3] + x[7]));
}

// Four columns from j, of which those behind the last one are the last one again.
struct FourColumns {
    FourColumns(const MatrixView& a, std::int32_t j) {
        for (std::int32_t k = 0; k < kTile; ++k) column[k] = a.Column(std::min(j + k, a.columns - 1));
    }
    const double* column[kTile];
};

ORVANTH_WIDE_VECTORS void AddTile(const MatrixView& a, std::int32_t i, std::int32_t j, const MatrixView& g) {
    const FourColumns left(a, i), right(a, j);
    Doubles sums[kTile][kTile] = {};
    for (std::int32_t row = 0; row < a.rows; row += kLanes) {
        const Doubles x[kTile] = {Load(left.column[0] + row), Load(left.column[1] + row), Load(left.column[2] + row),
                                  Load(left.column[3] + row)};
#pragma GCC unroll 4
        for (std::int32_t q = 0; q < kTile; ++q) {
            const Doubles y = Load(right.column[q] + row);
#pragma GCC unroll 4
            for (std::int32_t p = 0; p < kTile; ++p) sums[p][q] += x[p] * y;
        }
    }
    for (std::int32_t q = 0; q < std::min(kTile, a.columns - j); ++q)
        for (std::int32_t p = 0; p < kTile && i + p <= j + q; ++p) g(i + p, j + q) += Sum(sums[p][q]);
}

#endif

}  // namespace

void AddColumnProducts(const MatrixView& a, const MatrixView& g) {
#ifdef ORVANTH_WIDE_VECTORS
    if (HasWideVectors()) {
        const std::int32_t wideRows = a.rows / kLanes * kLanes;
        for (std::int32_t j = 0; j < a.columns; j += kTile)
            for (std::int32_t i = 0; i <= j; i += kTile) AddTile(a.Block(0, 0, wideRows, a.columns), i, j, g);
        AddByBlas(a.Block(wideRows, 0, a.rows - wideRows, a.columns), g);
        return;
    }
#endif
    AddByBlas(a, g);
}

}  // namespace orvanth
