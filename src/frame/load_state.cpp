#include "frame/load_state.hpp"

#include <bit>

#include "frame/assumptions.hpp"

namespace orvanth {

// The order of these definitions is the order of their initialisation.
const double FNCInvalidValue = std::bit_cast<double>(std::uint64_t{0xE8C308A501F805DD});
const std::int32_t LapackWorkLength = 10000;
double* const LapackWork = new double[10000];
std::int32_t* const LapackIntWork = new std::int32_t[10000];

}  // namespace orvanth
