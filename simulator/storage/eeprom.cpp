// EEPROM: one chip, a file below the device's root. A new chip is erased (all bits set). There is
// no state beside its contents.
//
// Board file, section EEPROM.
#include <mutex>

#include "platform/qlx_eeprom.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"

namespace {

/** The part of the chip that is free for applications. */
struct Range {
    uint32_t start;
    uint32_t end;
};

}  // namespace

namespace sim {

SIM_RECORD(Range, SIM_MEMBER(Range, start), SIM_MEMBER(Range, end))

}  // namespace sim

namespace {

constexpr int64_t largestChip = 1 << 20;

std::mutex& chipMutex() {
    static std::mutex* instance = new std::mutex;
    return *instance;
}

bool present() {
    return sim::board().number("EEPROM", "PRESENT") != 0;
}

uint32_t chipSize() {
    int64_t size = sim::board().number("EEPROM", "SIZE");
    return size < 1 || size > largestChip ? 0 : static_cast<uint32_t>(size);
}

std::string chipPath() {
    return sim::storagePath("/dev/eeprom0");
}

/** What an access is refused with, 0 when it may go on; the file is then there. */
int32_t accessError(uint32_t address, uint32_t size, const void* buffer, const uint32_t* done) {
    if (!present())
        return QLX_EEPROM_ERR_ABSENT;
    if (buffer == nullptr || done == nullptr || size == 0 ||
        static_cast<uint64_t>(address) + size > chipSize())
        return QLX_EEPROM_ERR_INVALID_PARA;
    if (!sim::provideFile(chipPath(), std::string(chipSize(), '\xff')))
        return QLX_EEPROM_ERR_IO;
    return QLX_SUCCESS;
}

}  // namespace

int32_t QLX_EepromIsExist(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    if (!present())
        SIM_RETURN(QLX_EEPROM_ERR_ABSENT);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_EepromGetSize(uint32_t* size) {
    SIM_ENTRY("size=%s", sim::showPointer(size));
    if (!present())
        SIM_RETURN(QLX_EEPROM_ERR_ABSENT);
    if (size == nullptr)
        SIM_RETURN(QLX_EEPROM_ERR_INVALID_PARA);
    *size = chipSize();
    simCall.output({sim::value("size", size)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_EepromGetRange(uint32_t* start, uint32_t* end) {
    SIM_ENTRY("start=%s end=%s", sim::showPointer(start), sim::showPointer(end));
    if (!present())
        SIM_RETURN(QLX_EEPROM_ERR_ABSENT);
    if (start == nullptr || end == nullptr)
        SIM_RETURN(QLX_EEPROM_ERR_INVALID_PARA);
    Range range = {static_cast<uint32_t>(sim::board().number("EEPROM", "RANGE_START")),
                   static_cast<uint32_t>(sim::board().number("EEPROM", "RANGE_END"))};
    simCall.output({sim::value("range", &range)});
    *start = range.start;
    *end = range.end;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_EepromRead(uint32_t address, uint32_t size, void* buffer, uint32_t* sizeRead) {
    SIM_ENTRY("address=0x%x size=%u buffer=%s sizeRead=%s", address, size, sim::showPointer(buffer),
              sim::showPointer(sizeRead));
    std::lock_guard<std::mutex> lock(chipMutex());
    if (sizeRead != nullptr)
        *sizeRead = 0;
    int32_t error = accessError(address, size, buffer, sizeRead);
    if (error != QLX_SUCCESS)
        SIM_RETURN(error);
    if (!sim::readAt(chipPath(), address, buffer, size))
        SIM_RETURN(QLX_EEPROM_ERR_IO);
    *sizeRead = size;
    simCall.output({sim::bytesValue("buffer", buffer, size), sim::marked("length", sizeRead)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_EepromWrite(uint32_t address, uint32_t size, const void* buffer,
                        uint32_t* sizeWritten) {
    SIM_ENTRY("address=0x%x size=%u data=%s sizeWritten=%s", address, size,
              sim::showBytes(buffer, size, chipSize()).c_str(), sim::showPointer(sizeWritten));
    std::lock_guard<std::mutex> lock(chipMutex());
    if (sizeWritten != nullptr)
        *sizeWritten = 0;
    int32_t error = accessError(address, size, buffer, sizeWritten);
    if (error != QLX_SUCCESS)
        SIM_RETURN(error);
    if (!sim::writeAt(chipPath(), address, buffer, size))
        SIM_RETURN(QLX_EEPROM_ERR_IO);
    *sizeWritten = size;
    simCall.output({sim::marked("length", sizeWritten)});
    SIM_RETURN(QLX_SUCCESS);
}
