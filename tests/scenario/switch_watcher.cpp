// Goes through all switches of AV-Common's table, ten rounds each, as its cases do, and looks at
// the device after each play and after each stop: what plays is the source that was asked for, and
// of the one before nothing is left that decodes, shows, sounds or calls back. Complaints go to
// standard error, with a line of counts at the end. The working directory is a bench folder; it
// runs in virtual time.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include "environment/config_files.h"
#include "program/startup.h"
#include "simulator/av/decoder.h"
#include "simulator/core/sim.h"
#include "simulator/output/aout.h"
#include "simulator/output/panel.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_play.h"
#include "tests/shared/device.h"

namespace {

constexpr int rounds = 10;
constexpr int64_t silenceMs = 200;
constexpr int64_t soundUs = 50000;

int complaints;
std::string doing;

void demand(bool good, const std::string& what) {
    if (good)
        return;
    complaints++;
    fprintf(stderr, "%s: %s\n", doing.c_str(), what.c_str());
}

/** The source that a description names: "DTV (Tuner-1,Demux-0)", "ATV (Tuner-3)", "HDMI-2". */
AvSource sourceOf(const std::string& label) {
    static const struct {
        const char* kind;
        uint32_t eSource;
    } kinds[] = {{"DTV", AV_SOURCE_DTV},
                 {"ATV", AV_SOURCE_ATV},
                 {"HDMI", AV_SOURCE_HDMI},
                 {"CVBS", AV_SOURCE_CVBS},
                 {"YPBPR", AV_SOURCE_YPBPR}};
    AvSource source = zk_testConfig.av.stSource;
    auto number = [&](const char* before) {
        return static_cast<uint32_t>(label[label.find(before) + strlen(before)] - '0');
    };
    for (const auto& kind : kinds) {
        if (label.compare(0, strlen(kind.kind), kind.kind) == 0)
            source.eSource = kind.eSource;
    }
    if (source.eSource == AV_SOURCE_DTV) {
        source.eDTVTunerDev = number("Tuner-");
        source.eDTVDemuxDev = number("Demux-");
    } else if (source.eSource == AV_SOURCE_ATV) {
        source.eATVTunerDev = number("Tuner-");
    } else {
        source.uExtInPort = number("-");
    }
    return source;
}

bool isBlack(const sim::Picture& picture) {
    return std::all_of(picture.rgb.begin(), picture.rgb.end(), [](uint8_t c) { return c == 0; });
}

bool isSilent(const sim::Sound& sound) {
    return std::all_of(sound.samples.begin(), sound.samples.end(),
                       [](int16_t s) { return s == 0; });
}

/** What is up besides the module's services, in one line. */
std::string leftUp(const std::set<std::string>& services) {
    std::istringstream state(deviceState());
    std::string text;
    for (std::string line; std::getline(state, line);) {
        const bool allowed = services.count(line) == 1 || line == "Video initialised" ||
                             line == "Audio initialised" || line == "AOut 5 open";
        text += allowed ? "" : line + "; ";
    }
    return text;
}

void watchPlay(const AvSource& source, bool closely) {
    const sim::VideoShown video = sim::videoShown(0);
    const sim::AudioPlayed audio = sim::audioPlayed(0);
    const uint32_t device = source.eSource == AV_SOURCE_DTV   ? source.eDTVDemuxDev
                            : source.eSource == AV_SOURCE_ATV ? source.eATVTunerDev
                                                              : source.uExtInPort;
    const bool coded = source.eSource == AV_SOURCE_DTV;
    using Kind = sim::DecoderOrigin::Kind;
    demand(video.source.eSourceType == source.eSource && video.source.uSourceIndex == device,
           "the picture is another source's");
    demand(audio.source.eSourceType == source.eSource && audio.source.uSourceIndex == device,
           "the sound is another source's");
    for (const sim::DecoderOrigin& origin : {video.origin, audio.origin}) {
        demand(origin.kind == (coded ? Kind::stream : Kind::signal), "no picture, or no sound");
        demand(coded || origin.signalIndex == device, "the signal is another input's");
    }
    if (closely) {
        demand(!isBlack(sim::composePanel()), "the panel is black");
        demand(!isSilent(sim::composeSound(0, soundUs)), "the speaker is silent");
    }
}

void watchStop(const std::set<std::string>& services, bool closely) {
    qlx_sim_record(1);
    for (uint32_t device = 0; device < 4; device++) {
        demand(sim::videoShown(device).origin.kind == sim::DecoderOrigin::Kind::nothing,
               "a picture is still decoded");
        demand(sim::audioPlayed(device).origin.kind == sim::DecoderOrigin::Kind::nothing,
               "a sound is still decoded");
    }
    demand(leftUp(services).empty(), "left: " + leftUp(services));
    if (closely) {
        demand(isBlack(sim::composePanel()), "the panel shows something");
        for (uint32_t sink = 0; sink < 6; sink++)
            demand(isSilent(sim::composeSound(sink, soundUs)), "a sink plays something");
    }
    sim::sleepMs(silenceMs);
    demand(recordedCalls().empty(), "behind the stop: " + recordedCalls());
    qlx_sim_record(0);
}

void playOnce(const AvSource& source, const std::set<std::string>& services, bool closely) {
    demand(AV_PlayAudioVideo(&source, nullptr) == 0, "the play fails");
    watchPlay(source, closely);
    demand(AV_StopAudioVideo(&source) == 0, "the stop fails");
    watchStop(services, closely);
}

}  // namespace

int main() {
    int32_t platform = 5;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    set_platform(&g_configFile, &platform);
    zk_loadEnvironment();
    demand(AVCommonModule.setup() == 0, "the module's set-up fails");
    std::istringstream state(deviceState());
    std::set<std::string> services;
    for (std::string line; std::getline(state, line);)
        services.insert(line);
    int switches = 0;
    std::set<std::pair<uint32_t, uint32_t>> watched;
    for (uint32_t i = 0; i < AVCommonModule.caseCount; i++) {
        const std::string text = AVCommonModule.cases[i].description;
        const size_t from = text.find("from ");
        const size_t to = text.find(" to ");
        if (from == std::string::npos || to == std::string::npos)
            continue;
        const AvSource first = sourceOf(text.substr(from + 5, to - from - 5));
        const AvSource second = sourceOf(text.substr(to + 4));
        doing = AVCommonModule.cases[i].name;
        for (int round = 0; round < rounds; round++) {
            // Making frames and samples takes time: once for each pair of kinds.
            const bool closely =
                round == 0 && watched.insert({first.eSource, second.eSource}).second;
            playOnce(first, services, closely);
            playOnce(second, services, closely);
        }
        switches++;
    }
    demand(AVCommonModule.teardown() == 0, "the module's tear-down fails");
    fprintf(stderr, "%d switches of %d rounds, %d complaints\n", switches, rounds, complaints);
    return complaints == 0 ? 0 : 1;
}
