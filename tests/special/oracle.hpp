// Higher precision as the judge, and the worst error seen, in units in the last place.
#ifndef ORVANTH_TESTS_SPECIAL_ORACLE_HPP
#define ORVANTH_TESTS_SPECIAL_ORACLE_HPP

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include <boost/multiprecision/cpp_bin_float.hpp>

namespace orvanth::test {

using Wide = boost::multiprecision::cpp_bin_float_50;

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
        const double nearest = std::fabs(static_cast<double>(want));
        const double ulp = std::nextafter(nearest, std::numeric_limits<double>::infinity()) - nearest;
        const double error = static_cast<double>(abs(Wide(got) - want) / Wide(ulp));
        if (error > worst_ || std::isnan(error)) {
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
