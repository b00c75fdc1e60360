/* Parameters of the audio and video modules. */
#ifndef TESTCASE_AV_AV_CONFIG_H
#define TESTCASE_AV_AV_CONFIG_H

#include <stdint.h>

/**
 * Reads the source, its devices and the channels of the format cases into zk_testConfig, at
 * start-up on the initial thread. A source or decoder that does not exist ends the load: it prints
 * why and leaves the rest at 0.
 * @return TC_SUCCESS, or TC_FAILURE
 */
uint32_t TC_AV_LOAD_CONFIG(void);

#endif
