/* Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple comparison
   procedure for comparing several treatments with a control", JASA 50, 1955. */
#include <math.h>
#include <stdio.h>

#include "orvanth/shield.h"

enum { k = 3 };
static const int n[k] = {4, 5, 6}; /* the control last */
static const double count[k][6] = {
    {9.76, 8.80, 7.68, 9.36},
    {12.80, 9.68, 12.16, 9.20, 10.55},
    {7.40, 8.50, 7.20, 8.24, 9.84, 8.32},
};

int main(void) {
    double mean[k], lambda[k], squares = 0, df = 0;
    for (int i = 0; i < k; ++i) {
        double sum = 0;
        for (int j = 0; j < n[i]; ++j) sum += count[i][j];
        mean[i] = sum / n[i];
        for (int j = 0; j < n[i]; ++j) squares += (count[i][j] - mean[i]) * (count[i][j] - mean[i]);
        lambda[i] = sqrt(n[i] / (double)(n[i] + n[k - 1]));
        df += n[i] - 1;
    }
    double s = sqrt(squares / df);
    for (int i = 0; i < k - 1; ++i) {
        double t = (mean[i] - mean[k - 1]) / (s * sqrt(1.0 / n[i] + 1.0 / n[k - 1]));
        double p = SafeMCcCDF(fabs(t), k, df, lambda, 1);
        printf("drug %d: t = %.3f, p = %.4f\n", i + 1, t, p);
    }
    return 0;
}
/* prints:
drug 1: t = 0.857, p = 0.6201
drug 2: t = 3.694, p = 0.0058
*/
