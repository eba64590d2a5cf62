// Tables of relative probabilities, built outward from the mode by a multiplicative recurrence.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_TABLE_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_TABLE_HPP

#include <cstdint>

#include "noncentral_hypergeometric/fnc_record.hpp"

namespace orvanth {

// Half-width in standard deviations, doubled, that leaves out less than `accuracy`: 6 to 16.
std::int32_t FNCNumSD(double accuracy);

// With maxLength <= 0 (length mode) returns how long the table must be. Otherwise (fill mode) fills
// `table` so that entry k belongs to x = *xfirst + k up to *xlast, the mode's entry being 1, and
// returns the sum; a walk ends after the first entry below `cutoff`. FncInvalidValue where no
// distribution exists; *xfirst and *xlast are then left alone.
double FNCMakeTable(const FNCRecord& record, double* table, std::int32_t maxLength, std::int32_t* xfirst,
                    std::int32_t* xlast, double cutoff);

}  // namespace orvanth

#endif
