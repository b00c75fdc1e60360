/*
 * Bodies of the section filter cases, for all standards. Each tunes to a stream that is on the air,
 * brings a demultiplexer up, lets filters work, judges what they reported against the file of the
 * same stream, and takes everything down again. They print under the variant's name.
 *
 * All of them need a loaded configuration and initialised tuners (Demux_TestSetup), and leave
 * tuner and demultiplexer closed, also when they fail.
 */
#ifndef TESTCASE_DEMUX_SECTION_BODIES_H
#define TESTCASE_DEMUX_SECTION_BODIES_H

#include <stddef.h>
#include <stdint.h>

#include "environment/test_env.h"
#include "platform/qlx_ci.h"
#include "platform/qlx_filter.h"
#include "testcase/demux/demux_config.h"

/** A broadcast standard, with its stream files. */
struct SectionStandard {
    /** QLX_TransmissionSystem. */
    uint32_t eSystem;
    const DemuxTsFiles* files;
    /** The tuner's start on the channels of the first two files, as its failure is printed. */
    const char* startText[2];
    /** The table that is not on the air is asked for with PID 0 and table id 0 instead of the
     *  configured values. */
    bool asksForZeros;
};

extern const SectionStandard sectionDvbC;
extern const SectionStandard sectionDvbT;
extern const SectionStandard sectionDvbS;
extern const SectionStandard sectionAtscC;
extern const SectionStandard sectionAtscT;
extern const SectionStandard sectionIsdbT;
extern const SectionStandard sectionIsdbS;

/** A standard on one demultiplexer and one tuner. */
struct SectionBench {
    const SectionStandard* standard;
    uint32_t eDemuxId;
    uint32_t eTunerId;
};

/** PIDs that the channel tells; others are 13-bit numbers. */
enum SectionPid : uint32_t {
    SECTION_PID_PMT = 0x10000,
    SECTION_PID_EIT,
    SECTION_PID_ETT,
};

enum SectionCompare {
    COMPARE_DATA,
    COMPARE_TABLE_ID,
};

/** A table to ask for. */
struct SectionRequest {
    uint32_t uPid;
    uint8_t tableId;
    uint32_t uTimeOutMs;
    /** QLX_SectionCrcMode. */
    uint32_t eCrcMode;
    SectionCompare eCompare;
    uint32_t bContinuous;
    /** Which of the standard's files, and of its channels: 0 or 1. */
    uint32_t uFile;
};

/** A table that is asked for when the board's feature table has it. */
struct SectionTable {
    ZkFeature feature;
    SectionRequest request;
};

/** No section is reported before the filter is started. */
uint32_t sectionBeforeStart(const char* name, const SectionBench& bench);
/** No section is reported after the filter was stopped. */
uint32_t sectionAfterStop(const char* name, const SectionBench& bench);
/** A table that is not on the air: one time-out and nothing else. */
uint32_t sectionNoTable(const char* name, const SectionBench& bench, uint32_t bContinuous);
/** One request, one section, compared. */
uint32_t sectionRequest(const char* name, const SectionBench& bench, const SectionRequest& table);
/** The same with the table id's extension in the filter. */
uint32_t sectionWithExtension(const char* name, const SectionBench& bench,
                              const SectionRequest& table, uint16_t uExtensionTableId);
/** A continuous request, under a mask that leaves the lowest bit of the table id open. */
uint32_t sectionWithMask(const char* name, const SectionBench& bench, const SectionRequest& table);
/** Four requests in turn; with `judge` each must bring one section that equals the file's. */
uint32_t sectionFourTimes(const char* name, const SectionBench& bench, const SectionRequest& table,
                          bool judge);
/** One shot, watched for the whole time-out: data come exactly once. */
uint32_t sectionOnlyOnce(const char* name, const SectionBench& bench, const SectionRequest& table);
/** A continuous filter for 15 seconds: at least two sections, all compared. */
uint32_t sectionForAWhile(const char* name, const SectionBench& bench, const SectionRequest& table);
/** As many requests in turn as the demultiplexer has filters, with all records kept. */
uint32_t sectionAllFilters(const char* name, const SectionBench& bench);
/** Two threads with many requests each on one demultiplexer. */
uint32_t sectionTwoThreads(const char* name, const SectionBench& bench,
                           const SectionRequest& table);
/** Up to three filters at the same time, each compared. */
uint32_t sectionSimultaneous(const char* name, const SectionBench& bench,
                             const SectionRequest* tables, size_t count);
/** Event schedules of the actual and of another stream, from two filters. */
uint32_t sectionActualAndOther(const char* name, const SectionBench& bench);
/** A thread and a filter for each of the tables that the board's features have. */
uint32_t sectionAllTables(const char* name, const SectionBench& bench, const SectionTable* tables,
                          size_t count);
/** One request that must be answered in so many milliseconds. */
uint32_t sectionTimeLimit(const char* name, const SectionBench& bench, const SectionRequest& table,
                          int64_t limitMs);
/** The stream on its way through a common interface slot, or past it: QLX_CITsMode. */
uint32_t sectionThroughSlot(const char* name, const SectionBench& bench, uint32_t eMode);
/** A table that the operator names, received continuously. */
uint32_t sectionTyped(const char* name, const SectionBench& bench);

#endif
