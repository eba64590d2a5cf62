/* Random streams and minimisations as external pointers, which R's collector ends. */
#include "handles.h"

#include <string.h>

#include "each.h"

static SEXP Failure(void) {
    KeepFailure(LastStatus(), LastErrorText());
    error("%s", LastErrorText());
    return R_NilValue;
}

static void EndStream(SEXP pointer) {
    const RandomStreamHandle stream = (RandomStreamHandle)R_ExternalPtrAddr(pointer);
    if (stream != 0) SafeDeleteRandomStream(stream);
    R_ClearExternalPtr(pointer);
}

SEXP stream_make(SEXP seed) {
    const RandomStreamHandle stream = SafeCreateRandomStream(asInteger(seed));
    if (stream == 0) return Failure();
    SEXP pointer = PROTECT(R_MakeExternalPtr((void*)stream, R_NilValue, R_NilValue));
    R_RegisterCFinalizerEx(pointer, EndStream, TRUE);
    UNPROTECT(1);
    return pointer;
}

SEXP stream_integers(SEXP pointer, SEXP count) {
    SEXP values = PROTECT(allocVector(INTSXP, asInteger(count)));
    const RandomStreamHandle stream = (RandomStreamHandle)R_ExternalPtrAddr(pointer);
    if (SafeRandomUniformInteger(stream, INTEGER(values), asInteger(count)) != 0) Failure();
    UNPROTECT(1);
    return values;
}

SEXP normals(SEXP count, SEXP mean, SEXP sd, SEXP seed) {
    SEXP values = PROTECT(allocVector(REALSXP, asInteger(count)));
    if (SafeRandomNormalVariable(REAL(values), asInteger(count), asReal(mean), asReal(sd), asInteger(seed)) != 0)
        Failure();
    UNPROTECT(1);
    return values;
}

static void EndMinimiser(SEXP pointer) {
    LBFGSBDriverState* const state = (LBFGSBDriverState*)R_ExternalPtrAddr(pointer);
    if (state != NULL) SafeLBFGSBEnd(state);
    R_ClearExternalPtr(pointer);
}

SEXP minimiser_start(SEXP pairs, SEXP lower, SEXP upper, SEXP kinds, SEXP factr, SEXP pgtol) {
    LBFGSBDriverState* const state = SafeLBFGSBStart(length(lower), asInteger(pairs), REAL(lower), REAL(upper),
                                                     INTEGER(kinds), asReal(factr), asReal(pgtol));
    if (state == NULL) return Failure();
    SEXP pointer = PROTECT(R_MakeExternalPtr(state, R_NilValue, R_NilValue));
    R_RegisterCFinalizerEx(pointer, EndMinimiser, TRUE);
    UNPROTECT(1);
    return pointer;
}

SEXP minimiser_end(SEXP pointer) {
    EndMinimiser(pointer);
    return R_NilValue;
}

/* list(code, x, f, gradient, text) after a step; the arguments stay as they are. */
SEXP minimiser_step(SEXP pointer, SEXP x, SEXP f, SEXP gradient) {
    SEXP answer = PROTECT(allocVector(VECSXP, 5));
    SET_VECTOR_ELT(answer, 1, duplicate(x));
    SET_VECTOR_ELT(answer, 2, duplicate(f));
    SET_VECTOR_ELT(answer, 3, duplicate(gradient));
    const int code = SafeLBFGSBStep((LBFGSBDriverState*)R_ExternalPtrAddr(pointer), REAL(VECTOR_ELT(answer, 1)),
                                    REAL(VECTOR_ELT(answer, 2)), REAL(VECTOR_ELT(answer, 3)));
    SET_VECTOR_ELT(answer, 0, ScalarInteger(code));
    SET_VECTOR_ELT(answer, 4, mkString(LastErrorText()));
    UNPROTECT(1);
    return answer;
}
