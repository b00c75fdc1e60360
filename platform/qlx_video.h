/*
 * Video decoders.
 *
 * A decoder is opened on a source, given a callback, and started; it then reports through the
 * callback until it is stopped. The order is init, open, register, start, and the reverse. Decoders
 * work alone: no video output need be open, and no audio decoder.
 *
 * The library calls back on a thread of its own and holds no lock over it, so that the callback may
 * call the library. What a stop reports comes before the stop returns. After an unregistration, a
 * close or the end of the service has returned, no callback of the decoder runs or comes, unless
 * the call was made inside that callback. Any thread may call.
 *
 * Results: 0; QLX_FAILED for a call in the wrong order; QLX_VIDEO_ERR_INVALID_PARA for a decoder
 * that does not exist, a null pointer, or a value out of range. Functions of one argument
 * `eVideoDev` take QLX_VIDEODEV_NUMBER_0 to _3.
 */
#ifndef PLATFORM_QLX_VIDEO_H
#define PLATFORM_QLX_VIDEO_H

#include <stddef.h>

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_VideoError {
    QLX_VIDEO_ERR_INVALID_PARA = 0x100801,
};

enum QLX_VideoDevNumber {
    QLX_VIDEODEV_NUMBER_0 = 0,
    QLX_VIDEODEV_NUMBER_1 = 1,
    QLX_VIDEODEV_NUMBER_2 = 2,
    QLX_VIDEODEV_NUMBER_3 = 3,
    QLX_VIDEODEV_NUMBER_MAX = 4,
};

/** How a source's data reach the decoder. */
enum QLX_VideoInputMode {
    /** Pictures of an external input. */
    QLX_VIDEO_INPUT_MODE_EXTERNAL = 0,
    /** Received by a tuner. */
    QLX_VIDEO_INPUT_MODE_TUNER = 1,
    /** A transport stream of the stream player. */
    QLX_VIDEO_INPUT_MODE_TS_INJECT = 2,
    /** An elementary stream of the stream player. */
    QLX_VIDEO_INPUT_MODE_STREAM = 4,
    /** A recording in play. */
    QLX_VIDEO_INPUT_MODE_PVR = 5,
};

/** Coded formats, one bit each. */
enum QLX_VideoFormat {
    /** Nothing coded: external and analog sources. */
    QLX_VIDEO_FORMAT_NONE = 0,
    QLX_VIDEO_FORMAT_MPEG1 = 1,
    QLX_VIDEO_FORMAT_MPEG2 = 2,
    QLX_VIDEO_FORMAT_MPEG4 = 4,
    QLX_VIDEO_FORMAT_H264 = 16,
    QLX_VIDEO_FORMAT_HEVC = 32,
};

/** What a decoder reports, one bit each, and what the event data of its callback points to. */
enum QLX_VideoEvent {
    /** Data that do not decode; a word. Told now and then, not picture by picture. */
    QLX_EVENT_VIDEO_DECODE_ERROR = 1,
    /** The decoder has stopped; a word. */
    QLX_EVENT_VIDEO_STOP_DONE = 2,
    /** The first picture after a start or a flush is there; a word. */
    QLX_EVENT_VIDEO_FRAME_READY = 4,
    /** The source has ended; a word. */
    QLX_EVENT_VIDEO_END_OF_STREAM = 8,
    /** Something of the picture has changed, or there is one, or none any more: QLX_VideoDecInfo.
     */
    QLX_EVENT_VIDEO_INFO_CHANGE = 16,
    /** Picture and clock run together; a word. */
    QLX_EVENT_VIDEO_SYNC_DONE = 32,
    /** They do no longer; a word. */
    QLX_EVENT_VIDEO_SYNC_LOST = 64,
    /** The decoder works; null. */
    QLX_EVENT_VIDEO_START_DONE = 128,
    /** The dynamic range of the stream player's picture; a word, QLX_VideoHdrType. */
    QLX_EVENT_VIDEO_HDR_TYPE = 256,
};

enum QLX_VideoPresence {
    QLX_VIDEO_PRESENT = 1,
    QLX_VIDEO_NOT_PRESENT = 3,
};

/** Proportions of a picture, width to height. */
enum QLX_VideoAspect {
    QLX_VIDEO_ASPECT_NONE = 0,
    QLX_VIDEO_ASPECT_4_3 = 1,
    QLX_VIDEO_ASPECT_5_4 = 2,
    QLX_VIDEO_ASPECT_14_9 = 3,
    QLX_VIDEO_ASPECT_16_10 = 4,
    QLX_VIDEO_ASPECT_16_9 = 5,
    QLX_VIDEO_ASPECT_185_100 = 6,
    QLX_VIDEO_ASPECT_2_1 = 7,
    QLX_VIDEO_ASPECT_221_100 = 8,
    QLX_VIDEO_ASPECT_21_9 = 9,
    QLX_VIDEO_ASPECT_1_1 = 10,
    QLX_VIDEO_ASPECT_OTHER = 11,
};

enum QLX_VideoHdrType {
    QLX_VIDEO_HDR_TYPE_NONE = 0,
    QLX_VIDEO_HDR_TYPE_SDR = 1,
    QLX_VIDEO_HDR_TYPE_HDR10 = 2,
    QLX_VIDEO_HDR_TYPE_HLG = 3,
    QLX_VIDEO_HDR_TYPE_DYNAMIC = 4,
};

enum QLX_VideoColorPrimariesType {
    QLX_VIDEO_COLOR_PRIMARIES_UNKNOWN = 0,
    QLX_VIDEO_COLOR_PRIMARIES_BT709 = 1,
    /** Those of BT.2020, which BT.2100 has too. */
    QLX_VIDEO_COLOR_PRIMARIES_BT2100 = 2,
    QLX_VIDEO_COLOR_PRIMARIES_BT601_625 = 3,
    QLX_VIDEO_COLOR_PRIMARIES_BT601_525 = 4,
    QLX_VIDEO_COLOR_PRIMARIES_OTHER = 5,
};

/** Questions to QLX_VideoGetVideoInfo. */
enum QLX_VideoParamType {
    /** Presentation time stamp of the picture that is shown, in 90 kHz ticks. */
    QLX_VIDEO_PARAMTYPE_GET_PTS = 1,
    QLX_VIDEO_PARAMTYPE_GET_DECINFO = 2,
    /** 1 from the first picture on. */
    QLX_VIDEO_PARAMTYPE_GET_FRAMERDY = 3,
    /** 1 while picture and clock run together. */
    QLX_VIDEO_PARAMTYPE_GET_REACHSYNC = 4,
    /** 1 while pictures are decoded. */
    QLX_VIDEO_PARAMTYPE_GET_DECSTATUS = 5,
};

enum QLX_VideoState {
    QLX_VIDEO_STATE_STOPPED = 0,
    QLX_VIDEO_STATE_STARTED = 1,
    QLX_VIDEO_STATE_PAUSED = 2,
};

/** What a decoder is opened on. */
typedef struct QLX_VideoAttr {
    /** QLX_SourceType. */
    uint32_t eSourceType;
    /** Number of the tuner (ATV), the port (external inputs) or the demultiplexer. */
    uint32_t uSourceIndex;
    /** QLX_InputClass. */
    uint32_t eInputClass;
    /** QLX_VideoInputMode. */
    uint32_t eInputMode;
} QLX_VideoAttr;
QLX_RECORD_SIZE(QLX_VideoAttr, 16);

/** What a decoder can do. */
typedef struct QLX_VideoCapability {
    /** QLX_VideoFormat bits. */
    uint32_t uFormats;
    uint32_t uMaxWidth;
    uint32_t uMaxHeight;
    uint32_t uReserved[5];
} QLX_VideoCapability;
QLX_RECORD_SIZE(QLX_VideoCapability, 32);

/** What a decoder knows of its picture. All reserved words are zero. */
typedef struct QLX_VideoDecInfo {
    /** QLX_VideoPresence. Without a picture format, rate, sizes, aspects and auxiliary words are 0,
     *  and the attributes A and B 4. */
    uint32_t eVideoPresent;
    /** Whole pictures a second, two fields being one picture: 25, 29 (29.97), 30, 50, 59, 60. */
    uint32_t uFrameRate;
    /** Pixels as coded and shown, without a scaling. */
    uint16_t uFrameWidth;
    uint16_t uFrameHeight;
    /** QLX_VideoAspect of the coded frame. */
    uint32_t eFrameAspect;
    /** QLX_VideoAspect of the picture that it holds: the frame's without its black bars. */
    uint32_t ePictureAspectRatio;
    /** QLX_VideoFormat. */
    uint32_t eVideoFormat;
    uint32_t uReserved1[4];
    /** Whether the auxiliary words are filled. */
    uint32_t bAuxInfoValid;
    uint32_t bInterlaced;
    uint32_t uAuxInfo[4];
    uint32_t uReserved2;
    /** 0 to 4; 4 without a picture. */
    uint32_t eVideoAttrA;
    uint32_t uReserved3;
    /** QLX_VideoHdrType. */
    uint32_t eHdrType;
    /** 0 to 4; 4 without a picture. */
    uint32_t eVideoAttrB;
    /** QLX_VideoColorPrimariesType. */
    uint32_t eColorPrimariesType;
    /** 0 to 2, of HDMI sources. */
    uint32_t eVideoAttrC;
    /** Active format description: the code of ETSI TS 101 154, 0 when none is sent. */
    uint32_t eAFDType;
    uint32_t uReserved4[4];
    /** Whether the picture's edges may be cut off. */
    uint32_t bSupportOverscan;
    uint32_t uReserved5[3];
} QLX_VideoDecInfo;
QLX_RECORD_SIZE(QLX_VideoDecInfo, 128);

#ifdef __cplusplus
static_assert(offsetof(QLX_VideoDecInfo, uFrameWidth) == 8, "");
static_assert(offsetof(QLX_VideoDecInfo, eFrameAspect) == 12, "");
static_assert(offsetof(QLX_VideoDecInfo, eVideoFormat) == 20, "");
static_assert(offsetof(QLX_VideoDecInfo, bAuxInfoValid) == 40, "");
static_assert(offsetof(QLX_VideoDecInfo, uAuxInfo) == 48, "");
static_assert(offsetof(QLX_VideoDecInfo, eVideoAttrA) == 68, "");
static_assert(offsetof(QLX_VideoDecInfo, eHdrType) == 76, "");
static_assert(offsetof(QLX_VideoDecInfo, eAFDType) == 92, "");
static_assert(offsetof(QLX_VideoDecInfo, bSupportOverscan) == 112, "");
#endif

/** The answer to a question of QLX_VideoGetVideoInfo. */
typedef struct QLX_VideoInfo {
    /** QLX_VideoParamType that is answered. */
    uint32_t eParamType;
    uint32_t uReserved;
    union {
        uint64_t uPts;
        /** Of the types 3, 4 and 5. */
        uint32_t eStatus;
        QLX_VideoDecInfo stVideoDecInfo;
    };
} QLX_VideoInfo;
QLX_RECORD_SIZE(QLX_VideoInfo, 136);

/**
 * The callback of a decoder.
 * @param eVideoDev  the decoder
 * @param pUserdata  as registered
 * @param eEvent     one QLX_VideoEvent
 * @param pData      see the events; valid during the call
 */
typedef void (*QLX_VideoCallback)(uint32_t eVideoDev, void* pUserdata, uint32_t eEvent,
                                  void* pData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_VideoInit(void);

/** Ends the service, whatever the number of initialisations was: decoders are stopped and closed,
 *  and their callbacks forgotten. Returns 0. */
int32_t QLX_VideoDeInit(void);

/**
 * Opens a decoder on a source that is up: a demultiplexer that is open (QLX_SOURCE_TYPE_DEMUX,
 * QLX_SOURCE_TYPE_RECORD), an external input that is open, an analog tuner that is open
 * (QLX_SOURCE_TYPE_TUNER; any, the decoder follows the one that is). The players
 * (QLX_SOURCE_TYPE_LOCAL_PLAYER, QLX_SOURCE_TYPE_STREAM_INJECT) need none, and give way to an open
 * on another kind, which takes the decoder over.
 * @return 0; QLX_FAILED before init, when the decoder is open already, or when the source is not
 *         up; QLX_VIDEO_ERR_INVALID_PARA
 */
int32_t QLX_VideoOpen(uint32_t eVideoDev, const QLX_VideoAttr* pstVideoAttr);

/** Stops and closes a decoder and forgets its callback; one that is not open stays so. Returns 0;
 *  QLX_FAILED before init; QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoClose(uint32_t eVideoDev);

/** Reads what an open decoder can do. Returns 0; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoGetCapability(uint32_t eVideoDev, QLX_VideoCapability* pstVideoCapability);

/**
 * Sets the callback of an open decoder that has none.
 * @param pUserdata  comes back with every call; may be null
 * @return 0; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA
 */
int32_t QLX_VideoRegisterCallback(uint32_t eVideoDev, void* pUserdata, QLX_VideoCallback callback);

/** Takes the callback away. Returns 0; QLX_FAILED when it is not the one that is registered;
 *  QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoUnRegisterCallback(uint32_t eVideoDev, QLX_VideoCallback callback);

/**
 * Starts an open decoder.
 * @param eVideoFormat  QLX_VideoFormat; QLX_VIDEO_FORMAT_NONE on external and analog sources
 * @param uPid          PID of the elementary stream; one above 8191 is taken, and never comes
 * @return 0; QLX_FAILED when it is not open or runs already; QLX_VIDEO_ERR_INVALID_PARA
 */
int32_t QLX_VideoStart(uint32_t eVideoDev, uint32_t eVideoFormat, uint32_t uPid);

/** Stops an open decoder; one that does not run stays so, and reports nothing. Returns 0;
 *  QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoStop(uint32_t eVideoDev);

/** Drops what a running decoder has taken in; it goes on with the next random access point and
 *  reports its first picture again. Returns 0; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoFlush(uint32_t eVideoDev);

/** Holds the picture of a running decoder, and lets it run on with what is then on the air.
 *  Return 0, also when nothing changes; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA. */
int32_t QLX_VideoPause(uint32_t eVideoDev);
int32_t QLX_VideoResume(uint32_t eVideoDev);

/** @param peVideoState  receives the QLX_VideoState of an open decoder
 *  @return 0; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA */
int32_t QLX_VideoGetState(uint32_t eVideoDev, uint32_t* peVideoState);

/**
 * Asks an open decoder; one that has no picture answers zeros and QLX_VIDEO_NOT_PRESENT.
 * @param eParamType    QLX_VideoParamType
 * @param pstVideoInfo  receives the answer, with the question in its first word
 * @return 0; QLX_FAILED; QLX_VIDEO_ERR_INVALID_PARA
 */
int32_t QLX_VideoGetVideoInfo(uint32_t eVideoDev, uint32_t eParamType, QLX_VideoInfo* pstVideoInfo);

#ifdef __cplusplus
}
#endif

#endif
