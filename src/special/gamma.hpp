// The gamma family as exports and distributions call it. Failures are those of the surrounding
// call: thrown, or noted inside a Silent, where the calculation goes on and is a NaN in the end.
#ifndef ORVANTH_SPECIAL_GAMMA_HPP
#define ORVANTH_SPECIAL_GAMMA_HPP

namespace orvanth {

double RegularizedGammaP(double a, double x);
double RegularizedGammaQ(double a, double x);

// dP(a, x)/dx.
double GammaDensity(double a, double x);

// x with P(a, x) = p, and with Q(a, x) = q; the largest double, not infinity, at p = 1 and q = 0.
double InverseGammaP(double a, double p);
double InverseGammaQ(double a, double q);

}  // namespace orvanth

#endif
