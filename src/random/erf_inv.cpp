#include "random/erf_inv.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>

#include "random/erf_inv_rows.hpp"

namespace orvanth {

// The intervals divide each binade of w = 1 - |x| in four; row 0 is next to w = 1.
constexpr double ErfInvCoefficientTable[kErfInvRows][kErfInvColumns] = {
#include "random/erf_inv_table.inc"
};

namespace {

using namespace erf_inv;

bool HasRow(double x) { return (Bits(x) & ~kSignBit) - kTableFrom < kOne - kTableFrom; }

// One element by its row of the table. FromSixteenRows runs the same operations on eight elements at a time.
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

// NaN beyond -1 to 1, `atOne` with the sign of x at the ends, and x itself or its multiple near 0.
double Special(double x, double atOne) {
    const double v = std::fabs(x);
    if (v == 1.0) return std::copysign(atOne, x);
    if (!(v < 1.0)) return std::numeric_limits<double>::quiet_NaN();
    if (x == 0.0) return x;
    // sqrt(pi) / 2 in two parts. The argument is scaled so that tiny values lose no digit.
    const double scaled = x * 0x1p256;
    return (scaled * 0.88623046875 + scaled * -3.543297241986351e-6) * 0x1p-256;
}

double ErfInvOf(double x, double atOne) { return HasRow(x) ? FromTable(x) : Special(x, atOne); }

#ifdef ORVANTH_WIDE_VECTORS

constexpr std::uint64_t kLastOfFirst = std::bit_cast<std::uint64_t>(1.0 - 0x1p-4);
constexpr std::uint64_t kLastOfSecond = std::bit_cast<std::uint64_t>(1.0 - 0x1p-8);
constexpr SixteenRows kFirst = TakeSixteenRows(ErfInvCoefficientTable, kTableFrom, kLastOfFirst);
constexpr SixteenRows kSecond = TakeSixteenRows(ErfInvCoefficientTable + 16, kLastOfFirst + 1, kLastOfSecond);
constexpr std::size_t kChunk = 1024;

// Of uniform arguments fifteen in sixteen fall in the first sixteen rows, and of the others fifteen in sixteen in the
// next. What is left goes one by one. The count is at most kChunk and a multiple of kWideLanes.
void InSixteens(std::int32_t count, const double* arguments, double* values, double atOne) {
    double others[kChunk + kWideLanes], results[kChunk], rare[kChunk + kWideLanes];
    std::int32_t places[kChunk + kWideLanes], rarePlaces[kChunk + kWideLanes];
    const std::int32_t left = FromSixteenRows(kFirst, count, arguments, values, others, places);
    const std::int32_t padded = (left + kWideLanes - 1) & ~(kWideLanes - 1);
    const std::int32_t rareLeft = FromSixteenRows(kSecond, padded, others, results, rare, rarePlaces);
    for (std::int32_t j = 0; j < left; ++j) values[places[j]] = results[j];
    for (std::int32_t j = 0; j < rareLeft; ++j) {
        if (rarePlaces[j] >= left) break;  // padding
        values[places[rarePlaces[j]]] = ErfInvOf(rare[j], atOne);
    }
}

#endif

}  // namespace

void ErfInv(std::span<const double> arguments, double* values, double atOne) {
#ifdef ORVANTH_WIDE_VECTORS
    if (HasWideVectors())
        while (arguments.size() >= kWideLanes) {
            const std::size_t n = std::min(arguments.size(), kChunk) & ~(std::size_t{kWideLanes} - 1);
            InSixteens(static_cast<std::int32_t>(n), arguments.data(), values, atOne);
            arguments = arguments.subspan(n);
            values += n;
        }
#endif
    ErfInvOneByOne(arguments, values, atOne);
}

void ErfInvOneByOne(std::span<const double> arguments, double* values, double atOne) {
    for (const double x : arguments) *values++ = ErfInvOf(x, atOne);
}

}  // namespace orvanth
