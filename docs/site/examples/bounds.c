/* Velocity of an enzyme against concentration (R's Puromycin): Michaelis and Menten's curve, top at most 205. */
#include <stdio.h>

#include "orvanth/shield.h"

enum { n = 12 };
static const double concentration[n] = {0.02, 0.02, 0.06, 0.06, 0.11, 0.11, 0.22, 0.22, 0.56, 0.56, 1.10, 1.10};
static const double velocity[n] = {76, 47, 97, 107, 123, 139, 159, 152, 191, 201, 207, 200};

/* Residual sum of squares and its gradient; x is the top in hundreds, and the concentration of half of it. */
static double squares(const double* x, double* gradient) {
    double sum = 0;
    gradient[0] = gradient[1] = 0;
    for (int i = 0; i < n; ++i) {
        const double share = concentration[i] / (x[1] + concentration[i]);
        const double residual = 100 * x[0] * share - velocity[i];
        sum += residual * residual;
        gradient[0] += 2 * residual * 100 * share;
        gradient[1] -= 2 * residual * 100 * x[0] * share / (x[1] + concentration[i]);
    }
    return sum;
}

int main(void) {
    for (int bounded = 0; bounded < 2; ++bounded) {
        /* A kind of 1 has a lower bound alone, a kind of 2 both. */
        const double lower[2] = {0, 0.001}, upper[2] = {2.05, 0};
        const int32_t kind[2] = {bounded ? 2 : 1, 1};
        double x[2] = {1, 0.1}, f = 0, gradient[2] = {0, 0};
        LBFGSBDriverState* state = SafeLBFGSBStart(2, 10, lower, upper, kind, 4.5, 1e-6);
        int32_t code;
        do {
            code = SafeLBFGSBStep(state, x, &f, gradient);
            if (code == 1) f = squares(x, gradient);
        } while (code == 1 || code == 2);
        SafeLBFGSBEnd(state);
        printf("top %.2f, half at %.5f, sum of squares %.2f\n", 100 * x[0], x[1], f);
    }
    return 0;
}
