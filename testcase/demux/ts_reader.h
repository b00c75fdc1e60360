/*
 * Reader of transport stream files (ISO/IEC 13818-1): finds the first section that a filter lets
 * through, as the reference for what a demultiplexer delivers from the same stream on the air.
 *
 * Its ways of counting payload are those that references have always been made with; they are
 * described at the functions and stay as they are, since references must not change under a rack.
 * It is safe on any bytes: no count leads outside a packet's record or the section buffer.
 *
 * Files are read in large blocks, for a search may run through a long one, and packet by packet it
 * looks at single bytes.
 *
 * No state is shared: handle, packet and section belong to the caller. It calls no library.
 */
#ifndef TESTCASE_DEMUX_TS_READER_H
#define TESTCASE_DEMUX_TS_READER_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "platform/qlx_filter.h"

enum {
    TS_PACKET_SIZE = 188,
    /** Bytes behind the packet in streams with Reed-Solomon code: 204 in all. */
    TS_PARITY_SIZE = 16,
    TS_PACKET_SIZE_MAX = 204,
    TS_SYNC_BYTE = 0x47,
    TS_SECTION_SIZE_MAX = 4096,
    TS_FILE_BLOCK_SIZE = 64 * 1024,
};

/** An open stream file, at a place. */
struct TsFile_st {
    FILE* file;
    /** The place in the block, and the bytes in it. */
    size_t next;
    size_t used;
    uint8_t block[TS_FILE_BLOCK_SIZE];
};

/** One packet as read; cleared before each read. */
struct Packet_st {
    uint8_t buffer[TS_PACKET_SIZE_MAX];
    /** Bytes in use: 188 or 204. */
    uint32_t uSize;
};
static_assert(sizeof(Packet_st) == 208, "the payload counts rely on four bytes behind the packet");

/** Bytes of a section: a reference being put together, or a copy of what was delivered. */
struct SectionData_st {
    /** Heap bytes, for a reference TS_SECTION_SIZE_MAX of them; null: none. */
    uint8_t* pBuffer;
    uint32_t uLength;
    uint32_t uReserved;
};

/**
 * The reader's form of a section filter: byte k stands for byte k of the section, where in the
 * library's form byte k from 1 on stands for byte k + 2.
 */
struct FilterParams_st {
    uint16_t uPid;
    uint8_t au8Match[QLX_SECTION_FILTER_BYTES];
    uint8_t au8Mask[QLX_SECTION_FILTER_BYTES];
    uint8_t au8Negate[QLX_SECTION_FILTER_BYTES];
    uint8_t uDepth;
    uint32_t uTimeOutMs;
    uint32_t eCrcMode;
    uint32_t bContinuous;
    uint32_t uBufferSize;
    uint32_t uReserved[2];
};
static_assert(sizeof(FilterParams_st) == 76, "as the library's section filter parameters");

struct RequestInfo_st;

/** The packet's PID, 13 bits. */
uint16_t tsPacketPid(const Packet_st* p_packet);

/**
 * Fills the reader's filter.
 * @param pstConfigured  the library's form, or null
 * @param pRequestInfo   a request, or null; applied behind the library's form
 * @param pstFilter      receives the filter
 */
void LoadFilterParams(const QLX_SectionFilterParams* pstConfigured,
                      const RequestInfo_st* pRequestInfo, FilterParams_st* pstFilter);

/** Opens a file at its begin. Null when it cannot be read. */
TsFile_st* tsFileOpen(const char* path);
void tsFileClose(TsFile_st* p_fileHandle);
/** Goes to the begin again. */
void tsFileRewind(TsFile_st* p_fileHandle);
/** The place, in bytes from the begin. */
long tsFilePlace(const TsFile_st* p_fileHandle);
/** Whether no byte follows. The place does not change. */
bool tsFileAtEnd(TsFile_st* p_fileHandle);

/** Seeks back one byte; a failure is printed. */
void GoBackOneByte(TsFile_st* p_fileHandle);

/** 0 when the next byte is a sync byte, which stays the next one; 1 otherwise, one byte further. */
int32_t GetSync(TsFile_st* p_fileHandle);

/** 0 when the next byte is a sync byte; 1 when not, or at the end. The place does not change. */
int32_t NextIsSync(TsFile_st* p_fileHandle);

/**
 * Skips to the next sync byte and reads a packet. It has 204 bytes when no sync byte follows the
 * first 188, so that the last packet of a file of 188-byte packets is not read.
 * @param p_packet  a cleared record
 * @return 0; 1 at the end of the file or in the middle of a packet
 */
int32_t DEMUX_ReadTSPacket(TsFile_st* p_fileHandle, Packet_st* p_packet);

/** Takes 0xff bytes off the end: lowers *p_payloadSize, never below 0 nor from below it. */
void DiscardStuffByte(const uint8_t* p_payloadBuffer, int* p_payloadSize);

/**
 * Finds the payload: with the start indicator set, from the place that the pointer field names.
 * The count of a packet with an adaptation field is four bytes too high, and negative for fields
 * that lie about their lengths; where it is positive, all its bytes lie in the packet's record.
 * @param pp_payloadBuffer, p_payloadSize  left alone for the reserved adaptation field control 0
 * @return 0; 1 when the packet has no payload
 */
int32_t GetPayloadBuffer(const Packet_st* p_packet, const uint8_t** pp_payloadBuffer,
                         int* p_payloadSize);

/** 0 when the filter accepts a payload. Only bytes with a mask of 0xff count; bytes behind the
 *  payload's end do not, so that a payload of no bytes is accepted. */
int32_t SelectFilter(const uint8_t* p_payloadBuffer, int payloadSize,
                     const FilterParams_st* pstFilter);

/** Appends a payload without its trailing 0xff bytes; drops it when it would not fit. */
void DispatchPacket(const uint8_t* p_payloadBuffer, int payloadSize,
                    SectionData_st* file_sectionData);

/**
 * Adds a packet to the section.
 * @param pbStarted  whether the section's first packet was found; 0 before the first call
 * @param puLastCc   continuity counter of the last packet taken
 * @return 0 when the packet was taken (or ended the section's packets), 1 when it is to be skipped
 */
int32_t DEMUX_AppendTSPacket(const Packet_st* p_packet, const FilterParams_st* pstFilter,
                             SectionData_st* file_sectionData, uint32_t* pbStarted,
                             uint8_t* puLastCc);

#endif
