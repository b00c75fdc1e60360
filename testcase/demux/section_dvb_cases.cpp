// Demux-DVB: section filters on DVB-C, DVB-T and DVB-S. The number's hundreds tell the pair: 0 and
// 1 Demux-0 on Tuner-0, 2 and 3 Demux-1 on Tuner-1, 4 and 5 Demux-2 on Tuner-2, 6 and 7 Demux-3 on
// Tuner-3, 8 and 9 (DVB-S) Demux-0 on Tuner-1.
//
// The first series compares only the table id where a table changes on the air (TDT, TOT, event
// information present/following); the others compare all bytes, from streams that hold them still.
#include <iterator>

#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/section_bodies.h"
#include "testcase/demux/section_tables.h"
#include "testcase/modules.h"

static const SectionBench dvbc0 = {&sectionDvbC, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench dvbc1 = {&sectionDvbC, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench dvbc2 = {&sectionDvbC, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench dvbc3 = {&sectionDvbC, QLX_DEMUX_3, QLX_TUNER_3};
static const SectionBench dvbt0 = {&sectionDvbT, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench dvbt1 = {&sectionDvbT, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench dvbt2 = {&sectionDvbT, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench dvbt3 = {&sectionDvbT, QLX_DEMUX_3, QLX_TUNER_3};
static const SectionBench dvbs0 = {&sectionDvbS, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench dvbs1 = {&sectionDvbS, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench dvbs2 = {&sectionDvbS, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench dvbs3 = {&sectionDvbS, QLX_DEMUX_3, QLX_TUNER_3};
static const SectionBench dvbs0OnTuner1 = {&sectionDvbS, QLX_DEMUX_0, QLX_TUNER_1};

// clang-format off

//    name                        flag    description                                                                                                               body
#define DVBC_FAMILY(X) \
    X(TC_DEMUX_SectionDvbc_003,   AUTO,   "[SectionDvbc_003] (Demux-0->Tuner-0/DVB-C), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbc0)) \
    X(TC_DEMUX_SectionDvbc_004,   AUTO,   "[SectionDvbc_004] (Demux-0->Tuner-0/DVB-C), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbc0)) \
    X(TC_DEMUX_SectionDvbc_006,   AUTO,   "[SectionDvbc_006] (Demux-0->Tuner-0/DVB-C), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbc0, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbc_007,   AUTO,   "[SectionDvbc_007] (Demux-0->Tuner-0/DVB-C), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbc0, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbc_016,   AUTO,   "[SectionDvbc_016] (Demux-0->Tuner-0/DVB-C), request PAT table with CRC check",                                           sectionRequest(__func__, dvbc0, tablePat)) \
    X(TC_DEMUX_SectionDvbc_017,   AUTO,   "[SectionDvbc_017] (Demux-0->Tuner-0/DVB-C), request PAT table without CRC check",                                        sectionRequest(__func__, dvbc0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_021,   AUTO,   "[SectionDvbc_021] (Demux-0->Tuner-0/DVB-C), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbc0)) \
    X(TC_DEMUX_SectionDvbc_023,   AUTO,   "[SectionDvbc_023] (Demux-0->Tuner-0/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc0, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbc_024,   AUTO,   "[SectionDvbc_024] (Demux-0->Tuner-0/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc0, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbc_030,   AUTO,   "[SectionDvbc_030] (Demux-0->Tuner-0/DVB-C), request CAT table with CRC check",                                           sectionRequest(__func__, dvbc0, tableCat)) \
    X(TC_DEMUX_SectionDvbc_031,   AUTO,   "[SectionDvbc_031] (Demux-0->Tuner-0/DVB-C), request CAT table without CRC check",                                        sectionRequest(__func__, dvbc0, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_046,   AUTO,   "[SectionDvbc_046] (Demux-0->Tuner-0/DVB-C), request PMT table with CRC check",                                           sectionRequest(__func__, dvbc0, tablePmt)) \
    X(TC_DEMUX_SectionDvbc_047,   AUTO,   "[SectionDvbc_047] (Demux-0->Tuner-0/DVB-C), request PMT table without CRC check",                                        sectionRequest(__func__, dvbc0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_060,   AUTO,   "[SectionDvbc_060] (Demux-0->Tuner-0/DVB-C), request TDT table",                                                          sectionRequest(__func__, dvbc0, tableTdtId)) \
    X(TC_DEMUX_SectionDvbc_061,   AUTO,   "[SectionDvbc_061] (Demux-0->Tuner-0/DVB-C), request TDT table without CRC check",                                        sectionRequest(__func__, dvbc0, tableTdtIdNoCrc)) \
    X(TC_DEMUX_SectionDvbc_076,   AUTO,   "[SectionDvbc_076] (Demux-0->Tuner-0/DVB-C), request RST table with CRC check",                                           sectionRequest(__func__, dvbc0, tableRst)) \
    X(TC_DEMUX_SectionDvbc_077,   AUTO,   "[SectionDvbc_077] (Demux-0->Tuner-0/DVB-C), request RST table without CRC check",                                        sectionRequest(__func__, dvbc0, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbc_090,   AUTO,   "[SectionDvbc_090] (Demux-0->Tuner-0/DVB-C), request SIT table with CRC check",                                           sectionRequest(__func__, dvbc0, tableSit)) \
    X(TC_DEMUX_SectionDvbc_091,   AUTO,   "[SectionDvbc_091] (Demux-0->Tuner-0/DVB-C), request SIT table without CRC check",                                        sectionRequest(__func__, dvbc0, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_106,   AUTO,   "[SectionDvbc_106] (Demux-0->Tuner-0/DVB-C), request TOT table with CRC check",                                           sectionRequest(__func__, dvbc0, tableTotId)) \
    X(TC_DEMUX_SectionDvbc_107,   AUTO,   "[SectionDvbc_107] (Demux-0->Tuner-0/DVB-C), request TOT table without CRC check",                                        sectionRequest(__func__, dvbc0, tableTotIdNoCrc)) \
    X(TC_DEMUX_SectionDvbc_120,   AUTO,   "[SectionDvbc_120] (Demux-0->Tuner-0/DVB-C), request NIT table with CRC check",                                           sectionRequest(__func__, dvbc0, tableNit)) \
    X(TC_DEMUX_SectionDvbc_121,   AUTO,   "[SectionDvbc_121] (Demux-0->Tuner-0/DVB-C), request NIT table without CRC check",                                        sectionRequest(__func__, dvbc0, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_136,   AUTO,   "[SectionDvbc_136] (Demux-0->Tuner-0/DVB-C), request EIT table four times",                                               sectionFourTimes(__func__, dvbc0, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbc_137,   AUTO,   "[SectionDvbc_137] (Demux-0->Tuner-0/DVB-C), request EIT present/following table",                                        sectionRequest(__func__, dvbc0, tableEitPfId)) \
    X(TC_DEMUX_SectionDvbc_138,   AUTO,   "[SectionDvbc_138] (Demux-0->Tuner-0/DVB-C), request EIT schedule table",                                                 sectionRequest(__func__, dvbc0, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbc_139,   AUTO,   "[SectionDvbc_139] (Demux-0->Tuner-0/DVB-C), request EIT schedule tables, actual and other",                              sectionActualAndOther(__func__, dvbc0)) \
    X(TC_DEMUX_SectionDvbc_150_1, AUTO,   "[SectionDvbc_150_1] (Demux-0->Tuner-0/DVB-C), request SDT table with CRC check",                                         sectionRequest(__func__, dvbc0, tableSdt)) \
    X(TC_DEMUX_SectionDvbc_150_2, AUTO,   "[SectionDvbc_150_2] (Demux-0->Tuner-0/DVB-C), request SDT table without CRC check",                                      sectionRequest(__func__, dvbc0, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_151_1, AUTO,   "[SectionDvbc_151_1] (Demux-0->Tuner-0/DVB-C), request BAT table with CRC check",                                         sectionRequest(__func__, dvbc0, tableBat)) \
    X(TC_DEMUX_SectionDvbc_151_2, AUTO,   "[SectionDvbc_151_2] (Demux-0->Tuner-0/DVB-C), request BAT table without CRC check",                                      sectionRequest(__func__, dvbc0, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_152_1, AUTO,   "[SectionDvbc_152_1] (Demux-0->Tuner-0/DVB-C), request DIT table with CRC check",                                         sectionRequest(__func__, dvbc0, tableDit)) \
    X(TC_DEMUX_SectionDvbc_152_2, AUTO,   "[SectionDvbc_152_2] (Demux-0->Tuner-0/DVB-C), request DIT table without CRC check",                                      sectionRequest(__func__, dvbc0, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_168,   AUTO,   "[SectionDvbc_168] (Demux-0->Tuner-0/DVB-C), request all tables at the same time",                                        sectionAllTables(__func__, dvbc0, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbc_203,   AUTO,   "[SectionDvbc_203] (Demux-1->Tuner-1/DVB-C), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbc1)) \
    X(TC_DEMUX_SectionDvbc_204,   AUTO,   "[SectionDvbc_204] (Demux-1->Tuner-1/DVB-C), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbc1)) \
    X(TC_DEMUX_SectionDvbc_206,   AUTO,   "[SectionDvbc_206] (Demux-1->Tuner-1/DVB-C), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbc1, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbc_207,   AUTO,   "[SectionDvbc_207] (Demux-1->Tuner-1/DVB-C), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbc1, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbc_216,   AUTO,   "[SectionDvbc_216] (Demux-1->Tuner-1/DVB-C), request PAT table with CRC check",                                           sectionRequest(__func__, dvbc1, tablePat)) \
    X(TC_DEMUX_SectionDvbc_217,   AUTO,   "[SectionDvbc_217] (Demux-1->Tuner-1/DVB-C), request PAT table without CRC check",                                        sectionRequest(__func__, dvbc1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_221,   AUTO,   "[SectionDvbc_221] (Demux-1->Tuner-1/DVB-C), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbc1)) \
    X(TC_DEMUX_SectionDvbc_223,   AUTO,   "[SectionDvbc_223] (Demux-1->Tuner-1/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc1, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbc_224,   AUTO,   "[SectionDvbc_224] (Demux-1->Tuner-1/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc1, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbc_230,   AUTO,   "[SectionDvbc_230] (Demux-1->Tuner-1/DVB-C), request CAT table with CRC check",                                           sectionRequest(__func__, dvbc1, tableCat)) \
    X(TC_DEMUX_SectionDvbc_231,   AUTO,   "[SectionDvbc_231] (Demux-1->Tuner-1/DVB-C), request CAT table without CRC check",                                        sectionRequest(__func__, dvbc1, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_246,   AUTO,   "[SectionDvbc_246] (Demux-1->Tuner-1/DVB-C), request PMT table with CRC check",                                           sectionRequest(__func__, dvbc1, tablePmt)) \
    X(TC_DEMUX_SectionDvbc_247,   AUTO,   "[SectionDvbc_247] (Demux-1->Tuner-1/DVB-C), request PMT table without CRC check",                                        sectionRequest(__func__, dvbc1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_260,   AUTO,   "[SectionDvbc_260] (Demux-1->Tuner-1/DVB-C), request TDT table",                                                          sectionRequest(__func__, dvbc1, tableTdt)) \
    X(TC_DEMUX_SectionDvbc_261,   AUTO,   "[SectionDvbc_261] (Demux-1->Tuner-1/DVB-C), request TDT table without CRC check",                                        sectionRequest(__func__, dvbc1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_276,   AUTO,   "[SectionDvbc_276] (Demux-1->Tuner-1/DVB-C), request RST table with CRC check",                                           sectionRequest(__func__, dvbc1, tableRst)) \
    X(TC_DEMUX_SectionDvbc_277,   AUTO,   "[SectionDvbc_277] (Demux-1->Tuner-1/DVB-C), request RST table without CRC check",                                        sectionRequest(__func__, dvbc1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbc_290,   AUTO,   "[SectionDvbc_290] (Demux-1->Tuner-1/DVB-C), request SIT table with CRC check",                                           sectionRequest(__func__, dvbc1, tableSit)) \
    X(TC_DEMUX_SectionDvbc_291,   AUTO,   "[SectionDvbc_291] (Demux-1->Tuner-1/DVB-C), request SIT table without CRC check",                                        sectionRequest(__func__, dvbc1, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_306,   AUTO,   "[SectionDvbc_306] (Demux-1->Tuner-1/DVB-C), request TOT table with CRC check",                                           sectionRequest(__func__, dvbc1, tableTot)) \
    X(TC_DEMUX_SectionDvbc_307,   AUTO,   "[SectionDvbc_307] (Demux-1->Tuner-1/DVB-C), request TOT table without CRC check",                                        sectionRequest(__func__, dvbc1, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbc_320,   AUTO,   "[SectionDvbc_320] (Demux-1->Tuner-1/DVB-C), request NIT table with CRC check",                                           sectionRequest(__func__, dvbc1, tableNit)) \
    X(TC_DEMUX_SectionDvbc_321,   AUTO,   "[SectionDvbc_321] (Demux-1->Tuner-1/DVB-C), request NIT table without CRC check",                                        sectionRequest(__func__, dvbc1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_336,   AUTO,   "[SectionDvbc_336] (Demux-1->Tuner-1/DVB-C), request EIT table four times",                                               sectionFourTimes(__func__, dvbc1, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbc_337,   AUTO,   "[SectionDvbc_337] (Demux-1->Tuner-1/DVB-C), request EIT present/following table",                                        sectionRequest(__func__, dvbc1, tableEitPf)) \
    X(TC_DEMUX_SectionDvbc_338,   AUTO,   "[SectionDvbc_338] (Demux-1->Tuner-1/DVB-C), request EIT schedule table",                                                 sectionRequest(__func__, dvbc1, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbc_350_1, AUTO,   "[SectionDvbc_350_1] (Demux-1->Tuner-1/DVB-C), request SDT table with CRC check",                                         sectionRequest(__func__, dvbc1, tableSdt)) \
    X(TC_DEMUX_SectionDvbc_350_2, AUTO,   "[SectionDvbc_350_2] (Demux-1->Tuner-1/DVB-C), request SDT table without CRC check",                                      sectionRequest(__func__, dvbc1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_351_1, AUTO,   "[SectionDvbc_351_1] (Demux-1->Tuner-1/DVB-C), request BAT table with CRC check",                                         sectionRequest(__func__, dvbc1, tableBat)) \
    X(TC_DEMUX_SectionDvbc_351_2, AUTO,   "[SectionDvbc_351_2] (Demux-1->Tuner-1/DVB-C), request BAT table without CRC check",                                      sectionRequest(__func__, dvbc1, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_352_1, AUTO,   "[SectionDvbc_352_1] (Demux-1->Tuner-1/DVB-C), request DIT table with CRC check",                                         sectionRequest(__func__, dvbc1, tableDit)) \
    X(TC_DEMUX_SectionDvbc_352_2, AUTO,   "[SectionDvbc_352_2] (Demux-1->Tuner-1/DVB-C), request DIT table without CRC check",                                      sectionRequest(__func__, dvbc1, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_368,   AUTO,   "[SectionDvbc_368] (Demux-1->Tuner-1/DVB-C), request all tables at the same time",                                        sectionAllTables(__func__, dvbc1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbc_403,   AUTO,   "[SectionDvbc_403] (Demux-2->Tuner-2/DVB-C), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbc2)) \
    X(TC_DEMUX_SectionDvbc_404,   AUTO,   "[SectionDvbc_404] (Demux-2->Tuner-2/DVB-C), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbc2)) \
    X(TC_DEMUX_SectionDvbc_406,   AUTO,   "[SectionDvbc_406] (Demux-2->Tuner-2/DVB-C), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbc2, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbc_407,   AUTO,   "[SectionDvbc_407] (Demux-2->Tuner-2/DVB-C), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbc2, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbc_416,   AUTO,   "[SectionDvbc_416] (Demux-2->Tuner-2/DVB-C), request PAT table with CRC check",                                           sectionRequest(__func__, dvbc2, tablePat)) \
    X(TC_DEMUX_SectionDvbc_417,   AUTO,   "[SectionDvbc_417] (Demux-2->Tuner-2/DVB-C), request PAT table without CRC check",                                        sectionRequest(__func__, dvbc2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_421,   AUTO,   "[SectionDvbc_421] (Demux-2->Tuner-2/DVB-C), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbc2)) \
    X(TC_DEMUX_SectionDvbc_423,   AUTO,   "[SectionDvbc_423] (Demux-2->Tuner-2/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc2, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbc_424,   AUTO,   "[SectionDvbc_424] (Demux-2->Tuner-2/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc2, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbc_430,   AUTO,   "[SectionDvbc_430] (Demux-2->Tuner-2/DVB-C), request CAT table with CRC check",                                           sectionRequest(__func__, dvbc2, tableCat)) \
    X(TC_DEMUX_SectionDvbc_431,   AUTO,   "[SectionDvbc_431] (Demux-2->Tuner-2/DVB-C), request CAT table without CRC check",                                        sectionRequest(__func__, dvbc2, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_446,   AUTO,   "[SectionDvbc_446] (Demux-2->Tuner-2/DVB-C), request PMT table with CRC check",                                           sectionRequest(__func__, dvbc2, tablePmt)) \
    X(TC_DEMUX_SectionDvbc_447,   AUTO,   "[SectionDvbc_447] (Demux-2->Tuner-2/DVB-C), request PMT table without CRC check",                                        sectionRequest(__func__, dvbc2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_460,   AUTO,   "[SectionDvbc_460] (Demux-2->Tuner-2/DVB-C), request TDT table",                                                          sectionRequest(__func__, dvbc2, tableTdt)) \
    X(TC_DEMUX_SectionDvbc_461,   AUTO,   "[SectionDvbc_461] (Demux-2->Tuner-2/DVB-C), request TDT table without CRC check",                                        sectionRequest(__func__, dvbc2, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_476,   AUTO,   "[SectionDvbc_476] (Demux-2->Tuner-2/DVB-C), request RST table with CRC check",                                           sectionRequest(__func__, dvbc2, tableRst)) \
    X(TC_DEMUX_SectionDvbc_477,   AUTO,   "[SectionDvbc_477] (Demux-2->Tuner-2/DVB-C), request RST table without CRC check",                                        sectionRequest(__func__, dvbc2, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbc_490,   AUTO,   "[SectionDvbc_490] (Demux-2->Tuner-2/DVB-C), request SIT table with CRC check",                                           sectionRequest(__func__, dvbc2, tableSit)) \
    X(TC_DEMUX_SectionDvbc_491,   AUTO,   "[SectionDvbc_491] (Demux-2->Tuner-2/DVB-C), request SIT table without CRC check",                                        sectionRequest(__func__, dvbc2, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_506,   AUTO,   "[SectionDvbc_506] (Demux-2->Tuner-2/DVB-C), request TOT table with CRC check",                                           sectionRequest(__func__, dvbc2, tableTot)) \
    X(TC_DEMUX_SectionDvbc_507,   AUTO,   "[SectionDvbc_507] (Demux-2->Tuner-2/DVB-C), request TOT table without CRC check",                                        sectionRequest(__func__, dvbc2, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbc_520,   AUTO,   "[SectionDvbc_520] (Demux-2->Tuner-2/DVB-C), request NIT table with CRC check",                                           sectionRequest(__func__, dvbc2, tableNit)) \
    X(TC_DEMUX_SectionDvbc_521,   AUTO,   "[SectionDvbc_521] (Demux-2->Tuner-2/DVB-C), request NIT table without CRC check",                                        sectionRequest(__func__, dvbc2, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_536,   AUTO,   "[SectionDvbc_536] (Demux-2->Tuner-2/DVB-C), request EIT table four times",                                               sectionFourTimes(__func__, dvbc2, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbc_537,   AUTO,   "[SectionDvbc_537] (Demux-2->Tuner-2/DVB-C), request EIT present/following table",                                        sectionRequest(__func__, dvbc2, tableEitPf)) \
    X(TC_DEMUX_SectionDvbc_538,   AUTO,   "[SectionDvbc_538] (Demux-2->Tuner-2/DVB-C), request EIT schedule table",                                                 sectionRequest(__func__, dvbc2, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbc_550_1, AUTO,   "[SectionDvbc_550_1] (Demux-2->Tuner-2/DVB-C), request SDT table with CRC check",                                         sectionRequest(__func__, dvbc2, tableSdt)) \
    X(TC_DEMUX_SectionDvbc_550_2, AUTO,   "[SectionDvbc_550_2] (Demux-2->Tuner-2/DVB-C), request SDT table without CRC check",                                      sectionRequest(__func__, dvbc2, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_551_1, AUTO,   "[SectionDvbc_551_1] (Demux-2->Tuner-2/DVB-C), request BAT table with CRC check",                                         sectionRequest(__func__, dvbc2, tableBat)) \
    X(TC_DEMUX_SectionDvbc_551_2, AUTO,   "[SectionDvbc_551_2] (Demux-2->Tuner-2/DVB-C), request BAT table without CRC check",                                      sectionRequest(__func__, dvbc2, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_552_1, AUTO,   "[SectionDvbc_552_1] (Demux-2->Tuner-2/DVB-C), request DIT table with CRC check",                                         sectionRequest(__func__, dvbc2, tableDit)) \
    X(TC_DEMUX_SectionDvbc_552_2, AUTO,   "[SectionDvbc_552_2] (Demux-2->Tuner-2/DVB-C), request DIT table without CRC check",                                      sectionRequest(__func__, dvbc2, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_568,   AUTO,   "[SectionDvbc_568] (Demux-2->Tuner-2/DVB-C), request all tables at the same time",                                        sectionAllTables(__func__, dvbc2, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbc_603,   AUTO,   "[SectionDvbc_603] (Demux-3->Tuner-3/DVB-C), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbc3)) \
    X(TC_DEMUX_SectionDvbc_604,   AUTO,   "[SectionDvbc_604] (Demux-3->Tuner-3/DVB-C), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbc3)) \
    X(TC_DEMUX_SectionDvbc_606,   AUTO,   "[SectionDvbc_606] (Demux-3->Tuner-3/DVB-C), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbc3, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbc_607,   AUTO,   "[SectionDvbc_607] (Demux-3->Tuner-3/DVB-C), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbc3, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbc_616,   AUTO,   "[SectionDvbc_616] (Demux-3->Tuner-3/DVB-C), request PAT table with CRC check",                                           sectionRequest(__func__, dvbc3, tablePat)) \
    X(TC_DEMUX_SectionDvbc_617,   AUTO,   "[SectionDvbc_617] (Demux-3->Tuner-3/DVB-C), request PAT table without CRC check",                                        sectionRequest(__func__, dvbc3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_621,   AUTO,   "[SectionDvbc_621] (Demux-3->Tuner-3/DVB-C), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbc3)) \
    X(TC_DEMUX_SectionDvbc_623,   AUTO,   "[SectionDvbc_623] (Demux-3->Tuner-3/DVB-C), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbc3, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbc_630,   AUTO,   "[SectionDvbc_630] (Demux-3->Tuner-3/DVB-C), request CAT table with CRC check",                                           sectionRequest(__func__, dvbc3, tableCat)) \
    X(TC_DEMUX_SectionDvbc_631,   AUTO,   "[SectionDvbc_631] (Demux-3->Tuner-3/DVB-C), request CAT table without CRC check",                                        sectionRequest(__func__, dvbc3, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_646,   AUTO,   "[SectionDvbc_646] (Demux-3->Tuner-3/DVB-C), request PMT table with CRC check",                                           sectionRequest(__func__, dvbc3, tablePmt)) \
    X(TC_DEMUX_SectionDvbc_647,   AUTO,   "[SectionDvbc_647] (Demux-3->Tuner-3/DVB-C), request PMT table without CRC check",                                        sectionRequest(__func__, dvbc3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_660,   AUTO,   "[SectionDvbc_660] (Demux-3->Tuner-3/DVB-C), request TDT table",                                                          sectionRequest(__func__, dvbc3, tableTdt)) \
    X(TC_DEMUX_SectionDvbc_661,   AUTO,   "[SectionDvbc_661] (Demux-3->Tuner-3/DVB-C), request TDT table without CRC check",                                        sectionRequest(__func__, dvbc3, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_676,   AUTO,   "[SectionDvbc_676] (Demux-3->Tuner-3/DVB-C), request RST table with CRC check",                                           sectionRequest(__func__, dvbc3, tableRst)) \
    X(TC_DEMUX_SectionDvbc_677,   AUTO,   "[SectionDvbc_677] (Demux-3->Tuner-3/DVB-C), request RST table without CRC check",                                        sectionRequest(__func__, dvbc3, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbc_690,   AUTO,   "[SectionDvbc_690] (Demux-3->Tuner-3/DVB-C), request SIT table with CRC check",                                           sectionRequest(__func__, dvbc3, tableSit)) \
    X(TC_DEMUX_SectionDvbc_691,   AUTO,   "[SectionDvbc_691] (Demux-3->Tuner-3/DVB-C), request SIT table without CRC check",                                        sectionRequest(__func__, dvbc3, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_706,   AUTO,   "[SectionDvbc_706] (Demux-3->Tuner-3/DVB-C), request TOT table with CRC check",                                           sectionRequest(__func__, dvbc3, tableTot)) \
    X(TC_DEMUX_SectionDvbc_707,   AUTO,   "[SectionDvbc_707] (Demux-3->Tuner-3/DVB-C), request TOT table without CRC check",                                        sectionRequest(__func__, dvbc3, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbc_720,   AUTO,   "[SectionDvbc_720] (Demux-3->Tuner-3/DVB-C), request NIT table with CRC check",                                           sectionRequest(__func__, dvbc3, tableNit)) \
    X(TC_DEMUX_SectionDvbc_721,   AUTO,   "[SectionDvbc_721] (Demux-3->Tuner-3/DVB-C), request NIT table without CRC check",                                        sectionRequest(__func__, dvbc3, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_736,   AUTO,   "[SectionDvbc_736] (Demux-3->Tuner-3/DVB-C), request EIT table four times",                                               sectionFourTimes(__func__, dvbc3, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbc_737,   AUTO,   "[SectionDvbc_737] (Demux-3->Tuner-3/DVB-C), request EIT present/following table",                                        sectionRequest(__func__, dvbc3, tableEitPf)) \
    X(TC_DEMUX_SectionDvbc_738,   AUTO,   "[SectionDvbc_738] (Demux-3->Tuner-3/DVB-C), request EIT schedule table",                                                 sectionRequest(__func__, dvbc3, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbc_750_1, AUTO,   "[SectionDvbc_750_1] (Demux-3->Tuner-3/DVB-C), request SDT table with CRC check",                                         sectionRequest(__func__, dvbc3, tableSdt)) \
    X(TC_DEMUX_SectionDvbc_750_2, AUTO,   "[SectionDvbc_750_2] (Demux-3->Tuner-3/DVB-C), request SDT table without CRC check",                                      sectionRequest(__func__, dvbc3, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbc_751_1, AUTO,   "[SectionDvbc_751_1] (Demux-3->Tuner-3/DVB-C), request BAT table with CRC check",                                         sectionRequest(__func__, dvbc3, tableBat)) \
    X(TC_DEMUX_SectionDvbc_751_2, AUTO,   "[SectionDvbc_751_2] (Demux-3->Tuner-3/DVB-C), request BAT table without CRC check",                                      sectionRequest(__func__, dvbc3, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbc_752_1, AUTO,   "[SectionDvbc_752_1] (Demux-3->Tuner-3/DVB-C), request DIT table with CRC check",                                         sectionRequest(__func__, dvbc3, tableDit)) \
    X(TC_DEMUX_SectionDvbc_752_2, AUTO,   "[SectionDvbc_752_2] (Demux-3->Tuner-3/DVB-C), request DIT table without CRC check",                                      sectionRequest(__func__, dvbc3, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbc_768,   AUTO,   "[SectionDvbc_768] (Demux-3->Tuner-3/DVB-C), request all tables at the same time",                                        sectionAllTables(__func__, dvbc3, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbc_1000,  AUTO,   "[SectionDvbc_1000] (Demux-0->Tuner-0/DVB-C), request PAT table, common interface in PASS_THROUGH mode",                  sectionThroughSlot(__func__, dvbc0, QLX_CI_TS_MODE_PASS_THROUGH)) \
    X(TC_DEMUX_SectionDvbc_1001,  AUTO,   "[SectionDvbc_1001] (Demux-0->Tuner-0/DVB-C), request PAT table, common interface in BYPASS mode",                        sectionThroughSlot(__func__, dvbc0, QLX_CI_TS_MODE_BYPASS))

//    name                        flag    description                                                                                                               body
#define DVBT_FAMILY(X) \
    X(TC_DEMUX_SectionDvbt_003,   AUTO,   "[SectionDvbt_003] (Demux-0->Tuner-0/DVB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbt0)) \
    X(TC_DEMUX_SectionDvbt_004,   AUTO,   "[SectionDvbt_004] (Demux-0->Tuner-0/DVB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbt0)) \
    X(TC_DEMUX_SectionDvbt_006,   AUTO,   "[SectionDvbt_006] (Demux-0->Tuner-0/DVB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbt0, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbt_007,   AUTO,   "[SectionDvbt_007] (Demux-0->Tuner-0/DVB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbt0, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbt_016,   AUTO,   "[SectionDvbt_016] (Demux-0->Tuner-0/DVB-T), request PAT table with CRC check",                                           sectionRequest(__func__, dvbt0, tablePat)) \
    X(TC_DEMUX_SectionDvbt_017,   AUTO,   "[SectionDvbt_017] (Demux-0->Tuner-0/DVB-T), request PAT table without CRC check",                                        sectionRequest(__func__, dvbt0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_021,   AUTO,   "[SectionDvbt_021] (Demux-0->Tuner-0/DVB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbt0)) \
    X(TC_DEMUX_SectionDvbt_023,   AUTO,   "[SectionDvbt_023] (Demux-0->Tuner-0/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt0, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbt_024,   AUTO,   "[SectionDvbt_024] (Demux-0->Tuner-0/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt0, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbt_030,   AUTO,   "[SectionDvbt_030] (Demux-0->Tuner-0/DVB-T), request CAT table with CRC check",                                           sectionRequest(__func__, dvbt0, tableCat)) \
    X(TC_DEMUX_SectionDvbt_031,   AUTO,   "[SectionDvbt_031] (Demux-0->Tuner-0/DVB-T), request CAT table without CRC check",                                        sectionRequest(__func__, dvbt0, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_046,   AUTO,   "[SectionDvbt_046] (Demux-0->Tuner-0/DVB-T), request PMT table with CRC check",                                           sectionRequest(__func__, dvbt0, tablePmt)) \
    X(TC_DEMUX_SectionDvbt_047,   AUTO,   "[SectionDvbt_047] (Demux-0->Tuner-0/DVB-T), request PMT table without CRC check",                                        sectionRequest(__func__, dvbt0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_060,   AUTO,   "[SectionDvbt_060] (Demux-0->Tuner-0/DVB-T), request TDT table",                                                          sectionRequest(__func__, dvbt0, tableTdtId)) \
    X(TC_DEMUX_SectionDvbt_061,   AUTO,   "[SectionDvbt_061] (Demux-0->Tuner-0/DVB-T), request TDT table without CRC check",                                        sectionRequest(__func__, dvbt0, tableTdtIdNoCrc)) \
    X(TC_DEMUX_SectionDvbt_076,   AUTO,   "[SectionDvbt_076] (Demux-0->Tuner-0/DVB-T), request RST table with CRC check",                                           sectionRequest(__func__, dvbt0, tableRst)) \
    X(TC_DEMUX_SectionDvbt_077,   AUTO,   "[SectionDvbt_077] (Demux-0->Tuner-0/DVB-T), request RST table without CRC check",                                        sectionRequest(__func__, dvbt0, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbt_090,   AUTO,   "[SectionDvbt_090] (Demux-0->Tuner-0/DVB-T), request SIT table with CRC check",                                           sectionRequest(__func__, dvbt0, tableSit)) \
    X(TC_DEMUX_SectionDvbt_091,   AUTO,   "[SectionDvbt_091] (Demux-0->Tuner-0/DVB-T), request SIT table without CRC check",                                        sectionRequest(__func__, dvbt0, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_106,   AUTO,   "[SectionDvbt_106] (Demux-0->Tuner-0/DVB-T), request TOT table with CRC check",                                           sectionRequest(__func__, dvbt0, tableTotId)) \
    X(TC_DEMUX_SectionDvbt_107,   AUTO,   "[SectionDvbt_107] (Demux-0->Tuner-0/DVB-T), request TOT table without CRC check",                                        sectionRequest(__func__, dvbt0, tableTotIdNoCrc)) \
    X(TC_DEMUX_SectionDvbt_120,   AUTO,   "[SectionDvbt_120] (Demux-0->Tuner-0/DVB-T), request NIT table with CRC check",                                           sectionRequest(__func__, dvbt0, tableNitLong)) \
    X(TC_DEMUX_SectionDvbt_121,   AUTO,   "[SectionDvbt_121] (Demux-0->Tuner-0/DVB-T), request NIT table without CRC check",                                        sectionRequest(__func__, dvbt0, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_136,   AUTO,   "[SectionDvbt_136] (Demux-0->Tuner-0/DVB-T), request EIT table four times",                                               sectionFourTimes(__func__, dvbt0, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbt_137,   AUTO,   "[SectionDvbt_137] (Demux-0->Tuner-0/DVB-T), request EIT present/following table",                                        sectionRequest(__func__, dvbt0, tableEitPfId)) \
    X(TC_DEMUX_SectionDvbt_138,   AUTO,   "[SectionDvbt_138] (Demux-0->Tuner-0/DVB-T), request EIT schedule table",                                                 sectionRequest(__func__, dvbt0, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbt_150_1, AUTO,   "[SectionDvbt_150_1] (Demux-0->Tuner-0/DVB-T), request SDT table with CRC check",                                         sectionRequest(__func__, dvbt0, tableSdt)) \
    X(TC_DEMUX_SectionDvbt_150_2, AUTO,   "[SectionDvbt_150_2] (Demux-0->Tuner-0/DVB-T), request SDT table without CRC check",                                      sectionRequest(__func__, dvbt0, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_151_1, AUTO,   "[SectionDvbt_151_1] (Demux-0->Tuner-0/DVB-T), request BAT table with CRC check",                                         sectionRequest(__func__, dvbt0, tableBat)) \
    X(TC_DEMUX_SectionDvbt_151_2, AUTO,   "[SectionDvbt_151_2] (Demux-0->Tuner-0/DVB-T), request BAT table without CRC check",                                      sectionRequest(__func__, dvbt0, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_152_1, AUTO,   "[SectionDvbt_152_1] (Demux-0->Tuner-0/DVB-T), request DIT table with CRC check",                                         sectionRequest(__func__, dvbt0, tableDit)) \
    X(TC_DEMUX_SectionDvbt_152_2, AUTO,   "[SectionDvbt_152_2] (Demux-0->Tuner-0/DVB-T), request DIT table without CRC check",                                      sectionRequest(__func__, dvbt0, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_168,   AUTO,   "[SectionDvbt_168] (Demux-0->Tuner-0/DVB-T), request all tables at the same time",                                        sectionAllTables(__func__, dvbt0, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbt_203,   AUTO,   "[SectionDvbt_203] (Demux-1->Tuner-1/DVB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbt1)) \
    X(TC_DEMUX_SectionDvbt_204,   AUTO,   "[SectionDvbt_204] (Demux-1->Tuner-1/DVB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbt1)) \
    X(TC_DEMUX_SectionDvbt_206,   AUTO,   "[SectionDvbt_206] (Demux-1->Tuner-1/DVB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbt1, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbt_207,   AUTO,   "[SectionDvbt_207] (Demux-1->Tuner-1/DVB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbt1, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbt_216,   AUTO,   "[SectionDvbt_216] (Demux-1->Tuner-1/DVB-T), request PAT table with CRC check",                                           sectionRequest(__func__, dvbt1, tablePat)) \
    X(TC_DEMUX_SectionDvbt_217,   AUTO,   "[SectionDvbt_217] (Demux-1->Tuner-1/DVB-T), request PAT table without CRC check",                                        sectionRequest(__func__, dvbt1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_221,   AUTO,   "[SectionDvbt_221] (Demux-1->Tuner-1/DVB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbt1)) \
    X(TC_DEMUX_SectionDvbt_223,   AUTO,   "[SectionDvbt_223] (Demux-1->Tuner-1/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt1, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbt_224,   AUTO,   "[SectionDvbt_224] (Demux-1->Tuner-1/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt1, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbt_230,   AUTO,   "[SectionDvbt_230] (Demux-1->Tuner-1/DVB-T), request CAT table with CRC check",                                           sectionRequest(__func__, dvbt1, tableCat)) \
    X(TC_DEMUX_SectionDvbt_231,   AUTO,   "[SectionDvbt_231] (Demux-1->Tuner-1/DVB-T), request CAT table without CRC check",                                        sectionRequest(__func__, dvbt1, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_246,   AUTO,   "[SectionDvbt_246] (Demux-1->Tuner-1/DVB-T), request PMT table with CRC check",                                           sectionRequest(__func__, dvbt1, tablePmt)) \
    X(TC_DEMUX_SectionDvbt_247,   AUTO,   "[SectionDvbt_247] (Demux-1->Tuner-1/DVB-T), request PMT table without CRC check",                                        sectionRequest(__func__, dvbt1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_260,   AUTO,   "[SectionDvbt_260] (Demux-1->Tuner-1/DVB-T), request TDT table",                                                          sectionRequest(__func__, dvbt1, tableTdt)) \
    X(TC_DEMUX_SectionDvbt_261,   AUTO,   "[SectionDvbt_261] (Demux-1->Tuner-1/DVB-T), request TDT table without CRC check",                                        sectionRequest(__func__, dvbt1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_276,   AUTO,   "[SectionDvbt_276] (Demux-1->Tuner-1/DVB-T), request RST table with CRC check",                                           sectionRequest(__func__, dvbt1, tableRst)) \
    X(TC_DEMUX_SectionDvbt_277,   AUTO,   "[SectionDvbt_277] (Demux-1->Tuner-1/DVB-T), request RST table without CRC check",                                        sectionRequest(__func__, dvbt1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbt_290,   AUTO,   "[SectionDvbt_290] (Demux-1->Tuner-1/DVB-T), request SIT table with CRC check",                                           sectionRequest(__func__, dvbt1, tableSit)) \
    X(TC_DEMUX_SectionDvbt_291,   AUTO,   "[SectionDvbt_291] (Demux-1->Tuner-1/DVB-T), request SIT table without CRC check",                                        sectionRequest(__func__, dvbt1, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_306,   AUTO,   "[SectionDvbt_306] (Demux-1->Tuner-1/DVB-T), request TOT table with CRC check",                                           sectionRequest(__func__, dvbt1, tableTot)) \
    X(TC_DEMUX_SectionDvbt_307,   AUTO,   "[SectionDvbt_307] (Demux-1->Tuner-1/DVB-T), request TOT table without CRC check",                                        sectionRequest(__func__, dvbt1, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbt_320,   AUTO,   "[SectionDvbt_320] (Demux-1->Tuner-1/DVB-T), request NIT table with CRC check",                                           sectionRequest(__func__, dvbt1, tableNit)) \
    X(TC_DEMUX_SectionDvbt_321,   AUTO,   "[SectionDvbt_321] (Demux-1->Tuner-1/DVB-T), request NIT table without CRC check",                                        sectionRequest(__func__, dvbt1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_336,   AUTO,   "[SectionDvbt_336] (Demux-1->Tuner-1/DVB-T), request EIT table four times",                                               sectionFourTimes(__func__, dvbt1, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbt_337,   AUTO,   "[SectionDvbt_337] (Demux-1->Tuner-1/DVB-T), request EIT present/following table",                                        sectionRequest(__func__, dvbt1, tableEitPf)) \
    X(TC_DEMUX_SectionDvbt_338,   AUTO,   "[SectionDvbt_338] (Demux-1->Tuner-1/DVB-T), request EIT schedule table",                                                 sectionRequest(__func__, dvbt1, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbt_350_1, AUTO,   "[SectionDvbt_350_1] (Demux-1->Tuner-1/DVB-T), request SDT table with CRC check",                                         sectionRequest(__func__, dvbt1, tableSdt)) \
    X(TC_DEMUX_SectionDvbt_350_2, AUTO,   "[SectionDvbt_350_2] (Demux-1->Tuner-1/DVB-T), request SDT table without CRC check",                                      sectionRequest(__func__, dvbt1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_351_1, AUTO,   "[SectionDvbt_351_1] (Demux-1->Tuner-1/DVB-T), request BAT table with CRC check",                                         sectionRequest(__func__, dvbt1, tableBat)) \
    X(TC_DEMUX_SectionDvbt_351_2, AUTO,   "[SectionDvbt_351_2] (Demux-1->Tuner-1/DVB-T), request BAT table without CRC check",                                      sectionRequest(__func__, dvbt1, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_352_1, AUTO,   "[SectionDvbt_352_1] (Demux-1->Tuner-1/DVB-T), request DIT table with CRC check",                                         sectionRequest(__func__, dvbt1, tableDit)) \
    X(TC_DEMUX_SectionDvbt_352_2, AUTO,   "[SectionDvbt_352_2] (Demux-1->Tuner-1/DVB-T), request DIT table without CRC check",                                      sectionRequest(__func__, dvbt1, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_368,   AUTO,   "[SectionDvbt_368] (Demux-1->Tuner-1/DVB-T), request all tables at the same time",                                        sectionAllTables(__func__, dvbt1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbt_403,   AUTO,   "[SectionDvbt_403] (Demux-2->Tuner-2/DVB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbt2)) \
    X(TC_DEMUX_SectionDvbt_404,   AUTO,   "[SectionDvbt_404] (Demux-2->Tuner-2/DVB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbt2)) \
    X(TC_DEMUX_SectionDvbt_406,   AUTO,   "[SectionDvbt_406] (Demux-2->Tuner-2/DVB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbt2, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbt_407,   AUTO,   "[SectionDvbt_407] (Demux-2->Tuner-2/DVB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbt2, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbt_416,   AUTO,   "[SectionDvbt_416] (Demux-2->Tuner-2/DVB-T), request PAT table with CRC check",                                           sectionRequest(__func__, dvbt2, tablePat)) \
    X(TC_DEMUX_SectionDvbt_417,   AUTO,   "[SectionDvbt_417] (Demux-2->Tuner-2/DVB-T), request PAT table without CRC check",                                        sectionRequest(__func__, dvbt2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_421,   AUTO,   "[SectionDvbt_421] (Demux-2->Tuner-2/DVB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbt2)) \
    X(TC_DEMUX_SectionDvbt_423,   AUTO,   "[SectionDvbt_423] (Demux-2->Tuner-2/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt2, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbt_424,   AUTO,   "[SectionDvbt_424] (Demux-2->Tuner-2/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt2, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbt_430,   AUTO,   "[SectionDvbt_430] (Demux-2->Tuner-2/DVB-T), request CAT table with CRC check",                                           sectionRequest(__func__, dvbt2, tableCat)) \
    X(TC_DEMUX_SectionDvbt_431,   AUTO,   "[SectionDvbt_431] (Demux-2->Tuner-2/DVB-T), request CAT table without CRC check",                                        sectionRequest(__func__, dvbt2, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_446,   AUTO,   "[SectionDvbt_446] (Demux-2->Tuner-2/DVB-T), request PMT table with CRC check",                                           sectionRequest(__func__, dvbt2, tablePmt)) \
    X(TC_DEMUX_SectionDvbt_447,   AUTO,   "[SectionDvbt_447] (Demux-2->Tuner-2/DVB-T), request PMT table without CRC check",                                        sectionRequest(__func__, dvbt2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_460,   AUTO,   "[SectionDvbt_460] (Demux-2->Tuner-2/DVB-T), request TDT table",                                                          sectionRequest(__func__, dvbt2, tableTdt)) \
    X(TC_DEMUX_SectionDvbt_461,   AUTO,   "[SectionDvbt_461] (Demux-2->Tuner-2/DVB-T), request TDT table without CRC check",                                        sectionRequest(__func__, dvbt2, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_476,   AUTO,   "[SectionDvbt_476] (Demux-2->Tuner-2/DVB-T), request RST table with CRC check",                                           sectionRequest(__func__, dvbt2, tableRst)) \
    X(TC_DEMUX_SectionDvbt_477,   AUTO,   "[SectionDvbt_477] (Demux-2->Tuner-2/DVB-T), request RST table without CRC check",                                        sectionRequest(__func__, dvbt2, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbt_490,   AUTO,   "[SectionDvbt_490] (Demux-2->Tuner-2/DVB-T), request SIT table with CRC check",                                           sectionRequest(__func__, dvbt2, tableSit)) \
    X(TC_DEMUX_SectionDvbt_491,   AUTO,   "[SectionDvbt_491] (Demux-2->Tuner-2/DVB-T), request SIT table without CRC check",                                        sectionRequest(__func__, dvbt2, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_506,   AUTO,   "[SectionDvbt_506] (Demux-2->Tuner-2/DVB-T), request TOT table with CRC check",                                           sectionRequest(__func__, dvbt2, tableTot)) \
    X(TC_DEMUX_SectionDvbt_507,   AUTO,   "[SectionDvbt_507] (Demux-2->Tuner-2/DVB-T), request TOT table without CRC check",                                        sectionRequest(__func__, dvbt2, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbt_520,   AUTO,   "[SectionDvbt_520] (Demux-2->Tuner-2/DVB-T), request NIT table with CRC check",                                           sectionRequest(__func__, dvbt2, tableNit)) \
    X(TC_DEMUX_SectionDvbt_521,   AUTO,   "[SectionDvbt_521] (Demux-2->Tuner-2/DVB-T), request NIT table without CRC check",                                        sectionRequest(__func__, dvbt2, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_536,   AUTO,   "[SectionDvbt_536] (Demux-2->Tuner-2/DVB-T), request EIT table four times",                                               sectionFourTimes(__func__, dvbt2, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbt_537,   AUTO,   "[SectionDvbt_537] (Demux-2->Tuner-2/DVB-T), request EIT present/following table",                                        sectionRequest(__func__, dvbt2, tableEitPf)) \
    X(TC_DEMUX_SectionDvbt_538,   AUTO,   "[SectionDvbt_538] (Demux-2->Tuner-2/DVB-T), request EIT schedule table",                                                 sectionRequest(__func__, dvbt2, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbt_550_1, AUTO,   "[SectionDvbt_550_1] (Demux-2->Tuner-2/DVB-T), request SDT table with CRC check",                                         sectionRequest(__func__, dvbt2, tableSdt)) \
    X(TC_DEMUX_SectionDvbt_550_2, AUTO,   "[SectionDvbt_550_2] (Demux-2->Tuner-2/DVB-T), request SDT table without CRC check",                                      sectionRequest(__func__, dvbt2, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_551_1, AUTO,   "[SectionDvbt_551_1] (Demux-2->Tuner-2/DVB-T), request BAT table with CRC check",                                         sectionRequest(__func__, dvbt2, tableBat)) \
    X(TC_DEMUX_SectionDvbt_551_2, AUTO,   "[SectionDvbt_551_2] (Demux-2->Tuner-2/DVB-T), request BAT table without CRC check",                                      sectionRequest(__func__, dvbt2, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_552_1, AUTO,   "[SectionDvbt_552_1] (Demux-2->Tuner-2/DVB-T), request DIT table with CRC check",                                         sectionRequest(__func__, dvbt2, tableDit)) \
    X(TC_DEMUX_SectionDvbt_552_2, AUTO,   "[SectionDvbt_552_2] (Demux-2->Tuner-2/DVB-T), request DIT table without CRC check",                                      sectionRequest(__func__, dvbt2, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_568,   AUTO,   "[SectionDvbt_568] (Demux-2->Tuner-2/DVB-T), request all tables at the same time",                                        sectionAllTables(__func__, dvbt2, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbt_603,   AUTO,   "[SectionDvbt_603] (Demux-3->Tuner-3/DVB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbt3)) \
    X(TC_DEMUX_SectionDvbt_604,   AUTO,   "[SectionDvbt_604] (Demux-3->Tuner-3/DVB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbt3)) \
    X(TC_DEMUX_SectionDvbt_606,   AUTO,   "[SectionDvbt_606] (Demux-3->Tuner-3/DVB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbt3, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbt_607,   AUTO,   "[SectionDvbt_607] (Demux-3->Tuner-3/DVB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbt3, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbt_616,   AUTO,   "[SectionDvbt_616] (Demux-3->Tuner-3/DVB-T), request PAT table with CRC check",                                           sectionRequest(__func__, dvbt3, tablePat)) \
    X(TC_DEMUX_SectionDvbt_617,   AUTO,   "[SectionDvbt_617] (Demux-3->Tuner-3/DVB-T), request PAT table without CRC check",                                        sectionRequest(__func__, dvbt3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_621,   AUTO,   "[SectionDvbt_621] (Demux-3->Tuner-3/DVB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbt3)) \
    X(TC_DEMUX_SectionDvbt_623,   AUTO,   "[SectionDvbt_623] (Demux-3->Tuner-3/DVB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbt3, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbt_630,   AUTO,   "[SectionDvbt_630] (Demux-3->Tuner-3/DVB-T), request CAT table with CRC check",                                           sectionRequest(__func__, dvbt3, tableCat)) \
    X(TC_DEMUX_SectionDvbt_631,   AUTO,   "[SectionDvbt_631] (Demux-3->Tuner-3/DVB-T), request CAT table without CRC check",                                        sectionRequest(__func__, dvbt3, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_646,   AUTO,   "[SectionDvbt_646] (Demux-3->Tuner-3/DVB-T), request PMT table with CRC check",                                           sectionRequest(__func__, dvbt3, tablePmt)) \
    X(TC_DEMUX_SectionDvbt_647,   AUTO,   "[SectionDvbt_647] (Demux-3->Tuner-3/DVB-T), request PMT table without CRC check",                                        sectionRequest(__func__, dvbt3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_660,   AUTO,   "[SectionDvbt_660] (Demux-3->Tuner-3/DVB-T), request TDT table",                                                          sectionRequest(__func__, dvbt3, tableTdt)) \
    X(TC_DEMUX_SectionDvbt_661,   AUTO,   "[SectionDvbt_661] (Demux-3->Tuner-3/DVB-T), request TDT table without CRC check",                                        sectionRequest(__func__, dvbt3, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_676,   AUTO,   "[SectionDvbt_676] (Demux-3->Tuner-3/DVB-T), request RST table with CRC check",                                           sectionRequest(__func__, dvbt3, tableRst)) \
    X(TC_DEMUX_SectionDvbt_677,   AUTO,   "[SectionDvbt_677] (Demux-3->Tuner-3/DVB-T), request RST table without CRC check",                                        sectionRequest(__func__, dvbt3, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbt_690,   AUTO,   "[SectionDvbt_690] (Demux-3->Tuner-3/DVB-T), request SIT table with CRC check",                                           sectionRequest(__func__, dvbt3, tableSit)) \
    X(TC_DEMUX_SectionDvbt_691,   AUTO,   "[SectionDvbt_691] (Demux-3->Tuner-3/DVB-T), request SIT table without CRC check",                                        sectionRequest(__func__, dvbt3, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_706,   AUTO,   "[SectionDvbt_706] (Demux-3->Tuner-3/DVB-T), request TOT table with CRC check",                                           sectionRequest(__func__, dvbt3, tableTot)) \
    X(TC_DEMUX_SectionDvbt_707,   AUTO,   "[SectionDvbt_707] (Demux-3->Tuner-3/DVB-T), request TOT table without CRC check",                                        sectionRequest(__func__, dvbt3, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbt_720,   AUTO,   "[SectionDvbt_720] (Demux-3->Tuner-3/DVB-T), request NIT table with CRC check",                                           sectionRequest(__func__, dvbt3, tableNit)) \
    X(TC_DEMUX_SectionDvbt_721,   AUTO,   "[SectionDvbt_721] (Demux-3->Tuner-3/DVB-T), request NIT table without CRC check",                                        sectionRequest(__func__, dvbt3, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_736,   AUTO,   "[SectionDvbt_736] (Demux-3->Tuner-3/DVB-T), request EIT table four times",                                               sectionFourTimes(__func__, dvbt3, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbt_737,   AUTO,   "[SectionDvbt_737] (Demux-3->Tuner-3/DVB-T), request EIT present/following table",                                        sectionRequest(__func__, dvbt3, tableEitPf)) \
    X(TC_DEMUX_SectionDvbt_738,   AUTO,   "[SectionDvbt_738] (Demux-3->Tuner-3/DVB-T), request EIT schedule table",                                                 sectionRequest(__func__, dvbt3, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbt_750_1, AUTO,   "[SectionDvbt_750_1] (Demux-3->Tuner-3/DVB-T), request SDT table with CRC check",                                         sectionRequest(__func__, dvbt3, tableSdt)) \
    X(TC_DEMUX_SectionDvbt_750_2, AUTO,   "[SectionDvbt_750_2] (Demux-3->Tuner-3/DVB-T), request SDT table without CRC check",                                      sectionRequest(__func__, dvbt3, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbt_751_1, AUTO,   "[SectionDvbt_751_1] (Demux-3->Tuner-3/DVB-T), request BAT table with CRC check",                                         sectionRequest(__func__, dvbt3, tableBat)) \
    X(TC_DEMUX_SectionDvbt_751_2, AUTO,   "[SectionDvbt_751_2] (Demux-3->Tuner-3/DVB-T), request BAT table without CRC check",                                      sectionRequest(__func__, dvbt3, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbt_752_1, AUTO,   "[SectionDvbt_752_1] (Demux-3->Tuner-3/DVB-T), request DIT table with CRC check",                                         sectionRequest(__func__, dvbt3, tableDit)) \
    X(TC_DEMUX_SectionDvbt_752_2, AUTO,   "[SectionDvbt_752_2] (Demux-3->Tuner-3/DVB-T), request DIT table without CRC check",                                      sectionRequest(__func__, dvbt3, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbt_768,   AUTO,   "[SectionDvbt_768] (Demux-3->Tuner-3/DVB-T), request all tables at the same time",                                        sectionAllTables(__func__, dvbt3, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbt_1000,  AUTO,   "[SectionDvbt_1000] (Demux-0->Tuner-0/DVB-T), request PAT table, common interface in PASS_THROUGH mode",                  sectionThroughSlot(__func__, dvbt0, QLX_CI_TS_MODE_PASS_THROUGH)) \
    X(TC_DEMUX_SectionDvbt_1001,  AUTO,   "[SectionDvbt_1001] (Demux-0->Tuner-0/DVB-T), request PAT table, common interface in BYPASS mode",                        sectionThroughSlot(__func__, dvbt0, QLX_CI_TS_MODE_BYPASS))

//    name                        flag    description                                                                                                               body
#define DVBS_FAMILY(X) \
    X(TC_DEMUX_SectionDvbs_003,   AUTO,   "[SectionDvbs_003] (Demux-0->Tuner-0/DVB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbs0)) \
    X(TC_DEMUX_SectionDvbs_004,   AUTO,   "[SectionDvbs_004] (Demux-0->Tuner-0/DVB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbs0)) \
    X(TC_DEMUX_SectionDvbs_006,   AUTO,   "[SectionDvbs_006] (Demux-0->Tuner-0/DVB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbs0, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbs_007,   AUTO,   "[SectionDvbs_007] (Demux-0->Tuner-0/DVB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbs0, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbs_016,   AUTO,   "[SectionDvbs_016] (Demux-0->Tuner-0/DVB-S), request PAT table with CRC check",                                           sectionRequest(__func__, dvbs0, tablePat)) \
    X(TC_DEMUX_SectionDvbs_017,   AUTO,   "[SectionDvbs_017] (Demux-0->Tuner-0/DVB-S), request PAT table without CRC check",                                        sectionRequest(__func__, dvbs0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_021,   AUTO,   "[SectionDvbs_021] (Demux-0->Tuner-0/DVB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbs0)) \
    X(TC_DEMUX_SectionDvbs_023,   AUTO,   "[SectionDvbs_023] (Demux-0->Tuner-0/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs0, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbs_024,   AUTO,   "[SectionDvbs_024] (Demux-0->Tuner-0/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs0, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbs_030,   AUTO,   "[SectionDvbs_030] (Demux-0->Tuner-0/DVB-S), request CAT table with CRC check",                                           sectionRequest(__func__, dvbs0, tableCat)) \
    X(TC_DEMUX_SectionDvbs_031,   AUTO,   "[SectionDvbs_031] (Demux-0->Tuner-0/DVB-S), request CAT table without CRC check",                                        sectionRequest(__func__, dvbs0, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_046,   AUTO,   "[SectionDvbs_046] (Demux-0->Tuner-0/DVB-S), request PMT table with CRC check",                                           sectionRequest(__func__, dvbs0, tablePmt)) \
    X(TC_DEMUX_SectionDvbs_047,   AUTO,   "[SectionDvbs_047] (Demux-0->Tuner-0/DVB-S), request PMT table without CRC check",                                        sectionRequest(__func__, dvbs0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_060,   AUTO,   "[SectionDvbs_060] (Demux-0->Tuner-0/DVB-S), request TDT table",                                                          sectionRequest(__func__, dvbs0, tableTdtId)) \
    X(TC_DEMUX_SectionDvbs_061,   AUTO,   "[SectionDvbs_061] (Demux-0->Tuner-0/DVB-S), request TDT table without CRC check",                                        sectionRequest(__func__, dvbs0, tableTdtIdNoCrc)) \
    X(TC_DEMUX_SectionDvbs_076,   AUTO,   "[SectionDvbs_076] (Demux-0->Tuner-0/DVB-S), request RST table with CRC check",                                           sectionRequest(__func__, dvbs0, tableRst)) \
    X(TC_DEMUX_SectionDvbs_077,   AUTO,   "[SectionDvbs_077] (Demux-0->Tuner-0/DVB-S), request RST table without CRC check",                                        sectionRequest(__func__, dvbs0, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbs_090,   AUTO,   "[SectionDvbs_090] (Demux-0->Tuner-0/DVB-S), request SIT table with CRC check",                                           sectionRequest(__func__, dvbs0, tableSit)) \
    X(TC_DEMUX_SectionDvbs_091,   AUTO,   "[SectionDvbs_091] (Demux-0->Tuner-0/DVB-S), request SIT table without CRC check",                                        sectionRequest(__func__, dvbs0, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_106,   AUTO,   "[SectionDvbs_106] (Demux-0->Tuner-0/DVB-S), request TOT table with CRC check",                                           sectionRequest(__func__, dvbs0, tableTotId)) \
    X(TC_DEMUX_SectionDvbs_107,   AUTO,   "[SectionDvbs_107] (Demux-0->Tuner-0/DVB-S), request TOT table without CRC check",                                        sectionRequest(__func__, dvbs0, tableTotIdNoCrc)) \
    X(TC_DEMUX_SectionDvbs_120,   AUTO,   "[SectionDvbs_120] (Demux-0->Tuner-0/DVB-S), request NIT table with CRC check",                                           sectionRequest(__func__, dvbs0, tableNit)) \
    X(TC_DEMUX_SectionDvbs_121,   AUTO,   "[SectionDvbs_121] (Demux-0->Tuner-0/DVB-S), request NIT table without CRC check",                                        sectionRequest(__func__, dvbs0, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_136,   AUTO,   "[SectionDvbs_136] (Demux-0->Tuner-0/DVB-S), request EIT table four times",                                               sectionFourTimes(__func__, dvbs0, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbs_137,   AUTO,   "[SectionDvbs_137] (Demux-0->Tuner-0/DVB-S), request EIT present/following table",                                        sectionRequest(__func__, dvbs0, tableEitPfId)) \
    X(TC_DEMUX_SectionDvbs_138,   AUTO,   "[SectionDvbs_138] (Demux-0->Tuner-0/DVB-S), request EIT schedule table",                                                 sectionRequest(__func__, dvbs0, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbs_150_1, AUTO,   "[SectionDvbs_150_1] (Demux-0->Tuner-0/DVB-S), request SDT table with CRC check",                                         sectionRequest(__func__, dvbs0, tableSdt)) \
    X(TC_DEMUX_SectionDvbs_150_2, AUTO,   "[SectionDvbs_150_2] (Demux-0->Tuner-0/DVB-S), request SDT table without CRC check",                                      sectionRequest(__func__, dvbs0, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_151_1, AUTO,   "[SectionDvbs_151_1] (Demux-0->Tuner-0/DVB-S), request BAT table with CRC check",                                         sectionRequest(__func__, dvbs0, tableBat)) \
    X(TC_DEMUX_SectionDvbs_151_2, AUTO,   "[SectionDvbs_151_2] (Demux-0->Tuner-0/DVB-S), request BAT table without CRC check",                                      sectionRequest(__func__, dvbs0, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_152_1, AUTO,   "[SectionDvbs_152_1] (Demux-0->Tuner-0/DVB-S), request DIT table with CRC check",                                         sectionRequest(__func__, dvbs0, tableDit)) \
    X(TC_DEMUX_SectionDvbs_152_2, AUTO,   "[SectionDvbs_152_2] (Demux-0->Tuner-0/DVB-S), request DIT table without CRC check",                                      sectionRequest(__func__, dvbs0, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_168,   AUTO,   "[SectionDvbs_168] (Demux-0->Tuner-0/DVB-S), request all tables at the same time",                                        sectionAllTables(__func__, dvbs0, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbs_203,   AUTO,   "[SectionDvbs_203] (Demux-1->Tuner-1/DVB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbs1)) \
    X(TC_DEMUX_SectionDvbs_204,   AUTO,   "[SectionDvbs_204] (Demux-1->Tuner-1/DVB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbs1)) \
    X(TC_DEMUX_SectionDvbs_206,   AUTO,   "[SectionDvbs_206] (Demux-1->Tuner-1/DVB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbs1, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbs_207,   AUTO,   "[SectionDvbs_207] (Demux-1->Tuner-1/DVB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbs1, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbs_216,   AUTO,   "[SectionDvbs_216] (Demux-1->Tuner-1/DVB-S), request PAT table with CRC check",                                           sectionRequest(__func__, dvbs1, tablePat)) \
    X(TC_DEMUX_SectionDvbs_217,   AUTO,   "[SectionDvbs_217] (Demux-1->Tuner-1/DVB-S), request PAT table without CRC check",                                        sectionRequest(__func__, dvbs1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_221,   AUTO,   "[SectionDvbs_221] (Demux-1->Tuner-1/DVB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbs1)) \
    X(TC_DEMUX_SectionDvbs_223,   AUTO,   "[SectionDvbs_223] (Demux-1->Tuner-1/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs1, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbs_224,   AUTO,   "[SectionDvbs_224] (Demux-1->Tuner-1/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs1, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbs_230,   AUTO,   "[SectionDvbs_230] (Demux-1->Tuner-1/DVB-S), request CAT table with CRC check",                                           sectionRequest(__func__, dvbs1, tableCat)) \
    X(TC_DEMUX_SectionDvbs_231,   AUTO,   "[SectionDvbs_231] (Demux-1->Tuner-1/DVB-S), request CAT table without CRC check",                                        sectionRequest(__func__, dvbs1, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_246,   AUTO,   "[SectionDvbs_246] (Demux-1->Tuner-1/DVB-S), request PMT table with CRC check",                                           sectionRequest(__func__, dvbs1, tablePmt)) \
    X(TC_DEMUX_SectionDvbs_247,   AUTO,   "[SectionDvbs_247] (Demux-1->Tuner-1/DVB-S), request PMT table without CRC check",                                        sectionRequest(__func__, dvbs1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_260,   AUTO,   "[SectionDvbs_260] (Demux-1->Tuner-1/DVB-S), request TDT table",                                                          sectionRequest(__func__, dvbs1, tableTdt)) \
    X(TC_DEMUX_SectionDvbs_261,   AUTO,   "[SectionDvbs_261] (Demux-1->Tuner-1/DVB-S), request TDT table without CRC check",                                        sectionRequest(__func__, dvbs1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_276,   AUTO,   "[SectionDvbs_276] (Demux-1->Tuner-1/DVB-S), request RST table with CRC check",                                           sectionRequest(__func__, dvbs1, tableRst)) \
    X(TC_DEMUX_SectionDvbs_277,   AUTO,   "[SectionDvbs_277] (Demux-1->Tuner-1/DVB-S), request RST table without CRC check",                                        sectionRequest(__func__, dvbs1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbs_290,   AUTO,   "[SectionDvbs_290] (Demux-1->Tuner-1/DVB-S), request SIT table with CRC check",                                           sectionRequest(__func__, dvbs1, tableSit)) \
    X(TC_DEMUX_SectionDvbs_291,   AUTO,   "[SectionDvbs_291] (Demux-1->Tuner-1/DVB-S), request SIT table without CRC check",                                        sectionRequest(__func__, dvbs1, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_306,   AUTO,   "[SectionDvbs_306] (Demux-1->Tuner-1/DVB-S), request TOT table with CRC check",                                           sectionRequest(__func__, dvbs1, tableTot)) \
    X(TC_DEMUX_SectionDvbs_307,   AUTO,   "[SectionDvbs_307] (Demux-1->Tuner-1/DVB-S), request TOT table without CRC check",                                        sectionRequest(__func__, dvbs1, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbs_320,   AUTO,   "[SectionDvbs_320] (Demux-1->Tuner-1/DVB-S), request NIT table with CRC check",                                           sectionRequest(__func__, dvbs1, tableNit)) \
    X(TC_DEMUX_SectionDvbs_321,   AUTO,   "[SectionDvbs_321] (Demux-1->Tuner-1/DVB-S), request NIT table without CRC check",                                        sectionRequest(__func__, dvbs1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_336,   AUTO,   "[SectionDvbs_336] (Demux-1->Tuner-1/DVB-S), request EIT table four times",                                               sectionFourTimes(__func__, dvbs1, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbs_337,   AUTO,   "[SectionDvbs_337] (Demux-1->Tuner-1/DVB-S), request EIT present/following table",                                        sectionRequest(__func__, dvbs1, tableEitPf)) \
    X(TC_DEMUX_SectionDvbs_338,   AUTO,   "[SectionDvbs_338] (Demux-1->Tuner-1/DVB-S), request EIT schedule table",                                                 sectionRequest(__func__, dvbs1, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbs_350_1, AUTO,   "[SectionDvbs_350_1] (Demux-1->Tuner-1/DVB-S), request SDT table with CRC check",                                         sectionRequest(__func__, dvbs1, tableSdt)) \
    X(TC_DEMUX_SectionDvbs_350_2, AUTO,   "[SectionDvbs_350_2] (Demux-1->Tuner-1/DVB-S), request SDT table without CRC check",                                      sectionRequest(__func__, dvbs1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_351_1, AUTO,   "[SectionDvbs_351_1] (Demux-1->Tuner-1/DVB-S), request BAT table with CRC check",                                         sectionRequest(__func__, dvbs1, tableBat)) \
    X(TC_DEMUX_SectionDvbs_351_2, AUTO,   "[SectionDvbs_351_2] (Demux-1->Tuner-1/DVB-S), request BAT table without CRC check",                                      sectionRequest(__func__, dvbs1, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_352_1, AUTO,   "[SectionDvbs_352_1] (Demux-1->Tuner-1/DVB-S), request DIT table with CRC check",                                         sectionRequest(__func__, dvbs1, tableDit)) \
    X(TC_DEMUX_SectionDvbs_352_2, AUTO,   "[SectionDvbs_352_2] (Demux-1->Tuner-1/DVB-S), request DIT table without CRC check",                                      sectionRequest(__func__, dvbs1, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_368,   AUTO,   "[SectionDvbs_368] (Demux-1->Tuner-1/DVB-S), request all tables at the same time",                                        sectionAllTables(__func__, dvbs1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbs_403,   AUTO,   "[SectionDvbs_403] (Demux-2->Tuner-2/DVB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbs2)) \
    X(TC_DEMUX_SectionDvbs_404,   AUTO,   "[SectionDvbs_404] (Demux-2->Tuner-2/DVB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbs2)) \
    X(TC_DEMUX_SectionDvbs_406,   AUTO,   "[SectionDvbs_406] (Demux-2->Tuner-2/DVB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbs2, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbs_407,   AUTO,   "[SectionDvbs_407] (Demux-2->Tuner-2/DVB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbs2, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbs_416,   AUTO,   "[SectionDvbs_416] (Demux-2->Tuner-2/DVB-S), request PAT table with CRC check",                                           sectionRequest(__func__, dvbs2, tablePat)) \
    X(TC_DEMUX_SectionDvbs_417,   AUTO,   "[SectionDvbs_417] (Demux-2->Tuner-2/DVB-S), request PAT table without CRC check",                                        sectionRequest(__func__, dvbs2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_421,   AUTO,   "[SectionDvbs_421] (Demux-2->Tuner-2/DVB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbs2)) \
    X(TC_DEMUX_SectionDvbs_423,   AUTO,   "[SectionDvbs_423] (Demux-2->Tuner-2/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs2, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbs_424,   AUTO,   "[SectionDvbs_424] (Demux-2->Tuner-2/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs2, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbs_430,   AUTO,   "[SectionDvbs_430] (Demux-2->Tuner-2/DVB-S), request CAT table with CRC check",                                           sectionRequest(__func__, dvbs2, tableCat)) \
    X(TC_DEMUX_SectionDvbs_431,   AUTO,   "[SectionDvbs_431] (Demux-2->Tuner-2/DVB-S), request CAT table without CRC check",                                        sectionRequest(__func__, dvbs2, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_446,   AUTO,   "[SectionDvbs_446] (Demux-2->Tuner-2/DVB-S), request PMT table with CRC check",                                           sectionRequest(__func__, dvbs2, tablePmt)) \
    X(TC_DEMUX_SectionDvbs_447,   AUTO,   "[SectionDvbs_447] (Demux-2->Tuner-2/DVB-S), request PMT table without CRC check",                                        sectionRequest(__func__, dvbs2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_460,   AUTO,   "[SectionDvbs_460] (Demux-2->Tuner-2/DVB-S), request TDT table",                                                          sectionRequest(__func__, dvbs2, tableTdt)) \
    X(TC_DEMUX_SectionDvbs_461,   AUTO,   "[SectionDvbs_461] (Demux-2->Tuner-2/DVB-S), request TDT table without CRC check",                                        sectionRequest(__func__, dvbs2, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_476,   AUTO,   "[SectionDvbs_476] (Demux-2->Tuner-2/DVB-S), request RST table with CRC check",                                           sectionRequest(__func__, dvbs2, tableRst)) \
    X(TC_DEMUX_SectionDvbs_477,   AUTO,   "[SectionDvbs_477] (Demux-2->Tuner-2/DVB-S), request RST table without CRC check",                                        sectionRequest(__func__, dvbs2, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbs_490,   AUTO,   "[SectionDvbs_490] (Demux-2->Tuner-2/DVB-S), request SIT table with CRC check",                                           sectionRequest(__func__, dvbs2, tableSit)) \
    X(TC_DEMUX_SectionDvbs_491,   AUTO,   "[SectionDvbs_491] (Demux-2->Tuner-2/DVB-S), request SIT table without CRC check",                                        sectionRequest(__func__, dvbs2, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_506,   AUTO,   "[SectionDvbs_506] (Demux-2->Tuner-2/DVB-S), request TOT table with CRC check",                                           sectionRequest(__func__, dvbs2, tableTot)) \
    X(TC_DEMUX_SectionDvbs_507,   AUTO,   "[SectionDvbs_507] (Demux-2->Tuner-2/DVB-S), request TOT table without CRC check",                                        sectionRequest(__func__, dvbs2, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbs_520,   AUTO,   "[SectionDvbs_520] (Demux-2->Tuner-2/DVB-S), request NIT table with CRC check",                                           sectionRequest(__func__, dvbs2, tableNit)) \
    X(TC_DEMUX_SectionDvbs_521,   AUTO,   "[SectionDvbs_521] (Demux-2->Tuner-2/DVB-S), request NIT table without CRC check",                                        sectionRequest(__func__, dvbs2, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_536,   AUTO,   "[SectionDvbs_536] (Demux-2->Tuner-2/DVB-S), request EIT table four times",                                               sectionFourTimes(__func__, dvbs2, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbs_537,   AUTO,   "[SectionDvbs_537] (Demux-2->Tuner-2/DVB-S), request EIT present/following table",                                        sectionRequest(__func__, dvbs2, tableEitPf)) \
    X(TC_DEMUX_SectionDvbs_538,   AUTO,   "[SectionDvbs_538] (Demux-2->Tuner-2/DVB-S), request EIT schedule table",                                                 sectionRequest(__func__, dvbs2, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbs_550_1, AUTO,   "[SectionDvbs_550_1] (Demux-2->Tuner-2/DVB-S), request SDT table with CRC check",                                         sectionRequest(__func__, dvbs2, tableSdt)) \
    X(TC_DEMUX_SectionDvbs_550_2, AUTO,   "[SectionDvbs_550_2] (Demux-2->Tuner-2/DVB-S), request SDT table without CRC check",                                      sectionRequest(__func__, dvbs2, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_551_1, AUTO,   "[SectionDvbs_551_1] (Demux-2->Tuner-2/DVB-S), request BAT table with CRC check",                                         sectionRequest(__func__, dvbs2, tableBat)) \
    X(TC_DEMUX_SectionDvbs_551_2, AUTO,   "[SectionDvbs_551_2] (Demux-2->Tuner-2/DVB-S), request BAT table without CRC check",                                      sectionRequest(__func__, dvbs2, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_552_1, AUTO,   "[SectionDvbs_552_1] (Demux-2->Tuner-2/DVB-S), request DIT table with CRC check",                                         sectionRequest(__func__, dvbs2, tableDit)) \
    X(TC_DEMUX_SectionDvbs_552_2, AUTO,   "[SectionDvbs_552_2] (Demux-2->Tuner-2/DVB-S), request DIT table without CRC check",                                      sectionRequest(__func__, dvbs2, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_568,   AUTO,   "[SectionDvbs_568] (Demux-2->Tuner-2/DVB-S), request all tables at the same time",                                        sectionAllTables(__func__, dvbs2, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbs_603,   AUTO,   "[SectionDvbs_603] (Demux-3->Tuner-3/DVB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbs3)) \
    X(TC_DEMUX_SectionDvbs_604,   AUTO,   "[SectionDvbs_604] (Demux-3->Tuner-3/DVB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbs3)) \
    X(TC_DEMUX_SectionDvbs_606,   AUTO,   "[SectionDvbs_606] (Demux-3->Tuner-3/DVB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbs3, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbs_607,   AUTO,   "[SectionDvbs_607] (Demux-3->Tuner-3/DVB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbs3, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbs_616,   AUTO,   "[SectionDvbs_616] (Demux-3->Tuner-3/DVB-S), request PAT table with CRC check",                                           sectionRequest(__func__, dvbs3, tablePat)) \
    X(TC_DEMUX_SectionDvbs_617,   AUTO,   "[SectionDvbs_617] (Demux-3->Tuner-3/DVB-S), request PAT table without CRC check",                                        sectionRequest(__func__, dvbs3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_621,   AUTO,   "[SectionDvbs_621] (Demux-3->Tuner-3/DVB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbs3)) \
    X(TC_DEMUX_SectionDvbs_623,   AUTO,   "[SectionDvbs_623] (Demux-3->Tuner-3/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs3, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbs_630,   AUTO,   "[SectionDvbs_630] (Demux-3->Tuner-3/DVB-S), request CAT table with CRC check",                                           sectionRequest(__func__, dvbs3, tableCat)) \
    X(TC_DEMUX_SectionDvbs_631,   AUTO,   "[SectionDvbs_631] (Demux-3->Tuner-3/DVB-S), request CAT table without CRC check",                                        sectionRequest(__func__, dvbs3, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_646,   AUTO,   "[SectionDvbs_646] (Demux-3->Tuner-3/DVB-S), request PMT table with CRC check",                                           sectionRequest(__func__, dvbs3, tablePmt)) \
    X(TC_DEMUX_SectionDvbs_647,   AUTO,   "[SectionDvbs_647] (Demux-3->Tuner-3/DVB-S), request PMT table without CRC check",                                        sectionRequest(__func__, dvbs3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_660,   AUTO,   "[SectionDvbs_660] (Demux-3->Tuner-3/DVB-S), request TDT table",                                                          sectionRequest(__func__, dvbs3, tableTdt)) \
    X(TC_DEMUX_SectionDvbs_661,   AUTO,   "[SectionDvbs_661] (Demux-3->Tuner-3/DVB-S), request TDT table without CRC check",                                        sectionRequest(__func__, dvbs3, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_676,   AUTO,   "[SectionDvbs_676] (Demux-3->Tuner-3/DVB-S), request RST table with CRC check",                                           sectionRequest(__func__, dvbs3, tableRst)) \
    X(TC_DEMUX_SectionDvbs_677,   AUTO,   "[SectionDvbs_677] (Demux-3->Tuner-3/DVB-S), request RST table without CRC check",                                        sectionRequest(__func__, dvbs3, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbs_690,   AUTO,   "[SectionDvbs_690] (Demux-3->Tuner-3/DVB-S), request SIT table with CRC check",                                           sectionRequest(__func__, dvbs3, tableSit)) \
    X(TC_DEMUX_SectionDvbs_691,   AUTO,   "[SectionDvbs_691] (Demux-3->Tuner-3/DVB-S), request SIT table without CRC check",                                        sectionRequest(__func__, dvbs3, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_706,   AUTO,   "[SectionDvbs_706] (Demux-3->Tuner-3/DVB-S), request TOT table with CRC check",                                           sectionRequest(__func__, dvbs3, tableTot)) \
    X(TC_DEMUX_SectionDvbs_707,   AUTO,   "[SectionDvbs_707] (Demux-3->Tuner-3/DVB-S), request TOT table without CRC check",                                        sectionRequest(__func__, dvbs3, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbs_720,   AUTO,   "[SectionDvbs_720] (Demux-3->Tuner-3/DVB-S), request NIT table with CRC check",                                           sectionRequest(__func__, dvbs3, tableNit)) \
    X(TC_DEMUX_SectionDvbs_721,   AUTO,   "[SectionDvbs_721] (Demux-3->Tuner-3/DVB-S), request NIT table without CRC check",                                        sectionRequest(__func__, dvbs3, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_736,   AUTO,   "[SectionDvbs_736] (Demux-3->Tuner-3/DVB-S), request EIT table four times",                                               sectionFourTimes(__func__, dvbs3, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbs_737,   AUTO,   "[SectionDvbs_737] (Demux-3->Tuner-3/DVB-S), request EIT present/following table",                                        sectionRequest(__func__, dvbs3, tableEitPf)) \
    X(TC_DEMUX_SectionDvbs_738,   AUTO,   "[SectionDvbs_738] (Demux-3->Tuner-3/DVB-S), request EIT schedule table",                                                 sectionRequest(__func__, dvbs3, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbs_750_1, AUTO,   "[SectionDvbs_750_1] (Demux-3->Tuner-3/DVB-S), request SDT table with CRC check",                                         sectionRequest(__func__, dvbs3, tableSdt)) \
    X(TC_DEMUX_SectionDvbs_750_2, AUTO,   "[SectionDvbs_750_2] (Demux-3->Tuner-3/DVB-S), request SDT table without CRC check",                                      sectionRequest(__func__, dvbs3, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_751_1, AUTO,   "[SectionDvbs_751_1] (Demux-3->Tuner-3/DVB-S), request BAT table with CRC check",                                         sectionRequest(__func__, dvbs3, tableBat)) \
    X(TC_DEMUX_SectionDvbs_751_2, AUTO,   "[SectionDvbs_751_2] (Demux-3->Tuner-3/DVB-S), request BAT table without CRC check",                                      sectionRequest(__func__, dvbs3, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_752_1, AUTO,   "[SectionDvbs_752_1] (Demux-3->Tuner-3/DVB-S), request DIT table with CRC check",                                         sectionRequest(__func__, dvbs3, tableDit)) \
    X(TC_DEMUX_SectionDvbs_752_2, AUTO,   "[SectionDvbs_752_2] (Demux-3->Tuner-3/DVB-S), request DIT table without CRC check",                                      sectionRequest(__func__, dvbs3, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_768,   AUTO,   "[SectionDvbs_768] (Demux-3->Tuner-3/DVB-S), request all tables at the same time",                                        sectionAllTables(__func__, dvbs3, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbs_803,   AUTO,   "[SectionDvbs_803] (Demux-0->Tuner-1/DVB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, dvbs0OnTuner1)) \
    X(TC_DEMUX_SectionDvbs_804,   AUTO,   "[SectionDvbs_804] (Demux-0->Tuner-1/DVB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, dvbs0OnTuner1)) \
    X(TC_DEMUX_SectionDvbs_806,   AUTO,   "[SectionDvbs_806] (Demux-0->Tuner-1/DVB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, dvbs0OnTuner1, QLX_FALSE)) \
    X(TC_DEMUX_SectionDvbs_807,   AUTO,   "[SectionDvbs_807] (Demux-0->Tuner-1/DVB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, dvbs0OnTuner1, QLX_TRUE)) \
    X(TC_DEMUX_SectionDvbs_816,   AUTO,   "[SectionDvbs_816] (Demux-0->Tuner-1/DVB-S), request PAT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tablePat)) \
    X(TC_DEMUX_SectionDvbs_817,   AUTO,   "[SectionDvbs_817] (Demux-0->Tuner-1/DVB-S), request PAT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_821,   AUTO,   "[SectionDvbs_821] (Demux-0->Tuner-1/DVB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, dvbs0OnTuner1)) \
    X(TC_DEMUX_SectionDvbs_823,   AUTO,   "[SectionDvbs_823] (Demux-0->Tuner-1/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs0OnTuner1, tablePatThreads)) \
    X(TC_DEMUX_SectionDvbs_824,   AUTO,   "[SectionDvbs_824] (Demux-0->Tuner-1/DVB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, dvbs0OnTuner1, tableEitPfThreads)) \
    X(TC_DEMUX_SectionDvbs_830,   AUTO,   "[SectionDvbs_830] (Demux-0->Tuner-1/DVB-S), request CAT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tableCat)) \
    X(TC_DEMUX_SectionDvbs_831,   AUTO,   "[SectionDvbs_831] (Demux-0->Tuner-1/DVB-S), request CAT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableCatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_846,   AUTO,   "[SectionDvbs_846] (Demux-0->Tuner-1/DVB-S), request PMT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tablePmt)) \
    X(TC_DEMUX_SectionDvbs_847,   AUTO,   "[SectionDvbs_847] (Demux-0->Tuner-1/DVB-S), request PMT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_860,   AUTO,   "[SectionDvbs_860] (Demux-0->Tuner-1/DVB-S), request TDT table",                                                          sectionRequest(__func__, dvbs0OnTuner1, tableTdt)) \
    X(TC_DEMUX_SectionDvbs_861,   AUTO,   "[SectionDvbs_861] (Demux-0->Tuner-1/DVB-S), request TDT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_876,   AUTO,   "[SectionDvbs_876] (Demux-0->Tuner-1/DVB-S), request RST table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tableRst)) \
    X(TC_DEMUX_SectionDvbs_877,   AUTO,   "[SectionDvbs_877] (Demux-0->Tuner-1/DVB-S), request RST table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionDvbs_890,   AUTO,   "[SectionDvbs_890] (Demux-0->Tuner-1/DVB-S), request SIT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tableSit)) \
    X(TC_DEMUX_SectionDvbs_891,   AUTO,   "[SectionDvbs_891] (Demux-0->Tuner-1/DVB-S), request SIT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableSitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_906,   AUTO,   "[SectionDvbs_906] (Demux-0->Tuner-1/DVB-S), request TOT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tableTot)) \
    X(TC_DEMUX_SectionDvbs_907,   AUTO,   "[SectionDvbs_907] (Demux-0->Tuner-1/DVB-S), request TOT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableTotNoCrc)) \
    X(TC_DEMUX_SectionDvbs_920,   AUTO,   "[SectionDvbs_920] (Demux-0->Tuner-1/DVB-S), request NIT table with CRC check",                                           sectionRequest(__func__, dvbs0OnTuner1, tableNit)) \
    X(TC_DEMUX_SectionDvbs_921,   AUTO,   "[SectionDvbs_921] (Demux-0->Tuner-1/DVB-S), request NIT table without CRC check",                                        sectionRequest(__func__, dvbs0OnTuner1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_936,   AUTO,   "[SectionDvbs_936] (Demux-0->Tuner-1/DVB-S), request EIT table four times",                                               sectionFourTimes(__func__, dvbs0OnTuner1, tableAtscEit, false)) \
    X(TC_DEMUX_SectionDvbs_937,   AUTO,   "[SectionDvbs_937] (Demux-0->Tuner-1/DVB-S), request EIT present/following table",                                        sectionRequest(__func__, dvbs0OnTuner1, tableEitPf)) \
    X(TC_DEMUX_SectionDvbs_938,   AUTO,   "[SectionDvbs_938] (Demux-0->Tuner-1/DVB-S), request EIT schedule table",                                                 sectionRequest(__func__, dvbs0OnTuner1, tableEitSchedule)) \
    X(TC_DEMUX_SectionDvbs_950_1, AUTO,   "[SectionDvbs_950_1] (Demux-0->Tuner-1/DVB-S), request SDT table with CRC check",                                         sectionRequest(__func__, dvbs0OnTuner1, tableSdt)) \
    X(TC_DEMUX_SectionDvbs_950_2, AUTO,   "[SectionDvbs_950_2] (Demux-0->Tuner-1/DVB-S), request SDT table without CRC check",                                      sectionRequest(__func__, dvbs0OnTuner1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionDvbs_951_1, AUTO,   "[SectionDvbs_951_1] (Demux-0->Tuner-1/DVB-S), request BAT table with CRC check",                                         sectionRequest(__func__, dvbs0OnTuner1, tableBat)) \
    X(TC_DEMUX_SectionDvbs_951_2, AUTO,   "[SectionDvbs_951_2] (Demux-0->Tuner-1/DVB-S), request BAT table without CRC check",                                      sectionRequest(__func__, dvbs0OnTuner1, tableBatNoCrc)) \
    X(TC_DEMUX_SectionDvbs_952_1, AUTO,   "[SectionDvbs_952_1] (Demux-0->Tuner-1/DVB-S), request DIT table with CRC check",                                         sectionRequest(__func__, dvbs0OnTuner1, tableDit)) \
    X(TC_DEMUX_SectionDvbs_952_2, AUTO,   "[SectionDvbs_952_2] (Demux-0->Tuner-1/DVB-S), request DIT table without CRC check",                                      sectionRequest(__func__, dvbs0OnTuner1, tableDitNoCrc)) \
    X(TC_DEMUX_SectionDvbs_968,   AUTO,   "[SectionDvbs_968] (Demux-0->Tuner-1/DVB-S), request all tables at the same time",                                        sectionAllTables(__func__, dvbs0OnTuner1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionDvbs_1000,  AUTO,   "[SectionDvbs_1000] (Demux-0->Tuner-0/DVB-S), request PAT table, common interface in PASS_THROUGH mode",                  sectionThroughSlot(__func__, dvbs0, QLX_CI_TS_MODE_PASS_THROUGH)) \
    X(TC_DEMUX_SectionDvbs_1001,  AUTO,   "[SectionDvbs_1001] (Demux-0->Tuner-0/DVB-S), request PAT table, common interface in BYPASS mode",                        sectionThroughSlot(__func__, dvbs0, QLX_CI_TS_MODE_BYPASS))

DVBC_FAMILY(TC_VARIANT_FUNCTION)
DVBT_FAMILY(TC_VARIANT_FUNCTION)
DVBS_FAMILY(TC_VARIANT_FUNCTION)

static constexpr TcCase DemuxModuleCasesDvb[] = {
    DVBC_FAMILY(TC_VARIANT_ROW)
    DVBT_FAMILY(TC_VARIANT_ROW)
    DVBS_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(DemuxModuleCasesDvb) == 433, "cases of the module that are built");
static_assert(tcAutoCount(DemuxModuleCasesDvb) == 433, "automatic ones");

const TcModule DemuxModuleDvb = {
    Demux_TestSetup, Demux_TestTeardown,          nullptr,
    nullptr,         DemuxModuleCasesDvb,         tcCaseCount(DemuxModuleCasesDvb),
    "Demux-DVB",     "Test cases of Demux (DVB)", nullptr,
};
