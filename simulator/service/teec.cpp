// Trusted applications: four of them, alike, behind a transport with one thread for answers.
//
// The model of a TA, by command: 1, 2 and 3 give their payload back; 4 is answered by a header
// alone; 5 and 6 give the payload back with the lowest bit of each byte flipped, the header of 6
// with a pointer that does not lead to it; 7 kills the TA, which leaves what it has not answered
// yet unanswered. Other commands are not answered.
//
// State rules: initialisation is a flag. A session has at most one callback. A dead TA refuses
// messages until its session is closed and opened again. Answers without a callback are lost.
//
// Board file, section TEEC: ANSWER_MS, the time of an answer.
#include <string.h>

#include <mutex>
#include <vector>

#include "platform/qlx_teec.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"

namespace sim {

SIM_RECORD(QLX_TEECCommand, SIM_MEMBER(QLX_TEECCommand, cmdId),
           SIM_MEMBER(QLX_TEECCommand, dataLength), SIM_MEMBER(QLX_TEECCommand, data),
           SIM_MEMBER(QLX_TEECCommand, more))

}  // namespace sim

namespace {

constexpr uint32_t mostRecords = 16;
constexpr uint32_t largestPayload = 64 << 10;

/** What the TA understands. */
enum TaCommand : uint32_t {
    TA_ECHO_FIRST = 1,
    TA_ECHO_LAST = 3,
    TA_HEADER_ONLY = 4,
    TA_FLIP_FIRST = 5,
    TA_FLIP_LAST = 6,
    TA_DIE = 7,
};

struct Record {
    uint32_t cmdId;
    std::vector<uint8_t> payload;
    uint32_t more;
};

struct Session {
    bool open = false;
    bool dead = false;
    QLX_TEECCallback callback = nullptr;
    void* userData = nullptr;
};

struct TeecState {
    std::mutex mutex;
    bool initialised = false;
    Session sessions[QLX_TEEC_TA_COUNT];
    sim::EventThread thread{"teec"};
};

TeecState& state() {
    static TeecState* instance = new TeecState;
    return *instance;
}

/** Takes a message apart; false for one beyond the transport's limits. */
bool copyMessage(const QLX_TEECCommand* command, std::vector<Record>* records) {
    const uint8_t* at = reinterpret_cast<const uint8_t*>(command);
    for (;;) {
        // Behind a payload of any length a header need not be aligned.
        QLX_TEECCommand header;
        memcpy(&header, at, sizeof header);
        if (records->size() == mostRecords || header.dataLength > largestPayload)
            return false;
        const uint8_t* payload = at + sizeof header;
        records->push_back({header.cmdId, {payload, payload + header.dataLength}, header.more});
        if (header.more == 0)
            return true;
        at = payload + header.dataLength;
    }
}

/** The records of a message for the trace: header and payload of each. */
std::string shown(const QLX_TEECCommand* command) {
    if (command == nullptr)
        return "null";
    std::string out;
    const uint8_t* at = reinterpret_cast<const uint8_t*>(command);
    for (uint32_t i = 0; i < mostRecords; i++) {
        QLX_TEECCommand header;
        memcpy(&header, at, sizeof header);
        at += sizeof header;
        out += (i == 0 ? "" : " ") + sim::show(&header) +
               " payload=" + sim::showBytes(at, header.dataLength, largestPayload);
        if (header.more == 0 || header.dataLength > largestPayload)
            break;
        at += header.dataLength;
    }
    return out;
}

/** Turns a command into its answer; false when there is none. */
bool answerOf(Record* record) {
    if (record->cmdId >= TA_ECHO_FIRST && record->cmdId <= TA_ECHO_LAST)
        return true;
    if (record->cmdId == TA_HEADER_ONLY) {
        record->payload.clear();
        return true;
    }
    if (record->cmdId == TA_FLIP_FIRST || record->cmdId == TA_FLIP_LAST) {
        for (uint8_t& byte : record->payload)
            byte ^= 1;
        return true;
    }
    return false;
}

/** On the device's thread: hands an answer to the session's callback, if it has one. */
void answer(uint32_t taId, const Record& record) {
    QLX_TEECCallback callback;
    void* userData;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        const Session& session = state().sessions[taId];
        callback = session.dead ? nullptr : session.callback;
        userData = session.userData;
    }
    if (callback == nullptr)
        return;
    // Behind the payload there is room for what a wrong pointer leads to.
    std::vector<uint64_t> room((sizeof(QLX_TEECCommand) + 2 * record.payload.size() + 7) / 8);
    QLX_TEECCommand* header = reinterpret_cast<QLX_TEECCommand*>(room.data());
    uint8_t* payload = reinterpret_cast<uint8_t*>(header + 1);
    uint8_t* data = record.cmdId == TA_FLIP_LAST ? payload + record.payload.size() : payload;
    *header = {record.cmdId, static_cast<uint32_t>(record.payload.size()),
               record.payload.empty() ? nullptr : data, record.more};
    if (!record.payload.empty())
        memcpy(payload, record.payload.data(), record.payload.size());
    QLX_TEECCommand* handed = header;
    sim::deliver("TEECCommand", sim::format("ta=%u", taId),
                 {sim::marked("record", &handed), sim::marked("cmd", &header->cmdId),
                  sim::marked("length", &header->dataLength), sim::marked("more", &header->more),
                  sim::bytesValue("payload", payload, record.payload.size())},
                 [&] { callback(taId, userData, handed); });
}

/** What an operation on a session is refused with at once; the lock is held. */
int32_t sessionError(uint32_t taId) {
    if (!state().initialised)
        return QLX_TEEC_ERR_NOT_INIT;
    return taId < QLX_TEEC_TA_COUNT ? static_cast<int32_t>(QLX_SUCCESS)
                                    : static_cast<int32_t>(QLX_TEEC_ERR_INVALID_PARA);
}

}  // namespace

int32_t QLX_TEECInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().initialised = false;
        for (Session& session : state().sessions)
            session = Session();
    }
    state().thread.cancelAll();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECOpen(uint32_t taId) {
    SIM_ENTRY("ta=%u", taId);
    std::lock_guard<std::mutex> lock(state().mutex);
    int32_t error = sessionError(taId);
    if (error != QLX_SUCCESS)
        SIM_RETURN(error);
    state().sessions[taId].open = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECClose(uint32_t taId) {
    SIM_ENTRY("ta=%u", taId);
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        int32_t error = sessionError(taId);
        if (error != QLX_SUCCESS)
            SIM_RETURN(error);
        state().sessions[taId] = Session();
    }
    state().thread.cancel(&state().sessions[taId]);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECRegisterCallback(uint32_t taId, QLX_TEECCallback callback, void* userData) {
    SIM_ENTRY("ta=%u callback=%s userData=%s", taId, sim::showPointer(callback),
              sim::showPointer(userData));
    std::lock_guard<std::mutex> lock(state().mutex);
    int32_t error = sessionError(taId);
    if (error != QLX_SUCCESS)
        SIM_RETURN(error);
    if (callback == nullptr)
        SIM_RETURN(QLX_TEEC_ERR_INVALID_PARA);
    if (!state().sessions[taId].open)
        SIM_RETURN(QLX_TEEC_ERR_NOT_OPEN);
    state().sessions[taId].callback = callback;
    state().sessions[taId].userData = userData;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECUnRegisterCallback(uint32_t taId, QLX_TEECCallback callback) {
    SIM_ENTRY("ta=%u callback=%s", taId, sim::showPointer(callback));
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        int32_t error = sessionError(taId);
        if (error != QLX_SUCCESS)
            SIM_RETURN(error);
        if (callback == nullptr || state().sessions[taId].callback != callback)
            SIM_RETURN(QLX_TEEC_ERR_INVALID_PARA);
        state().sessions[taId].callback = nullptr;
        state().sessions[taId].userData = nullptr;
    }
    state().thread.cancel(&state().sessions[taId]);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TEECTransData(uint32_t taId, const QLX_TEECCommand* command) {
    SIM_ENTRY("ta=%u command=%s", taId, shown(command).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    int32_t error = sessionError(taId);
    if (error != QLX_SUCCESS)
        SIM_RETURN(error);
    Session& session = state().sessions[taId];
    std::vector<Record> records;
    if (command == nullptr || !copyMessage(command, &records))
        SIM_RETURN(QLX_TEEC_ERR_INVALID_PARA);
    if (!session.open)
        SIM_RETURN(QLX_TEEC_ERR_NOT_OPEN);
    if (session.dead)
        SIM_RETURN(QLX_TEEC_ERR_TA_DEAD);
    int64_t answerMs = sim::board().number("TEEC", "ANSWER_MS");
    for (Record& record : records) {
        if (record.cmdId == TA_DIE) {
            session.dead = true;
            break;
        }
        if (answerOf(&record))
            state().thread.post(&session, answerMs, [taId, record] { answer(taId, record); });
    }
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().initialised = false;
        for (Session& session : state().sessions)
            session = Session();
    }
    state().thread.cancelAll();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "TEEC initialised\n";
    for (uint32_t i = 0; i < QLX_TEEC_TA_COUNT; i++) {
        const Session& session = state().sessions[i];
        if (session.open)
            *out += sim::format("TEEC TA %u open%s\n", i, session.dead ? ", dead" : "");
        if (session.callback != nullptr)
            *out += sim::format("TEEC TA %u callback registered\n", i);
    }
}

namespace sim {

extern const Family familyTeec = {reset, describe};

}  // namespace sim
