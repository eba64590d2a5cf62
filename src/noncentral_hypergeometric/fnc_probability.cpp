#include "noncentral_hypergeometric/fnc_probability.hpp"

#include <algorithm>
#include <cmath>

#include "frame/load_state.hpp"
#include "noncentral_hypergeometric/log_factorial.hpp"
#include "noncentral_hypergeometric/wrap.hpp"

namespace orvanth {

namespace {

// A walk ends after the first term below the limit. It also ends at a NaN, because the sums are NaN from there on
// and up to 2^31 further terms would not change them.
bool EndsWalk(double limit, double f) { return limit > f || std::isnan(f); }

double Limit(const FNCRecord& record) { return record.accuracy * 0.1; }

// The central case, odds 1.
double CentralProbability(const FNCRecord& r, std::int32_t x) {
    const auto L = FNCLogFactorial;
    const std::int32_t m2 = FNCDifference(r.N, r.m);
    double t = L(r.m) - L(x) - L(FNCDifference(r.m, x));
    t = L(m2) + t - L(FNCDifference(r.n, x)) - L(FNCSum(FNCDifference(m2, r.n), x));
    const double s = L(r.N) - L(r.n) - L(FNCDifference(r.N, r.n));
    return std::exp(t - s);
}

}  // namespace

std::int32_t FNCCentre(const FNCRecord& record) { return std::max(FNCTruncate(FNCMean(record)), record.xmin); }

FNCLogTerm::FNCLogTerm(const FNCRecord& record)
    : record_(record),
      m2_(FNCDifference(record.N, record.m)),
      mFac_(FNCLogFactorial(record.m) + FNCLogFactorial(m2_)) {}

double FNCLogTerm::operator()(std::int32_t x) {
    const std::int32_t m = record_.m, x2 = FNCDifference(record_.n, x);
    const bool beyondTable = m >= kFNCLogFactorialEntries || m2_ >= kFNCLogFactorialEntries;
    const bool canStep = beyondTable && xLast_.has_value();
    const std::int64_t step = canStep ? std::int64_t{x} - *xLast_ : 0;
    const double xd = x, x2d = x2, md = m, m2d = m2_;
    if (canStep && step == -1) {
        xFac_ += std::log(((md - xd) * x2d) / ((m2d - x2d + 1.0) * (xd + 1.0)));
    } else if (canStep && step == 1) {
        xFac_ += std::log(((m2d - x2d) * xd) / ((md - xd + 1.0) * (x2d + 1.0)));
    } else if (!canStep || step != 0) {
        xFac_ = FNCLogFactorial(x2) + FNCLogFactorial(x) + FNCLogFactorial(FNCDifference(m, x)) +
                FNCLogFactorial(FNCDifference(m2_, x2));
    }
    xLast_ = x;
    return mFac_ - xFac_ + x * record_.logOdds;
}

FNCProbability::Normalisation FNCProbability::Normalise() {
    const double limit = Limit(record_);
    const std::int32_t x0 = FNCCentre(record_);
    const double scale = logTerm_(x0);
    double sum = 1.0;
    // A term below the limit is still added, and then ends its direction.
    for (std::int64_t x = std::int64_t{x0} - 1; x >= record_.xmin; --x) {
        const double f = std::exp(logTerm_(static_cast<std::int32_t>(x)) - scale);
        sum += f;
        if (EndsWalk(limit, f)) break;
    }
    for (std::int64_t x = std::int64_t{x0} + 1; x <= record_.xmax; ++x) {
        const double f = std::exp(logTerm_(static_cast<std::int32_t>(x)) - scale);
        sum += f;
        if (EndsWalk(limit, f)) break;
    }
    return {scale, 1.0 / sum};
}

double FNCProbability::operator()(std::int32_t x) {
    if (x < record_.xmin || x > record_.xmax) return 0.0;
    if (record_.n == 0) return 1.0;
    if (record_.odds == 1.0) return CentralProbability(record_, x);
    if (record_.odds == 0.0) {
        if (record_.n > FNCDifference(record_.N, record_.m)) return FNCInvalidValue;
        return x == 0 ? 1.0 : 0.0;
    }
    if (!normalisation_) normalisation_ = Normalise();
    return std::exp(logTerm_(x) - normalisation_->scale) * normalisation_->rsum;
}

FNCMoments FNCExactMoments(const FNCRecord& record) {
    FNCProbability probability(record);
    const double limit = Limit(record);
    const std::int32_t x0 = FNCTruncate(FNCMean(record));
    double s0 = 0.0, s1 = 0.0, s2 = 0.0;
    const auto add = [&](std::int64_t x) {
        const std::int32_t offset = FNCWrap(x - x0);
        const double f = probability(static_cast<std::int32_t>(x));
        s0 += f;
        s1 += offset * f;
        s2 += FNCWrap(std::int64_t{offset} * offset) * f;  // required: 32 bits, wraps beyond 46340 steps
        return f;
    };
    // The term at x0 itself ends the walk only if it is a NaN.
    for (std::int64_t x = x0; x <= record.xmax; ++x) {
        const double f = add(x);
        if (EndsWalk(limit, f) && (x != x0 || std::isnan(f))) break;
    }
    for (std::int64_t x = std::int64_t{x0} - 1; x >= record.xmin; --x)
        if (EndsWalk(limit, add(x))) break;
    s1 /= s0;
    s2 /= s0;
    return {x0 + s1, std::max(s2 - s1 * s1, 0.0)};
}

}  // namespace orvanth
