/* Random streams and the minimiser. */
#ifndef ORVANTH_R_HANDLES_H
#define ORVANTH_R_HANDLES_H

#include <Rinternals.h>

SEXP stream_make(SEXP seed);
SEXP stream_integers(SEXP pointer, SEXP count);
SEXP normals(SEXP count, SEXP mean, SEXP sd, SEXP seed);
SEXP minimiser_start(SEXP pairs, SEXP lower, SEXP upper, SEXP kinds, SEXP factr, SEXP pgtol);
SEXP minimiser_step(SEXP pointer, SEXP x, SEXP f, SEXP gradient);
SEXP minimiser_end(SEXP pointer);

#define HANDLE_ROUTINES                                                                           \
    {"stream_make", (DL_FUNC)&stream_make, 1}, {"stream_integers", (DL_FUNC)&stream_integers, 2}, \
        {"normals", (DL_FUNC)&normals, 4}, {"minimiser_start", (DL_FUNC)&minimiser_start, 6},     \
        {"minimiser_step", (DL_FUNC)&minimiser_step, 4}, {"minimiser_end", (DL_FUNC)&minimiser_end, 1},

#endif
