#include "distributions/hypergeometric_kernel.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "frame/failure.hpp"
#include "frame/platform.hpp"

namespace orvanth {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// Below eight times the smallest normal double a term has too few digits to step from.
constexpr double kTooSmallToStep = 8 * std::numeric_limits<double>::min();

// ln P(X = x) below these is no positive double, and below kTooSmallToStep, with room for the error of
// LogProbability.
constexpr double kSurelyZero = -750;
constexpr double kSurelyTooSmallToStep = -708;

// In populations up to this size no probability is below 2^-1000, as none is below 1 / C(N, n).
constexpr std::int64_t kNothingNegligible = 1000;

// Against a probability from here on, the few hundred terms that are too small to step from add nothing.
constexpr double kDeaf = 1e-285;

// Terms per block of ratios: enough for the divisions to overlap, few enough for short sums.
constexpr int kBlock = 16;

// P(X = y + 1) / P(X = y) for kBlock counts from y on, where rest is N - n - r. Past the end of the
// support the numbers mean nothing.
ORVANTH_VECTOR_CLONES
void FillRatios(double y, double n, double r, double rest, double* ratios) {
    for (int i = 0; i < kBlock; ++i) {
        const double at = y + i;
        ratios[i] = (n - at) * (r - at) / ((at + 1) * (rest + at + 1));
    }
}

// Neighbouring probabilities, each stepped from the one before. A walk down counts the unmarked items
// in the sample, n - x of N - r, and is a walk up over these.
class Walk {
public:
    static Walk Up(std::int64_t x, const HypergeometricCounts& c) { return {x, c, c.r, x}; }
    static Walk Down(std::int64_t x, const HypergeometricCounts& c) { return {x, c, c.N - c.r, c.n - x}; }

    double Term() const { return term_; }

    // To the next count, by the ratio of the two probabilities.
    void Step() {
        if (y_ >= blockEnd_) Fill();
        term_ *= ratios_[kBlock - (blockEnd_ - y_)];
        ++y_;
    }

    // To the next count, whose probability is `term`.
    void StepTo(double term) {
        term_ = term;
        ++y_;
    }

private:
    Walk(std::int64_t x, const HypergeometricCounts& c, std::int64_t r, std::int64_t y)
        : n_(static_cast<double>(c.n)),
          r_(static_cast<double>(r)),
          rest_(static_cast<double>(c.N - c.n - r)),
          y_(y),
          blockEnd_(y),
          term_(HypergeometricProbability(x, c)) {}

    void Fill() {
        FillRatios(static_cast<double>(y_), n_, r_, rest_, ratios_.data());
        blockEnd_ = y_ + kBlock;
    }

    double n_;
    double r_;
    double rest_;
    std::int64_t y_;
    std::int64_t blockEnd_;
    double term_;
    std::array<double, kBlock> ratios_;
};

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
    if (!(target > 0) || c.N <= kNothingNegligible) return end;
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
    Walk walk = Walk::Up(x, c);
    double sum = walk.Term();
    while (sum < p && x < limit) {
        if (walk.Term() > kTooSmallToStep)
            walk.Step();
        else
            walk.StepTo(HypergeometricProbability(x + 1, c));
        if (sum + walk.Term() / 2 > p) break;
        ++x;
        sum += walk.Term();
    }
    return sum < p * slack && x != limit ? x + 1 : x;
}

// From the upper end, with q the upper tail.
std::int64_t WalkDown(double q, double slack, const HypergeometricCounts& c) {
    const std::int64_t limit = c.Highest();
    std::int64_t x = SkipNegligible(limit, q, c);
    Walk walk = Walk::Down(x, c);
    double sum = 0;
    while (sum + walk.Term() / 2 < q && x > c.Lowest()) {
        sum += walk.Term();
        if (walk.Term() > kTooSmallToStep)
            walk.Step();
        else
            walk.StepTo(HypergeometricProbability(x - 1, c));
        --x;
    }
    return q < sum * slack && x != limit ? x + 1 : x;
}

// The term of the walk and up to `steps` further ones, until one falls to epsilon times the sum, or
// to epsilon where the sum will be taken from 1.
double Sum(Walk walk, std::int64_t steps, bool fromOne) {
    double sum = walk.Term();
    for (; steps > 0 && walk.Term() > kEpsilon * (fromOne ? 1 : sum); --steps) {
        walk.Step();
        sum += walk.Term();
    }
    return sum;
}

}  // namespace

double HypergeometricTail(std::int64_t x, const HypergeometricCounts& c, bool upper) {
    const bool sumsDown = Mode(c) > static_cast<double>(x);
    const bool invert = upper == sumsDown;
    double sum = 0;
    if (sumsDown)
        sum = Sum(Walk::Down(x, c), x - c.Lowest(), invert);
    else if (x < c.Highest())
        sum = Sum(Walk::Up(x + 1, c), c.Highest() - x - 1, invert);
    return Narrow(std::clamp(invert ? 1 - sum : sum, 0.0, 1.0),
                  "boost::math::hypergeometric_cdf<%1%>(%1%,%1%,%1%,%1%)");
}

std::int64_t HypergeometricQuantile(double p, double q, const HypergeometricCounts& c) {
    // What the probabilities may be wrong by, as a factor: the Lanczos form loses digits with N.
    const double slack = 1 + kEpsilon * (c.N <= kLargestLongFactorial ? 50 : 2 * static_cast<double>(c.N));
    return p <= 0.5 ? WalkUp(p, slack, c) : WalkDown(q, slack, c);
}

}  // namespace orvanth
