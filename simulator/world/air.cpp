// What is on the air: transmitters by the laboratory's configuration, the board file and the
// operator, the cables, and what each tuner receives.
//
// A transmitter is never altered in place: the operator's change puts a new record in its stead, so
// that who holds one may read it without a lock.
#include "simulator/world/air.h"

#include <cstdlib>
#include <mutex>
#include <sstream>
#include <utility>

#include "platform/qlx_tuner.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"

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
    Reception receptions[maxTuners];
    uint64_t sequences[maxTuners] = {};
    std::vector<std::function<void(uint32_t)>> receptionListeners;
    std::function<void()> airListener;
};

AirState& state() {
    static AirState* instance = new AirState;
    return *instance;
}

uint32_t number(const std::string& text) {
    return static_cast<uint32_t>(strtoull(text.c_str(), nullptr, 0));
}

double decimal(const std::string& text) {
    return strtod(text.c_str(), nullptr);
}

/** "0:128,1:128,2:32": identifiers of pipes and their modulations. */
std::vector<Pipe> pipesOf(const std::string& text) {
    std::vector<Pipe> pipes;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, ',');) {
        size_t colon = part.find(':');
        uint32_t modulation = colon == std::string::npos ? 0 : number(part.substr(colon + 1));
        pipes.push_back({static_cast<uint8_t>(number(part)), modulation});
    }
    return pipes;
}

struct TransmitterKey {
    const char* name;
    void (*set)(Transmitter& transmitter, const std::string& value);
};

/** DVB-S2 is DVB-S with another FEC, here as in tunings. */
void setSystem(Transmitter& t, const std::string& name) {
    t.system = systemOfName(name);
    if (t.system != QLX_TRANSMISSION_SYSTEM_DVB_S2)
        return;
    t.system = QLX_TRANSMISSION_SYSTEM_DVB_S;
    t.fecType = QLX_FEC_TYPE_DVB_S2;
}

/** The keys of a transmitter, the same in the board file and in the operator's events. */
const TransmitterKey transmitterKeys[] = {
    {"SYSTEM", setSystem},
    {"ON", [](Transmitter& t, const std::string& v) { t.on = number(v) != 0; }},
    {"LEVEL", [](Transmitter& t, const std::string& v) { t.levelDbm = decimal(v); }},
    {"CN", [](Transmitter& t, const std::string& v) { t.noiseDb = decimal(v); }},
    {"MODULATION", [](Transmitter& t, const std::string& v) { t.modulation = number(v); }},
    {"SYMBOL_RATE", [](Transmitter& t, const std::string& v) { t.symbolRate = number(v); }},
    {"SPECTRUM", [](Transmitter& t, const std::string& v) { t.spectrum = number(v); }},
    {"BAND_WIDTH", [](Transmitter& t, const std::string& v) { t.bandWidth = number(v); }},
    {"FEC_TYPE", [](Transmitter& t, const std::string& v) { t.fecType = number(v); }},
    {"FEC_RATE", [](Transmitter& t, const std::string& v) { t.fecRate = number(v); }},
    {"GUARD_INTERVAL", [](Transmitter& t, const std::string& v) { t.guardInterval = number(v); }},
    {"TRANSMISSION_MODE",
     [](Transmitter& t, const std::string& v) { t.transmissionMode = number(v); }},
    {"CELL_ID", [](Transmitter& t, const std::string& v) { t.cellId = number(v); }},
    {"NETWORK_ID", [](Transmitter& t, const std::string& v) { t.networkId = number(v); }},
    {"SYSTEM_ID", [](Transmitter& t, const std::string& v) { t.systemId = number(v); }},
    {"PLPS", [](Transmitter& t, const std::string& v) { t.pipes = pipesOf(v); }},
    {"EAS", [](Transmitter& t, const std::string& v) { t.wakeUpBits = number(v) & 3; }},
    {"HORIZONTAL", [](Transmitter& t, const std::string& v) { t.horizontal = number(v) != 0; }},
    {"HIGH_BAND", [](Transmitter& t, const std::string& v) { t.highBand = number(v) != 0; }},
    {"POSITION", [](Transmitter& t, const std::string& v) { t.position = number(v); }},
    {"NOISE_FLOOR", [](Transmitter& t, const std::string& v) { t.noiseFloorDbm = decimal(v); }},
    {"STRENGTH_OFFSET",
     [](Transmitter& t, const std::string& v) { t.strengthOffset = decimal(v); }},
    {"STREAM", [](Transmitter& t, const std::string& v) { t.stream = v; }},
};

void applySection(Transmitter& transmitter, const std::string& section) {
    for (const TransmitterKey& key : transmitterKeys) {
        if (board().has(section, key.name))
            key.set(transmitter, board().text(section, key.name));
    }
}

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
    applySection(t, section);
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
            applySection(t, std::string(row.name) + "/" + std::to_string(t.frequency));
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
        applySection(t, "AIR");
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
        applySection(t, section);
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

bool controlCable(std::istringstream& in) {
    uint32_t tuner = maxTuners;
    std::string what;
    in >> tuner >> what;
    if (tuner >= maxTuners || (what != "in" && what != "out"))
        return false;
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.unplugged[tuner] = what == "out";
    return true;
}

using Change = std::pair<const TransmitterKey*, std::string>;

bool readChanges(std::istringstream& in, std::vector<Change>* changes) {
    for (std::string word; in >> word;) {
        size_t equals = word.find('=');
        const TransmitterKey* found = nullptr;
        for (const TransmitterKey& key : transmitterKeys) {
            if (equals != std::string::npos && word.compare(0, equals, key.name) == 0)
                found = &key;
        }
        if (found == nullptr) {
            complain("event air: '%s' is no KEY=VALUE of a transmitter", word.c_str());
            return false;
        }
        changes->push_back({found, word.substr(equals + 1)});
    }
    return true;
}

bool controlTransmitters(std::istringstream& in) {
    std::string name;
    in >> name;
    size_t slash = name.find('/');
    uint32_t system = systemOfName(name.substr(0, slash));
    uint32_t frequency = slash == std::string::npos ? 0 : number(name.substr(slash + 1));
    std::vector<Change> changes;
    if (!readChanges(in, &changes))
        return false;
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    bool any = false;
    for (TransmitterPtr& transmitter : s.transmitters) {
        if (transmitter->listedSystem != system)
            continue;
        if (slash != std::string::npos && transmitter->frequency != frequency)
            continue;
        any = true;
        Transmitter changed = *transmitter;
        for (const Change& change : changes)
            change.first->set(changed, change.second);
        transmitter = std::make_shared<const Transmitter>(std::move(changed));
    }
    if (!any)
        complain("event air: there is no transmitter %s", name.c_str());
    return any;
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

Reception receptionOf(uint32_t tuner) {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return tuner < maxTuners ? s.receptions[tuner] : Reception();
}

void onReceptionChange(std::function<void(uint32_t tuner)> listener) {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.receptionListeners.push_back(std::move(listener));
}

void setReception(uint32_t tuner, uint64_t sequence, const TransmitterPtr& transmitter) {
    AirState& s = state();
    std::vector<std::function<void(uint32_t)>> listeners;
    {
        std::lock_guard<std::mutex> lock(s.mutex);
        if (tuner >= maxTuners || sequence <= s.sequences[tuner])
            return;
        s.sequences[tuner] = sequence;
        Reception& reception = s.receptions[tuner];
        if (transmitter == nullptr && !reception.locked)
            return;
        reception.locked = transmitter != nullptr;
        reception.transmitter = transmitter;
        reception.change++;
        listeners = s.receptionListeners;
    }
    for (const auto& listener : listeners)
        listener(tuner);
}

void onAirChange(std::function<void()> listener) {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.airListener = std::move(listener);
}

bool airControl(const std::string& event) {
    std::istringstream in(event);
    std::string what;
    in >> what;
    bool known =
        (what == "cable" && controlCable(in)) || (what == "air" && controlTransmitters(in));
    if (!known)
        return false;
    std::function<void()> listener;
    {
        AirState& s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        listener = s.airListener;
    }
    if (listener)
        listener();
    return true;
}

void airReset() {
    AirState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.loaded = false;
    for (uint32_t tuner = 0; tuner < maxTuners; tuner++) {
        s.unplugged[tuner] = false;
        s.receptions[tuner].locked = false;
        s.receptions[tuner].transmitter = nullptr;
        s.receptions[tuner].change++;
    }
}

}  // namespace sim
