#include "simulator/world/stations.h"

#include <mutex>
#include <string>

#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/world/keyed.h"
#include "simulator/world/world.h"

namespace sim {

namespace {

struct StationsState {
    std::mutex mutex;
    bool loaded = false;
    std::vector<Station> stations;
};

StationsState& state() {
    static StationsState* instance = new StationsState;
    return *instance;
}

/** The keys of a station, the same in the board file and in events. */
const Key<Station> stationKeys[] = {
    {"ON", setField<&Station::on>},          {"OFFSET", setField<&Station::offset>},
    {"LEVEL", setField<&Station::levelDbm>}, {"AUDIO", setField<&Station::audio>},
    {"COLOR", setField<&Station::color>},    {"SOUND", setField<&Station::sound>},
    {"TONE", setField<&Station::toneHz>},
};

/** Called with the state locked. */
void loadOnce(StationsState& s) {
    if (s.loaded)
        return;
    s.loaded = true;
    s.stations.clear();
    Cfg platform;
    Cfg channels;
    platform.load(platformFile("tuner_config.cfg"));
    channels.load(commonFile("channel_atv.cfg"));
    Station pattern;
    pattern.audio = static_cast<uint32_t>(platform.number("ATV", "TUNER_AUDIO_STANDARD"));
    pattern.color = static_cast<uint32_t>(platform.number("ATV", "TUNER_COLOR_STANDARD"));
    applySection(pattern, "ATV", stationKeys);
    uint32_t count = static_cast<uint8_t>(channels.number("COMMON", "CHANNEL_NUM"));
    for (uint32_t i = 0; i < count; i++) {
        Station station = pattern;
        std::string section = "CHANNEL" + std::to_string(i);
        station.frequency = static_cast<uint32_t>(channels.number(section, "FREQUENCY"));
        if (station.frequency == 0)
            continue;
        applySection(station, "ATV/" + std::to_string(station.frequency), stationKeys);
        s.stations.push_back(station);
    }
}

/** "NAME KEY=VALUE ...", with NAME the frequency of a station, or "all". */
bool change(Words& words) {
    std::string name;
    words.next(&name);
    std::string changes = words.rest();
    Station tried;
    if (!applyChanges(tried, "station", Words(changes), stationKeys))
        return false;
    StationsState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    bool any = false;
    for (Station& station : s.stations) {
        if (name != "all" && name != std::to_string(station.frequency))
            continue;
        any = true;
        applyChanges(station, "station", Words(changes), stationKeys);
    }
    if (!any)
        complain("event station: there is no station %s", name.c_str());
    return any;
}

void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().loaded = false;
}

}  // namespace

std::vector<Station> stationsOnAir() {
    StationsState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    std::vector<Station> on;
    for (const Station& station : s.stations) {
        if (station.on)
            on.push_back(station);
    }
    return on;
}

const WorldPart stationPart = {"station", change, reset};

}  // namespace sim
