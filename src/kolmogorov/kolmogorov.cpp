#include "kolmogorov/kolmogorov.hpp"

#include <cmath>
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

constexpr std::int32_t kLargestRecursion = 140;
constexpr std::int32_t kLargestMatrix = 100000;
constexpr int kEvaluations = 100;

// -1 where no 32-bit n >= 0 belongs to the host's number, a NaN included.
std::int32_t Truncated(double n) { return n > -1.0 && n < 2147483648.0 ? static_cast<std::int32_t>(n) : -1; }

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
        const double value = Tail(complement, Truncated(n), x);
        return complement ? p - value : value - p;
    }
};

// No x reaches p, so the walk would double or halve to its cap without a change of sign. It is not
// taken: this Boost's walk speeds up on the way, and reaches 0, where it answers, before its cap.
double RaiseUnbracketed(const KolmogorovRootFunction& function, double start) {
    const bool up = function.complement ? function.p < 0 : function.p > 1;
    const double last = std::ldexp(start, up ? kEvaluations - 1 : 1 - kEvaluations);
    return RaiseEvaluation("boost::math::tools::bracket_and_solve_root<%1%>",
                           "Unable to bracket root, last nearest value was %1%", last);
}

}  // namespace

// Limits in w = n x x. What is small is computed directly; the other tail refers to it.
double KolmogorovCumulative(std::int32_t n, double x) {
    const double special = KolmogorovCumulativeSpecial(n, x);
    if (special >= 0.0) return special;
    const double w = (n * x) * x;
    if (n <= kLargestRecursion) {
        if (w < 0.754693) return DurbinMatrix(n, x);
        if (w < 4.0) return Pomeranz(n, x);
        return 1.0 - KolmogorovComplement(n, x);
    }
    // n^2 x^3, not w: the matrix grows with n x, and this keeps it small.
    if (!((w * x) * n > 2.0) && n <= kLargestMatrix) return DurbinMatrix(n, x);
    return PelzGood(n, x);
}

double KolmogorovComplement(std::int32_t n, double x) {
    const double special = KolmogorovComplementSpecial(n, x);
    if (special >= 0.0) return special;
    const double w = (n * x) * x;
    // The limits differ on purpose, and the doubled one-sided tail neglects the overlap of the two.
    if (w >= (n <= kLargestRecursion ? 4.0 : 2.2)) return 2.0 * SmirnovUpperTail(n, x);
    return 1.0 - KolmogorovCumulative(n, x);
}

}  // namespace orvanth::kolmogorov

using namespace orvanth;

ORVANTH_API(double) KolmogorovCDF(double x, double n, int32_t complement) {
    Throwing throwing;
    const bool upper = IsWholeWordSet(complement);
    if (x < 0) return upper ? 1.0 : 0.0;
    return kolmogorov::Tail(upper, kolmogorov::Truncated(n), x);
}

ORVANTH_API(double) KolmogorovICDF(double p, double n, int32_t complement) {
    Throwing throwing;
    const kolmogorov::KolmogorovRootFunction function{IsWholeWordSet(complement), p, n};
    const double start = 1.36 / std::sqrt(n);
    if (!(p >= 0 && p <= 1) || kolmogorov::Truncated(n) < 0) return kolmogorov::RaiseUnbracketed(function, start);
    std::uintmax_t evaluations = kolmogorov::kEvaluations;
    const auto [a, b] = boost::math::tools::bracket_and_solve_root(
        function, start, 2.0, true, boost::math::tools::eps_tolerance<double>(24), evaluations, DefaultPolicy());
    return (b - a) * 0.5 + a;
}
