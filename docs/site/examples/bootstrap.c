/* Entrance scores and grades of fifteen law schools: the correlation and its bootstrap interval (B. Efron, 1979). */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "orvanth/shield.h"

enum { n = 15, draws = 2000 };
static const double score[n] = {576, 635, 558, 578, 666, 580, 555, 661, 651, 605, 653, 575, 545, 572, 594};
static const double grade[n] = {3.39, 3.30, 2.81, 3.03, 3.44, 3.07, 3.00, 3.43, 3.36, 3.13, 3.12, 2.74, 2.76, 2.88, 2.96};

static double correlation(const int32_t* index) {
    double x = 0, y = 0, xx = 0, xy = 0, yy = 0;
    for (int i = 0; i < n; ++i) x += score[index[i]] / n, y += grade[index[i]] / n;
    for (int i = 0; i < n; ++i) {
        const double a = score[index[i]] - x, b = grade[index[i]] - y;
        xx += a * a, xy += a * b, yy += b * b;
    }
    return xy / sqrt(xx * yy);
}

static int ascending(const void* a, const void* b) {
    return (*(const double*)a > *(const double*)b) - (*(const double*)a < *(const double*)b);
}

int main(void) {
    int32_t index[n];
    for (int i = 0; i < n; ++i) index[i] = i;
    const double seen = correlation(index);
    double resampled[draws];
    RandomStreamHandle stream = SafeCreateRandomStream(1);
    for (int i = 0; i < draws; ++i) {
        SafeRandomUniformInteger(stream, index, n);
        resampled[i] = correlation(index);
    }
    SafeDeleteRandomStream(stream);
    qsort(resampled, draws, sizeof resampled[0], ascending);
    printf("correlation %.4f, 95 %% interval %.4f to %.4f\n", seen, resampled[49], resampled[1950]);
    return 0;
}
