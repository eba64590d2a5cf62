#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "multiple_comparison/mc.hpp"
#include "orvanth/multiple_comparison.h"

using namespace orvanth;

namespace {

template <class Distribution>
double Cumulative(double x, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    Throwing throwing;
    const double c = Distribution(k, df, lambda).CDF(x);
    return IsSet(tail) ? 1.0 - c : c;
}

template <class Distribution>
double Quantile(double p, std::int32_t k, double df, const double* lambda, TailFlag tail) {
    Throwing throwing;
    return Distribution(k, df, lambda).ICDF(IsSet(tail) ? 1.0 - p : p);
}

}  // namespace

ORVANTH_API(double) MCaCDF(double x, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative<TukeyDistribution>(x, k, df, lambda, tail);
}

ORVANTH_API(double) MCaICDF(double p, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile<TukeyDistribution>(p, k, df, lambda, tail);
}

ORVANTH_API(double) MCbCDF(double x, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative<HsuDistribution>(x, k, df, lambda, tail);
}

ORVANTH_API(double) MCbICDF(double p, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile<HsuDistribution>(p, k, df, lambda, tail);
}

ORVANTH_API(double) MCcCDF(double x, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Cumulative<DunnettDistribution>(x, k, df, lambda, tail);
}

ORVANTH_API(double) MCcICDF(double p, int32_t k, double df, const double* lambda, TailFlag tail) {
    return Quantile<DunnettDistribution>(p, k, df, lambda, tail);
}
