/* Yield against variety and dose, with a column for each variety beside the intercept: one column is redundant. */
#include <stdio.h>
#include <string.h>

#include "orvanth/shield.h"

enum { m = 9 };
static const char* name[] = {"intercept", "variety A", "variety B", "variety C", "dose"};
static const double design[5][m] = {
    {1, 1, 1, 1, 1, 1, 1, 1, 1}, {1, 1, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 1, 1, 1, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 1, 1, 1}, {1, 2, 4, 1, 3, 4, 2, 3, 5},
};
static const double yield[m] = {5.1, 5.9, 8.2, 6.3, 8.1, 9.0, 4.9, 6.2, 8.1};

int main(void) {
    int kept[5] = {0, 1, 2, 3, 4}, n = 5;
    double x[5];
    for (;;) {
        double a[5 * m], b[m], tau[5]; /* column-major; the call writes into them */
        for (int j = 0; j < n; ++j) memcpy(a + j * m, design[kept[j]], sizeof design[0]);
        memcpy(b, yield, sizeof yield);
        const MatrixDescriptor aView = {0, m, m, n}, bView = {0, m, m, 1}, xView = {0, 5, n, 1};
        const int status = SafeOLS(a, &aView, b, &bView, x, &xView, tau, 1e-9);
        if (status == 0) break;
        if (status < 0) return fprintf(stderr, "%s\n", LastErrorText()), 1;
        printf("%s is redundant\n", name[kept[status - 1]]);
        memmove(kept + status - 1, kept + status, (size_t)(n - status) * sizeof kept[0]);
        --n;
    }
    for (int j = 0; j < n; ++j) printf("%s: %.4f\n", name[kept[j]], x[j]);
    return 0;
}
