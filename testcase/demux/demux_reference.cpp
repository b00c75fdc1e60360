#include "testcase/demux/demux_reference.h"

#include <stdlib.h>
#include <string.h>

#include "framework/base/zk_log.h"

static void dump(const uint8_t* bytes, uint32_t length) {
    for (uint32_t i = 0; i < length; i++)
        printf("%02x ", bytes[i]);
    printf("\n");
}

static bool hasBytes(const SectionData_st* data) {
    return data->pBuffer != nullptr && data->uLength != 0;
}

/** What the passage of a file needs. */
struct Passage {
    TsFile_st* file;
    FilterParams_st stFilter;
    bool rewound;
};

/** Clears the data, gives them their buffer, and opens the file for the operation `name`. */
static bool openPassage(const char* name, const QLX_SectionFilterParams* pstConfigured,
                        const RequestInfo_st* pRequestInfo, SectionData_st* file_sectionData,
                        const char* path, Passage* passage) {
    printf("g_tsFilePath = %s \n", path);
    memset(file_sectionData, 0, sizeof *file_sectionData);
    file_sectionData->pBuffer = static_cast<uint8_t*>(calloc(1, TS_SECTION_SIZE_MAX));
    LoadFilterParams(pstConfigured, pRequestInfo, &passage->stFilter);
    if (pstConfigured != nullptr)
        passage->stFilter.uPid = pstConfigured->uPid;
    passage->rewound = false;
    passage->file = tsFileOpen(path);
    if (passage->file == nullptr) {
        printf("[%s %d]:file handle is null.\n", name, __LINE__);
        return false;
    }
    return true;
}

/**
 * Reads the next packet of the filter's PID. A file that ends just behind a packet is begun again,
 * for a section may lie across its ends; once, or a file without the section would be read forever.
 */
static bool nextPacket(Passage* passage, Packet_st* packet) {
    memset(packet, 0, sizeof *packet);
    do {
        if (tsFileAtEnd(passage->file)) {
            if (passage->rewound)
                return false;
            passage->rewound = true;
            tsFileRewind(passage->file);
        }
        // What a packet always overwrites need not be cleared for each.
        memset(packet->buffer + TS_PACKET_SIZE, 0, sizeof *packet - TS_PACKET_SIZE);
        if (DEMUX_ReadTSPacket(passage->file, packet) != 0)
            return false;
    } while (tsPacketPid(packet) != passage->stFilter.uPid);
    return true;
}

/** Whether the bytes so far hold a whole section; then cuts them to its length. */
static bool sectionComplete(SectionData_st* data) {
    if (data->pBuffer == nullptr || data->uLength < 3)
        return false;
    // xxxx1111 11111111: section_length, the bytes behind the first three
    const uint32_t length = ((data->pBuffer[1] << 8 | data->pBuffer[2]) & 0xfff) + 3u;
    if (data->uLength < length)
        return false;
    data->uLength = length;
    return true;
}

void Demux_ReadTsData(const QLX_SectionFilterParams* pstConfigured,
                      const RequestInfo_st* pRequestInfo, SectionData_st* file_sectionData,
                      const char* path) {
    Passage passage;
    Packet_st packet;
    uint32_t bStarted = 0;
    uint8_t uLastCc = 0;
    if (!openPassage(__func__, pstConfigured, pRequestInfo, file_sectionData, path, &passage))
        return;
    while (nextPacket(&passage, &packet)) {
        if (DEMUX_AppendTSPacket(&packet, &passage.stFilter, file_sectionData, &bStarted,
                                 &uLastCc) != 0)
            continue;
        if (sectionComplete(file_sectionData)) {
            dump(file_sectionData->pBuffer, file_sectionData->uLength);
            printf("uLength = %d \n", static_cast<int>(file_sectionData->uLength));
            break;
        }
    }
    tsFileClose(passage.file);
}

void Demux_ReadTsPacketData(const QLX_SectionFilterParams* pstConfigured,
                            const RequestInfo_st* pRequestInfo, SectionData_st* file_sectionData,
                            const char* path) {
    Passage passage;
    Packet_st packet;
    if (!openPassage(__func__, pstConfigured, pRequestInfo, file_sectionData, path, &passage))
        return;
    if (file_sectionData->pBuffer != nullptr && nextPacket(&passage, &packet)) {
        memcpy(file_sectionData->pBuffer, packet.buffer, packet.uSize);
        file_sectionData->uLength = packet.uSize;
    }
    tsFileClose(passage.file);
}

void Demux_FreeTsData(SectionData_st* file_sectionData) {
    free(file_sectionData->pBuffer);
    memset(file_sectionData, 0, sizeof *file_sectionData);
}

int32_t Demux_CompareData2(const SectionData_st* delivered, const SectionData_st* reference) {
    if (!hasBytes(delivered) || !hasBytes(reference))
        return -1;
    zk_log("section from demux: %d \r\n", static_cast<int>(delivered->uLength));
    dump(delivered->pBuffer, delivered->uLength);
    zk_log("section from ts file: %d \r\n", static_cast<int>(reference->uLength));
    dump(reference->pBuffer, reference->uLength);
    // The reference's buffer is longer than its section: zeros stand behind the bytes read.
    if (delivered->uLength > TS_SECTION_SIZE_MAX)
        return -1;
    return memcmp(delivered->pBuffer, reference->pBuffer, delivered->uLength) == 0 ? 0 : -1;
}

int32_t Demux_CompareTableId(const SectionData_st* delivered, uint8_t tableId) {
    if (!hasBytes(delivered))
        return -1;
    zk_log("demux rev: %d \r\n", static_cast<int>(delivered->uLength));
    dump(delivered->pBuffer, delivered->uLength);
    zk_log("request table_id: %02x,  demux rev table_id: %02x \r\n", tableId,
           delivered->pBuffer[0]);
    return delivered->pBuffer[0] == tableId ? 0 : -1;
}

int32_t Demux_ComparePacketData(const SectionData_st* delivered, const SectionData_st* reference) {
    if (!hasBytes(delivered) || !hasBytes(reference))
        return -1;
    zk_log("demux rev: %d \r\n", static_cast<int>(delivered->uLength));
    dump(delivered->pBuffer, delivered->uLength);
    zk_log("file rev: %d \r\n", static_cast<int>(reference->uLength));
    dump(reference->pBuffer, reference->uLength);
    if (delivered->uLength < reference->uLength)
        return -1;
    for (uint32_t i = 0; i < reference->uLength; i++) {
        if (i != 3 && delivered->pBuffer[i] != reference->pBuffer[i])
            return -1;
    }
    return 0;
}
