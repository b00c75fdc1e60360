/*
 * Raw access to a flash partition, through a window that the caller describes. Any thread may call;
 * no callbacks.
 */
#ifndef PLATFORM_QLX_FLASH_H
#define PLATFORM_QLX_FLASH_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_FlashError {
    QLX_FLASH_ERR_INVALID_PARA = 0x101001,
    QLX_FLASH_ERR_NOT_INIT = 0x101002,
    /** The medium did not take or give the bytes. */
    QLX_FLASH_ERR_IO = 0x101003,
};

/** A window of a partition: the addresses uDevOffset to uDevOffset + size - 1. */
typedef struct QLX_FlashDevice {
    /** Path of the partition; ends with a NUL unless it fills the field. */
    char devicePath[16];
    /** First byte of the window, in bytes from the partition's start. */
    uint32_t uDevOffset;
    /** Bytes in the window. */
    uint32_t size;
    /** Bytes of an erase block. */
    uint32_t eraseSize;
    uint32_t reserved;
    uint8_t flag;
} QLX_FlashDevice;
QLX_RECORD_SIZE(QLX_FlashDevice, 36);

/**
 * Opens the flash service for a partition; a repeated call is a success.
 * @return 0; QLX_FLASH_ERR_INVALID_PARA for a null record, a partition that the board does not
 *         have, or a window that leaves it
 */
int32_t QLX_FlashInit(const QLX_FlashDevice* device);

/** Ends the service, whatever the number of initialisations was. Returns 0. */
int32_t QLX_FlashDeInit(const QLX_FlashDevice* device);

/**
 * Reads `size` bytes.
 * @param address   from the partition's start; the whole of the read must lie in the window
 * @param size      1 or more
 * @param buffer    receives the bytes
 * @param sizeRead  receives their count, 0 when the call fails
 * @return 0; QLX_FLASH_ERR_NOT_INIT; QLX_FLASH_ERR_INVALID_PARA; QLX_FLASH_ERR_IO
 */
int32_t QLX_FlashRead(const QLX_FlashDevice* device, uint32_t address, uint32_t size, void* buffer,
                      uint32_t* sizeRead);

/** Writes `size` bytes, under the rules of QLX_FlashRead. The contents outlive power off. */
int32_t QLX_FlashWrite(const QLX_FlashDevice* device, uint32_t address, uint32_t size,
                       const void* buffer, uint32_t* sizeWritten);

#ifdef __cplusplus
}
#endif

#endif
