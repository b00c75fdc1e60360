/* What decoders report to a test, and a source that the test opens for them. */
#ifndef TESTS_SHARED_DECODER_LOG_H
#define TESTS_SHARED_DECODER_LOG_H

#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_audio.h"
#include "platform/qlx_extin.h"
#include "platform/qlx_video.h"
#include "simulator/core/sim.h"

namespace decoder_test {

/** What a callback was given. */
struct Told {
    int64_t ms;
    uint32_t event;
    /** 0 of events without a word. */
    uint32_t word;
    QLX_VideoDecInfo video;
    QLX_AudioDecInfo audio;
};

/** The events of one decoder. Callbacks write, the test reads. */
class Log {
 public:
    void add(const Told& told) {
        std::lock_guard<std::mutex> lock(mutex_);
        all_.push_back(told);
    }
    std::vector<Told> all() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return all_;
    }
    void clear() {
        std::lock_guard<std::mutex> lock(mutex_);
        all_.clear();
    }
    /** The first event of that kind; with ms -1 when there is none. */
    Told first(uint32_t event) const {
        for (const Told& told : all()) {
            if (told.event == event)
                return told;
        }
        return {-1, 0, 0, {}, {}};
    }

 private:
    mutable std::mutex mutex_;
    std::vector<Told> all_;
};

inline void onVideo(uint32_t, void* userData, uint32_t event, void* data) {
    Told told = {sim::nowMs(), event, 0, {}, {}};
    if (event == QLX_EVENT_VIDEO_INFO_CHANGE)
        told.video = *static_cast<QLX_VideoDecInfo*>(data);
    else if (data != nullptr)
        told.word = *static_cast<uint32_t*>(data);
    static_cast<Log*>(userData)->add(told);
}

inline void onAudio(uint32_t, void* userData, uint32_t event, void* data) {
    Told told = {sim::nowMs(), event, 0, {}, {}};
    if (event == QLX_EVENT_AUDIO_INFO_CHANGE)
        told.audio = *static_cast<QLX_AudioDecInfo*>(data);
    else if (data != nullptr)
        told.word = *static_cast<uint32_t*>(data);
    static_cast<Log*>(userData)->add(told);
}

/** "start_done frame_ready present ..." in the order of the log. */
inline std::string namesOf(const std::vector<Told>& log, bool video) {
    std::string names;
    for (const Told& told : log) {
        const char* name = "?";
        if (video) {
            switch (told.event) {
                case QLX_EVENT_VIDEO_DECODE_ERROR:
                    name = "error";
                    break;
                case QLX_EVENT_VIDEO_STOP_DONE:
                    name = "stop";
                    break;
                case QLX_EVENT_VIDEO_FRAME_READY:
                    name = "frame";
                    break;
                case QLX_EVENT_VIDEO_INFO_CHANGE:
                    name = told.video.eVideoPresent == QLX_VIDEO_PRESENT ? "present" : "absent";
                    break;
                case QLX_EVENT_VIDEO_SYNC_DONE:
                    name = "sync";
                    break;
                case QLX_EVENT_VIDEO_SYNC_LOST:
                    name = "lost";
                    break;
                case QLX_EVENT_VIDEO_START_DONE:
                    name = "start";
                    break;
            }
        } else {
            switch (told.event) {
                case QLX_EVENT_AUDIO_DECODE_ERROR:
                    name = "error";
                    break;
                case QLX_EVENT_AUDIO_STOP_DONE:
                    name = "stop";
                    break;
                case QLX_EVENT_AUDIO_INFO_CHANGE:
                    name = told.audio.audioPresent == QLX_AUDIO_PRESENT ? "present" : "absent";
                    break;
            }
        }
        names += (names.empty() ? "" : " ") + std::string(name);
    }
    return names;
}

}  // namespace decoder_test

#endif
