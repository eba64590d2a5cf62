/* Types and the calling frame shared by every exported function of Orvanth.Core.Math.
 * Usable from C11 and from C++. */
#ifndef ORVANTH_TYPES_H
#define ORVANTH_TYPES_H

#include <stdint.h>

/* ORVANTH_API(result) stands before the name of each exported function: linkage, visibility and
 * calling convention in one place. */
#ifdef __cplusplus
#define ORVANTH_EXTERN_C extern "C"
#else
#define ORVANTH_EXTERN_C extern
#endif
#if defined(_WIN32)
#if defined(ORVANTH_STATIC) /* linked in: a module definition names what a DLL exports */
#define ORVANTH_API(result) ORVANTH_EXTERN_C result __cdecl
#else
#define ORVANTH_API(result) ORVANTH_EXTERN_C __declspec(dllimport) result __cdecl
#endif
#else
#define ORVANTH_API(result) ORVANTH_EXTERN_C __attribute__((visibility("default"))) result
#endif

/* A boolean of one byte in a 32-bit argument slot: only the low byte is tested, zero is false. */
typedef int32_t TailFlag;

/* A view of column-major storage: element (i, j), from zero, lies at
 * pointer[offset + i + j * leadingDimension] in the exports that honour offset, and at
 * pointer[i + j * leadingDimension] in the others. */
typedef struct MatrixDescriptor {
    int32_t offset;           /* elements from the pointer to the first element of the view */
    int32_t leadingDimension; /* elements between the starts of two adjacent columns */
    int32_t rows;
    int32_t columns;
} MatrixDescriptor;

/* A random stream; 0 means none. */
typedef intptr_t RandomStreamHandle;

/* One bound-constrained minimisation; opaque. */
typedef struct LBFGSBDriverState LBFGSBDriverState;

#endif
