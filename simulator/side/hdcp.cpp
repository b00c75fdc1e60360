// HDCP for wireless display: a started service meets the phone of the outside world, and tells how
// the authentication went a moment later, once for each start.
//
// Board file, section HDCP: MIRACAST_MS, the time of an authentication, and MIRACAST_RESULT (1
// authenticated, 2 failed, 0 no phone comes).
#include <mutex>

#include "platform/qlx_hdcp.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/world/phone.h"

namespace sim {

SIM_RECORD(QLX_HDCPMiracastData, SIM_MEMBER(QLX_HDCPMiracastData, role),
           SIM_MEMBER(QLX_HDCPMiracastData, port), SIM_MEMBER(QLX_HDCPMiracastData, reserved))

}  // namespace sim

namespace {

/** The one service's handle in callbacks. */
constexpr uint32_t serviceHandle = 1;

struct HdcpState {
    std::mutex mutex;
    QLX_HDCPMiracastCallback callback = nullptr;
    bool running = false;
    sim::EventThread thread{"hdcp"};
};

HdcpState& state() {
    static HdcpState* instance = new HdcpState;
    return *instance;
}

/** On the device's thread: tells the program, if it wants to know. */
void tell(int32_t status) {
    QLX_HDCPMiracastCallback callback;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        callback = state().running ? state().callback : nullptr;
    }
    if (callback == nullptr)
        return;
    sim::deliver("HDCPMiracast", "", {sim::value("state", &status)},
                 [&] { callback(serviceHandle, status); });
}

/** Another phone comes to a running service. */
void phoneCame() {
    for (int32_t status : sim::takePhones()) {
        std::lock_guard<std::mutex> lock(state().mutex);
        if (state().running)
            state().thread.post(&state(), 0, [status] { tell(status); });
    }
}

const sim::WorldListener onPhone{sim::phonePart, phoneCame};

}  // namespace

int32_t QLX_HDCPSetMiracastHdcpStatusCallack(QLX_HDCPMiracastCallback callback) {
    SIM_ENTRY("callback=%s", sim::showPointer(callback));
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().callback = callback;
    }
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_HDCPStartMiracast(const QLX_HDCPMiracastData* data) {
    SIM_ENTRY("data=%s", sim::show(data).c_str());
    if (data == nullptr)
        SIM_RETURN(QLX_HDCP_ERR_INVALID_PARA);
    state().thread.cancel(&state());
    std::lock_guard<std::mutex> lock(state().mutex);
    state().running = true;
    int32_t status = static_cast<int32_t>(sim::board().number("HDCP", "MIRACAST_RESULT"));
    if (status != 0)
        state().thread.post(&state(), sim::board().number("HDCP", "MIRACAST_MS"),
                            [status] { tell(status); });
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_HDCPStopMiracast(const QLX_HDCPMiracastData* data) {
    SIM_ENTRY("data=%s", sim::show(data).c_str());
    if (data == nullptr)
        SIM_RETURN(QLX_HDCP_ERR_INVALID_PARA);
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().running = false;
    }
    state().thread.cancel(&state());
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    state().thread.cancelAll();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().running = false;
    state().callback = nullptr;
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().running)
        *out += "HDCP wireless display service running\n";
}

namespace sim {

extern const Family familyHdcp = {reset, describe};

}  // namespace sim
