/* All pairs of three groups: weight of dried plants under a control and two treatments (R's PlantGrowth). */
#include <math.h>
#include <stdio.h>

#include "orvanth/shield.h"

enum { k = 3, n = 10 };
static const char* name[k] = {"control", "treatment 1", "treatment 2"};
static const double value[k][n] = {
    {4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14},
    {4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69},
    {6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26},
};

int main(void) {
    double mean[k] = {0}, squares = 0;
    for (int i = 0; i < k; ++i) {
        for (int j = 0; j < n; ++j) mean[i] += value[i][j] / n;
        for (int j = 0; j < n; ++j) squares += (value[i][j] - mean[i]) * (value[i][j] - mean[i]);
    }
    const double df = k * (n - 1), equal[k] = {sqrt(0.5), sqrt(0.5), sqrt(0.5)}; /* groups of equal size */
    const double error = sqrt(squares / df * 2 / n); /* of a difference of two means */
    const double half = error * SafeMCaICDF(0.95, k, df, equal, 0);
    for (int a = 0; a < k; ++a)
        for (int b = a + 1; b < k; ++b) {
            const double difference = mean[b] - mean[a];
            const double p = SafeMCaCDF(fabs(difference) / error, k, df, equal, 1);
            printf("%s - %s: %.3f, interval %.3f to %.3f, p = %.4f\n", name[b], name[a], difference,
                   difference - half, difference + half, p);
        }
    return 0;
}
