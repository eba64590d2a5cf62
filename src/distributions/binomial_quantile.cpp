#include "distributions/binomial_quantile.hpp"

#include <cmath>
#include <utility>

#include "frame/boost_detail.hpp"
#include "frame/policies.hpp"
#include "special/beta.hpp"

namespace orvanth {

namespace {

// The distribution as the search sees it.
class Searched {
public:
    using value_type = double;
    using policy_type = DefaultPolicy;

    Searched(double n, double p) : n_(n), p_(p) {}
    double Tail(double k, bool upper) const { return BinomialTail(k, n_, p_, upper); }
    double Trials() const { return n_; }

private:
    double n_;
    double p_;
};

double cdf(const Searched& dist, double k) { return dist.Tail(k, false); }
double cdf(const boost::math::complemented2_type<Searched, double>& c) { return c.dist.Tail(c.param, true); }
std::pair<double, double> support(const Searched& dist) { return {0, dist.Trials()}; }

// Where the search begins, and by which factor it steps out while it has no bracket: the estimate
// is good for many trials and is replaced for few.
struct Start {
    double estimate;
    double factor;
};

Start EstimateQuantile(double lower, double upper, double n, double p) {
    const double guess = CornishFisherEstimate(n, p, lower, upper);
    if (n < 10) return guess > n / 64 ? Start{n / 4, 2} : Start{n / 1024, 8};
    // With p = 1 nothing varies and the estimate is a NaN; all the mass is at n.
    if (std::isnan(guess)) return {n, 2};
    if (n > 100) return {guess, 1.01F};
    if (n > 10 && n - 1 > guess && guess > 3) return {guess, 1.15F};
    return {guess, 2};
}

}  // namespace

double BinomialTail(double k, double n, double p, bool upper) {
    if (k == n || p == 0) return upper ? 0 : 1;
    if (p == 1) return upper ? 1 : 0;
    return upper ? RegularizedBeta(k + 1, n - k, p) : RegularizedBetaC(k + 1, n - k, p);
}

// Required: the answer is the floor or the ceiling of the solution that the search ends on. It is
// not moved to an end of a run of counts whose tails are equal as doubles.
double SearchBinomialQuantile(double lower, double upper, double n, double p, Rounding rounding) {
    const Start start = EstimateQuantile(lower, upper, n, p);
    // The smaller of the two tails is searched: it has the more digits.
    const bool onUpper = !(lower < upper);
    const auto search = [&](double from, auto tolerance) {
        return SearchDiscreteQuantile(Searched(n, p), onUpper ? upper : lower, onUpper, from, start.factor,
                                      tolerance);
    };
    if (rounding == Rounding::kDown)
        return std::floor(
            search(start.estimate < 1 ? 1 : std::floor(start.estimate), boost::math::tools::equal_floor()));
    return std::ceil(search(std::ceil(start.estimate), boost::math::tools::equal_ceil()));
}

}  // namespace orvanth
