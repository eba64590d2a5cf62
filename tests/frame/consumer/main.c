#include <stdio.h>

#include "orvanth/core_math.h"

#if ORVANTH_VERSION < ORVANTH_VERSION_NUMBER(1, 1, 0) || ORVANTH_VERSION >= ORVANTH_VERSION_NUMBER(2, 0, 0)
#error "the version macros are wrong"
#endif

int main(void) {
    const double q = NormalICDF(0.975, 0, 1, 0);
    printf("%.6f\n", q);
    return q > 1.959963 && q < 1.959965 ? 0 : 1;
}
