/* Least squares on R matrices. */
#ifndef ORVANTH_R_LINALG_H
#define ORVANTH_R_LINALG_H

#include <Rinternals.h>

SEXP ols(SEXP x, SEXP y, SEXP tolerance);

#define LINALG_ROUTINES {"ols", (DL_FUNC)&ols, 3},

#endif
