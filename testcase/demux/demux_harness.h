/*
 * What the four demultiplexer modules share, and the wrappers by which other modules bring a
 * demultiplexer up and take it down again.
 */
#ifndef TESTCASE_DEMUX_DEMUX_HARNESS_H
#define TESTCASE_DEMUX_DEMUX_HARNESS_H

#include <stdint.h>

#include "environment/test_env.h"
#include "platform/qlx_demux.h"

/** The feature table, by ZkFeature; null before Demux_TestSetup. */
extern const int32_t* tcDemuxFeature;

/** Set-up of the modules: loads the configuration and initialises the tuners. 0; 1 when the
 *  tuners fail. */
uint32_t Demux_TestSetup(void);
/** Tear-down: ends the tuners. 0; 1 when they fail. */
uint32_t Demux_TestTeardown(void);

/**
 * Opens a demultiplexer of an initialised service, connects it and starts it. Prints its verdict.
 * @return 0; 1 when a step failed, the ones before it being undone
 */
uint32_t TC_DEMUX_START(uint32_t eDemuxId, const QLX_Source* pstSource);

/** Stops and closes a demultiplexer; the close is tried also when the stop failed. Prints its
 *  verdict. 0 or 1. */
uint32_t TC_DEMUX_STOP(uint32_t eDemuxId);

#endif
