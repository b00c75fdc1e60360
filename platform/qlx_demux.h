/*
 * Transport stream demultiplexers.
 *
 * A demultiplexer is opened, connected to a source, and started; filters (qlx_filter.h) are created
 * on an open one and receive data while it runs. The order is init, open, connect, start, and the
 * reverse. Any thread may call, also several at once.
 *
 * Wrong order is answered with QLX_FAILED, a bad number or null pointer with
 * QLX_DEMUX_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_DEMUX_H
#define PLATFORM_QLX_DEMUX_H

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_DemuxId {
    QLX_DEMUX_0 = 0,
    QLX_DEMUX_1 = 1,
    QLX_DEMUX_2 = 2,
    QLX_DEMUX_3 = 3,
    QLX_DEMUX_NUM_MAX = 4,
};

enum QLX_DemuxError {
    QLX_DEMUX_ERR_INVALID_PARA = 0x100401,
    /** All filters of the demultiplexer are in use. */
    QLX_DEMUX_ERR_NO_RESOURCE = 0x100403,
};

/** What a demultiplexer can do. */
typedef struct QLX_DemuxCapability {
    /** Filters of all kinds that it can hold at a time. */
    uint32_t FilterNum;
    uint32_t uReserved[7];
} QLX_DemuxCapability;
QLX_RECORD_SIZE(QLX_DemuxCapability, 32);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_DemuxInit(void);

/**
 * Ends the service, whatever the number of initialisations was. Open demultiplexers are closed and
 * their filters deleted. Returns 0.
 */
int32_t QLX_DemuxDeInit(void);

/**
 * Opens a demultiplexer, which is then neither connected nor started.
 * @param eDemuxId  QLX_DEMUX_0 to QLX_DEMUX_3
 * @return 0; QLX_FAILED before init, or when it is open already; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxOpen(uint32_t eDemuxId);

/**
 * Stops and closes a demultiplexer; its filters are deleted and its connection is forgotten.
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxClose(uint32_t eDemuxId);

/**
 * Lets the stream of the connected source in. Starting a started one changes nothing.
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxStart(uint32_t eDemuxId);

/**
 * Shuts the stream off. Filters stay as they are; those that run find no data. Stopping a stopped
 * one changes nothing.
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxStop(uint32_t eDemuxId);

/**
 * Connects an open demultiplexer to a source, in place of the one that it had. Several may be
 * connected to the same tuner. The tuner need not be open or locked.
 * @param pstSource  kind QLX_SOURCE_TYPE_TUNER with a tuner's number, or QLX_SOURCE_TYPE_RECORD
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA also for any other kind
 */
int32_t QLX_DemuxConnectSource(uint32_t eDemuxId, const QLX_Source* pstSource);

/**
 * Reads the connection back.
 * @param pstSource  receives it; all zero (QLX_SOURCE_TYPE_NONE) before any connection
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxGetSourceConnection(uint32_t eDemuxId, QLX_Source* pstSource);

/**
 * @param pstCapability  receives what an open demultiplexer can do
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxGetCapability(uint32_t eDemuxId, QLX_DemuxCapability* pstCapability);

/**
 * Creates a filter, of which FilterNum of all kinds fit into one demultiplexer.
 * @param eDemuxId  an open demultiplexer, connected or not
 * @param phFilter  receives the handle, never 0
 * @return 0; QLX_FAILED when it is not open; QLX_DEMUX_ERR_NO_RESOURCE when all are in use;
 *         QLX_DEMUX_ERR_INVALID_PARA
 */
int32_t QLX_DemuxCreateSectionFilter(uint32_t eDemuxId, uint32_t* phFilter);
int32_t QLX_DemuxCreatePesFilter(uint32_t eDemuxId, uint32_t* phFilter);
int32_t QLX_DemuxCreatePacketFilter(uint32_t eDemuxId, uint32_t* phFilter);

#ifdef __cplusplus
}
#endif

#endif
