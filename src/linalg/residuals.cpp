// The residual sum of squares. `offset` is ignored.
#include <algorithm>
#include <array>
#include <cstddef>

#include "linalg/matrix_descriptor.hpp"
#include "orvanth/linalg.h"

namespace {

// Rows taken together, so that the columns are read along their storage. Each row's products are still added
// one at a time from the first column on, and the squares from the first row on: the digits do not depend on
// this number.
constexpr std::ptrdiff_t kRowsTogether = 32;

}  // namespace

ORVANTH_API(double) Xb(const double* x, const MatrixDescriptor* descriptor, const double* b, const double* y) {
    const std::ptrdiff_t rows = descriptor->rows, columns = descriptor->columns;
    const std::ptrdiff_t leadingDimension = descriptor->leadingDimension;
    double total = 0;
    for (std::ptrdiff_t first = 0; first < rows; first += kRowsTogether) {
        const std::ptrdiff_t count = std::min(kRowsTogether, rows - first);
        std::array<double, kRowsTogether> fitted{};
        for (std::ptrdiff_t j = 0; j < columns; ++j) {
            const double* const column = x + first + j * leadingDimension;
            const double coefficient = b[j];
            if (count == kRowsTogether)
                for (std::ptrdiff_t i = 0; i < kRowsTogether; ++i) fitted[i] += coefficient * column[i];
            else
                for (std::ptrdiff_t i = 0; i < count; ++i) fitted[i] += coefficient * column[i];
        }
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            const double difference = y[first + i] - fitted[i];
            total += difference * difference;
        }
    }
    return total;
}
