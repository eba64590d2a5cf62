#include <cstdint>
#include <new>

#include "frame/flags.hpp"
#include "frame/load_state.hpp"
#include "frame/policies.hpp"
#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "orvanth/noncentral_hypergeometric.h"

using namespace orvanth;

namespace {

constexpr double kMomentsAccuracy = 1e-08;

// A table on the heap, never released by itself: FNCHypergeometricCDF leaves its block on purpose.
struct Table {
    double* entries = nullptr;
    std::int32_t xfirst = 0;
    std::int32_t xlast = -1;
    double sum = FncInvalidValue;

    bool IsEmpty() const { return entries == nullptr; }
    double& At(std::int32_t x) { return entries[std::int64_t{x} - xfirst]; }
};

Table MakeTable(const FNCRecord& record) {
    Table table;
    const double cutoff = record.accuracy * 0.001;
    const std::int32_t length = FNCTruncate(FNCMakeTable(record, nullptr, 0, &table.xfirst, &table.xlast, cutoff));
    // No distribution, or a length that inconsistent arguments made senseless: no table.
    if (length < 1) return table;
    table.entries = new double[static_cast<std::size_t>(length)];
    table.sum = FNCMakeTable(record, table.entries, length, &table.xfirst, &table.xlast, cutoff);
    return table;
}

}  // namespace

ORVANTH_API(double)
FNCHypergeometricCDF(int32_t x, int32_t n, int32_t m, int32_t N, double odds, TailFlag tail, double accuracy) {
    Throwing throwing;
    const FNCRecord record(n, m, N, odds, accuracy);
    Table table = MakeTable(record);  // required: this export never releases it
    if (table.IsEmpty()) return FncInvalidValue;
    const double r = 1.0 / table.sum;
    const std::int32_t xm = FNCTruncate(FNCMean(record) + 0.5);
    if (xm < table.xfirst || xm > table.xlast) return FncInvalidValue;
    // Tail sums from both ends that meet at the rounded mean, so that neither tail is a difference.
    double running = 0.0;
    for (std::int32_t k = table.xfirst; k <= xm; ++k) table.At(k) = running += table.At(k);
    running = 0.0;
    for (std::int32_t k = table.xlast; k > xm; --k) table.At(k) = running += table.At(k);
    if (x <= xm) {
        const double lower = x >= table.xfirst ? table.At(x) * r : 0.0;
        return IsSet(tail) ? 1.0 - lower : lower;
    }
    const double upper = x < table.xlast ? table.At(x + 1) * r : 0.0;
    return IsSet(tail) ? upper : 1.0 - upper;
}

ORVANTH_API(double)
FNCHypergeometricICDF(double p, int32_t n, int32_t m, int32_t N, double odds, TailFlag tail, double accuracy) {
    Throwing throwing;
    const FNCRecord record(n, m, N, odds, accuracy);
    Table table = MakeTable(record);
    if (table.IsEmpty()) return FncInvalidValue;
    double running = 0.0;
    for (std::int32_t k = table.xfirst; k <= table.xlast; ++k) table.At(k) = running += table.At(k);
    const double q = IsSet(tail) ? 1.0 - p : p;
    const double target = table.sum * q;
    // The first entry not below the target; a NaN compares false throughout and ends at xlast.
    std::uint32_t low = 0;
    std::uint32_t high = static_cast<std::uint32_t>(table.xlast - table.xfirst) + 1;
    while (low < high) {
        const std::uint32_t mid = (low + high) / 2;
        if (table.entries[mid] >= target)
            high = mid;
        else
            low = mid + 1;
    }
    const std::int64_t found = std::int64_t{low} + table.xfirst;
    const double result = static_cast<double>(found > table.xlast ? table.xlast : found);
    delete[] table.entries;
    return result;
}

ORVANTH_API(void)
FNCHypergeometricMoments(int32_t n, int32_t m, int32_t N, double odds, double* mean, double* variance) {
    Throwing throwing;
    FNCRecord record(n, m, N, odds, kMomentsAccuracy);
    FNCExactMoments(record, mean, variance);
}
