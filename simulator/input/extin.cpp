// External inputs: the ports, their cables and signals, and the events that tell of them.
//
// What is plugged in is simulator/world/inputs.h. A port watches its connector all the time. A
// signal that appears, that changes, or that a port is opened for is unstable until the receiver
// has measured it (LOCK_MS of the board), and stable then. Events go out for a port's cable and
// signal when they are another than was told last; a new registration is told all of them EVENT_MS
// later.
//
// State rules: initialisation is a flag, and its end closes everything. An open port may be opened
// again; one that is not open cannot be closed or asked.
#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/qlx_extin.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/input/edid.h"
#include "simulator/world/inputs.h"
#include "simulator/world/signal_source.h"
#include "simulator/world/world.h"

namespace sim {

SIM_RECORD(QLX_ExtInSource, SIM_MEMBER(QLX_ExtInSource, eType), SIM_MEMBER(QLX_ExtInSource, uPort),
           SIM_MEMBER(QLX_ExtInSource, eInputClass))
SIM_RECORD(QLX_ExtInAdcPhase, SIM_MEMBER(QLX_ExtInAdcPhase, uRY), SIM_MEMBER(QLX_ExtInAdcPhase, uG),
           SIM_MEMBER(QLX_ExtInAdcPhase, uB))
SIM_RECORD(QLX_HdmiEdid, SIM_MEMBER(QLX_HdmiEdid, pData), SIM_MEMBER(QLX_HdmiEdid, uLength),
           SIM_MEMBER(QLX_HdmiEdid, uPort))
SIM_RECORD(QLX_ExtInCableEvent, SIM_MEMBER(QLX_ExtInCableEvent, eType),
           SIM_MEMBER(QLX_ExtInCableEvent, eInputClass), SIM_MEMBER(QLX_ExtInCableEvent, uPort),
           SIM_MEMBER(QLX_ExtInCableEvent, bLinked))
SIM_RECORD(QLX_ExtInSignalEvent, SIM_MEMBER(QLX_ExtInSignalEvent, eType),
           SIM_MEMBER(QLX_ExtInSignalEvent, eInputClass), SIM_MEMBER(QLX_ExtInSignalEvent, uPort),
           SIM_MEMBER(QLX_ExtInSignalEvent, eSignalStatus))

namespace {

/** Phases of the converters, and the one that they have at power on. */
constexpr uint32_t phaseRange = 128;
constexpr uint32_t phaseAtPowerOn = 64;

struct Port {
    bool open = false;
    Input input;
    /** When the receiver has measured what is there now, or will have. */
    int64_t measuredMs = 0;
    QLX_ExtInAdcPhase phase = {phaseAtPowerOn, phaseAtPowerOn, phaseAtPowerOn};
    uint32_t signalFormat = QLX_EXTIN_HDMI_SIGNAL_FORMAT_STANDARD;
    /** QLX_HdmiEdidVersion, -1 before there is an EDID; and what it says of sound. */
    int64_t edidVersion = -1;
    std::vector<AudioDescriptor> descriptors;
    /** What the program was told last. */
    uint32_t toldLinked = QLX_FALSE;
    uint32_t toldStatus = QLX_EXTIN_SIGNAL_STATUS_NONE;
};

using PortId = std::pair<uint32_t, uint32_t>;

struct ExtInFamily {
    std::mutex mutex;
    bool loaded = false;
    bool initialised = false;
    std::map<PortId, Port> ports;
    QLX_ExtInCallback callback = nullptr;
    void* userData = nullptr;
    EventThread events{"extin"};
};

ExtInFamily& family() {
    static ExtInFamily* instance = new ExtInFamily;
    return *instance;
}

/** Owners of jobs: what tells the program, and what tells the rest of the device. */
const char tellsProgram = 0;
const char tellsDevice = 0;

/** Called with the family locked. */
void loadOnce(ExtInFamily& f) {
    if (f.loaded)
        return;
    f.loaded = true;
    f.ports.clear();
    for (uint32_t kind : inputKinds()) {
        for (uint32_t number = 0; number < inputPorts(kind); number++)
            f.ports[{kind, number}].input = inputAt(kind, number);
    }
}

uint32_t statusOf(const Port& port) {
    if (!port.input.present())
        return QLX_EXTIN_SIGNAL_STATUS_NONE;
    return nowMs() >= port.measuredMs ? QLX_EXTIN_SIGNAL_STATUS_STABLE
                                      : QLX_EXTIN_SIGNAL_STATUS_UNSTABLE;
}

/** Tells decoders and outputs how the port is. Called with the family locked. */
void publish(const PortId& id, const Port& port) {
    SignalSource source;
    source.open = port.open;
    source.name = port.input.name;
    source.picture = port.input.picture;
    source.sound = port.input.sound;
    source.locked = port.open && statusOf(port) == QLX_EXTIN_SIGNAL_STATUS_STABLE;
    source.sinceMs = source.locked ? port.measuredMs : 0;
    setSignalSource(id.first, id.second, source);
}

uint32_t inputClassOf(uint32_t kind) {
    switch (kind) {
        case QLX_SOURCE_TYPE_AV_CVBS:
            return QLX_INPUT_CLASS_CVBS;
        case QLX_SOURCE_TYPE_AV_YPBPR:
            return QLX_INPUT_CLASS_YPBPR;
        default:
            return QLX_INPUT_CLASS_NONE;
    }
}

/** An event that the program is to be told. */
struct Report {
    PortId id;
    bool cable;
    uint32_t value;
};

/** What the program has not been told yet; all that there is when `all`. */
std::vector<Report> newReports(ExtInFamily& f, bool all) {
    std::vector<Report> reports;
    for (auto& [id, port] : f.ports) {
        uint32_t linked = port.input.cable ? QLX_TRUE : QLX_FALSE;
        if (id.first == QLX_SOURCE_TYPE_HDMI && (all || linked != port.toldLinked))
            reports.push_back({id, true, linked});
        port.toldLinked = linked;
        uint32_t status = statusOf(port);
        if (all || status != port.toldStatus)
            reports.push_back({id, false, status});
        port.toldStatus = status;
    }
    return reports;
}

/** On the family's thread. A job that is outdated was cancelled. */
void tellProgram(bool all) {
    ExtInFamily& f = family();
    std::unique_lock<std::mutex> lock(f.mutex);
    QLX_ExtInCallback callback = f.callback;
    void* userData = f.userData;
    if (callback == nullptr)
        return;
    std::vector<Report> reports = newReports(f, all);
    lock.unlock();
    for (const Report& report : reports) {
        std::string who = format("%s=%u", nameOfInputKind(report.id.first), report.id.second);
        uint32_t inputClass = inputClassOf(report.id.first);
        uint32_t event =
            report.cable ? QLX_EXTIN_EVENT_CABLE_LINKED : QLX_EXTIN_EVENT_SIGNAL_STATUS;
        QLX_ExtInCableEvent cable = {report.id.first, inputClass, report.id.second, report.value};
        QLX_ExtInSignalEvent signal = {report.id.first, inputClass, report.id.second, report.value};
        void* data = report.cable ? static_cast<void*>(&cable) : &signal;
        deliver("ExtInEvent", who,
                {value("event", &event),
                 report.cable ? value("cable", &cable) : value("signal", &signal)},
                [&] { callback(event, userData, data); });
    }
}

/** Lets the program hear what has changed by then. Called with the family locked. */
void tellLater(ExtInFamily& f, int64_t delayMs, bool all) {
    if (f.callback != nullptr)
        f.events.post(&tellsProgram, delayMs, [all] { tellProgram(all); });
}

/** The receiver measures anew. Called with the family locked. */
void measure(ExtInFamily& f, const PortId& id) {
    int64_t lockMs = board().number("EXTIN", "LOCK_MS");
    Port& port = f.ports[id];
    port.measuredMs = nowMs() + (port.input.present() ? lockMs : 0);
    publish(id, port);
    tellLater(f, 0, false);
    if (!port.input.present())
        return;
    f.events.post(&tellsDevice, lockMs, [id] {
        ExtInFamily& late = family();
        std::lock_guard<std::mutex> lock(late.mutex);
        const auto found = late.ports.find(id);
        if (found == late.ports.end() || statusOf(found->second) != QLX_EXTIN_SIGNAL_STATUS_STABLE)
            return;
        publish(id, found->second);
        tellLater(late, 0, false);
    });
}

bool samePicture(const SignalPicture& a, const SignalPicture& b) {
    return a.width == b.width && a.height == b.height && a.rateNumerator == b.rateNumerator &&
           a.rateDenominator == b.rateDenominator && a.interlaced == b.interlaced;
}

void inputsChanged() {
    ExtInFamily& f = family();
    std::lock_guard<std::mutex> lock(f.mutex);
    loadOnce(f);
    for (auto& [id, port] : f.ports) {
        Input before = port.input;
        port.input = inputAt(id.first, id.second);
        bool same = before.present() == port.input.present() &&
                    samePicture(before.picture, port.input.picture);
        if (same)
            publish(id, port);
        else
            measure(f, id);
    }
    tellLater(f, 0, false);
}

const WorldListener onInputs{inputPart, inputsChanged};

/** Called with the family locked. */
void closePort(const PortId& id, Port& port) {
    port.open = false;
    publish(id, port);
}

/** The HDMI port of a call; null, with the refusal, when the board lacks it or before init. */
Port* hdmiPort(uint32_t number, int32_t* refusal) {
    ExtInFamily& f = family();
    loadOnce(f);
    const auto found = f.ports.find({QLX_SOURCE_TYPE_HDMI, number});
    *refusal = QLX_SUCCESS;
    if (found == f.ports.end())
        *refusal = QLX_EXTIN_ERR_INVALID_PARA;
    else if (!f.initialised)
        *refusal = QLX_FAILED;
    return *refusal == QLX_SUCCESS ? &found->second : nullptr;
}

/** Closes everything and ends the events. */
void end(std::unique_lock<std::mutex>& lock) {
    ExtInFamily& f = family();
    f.initialised = false;
    f.callback = nullptr;
    for (auto& [id, port] : f.ports) {
        closePort(id, port);
        port.edidVersion = -1;
    }
    lock.unlock();
    f.events.cancel(&tellsProgram);
    lock.lock();
}

/** What a call needs beyond a port that the board has. */
enum class Need { initialised, open };

/**
 * Finds the port of a call.
 * @param kinds  the call is for these alone: "HDMI", "YPBPR VGA"; null: for all
 */
int32_t findPort(const QLX_ExtInSource* source, Need need, const char* kinds, Port** port) {
    ExtInFamily& f = family();
    if (source == nullptr)
        return QLX_EXTIN_ERR_INVALID_PARA;
    loadOnce(f);
    // Only the low half of the word is the number of the port.
    const auto found = f.ports.find({source->eType, source->uPort & UINT16_MAX});
    if (found == f.ports.end() || (kinds != nullptr && std::string(kinds).find(nameOfInputKind(
                                                           source->eType)) == std::string::npos))
        return QLX_EXTIN_ERR_INVALID_PARA;
    *port = &found->second;
    return !f.initialised || (need == Need::open && !found->second.open) ? QLX_FAILED : QLX_SUCCESS;
}

void reset() {
    ExtInFamily& f = family();
    std::unique_lock<std::mutex> lock(f.mutex);
    end(lock);
    lock.unlock();
    f.events.cancelAll();
    lock.lock();
    f.loaded = false;
}

void describe(std::string* out) {
    ExtInFamily& f = family();
    std::lock_guard<std::mutex> lock(f.mutex);
    if (f.initialised)
        *out += "ExtIn initialised\n";
    if (f.callback != nullptr)
        *out += "ExtIn callback registered\n";
    for (const auto& [id, port] : f.ports) {
        if (port.open)
            *out += format("ExtIn %s %u open\n", nameOfInputKind(id.first), id.second);
    }
}

}  // namespace

extern const Family familyExtIn = {reset, describe};

}  // namespace sim

using sim::family;
using sim::findPort;
using sim::Need;
using sim::Port;

/** The kinds with converters, as findPort takes them. */
static const char converted[] = "YPBPR VGA";

int32_t QLX_ExtInInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(family().mutex);
    family().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::unique_lock<std::mutex> lock(family().mutex);
    sim::end(lock);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInRegisterCallback(void* pUserData, QLX_ExtInCallback callback) {
    SIM_ENTRY("userData=%s callback=%s", sim::showPointer(pUserData), sim::showPointer(callback));
    std::lock_guard<std::mutex> lock(family().mutex);
    if (callback == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (!family().initialised)
        SIM_RETURN(QLX_FAILED);
    sim::loadOnce(family());
    family().callback = callback;
    family().userData = pUserData;
    sim::tellLater(family(), sim::board().number("EXTIN", "EVENT_MS"), true);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInUnRegisterCallback(QLX_ExtInCallback callback) {
    SIM_ENTRY("callback=%s", sim::showPointer(callback));
    std::unique_lock<std::mutex> lock(family().mutex);
    if (!family().initialised)
        SIM_RETURN(QLX_FAILED);
    if (family().callback != nullptr && family().callback != callback)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    family().callback = nullptr;
    lock.unlock();
    family().events.cancel(&sim::tellsProgram);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetSourcePortNum(uint32_t eType, uint32_t* puPortNum) {
    SIM_ENTRY("type=%u portNum=%s", eType, sim::showPointer(puPortNum));
    std::lock_guard<std::mutex> lock(family().mutex);
    if (puPortNum == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (!family().initialised)
        SIM_RETURN(QLX_FAILED);
    *puPortNum = sim::inputPorts(eType);
    simCall.output({sim::value("portNum", puPortNum)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInOpen(const QLX_ExtInSource* pstSource) {
    SIM_ENTRY("source=%s", sim::show(pstSource).c_str());
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (int32_t refusal = findPort(pstSource, Need::initialised, nullptr, &port))
        SIM_RETURN(refusal);
    if (port->open)
        SIM_RETURN(QLX_SUCCESS);
    port->open = true;
    sim::measure(family(), {pstSource->eType, pstSource->uPort & UINT16_MAX});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInClose(const QLX_ExtInSource* pstSource) {
    SIM_ENTRY("source=%s", sim::show(pstSource).c_str());
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (int32_t refusal = findPort(pstSource, Need::open, nullptr, &port))
        SIM_RETURN(refusal);
    sim::closePort({pstSource->eType, pstSource->uPort & UINT16_MAX}, *port);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetCableLinkedStatus(const QLX_ExtInSource* pstSource, uint32_t* pbLinked) {
    SIM_ENTRY("source=%s linked=%s", sim::show(pstSource).c_str(), sim::showPointer(pbLinked));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (pbLinked == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, nullptr, &port))
        SIM_RETURN(refusal);
    *pbLinked = port->input.cable ? QLX_TRUE : QLX_FALSE;
    simCall.output({sim::value("linked", pbLinked)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetSignalStatus(const QLX_ExtInSource* pstSource, uint32_t* peSignalStatus) {
    SIM_ENTRY("source=%s status=%s", sim::show(pstSource).c_str(),
              sim::showPointer(peSignalStatus));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (peSignalStatus == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, nullptr, &port))
        SIM_RETURN(refusal);
    *peSignalStatus = sim::statusOf(*port);
    simCall.output({sim::value("status", peSignalStatus)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetAdcPhase(const QLX_ExtInSource* pstSource, QLX_ExtInAdcPhase* pstPhase) {
    SIM_ENTRY("source=%s phase=%s", sim::show(pstSource).c_str(), sim::showPointer(pstPhase));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (pstPhase == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, converted, &port))
        SIM_RETURN(refusal);
    *pstPhase = port->phase;
    simCall.output({sim::value("phase", pstPhase)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInSetAdcPhase(const QLX_ExtInSource* pstSource, const QLX_ExtInAdcPhase* pstPhase) {
    SIM_ENTRY("source=%s phase=%s", sim::show(pstSource).c_str(), sim::show(pstPhase).c_str());
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (pstPhase == nullptr || pstPhase->uRY >= sim::phaseRange ||
        pstPhase->uG >= sim::phaseRange || pstPhase->uB >= sim::phaseRange)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, converted, &port))
        SIM_RETURN(refusal);
    port->phase = *pstPhase;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetAdcPhaseRange(const QLX_ExtInSource* pstSource, uint32_t* puRange) {
    SIM_ENTRY("source=%s range=%s", sim::show(pstSource).c_str(), sim::showPointer(puRange));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (puRange == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, converted, &port))
        SIM_RETURN(refusal);
    *puRange = sim::phaseRange;
    simCall.output({sim::value("range", puRange)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetHdmiType(const QLX_ExtInSource* pstSource, uint32_t* peHdmiType) {
    SIM_ENTRY("source=%s type=%s", sim::show(pstSource).c_str(), sim::showPointer(peHdmiType));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (peHdmiType == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::open, "HDMI", &port))
        SIM_RETURN(refusal);
    *peHdmiType = port->input.hdmi ? QLX_EXTIN_HDMI_TYPE_HDMI : QLX_EXTIN_HDMI_TYPE_DVI;
    simCall.output({sim::value("type", peHdmiType)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInSetHDMISignalFormat(const QLX_ExtInSource* pstSource, uint32_t eFormat) {
    SIM_ENTRY("source=%s format=%u", sim::show(pstSource).c_str(), eFormat);
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (eFormat > QLX_EXTIN_HDMI_SIGNAL_FORMAT_ENHANCED)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::initialised, "HDMI", &port))
        SIM_RETURN(refusal);
    port->signalFormat = eFormat;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInGetHDMISignalFormat(const QLX_ExtInSource* pstSource, uint32_t* peFormat) {
    SIM_ENTRY("source=%s format=%s", sim::show(pstSource).c_str(), sim::showPointer(peFormat));
    std::lock_guard<std::mutex> lock(family().mutex);
    Port* port = nullptr;
    if (peFormat == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (int32_t refusal = findPort(pstSource, Need::initialised, "HDMI", &port))
        SIM_RETURN(refusal);
    *peFormat = port->signalFormat;
    simCall.output({sim::value("format", peFormat)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInEDIDInit(uint32_t uPort, uint32_t eVersion) {
    SIM_ENTRY("port=%u version=%u", uPort, eVersion);
    std::lock_guard<std::mutex> lock(family().mutex);
    int32_t refusal = QLX_SUCCESS;
    Port* port = sim::hdmiPort(uPort, &refusal);
    if (port == nullptr)
        SIM_RETURN(refusal);
    if (eVersion > QLX_HDMI_EDID_2_0)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    port->edidVersion = eVersion;
    port->descriptors = sim::ownAudioDescriptors();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_ExtInEDIDOperate(uint32_t eOperation, QLX_HdmiEdid* pstEdid) {
    bool given = pstEdid != nullptr && eOperation == QLX_HDMI_EDID_AUDIO_SAD_UPDAE;
    SIM_ENTRY("operation=%u edid=%s data=%s", eOperation, sim::show(pstEdid).c_str(),
              given ? sim::showBytes(pstEdid->pData, pstEdid->uLength, 3).c_str() : "");
    std::lock_guard<std::mutex> lock(family().mutex);
    if (pstEdid == nullptr || pstEdid->pData == nullptr)
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    int32_t refusal = QLX_SUCCESS;
    Port* port = sim::hdmiPort(pstEdid->uPort, &refusal);
    if (port == nullptr)
        SIM_RETURN(refusal);
    sim::AudioDescriptor descriptor;
    auto edid =
        sim::makeEdid(pstEdid->uPort, port->edidVersion == QLX_HDMI_EDID_2_0, port->descriptors);
    bool read = eOperation == QLX_HDMI_EDID_READ && pstEdid->uLength >= edid.size();
    if (!read && !(given && pstEdid->uLength == descriptor.size()))
        SIM_RETURN(QLX_EXTIN_ERR_INVALID_PARA);
    if (port->edidVersion < 0)
        SIM_RETURN(QLX_FAILED);
    if (!read) {
        std::copy_n(pstEdid->pData, descriptor.size(), descriptor.begin());
        SIM_RETURN(sim::enterDescriptor(&port->descriptors, descriptor) ? QLX_SUCCESS : QLX_FAILED);
    }
    std::copy(edid.begin(), edid.end(), pstEdid->pData);
    simCall.output({sim::bytesValue("data", pstEdid->pData, edid.size())});
    SIM_RETURN(QLX_SUCCESS);
}
