// The two kinds of flag at the boundary.
#ifndef ORVANTH_FRAME_FLAGS_HPP
#define ORVANTH_FRAME_FLAGS_HPP

#include <cstdint>

#include "orvanth/types.h"

namespace orvanth {

// Of a TailFlag only the low byte counts: 0x100 is false.
constexpr bool IsSet(TailFlag tail) noexcept { return (tail & 0xFF) != 0; }

// A selector or mode counts as a whole word: 0x100 is true.
constexpr bool IsWholeWordSet(std::int32_t word) noexcept { return word != 0; }

}  // namespace orvanth

#endif
