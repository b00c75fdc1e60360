// Factory: key files (see factory_key.h) are checked, and kept below the device's root, so that a
// device stays provisioned. A stored key that has been damaged counts as none.
//
// A path that begins with '/' is the device's, below its root; any other is relative to the
// program's working folder.
//
// Board file, section FACTORY: ESN, the serial number that the device left the works with; one that
// comes in a key goes before it; none when it is set to nothing.
#include <string.h>

#include <mutex>

#include "platform/qlx_factory.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"
#include "simulator/storage/factory_key.h"

namespace {

constexpr size_t longestPath = 4096;

std::mutex& storeMutex() {
    static std::mutex* instance = new std::mutex;
    return *instance;
}

std::string storedPath(uint32_t keyType) {
    return sim::storagePath(sim::format("/factory/key%02u.bin", keyType));
}

/** The payload of a stored key; false when there is none, or it is damaged. */
bool loadStored(uint32_t keyType, std::string* payload) {
    std::string contents;
    return sim::loadFile(storedPath(keyType), sim::keyFileLimit, &contents) &&
           sim::parseKeyFile(contents, keyType, payload);
}

/** Whether a payload is what a key of its type has to hold. */
bool payloadFits(uint32_t keyType, const std::string& payload) {
    return keyType != QLX_FACTORYKEY_NETFLIX || !sim::serialNumberOf(payload).empty();
}

}  // namespace

int32_t QLX_FactoryWritekey(uint32_t keyType, const char* keyPath) {
    SIM_ENTRY("type=%u path=%s", keyType, sim::showText(keyPath, longestPath).c_str());
    if (keyType >= QLX_FACTORYKEY_COUNT || keyPath == nullptr || keyPath[0] == '\0' ||
        strnlen(keyPath, longestPath) == longestPath)
        SIM_RETURN(QLX_FACTORY_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(storeMutex());
    std::string path = keyPath[0] == '/' ? sim::storagePath(keyPath) : keyPath;
    std::string contents, payload;
    if (!sim::loadFile(path, sim::keyFileLimit, &contents))
        SIM_RETURN(QLX_FACTORY_ERR_FILE);
    if (!sim::parseKeyFile(contents, keyType, &payload) || !payloadFits(keyType, payload))
        SIM_RETURN(QLX_FACTORY_ERR_FORMAT);
    if (!sim::saveFile(storedPath(keyType), contents))
        SIM_RETURN(QLX_FACTORY_ERR_STORE);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_FactoryCheckKey(uint32_t keyType) {
    SIM_ENTRY("type=%u", keyType);
    if (keyType >= QLX_FACTORYKEY_COUNT)
        SIM_RETURN(QLX_FACTORY_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(storeMutex());
    std::string payload;
    if (!loadStored(keyType, &payload))
        SIM_RETURN(QLX_FACTORY_ERR_NOT_FOUND);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_FactoryGetNetflixEsnid(char* esnid, uint32_t size) {
    SIM_ENTRY("esn=%s size=%u", sim::showPointer(esnid), size);
    if (esnid == nullptr || size == 0)
        SIM_RETURN(QLX_FACTORY_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(storeMutex());
    esnid[0] = '\0';
    std::string payload;
    std::string serial = loadStored(QLX_FACTORYKEY_NETFLIX, &payload)
                             ? sim::serialNumberOf(payload)
                             : sim::board().text("FACTORY", "ESN");
    if (serial.empty())
        SIM_RETURN(QLX_FACTORY_ERR_NOT_FOUND);
    if (serial.size() >= size)
        SIM_RETURN(QLX_FACTORY_ERR_INVALID_PARA);
    memcpy(esnid, serial.c_str(), serial.size() + 1);
    simCall.output({sim::textValue("esn", esnid, serial.size())});
    SIM_RETURN(QLX_SUCCESS);
}
