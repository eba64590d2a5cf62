/* An export over R vectors, through the shield's array form. */
#ifndef ORVANTH_R_EACH_H
#define ORVANTH_R_EACH_H

#include <Rinternals.h>

#include "orvanth/shield.h"

enum { kMostArguments = 8, kMostOutputs = 2 };

typedef void (*ArrayForm)(char* const*, const intptr_t*, const intptr_t*, EachReport*);

typedef struct Row {
    const char* name;
    ArrayForm form;
    const char*
        kinds;       /* of each argument: d a double, i an integer, t lower.tail, a the array of the integer before */
    double reserved; /* stands for "no result"; NaN if there is no such number */
    const char* outputs[kMostOutputs]; /* names where there are two results, otherwise empty */
    const char* arguments[kMostArguments];
} Row;

SEXP Each(const Row* row, SEXP arguments);

/* Keeps a failure for orvanth_last_error. */
void KeepFailure(int status, const char* text);
SEXP last_error(void);

#endif
