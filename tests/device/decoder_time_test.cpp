// What decoders report and when, to the millisecond: on a stream whose index is made by hand
// (tests/shared/decoder_stream.h), and on signals of inputs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_videosync.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "simulator/world/world.h"
#include "tests/shared/decoder_log.h"
#include "tests/shared/decoder_stream.h"
#include "tests/shared/device.h"

namespace {

using namespace decoder_test;
using sim::DecoderFamily;

/** Of the default board. */
constexpr int64_t startMs = 5;
constexpr int64_t decodeMs = 40;
constexpr int64_t lossMs = 500;
constexpr int64_t signalMs = 200;
/** From the beginning of a picture that can be decoded to the first one shown. */
constexpr int64_t firstMs = unitMs / 2 + decodeMs;

DecoderFamily& family() {
    return handMadeFamily();
}

class SimDecoderTime : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
        decodersFind() = decoderIndex();
        log_.clear();
        char name[] = "/tmp/decoder_test.XXXXXX";
        folder_ = mkdtemp(name);
        file_ = folder_ + "/air.ts";
        writeStream(file_);
        QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(QLX_DemuxOpen(0), 0);
        ASSERT_EQ(QLX_DemuxConnectSource(0, &tuner), 0);
        ASSERT_EQ(QLX_DemuxStart(0), 0);
        receive(true);
        sim::DecoderSource source = {QLX_SOURCE_TYPE_DEMUX, 0, 0, 1};
        sim::decodersInit(family());
        ASSERT_EQ(sim::decoderOpen(family(), 0, &source), 0);
        ASSERT_EQ(sim::decoderRegister(family(), 0, &log_, onVideo), 0);
    }
    void TearDown() override {
        sim::resetDecoders(family());
        receive(false);
        qlx_sim_reset();
        unlink(file_.c_str());
        rmdir(folder_.c_str());
    }

    static void writeStream(const std::string& path, uint16_t clock = clockPid) {
        const demux_test::Bytes bytes = decoderStream(clock);
        FILE* file = fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
        fclose(file);
    }

    /** Lets a tuner receive a stream, nothing when that is empty. */
    static void tune(uint32_t tuner, const std::string& path) {
        static uint64_t sequence = UINT64_C(1) << 41;
        auto transmitter = std::make_shared<sim::Transmitter>();
        transmitter->stream = path;
        sim::setReception(tuner, ++sequence, path.empty() ? nullptr : transmitter);
    }
    /** Lets tuner 0 receive the stream, or nothing. */
    void receive(bool received) {
        tune(0, received ? file_ : "");
    }

    /** Waits for that time of a loop; answers it as device time. */
    static int64_t awaitLoop(int64_t ms) {
        int64_t now = sim::nowUs();
        int64_t at = (now / 1000 / loopMs) * loopMs + ms;
        while (at * 1000 <= now)
            at += loopMs;
        std::this_thread::sleep_for(std::chrono::microseconds(at * 1000 - now));
        return at;
    }
    static int32_t start(uint32_t pid = esPid) {
        return sim::decoderStart(family(), 0, QLX_VIDEO_FORMAT_MPEG2, pid);
    }
    static int32_t stop() {
        return sim::decoderStop(family(), 0);
    }
    std::string names() const {
        return namesOf(log_.all(), true);
    }
    /** Time of the first event of that kind after `since`. */
    int64_t msOf(uint32_t event, int64_t since) const {
        return log_.first(event).ms - since;
    }
    static uint64_t pts() {
        std::lock_guard<std::mutex> lock(family().mutex);
        auto moment = sim::shownMoment(*family().decoders[0].run);
        return moment.has_value() ? moment->pts : 0;
    }
    static uint64_t stc() {
        std::lock_guard<std::mutex> lock(family().mutex);
        return sim::streamClock(*family().decoders[0].run);
    }
    static void setMode(const QLX_SyncParams& params) {
        EXPECT_EQ(sim::decoderSetSync(family(), 0, params), 0);
    }
    /** Starts just before a picture that can be decoded, and waits until all has settled. */
    int64_t play() {
        int64_t at = awaitLoop(groupUnits * unitMs - 100);
        EXPECT_EQ(start(), 0);
        sim::sleepMs(1000);
        EXPECT_EQ(names(), "start frame present sync");
        log_.clear();
        return at;
    }

    Log log_;
    std::string folder_;
    std::string file_;
};

TEST_F(SimDecoderTime, TheFirstPictureFollowsFromTheStream) {
    struct {
        int64_t startAt;
        int64_t accessAt;
    } rows[] = {
        {100, 480}, {479, 480}, {480, 480}, {481, 960}, {4700, 4800},
    };
    for (const auto& row : rows) {
        log_.clear();
        int64_t at = awaitLoop(row.startAt);
        ASSERT_EQ(start(), 0);
        sim::sleepMs(1500);
        int64_t access = row.accessAt - row.startAt;
        EXPECT_EQ(names(), "start frame present sync") << row.startAt;
        EXPECT_EQ(msOf(QLX_EVENT_VIDEO_START_DONE, at), startMs) << row.startAt;
        EXPECT_EQ(msOf(QLX_EVENT_VIDEO_FRAME_READY, at), access + firstMs) << row.startAt;
        EXPECT_EQ(msOf(QLX_EVENT_VIDEO_INFO_CHANGE, at), access + firstMs) << row.startAt;
        EXPECT_EQ(msOf(QLX_EVENT_VIDEO_SYNC_DONE, at), access + shownAfterMs) << row.startAt;
        QLX_VideoDecInfo info = log_.first(QLX_EVENT_VIDEO_INFO_CHANGE).video;
        EXPECT_EQ(info.uFrameWidth, 720);
        EXPECT_EQ(info.uFrameRate, 25u);
        EXPECT_EQ(info.eFrameAspect, static_cast<uint32_t>(QLX_VIDEO_ASPECT_16_9));
        EXPECT_EQ(info.eVideoFormat, static_cast<uint32_t>(QLX_VIDEO_FORMAT_MPEG2));
        log_.clear();
        EXPECT_EQ(stop(), 0);
        EXPECT_EQ(names(), "absent stop") << "before the stop returns";
    }
}

TEST_F(SimDecoderTime, AFirstPictureIsShownAheadOfItsTime) {
    int64_t at = awaitLoop(400);
    EXPECT_EQ(start(), 0);
    sim::sleepMs(80 + firstMs + 10);
    EXPECT_EQ(names(), "start frame present");
    auto stamp = static_cast<uint64_t>(at + 80 + shownAfterMs) * 90 % (UINT64_C(1) << 33);
    EXPECT_EQ(pts(), stamp);
    sim::sleepMs(20);
    EXPECT_EQ(pts(), stamp) << "and stands until then";
}

TEST_F(SimDecoderTime, AnHourOfOneChannelIsSilent) {
    play();
    uint64_t last = 0;
    // A picture that waits for its time is shown first; then a picture each 40 ms.
    for (int i = 0; i < 9000; i++) {
        uint64_t now = pts();
        ASSERT_GT(now, last) << i;
        if (last != 0) {
            ASSERT_EQ(now - last, 400u * 90) << i;
        }
        // The picture on the screen began at most a picture's length ago.
        ASSERT_LT(stc() - now, static_cast<uint64_t>(unitMs) * 90) << i;
        last = now;
        sim::sleepMs(400);
    }
    EXPECT_EQ(names(), "");
}

TEST_F(SimDecoderTime, ANewFormatIsToldWhenItIsShown) {
    decodersFind().changes.push_back({5 * groupUnits, pictureFormat(1920, 1080)});
    decodersFind().units[0].flags |= sim::unit_newFormat;
    decodersFind().units[5 * groupUnits].flags |= sim::unit_newFormat;
    play();
    int64_t at = awaitLoop(0);
    log_.clear();
    sim::sleepMs(loopMs + 300);
    std::vector<Told> log = log_.all();
    ASSERT_EQ(names(), "present present present");
    EXPECT_EQ(log[0].ms - at, shownAfterMs);
    EXPECT_EQ(log[0].video.uFrameWidth, 720);
    EXPECT_EQ(log[1].ms - at, 5 * groupUnits * unitMs + shownAfterMs);
    EXPECT_EQ(log[1].video.uFrameWidth, 1920);
    EXPECT_EQ(log[2].ms - at, loopMs + shownAfterMs);
    EXPECT_EQ(log[2].video.uFrameWidth, 720);
}

TEST_F(SimDecoderTime, DataThatDoNotDecodeAreToldOnce) {
    for (sim::AccessUnit& unit : decodersFind().units)
        unit.flags = unit.first % 3 == 0 ? sim::unit_damaged | sim::unit_access : 0;
    decodersFind().changes.clear();
    int64_t at = awaitLoop(480);
    EXPECT_EQ(start(), 0);
    sim::sleepMs(60000);
    EXPECT_EQ(names(), "start error");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_DECODE_ERROR, at), 1 + decodeMs) << "with the first packet";
    EXPECT_EQ(pts(), 0u);
    EXPECT_EQ(stc(), 0u);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(names(), "start error absent stop");
}

TEST_F(SimDecoderTime, WhatNeverComesIsNoError) {
    for (uint32_t pid : {8888u, uint32_t{otherPid}}) {
        log_.clear();
        EXPECT_EQ(start(pid), 0);
        sim::sleepMs(10000);
        EXPECT_EQ(names(), "start") << pid;
        EXPECT_EQ(stop(), 0);
        EXPECT_EQ(names(), "start absent stop") << pid;
        EXPECT_EQ(stop(), 0);
        EXPECT_EQ(names(), "start absent stop") << "a stop of a stopped one tells nothing";
    }
}

TEST_F(SimDecoderTime, DamageIsToldSparingly) {
    // One picture in a loop, which is shorter than the pause; then all.
    decodersFind().units[100].flags |= sim::unit_damaged;
    play();
    int64_t at = awaitLoop(3000);
    sim::sleepMs(3 * loopMs);
    EXPECT_EQ(names(), "error error");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_DECODE_ERROR, at), 1000 + firstMs);
    EXPECT_EQ(log_.all().back().ms - at, 2 * loopMs + 1000 + firstMs);
    stop();
    log_.clear();
    for (sim::AccessUnit& unit : decodersFind().units)
        unit.flags |= sim::unit_damaged;
    EXPECT_EQ(start(), 0);
    sim::sleepMs(31000);
    EXPECT_LE(log_.all().size(), 4u + 31 / 5 + 1) << names();
    EXPECT_GE(log_.all().size(), 4u + 31 / 5) << names();
}

TEST_F(SimDecoderTime, LostReceptionFreezesThePictureAndEndsIt) {
    play();
    int64_t at = awaitLoop(2000);
    receive(false);
    sim::sleepMs(lossMs - 50);
    EXPECT_EQ(names(), "lost") << "the last picture is kept";
    uint64_t frozen = pts();
    sim::sleepMs(40);
    EXPECT_EQ(pts(), frozen);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "lost absent");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_SYNC_LOST, at), 0);
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_INFO_CHANGE, at), lossMs);
    log_.clear();
    at = awaitLoop(400);
    receive(true);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "present sync") << "the first picture is told once for a start";
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_INFO_CHANGE, at), 80 + firstMs);
    log_.clear();
    // A short interruption: the picture stands still and goes on.
    at = awaitLoop(400);
    receive(false);
    sim::sleepMs(10);
    receive(true);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "lost sync");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_SYNC_DONE, at), 80 + shownAfterMs);
}

TEST_F(SimDecoderTime, AChangedByteOnTheAirDoesNotInterrupt) {
    play();
    // The index of the changed stream has a smaller picture from the next loop on.
    decodersFind().changes[0].format = pictureFormat(352, 288);
    EXPECT_TRUE(sim::changeWorld("stream " + file_ + " byte 1000 55"));
    sim::sleepMs(10);
    ASSERT_EQ(names(), "present");
    EXPECT_EQ(log_.all()[0].video.uFrameWidth, 352);
    log_.clear();
    decodersFind().changes.clear();
    for (sim::AccessUnit& unit : decodersFind().units)
        unit.flags = sim::unit_access | sim::unit_damaged;
    EXPECT_TRUE(sim::changeWorld("stream " + file_ + " byte 1000 56"));
    sim::sleepMs(5000);
    EXPECT_EQ(names(), "lost error absent") << "nothing decodes any more";
    log_.clear();
    decodersFind() = decoderIndex();
    EXPECT_TRUE(sim::changeWorld("stream " + file_ + " intact"));
    sim::sleepMs(2000);
    EXPECT_EQ(names(), "present sync");
}

TEST_F(SimDecoderTime, AnInterruptedDemultiplexerBeginsAnew) {
    play();
    EXPECT_EQ(QLX_DemuxStop(0), 0);
    EXPECT_EQ(QLX_DemuxStart(0), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "lost sync");
    log_.clear();
    // Other bytes, but behind an interruption.
    EXPECT_EQ(QLX_DemuxStop(0), 0);
    EXPECT_TRUE(sim::changeWorld("stream " + file_ + " byte 1000 55"));
    EXPECT_EQ(QLX_DemuxStart(0), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "lost sync");
    log_.clear();
    QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
    EXPECT_EQ(QLX_DemuxConnectSource(0, &tuner), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "lost sync");
    EXPECT_EQ(QLX_DemuxClose(0), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "lost sync lost absent");
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(names(), "lost sync lost absent stop") << "the absence is told once";
}

TEST_F(SimDecoderTime, AnotherTunerIsAnInterruption) {
    std::string copy = folder_ + "/other.ts";
    writeStream(copy, otherPid);
    tune(1, copy);
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, clockPid});
    play();
    QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 1, 0};
    EXPECT_EQ(QLX_DemuxConnectSource(0, &tuner), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "lost") << "its clock is on another PID";
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, otherPid});
    sim::sleepMs(100);
    EXPECT_EQ(names(), "lost sync");
    tune(1, "");
    unlink(copy.c_str());
}

TEST_F(SimDecoderTime, PauseAndResume) {
    play();
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    uint64_t held = pts();
    uint64_t clock = stc();
    sim::sleepMs(10000);
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    EXPECT_EQ(pts(), held);
    EXPECT_EQ(stc(), clock);
    EXPECT_EQ(sim::decoderPause(family(), 0, false), 0);
    EXPECT_EQ(pts() - held, 10000u * 90) << "with what is on the air";
    sim::sleepMs(2000);
    EXPECT_EQ(names(), "") << "and without a first picture";
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    held = pts();
    sim::sleepMs(1000);
    receive(false);
    sim::sleepMs(lossMs / 2);
    EXPECT_EQ(pts(), held) << "the picture that was held stays on the screen";
}

TEST_F(SimDecoderTime, APausedDecoderTellsANewFormatWhenItGoesOn) {
    decodersFind().changes.push_back({5 * groupUnits, pictureFormat(1920, 1080)});
    decodersFind().units[0].flags |= sim::unit_newFormat;
    decodersFind().units[5 * groupUnits].flags |= sim::unit_newFormat;
    play();
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    awaitLoop(3000);
    EXPECT_EQ(names(), "");
    EXPECT_EQ(sim::decoderPause(family(), 0, false), 0);
    sim::sleepMs(10);
    ASSERT_EQ(names(), "present");
    EXPECT_EQ(log_.all()[0].video.uFrameWidth, 1920);
}

TEST_F(SimDecoderTime, WhatCameDuringAPauseIsPassedOver) {
    decodersFind().units[100].flags |= sim::unit_damaged;
    play();
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    awaitLoop(4500);
    EXPECT_EQ(sim::decoderPause(family(), 0, false), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "");
    EXPECT_EQ(stop(), 0);
    log_.clear();
    // Paused before the first picture: it is the next one after the pause.
    awaitLoop(400);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    int64_t at = awaitLoop(3000);
    EXPECT_EQ(names(), "start");
    EXPECT_EQ(sim::decoderPause(family(), 0, false), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "start frame present sync");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_FRAME_READY, at), 360 + firstMs);
}

TEST_F(SimDecoderTime, AFlushBeginsAnew) {
    play();
    int64_t at = awaitLoop(400);
    EXPECT_EQ(sim::decoderFlush(family(), 0), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(names(), "lost frame sync");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_FRAME_READY, at), 80 + firstMs);
}

TEST_F(SimDecoderTime, NothingRunsTogetherWithoutTheClock) {
    awaitLoop(400);
    EXPECT_EQ(start(), 0);
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, otherPid});
    sim::sleepMs(5000);
    EXPECT_EQ(names(), "start frame present");
    // Adaptation fields without a clock reference.
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, esPid});
    sim::sleepMs(5000);
    EXPECT_EQ(names(), "start frame present");
    // A clock reference comes every 40 ms, at the end of a picture.
    int64_t at = awaitLoop(400);
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, clockPid});
    sim::sleepMs(100);
    EXPECT_EQ(names(), "start frame present sync");
    EXPECT_EQ(msOf(QLX_EVENT_VIDEO_SYNC_DONE, at), 21);
    log_.clear();
    setMode({QLX_VIDEOSYNC_MODE_PCR_MASTER, 0, otherPid});
    sim::sleepMs(100);
    EXPECT_EQ(names(), "lost");
    setMode({QLX_VIDEOSYNC_MODE_FREE_RUN, 0, 0});
    sim::sleepMs(100);
    EXPECT_EQ(names(), "lost sync");
    setMode({QLX_VIDEOSYNC_MODE_AUDIO_MASTER, otherPid, 0});
    sim::sleepMs(100);
    EXPECT_EQ(names(), "lost sync lost") << "no sound to follow";
}

/** Does something to its decoder from inside a callback, at one kind of event. */
struct Meddler {
    Log log;
    uint32_t event;
    std::function<int32_t()> call;
    int32_t result = -1;

    static void callback(uint32_t number, void* userData, uint32_t event, void* data) {
        auto* self = static_cast<Meddler*>(userData);
        onVideo(number, &self->log, event, data);
        if (event == self->event && self->result == -1)
            self->result = self->call();
    }
};

TEST_F(SimDecoderTime, CallbacksMayCallTheDecoder) {
    constexpr uint32_t frame = QLX_EVENT_VIDEO_FRAME_READY;
    constexpr uint32_t info = QLX_EVENT_VIDEO_INFO_CHANGE;
    auto unregister = [] { return sim::decoderUnRegister(family(), 0, Meddler::callback); };
    struct {
        const char* what;
        uint32_t event;
        std::function<int32_t()> call;
        const char* names;
    } rows[] = {
        {"stop", info, [] { return stop(); }, "start frame present absent stop"},
        {"close", info, [] { return sim::decoderClose(family(), 0); },
         "start frame present absent stop"},
        {"deinit", info, [] { return sim::decodersDeInit(family()); },
         "start frame present absent stop"},
        {"unregister", info, unregister, "start frame present"},
        // What is still to be told is not.
        {"unregister", frame, unregister, "start frame"},
        {"flush", info, [] { return sim::decoderFlush(family(), 0); },
         "start frame present frame sync"},
    };
    for (const auto& row : rows) {
        static Meddler meddler;
        meddler.log.clear();
        meddler.result = -1;
        meddler.event = row.event;
        meddler.call = row.call;
        sim::resetDecoders(family());
        sim::DecoderSource source = {QLX_SOURCE_TYPE_DEMUX, 0, 0, 1};
        sim::decodersInit(family());
        ASSERT_EQ(sim::decoderOpen(family(), 0, &source), 0);
        ASSERT_EQ(sim::decoderRegister(family(), 0, &meddler, Meddler::callback), 0);
        EXPECT_EQ(start(), 0);
        sim::sleepMs(3000);
        EXPECT_EQ(meddler.result, 0) << row.what;
        EXPECT_EQ(namesOf(meddler.log.all(), true), row.names) << row.what;
    }
}

TEST_F(SimDecoderTime, FaultsReachTheEvents) {
    qlx_sim_add_fault("VideoEvent with=event=4 drop");
    qlx_sim_add_fault("VideoEvent with=event=16 call=1 set=eVideoPresent:2");
    qlx_sim_add_fault("VideoEvent with=event=32 set=data:7");
    EXPECT_EQ(start(), 0);
    sim::sleepMs(1500);
    EXPECT_EQ(names(), "start absent sync");
    EXPECT_EQ(log_.first(QLX_EVENT_VIDEO_INFO_CHANGE).video.eVideoPresent, 2u);
    EXPECT_EQ(log_.first(QLX_EVENT_VIDEO_SYNC_DONE).word, 7u);
}

/** An index of any kind: damage, access points, formats and stamps without an order. */
sim::VideoIndex anyIndex(std::mt19937& random) {
    auto upTo = [&](uint32_t most) { return random() % (most + 1); };
    sim::VideoIndex index = decoderIndex();
    uint32_t damageOf = 1 + upTo(20);
    index.changes.clear();
    for (uint32_t i = 0; i < unitCount; i++) {
        sim::AccessUnit& unit = index.units[i];
        if (upTo(damageOf) == 0)
            unit.flags |= sim::unit_damaged;
        if (upTo(3) == 0)
            unit.flags &= static_cast<uint8_t>(~sim::unit_decoded);
        uint32_t stamp = upTo(30);
        if (stamp == 0)
            unit.pts = sim::noStamp;
        else if (stamp == 1)
            unit.pts = random();
        if ((unit.flags & sim::unit_decoded) != 0 && upTo(4) == 0) {
            unit.flags |= sim::unit_newFormat;
            index.changes.push_back({i, pictureFormat(static_cast<uint16_t>(1 + upTo(3)), 576)});
        }
    }
    if (index.changes.empty())
        index.changes.push_back({0, pictureFormat(720, 576)});
    return index;
}

TEST_F(SimDecoderTime, WhateverHappensTheRulesHold) {
    std::mt19937 random(1);
    const std::function<void()> deeds[] = {
        [&] { receive(false); },
        [&] { receive(true); },
        [] { sim::decoderPause(family(), 0, true); },
        [] { sim::decoderPause(family(), 0, false); },
        [] {
            setMode({static_cast<uint32_t>(QLX_VIDEOSYNC_MODE_PCR_MASTER), 0, otherPid});
        },
        [] {
            setMode({static_cast<uint32_t>(QLX_VIDEOSYNC_MODE_PCR_MASTER), 0, clockPid});
        },
        [] { QLX_DemuxStop(0); },
        [] { QLX_DemuxStart(0); },
        [&] {
            decodersFind() = anyIndex(random);
            sim::changeWorld("stream " + file_ + " byte 1000 " + (random() % 2 == 0 ? "55" : "56"));
        },
    };
    for (int round = 0; round < 100; round++) {
        decodersFind() = anyIndex(random);
        receive(true);
        QLX_DemuxStart(0);
        log_.clear();
        size_t flushes = 0;
        int64_t begin = sim::nowMs();
        ASSERT_EQ(start(), 0);
        for (int i = 0; i < 20; i++) {
            sim::sleepMs(random() % 1500);
            if (random() % 10 == 0) {
                flushes++;
                sim::decoderFlush(family(), 0);
            } else {
                deeds[random() % std::size(deeds)]();
            }
            pts();
            stc();
        }
        ASSERT_EQ(stop(), 0);
        size_t told = log_.all().size();
        int64_t seconds = (sim::nowMs() - begin) / 1000;
        sim::sleepMs(1000);
        const std::vector<Told> log = log_.all();
        ASSERT_EQ(log.size(), told) << "nothing comes behind a stop: " << names();
        ASSERT_EQ(log.front().event, static_cast<uint32_t>(QLX_EVENT_VIDEO_START_DONE));
        ASSERT_EQ(log.back().event, static_cast<uint32_t>(QLX_EVENT_VIDEO_STOP_DONE));
        size_t frames = 0;
        size_t errors = 0;
        bool synced = false;
        QLX_VideoDecInfo last = {};
        for (const Told& one : log) {
            frames += one.event == QLX_EVENT_VIDEO_FRAME_READY;
            errors += one.event == QLX_EVENT_VIDEO_DECODE_ERROR;
            if (one.event == QLX_EVENT_VIDEO_SYNC_DONE || one.event == QLX_EVENT_VIDEO_SYNC_LOST) {
                ASSERT_EQ(synced, one.event == QLX_EVENT_VIDEO_SYNC_LOST) << names();
                synced = !synced;
            }
            if (one.event == QLX_EVENT_VIDEO_INFO_CHANGE) {
                ASSERT_NE(memcmp(&last, &one.video, sizeof last), 0) << names();
                last = one.video;
            }
        }
        ASSERT_LE(frames, 1 + flushes) << names();
        ASSERT_LE(errors, static_cast<size_t>(seconds / 5 + 22)) << names();
        ASSERT_EQ(last.eVideoPresent, static_cast<uint32_t>(QLX_VIDEO_NOT_PRESENT)) << names();
    }
}

class SimDecoderSignal : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
        set(true, true);
        QLX_VideoInit();
        QLX_AudioInit();
        QLX_VideoAttr video = {QLX_SOURCE_TYPE_AV_CVBS, 0, QLX_INPUT_CLASS_CVBS, 0};
        QLX_AudioAttr audio = {QLX_SOURCE_TYPE_AV_CVBS, 0, QLX_INPUT_CLASS_CVBS};
        ASSERT_EQ(QLX_VideoOpen(0, &video), 0);
        ASSERT_EQ(QLX_AudioOpen(0, &audio), 0);
        ASSERT_EQ(QLX_VideoRegisterCallback(0, &video_, onVideo), 0);
        ASSERT_EQ(QLX_AudioRegisterCallback(0, &audio_, onAudio), 0);
    }
    void TearDown() override {
        set(false, false);
        qlx_sim_reset();
    }
    void set(bool open, bool locked) {
        if (locked != source_.locked)
            source_.sinceMs = sim::nowMs();
        source_.open = open;
        source_.locked = locked;
        sim::setSignalSource(QLX_SOURCE_TYPE_AV_CVBS, 0, source_);
    }

    sim::SignalSource source_ = {
        false, false, 0, "CVBS 0", {720, 576, 30000, 1001, true, 4, 3}, {2, 48000, 1000}};
    Log video_;
    Log audio_;
};

TEST_F(SimDecoderSignal, APictureIsMeasuredAndFollowed) {
    int64_t at = sim::nowMs();
    EXPECT_EQ(QLX_VideoStart(0, QLX_VIDEO_FORMAT_NONE, 0), 0);
    EXPECT_EQ(QLX_AudioStart(0, QLX_AUDIO_FORMAT_NONE, 0), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(video_.all(), true), "start frame present");
    EXPECT_EQ(namesOf(audio_.all(), false), "present");
    EXPECT_EQ(video_.first(QLX_EVENT_VIDEO_INFO_CHANGE).ms - at, startMs + signalMs);
    QLX_VideoDecInfo picture = video_.first(QLX_EVENT_VIDEO_INFO_CHANGE).video;
    EXPECT_EQ(picture.uFrameRate, 29u);
    EXPECT_EQ(picture.bInterlaced, 1u);
    EXPECT_EQ(picture.eFrameAspect, static_cast<uint32_t>(QLX_VIDEO_ASPECT_4_3));
    EXPECT_EQ(picture.eVideoFormat, 0u);
    QLX_AudioDecInfo sound = audio_.first(QLX_EVENT_AUDIO_INFO_CHANGE).audio;
    EXPECT_EQ(sound.eAudioFormat, 0u);
    EXPECT_EQ(sound.eChannelInfo, static_cast<uint32_t>(QLX_AUDIO_CHANNEL_2_0));
    video_.clear();
    audio_.clear();
    source_.picture.height = 480;
    source_.sound.channels = 0;
    set(true, true);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(video_.all(), true), "present");
    EXPECT_EQ(video_.all()[0].video.uFrameHeight, 480);
    EXPECT_EQ(namesOf(audio_.all(), false), "absent") << "a source without sound";
    video_.clear();
    audio_.clear();
    set(true, false);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(video_.all(), true), "absent");
    source_.sound.channels = 1;
    set(true, true);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(video_.all(), true), "absent present");
    EXPECT_EQ(namesOf(audio_.all(), false), "present");
    EXPECT_EQ(QLX_VideoStop(0), 0);
    EXPECT_EQ(QLX_AudioStop(0), 0);
    EXPECT_EQ(namesOf(video_.all(), true), "absent present absent stop");
    EXPECT_EQ(namesOf(audio_.all(), false), "present absent stop");
}

TEST_F(SimDecoderSignal, WhatIsToldIsAnsweredToo) {
    EXPECT_EQ(QLX_VideoStart(0, 0, 0), 0);
    EXPECT_EQ(QLX_AudioStart(0, 0, 0), 0);
    QLX_VideoInfo info = {};
    for (uint32_t type : {3u, 4u, 5u}) {
        EXPECT_EQ(QLX_VideoGetVideoInfo(0, type, &info), 0);
        EXPECT_EQ(info.eParamType, type);
        EXPECT_EQ(info.eStatus, 0u) << type << " before there is a picture";
    }
    EXPECT_EQ(QLX_VideoGetVideoInfo(0, QLX_VIDEO_PARAMTYPE_GET_DECINFO, &info), 0);
    EXPECT_EQ(info.stVideoDecInfo.eVideoPresent, static_cast<uint32_t>(QLX_VIDEO_NOT_PRESENT));
    EXPECT_EQ(info.stVideoDecInfo.eVideoAttrB, 4u);
    sim::sleepMs(500);
    for (uint32_t type : {3u, 5u}) {
        EXPECT_EQ(QLX_VideoGetVideoInfo(0, type, &info), 0);
        EXPECT_EQ(info.eStatus, 1u) << type;
    }
    EXPECT_EQ(QLX_VideoGetVideoInfo(0, QLX_VIDEO_PARAMTYPE_GET_DECINFO, &info), 0);
    QLX_VideoDecInfo told = video_.first(QLX_EVENT_VIDEO_INFO_CHANGE).video;
    EXPECT_EQ(memcmp(&info.stVideoDecInfo, &told, sizeof told), 0);
    QLX_AudioInfo sound = {};
    EXPECT_EQ(QLX_AudioGetAudioInfo(0, QLX_AUDIO_PARAMTYPE_DEC_STATUS, &sound), 0);
    EXPECT_EQ(sound.eStatus, 1u);
    EXPECT_EQ(QLX_AudioGetAudioInfo(0, QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, &sound), 0);
    EXPECT_EQ(sound.stAudioDecInfo.audioPresent, 1u);
}

TEST_F(SimDecoderSignal, ASoundTellsWhatIsChosen) {
    EXPECT_EQ(QLX_AudioStart(0, 0, 0), 0);
    EXPECT_EQ(QLX_AudioFlush(0), 0);
    sim::sleepMs(500);
    EXPECT_EQ(namesOf(audio_.all(), false), "present") << "what was not there does not end";
    audio_.clear();
    EXPECT_EQ(QLX_AudioSetDigitalAudioMode(0, QLX_AUDIO_DIGITAL_MODE_TRACK_B), 0);
    sim::sleepMs(10);
    ASSERT_EQ(namesOf(audio_.all(), false), "present");
    EXPECT_EQ(audio_.all()[0].audio.eAudioAttrA,
              static_cast<uint32_t>(QLX_AUDIO_DIGITAL_MODE_TRACK_B));
    EXPECT_EQ(QLX_AudioSetDigitalAudioMode(0, QLX_AUDIO_DIGITAL_MODE_TRACK_B), 0);
    sim::sleepMs(10);
    EXPECT_EQ(audio_.all().size(), 1u) << "the same is not told again";
    // A flush of sound is an end and a new beginning.
    audio_.clear();
    EXPECT_EQ(QLX_AudioFlush(0), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(audio_.all(), false), "absent present");
}

TEST_F(SimDecoderSignal, OutputsSeeWhatIsPlayed) {
    EXPECT_TRUE(sim::anyVideoDecoderOpen());
    EXPECT_EQ(sim::videoShown(1).open, false);
    EXPECT_EQ(sim::videoShown(0).origin.kind, sim::DecoderOrigin::Kind::nothing);
    EXPECT_EQ(QLX_VideoStart(0, 0, 0), 0);
    EXPECT_EQ(QLX_AudioStart(0, 0, 0), 0);
    EXPECT_EQ(QLX_AudioSetVolume(0, QLX_AUDIO_SOURCE_MAIN, 50), 0);
    EXPECT_EQ(QLX_AudioSetMute(0, QLX_AUDIO_SOURCE_PLAYER, QLX_TRUE), 0);
    sim::sleepMs(500);
    sim::VideoShown shown = sim::videoShown(0);
    EXPECT_TRUE(shown.open);
    EXPECT_EQ(shown.origin.kind, sim::DecoderOrigin::Kind::signal);
    EXPECT_EQ(shown.origin.signalKind, static_cast<uint32_t>(QLX_SOURCE_TYPE_AV_CVBS));
    EXPECT_EQ(shown.info.uFrameWidth, 720);
    sim::AudioPlayed played = sim::audioPlayed(0);
    EXPECT_EQ(played.origin.kind, sim::DecoderOrigin::Kind::signal);
    EXPECT_EQ(played.volume, 50u);
    EXPECT_FALSE(played.muted) << "another source of the decoder is";
    EXPECT_EQ(QLX_AudioSetPrescaler(0, 200), 0);
    EXPECT_EQ(QLX_AudioSetDigitalAudioMode(0, QLX_AUDIO_DIGITAL_MODE_TRACK_A), 0);
    EXPECT_EQ(QLX_AudioPause(0), 0);
    EXPECT_EQ(QLX_VideoPause(0), 0);
    EXPECT_TRUE(sim::videoShown(0).paused);
    played = sim::audioPlayed(0);
    EXPECT_TRUE(played.paused);
    EXPECT_EQ(played.prescaler, 200);
    EXPECT_EQ(played.digitalMode, static_cast<uint32_t>(QLX_AUDIO_DIGITAL_MODE_TRACK_A));
    set(true, false);
    sim::sleepMs(10);
    EXPECT_EQ(sim::videoShown(0).origin.kind, sim::DecoderOrigin::Kind::signal) << "frozen";
    EXPECT_EQ(sim::audioPlayed(0).origin.kind, sim::DecoderOrigin::Kind::nothing) << "silent";
}

TEST_F(SimDecoderSignal, AnAnalogDecoderFollowsTheFrontEndThatIsOpen) {
    EXPECT_EQ(QLX_VideoClose(0), 0);
    QLX_VideoAttr attr = {QLX_SOURCE_TYPE_TUNER, 0, QLX_INPUT_CLASS_NONE,
                          QLX_VIDEO_INPUT_MODE_TUNER};
    EXPECT_EQ(QLX_VideoOpen(0, &attr), QLX_FAILED);
    sim::SignalSource station = source_;
    station.picture.height = 480;
    sim::setSignalSource(QLX_SOURCE_TYPE_TUNER, 2, station);
    EXPECT_EQ(QLX_VideoOpen(0, &attr), 0);
    EXPECT_EQ(QLX_VideoRegisterCallback(0, &video_, onVideo), 0);
    EXPECT_EQ(QLX_VideoStart(0, 0, 0), 0);
    sim::sleepMs(500);
    EXPECT_EQ(namesOf(video_.all(), true), "start frame present");
    EXPECT_EQ(video_.first(QLX_EVENT_VIDEO_INFO_CHANGE).video.uFrameHeight, 480);
    EXPECT_EQ(sim::videoShown(0).origin.signalIndex, 2u);
    // Another front end, the one that the program names, is opened beside it.
    video_.clear();
    station.picture.height = 576;
    int64_t at = sim::nowMs();
    sim::setSignalSource(QLX_SOURCE_TYPE_TUNER, 0, station);
    sim::sleepMs(1000);
    EXPECT_EQ(namesOf(video_.all(), true), "present");
    EXPECT_EQ(video_.all()[0].ms - at, signalMs);
    EXPECT_EQ(sim::videoShown(0).origin.signalIndex, 0u);
    sim::setSignalSource(QLX_SOURCE_TYPE_TUNER, 0, {});
    sim::setSignalSource(QLX_SOURCE_TYPE_TUNER, 2, {});
}

}  // namespace
