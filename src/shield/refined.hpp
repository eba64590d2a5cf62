// The functions that the shield has beside its forms of the exports: the multiple-comparison distributions
// with rules that follow the arguments. Each has the arguments of the export in its name.
#ifndef ORVANTH_SHIELD_REFINED_HPP
#define ORVANTH_SHIELD_REFINED_HPP

#include <cstdint>

#include "orvanth/types.h"

namespace orvanth::shield {

double RefinedMCaCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail);
double RefinedMCaICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail);
double RefinedMCbCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail);
double RefinedMCbICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail);
double RefinedMCcCDF(double x, std::int32_t k, double df, const double* lambda, TailFlag tail);
double RefinedMCcICDF(double p, std::int32_t k, double df, const double* lambda, TailFlag tail);

}  // namespace orvanth::shield

#endif
