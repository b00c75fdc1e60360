/*
 * Power management: suspend to RAM (STR), standby, what wakes the device from them, and the
 * real-time clock (RTC) of the standby controller, which runs as long as there is mains power. Any
 * thread may call.
 */
#ifndef PLATFORM_QLX_PM_H
#define PLATFORM_QLX_PM_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_PMError {
    QLX_PM_ERR_INVALID_PARA = 0x101501,
    /** The last wake-up had another source. */
    QLX_PM_ERR_NOT_FOUND = 0x101502,
};

enum QLX_SysStandbyMode {
    /** The device goes down; only the standby controller lives on. */
    QLX_SYS_STANDBY_MODE_STANDBY = 0,
    /** The device stops with its memory kept, and goes on where it was. */
    QLX_SYS_STANDBY_MODE_STR = 1,
};

enum QLX_SysStandbyState {
    QLX_SYS_STANDBY_ENTER_STR = 0,
    QLX_SYS_STANDBY_EXIT_STR = 1,
};

/** What may wake the device, as bits. */
enum QLX_SysWakeupCondition {
    QLX_SYS_WAKEUP_COND_IR = 1,
    QLX_SYS_WAKEUP_COND_KEYPAD = 2,
    QLX_SYS_WAKEUP_COND_CEC = 4,
    QLX_SYS_WAKEUP_COND_RTC = 8,
    QLX_SYS_WAKEUP_COND_LAN = 32,
    QLX_SYS_WAKEUP_COND_WLAN = 64,
};

/** What has woken the device. A wake-up by the RTC has the reason that it was set for. */
enum QLX_SysWakeupReason {
    /** Mains power came, or the device was restarted. */
    QLX_SYS_WAKEUP_REASON_NONE = 0,
    QLX_SYS_WAKEUP_REASON_IR = 1,
    QLX_SYS_WAKEUP_REASON_KEYPAD = 2,
    QLX_SYS_WAKEUP_REASON_RTC_NO_REASON = 4,
    QLX_SYS_WAKEUP_REASON_RTC_EPG_UPDATE = 5,
    QLX_SYS_WAKEUP_REASON_RTC_EPG_NOTE = 6,
    QLX_SYS_WAKEUP_REASON_RTC_ALARM = 7,
    QLX_SYS_WAKEUP_REASON_RTC_RECORDING = 8,
    QLX_SYS_WAKEUP_REASON_RTC_OTHER = 9,
    QLX_SYS_WAKEUP_REASON_CEC = 10,
    /** A magic packet on the wired network. */
    QLX_SYS_WAKEUP_REASON_WOL = 11,
    /** A magic packet on the wireless network. */
    QLX_SYS_WAKEUP_REASON_WOW = 12,
};

/** What the device does when mains power comes. */
enum QLX_SysColdPowerOnBootMode {
    QLX_SYS_COLDPOWERON_BOOTMODE_BOOT = 0,
    QLX_SYS_COLDPOWERON_BOOTMODE_STANDBY = 1,
    QLX_SYS_COLDPOWERON_BOOTMODE_LASTSTATUS = 2,
};

/** Tells of a suspend (QLX_SysStandbyState), on a thread of the library. */
typedef void (*QLX_SysStandbyCallback)(int32_t state, void* userData);

/**
 * Begins to suspend or to shut down, and returns before it has happened.
 * @param mode      QLX_SysStandbyMode
 * @param callback  told of a suspend's begin and end, once each; may be null
 * @param userData  handed to the callback as it is
 * @return 0; QLX_PM_ERR_INVALID_PARA; QLX_FAILED while an earlier call is not over
 */
int32_t QLX_SysEnterStandby(uint32_t mode, QLX_SysStandbyCallback callback, void* userData);

/** Sets what may wake the device: bits of QLX_SysWakeupCondition, any combination. Returns 0, or
 *  QLX_PM_ERR_INVALID_PARA for bits beyond them. */
int32_t QLX_SysSetWakeupCondition(uint32_t condition);
/** Tells what was set. Returns 0, or QLX_PM_ERR_INVALID_PARA for a null pointer; so all getters. */
int32_t QLX_SysGetWakeupCondition(uint32_t* condition);

/** Tells what has woken the device last (QLX_SysWakeupReason). */
int32_t QLX_SysGetWakeupReason(uint32_t* reason);
/** Tells the code of the key that has woken the device; QLX_PM_ERR_NOT_FOUND when none has. */
int32_t QLX_SysGetWakeupIRKey(uint32_t* key);
/** Tells the physical address of the CEC device that has woken this one, 0x1000 for 1.0.0.0;
 *  QLX_PM_ERR_NOT_FOUND when none has. */
int32_t QLX_SysGetWakupCECPhysicalAdress(uint32_t* address);

// Times of the RTC are seconds since 1970.

int32_t QLX_SysPMRTCSetTime(uint32_t time);
int32_t QLX_SysPMRTCGetTime(uint32_t* time);
/** Sets when the RTC is to wake the device. A time that passes while it is awake does nothing. */
int32_t QLX_SysPMRTCSetWakeupTime(uint32_t time);
/** Tells what was set, 0 for none. */
int32_t QLX_SysPMRTCGetWakeupTime(uint32_t* time);
int32_t QLX_SysPMRTCClearWakeupTime(void);
/** Sets the reason that a wake-up by the RTC has: one of the six of the RTC. Returns 0, or
 *  QLX_PM_ERR_INVALID_PARA. */
int32_t QLX_SysPMRTCSetWakeupReason(uint32_t reason);

/** Sets what mains power does: QLX_SysColdPowerOnBootMode. Returns 0, or
 *  QLX_PM_ERR_INVALID_PARA. */
int32_t QLX_SysSetColdPowerOnBootMode(uint32_t mode);
int32_t QLX_SysGetColdPowerOnBootMode(uint32_t* mode);

/** Restarts the device. Does not return when it succeeds. */
int32_t QLX_SysRestartTV(void);

#ifdef __cplusplus
}
#endif

#endif
