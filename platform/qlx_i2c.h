/* I2C buses of the board. Any thread may call; no callbacks. */
#ifndef PLATFORM_QLX_I2C_H
#define PLATFORM_QLX_I2C_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_I2CBus {
    QLX_I2C_0 = 0,
    QLX_I2C_1 = 1,
    QLX_I2C_2 = 2,
    QLX_I2C_3 = 3,
};

enum QLX_I2CBusRate {
    QLX_I2C_BUSRATE_SLOW = 0,
    QLX_I2C_BUSRATE_NORMAL = 1,
    QLX_I2C_BUSRATE_MIDDLE = 2,
    QLX_I2C_BUSRATE_FAST = 3,
    QLX_I2C_BUSRATE_COLSE = 4,
};

/** Addresses one register of one chip on a bus. */
struct QLX_I2CConfig {
    uint8_t chipAddress;
    /** Bytes of registerAddress that count, lowest byte first. */
    uint8_t registerAddressLength;
    uint8_t registerAddress[10];
};
QLX_RECORD_SIZE(struct QLX_I2CConfig, 12);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_I2CInit(void);

/** Ends the service and closes all buses. Returns 0. */
int32_t QLX_I2CDeInit(void);

/**
 * Opens a bus.
 * @param busId  QLX_I2CBus
 * @param rate   QLX_I2CBusRate
 * @return 0; another value before initialisation, for a bus or rate that does not exist, or for
 *         a bus that is open already
 */
int32_t QLX_I2COpen(uint32_t busId, uint32_t rate);

/** Closes a bus. Returns 0, or another value for a bus that is not open. */
int32_t QLX_I2CClose(uint32_t busId);

/**
 * Reads from a chip's register.
 * @param busId         an open bus
 * @param config        chip and register
 * @param bufferLength  bytes to read
 * @param buffer        receives the bytes
 * @param readLength    receives the count of bytes read
 * @return 0; another value for a bus that is not open or a chip that does not acknowledge
 */
int32_t QLX_I2CRead(uint32_t busId, const struct QLX_I2CConfig* config, uint32_t bufferLength,
                    uint8_t* buffer, uint32_t* readLength);

/**
 * Writes to a chip's register.
 * @param busId          an open bus
 * @param config         chip and register
 * @param data           bytes to write
 * @param dataLength     their count
 * @param writtenLength  receives the count of bytes written
 * @return 0; another value for a bus that is not open or a chip that does not acknowledge
 */
int32_t QLX_I2CWrite(uint32_t busId, const struct QLX_I2CConfig* config, const uint8_t* data,
                     uint32_t dataLength, uint32_t* writtenLength);

#ifdef __cplusplus
}
#endif

#endif
