#include "testcase/demux/ts_reader.h"

#include <stdlib.h>
#include <string.h>

#include "framework/case/check.h"
#include "testcase/demux/demux_request.h"

static const int SECTION_LENGTH_BYTES = 2;
static const uint8_t VERSION_MASK = 0x3e;  // xx11111x of section byte 5
static const int VERSION_BYTE = 5;

/** Prints an assertion that does not hold; the caller then does the least that is safe. */
static bool assertHolds(bool holds, const char* function, int line, const char* text) {
    CaseContext tc = {function};
    return holds || tc_fail(tc, line, "ASSERT %s \n", text);
}

uint16_t tsPacketPid(const Packet_st* p_packet) {
    return static_cast<uint16_t>((p_packet->buffer[1] << 8 | p_packet->buffer[2]) & 0x1fff);
}

static bool payloadUnitStart(const Packet_st* p_packet) {
    return (p_packet->buffer[1] & 0x40) != 0;
}

static uint8_t continuityCounter(const Packet_st* p_packet) {
    return p_packet->buffer[3] & 0x0f;
}

void LoadFilterParams(const QLX_SectionFilterParams* pstConfigured,
                      const RequestInfo_st* pRequestInfo, FilterParams_st* pstFilter) {
    memset(pstFilter, 0, sizeof *pstFilter);
    if (pstConfigured != nullptr) {
        pstFilter->uPid = pstConfigured->uPid;
        pstFilter->uTimeOutMs = pstConfigured->uTimeOutMs;
        pstFilter->eCrcMode = pstConfigured->eCrcMode;
        pstFilter->bContinuous = pstConfigured->bContinuous;
        pstFilter->uBufferSize = pstConfigured->uBufferSize;
        pstFilter->au8Match[0] = pstConfigured->au8Match[0];
        pstFilter->au8Mask[0] = pstConfigured->au8Mask[0];
        for (int k = 1; k + SECTION_LENGTH_BYTES < QLX_SECTION_FILTER_BYTES; k++) {
            pstFilter->au8Match[k + SECTION_LENGTH_BYTES] = pstConfigured->au8Match[k];
            pstFilter->au8Mask[k + SECTION_LENGTH_BYTES] = pstConfigured->au8Mask[k];
        }
    }
    if (pRequestInfo != nullptr) {
        pstFilter->uPid = pRequestInfo->uPid;
        pstFilter->uTimeOutMs = pRequestInfo->uTimeOutMs;
        pstFilter->eCrcMode = QLX_SECTION_CRC_CHECK;
        pstFilter->bContinuous = pRequestInfo->bContinuous;
        pstFilter->uBufferSize = pRequestInfo->uBufferSize;
        pstFilter->au8Match[0] = pRequestInfo->tableId;
        pstFilter->au8Mask[0] = 0xff;
        if (pRequestInfo->uVersion < REQUEST_ANY_VERSION) {
            // The table id stands where the version belongs. The mask is partial, so that the
            // selection never looks at it.
            pstFilter->au8Match[VERSION_BYTE] = static_cast<uint8_t>(pRequestInfo->tableId << 1);
            pstFilter->au8Mask[VERSION_BYTE] = VERSION_MASK;
            pstFilter->au8Negate[VERSION_BYTE] =
                pRequestInfo->bVersionMatch != 0 ? 0 : VERSION_MASK;
        }
    }
}

TsFile_st* tsFileOpen(const char* path) {
    FILE* file = fopen(path, "rb");
    if (file == nullptr)
        return nullptr;
    TsFile_st* handle = static_cast<TsFile_st*>(malloc(sizeof *handle));
    if (handle == nullptr) {
        fclose(file);
        return nullptr;
    }
    setvbuf(file, nullptr, _IONBF, 0);
    handle->file = file;
    handle->next = 0;
    handle->used = 0;
    return handle;
}

void tsFileClose(TsFile_st* p_fileHandle) {
    fclose(p_fileHandle->file);
    free(p_fileHandle);
}

void tsFileRewind(TsFile_st* p_fileHandle) {
    rewind(p_fileHandle->file);
    p_fileHandle->next = 0;
    p_fileHandle->used = 0;
}

long tsFilePlace(const TsFile_st* p_fileHandle) {
    return ftell(p_fileHandle->file) - static_cast<long>(p_fileHandle->used - p_fileHandle->next);
}

/** With the block used up: reads the next one. False at the end of the file. */
static bool readBlock(TsFile_st* p_fileHandle) {
    p_fileHandle->next = 0;
    p_fileHandle->used = fread(p_fileHandle->block, 1, TS_FILE_BLOCK_SIZE, p_fileHandle->file);
    return p_fileHandle->used > 0;
}

bool tsFileAtEnd(TsFile_st* p_fileHandle) {
    return p_fileHandle->next >= p_fileHandle->used && !readBlock(p_fileHandle);
}

/** Reads up to `size` bytes. Returns how many there were. */
static size_t readBytes(TsFile_st* p_fileHandle, uint8_t* bytes, size_t size) {
    size_t done = 0;
    if (p_fileHandle->used - p_fileHandle->next >= size) {
        memcpy(bytes, p_fileHandle->block + p_fileHandle->next, size);
        p_fileHandle->next += size;
        return size;
    }
    while (done < size && !tsFileAtEnd(p_fileHandle)) {
        const size_t held = p_fileHandle->used - p_fileHandle->next;
        const size_t count = held < size - done ? held : size - done;
        memcpy(bytes + done, p_fileHandle->block + p_fileHandle->next, count);
        p_fileHandle->next += count;
        done += count;
    }
    return done;
}

void GoBackOneByte(TsFile_st* p_fileHandle) {
    if (!assertHolds(p_fileHandle != nullptr, __func__, __LINE__,
                     "p_fileHandle != NULL_PTR(FILE *)"))
        return;
    if (p_fileHandle->next > 0) {
        p_fileHandle->next--;
        return;
    }
    if (fseek(p_fileHandle->file, -static_cast<long>(p_fileHandle->used) - 1, SEEK_CUR) == 0)
        p_fileHandle->used = 0;
    else
        printf("------------- GoBackOneByte error !!!!!");
}

int32_t GetSync(TsFile_st* p_fileHandle) {
    if (!assertHolds(p_fileHandle != nullptr, __func__, __LINE__,
                     "p_fileHandle != NULL_PTR(FILE *)") ||
        tsFileAtEnd(p_fileHandle))
        return 1;
    if (p_fileHandle->block[p_fileHandle->next++] != TS_SYNC_BYTE)
        return 1;
    GoBackOneByte(p_fileHandle);
    return 0;
}

int32_t NextIsSync(TsFile_st* p_fileHandle) {
    if (!assertHolds(p_fileHandle != nullptr, __func__, __LINE__,
                     "p_fileHandle != NULL_PTR(FILE *)") ||
        tsFileAtEnd(p_fileHandle))
        return 1;
    return p_fileHandle->block[p_fileHandle->next] == TS_SYNC_BYTE ? 0 : 1;
}

int32_t DEMUX_ReadTSPacket(TsFile_st* p_fileHandle, Packet_st* p_packet) {
    if (!assertHolds(p_fileHandle != nullptr, __func__, __LINE__,
                     "p_fileHandle != NULL_PTR(FILE *)") ||
        !assertHolds(p_packet != nullptr, __func__, __LINE__, "p_packet != NULL_PTR(Packet_st *)"))
        return 1;
    while (GetSync(p_fileHandle) != 0) {
        if (tsFileAtEnd(p_fileHandle))
            return 1;
    }
    if (readBytes(p_fileHandle, p_packet->buffer, TS_PACKET_SIZE) != TS_PACKET_SIZE)
        return 1;
    p_packet->uSize = TS_PACKET_SIZE;
    if (p_packet->buffer[0] != TS_SYNC_BYTE)
        printf("------------- read ts data error !!!!! first byte = 0x%.2x\n", p_packet->buffer[0]);
    if (NextIsSync(p_fileHandle) == 0)
        return 0;
    if (readBytes(p_fileHandle, p_packet->buffer + TS_PACKET_SIZE, TS_PARITY_SIZE) !=
        TS_PARITY_SIZE) {
        printf("[%s %d]:Fail to read %d packet.\n", __func__, __LINE__, TS_PARITY_SIZE);
        return 1;
    }
    p_packet->uSize += TS_PARITY_SIZE;
    return 0;
}

void DiscardStuffByte(const uint8_t* p_payloadBuffer, int* p_payloadSize) {
    if (!assertHolds(p_payloadBuffer != nullptr, __func__, __LINE__,
                     "p_payloadBuffer != NULL_PTR(QLX_U8 *)") ||
        !assertHolds(p_payloadSize != nullptr, __func__, __LINE__,
                     "p_payloadSize != NULL_PTR(int *)"))
        return;
    while (*p_payloadSize > 0 && p_payloadBuffer[*p_payloadSize - 1] == 0xff)
        --*p_payloadSize;
}

int32_t GetPayloadBuffer(const Packet_st* p_packet, const uint8_t** pp_payloadBuffer,
                         int* p_payloadSize) {
    if (!assertHolds(p_packet != nullptr, __func__, __LINE__,
                     "p_packet != NULL_PTR(Packet_st *)") ||
        !assertHolds(pp_payloadBuffer != nullptr, __func__, __LINE__, "pp_payloadBuffer != NULL") ||
        !assertHolds(p_payloadSize != nullptr, __func__, __LINE__,
                     "p_payloadSize != NULL_PTR(int *)"))
        return 1;
    const uint8_t* record = reinterpret_cast<const uint8_t*>(p_packet);
    const int size = static_cast<int>(p_packet->uSize);
    const int adaptation = record[4];  // adaptation_field_length, where there is one
    int begin = 0;
    switch ((record[3] >> 4 & 3) | (payloadUnitStart(p_packet) ? 4 : 0)) {
        case 1:
            begin = 4;
            *p_payloadSize = size - 4;
            break;
        case 1 | 4:
            begin = 5 + record[4];
            *p_payloadSize = size - 5 - record[4];
            break;
        case 3:
            begin = adaptation + 5;
            *p_payloadSize = size - adaptation - 1;
            break;
        case 3 | 4: {
            // The pointer field of an adaptation field that overruns the record reads as 0.
            const int pointerAt = adaptation + 5;
            const int pointer =
                pointerAt < static_cast<int>(sizeof *p_packet) ? record[pointerAt] : 0;
            begin = pointerAt + 1 + pointer;
            *p_payloadSize = size - adaptation - 2 - pointer;
            break;
        }
        case 2:
        case 2 | 4:
            return 1;
        default:
            return 0;
    }
    // A payload that begins behind the record has a count below 1: where it points does not matter.
    *pp_payloadBuffer =
        record + (begin < static_cast<int>(sizeof *p_packet) ? begin : sizeof *p_packet);
    return 0;
}

int32_t SelectFilter(const uint8_t* p_payloadBuffer, int payloadSize,
                     const FilterParams_st* pstFilter) {
    for (int k = 0; k < QLX_SECTION_FILTER_BYTES && k < payloadSize; k++) {
        if (pstFilter->au8Mask[k] == 0xff && p_payloadBuffer[k] != pstFilter->au8Match[k])
            return 1;
    }
    printf("[%s %d]:Found filter to dispatch.\n", __func__, __LINE__);
    return 0;
}

void DispatchPacket(const uint8_t* p_payloadBuffer, int payloadSize,
                    SectionData_st* file_sectionData) {
    printf("[%s %d]:Before discard.\n", __func__, __LINE__);
    if (payloadSize <= 0)
        return;
    DiscardStuffByte(p_payloadBuffer, &payloadSize);
    const uint32_t size = static_cast<uint32_t>(payloadSize);
    if (file_sectionData->pBuffer == nullptr ||
        file_sectionData->uLength + size > TS_SECTION_SIZE_MAX) {
        printf("Payload is too long, cannot store it.");
        return;
    }
    memcpy(file_sectionData->pBuffer + file_sectionData->uLength, p_payloadBuffer, size);
    file_sectionData->uLength += size;
}

/** A packet that starts a payload unit: takes it when the filter accepts the section there. */
static int32_t appendStart(const Packet_st* p_packet, const FilterParams_st* pstFilter,
                           SectionData_st* file_sectionData, uint32_t* pbStarted,
                           uint8_t* puLastCc) {
    const uint8_t* payload = nullptr;
    int size = 0;
    if (GetPayloadBuffer(p_packet, &payload, &size) != 0) {
        printf("Fail to get payload.");
        return 1;
    }
    if (SelectFilter(payload, size, pstFilter) != 0)
        return 1;
    *pbStarted = 1;
    *puLastCc = continuityCounter(p_packet);
    DispatchPacket(payload, size, file_sectionData);
    return 0;
}

int32_t DEMUX_AppendTSPacket(const Packet_st* p_packet, const FilterParams_st* pstFilter,
                             SectionData_st* file_sectionData, uint32_t* pbStarted,
                             uint8_t* puLastCc) {
    if (payloadUnitStart(p_packet))
        return appendStart(p_packet, pstFilter, file_sectionData, pbStarted, puLastCc);
    if (*pbStarted == 0)
        return 1;
    const uint8_t counter = continuityCounter(p_packet);
    if (((*puLastCc + 1) & 15) == counter) {
        const uint8_t* payload = nullptr;
        int size = 0;
        if (GetPayloadBuffer(p_packet, &payload, &size) != 0) {
            printf("Fail to get payload.");
            return 0;
        }
        DispatchPacket(payload, size, file_sectionData);
        *puLastCc = counter;
    } else if (counter == *puLastCc) {
        printf("[%s %d]:Duplicated packet, drop it.\n", __func__, __LINE__);
    } else {
        // Packets are lost: wait for the next start of the section.
        *pbStarted = 0;
        file_sectionData->uLength = 0;
    }
    return 0;
}
