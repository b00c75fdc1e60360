/*
 * Types and values that all families of the platform library share.
 *
 * The library has plain C linkage, fixed-width arguments, and answers 0 for success. Its constants
 * are enumerators, so that a check prints their names; arguments that take one of them are plain
 * integers, so that a caller may pass any value and see it refused.
 */
#ifndef PLATFORM_QLX_TYPES_H
#define PLATFORM_QLX_TYPES_H

#include <stdint.h>

enum {
    QLX_SUCCESS = 0,
    /** The general refusal, above all of calls in the wrong order. */
    QLX_FAILED = 1,
};

enum {
    QLX_FALSE = 0,
    QLX_TRUE = 1,
};

/*
 * Layout checks of the library's records. The second form is for records that hold pointers: their
 * size is told for the 32-bit device, and checked only where pointers have that width.
 */
#ifdef __cplusplus
#define QLX_RECORD_SIZE(type, bytes) \
    static_assert(sizeof(type) == (bytes), #type " must have " #bytes " bytes")
#define QLX_RECORD_SIZE_32(type, bytes)                          \
    static_assert(sizeof(void*) != 4 || sizeof(type) == (bytes), \
                  #type " must have " #bytes " bytes where pointers have four")
#else
#define QLX_RECORD_SIZE(type, bytes) \
    _Static_assert(sizeof(type) == (bytes), #type " must have " #bytes " bytes")
#define QLX_RECORD_SIZE_32(type, bytes)                           \
    _Static_assert(sizeof(void*) != 4 || sizeof(type) == (bytes), \
                   #type " must have " #bytes " bytes where pointers have four")
#endif

#endif
