/*
 * The frame of a section filter case: the bench that it stands on, brought up step by step and
 * taken down in reverse, its verdict, and filters that it leads by hand.
 */
#ifndef TESTCASE_DEMUX_SECTION_FRAME_H
#define TESTCASE_DEMUX_SECTION_FRAME_H

#include <stddef.h>
#include <stdint.h>

#include "framework/case/ladder.h"
#include "testcase/demux/demux_reference.h"
#include "testcase/demux/demux_request.h"
#include "testcase/demux/section_bodies.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    /** Filters that one case leads at the same time. */
    SIMULTANEOUS_MAX = 3,
};

/** Tables whose sections a case compares with those of the stream's file. */
struct WantedTables {
    const SectionRequest* tables;
    size_t count;
};

extern const LadderStep<const SectionBench> sectionBenchSteps[4];

/** A request for a table, with the PIDs of the channel. */
RequestInfo_st sectionRequestOf(const SectionBench& bench, const SectionRequest& table);

/** Reads the table's section from the file of its stream; to be freed by Demux_FreeTsData. */
void sectionReadReference(const SectionBench& bench, const SectionRequest& table,
                          SectionData_st* reference);

/**
 * A case: tunes to the channel of file 0 or 1, reads the references, brings the demultiplexer up,
 * does its work on that, and takes everything down again.
 * @param wanted  the tables of the references, at most SIMULTANEOUS_MAX
 * @param work    called with the context and the references, in the order of the tables; leaves no
 *                filter behind
 * @return the verdict, which is printed
 */
template <typename Work>
uint32_t sectionCase(const char* name, const SectionBench& bench, uint32_t file,
                     const WantedTables& wanted, Work work) {
    CaseContext tc = {name};
    const SectionStandard* standard = bench.standard;
    const uint32_t eTunerId = bench.eTunerId;
    SectionData_st references[SIMULTANEOUS_MAX] = {};
    if (TC_EXPECT_RET_TEXT(
            standard->startText[file],
            TC_TUNER_START(eTunerId, standard->eSystem, standard->files->uTsFileChannelId[file]))) {
        for (size_t i = 0; i < wanted.count; i++)
            sectionReadReference(bench, wanted.tables[i], &references[i]);
        Ladder<const SectionBench> ladder(tc, bench, sectionBenchSteps);
        if (ladder.up())
            work(tc, references);
        ladder.down();
        TC_EXPECT_RET(TC_TUNER_STOP(eTunerId));
    }
    for (SectionData_st& reference : references)
        Demux_FreeTsData(&reference);
    return TC_RESULT(tc);
}

/** The same on the channel of file 0 without references; `work` is called with the context. */
template <typename Work>
uint32_t sectionCase(const char* name, const SectionBench& bench, Work work) {
    return sectionCase(name, bench, 0, {},
                       [&](CaseContext& tc, const SectionData_st*) { work(tc); });
}

/** A filter that is led by hand. Whoever has opened it closes it, also when that failed. */
class HandFilter {
 public:
    HandFilter(CaseContext& tc, const SectionBench& bench, const SectionRequest& table);

    /** Creates, configures and registers it. */
    bool open();
    bool start();
    /** Stops it when it runs. */
    bool stop();
    /** Takes down what is up, and frees the copies of all events. */
    void close();

    uint32_t eDemuxId;
    uint32_t hFilter = 0;
    RequestInfo_st stRequestInfo;

 private:
    Ladder<HandFilter> ladder_;
};

#endif
