#include "simulator/service/amplifier.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "simulator/core/board.h"
#include "simulator/core/capture.h"
#include "simulator/core/sim.h"

namespace sim {

namespace {

/** A step of a reset sequence: the reset line's level, and for how long at least. */
struct Step {
    int32_t level;
    int64_t leastMs;
};

struct ChipRow {
    const char* name;
    std::vector<Step> sequence;
    /** The mute line must be high, or the chip's clock does not start. */
    bool needsMuteHigh;
    /** Register 0x7E chooses the bank of the others. */
    bool banks;
};

/** By AMP_CHIP_NAME; the first is that of a board without a chip. */
const ChipRow chipRows[] = {
    {"none", {}, false, false},
    {"NF8212", {{0, 110}, {1, 5}}, false, false},
    {"NF8214", {{0, 110}, {1, 5}}, false, false},
    {"NF8822", {{0, 10}, {1, 1}, {0, 1}, {1, 2}}, false, true},
    {"TI5711", {{0, 100}, {1, 10}, {0, 1}, {1, 15}}, false, false},
    {"NF8928", {{1, 10}, {0, 5}, {1, 2}}, true, true},
};

constexpr uint32_t bankRegister = 0x7E;

/** A level of the reset line, and since when. */
struct Edge {
    int32_t level;
    int64_t atUs;
};

struct Amplifier {
    std::mutex mutex;
    bool configured = false;
    const ChipRow* row = &chipRows[0];
    uint32_t resetPin = 0;
    uint32_t mutePin = 0;
    uint8_t address = 0;

    /** What the lines have done, the latest last; before the first they were low since power on. */
    std::vector<Edge> edges;
    int32_t mute = 0;
    /** The sequence was gone through. */
    bool awake = false;
    uint32_t bank = 0;
    std::map<std::pair<uint32_t, uint32_t>, std::vector<uint8_t>> registers;
    std::vector<AmplifierWrite> writes;
};

Amplifier& amplifier() {
    static Amplifier* instance = new Amplifier;
    return *instance;
}

/** Called with the chip locked. */
void configureOnce(Amplifier& a) {
    if (a.configured)
        return;
    a.configured = true;
    Cfg common;
    common.load(platformFile("common_config.cfg"));
    int64_t chip = common.number("AMP", "AMP_CHIP_NAME");
    bool known = chip > 0 && chip < static_cast<int64_t>(std::size(chipRows));
    a.row = &chipRows[known ? chip : 0];
    a.resetPin = static_cast<uint32_t>(common.number("AMP", "AMP_GPIO_RESET"));
    a.mutePin = static_cast<uint32_t>(common.number("AMP", "AMP_GPIO_MUTE"));
    a.address = static_cast<uint8_t>(common.number("AMP", "AMP_I2C_ADDR"));
    a.edges = {{0, INT64_MIN / 2}};
}

/** Whether the reset line has gone through the chip's sequence, each step long enough. */
bool sequenceDone(const Amplifier& a) {
    const std::vector<Step>& sequence = a.row->sequence;
    if (a.edges.size() < sequence.size())
        return false;
    int64_t end = nowUs();
    for (size_t back = 1; back <= sequence.size(); back++) {
        const Edge& edge = a.edges[a.edges.size() - back];
        const Step& step = sequence[sequence.size() - back];
        if (edge.level != step.level || end - edge.atUs < step.leastMs * 1000)
            return false;
        end = edge.atUs;
    }
    return true;
}

/** Whether the chip acknowledges. Called with the chip locked. */
bool answers(Amplifier& a) {
    if (!a.awake)
        a.awake = sequenceDone(a) && (!a.row->needsMuteHigh || a.mute == 1);
    return a.awake;
}

/** "FILE": the writes, a line each. */
bool captureWrites(const std::string& path, Words&, std::string* message) {
    std::string text;
    for (const AmplifierWrite& write : amplifierWrites()) {
        text += format("%lld.%06lld %02X:", static_cast<long long>(write.atUs / 1000000),
                       static_cast<long long>(write.atUs % 1000000), write.reg);
        for (uint8_t byte : write.data)
            text += format(" %02X", byte);
        text += "\n";
    }
    return writeCapture(path, text, message);
}

const Capture ofWrites{"amplifier", captureWrites};

}  // namespace

void amplifierPin(uint32_t pin, int32_t level) {
    Amplifier& a = amplifier();
    std::lock_guard<std::mutex> lock(a.mutex);
    configureOnce(a);
    if (pin == a.mutePin)
        a.mute = level;
    if (pin != a.resetPin || level == a.edges.back().level)
        return;
    a.edges.push_back({level, nowUs()});
    if (a.edges.size() > 8)
        a.edges.erase(a.edges.begin());
    if (level != 0)
        return;
    a.awake = false;
    a.bank = 0;
    a.registers.clear();
    a.writes.clear();
}

bool amplifierAt(uint32_t bus, uint8_t address) {
    Amplifier& a = amplifier();
    std::lock_guard<std::mutex> lock(a.mutex);
    configureOnce(a);
    return bus == QLX_I2C_0 && a.row != &chipRows[0] && address == a.address;
}

bool amplifierWrite(uint32_t reg, const uint8_t* data, uint32_t size) {
    Amplifier& a = amplifier();
    std::lock_guard<std::mutex> lock(a.mutex);
    if (!answers(a))
        return false;
    std::vector<uint8_t> bytes(data, data + size);
    a.writes.push_back({nowUs(), reg, bytes});
    if (a.row->banks && reg == bankRegister && size > 0)
        a.bank = bytes[0];
    else
        a.registers[{a.bank, reg}] = bytes;
    return true;
}

bool amplifierRead(uint32_t reg, uint8_t* data, uint32_t size) {
    Amplifier& a = amplifier();
    std::lock_guard<std::mutex> lock(a.mutex);
    if (!answers(a))
        return false;
    const std::vector<uint8_t>& bytes = a.registers[{a.bank, reg}];
    for (uint32_t i = 0; i < size; i++)
        data[i] = i < bytes.size() ? bytes[i] : 0;
    return true;
}

std::vector<AmplifierWrite> amplifierWrites() {
    std::lock_guard<std::mutex> lock(amplifier().mutex);
    return amplifier().writes;
}

void resetAmplifier() {
    Amplifier& a = amplifier();
    std::lock_guard<std::mutex> lock(a.mutex);
    a.configured = false;
    a.row = &chipRows[0];
    a.edges.clear();
    a.mute = 0;
    a.awake = false;
    a.bank = 0;
    a.registers.clear();
    a.writes.clear();
}

}  // namespace sim
