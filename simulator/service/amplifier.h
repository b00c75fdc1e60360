/*
 * The power amplifier of the speakers: a chip on I2C bus 0 with a reset line and, some, a mute
 * line. Which chip it is, its address and its pins are in section AMP of the platform's common
 * configuration.
 *
 * The chip answers on the bus after its reset sequence alone, and only when each of the sequence's
 * steps has lasted long enough; else it does not acknowledge until the sequence has been gone
 * through. It keeps every write, in order.
 *
 * Any thread may call, also with a lock of GPIO or I2C held.
 */
#ifndef SIMULATOR_SERVICE_AMPLIFIER_H
#define SIMULATOR_SERVICE_AMPLIFIER_H

#include <stdint.h>

#include <vector>

namespace sim {

/** A pin of the board is driven to a level from now on. */
void amplifierPin(uint32_t pin, int32_t level);

/** Whether the chip has this place; it may be in reset. */
bool amplifierAt(uint32_t bus, uint8_t address);

/** A write to a register; false when the chip does not acknowledge. */
bool amplifierWrite(uint32_t reg, const uint8_t* data, uint32_t size);
/** Reads the bytes that were written to a register last, zeros behind them. */
bool amplifierRead(uint32_t reg, uint8_t* data, uint32_t size);

struct AmplifierWrite {
    int64_t atUs;
    uint32_t reg;
    std::vector<uint8_t> data;
};

/** What has been written since the last reset of the chip. */
std::vector<AmplifierWrite> amplifierWrites();

/** Takes the power from the chip, and gives it. */
void resetAmplifier();

}  // namespace sim

#endif
