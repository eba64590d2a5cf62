#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <span>

#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "frame/load_state.hpp"
#include "noncentral_hypergeometric/fnc_probability.hpp"
#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "noncentral_hypergeometric/wrap.hpp"
#include "orvanth/noncentral_hypergeometric.h"

using namespace orvanth;

namespace {

constexpr double kMomentsAccuracy = 1e-08;

double Cutoff(const FNCRecord& record) { return record.accuracy * 0.001; }

std::unique_ptr<double[]> Storage(std::size_t length) { return std::make_unique_for_overwrite<double[]>(length); }

}  // namespace

ORVANTH_API(double)
FNCHypergeometricCDF(int32_t x, int32_t n, int32_t m, int32_t N, double odds, TailFlag tail, double accuracy) {
    Throwing throwing;
    const FNCRecord record(n, m, N, odds, accuracy);
    const std::optional<std::int32_t> length = FNCTableLength(record);
    if (!length) return FNCInvalidValue;
    const std::size_t size = static_cast<std::size_t>(*length);
    double* const kept = Storage(size).release();  // required: this export never releases its table
    const FNCTable table = FNCMakeTable(record, Cutoff(record), {kept, size});
    const double r = 1.0 / table.sum;
    const std::int32_t xm = FNCTruncate(FNCMean(record) + 0.5);
    if (xm < table.xfirst || xm > table.xlast) return FNCInvalidValue;
    // Tail sums from both ends that meet at the rounded mean, so that neither tail is a difference: up to xm
    // P(X <= k), behind it P(X >= k).
    const auto at = [&](std::int32_t k) { return table.entries[static_cast<std::size_t>(k - table.xfirst)]; };
    const std::size_t below = static_cast<std::size_t>(xm - table.xfirst) + 1;
    const std::span<double> lowerSums = table.entries.first(below), upperSums = table.entries.subspan(below);
    std::partial_sum(lowerSums.begin(), lowerSums.end(), lowerSums.begin());
    std::partial_sum(upperSums.rbegin(), upperSums.rend(), upperSums.rbegin());
    if (x <= xm) {
        const double lower = x >= table.xfirst ? at(x) * r : 0.0;
        return IsSet(tail) ? 1.0 - lower : lower;
    }
    const double upper = x < table.xlast ? at(x + 1) * r : 0.0;
    return IsSet(tail) ? upper : 1.0 - upper;
}

ORVANTH_API(double)
FNCHypergeometricICDF(double p, int32_t n, int32_t m, int32_t N, double odds, TailFlag tail, double accuracy) {
    Throwing throwing;
    const FNCRecord record(n, m, N, odds, accuracy);
    const std::optional<std::int32_t> length = FNCTableLength(record);
    if (!length) return FNCInvalidValue;
    const std::size_t size = static_cast<std::size_t>(*length);
    const std::unique_ptr<double[]> storage = Storage(size);
    const FNCTable table = FNCMakeTable(record, Cutoff(record), {storage.get(), size});
    std::partial_sum(table.entries.begin(), table.entries.end(), table.entries.begin());
    const double q = IsSet(tail) ? 1.0 - p : p;
    const double target = table.sum * q;
    // The first entry not below the target, at most the last. No entry is at least a NaN.
    const auto found = std::partition_point(table.entries.begin(), table.entries.end(),
                                            [=](double cumulative) { return !(cumulative >= target); });
    return found == table.entries.end() ? table.xlast
                                        : table.xfirst + static_cast<double>(found - table.entries.begin());
}

ORVANTH_API(void)
FNCHypergeometricMoments(int32_t n, int32_t m, int32_t N, double odds, double* mean, double* variance) {
    Throwing throwing;
    const FNCMoments moments = FNCExactMoments(FNCRecord(n, m, N, odds, kMomentsAccuracy));
    *mean = moments.mean;
    *variance = moments.variance;
}
