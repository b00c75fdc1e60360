/*
 * The serial EEPROM of the board. It needs no initialisation; any thread may call; no callbacks.
 * Without the chip every call but QLX_EepromIsExist is refused with QLX_EEPROM_ERR_ABSENT.
 */
#ifndef PLATFORM_QLX_EEPROM_H
#define PLATFORM_QLX_EEPROM_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_EepromError {
    QLX_EEPROM_ERR_INVALID_PARA = 0x101101,
    QLX_EEPROM_ERR_ABSENT = 0x101102,
    /** The chip did not take or give the bytes. */
    QLX_EEPROM_ERR_IO = 0x101103,
};

/** Returns 0 when the board has the chip, else QLX_EEPROM_ERR_ABSENT. */
int32_t QLX_EepromIsExist(void);

/** Tells the chip's size in bytes. Returns 0, or QLX_EEPROM_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_EepromGetSize(uint32_t* size);

/** Tells the part of the chip that is free for applications: addresses from `start` up to, and
 *  without, `end`. Returns 0, or QLX_EEPROM_ERR_INVALID_PARA for a null pointer. */
int32_t QLX_EepromGetRange(uint32_t* start, uint32_t* end);

/**
 * Reads `size` bytes.
 * @param address   from 0; the whole of the read must lie in the chip
 * @param size      1 or more
 * @param buffer    receives the bytes
 * @param sizeRead  receives their count, 0 when the call fails
 * @return 0; QLX_EEPROM_ERR_INVALID_PARA; QLX_EEPROM_ERR_IO
 */
int32_t QLX_EepromRead(uint32_t address, uint32_t size, void* buffer, uint32_t* sizeRead);

/** Writes `size` bytes, under the rules of QLX_EepromRead. The contents outlive power off. */
int32_t QLX_EepromWrite(uint32_t address, uint32_t size, const void* buffer, uint32_t* sizeWritten);

#ifdef __cplusplus
}
#endif

#endif
