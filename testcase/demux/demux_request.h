/*
 * Requests to filters: a record with a semaphore and a log of events that the filter's callback
 * fills, calls that make a filter, wait for its data and take it down again, and the bodies of
 * threads that do so many times.
 *
 * A record belongs to one filter at a time. The callback writes into it on a thread of the library,
 * and posts behind each event. While the filter runs the owner asks Demux_EventCount for the count,
 * and reads an event behind the wait that took its post; after the filter's stop it reads all.
 */
#ifndef TESTCASE_DEMUX_DEMUX_REQUEST_H
#define TESTCASE_DEMUX_DEMUX_REQUEST_H

#include <semaphore.h>
#include <stdint.h>

#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "testcase/demux/ts_reader.h"

struct CaseContext;

enum {
    /** Events that a record holds; further ones are only counted. */
    REQUEST_EVENT_MAX = 256,
    /** As version of a request: any. */
    REQUEST_ANY_VERSION = 255,
    /** Buffer of a filter as requests ask for it, in bytes. */
    REQUEST_BUFFER_SIZE = 4096,
};

/** One event as the callback saw it. */
struct SectionEvent_st {
    /** QLX_FilterEvent. */
    uint32_t eEvent;
    union {
        /** Data have come: a copy, which the record's owner frees (Demux_FreeEvents). */
        SectionData_st sectionData;
        /** The value of the other kinds that have one. */
        uintptr_t uValue;
    };
};

/** A request to a section filter. Clear it before use. */
struct RequestInfo_st {
    /** Made by Demux_SemInit; null: nobody waits. */
    sem_t* sem;
    uint16_t uPid;
    uint8_t tableId;
    uint16_t uExtensionTableId;
    /** 0 to 31, or REQUEST_ANY_VERSION. */
    uint8_t uVersion;
    /** Not 0: the version must be this one; 0: it must be another. */
    uint32_t bVersionMatch;
    /** Of the filter, and of the wait for its first event. */
    uint32_t uTimeOutMs;
    uint32_t uBufferSize;
    /** QLX_SectionCrcMode. */
    uint32_t eCrcMode;
    uint32_t bContinuous;
    /** Events since the record was cleared; requests go on counting. */
    uint32_t eventReceivedCount;
    SectionEvent_st eventRecord[REQUEST_EVENT_MAX];
};
static_assert(sizeof(void*) != 4 || sizeof(RequestInfo_st) == 4132,
              "a request must have 4132 bytes where pointers have four");

/** A copy of a PES packet. */
struct PesData_st {
    uint8_t* pBuffer;
    uint32_t uLength;
};

struct PesEvent_st {
    /** QLX_FilterEvent. */
    uint32_t eEvent;
    union {
        PesData_st pesData;
        uintptr_t uValue;
    };
};

/** A request to a PES filter. Clear it before use. */
struct PesRequestInfo_st {
    sem_t* sem;
    uint16_t uPid;
    uint32_t uTimeOutMs;
    uint32_t uBufferSize;
    uint32_t eventReceivedCount;
    PesEvent_st eventRecord[REQUEST_EVENT_MAX];
};

/** What a thread of requests does. */
struct DemuxThreadRequest_st {
    uint32_t demux_id;
    int32_t loop_count;
    /** Milliseconds between two requests. */
    uint32_t pause_ms;
    RequestInfo_st req;
};

/** Makes a semaphore of count 0 on the heap. 0; 1 for null, or without memory. */
uint32_t Demux_SemInit(sem_t** sem);
/** 0; 1 when the semaphore does not exist. */
uint32_t Demux_SemPost(sem_t* sem);
/** Waits at most so many milliseconds. 0 posted; 1 not. Null does not wait and gives 0. */
uint32_t Demux_SemTimedWait(uint32_t uTimeOutMs, sem_t* sem);
/** Destroys, frees and forgets it. 0, also when there is none; 1 for null. */
uint32_t Demux_SemDestroy(sem_t** sem);

/** Callbacks of the three kinds of filter; the user data is the request (for packets that of
 *  sections). They copy the data, give the library's buffer back, and post the semaphore. */
void Demux_SectionFilterCb(uint32_t eEvent, void* pUserdata, void* pData);
void Demux_PacketFilterCb(uint32_t eEvent, void* pUserdata, void* pData);
void Demux_PesFilterCb(uint32_t eEvent, void* pUserdata, void* pData);

/** Configures a filter as the request says. Returns the library's result. */
int32_t Demux_ConfigureSectionFilter(uint32_t hFilter, const RequestInfo_st* pRequestInfo);

/**
 * A whole request on an open demultiplexer: makes a filter, starts it, waits for its first event or
 * the time-out, and takes it down again. A time-out is no failure; the record tells what came.
 * @return 0; 1 when a call failed: it is printed, and what had been acquired is released
 */
uint32_t Demux_RequestSection(uint32_t eDemuxId, RequestInfo_st* pRequestInfo);
/** The same for sections with the table id extension of the request. */
uint32_t Demux_RequestSectionWithExtensionTableId(uint32_t eDemuxId, RequestInfo_st* pRequestInfo);
/** The same, but waits the whole time-out, so that further events can come. */
uint32_t Demux_RequestSectionWaiteBySleep(uint32_t eDemuxId, RequestInfo_st* pRequestInfo);
/** The same with another mask for the table id. */
uint32_t Demux_RequestSectionWithMask(uint32_t eDemuxId, RequestInfo_st* pRequestInfo,
                                      uint8_t mask0);
/** The same for a PES filter. */
uint32_t Demux_RequestPes(uint32_t eDemuxId, PesRequestInfo_st* pRequestInfo);

/** How many events have come; also while the filter runs. */
uint32_t Demux_EventCount(const RequestInfo_st* pRequestInfo);
/** How many of them are in the record. */
uint32_t Demux_RecordedEvents(const RequestInfo_st* pRequestInfo);
/** Demands exactly one event, and that with data. Yields whether it holds. */
bool Demux_ExpectOneData(CaseContext& tc, const RequestInfo_st* pRequestInfo);
/** Frees the copies of all events. */
void Demux_FreeEvents(RequestInfo_st* pRequestInfo);
void Demux_FreePesEvents(PesRequestInfo_st* pRequestInfo);

/** Reads the PID and the table id that the operator types, both hexadecimal. False when what is
 *  typed is no such thing, or at the end of input. */
bool Demux_AskForTable(RequestInfo_st* pRequestInfo);

/**
 * Bodies of threads; `req` is a DemuxThreadRequest_st. Each makes loop_count requests with a pause
 * behind each, and fails at the first without data. They end with 0 or 1 for tc_joinThread. The
 * second leaves the copies for its starter.
 */
void* Demux_RequestSectionThread(void* req);
void* Demux_RequestSectionThreadNoFreeBuffer(void* req);
/** Body of a thread that opens and closes the demultiplexer of the number (uint32_t) 100 times. */
void* Demux_OpenCloseDemuxThread(void* demuxId);

#endif
