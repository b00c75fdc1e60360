/*
 * System services of the platform library: the chip, its clock, its capabilities, its switches. All
 * but the first call may come from any thread; there are no callbacks.
 */
#ifndef PLATFORM_QLX_SYS_H
#define PLATFORM_QLX_SYS_H

#include <sys/time.h>

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Brings up the platform's drivers. Called once before any other operation, on the initial thread;
 * a repeated call is a success. Returns 0, or another value when the hardware did not come up.
 */
int32_t QLX_SysInit(void);

enum QLX_SysError {
    QLX_SYS_ERR_INVALID_PARA = 0x100101,
};

enum {
    /** Bytes of the buffer that QLX_SysGetChipID fills. */
    QLX_SYS_CHIP_ID_SIZE = 64,
};

/** How many of each thing the platform has. */
typedef struct QLX_SysCapability {
    uint32_t NumberOfTuners;
    uint32_t NumberOfCvbsSources;
    uint32_t NumberOfYcSources;
    /** Sockets that take either signal; so the further combined ones. */
    uint32_t NumberOfYcCvbsSources;
    uint32_t NumberOfYpbprSources;
    uint32_t NumberOfYpbprCvbsSources;
    uint32_t NumberOfYpbprYcCvbsSources;
    uint32_t NumberOfScarts;
    uint32_t NumberOfVgaSources;
    uint32_t NumberOfHdmiSources;
    uint32_t NumberOfCiSlots;
    uint32_t NumberOfDemuxes;
    uint32_t NumberOfVideoPlayers;
    uint32_t NumberOfAudioPlayers;
    uint32_t NumberOfVideoOut;
    uint32_t NumberOfAudioOut;
    uint32_t NumberOfVideoWindow;
    uint32_t NumberOfRecorders;
} QLX_SysCapability;
QLX_RECORD_SIZE(QLX_SysCapability, 72);

/** Writes the chip's identity as text, at most 63 characters and a NUL, into QLX_SYS_CHIP_ID_SIZE
 *  bytes. Returns 0, or QLX_SYS_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_SysGetChipID(char* chipID);

/**
 * Sets the operating system's calendar clock.
 * @param timeNow  seconds since 1970 and microseconds, neither negative
 * @param tz       not used
 * @return 0; QLX_SYS_ERR_INVALID_PARA for a time that is none
 */
int32_t QLX_SysSetLinuxSystemTime(struct timeval timeNow, struct timezone tz);

/** Fills in the capabilities. Returns 0, or QLX_SYS_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_SysGetCapability(QLX_SysCapability* capability);

/** Draws a number from the hardware's random source. Returns 0, or QLX_SYS_ERR_INVALID_PARA for a
 *  null pointer. */
int32_t QLX_GetRandomNumber(uint32_t* number);

/** Switches the debug console's line driver: 0 off, anything else on. Returns 0. */
int32_t QLX_SetComEnabled(uint32_t enabled);

/** Switches the serial port: 0 off, anything else on. Returns 0. */
int32_t QLX_SysSetUartEnabled(uint32_t enabled);

/** Switches the panel's supply: 0 off, anything else on. Returns 0. */
int32_t QLX_SysSetPanelPower(uint32_t enabled);

/** Locks the keys on the set for use in hotels: 0 locks, 1 unlocks. Returns 0, or
 *  QLX_SYS_ERR_INVALID_PARA for any other value. */
int32_t QLX_KeypadLockValueSet(uint32_t value);

/** Tells what was set last, 1 at first. Returns 0, or QLX_SYS_ERR_INVALID_PARA for a null
 *  pointer. */
int32_t QLX_KeypadLockValueGet(uint32_t* value);

#ifdef __cplusplus
}
#endif

#endif
