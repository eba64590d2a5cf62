/* A host in C that goes on after failures. Build: cc survive.c -lOrvanth.Core.Math.Shield */
#include <stdio.h>

#include "orvanth/shield.h"

int main(void) {
    /* More successes than trials: the plain export would throw, which ends a C program. */
    double p = SafeBinomialCDF(11, 10, 0.5, 0);
    printf("%g, status %d\n", p, LastStatus());
    printf("%s\n", LastErrorText());

    /* A deleted stream is a status, not a crash. */
    RandomStreamHandle stream = SafeCreateRandomStream(1);
    int32_t indices[5];
    SafeDeleteRandomStream(stream);
    printf("%d\n", SafeRandomUniformInteger(stream, indices, 5));
    printf("%s\n", LastErrorText());

    /* Three quantiles in one call; the middle one fails and the loop goes on. */
    double probabilities[] = {0.025, 1.5, 0.975}, mean = 0, sd = 1, quantiles[3];
    int64_t upper = 0;
    char* pointers[] = {(char*)probabilities, (char*)&mean, (char*)&sd, (char*)&upper, (char*)quantiles};
    intptr_t count = 3, steps[] = {8, 0, 0, 0, 8};
    EachReport report;
    EachNormalICDF(pointers, &count, steps, &report);
    printf("%.4f %s %.4f, %d failed, the first is element %d\n", quantiles[0],
           quantiles[1] != quantiles[1] ? "nan" : "a number", quantiles[2], (int)report.failures, (int)report.first);
    printf("%s\n", report.text);
    return 0;
}
/* prints:
nan, status 1
Error in function boost::math::cdf(binomial_distribution<double> const&, double): Number of Successes argument is 11, but must be <= Number of Trials !
-1006
RandomUniformInteger: the handle was deleted before
-1.9600 nan 1.9600, 1 failed, the first is element 1
NormalICDF(p = 1.5, mean = 0, sd = 1, tail = 0): a parameter or an argument is outside its range, or the calculation did not converge
*/
