/* Each export as a native routine, from the rows that the signature table gives. */
#include <R_ext/Rdynload.h>
#include <R_ext/Visibility.h>

#include "each.h"
#include "handles.h"
#include "linalg.h"

#define EXPORT(name, kinds, reserved, first, second, ...)                                       \
    _Static_assert(sizeof kinds - 1 <= kMostArguments, #name " has more arguments than a row"); \
    static SEXP each_##name(SEXP arguments) {                                                   \
        const Row row = {#name, Each##name, kinds, reserved, {first, second}, {__VA_ARGS__}};   \
        return Each(&row, arguments);                                                           \
    }
#include "rows.h"
#undef EXPORT

static const R_CallMethodDef kRoutines[] = {
#define EXPORT(name, ...) {#name, (DL_FUNC)&each_##name, 1},
#include "rows.h"
#undef EXPORT
    {"last_error", (DL_FUNC)&last_error, 0}, LINALG_ROUTINES HANDLE_ROUTINES{NULL, NULL, 0}};

attribute_visible void R_init_orvanth(DllInfo* library) {
    R_registerRoutines(library, NULL, kRoutines, NULL, NULL);
    R_useDynamicSymbols(library, FALSE);
    R_forceSymbols(library, TRUE);
}
