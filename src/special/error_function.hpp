// The error-function family as the rest of the library calls it; see the manual of the exports.
#ifndef ORVANTH_SPECIAL_ERROR_FUNCTION_HPP
#define ORVANTH_SPECIAL_ERROR_FUNCTION_HPP

namespace orvanth {

// erfc(x); failures are those of the surrounding call.
double ErfCValue(double x);

// x with erfc(x) = z, +-infinity with an overflow at z = 0 and 2, NaN outside [0, 2].
double InverseErfCValue(double z);

}  // namespace orvanth

#endif
