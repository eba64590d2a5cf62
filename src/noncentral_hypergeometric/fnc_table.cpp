#include "noncentral_hypergeometric/fnc_table.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "noncentral_hypergeometric/wrap.hpp"

namespace orvanth {

namespace {

// Two-sided normal tails at 3.0, 3.5, ... 7.5 standard deviations.
constexpr std::array<double, 10> FNCNumSDTable = {2.699796e-03, 4.652582e-04, 6.334248e-05, 6.795346e-06,
                                                  5.733031e-07, 3.797912e-08, 1.973175e-09, 8.032001e-11,
                                                  2.559625e-12, 6.381783e-14};
constexpr std::int32_t kLeastNumSD = 6;

constexpr std::int64_t kAlwaysWhole = 200;  // supports up to this length get a whole table

// In 64 bits, because the arguments of an export may lead beyond 32. low > high if the counts are inconsistent.
struct Support {
    explicit Support(const FNCRecord& r)
        : L0(std::int64_t{r.n} + r.m - r.N), low(std::max<std::int64_t>(L0, 0)), high(std::min(r.n, r.m)) {}
    std::int64_t L0;  // n + m - N, may be negative
    std::int64_t low;
    std::int64_t high;
};

// The only value that has a probability above 0, if there is one.
std::optional<std::int32_t> OnlyValue(const FNCRecord& r, const Support& support) {
    if (support.low == support.high) return static_cast<std::int32_t>(support.low);
    if (r.odds <= 0.0) return 0;
    return std::nullopt;
}

// Rounding can put the mode one step outside the support when the odds are above 1e15 or below 1e-15. The nearer end
// of the support is the mode then.
std::int64_t Mode(const FNCRecord& r, const Support& support) {
    const double n = r.n, m = r.m, N = r.N, L0 = static_cast<double>(support.L0);
    double mode;
    if (FNCHasCentralEstimates(r)) {
        mode = (n + 1.0) * (m + 1.0) / (N + 2.0);
    } else {
        const double A = 1.0 - r.odds;
        const double B = (m + n + 2.0) * r.odds - L0;
        const double D = B * B + 4.0 * A * (n + 1.0) * (m + 1.0) * r.odds;
        const double S = D > 0.0 ? std::sqrt(D) : 0.0;
        mode = (S - B) / (2.0 * A);
    }
    return std::clamp<std::int64_t>(FNCTruncate(mode), support.low, support.high);
}

}  // namespace

std::int32_t FNCNumSD(double accuracy) {
    const auto* const enough =
        std::find_if(FNCNumSDTable.begin(), FNCNumSDTable.end(), [=](double tail) { return accuracy >= tail; });
    return static_cast<std::int32_t>(enough - FNCNumSDTable.begin()) + kLeastNumSD;
}

std::optional<std::int32_t> FNCTableLength(const FNCRecord& r) {
    const Support support(r);
    if (support.low == support.high) return 1;
    if (r.odds <= 0.0) return r.n > std::int64_t{r.N} - r.m ? std::nullopt : std::optional<std::int32_t>(1);
    if (support.low > support.high) return std::nullopt;
    const std::int64_t whole = support.high - support.low + 1;
    if (whole <= kAlwaysWhole) return static_cast<std::int32_t>(whole);
    const std::int32_t wanted = FNCTruncate(std::sqrt(FNCVariance(r)) * FNCNumSD(r.accuracy) + 0.5);
    if (wanted < 0) return std::nullopt;
    // A deviation that rounds to no entry still has the mode.
    return static_cast<std::int32_t>(std::min<std::int64_t>(whole, std::max(wanted, 1)));
}

FNCTable FNCMakeTable(const FNCRecord& r, double cutoff, std::span<double> storage) {
    const Support support(r);
    double* const table = storage.data();
    if (const std::optional<std::int32_t> only = OnlyValue(r, support)) {
        table[0] = 1.0;
        return {storage.first(1), *only, *only, 1.0};
    }
    const std::int64_t lo = support.low, hi = support.high, x = Mode(r, support);
    const std::int64_t length = static_cast<std::int64_t>(storage.size());
    const std::int64_t half = length / 2;
    // The places of the mode and of both ends. A table shorter than the support has the mode in its middle, or lies
    // against an end of the support.
    std::int64_t i1 = x - lo;
    if (i1 > half) i1 = hi - x > half ? half : std::max<std::int64_t>(length - 1 + x - hi, 0);
    std::int64_t i0 = std::max<std::int64_t>(lo + i1 - x, 0);
    std::int64_t i2 = std::min<std::int64_t>(hi + i1 - x, length - 1);

    const double n = r.n, m = r.m, xd = static_cast<double>(x), L0 = static_cast<double>(support.L0);
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
    return {storage.first(static_cast<std::size_t>(i2) + 1), static_cast<std::int32_t>(x - i1),
            static_cast<std::int32_t>(x - i1 + i2), sum};
}

}  // namespace orvanth
