// The environment variables by which the launcher speaks to the library. The library takes them out
// again, so that programs which the program starts run in real time.
#ifndef VCLOCK_ENVIRONMENT_H
#define VCLOCK_ENVIRONMENT_H

#define VCLOCK_SEED "VCLOCK_SEED"          // a number
#define VCLOCK_TRACE "VCLOCK_TRACE"        // a file
#define VCLOCK_START "VCLOCK_START"        // seconds of 1970 UTC
#define VCLOCK_LIMIT "VCLOCK_LIMIT"        // seconds
#define VCLOCK_PATIENCE "VCLOCK_PATIENCE"  // seconds of real time
#define VCLOCK_ASAN_OPTION "verify_asan_link_order=0"

#endif
