// The search that finishes an inverse where Boost.Math's own search does not arrive: bisection on the forward
// function.
#ifndef ORVANTH_SPECIAL_QUANTILE_SEARCH_HPP
#define ORVANTH_SPECIAL_QUANTILE_SEARCH_HPP

#include <bit>
#include <cmath>
#include <cstdint>

#include "frame/policies.hpp"

namespace orvanth {

// The smallest double of [low, high] that is not below the root, for 0 <= low <= high. The bit patterns of positive
// doubles are in the order of their values, so that halving the patterns reaches neighbours in 64 steps at most,
// whatever the magnitude of the root. A root that is not above the smallest double underflows to 0.
template <class IsBelow>
double Bisect(double low, double high, IsBelow isBelow) {
    auto below = std::bit_cast<std::uint64_t>(low), above = std::bit_cast<std::uint64_t>(high);
    while (below < above) {
        const std::uint64_t middle = below + (above - below) / 2;
        if (isBelow(std::bit_cast<double>(middle)))
            below = middle + 1;
        else
            above = middle;
    }
    return above == 1 ? 0 : std::bit_cast<double>(above);
}

// What `search` finds; where it fails, what `finish` finds. Where both fail, errno 33 or an evaluation error, and
// the value that `search` reached. `isRoot` judges the values that come without a failure.
template <class Search, class IsRoot, class Finish>
auto SearchOrFinish(const char* function, Search search, IsRoot isRoot, Finish finish) {
    const auto first = Try(search);
    if (!first.failed && isRoot(first.value)) return first.value;
    const auto second = Try(finish);
    if (!second.failed) return second.value;
    RaiseEvaluation(function, "Root finding evaluation exceeded %1% iterations, giving up now.",
                    static_cast<double>(bmp::get_max_root_iterations<DefaultPolicy>()), kLongDouble);
    return first.value;
}

}  // namespace orvanth

#endif
