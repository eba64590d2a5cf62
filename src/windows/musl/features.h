/* For the sources of musl: the object format of Windows has neither hidden symbols nor aliases. */
#ifndef ORVANTH_MUSL_FEATURES_H
#define ORVANTH_MUSL_FEATURES_H
#define hidden
#define weak_alias(from, to)
#endif
