// I2C: four buses, and on them the chips that the platform's configuration names.
//
// A chip keeps what is written to its registers. One that is not on the board does not acknowledge.
// The board takes its chips from the same configuration as the cases, so an address there that is
// wrong for the hardware does not show here. The amplifier is a chip of its own (amplifier.h).
//
// State rules: initialisation is a flag, its end closes all buses. A bus opens once, and carries
// transfers while it is open.
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "platform/qlx_i2c.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/service/amplifier.h"

namespace sim {

SIM_RECORD(QLX_I2CConfig, SIM_MEMBER(QLX_I2CConfig, chipAddress),
           SIM_MEMBER(QLX_I2CConfig, registerAddressLength),
           SIM_MEMBER(QLX_I2CConfig, registerAddress))

}  // namespace sim

namespace {

constexpr uint32_t busCount = 4;
constexpr uint32_t rateCount = 4;
constexpr uint32_t maxRegisterAddressLength = 4;
/** A transfer of more bytes than a chip has registers wraps around, as address counters do. */
constexpr uint32_t registerSpace = 0x10000;

struct I2CState {
    std::mutex mutex;
    bool initialised = false;
    bool open[busCount] = {};
    // Bus, chip address, register: its byte.
    std::map<std::pair<uint32_t, uint8_t>, std::map<uint32_t, uint8_t>> registers;
};

I2CState& state() {
    static I2CState* instance = new I2CState;
    return *instance;
}

/** Chips on the board beside the amplifier: the test chip of the platform's common configuration,
 * and those that the board file lists as CHIP0=0xBAA of section I2C (B the bus, AA the address). */
bool chipExists(uint32_t bus, uint8_t address) {
    sim::Cfg common;
    common.load(sim::platformFile("common_config.cfg"));
    if (common.number("IIC", "IIC_DEV_BUS_ID") == bus && common.has("IIC", "IIC_DEV_ADDR") &&
        common.number("IIC", "IIC_DEV_ADDR") == address)
        return true;
    for (int i = 0;; i++) {
        std::string key = "CHIP" + std::to_string(i);
        if (!sim::board().has("I2C", key))
            return false;
        if (sim::board().number("I2C", key) == static_cast<int64_t>(bus << 8 | address))
            return true;
    }
}

bool transferAllowed(uint32_t busId, const QLX_I2CConfig* config) {
    return state().initialised && busId < busCount && state().open[busId] && config != nullptr &&
           config->registerAddressLength <= maxRegisterAddressLength &&
           (sim::amplifierAt(busId, config->chipAddress) || chipExists(busId, config->chipAddress));
}

uint32_t firstRegister(const QLX_I2CConfig& config) {
    uint32_t address = 0;
    for (uint32_t i = 0; i < config.registerAddressLength; i++)
        address |= static_cast<uint32_t>(config.registerAddress[i]) << (8 * i);
    return address;
}

/** False when the chip does not acknowledge. */
bool readChip(uint32_t bus, const QLX_I2CConfig& config, uint8_t* data, uint32_t size) {
    uint32_t first = firstRegister(config);
    if (sim::amplifierAt(bus, config.chipAddress))
        return sim::amplifierRead(first, data, size);
    auto& registers = state().registers[{bus, config.chipAddress}];
    for (uint32_t i = 0; i < size; i++)
        data[i] = registers[(first + i) % registerSpace];
    return true;
}

bool writeChip(uint32_t bus, const QLX_I2CConfig& config, const uint8_t* data, uint32_t size) {
    uint32_t first = firstRegister(config);
    if (sim::amplifierAt(bus, config.chipAddress))
        return sim::amplifierWrite(first, data, size);
    auto& registers = state().registers[{bus, config.chipAddress}];
    for (uint32_t i = 0; i < size; i++)
        registers[(first + i) % registerSpace] = data[i];
    return true;
}

}  // namespace

int32_t QLX_I2CInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_I2CDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
    for (bool& open : state().open)
        open = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_I2COpen(uint32_t busId, uint32_t rate) {
    SIM_ENTRY("bus=%d rate=%d", static_cast<int>(busId), static_cast<int>(rate));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!state().initialised || busId >= busCount || rate >= rateCount || state().open[busId])
        SIM_RETURN(QLX_FAILED);
    state().open[busId] = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_I2CClose(uint32_t busId) {
    SIM_ENTRY("bus=%d", static_cast<int>(busId));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!state().initialised || busId >= busCount || !state().open[busId])
        SIM_RETURN(QLX_FAILED);
    state().open[busId] = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_I2CRead(uint32_t busId, const QLX_I2CConfig* config, uint32_t bufferLength,
                    uint8_t* buffer, uint32_t* readLength) {
    SIM_ENTRY("bus=%d config=%s length=%u buffer=%s readLength=%s", static_cast<int>(busId),
              sim::show(config).c_str(), bufferLength, sim::showPointer(buffer),
              sim::showPointer(readLength));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!transferAllowed(busId, config) || buffer == nullptr || readLength == nullptr)
        SIM_RETURN(QLX_FAILED);
    if (!readChip(busId, *config, buffer, bufferLength))
        SIM_RETURN(QLX_FAILED);
    *readLength = bufferLength;
    simCall.output(
        {sim::bytesValue("buffer", buffer, bufferLength), sim::marked("length", readLength)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_I2CWrite(uint32_t busId, const QLX_I2CConfig* config, const uint8_t* data,
                     uint32_t dataLength, uint32_t* writtenLength) {
    SIM_ENTRY("bus=%d config=%s length=%u data=%s writtenLength=%s", static_cast<int>(busId),
              sim::show(config).c_str(), dataLength,
              sim::showBytes(data, dataLength, registerSpace).c_str(),
              sim::showPointer(writtenLength));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!transferAllowed(busId, config) || data == nullptr || writtenLength == nullptr)
        SIM_RETURN(QLX_FAILED);
    if (!writeChip(busId, *config, data, dataLength))
        SIM_RETURN(QLX_FAILED);
    *writtenLength = dataLength;
    simCall.output({sim::marked("length", writtenLength)});
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
    for (bool& open : state().open)
        open = false;
    state().registers.clear();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "I2C initialised\n";
    for (uint32_t bus = 0; bus < busCount; bus++) {
        if (state().open[bus])
            *out += sim::format("I2C bus %u open\n", bus);
    }
}

namespace sim {

extern const Family familyI2C = {reset, describe};

}  // namespace sim
