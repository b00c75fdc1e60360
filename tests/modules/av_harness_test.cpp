// Bringing up picture and sound: what each operation calls for each kind of source, what it undoes
// when one of its calls is refused, and what it waits for. The calls, and the texts of those that
// fail, stand in tests/golden/av_operations.txt; ZK_GOLDEN=write writes that file anew for a
// review.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <vector>

#include "platform/qlx_afe.h"
#include "platform/qlx_ci.h"
#include "testcase/afe/afe_harness.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_module.h"
#include "testcase/av/av_play.h"
#include "testcase/extin/extin_harness.h"
#include "testcase/vout/vout_harness.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

const uint32_t PASS = TC_SUCCESS;
const uint32_t FAIL = TC_FAILURE;

/** A source of a kind; every number differs, so that none is taken for another. */
AvSource sourceOf(uint32_t eSource) {
    AvSource source = {};
    source.eSource = eSource;
    source.eDTVDemuxDev = 0;
    source.eDTVTunerDev = 2;
    source.eATVTunerDev = 3;
    source.uATVChannelId = 1;
    source.uExtInPort = eSource == AV_SOURCE_HDMI ? 2 : 1;
    return source;
}

/** The names of recorded calls without repetitions, with the number of an audio output; those of
 * the front of the road that a tuner or amplifier has are left out. */
std::vector<std::string> shortCalls() {
    std::istringstream lines(recordedCalls());
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 4, "QLX_") != 0)
            continue;
        std::string name = line.substr(4, line.find('(') - 4);
        size_t output = line.find("(output=");
        if (name.compare(0, 4, "AOut") == 0 && output != std::string::npos)
            name += "-" + line.substr(output + 8, 1);
        // What is asked again and again counts once; each PID is one of its own.
        if (names.empty() || names.back() != name || name == "DescSetPid")
            names.push_back(name);
    }
    return names;
}

/** What a wrapper calls, for records that a person reads. */
const std::pair<const char*, const char*> wrappers[] = {
    {"AOutSetMute-0 AOutSetMute-1 AOutSetMute-2 AOutSetMute-3 AOutSetMute-4 AOutSetMute-5",
     "TC_AOUT_STOP"},
    {"AudioSetMute VideoStop AudioStop", "TC_AV_STOP"},
    {"VOutDisable VOutUnRegisterCallback VOutClose", "TC_VOUT_CLOSE"},
    {"AOutClose-4 AOutClose-3 AOutClose-2 AOutClose-1 AOutClose-0", "TC_AOUT_CLOSE"},
    {"AudioUnRegisterCallback VideoUnRegisterCallback VideoClose AudioClose", "TC_AV_CLOSE"},
    {"DemuxStop DemuxClose", "TC_DEMUX_STOP"},
    {"TunerUnRegisterCallback TunerClose", "TC_TUNER_STOP"},
    {"AFEUnRegisterCallback AFEClose AFEDeInit", "TC_ANALOG_END"},
    {"AudioDeInit VideoDeInit", "TC_AV_DEINIT"},
};

/** The names from a place on, each behind a blank; a whole wrapper by its name. */
std::string joined(const std::vector<std::string>& names, size_t from) {
    std::string text;
    for (size_t i = from; i < names.size(); i++)
        text += " " + names[i];
    for (const auto& wrapper : wrappers) {
        const std::string calls = wrapper.first;
        for (size_t at; (at = text.find(" " + calls)) != std::string::npos;)
            text.replace(at + 1, calls.size(), wrapper.second);
    }
    return text;
}

class AvHarness : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        setUpBench();
    }
    void TearDown() override {
        EXPECT_EQ(AV_CommonTestTeardown(), PASS);
        ModuleBench::TearDown();
    }
    /** The device after power on, with the services of a module. */
    void setUpBench() {
        AV_CommonTestTeardown();
        qlx_sim_reset();
        ASSERT_EQ(AV_CommonTestSetup(), PASS);
        if (decoders_) {
            ASSERT_EQ(TC_AV_INIT(), PASS);
        }
        rest_ = deviceState();
        takeOutput();
    }
    /** What is up in the device beside the module's services, in one line. */
    std::string leftUp() const {
        std::set<std::string> before;
        std::istringstream rest(rest_);
        for (std::string line; std::getline(rest, line);)
            before.insert(line);
        std::istringstream now(deviceState());
        std::string text;
        for (std::string line; std::getline(now, line);) {
            if (before.count(line) == 0)
                text += (text.empty() ? "" : ", ") + line;
        }
        return text;
    }

    std::string rest_;
    /** Whether the decoders are initialised, as AOUT has them. */
    bool decoders_ = false;
};

/** An operation, and what undoes it; null for one that undoes itself. */
struct Operation {
    const char* name;
    const char* undoName;
    uint32_t eSource;
    std::function<uint32_t(const AvSource*)> up;
    std::function<uint32_t(const AvSource*)> down;
};

uint32_t descramblerHandle;

std::vector<Operation> operations() {
    const auto play = [](const AvSource* s) { return AV_PlayAudioVideo(s, nullptr); };
    const auto routed = [](const AvSource* s) { return AV_PlayAudioVideoTsConfig(s, nullptr, 1); };
    const auto rerouted = [](const AvSource* s) {
        return AV_PlayAudioVideoSwitchTsConfig(s, nullptr);
    };
    const auto descrambled = [](const AvSource* s) {
        return AV_PlayAudioVideoDescramble(s, nullptr, &descramblerHandle);
    };
    const auto video = [](const AvSource* s) { return AV_StartVideoOnly(s, nullptr); };
    const auto audio = [](const AvSource* s) { return AV_StartAudioOnly(s, nullptr); };
    const auto oneSink = [](const AvSource* s) {
        zk_testConfig.av.stSource = *s;
        return AOUT_AV_Play(QLX_OUTPUT_SOURCE_SPDIF);
    };
    const auto stopOneSink = [](const AvSource*) { return AOUT_AV_Stop(QLX_OUTPUT_SOURCE_SPDIF); };
    const auto stopDescrambled = [](const AvSource* s) {
        return AV_StopAudioVideoDescramble(s, descramblerHandle);
    };
    return {
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_CVBS, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_YPBPR, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_HDMI, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_ATV, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_PVR, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideo", "AV_StopAudioVideo", AV_SOURCE_DTV, play, AV_StopAudioVideo},
        {"AV_PlayAudioVideoTsConfig", "AV_StopAudioVideoTsConfig", AV_SOURCE_DTV, routed,
         AV_StopAudioVideoTsConfig},
        {"AV_PlayAudioVideoSwitchTsConfig", nullptr, AV_SOURCE_DTV, rerouted, nullptr},
        {"AV_PlayAudioVideoDescramble", "AV_StopAudioVideoDescramble", AV_SOURCE_DTV, descrambled,
         stopDescrambled},
        {"AV_StartVideoOnly", "AV_StopVideoOnly", AV_SOURCE_DTV, video, AV_StopVideoOnly},
        {"AV_StartVideoOnly", "AV_StopVideoOnly", AV_SOURCE_ATV, video, AV_StopVideoOnly},
        {"AV_StartAudioOnly", "AV_StopAudioOnly", AV_SOURCE_PVR, audio, AV_StopAudioOnly},
        {"AV_StartAudioOnly", "AV_StopAudioOnly", AV_SOURCE_CVBS, audio, AV_StopAudioOnly},
        {"AOUT_AV_Play", "AOUT_AV_Stop", AV_SOURCE_YPBPR, oneSink, stopOneSink},
    };
}

const char* nameOf(uint32_t eSource) {
    static const std::map<uint32_t, const char*> names = {
        {AV_SOURCE_ATV, "ATV"},   {AV_SOURCE_CVBS, "CVBS"}, {AV_SOURCE_YPBPR, "YPBPR"},
        {AV_SOURCE_HDMI, "HDMI"}, {AV_SOURCE_PVR, "PVR"},   {AV_SOURCE_DTV, "DTV"},
    };
    return names.at(eSource);
}

class AvOperations : public AvHarness {
 protected:
    /** Recorded calls with their arguments, without repetitions. */
    static std::string fullCalls() {
        std::istringstream lines(recordedCalls());
        std::string text;
        std::string before;
        for (std::string line; std::getline(lines, line);) {
            if (line != before)
                text += "    " + line + "\n";
            before = line;
        }
        return text;
    }

    /** A run in which nothing fails: all that is called. */
    std::string healthy(const Operation& operation, const AvSource& source) {
        std::string text =
            std::string("== ") + operation.name + ", " + nameOf(source.eSource) + "\n";
        setUpBench();
        qlx_sim_record(1);
        EXPECT_EQ(operation.up(&source), PASS) << text;
        text += fullCalls();
        upCalls_ = shortCalls();
        downCalls_.clear();
        if (operation.undoName == nullptr)
            return text + "   left: " + leftUp() + "\n";
        text += std::string("-- ") + operation.undoName + "\n";
        qlx_sim_record(1);
        EXPECT_EQ(operation.down(&source), PASS) << text;
        text += fullCalls();
        downCalls_ = shortCalls();
        return text + "   left: " + leftUp() + "\n";
    }

    /** The fault that refuses the call at a place of `calls`. */
    static std::string refusalOf(const std::vector<std::string>& calls, size_t place) {
        const std::string& call = calls[place];
        size_t dash = call.find('-');
        std::string fault = "QLX_" + call.substr(0, dash);
        if (dash != std::string::npos)
            fault += " with=output=" + call.substr(dash + 1);
        size_t number = 1;
        for (size_t i = 0; i < place; i++)
            number += calls[i] == call ? 1 : 0;
        return fault + " call=" + std::to_string(number) + " return=1";
    }

    /** Each call of the way up refused once: what is called from there on, and left up. */
    std::string refusedUp(const Operation& operation, const AvSource& source) {
        std::string text = std::string("-- ") + operation.name + ", a call refused\n";
        const std::vector<std::string> calls = upCalls_;
        for (size_t i = 0; i < calls.size(); i++) {
            setUpBench();
            addFault(refusalOf(calls, i));
            qlx_sim_record(1);
            const uint32_t result = operation.up(&source);
            const std::vector<std::string> now = shortCalls();
            EXPECT_GT(qlx_sim_faults_acted(), 0u) << calls[i];
            qlx_sim_clear_faults();
            noteTexts();
            EXPECT_TRUE(
                std::equal(calls.begin(), calls.begin() + static_cast<long>(i) + 1, now.begin()))
                << calls[i];
            text += "    " + calls[i] + (result == FAIL ? ":" : " (ignored):");
            text += (result == FAIL ? joined(now, i + 1) : "") + leftText(result) + "\n";
        }
        return text;
    }

    /** Each call of the way down refused once. */
    std::string refusedDown(const Operation& operation, const AvSource& source) {
        std::string text = std::string("-- ") + operation.undoName + ", a call refused\n";
        const std::vector<std::string> calls = downCalls_;
        for (size_t i = 0; i < calls.size(); i++) {
            setUpBench();
            EXPECT_EQ(operation.up(&source), PASS);
            addFault(refusalOf(calls, i));
            qlx_sim_record(1);
            const uint32_t result = operation.down(&source);
            const std::vector<std::string> now = shortCalls();
            EXPECT_GT(qlx_sim_faults_acted(), 0u) << calls[i];
            qlx_sim_clear_faults();
            noteTexts();
            text += "    " + calls[i] + (result == FAIL ? ":" : " (ignored):");
            text += now == calls ? " all tried" : joined(now, i + 1);
            text += leftText(FAIL) + "\n";
        }
        return text;
    }

    /** Keeps what the failed checks of each function have printed. */
    void noteTexts() {
        static const std::regex check("\\[(\\w+)\\]\\[\\d+\\](FUNC:.*|expect .*\\d) ");
        std::istringstream lines(takeOutput());
        std::smatch found;
        for (std::string line; std::getline(lines, line);) {
            if (std::regex_search(line, found, check))
                texts_[found[1]].insert(found[2]);
        }
    }
    std::string notedTexts() const {
        std::string text = "== what a refused call is told by\n";
        for (const auto& function : texts_) {
            text += "-- " + function.first + "\n";
            for (const std::string& line : function.second)
                text += "    " + line + "\n";
        }
        return text;
    }

    std::string leftText(uint32_t result) const {
        const std::string left = leftUp();
        return result == FAIL && !left.empty() ? " | left: " + left : "";
    }

    BenchFolder folder_;
    std::vector<std::string> upCalls_;
    std::vector<std::string> downCalls_;
    /** By function. */
    std::map<std::string, std::set<std::string>> texts_;
};

TEST_F(AvOperations, CallAndUndoWhatIsOnRecord) {
    const std::string path = std::string(ZK_SOURCE_DIR) + "/tests/golden/av_operations.txt";
    folder_.useBoard("[CI]\nMODULE0=1\n");
    std::string text;
    std::set<std::string> refused;
    for (const Operation& operation : operations()) {
        const AvSource source = sourceOf(operation.eSource);
        decoders_ = operation.name == std::string("AOUT_AV_Play");
        std::unique_ptr<Reporter> reporter;
        if (AV_IsCoded(source))
            reporter = std::make_unique<Reporter>();
        text += healthy(operation, source);
        // The undoing of a play does not depend on its source, but for the source's own.
        const bool refusals = refused.insert(operation.name).second ||
                              source.eSource == AV_SOURCE_ATV || source.eSource == AV_SOURCE_DTV;
        if (refusals)
            text += refusedUp(operation, source);
        if (refusals && operation.undoName != nullptr)
            text += refusedDown(operation, source);
        reporter.reset();
        setUpBench();
    }
    text += notedTexts();
    const char* mode = getenv("ZK_GOLDEN");
    if (mode != nullptr && std::string(mode) == "write") {
        std::ofstream(path) << text;
        return;
    }
    std::ifstream file(path);
    const std::string golden((std::istreambuf_iterator<char>(file)), {});
    EXPECT_EQ(text, golden) << "ZK_GOLDEN=write writes the file anew";
}

/** A source, and whether a wrapper takes it. */
struct SourceRow {
    uint32_t eSource;
    uint32_t result;
    const char* text;
};

TEST_F(AvHarness, SourcesWithoutASignalAreRefused) {
    const SourceRow rows[] = {
        {0, FAIL, "]unsupport source 0 \r\n"},   {3, FAIL, "]unsupport source 3 \r\n"},
        {11, FAIL, "]unsupport source 11 \r\n"}, {14, FAIL, "]unsupport source 14 \r\n"},
        {17, FAIL, "]unsupport source 17 \r\n"}, {18, FAIL, "]unsupport source 18 \r\n"},
    };
    for (const SourceRow& row : rows) {
        const AvSource source = sourceOf(row.eSource);
        qlx_sim_record(1);
        takeOutput();
        EXPECT_EQ(TC_AV_START_SOURCE(&source), row.result);
        EXPECT_EQ(TC_AV_STOP_SOURCE(&source), row.result);
        EXPECT_EQ(count(takeOutput(), row.text), 2u) << row.eSource;
        EXPECT_EQ(recordedCalls(), "");
        EXPECT_EQ(AV_PlayAudioVideo(&source, nullptr), FAIL);
        EXPECT_EQ(leftUp(), "");
    }
}

/** What decoders and outputs are told of a source: with both decoders, and with one alone. */
struct ToldRow {
    uint32_t eSource;
    const char* line;
    const char* video;
    const char* audio;
    QLX_Source output;
    const char* loneLine;
    const char* lone;
};

const ToldRow toldRows[] = {
    {AV_SOURCE_ATV,
     "]AV source is ATV[3] \n",
     "{eSourceType=1 uSourceIndex=3 eInputMode=1}",
     "{eSourceType=1 uSourceIndex=3}",
     {1, 3, 0},
     "]AV source is ATV[2] \n",
     "{eSourceType=1 uSourceIndex=2 eInputMode=1}"},
    {AV_SOURCE_CVBS,
     "]AV source is CVBS[1] \n",
     "{eSourceType=2 uSourceIndex=1 eInputClass=1}",
     "{eSourceType=2 uSourceIndex=1 eInputClass=1}",
     {2, 1, 1},
     "]AV source is CVBS[1] \n",
     "{eSourceType=2 uSourceIndex=1 eInputClass=1}"},
    {AV_SOURCE_YPBPR,
     "]AV source is YPBPR[1] \n",
     "{eSourceType=5 uSourceIndex=1 eInputClass=3}",
     "{eSourceType=5 uSourceIndex=1 eInputClass=3}",
     {5, 1, 3},
     "]AV source is YPBPR[1] \n",
     "{eSourceType=5 uSourceIndex=1 eInputClass=3}"},
    {AV_SOURCE_HDMI,
     "]AV source is HDMI[2] \n",
     "{eSourceType=10 uSourceIndex=2}",
     "{eSourceType=10 uSourceIndex=2}",
     {10, 2, 0},
     "]AV source is HDMI[2] \n",
     "{eSourceType=10 uSourceIndex=2}"},
    {AV_SOURCE_PVR,
     "]AV source is PVR\n",
     "{eSourceType=16 uSourceIndex=1 eInputMode=5}",
     "{eSourceType=12 uSourceIndex=1}",
     {12, 1, 0},
     "]AV source is PVR\n",
     "{eSourceType=12 eInputMode=5}"},
    {AV_SOURCE_STREAM,
     "]AV source is Stream \n",
     "{eSourceType=14 eInputMode=4}",
     "{eSourceType=14}",
     {14, 0, 0},
     "]AV source is Stream \n",
     nullptr},
    {AV_SOURCE_DTV,
     "]AV source is DTV[1] \n",
     "{eSourceType=16 uSourceIndex=1 eInputMode=1}",
     "{eSourceType=16 uSourceIndex=1}",
     {16, 1, 0},
     "]AV source is DTV[1] \n",
     "{eSourceType=16 uSourceIndex=1 eInputMode=1}"},
};

TEST_F(AvHarness, DecodersAndOutputsAreToldOfTheSource) {
    ASSERT_EQ(TC_AV_INIT(), PASS);
    for (const ToldRow& row : toldRows) {
        Reporter reporter;
        AvSource source = sourceOf(row.eSource);
        source.eDTVDemuxDev = 1;
        takeOutput();
        qlx_sim_record(1);
        // What is not a stream is not up, but the decoders have been told.
        EXPECT_EQ(TC_AV_OPEN(&source), row.eSource == AV_SOURCE_STREAM ? PASS : FAIL);
        EXPECT_EQ(count(takeOutput(), row.line), 1u) << row.line;
        EXPECT_EQ(count(recordedCalls(), std::string("QLX_VideoOpen(video=0 attr=") + row.video),
                  1u)
            << recordedCalls();
        if (row.eSource == AV_SOURCE_STREAM) {
            EXPECT_EQ(
                count(recordedCalls(), std::string("QLX_AudioOpen(audio=0 attr=") + row.audio), 1u);
            EXPECT_EQ(TC_AV_CLOSE(&source), PASS);
        }
        QLX_Source output = {};
        EXPECT_EQ(AV_AvSource2QlxSource(&source, &output), PASS);
        EXPECT_EQ(memcmp(&output, &row.output, sizeof output), 0) << row.eSource;
        zk_testConfig.av.stSource = source;
        EXPECT_EQ(VOUT_LoadParams(), PASS);
        EXPECT_EQ(memcmp(&stVOutSource, &row.output, sizeof stVOutSource), 0) << row.eSource;
        if (row.lone == nullptr)
            continue;
        takeOutput();
        qlx_sim_record(1);
        AV_StartVideoOnly(nullptr, nullptr);
        EXPECT_EQ(count(takeOutput(), row.loneLine), 1u) << row.loneLine;
        EXPECT_EQ(count(recordedCalls(), std::string("QLX_VideoOpen(video=0 attr=") + row.lone), 1u)
            << recordedCalls();
        AV_StopVideoOnly(nullptr);
        setUpBench();
        ASSERT_EQ(TC_AV_INIT(), PASS);
    }
}

TEST_F(AvHarness, UnknownSourcesAreToldAndTouchNothing) {
    for (uint32_t eSource : {0u, 3u, 13u, 17u, 18u}) {
        const AvSource source = sourceOf(eSource);
        QLX_Source output = {};
        zk_testConfig.av.stSource = source;
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(TC_AV_OPEN(&source), FAIL);
        EXPECT_EQ(AV_AvSource2QlxSource(&source, &output), FAIL);
        EXPECT_EQ(VOUT_LoadParams(), FAIL);
        EXPECT_EQ(AV_StartVideoOnly(&source, nullptr), FAIL);
        EXPECT_EQ(AV_StartAudioOnly(&source, nullptr), FAIL);
        EXPECT_EQ(TC_VOUT_INIT(), FAIL);
        EXPECT_EQ(recordedCalls(), "");
        EXPECT_EQ(count(takeOutput(), "]Unknow source " + std::to_string(eSource) + " \n"), 6u);
    }
}

TEST_F(AvHarness, TenPlaysInitialiseTenTimesAndEndNever) {
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    qlx_sim_record(1);
    takeOutput();
    for (int round = 0; round < 10; round++) {
        EXPECT_EQ(TC_AV_PLAY_AUDIO_VIDEO(&source, nullptr), PASS) << round;
        EXPECT_EQ(TC_AV_STOP_AUDIO_VIDEO(&source), PASS) << round;
    }
    EXPECT_EQ(count(recordedCalls(), "QLX_VideoInit()"), 10u);
    EXPECT_EQ(count(recordedCalls(), "QLX_VideoDeInit()"), 0u);
    const std::string out = takeOutput();
    EXPECT_EQ(count(out, "[TC_AV_PLAY_AUDIO_VIDEO] TEST Result: SUCCESS"), 10u);
    EXPECT_EQ(count(out, "[TC_AV_STOP_AUDIO_VIDEO] TEST Result: SUCCESS"), 10u);
    EXPECT_EQ(count(out, "[AV_PlayAudioVideo]"), 0u);
}

TEST_F(AvHarness, ThePictureFillsAPanelThatExceedsTheSmallest) {
    const struct {
        const char* board;
        const char* rect;
    } rows[] = {
        {"[DISPLAY]\nWIDTH=800\nHEIGHT=600\n", "out={uWidth=800 uHeight=600}"},
        {"[DISPLAY]\nWIDTH=640\nHEIGHT=480\n", "out={uWidth=800 uHeight=600}"},
        {"[DISPLAY]\nWIDTH=1366\nHEIGHT=600\n", "out={uWidth=800 uHeight=600}"},
        {"[DISPLAY]\nWIDTH=800\nHEIGHT=1366\n", "out={uWidth=800 uHeight=600}"},
        {"[DISPLAY]\nWIDTH=801\nHEIGHT=601\n", "out={uWidth=801 uHeight=601}"},
        {"[DISPLAY]\nWIDTH=1920\nHEIGHT=1080\n", "out={uWidth=1920 uHeight=1080}"},
    };
    BenchFolder folder;
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    for (const auto& row : rows) {
        folder.useBoard(row.board);
        setUpBench();
        qlx_sim_record(1);
        EXPECT_EQ(AV_PlayAudioVideo(&source, nullptr), PASS) << row.board;
        EXPECT_EQ(count(recordedCalls(), std::string("in={uWidth=720 uHeight=576} ") + row.rect +
                                             " nonLinear=0 dotToDot=0"),
                  1u)
            << recordedCalls();
        EXPECT_EQ(AV_StopAudioVideo(&source), PASS);
    }
    EXPECT_EQ(TC_VOUT_START(nullptr), FAIL);
}

TEST_F(AvHarness, ABoardWithoutSinksPlaysItsPicture) {
    const AvSource source = sourceOf(AV_SOURCE_YPBPR);
    g_stAOutParams = {};
    qlx_sim_record(1);
    EXPECT_EQ(AV_PlayAudioVideo(&source, nullptr), PASS);
    EXPECT_EQ(AV_StopAudioVideo(&source), PASS);
    EXPECT_EQ(count(recordedCalls(), "QLX_AOut"), 0u);
    EXPECT_EQ(leftUp(), "Video initialised, Audio initialised");
}

TEST_F(AvHarness, ASilentSourcePlaysMutedAndFailsAsASoundAlone) {
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    event("input CVBS CHANNELS=0");
    qlx_sim_record(1);
    const int64_t begin = nowMs();
    EXPECT_EQ(AV_PlayAudioVideo(&source, nullptr), PASS);
    EXPECT_GE(nowMs() - begin, 5000);
    EXPECT_LT(nowMs() - begin, 5700);
    EXPECT_EQ(count(recordedCalls(), "QLX_AudioSetMute("), 0u);
    EXPECT_EQ(AV_StopAudioVideo(&source), PASS);
    const int64_t alone = nowMs();
    EXPECT_EQ(AV_StartAudioOnly(&source, nullptr), FAIL);
    EXPECT_LT(nowMs() - alone, 5500);
    EXPECT_NE(takeOutput().find("[AV_StartAudioOnly]["), std::string::npos);
    EXPECT_EQ(leftUp(), "AOut 5 open");
}

TEST_F(AvHarness, APictureThatDoesNotComeEndsTheStart) {
    const struct {
        uint32_t eSource;
        int64_t waitMs;
    } rows[] = {{AV_SOURCE_CVBS, 5000}, {AV_SOURCE_PVR, 6000}, {AV_SOURCE_DTV, 5000}};
    ASSERT_EQ(TC_AV_INIT(), PASS);
    for (const auto& row : rows) {
        const AvSource source = sourceOf(row.eSource);
        QLX_VideoDecInfo info = {};
        addFault("VideoEvent drop");
        ASSERT_EQ(TC_AV_START_SOURCE(&source), PASS);
        ASSERT_EQ(TC_AV_OPEN(&source), PASS);
        takeOutput();
        qlx_sim_record(1);
        const int64_t begin = nowMs();
        EXPECT_EQ(TC_AV_START(&source, nullptr, &info), FAIL) << row.eSource;
        EXPECT_EQ(nowMs() - begin, row.waitMs) << row.eSource;
        EXPECT_EQ(callNames().substr(callNames().find("QLX_AudioStart")),
                  "QLX_AudioStart QLX_AudioStop QLX_VideoStop ");
        EXPECT_EQ(count(takeOutput(), "]expect 1, but actually 0  \n"), 1u);
        qlx_sim_clear_faults();
        EXPECT_EQ(TC_AV_CLOSE(&source), PASS);
        EXPECT_EQ(TC_AV_STOP_SOURCE(&source), PASS);
    }
}

TEST_F(AvHarness, BroadcastMustComeInStep) {
    const AvSource source = sourceOf(AV_SOURCE_DTV);
    QLX_VideoDecInfo info = {};
    QLX_VideoDecInfo picture = {};
    picture.eVideoPresent = QLX_VIDEO_PRESENT;
    picture.uFrameWidth = 704;
    ASSERT_EQ(TC_AV_INIT(), PASS);
    ASSERT_EQ(TC_AV_START_SOURCE(&source), PASS);
    ASSERT_EQ(TC_AV_OPEN(&source), PASS);
    EXPECT_EQ(TC_AV_START(&source, nullptr, nullptr), FAIL);
    AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_INFO_CHANGE, &picture);
    qlx_sim_record(1);
    const int64_t begin = nowMs();
    EXPECT_EQ(TC_AV_START(&source, nullptr, &info), FAIL);
    EXPECT_EQ(nowMs() - begin, 5000);
    EXPECT_EQ(info.uFrameWidth, 704);
    EXPECT_EQ(count(callNames(), "QLX_AudioStop QLX_VideoStop "), 1u);
    EXPECT_EQ(count(callNames(), "QLX_AudioSetVolume"), 0u);
    EXPECT_EQ(TC_AV_CLOSE(&source), PASS);
    EXPECT_EQ(TC_AV_STOP_SOURCE(&source), PASS);
}

TEST_F(AvHarness, AChannelWithoutAClockReferenceSetsNoMode) {
    AvSource source = sourceOf(AV_SOURCE_DTV);
    TcChannelInfo channel = {};
    source.TransmissionSystem_e = QLX_TRANSMISSION_SYSTEM_DVB_C;
    source.uDTVChannelId = 1;
    for (uint32_t pcrPid : {0u, 0x1fffu}) {
        Reporter reporter;
        zk_test_get_dtv_channel_info(QLX_TRANSMISSION_SYSTEM_DVB_C, 1, &channel);
        channel.uPcrPid = pcrPid;
        channel.uVideoPid = 0x123;
        qlx_sim_record(1);
        EXPECT_EQ(AV_PlayAudioVideo(&source, &channel), PASS);
        EXPECT_EQ(count(recordedCalls(), "QLX_VideoSyncSetMode("), pcrPid != 0 ? 1u : 0u);
        if (pcrPid != 0) {
            EXPECT_EQ(count(recordedCalls(), "{eSyncMode=1 uPcrPid=8191}"), 1u) << recordedCalls();
        }
        EXPECT_EQ(count(recordedCalls(), " pid=291)=0"), 1u) << "the channel that was handed in";
        EXPECT_EQ(AV_StopAudioVideo(&source), PASS);
    }
}

TEST_F(AvHarness, TheChannelIsThatOfItsSystem) {
    AvSource source = sourceOf(AV_SOURCE_DTV);
    TcChannelInfo channel = {};
    source.uDTVChannelId = 0;
    zk_testConfig.tunerBlock.eTransmissionSystem[2] = QLX_TRANSMISSION_SYSTEM_DVB_C;
    zk_testConfig.dvbC[0].uVideoPid = 0x111;
    zk_testConfig.dvbT[0].uVideoPid = 0x222;
    zk_testConfig.pvrPlayback[0].uVideoPid = 0x333;
    AV_GetChannel(source, 0, &channel);
    EXPECT_EQ(channel.uVideoPid, 0x111u);
    AV_GetChannel(source, QLX_TRANSMISSION_SYSTEM_DVB_T, &channel);
    EXPECT_EQ(channel.uVideoPid, 0x222u);
    source.eSource = AV_SOURCE_PVR;
    AV_GetChannel(source, QLX_TRANSMISSION_SYSTEM_DVB_T, &channel);
    EXPECT_EQ(channel.uVideoPid, 0x333u);
    // One decoder alone takes the tuner's own system.
    Reporter reporter;
    source.eSource = AV_SOURCE_DTV;
    source.TransmissionSystem_e = QLX_TRANSMISSION_SYSTEM_DVB_T;
    qlx_sim_record(1);
    EXPECT_EQ(AV_StartVideoOnly(&source, nullptr), PASS);
    EXPECT_EQ(count(recordedCalls(), " pid=273)=0"), 1u) << recordedCalls();
    EXPECT_EQ(AV_StopVideoOnly(&source), PASS);
}

TEST_F(AvHarness, AnalogFrontEndsMayHoldTheOutput) {
    const AvSource source = sourceOf(AV_SOURCE_ATV);
    zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] = 1;
    qlx_sim_record(1);
    EXPECT_EQ(AV_PlayAudioVideo(&source, nullptr), PASS);
    EXPECT_EQ(count(callNames(), "QLX_VOutOpen"), 1u);
    EXPECT_LT(callNames().find("QLX_VOutOpen"), callNames().find("QLX_AFESetTuningParam"));
    EXPECT_EQ(
        count(recordedCalls(), "QLX_VOutOpen(output=0 source={eSourceType=1 uSourceIndex=3})"), 1u);
    qlx_sim_record(1);
    EXPECT_EQ(AV_StopAudioVideo(&source), PASS);
    EXPECT_EQ(count(callNames(), "QLX_VOutClose"), 1u);
    EXPECT_GT(callNames().find("QLX_VOutClose"), callNames().find("QLX_VideoClose"));
    // A tuning that is refused closes what was opened ahead of it.
    addFault("QLX_AFESetTuningParam return=1");
    qlx_sim_record(1);
    EXPECT_EQ(TC_ANALOG_START(1, 0), FAIL);
    EXPECT_EQ(callNames(),
              "QLX_AFEInit QLX_AFEOpen QLX_AFERegisterCallback QLX_VOutOpen "
              "QLX_VOutRegisterCallback QLX_VOutEnable QLX_AFESetTuningParam QLX_VOutDisable "
              "QLX_VOutUnRegisterCallback QLX_VOutClose QLX_AFEUnRegisterCallback QLX_AFEClose "
              "QLX_AFEDeInit ");
}

TEST_F(AvHarness, AFrontEndWithoutADecisionIsStarted) {
    addFault("AFEEvent drop");
    const int64_t begin = nowMs();
    EXPECT_EQ(TC_ANALOG_START(0, 0), PASS);
    EXPECT_EQ(nowMs() - begin, 2000);
    EXPECT_NE(takeOutput().find("]Failed for 2S AFECallback not return, Tuning time out\n"),
              std::string::npos);
    qlx_sim_clear_faults();
    EXPECT_EQ(TC_ANALOG_END(0), PASS);
}

TEST_F(AvHarness, AnInputWaitsForCableAndSignal) {
    const QLX_ExtInSource hdmi = {QLX_SOURCE_TYPE_HDMI, 1, 0};
    const QLX_ExtInSource cvbs = {QLX_SOURCE_TYPE_AV_CVBS, 0, QLX_INPUT_CLASS_CVBS};
    int64_t begin = nowMs();
    EXPECT_EQ(TC_EXTIN_START(&hdmi), PASS);
    EXPECT_EQ(nowMs() - begin, 1000);
    EXPECT_EQ(TC_EXTIN_STOP(&hdmi), PASS);
    event("input HDMI/1 CABLE=0");
    begin = nowMs();
    EXPECT_EQ(TC_EXTIN_START(&hdmi), FAIL);
    EXPECT_EQ(nowMs() - begin, 1000);
    EXPECT_EQ(leftUp(), "ExtIn HDMI 1 open");
    EXPECT_EQ(TC_EXTIN_STOP(&hdmi), PASS);
    event("input CVBS SIGNAL=0");
    begin = nowMs();
    EXPECT_EQ(TC_EXTIN_START(&cvbs), FAIL);
    EXPECT_EQ(nowMs() - begin, 10000);
    EXPECT_EQ(TC_EXTIN_STOP(&cvbs), PASS);
    EXPECT_EQ(TC_EXTIN_STOP(&cvbs), FAIL);
    addFault("QLX_ExtInGetSourcePortNum zero=portNum");
    qlx_sim_record(1);
    EXPECT_EQ(TC_EXTIN_START(&cvbs), FAIL);
    EXPECT_EQ(callNames(), "QLX_ExtInGetSourcePortNum ");
}

TEST_F(AvHarness, ASlotWithoutAModulePlaysNothing) {
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    for (auto play :
         {+[](const AvSource* s) { return AV_PlayAudioVideoTsConfig(s, nullptr, 1); },
          +[](const AvSource* s) { return AV_PlayAudioVideoSwitchTsConfig(s, nullptr); }}) {
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(play(&source), FAIL);
        const std::string names = callNames();
        EXPECT_EQ(count(names, "QLX_CIIsCamPresent QLX_CIClose QLX_CIDeInit QLX_VOutDisable "), 1u)
            << names;
        EXPECT_EQ(count(takeOutput(), "RETURN ERROR"), 0u) << "without a message";
        EXPECT_EQ(leftUp(), "AOut 5 open");
    }
}

TEST_F(AvHarness, TheSwitchGoesPastThroughAndPastTheModule) {
    BenchFolder folder;
    folder.useBoard("[CI]\nMODULE0=1\n");
    setUpBench();
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    qlx_sim_record(1);
    const int64_t begin = nowMs();
    EXPECT_EQ(AV_PlayAudioVideoSwitchTsConfig(&source, nullptr), PASS);
    EXPECT_GE(nowMs() - begin, 60000);
    EXPECT_LT(nowMs() - begin, 61500);
    EXPECT_EQ(leftUp(), "AOut 5 open");
    std::istringstream lines(recordedCalls());
    std::string routes;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("QLX_CISetTsConfig") == 0)
            routes += line.find("eMode=1") != std::string::npos ? "through " : "past ";
    }
    // Once more past it when all is taken down.
    EXPECT_EQ(routes, "past through past past ");
    // The picture is not muted ahead of the end.
    EXPECT_EQ(count(recordedCalls(), "QLX_VOutSetMute(output=0 mute=1)"), 0u);
    EXPECT_EQ(count(callNames(),
                    "QLX_AOutSetMute QLX_CISetTsConfig QLX_AudioSetMute QLX_VideoStop "
                    "QLX_AudioStop QLX_CIClose QLX_CIDeInit QLX_VOutDisable "),
              1u)
        << callNames();
}

/** What the operator types, and what becomes of it. */
struct Dialogue {
    const char* typed;
    uint32_t result;
    const char* left;
};

TEST_F(AvHarness, TheOperatorConfirms) {
    const Dialogue rows[] = {
        {"1\nx", PASS, "x"},       {"0\nx", FAIL, "x"}, {"-3\nx", PASS, "x"},
        {"  7\nx", PASS, "x"},     {"1", PASS, ""},     {"10\nx", PASS, "\nx"},
        {"maybe\nx", FAIL, "\nx"}, {"", FAIL, ""},      {"\n", FAIL, ""},
    };
    for (const Dialogue& row : rows) {
        // fmemopen has no empty file.
        Typed typed(std::string(row.typed) + (*row.typed == 0 ? "\n" : ""));
        takeOutput();
        EXPECT_EQ(AV_CheckConfirm("Is there a picture?"), row.result) << row.typed;
        const std::string out = takeOutput();
        EXPECT_EQ(count(out, "]Is there a picture? \r\n"), 1u);
        EXPECT_EQ(count(out, "]Yes input 1, otherwise input 0 \r\n"), 1u);
        std::string left;
        for (int next; (next = getchar()) != EOF;)
            left += static_cast<char>(next);
        EXPECT_EQ(left, row.left) << row.typed;
    }
    Typed typed("1\n");
    takeOutput();
    EXPECT_EQ(VOUT_CheckConfirm(nullptr), PASS);
    EXPECT_EQ(count(takeOutput(), "["), 1u) << "no text, no line";
}

TEST_F(AvHarness, LogsBeginAnewWhenTheyAreFull) {
    uint32_t word = 7;
    QLX_VideoDecInfo picture = {};
    picture.eVideoPresent = QLX_VIDEO_PRESENT;
    AV_ClearVideoLog();
    for (int i = 0; i < AV_EVENT_LOG_SIZE; i++)
        AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_DECODE_ERROR, &word);
    EXPECT_EQ(g_stVideoRequestData.uCount, 50u);
    EXPECT_EQ(AV_FindPicture(), nullptr);
    AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_INFO_CHANGE, &picture);
    EXPECT_EQ(g_stVideoRequestData.uCount, 1u);
    EXPECT_EQ(AV_FindPicture(), &g_stVideoRequestData.stData[0]);
    EXPECT_EQ(g_stVideoRequestData.stData[49].uDecodeError, 7u) << "old entries stay";
    takeOutput();
    AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_HDR_TYPE, &word);
    AV_VideoEventCallback(0, nullptr, QLX_EVENT_VIDEO_STOP_DONE, &word);
    AV_AudioEventCallback(0, &g_stAudioRequestData, 16, &word);
    EXPECT_EQ(count(takeOutput(), "]unsupport event["), 2u);
    EXPECT_EQ(g_stVideoRequestData.uCount, 1u);
}

TEST_F(AvHarness, EachModuleHasItsServices) {
    const struct {
        uint32_t (*setUp)(void);
        uint32_t (*tearDown)(void);
        const char* up;
    } rows[] = {
        {AV_CommonTestSetup, AV_CommonTestTeardown, "Tuner Demux ExtIn VOut AOut "},
        {AV_CvbsTestSetup, AV_CvbsTestTeardown, "Tuner Demux ExtIn VOut AOut "},
        {AV_HdmiTestSetup, AV_HdmiTestTeardown, "Tuner Demux ExtIn VOut AOut "},
        {AV_YpbprTestSetup, AV_YpbprTestTeardown, "Tuner Demux ExtIn VOut AOut "},
        {AV_DtvTestSetup, AV_DtvTestTeardown, "Tuner Demux VOut AOut "},
        {AV_AtvTestSetup, AV_AtvTestTeardown, "Tuner Demux VOut AOut "},
        {AV_PvrTestSetup, AV_TestTeardown, "Tuner Demux VOut AOut "},
        {AV_DtvVideoCcTestSetup, AV_DtvVideoCcTeardown, "Tuner Demux Video VOut AOut "},
    };
    const auto services = [](const char* end) {
        std::istringstream names(callNames());
        std::string text;
        for (std::string name; names >> name;) {
            const size_t at = name.rfind(end);
            if (at != std::string::npos && at + strlen(end) == name.size() &&
                name.find("GPIO") == std::string::npos && name.find("I2C") == std::string::npos &&
                name.find("DeInit") == (strcmp(end, "DeInit") == 0 ? at : std::string::npos))
                text += name.substr(4, at - 4) + " ";
        }
        return text;
    };
    EXPECT_EQ(AV_CommonTestTeardown(), PASS);
    for (const auto& row : rows) {
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(row.setUp(), PASS);
        EXPECT_EQ(services("Init"), row.up);
        EXPECT_EQ(count(takeOutput(), "]setup all resources ! \r\n"), 1u);
        qlx_sim_record(1);
        // Every step is tried, whatever the others answer.
        addFault("QLX_AOutDeInit return=1");
        EXPECT_EQ(row.tearDown(), FAIL);
        qlx_sim_clear_faults();
        EXPECT_EQ(count(takeOutput(), "]release all resources ! \r\n"), 1u);
        std::string up = row.up;
        std::istringstream down(services("DeInit"));
        std::string reversed;
        for (std::string name; down >> name;)
            reversed = name + " " + reversed;
        EXPECT_EQ(reversed, row.up);
        qlx_sim_reset();
        addFault("QLX_AOutInit return=1");
        EXPECT_EQ(row.setUp(), FAIL);
        EXPECT_EQ(deviceState(), "") << "a set-up that fails has undone what it did";
        qlx_sim_clear_faults();
    }
    EXPECT_EQ(AV_CommonTestSetup(), PASS);
}

TEST_F(AvHarness, ManualBroadcastCasesHaveTheirChannel) {
    zk_mannualCaseConfig.av.stSource.uDTVChannelId = 77;
    EXPECT_EQ(AV_DtvTestCaseSetup(nullptr, nullptr), PASS);
    EXPECT_EQ(zk_mannualCaseConfig.av.stSource.uDTVChannelId, 77u);
    BenchFolder folder;
    folder.write("module.cfg", "[TC_A]\nU_DTV_CHANNEL_ID=5\n[TC_B]\nU_DTV_CHANNEL_ID=6\n");
    const std::string file = folder.path() + "/module.cfg";
    EXPECT_EQ(AV_DtvTestCaseSetup("TC_B", file.c_str()), PASS);
    EXPECT_EQ(zk_mannualCaseConfig.av.stSource.uDTVChannelId, 6u);
    EXPECT_EQ(AV_DtvTestCaseSetup("TC_C", file.c_str()), PASS);
    EXPECT_EQ(zk_mannualCaseConfig.av.stSource.uDTVChannelId, 0u);
}

}  // namespace
