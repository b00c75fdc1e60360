// VOUT-Primary: the life of the video output. It is opened on each kind of source, enabled, placed
// and muted in the right order, and refuses the wrong ones. The module's set-up brings up all but
// the output itself, which each case initialises and ends.
#include <string.h>

#include "framework/case/ladder.h"
#include "framework/case/timed.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_extin.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/modules.h"
#include "testcase/tuner/tuner_harness.h"
#include "testcase/vout/vout_harness.h"

enum {
    ROUNDS = 10,
    DEFAULT_WIDTH = 800,
    DEFAULT_HEIGHT = 600,
    HUGE_SIZE = 10000,
};

static const int32_t* tcVOutFeature;
static const uint32_t eDevId = QLX_VOUTDEV_NUMBER_0;

// The module.

struct ModuleBench {};

static const LadderStep<ModuleBench> moduleSteps[] = {
    {LADDER_CALL("VOUT_LoadParams()", VOUT_LoadParams()), LADDER_NONE},
    {LADDER_CALL("TC_TUNER_INIT()", TC_TUNER_INIT()),
     LADDER_CALL("TC_TUNER_DEINIT()", TC_TUNER_DEINIT())},
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
     LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
    {LADDER_CALL("QLX_ExtInInit()", QLX_ExtInInit()),
     LADDER_CALL("QLX_ExtInDeInit()", QLX_ExtInDeInit())},
    {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()), LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())},
    {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),
     LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())},
};

static uint32_t VOUT_PrimaryTestSetup(void) {
    CaseContext tc = {__func__};
    ModuleBench bench;
    zk_log("setup all resources ! \r\n");
    zk_test_get_feature(&tcVOutFeature);
    ladderUp(tc, bench, moduleSteps);
    return tc.result;
}

static uint32_t VOUT_PrimaryTestTeardown(void) {
    CaseContext tc = {__func__};
    ModuleBench bench;
    zk_log("release all resources ! \r\n");
    ladderDown(tc, bench, moduleSteps);
    return tc.result;
}

// Init.

static uint32_t TC_VOUT_Init_001(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_VOutInit());
    TC_EXPECT_RET(QLX_VOutDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_VOUT_Init_002(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_VOutDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_VOUT_Init_003(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_VOutInit());
    TC_EXPECT_RET(QLX_VOutInit());
    TC_EXPECT_RET(QLX_VOutDeInit());
    return TC_RESULT(tc);
}

// Open, on each source.

enum { ON_EVERY_BOARD = FEATURE_COUNT };

/** A source as output and decoders name it. */
struct OutputSource {
    QLX_Source stSource;
    /** ZkFeature that the board must have, or ON_EVERY_BOARD. */
    uint32_t feature;
};

// clang-format off
//                                  kind                      device                       feature
static const OutputSource demux0 = {{QLX_SOURCE_TYPE_DEMUX,    0, QLX_INPUT_CLASS_NONE}, ON_EVERY_BOARD};
static const OutputSource demux1 = {{QLX_SOURCE_TYPE_DEMUX,    1, QLX_INPUT_CLASS_NONE}, ON_EVERY_BOARD};
static const OutputSource hdmi0  = {{QLX_SOURCE_TYPE_HDMI,     0, QLX_INPUT_CLASS_NONE}, FEATURE_HDMI0};
static const OutputSource hdmi1  = {{QLX_SOURCE_TYPE_HDMI,     1, QLX_INPUT_CLASS_NONE}, FEATURE_HDMI1};
static const OutputSource hdmi2  = {{QLX_SOURCE_TYPE_HDMI,     2, QLX_INPUT_CLASS_NONE}, FEATURE_HDMI2};
static const OutputSource cvbs0  = {{QLX_SOURCE_TYPE_AV_CVBS,  0, QLX_INPUT_CLASS_CVBS}, FEATURE_CVBS0};
static const OutputSource ypbpr0 = {{QLX_SOURCE_TYPE_AV_YPBPR, 0, QLX_INPUT_CLASS_YPBPR}, FEATURE_YPBPR0};
static const OutputSource atv0   = {{QLX_SOURCE_TYPE_TUNER,    0, QLX_INPUT_CLASS_NONE}, ON_EVERY_BOARD};
static const OutputSource atv1   = {{QLX_SOURCE_TYPE_TUNER,    1, QLX_INPUT_CLASS_NONE}, ON_EVERY_BOARD};
// clang-format on

static bool isOnBoard(const OutputSource& source) {
    return source.feature == ON_EVERY_BOARD || tcVOutFeature[source.feature] != 0;
}

/** The configured source with the variant's kind and devices; a demultiplexer's tuner has its
 *  number. */
static AvSource avSourceOf(const OutputSource& source) {
    const uint32_t device = source.stSource.uSourceIndex;
    AvSource stAvSource = zk_testConfig.av.stSource;
    stAvSource.eSource = source.stSource.eSourceType;
    if (stAvSource.eSource == AV_SOURCE_DTV) {
        stAvSource.eDTVDemuxDev = device;
        stAvSource.eDTVTunerDev = device;
    } else if (stAvSource.eSource == AV_SOURCE_ATV) {
        stAvSource.eATVTunerDev = device;
    } else {
        stAvSource.uExtInPort = device;
    }
    return stAvSource;
}

struct OpenBench {
    QLX_Source stSource;
    AvSource stAvSource;
};

static constexpr LadderStep<OpenBench> initStep = {
    LADDER_CALL("QLX_VOutInit()", QLX_VOutInit()),
    LADDER_CALL("QLX_VOutDeInit()", QLX_VOutDeInit())};
static constexpr LadderStep<OpenBench> signalStep = {
    LADDER_CALL("TC_AV_START_SOURCE(&stAvSource)", TC_AV_START_SOURCE(&bench.stAvSource)),
    LADDER_CALL("TC_AV_STOP_SOURCE(&stAvSource)", TC_AV_STOP_SOURCE(&bench.stAvSource))};
static constexpr LadderStep<OpenBench> decoderStep = {
    LADDER_CALL("TC_AV_OPEN(&stAvSource)", TC_AV_OPEN(&bench.stAvSource)),
    LADDER_CALL("TC_AV_CLOSE(&stAvSource)", TC_AV_CLOSE(&bench.stAvSource))};

static const LadderStep<OpenBench> sourceSteps[] = {signalStep, decoderStep};
static const LadderStep<OpenBench> openSteps[] = {initStep, signalStep, decoderStep};

/** Broadcast sources are up meanwhile; the others are not, and are refused all the same. */
static uint32_t openUninitialisedBase(const char* name, const OutputSource& source) {
    CaseContext tc = {name};
    OpenBench bench = {source.stSource, avSourceOf(source)};
    const QLX_Source& stSource = bench.stSource;
    if (!isOnBoard(source))
        return tc_notApplicable(tc);
    TC_EXPECT_RET(QLX_VOutInit());
    TC_EXPECT_RET(QLX_VOutDeInit());
    Ladder<OpenBench> ladder(tc, bench, sourceSteps);
    if (stSource.eSourceType != QLX_SOURCE_TYPE_DEMUX || ladder.up())
        TC_EXPECT_REFUSED(QLX_VOutOpen(eDevId, &stSource));
    ladder.down();
    return TC_RESULT(tc);
}

static uint32_t openWithoutSourceBase(const char* name, const OutputSource& source) {
    CaseContext tc = {name};
    const QLX_Source& stSource = source.stSource;
    if (!isOnBoard(source))
        return tc_notApplicable(tc);
    if (TC_EXPECT_RET(QLX_VOutInit())) {
        TC_EXPECT_REFUSED(QLX_VOutOpen(eDevId, &stSource));
        TC_EXPECT_RET(QLX_VOutDeInit());
    }
    return TC_RESULT(tc);
}

/** A case with the source up: `work` on it, unless the analog front end holds the output. */
template <typename Work>
static uint32_t onSource(const char* name, const OutputSource& source, Work work) {
    CaseContext tc = {name};
    OpenBench bench = {source.stSource, avSourceOf(source)};
    if (!isOnBoard(source))
        return tc_notApplicable(tc);
    Ladder<OpenBench> ladder(tc, bench, openSteps);
    const bool up = ladder.up();
    const bool held = source.stSource.eSourceType == QLX_SOURCE_TYPE_TUNER &&
                      tcVOutFeature[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] != 0;
    if (up && !held)
        work(tc, bench.stSource);
    ladder.down();
    return TC_RESULT(tc);
}

static uint32_t openBase(const char* name, const OutputSource& source, int rounds) {
    return onSource(name, source, [&](CaseContext& tc, const QLX_Source& stSource) {
        for (int round = 0; round < rounds; round++) {
            if (TC_EXPECT_RET(QLX_VOutOpen(eDevId, &stSource)))
                TC_EXPECT_RET(QLX_VOutClose(eDevId));
        }
    });
}

static uint32_t openTimedBase(const char* name, const OutputSource& source) {
    return onSource(name, source, [&](CaseContext& tc, const QLX_Source& stSource) {
        tc_timedCall(tc, "opening", "QLX_VOutOpen(eDevId, &stSource)",
                     [&] { return QLX_VOutOpen(eDevId, &stSource); });
        tc_timedCall(tc, "closing", "QLX_VOutClose(eDevId)", [&] { return QLX_VOutClose(eDevId); });
    });
}

// clang-format off
#define OPEN_UNINITIALISED_FAMILY(X) \
    /* case             flag  description                                     body */ \
    X(TC_VOUT_Open_001, AUTO, "Open VOut-0 (source is Demux-0) without init", openUninitialisedBase(__func__, demux0)) \
    X(TC_VOUT_Open_002, AUTO, "Open VOut-0 (source is Demux-1) without init", openUninitialisedBase(__func__, demux1)) \
    X(TC_VOUT_Open_003, AUTO, "Open VOut-0 (source is HDMI-0) without init",  openUninitialisedBase(__func__, hdmi0)) \
    X(TC_VOUT_Open_004, AUTO, "Open VOut-0 (source is HDMI-1) without init",  openUninitialisedBase(__func__, hdmi1)) \
    X(TC_VOUT_Open_005, AUTO, "Open VOut-0 (source is HDMI-2) without init",  openUninitialisedBase(__func__, hdmi2)) \
    X(TC_VOUT_Open_006, AUTO, "Open VOut-0 (source is CVBS-0) without init",  openUninitialisedBase(__func__, cvbs0)) \
    X(TC_VOUT_Open_007, AUTO, "Open VOut-0 (source is YPBPR-0) without init", openUninitialisedBase(__func__, ypbpr0)) \
    X(TC_VOUT_Open_008, AUTO, "Open VOut-0 (source is ATV-0) without init",   openUninitialisedBase(__func__, atv0)) \
    X(TC_VOUT_Open_009, AUTO, "Open VOut-0 (source is ATV-1) without init",   openUninitialisedBase(__func__, atv1))
#define OPEN_WITHOUT_SOURCE_FAMILY(X) \
    /* case             flag  description                                               body */ \
    X(TC_VOUT_Open_010, AUTO, "Open VOut-0 (source is Demux-0) without open av source", openWithoutSourceBase(__func__, demux0)) \
    X(TC_VOUT_Open_011, AUTO, "Open VOut-0 (source is Demux-1) without open av source", openWithoutSourceBase(__func__, demux1)) \
    X(TC_VOUT_Open_012, AUTO, "Open VOut-0 (source is HDMI-0) without open av source",  openWithoutSourceBase(__func__, hdmi0)) \
    X(TC_VOUT_Open_013, AUTO, "Open VOut-0 (source is HDMI-1) without open av source",  openWithoutSourceBase(__func__, hdmi1)) \
    X(TC_VOUT_Open_014, AUTO, "Open VOut-0 (source is HDMI-2) without open av source",  openWithoutSourceBase(__func__, hdmi2)) \
    X(TC_VOUT_Open_015, AUTO, "Open VOut-0 (source is CVBS-0) without open av source",  openWithoutSourceBase(__func__, cvbs0)) \
    X(TC_VOUT_Open_016, AUTO, "Open VOut-0 (source is YPBPR-0) without open av source", openWithoutSourceBase(__func__, ypbpr0)) \
    X(TC_VOUT_Open_017, AUTO, "Open VOut-0 (source is ATV-0) without open av source",   openWithoutSourceBase(__func__, atv0)) \
    X(TC_VOUT_Open_018, AUTO, "Open VOut-0 (source is ATV-1) without open av source",   openWithoutSourceBase(__func__, atv1))
#define OPEN_FAMILY(X) \
    /* case             flag  description                                               body */ \
    X(TC_VOUT_Open_019, AUTO, "Open VOut-0 (source is Demux-0) after av source opened", openBase(__func__, demux0, 1)) \
    X(TC_VOUT_Open_020, AUTO, "Open VOut-0 (source is Demux-1) after av source opened", openBase(__func__, demux1, 1)) \
    X(TC_VOUT_Open_021, AUTO, "Open VOut-0 (source is HDMI-0) after av source opened",  openBase(__func__, hdmi0, 1)) \
    X(TC_VOUT_Open_022, AUTO, "Open VOut-0 (source is HDMI-1) after av source opened",  openBase(__func__, hdmi1, 1)) \
    X(TC_VOUT_Open_023, AUTO, "Open VOut-0 (source is HDMI-2) after av source opened",  openBase(__func__, hdmi2, 1)) \
    X(TC_VOUT_Open_024, AUTO, "Open VOut-0 (source is CVBS-0) after av source opened",  openBase(__func__, cvbs0, 1)) \
    X(TC_VOUT_Open_025, AUTO, "Open VOut-0 (source is YPBPR-0) after av source opened", openBase(__func__, ypbpr0, 1)) \
    X(TC_VOUT_Open_026, AUTO, "Open VOut-0 (source is ATV-0) after av source opened",   openBase(__func__, atv0, 1)) \
    X(TC_VOUT_Open_027, AUTO, "Open VOut-0 (source is ATV-1) after av source opened",   openBase(__func__, atv1, 1))
#define OPEN_TEN_TIMES_FAMILY(X) \
    /* case             flag  description                                                                  body */ \
    X(TC_VOUT_Open_028, AUTO, "Open and close VOut-0 (source is Demux-0) 10 times after av source opened", openBase(__func__, demux0, 10)) \
    X(TC_VOUT_Open_029, AUTO, "Open and close VOut-0 (source is Demux-1) 10 times after av source opened", openBase(__func__, demux1, 10)) \
    X(TC_VOUT_Open_030, AUTO, "Open and close VOut-0 (source is HDMI-0) 10 times after av source opened",  openBase(__func__, hdmi0, 10)) \
    X(TC_VOUT_Open_031, AUTO, "Open and close VOut-0 (source is HDMI-1) 10 times after av source opened",  openBase(__func__, hdmi1, 10)) \
    X(TC_VOUT_Open_032, AUTO, "Open and close VOut-0 (source is HDMI-2) 10 times after av source opened",  openBase(__func__, hdmi2, 10)) \
    X(TC_VOUT_Open_033, AUTO, "Open and close VOut-0 (source is CVBS-0) 10 times after av source opened",  openBase(__func__, cvbs0, 10)) \
    X(TC_VOUT_Open_034, AUTO, "Open and close VOut-0 (source is YPBPR-0) 10 times after av source opened", openBase(__func__, ypbpr0, 10)) \
    X(TC_VOUT_Open_035, AUTO, "Open and close VOut-0 (source is ATV-0) 10 times after av source opened",   openBase(__func__, atv0, 10)) \
    X(TC_VOUT_Open_036, AUTO, "Open and close VOut-0 (source is ATV-1) 10 times after av source opened",   openBase(__func__, atv1, 10))
#define OPEN_TIMED_FAMILY(X) \
    /* case             flag  description                                                                    body */ \
    X(TC_VOUT_Open_037, AUTO, "Test the consumption time of opening and closing VOut-0 (source is Demux-0)", openTimedBase(__func__, demux0)) \
    X(TC_VOUT_Open_038, AUTO, "Test the consumption time of opening and closing VOut-0 (source is Demux-1)", openTimedBase(__func__, demux1)) \
    X(TC_VOUT_Open_039, AUTO, "Test the consumption time of opening and closing VOut-0 (source is HDMI-0)",  openTimedBase(__func__, hdmi0)) \
    X(TC_VOUT_Open_040, AUTO, "Test the consumption time of opening and closing VOut-0 (source is HDMI-1)",  openTimedBase(__func__, hdmi1)) \
    X(TC_VOUT_Open_041, AUTO, "Test the consumption time of opening and closing VOut-0 (source is HDMI-2)",  openTimedBase(__func__, hdmi2)) \
    X(TC_VOUT_Open_042, AUTO, "Test the consumption time of opening and closing VOut-0 (source is CVBS-0)",  openTimedBase(__func__, cvbs0)) \
    X(TC_VOUT_Open_043, AUTO, "Test the consumption time of opening and closing VOut-0 (source is YPBPR-0)", openTimedBase(__func__, ypbpr0)) \
    X(TC_VOUT_Open_044, AUTO, "Test the consumption time of opening and closing VOut-0 (source is ATV-0)",   openTimedBase(__func__, atv0)) \
    X(TC_VOUT_Open_045, AUTO, "Test the consumption time of opening and closing VOut-0 (source is ATV-1)",   openTimedBase(__func__, atv1))
// clang-format on

OPEN_UNINITIALISED_FAMILY(TC_VARIANT_FUNCTION)
OPEN_WITHOUT_SOURCE_FAMILY(TC_VARIANT_FUNCTION)
OPEN_FAMILY(TC_VARIANT_FUNCTION)
OPEN_TEN_TIMES_FAMILY(TC_VARIANT_FUNCTION)
OPEN_TIMED_FAMILY(TC_VARIANT_FUNCTION)

// Enable, on the configured source.

struct ConfiguredBench {
    QLX_VideoDecInfo stVideoDecInfo;
};

// clang-format off
static constexpr LadderStep<ConfiguredBench> outputServiceStep =
    {LADDER_CALL("QLX_VOutInit()", QLX_VOutInit()),                        LADDER_CALL("QLX_VOutDeInit()", QLX_VOutDeInit())};
static constexpr LadderStep<ConfiguredBench> configuredSignalStep =
    {LADDER_CALL("TC_AV_START_SOURCE(NULL)", TC_AV_START_SOURCE(nullptr)), LADDER_CALL("TC_AV_STOP_SOURCE(NULL)", TC_AV_STOP_SOURCE(nullptr))};
static constexpr LadderStep<ConfiguredBench> configuredDecoderStep =
    {LADDER_CALL("TC_AV_OPEN(NULL)", TC_AV_OPEN(nullptr)),                 LADDER_CALL("TC_AV_CLOSE(NULL)", TC_AV_CLOSE(nullptr))};

static const LadderStep<ConfiguredBench> enableSteps[] = {
    outputServiceStep,
    configuredSignalStep,
    configuredDecoderStep,
    {LADDER_CALL("QLX_VOutOpen(eDevId, pstSource)", QLX_VOutOpen(eDevId, &stVOutSource)), LADDER_CALL("QLX_VOutClose(eDevId)", QLX_VOutClose(eDevId))},
    {LADDER_CALL("QLX_VOutRegisterCallback(eDevId, &stVoutRequestData, VOUT_EventCallbck)", QLX_VOutRegisterCallback(eDevId, &stVoutRequestData, VOUT_EventCallbck)), LADDER_CALL("QLX_VOutUnRegisterCallback(eDevId, VOUT_EventCallbck)", QLX_VOutUnRegisterCallback(eDevId, VOUT_EventCallbck))},
};

static const LadderStep<ConfiguredBench> playSteps[] = {
    outputServiceStep,
    configuredSignalStep,
    configuredDecoderStep,
    {LADDER_CALL("TC_VOUT_OPEN(NULL)", TC_VOUT_OPEN(nullptr)),                                                      LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE())},
    {LADDER_CALL("TC_AV_START(NULL, NULL, &stVideoDecInfo)", TC_AV_START(nullptr, nullptr, &bench.stVideoDecInfo)), LADDER_CALL("TC_AV_STOP(NULL)", TC_AV_STOP(nullptr))},
};
// clang-format on

/** A case that brings the configured source up by `steps`, and works on that. */
template <size_t N, typename Work>
static uint32_t onConfigured(const char* name, const LadderStep<ConfiguredBench> (&steps)[N],
                             Work work) {
    CaseContext tc = {name};
    ConfiguredBench bench = {};
    Ladder<ConfiguredBench> ladder(tc, bench, steps);
    if (ladder.up())
        work(tc);
    ladder.down();
    return TC_RESULT(tc);
}

static uint32_t TC_VOUT_Enable_001(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_REFUSED(QLX_VOutEnable(eDevId));
    return TC_RESULT(tc);
}

static uint32_t TC_VOUT_Enable_002(void) {
    CaseContext tc = {__func__};
    if (TC_EXPECT_RET(QLX_VOutInit())) {
        TC_EXPECT_REFUSED(QLX_VOutEnable(eDevId));
        TC_EXPECT_RET(QLX_VOutDeInit());
    }
    return TC_RESULT(tc);
}

static uint32_t enableBase(const char* name, int rounds) {
    return onConfigured(name, enableSteps, [&](CaseContext& tc) {
        for (int round = 0; round < rounds; round++) {
            if (TC_EXPECT_RET(QLX_VOutEnable(eDevId)))
                TC_EXPECT_RET(QLX_VOutDisable(eDevId));
        }
    });
}

static uint32_t enableTimedBase(const char* name) {
    return onConfigured(name, enableSteps, [](CaseContext& tc) {
        tc_timedCall(tc, "enable", "QLX_VOutEnable(eDevId)", [] { return QLX_VOutEnable(eDevId); });
        tc_timedCall(tc, "disable", "QLX_VOutDisable(eDevId)",
                     [] { return QLX_VOutDisable(eDevId); });
    });
}

// Rectangles.

static const char setRectText[] =
    "QLX_VOutSetRect(eDevId, &stInRect, &stOutRect, QLX_FALSE, QLX_FALSE)";

/** What a case places, and where. */
struct Rects {
    QLX_VOutRect stInRect = {0, 0, DEFAULT_WIDTH, DEFAULT_HEIGHT, 0};
    QLX_VOutRect stOutRect = {};
};

static int64_t setRect(const Rects& rects) {
    return QLX_VOutSetRect(eDevId, &rects.stInRect, &rects.stOutRect, QLX_FALSE, QLX_FALSE);
}

static uint32_t TC_VOUT_SetRect_001(void) {
    CaseContext tc = {__func__};
    Rects rects;
    if (VOUT_GetDefaultRect(tc, &rects.stOutRect))
        TC_EXPECT_REFUSED_TEXT(setRectText, setRect(rects));
    return TC_RESULT(tc);
}

static uint32_t TC_VOUT_SetRect_002(void) {
    CaseContext tc = {__func__};
    Rects rects;
    if (VOUT_GetDefaultRect(tc, &rects.stOutRect) && TC_EXPECT_RET(QLX_VOutInit())) {
        TC_EXPECT_REFUSED_TEXT(setRectText, setRect(rects));
        TC_EXPECT_RET(QLX_VOutDeInit());
    }
    return TC_RESULT(tc);
}

/** A case with the configured source playing, and the rectangles by default. */
template <typename Work>
static uint32_t onPicture(const char* name, Work work) {
    CaseContext tc = {name};
    Rects rects;
    ConfiguredBench bench = {};
    Ladder<ConfiguredBench> ladder(tc, bench, playSteps);
    if (VOUT_GetDefaultRect(tc, &rects.stOutRect) && ladder.up())
        work(tc, rects);
    ladder.down();
    return TC_RESULT(tc);
}

static uint32_t setRectBase(const char* name, int rounds) {
    return onPicture(name, [&](CaseContext& tc, const Rects& rects) {
        for (int round = 0; round < rounds; round++)
            TC_EXPECT_RET_TEXT(setRectText, setRect(rects));
    });
}

static uint32_t setRectTimedBase(const char* name) {
    return onPicture(name, [](CaseContext& tc, const Rects& rects) {
        tc_timedCall(tc, "set rect", setRectText, [&] { return setRect(rects); });
    });
}

static uint32_t setHugeRectBase(const char* name) {
    return onPicture(name, [](CaseContext& tc, Rects& rects) {
        rects.stOutRect = {0, 0, HUGE_SIZE, HUGE_SIZE, 0};
        TC_EXPECT_RET_TEXT(setRectText, setRect(rects));
    });
}

/** The two switches differ, so that one is not taken for the other. */
static void compareRects(CaseContext& tc, const Rects& rects) {
    const QLX_VOutRect& stInRect = rects.stInRect;
    const QLX_VOutRect& stOutRect = rects.stOutRect;
    const uint32_t bNonLinear = QLX_TRUE;
    const uint32_t bDotToDot = QLX_FALSE;
    QLX_VOutRect stInRectGet = {};
    QLX_VOutRect stOutRectGet = {};
    uint32_t bNonLinearGet = QLX_FALSE;
    uint32_t bDotToDotGet = QLX_TRUE;
    if (!TC_EXPECT_RET(QLX_VOutSetRect(eDevId, &stInRect, &stOutRect, bNonLinear, bDotToDot)) ||
        !TC_EXPECT_RET(
            QLX_VOutGetRect(eDevId, &stInRectGet, &stOutRectGet, &bNonLinearGet, &bDotToDotGet)))
        return;
    TC_EXPECT_EQUAL(bNonLinear, bNonLinearGet);
    TC_EXPECT_EQUAL(bDotToDot, bDotToDotGet);
    TC_EXPECT_TRUE(memcmp(&stInRect, &stInRectGet, sizeof stInRect) == 0);
    TC_EXPECT_TRUE(memcmp(&stOutRect, &stOutRectGet, sizeof stOutRect) == 0);
}

static uint32_t compareRectsBase(const char* name) {
    return onPicture(name, compareRects);
}

// Mute.

static void muteRounds(CaseContext& tc, int rounds) {
    for (int round = 0; round < rounds; round++) {
        TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_TRUE));
        TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_FALSE));
    }
}

/** A picture is placed while it cannot be seen; then it is muted and unmuted again. */
static uint32_t muteBase(const char* name, int rounds) {
    return onPicture(name, [&](CaseContext& tc, const Rects& rects) {
        TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_TRUE));
        TC_EXPECT_RET_TEXT(setRectText, setRect(rects));
        TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_FALSE));
        muteRounds(tc, rounds);
    });
}

static uint32_t muteTimedBase(const char* name) {
    return onPicture(name, [](CaseContext& tc, const Rects&) {
        tc_timedCall(tc, "mute", "QLX_VOutSetMute(eDevId, QLX_TRUE)",
                     [] { return QLX_VOutSetMute(eDevId, QLX_TRUE); });
        tc_timedCall(tc, "unmute", "QLX_VOutSetMute(eDevId, QLX_FALSE)",
                     [] { return QLX_VOutSetMute(eDevId, QLX_FALSE); });
    });
}

/** Reads back what has just been set. */
static void expectMute(CaseContext& tc, uint32_t bMuteState) {
    uint32_t bMuteStateGet = bMuteState == QLX_TRUE ? QLX_FALSE : QLX_TRUE;
    if (TC_EXPECT_RET(QLX_VOutGetMute(eDevId, &bMuteStateGet)))
        TC_EXPECT_EQUAL(bMuteState, bMuteStateGet);
}

static uint32_t compareMuteBase(const char* name) {
    return onPicture(name, [](CaseContext& tc, const Rects&) {
        if (TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_TRUE)))
            expectMute(tc, QLX_TRUE);
        if (TC_EXPECT_RET(QLX_VOutSetMute(eDevId, QLX_FALSE)))
            expectMute(tc, QLX_FALSE);
    });
}

// clang-format off
#define ENABLE_FAMILY(X) \
    /* case               flag  description                                                body */ \
    X(TC_VOUT_Enable_003, AUTO, "Enable VOut-0 after VOut-0 opened",                        enableBase(__func__, 1)) \
    X(TC_VOUT_Enable_004, AUTO, "Enable and disable VOut-0 10 times",                       enableBase(__func__, ROUNDS)) \
    X(TC_VOUT_Enable_005, AUTO, "Test the consumption time of enable and disable VOut-0",   enableTimedBase(__func__))
#define SET_RECT_FAMILY(X) \
    /* case                flag  description                                                body */ \
    X(TC_VOUT_SetRect_003, AUTO, "Set rect to VOut-0 after VOut-0 opened",                  setRectBase(__func__, 1)) \
    X(TC_VOUT_SetRect_004, AUTO, "Set rect to VOut-0 10 times",                             setRectBase(__func__, ROUNDS)) \
    X(TC_VOUT_SetRect_005, AUTO, "Test the consumption time of set rect to VOut-0",         setRectTimedBase(__func__)) \
    X(TC_VOUT_SetRect_006, AUTO, "Set rect to VOut-0, the output rect is (0,0,10000,10000)", setHugeRectBase(__func__)) \
    X(TC_VOUT_SetRect_007, AUTO, "Compare the rect getted from VOut-0 with the setted before", compareRectsBase(__func__))
#define MUTE_FAMILY(X) \
    /* case             flag  description                                                   body */ \
    X(TC_VOUT_Mute_001, AUTO, "Mute and unmute VOut-0",                                     muteBase(__func__, 0)) \
    X(TC_VOUT_Mute_002, AUTO, "Mute and unmute VOut-0 for 10 times",                        muteBase(__func__, ROUNDS)) \
    X(TC_VOUT_Mute_003, AUTO, "Test the consumption time of mute and unmute VOut-0",        muteTimedBase(__func__)) \
    X(TC_VOUT_Mute_004, AUTO, "Compare the getted mute state from VOut-0 with the setted before", compareMuteBase(__func__))
// clang-format on

ENABLE_FAMILY(TC_VARIANT_FUNCTION)
SET_RECT_FAMILY(TC_VARIANT_FUNCTION)
MUTE_FAMILY(TC_VARIANT_FUNCTION)

// clang-format off
static constexpr TcCase VOutModulePrimaryCases[] = {
    TC_CASE(TC_VOUT_Init_001, AUTO, "Init and deinit VOUT"),
    TC_CASE(TC_VOUT_Init_002, AUTO, "Deinit VOUT without init"),
    TC_CASE(TC_VOUT_Init_003, AUTO, "Init VOUT for the second consecutive time without deinit"),
    OPEN_UNINITIALISED_FAMILY(TC_VARIANT_ROW)
    OPEN_WITHOUT_SOURCE_FAMILY(TC_VARIANT_ROW)
    OPEN_FAMILY(TC_VARIANT_ROW)
    OPEN_TEN_TIMES_FAMILY(TC_VARIANT_ROW)
    OPEN_TIMED_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_VOUT_Enable_001, AUTO, "Enable VOut-0 without init"),
    TC_CASE(TC_VOUT_Enable_002, AUTO, "Enable VOut-0 without opened"),
    ENABLE_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_VOUT_SetRect_001, AUTO, "Set rect to VOut-0 without init"),
    TC_CASE(TC_VOUT_SetRect_002, AUTO, "Set rect to VOut-0 without open VOUT-0"),
    SET_RECT_FAMILY(TC_VARIANT_ROW)
    MUTE_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(VOutModulePrimaryCases) == 64 &&
                  tcAutoCount(VOutModulePrimaryCases) == 64,
              "cases of the module, and those that run by themselves");

const TcModule VOutModulePrimary = {
    VOUT_PrimaryTestSetup,
    VOUT_PrimaryTestTeardown,
    nullptr,
    nullptr,
    VOutModulePrimaryCases,
    tcCaseCount(VOutModulePrimaryCases),
    "VOUT-Primary",
    "Test cases of VOUT for primary interface",
    nullptr,
};
