/* General purpose input and output pins. Any thread may call; no callbacks. */
#ifndef PLATFORM_QLX_GPIO_H
#define PLATFORM_QLX_GPIO_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_GPIOError {
    QLX_GPIO_ERR_INVALID_PARA = 0x100e01,
    QLX_GPIO_ERR_NOT_INIT = 0x100e02,
};

enum QLX_GPIOValue {
    QLX_GPIO_VALUE_LOW = 0,
    QLX_GPIO_VALUE_HIGH = 1,
};

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_GPIOInit(void);

/** Ends the service, whatever the number of initialisations was. Returns 0. */
int32_t QLX_GPIODeInit(void);

/**
 * Reads the level of a pin.
 * @param pin    pin number of the board
 * @param level  receives 0 or 1
 * @return 0; QLX_GPIO_ERR_NOT_INIT; QLX_GPIO_ERR_INVALID_PARA for a null pointer
 */
int32_t QLX_GPIOGetValue(uint32_t pin, int32_t* level);

/**
 * Drives a pin.
 * @param pin    pin number of the board
 * @param level  QLX_GPIOValue
 * @return 0; QLX_GPIO_ERR_NOT_INIT; QLX_GPIO_ERR_INVALID_PARA for any other level
 */
int32_t QLX_GPIOSetValue(uint32_t pin, int32_t level);

#ifdef __cplusplus
}
#endif

#endif
