/*
 * Filters of a demultiplexer: sections, PES packets, whole transport packets.
 *
 * A filter lives from QLX_DemuxCreate...Filter (qlx_demux.h) to its delete. It is configured, given
 * a callback, and started; it then reports through the callback until it is stopped. Handles are of
 * one kind each: a call of another kind refuses them.
 *
 * The library calls back on a thread of its own and holds no lock over it, so that the callback may
 * call the library. After a stop, an unregistration or a delete has returned, no callback of the
 * filter runs or comes, unless the call was made inside that callback.
 *
 * All functions answer 0, QLX_FAILED in the wrong order, and QLX_DEMUX_ERR_INVALID_PARA for a null
 * pointer, a value out of range, or a handle that is not one of a filter of the kind.
 */
#ifndef PLATFORM_QLX_FILTER_H
#define PLATFORM_QLX_FILTER_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a filter reports, and what the event data of its callback is then. */
enum QLX_FilterEvent {
    /** The buffer of the filter has overflown; no data. */
    QLX_FILTER_EVENT_OVERFLOW = 2,
    /** A fault of the filter; the event data points to a word with its code. */
    QLX_FILTER_EVENT_ERROR = 4,
    /** Data have come; the event data points to a QLX_FilterData. */
    QLX_FILTER_EVENT_DATA_COME = 8,
    /** No data have come in the time-out; no data. */
    QLX_FILTER_EVENT_TIMEOUT = 16,
    /** A state of the filter; the event data is itself the value. */
    QLX_FILTER_EVENT_STATE = 32,
};

/** Data that a filter delivers, and that the receiver gives back by the FreeBuffer call. */
typedef struct QLX_FilterData {
    /** A whole section from table_id to its last byte, a whole PES packet, or transport packets of
     *  188 bytes. */
    uint8_t* pBuffer;
    /** Bytes in the buffer. */
    uint32_t uLength;
    uint32_t uReserved;
} QLX_FilterData;
QLX_RECORD_SIZE_32(QLX_FilterData, 12);

/**
 * The callback of all kinds.
 * @param eEvent     QLX_FilterEvent
 * @param pUserdata  as registered
 * @param pData      see the events; valid during the call
 */
typedef void (*QLX_FilterCallback)(uint32_t eEvent, void* pUserdata, void* pData);

enum {
    QLX_SECTION_FILTER_BYTES = 16,
};

enum QLX_SectionCrcMode {
    /** The library chooses: it checks as QLX_SECTION_CRC_CHECK does. */
    QLX_SECTION_CRC_AUTO = 0,
    /** Drop a section whose CRC is wrong. Sections that carry no CRC pass. */
    QLX_SECTION_CRC_CHECK = 1,
    /** Deliver sections with a wrong CRC too. */
    QLX_SECTION_CRC_NO_CHECK = 2,
};

/**
 * What a section filter lets through.
 *
 * Byte 0 of the match, mask and negate bytes stands for table_id, byte k from 1 on for byte k + 2
 * of the section: the two bytes with section_length have no place. Of the bits set in the mask,
 * those not set in the negate bytes must equal the match bits; of those set in both, at least one
 * must differ.
 */
typedef struct QLX_SectionFilterParams {
    /** 13 bits. */
    uint16_t uPid;
    uint8_t au8Match[QLX_SECTION_FILTER_BYTES];
    uint8_t au8Mask[QLX_SECTION_FILTER_BYTES];
    uint8_t au8Negate[QLX_SECTION_FILTER_BYTES];
    /** How many of the bytes count, 0 to QLX_SECTION_FILTER_BYTES; with 0 all sections pass. */
    uint8_t uDepth;
    /** Milliseconds from the start, or in continuous mode from the last section, until
     *  QLX_FILTER_EVENT_TIMEOUT is reported, once; 0: never. */
    uint32_t uTimeOutMs;
    /** QLX_SectionCrcMode. */
    uint32_t eCrcMode;
    /** QLX_TRUE: deliver every section that passes. QLX_FALSE: deliver one, then stay silent. */
    uint32_t bContinuous;
    /** Bytes for sections not yet given back. */
    uint32_t uBufferSize;
    uint32_t uReserved[2];
} QLX_SectionFilterParams;
QLX_RECORD_SIZE(QLX_SectionFilterParams, 76);

/** What a PES filter lets through: whole PES packets of a PID. */
typedef struct QLX_PesFilterParams {
    /** 13 bits. */
    uint16_t uPid;
    /** Bytes for PES packets not yet given back. */
    uint32_t uBufferSize;
} QLX_PesFilterParams;
QLX_RECORD_SIZE(QLX_PesFilterParams, 8);

/** What a packet filter lets through: transport packets of a PID. */
typedef struct QLX_PacketFilterParams {
    /** 13 bits. */
    uint16_t uPid;
    /** Bytes for packets not yet given back. */
    uint32_t uBufferSize;
} QLX_PacketFilterParams;
QLX_RECORD_SIZE(QLX_PacketFilterParams, 8);

/** Configures a filter that is not running. */
int32_t QLX_SectionFilterConfigure(uint32_t hFilter, const QLX_SectionFilterParams* pstParams);
/** Sets the callback of a filter that is not running; `pUserdata` comes back with every call. */
int32_t QLX_SectionFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                          QLX_FilterCallback callback);
/** Takes the callback away, and waits for one that runs. */
int32_t QLX_SectionFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback);
/** Starts a configured filter, and its time-out. */
int32_t QLX_SectionFilterStart(uint32_t hFilter);
/** Stops a filter, and waits for a callback that runs. Stopping a stopped one changes nothing. */
int32_t QLX_SectionFilterStop(uint32_t hFilter);
/** Stops and deletes a filter; buffers not yet given back stay valid until they are. */
int32_t QLX_SectionFilterDelete(uint32_t hFilter);
/** Gives the buffer of a QLX_FILTER_EVENT_DATA_COME back. */
int32_t QLX_SectionFilterFreeBuffer(void* pBuffer);

/* The same for PES filters. */
int32_t QLX_PesFilterConfigure(uint32_t hFilter, const QLX_PesFilterParams* pstParams);
int32_t QLX_PesFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                      QLX_FilterCallback callback);
int32_t QLX_PesFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback);
int32_t QLX_PesFilterStart(uint32_t hFilter);
int32_t QLX_PesFilterStop(uint32_t hFilter);
int32_t QLX_PesFilterDelete(uint32_t hFilter);
int32_t QLX_PesFilterFreeBuffer(void* pBuffer);

/* The same for packet filters. */
int32_t QLX_PacketFilterConfigure(uint32_t hFilter, const QLX_PacketFilterParams* pstParams);
int32_t QLX_PacketFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                         QLX_FilterCallback callback);
int32_t QLX_PacketFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback);
int32_t QLX_PacketFilterStart(uint32_t hFilter);
int32_t QLX_PacketFilterStop(uint32_t hFilter);
int32_t QLX_PacketFilterDelete(uint32_t hFilter);
int32_t QLX_PacketFilterFreeBuffer(void* pBuffer);

#ifdef __cplusplus
}
#endif

#endif
