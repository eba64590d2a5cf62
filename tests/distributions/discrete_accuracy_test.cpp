// The worst error of each discrete export against 50 digits: the record of docs/accuracy/discrete.md.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <utility>

#include "orvanth/distributions.h"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using orvanth::test::RelativeError;
using orvanth::test::Wide;

constexpr unsigned kSeed = 20240907;

Wide LogFactorial(double k) { return lgamma(Wide(k) + 1); }

// The worst error of one row, in units of the last place and relative, with its arguments.
class Worst {
public:
    Worst(std::string what, double limit) : what_(std::move(what)), limit_(limit) {}
    ~Worst() {
        std::printf("| %s | %d | %.3g | %.1e | %s |\n", what_.c_str(), count_, worst_ / 0x1p-52, worst_,
                    where_.c_str());
        EXPECT_GT(count_, 0);
        EXPECT_LE(worst_, limit_) << what_ << " at " << where_ << " seed " << kSeed;
    }
    void Add(double got, const Wide& want, double a, double b, double c, double d = NAN) {
        if (want < 1e-290) return;  // denormals have fewer digits
        ++count_;
        const double error = RelativeError(got, want);
        if (error <= worst_) return;
        worst_ = error;
        char text[120];
        std::snprintf(text, sizeof text, std::isnan(d) ? "%.9g, %.9g, %.17g" : "%.9g, %.9g, %.9g, %.9g", a, b, c, d);
        where_ = text;
    }

private:
    std::string what_;
    double limit_;
    int count_ = 0;
    double worst_ = 0;
    std::string where_;
};

class Arguments {
public:
    double Uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(random_); }
    double Whole(double low, double high) { return std::floor(Uniform(low, high + 1)); }
    // A whole number, its logarithm spread evenly.
    double Count(double low, double high) { return std::floor(std::exp(Uniform(std::log(low), std::log(high + 1)))); }

private:
    std::mt19937_64 random_{kSeed};
};

Wide BinomialTerm(double k, double n, double p) {
    return exp(LogFactorial(n) - LogFactorial(k) - LogFactorial(n - k) + Wide(k) * log(Wide(p)) +
               Wide(n - k) * log(1 - Wide(p)));
}

// P(X > k) if `upper`, else P(X <= k), summed outwards from k.
Wide BinomialSum(double k, double n, double p, bool upper) {
    const Wide odds = Wide(p) / (1 - Wide(p));
    double j = upper ? k + 1 : k;
    Wide term = BinomialTerm(j, n, p);
    Wide sum = 0;
    while (j >= 0 && j <= n && term > sum * 1e-30) {
        sum += term;
        if (upper) {
            term *= (n - j) / Wide(j + 1) * odds;
            ++j;
        } else {
            term *= Wide(j) / ((n - j + 1) * odds);
            --j;
        }
    }
    return sum;
}

// The shorter of the two sums gives both tails.
Wide BinomialOracle(double k, double n, double p, bool upper) {
    if (k >= n) return upper ? 0 : 1;
    const bool up = k >= n * p;
    const Wide sum = BinomialSum(k, n, p, up);
    return up == upper ? sum : Wide(1 - sum);
}

Wide HypergeometricTerm(double x, double r, double n, double N) {
    return exp(LogFactorial(r) - LogFactorial(x) - LogFactorial(r - x) + LogFactorial(N - r) - LogFactorial(n - x) -
               LogFactorial(N - r - n + x) - LogFactorial(N) + LogFactorial(n) + LogFactorial(N - n));
}

Wide HypergeometricOracle(double x, double r, double n, double N, bool upper) {
    const bool up = x >= r * n / N;
    double j = up ? x + 1 : x;
    if (up && j > std::fmin(n, r)) return upper ? 0 : 1;
    Wide term = HypergeometricTerm(j, r, n, N);
    Wide sum = 0;
    while (term > sum * 1e-30) {
        sum += term;
        if (up) {
            term *= Wide(n - j) * (r - j) / (Wide(j + 1) * (N - n - r + j + 1));
            ++j;
        } else {
            term *= Wide(j) * (N - n - r + j) / (Wide(n - j + 1) * (r - j + 1));
            --j;
        }
    }
    return up == upper ? sum : Wide(1 - sum);
}

struct Range {
    const char* what;
    double low, high;
    int points;
    double pdfLimit, cdfLimit;
};

TEST(DiscreteAccuracy, Binomial) {
    Arguments arguments;
    for (const Range& range :
         {Range{"n to 30", 1, 30, 1500, 6e-15, 8e-15}, Range{"n to 1000", 31, 1000, 1500, 1.3e-13, 1.6e-13},
          Range{"n to 10^6", 1001, 1e6, 500, 5e-11, 5e-11}}) {
        const std::string name = range.what;
        Worst pdf("BinomialPDF, " + name, range.pdfLimit);
        Worst cdf("BinomialCDF, " + name, range.cdfLimit);
        for (int i = 0; i < range.points; ++i) {
            const double n = arguments.Count(range.low, range.high);
            const double p = i % 3 == 0 ? std::exp(arguments.Uniform(-12, 0)) : arguments.Uniform(0, 1);
            const double sd = std::sqrt(n * p * (1 - p));
            const double k = std::fmin(n, std::fmax(0, std::round(n * p + sd * arguments.Uniform(-8, 8))));
            pdf.Add(BinomialPDF(k, n, p), BinomialTerm(k, n, p), k, n, p);
            if (k == n) continue;
            const bool upper = k >= n * p;
            cdf.Add(BinomialCDF(k, n, p, upper), BinomialOracle(k, n, p, upper), k, n, p);
            cdf.Add(BinomialCDF(k, n, p, !upper), BinomialOracle(k, n, p, !upper), k, n, p);
        }
    }
}

TEST(DiscreteAccuracy, ProportionBounds) {
    Arguments arguments;
    for (const Range& range :
         {Range{"n to 1000", 1, 1000, 1000, 6e-14, 0}, Range{"n to 10^6", 1001, 1e6, 200, 4e-14, 0}}) {
        Worst bound("BinomialPS, " + std::string(range.what), range.pdfLimit);
        for (int i = 0; i < range.points; ++i) {
            const double n = arguments.Count(range.low, range.high);
            const double k = arguments.Whole(1, n);
            const double alpha = std::exp(arguments.Uniform(-12, -0.1));
            // One Newton step in 50 digits from the bound itself: P(X >= k) rises with p at the rate
            // k P(X = k) / p.
            const double low = BinomialPS(alpha, k, n, 0);
            const Wide lowStep = (BinomialSum(k - 1, n, low, true) - alpha) * low / (k * BinomialTerm(k, n, low));
            bound.Add(low, Wide(low) - lowStep, alpha, k, n, 0);
            if (k == n) continue;
            const double high = BinomialPS(alpha, k, n, 1);
            const Wide highStep =
                (BinomialSum(k, n, high, false) - alpha) * (1 - Wide(high)) / ((n - k) * BinomialTerm(k, n, high));
            bound.Add(high, Wide(high) + highStep, alpha, k, n, 1);
        }
    }
}

// The quantile is a whole number: right or wrong. Probabilities nearer to a step of the distribution
// than its own error are left out.
TEST(DiscreteAccuracy, Quantiles) {
    Arguments arguments;
    int asked = 0;
    for (int i = 0; i < 600; ++i) {
        const double n = arguments.Count(1, i % 4 == 0 ? 1e5 : 300);
        const double p = arguments.Uniform(0, 1);
        const double probability = i % 3 == 0 ? std::exp(arguments.Uniform(-25, 0)) : arguments.Uniform(0, 1);
        const double up = BinomialICDF(probability, n, p, 0, 1);
        const Wide above = BinomialOracle(up, n, p, false);
        const Wide below = up > 0 ? BinomialOracle(up - 1, n, p, false) : Wide(0);
        if (abs(above - probability) < 1e-9 * above || abs(below - probability) < 1e-9 * below) continue;
        ++asked;
        EXPECT_TRUE(below < probability && probability < above) << probability << ' ' << n << ' ' << p;
        const double down = BinomialICDF(probability, n, p, 0, 0);
        EXPECT_EQ(down, up > 0 ? up - 1 : 0) << probability << ' ' << n << ' ' << p << " seed " << kSeed;
    }
    for (int i = 0; i < 600; ++i) {
        const double N = arguments.Count(1, i % 4 == 0 ? 1e6 : 3000);
        const double r = arguments.Whole(0, N);
        const double n = arguments.Whole(0, N);
        const double probability = i % 3 == 0 ? std::exp(arguments.Uniform(-25, 0)) : arguments.Uniform(0, 1);
        const double x = HypergeometricICDF(probability, r, n, N, 0);
        const double lowest = std::fmax(0, n + r - N);
        const Wide above = HypergeometricOracle(x, r, n, N, false);
        const Wide below = x > lowest ? HypergeometricOracle(x - 1, r, n, N, false) : Wide(0);
        if (abs(above - probability) < 1e-8 * above || abs(below - probability) < 1e-8 * below) continue;
        ++asked;
        EXPECT_TRUE(below < probability && probability < above)
            << probability << ' ' << r << ' ' << n << ' ' << N << " seed " << kSeed;
    }
    std::printf("| BinomialICDF, HypergeometricICDF | %d | all right | | |\n", asked);
    EXPECT_GT(asked, 1100);
}

TEST(DiscreteAccuracy, Hypergeometric) {
    Arguments arguments;
    for (const Range& range : {Range{"N to 170, factorials", 1, 170, 1500, 8e-16, 1.2e-15},
                               Range{"N to 104729, long factorials", 171, 104729, 600, 1.2e-16, 6e-15},
                               Range{"N to 10^6, Lanczos", 104730, 1e6, 400, 3e-10, 4e-10},
                               Range{"N to 2^32, Lanczos", 1e6, 4294967295.0, 200, 1e-6, 3e-7}}) {
        const std::string name = range.what;
        Worst pdf("HypergeometricPDF, " + name, range.pdfLimit);
        Worst cdf("HypergeometricCDF, " + name, range.cdfLimit);
        for (int i = 0; i < range.points; ++i) {
            const double N = arguments.Count(range.low, range.high);
            const double r = i % 3 == 0 ? arguments.Count(1, N) : arguments.Whole(0, N);
            const double n = i % 3 == 1 ? arguments.Count(1, N) : arguments.Whole(0, N);
            const double lowest = std::fmax(0, n + r - N);
            const double sd = std::sqrt(n * (r / N) * (1 - r / N) * (N - n) / std::fmax(1, N - 1));
            const double x =
                std::fmin(std::fmin(n, r), std::fmax(lowest, std::round(n * r / N + sd * arguments.Uniform(-6, 6))));
            if (x > 2147483647 || lowest > 2147483647 || N - n - r > 2147483647) continue;
            pdf.Add(HypergeometricPDF(x, r, n, N), HypergeometricTerm(x, r, n, N), x, r, n, N);
            if (N > 1e7 && i % 8 != 0) continue;  // long sums
            const bool upper = x >= r * n / N;
            cdf.Add(HypergeometricCDF(x, r, n, N, upper), HypergeometricOracle(x, r, n, N, upper), x, r, n, N);
        }
    }
}

}  // namespace
