#include "kolmogorov/kolmogorov.hpp"

#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include <boost/math/tools/toms748_solve.hpp>

#include "frame/flags.hpp"
#include "frame/policies.hpp"
#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/pelz_good.hpp"
#include "kolmogorov/pomeranz.hpp"
#include "kolmogorov/tails.hpp"
#include "orvanth/kolmogorov.h"

namespace orvanth::kolmogorov {

namespace {

// The recursion costs n^2 steps or more and serves samples up to this size; above it the series is good to 3e-5.
constexpr std::int32_t kLargestRecursion = 140;
// The matrix ends with n dependent divisions.
constexpr std::int32_t kLargestMatrix = 100000;

// Borders in w = n x^2, for n up to 140 and above it. The matrix is the cheaper exact method below the first. From
// the other two on, the doubled one-sided tail is closer to P(D_n > x) than one minus the other tail: what it
// neglects, the probability of both one-sided events, is about exp(-8 w). The two differ on purpose.
constexpr double kMatrixBelow = 0.754693;
constexpr double kTailsFromSmall = 4.0;
constexpr double kTailsFromLarge = 2.2;
// Border in n^2 x^3 for n above 140: the matrix has about 2 n x rows, and this bounds its cost.
constexpr double kMatrixUpTo = 2.0;

struct Point {
    std::int32_t n;
    double x;
    double w;  // n x^2
};

enum class Method {
    kMatrix,         // Durbin (1973)
    kRecursion,      // Pomeranz (1974)
    kSeries,         // Pelz and Good (1976)
    kOneSidedTails,  // twice the one-sided tail of Smirnov (1944)
    kOneMinusOther,  // one minus the other tail
};

struct Region {
    bool (*contains)(const Point& p);
    Method cumulative;
    Method complement;
};

// The decision table. The first region that contains the point counts.
constexpr Region kRegions[] = {
    {[](const Point& p) { return p.n <= kLargestRecursion && p.w < kMatrixBelow; },  //
     Method::kMatrix, Method::kOneMinusOther},
    {[](const Point& p) { return p.n <= kLargestRecursion && p.w < kTailsFromSmall; },  //
     Method::kRecursion, Method::kOneMinusOther},
    {[](const Point& p) { return p.n <= kLargestRecursion; },  //
     Method::kOneMinusOther, Method::kOneSidedTails},
    {[](const Point& p) { return p.n <= kLargestMatrix && !((p.w * p.x) * p.n > kMatrixUpTo); },  //
     Method::kMatrix, Method::kOneMinusOther},
    {[](const Point& p) { return p.w < kTailsFromLarge; },  //
     Method::kSeries, Method::kOneMinusOther},
    {[](const Point&) { return true; },  //
     Method::kSeries, Method::kOneSidedTails},
};

const Region& RegionOf(std::int32_t n, double x) {
    const Point point{n, x, (n * x) * x};
    const Region* region = kRegions;
    while (!region->contains(point)) ++region;
    return *region;
}

double Evaluate(Method method, std::int32_t n, double x) {
    switch (method) {
        case Method::kMatrix:
            return DurbinMatrix(n, x);
        case Method::kRecursion:
            return Pomeranz(n, x);
        case Method::kSeries:
            return PelzGood(n, x);
        default:
            return 2.0 * SmirnovUpperTail(n, x);
    }
}

// The sample size that the host's number stands for: its whole part. -1 if no 32-bit integer from 0 on is that.
std::int32_t SampleSize(double n) { return n > -1.0 && n < 2147483648.0 ? static_cast<std::int32_t>(n) : -1; }

double Tail(bool complement, std::int32_t n, double x) {
    if (n < 0 || std::isnan(x)) return kNaN;
    return complement ? KolmogorovComplement(n, x) : KolmogorovCumulative(n, x);
}

// Rises with x in both forms.
struct KolmogorovRootFunction {
    bool complement;
    double p;
    double n;

    double operator()(double x) const {
        const double value = Tail(complement, SampleSize(n), x);
        return complement ? p - value : value - p;
    }
};

constexpr std::uintmax_t kEvaluations = 100;
constexpr double kGrowth = 2.0;
constexpr int kQuantileBits = 24;

// The walk of the search takes 99 steps after its start. The factor of a step is 2 at first and doubles before every
// twentieth step, so the last point lies 19 * 1 + 20 * (2 + 3 + 4 + 5) binary places from the start.
constexpr int kWalkedPlaces = 299;

// No x reaches p: the walk would end at its cap without a change of sign. The failure is raised before the search,
// because the search would accept a point where the walk has underflowed to 0.
double RaiseUnbracketed(const KolmogorovRootFunction& function, double start) {
    const bool up = function.complement ? function.p < 0 : function.p > 1;
    const double last = std::ldexp(start, up ? kWalkedPlaces : -kWalkedPlaces);
    return RaiseEvaluation("boost::math::tools::bracket_and_solve_root<%1%>",
                           "Unable to bracket root, last nearest value was %1%", last);
}

}  // namespace

double KolmogorovCumulative(std::int32_t n, double x) {
    if (const std::optional<double> closed = KolmogorovCumulativeSpecial(n, x)) return *closed;
    const Method method = RegionOf(n, x).cumulative;
    return method == Method::kOneMinusOther ? 1.0 - KolmogorovComplement(n, x) : Evaluate(method, n, x);
}

double KolmogorovComplement(std::int32_t n, double x) {
    if (const std::optional<double> closed = KolmogorovComplementSpecial(n, x)) return *closed;
    const Method method = RegionOf(n, x).complement;
    return method == Method::kOneMinusOther ? 1.0 - KolmogorovCumulative(n, x) : Evaluate(method, n, x);
}

}  // namespace orvanth::kolmogorov

using namespace orvanth;

ORVANTH_API(double) KolmogorovCDF(double x, double n, int32_t complement) {
    Throwing throwing;
    const bool upper = IsWholeWordSet(complement);
    if (x < 0) return upper ? 1.0 : 0.0;
    return kolmogorov::Tail(upper, kolmogorov::SampleSize(n), x);
}

ORVANTH_API(double) KolmogorovICDF(double p, double n, int32_t complement) {
    Throwing throwing;
    const kolmogorov::KolmogorovRootFunction function{IsWholeWordSet(complement), p, n};
    const double start = 1.36 / std::sqrt(n);
    if (!(p >= 0 && p <= 1) || kolmogorov::SampleSize(n) < 0) return kolmogorov::RaiseUnbracketed(function, start);
    std::uintmax_t evaluations = kolmogorov::kEvaluations;
    const auto [a, b] = boost::math::tools::bracket_and_solve_root(
        function, start, kolmogorov::kGrowth, true,
        boost::math::tools::eps_tolerance<double>(kolmogorov::kQuantileBits), evaluations, DefaultPolicy());
    return (b - a) * 0.5 + a;
}
