#include "random/erf_inv.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "random/erf_inv_rows.hpp"
#include "random/numeric_mode.hpp"

namespace orvanth {

// The intervals divide each binade of w = 1 - |x| in four; row 0 is next to w = 1.
constexpr double ErfInvCoefficientTable[kErfInvRows][kErfInvColumns] = {
#include "random/erf_inv_table.inc"
};

namespace {

using namespace erf_inv;

bool HasTable(double x) { return (Bits(x) & ~kSignBit) - kTableFrom < kOne - kTableFrom; }

// FromSixteenRows does the same, eight elements at a time; the bits agree.
double FromTable(double x) {
    const double v = std::fabs(x);
    const double w = 1.0 - v;
    const double e = (1.0 - w) - v;  // what rounding took from w, exactly
    const std::uint64_t bits = Bits(w);
    const double* const c = ErfInvCoefficientTable[kFirstInterval - (bits >> kIntervalShift)];

    const double m = Double((bits & kMantissaBelowQuarter) | kOne);
    const double reciprocal = Double(kReciprocal - (bits & kExponentBits));
    const double t0 = m - 1.125;
    const double t = t0 + e * reciprocal;
    const double high = Double(Bits(t0) & kHighBits);
    const double low = t - high;
    double q = c[kDegree];
    for (int j = kDegree - 1; j >= 0; --j) q = q * t + c[j];
    const double h = c[kHeadColumn], g = c[kSlopeColumn];
    const double aHigh = Double(Bits(h + g * high) & kHighBits);
    const double l = ((h - aHigh) + g * high) + g * low + q;

    const double xHigh = Double(Bits(x) & kHighBits);
    const double xLow = x - xHigh;
    return xHigh * aHigh + (xLow * aHigh + x * l);
}

double Special(double x, std::int32_t index) {
    constexpr const char* name = "vdErfInv";
    const double v = std::fabs(x);
    if (std::isnan(x)) return x + x;
    if (std::isinf(x))
        return ReportNumericError(kDomainError, index, x, std::numeric_limits<double>::quiet_NaN(), name);
    if (x == 0.0) return x;
    if (v < 2.9103830456733704e-11) {
        // sqrt(pi) / 2 in two parts; scaled so that tiny values stay exact.
        const double scaled = x * 0x1p256;
        return (scaled * 0.88623046875 + scaled * -3.543297241986351e-6) * 0x1p-256;
    }
    if (v == 1.0)
        return ReportNumericError(kSingularity, index, x, std::copysign(std::numeric_limits<double>::infinity(), x),
                                  name);
    return ReportNumericError(kDomainError, index, x, std::numeric_limits<double>::quiet_NaN(), name);
}

double ErfInvOf(double x, std::int32_t index) { return HasTable(x) ? FromTable(x) : Special(x, index); }

#ifdef ORVANTH_WIDE_VECTORS

constexpr std::uint64_t kLastOfFirst = std::bit_cast<std::uint64_t>(1.0 - 0x1p-4);
constexpr std::uint64_t kLastOfSecond = std::bit_cast<std::uint64_t>(1.0 - 0x1p-8);
constexpr SixteenRows kFirst = TakeSixteenRows(ErfInvCoefficientTable, kTableFrom, kLastOfFirst);
constexpr SixteenRows kSecond = TakeSixteenRows(ErfInvCoefficientTable + 16, kLastOfFirst + 1, kLastOfSecond);
constexpr std::int32_t kChunk = 1024;

// Fifteen of sixteen uniform arguments fall in the first sixteen rows, and of the others again in the next; what
// is left takes the portable road. `count` is at most kChunk and a multiple of kWideLanes.
void InSixteens(std::int32_t count, const double* arguments, double* values, std::int32_t firstIndex) {
    double others[kChunk + kWideLanes], results[kChunk], rare[kChunk + kWideLanes];
    std::int32_t places[kChunk + kWideLanes], rarePlaces[kChunk + kWideLanes];
    const std::int32_t left = FromSixteenRows(kFirst, count, arguments, values, others, places);
    const std::int32_t padded = (left + kWideLanes - 1) & ~(kWideLanes - 1);
    const std::int32_t rareLeft = FromSixteenRows(kSecond, padded, others, results, rare, rarePlaces);
    for (std::int32_t j = 0; j < left; ++j) values[places[j]] = results[j];
    for (std::int32_t j = 0; j < rareLeft; ++j) {
        if (rarePlaces[j] >= left) break;  // padding
        const std::int32_t place = places[rarePlaces[j]];
        values[place] = ErfInvOf(rare[j], firstIndex + place);
    }
}

#endif

}  // namespace

void vdErfInv(std::int32_t count, const double* arguments, double* values) {
    std::int32_t done = 0;
#ifdef ORVANTH_WIDE_VECTORS
    if (HasWideVectors())
        while (count - done >= kWideLanes) {
            const std::int32_t n = std::min(count - done, kChunk) & ~(kWideLanes - 1);
            InSixteens(n, arguments + done, values + done, done);
            done += n;
        }
#endif
    for (; done < count; ++done) values[done] = ErfInvOf(arguments[done], done);
}

void ErfInvPortable(std::int32_t count, const double* arguments, double* values) {
    for (std::int32_t i = 0; i < count; ++i) values[i] = ErfInvOf(arguments[i], i);
}

}  // namespace orvanth
