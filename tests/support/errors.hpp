// Errors of results in double against a judge of many digits.
#ifndef ORVANTH_TESTS_SUPPORT_ERRORS_HPP
#define ORVANTH_TESTS_SUPPORT_ERRORS_HPP

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>

#include "support/many_digits.hpp"

namespace orvanth::test {

// A NaN is infinitely wrong, so that no maximum passes over it.
inline double ErrorOrInfinity(const Wide& error) {
    const double value = static_cast<double>(error);
    return std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
}

// In units in the last place of the double nearest to `want`.
inline double UlpError(double got, const Wide& want) {
    const double nearest = std::fabs(static_cast<double>(want));
    const double ulp = std::nextafter(nearest, std::numeric_limits<double>::infinity()) - nearest;
    return ErrorOrInfinity(abs(got - want) / ulp);
}

inline double RelativeError(double got, const Wide& want) { return ErrorOrInfinity(abs((got - want) / want)); }

// Prints its worst row when it goes, and fails if that exceeds what is recorded in docs/accuracy.
class WorstUlps {
public:
    WorstUlps(std::string name, double allowed) : name_(std::move(name)), allowed_(allowed) {}
    ~WorstUlps() {
        std::printf("  | `%s` | %ld | %.1f | (%.17g, %.17g, %.17g) |\n", name_.c_str(), rows_, worst_, at_[0], at_[1],
                    at_[2]);
        EXPECT_LE(worst_, allowed_) << name_;
        EXPECT_GT(rows_, 0) << name_;
    }
    WorstUlps(const WorstUlps&) = delete;
    WorstUlps& operator=(const WorstUlps&) = delete;

    void Add(double got, const Wide& want, double a, double b = 0, double c = 0) {
        ++rows_;
        const double error = UlpError(got, want);
        if (error > worst_) {
            worst_ = error;
            at_[0] = a;
            at_[1] = b;
            at_[2] = c;
        }
    }

private:
    std::string name_;
    double allowed_;
    long rows_ = 0;
    double worst_ = 0;
    double at_[3] = {};
};

}  // namespace orvanth::test

#endif
