/* External inputs for all modules: a port with a stable signal. */
#ifndef TESTCASE_EXTIN_EXTIN_HARNESS_H
#define TESTCASE_EXTIN_EXTIN_HARNESS_H

#include <stdint.h>

#include "platform/qlx_extin.h"

/**
 * Opens a port of an initialised service and waits for its signal, at most ten seconds; of HDMI
 * also one second for the cable. Prints its verdict line.
 * @return TC_SUCCESS; TC_FAILURE, with the port left open unless it was the open that failed
 */
uint32_t TC_EXTIN_START(const QLX_ExtInSource* pstSource);

/** Closes the port. Prints its verdict line. */
uint32_t TC_EXTIN_STOP(const QLX_ExtInSource* pstSource);

#endif
