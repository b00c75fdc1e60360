// Demux-ATSC: section filters on ATSC-C and ATSC-T. The number's hundreds tell the pair: 0 and 1
// Demux-0 on Tuner-0, 2 and 3 Demux-1 on Tuner-1, 4 and 5 Demux-2 on Tuner-2, 6 and 7 Demux-3 on
// Tuner-3.
//
// TC_DEMUX_SectionAtscc_006 and _007 with their kin ask for PID 0 and table 0 as the table that is
// not on the air. That is the PAT: they pass only where the stream has none.
#include <iterator>

#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/section_bodies.h"
#include "testcase/demux/section_tables.h"
#include "testcase/modules.h"

static const SectionBench atscc0 = {&sectionAtscC, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench atscc1 = {&sectionAtscC, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench atscc2 = {&sectionAtscC, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench atscc3 = {&sectionAtscC, QLX_DEMUX_3, QLX_TUNER_3};
static const SectionBench atsct0 = {&sectionAtscT, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench atsct1 = {&sectionAtscT, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench atsct2 = {&sectionAtscT, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench atsct3 = {&sectionAtscT, QLX_DEMUX_3, QLX_TUNER_3};

// clang-format off

//    name                       flag    description                                                                                                                       body
#define ATSCC_FAMILY(X) \
    X(TC_DEMUX_SectionAtscc_003, AUTO,   "[SectionAtscc_003] (Demux-0->Tuner-0/ATSC-C), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atscc0)) \
    X(TC_DEMUX_SectionAtscc_004, AUTO,   "[SectionAtscc_004] (Demux-0->Tuner-0/ATSC-C), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atscc0)) \
    X(TC_DEMUX_SectionAtscc_006, AUTO,   "[SectionAtscc_006] (Demux-0->Tuner-0/ATSC-C), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atscc0, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtscc_007, AUTO,   "[SectionAtscc_007] (Demux-0->Tuner-0/ATSC-C), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atscc0, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtscc_016, AUTO,   "[SectionAtscc_016] (Demux-0->Tuner-0/ATSC-C), request PAT table with CRC check",                                                 sectionRequest(__func__, atscc0, tablePat)) \
    X(TC_DEMUX_SectionAtscc_017, AUTO,   "[SectionAtscc_017] (Demux-0->Tuner-0/ATSC-C), request PAT table without CRC check",                                              sectionRequest(__func__, atscc0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtscc_018, AUTO,   "[SectionAtscc_018] (Demux-0->Tuner-0/ATSC-C), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atscc0, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtscc_021, AUTO,   "[SectionAtscc_021] (Demux-0->Tuner-0/ATSC-C), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atscc0)) \
    X(TC_DEMUX_SectionAtscc_023, AUTO,   "[SectionAtscc_023] (Demux-0->Tuner-0/ATSC-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc0, tablePatThreads)) \
    X(TC_DEMUX_SectionAtscc_030, AUTO,   "[SectionAtscc_030] (Demux-0->Tuner-0/ATSC-C), request MGT table with CRC check",                                                 sectionRequest(__func__, atscc0, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_031, AUTO,   "[SectionAtscc_031] (Demux-0->Tuner-0/ATSC-C), request MGT table without CRC check",                                              sectionRequest(__func__, atscc0, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_033, AUTO,   "[SectionAtscc_033] (Demux-0->Tuner-0/ATSC-C), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atscc0, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtscc_039, AUTO,   "[SectionAtscc_039] (Demux-0->Tuner-0/ATSC-C), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atscc0, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtscc_040, AUTO,   "[SectionAtscc_040] (Demux-0->Tuner-0/ATSC-C), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atscc0, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtscc_041, AUTO,   "[SectionAtscc_041] (Demux-0->Tuner-0/ATSC-C), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc0, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_046, AUTO,   "[SectionAtscc_046] (Demux-0->Tuner-0/ATSC-C), request PMT table with CRC check",                                                 sectionRequest(__func__, atscc0, tablePmt)) \
    X(TC_DEMUX_SectionAtscc_047, AUTO,   "[SectionAtscc_047] (Demux-0->Tuner-0/ATSC-C), request PMT table without CRC check",                                              sectionRequest(__func__, atscc0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_106, AUTO,   "[SectionAtscc_106] (Demux-0->Tuner-0/ATSC-C), request CVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc0, tableCvctMasked)) \
    X(TC_DEMUX_SectionAtscc_107, AUTO,   "[SectionAtscc_107] (Demux-0->Tuner-0/ATSC-C), request CVCT table under mask 0xFE without CRC check",                             sectionWithMask(__func__, atscc0, tableCvctMaskedNoCrc)) \
    X(TC_DEMUX_SectionAtscc_108, AUTO,   "[SectionAtscc_108] (Demux-0->Tuner-0/ATSC-C), request TVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc0, tableTvctMasked)) \
    X(TC_DEMUX_SectionAtscc_120, AUTO,   "[SectionAtscc_120] (Demux-0->Tuner-0/ATSC-C), request STT table with CRC check",                                                 sectionRequest(__func__, atscc0, tableStt)) \
    X(TC_DEMUX_SectionAtscc_121, AUTO,   "[SectionAtscc_121] (Demux-0->Tuner-0/ATSC-C), request STT table without CRC check",                                              sectionRequest(__func__, atscc0, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_136, AUTO,   "[SectionAtscc_136] (Demux-0->Tuner-0/ATSC-C), request EIT table four times",                                                     sectionFourTimes(__func__, atscc0, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtscc_150, AUTO,   "[SectionAtscc_150] (Demux-0->Tuner-0/ATSC-C), request ETT table with CRC check",                                                 sectionRequest(__func__, atscc0, tableEtt)) \
    X(TC_DEMUX_SectionAtscc_151, AUTO,   "[SectionAtscc_151] (Demux-0->Tuner-0/ATSC-C), request ETT table without CRC check",                                              sectionRequest(__func__, atscc0, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_166, AUTO,   "[SectionAtscc_166] (Demux-0->Tuner-0/ATSC-C), request EIT table one shot and ETT table continuously",                            sectionSimultaneous(__func__, atscc0, tablesEitEtt, 2)) \
    X(TC_DEMUX_SectionAtscc_167, AUTO,   "[SectionAtscc_167] (Demux-0->Tuner-0/ATSC-C), request MGT and PAT tables at the same time",                                      sectionSimultaneous(__func__, atscc0, tablesMgtPat, 2)) \
    X(TC_DEMUX_SectionAtscc_168, AUTO,   "[SectionAtscc_168] (Demux-0->Tuner-0/ATSC-C), request all tables at the same time",                                              sectionAllTables(__func__, atscc0, allTablesAtsc, std::size(allTablesAtsc))) \
    X(TC_DEMUX_SectionAtscc_169, AUTO,   "[SectionAtscc_169] (Demux-0->Tuner-0/ATSC-C), request MGT, STT and CVCT tables at the same time",                                sectionSimultaneous(__func__, atscc0, tablesCable, 3)) \
    X(TC_DEMUX_SectionAtscc_180, AUTO,   "[SectionAtscc_180] (Demux-0->Tuner-0/ATSC-C), MGT table should be received in no more than 200ms",                               sectionTimeLimit(__func__, atscc0, tableMgt, 199)) \
    X(TC_DEMUX_SectionAtscc_181, AUTO,   "[SectionAtscc_181] (Demux-0->Tuner-0/ATSC-C), PAT table should be received in no more than 150ms",                               sectionTimeLimit(__func__, atscc0, tablePat, 249)) \
    X(TC_DEMUX_SectionAtscc_182, AUTO,   "[SectionAtscc_182] (Demux-0->Tuner-0/ATSC-C), STT table should be received in no more than 3s",                                  sectionTimeLimit(__func__, atscc0, tableStt, 2999)) \
    X(TC_DEMUX_SectionAtscc_203, AUTO,   "[SectionAtscc_203] (Demux-1->Tuner-1/ATSC-C), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atscc1)) \
    X(TC_DEMUX_SectionAtscc_204, AUTO,   "[SectionAtscc_204] (Demux-1->Tuner-1/ATSC-C), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atscc1)) \
    X(TC_DEMUX_SectionAtscc_206, AUTO,   "[SectionAtscc_206] (Demux-1->Tuner-1/ATSC-C), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atscc1, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtscc_207, AUTO,   "[SectionAtscc_207] (Demux-1->Tuner-1/ATSC-C), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atscc1, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtscc_216, AUTO,   "[SectionAtscc_216] (Demux-1->Tuner-1/ATSC-C), request PAT table with CRC check",                                                 sectionRequest(__func__, atscc1, tablePat)) \
    X(TC_DEMUX_SectionAtscc_217, AUTO,   "[SectionAtscc_217] (Demux-1->Tuner-1/ATSC-C), request PAT table without CRC check",                                              sectionRequest(__func__, atscc1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtscc_218, AUTO,   "[SectionAtscc_218] (Demux-1->Tuner-1/ATSC-C), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atscc1, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtscc_221, AUTO,   "[SectionAtscc_221] (Demux-1->Tuner-1/ATSC-C), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atscc1)) \
    X(TC_DEMUX_SectionAtscc_223, AUTO,   "[SectionAtscc_223] (Demux-1->Tuner-1/ATSC-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc1, tablePatThreads)) \
    X(TC_DEMUX_SectionAtscc_230, AUTO,   "[SectionAtscc_230] (Demux-1->Tuner-1/ATSC-C), request MGT table with CRC check",                                                 sectionRequest(__func__, atscc1, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_231, AUTO,   "[SectionAtscc_231] (Demux-1->Tuner-1/ATSC-C), request MGT table without CRC check",                                              sectionRequest(__func__, atscc1, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_233, AUTO,   "[SectionAtscc_233] (Demux-1->Tuner-1/ATSC-C), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atscc1, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtscc_239, AUTO,   "[SectionAtscc_239] (Demux-1->Tuner-1/ATSC-C), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atscc1, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtscc_240, AUTO,   "[SectionAtscc_240] (Demux-1->Tuner-1/ATSC-C), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atscc1, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtscc_241, AUTO,   "[SectionAtscc_241] (Demux-1->Tuner-1/ATSC-C), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc1, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_246, AUTO,   "[SectionAtscc_246] (Demux-1->Tuner-1/ATSC-C), request PMT table with CRC check",                                                 sectionRequest(__func__, atscc1, tablePmt)) \
    X(TC_DEMUX_SectionAtscc_247, AUTO,   "[SectionAtscc_247] (Demux-1->Tuner-1/ATSC-C), request PMT table without CRC check",                                              sectionRequest(__func__, atscc1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_306, AUTO,   "[SectionAtscc_306] (Demux-1->Tuner-1/ATSC-C), request CVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc1, tableCvctMasked)) \
    X(TC_DEMUX_SectionAtscc_307, AUTO,   "[SectionAtscc_307] (Demux-1->Tuner-1/ATSC-C), request CVCT table under mask 0xFE without CRC check",                             sectionWithMask(__func__, atscc1, tableCvctMaskedNoCrc)) \
    X(TC_DEMUX_SectionAtscc_308, AUTO,   "[SectionAtscc_308] (Demux-1->Tuner-1/ATSC-C), request TVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc1, tableTvctMasked)) \
    X(TC_DEMUX_SectionAtscc_320, AUTO,   "[SectionAtscc_320] (Demux-1->Tuner-1/ATSC-C), request STT table with CRC check",                                                 sectionRequest(__func__, atscc1, tableStt)) \
    X(TC_DEMUX_SectionAtscc_321, AUTO,   "[SectionAtscc_321] (Demux-1->Tuner-1/ATSC-C), request STT table without CRC check",                                              sectionRequest(__func__, atscc1, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_336, AUTO,   "[SectionAtscc_336] (Demux-1->Tuner-1/ATSC-C), request EIT table four times",                                                     sectionFourTimes(__func__, atscc1, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtscc_350, AUTO,   "[SectionAtscc_350] (Demux-1->Tuner-1/ATSC-C), request ETT table with CRC check",                                                 sectionRequest(__func__, atscc1, tableEtt)) \
    X(TC_DEMUX_SectionAtscc_351, AUTO,   "[SectionAtscc_351] (Demux-1->Tuner-1/ATSC-C), request ETT table without CRC check",                                              sectionRequest(__func__, atscc1, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_366, AUTO,   "[SectionAtscc_366] (Demux-1->Tuner-1/ATSC-C), request EIT table one shot and ETT table continuously",                            sectionSimultaneous(__func__, atscc1, tablesEitEtt, 2)) \
    X(TC_DEMUX_SectionAtscc_367, AUTO,   "[SectionAtscc_367] (Demux-1->Tuner-1/ATSC-C), request MGT and PAT tables at the same time",                                      sectionSimultaneous(__func__, atscc1, tablesMgtPat, 2)) \
    X(TC_DEMUX_SectionAtscc_368, AUTO,   "[SectionAtscc_368] (Demux-1->Tuner-1/ATSC-C), request all tables at the same time",                                              sectionAllTables(__func__, atscc1, allTablesAtsc, std::size(allTablesAtsc))) \
    X(TC_DEMUX_SectionAtscc_369, AUTO,   "[SectionAtscc_369] (Demux-1->Tuner-1/ATSC-C), request MGT, STT and CVCT tables at the same time",                                sectionSimultaneous(__func__, atscc1, tablesCable, 3)) \
    X(TC_DEMUX_SectionAtscc_380, AUTO,   "[SectionAtscc_380] (Demux-1->Tuner-1/ATSC-C), MGT table should be received in no more than 200ms",                               sectionTimeLimit(__func__, atscc1, tableMgt, 199)) \
    X(TC_DEMUX_SectionAtscc_381, AUTO,   "[SectionAtscc_381] (Demux-1->Tuner-1/ATSC-C), PAT table should be received in no more than 150ms",                               sectionTimeLimit(__func__, atscc1, tablePat, 249)) \
    X(TC_DEMUX_SectionAtscc_382, AUTO,   "[SectionAtscc_382] (Demux-1->Tuner-1/ATSC-C), STT table should be received in no more than 3s",                                  sectionTimeLimit(__func__, atscc1, tableStt, 2999)) \
    X(TC_DEMUX_SectionAtscc_403, AUTO,   "[SectionAtscc_403] (Demux-2->Tuner-2/ATSC-C), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atscc2)) \
    X(TC_DEMUX_SectionAtscc_404, AUTO,   "[SectionAtscc_404] (Demux-2->Tuner-2/ATSC-C), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atscc2)) \
    X(TC_DEMUX_SectionAtscc_406, AUTO,   "[SectionAtscc_406] (Demux-2->Tuner-2/ATSC-C), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atscc2, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtscc_407, AUTO,   "[SectionAtscc_407] (Demux-2->Tuner-2/ATSC-C), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atscc2, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtscc_416, AUTO,   "[SectionAtscc_416] (Demux-2->Tuner-2/ATSC-C), request PAT table with CRC check",                                                 sectionRequest(__func__, atscc2, tablePat)) \
    X(TC_DEMUX_SectionAtscc_417, AUTO,   "[SectionAtscc_417] (Demux-2->Tuner-2/ATSC-C), request PAT table without CRC check",                                              sectionRequest(__func__, atscc2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtscc_418, AUTO,   "[SectionAtscc_418] (Demux-2->Tuner-2/ATSC-C), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atscc2, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtscc_421, AUTO,   "[SectionAtscc_421] (Demux-2->Tuner-2/ATSC-C), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atscc2)) \
    X(TC_DEMUX_SectionAtscc_423, AUTO,   "[SectionAtscc_423] (Demux-2->Tuner-2/ATSC-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc2, tablePatThreads)) \
    X(TC_DEMUX_SectionAtscc_430, AUTO,   "[SectionAtscc_430] (Demux-2->Tuner-2/ATSC-C), request MGT table with CRC check",                                                 sectionRequest(__func__, atscc2, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_431, AUTO,   "[SectionAtscc_431] (Demux-2->Tuner-2/ATSC-C), request MGT table without CRC check",                                              sectionRequest(__func__, atscc2, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_433, AUTO,   "[SectionAtscc_433] (Demux-2->Tuner-2/ATSC-C), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atscc2, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtscc_439, AUTO,   "[SectionAtscc_439] (Demux-2->Tuner-2/ATSC-C), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atscc2, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtscc_440, AUTO,   "[SectionAtscc_440] (Demux-2->Tuner-2/ATSC-C), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atscc2, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtscc_441, AUTO,   "[SectionAtscc_441] (Demux-2->Tuner-2/ATSC-C), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc2, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_446, AUTO,   "[SectionAtscc_446] (Demux-2->Tuner-2/ATSC-C), request PMT table with CRC check",                                                 sectionRequest(__func__, atscc2, tablePmt)) \
    X(TC_DEMUX_SectionAtscc_447, AUTO,   "[SectionAtscc_447] (Demux-2->Tuner-2/ATSC-C), request PMT table without CRC check",                                              sectionRequest(__func__, atscc2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_506, AUTO,   "[SectionAtscc_506] (Demux-2->Tuner-2/ATSC-C), request CVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc2, tableCvctMasked)) \
    X(TC_DEMUX_SectionAtscc_507, AUTO,   "[SectionAtscc_507] (Demux-2->Tuner-2/ATSC-C), request CVCT table under mask 0xFE without CRC check",                             sectionWithMask(__func__, atscc2, tableCvctMaskedNoCrc)) \
    X(TC_DEMUX_SectionAtscc_508, AUTO,   "[SectionAtscc_508] (Demux-2->Tuner-2/ATSC-C), request TVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc2, tableTvctMasked)) \
    X(TC_DEMUX_SectionAtscc_520, AUTO,   "[SectionAtscc_520] (Demux-2->Tuner-2/ATSC-C), request STT table with CRC check",                                                 sectionRequest(__func__, atscc2, tableStt)) \
    X(TC_DEMUX_SectionAtscc_521, AUTO,   "[SectionAtscc_521] (Demux-2->Tuner-2/ATSC-C), request STT table without CRC check",                                              sectionRequest(__func__, atscc2, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_536, AUTO,   "[SectionAtscc_536] (Demux-2->Tuner-2/ATSC-C), request EIT table four times",                                                     sectionFourTimes(__func__, atscc2, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtscc_550, AUTO,   "[SectionAtscc_550] (Demux-2->Tuner-2/ATSC-C), request ETT table with CRC check",                                                 sectionRequest(__func__, atscc2, tableEtt)) \
    X(TC_DEMUX_SectionAtscc_551, AUTO,   "[SectionAtscc_551] (Demux-2->Tuner-2/ATSC-C), request ETT table without CRC check",                                              sectionRequest(__func__, atscc2, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_566, AUTO,   "[SectionAtscc_566] (Demux-2->Tuner-2/ATSC-C), request EIT table one shot and ETT table continuously",                            sectionSimultaneous(__func__, atscc2, tablesEitEtt, 2)) \
    X(TC_DEMUX_SectionAtscc_567, AUTO,   "[SectionAtscc_567] (Demux-2->Tuner-2/ATSC-C), request MGT and PAT tables at the same time",                                      sectionSimultaneous(__func__, atscc2, tablesMgtPat, 2)) \
    X(TC_DEMUX_SectionAtscc_568, AUTO,   "[SectionAtscc_568] (Demux-2->Tuner-2/ATSC-C), request all tables at the same time",                                              sectionAllTables(__func__, atscc2, allTablesAtsc, std::size(allTablesAtsc))) \
    X(TC_DEMUX_SectionAtscc_569, AUTO,   "[SectionAtscc_569] (Demux-2->Tuner-2/ATSC-C), request MGT, STT and CVCT tables at the same time",                                sectionSimultaneous(__func__, atscc2, tablesCable, 3)) \
    X(TC_DEMUX_SectionAtscc_580, AUTO,   "[SectionAtscc_580] (Demux-2->Tuner-2/ATSC-C), MGT table should be received in no more than 200ms",                               sectionTimeLimit(__func__, atscc2, tableMgt, 199)) \
    X(TC_DEMUX_SectionAtscc_581, AUTO,   "[SectionAtscc_581] (Demux-2->Tuner-2/ATSC-C), PAT table should be received in no more than 150ms",                               sectionTimeLimit(__func__, atscc2, tablePat, 249)) \
    X(TC_DEMUX_SectionAtscc_582, AUTO,   "[SectionAtscc_582] (Demux-2->Tuner-2/ATSC-C), STT table should be received in no more than 3s",                                  sectionTimeLimit(__func__, atscc2, tableStt, 2999)) \
    X(TC_DEMUX_SectionAtscc_603, AUTO,   "[SectionAtscc_603] (Demux-3->Tuner-3/ATSC-C), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atscc3)) \
    X(TC_DEMUX_SectionAtscc_604, AUTO,   "[SectionAtscc_604] (Demux-3->Tuner-3/ATSC-C), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atscc3)) \
    X(TC_DEMUX_SectionAtscc_606, AUTO,   "[SectionAtscc_606] (Demux-3->Tuner-3/ATSC-C), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atscc3, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtscc_607, AUTO,   "[SectionAtscc_607] (Demux-3->Tuner-3/ATSC-C), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atscc3, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtscc_616, AUTO,   "[SectionAtscc_616] (Demux-3->Tuner-3/ATSC-C), request PAT table with CRC check",                                                 sectionRequest(__func__, atscc3, tablePat)) \
    X(TC_DEMUX_SectionAtscc_617, AUTO,   "[SectionAtscc_617] (Demux-3->Tuner-3/ATSC-C), request PAT table without CRC check",                                              sectionRequest(__func__, atscc3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtscc_618, AUTO,   "[SectionAtscc_618] (Demux-3->Tuner-3/ATSC-C), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atscc3, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtscc_621, AUTO,   "[SectionAtscc_621] (Demux-3->Tuner-3/ATSC-C), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atscc3)) \
    X(TC_DEMUX_SectionAtscc_623, AUTO,   "[SectionAtscc_623] (Demux-3->Tuner-3/ATSC-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc3, tablePatThreads)) \
    X(TC_DEMUX_SectionAtscc_630, AUTO,   "[SectionAtscc_630] (Demux-3->Tuner-3/ATSC-C), request MGT table with CRC check",                                                 sectionRequest(__func__, atscc3, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_631, AUTO,   "[SectionAtscc_631] (Demux-3->Tuner-3/ATSC-C), request MGT table without CRC check",                                              sectionRequest(__func__, atscc3, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_633, AUTO,   "[SectionAtscc_633] (Demux-3->Tuner-3/ATSC-C), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atscc3, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtscc_639, AUTO,   "[SectionAtscc_639] (Demux-3->Tuner-3/ATSC-C), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atscc3, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtscc_640, AUTO,   "[SectionAtscc_640] (Demux-3->Tuner-3/ATSC-C), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atscc3, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtscc_641, AUTO,   "[SectionAtscc_641] (Demux-3->Tuner-3/ATSC-C), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atscc3, tableMgtShort)) \
    X(TC_DEMUX_SectionAtscc_646, AUTO,   "[SectionAtscc_646] (Demux-3->Tuner-3/ATSC-C), request PMT table with CRC check",                                                 sectionRequest(__func__, atscc3, tablePmt)) \
    X(TC_DEMUX_SectionAtscc_647, AUTO,   "[SectionAtscc_647] (Demux-3->Tuner-3/ATSC-C), request PMT table without CRC check",                                              sectionRequest(__func__, atscc3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtscc_706, AUTO,   "[SectionAtscc_706] (Demux-3->Tuner-3/ATSC-C), request CVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc3, tableCvctMasked)) \
    X(TC_DEMUX_SectionAtscc_707, AUTO,   "[SectionAtscc_707] (Demux-3->Tuner-3/ATSC-C), request CVCT table under mask 0xFE without CRC check",                             sectionWithMask(__func__, atscc3, tableCvctMaskedNoCrc)) \
    X(TC_DEMUX_SectionAtscc_708, AUTO,   "[SectionAtscc_708] (Demux-3->Tuner-3/ATSC-C), request TVCT table under mask 0xFE with CRC check",                                sectionWithMask(__func__, atscc3, tableTvctMasked)) \
    X(TC_DEMUX_SectionAtscc_720, AUTO,   "[SectionAtscc_720] (Demux-3->Tuner-3/ATSC-C), request STT table with CRC check",                                                 sectionRequest(__func__, atscc3, tableStt)) \
    X(TC_DEMUX_SectionAtscc_721, AUTO,   "[SectionAtscc_721] (Demux-3->Tuner-3/ATSC-C), request STT table without CRC check",                                              sectionRequest(__func__, atscc3, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_736, AUTO,   "[SectionAtscc_736] (Demux-3->Tuner-3/ATSC-C), request EIT table four times",                                                     sectionFourTimes(__func__, atscc3, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtscc_750, AUTO,   "[SectionAtscc_750] (Demux-3->Tuner-3/ATSC-C), request ETT table with CRC check",                                                 sectionRequest(__func__, atscc3, tableEtt)) \
    X(TC_DEMUX_SectionAtscc_751, AUTO,   "[SectionAtscc_751] (Demux-3->Tuner-3/ATSC-C), request ETT table without CRC check",                                              sectionRequest(__func__, atscc3, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtscc_766, AUTO,   "[SectionAtscc_766] (Demux-3->Tuner-3/ATSC-C), request EIT table one shot and ETT table continuously",                            sectionSimultaneous(__func__, atscc3, tablesEitEtt, 2)) \
    X(TC_DEMUX_SectionAtscc_767, AUTO,   "[SectionAtscc_767] (Demux-3->Tuner-3/ATSC-C), request MGT and PAT tables at the same time",                                      sectionSimultaneous(__func__, atscc3, tablesMgtPat, 2)) \
    X(TC_DEMUX_SectionAtscc_768, AUTO,   "[SectionAtscc_768] (Demux-3->Tuner-3/ATSC-C), request all tables at the same time",                                              sectionAllTables(__func__, atscc3, allTablesAtsc, std::size(allTablesAtsc))) \
    X(TC_DEMUX_SectionAtscc_769, AUTO,   "[SectionAtscc_769] (Demux-3->Tuner-3/ATSC-C), request MGT, STT and CVCT tables at the same time",                                sectionSimultaneous(__func__, atscc3, tablesCable, 3)) \
    X(TC_DEMUX_SectionAtscc_780, AUTO,   "[SectionAtscc_780] (Demux-3->Tuner-3/ATSC-C), MGT table should be received in no more than 200ms",                               sectionTimeLimit(__func__, atscc3, tableMgt, 199)) \
    X(TC_DEMUX_SectionAtscc_781, AUTO,   "[SectionAtscc_781] (Demux-3->Tuner-3/ATSC-C), PAT table should be received in no more than 150ms",                               sectionTimeLimit(__func__, atscc3, tablePat, 249)) \
    X(TC_DEMUX_SectionAtscc_782, AUTO,   "[SectionAtscc_782] (Demux-3->Tuner-3/ATSC-C), STT table should be received in no more than 3s",                                  sectionTimeLimit(__func__, atscc3, tableStt, 2999))

//    name                       flag    description                                                                                                                       body
#define ATSCT_FAMILY(X) \
    X(TC_DEMUX_SectionAtsct_003, AUTO,   "[SectionAtsct_003] (Demux-0->Tuner-0/ATSC-T), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atsct0)) \
    X(TC_DEMUX_SectionAtsct_004, AUTO,   "[SectionAtsct_004] (Demux-0->Tuner-0/ATSC-T), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atsct0)) \
    X(TC_DEMUX_SectionAtsct_006, AUTO,   "[SectionAtsct_006] (Demux-0->Tuner-0/ATSC-T), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atsct0, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtsct_007, AUTO,   "[SectionAtsct_007] (Demux-0->Tuner-0/ATSC-T), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atsct0, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtsct_016, AUTO,   "[SectionAtsct_016] (Demux-0->Tuner-0/ATSC-T), request PAT table with CRC check",                                                 sectionRequest(__func__, atsct0, tablePat)) \
    X(TC_DEMUX_SectionAtsct_017, AUTO,   "[SectionAtsct_017] (Demux-0->Tuner-0/ATSC-T), request PAT table without CRC check",                                              sectionRequest(__func__, atsct0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtsct_018, AUTO,   "[SectionAtsct_018] (Demux-0->Tuner-0/ATSC-T), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atsct0, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtsct_021, AUTO,   "[SectionAtsct_021] (Demux-0->Tuner-0/ATSC-T), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atsct0)) \
    X(TC_DEMUX_SectionAtsct_023, AUTO,   "[SectionAtsct_023] (Demux-0->Tuner-0/ATSC-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct0, tablePatThreads)) \
    X(TC_DEMUX_SectionAtsct_030, AUTO,   "[SectionAtsct_030] (Demux-0->Tuner-0/ATSC-T), request MGT table with CRC check",                                                 sectionRequest(__func__, atsct0, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_031, AUTO,   "[SectionAtsct_031] (Demux-0->Tuner-0/ATSC-T), request MGT table without CRC check",                                              sectionRequest(__func__, atsct0, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_033, AUTO,   "[SectionAtsct_033] (Demux-0->Tuner-0/ATSC-T), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atsct0, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtsct_039, AUTO,   "[SectionAtsct_039] (Demux-0->Tuner-0/ATSC-T), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atsct0, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtsct_040, AUTO,   "[SectionAtsct_040] (Demux-0->Tuner-0/ATSC-T), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atsct0, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtsct_041, AUTO,   "[SectionAtsct_041] (Demux-0->Tuner-0/ATSC-T), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct0, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_046, AUTO,   "[SectionAtsct_046] (Demux-0->Tuner-0/ATSC-T), request PMT table with CRC check",                                                 sectionRequest(__func__, atsct0, tablePmt)) \
    X(TC_DEMUX_SectionAtsct_047, AUTO,   "[SectionAtsct_047] (Demux-0->Tuner-0/ATSC-T), request PMT table without CRC check",                                              sectionRequest(__func__, atsct0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_107, AUTO,   "[SectionAtsct_107] (Demux-0->Tuner-0/ATSC-T), request TVCT table continuously",                                                  sectionRequest(__func__, atsct0, tableTvctContinuous)) \
    X(TC_DEMUX_SectionAtsct_120, AUTO,   "[SectionAtsct_120] (Demux-0->Tuner-0/ATSC-T), request STT table with CRC check",                                                 sectionRequest(__func__, atsct0, tableStt)) \
    X(TC_DEMUX_SectionAtsct_121, AUTO,   "[SectionAtsct_121] (Demux-0->Tuner-0/ATSC-T), request STT table without CRC check",                                              sectionRequest(__func__, atsct0, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_136, AUTO,   "[SectionAtsct_136] (Demux-0->Tuner-0/ATSC-T), request EIT table four times",                                                     sectionFourTimes(__func__, atsct0, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtsct_137, AUTO,   "[SectionAtsct_137] (Demux-0->Tuner-0/ATSC-T), request EIT table of source 2",                                                    sectionWithExtension(__func__, atsct0, tableAtscEitLong, 2)) \
    X(TC_DEMUX_SectionAtsct_150, AUTO,   "[SectionAtsct_150] (Demux-0->Tuner-0/ATSC-T), request ETT table with CRC check",                                                 sectionRequest(__func__, atsct0, tableEtt)) \
    X(TC_DEMUX_SectionAtsct_151, AUTO,   "[SectionAtsct_151] (Demux-0->Tuner-0/ATSC-T), request ETT table without CRC check",                                              sectionRequest(__func__, atsct0, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_166, AUTO,   "[SectionAtsct_166] (Demux-0->Tuner-0/ATSC-T), request EIT table one shot and ETT table continuously",                            sectionSimultaneous(__func__, atsct0, tablesEitEtt, 2)) \
    X(TC_DEMUX_SectionAtsct_167, AUTO,   "[SectionAtsct_167] (Demux-0->Tuner-0/ATSC-T), request MGT and PAT tables at the same time",                                      sectionSimultaneous(__func__, atsct0, tablesMgtPat, 2)) \
    X(TC_DEMUX_SectionAtsct_168, AUTO,   "[SectionAtsct_168] (Demux-0->Tuner-0/ATSC-T), request all tables at the same time",                                              sectionAllTables(__func__, atsct0, allTablesAtsc, std::size(allTablesAtsc))) \
    X(TC_DEMUX_SectionAtsct_169, AUTO,   "[SectionAtsct_169] (Demux-0->Tuner-0/ATSC-T), request MGT, STT and TVCT tables at the same time",                                sectionSimultaneous(__func__, atsct0, tablesTerrestrial, 3)) \
    X(TC_DEMUX_SectionAtsct_180, AUTO,   "[SectionAtsct_180] (Demux-0->Tuner-0/ATSC-T), MGT table should be received in no more than 200ms",                               sectionTimeLimit(__func__, atsct0, tableMgt, 199)) \
    X(TC_DEMUX_SectionAtsct_181, AUTO,   "[SectionAtsct_181] (Demux-0->Tuner-0/ATSC-T), PAT table should be received in no more than 150ms",                               sectionTimeLimit(__func__, atsct0, tablePat, 249)) \
    X(TC_DEMUX_SectionAtsct_182, AUTO,   "[SectionAtsct_182] (Demux-0->Tuner-0/ATSC-T), STT table should be received in no more than 3s",                                  sectionTimeLimit(__func__, atsct0, tableStt, 2999)) \
    X(TC_DEMUX_SectionAtsct_203, AUTO,   "[SectionAtsct_203] (Demux-1->Tuner-1/ATSC-T), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atsct1)) \
    X(TC_DEMUX_SectionAtsct_204, AUTO,   "[SectionAtsct_204] (Demux-1->Tuner-1/ATSC-T), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atsct1)) \
    X(TC_DEMUX_SectionAtsct_206, AUTO,   "[SectionAtsct_206] (Demux-1->Tuner-1/ATSC-T), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atsct1, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtsct_207, AUTO,   "[SectionAtsct_207] (Demux-1->Tuner-1/ATSC-T), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atsct1, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtsct_216, AUTO,   "[SectionAtsct_216] (Demux-1->Tuner-1/ATSC-T), request PAT table with CRC check",                                                 sectionRequest(__func__, atsct1, tablePat)) \
    X(TC_DEMUX_SectionAtsct_217, AUTO,   "[SectionAtsct_217] (Demux-1->Tuner-1/ATSC-T), request PAT table without CRC check",                                              sectionRequest(__func__, atsct1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtsct_218, AUTO,   "[SectionAtsct_218] (Demux-1->Tuner-1/ATSC-T), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atsct1, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtsct_221, AUTO,   "[SectionAtsct_221] (Demux-1->Tuner-1/ATSC-T), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atsct1)) \
    X(TC_DEMUX_SectionAtsct_223, AUTO,   "[SectionAtsct_223] (Demux-1->Tuner-1/ATSC-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct1, tablePatThreads)) \
    X(TC_DEMUX_SectionAtsct_230, AUTO,   "[SectionAtsct_230] (Demux-1->Tuner-1/ATSC-T), request MGT table with CRC check",                                                 sectionRequest(__func__, atsct1, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_231, AUTO,   "[SectionAtsct_231] (Demux-1->Tuner-1/ATSC-T), request MGT table without CRC check",                                              sectionRequest(__func__, atsct1, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_233, AUTO,   "[SectionAtsct_233] (Demux-1->Tuner-1/ATSC-T), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atsct1, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtsct_239, AUTO,   "[SectionAtsct_239] (Demux-1->Tuner-1/ATSC-T), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atsct1, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtsct_240, AUTO,   "[SectionAtsct_240] (Demux-1->Tuner-1/ATSC-T), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atsct1, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtsct_241, AUTO,   "[SectionAtsct_241] (Demux-1->Tuner-1/ATSC-T), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct1, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_246, AUTO,   "[SectionAtsct_246] (Demux-1->Tuner-1/ATSC-T), request PMT table with CRC check",                                                 sectionRequest(__func__, atsct1, tablePmt)) \
    X(TC_DEMUX_SectionAtsct_247, AUTO,   "[SectionAtsct_247] (Demux-1->Tuner-1/ATSC-T), request PMT table without CRC check",                                              sectionRequest(__func__, atsct1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_307, AUTO,   "[SectionAtsct_307] (Demux-1->Tuner-1/ATSC-T), request TVCT table continuously",                                                  sectionRequest(__func__, atsct1, tableTvctContinuous)) \
    X(TC_DEMUX_SectionAtsct_320, AUTO,   "[SectionAtsct_320] (Demux-1->Tuner-1/ATSC-T), request STT table with CRC check",                                                 sectionRequest(__func__, atsct1, tableStt)) \
    X(TC_DEMUX_SectionAtsct_321, AUTO,   "[SectionAtsct_321] (Demux-1->Tuner-1/ATSC-T), request STT table without CRC check",                                              sectionRequest(__func__, atsct1, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_336, AUTO,   "[SectionAtsct_336] (Demux-1->Tuner-1/ATSC-T), request EIT table four times",                                                     sectionFourTimes(__func__, atsct1, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtsct_337, AUTO,   "[SectionAtsct_337] (Demux-1->Tuner-1/ATSC-T), request EIT table of source 2",                                                    sectionWithExtension(__func__, atsct1, tableAtscEitLong, 2)) \
    X(TC_DEMUX_SectionAtsct_350, AUTO,   "[SectionAtsct_350] (Demux-1->Tuner-1/ATSC-T), request ETT table with CRC check",                                                 sectionRequest(__func__, atsct1, tableEtt)) \
    X(TC_DEMUX_SectionAtsct_351, AUTO,   "[SectionAtsct_351] (Demux-1->Tuner-1/ATSC-T), request ETT table without CRC check",                                              sectionRequest(__func__, atsct1, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_403, AUTO,   "[SectionAtsct_403] (Demux-2->Tuner-2/ATSC-T), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atsct2)) \
    X(TC_DEMUX_SectionAtsct_404, AUTO,   "[SectionAtsct_404] (Demux-2->Tuner-2/ATSC-T), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atsct2)) \
    X(TC_DEMUX_SectionAtsct_406, AUTO,   "[SectionAtsct_406] (Demux-2->Tuner-2/ATSC-T), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atsct2, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtsct_407, AUTO,   "[SectionAtsct_407] (Demux-2->Tuner-2/ATSC-T), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atsct2, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtsct_416, AUTO,   "[SectionAtsct_416] (Demux-2->Tuner-2/ATSC-T), request PAT table with CRC check",                                                 sectionRequest(__func__, atsct2, tablePat)) \
    X(TC_DEMUX_SectionAtsct_417, AUTO,   "[SectionAtsct_417] (Demux-2->Tuner-2/ATSC-T), request PAT table without CRC check",                                              sectionRequest(__func__, atsct2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtsct_418, AUTO,   "[SectionAtsct_418] (Demux-2->Tuner-2/ATSC-T), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atsct2, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtsct_421, AUTO,   "[SectionAtsct_421] (Demux-2->Tuner-2/ATSC-T), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atsct2)) \
    X(TC_DEMUX_SectionAtsct_423, AUTO,   "[SectionAtsct_423] (Demux-2->Tuner-2/ATSC-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct2, tablePatThreads)) \
    X(TC_DEMUX_SectionAtsct_430, AUTO,   "[SectionAtsct_430] (Demux-2->Tuner-2/ATSC-T), request MGT table with CRC check",                                                 sectionRequest(__func__, atsct2, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_431, AUTO,   "[SectionAtsct_431] (Demux-2->Tuner-2/ATSC-T), request MGT table without CRC check",                                              sectionRequest(__func__, atsct2, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_433, AUTO,   "[SectionAtsct_433] (Demux-2->Tuner-2/ATSC-T), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atsct2, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtsct_439, AUTO,   "[SectionAtsct_439] (Demux-2->Tuner-2/ATSC-T), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atsct2, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtsct_440, AUTO,   "[SectionAtsct_440] (Demux-2->Tuner-2/ATSC-T), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atsct2, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtsct_441, AUTO,   "[SectionAtsct_441] (Demux-2->Tuner-2/ATSC-T), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct2, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_446, AUTO,   "[SectionAtsct_446] (Demux-2->Tuner-2/ATSC-T), request PMT table with CRC check",                                                 sectionRequest(__func__, atsct2, tablePmt)) \
    X(TC_DEMUX_SectionAtsct_447, AUTO,   "[SectionAtsct_447] (Demux-2->Tuner-2/ATSC-T), request PMT table without CRC check",                                              sectionRequest(__func__, atsct2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_507, AUTO,   "[SectionAtsct_507] (Demux-2->Tuner-2/ATSC-T), request TVCT table continuously",                                                  sectionRequest(__func__, atsct2, tableTvctContinuous)) \
    X(TC_DEMUX_SectionAtsct_520, AUTO,   "[SectionAtsct_520] (Demux-2->Tuner-2/ATSC-T), request STT table with CRC check",                                                 sectionRequest(__func__, atsct2, tableStt)) \
    X(TC_DEMUX_SectionAtsct_521, AUTO,   "[SectionAtsct_521] (Demux-2->Tuner-2/ATSC-T), request STT table without CRC check",                                              sectionRequest(__func__, atsct2, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_536, AUTO,   "[SectionAtsct_536] (Demux-2->Tuner-2/ATSC-T), request EIT table four times",                                                     sectionFourTimes(__func__, atsct2, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtsct_537, AUTO,   "[SectionAtsct_537] (Demux-2->Tuner-2/ATSC-T), request EIT table of source 2",                                                    sectionWithExtension(__func__, atsct2, tableAtscEitLong, 2)) \
    X(TC_DEMUX_SectionAtsct_550, AUTO,   "[SectionAtsct_550] (Demux-2->Tuner-2/ATSC-T), request ETT table with CRC check",                                                 sectionRequest(__func__, atsct2, tableEtt)) \
    X(TC_DEMUX_SectionAtsct_551, AUTO,   "[SectionAtsct_551] (Demux-2->Tuner-2/ATSC-T), request ETT table without CRC check",                                              sectionRequest(__func__, atsct2, tableEttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_603, AUTO,   "[SectionAtsct_603] (Demux-3->Tuner-3/ATSC-T), no PAT table should be reported before filter is started",                         sectionBeforeStart(__func__, atsct3)) \
    X(TC_DEMUX_SectionAtsct_604, AUTO,   "[SectionAtsct_604] (Demux-3->Tuner-3/ATSC-T), no PAT table should be reported after filter is stopped",                          sectionAfterStop(__func__, atsct3)) \
    X(TC_DEMUX_SectionAtsct_606, AUTO,   "[SectionAtsct_606] (Demux-3->Tuner-3/ATSC-T), request a table that is not on the air, one shot: time-out",                       sectionNoTable(__func__, atsct3, QLX_FALSE)) \
    X(TC_DEMUX_SectionAtsct_607, AUTO,   "[SectionAtsct_607] (Demux-3->Tuner-3/ATSC-T), request a table that is not on the air, continuous: time-out",                     sectionNoTable(__func__, atsct3, QLX_TRUE)) \
    X(TC_DEMUX_SectionAtsct_616, AUTO,   "[SectionAtsct_616] (Demux-3->Tuner-3/ATSC-T), request PAT table with CRC check",                                                 sectionRequest(__func__, atsct3, tablePat)) \
    X(TC_DEMUX_SectionAtsct_617, AUTO,   "[SectionAtsct_617] (Demux-3->Tuner-3/ATSC-T), request PAT table without CRC check",                                              sectionRequest(__func__, atsct3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionAtsct_618, AUTO,   "[SectionAtsct_618] (Demux-3->Tuner-3/ATSC-T), request PAT table one shot: the callback should notify event data come only once", sectionOnlyOnce(__func__, atsct3, tablePatOnlyOnce)) \
    X(TC_DEMUX_SectionAtsct_621, AUTO,   "[SectionAtsct_621] (Demux-3->Tuner-3/ATSC-T), request PAT table as many times as there are section filters",                     sectionAllFilters(__func__, atsct3)) \
    X(TC_DEMUX_SectionAtsct_623, AUTO,   "[SectionAtsct_623] (Demux-3->Tuner-3/ATSC-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct3, tablePatThreads)) \
    X(TC_DEMUX_SectionAtsct_630, AUTO,   "[SectionAtsct_630] (Demux-3->Tuner-3/ATSC-T), request MGT table with CRC check",                                                 sectionRequest(__func__, atsct3, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_631, AUTO,   "[SectionAtsct_631] (Demux-3->Tuner-3/ATSC-T), request MGT table without CRC check",                                              sectionRequest(__func__, atsct3, tableMgtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_633, AUTO,   "[SectionAtsct_633] (Demux-3->Tuner-3/ATSC-T), request MGT table continuously for 15 seconds",                                    sectionForAWhile(__func__, atsct3, tableMgtContinuous)) \
    X(TC_DEMUX_SectionAtsct_639, AUTO,   "[SectionAtsct_639] (Demux-3->Tuner-3/ATSC-T), request MGT table with three continuous filters",                                  sectionSimultaneous(__func__, atsct3, tablesMgtContinuous, 3)) \
    X(TC_DEMUX_SectionAtsct_640, AUTO,   "[SectionAtsct_640] (Demux-3->Tuner-3/ATSC-T), request MGT table with three one shot filters",                                    sectionSimultaneous(__func__, atsct3, tablesMgtOneShot, 3)) \
    X(TC_DEMUX_SectionAtsct_641, AUTO,   "[SectionAtsct_641] (Demux-3->Tuner-3/ATSC-T), request MGT table in two threads, 1st loops 200 times, 2nd loops 300 times",       sectionTwoThreads(__func__, atsct3, tableMgtShort)) \
    X(TC_DEMUX_SectionAtsct_646, AUTO,   "[SectionAtsct_646] (Demux-3->Tuner-3/ATSC-T), request PMT table with CRC check",                                                 sectionRequest(__func__, atsct3, tablePmt)) \
    X(TC_DEMUX_SectionAtsct_647, AUTO,   "[SectionAtsct_647] (Demux-3->Tuner-3/ATSC-T), request PMT table without CRC check",                                              sectionRequest(__func__, atsct3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionAtsct_707, AUTO,   "[SectionAtsct_707] (Demux-3->Tuner-3/ATSC-T), request TVCT table continuously",                                                  sectionRequest(__func__, atsct3, tableTvctContinuous)) \
    X(TC_DEMUX_SectionAtsct_720, AUTO,   "[SectionAtsct_720] (Demux-3->Tuner-3/ATSC-T), request STT table with CRC check",                                                 sectionRequest(__func__, atsct3, tableStt)) \
    X(TC_DEMUX_SectionAtsct_721, AUTO,   "[SectionAtsct_721] (Demux-3->Tuner-3/ATSC-T), request STT table without CRC check",                                              sectionRequest(__func__, atsct3, tableSttNoCrc)) \
    X(TC_DEMUX_SectionAtsct_736, AUTO,   "[SectionAtsct_736] (Demux-3->Tuner-3/ATSC-T), request EIT table four times",                                                     sectionFourTimes(__func__, atsct3, tableAtscEit, true)) \
    X(TC_DEMUX_SectionAtsct_737, AUTO,   "[SectionAtsct_737] (Demux-3->Tuner-3/ATSC-T), request EIT table of source 2",                                                    sectionWithExtension(__func__, atsct3, tableAtscEitLong, 2)) \
    X(TC_DEMUX_SectionAtsct_750, AUTO,   "[SectionAtsct_750] (Demux-3->Tuner-3/ATSC-T), request ETT table with CRC check",                                                 sectionRequest(__func__, atsct3, tableEtt)) \
    X(TC_DEMUX_SectionAtsct_751, AUTO,   "[SectionAtsct_751] (Demux-3->Tuner-3/ATSC-T), request ETT table without CRC check",                                              sectionRequest(__func__, atsct3, tableEttNoCrc))

ATSCC_FAMILY(TC_VARIANT_FUNCTION)
ATSCT_FAMILY(TC_VARIANT_FUNCTION)

static constexpr TcCase DemuxModuleCasesAtsc[] = {
    ATSCC_FAMILY(TC_VARIANT_ROW)
    ATSCT_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(DemuxModuleCasesAtsc) == 231, "cases of the module that are built");
static_assert(tcAutoCount(DemuxModuleCasesAtsc) == 231, "automatic ones");

const TcModule DemuxModuleAtsc = {
    Demux_TestSetup, Demux_TestTeardown,           nullptr,
    nullptr,         DemuxModuleCasesAtsc,         tcCaseCount(DemuxModuleCasesAtsc),
    "Demux-ATSC",    "Test cases of Demux (ATSC)", nullptr,
};
