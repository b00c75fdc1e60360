// Manual tables: the operator sets a signal generator to the level or carrier to noise ratio of a
// row, and the tuner's strength or quality must fall into the row's range.
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

#include "framework/case/prompt.h"
#include "testcase/tuner/tuner_families.h"

/** What a table's input is, and which member of the information it is compared with. */
enum LevelKind {
    /** RF level in whole dBm, against the signal strength. */
    LEVEL,
    /** RF level in dBm with a fraction, against the signal strength. */
    LEVEL_FLOAT,
    /** Carrier to noise ratio in dB, against the signal quality. */
    QUALITY,
    /** The same under the name that the terrestrial table uses. */
    QUALITY_CNR,
};

/** What the generator plays, and the closed range of the answer in percent. */
struct LevelRow {
    double input;
    int min;
    int max;
};

struct TunerLevelTable {
    LevelKind kind;
    /** The transmission that the operator sets. */
    const char* transmission;
    uint32_t uSymbolRate;
    uint32_t eModulation;
    uint32_t eFecType;
    uint32_t eFecRate;
    const LevelRow* rows;
    int rowCount;
};

template <typename Row, int N>
static constexpr int rowCount(const Row (&)[N]) {
    return N;
}

enum {
    /** The number that ends a table case. */
    END_OF_CASE = 999,
    FREEVIEW_FREQUENCY = 666000,
    FREEVIEW_FREQUENCY_A = 474000,
    FREEVIEW_FREQUENCY_B = 690000,
};

// clang-format off
static const LevelRow rowsDvbsLevel001[] = {
    {-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-62, 97, 100}, {-65, 94, 100},
    {-68, 89, 95}, {-70, 88, 94}, {-72, 87, 93}, {-74, 63, 69}, {-76, 23, 29}, {-78, 15, 21},
    {-79, 15, 21}, {-80, 14, 20}, {-90, 0, 3}, {-95, 0, 3},
};
const TunerLevelTable tunerDvbsLevel001 = {
    LEVEL, "DVBS(QPSK)", 30000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S, QLX_FEC_RATE_3_4,
    rowsDvbsLevel001, rowCount(rowsDvbsLevel001),
};

static const LevelRow rowsDvbsLevel002[] = {
    {-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-64, 94, 100}, {-65, 95, 100},
    {-70, 88, 94}, {-72, 87, 93}, {-75, 63, 69}, {-77, 23, 29}, {-78, 15, 21}, {-79, 14, 20},
    {-80, 14, 20}, {-85, 0, 4}, {-88, 0, 4}, {-90, 0, 4}, {-91, 0, 4}, {-95, 0, 3},
};
const TunerLevelTable tunerDvbsLevel002 = {
    LEVEL, "DVBS(QPSK)", 3000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S, QLX_FEC_RATE_3_4,
    rowsDvbsLevel002, rowCount(rowsDvbsLevel002),
};

static const LevelRow rowsDvbs2Level001[] = {
    {-20, 97, 100}, {-23.3, 97, 100}, {-26.7, 97, 100}, {-30, 97, 100}, {-33.5, 97, 100},
    {-37, 97, 100}, {-40.5, 97, 100}, {-44, 97, 100}, {-47.5, 97, 100}, {-51, 97, 100},
    {-54.5, 97, 100}, {-58, 97, 100}, {-61.5, 97, 100}, {-65, 94, 100}, {-68.5, 89, 95},
    {-72, 87, 93}, {-75.8, 23, 29}, {-79.7, 14, 20}, {-83.5, 1, 7}, {-87.3, 0, 4}, {-91.2, 0, 3},
    {-95, 0, 3},
};
const TunerLevelTable tunerDvbs2Level001 = {
    LEVEL_FLOAT, "DVBS2(QPSK)", 20000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S2,
    QLX_FEC_RATE_3_4, rowsDvbs2Level001, rowCount(rowsDvbs2Level001),
};

static const LevelRow rowsDvbs2Level002[] = {
    {-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-64, 95, 100}, {-65, 94, 100},
    {-68, 89, 95}, {-70, 88, 94}, {-72, 87, 93}, {-73, 63, 69}, {-75, 23, 29}, {-77, 23, 29},
    {-78, 15, 21}, {-80, 14, 20}, {-82, 6, 12}, {-84, 0, 6}, {-85, 0, 4}, {-95, 0, 3},
};
const TunerLevelTable tunerDvbs2Level002 = {
    LEVEL, "DVBS2(QPSK)", 5000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_3_4,
    rowsDvbs2Level002, rowCount(rowsDvbs2Level002),
};

static const LevelRow rowsDvbs2Level003[] = {
    {-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-65, 97, 100}, {-70, 94, 100},
    {-71, 88, 94}, {-72, 87, 93}, {-73, 63, 69}, {-74, 63, 69}, {-75, 63, 69}, {-76, 23, 29},
    {-77, 23, 29}, {-78, 15, 21}, {-79, 0, 3},
};
const TunerLevelTable tunerDvbs2Level003 = {
    LEVEL, "DVBS2(8PSK)", 30000000, QLX_MODULATION_8PSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_3_4,
    rowsDvbs2Level003, rowCount(rowsDvbs2Level003),
};

static const LevelRow rowsDvbs2Level004[] = {
    {-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-64, 95, 100}, {-66, 93, 99},
    {-68, 89, 95}, {-69, 88, 94}, {-70, 88, 94}, {-71, 87, 93}, {-73, 63, 69}, {-75, 23, 29},
    {-76, 23, 29}, {-78, 15, 21}, {-79, 14, 20}, {-80, 14, 20}, {-82, 6, 12}, {-84, 3, 9},
    {-86, 0, 3}, {-90, 0, 3}, {-95, 0, 3},
};
const TunerLevelTable tunerDvbs2Level004 = {
    LEVEL, "DVBS2(8PSK)", 5000000, QLX_MODULATION_8PSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_3_4,
    rowsDvbs2Level004, rowCount(rowsDvbs2Level004),
};

static const LevelRow rowsDvbsQuality001[] = {
    {3, 0, 3}, {3.5, 0, 3}, {3.6, 3, 9}, {3.7, 5, 11}, {4, 6, 12}, {4.5, 9, 15}, {5, 26, 32},
    {5.8, 52, 58}, {6, 52, 58}, {7, 68, 74}, {8, 97, 100},
};
const TunerLevelTable tunerDvbsQuality001 = {
    QUALITY, "DVBS(QPSK)", 30000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S, QLX_FEC_RATE_2_3,
    rowsDvbsQuality001, rowCount(rowsDvbsQuality001),
};

static const LevelRow rowsDvbsQuality002[] = {
    {4, 0, 3}, {4.4, 0, 3}, {4.5, 1, 7}, {4.6, 4, 10}, {5, 7, 13}, {5.5, 21, 27}, {6, 31, 37},
    {6.8, 51, 57}, {7, 62, 68}, {8, 81, 87}, {9, 97, 100},
};
const TunerLevelTable tunerDvbsQuality002 = {
    QUALITY, "DVBS(QPSK)", 30000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S, QLX_FEC_RATE_3_4,
    rowsDvbsQuality002, rowCount(rowsDvbsQuality002),
};

static const LevelRow rowsDvbsQuality003[] = {
    {5, 0, 3}, {5.4, 0, 5}, {5.5, 1, 7}, {5.6, 3, 9}, {6, 5, 11}, {6.5, 18, 24}, {7, 21, 27},
    {7.8, 45, 51}, {8, 52, 58}, {9, 91, 97}, {10, 97, 100},
};
const TunerLevelTable tunerDvbsQuality003 = {
    QUALITY, "DVBS(QPSK)", 30000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S, QLX_FEC_RATE_5_6,
    rowsDvbsQuality003, rowCount(rowsDvbsQuality003),
};

static const LevelRow rowsDvbs2Quality001[] = {
    {2, 0, 3}, {2.5, 0, 3}, {3, 0, 6}, {3.2, 2, 8}, {3.6, 13, 19}, {4, 14, 20}, {4.5, 16, 22},
    {5, 17, 23}, {6, 20, 26}, {7, 22, 28}, {8, 23, 29}, {9, 25, 31}, {10, 26, 32}, {15, 34, 40},
    {20, 41, 47}, {25, 50, 56}, {30, 56, 62}, {35, 59, 65}, {40, 60, 66}, {45, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality001 = {
    QUALITY, "DVBS2(QPSK)", 20000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_2_3,
    rowsDvbs2Quality001, rowCount(rowsDvbs2Quality001),
};

static const LevelRow rowsDvbs2Quality002[] = {
    {2, 0, 3}, {3, 0, 3}, {3.5, 0, 3}, {4, 0, 6}, {4.1, 12, 18}, {4.6, 13, 19}, {5, 14, 20},
    {6, 17, 23}, {7, 20, 26}, {8, 22, 28}, {9, 24, 30}, {10, 25, 31}, {15, 33, 39}, {20, 41, 47},
    {25, 49, 55}, {30, 56, 62}, {35, 61, 67}, {40, 61, 67}, {45, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality002 = {
    QUALITY, "DVBS2(QPSK)", 20000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_3_4,
    rowsDvbs2Quality002, rowCount(rowsDvbs2Quality002),
};

static const LevelRow rowsDvbs2Quality003[] = {
    {4, 0, 3}, {4.5, 0, 3}, {5, 0, 3}, {5.1, 0, 5}, {5.5, 18, 24}, {5.7, 18, 24}, {6, 20, 26},
    {7, 23, 29}, {8, 26, 32}, {9, 28, 34}, {10, 30, 36}, {15, 38, 44}, {20, 47, 53}, {25, 55, 61},
    {30, 62, 68}, {35, 67, 73}, {40, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality003 = {
    QUALITY, "DVBS2(QPSK)", 20000000, QLX_MODULATION_QPSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_5_6,
    rowsDvbs2Quality003, rowCount(rowsDvbs2Quality003),
};

static const LevelRow rowsDvbs2Quality004[] = {
    {5, 0, 3}, {6, 0, 3}, {6.5, 0, 5}, {6.7, 1, 7}, {7.1, 21, 27}, {8, 24, 30}, {9, 27, 33},
    {10, 30, 36}, {11, 32, 38}, {12, 34, 40}, {15, 40, 46}, {20, 50, 56}, {25, 58, 64},
    {30, 65, 71}, {35, 70, 76}, {40, 77, 83}, {45, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality004 = {
    QUALITY, "DVBS2(8PSK)", 30000000, QLX_MODULATION_8PSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_2_3,
    rowsDvbs2Quality004, rowCount(rowsDvbs2Quality004),
};

static const LevelRow rowsDvbs2Quality005[] = {
    {7, 0, 3}, {7.5, 0, 3}, {7.8, 0, 3}, {7.9, 23, 29}, {8, 23, 29}, {8.4, 27, 33}, {9, 27, 33},
    {10, 31, 37}, {11, 34, 40}, {12, 36, 42}, {15, 43, 49}, {20, 54, 60}, {25, 64, 70},
    {30, 77, 83}, {35, 79, 85}, {40, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality005 = {
    QUALITY, "DVBS2(8PSK)", 30000000, QLX_MODULATION_8PSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_3_4,
    rowsDvbs2Quality005, rowCount(rowsDvbs2Quality005),
};

static const LevelRow rowsDvbs2Quality006[] = {
    {8, 0, 3}, {8.5, 0, 3}, {9, 0, 3}, {9.2, 24, 30}, {9.4, 25, 31}, {9.5, 27, 33}, {9.6, 27, 33},
    {9.9, 30, 36}, {10, 31, 37}, {11, 34, 40}, {12, 40, 46}, {13, 43, 49}, {15, 46, 52},
    {20, 59, 65}, {25, 68, 74}, {30, 81, 87}, {35, 84, 90}, {40, 97, 100},
};
const TunerLevelTable tunerDvbs2Quality006 = {
    QUALITY, "DVBS2(8PSK)", 30000000, QLX_MODULATION_8PSK, QLX_FEC_TYPE_DVB_S2, QLX_FEC_RATE_5_6,
    rowsDvbs2Quality006, rowCount(rowsDvbs2Quality006),
};

static const LevelRow rowsFreeView001[] = {
    {27, 100, 100}, {26, 100, 100}, {25, 100, 100}, {24, 100, 100}, {23, 100, 100},
    {22, 93, 100}, {21, 83, 100}, {20, 70, 93}, {19, 49, 83}, {18, 31, 71}, {17, 14, 50},
    {16.2, 8, 35}, {16, 6, 32}, {15, 0, 18},
};
// clang-format on

static bool isQuality(LevelKind kind) {
    return kind == QUALITY || kind == QUALITY_CNR;
}

/** The row's input as prompts name it. */
static const char* inputText(LevelKind kind, double input, char (&text)[40]) {
    switch (kind) {
        case LEVEL:
            snprintf(text, sizeof text, "RFLevel: %d", static_cast<int>(input));
            break;
        case LEVEL_FLOAT:
            snprintf(text, sizeof text, "RFLevel: %f", input);
            break;
        case QUALITY:
            snprintf(text, sizeof text, "CN_input: %f", input);
            break;
        case QUALITY_CNR:
            snprintf(text, sizeof text, "CNR: %f", input);
            break;
    }
    return text;
}

static void printRow(LevelKind kind, int number, const LevelRow& row) {
    char text[40];
    const char* indicator = isQuality(kind) ? "SQI" : "SSI";
    zk_log("Case caseNum: %d,  %s %s_MIN: %d %s_MAX: %d.\r\n", number,
           inputText(kind, row.input, text), indicator, row.min, indicator, row.max);
}

static void printBanner(void) {
    zk_log("************************************************************\r\n");
}

/** Drops what stands behind a number in its line, so that it does not count as a key. */
static void skipLine(void) {
    int c = getchar();
    while (c != '\n' && c != EOF)
        c = getchar();
}

/**
 * Asks for the number of a row until one comes that exists, or the end.
 * @return the row, END_OF_CASE, or -1 at the end of the input
 */
static int askForRow(int count) {
    for (;;) {
        int32_t caseNum = -1;
        zk_log("press 999  to stop case, press caseNum key 0-%d to continue. \r\n", count - 1);
        PromptAnswer answer = tc_askNumber(&caseNum);
        if (answer == PROMPT_END_OF_INPUT)
            return -1;
        skipLine();
        if (answer == PROMPT_NUMBER &&
            (caseNum == END_OF_CASE || (caseNum >= 0 && caseNum < count)))
            return caseNum;
        zk_log("Error caseNum, Please press caseNum again.\r\n");
    }
}

/** Lets the operator choose rows until one fails or the case is ended. `measure` tells whether the
 *  row of a number passed. */
template <typename Measure>
static void runRows(CaseContext& tc, int count, Measure measure) {
    for (;;) {
        int caseNum = askForRow(count);
        if (caseNum == END_OF_CASE || !TC_EXPECT_TRUE(caseNum >= 0))
            return;
        if (!measure(caseNum)) {
            zk_log("Case %d failed.\r\n", caseNum);
            tc.result = TC_FAILURE;
            return;
        }
        zk_log("Case %d success.\r\n", caseNum);
    }
}

static void promptRow(const TunerLevelTable& table, int caseNum) {
    char text[40];
    zk_log("Please  play the  stream as %s, press any key to continue.\r\n",
           inputText(table.kind, table.rows[caseNum].input, text));
    tc_waitKey();
}

/** Compares what the information says with the closed range of the row. */
static bool judgeRow(const TunerRun& run, const TunerLevelTable& table, int caseNum) {
    const LevelRow& row = table.rows[caseNum];
    bool quality = isQuality(table.kind);
    int value = quality ? run.stTunerSignalInfo.sSignalQuality
                        : static_cast<int>(run.stTunerSignalInfo.uSignalStrength);
    zk_log("%s: %d.\r\n", quality ? "sSignalQuality" : "uSignalStrength", value);
    printRow(table.kind, caseNum, row);
    return value >= row.min && value <= row.max;
}

static void printRows(const TunerLevelTable& table) {
    for (int i = 0; i < table.rowCount; i++)
        printRow(table.kind, i, table.rows[i]);
    printBanner();
}

uint32_t tuner_levelTable(const char* name, const TunerLevelTable& table) {
    CaseContext tc = {name};
    TunerRun run = {};
    printRows(table);
    zk_log(
        "Use SFU device, Transmission: %s, Frequency: 1242M,  Stream: "
        "DVB_Common_Av_Demux_1.ts.\r\n",
        table.transmission);
    TC_ASSERT(tuner_fetchParams(tc, run, QLX_TRANSMISSION_SYSTEM_DVB_S));
    run.stTuningParams.uSymbolRate = table.uSymbolRate;
    run.stTuningParams.eModulation = table.eModulation;
    run.stTuningParams.stDvbS.eFecType = table.eFecType;
    run.stTuningParams.stDvbS.eFecRate = table.eFecRate;
    Ladder<uint32_t> ladder(tc, run.eTunerId, tunerSteps);
    if (ladder.up())
        runRows(tc, table.rowCount, [&](int caseNum) {
            promptRow(table, caseNum);
            return tuner_tuneAndRead(tc, run, QLX_TUNER_STATUS_LOCKED) &&
                   judgeRow(run, table, caseNum);
        });
    ladder.down();
    return TC_RESULT(tc);
}

static void lockAndRead(CaseContext& tc, TunerRun& run) {
    tuner_tuneAndRead(tc, run, QLX_TUNER_STATUS_LOCKED);
}

/** Runs a whole frame on a DVB-T frequency and leaves the information in the run. */
static bool receiveFreeView(CaseContext& tc, TunerRun& run, uint32_t uFrequency) {
    if (!tuner_fetchParams(tc, run, QLX_TRANSMISSION_SYSTEM_DVB_T))
        return false;
    run.stTuningParams.uFrequency = uFrequency;
    return tuner_between(tc, run, TUNER_LISTENING, lockAndRead);
}

uint32_t tuner_freeViewQuality(const char* name) {
    CaseContext tc = {name};
    TunerRun run = {};
    TunerLevelTable table = {};
    table.kind = QUALITY_CNR;
    table.rows = rowsFreeView001;
    table.rowCount = rowCount(rowsFreeView001);
    zk_log("ONLY USE FOR UK FREEVIEW.\r\n");
    printRows(table);
    zk_log(
        "Use SFU device, Transmission: DVBT, Frequency: 666M, LEVEL: 45dbm,  Stream: "
        "UK-itv514M.ts.\r\n");
    runRows(tc, table.rowCount, [&](int caseNum) {
        promptRow(table, caseNum);
        return receiveFreeView(tc, run, FREEVIEW_FREQUENCY) && judgeRow(run, table, caseNum);
    });
    return TC_RESULT(tc);
}

/** One of the two multiplexes of a comparison: what the generator plays, and what was received. */
struct FreeViewSide {
    int rflevel;
    double cnr;
    int strength;
    int quality;
};

struct FreeViewRow {
    FreeViewSide a;
    FreeViewSide b;
};

/** The differences that rows of the comparison demand, both bounds included, up to a row. */
struct FreeViewDemand {
    int lastRow;
    const char* text;
    int minSSI;
    int maxSSI;
    int minSQI;
    int maxSQI;
};

static const FreeViewDemand freeViewDemands[] = {
    {1, "deltaSSI > 10", 11, INT_MAX, 0, INT_MAX},
    {3, "deltaSSI > 0 && deltaSSI < 10 && deltaSQI >20", 1, 9, 21, INT_MAX},
    {6, "deltaSSI > 10 && deltaSQI > 0 && deltaSQI < 20", 11, INT_MAX, 1, 19},
};

/** Has a multiplex played, receives it, and stores what came in the row. */
static bool measureSide(CaseContext& tc, int stream, uint32_t uFrequency, FreeViewSide* side) {
    TunerRun run = {};
    zk_log(
        "Please set stream%d as UK-itv514M.ts, Frequency: %u, rflevel: %d, CNR: %f, press any "
        "key to continue. \r\n",
        stream, uFrequency, side->rflevel, side->cnr);
    tc_waitKey();
    if (!receiveFreeView(tc, run, uFrequency))
        return false;
    side->strength = static_cast<int>(run.stTunerSignalInfo.uSignalStrength);
    side->quality = run.stTunerSignalInfo.sSignalQuality;
    return true;
}

static bool compareFreeView(CaseContext& tc, FreeViewRow* row, int caseNum) {
    if (!measureSide(tc, 1, FREEVIEW_FREQUENCY_A, &row->a) ||
        !measureSide(tc, 2, FREEVIEW_FREQUENCY_B, &row->b))
        return false;
    int deltaSSI = abs(row->a.strength - row->b.strength);
    int deltaSQI = abs(row->a.quality - row->b.quality);
    zk_log("deltaSSI: %d, deltaSQI: %d. \r\n", deltaSSI, deltaSQI);
    const FreeViewDemand* demand = freeViewDemands;
    while (caseNum > demand->lastRow)
        demand++;
    return (deltaSSI >= demand->minSSI && deltaSSI <= demand->maxSSI &&
            deltaSQI >= demand->minSQI && deltaSQI <= demand->maxSQI) ||
           tc_fail(tc, __LINE__, "ASSERT %s \n", demand->text);
}

uint32_t tuner_freeViewCompare(const char* name) {
    CaseContext tc = {name};
    FreeViewRow rows[] = {
        {{-50, 0, 0, 0}, {-50, 0, 0, 0}}, {{-65, 0, 0, 0}, {-50, 0, 0, 0}},
        {{-50, 0, 0, 0}, {-65, 0, 0, 0}}, {{-61, 0, 0, 0}, {-58, 1, 0, 0}},
        {{-58, 1, 0, 0}, {-61, 0, 0, 0}}, {{-50, 5, 0, 0}, {-65, 0, 0, 0}},
        {{-65, 0, 0, 0}, {-50, 5, 0, 0}},
    };
    for (int i = 0; i < rowCount(rows); i++)
        zk_log("Case caseNum: %d,  RFLevel: %d CNR: %f, RFLevel: %d CNR: %f.\r\n", i,
               rows[i].a.rflevel, rows[i].a.cnr, rows[i].b.rflevel, rows[i].b.cnr);
    printBanner();
    runRows(tc, rowCount(rows),
            [&](int caseNum) { return compareFreeView(tc, &rows[caseNum], caseNum); });
    return TC_RESULT(tc);
}
