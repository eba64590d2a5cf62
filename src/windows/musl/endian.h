/* For the sources of musl: the byte order of x86. */
#ifndef ORVANTH_MUSL_ENDIAN_H
#define ORVANTH_MUSL_ENDIAN_H
#define __LITTLE_ENDIAN 1234
#define __BIG_ENDIAN 4321
#define __BYTE_ORDER __LITTLE_ENDIAN
#endif
