// Demux-ISDB: section filters on ISDB-T and ISDB-S. The number's hundreds tell the pair: 0 and 1
// Demux-0 on Tuner-0, 2 and 3 Demux-1 on Tuner-1, 4 and 5 Demux-2 on Tuner-2, 6 and 7 Demux-3 on
// Tuner-3.
#include <iterator>

#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/section_bodies.h"
#include "testcase/demux/section_tables.h"
#include "testcase/modules.h"

static const SectionBench isdbt0 = {&sectionIsdbT, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench isdbt1 = {&sectionIsdbT, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench isdbt2 = {&sectionIsdbT, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench isdbt3 = {&sectionIsdbT, QLX_DEMUX_3, QLX_TUNER_3};
static const SectionBench isdbs0 = {&sectionIsdbS, QLX_DEMUX_0, QLX_TUNER_0};
static const SectionBench isdbs1 = {&sectionIsdbS, QLX_DEMUX_1, QLX_TUNER_1};
static const SectionBench isdbs2 = {&sectionIsdbS, QLX_DEMUX_2, QLX_TUNER_2};
static const SectionBench isdbs3 = {&sectionIsdbS, QLX_DEMUX_3, QLX_TUNER_3};

// clang-format off

//    name                         flag    description                                                                                                                 body
#define ISDBT_FAMILY(X) \
    X(TC_DEMUX_SectionIsdbt_003,   AUTO,   "[SectionIsdbt_003] (Demux-0->Tuner-0/ISDB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbt0)) \
    X(TC_DEMUX_SectionIsdbt_004,   AUTO,   "[SectionIsdbt_004] (Demux-0->Tuner-0/ISDB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbt0)) \
    X(TC_DEMUX_SectionIsdbt_006,   AUTO,   "[SectionIsdbt_006] (Demux-0->Tuner-0/ISDB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbt0, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbt_007,   AUTO,   "[SectionIsdbt_007] (Demux-0->Tuner-0/ISDB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbt0, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbt_016,   AUTO,   "[SectionIsdbt_016] (Demux-0->Tuner-0/ISDB-T), request PAT table with CRC check",                                           sectionRequest(__func__, isdbt0, tablePat)) \
    X(TC_DEMUX_SectionIsdbt_017,   AUTO,   "[SectionIsdbt_017] (Demux-0->Tuner-0/ISDB-T), request PAT table without CRC check",                                        sectionRequest(__func__, isdbt0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_021,   AUTO,   "[SectionIsdbt_021] (Demux-0->Tuner-0/ISDB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbt0)) \
    X(TC_DEMUX_SectionIsdbt_023,   AUTO,   "[SectionIsdbt_023] (Demux-0->Tuner-0/ISDB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbt0, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbt_046,   AUTO,   "[SectionIsdbt_046] (Demux-0->Tuner-0/ISDB-T), request PMT table with CRC check",                                           sectionRequest(__func__, isdbt0, tablePmt)) \
    X(TC_DEMUX_SectionIsdbt_047,   AUTO,   "[SectionIsdbt_047] (Demux-0->Tuner-0/ISDB-T), request PMT table without CRC check",                                        sectionRequest(__func__, isdbt0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_060,   AUTO,   "[SectionIsdbt_060] (Demux-0->Tuner-0/ISDB-T), request TDT table",                                                          sectionRequest(__func__, isdbt0, tableTdtAuto)) \
    X(TC_DEMUX_SectionIsdbt_061,   AUTO,   "[SectionIsdbt_061] (Demux-0->Tuner-0/ISDB-T), request TDT table without CRC check",                                        sectionRequest(__func__, isdbt0, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_076,   AUTO,   "[SectionIsdbt_076] (Demux-0->Tuner-0/ISDB-T), request RST table with CRC check",                                           sectionRequest(__func__, isdbt0, tableRst)) \
    X(TC_DEMUX_SectionIsdbt_077,   AUTO,   "[SectionIsdbt_077] (Demux-0->Tuner-0/ISDB-T), request RST table without CRC check",                                        sectionRequest(__func__, isdbt0, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_120,   AUTO,   "[SectionIsdbt_120] (Demux-0->Tuner-0/ISDB-T), request NIT table with CRC check",                                           sectionRequest(__func__, isdbt0, tableNit)) \
    X(TC_DEMUX_SectionIsdbt_121,   AUTO,   "[SectionIsdbt_121] (Demux-0->Tuner-0/ISDB-T), request NIT table without CRC check",                                        sectionRequest(__func__, isdbt0, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_150_1, AUTO,   "[SectionIsdbt_150_1] (Demux-0->Tuner-0/ISDB-T), request SDT table with CRC check",                                         sectionRequest(__func__, isdbt0, tableSdt)) \
    X(TC_DEMUX_SectionIsdbt_150_2, AUTO,   "[SectionIsdbt_150_2] (Demux-0->Tuner-0/ISDB-T), request SDT table without CRC check",                                      sectionRequest(__func__, isdbt0, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_168,   AUTO,   "[SectionIsdbt_168] (Demux-0->Tuner-0/ISDB-T), request all tables at the same time",                                        sectionAllTables(__func__, isdbt0, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbt_203,   AUTO,   "[SectionIsdbt_203] (Demux-1->Tuner-1/ISDB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbt1)) \
    X(TC_DEMUX_SectionIsdbt_204,   AUTO,   "[SectionIsdbt_204] (Demux-1->Tuner-1/ISDB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbt1)) \
    X(TC_DEMUX_SectionIsdbt_206,   AUTO,   "[SectionIsdbt_206] (Demux-1->Tuner-1/ISDB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbt1, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbt_207,   AUTO,   "[SectionIsdbt_207] (Demux-1->Tuner-1/ISDB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbt1, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbt_216,   AUTO,   "[SectionIsdbt_216] (Demux-1->Tuner-1/ISDB-T), request PAT table with CRC check",                                           sectionRequest(__func__, isdbt1, tablePat)) \
    X(TC_DEMUX_SectionIsdbt_217,   AUTO,   "[SectionIsdbt_217] (Demux-1->Tuner-1/ISDB-T), request PAT table without CRC check",                                        sectionRequest(__func__, isdbt1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_221,   AUTO,   "[SectionIsdbt_221] (Demux-1->Tuner-1/ISDB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbt1)) \
    X(TC_DEMUX_SectionIsdbt_223,   AUTO,   "[SectionIsdbt_223] (Demux-1->Tuner-1/ISDB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbt1, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbt_246,   AUTO,   "[SectionIsdbt_246] (Demux-1->Tuner-1/ISDB-T), request PMT table with CRC check",                                           sectionRequest(__func__, isdbt1, tablePmt)) \
    X(TC_DEMUX_SectionIsdbt_247,   AUTO,   "[SectionIsdbt_247] (Demux-1->Tuner-1/ISDB-T), request PMT table without CRC check",                                        sectionRequest(__func__, isdbt1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_260,   AUTO,   "[SectionIsdbt_260] (Demux-1->Tuner-1/ISDB-T), request TDT table",                                                          sectionRequest(__func__, isdbt1, tableTdt)) \
    X(TC_DEMUX_SectionIsdbt_261,   AUTO,   "[SectionIsdbt_261] (Demux-1->Tuner-1/ISDB-T), request TDT table without CRC check",                                        sectionRequest(__func__, isdbt1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_276,   AUTO,   "[SectionIsdbt_276] (Demux-1->Tuner-1/ISDB-T), request RST table with CRC check",                                           sectionRequest(__func__, isdbt1, tableRst)) \
    X(TC_DEMUX_SectionIsdbt_277,   AUTO,   "[SectionIsdbt_277] (Demux-1->Tuner-1/ISDB-T), request RST table without CRC check",                                        sectionRequest(__func__, isdbt1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_320,   AUTO,   "[SectionIsdbt_320] (Demux-1->Tuner-1/ISDB-T), request NIT table with CRC check",                                           sectionRequest(__func__, isdbt1, tableNit)) \
    X(TC_DEMUX_SectionIsdbt_321,   AUTO,   "[SectionIsdbt_321] (Demux-1->Tuner-1/ISDB-T), request NIT table without CRC check",                                        sectionRequest(__func__, isdbt1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_350_1, AUTO,   "[SectionIsdbt_350_1] (Demux-1->Tuner-1/ISDB-T), request SDT table with CRC check",                                         sectionRequest(__func__, isdbt1, tableSdt)) \
    X(TC_DEMUX_SectionIsdbt_350_2, AUTO,   "[SectionIsdbt_350_2] (Demux-1->Tuner-1/ISDB-T), request SDT table without CRC check",                                      sectionRequest(__func__, isdbt1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_368,   AUTO,   "[SectionIsdbt_368] (Demux-1->Tuner-1/ISDB-T), request all tables at the same time",                                        sectionAllTables(__func__, isdbt1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbt_403,   AUTO,   "[SectionIsdbt_403] (Demux-2->Tuner-2/ISDB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbt2)) \
    X(TC_DEMUX_SectionIsdbt_404,   AUTO,   "[SectionIsdbt_404] (Demux-2->Tuner-2/ISDB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbt2)) \
    X(TC_DEMUX_SectionIsdbt_406,   AUTO,   "[SectionIsdbt_406] (Demux-2->Tuner-2/ISDB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbt2, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbt_407,   AUTO,   "[SectionIsdbt_407] (Demux-2->Tuner-2/ISDB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbt2, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbt_416,   AUTO,   "[SectionIsdbt_416] (Demux-2->Tuner-2/ISDB-T), request PAT table with CRC check",                                           sectionRequest(__func__, isdbt2, tablePat)) \
    X(TC_DEMUX_SectionIsdbt_417,   AUTO,   "[SectionIsdbt_417] (Demux-2->Tuner-2/ISDB-T), request PAT table without CRC check",                                        sectionRequest(__func__, isdbt2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_421,   AUTO,   "[SectionIsdbt_421] (Demux-2->Tuner-2/ISDB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbt2)) \
    X(TC_DEMUX_SectionIsdbt_423,   AUTO,   "[SectionIsdbt_423] (Demux-2->Tuner-2/ISDB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbt2, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbt_446,   AUTO,   "[SectionIsdbt_446] (Demux-2->Tuner-2/ISDB-T), request PMT table with CRC check",                                           sectionRequest(__func__, isdbt2, tablePmt)) \
    X(TC_DEMUX_SectionIsdbt_447,   AUTO,   "[SectionIsdbt_447] (Demux-2->Tuner-2/ISDB-T), request PMT table without CRC check",                                        sectionRequest(__func__, isdbt2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_460,   AUTO,   "[SectionIsdbt_460] (Demux-2->Tuner-2/ISDB-T), request TDT table",                                                          sectionRequest(__func__, isdbt2, tableTdt)) \
    X(TC_DEMUX_SectionIsdbt_461,   AUTO,   "[SectionIsdbt_461] (Demux-2->Tuner-2/ISDB-T), request TDT table without CRC check",                                        sectionRequest(__func__, isdbt2, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_476,   AUTO,   "[SectionIsdbt_476] (Demux-2->Tuner-2/ISDB-T), request RST table with CRC check",                                           sectionRequest(__func__, isdbt2, tableRst)) \
    X(TC_DEMUX_SectionIsdbt_477,   AUTO,   "[SectionIsdbt_477] (Demux-2->Tuner-2/ISDB-T), request RST table without CRC check",                                        sectionRequest(__func__, isdbt2, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_520,   AUTO,   "[SectionIsdbt_520] (Demux-2->Tuner-2/ISDB-T), request NIT table with CRC check",                                           sectionRequest(__func__, isdbt2, tableNit)) \
    X(TC_DEMUX_SectionIsdbt_521,   AUTO,   "[SectionIsdbt_521] (Demux-2->Tuner-2/ISDB-T), request NIT table without CRC check",                                        sectionRequest(__func__, isdbt2, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_550_1, AUTO,   "[SectionIsdbt_550_1] (Demux-2->Tuner-2/ISDB-T), request SDT table with CRC check",                                         sectionRequest(__func__, isdbt2, tableSdt)) \
    X(TC_DEMUX_SectionIsdbt_550_2, AUTO,   "[SectionIsdbt_550_2] (Demux-2->Tuner-2/ISDB-T), request SDT table without CRC check",                                      sectionRequest(__func__, isdbt2, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_568,   AUTO,   "[SectionIsdbt_568] (Demux-2->Tuner-2/ISDB-T), request all tables at the same time",                                        sectionAllTables(__func__, isdbt2, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbt_603,   AUTO,   "[SectionIsdbt_603] (Demux-3->Tuner-3/ISDB-T), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbt3)) \
    X(TC_DEMUX_SectionIsdbt_604,   AUTO,   "[SectionIsdbt_604] (Demux-3->Tuner-3/ISDB-T), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbt3)) \
    X(TC_DEMUX_SectionIsdbt_606,   AUTO,   "[SectionIsdbt_606] (Demux-3->Tuner-3/ISDB-T), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbt3, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbt_607,   AUTO,   "[SectionIsdbt_607] (Demux-3->Tuner-3/ISDB-T), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbt3, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbt_616,   AUTO,   "[SectionIsdbt_616] (Demux-3->Tuner-3/ISDB-T), request PAT table with CRC check",                                           sectionRequest(__func__, isdbt3, tablePat)) \
    X(TC_DEMUX_SectionIsdbt_617,   AUTO,   "[SectionIsdbt_617] (Demux-3->Tuner-3/ISDB-T), request PAT table without CRC check",                                        sectionRequest(__func__, isdbt3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_621,   AUTO,   "[SectionIsdbt_621] (Demux-3->Tuner-3/ISDB-T), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbt3)) \
    X(TC_DEMUX_SectionIsdbt_623,   AUTO,   "[SectionIsdbt_623] (Demux-3->Tuner-3/ISDB-T), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbt3, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbt_646,   AUTO,   "[SectionIsdbt_646] (Demux-3->Tuner-3/ISDB-T), request PMT table with CRC check",                                           sectionRequest(__func__, isdbt3, tablePmt)) \
    X(TC_DEMUX_SectionIsdbt_647,   AUTO,   "[SectionIsdbt_647] (Demux-3->Tuner-3/ISDB-T), request PMT table without CRC check",                                        sectionRequest(__func__, isdbt3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_660,   AUTO,   "[SectionIsdbt_660] (Demux-3->Tuner-3/ISDB-T), request TDT table",                                                          sectionRequest(__func__, isdbt3, tableTdt)) \
    X(TC_DEMUX_SectionIsdbt_661,   AUTO,   "[SectionIsdbt_661] (Demux-3->Tuner-3/ISDB-T), request TDT table without CRC check",                                        sectionRequest(__func__, isdbt3, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_676,   AUTO,   "[SectionIsdbt_676] (Demux-3->Tuner-3/ISDB-T), request RST table with CRC check",                                           sectionRequest(__func__, isdbt3, tableRst)) \
    X(TC_DEMUX_SectionIsdbt_677,   AUTO,   "[SectionIsdbt_677] (Demux-3->Tuner-3/ISDB-T), request RST table without CRC check",                                        sectionRequest(__func__, isdbt3, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_720,   AUTO,   "[SectionIsdbt_720] (Demux-3->Tuner-3/ISDB-T), request NIT table with CRC check",                                           sectionRequest(__func__, isdbt3, tableNit)) \
    X(TC_DEMUX_SectionIsdbt_721,   AUTO,   "[SectionIsdbt_721] (Demux-3->Tuner-3/ISDB-T), request NIT table without CRC check",                                        sectionRequest(__func__, isdbt3, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_750_1, AUTO,   "[SectionIsdbt_750_1] (Demux-3->Tuner-3/ISDB-T), request SDT table with CRC check",                                         sectionRequest(__func__, isdbt3, tableSdt)) \
    X(TC_DEMUX_SectionIsdbt_750_2, AUTO,   "[SectionIsdbt_750_2] (Demux-3->Tuner-3/ISDB-T), request SDT table without CRC check",                                      sectionRequest(__func__, isdbt3, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbt_768,   AUTO,   "[SectionIsdbt_768] (Demux-3->Tuner-3/ISDB-T), request all tables at the same time",                                        sectionAllTables(__func__, isdbt3, allTablesDvb, std::size(allTablesDvb)))

//    name                         flag    description                                                                                                                 body
#define ISDBS_FAMILY(X) \
    X(TC_DEMUX_SectionIsdbs_003,   AUTO,   "[SectionIsdbs_003] (Demux-0->Tuner-0/ISDB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbs0)) \
    X(TC_DEMUX_SectionIsdbs_004,   AUTO,   "[SectionIsdbs_004] (Demux-0->Tuner-0/ISDB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbs0)) \
    X(TC_DEMUX_SectionIsdbs_006,   AUTO,   "[SectionIsdbs_006] (Demux-0->Tuner-0/ISDB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbs0, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbs_007,   AUTO,   "[SectionIsdbs_007] (Demux-0->Tuner-0/ISDB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbs0, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbs_016,   AUTO,   "[SectionIsdbs_016] (Demux-0->Tuner-0/ISDB-S), request PAT table with CRC check",                                           sectionRequest(__func__, isdbs0, tablePat)) \
    X(TC_DEMUX_SectionIsdbs_017,   AUTO,   "[SectionIsdbs_017] (Demux-0->Tuner-0/ISDB-S), request PAT table without CRC check",                                        sectionRequest(__func__, isdbs0, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_021,   AUTO,   "[SectionIsdbs_021] (Demux-0->Tuner-0/ISDB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbs0)) \
    X(TC_DEMUX_SectionIsdbs_023,   AUTO,   "[SectionIsdbs_023] (Demux-0->Tuner-0/ISDB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbs0, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbs_046,   AUTO,   "[SectionIsdbs_046] (Demux-0->Tuner-0/ISDB-S), request PMT table with CRC check",                                           sectionRequest(__func__, isdbs0, tablePmt)) \
    X(TC_DEMUX_SectionIsdbs_047,   AUTO,   "[SectionIsdbs_047] (Demux-0->Tuner-0/ISDB-S), request PMT table without CRC check",                                        sectionRequest(__func__, isdbs0, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_060,   AUTO,   "[SectionIsdbs_060] (Demux-0->Tuner-0/ISDB-S), request TDT table",                                                          sectionRequest(__func__, isdbs0, tableTdtAuto)) \
    X(TC_DEMUX_SectionIsdbs_061,   AUTO,   "[SectionIsdbs_061] (Demux-0->Tuner-0/ISDB-S), request TDT table without CRC check",                                        sectionRequest(__func__, isdbs0, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_076,   AUTO,   "[SectionIsdbs_076] (Demux-0->Tuner-0/ISDB-S), request RST table with CRC check",                                           sectionRequest(__func__, isdbs0, tableRst)) \
    X(TC_DEMUX_SectionIsdbs_077,   AUTO,   "[SectionIsdbs_077] (Demux-0->Tuner-0/ISDB-S), request RST table without CRC check",                                        sectionRequest(__func__, isdbs0, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_120,   AUTO,   "[SectionIsdbs_120] (Demux-0->Tuner-0/ISDB-S), request NIT table with CRC check",                                           sectionRequest(__func__, isdbs0, tableNit)) \
    X(TC_DEMUX_SectionIsdbs_121,   AUTO,   "[SectionIsdbs_121] (Demux-0->Tuner-0/ISDB-S), request NIT table without CRC check",                                        sectionRequest(__func__, isdbs0, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_150_1, AUTO,   "[SectionIsdbs_150_1] (Demux-0->Tuner-0/ISDB-S), request SDT table with CRC check",                                         sectionRequest(__func__, isdbs0, tableSdt)) \
    X(TC_DEMUX_SectionIsdbs_150_2, AUTO,   "[SectionIsdbs_150_2] (Demux-0->Tuner-0/ISDB-S), request SDT table without CRC check",                                      sectionRequest(__func__, isdbs0, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_168,   AUTO,   "[SectionIsdbs_168] (Demux-0->Tuner-0/ISDB-S), request all tables at the same time",                                        sectionAllTables(__func__, isdbs0, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbs_169,   MANUAL, "[SectionIsdbs_169] (Demux-0->Tuner-0/ISDB-S), request a table that the operator names, continuously",                      sectionTyped(__func__, isdbs0)) \
    X(TC_DEMUX_SectionIsdbs_203,   AUTO,   "[SectionIsdbs_203] (Demux-1->Tuner-1/ISDB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbs1)) \
    X(TC_DEMUX_SectionIsdbs_204,   AUTO,   "[SectionIsdbs_204] (Demux-1->Tuner-1/ISDB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbs1)) \
    X(TC_DEMUX_SectionIsdbs_206,   AUTO,   "[SectionIsdbs_206] (Demux-1->Tuner-1/ISDB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbs1, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbs_207,   AUTO,   "[SectionIsdbs_207] (Demux-1->Tuner-1/ISDB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbs1, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbs_216,   AUTO,   "[SectionIsdbs_216] (Demux-1->Tuner-1/ISDB-S), request PAT table with CRC check",                                           sectionRequest(__func__, isdbs1, tablePat)) \
    X(TC_DEMUX_SectionIsdbs_217,   AUTO,   "[SectionIsdbs_217] (Demux-1->Tuner-1/ISDB-S), request PAT table without CRC check",                                        sectionRequest(__func__, isdbs1, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_221,   AUTO,   "[SectionIsdbs_221] (Demux-1->Tuner-1/ISDB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbs1)) \
    X(TC_DEMUX_SectionIsdbs_223,   AUTO,   "[SectionIsdbs_223] (Demux-1->Tuner-1/ISDB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbs1, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbs_246,   AUTO,   "[SectionIsdbs_246] (Demux-1->Tuner-1/ISDB-S), request PMT table with CRC check",                                           sectionRequest(__func__, isdbs1, tablePmt)) \
    X(TC_DEMUX_SectionIsdbs_247,   AUTO,   "[SectionIsdbs_247] (Demux-1->Tuner-1/ISDB-S), request PMT table without CRC check",                                        sectionRequest(__func__, isdbs1, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_260,   AUTO,   "[SectionIsdbs_260] (Demux-1->Tuner-1/ISDB-S), request TDT table",                                                          sectionRequest(__func__, isdbs1, tableTdt)) \
    X(TC_DEMUX_SectionIsdbs_261,   AUTO,   "[SectionIsdbs_261] (Demux-1->Tuner-1/ISDB-S), request TDT table without CRC check",                                        sectionRequest(__func__, isdbs1, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_276,   AUTO,   "[SectionIsdbs_276] (Demux-1->Tuner-1/ISDB-S), request RST table with CRC check",                                           sectionRequest(__func__, isdbs1, tableRst)) \
    X(TC_DEMUX_SectionIsdbs_277,   AUTO,   "[SectionIsdbs_277] (Demux-1->Tuner-1/ISDB-S), request RST table without CRC check",                                        sectionRequest(__func__, isdbs1, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_320,   AUTO,   "[SectionIsdbs_320] (Demux-1->Tuner-1/ISDB-S), request NIT table with CRC check",                                           sectionRequest(__func__, isdbs1, tableNit)) \
    X(TC_DEMUX_SectionIsdbs_321,   AUTO,   "[SectionIsdbs_321] (Demux-1->Tuner-1/ISDB-S), request NIT table without CRC check",                                        sectionRequest(__func__, isdbs1, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_350_1, AUTO,   "[SectionIsdbs_350_1] (Demux-1->Tuner-1/ISDB-S), request SDT table with CRC check",                                         sectionRequest(__func__, isdbs1, tableSdt)) \
    X(TC_DEMUX_SectionIsdbs_350_2, AUTO,   "[SectionIsdbs_350_2] (Demux-1->Tuner-1/ISDB-S), request SDT table without CRC check",                                      sectionRequest(__func__, isdbs1, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_368,   AUTO,   "[SectionIsdbs_368] (Demux-1->Tuner-1/ISDB-S), request all tables at the same time",                                        sectionAllTables(__func__, isdbs1, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbs_403,   AUTO,   "[SectionIsdbs_403] (Demux-2->Tuner-2/ISDB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbs2)) \
    X(TC_DEMUX_SectionIsdbs_404,   AUTO,   "[SectionIsdbs_404] (Demux-2->Tuner-2/ISDB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbs2)) \
    X(TC_DEMUX_SectionIsdbs_406,   AUTO,   "[SectionIsdbs_406] (Demux-2->Tuner-2/ISDB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbs2, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbs_407,   AUTO,   "[SectionIsdbs_407] (Demux-2->Tuner-2/ISDB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbs2, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbs_416,   AUTO,   "[SectionIsdbs_416] (Demux-2->Tuner-2/ISDB-S), request PAT table with CRC check",                                           sectionRequest(__func__, isdbs2, tablePat)) \
    X(TC_DEMUX_SectionIsdbs_417,   AUTO,   "[SectionIsdbs_417] (Demux-2->Tuner-2/ISDB-S), request PAT table without CRC check",                                        sectionRequest(__func__, isdbs2, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_421,   AUTO,   "[SectionIsdbs_421] (Demux-2->Tuner-2/ISDB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbs2)) \
    X(TC_DEMUX_SectionIsdbs_423,   AUTO,   "[SectionIsdbs_423] (Demux-2->Tuner-2/ISDB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbs2, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbs_446,   AUTO,   "[SectionIsdbs_446] (Demux-2->Tuner-2/ISDB-S), request PMT table with CRC check",                                           sectionRequest(__func__, isdbs2, tablePmt)) \
    X(TC_DEMUX_SectionIsdbs_447,   AUTO,   "[SectionIsdbs_447] (Demux-2->Tuner-2/ISDB-S), request PMT table without CRC check",                                        sectionRequest(__func__, isdbs2, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_460,   AUTO,   "[SectionIsdbs_460] (Demux-2->Tuner-2/ISDB-S), request TDT table",                                                          sectionRequest(__func__, isdbs2, tableTdt)) \
    X(TC_DEMUX_SectionIsdbs_461,   AUTO,   "[SectionIsdbs_461] (Demux-2->Tuner-2/ISDB-S), request TDT table without CRC check",                                        sectionRequest(__func__, isdbs2, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_476,   AUTO,   "[SectionIsdbs_476] (Demux-2->Tuner-2/ISDB-S), request RST table with CRC check",                                           sectionRequest(__func__, isdbs2, tableRst)) \
    X(TC_DEMUX_SectionIsdbs_477,   AUTO,   "[SectionIsdbs_477] (Demux-2->Tuner-2/ISDB-S), request RST table without CRC check",                                        sectionRequest(__func__, isdbs2, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_520,   AUTO,   "[SectionIsdbs_520] (Demux-2->Tuner-2/ISDB-S), request NIT table with CRC check",                                           sectionRequest(__func__, isdbs2, tableNit)) \
    X(TC_DEMUX_SectionIsdbs_521,   AUTO,   "[SectionIsdbs_521] (Demux-2->Tuner-2/ISDB-S), request NIT table without CRC check",                                        sectionRequest(__func__, isdbs2, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_550_1, AUTO,   "[SectionIsdbs_550_1] (Demux-2->Tuner-2/ISDB-S), request SDT table with CRC check",                                         sectionRequest(__func__, isdbs2, tableSdt)) \
    X(TC_DEMUX_SectionIsdbs_550_2, AUTO,   "[SectionIsdbs_550_2] (Demux-2->Tuner-2/ISDB-S), request SDT table without CRC check",                                      sectionRequest(__func__, isdbs2, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_568,   AUTO,   "[SectionIsdbs_568] (Demux-2->Tuner-2/ISDB-S), request all tables at the same time",                                        sectionAllTables(__func__, isdbs2, allTablesDvb, std::size(allTablesDvb))) \
    X(TC_DEMUX_SectionIsdbs_603,   AUTO,   "[SectionIsdbs_603] (Demux-3->Tuner-3/ISDB-S), no PAT table should be reported before filter is started",                   sectionBeforeStart(__func__, isdbs3)) \
    X(TC_DEMUX_SectionIsdbs_604,   AUTO,   "[SectionIsdbs_604] (Demux-3->Tuner-3/ISDB-S), no PAT table should be reported after filter is stopped",                    sectionAfterStop(__func__, isdbs3)) \
    X(TC_DEMUX_SectionIsdbs_606,   AUTO,   "[SectionIsdbs_606] (Demux-3->Tuner-3/ISDB-S), request a table that is not on the air, one shot: time-out",                 sectionNoTable(__func__, isdbs3, QLX_FALSE)) \
    X(TC_DEMUX_SectionIsdbs_607,   AUTO,   "[SectionIsdbs_607] (Demux-3->Tuner-3/ISDB-S), request a table that is not on the air, continuous: time-out",               sectionNoTable(__func__, isdbs3, QLX_TRUE)) \
    X(TC_DEMUX_SectionIsdbs_616,   AUTO,   "[SectionIsdbs_616] (Demux-3->Tuner-3/ISDB-S), request PAT table with CRC check",                                           sectionRequest(__func__, isdbs3, tablePat)) \
    X(TC_DEMUX_SectionIsdbs_617,   AUTO,   "[SectionIsdbs_617] (Demux-3->Tuner-3/ISDB-S), request PAT table without CRC check",                                        sectionRequest(__func__, isdbs3, tablePatNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_621,   AUTO,   "[SectionIsdbs_621] (Demux-3->Tuner-3/ISDB-S), request PAT table as many times as there are section filters",               sectionAllFilters(__func__, isdbs3)) \
    X(TC_DEMUX_SectionIsdbs_623,   AUTO,   "[SectionIsdbs_623] (Demux-3->Tuner-3/ISDB-S), request PAT table in two threads, 1st loops 200 times, 2nd loops 300 times", sectionTwoThreads(__func__, isdbs3, tablePatThreads)) \
    X(TC_DEMUX_SectionIsdbs_646,   AUTO,   "[SectionIsdbs_646] (Demux-3->Tuner-3/ISDB-S), request PMT table with CRC check",                                           sectionRequest(__func__, isdbs3, tablePmt)) \
    X(TC_DEMUX_SectionIsdbs_647,   AUTO,   "[SectionIsdbs_647] (Demux-3->Tuner-3/ISDB-S), request PMT table without CRC check",                                        sectionRequest(__func__, isdbs3, tablePmtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_660,   AUTO,   "[SectionIsdbs_660] (Demux-3->Tuner-3/ISDB-S), request TDT table",                                                          sectionRequest(__func__, isdbs3, tableTdt)) \
    X(TC_DEMUX_SectionIsdbs_661,   AUTO,   "[SectionIsdbs_661] (Demux-3->Tuner-3/ISDB-S), request TDT table without CRC check",                                        sectionRequest(__func__, isdbs3, tableTdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_676,   AUTO,   "[SectionIsdbs_676] (Demux-3->Tuner-3/ISDB-S), request RST table with CRC check",                                           sectionRequest(__func__, isdbs3, tableRst)) \
    X(TC_DEMUX_SectionIsdbs_677,   AUTO,   "[SectionIsdbs_677] (Demux-3->Tuner-3/ISDB-S), request RST table without CRC check",                                        sectionRequest(__func__, isdbs3, tableRstNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_720,   AUTO,   "[SectionIsdbs_720] (Demux-3->Tuner-3/ISDB-S), request NIT table with CRC check",                                           sectionRequest(__func__, isdbs3, tableNit)) \
    X(TC_DEMUX_SectionIsdbs_721,   AUTO,   "[SectionIsdbs_721] (Demux-3->Tuner-3/ISDB-S), request NIT table without CRC check",                                        sectionRequest(__func__, isdbs3, tableNitNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_750_1, AUTO,   "[SectionIsdbs_750_1] (Demux-3->Tuner-3/ISDB-S), request SDT table with CRC check",                                         sectionRequest(__func__, isdbs3, tableSdt)) \
    X(TC_DEMUX_SectionIsdbs_750_2, AUTO,   "[SectionIsdbs_750_2] (Demux-3->Tuner-3/ISDB-S), request SDT table without CRC check",                                      sectionRequest(__func__, isdbs3, tableSdtNoCrc)) \
    X(TC_DEMUX_SectionIsdbs_768,   AUTO,   "[SectionIsdbs_768] (Demux-3->Tuner-3/ISDB-S), request all tables at the same time",                                        sectionAllTables(__func__, isdbs3, allTablesDvb, std::size(allTablesDvb)))

ISDBT_FAMILY(TC_VARIANT_FUNCTION)
ISDBS_FAMILY(TC_VARIANT_FUNCTION)

static constexpr TcCase DemuxModuleCasesIsdb[] = {
    ISDBT_FAMILY(TC_VARIANT_ROW)
    ISDBS_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(DemuxModuleCasesIsdb) == 153, "cases of the module that are built");
static_assert(tcAutoCount(DemuxModuleCasesIsdb) == 152, "automatic ones");

const TcModule DemuxModuleIsdb = {
    Demux_TestSetup, Demux_TestTeardown,           nullptr,
    nullptr,         DemuxModuleCasesIsdb,         tcCaseCount(DemuxModuleCasesIsdb),
    "Demux-ISDB",    "Test cases of Demux (ISDB)", nullptr,
};
