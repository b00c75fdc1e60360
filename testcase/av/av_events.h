/*
 * What the decoders report while a source plays: two logs, which their callbacks fill and cases
 * read.
 *
 * A log is written on the library's thread, one entry after the other, and read without a lock: an
 * entry is whole before the count tells of it. When it is full it begins anew at its head, and the
 * old entries stay behind the count. There is one log for video and one for audio, so that only one
 * play may run at a time.
 */
#ifndef TESTCASE_AV_AV_EVENTS_H
#define TESTCASE_AV_AV_EVENTS_H

#include <stdint.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"

enum {
    AV_EVENT_LOG_SIZE = 50,
    /** How often a wait looks at a log, and for how many rounds. */
    AV_POLL_PAUSE_US = 10000,
    AV_POLL_ROUNDS = 500,
};

/** A video event; each word has a meaning for its own event alone. */
struct AvVideoEvent {
    /** QLX_VideoEvent. */
    uint32_t eEvent;
    uint32_t uDecodeError;
    uint32_t uStopDone;
    uint32_t uFrameReady;
    uint32_t uEndOfStream;
    QLX_VideoDecInfo stVideoDecInfo;
    uint32_t uSyncDone;
    uint32_t uSyncLost;
};

/** An audio event. */
struct AvAudioEvent {
    /** QLX_AudioEvent. */
    uint32_t eEvent;
    uint32_t uDecodeError;
    uint32_t uStopDone;
    QLX_AudioDecInfo stAudioInfo;
    uint32_t uEndOfStream;
};

template <typename Event>
struct AvRequestData {
    std::atomic<uint32_t> uCount;
    /** When the entry came; places are those of stData. */
    timeval stTime[AV_EVENT_LOG_SIZE];
    Event stData[AV_EVENT_LOG_SIZE];
};
using AvVideoRequestData = AvRequestData<AvVideoEvent>;
using AvAudioRequestData = AvRequestData<AvAudioEvent>;

/** Of the play that runs, or has run last. */
extern AvVideoRequestData g_stVideoRequestData;
extern AvAudioRequestData g_stAudioRequestData;

/** Counts pictures of trick play. */
struct AvFrameReady {
    /** 0: every QLX_EVENT_VIDEO_FRAME_READY is counted. */
    std::atomic<uint32_t> uFlag;
    std::atomic<uint32_t> uCount;
};
extern AvFrameReady g_frameReady;

/** Receivers of the decoders' events; the user data is the log. An event that is not known is
 *  told on the console, and not kept. */
void AV_VideoEventCallback(uint32_t eVideoDev, void* pUserdata, uint32_t eEvent, void* pData);
void AV_AudioEventCallback(uint32_t eAudioDev, void* pUserdata, uint32_t eEvent, void* pData);

/** Empty a log; nothing may be registered on it. */
void AV_ClearVideoLog(void);
void AV_ClearAudioLog(void);

// Kinds of entries that are looked for. An event's bit decides; of a change of information also
// whether there is a picture or a sound.
bool AV_IsStartDone(const AvVideoEvent& entry);
bool AV_IsFrameReady(const AvVideoEvent& entry);
bool AV_IsVideoInfo(const AvVideoEvent& entry);
bool AV_IsPicturePresent(const AvVideoEvent& entry);
bool AV_IsPictureAbsent(const AvVideoEvent& entry);
bool AV_IsSyncDone(const AvVideoEvent& entry);
bool AV_IsVideoStopDone(const AvVideoEvent& entry);
bool AV_IsAudioInfo(const AvAudioEvent& entry);
bool AV_IsSoundPresent(const AvAudioEvent& entry);
bool AV_IsSoundAbsent(const AvAudioEvent& entry);
bool AV_IsAudioStopDone(const AvAudioEvent& entry);

/** How many entries a log has. */
template <typename Event>
uint32_t AV_LogCount(const AvRequestData<Event>& log) {
    return std::min<uint32_t>(log.uCount, AV_EVENT_LOG_SIZE);
}

enum : uint32_t { AV_NO_EVENT = UINT32_MAX };

/** The place of the first such entry of a log from a place on, or AV_NO_EVENT. */
template <typename Event>
uint32_t AV_FindEvent(const AvRequestData<Event>& log, uint32_t from, bool (*is)(const Event&)) {
    const uint32_t count = AV_LogCount(log);
    for (uint32_t i = from; i < count; i++) {
        if (is(log.stData[i]))
            return i;
    }
    return AV_NO_EVENT;
}

/** The first report of a present picture or sound, or that video is in sync; null while there is
 *  none in the log. */
const AvVideoEvent* AV_FindPicture(void);
const AvVideoEvent* AV_FindSyncDone(void);
const AvAudioEvent* AV_FindSound(void);

/** Asks one of these every 10 ms until it answers, at most `rounds` times. Its answer; null when
 *  the time is up. */
template <typename Event>
const Event* AV_WaitFor(const Event* (*find)(void), int rounds) {
    const Event* found = find();
    for (int round = 0; found == nullptr && round < rounds; round++) {
        usleep(AV_POLL_PAUSE_US);
        found = find();
    }
    return found;
}

#endif
