/* System services of the platform library. */
#ifndef PLATFORM_QLX_SYS_H
#define PLATFORM_QLX_SYS_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Brings up the platform's drivers. Called once before any other operation, on the initial thread;
 * a repeated call is a success. Returns 0, or another value when the hardware did not come up.
 */
int32_t QLX_SysInit(void);

#ifdef __cplusplus
}
#endif

#endif
