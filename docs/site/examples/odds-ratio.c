/* Convictions of like-sex twins of criminals: 2 of 17 dizygotic and 10 of 13 monozygotic twins (R. A. Fisher, 1962). */
#include <math.h>
#include <stdio.h>

#include "orvanth/shield.h"

/* convicted dizygotic twins, dizygotic twins, all convicted, all */
static const int x = 2, n = 17, m = 12, population = 30;

static double atLeast(double odds) { return SafeFNCHypergeometricCDF(x - 1, n, m, population, odds, 1, 0); }
static double above(double odds) { return 1 - SafeFNCHypergeometricCDF(x, n, m, population, odds, 0, 0); }

/* The odds ratio with a tail of this size, by bisection of its logarithm; the tail rises with the odds. */
static double root(double (*tailAt)(double), double target) {
    double low = -30, high = 30;
    for (int i = 0; i < 80; ++i) {
        const double middle = (low + high) / 2;
        *(tailAt(exp(middle)) < target ? &low : &high) = middle;
    }
    return exp(low);
}

int main(void) {
    const double seen = SafeHypergeometricPDF(x, m, n, population);
    double p = 0;
    for (int i = 0; i <= m; ++i) {
        const double probability = SafeHypergeometricPDF(i, m, n, population);
        if (probability <= seen * (1 + 1e-7)) p += probability;
    }
    printf("95 %% interval of the odds ratio: %.5f to %.5f, p = %.7f\n", root(atLeast, 0.025), root(above, 0.975), p);
    return 0;
}
