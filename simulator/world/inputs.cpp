#include "simulator/world/inputs.h"

#include <map>
#include <mutex>
#include <utility>

#include "platform/qlx_source.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/world/keyed.h"
#include "simulator/world/world.h"

namespace sim {

namespace {

struct KindRow {
    uint32_t kind;
    const char* name;
    /** Key of section EXTIN of the board: the count of ports. */
    const char* portsKey;
};

const KindRow kindRows[] = {
    {QLX_SOURCE_TYPE_HDMI, "HDMI", "HDMI_PORTS"},
    {QLX_SOURCE_TYPE_AV_CVBS, "CVBS", "CVBS_PORTS"},
    {QLX_SOURCE_TYPE_AV_YPBPR, "YPBPR", "YPBPR_PORTS"},
    {QLX_SOURCE_TYPE_VGA, "VGA", "VGA_PORTS"},
};

/** Ports of a kind that a board can have. */
constexpr int64_t maxPorts = 8;

using PortId = std::pair<uint32_t, uint32_t>;

struct InputsState {
    std::mutex mutex;
    bool loaded = false;
    std::map<PortId, Input> inputs;
};

InputsState& state() {
    static InputsState* instance = new InputsState;
    return *instance;
}

template <auto field>
bool setPicture(Input& input, const std::string& word) {
    return setField<field>(input.picture, word);
}

template <auto field>
bool setSound(Input& input, const std::string& word) {
    return setField<field>(input.sound, word);
}

/** Two numbers that a mark parts, neither of them 0. */
bool readPair(const std::string& word, char mark, int64_t most, int64_t* first, int64_t* second) {
    std::string before, behind;
    return partWord(word, mark, &before, &behind) && readNumber(before, 1, most, first) &&
           readNumber(behind, 1, most, second);
}

/** "50/1", "30000/1001". */
bool setRate(Input& input, const std::string& word) {
    int64_t numerator = 0;
    int64_t denominator = 0;
    if (!readPair(word, '/', 1000000, &numerator, &denominator))
        return false;
    input.picture.rateNumerator = static_cast<uint32_t>(numerator);
    input.picture.rateDenominator = static_cast<uint32_t>(denominator);
    return true;
}

/** "16:9". */
bool setAspect(Input& input, const std::string& word) {
    int64_t width = 0;
    int64_t height = 0;
    if (!readPair(word, ':', UINT8_MAX, &width, &height))
        return false;
    input.picture.aspectWidth = static_cast<uint8_t>(width);
    input.picture.aspectHeight = static_cast<uint8_t>(height);
    return true;
}

/** The keys of a source, the same in the board file and in events. */
const Key<Input> inputKeys[] = {
    {"CABLE", setField<&Input::cable>},
    {"SIGNAL", setField<&Input::signal>},
    {"HDMI_SOURCE", setField<&Input::hdmi>},
    {"WIDTH", setPicture<&SignalPicture::width>},
    {"HEIGHT", setPicture<&SignalPicture::height>},
    {"RATE", setRate},
    {"INTERLACED", setPicture<&SignalPicture::interlaced>},
    {"ASPECT", setAspect},
    {"CHANNELS", setSound<&SignalSound::channels>},
    {"TONE", setSound<&SignalSound::toneHz>},
};

/** Called with the state locked. */
void loadOnce(InputsState& s) {
    if (s.loaded)
        return;
    s.loaded = true;
    s.inputs.clear();
    for (const KindRow& row : kindRows) {
        for (uint32_t port = 0; port < inputPorts(row.kind); port++) {
            Input input;
            input.name = std::string(row.name) + " " + std::to_string(port);
            applySection(input, row.name, inputKeys);
            applySection(input, std::string(row.name) + "/" + std::to_string(port), inputKeys);
            s.inputs[{row.kind, port}] = input;
        }
    }
}

/** "NAME KEY=VALUE ...", with NAME a kind, or a kind and a port: "HDMI/0". */
bool change(Words& words) {
    std::string name;
    words.next(&name);
    std::string changes = words.rest();
    Input tried;
    if (!applyChanges(tried, "input", Words(changes), inputKeys))
        return false;
    InputsState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    bool any = false;
    for (auto& [id, input] : s.inputs) {
        std::string kind = nameOfInputKind(id.first);
        if (name != kind && name != kind + "/" + std::to_string(id.second))
            continue;
        any = true;
        applyChanges(input, "input", Words(changes), inputKeys);
    }
    if (!any)
        complain("event input: there is no input %s", name.c_str());
    return any;
}

void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().loaded = false;
}

}  // namespace

std::vector<uint32_t> inputKinds() {
    std::vector<uint32_t> kinds;
    for (const KindRow& row : kindRows)
        kinds.push_back(row.kind);
    return kinds;
}

const char* nameOfInputKind(uint32_t kind) {
    for (const KindRow& row : kindRows) {
        if (kind == row.kind)
            return row.name;
    }
    return "";
}

uint32_t inputPorts(uint32_t kind) {
    for (const KindRow& row : kindRows) {
        if (kind != row.kind)
            continue;
        if (!board().text("EXTIN", row.portsKey).empty()) {
            int64_t ports = board().number("EXTIN", row.portsKey);
            return ports < 0 || ports > maxPorts ? 0 : static_cast<uint32_t>(ports);
        }
        Cfg features;
        features.load(platformFile("feature.cfg"));
        uint32_t ports = 0;
        for (int64_t port = 0; port < maxPorts; port++)
            ports +=
                features.number("FEATURE", "FEATURE_" + (row.name + std::to_string(port))) != 0;
        return ports;
    }
    return 0;
}

Input inputAt(uint32_t kind, uint32_t port) {
    InputsState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    loadOnce(s);
    return s.inputs[{kind, port}];
}

const WorldPart inputPart = {"input", change, reset};

}  // namespace sim
