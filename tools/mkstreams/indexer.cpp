#include "tools/mkstreams/indexer.h"

#include <sys/stat.h>

#include "simulator/media/es_index.h"
#include "simulator/media/index_file.h"
#include "tools/common/files.h"

namespace mkstreams {

sim::VideoCoding codingOf(VideoFormat format) {
    switch (format) {
        case VIDEO_MPEG1:
            return sim::VideoCoding::mpeg1;
        case VIDEO_MPEG4:
            return sim::VideoCoding::mpeg4;
        case VIDEO_H264:
            return sim::VideoCoding::h264;
        case VIDEO_HEVC:
            return sim::VideoCoding::hevc;
        case VIDEO_MPEG2:
            break;
    }
    return sim::VideoCoding::mpeg2;
}

sim::AudioCoding codingOf(AudioFormat format) {
    switch (format) {
        case AUDIO_AC3:
            return sim::AudioCoding::ac3;
        case AUDIO_EAC3:
            return sim::AudioCoding::eac3;
        case AUDIO_AAC:
            return sim::AudioCoding::aac;
        case AUDIO_HEAAC:
            return sim::AudioCoding::heAac;
        case AUDIO_AC4:
            return sim::AudioCoding::ac4;
        case AUDIO_MPEG:
            break;
    }
    return sim::AudioCoding::mpeg;
}

bool hasIndex(const std::string& indexPath) {
    sim::IndexFile file;
    return sim::readIndexFile(readText(indexPath), &file) == sim::IndexFileState::good;
}

bool makeIndex(const std::string& path, uint32_t packetTicks, const Multiplex& multiplex) {
    std::string text = readText(path);
    auto stream = std::make_shared<const sim::TsStream>(
        std::vector<uint8_t>(text.begin(), text.end()), packetTicks,
        std::vector<sim::TsTableChange>(), sim::TsOrigin{path, true});
    bool good = stream->packetCount() > 0;
    for (const Channel& channel : multiplex.channels) {
        if (!good)
            break;
        if (channel.videoPid != 0) {
            auto index = sim::videoIndex(stream, channel.videoPid,
                                         codingOf(static_cast<VideoFormat>(channel.videoFormat)));
            good = index != nullptr && !index->changes.empty();
        }
        for (const AudioComponent& audio : channel.audio) {
            auto index = sim::audioIndex(stream, audio.pid,
                                         codingOf(static_cast<AudioFormat>(audio.format)));
            good = good && index != nullptr && !index->changes.empty();
        }
    }
    struct stat status = {};
    return good && stat((path + ".index").c_str(), &status) == 0;
}

}  // namespace mkstreams
