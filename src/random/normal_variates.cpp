#include "random/normal_variates.hpp"

#include <algorithm>
#include <cstddef>
#include <numbers>

#include "frame/platform.hpp"
#include "random/erf_inv.hpp"

namespace orvanth {

namespace {

constexpr std::size_t kNumbersInCache = 4096;  // they stay there from pass to pass

// One rounded product, then one rounded sum.
ORVANTH_VECTOR_CLONES
void Scale(double* values, std::size_t count, double factor, double mean) {
    for (std::size_t i = 0; i < count; ++i) values[i] = values[i] * factor + mean;
}

}  // namespace

void FillNormalVariates(MersenneTwister& twister, std::span<double> values, double mean, double sigma) {
    const double factor = std::numbers::sqrt2 * sigma;
    while (!values.empty()) {
        const std::span<double> chunk = values.first(std::min(kNumbersInCache, values.size()));
        FillUniformDoubles(twister, chunk, -1.0, 1.0);
        ErfInv(chunk, chunk.data(), kErfInvLargest);
        Scale(chunk.data(), chunk.size(), factor, mean);
        values = values.subspan(chunk.size());
    }
}

}  // namespace orvanth
