#include "random/erf_inv.hpp"

#include <bit>
#include <cmath>
#include <limits>

#include "frame/platform.hpp"
#include "random/numeric_mode.hpp"

namespace orvanth {

// The intervals divide each binade of w = 1 - |x| in four; row 0 is next to w = 1.
const double ErfInvCoefficientTable[kErfInvRows][kErfInvColumns] = {
#include "random/erf_inv_table.inc"
};

namespace {

constexpr std::uint64_t kSignBit = 0x8000000000000000u;
constexpr std::uint64_t kHighBits = ~((std::uint64_t{1} << 27) - 1);
constexpr std::uint64_t kMantissaBelowQuarter = 0x0003FFFFFFFFFFFFu;
constexpr std::uint64_t kOne = 0x3FF0000000000000u;
constexpr std::uint64_t kFirstInterval = 0xFFB;
constexpr int kIntervalShift = 50;
constexpr int kDegree = 12;  // the table's fit; its two further columns are zero

// From this magnitude on, and below 1, the table serves.
constexpr std::uint64_t kTableFrom = 0x3CA0000100000000u;

double Bits(std::uint64_t bits) { return std::bit_cast<double>(bits); }
std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }
double HighPart(double value) { return Bits(Bits(value) & kHighBits); }

bool HasTable(double x) { return (Bits(x) & ~kSignBit) - kTableFrom < kOne - kTableFrom; }

// Elements outside the table are computed with any row and overwritten by the caller, so that the
// loop has no branches.
ORVANTH_VECTOR_CLONES
void FromTable(std::int32_t count, const double* arguments, double* values) {
    for (std::int32_t i = 0; i < count; ++i) {
        const double x = arguments[i];
        const double v = Bits(Bits(x) & ~kSignBit);
        const double w = 1.0 - v;
        const double e = (1.0 - w) - v;  // what rounding took from w, exactly
        const std::uint64_t bits = Bits(w);
        std::uint64_t k = kFirstInterval - (bits >> kIntervalShift);
        k = k < kErfInvRows ? k : 0;
        const double* const c = ErfInvCoefficientTable[k];

        const double m = Bits((bits & kMantissaBelowQuarter) | kOne);
        const double reciprocal = Bits((std::uint64_t{2046} << 52) - (bits & 0x7FF0000000000000u));
        const double t0 = m - 1.125;
        const double t = t0 + e * reciprocal;
        const double high = HighPart(t0);
        const double low = t - high;
        const double h = c[15], g = c[16];
        const double aHigh = HighPart(h + g * high);
        double q = c[kDegree];
        for (int j = kDegree - 1; j >= 0; --j) q = q * t + c[j];
        const double l = ((h - aHigh) + g * high) + g * low + q;

        const double xHigh = HighPart(x);
        const double xLow = x - xHigh;
        values[i] = xHigh * aHigh + (xLow * aHigh + x * l);
    }
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

}  // namespace

void vdErfInv(std::int32_t count, const double* arguments, double* values) {
    constexpr std::int32_t kChunk = 256;
    double results[kChunk];
    for (std::int32_t done = 0; done < count; done += kChunk) {
        const std::int32_t n = count - done < kChunk ? count - done : kChunk;
        FromTable(n, arguments + done, results);
        for (std::int32_t i = 0; i < n; ++i)
            values[done + i] = HasTable(arguments[done + i]) ? results[i] : Special(arguments[done + i], done + i);
    }
}

}  // namespace orvanth
