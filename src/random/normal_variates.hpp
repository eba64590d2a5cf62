// Normal variates by inversion, one word of the generator to each.
#ifndef ORVANTH_RANDOM_NORMAL_VARIATES_HPP
#define ORVANTH_RANDOM_NORMAL_VARIATES_HPP

#include <span>

#include "random/mersenne_twister.hpp"

namespace orvanth {

// mean + sqrt(2) sigma erfinv(u) with u = word 2^-31 - 1. At u = -1, the word 0, erfinv counts as -kErfInvLargest, so
// that no variate is infinite.
void FillNormalVariates(MersenneTwister& twister, std::span<double> values, double mean, double sigma);

}  // namespace orvanth

#endif
