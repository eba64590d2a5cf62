/* The scalar exports as NumPy ufuncs. One row of ufunc_rows.inc is one ufunc; the loop is the shield's array form,
 * whose arguments have the shape of NumPy's loops. A failed element raises NumPy's own flags, so that np.errstate
 * decides; what the algorithms raised on their way is not the caller's. */
#define PY_SSIZE_T_CLEAN
#define NPY_NO_DEPRECATED_API NPY_1_7_API_VERSION
#include <Python.h>
#include <fenv.h>
#include <numpy/arrayobject.h>
#include <numpy/ufuncobject.h>
#include <string.h>

#include "orvanth/shield.h"

typedef void (*ArrayForm)(char* const*, const intptr_t*, const intptr_t*, EachReport*);

/* The last failure in a ufunc of this thread. */
static __thread EachReport last_report = {0, -1, 0, 0, ""};

static void loop(char** pointers, const npy_intp* dimensions, const npy_intp* steps, void* form) {
    EachReport report;
    ((ArrayForm)form)(pointers, (const intptr_t*)dimensions, (const intptr_t*)steps, &report);
    feclearexcept(FE_ALL_EXCEPT);
    if (report.failures == 0) return;
    memcpy(&last_report, &report, sizeof report);
    const uint32_t overflow = 1u << ORVANTH_STATUS_OVERFLOW;
    if (report.kinds & overflow) feraiseexcept(FE_OVERFLOW);
    if (report.kinds & ~overflow) feraiseexcept(FE_INVALID);
}
static PyUFuncGenericFunction loops[] = {loop};

#define UFUNC(name, inputs, outputs, types, signature, text) \
    static void* data_##name[1];                             \
    static char types_##name[] = {UNWRAP types};
#define UNWRAP(...) __VA_ARGS__
#include "ufunc_rows.inc"
#undef UFUNC

static PyObject* last_failure(PyObject* module, PyObject* nothing) {
    (void)module, (void)nothing;
    return Py_BuildValue("(is)", (int)last_report.status, last_report.text);
}

static PyObject* clear_failure(PyObject* module, PyObject* nothing) {
    (void)module, (void)nothing;
    memset(&last_report, 0, sizeof last_report);
    Py_RETURN_NONE;
}

static PyMethodDef methods[] = {
    {"last_failure", last_failure, METH_NOARGS, "(status, text) of the last element that failed in this thread."},
    {"clear_failure", clear_failure, METH_NOARGS, "Forgets the last failure of this thread."},
    {NULL, NULL, 0, NULL}};

static struct PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "orvanth._ufuncs", "The scalar exports as ufuncs.", -1, methods, NULL, NULL, NULL, NULL};

static int add(PyObject* module, const char* name, PyObject* ufunc) {
    if (ufunc == NULL) return -1;
    const int status = PyModule_AddObjectRef(module, name, ufunc);
    Py_DECREF(ufunc);
    return status;
}

PyMODINIT_FUNC PyInit__ufuncs(void) {
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(PyExc_ImportError,
                        "orvanth cannot be imported in a subinterpreter: NumPy's ufuncs belong to the main one");
        return NULL;
    }
    import_array();
    import_umath();
    PyObject* module = PyModule_Create(&definition);
    if (module == NULL) return NULL;
#define UFUNC(name, inputs, outputs, types, signature, text)                                                      \
    data_##name[0] = (void*)Each##name;                                                                           \
    if (add(module, #name,                                                                                        \
            PyUFunc_FromFuncAndDataAndSignature(loops, data_##name, types_##name, 1, inputs, outputs, PyUFunc_None, \
                                                #name, text, 0, signature)) < 0)                                  \
        goto failed;
#include "ufunc_rows.inc"
#undef UFUNC
    return module;
failed:
    Py_DECREF(module);
    return NULL;
}
