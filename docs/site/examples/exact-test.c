/* Do these twelve times between failures follow an exponential distribution with mean 100 hours? */
#include <math.h>
#include <stdio.h>

#include "orvanth/shield.h"

enum { n = 12 };
static const double hours[n] = {3.2, 8.1, 11.4, 17.9, 25.0, 31.7, 38.3, 52.6, 60.4, 77.1, 98.5, 143.0};

int main(void) {
    double distance = 0;
    for (int i = 0; i < n; ++i) {
        const double law = SafeGammaCDF(hours[i], 1, 100, 0); /* exponential: gamma with shape 1 */
        distance = fmax(distance, fmax((i + 1.0) / n - law, law - (double)i / n));
    }
    const double p = SafeKolmogorovCDF(distance, n, 1), critical = SafeKolmogorovICDF(0.05, n, 1);
    printf("D = %.4f, p = %.4f, critical value at 5 %%: %.4f\n", distance, p, critical);
    return 0;
}
