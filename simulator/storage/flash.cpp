// Flash: one partition, a file below the device's root with the partition's own path. A new one is
// empty but for a small boot environment block at its start.
//
// State rules: initialisation is a flag. Reading and writing need it, and the window that they are
// given must lie in the partition, the bytes wholly in the window.
//
// Board file, section FLASH.
#include <string.h>

#include <mutex>

#include "platform/qlx_flash.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"

namespace sim {

SIM_RECORD(QLX_FlashDevice, SIM_MEMBER(QLX_FlashDevice, devicePath),
           SIM_MEMBER(QLX_FlashDevice, uDevOffset), SIM_MEMBER(QLX_FlashDevice, size),
           SIM_MEMBER(QLX_FlashDevice, eraseSize), SIM_MEMBER(QLX_FlashDevice, reserved),
           SIM_MEMBER(QLX_FlashDevice, flag))

}  // namespace sim

namespace {

constexpr int64_t largestPartition = 64 << 20;

struct FlashState {
    std::mutex mutex;
    bool initialised = false;
};

FlashState& state() {
    static FlashState* instance = new FlashState;
    return *instance;
}

std::string partition() {
    return sim::board().text("FLASH", "PARTITION");
}

uint64_t partitionSize() {
    int64_t size = sim::board().number("FLASH", "SIZE");
    return size < 1 || size > largestPartition ? 0 : static_cast<uint64_t>(size);
}

std::string pathOf(const QLX_FlashDevice* device) {
    return std::string(device->devicePath, strnlen(device->devicePath, sizeof device->devicePath));
}

/** Whether the board has the window's partition, and the window lies in it. */
bool windowExists(const QLX_FlashDevice* device) {
    if (device == nullptr || sim::board().number("FLASH", "PRESENT") == 0)
        return false;
    return pathOf(device) == partition() && device->size > 0 &&
           static_cast<uint64_t>(device->uDevOffset) + device->size <= partitionSize();
}

bool lies(const QLX_FlashDevice* device, uint32_t address, uint32_t size) {
    uint64_t end = static_cast<uint64_t>(device->uDevOffset) + device->size;
    return size > 0 && address >= device->uDevOffset &&
           static_cast<uint64_t>(address) + size <= end;
}

/** What the production line writes: a boot environment, its check word first, and erased bytes. */
std::string newContents() {
    std::string contents(partitionSize(), '\0');
    static const char environment[] =
        "\x1b\x5d\x27\xc4"
        "bootdelay=0\0console=ttyS0,115200\0";
    contents.replace(0, sizeof environment, environment, sizeof environment);
    contents.resize(partitionSize());
    return contents;
}

}  // namespace

int32_t QLX_FlashInit(const QLX_FlashDevice* device) {
    SIM_ENTRY("device=%s", sim::show(device).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!windowExists(device))
        SIM_RETURN(QLX_FLASH_ERR_INVALID_PARA);
    if (!sim::provideFile(sim::storagePath(partition()), newContents()))
        SIM_RETURN(QLX_FLASH_ERR_IO);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_FlashDeInit(const QLX_FlashDevice* device) {
    SIM_ENTRY("device=%s", sim::show(device).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_FlashRead(const QLX_FlashDevice* device, uint32_t address, uint32_t size, void* buffer,
                      uint32_t* sizeRead) {
    SIM_ENTRY("device=%s address=0x%x size=%u buffer=%s sizeRead=%s", sim::show(device).c_str(),
              address, size, sim::showPointer(buffer), sim::showPointer(sizeRead));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (sizeRead != nullptr)
        *sizeRead = 0;
    if (!state().initialised)
        SIM_RETURN(QLX_FLASH_ERR_NOT_INIT);
    if (buffer == nullptr || sizeRead == nullptr || !windowExists(device) ||
        !lies(device, address, size))
        SIM_RETURN(QLX_FLASH_ERR_INVALID_PARA);
    if (!sim::readAt(sim::storagePath(partition()), address, buffer, size))
        SIM_RETURN(QLX_FLASH_ERR_IO);
    *sizeRead = size;
    simCall.output({sim::bytesValue("buffer", buffer, size), sim::marked("length", sizeRead)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_FlashWrite(const QLX_FlashDevice* device, uint32_t address, uint32_t size,
                       const void* buffer, uint32_t* sizeWritten) {
    SIM_ENTRY("device=%s address=0x%x size=%u data=%s sizeWritten=%s", sim::show(device).c_str(),
              address, size, sim::showBytes(buffer, size, partitionSize()).c_str(),
              sim::showPointer(sizeWritten));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (sizeWritten != nullptr)
        *sizeWritten = 0;
    if (!state().initialised)
        SIM_RETURN(QLX_FLASH_ERR_NOT_INIT);
    if (buffer == nullptr || sizeWritten == nullptr || !windowExists(device) ||
        !lies(device, address, size))
        SIM_RETURN(QLX_FLASH_ERR_INVALID_PARA);
    if (!sim::writeAt(sim::storagePath(partition()), address, buffer, size))
        SIM_RETURN(QLX_FLASH_ERR_IO);
    *sizeWritten = size;
    simCall.output({sim::marked("length", sizeWritten)});
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "Flash initialised\n";
}

namespace sim {

extern const Family familyFlash = {reset, describe};

}  // namespace sim
