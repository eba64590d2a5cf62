/* The caller's loop in C: Rosenbrock's function with x[1] held at 0.5 or below. */
#include <math.h>
#include <stdio.h>

#include "orvanth/optimise.h"

static double rosenbrock(const double* x, double* g) {
    const double a = x[1] - x[0] * x[0], b = 1 - x[0];
    g[0] = -400 * a * x[0] - 2 * b;
    g[1] = 200 * a;
    return 100 * a * a + b * b;
}

int main(void) {
    const double lower[2] = {0, 0}, upper[2] = {0, 0.5}; /* only upper[1] counts: */
    const int32_t kind[2] = {0, 3};                      /* 0 none, 1 lower, 2 both, 3 upper */
    double x[2] = {2, 2}, f = 0, g[2] = {0, 0};
    int iterates = 0;
    int32_t code;

    LBFGSBDriverState* state = LBFGSBStart(2, 5, lower, upper, kind, 1e7, 1e-5);
    do {
        code = LBFGSBStep(state, x, &f, g);
        if (code == 1) f = rosenbrock(x, g);       /* x may have moved: evaluate where it is now */
        if (code == 2 && ++iterates == 200) break; /* a finished iterate is the place to stop */
    } while (code == 1 || code == 2);
    LBFGSBEnd(state); /* right after any code */

    printf("code %d after %d iterates: f = %.6f at (%.6f, %.6f)\n", (int)code, iterates, f, x[0], x[1]);
    return code == 3 && fabs(x[1] - 0.5) < 1e-9 ? 0 : 1;
}
