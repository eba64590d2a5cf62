#include "linalg.h"

#include "each.h"

static MatrixDescriptor Descriptor(int rows, int columns) {
    const MatrixDescriptor made = {0, rows > 1 ? rows : 1, rows, columns};
    return made;
}

/* list(info, text, coefficients, residual sum of squares); x and y stay as they are. */
SEXP ols(SEXP x, SEXP y, SEXP tolerance) {
    const int m = nrows(x), n = ncols(x);
    SEXP a = PROTECT(duplicate(x)), b = PROTECT(duplicate(y));
    SEXP coefficients = PROTECT(allocVector(REALSXP, n));
    double* tau = (double*)R_alloc((size_t)n + 1, sizeof(double));
    const MatrixDescriptor aShape = Descriptor(m, n), bShape = Descriptor(m, 1), xShape = Descriptor(n, 1);
    int info = 0;
    if (n > 0)
        info = SafeOLS(REAL(a), &aShape, REAL(b), &bShape, REAL(coefficients), &xShape, tau, asReal(tolerance));
    SEXP text = PROTECT(mkString(info != 0 ? LastErrorText() : ""));
    double rss = R_NaReal;
    if (info == 0) rss = SafeXb(REAL(x), &aShape, REAL(coefficients), REAL(y));
    if (info != 0) KeepFailure(LastStatus(), CHAR(STRING_ELT(text, 0)));
    SEXP answer = PROTECT(allocVector(VECSXP, 4));
    SET_VECTOR_ELT(answer, 0, ScalarInteger(info));
    SET_VECTOR_ELT(answer, 1, text);
    SET_VECTOR_ELT(answer, 2, coefficients);
    SET_VECTOR_ELT(answer, 3, ScalarReal(rss));
    UNPROTECT(5);
    return answer;
}
