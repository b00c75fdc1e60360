// Common interface slots: which are open, and the path of the stream through them.
//
// The board tells which slots have a module; those of the default board are empty. A slot without
// one closes the loop by itself, so that the stream reaches the demultiplexer on either path.
//
// State rules: initialisation is a flag, its end closes all slots. A slot that is open may be
// opened again. Opening needs no module. The path of a slot goes back to the bypass when it is
// closed.
#include <mutex>
#include <string>

#include "platform/qlx_ci.h"
#include "platform/qlx_demux.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/core/source_record.h"

namespace sim {

SIM_RECORD(QLX_CITsConfig, SIM_MEMBER(QLX_CITsConfig, eMode), SIM_MEMBER(QLX_CITsConfig, stSource),
           SIM_MEMBER(QLX_CITsConfig, eSinkType), SIM_MEMBER(QLX_CITsConfig, uSinkIndex))

}  // namespace sim

namespace {

struct Slot {
    bool open = false;
    QLX_CITsConfig path = {};
};

struct CIState {
    std::mutex mutex;
    bool initialised = false;
    uint32_t sourceType = QLX_SOURCE_TYPE_TUNER;
    Slot slots[QLX_CI_SLOT_MAX];
};

CIState& state() {
    static CIState* instance = new CIState;
    return *instance;
}

/** Called with the state locked. */
void closeAll(CIState& s) {
    s.initialised = false;
    s.sourceType = QLX_SOURCE_TYPE_TUNER;
    for (Slot& slot : s.slots)
        slot = Slot();
}

/** A module passes the stream through as it is: it has no keys. */
bool hasModule(uint32_t slot) {
    return sim::board().number("CI", "MODULE" + std::to_string(slot)) != 0;
}

bool isPath(const QLX_CITsConfig& path) {
    return path.eMode <= QLX_CI_TS_MODE_PASS_THROUGH &&
           path.stSource.eSourceType == QLX_SOURCE_TYPE_TUNER &&
           path.eSinkType == QLX_SOURCE_TYPE_DEMUX && path.uSinkIndex < QLX_DEMUX_NUM_MAX;
}

}  // namespace

int32_t QLX_CIInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CIDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    closeAll(state());
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CIOpen(uint32_t eSlot) {
    SIM_ENTRY("slot=%d", static_cast<int>(eSlot));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eSlot >= QLX_CI_SLOT_MAX)
        SIM_RETURN(QLX_CI_ERR_INVALID_PARA);
    if (!state().initialised)
        SIM_RETURN(QLX_FAILED);
    state().slots[eSlot].open = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CIClose(uint32_t eSlot) {
    SIM_ENTRY("slot=%d", static_cast<int>(eSlot));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eSlot >= QLX_CI_SLOT_MAX)
        SIM_RETURN(QLX_CI_ERR_INVALID_PARA);
    if (!state().slots[eSlot].open)
        SIM_RETURN(QLX_FAILED);
    state().slots[eSlot] = Slot();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CIIsCamPresent(uint32_t eSlot, uint32_t* pbPresent) {
    SIM_ENTRY("slot=%d present=%s", static_cast<int>(eSlot), sim::showPointer(pbPresent));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eSlot >= QLX_CI_SLOT_MAX || pbPresent == nullptr)
        SIM_RETURN(QLX_CI_ERR_INVALID_PARA);
    *pbPresent = state().initialised && hasModule(eSlot) ? QLX_TRUE : QLX_FALSE;
    simCall.output({sim::value("present", pbPresent)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CISetSrcType(uint32_t eSourceType) {
    SIM_ENTRY("source=%d", static_cast<int>(eSourceType));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eSourceType != QLX_SOURCE_TYPE_TUNER && eSourceType != QLX_SOURCE_TYPE_RECORD)
        SIM_RETURN(QLX_CI_ERR_INVALID_PARA);
    if (!state().initialised)
        SIM_RETURN(QLX_FAILED);
    state().sourceType = eSourceType;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_CISetTsConfig(uint32_t eSlot, const QLX_CITsConfig* pstConfig) {
    SIM_ENTRY("slot=%d config=%s", static_cast<int>(eSlot), sim::show(pstConfig).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eSlot >= QLX_CI_SLOT_MAX || pstConfig == nullptr || !isPath(*pstConfig))
        SIM_RETURN(QLX_CI_ERR_INVALID_PARA);
    if (!state().slots[eSlot].open)
        SIM_RETURN(QLX_FAILED);
    state().slots[eSlot].path = *pstConfig;
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    closeAll(state());
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "CI initialised\n";
    for (int slot = 0; slot < QLX_CI_SLOT_MAX; slot++) {
        if (state().slots[slot].open)
            *out += sim::format("CI slot %d open\n", slot);
    }
}

namespace sim {

extern const Family familyCI = {reset, describe};

}  // namespace sim
