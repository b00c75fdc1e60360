// The antenna of a satellite tuner, and the messages that it understands.
//
// DiSEqC bus specification 4.2: framing, address, command, data. Understood are 0x00 Reset,
// 0x03 Power On, 0x02 Standby, 0x10 Read Status, 0x38 Write N0, and 0x5A ODU_Channel_change.
#include "simulator/world/satellite.h"

#include <mutex>
#include <sstream>
#include <string>

#include "platform/qlx_tuner.h"
#include "simulator/core/board.h"
#include "simulator/core/words.h"

namespace sim {

namespace {

constexpr uint8_t framingWithReply = 0x02;  // 1110 001x: the master wants an answer.
constexpr uint8_t framingMask = 0xfc;
constexpr uint8_t framingMaster = 0xe0;
constexpr uint8_t replyOk = 0xe4;
constexpr uint8_t commandReset = 0x00;
constexpr uint8_t commandReadStatus = 0x10;
constexpr uint8_t commandWriteN0 = 0x38;
constexpr uint8_t commandChannelChange = 0x5a;

constexpr int64_t tuningStep = 4000;
constexpr int64_t tuningWordOffset = 350;
/** A user band passes one carrier. */
constexpr int64_t userBandHalfWidth = 23000;

struct UserBandPlan {
    std::mutex mutex;
    bool loaded = false;
    uint32_t frequencies[userBandCount];
};

UserBandPlan& plan() {
    static UserBandPlan* instance = new UserBandPlan;
    return *instance;
}

/** The board's bands, with the one that the platform's tunings name at its place, and those that
 *  the board moves whatever the platform says. */
void loadPlan(UserBandPlan& p) {
    Cfg platform;
    platform.load(platformFile("tuner_config.cfg"));
    int64_t configured = platform.number("DVB-S", "TUNER_UNICABLE_CHANNEL_ID") - 1;
    std::istringstream usual(board().text("SATELLITE", "USER_BANDS"));
    for (uint32_t band = 0; band < userBandCount; band++) {
        std::string word;
        std::getline(usual, word, ',');
        int64_t frequency = leadingNumber(word);
        if (configured == band)
            frequency = platform.number("DVB-S", "TUNER_UNICABLE_CHANNEL_FREQ_KHZ");
        std::string moved = board().text("SATELLITE", "USER_BAND" + std::to_string(band));
        p.frequencies[band] =
            static_cast<uint32_t>(moved.empty() ? frequency : leadingNumber(moved));
    }
}

bool addressed(uint8_t address) {
    // Any device, any LNB or switch, LNB.
    return address == 0x00 || address == 0x10 || address == 0x11;
}

}  // namespace

void SatelliteAntenna::setPower(uint32_t power) {
    power_ = power;
    if (power == QLX_LNB_POWER_OFF)
        *this = SatelliteAntenna();
}

void SatelliteAntenna::setTone(bool on) {
    tone_ = on;
}

void SatelliteAntenna::toneBurst(uint32_t burst) {
    if (power_ != QLX_LNB_POWER_OFF)
        switch_ = (switch_ & ~4u) | (burst == QLX_LNB_TONEBURST_B ? 4 : 0);
}

void SatelliteAntenna::channelChange(const uint8_t* data) {
    // The message counts only while the supply is raised; that is how one receiver gets the bus.
    if (power_ != QLX_LNB_POWER_18V)
        return;
    UserBand& band = bands_[data[0] >> 5];
    uint32_t word = (data[0] & 3u) << 8 | data[1];
    band.on = word != 0;
    band.bank = data[0] >> 2 & 7;
    band.oscillator = (static_cast<int64_t>(word) + tuningWordOffset) * tuningStep;
    router_ = true;
}

std::vector<uint8_t> SatelliteAntenna::message(const uint8_t* bytes, size_t length) {
    if (power_ == QLX_LNB_POWER_OFF || length < 3 || (bytes[0] & framingMask) != framingMaster ||
        !addressed(bytes[1]))
        return {};
    std::vector<uint8_t> reply;
    if (bytes[0] & framingWithReply)
        reply.push_back(replyOk);
    switch (bytes[2]) {
        case commandReset:
            switch_ = 0;
            break;
        case commandReadStatus:
            // Bit 6: the supply is above 15 V.
            if (!reply.empty())
                reply.push_back(power_ == QLX_LNB_POWER_18V ? 0x40 : 0x00);
            break;
        case commandWriteN0:
            // The upper four bits clear, the lower four set.
            if (length >= 4)
                switch_ = (switch_ & ~(bytes[3] >> 4u)) | (bytes[3] & 0x0fu);
            break;
        case commandChannelChange:
            if (length >= 5)
                channelChange(bytes + 3);
            break;
        default:
            break;
    }
    return reply;
}

SatelliteAntenna::Source SatelliteAntenna::sourceOf(int64_t cableFrequency) const {
    Source source;
    if (power_ == QLX_LNB_POWER_OFF)
        return source;
    if (!router_) {
        source.powered = true;
        source.horizontal = power_ == QLX_LNB_POWER_18V;
        source.highBand = tone_;
        source.position = switch_ >> 2 & 3;
        source.frequency = cableFrequency;
        return source;
    }
    for (uint32_t i = 0; i < userBandCount; i++) {
        int64_t distance = cableFrequency - userBandFrequency(i);
        if (!bands_[i].on || distance < -userBandHalfWidth || distance > userBandHalfWidth)
            continue;
        source.powered = true;
        source.highBand = bands_[i].bank & 1;
        source.horizontal = bands_[i].bank & 2;
        source.position = bands_[i].bank >> 2 & 1;
        source.frequency = bands_[i].oscillator - cableFrequency;
        return source;
    }
    return source;
}

uint32_t userBandFrequency(uint32_t band) {
    UserBandPlan& p = plan();
    std::lock_guard<std::mutex> lock(p.mutex);
    if (!p.loaded) {
        p.loaded = true;
        loadPlan(p);
    }
    return band < userBandCount ? p.frequencies[band] : 0;
}

void forgetUserBands() {
    UserBandPlan& p = plan();
    std::lock_guard<std::mutex> lock(p.mutex);
    p.loaded = false;
}

ChannelChange channelChangeMessage(uint32_t channel, uint32_t bandFrequency, uint32_t frequency,
                                   uint32_t bank) {
    // EN 50494, 6.1: T = round((F + Fub) / 4 MHz) - 350, ten bits.
    int64_t word = (static_cast<int64_t>(frequency) + bandFrequency + tuningStep / 2) / tuningStep -
                   tuningWordOffset;
    uint32_t bits = static_cast<uint32_t>(word) & 0x3ff;
    ChannelChange change = {};
    change.message[0] = framingMaster;
    change.message[1] = 0x10;
    change.message[2] = commandChannelChange;
    change.message[3] =
        static_cast<uint8_t>(((channel - 1) & 7) << 5 | (bank & 7) << 2 | bits >> 8);
    change.message[4] = static_cast<uint8_t>(bits);
    change.cableFrequency =
        (static_cast<int64_t>(bits) + tuningWordOffset) * tuningStep - frequency;
    return change;
}

}  // namespace sim
