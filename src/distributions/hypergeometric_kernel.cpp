#include "distributions/hypergeometric_kernel.hpp"

#include <cmath>
#include <limits>

#include "frame/policies.hpp"

namespace orvanth {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// Below eight times the smallest normal double a term has too few digits to step from.
constexpr double kTooSmallToStep = 8 * std::numeric_limits<double>::min();

// ln P(X = x) below these is no positive double, and below kTooSmallToStep, with room for the error of
// LogProbability.
constexpr double kSurelyZero = -750;
constexpr double kSurelyTooSmallToStep = -708;

// Against a probability from here on, the few hundred terms that are too small to step from add nothing.
constexpr double kDeaf = 1e-285;

// P(X = x + 1) and P(X = x - 1) from d = P(X = x).
double StepUp(std::int64_t x, const HypergeometricCounts& c, double d) {
    return static_cast<double>(c.n - x) * static_cast<double>(c.r - x) * d /
           (static_cast<double>(x + 1) * static_cast<double>(c.N + x + 1 - c.n - c.r));
}
double StepDown(std::int64_t x, const HypergeometricCounts& c, double d) {
    return static_cast<double>(x) * static_cast<double>(c.N + x - c.n - c.r) * d /
           (static_cast<double>(1 + c.n - x) * static_cast<double>(1 + c.r - x));
}

// ln k! by Stirling's series, thread-safe unlike lgamma; good to a few digits for small k too.
double LogFactorial(std::int64_t k) {
    if (k < 2) return 0;
    const double z = static_cast<double>(k);
    return (z + 0.5) * std::log(z) - z + 0.91893853320467274 + 1 / (12 * z);
}

double LogProbability(std::int64_t x, const HypergeometricCounts& c) {
    return LogFactorial(c.n) + LogFactorial(c.r) + LogFactorial(c.N - c.n) + LogFactorial(c.N - c.r) -
           LogFactorial(c.N) - LogFactorial(x) - LogFactorial(c.n - x) - LogFactorial(c.r - x) -
           LogFactorial(c.N - c.n - c.r + x);
}

double Mode(const HypergeometricCounts& c) {
    return std::floor((static_cast<double>(c.r) + 1) * (static_cast<double>(c.n) + 1) /
                      (static_cast<double>(c.N) + 2));
}

// From an end of the support towards the mode: the last x of an unbroken row of probabilities that add
// nothing to the sum of a walk towards `target`, or `end` itself.
std::int64_t SkipNegligible(std::int64_t end, double target, const HypergeometricCounts& c) {
    if (!(target > 0)) return end;
    const double negligible = target >= kDeaf ? kSurelyTooSmallToStep : kSurelyZero;
    std::int64_t zero = end;
    std::int64_t other = std::min(c.Highest(), std::max(c.Lowest(), static_cast<std::int64_t>(Mode(c))));
    if (LogProbability(zero, c) >= negligible) return end;
    while (std::abs(other - zero) > 1) {
        const std::int64_t middle = zero + (other - zero) / 2;
        (LogProbability(middle, c) < negligible ? zero : other) = middle;
    }
    return zero;
}

// From the lower end until the sum is the nearest to p from below, then rounded up.
std::int64_t WalkUp(double p, double slack, const HypergeometricCounts& c) {
    const std::int64_t limit = c.Highest();
    std::int64_t x = SkipNegligible(c.Lowest(), p, c);
    double sum = HypergeometricProbability(x, c);
    double term = sum;
    while (sum < p && x < limit) {
        term = term > kTooSmallToStep ? StepUp(x, c, term) : HypergeometricProbability(x + 1, c);
        if (sum + term / 2 > p) break;
        ++x;
        sum += term;
    }
    return sum < p * slack && x != limit ? x + 1 : x;
}

// From the upper end, with q the upper tail.
std::int64_t WalkDown(double q, double slack, const HypergeometricCounts& c) {
    const std::int64_t limit = c.Highest();
    std::int64_t x = SkipNegligible(limit, q, c);
    double sum = 0;
    double term = HypergeometricProbability(x, c);
    while (sum + term / 2 < q && x > c.Lowest()) {
        sum += term;
        term = term > kTooSmallToStep ? StepDown(x, c, term) : HypergeometricProbability(x - 1, c);
        --x;
    }
    return q < sum * slack && x != limit ? x + 1 : x;
}

}  // namespace

double HypergeometricTail(std::int64_t x, const HypergeometricCounts& c, bool upper) {
    bool invert = upper;
    double sum = 0;
    // A sum that is to be taken from 1 may stop at the epsilon of 1.
    const auto goesOn = [&](double term) { return term > (invert ? 1 : sum) * kEpsilon; };
    if (Mode(c) > static_cast<double>(x)) {
        double term = sum = HypergeometricProbability(x, c);
        for (; x > c.Lowest() && goesOn(term); --x) {
            term = StepDown(x, c, term);
            sum += term;
        }
    } else {
        invert = !invert;
        if (x < c.Highest()) {
            double term = sum = HypergeometricProbability(++x, c);
            for (; x < c.Highest() && goesOn(term); ++x) {
                term = StepUp(x, c, term);
                sum += term;
            }
        }
    }
    const double result = invert ? 1 - sum : sum;
    if (result > 1) return 1;
    if (result < 0) return 0;
    return Narrow(result, "boost::math::hypergeometric_cdf<%1%>(%1%,%1%,%1%,%1%)");
}

std::int64_t HypergeometricQuantile(double p, double q, const HypergeometricCounts& c) {
    // What the probabilities may be wrong by, as a factor: the Lanczos form loses digits with N.
    const double slack = 1 + kEpsilon * (c.N <= kLargestPrimePopulation ? 50 : 2 * static_cast<double>(c.N));
    return p <= 0.5 ? WalkUp(p, slack, c) : WalkDown(q, slack, c);
}

}  // namespace orvanth
