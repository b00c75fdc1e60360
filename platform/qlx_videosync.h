/*
 * Synchronisation of a video decoder with sound and clock. Any thread may call.
 *
 * Results: 0; QLX_FAILED when the decoder is not open; QLX_VIDEOSYNC_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_VIDEOSYNC_H
#define PLATFORM_QLX_VIDEOSYNC_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_VideoSyncError {
    QLX_VIDEOSYNC_ERR_INVALID_PARA = 0x101901,
};

/** What the system time clock follows. */
enum QLX_VideoSyncMode {
    /** Nothing: it runs on its own. */
    QLX_VIDEOSYNC_MODE_FREE_RUN = 0,
    /** The program clock reference of the stream. */
    QLX_VIDEOSYNC_MODE_PCR_MASTER = 1,
    /** The sound. */
    QLX_VIDEOSYNC_MODE_AUDIO_MASTER = 2,
};

/** A mode and the PIDs that it needs. */
typedef struct QLX_SyncParams {
    /** QLX_VideoSyncMode. */
    uint32_t eSyncMode;
    /** PCR master: not looked at. Audio master: PID of the sound. Free run: 0. */
    uint16_t uPid;
    /** PCR master: PID of the clock reference. */
    uint16_t uPcrPid;
} QLX_SyncParams;
QLX_RECORD_SIZE(QLX_SyncParams, 8);

/**
 * Sets the mode of an open decoder, which may run. A decoder that was never told follows the clock
 * reference of its source.
 * @param eVideoDev      QLX_VideoDevNumber
 * @param pstSyncParams  mode and PIDs
 */
int32_t QLX_VideoSyncSetMode(uint32_t eVideoDev, const QLX_SyncParams* pstSyncParams);

/**
 * Reads the system time clock.
 * @param eVideoDev  QLX_VideoDevNumber
 * @param puSTC      receives it in 90 kHz ticks, 33 bits; 0 while there is no picture
 */
int32_t QLX_VideoSyncGetSTC(uint32_t eVideoDev, uint64_t* puSTC);

#ifdef __cplusplus
}
#endif

#endif
