// AV-DTV: streams of a known content. Each word that a case demands is judged twice, in what the
// decoder answers and in its last report; no stream is on the air, so that both are made by hand.
#include <memory>
#include <vector>

#include "tests/shared/av_reporter.h"
#include "tests/shared/module_bench.h"

namespace {

/** A word of a picture's or a sound's information. */
struct Word {
    const char* member;
    void (*set)(QLX_VideoDecInfo& picture, QLX_AudioDecInfo& sound, uint32_t value);
    uint32_t value;
};

#define PICTURE(word, value)                                                 \
    {                                                                        \
        "stVideoDecInfo." #word,                                             \
            [](QLX_VideoDecInfo& picture, QLX_AudioDecInfo&, uint32_t now) { \
                picture.word = static_cast<decltype(picture.word)>(now);     \
            },                                                               \
            value                                                            \
    }
#define SOUND(word, value)                                                                      \
    {                                                                                           \
        "stAudioDecInfo." #word,                                                                \
            [](QLX_VideoDecInfo&, QLX_AudioDecInfo& sound, uint32_t now) { sound.word = now; }, \
            value                                                                               \
    }

struct StreamCase {
    const char* name;
    bool isSound;
    std::vector<Word> words;
};

class AvDtvStreams : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        ASSERT_EQ(AVDtvModule.setup(), 0u);
    }
    void TearDown() override {
        EXPECT_EQ(AVDtvModule.teardown(), 0u);
        ModuleBench::TearDown();
    }

    /** A case whose decoder answers as demanded and reports that, but for the words at the places
     *  `answered` and `reported`; -1 for none. */
    static uint32_t run(const StreamCase& row, int answered, int reported) {
        QLX_VideoDecInfo picture = {};
        QLX_AudioDecInfo sound = {};
        picture.eVideoPresent = QLX_VIDEO_PRESENT;
        sound.audioPresent = QLX_AUDIO_PRESENT;
        const std::string ask =
            row.isSound ? "QLX_AudioGetAudioInfo set=" : "QLX_VideoGetVideoInfo set=";
        addFault(ask + (row.isSound ? "stAudioDecInfo.audioPresent:1"
                                    : "stVideoDecInfo.eVideoPresent:1"));
        for (size_t i = 0; i < row.words.size(); i++) {
            const Word& word = row.words[i];
            const uint32_t answer = word.value + (static_cast<int>(i) == answered ? 1 : 0);
            addFault(ask + word.member + ":" + std::to_string(answer));
            word.set(picture, sound, word.value + (static_cast<int>(i) == reported ? 1 : 0));
        }
        addFault("QLX_AudioSetAC4Parameters return=0");
        const Reporter reporter(picture, sound);
        const uint32_t result = runCaseByName(AVDtvModule, row.name);
        qlx_sim_clear_faults();
        return result;
    }
};

TEST_F(AvDtvStreams, EachWordIsDemandedOfTheAnswerAndOfTheReport) {
    const StreamCase rows[] = {
        {"TC_AV_DtvCheckVideoFrameWidthAndFrameHeight_001",
         false,
         {PICTURE(uFrameWidth, 1920), PICTURE(uFrameHeight, 1080)}},
        {"TC_AV_DtvCheckVideoFrameWidthAndFrameHeight_002",
         false,
         {PICTURE(uFrameWidth, 1440), PICTURE(uFrameHeight, 1080)}},
        {"TC_AV_DtvCheckVideoFormatInterlacedAndFrameRate_001",
         false,
         {PICTURE(bInterlaced, 0), PICTURE(uFrameRate, 25)}},
        {"TC_AV_DtvCheckVideoFormatInterlacedAndFrameRate_002",
         false,
         {PICTURE(bInterlaced, 1), PICTURE(uFrameRate, 25)}},
        {"TC_AV_DtvCheckVideoInfoOfColorPrimariesType_001",
         false,
         {PICTURE(eColorPrimariesType, 2)}},
        {"TC_AV_DtvCheckVideoInfoOfAFDType_001", false, {PICTURE(eAFDType, 12)}},
        {"TC_AV_DtvCheckVideoInfoOfAspectRatio_001",
         false,
         {PICTURE(eFrameAspect, 1), PICTURE(ePictureAspectRatio, 1)}},
        {"TC_AV_DtvCheckVideoInfoOfAspectRatio_002",
         false,
         {PICTURE(eFrameAspect, 5), PICTURE(ePictureAspectRatio, 5)}},
        {"TC_AV_DtvCheckAudio5_1Info", true, {SOUND(eChannelInfo, 7)}},
        {"TC_AV_DtvCheckAudioFormat_LfePresent_001",
         true,
         {SOUND(eChannelInfo, 7), SOUND(bLfePresent, 1)}},
    };
    for (const StreamCase& row : rows) {
        EXPECT_EQ(run(row, -1, -1), TC_SUCCESS) << row.name;
        for (int word = 0; word < static_cast<int>(row.words.size()); word++) {
            const char* member = row.words[static_cast<size_t>(word)].member;
            EXPECT_EQ(run(row, word, -1), TC_FAILURE) << row.name << ", answer: " << member;
            EXPECT_EQ(run(row, -1, word), TC_FAILURE) << row.name << ", report: " << member;
        }
    }
    const StreamCase overscan = {
        "TC_AV_DtvCheckVideoInfoOfSupportOverscan_001", false, {PICTURE(bSupportOverscan, 0)}};
    takeOutput();
    EXPECT_EQ(run(overscan, 0, -1), TC_SUCCESS);
    EXPECT_EQ(count(takeOutput(), "bSupportOverscan = 1 \r\n"), 1u) << "printed, and not judged";
}

TEST_F(AvDtvStreams, EachSyncModeHasThePidOfItsClock) {
    TcChannelInfo& channel = zk_testConfig.dvbT[0];
    channel.uVideoPid = 0x101;
    channel.uPcrPid = 0x102;
    channel.uAudioPids[0] = 0x103;
    const Reporter reporter;
    qlx_sim_record(1);
    EXPECT_EQ(runCaseByName(AVDtvModule, "TC_AV_DtvSetSyncMode_001_01"), TC_SUCCESS);
    std::istringstream lines(recordedCalls());
    std::vector<std::string> modes;
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 21, "QLX_VideoSyncSetMode(") == 0)
            modes.push_back(line);
    }
    // The play's own, then the case's.
    EXPECT_EQ(modes,
              (std::vector<std::string>{
                  "QLX_VideoSyncSetMode(video=0 params={eSyncMode=1 uPcrPid=258})=0",
                  "QLX_VideoSyncSetMode(video=0 params={})=0",
                  "QLX_VideoSyncSetMode(video=0 params={eSyncMode=1 uPid=257 uPcrPid=258})=0",
                  "QLX_VideoSyncSetMode(video=0 params={eSyncMode=2 uPid=259})=0"}));
}

}  // namespace
