/* The power amplifier of the speakers: out of reset by its pins, then loaded over I2C bus 0. */
#ifndef TESTCASE_AOUT_AMP_H
#define TESTCASE_AOUT_AMP_H

#include <stdint.h>

/**
 * Loads the amplifier that g_stAOutParams names (AOUT_LoadParams). Takes up to 330 ms. Leaves the
 * services of GPIO and I2C initialised, and the bus closed; the chip stays loaded, there is no
 * undo.
 * @return TC_SUCCESS, also without an amplifier and when the chip could not be loaded, which the
 *         console shows; TC_FAILURE for a type that does not exist
 */
uint32_t AMP_Init(void);

#endif
