// The parameter tests that the continuous families share. Each runs for every argument, so that a
// call with two bad ones notes errno twice. The result is true if the test passed.
#ifndef ORVANTH_DISTRIBUTIONS_CHECKS_HPP
#define ORVANTH_DISTRIBUTIONS_CHECKS_HPP

#include <cmath>

#include "frame/failure.hpp"

namespace orvanth {

inline bool Check(bool passed, const char* function, const char* message, double value) {
    if (!passed) RaiseDomain(function, message, value);
    return passed;
}

// Finite and greater than 0.
inline bool CheckPositive(const char* function, const char* message, double value) {
    return Check(std::isfinite(value) && value > 0, function, message, value);
}

inline bool CheckDf(const char* function, double df) {
    return CheckPositive(function, "Degrees of freedom argument is %1%, but must be > 0 !", df);
}

// Finite and not negative.
inline bool CheckNonNegativeVariate(const char* function, double x) {
    return Check(std::isfinite(x) && x >= 0, function, "Random variate is %1% but must be >= 0 !", x);
}

inline bool CheckProbability(const char* function, double p) {
    return Check(p >= 0 && p <= 1, function, "Probability argument is %1%, but must be >= 0 and <= 1 !", p);
}

}  // namespace orvanth

#endif
