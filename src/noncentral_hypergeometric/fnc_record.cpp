#include "noncentral_hypergeometric/fnc_record.hpp"

#include <algorithm>
#include <cmath>

#include "frame/load_state.hpp"
#include "noncentral_hypergeometric/log_factorial.hpp"

namespace orvanth {

namespace {

// 32-bit arithmetic that wraps, for arguments that no caller tests.
std::int32_t Wrap(std::int64_t value) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(value)); }
std::int32_t Sum(std::int32_t a, std::int32_t b) { return Wrap(std::int64_t{a} + b); }
std::int32_t Difference(std::int32_t a, std::int32_t b) { return Wrap(std::int64_t{a} - b); }

// A walk ends after the first term below the limit. It also ends at a NaN: the sums are NaN from
// there on, and walking two thousand million further terms would not change them.
bool EndsWalk(double limit, double f) { return limit > f || std::isnan(f); }

// The central case, odds 1.
double CentralProbability(const FNCRecord& r, std::int32_t x) {
    const auto L = FNCLogFactorial;
    double t = L(r.m) - L(x) - L(Difference(r.m, x));
    t = L(Difference(r.N, r.m)) + t - L(Difference(r.n, x)) - L(Sum(Difference(Difference(r.N, r.m), r.n), x));
    const double s = L(r.N) - L(r.n) - L(Difference(r.N, r.n));
    return std::exp(t - s);
}

void Normalise(FNCRecord& r, double limit) {
    std::int32_t x0 = FNCTruncate(FNCMean(r));
    if (x0 < r.xmin) x0 = r.xmin;  // no such clamp at xmax
    r.scale = 0.0;
    r.scale = FNCLogTerm(r, x0);
    r.rsum = 1.0;
    // A term below the limit is still added, and then ends its direction.
    for (std::int32_t x = x0 - 1; x >= r.xmin; --x) {
        const double f = std::exp(FNCLogTerm(r, x));
        r.rsum += f;
        if (EndsWalk(limit, f)) break;
    }
    for (std::int64_t x = std::int64_t{x0} + 1; x <= r.xmax; ++x) {
        const double f = std::exp(FNCLogTerm(r, static_cast<std::int32_t>(x)));
        r.rsum += f;
        if (EndsWalk(limit, f)) break;
    }
    r.rsum = 1.0 / r.rsum;
}

}  // namespace

FNCRecord::FNCRecord(std::int32_t n_, std::int32_t m_, std::int32_t N_, double odds_, double accuracy_)
    : odds(odds_),
      logOdds(std::log(odds_)),
      accuracy(accuracy_),
      n(n_),
      m(m_),
      N(N_),
      xmin(std::max(Difference(Sum(n_, m_), N_), 0)),
      xmax(std::min(n_, m_)) {}

std::int32_t FNCTruncate(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
    return static_cast<std::int32_t>(value);
}

double FNCMean(const FNCRecord& r) {
    const double n = r.n, m = r.m, N = r.N;
    if (r.odds == 1.0) return m * n / N;
    const double a = r.odds - 1.0;
    const double b = (N - n - m) + (n + m) * r.odds;
    const double d = b * b - 4.0 * r.odds * a * m * n;
    const double s = d > 0.0 ? std::sqrt(d) : 0.0;
    return (b - s) / (2.0 * a);
}

double FNCVariance(const FNCRecord& r) {
    const double n = r.n, m = r.m, N = r.N;
    const double mu = FNCMean(r);
    const double r1 = (m - mu) * mu;
    const double r2 = (N + mu - n - m) * (n - mu);
    if (r1 <= 0.0 || r2 <= 0.0) return 0.0;
    const double v = N * r1 * r2 / (((N - m) * r1 + m * r2) * (N - 1.0));
    return v < 0.0 ? 0.0 : v;
}

double FNCLogTerm(FNCRecord& r, std::int32_t x) {
    const std::int32_t x2 = Difference(r.n, x);
    const std::int32_t m2 = Difference(r.N, r.m);
    if (r.parametersChanged != 0) {
        r.mFac = FNCLogFactorial(r.m) + FNCLogFactorial(m2);
        r.xLast = -99;
        r.parametersChanged = 0;
    }
    const bool beyondTable = r.m >= kFNCLogFactorialEntries || m2 >= kFNCLogFactorialEntries;
    const std::int64_t step = std::int64_t{x} - r.xLast;
    const double xd = x, x2d = x2, md = r.m, m2d = m2;
    if (beyondTable && step == -1) {
        r.xFac += std::log(((md - xd) * x2d) / ((m2d - x2d + 1.0) * (xd + 1.0)));
    } else if (beyondTable && step == 1) {
        r.xFac += std::log(((m2d - x2d) * xd) / ((md - xd + 1.0) * (x2d + 1.0)));
    } else if (!beyondTable || step != 0) {
        r.xFac = FNCLogFactorial(x2) + FNCLogFactorial(x) + FNCLogFactorial(Difference(r.m, x)) +
                 FNCLogFactorial(Difference(m2, x2));
    }
    r.xLast = x;
    return r.mFac - r.xFac + x * r.logOdds - r.scale;
}

double FNCProbability(FNCRecord& r, std::int32_t x) {
    if (x < r.xmin || x > r.xmax) return 0.0;
    if (r.n == 0) return 1.0;
    if (r.odds == 1.0) return CentralProbability(r, x);
    if (r.odds == 0.0) {
        if (r.n > Difference(r.N, r.m)) return FncInvalidValue;
        return x == 0 ? 1.0 : 0.0;
    }
    if (r.rsum == 0.0) Normalise(r, r.accuracy * 0.1);
    return std::exp(FNCLogTerm(r, x)) * r.rsum;
}

double FNCExactMoments(FNCRecord& r, double* mean, double* variance) {
    const double limit = r.accuracy * 0.1;
    const std::int32_t x0 = FNCTruncate(FNCMean(r));
    double s0 = 0.0, s1 = 0.0, s2 = 0.0;
    const auto add = [&](std::int32_t x, std::int32_t i) {
        const double f = FNCProbability(r, x);
        s0 += f;
        s1 += i * f;
        s2 += Wrap(std::int64_t{i} * i) * f;  // 32 bits: wraps beyond 46340 steps
        return f;
    };
    for (std::int64_t x = x0; x <= r.xmax; ++x) {
        const double f = add(static_cast<std::int32_t>(x), Wrap(x - x0));
        if (EndsWalk(limit, f) && (x != x0 || std::isnan(f))) break;
    }
    for (std::int64_t x = std::int64_t{x0} - 1; x >= r.xmin; --x)
        if (EndsWalk(limit, add(static_cast<std::int32_t>(x), Wrap(x - x0)))) break;
    s1 /= s0;
    s2 /= s0;
    *mean = x0 + s1;
    const double v = s2 - s1 * s1;
    *variance = v < 0.0 ? 0.0 : v;
    return s0;
}

}  // namespace orvanth
