#include "testcase/aout/aout_harness.h"

#include <string.h>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/case/ladder.h"
#include "testcase/aout/amp.h"

enum {
    SINK_VOLUME = 30,
    DESCRIPTION_VOLUME = 50,
};

AOutParams g_stAOutParams;

static uint32_t AOUT_GetConfValue(const char* section, const char* key, uint32_t* value) {
    CaseContext tc = {__func__};
    int32_t number = 0;
    TC_EXPECT_RET(get_conf_value_self(section, key, &number, g_configFile.common));
    *value = static_cast<uint32_t>(number);
    return TC_RESULT(tc);
}

struct AOutKey {
    const char* section;
    const char* key;
    uint32_t AOutParams::*field;
    const char* text;
};

// clang-format off
#define AOUT_KEY(section, key, field) \
    {section, key, &AOutParams::field, "AOUT_GetConfValue(\"" section "\",\"" key "\", (QLX_U32 *) &g_stAOutParams." #field ")"}
static const AOutKey aoutKeys[] = {
    AOUT_KEY("AMP",  "AMP_CHIP_NAME",       uAMPType),
    AOUT_KEY("AMP",  "AMP_GPIO_RESET",      uAMPGpioNum),
    AOUT_KEY("AMP",  "AMP_I2C_ADDR",        uAMPI2CAddr),
    AOUT_KEY("AMP",  "AMP_GPIO_MUTE",       uAMPGpioMute),
    AOUT_KEY("AOUT", "AOUT_SINK_SPEAKER",   uAoutSpeaker),
    AOUT_KEY("AOUT", "AOUT_SINK_HEADPHONE", uAoutHeadphone),
    AOUT_KEY("AOUT", "AOUT_SINK_SPDIF",     uAoutSpdif),
    AOUT_KEY("AOUT", "AOUT_SINK_HDMI",      uAoutHdmi),
    AOUT_KEY("AOUT", "AOUT_SINK_LINEOUT",   uAoutLineout),
    AOUT_KEY("AOUT", "AOUT_SINK_BT",        uAoutBt),
    AOUT_KEY("AOUT", "AOUT_GPIO_HP_DETECT", uHPGpioNum),
};
// clang-format on

uint32_t AOUT_LoadParams(void) {
    CaseContext tc = {__func__};
    memset(&g_stAOutParams, 0, sizeof g_stAOutParams);
    for (const AOutKey& key : aoutKeys)
        TC_ASSERT_RET_TEXT(key.text,
                           AOUT_GetConfValue(key.section, key.key, &(g_stAOutParams.*key.field)));
    return TC_SUCCESS;
}

uint32_t TC_AOUT_INIT(void) {
    CaseContext tc = {__func__};
    AOUT_LoadParams();
    if (TC_EXPECT_RET(QLX_AOutInit()) && g_stAOutParams.uAoutSpeaker != 0) {
        zk_log("speaker enabled, init AMP ! \n");
        AMP_Init();
    }
    return TC_RESULT(tc);
}

uint32_t TC_AOUT_DEINIT(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_AOutDeInit());
    return TC_RESULT(tc);
}

using SinkStep = LadderStep<const AOutParams>;

// clang-format off
// Each sink, in the order in which they are opened: its output device, the sink, and the flag of the
// board. Bluetooth stands apart.
#define WIRED_SINKS(X) \
    X(QLX_AOUTDEV_NUMBER_0, QLX_OUTPUT_SOURCE_SPEAKER,   uAoutSpeaker) \
    X(QLX_AOUTDEV_NUMBER_1, QLX_OUTPUT_SOURCE_HEADPHONE, uAoutHeadphone) \
    X(QLX_AOUTDEV_NUMBER_2, QLX_OUTPUT_SOURCE_SPDIF,     uAoutSpdif) \
    X(QLX_AOUTDEV_NUMBER_3, QLX_OUTPUT_SOURCE_HDMI,      uAoutHdmi) \
    X(QLX_AOUTDEV_NUMBER_4, QLX_OUTPUT_SOURCE_LINEOUT,   uAoutLineout)
#define BLUETOOTH_SINK(X) \
    X(QLX_AOUTDEV_NUMBER_5, QLX_OUTPUT_SOURCE_BT,        uAoutBt)

#define SINK_HAS(flag) [](const AOutParams& board) { return board.flag != 0; }
#define OPEN_STEP(device, sink, flag) \
    {LADDER_CALL("QLX_AOutOpen(" #device ", " #sink ")", QLX_AOutOpen(device, sink)), LADDER_CALL("QLX_AOutClose(" #device ")", QLX_AOutClose(device)), UNDO_CHECKED, SINK_HAS(flag)},
#define OPEN_FOR_GOOD_STEP(device, sink, flag) \
    {LADDER_CALL("QLX_AOutOpen(" #device ", " #sink ")", QLX_AOutOpen(device, sink)), LADDER_NONE, UNDO_CHECKED, SINK_HAS(flag)},
#define START_STEPS(device, sink, flag) \
    {LADDER_CALL("QLX_AOutSetVolume(" #device ", 30)", QLX_AOutSetVolume(device, SINK_VOLUME)), LADDER_NONE, UNDO_CHECKED, SINK_HAS(flag)}, \
    {LADDER_CALL("QLX_AOutSetMute(" #device ", QLX_FALSE)", QLX_AOutSetMute(device, QLX_FALSE)), LADDER_NONE, UNDO_CHECKED, SINK_HAS(flag)},
#define STOP_STEP(device, sink, flag) \
    {LADDER_CALL("QLX_AOutSetMute(" #device ", QLX_TRUE)", QLX_AOutSetMute(device, QLX_TRUE)), LADDER_NONE, UNDO_CHECKED, SINK_HAS(flag)},
// clang-format on

/** A Bluetooth sink that is closed lets its link go, and the link takes its time to come back: it
 *  stays open until the service ends. */
static const SinkStep openSteps[] = {WIRED_SINKS(OPEN_STEP) BLUETOOTH_SINK(OPEN_FOR_GOOD_STEP)};
static const SinkStep startSteps[] = {WIRED_SINKS(START_STEPS) BLUETOOTH_SINK(START_STEPS)};
static const SinkStep stopSteps[] = {WIRED_SINKS(STOP_STEP) BLUETOOTH_SINK(STOP_STEP)};

uint32_t TC_AOUT_OPEN(void) {
    CaseContext tc = {__func__};
    ladderUp<const AOutParams>(tc, g_stAOutParams, openSteps);
    return TC_RESULT(tc);
}

uint32_t TC_AOUT_CLOSE(void) {
    CaseContext tc = {__func__};
    ladderDown<const AOutParams>(tc, g_stAOutParams, openSteps);
    return TC_RESULT(tc);
}

uint32_t TC_AOUT_START(void) {
    CaseContext tc = {__func__};
    ladderUp<const AOutParams>(tc, g_stAOutParams, startSteps);
    return tc.result;
}

uint32_t TC_AOUT_STOP(void) {
    CaseContext tc = {__func__};
    ladderUp<const AOutParams>(tc, g_stAOutParams, stopSteps);
    return tc.result;
}

// Speaker and headphone share one mixer for the description, that of output device 0: its volume
// goes there for both.
// clang-format off
#define DESCRIPTION_STEPS(device, flag) \
    {LADDER_CALL("QLX_AOutSetAudioDescription(" #device ", QLX_TRUE)", QLX_AOutSetAudioDescription(device, QLX_TRUE)), LADDER_CALL("QLX_AOutSetAudioDescription(" #device ", QLX_FALSE)", QLX_AOutSetAudioDescription(device, QLX_FALSE)), UNDO_CHECKED, SINK_HAS(flag)}, \
    {LADDER_CALL("QLX_AOutSetAudioDescriptionVolume(QLX_AOUTDEV_NUMBER_0, 50)", QLX_AOutSetAudioDescriptionVolume(QLX_AOUTDEV_NUMBER_0, DESCRIPTION_VOLUME)), LADDER_NONE, UNDO_CHECKED, SINK_HAS(flag)},
// clang-format on
static const SinkStep descriptionSteps[] = {DESCRIPTION_STEPS(
    QLX_AOUTDEV_NUMBER_0, uAoutSpeaker) DESCRIPTION_STEPS(QLX_AOUTDEV_NUMBER_1, uAoutHeadphone)};

uint32_t TC_AOUT_START_AUDIO_DESC(void) {
    CaseContext tc = {__func__};
    ladderUp<const AOutParams>(tc, g_stAOutParams, descriptionSteps);
    return TC_RESULT(tc);
}

uint32_t TC_AOUT_STOP_AUDIO_DESC(void) {
    CaseContext tc = {__func__};
    ladderDown<const AOutParams>(tc, g_stAOutParams, descriptionSteps);
    return TC_RESULT(tc);
}

uint32_t AOUT_SourceToID(uint32_t* peDevId, uint32_t eSink) {
    if (eSink == 0) {
        zk_log("invalid input parameter ! \n");
        return TC_FAILURE;
    }
    if (eSink > QLX_OUTPUT_SOURCE_BT) {
        zk_log("invalid AOut Source[%d] ! \n", static_cast<int>(eSink));
        return TC_FAILURE;
    }
    *peDevId = QLX_AOUTDEV_NUMBER_0 + eSink - QLX_OUTPUT_SOURCE_SPEAKER;
    return TC_SUCCESS;
}
