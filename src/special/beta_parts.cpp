#include "special/beta_parts.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

#include "frame/boost_detail.hpp"

namespace orvanth {

namespace {

using Lanczos = boost::math::lanczos::lanczos13m53;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// A parameter with the shift of the Lanczos approximation.
double Shifted(double a) { return a + Lanczos::g() - 0.5; }

double LanczosQuotient(double a, double b) {
    return Lanczos::lanczos_sum_expG_scaled(a + b) /
           (Lanczos::lanczos_sum_expG_scaled(a) * Lanczos::lanczos_sum_expG_scaled(b));
}

double OddFactorial(unsigned n) { return boost::math::unchecked_factorial<double>(2 * n + 1); }

double Log1p(double x) { return boost::math::log1p(x, DefaultPolicy()); }

// base^exponent for base = 1 + l.
double PowerNearOne(double base, double l, double exponent) {
    return std::fabs(l) < 0.1 ? std::exp(exponent * Log1p(l)) : std::pow(base, exponent);
}

// ln((1 + l1)^a (1 + l2)^b) where one power is large and the other small: one is moved into the base of the other.
double LogOfOpposed(double a, double b, double l1, double l2) {
    const double ratio = b / a;
    if (a < b ? ratio * l2 < 0.1 : l1 / ratio > 0.1) {
        const double l3 = boost::math::expm1(ratio * Log1p(l2), DefaultPolicy());
        return a * Log1p(l1 + l3 + l3 * l1);
    }
    const double l3 = boost::math::expm1(Log1p(l1) / ratio, DefaultPolicy());
    return b * Log1p(l2 + l3 + l3 * l2);
}

// x^a exp(-x) / Gamma(a). Half of all tails of Student's t need Gamma(1/2), so it is kept.
double PrefixOfGamma(double a, double x) {
    if (a != 0.5 || !(x >= 0 && x <= std::numeric_limits<double>::max() / 2)) return GammaPrefix(a, x);
    static const double gammaOfHalf = UncheckedGamma(0.5);
    return std::pow(x, a) * std::exp(-x) / gammaOfHalf;
}

// One division instruction for both quotients.
using Pair = double __attribute__((vector_size(16)));

}  // namespace

bool IsPowerInRange(double base, double exponent) {
    constexpr double kSafeLogarithm = 700;
    const auto biased = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(base) >> 52);  // with the sign
    if (biased < 1 || biased > 2046) return false;
    const auto e = static_cast<double>(biased - 1023);
    return (std::fabs(e) + 1) * std::numbers::ln2 * std::fabs(exponent) < kSafeLogarithm;
}

std::optional<double> FastBetaPowerTerms(double a, double b, double x, double y, double factor) {
    const double as = Shifted(a), bs = Shifted(b), cs = Shifted(a + b);
    const auto leading = [=] {
        const double quotient = LanczosQuotient(a, b) * factor;
        return quotient * std::sqrt(bs / std::numbers::e) * std::sqrt(as / cs);
    };
    // The bases of the two powers are 1 + l1 and 1 + l2.
    const double l1 = (x * b - y * as) / as, l2 = (y * a - x * bs) / bs;
    const double first = x * cs / as, second = y * cs / bs;
    if (std::min(std::fabs(l1), std::fabs(l2)) < 0.2) {
        if (l1 * l2 > 0 || std::min(a, b) < 1)
            return leading() * PowerNearOne(first, l1, a) * PowerNearOne(second, l2, b);
        if (std::max(std::fabs(l1), std::fabs(l2)) < 0.5) return leading() * std::exp(LogOfOpposed(a, b, l1, l2));
        return {};
    }
    if (!IsPowerInRange(first, a) || !IsPowerInRange(second, b)) return {};
    return leading() * (std::pow(first, a) * std::pow(second, b));
}

std::optional<double> FastBetaSeriesFactor(double a, double b, double x) {
    const double as = Shifted(a), bs = Shifted(b), cs = Shifted(a + b);
    const double second = cs / bs, first = x * cs / as;
    if (!IsPowerInRange(second, b - 0.5) || !IsPowerInRange(first, a)) return {};
    double result = LanczosQuotient(a, b);
    if (a * b < bs * 10)
        result *= std::exp((b - 0.5) * Log1p(a / bs));
    else
        result *= std::pow(second, b - 0.5);
    result *= std::pow(first, a);
    return result * std::sqrt(as / std::numbers::e);
}

// Two terms at a time. a + n and 1 - b + n grow by additions of 1, whose rounding is part of the result.
BetaSum SumBetaSeries(double a, double b, double x, double factor, double start, std::uintmax_t mostTerms) {
    double sum = start, coefficient = factor, shape = a, rising = 1 - b, n = 1;
    const auto isLast = [&sum](double term) {
        sum += term;
        return !(std::fabs(kEpsilon * sum) < std::fabs(term));
    };
    for (std::uintmax_t left = mostTerms; left > 0; left -= std::min<std::uintmax_t>(left, 2)) {
        const double nextShape = shape + 1, nextRising = rising + 1;
        const Pair growth = Pair{rising * x, nextRising * x} / Pair{n, n + 1};
        const double nextCoefficient = coefficient * growth[0];
        const Pair term = Pair{coefficient, nextCoefficient} / Pair{shape, nextShape};
        if (isLast(term[0])) return {sum, true};
        if (left == 1) break;
        if (isLast(term[1])) return {sum, true};
        coefficient = nextCoefficient * growth[1];
        shape = nextShape + 1;
        rising = nextRising + 1;
        n += 2;
    }
    return {sum, false};
}

std::optional<double> UpperGammaFromPrefix(double a, double x, double prefix) {
    const double whole = std::floor(a);
    if (!(a > 0 && a <= 20 && x >= 1.1 && x <= 1000) || whole == a || a - whole == 0.5) return {};
    if (x - 1 / (3 * x) < a) return {};
    return std::min(prefix * UpperGammaFraction(a, x), 1.0);
}

// The terms are sums over all coefficients before them. Q(b, u) is their gamma function; its prefix is also theirs.
double SumLargeShapeSeries(double a, double b, double x, double y, double start, double factor) {
    constexpr unsigned kMostTerms = 30;
    const double t = a + (b - 1) / 2;
    const double logX = y < 0.35 ? Log1p(-y) : std::log(x);
    const double u = -t * logX;
    const double prefix = PrefixOfGamma(b, u);
    if (prefix <= std::numeric_limits<double>::min()) return start;
    double scale = prefix / boost::math::tgamma_delta_ratio(a, b, DefaultPolicy());
    scale /= std::pow(t, b);
    scale *= factor;

    const auto upper = UpperGammaFromPrefix(b, u, prefix);
    double j = (upper ? *upper : boost::math::gamma_q(b, u, DefaultPolicy())) / prefix;
    double sum = start + scale * j;
    const double quarterSquare = logX / 2 * (logX / 2), fourSquares = 4 * t * t;
    double power = 1, shape = b;
    double coefficients[kMostTerms] = {1};
    for (unsigned n = 1; n < kMostTerms; ++n) {
        double& coefficient = coefficients[n];
        for (unsigned m = 1; m < n; ++m) coefficient += (m * b - n) * coefficients[n - m] / OddFactorial(m);
        coefficient /= n;
        coefficient += (b - 1) / OddFactorial(n);
        j = (shape * (shape + 1) * j + (u + shape + 1) * power) / fourSquares;
        power *= quarterSquare;
        shape += 2;
        const double term = scale * coefficient * j;
        sum += term;
        if (term > 1 ? std::fabs(term) < std::fabs(kEpsilon * sum) : std::fabs(term / kEpsilon) < std::fabs(sum))
            break;
    }
    return sum;
}

}  // namespace orvanth

namespace boost::math::detail {

using Lanczos = lanczos::lanczos13m53;

template <>
double ibeta_power_terms(double a, double b, double x, double y, const Lanczos& lanczos, bool normalised,
                         const orvanth::InnerPolicy&, double prefix, const char* function) {
    if (normalised)
        if (const auto terms = orvanth::FastBetaPowerTerms(a, b, x, y, prefix)) return *terms;
    return ibeta_power_terms(a, b, x, y, lanczos, normalised, orvanth::DefaultPolicy(), prefix, function);
}

template <>
double ibeta_series(double a, double b, double x, double start, const Lanczos& lanczos, bool normalised,
                    double* derivative, double y, const orvanth::InnerPolicy& policy) {
    const auto factor = normalised ? orvanth::FastBetaSeriesFactor(a, b, x) : std::nullopt;
    if (!factor) return ibeta_series(a, b, x, start, lanczos, normalised, derivative, y, orvanth::DefaultPolicy());
    if (derivative != nullptr) *derivative = *factor * std::pow(y, b);
    if (*factor < std::numeric_limits<double>::min()) return start;
    const auto most = policies::get_max_series_iterations<orvanth::InnerPolicy>();
    const auto sum = orvanth::SumBetaSeries(a, b, x, *factor, start, most);
    if (!sum.ended)
        policies::check_series_iterations<double>(
            "boost::math::ibeta<%1%>(%1%, %1%, %1%) in ibeta_series (with lanczos)", most, policy);
    return sum.value;
}

template <>
double beta_small_b_large_a_series(double a, double b, double x, double y, double start, double factor,
                                   const orvanth::InnerPolicy&, bool normalised) {
    if (normalised) return orvanth::SumLargeShapeSeries(a, b, x, y, start, factor);
    return beta_small_b_large_a_series(a, b, x, y, start, factor, orvanth::DefaultPolicy(), normalised);
}

}  // namespace boost::math::detail
