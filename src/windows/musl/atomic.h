/* For the fma of musl: leading zeros of a word that is not zero. */
#ifndef ORVANTH_MUSL_ATOMIC_H
#define ORVANTH_MUSL_ATOMIC_H
#include <stdint.h>
static inline int a_clz_64(uint64_t x) { return __builtin_clzll(x); }
#endif
