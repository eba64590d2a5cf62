#include <cmath>
#include <cstdint>
#include <limits>

#include "distributions/hypergeometric_kernel.hpp"
#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"

namespace {

using namespace orvanth;

constexpr const char* kDistribution = "boost::math::hypergeometric_distribution<%1%>::hypergeometric_distribution";
constexpr const char* kPdf = "boost::math::pdf(const hypergeometric_distribution<%1%>&, const %1%&)";
constexpr const char* kCdf = "boost::math::cdf(const hypergeometric_distribution<%1%>&, const %1%&)";
constexpr const char* kQuantile = "boost::math::quantile(const hypergeometric_distribution<%1%>&, %1%)";
constexpr const char* kUpperQuantile = "quantile(const complemented2_type<hypergeometric_distribution<%1%>, %1%>&)";

// Cut off towards zero. Outside the unsigned range there is no right answer; to have one at all,
// the count wraps around, and what is beyond 64 bits or no number gives 0.
std::int64_t NarrowCount(double count) {
    if (!(std::fabs(count) < 0x1p63)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(count));
}

HypergeometricCounts MakeCounts(double r, double n, double N) {
    const HypergeometricCounts counts = {NarrowCount(r), NarrowCount(n), NarrowCount(N)};
    if (counts.r > counts.N)
        RaiseDomain(kDistribution, "Parameter r out of range: must be <= N but got %1%",
                    static_cast<double>(counts.r));
    if (counts.n > counts.N)
        RaiseDomain(kDistribution, "Parameter n out of range: must be <= N but got %1%",
                    static_cast<double>(counts.n));
    return counts;
}

std::int32_t TruncateVariate(double x) {
    constexpr const char* message = "Value %1% can not be represented in the target integer type.";
    if (x > std::numeric_limits<std::int32_t>::min() - 1.0 && x < std::numeric_limits<std::int32_t>::max() + 1.0)
        return static_cast<std::int32_t>(x);
    if (std::isfinite(x)) RaiseRounding("boost::math::itrunc<%1%>(%1%)", message, x, "int");
    RaiseRounding("boost::math::trunc<%1%>(%1%)", message, x);
}

std::int64_t MakeVariate(const char* function, double x, const HypergeometricCounts& counts) {
    const std::uint32_t whole = static_cast<std::uint32_t>(TruncateVariate(x));
    // A negative whole number has become a large one here and fails as well.
    if (static_cast<double>(whole) != x)
        RaiseDomain(function, "Random variable out of range: must be an integer but got %1%", x);
    // Required: the lower end is told in 32 bits, so n + r - N beyond their signed range changes sign.
    const auto lower = static_cast<std::int32_t>(static_cast<std::uint32_t>(counts.n + counts.r - counts.N));
    if (lower > 0 && x < lower)
        RaiseDomain(function, "Random variable out of range: must be > 0 and > m + r - N but got %1%", x);
    if (whole > counts.Highest())
        RaiseDomain(function, "Random variable out of range: must be less than both n and r but got %1%", x);
    return whole;
}

}  // namespace

ORVANTH_API(double) HypergeometricPDF(double x, double r, double n, double N) {
    Throwing throwing;
    const HypergeometricCounts counts = MakeCounts(r, n, N);
    return HypergeometricProbability(MakeVariate(kPdf, x, counts), counts);
}

ORVANTH_API(double) HypergeometricCDF(double x, double r, double n, double N, TailFlag tail) {
    Throwing throwing;
    const HypergeometricCounts counts = MakeCounts(r, n, N);
    return HypergeometricTail(MakeVariate(kCdf, x, counts), counts, IsSet(tail));
}

ORVANTH_API(double) HypergeometricICDF(double p, double r, double n, double N, TailFlag tail) {
    Throwing throwing;
    const HypergeometricCounts counts = MakeCounts(r, n, N);
    if (!(p >= 0 && p <= 1))
        RaiseDomain(IsSet(tail) ? kUpperQuantile : kQuantile,
                    "Probability argument is %1%, but must be >= 0 and <= 1 !", p);
    return static_cast<double>(IsSet(tail) ? HypergeometricQuantile(1 - p, p, counts)
                                           : HypergeometricQuantile(p, 1 - p, counts));
}
