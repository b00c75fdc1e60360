/*
 * Set-up and tear-down of the AV modules, which leave for all cases of a module: tuner and
 * demultiplexer, of some the external inputs, and both outputs, initialised. Decoders, signal and
 * handles are a play's own (av_play.h); AV-VideoCC has the video decoders initialised, too.
 *
 * A set-up that fails has undone what it did; a tear-down tries every step. TC_SUCCESS or
 * TC_FAILURE.
 */
#ifndef TESTCASE_AV_AV_MODULE_H
#define TESTCASE_AV_AV_MODULE_H

#include <stdint.h>

uint32_t AV_CommonTestSetup(void);
uint32_t AV_CommonTestTeardown(void);
uint32_t AV_DtvTestSetup(void);
uint32_t AV_DtvTestTeardown(void);
uint32_t AV_AtvTestSetup(void);
uint32_t AV_AtvTestTeardown(void);
uint32_t AV_PvrTestSetup(void);
uint32_t AV_TestTeardown(void);
uint32_t AV_CvbsTestSetup(void);
uint32_t AV_CvbsTestTeardown(void);
uint32_t AV_HdmiTestSetup(void);
uint32_t AV_HdmiTestTeardown(void);
uint32_t AV_YpbprTestSetup(void);
uint32_t AV_YpbprTestTeardown(void);
uint32_t AV_DtvVideoCcTestSetup(void);
uint32_t AV_DtvVideoCcTeardown(void);

/** Ahead of a case of AV-DTV: reads the channel of a manual one, from its section of the module's
 *  file, into zk_mannualCaseConfig. With null it does nothing. */
uint32_t AV_DtvTestCaseSetup(const char* caseName, const char* configFile);

#endif
