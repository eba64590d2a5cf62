#include <stdio.h>

#include "orvanth/core_math.h"

int main(void) {
    const double q = NormalICDF(0.975, 0, 1, 0);
    printf("%.6f\n", q);
    return q > 1.959963 && q < 1.959965 ? 0 : 1;
}
