// What is on the air: transmitters by the laboratory's configuration, the board file and the
// operator, and the cables.
//
// A transmitter is never altered in place: the operator's change puts a new record in its stead, so
// that who holds one may read it without a lock.
#include "simulator/world/air.h"

#include <mutex>
#include <sstream>
#include <utility>

#include "platform/qlx_tuner.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/core/words.h"
#include "simulator/world/keyed.h"
#include "simulator/world/satellite.h"

namespace sim {

namespace {

struct SystemRow {
    uint32_t system;
    const char* name;
    /** File with the carriers of the system; null: the board file alone has them. */
    const char* channelFile;
};

const SystemRow systemRows[] = {
    {QLX_TRANSMISSION_SYSTEM_DVB_T, "DVB-T", "channel_dvb_t.cfg"},
    {QLX_TRANSMISSION_SYSTEM_DVB_T2, "DVB-T2", nullptr},
    {QLX_TRANSMISSION_SYSTEM_DVB_S, "DVB-S", "channel_dvb_s.cfg"},
    {QLX_TRANSMISSION_SYSTEM_DVB_S2, "DVB-S2", nullptr},
    {QLX_TRANSMISSION_SYSTEM_DVB_C, "DVB-C", "channel_dvb_c.cfg"},
    {QLX_TRANSMISSION_SYSTEM_DVB_C2, "DVB-C2", nullptr},
    {QLX_TRANSMISSION_SYSTEM_ATSC_T, "ATSC-T", "channel_atsc_t.cfg"},
    {QLX_TRANSMISSION_SYSTEM_ATSC_C, "ATSC-C", "channel_atsc_c.cfg"},
    {QLX_TRANSMISSION_SYSTEM_ISDB_T, "ISDB-T", "channel_isdb_t.cfg"},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S, "ISDB-S", "channel_isdb_s.cfg"},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S3, "ISDB-S3", "channel_isdb_s3.cfg"},
    {QLX_TRANSMISSION_SYSTEM_ATSC_T3, "ATSC-T3", "channel_atsc_t3.cfg"},
};

struct AirState {
    std::mutex mutex;
    bool loaded = false;
    std::vector<TransmitterPtr> transmitters;
    bool unplugged[maxTuners] = {};
};

AirState& state() {
    static AirState* instance = new AirState;
    return *instance;
}

/** DVB-S2 is DVB-S with another FEC, here as in tunings. */
bool setSystem(Transmitter& t, const std::string& name) {
    uint32_t system = systemOfName(name);
    if (system == 0)
        return false;
    t.system = system;
    if (system == QLX_TRANSMISSION_SYSTEM_DVB_S2) {
        t.system = QLX_TRANSMISSION_SYSTEM_DVB_S;
        t.fecType = QLX_FEC_TYPE_DVB_S2;
    }
    return true;
}

/** "0:128,1:128,2:32": identifiers of pipes and their modulations. */
bool setPipes(Transmitter& t, const std::string& list) {
    std::vector<Pipe> pipes;
    std::istringstream in(list);
    for (std::string part; std::getline(in, part, ',');) {
        std::string before, behind;
        int64_t id = 0;
        int64_t modulation = 0;
        bool both = partWord(part, ':', &before, &behind);
        if (!readNumber(both ? before : part, 0, UINT8_MAX, &id) ||
            (both && !readNumber(behind, 0, UINT32_MAX, &modulation)))
            return false;
        pipes.push_back({static_cast<uint8_t>(id), static_cast<uint32_t>(modulation)});
    }
    t.pipes = pipes;
    return true;
}

bool setWakeUpBits(Transmitter& t, const std::string& word) {
    bool good = setField<&Transmitter::wakeUpBits>(t, word);
    t.wakeUpBits &= 3;
    return good;
}

/** The keys of a transmitter, the same in the board file and in the operator's events. */
const Key<Transmitter> transmitterKeys[] = {
    {"SYSTEM", setSystem},
    {"ON", setField<&Transmitter::on>},
    {"LEVEL", setField<&Transmitter::levelDbm>},
    {"CN", setField<&Transmitter::noiseDb>},
    {"MODULATION", setField<&Transmitter::modulation>},
    {"SYMBOL_RATE", setField<&Transmitter::symbolRate>},
    {"SPECTRUM", setField<&Transmitter::spectrum>},
    {"BAND_WIDTH", setField<&Transmitter::bandWidth>},
    {"FEC_TYPE", setField<&Transmitter::fecType>},
    {"FEC_RATE", setField<&Transmitter::fecRate>},
    {"GUARD_INTERVAL", setField<&Transmitter::guardInterval>},
    {"TRANSMISSION_MODE", setField<&Transmitter::transmissionMode>},
    {"CELL_ID", setField<&Transmitter::cellId>},
    {"NETWORK_ID", setField<&Transmitter::networkId>},
    {"SYSTEM_ID", setField<&Transmitter::systemId>},
    {"PLPS", setPipes},
    {"EAS", setWakeUpBits},
    {"HORIZONTAL", setField<&Transmitter::horizontal>},
    {"HIGH_BAND", setField<&Transmitter::highBand>},
    {"POSITION", setField<&Transmitter::position>},
    {"NOISE_FLOOR", setField<&Transmitter::noiseFloorDbm>},
    {"STRENGTH_OFFSET", setField<&Transmitter::strengthOffset>},
    {"STREAM", setField<&Transmitter::stream>},
};

void addPipe(Transmitter& transmitter, uint8_t id, uint32_t modulation) {
    for (const Pipe& pipe : transmitter.pipes) {
        if (pipe.id == id)
            return;
    }
    transmitter.pipes.push_back({id, modulation});
}

/** The parameters that the modulators of a system are set to: those of the platform's tunings. */
void applyTuningSection(Transmitter& t, const Cfg& platform, const Cfg& common) {
    std::string section = nameOfSystem(t.system);
    auto value = [&](const char* key) {
        const Cfg& file = platform.has(section, key) ? platform : common;
        return static_cast<uint32_t>(file.number(section, key));
    };
    t.modulation = value("TUNER_MODULATION");
    t.symbolRate = value("TUNER_SYMBOLRATE");
    t.spectrum = value("TUNER_SPECTRUM");
    t.bandWidth = value("TUNER_BAND_WIDTH");
    t.fecType = value("TUNER_FEC_TYPE");
    t.fecRate = value("TUNER_FEC_RATE");
    t.guardInterval = value("TUNER_GUARD_INTERVAL");
    t.transmissionMode = value("TUNER_TRANSMISSION_MODE");
    t.hierarchy = value("TUNER_HIERACHY");
    t.priority = value("TUNER_PRIORITY");
    t.horizontal = value("TUNER_POLARIZATION") == QLX_POLARIZATION_HORIZONTAL;
    t.highBand = value("TUNER_LNB_TONESTATE") == QLX_LNB_TONE_STATE_22KHZ;
    applySection(t, section, transmitterKeys);
    if (t.system != QLX_TRANSMISSION_SYSTEM_ATSC_T3)
        return;
    for (uint32_t i = 0; i < value("TUNER_PLP_NUM") && i < 4; i++) {
        std::string key = "TUNER_PLP_ID" + std::to_string(i);
        addPipe(t, static_cast<uint8_t>(value(key.c_str())), t.modulation);
    }
}

/** Adds the transmitters of one channel file. */
void loadChannels(const SystemRow& row, const Transmitter& pattern,
                  std::vector<Transmitter>* transmitters) {
    Cfg file;
    file.load(commonFile(row.channelFile));
    uint32_t count = static_cast<uint8_t>(file.number("COMMON", "CHANNEL_NUM"));
    size_t firstOfSystem = transmitters->size();
    for (uint32_t i = 0; i < count; i++) {
        std::string section = "CHANNEL" + std::to_string(i);
        Transmitter t = pattern;
        t.frequency = static_cast<uint32_t>(file.number(section, "FREQUENCY"));
        if (row.system == QLX_TRANSMISSION_SYSTEM_ISDB_S)
            t.tsId = static_cast<uint32_t>(file.number(section, "TS_ID"));
        if (row.system == QLX_TRANSMISSION_SYSTEM_ISDB_S3)
            t.streamId = static_cast<uint32_t>(file.number(section, "STREAM_ID"));
        if (t.frequency == 0)
            continue;
        size_t place = firstOfSystem;
        while (place < transmitters->size() && ((*transmitters)[place].frequency != t.frequency ||
                                                (*transmitters)[place].tsId != t.tsId ||
                                                (*transmitters)[place].streamId != t.streamId))
            place++;
        if (place == transmitters->size()) {
            applySection(t, std::string(row.name) + "/" + std::to_string(t.frequency),
                         transmitterKeys);
            transmitters->push_back(t);
        }
        (*transmitters)[place].channels.push_back(i);
    }
}

std::vector<Transmitter> loadTransmitters() {
    Cfg platform;
    Cfg common;
    platform.load(platformFile("tuner_config.cfg"));
    common.load(configDir() + "/common_config.cfg");
    std::vector<Transmitter> transmitters;
    auto patternOf = [&](uint32_t system) {
        Transmitter t;
        t.system = system;
        t.listedSystem = system;
        applySection(t, "AIR", transmitterKeys);
        applyTuningSection(t, platform, common);
        return t;
    };
    for (const SystemRow& row : systemRows) {
        if (row.channelFile != nullptr)
            loadChannels(row, patternOf(row.system), &transmitters);
    }
    int64_t further = board().number("AIR", "TRANSMITTERS");
    for (int64_t i = 0; i < further; i++) {
        std::string section = "TRANSMITTER" + std::to_string(i);
        uint32_t system = systemOfName(board().text(section, "SYSTEM"));
        if (system == 0) {
            complain("board file: no SYSTEM in section %s", section.c_str());
            continue;
        }
        Transmitter t = patternOf(system == QLX_TRANSMISSION_SYSTEM_DVB_S2
                                      ? static_cast<uint32_t>(QLX_TRANSMISSION_SYSTEM_DVB_S)
                                      : system);
        t.frequency = static_cast<uint32_t>(board().number(section, "FREQUENCY"));
        t.tsId = static_cast<uint32_t>(board().number(section, "TS_ID"));
        t.streamId = static_cast<uint32_t>(board().number(section, "STREAM_ID"));
        applySection(t, section, transmitterKeys);
        transmitters.push_back(t);
    }
    return transmitters;
}

/** Called with the state locked. */
void loadOnce(AirState& s) {
    if (s.loaded)
        return;
    s.loaded = true;
    s.transmitters.clear();
    uint32_t id = 0;
    for (Transmitter& t : loadTransmitters()) {
        t.id = id++;
        s.transmitters.push_back(std::make_shared<const Transmitter>(std::move(t)));
    }
}

/** "N in|out". */
bool changeCable(Words& words) {
    int64_t tuner = 0;
    std::string what;
    if (!words.nextNumber(0, maxTuners - 1, &tuner) || !words.next(&what) || !words.atEnd() ||
        (what != "in" && what != "out"))
        return false;
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.unplugged[tuner] = what == "out";
    return true;
}

void resetCables() {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    for (bool& unplugged : s.unplugged)
        unplugged = false;
}

/** "NAME KEY=VALUE ...", with NAME a system, or a system and a frequency. */
bool changeTransmitters(Words& words) {
    std::string name, system, place;
    words.next(&name);
    int64_t frequency = 0;
    bool one = partWord(name, '/', &system, &place);
    uint32_t listed = systemOfName(one ? system : name);
    std::string changes = words.rest();
    Transmitter tried;
    if ((one && !readNumber(place, 0, UINT32_MAX, &frequency)) ||
        !applyChanges(tried, "air", Words(changes), transmitterKeys))
        return false;
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    bool any = false;
    for (TransmitterPtr& transmitter : s.transmitters) {
        if (transmitter->listedSystem != listed || (one && transmitter->frequency != frequency))
            continue;
        any = true;
        Transmitter changed = *transmitter;
        applyChanges(changed, "air", Words(changes), transmitterKeys);
        transmitter = std::make_shared<const Transmitter>(std::move(changed));
    }
    if (!any)
        complain("event air: there is no transmitter %s", name.c_str());
    return any;
}

void resetTransmitters() {
    forgetUserBands();
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.loaded = false;
}

}  // namespace

uint32_t systemOfName(const std::string& name) {
    for (const SystemRow& row : systemRows) {
        if (name == row.name)
            return row.system;
    }
    return 0;
}

const char* nameOfSystem(uint32_t system) {
    for (const SystemRow& row : systemRows) {
        if (system == row.system)
            return row.name;
    }
    return "";
}

std::vector<TransmitterPtr> transmittersOnAir() {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    std::vector<TransmitterPtr> out;
    for (const TransmitterPtr& transmitter : s.transmitters) {
        if (transmitter->on)
            out.push_back(transmitter);
    }
    return out;
}

bool cablePlugged(uint32_t tuner) {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return tuner < maxTuners && !s.unplugged[tuner];
}

std::vector<std::string> transmitterKeyNames() {
    std::vector<std::string> names;
    for (const Key<Transmitter>& key : transmitterKeys)
        names.push_back(key.name);
    return names;
}

const WorldPart cablePart = {"cable", changeCable, resetCables};
const WorldPart airPart = {"air", changeTransmitters, resetTransmitters};

}  // namespace sim
