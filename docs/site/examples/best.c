/* Which of three treatments gives the heaviest plants? Hsu's comparison of each with the best of the others. */
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
    const double df = k * (n - 1), equal[k] = {sqrt(0.5), sqrt(0.5), sqrt(0.5)};
    const double half = sqrt(squares / df * 2 / n) * SafeMCbICDF(0.95, k, df, equal, 0);
    for (int i = 0; i < k; ++i) {
        double other = -INFINITY;
        for (int j = 0; j < k; ++j)
            if (j != i) other = fmax(other, mean[j]);
        const double difference = mean[i] - other;
        const double low = fmin(0, difference - half), high = fmax(0, difference + half);
        printf("%s: %.3f from the best of the others, interval %.3f to %.3f: %s\n", name[i], difference, low, high,
               high > 0 ? "may be the best" : "is not the best");
    }
    return 0;
}
