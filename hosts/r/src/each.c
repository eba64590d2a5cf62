#include "each.h"

#include <R.h>
#include <R_ext/Utils.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

/* Elements between two looks for the user's interrupt. */
enum { kChunk = 256 };

/* An integer that no argument can hold: the shield refuses it, and the element becomes NaN. */
#define UNFIT INT64_MIN

typedef struct Column {
    char* values;       /* doubles or 64-bit integers */
    intptr_t step;      /* 0 repeats one value */
    const double* real; /* where R's doubles are needed again, of `length` elements */
    R_xlen_t length;
    int mayMiss; /* a NaN or NA is among them */
} Column;

static struct {
    int status;
    char text[ORVANTH_TEXT_LENGTH];
} lastFailure;

void KeepFailure(int status, const char* text) {
    lastFailure.status = status;
    snprintf(lastFailure.text, sizeof lastFailure.text, "%s", text);
}

SEXP last_error(void) {
    SEXP text = PROTECT(mkString(lastFailure.status != 0 ? lastFailure.text : ""));
    lastFailure.status = 0;
    UNPROTECT(1);
    return text;
}

static int IsWhole(double value) { return value == floor(value) && fabs(value) < 9.0e15; }

/* Lengths other than 1 and n are rare; such a column is written out. */
static R_xlen_t WrittenLength(R_xlen_t length, R_xlen_t n) { return length == 1 ? 1 : n; }

static Column MakeColumn(char kind, SEXP values, R_xlen_t n) {
    Column column = {0};
    column.real = REAL(values);
    column.length = XLENGTH(values);
    for (R_xlen_t i = 0; i < column.length && !column.mayMiss; ++i) column.mayMiss = ISNAN(column.real[i]);
    const R_xlen_t written = WrittenLength(column.length, n);
    column.step = written == 1 ? 0 : 8;
    if (kind == 'd') {
        column.values = (char*)column.real;
        if (written != column.length) {
            double* made = (double*)R_alloc((size_t)written, sizeof(double));
            for (R_xlen_t i = 0; i < written; ++i) made[i] = column.real[i % column.length];
            column.values = (char*)made;
        }
    } else {
        int64_t* made = (int64_t*)R_alloc((size_t)written, sizeof(int64_t));
        for (R_xlen_t i = 0; i < written; ++i) {
            const double value = column.real[i % column.length];
            made[i] = IsWhole(value) ? (int64_t)value : UNFIT;
        }
        column.values = (char*)made;
    }
    return column;
}

static Column MakeTail(SEXP lowerTail) {
    const int lower = length(lowerTail) == 1 ? asLogical(lowerTail) : NA_LOGICAL;
    if (lower == NA_LOGICAL) error("'lower.tail' must be TRUE or FALSE");
    int64_t* made = (int64_t*)R_alloc(1, sizeof(int64_t));
    *made = !lower;
    Column column = {(char*)made, 0, NULL, 1, 0};
    return column;
}

/* One array for all elements. A single number is repeated for the largest count. */
static Column MakeArray(SEXP values, const Column* counts, intptr_t* length) {
    Column column = {(char*)REAL(values), 0, NULL, 1, 0};
    *length = XLENGTH(values);
    if (*length == 1) {
        double most = 1;
        for (R_xlen_t i = 0; i < counts->length; ++i)
            if (counts->real[i] > most) most = counts->real[i];
        if (most > 46341) most = 46341; /* the library's own limit */
        *length = (intptr_t)most;
        double* made = (double*)R_alloc((size_t)*length, sizeof(double));
        for (intptr_t i = 0; i < *length; ++i) made[i] = REAL(values)[0];
        column.values = (char*)made;
    }
    return column;
}

/* The sum of the arguments that are missing at an element, which is NA where one of them is, as in R's own functions;
 * 0 if none is. */
static double Missing(const Column* columns, int count, R_xlen_t i) {
    double sum = 0;
    for (int k = 0; k < count; ++k)
        if (columns[k].mayMiss) {
            const double value = columns[k].real[i % columns[k].length];
            if (ISNAN(value)) {
                if (R_IsNA(value)) return NA_REAL;
                sum = R_NaN;
            }
        }
    return sum;
}

/* Says why element i has no value, by a call for it alone. */
static void Explain(const Row* row, const Column* columns, int count, char* const* pointers, const intptr_t* steps,
                    int slots, intptr_t arrayLength, R_xlen_t i, EachReport* report) {
    for (int k = 0; k < count; ++k)
        if (row->kinds[k] == 'i') {
            const double value = columns[k].real[i % columns[k].length];
            if (!IsWhole(value)) {
                report->status = ORVANTH_STATUS_ARGUMENT;
                snprintf(report->text, sizeof report->text, "%s: %s = %g is not a whole number", row->name,
                         row->arguments[k], value);
                return;
            }
        }
    char* at[kMostArguments + kMostOutputs];
    double ignored[kMostOutputs];
    for (int k = 0; k < slots; ++k) at[k] = k < count ? pointers[k] + i * steps[k] : (char*)&ignored[k - count];
    const intptr_t dimensions[2] = {1, arrayLength};
    row->form(at, dimensions, steps, report);
    if (report->status == ORVANTH_STATUS_OK) {
        report->status = ORVANTH_STATUS_NO_VALUE;
        snprintf(report->text, sizeof report->text, "%s: there is no value here", row->name);
    }
}

static void Warn(const EachReport* report, R_xlen_t first, R_xlen_t failures) {
    KeepFailure(report->status, report->text);
    SEXP name = PROTECT(mkString("orvanth"));
    SEXP space = PROTECT(R_FindNamespace(name));
    SEXP text = PROTECT(mkString(report->text));
    SEXP status = PROTECT(ScalarInteger(report->status));
    SEXP where = PROTECT(ScalarReal((double)first + 1));
    SEXP count = PROTECT(ScalarReal((double)failures));
    SEXP call = PROTECT(lang5(install(".nans_produced"), text, status, where, count));
    eval(call, space);
    UNPROTECT(7);
}

/* The attributes of the first argument that is as long as the result. */
static void KeepAttributes(SEXP result, SEXP arguments, const char* kinds, R_xlen_t n) {
    for (int k = 0; kinds[k] != 0; ++k)
        if (kinds[k] != 'a' && kinds[k] != 't' && XLENGTH(VECTOR_ELT(arguments, k)) == n) {
            SHALLOW_DUPLICATE_ATTRIB(result, VECTOR_ELT(arguments, k));
            return;
        }
}

static R_xlen_t ResultLength(SEXP arguments, const char* kinds) {
    R_xlen_t n = 1;
    for (int k = 0; kinds[k] != 0; ++k) {
        SEXP argument = VECTOR_ELT(arguments, k);
        if (kinds[k] == 't') continue;
        if (!isNumeric(argument) || isComplex(argument)) error("non-numeric argument to mathematical function");
        if (kinds[k] == 'a') continue;
        const R_xlen_t length = XLENGTH(argument);
        if (length == 0) return 0;
        if (length > n) n = length;
    }
    return n;
}

SEXP Each(const Row* row, SEXP arguments) {
    const int count = (int)strlen(row->kinds);
    const int results = row->outputs[0][0] != 0 ? 2 : 1;
    const R_xlen_t n = ResultLength(arguments, row->kinds);

    Column columns[kMostArguments];
    char* pointers[kMostArguments + kMostOutputs];
    char* at[kMostArguments + kMostOutputs];
    intptr_t steps[kMostArguments + kMostOutputs + 1];
    intptr_t arrayLength = 0;
    int anyMissing = 0;
    SEXP reals = PROTECT(allocVector(VECSXP, count));
    for (int k = 0; k < count && n > 0; ++k) {
        const char kind = row->kinds[k];
        SEXP values = VECTOR_ELT(arguments, k);
        if (kind != 't') {
            values = coerceVector(values, REALSXP);
            SET_VECTOR_ELT(reals, k, values);
        }
        columns[k] = kind == 't'   ? MakeTail(values)
                     : kind == 'a' ? MakeArray(values, &columns[k - 1], &arrayLength)
                                   : MakeColumn(kind, values, n);
        pointers[k] = columns[k].values;
        steps[k] = columns[k].step;
        anyMissing = anyMissing || columns[k].mayMiss;
    }
    SEXP answers = PROTECT(allocVector(VECSXP, results));
    for (int k = 0; k < results; ++k) {
        SET_VECTOR_ELT(answers, k, allocVector(REALSXP, n));
        pointers[count + k] = (char*)REAL(VECTOR_ELT(answers, k));
        steps[count + k] = 8;
    }
    const int slots = count + results;
    steps[slots] = 8; /* between the doubles of an array */

    EachReport report, firstReport = {0};
    for (R_xlen_t i = 0; i < n; i += kChunk) {
        const intptr_t dimensions[2] = {n - i < kChunk ? n - i : kChunk, arrayLength};
        for (int k = 0; k < slots; ++k) at[k] = pointers[k] + i * steps[k];
        row->form(at, dimensions, steps, &report);
        if (report.failures > 0 && firstReport.failures == 0) firstReport = report;
        if (n > kChunk) R_CheckUserInterrupt();
    }

    double* values = REAL(VECTOR_ELT(answers, 0));
    double* second = results == 2 ? REAL(VECTOR_ELT(answers, 1)) : NULL;
    R_xlen_t failures = 0, first = 0;
    for (R_xlen_t i = 0; i < n; ++i) {
        const double missing = anyMissing ? Missing(columns, count, i) : 0;
        if (ISNAN(missing)) {
            values[i] = missing;
            if (second != NULL) second[i] = missing;
        } else if (ISNAN(values[i]) || values[i] == row->reserved) {
            values[i] = R_NaN;
            if (failures++ == 0) first = i;
        }
    }
    for (int k = 0; k < results && n > 0; ++k) KeepAttributes(VECTOR_ELT(answers, k), arguments, row->kinds, n);

    SEXP answer = VECTOR_ELT(answers, 0);
    if (results == 2) {
        answer = answers;
        SEXP names = PROTECT(allocVector(STRSXP, 2));
        for (int k = 0; k < 2; ++k) SET_STRING_ELT(names, k, mkChar(row->outputs[k]));
        setAttrib(answers, R_NamesSymbol, names);
        UNPROTECT(1);
    }
    if (failures > 0) {
        Explain(row, columns, count, pointers, steps, slots, arrayLength, first, &report);
        Warn(&report, first, failures);
    } else if (firstReport.failures > 0 && !anyMissing) {
        KeepFailure(firstReport.status,
                    firstReport.text); /* a result too large, say: infinite, and no warning in R */
    }
    UNPROTECT(2);
    return answer;
}
