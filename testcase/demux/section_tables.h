/* The tables that the section filter cases ask for. */
#ifndef TESTCASE_DEMUX_SECTION_TABLES_H
#define TESTCASE_DEMUX_SECTION_TABLES_H

#include "testcase/demux/section_bodies.h"

// clang-format off

//                       name                    PID              id    ms     CRC                       compared          cont. file

// ISO/IEC 13818-1
constexpr SectionRequest tablePat             = {0,               0x00, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tablePatContinuous   = {0,               0x00, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     1,    0};
constexpr SectionRequest tablePatNoCrc        = {0,               0x00, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tablePatThreads      = {0,               0x00, 1000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tablePmt             = {SECTION_PID_PMT, 0x02, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tablePmtNoCrc        = {SECTION_PID_PMT, 0x02, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};

// EN 300 468
constexpr SectionRequest tableCat             = {1,               0x01, 1000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableCatNoCrc        = {1,               0x01, 1000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableTdtId           = {20,              0x70, 22000, QLX_SECTION_CRC_AUTO,     COMPARE_TABLE_ID, 0,    0};
constexpr SectionRequest tableTdtIdNoCrc      = {20,              0x70, 22000, QLX_SECTION_CRC_NO_CHECK, COMPARE_TABLE_ID, 0,    0};
constexpr SectionRequest tableTdtAuto         = {20,              0x70, 22000, QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     0,    0};
constexpr SectionRequest tableTdt             = {20,              0x70, 22000, QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableTdtNoCrc        = {20,              0x70, 22000, QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableRst             = {19,              0x71, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableRstNoCrc        = {19,              0x71, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableSit             = {31,              0x7f, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableSitNoCrc        = {31,              0x7f, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableTotId           = {20,              0x73, 22000, QLX_SECTION_CRC_CHECK,    COMPARE_TABLE_ID, 0,    0};
constexpr SectionRequest tableTotIdNoCrc      = {20,              0x73, 22000, QLX_SECTION_CRC_NO_CHECK, COMPARE_TABLE_ID, 0,    0};
constexpr SectionRequest tableTot             = {20,              0x73, 22000, QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableTotNoCrc        = {20,              0x73, 22000, QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableNit             = {16,              0x40, 5000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableNitLong         = {16,              0x40, 10000, QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableNitNoCrc        = {16,              0x40, 5000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableSdt             = {17,              0x42, 5000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableSdtNoCrc        = {17,              0x42, 5000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableBat             = {17,              0x4a, 5000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableBatNoCrc        = {17,              0x4a, 5000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableDit             = {30,              0x7e, 5000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableDitNoCrc        = {30,              0x7e, 5000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEitPfThreads    = {18,              0x4e, 10000, QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEitPfId         = {SECTION_PID_EIT, 0x4e, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_TABLE_ID, 0,    0};
constexpr SectionRequest tableEitPf           = {SECTION_PID_EIT, 0x4e, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEitSchedule     = {SECTION_PID_EIT, 0x50, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    1};
constexpr SectionRequest tableEitActual       = {SECTION_PID_EIT, 0x50, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_TABLE_ID, 0,    1};
constexpr SectionRequest tableEitOther        = {SECTION_PID_EIT, 0x60, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_TABLE_ID, 0,    1};

// ATSC A/65
constexpr SectionRequest tableMgt             = {8187,            0xc7, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableMgtShort        = {8187,            0xc7, 1000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableMgtNoCrc        = {8187,            0xc7, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableMgtContinuous   = {8187,            0xc7, 2000,  QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     1,    0};
constexpr SectionRequest tablePatOnlyOnce     = {0,               0x00, 10000, QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableCvctMasked      = {8187,            0xc9, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     1,    0};
constexpr SectionRequest tableCvctMaskedNoCrc = {8187,            0xc9, 2000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     1,    0};
constexpr SectionRequest tableTvctMasked      = {8187,            0xc8, 2000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     1,    0};
constexpr SectionRequest tableTvctContinuous  = {8187,            0xc8, 10000, QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     1,    0};
constexpr SectionRequest tableTvct            = {8187,            0xc8, 3000,  QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     0,    0};
constexpr SectionRequest tableCvct            = {8187,            0xc9, 3000,  QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     0,    0};
constexpr SectionRequest tableStt             = {8187,            0xcd, 4000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableSttNoCrc        = {8187,            0xcd, 4000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableAtscEit         = {SECTION_PID_EIT, 0xcb, 3000,  QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     0,    0};
constexpr SectionRequest tableAtscEitLong     = {SECTION_PID_EIT, 0xcb, 10000, QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEtt             = {SECTION_PID_ETT, 0xcc, 3000,  QLX_SECTION_CRC_CHECK,    COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEttNoCrc        = {SECTION_PID_ETT, 0xcc, 3000,  QLX_SECTION_CRC_NO_CHECK, COMPARE_DATA,     0,    0};
constexpr SectionRequest tableEttContinuous   = {SECTION_PID_ETT, 0xcc, 3000,  QLX_SECTION_CRC_AUTO,     COMPARE_DATA,     1,    0};

// Several filters at the same time.
constexpr SectionRequest tablesMgtContinuous[] = {tableMgtContinuous, tableMgtContinuous, tableMgtContinuous};
constexpr SectionRequest tablesMgtOneShot[]    = {tableMgt, tableMgt, tableMgt};
constexpr SectionRequest tablesEitEtt[]        = {tableAtscEit, tableEttContinuous};
constexpr SectionRequest tablesMgtPat[]        = {tableMgt, tablePat};
constexpr SectionRequest tablesCable[]         = {tableMgt, tableStt, tableCvct};
constexpr SectionRequest tablesTerrestrial[]   = {tableMgt, tableStt, tableTvct};

/** All tables of the DVB and ISDB side: feature, and what is asked for. */
constexpr SectionTable allTablesDvb[] = {
    {FEATURE_PAT_TABLE, {0,               0x00, 3000,  QLX_SECTION_CRC_CHECK, COMPARE_DATA, 0, 0}},
    {FEATURE_PMT_TABLE, {SECTION_PID_PMT, 0x02, 3000,  QLX_SECTION_CRC_CHECK, COMPARE_DATA, 0, 0}},
    {FEATURE_TDT_TABLE, {20,              0x70, 22000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_RST_TABLE, {19,              0x71, 3000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_SIT_TABLE, {31,              0x7f, 3000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_CAT_TABLE, {1,               0x01, 3000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_NIT_TABLE, {16,              0x40, 5000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_DIT_TABLE, {30,              0x7e, 3000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_EIT_TABLE, {SECTION_PID_EIT, 0x4e, 3000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_TOT_TABLE, {20,              0x73, 22000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_BAT_TABLE, {17,              0x4a, 5000,  QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
};

/** All tables of the ATSC side. */
constexpr SectionTable allTablesAtsc[] = {
    {FEATURE_PAT_TABLE,  {0,               0x00, 3000, QLX_SECTION_CRC_CHECK, COMPARE_DATA, 0, 0}},
    {FEATURE_PMT_TABLE,  {SECTION_PID_PMT, 0x02, 3000, QLX_SECTION_CRC_CHECK, COMPARE_DATA, 0, 0}},
    {FEATURE_MGT_TABLE,  {8187,            0xc7, 3000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_TVCT_TABLE, {8187,            0xc8, 3000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_CVCT_TABLE, {8187,            0xc9, 3000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_RRT_TABLE,  {8187,            0xca, 5000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_ETT_TABLE,  {SECTION_PID_ETT, 0xcc, 3000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_STT_TABLE,  {8187,            0xcd, 4000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
    {FEATURE_EIT_TABLE,  {SECTION_PID_EIT, 0xcb, 3000, QLX_SECTION_CRC_AUTO,  COMPARE_DATA, 0, 0}},
};
// clang-format on

#endif
