// The beta family as exports and distributions call it. Failures are those of the surrounding
// call: thrown, or noted inside a Silent, where the calculation goes on and is a NaN in the end.
#ifndef ORVANTH_SPECIAL_BETA_HPP
#define ORVANTH_SPECIAL_BETA_HPP

namespace orvanth {

double BetaFunction(double a, double b);

// I_x(a, b) and 1 - I_x(a, b). One of a and b may be 0.
double RegularizedBeta(double a, double b, double x);
double RegularizedBetaC(double a, double b, double x);

// dI_x(a, b)/dx.
double BetaDensity(double a, double b, double x);

// x with I_x(a, b) = p, and with 1 - I_x(a, b) = q; 1 - x goes to *complement unless that is null.
// The two differ: on bad input the plain form stops and leaves *complement as it was.
double InverseBeta(double a, double b, double p, double* complement);
double InverseBetaC(double a, double b, double q, double* complement);

}  // namespace orvanth

#endif
