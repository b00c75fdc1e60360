#include "testcase/av/av_events.h"

#include <string.h>

#include "framework/base/zk_log.h"

AvVideoRequestData g_stVideoRequestData;
AvAudioRequestData g_stAudioRequestData;
AvFrameReady g_frameReady;

/** The entry that the next event goes to, empty. */
template <typename Event>
static Event& nextEntry(AvRequestData<Event>& log, uint32_t eEvent) {
    if (log.uCount >= AV_EVENT_LOG_SIZE)
        log.uCount = 0;
    Event& entry = log.stData[log.uCount];
    memset(&entry, 0, sizeof entry);
    entry.eEvent = eEvent;
    return entry;
}

template <typename Event>
static void countEntry(AvRequestData<Event>& log) {
    gettimeofday(&log.stTime[log.uCount], nullptr);
    log.uCount++;
}

static uint32_t wordOf(const void* pData) {
    return pData != nullptr ? *static_cast<const uint32_t*>(pData) : 0;
}

static void countFrameReady(uint32_t eEvent) {
    if (g_frameReady.uFlag != 0)
        return;
    zk_log("test set speed, record the num of frame ready.\r\n");
    if (eEvent == QLX_EVENT_VIDEO_FRAME_READY)
        g_frameReady.uCount++;
}

static void storeVideoInfo(AvVideoEvent& entry, const void* pData) {
    QLX_VideoDecInfo& info = entry.stVideoDecInfo;
    if (pData != nullptr)
        info = *static_cast<const QLX_VideoDecInfo*>(pData);
    zk_log(
        "Video event notify: QLX_EVENT_VIDEO_INFO_CHANGE. \n\t Present[%d], Format[%d]\n"
        "\tFrameWidth[%d], FrameHeight[%d] \n\tInterlaced[%d], FrameRate[%d]\n",
        static_cast<int>(info.eVideoPresent), static_cast<int>(info.eVideoFormat), info.uFrameWidth,
        info.uFrameHeight, static_cast<int>(info.bInterlaced), static_cast<int>(info.uFrameRate));
}

/** An event with a data word: its bit and name, and where the word is kept. */
template <typename Event>
struct WordEvent {
    uint32_t eEvent;
    const char* name;
    uint32_t Event::*word;
};

template <typename Event, size_t N>
static const WordEvent<Event>* findWordEvent(const WordEvent<Event> (&events)[N], uint32_t eEvent) {
    for (const WordEvent<Event>& event : events) {
        if (event.eEvent == eEvent)
            return &event;
    }
    return nullptr;
}

#define WORD_EVENT(event, word) \
    { event, #event, word }

static const WordEvent<AvVideoEvent> videoWordEvents[] = {
    WORD_EVENT(QLX_EVENT_VIDEO_DECODE_ERROR, &AvVideoEvent::uDecodeError),
    WORD_EVENT(QLX_EVENT_VIDEO_STOP_DONE, &AvVideoEvent::uStopDone),
    WORD_EVENT(QLX_EVENT_VIDEO_FRAME_READY, &AvVideoEvent::uFrameReady),
    WORD_EVENT(QLX_EVENT_VIDEO_END_OF_STREAM, &AvVideoEvent::uEndOfStream),
    WORD_EVENT(QLX_EVENT_VIDEO_SYNC_DONE, &AvVideoEvent::uSyncDone),
    WORD_EVENT(QLX_EVENT_VIDEO_SYNC_LOST, &AvVideoEvent::uSyncLost),
};

static const WordEvent<AvAudioEvent> audioWordEvents[] = {
    WORD_EVENT(QLX_EVENT_AUDIO_DECODE_ERROR, &AvAudioEvent::uDecodeError),
    WORD_EVENT(QLX_EVENT_AUDIO_STOP_DONE, &AvAudioEvent::uStopDone),
    WORD_EVENT(QLX_EVENT_AUDIO_END_OF_STREAM, &AvAudioEvent::uEndOfStream),
};

void AV_VideoEventCallback(uint32_t eVideoDev, void* pUserdata, uint32_t eEvent, void* pData) {
    zk_log("video event notify: devid[%d], even[%d]\r\n", static_cast<int>(eVideoDev),
           static_cast<int>(eEvent));
    countFrameReady(eEvent);
    if (pUserdata == nullptr)
        return;
    AvVideoRequestData& log = *static_cast<AvVideoRequestData*>(pUserdata);
    AvVideoEvent& entry = nextEntry(log, eEvent);
    if (const WordEvent<AvVideoEvent>* event = findWordEvent(videoWordEvents, eEvent)) {
        entry.*event->word = wordOf(pData);
        zk_log("Video event notify: %s. bData[%d]\r\n", event->name,
               static_cast<int>(entry.*event->word));
    } else if (eEvent == QLX_EVENT_VIDEO_INFO_CHANGE) {
        storeVideoInfo(entry, pData);
    } else if (eEvent == QLX_EVENT_VIDEO_START_DONE) {
        zk_log("Video event notify: QLX_EVENT_VIDEO_START_DONE. bData\r\n");
    } else {
        zk_log("unsupport event[%d]\r\n", static_cast<int>(eEvent));
        return;
    }
    countEntry(log);
}

void AV_AudioEventCallback(uint32_t eAudioDev, void* pUserdata, uint32_t eEvent, void* pData) {
    zk_log("Audio event notify: devid[%d], even[%d]\r\n", static_cast<int>(eAudioDev),
           static_cast<int>(eEvent));
    if (pUserdata == nullptr)
        return;
    AvAudioRequestData& log = *static_cast<AvAudioRequestData*>(pUserdata);
    AvAudioEvent& entry = nextEntry(log, eEvent);
    if (const WordEvent<AvAudioEvent>* event = findWordEvent(audioWordEvents, eEvent)) {
        entry.*event->word = wordOf(pData);
        zk_log("Audio event notify: %s. data[%d]\r\n", event->name,
               static_cast<int>(entry.*event->word));
    } else if (eEvent == QLX_EVENT_AUDIO_INFO_CHANGE) {
        if (pData != nullptr)
            entry.stAudioInfo = *static_cast<const QLX_AudioDecInfo*>(pData);
        zk_log("Audio event notify: QLX_EVENT_AUDIO_INFO_CHANGE. audioPresent[%d]\r\n",
               static_cast<int>(entry.stAudioInfo.audioPresent));
    } else {
        zk_log("unsupport event[%d]\r\n", static_cast<int>(eEvent));
        return;
    }
    countEntry(log);
}

template <typename Event>
static void clearLog(AvRequestData<Event>& log) {
    log.uCount = 0;
    memset(log.stTime, 0, sizeof log.stTime);
    memset(log.stData, 0, sizeof log.stData);
}

void AV_ClearVideoLog(void) {
    clearLog(g_stVideoRequestData);
}

void AV_ClearAudioLog(void) {
    clearLog(g_stAudioRequestData);
}

bool AV_IsStartDone(const AvVideoEvent& entry) {
    return (entry.eEvent & QLX_EVENT_VIDEO_START_DONE) != 0;
}

bool AV_IsFrameReady(const AvVideoEvent& entry) {
    return (entry.eEvent & QLX_EVENT_VIDEO_FRAME_READY) != 0;
}

bool AV_IsVideoInfo(const AvVideoEvent& entry) {
    return (entry.eEvent & QLX_EVENT_VIDEO_INFO_CHANGE) != 0;
}

bool AV_IsPicturePresent(const AvVideoEvent& entry) {
    return AV_IsVideoInfo(entry) && entry.stVideoDecInfo.eVideoPresent == QLX_VIDEO_PRESENT;
}

bool AV_IsPictureAbsent(const AvVideoEvent& entry) {
    return AV_IsVideoInfo(entry) && entry.stVideoDecInfo.eVideoPresent == QLX_VIDEO_NOT_PRESENT;
}

bool AV_IsSyncDone(const AvVideoEvent& entry) {
    return (entry.eEvent & QLX_EVENT_VIDEO_SYNC_DONE) != 0;
}

bool AV_IsVideoStopDone(const AvVideoEvent& entry) {
    return (entry.eEvent & QLX_EVENT_VIDEO_STOP_DONE) != 0;
}

bool AV_IsAudioInfo(const AvAudioEvent& entry) {
    return (entry.eEvent & QLX_EVENT_AUDIO_INFO_CHANGE) != 0;
}

bool AV_IsSoundPresent(const AvAudioEvent& entry) {
    return AV_IsAudioInfo(entry) && entry.stAudioInfo.audioPresent == QLX_AUDIO_PRESENT;
}

bool AV_IsSoundAbsent(const AvAudioEvent& entry) {
    return AV_IsAudioInfo(entry) && entry.stAudioInfo.audioPresent == QLX_AUDIO_NOT_PRESENT;
}

bool AV_IsAudioStopDone(const AvAudioEvent& entry) {
    return (entry.eEvent & QLX_EVENT_AUDIO_STOP_DONE) != 0;
}

/** The first such entry of a log, null when there is none. */
template <typename Event>
static const Event* firstEvent(const AvRequestData<Event>& log, bool (*is)(const Event&)) {
    const uint32_t at = AV_FindEvent(log, 0, is);
    return at != AV_NO_EVENT ? &log.stData[at] : nullptr;
}

const AvVideoEvent* AV_FindPicture(void) {
    return firstEvent(g_stVideoRequestData, AV_IsPicturePresent);
}

const AvVideoEvent* AV_FindSyncDone(void) {
    return firstEvent(g_stVideoRequestData, AV_IsSyncDone);
}

const AvAudioEvent* AV_FindSound(void) {
    return firstEvent(g_stAudioRequestData, AV_IsSoundPresent);
}
