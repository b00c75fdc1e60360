/*
 * What the power management cases share. The console thread waits on a condition, a short-lived
 * thread calls the library, and the library's own thread runs the callback.
 */
#ifndef TESTCASE_PM_PM_HARNESS_H
#define TESTCASE_PM_PM_HARNESS_H

#include <stdint.h>

#include "framework/case/check.h"

/** Makes and destroys the condition that a resume signals; it counts monotonic time. 0: done. */
int pmInitWait(void);
void pmDestroyWait(void);

/** Suspends to RAM and waits for the resume, ten seconds of monotonic time at most. Returns 0 when
 *  the device has resumed, else 1 with a message. */
uint32_t PM_EnterSTR(void);

/** Shuts the device down, which takes the program with it. Returns 1 when it stays up. */
uint32_t PM_EnterStandby(void);

/** A time of the RTC as text, its newline included. */
const char* rtcText(uint32_t seconds, char (&text)[32]);

/** Sets the RTC to now, a wake-up in ten seconds with the reason, and suspends. Returns 0 when the
 *  device comes back with that reason, else 1 with a message. */
uint32_t testStrWakeupRtc(uint32_t wakeup_reason);

/** The same with standby: returns 1 when the device stays up. */
uint32_t testStandbyWakeupRtc(uint32_t wakeup_reason);

/** The first four steps of these two in the name of `tc`, with the RTC set `aheadOfLinux` seconds
 *  ahead of the operating system's time. Whether all succeeded. */
bool prepareRtcWakeup(CaseContext& tc, uint32_t wakeup_reason, uint32_t aheadOfLinux);

/** Reads the wake-up reason, and compares it. Whether it is the one. */
bool checkWakeupReason(CaseContext& tc, uint32_t wakeup_reason);

/** Prints the hardware address that a magic packet for the interface has to bear. */
void ShowMagicPacketHint(const char* interface);

/** Wake-up by the wireless network. In no table: it needs a bench with an access point that can
 *  send magic packets. */
uint32_t TC_PM_STR_WOWWakeUp_001(void);

#endif
