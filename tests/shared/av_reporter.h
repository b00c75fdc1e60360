/* Reports of decoders for tests of who waits for them, where no stream is on the air. */
#ifndef TESTS_SHARED_AV_REPORTER_H
#define TESTS_SHARED_AV_REPORTER_H

#include <unistd.h>

#include <atomic>
#include <thread>

#include "testcase/av/av_events.h"

/** Reports a picture in step and a sound, as decoders with a stream do, every 100 ms while it
 * lives.
 */
class Reporter {
 public:
    Reporter() : Reporter(anyPicture(), anySound()) {}
    Reporter(const QLX_VideoDecInfo& picture, const QLX_AudioDecInfo& sound)
        : picture_(picture), sound_(sound), thread_([this] { run(); }) {}
    ~Reporter() {
        end_ = true;
        thread_.join();
    }

 private:
    static QLX_VideoDecInfo anyPicture() {
        QLX_VideoDecInfo picture = {};
        picture.eVideoPresent = QLX_VIDEO_PRESENT;
        picture.uFrameWidth = 720;
        picture.uFrameHeight = 576;
        return picture;
    }
    static QLX_AudioDecInfo anySound() {
        QLX_AudioDecInfo sound = {};
        sound.audioPresent = QLX_AUDIO_PRESENT;
        return sound;
    }
    void run() {
        uint32_t word = 1;
        while (!end_) {
            usleep(100000);
            AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_INFO_CHANGE, &picture_);
            AV_VideoEventCallback(0, &g_stVideoRequestData, QLX_EVENT_VIDEO_SYNC_DONE, &word);
            AV_AudioEventCallback(0, &g_stAudioRequestData, QLX_EVENT_AUDIO_INFO_CHANGE, &sound_);
        }
    }

    QLX_VideoDecInfo picture_;
    QLX_AudioDecInfo sound_;
    std::atomic<bool> end_{false};
    std::thread thread_;
};

#endif
