// Tables of relative probabilities, built outward from the mode by a multiplicative recurrence.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_TABLE_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_TABLE_HPP

#include <cstdint>
#include <optional>
#include <span>

#include "noncentral_hypergeometric/fnc_record.hpp"

namespace orvanth {

// Entry k belongs to x = xfirst + k, the last entry to xlast. The mode's entry is 1, and sum is that of all entries.
struct FNCTable {
    std::span<double> entries;
    std::int32_t xfirst;
    std::int32_t xlast;
    double sum;
};

// Half-width in standard deviations, doubled, that leaves out less than `accuracy`: 6 to 16.
std::int32_t FNCNumSD(double accuracy);

// How many entries a table needs, 1 at least. Nothing where no distribution exists: odds of 0 or below with n > N -
// m, counts that leave no support, odds for which the variance is no number.
std::optional<std::int32_t> FNCTableLength(const FNCRecord& record);

// Fills the front of `storage`, which has as many elements as FNCTableLength says. Each of the two walks from the
// mode ends after the first entry that is less than `cutoff`.
FNCTable FNCMakeTable(const FNCRecord& record, double cutoff, std::span<double> storage);

}  // namespace orvanth

#endif
