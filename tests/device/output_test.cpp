// Video and audio outputs and the panel: in which state which call is refused, what is read back,
// and what a close and the end of the service leave behind.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/qlx_aout.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_display.h"
#include "platform/qlx_extin.h"
#include "platform/qlx_video.h"
#include "platform/qlx_vout.h"
#include "tests/shared/device.h"

namespace {

constexpr int32_t invalid = QLX_VOUT_ERR_INVALID_PARA;

class SimOutput : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }
};

void onEvent(uint32_t, void*, uint32_t, void*) {}

const QLX_ExtInSource hdmi0 = {QLX_SOURCE_TYPE_HDMI, 0, QLX_INPUT_CLASS_NONE};

int32_t openOn(uint32_t output, uint32_t kind, uint32_t index) {
    QLX_Source source = {kind, index, 0};
    return QLX_VOutOpen(output, &source);
}

/** Opens an input, so that there is a source for an output. */
void bringSourceUp() {
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(QLX_ExtInOpen(&hdmi0), 0);
}

TEST_F(SimOutput, EachStateOfAVideoOutputRefusesWhatItMust) {
    static QLX_VOutRect in, out;
    static uint32_t flag, other;
    struct {
        const char* what;
        std::function<int32_t(uint32_t)> call;
        int32_t beforeInit;
        int32_t beforeOpen;
    } calls[] = {
        {"open", [](uint32_t id) { return openOn(id, QLX_SOURCE_TYPE_HDMI, 0); }, QLX_FAILED, 0},
        {"close", [](uint32_t id) { return QLX_VOutClose(id); }, 0, 0},
        {"enable", [](uint32_t id) { return QLX_VOutEnable(id); }, QLX_FAILED, QLX_FAILED},
        {"disable", [](uint32_t id) { return QLX_VOutDisable(id); }, 0, 0},
        {"register", [](uint32_t id) { return QLX_VOutRegisterCallback(id, nullptr, onEvent); },
         QLX_FAILED, QLX_FAILED},
        {"unregister", [](uint32_t id) { return QLX_VOutUnRegisterCallback(id, onEvent); }, 0, 0},
        {"set rect", [](uint32_t id) { return QLX_VOutSetRect(id, &in, &out, 0, 0); }, QLX_FAILED,
         QLX_FAILED},
        {"get rect", [](uint32_t id) { return QLX_VOutGetRect(id, &in, &out, &flag, &other); },
         QLX_FAILED, QLX_FAILED},
        {"set mute", [](uint32_t id) { return QLX_VOutSetMute(id, 1); }, QLX_FAILED, 0},
        {"get mute", [](uint32_t id) { return QLX_VOutGetMute(id, &flag); }, QLX_FAILED, 0},
        {"freeze", [](uint32_t id) { return QLX_VOutFreeze(id, 0); }, QLX_FAILED, QLX_FAILED},
    };
    for (const auto& row : calls) {
        qlx_sim_reset();
        bringSourceUp();
        EXPECT_EQ(row.call(0), row.beforeInit) << row.what << " before init";
        EXPECT_EQ(QLX_VOutInit(), 0);
        EXPECT_EQ(QLX_VOutInit(), 0);
        EXPECT_EQ(row.call(0), row.beforeOpen) << row.what << " before open";
        QLX_VOutClose(0);
        EXPECT_EQ(openOn(1, QLX_SOURCE_TYPE_HDMI, 0), 0);
        EXPECT_EQ(row.call(0), row.beforeOpen) << row.what << " with another one open";
        EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
        EXPECT_EQ(row.call(QLX_VOUTDEV_NUMBER_MAX), invalid) << row.what;
        EXPECT_EQ(row.call(0), 0) << row.what;
        EXPECT_EQ(QLX_VOutDeInit(), 0);
        EXPECT_EQ(row.call(0), row.beforeInit) << row.what << " after two inits and one deinit";
        EXPECT_EQ(QLX_VOutDeInit(), 0);
    }
}

TEST_F(SimOutput, AVideoOutputNeedsASourceOfItsKind) {
    EXPECT_EQ(QLX_VOutInit(), 0);
    for (uint32_t kind : {1u, 2u, 5u, 9u, 10u, 12u, 16u, 0u, 0xffffu})
        EXPECT_EQ(openOn(0, kind, 0), QLX_FAILED) << kind;
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_STREAM_INJECT, 0), 0);
    EXPECT_EQ(QLX_VOutClose(0), 0);
    bringSourceUp();
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
    EXPECT_EQ(openOn(1, QLX_SOURCE_TYPE_AV_CVBS, 0), QLX_FAILED);
    EXPECT_EQ(openOn(1, QLX_SOURCE_TYPE_DEMUX, 0), QLX_FAILED);
    EXPECT_EQ(QLX_DemuxInit(), 0);
    EXPECT_EQ(QLX_DemuxOpen(3), 0);
    EXPECT_EQ(openOn(1, QLX_SOURCE_TYPE_DEMUX, 0), 0);
    EXPECT_EQ(QLX_ExtInClose(&hdmi0), 0);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), QLX_FAILED);
    EXPECT_EQ(QLX_VOutOpen(0, nullptr), invalid);
    // With a decoder open its source is up, whatever the program names.
    QLX_VideoAttr attr = {QLX_SOURCE_TYPE_DEMUX, 3, 0, 1};
    EXPECT_EQ(QLX_VideoInit(), 0);
    EXPECT_EQ(QLX_VideoOpen(1, &attr), 0);
    EXPECT_EQ(openOn(2, QLX_SOURCE_TYPE_HDMI, 0), 0);
    EXPECT_EQ(QLX_VideoDeInit(), 0);
    EXPECT_EQ(QLX_VOutClose(2), 0);
    EXPECT_EQ(deviceState(),
              "Demux initialised\nDemux 3 open\nExtIn initialised\n"
              "VOut initialised\nVOut 0 open\nVOut 1 open\n");
}

TEST_F(SimOutput, WhatIsSetIsReadBackAndSurvivesASecondOpen) {
    bringSourceUp();
    EXPECT_EQ(QLX_VOutInit(), 0);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
    const QLX_VOutRect in = {1, 2, 1920, 1080, 7};
    const QLX_VOutRect out = {5, 6, 10000, 10000, 8};
    EXPECT_EQ(QLX_VOutSetRect(0, &in, &out, QLX_TRUE, QLX_FALSE), 0);
    EXPECT_EQ(QLX_VOutSetMute(0, QLX_FALSE), 0);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_STREAM_INJECT, 0), 0);
    QLX_VOutRect inGot = {}, outGot = {};
    uint32_t nonLinear = 9, dotToDot = 9, mute = 9;
    EXPECT_EQ(QLX_VOutGetRect(0, &inGot, &outGot, &nonLinear, &dotToDot), 0);
    EXPECT_EQ(std::vector<uint32_t>({inGot.x, inGot.y, inGot.uWidth, inGot.uHeight}),
              std::vector<uint32_t>({1, 2, 1920, 1080}));
    EXPECT_EQ(std::vector<uint32_t>({outGot.x, outGot.y, outGot.uWidth, outGot.uHeight}),
              std::vector<uint32_t>({5, 6, 10000, 10000}));
    EXPECT_EQ(inGot.uReserved, 7u);
    EXPECT_EQ(outGot.uReserved, 8u);
    EXPECT_EQ(nonLinear, 1u);
    EXPECT_EQ(dotToDot, 0u);
    EXPECT_EQ(QLX_VOutGetMute(0, &mute), 0);
    EXPECT_EQ(mute, 0u);
    // A close forgets it all.
    EXPECT_EQ(QLX_VOutClose(0), 0);
    EXPECT_EQ(QLX_VOutGetMute(0, &mute), 0);
    EXPECT_EQ(mute, 1u);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
    EXPECT_EQ(QLX_VOutGetRect(0, &inGot, &outGot, &nonLinear, &dotToDot), 0);
    EXPECT_EQ(outGot.uWidth + nonLinear, 0u);
}

TEST_F(SimOutput, PictureControlsKeepWhatIsInTheirRanges) {
    const struct {
        int32_t (*set)(uint32_t, int32_t);
        int32_t (*get)(uint32_t, int32_t*);
        std::vector<int32_t> good;
        std::vector<int32_t> bad;
    } controls[] = {
        {QLX_VOutSetPictureMode, QLX_VOutGetPictureMode, {0, 13, 15, 39}, {-1, 14, 40}},
        {QLX_VOutSetBrightness, QLX_VOutGetBrightness, {0, 128, 255}, {-1, 256}},
        {QLX_VOutSetContrast, QLX_VOutGetContrast, {0, 128, 255}, {-1, 256}},
        {QLX_VOutSetHue, QLX_VOutGetHue, {0, 128, 255}, {-1, 256}},
        {QLX_VOutSetSaturation, QLX_VOutGetSaturation, {0, 128, 255}, {-1, 256}},
        {QLX_VOutSetSharpness, QLX_VOutGetSharpness, {0, 128, 255}, {-1, 256}},
        {QLX_VOutSetTestPattern, QLX_VOutGetTestPattern, {0, 1}, {-1, 2}},
        {QLX_VOutSetColorTemp, QLX_VOutGetColorTemp, {0, 1024}, {-1, 1025}},
        {QLX_VOutSetNR, QLX_VOutGetNR, {0, 4}, {-1, 5}},
        {QLX_VOutSetMpegNR, QLX_VOutGetMpegNR, {0, 4}, {-1, 5}},
        {QLX_VOutSetGamma, QLX_VOutGetGamma, {0, 49}, {-1, 50}},
        {QLX_VOutSetHdmiRange, QLX_VOutGetHdmiRange, {0, 2}, {-1, 3}},
        {QLX_VOutSetColorTuner, QLX_VOutGetColorTuner, {0, 128, 255}, {-1, 256}},
    };
    int32_t value = 0;
    EXPECT_EQ(controls[1].set(0, 1), QLX_FAILED);
    bringSourceUp();
    EXPECT_EQ(QLX_VOutInit(), 0);
    EXPECT_EQ(controls[1].get(0, &value), QLX_FAILED);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
    EXPECT_EQ(controls[1].set(QLX_VOUTDEV_NUMBER_MAX, 1), invalid);
    EXPECT_EQ(controls[1].get(0, nullptr), invalid);
    std::vector<int32_t> atPowerOn;
    for (const auto& control : controls) {
        EXPECT_EQ(control.get(0, &value), 0);
        atPowerOn.push_back(value);
    }
    for (const auto& control : controls) {
        for (int32_t good : control.good) {
            EXPECT_EQ(control.set(0, good), 0) << good;
            EXPECT_EQ(control.get(0, &value), 0);
            EXPECT_EQ(value, good);
        }
        for (int32_t bad : control.bad)
            EXPECT_EQ(control.set(0, bad), invalid) << bad;
    }
    // None has changed another, and a second output has its own.
    EXPECT_EQ(openOn(1, QLX_SOURCE_TYPE_HDMI, 0), 0);
    for (size_t i = 0; i < atPowerOn.size(); i++) {
        EXPECT_EQ(controls[i].get(0, &value), 0);
        EXPECT_EQ(value, controls[i].good.back()) << i;
        EXPECT_EQ(controls[i].get(1, &value), 0);
        EXPECT_EQ(value, atPowerOn[i]) << i;
    }
    EXPECT_EQ(QLX_VOutDeInit(), 0);
    EXPECT_EQ(QLX_VOutInit(), 0);
    EXPECT_EQ(openOn(0, QLX_SOURCE_TYPE_HDMI, 0), 0);
    EXPECT_EQ(controls[0].get(0, &value), 0);
    EXPECT_EQ(value, atPowerOn[0]);
}

TEST_F(SimOutput, EachStateOfAnAudioOutputRefusesWhatItMust) {
    struct {
        const char* what;
        std::function<int32_t(uint32_t)> call;
        int32_t beforeInit;
    } calls[] = {
        {"open", [](uint32_t id) { return QLX_AOutOpen(id, id + 1); }, QLX_FAILED},
        {"close", [](uint32_t id) { return QLX_AOutClose(id); }, 0},
        {"volume", [](uint32_t id) { return QLX_AOutSetVolume(id, 100); }, QLX_FAILED},
        {"mute", [](uint32_t id) { return QLX_AOutSetMute(id, 1); }, QLX_FAILED},
        {"description", [](uint32_t id) { return QLX_AOutSetAudioDescription(id, 1); }, QLX_FAILED},
        {"description's volume",
         [](uint32_t id) { return QLX_AOutSetAudioDescriptionVolume(id, 50); }, QLX_FAILED},
    };
    for (const auto& row : calls) {
        qlx_sim_reset();
        EXPECT_EQ(row.call(0), row.beforeInit) << row.what;
        EXPECT_EQ(QLX_AOutInit(), 0);
        EXPECT_EQ(QLX_AOutInit(), 0);
        for (uint32_t id = 0; id < QLX_AOUTDEV_NUMBER_MAX; id++) {
            EXPECT_EQ(row.call(id), 0) << row.what;
            EXPECT_EQ(row.call(id), 0) << row.what << " once more";
        }
        EXPECT_NE(row.call(QLX_AOUTDEV_NUMBER_MAX), 0) << row.what;
        EXPECT_NE(row.call(UINT32_MAX), 0) << row.what;
        EXPECT_EQ(QLX_AOutDeInit(), 0);
        EXPECT_EQ(deviceState(), "") << row.what;
        EXPECT_EQ(row.call(5), row.beforeInit) << row.what << " after deinit";
        EXPECT_EQ(QLX_AOutDeInit(), 0);
    }
    EXPECT_EQ(QLX_AOutInit(), 0);
    EXPECT_EQ(QLX_AOutOpen(0, 2), QLX_AOUT_ERR_INVALID_PARA) << "the headphone's sink";
    EXPECT_EQ(QLX_AOutOpen(5, QLX_OUTPUT_SOURCE_BT), 0);
    EXPECT_EQ(QLX_AOutSetVolume(0, 101), QLX_AOUT_ERR_INVALID_PARA);
    EXPECT_EQ(deviceState(), "AOut initialised\nAOut 5 open\n");
}

TEST_F(SimOutput, ThePanelTellsItsSizeInAnyState) {
    QLX_PanelInfo panel = {};
    EXPECT_EQ(QLX_DisplayGetPanelInfo(&panel), 0);
    EXPECT_EQ(panel.uWidth, 1920);
    EXPECT_EQ(panel.uHeight, 1080);
    EXPECT_EQ(QLX_DisplayGetPanelInfo(nullptr), QLX_DISPLAY_ERR_INVALID_PARA);
}

}  // namespace
