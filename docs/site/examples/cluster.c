/* Twenty thousand t tests in one call: which genes differ between five treated and five untreated samples? */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "orvanth/shield.h"

enum { genes = 20000 };
typedef struct { double p; int gene; } Test;

static int byProbability(const void* a, const void* b) {
    const double left = ((const Test*)a)->p, right = ((const Test*)b)->p;
    return (left > right) - (left < right);
}

static double mean(const double* gene, double* variance) {
    double sum = 0, squares = 0;
    for (int j = 0; j < 5; ++j) sum += gene[j * genes];
    for (int j = 0; j < 5; ++j) squares += (gene[j * genes] - sum / 5) * (gene[j * genes] - sum / 5);
    *variance = squares / 4;
    return sum / 5;
}

int main(void) {
    /* Simulated data, a column a sample; the first 500 genes respond to the treatment. */
    static double data[10 * genes], t[genes], p[genes];
    SafeRandomNormalVariables(data, genes, 10, 0, 1, 1);
    for (int j = 0; j < 5; ++j)
        for (int i = 0; i < 500; ++i) data[j * genes + i] += 4;
    for (int i = 0; i < genes; ++i) {
        double treated, control;
        const double difference = mean(data + i, &treated) - mean(data + 5 * genes + i, &control);
        t[i] = fabs(difference) / sqrt((treated + control) / 5);
    }

    /* All upper tails; steps of 0 repeat the degrees of freedom and the flag. */
    double df = 8;
    int64_t upper = 1;
    char* pointers[] = {(char*)t, (char*)&df, (char*)&upper, (char*)p};
    intptr_t count = genes, steps[] = {8, 0, 0, 8};
    EachStudentTCDF(pointers, &count, steps, NULL);

    /* Benjamini and Hochberg: at most 5 % of what is found is expected to be false. */
    static Test test[genes];
    for (int i = 0; i < genes; ++i) test[i] = (Test){2 * p[i], i};
    qsort(test, genes, sizeof test[0], byProbability);
    int found = genes, chance = 0;
    while (found > 0 && test[found - 1].p > 0.05 * found / genes) --found;
    for (int i = 0; i < found; ++i) chance += test[i].gene >= 500;
    printf("found %d genes, %d of them by chance\n", found, chance);
    return 0;
}
