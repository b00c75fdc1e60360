/*
 * The frame of a section filter case: the bench that it stands on, brought up step by step and
 * taken down in reverse, its verdict, and filters that it leads by hand.
 */
#ifndef TESTCASE_DEMUX_SECTION_FRAME_H
#define TESTCASE_DEMUX_SECTION_FRAME_H

#include <stdint.h>

#include "testcase/demux/demux_request.h"
#include "testcase/demux/section_bodies.h"

struct SectionFrame {
    /** The variant, under whose name checks print. */
    const char* name;
    const SectionBench* bench;
    uint32_t eDemuxId;
    uint32_t eTunerId;
    uint32_t result;
    bool tuned;
    bool initialised;
    bool opened;
    bool started;
};

SectionFrame frameOf(const char* name, const SectionBench& bench);

/** True when `value` is 0; else prints the failure of `text` and sets the frame's result. */
bool frameCheck(SectionFrame* frame, int line, const char* text, int64_t value);
/** True when the two are equal; else prints both and sets the frame's result. */
bool frameEqual(SectionFrame* frame, int line, uint32_t expected, uint32_t actual);

/** The checks; they need a `frame` in scope and yield whether they hold. */
#define FRAME_RET(expr) frameCheck(frame, __LINE__, #expr, static_cast<int64_t>(expr))
#define FRAME_RET_TEXT(text, expr) frameCheck(frame, __LINE__, text, static_cast<int64_t>(expr))
#define FRAME_EQUAL(expected, actual) frameEqual(frame, __LINE__, expected, actual)

/** Tunes to the channel of file 0 or 1. False: the tuner is closed, and the case may end. */
bool frameTune(SectionFrame* frame, uint32_t file);
/** Initialises, opens, connects and starts the demultiplexer, up to the first failure. */
bool frameOpen(SectionFrame* frame);
/** Both, with file 0. */
bool frameTuneAndOpen(SectionFrame* frame);
/** Takes down what is up, each step also after one that failed; prints and answers the verdict. */
uint32_t frameEnd(SectionFrame* frame);

/** The path of the reference. */
const char* framePath(const SectionFrame* frame, uint32_t file);

/** Clears a request and fills it in for a table, with the PIDs of the channel. */
void frameRequest(const SectionFrame* frame, const SectionRequest& table,
                  RequestInfo_st* pRequestInfo);

/** Exactly one event, and that with data. */
bool frameOneData(SectionFrame* frame, const RequestInfo_st* pRequestInfo);

/** A filter that is led by hand. */
struct HandFilter {
    uint32_t hFilter;
    RequestInfo_st stRequestInfo;
    bool created;
    bool withSem;
    bool registered;
    bool running;
};

/** Creates, configures and registers a filter for a filled-in request. */
bool handOpen(SectionFrame* frame, HandFilter* filter);
bool handStart(SectionFrame* frame, HandFilter* filter);
/** Stops it when it runs. */
bool handStop(SectionFrame* frame, HandFilter* filter);
/** Takes down what is up, and frees the copies of all events. */
void handClose(SectionFrame* frame, HandFilter* filter);

#endif
