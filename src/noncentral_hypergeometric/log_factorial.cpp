#include "noncentral_hypergeometric/log_factorial.hpp"

#include <cmath>
#include <iterator>

#include "frame/load_state.hpp"

namespace orvanth {

namespace {

// A constant, so that threads share it without a lock and no call pays for filling it.
#include "noncentral_hypergeometric/log_factorials.inc"
static_assert(std::size(FNCLogFactorialTable) == kFNCLogFactorialEntries);

}  // namespace

double FNCLogFactorial(std::int32_t k) {
    if (k >= kFNCLogFactorialEntries) {
        const double x = k;
        const double r = 1.0 / x;
        return std::log(x) * (x + 0.5) - x + 0.9189385332046727 +
               (0.08333333333333333 - r * r * 0.002777777777777778) * r;
    }
    return k < 0 ? FNCInvalidValue : FNCLogFactorialTable[k];
}

}  // namespace orvanth
