#include "noncentral_hypergeometric/fnc_table.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "frame/load_state.hpp"

namespace orvanth {

namespace {

// Two-sided normal tails at 3.0, 3.5, ... 7.5 standard deviations.
constexpr std::array<double, 10> FNCNumSDTable = {2.699796e-03, 4.652582e-04, 6.334248e-05, 6.795346e-06,
                                                  5.733031e-07, 3.797912e-08, 1.973175e-09, 8.032001e-11,
                                                  2.559625e-12, 6.381783e-14};

constexpr std::int32_t kAlwaysWhole = 200;  // supports up to this length get a whole table

std::int32_t Mode(const FNCRecord& r, double L0) {
    const double n = r.n, m = r.m, N = r.N;
    if (r.odds == 1.0) return FNCTruncate((n + 1.0) * (m + 1.0) / (N + 2.0));
    const double A = 1.0 - r.odds;
    const double B = (m + n + 2.0) * r.odds - L0;
    const double D = B * B + 4.0 * A * (n + 1.0) * (m + 1.0) * r.odds;
    const double S = D > 0.0 ? std::sqrt(D) : 0.0;
    return FNCTruncate((S - B) / (2.0 * A));
}

double SingleValue(std::int32_t value, double* table, std::int32_t maxLength, std::int32_t* xfirst,
                   std::int32_t* xlast) {
    if (maxLength != 0) {
        *xfirst = *xlast = value;
        table[0] = 1.0;
    } else if (xfirst != nullptr) {
        *xfirst = 1;
    }
    return 1.0;
}

double Length(const FNCRecord& r, std::int64_t support, std::int32_t* xfirst) {
    if (support > kAlwaysWhole) {
        const double wanted = std::sqrt(FNCVariance(r)) * FNCNumSD(r.accuracy) + 0.5;
        support = std::min<std::int64_t>(support, FNCTruncate(wanted));
    }
    if (xfirst != nullptr) *xfirst = 1;
    return static_cast<double>(support);
}

double Fill(const FNCRecord& r, double* table, std::int64_t length, std::int64_t x, std::int64_t lo, std::int64_t hi,
            double L0, double cutoff, std::int32_t* xfirst, std::int32_t* xlast) {
    const std::int64_t half = length / 2;
    std::int64_t i1 = x - lo;
    if (i1 > half) i1 = hi - x > half ? half : std::max<std::int64_t>(length - 1 + x - hi, 0);
    std::int64_t i0 = std::max<std::int64_t>(lo + i1 - x, 0);
    std::int64_t i2 = std::min<std::int64_t>(hi + i1 - x, length - 1);
    // A mode outside [lo, hi], which only inconsistent arguments give, has no place in the table.
    i1 = std::clamp<std::int64_t>(i1, 0, length - 1);

    const double n = r.n, m = r.m, xd = static_cast<double>(x);
    table[i1] = 1.0;
    double sum = 1.0;
    double a = m - xd + 1.0, b = n - xd + 1.0, c = xd, d = xd - L0, f = 1.0;
    for (std::int64_t j = i1 - 1; j >= i0; --j) {
        f = (d * c) / (b * a * r.odds) * f;
        ++a, ++b, --c, --d;
        table[j] = f;
        sum += f;
        if (cutoff > f) {
            i0 = j;
            break;
        }
    }
    if (i0 > 0) {
        std::copy(table + i0, table + i1 + 1, table);
        i1 -= i0;
        i2 -= i0;
        i0 = 0;
    }
    a = m - xd, b = n - xd, c = xd + 1.0, d = xd + 1.0 - L0, f = 1.0;
    for (std::int64_t j = i1 + 1; j <= i2; ++j) {
        f = f * (b * a * r.odds) / (d * c);
        --a, --b, ++c, ++d;
        table[j] = f;
        sum += f;
        if (cutoff > f) {
            i2 = j;
            break;
        }
    }
    *xfirst = static_cast<std::int32_t>(i0 - i1 + x);
    *xlast = static_cast<std::int32_t>(i2 - i1 + x);
    return sum;
}

}  // namespace

std::int32_t FNCNumSD(double accuracy) {
    std::int32_t i = 0;
    while (i < 10 && !(accuracy >= FNCNumSDTable[static_cast<std::size_t>(i)])) ++i;
    return i + 6;
}

double FNCMakeTable(const FNCRecord& r, double* table, std::int32_t maxLength, std::int32_t* xfirst,
                    std::int32_t* xlast, double cutoff) {
    const std::int64_t L0 = std::int64_t{r.n} + r.m - r.N;
    const std::int64_t lo = std::max<std::int64_t>(L0, 0);
    const std::int64_t hi = std::min(r.n, r.m);
    const std::int32_t mode = Mode(r, static_cast<double>(L0));
    if (lo == hi) return SingleValue(static_cast<std::int32_t>(lo), table, maxLength, xfirst, xlast);
    if (r.odds <= 0.0) {
        if (r.n > std::int64_t{r.N} - r.m) return FncInvalidValue;
        return SingleValue(0, table, maxLength, xfirst, xlast);
    }
    if (maxLength <= 0) return Length(r, hi - lo + 1, xfirst);
    return Fill(r, table, maxLength, mode, lo, hi, static_cast<double>(L0), cutoff, xfirst, xlast);
}

}  // namespace orvanth
