// Environment stores: two files of KEY=VALUE lines below the device's root.
//
// A text of the application is written through at once. A boot setting waits in memory until it is
// saved; what was never saved is gone with the power.
#include <string.h>

#include <algorithm>
#include <map>
#include <mutex>

#include "platform/qlx_env.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"

namespace {

struct EnvState {
    std::mutex mutex;
    /** Boot settings that were changed and not saved yet, by the name in the store. */
    std::map<std::string, std::string> unsaved;
};

EnvState& state() {
    static EnvState* instance = new EnvState;
    return *instance;
}

std::string envPath() {
    return sim::storagePath("/env/env.txt");
}

std::string bootEnvPath() {
    return sim::storagePath("/env/bootenv.txt");
}

/** Whether the text is there, ends within its room, and holds none of the characters. */
bool isText(const char* text, const char* without) {
    if (text == nullptr || strnlen(text, QLX_ENV_TEXT_SIZE) == QLX_ENV_TEXT_SIZE)
        return false;
    return strpbrk(text, without) == nullptr;
}

bool isKey(const char* key) {
    return isText(key, "=\n\r") && key[0] != '\0';
}

/** A text that need not end. */
std::string shown(const char* text) {
    return sim::showText(text, QLX_ENV_TEXT_SIZE);
}

}  // namespace

int32_t QLX_SetEnv(const char* key, const char* value) {
    SIM_ENTRY("key=%s value=%s", shown(key).c_str(), shown(value).c_str());
    if (!isKey(key) || !isText(value, "\n\r"))
        SIM_RETURN(QLX_ENV_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(state().mutex);
    auto values = sim::loadKeyValues(envPath());
    values[key] = value;
    if (!sim::saveKeyValues(envPath(), values))
        SIM_RETURN(QLX_ENV_ERR_IO);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_GetEnv(const char* key, char* value) {
    SIM_ENTRY("key=%s value=%s", shown(key).c_str(), sim::showPointer(value));
    if (!isKey(key) || value == nullptr)
        SIM_RETURN(QLX_ENV_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(state().mutex);
    value[0] = '\0';
    auto values = sim::loadKeyValues(envPath());
    auto found = values.find(key);
    if (found == values.end())
        SIM_RETURN(QLX_ENV_ERR_NOT_FOUND);
    // The file may have been edited by hand: what does not fit is cut.
    size_t length = std::min<size_t>(found->second.size(), QLX_ENV_TEXT_SIZE - 1);
    memcpy(value, found->second.data(), length);
    value[length] = '\0';
    simCall.output({sim::textValue("value", value, length)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SetBootEnv(uint32_t tag, const void* value) {
    const char* text = static_cast<const char*>(value);
    SIM_ENTRY("tag=%u value=%s", tag, shown(text).c_str());
    if (tag != QLX_BOOT_ENV_TAG_DBTABLE || !isText(text, "\n\r"))
        SIM_RETURN(QLX_ENV_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(state().mutex);
    state().unsaved["dbtable"] = text;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SaveBootEnv(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    auto values = sim::loadKeyValues(bootEnvPath());
    for (const auto& entry : state().unsaved)
        values[entry.first] = entry.second;
    if (!sim::saveKeyValues(bootEnvPath(), values))
        SIM_RETURN(QLX_ENV_ERR_IO);
    state().unsaved.clear();
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().unsaved.clear();
}

// A change that was not saved is data, nothing that is open or runs.
static void describe(std::string*) {}

namespace sim {

extern const Family familyEnv = {reset, describe};

}  // namespace sim
