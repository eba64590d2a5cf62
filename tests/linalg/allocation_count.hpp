#ifndef ORVANTH_TESTS_LINALG_ALLOCATION_COUNT_HPP
#define ORVANTH_TESTS_LINALG_ALLOCATION_COUNT_HPP

namespace orvanth::test {

// Allocations through operator new in this program so far.
long AllocationCount();

}  // namespace orvanth::test

#endif
