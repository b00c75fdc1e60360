// In which state video and audio decoders refuse which call, what a source must be for an open, and
// what a close, a deinit and a reset leave behind.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_videosync.h"
#include "tests/shared/decoder_log.h"
#include "tests/shared/device.h"

namespace {

using namespace decoder_test;

Log log0;
Log log1;

/** A call on a decoder, and what it answers in each state. */
constexpr int32_t failed = QLX_FAILED;
struct Row {
    const char* what;
    std::function<int32_t(uint32_t)> call;
    int32_t closed;
    int32_t open;
    int32_t started;
};

int32_t openVideo(uint32_t number, uint32_t kind, uint32_t index = 0) {
    QLX_VideoAttr attr = {kind, index, 0, 0};
    return QLX_VideoOpen(number, &attr);
}

int32_t openAudio(uint32_t number, uint32_t kind, uint32_t index = 0) {
    QLX_AudioAttr attr = {kind, index, 0};
    return QLX_AudioOpen(number, &attr);
}

class SimDecoderState : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
        log0.clear();
        log1.clear();
    }
    void TearDown() override {
        qlx_sim_reset();
    }

    static void openHdmi() {
        QLX_ExtInSource hdmi = {QLX_SOURCE_TYPE_HDMI, 0, 0};
        EXPECT_EQ(QLX_ExtInInit(), 0);
        EXPECT_EQ(QLX_ExtInOpen(&hdmi), 0);
    }
};

uint32_t word;
uint64_t clock90k;
uint8_t byte;
QLX_VideoInfo videoInfo;
QLX_AudioInfo audioInfo;
QLX_VideoCapability videoCapability;
QLX_AudioCapability audioCapability;
const QLX_SyncParams freeRun = {QLX_VIDEOSYNC_MODE_FREE_RUN, 0, 0};

// clang-format off
const std::vector<Row> videoRows = {
    // what              call                                                          closed  open    started
    {"open",        [](uint32_t n) { return openVideo(n, QLX_SOURCE_TYPE_HDMI); },         0,      failed, failed},
    {"close",       [](uint32_t n) { return QLX_VideoClose(n); },                          0,      0,      0},
    {"capability",  [](uint32_t n) { return QLX_VideoGetCapability(n, &videoCapability); },failed, 0,      0},
    {"register",    [](uint32_t n) { return QLX_VideoRegisterCallback(n, &log0, onVideo); }, failed, 0,    0},
    {"unregister",  [](uint32_t n) { return QLX_VideoUnRegisterCallback(n, onVideo); },    failed, failed, failed},
    {"start",       [](uint32_t n) { return QLX_VideoStart(n, 0, 0); },                    failed, 0,      failed},
    {"stop",        [](uint32_t n) { return QLX_VideoStop(n); },                           failed, 0,      0},
    {"flush",       [](uint32_t n) { return QLX_VideoFlush(n); },                          failed, failed, 0},
    {"pause",       [](uint32_t n) { return QLX_VideoPause(n); },                          failed, failed, 0},
    {"resume",      [](uint32_t n) { return QLX_VideoResume(n); },                         failed, failed, 0},
    {"state",       [](uint32_t n) { return QLX_VideoGetState(n, &word); },                failed, 0,      0},
    {"info",        [](uint32_t n) { return QLX_VideoGetVideoInfo(n, 2, &videoInfo); },    failed, 0,      0},
    {"set mode",    [](uint32_t n) { return QLX_VideoSyncSetMode(n, &freeRun); },          failed, 0,      0},
    {"clock",       [](uint32_t n) { return QLX_VideoSyncGetSTC(n, &clock90k); },          failed, 0,      0},
};
const std::vector<Row> audioRows = {
    {"open",        [](uint32_t n) { return openAudio(n, QLX_SOURCE_TYPE_HDMI); },         0,      failed, failed},
    {"close",       [](uint32_t n) { return QLX_AudioClose(n); },                          0,      0,      0},
    {"capability",  [](uint32_t n) { return QLX_AudioGetCapability(n, &audioCapability); },failed, 0,      0},
    {"register",    [](uint32_t n) { return QLX_AudioRegisterCallback(n, &log0, onAudio); }, failed, 0,    0},
    {"unregister",  [](uint32_t n) { return QLX_AudioUnRegisterCallback(n, onAudio); },    failed, failed, failed},
    {"start",       [](uint32_t n) { return QLX_AudioStart(n, 0, 0); },                    failed, 0,      failed},
    {"stop",        [](uint32_t n) { return QLX_AudioStop(n); },                           failed, 0,      0},
    {"flush",       [](uint32_t n) { return QLX_AudioFlush(n); },                          failed, failed, 0},
    {"pause",       [](uint32_t n) { return QLX_AudioPause(n); },                          failed, failed, 0},
    {"resume",      [](uint32_t n) { return QLX_AudioResume(n); },                         failed, failed, 0},
    {"state",       [](uint32_t n) { return QLX_AudioGetState(n, &word); },                failed, 0,      0},
    {"info",        [](uint32_t n) { return QLX_AudioGetAudioInfo(n, 4, &audioInfo); },    failed, 0,      0},
    {"volume",      [](uint32_t n) { return QLX_AudioSetVolume(n, 0, 50); },               0,      0,      0},
    {"mute",        [](uint32_t n) { return QLX_AudioSetMute(n, 6, 0); },                  0,      0,      0},
    {"mode",        [](uint32_t n) { return QLX_AudioSetDigitalAudioMode(n, 5); },         failed, 0,      0},
    {"describe",    [](uint32_t n) { return QLX_AudioStartDescription(n, 1, 600); },       failed, failed, 0},
    {"no describe", [](uint32_t n) { return QLX_AudioStopDescription(n); },                failed, 0,      0},
    {"prescale",    [](uint32_t n) { return QLX_AudioSetPrescaler(n, 255); },              failed, 0,      0},
    {"prescaler",   [](uint32_t n) { return QLX_AudioGetPrescaler(n, &byte); },            failed, 0,      0},
    {"AC-4",        [](uint32_t n) { return QLX_AudioSetAC4Parameters(n, 7, -1); },        failed, 0,      0},
};
// clang-format on

TEST_F(SimDecoderState, EachStateRefusesWhatItMust) {
    for (bool video : {true, false}) {
        int32_t (*init)() = video ? QLX_VideoInit : QLX_AudioInit;
        int32_t (*deinit)() = video ? QLX_VideoDeInit : QLX_AudioDeInit;
        const std::vector<Row>& rows = video ? videoRows : audioRows;
        auto open = rows[0].call;
        for (const Row& row : rows) {
            std::string what = std::string(video ? "video " : "audio ") + row.what;
            auto start = [&] { return video ? QLX_VideoStart(0, 0, 0) : QLX_AudioStart(0, 0, 0); };
            qlx_sim_reset();
            openHdmi();
            EXPECT_EQ(deinit(), 0);
            EXPECT_EQ(row.call(0), failed) << what << " before init";
            EXPECT_EQ(init(), 0);
            int32_t noSuch = row.call(2);
            EXPECT_NE(noSuch, 0) << what;
            EXPECT_NE(noSuch, failed) << what << ": the board has two of each";
            EXPECT_EQ(row.call(0), row.closed) << what << " before open";
            deinit();
            init();
            EXPECT_EQ(open(1), 0);
            EXPECT_EQ(row.call(0), row.closed) << what << " with another one open";
            deinit();
            init();
            EXPECT_EQ(open(0), 0);
            EXPECT_EQ(init(), 0);
            EXPECT_EQ(row.call(0), row.open) << what << " when open";
            deinit();
            init();
            EXPECT_EQ(open(0), 0);
            EXPECT_EQ(start(), 0);
            EXPECT_EQ(row.call(0), row.started) << what << " when started";
            EXPECT_EQ(init(), 0);
            EXPECT_EQ(deinit(), 0);
            EXPECT_EQ(row.call(0), failed) << what << " after two inits and one deinit";
        }
    }
}

TEST_F(SimDecoderState, AWrongArgumentChangesNothing) {
    openHdmi();
    QLX_VideoInit();
    QLX_AudioInit();
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_HDMI), 0);
    EXPECT_EQ(openAudio(0, QLX_SOURCE_TYPE_HDMI), 0);
    constexpr int32_t video = QLX_VIDEO_ERR_INVALID_PARA;
    constexpr int32_t audio = QLX_AUDIO_ERR_INVALID_PARA;
    EXPECT_EQ(QLX_VideoOpen(1, nullptr), video);
    EXPECT_EQ(openVideo(1, QLX_SOURCE_TYPE_NONE), video);
    EXPECT_EQ(QLX_VideoRegisterCallback(0, &log0, nullptr), video);
    EXPECT_EQ(QLX_VideoUnRegisterCallback(0, nullptr), video);
    EXPECT_EQ(QLX_VideoStart(0, 3, 100), video);
    EXPECT_EQ(QLX_VideoGetVideoInfo(0, 0, &videoInfo), video);
    EXPECT_EQ(QLX_VideoGetVideoInfo(0, 6, &videoInfo), video);
    EXPECT_EQ(QLX_VideoGetVideoInfo(0, 1, nullptr), video);
    QLX_SyncParams fourth = {3, 0, 0};
    EXPECT_EQ(QLX_VideoSyncSetMode(0, &fourth), QLX_VIDEOSYNC_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_VideoSyncSetMode(7, &freeRun), QLX_VIDEOSYNC_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_AudioStart(0, 3, 100), audio);
    EXPECT_EQ(QLX_AudioGetAudioInfo(0, 2, &audioInfo), audio);
    EXPECT_EQ(QLX_AudioSetVolume(0, 0, 101), audio);
    EXPECT_EQ(QLX_AudioSetMute(0, 7, 0), audio);
    EXPECT_EQ(QLX_AudioSetDigitalAudioMode(0, 0), audio);
    EXPECT_EQ(QLX_AudioSetDigitalAudioMode(0, 6), audio);
    EXPECT_EQ(QLX_AudioSetPrescaler(0, 256), audio);
    EXPECT_EQ(QLX_AudioSetAC4Parameters(0, 6, 1), audio);
    EXPECT_EQ(QLX_AudioSetAC4Parameters(0, 7, -2), audio);
    QLX_AudioStart(0, 0, 0);
    EXPECT_EQ(QLX_AudioStartDescription(0, 3, 100), audio);
    EXPECT_EQ(deviceState().find("description"), std::string::npos);
    EXPECT_EQ(QLX_AudioStartDescription(0, 1, 600), 0);
    EXPECT_EQ(QLX_AudioStartDescription(0, 1, 601), failed) << "there is one already";
    QLX_AudioStop(0);
    EXPECT_EQ(deviceState().find("description"), std::string::npos) << "it ends with the sound";
    for (uint32_t value : {0u, 50u, 150u, 255u}) {
        EXPECT_EQ(QLX_AudioSetPrescaler(0, value), 0);
        EXPECT_EQ(QLX_AudioGetPrescaler(0, &byte), 0);
        EXPECT_EQ(byte, value);
    }
    EXPECT_EQ(QLX_AudioGetDevNum(&byte), 0);
    EXPECT_EQ(byte, 2);
}

TEST_F(SimDecoderState, AnOpenNeedsASourceThatIsUp) {
    QLX_VideoInit();
    QLX_AudioInit();
    for (uint32_t kind : {QLX_SOURCE_TYPE_DEMUX, QLX_SOURCE_TYPE_RECORD, QLX_SOURCE_TYPE_HDMI,
                          QLX_SOURCE_TYPE_AV_CVBS, QLX_SOURCE_TYPE_AV_YPBPR, QLX_SOURCE_TYPE_VGA,
                          QLX_SOURCE_TYPE_TUNER}) {
        EXPECT_EQ(openVideo(0, kind, 1), failed) << kind;
        EXPECT_EQ(openAudio(0, kind, 1), failed) << kind;
    }
    QLX_DemuxInit();
    QLX_DemuxOpen(1);
    openHdmi();
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_DEMUX, 0), failed) << "another demultiplexer is open";
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_HDMI, 1), failed) << "another port is open";
    struct {
        uint32_t kind;
        uint32_t index;
    } up[] = {{QLX_SOURCE_TYPE_DEMUX, 1},
              {QLX_SOURCE_TYPE_RECORD, 1},
              {QLX_SOURCE_TYPE_HDMI, 0},
              {QLX_SOURCE_TYPE_LOCAL_PLAYER, 0},
              {QLX_SOURCE_TYPE_STREAM_INJECT, 0}};
    for (const auto& row : up) {
        EXPECT_EQ(openVideo(0, row.kind, row.index), 0) << row.kind;
        EXPECT_EQ(openAudio(0, row.kind, row.index), 0) << row.kind;
        EXPECT_EQ(QLX_VideoClose(0), 0);
        EXPECT_EQ(QLX_AudioClose(0), 0);
    }
}

TEST_F(SimDecoderState, APlayerGivesWay) {
    openHdmi();
    QLX_VideoInit();
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_STREAM_INJECT), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(0, &log0, onVideo), 0);
    EXPECT_EQ(QLX_VideoStart(0, 0, 0), 0);
    sim::sleepMs(100);
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_STREAM_INJECT), failed) << "not to its own kind";
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_HDMI), 0);
    EXPECT_EQ(namesOf(log0.all(), true), "start") << "and is told nothing";
    EXPECT_EQ(QLX_VideoRegisterCallback(0, &log1, onVideo), 0) << "the registration went with it";
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_LOCAL_PLAYER), failed) << "an input does not";
    QLX_ExtInDeInit();
    qlx_sim_reset();
    QLX_VideoInit();
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_STREAM_INJECT), 0);
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_HDMI), failed) << "a source that is down takes nothing";
    EXPECT_EQ(deviceState(), "Video initialised\nVideo 0 open\n");
}

TEST_F(SimDecoderState, TheStreamPlayersSecondDecoderIsRegisteredWithoutAnOpen) {
    QLX_VideoInit();
    QLX_AudioInit();
    EXPECT_EQ(QLX_VideoRegisterCallback(1, &log1, onVideo), failed);
    EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_STREAM_INJECT), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(1, &log1, onVideo), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(1, &log1, onVideo), failed);
    EXPECT_EQ(QLX_VideoUnRegisterCallback(1, onVideo), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(1, &log1, onVideo), 0);
    EXPECT_EQ(QLX_VideoClose(1), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(1, &log1, onVideo), 0) << "a close forgets it";
    EXPECT_EQ(openAudio(0, QLX_SOURCE_TYPE_STREAM_INJECT), 0);
    EXPECT_EQ(QLX_AudioRegisterCallback(1, &log1, onAudio), failed) << "audio has no such pair";
}

TEST_F(SimDecoderState, DeinitAndResetForgetAll) {
    for (bool byReset : {true, false}) {
        openHdmi();
        QLX_VideoInit();
        QLX_AudioInit();
        EXPECT_EQ(openVideo(0, QLX_SOURCE_TYPE_HDMI), 0);
        EXPECT_EQ(openAudio(1, QLX_SOURCE_TYPE_HDMI), 0);
        EXPECT_EQ(QLX_VideoRegisterCallback(0, &log0, onVideo), 0);
        EXPECT_EQ(QLX_AudioRegisterCallback(1, &log1, onAudio), 0);
        EXPECT_EQ(QLX_VideoStart(0, 0, 0), 0);
        EXPECT_EQ(QLX_AudioStart(1, 0, 0), 0);
        EXPECT_EQ(QLX_AudioStartDescription(1, 1, 600), 0);
        QLX_AudioSetPrescaler(1, 7);
        std::string state = deviceState();
        EXPECT_NE(state.find("Video initialised\nVideo 0 open\nVideo 0 registered\n"
                             "Video 0 started\nAudio initialised\nAudio 1 open\n"
                             "Audio 1 registered\nAudio 1 started\n"
                             "Audio 1 description started\n"),
                  std::string::npos)
            << state;
        if (byReset) {
            qlx_sim_reset();
        } else {
            EXPECT_EQ(QLX_VideoDeInit(), 0);
            EXPECT_EQ(QLX_AudioDeInit(), 0);
            EXPECT_EQ(QLX_ExtInDeInit(), 0);
        }
        EXPECT_EQ(deviceState(), "");
        EXPECT_EQ(namesOf(log0.all(), true), byReset ? "" : "absent stop");
        EXPECT_EQ(namesOf(log1.all(), false), byReset ? "" : "absent stop");
        openHdmi();
        QLX_AudioInit();
        EXPECT_EQ(openAudio(1, QLX_SOURCE_TYPE_HDMI), 0);
        EXPECT_EQ(QLX_AudioGetPrescaler(1, &byte), 0);
        EXPECT_EQ(byte, 128);
        qlx_sim_reset();
    }
}

}  // namespace
