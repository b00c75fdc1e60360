/*
 * Closed captions out of the user data of a video decoder's pictures (qlx_video.h): line 21 pairs
 * and packets of the DTV caption channel, in the order in which the pictures are shown.
 *
 * All calls need the decoder open; its close ends registration and parsing. Data come while it
 * decodes, also of pictures of a later start. Both types can be parsed at the same time. Results:
 * 0; QLX_FAILED for wrong order; QLX_VIDEO_ERR_INVALID_PARA. Any thread may call, callbacks
 * included.
 */
#ifndef PLATFORM_QLX_VIDEOCC_H
#define PLATFORM_QLX_VIDEOCC_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_VideoCcDataType {
    /** Pairs of line 21 (CTA-608), one field at a time. */
    QLX_VIDEO_CC_DATA_TYPE_NTSC = 0,
    /** The DTV caption channel (CTA-708). */
    QLX_VIDEO_CC_DATA_TYPE_DTV = 1,
};

/** What a callback brings. */
typedef struct QLX_VideoCcData {
    /** NTSC: a pair with its parity bits. DTV: a caption channel packet, or triplets. It is the
     *  library's, and good until the callback returns. */
    const uint8_t* pu8Data;
    uint32_t uDataLen; /**< Bytes. */
    uint64_t u64Pts;   /**< Of the picture, in 90 kHz ticks; 0: it has none. */
    /** QLX_TRUE: as in the user data, pairs or triplets of type and two bytes; QLX_FALSE: one whole
     *  caption channel packet. */
    uint32_t bIsScteIsRaw;
    uint32_t bEvenField; /**< QLX_TRUE: of the second field. */
} QLX_VideoCcData;

/**
 * Captions of a picture. Runs on a thread of the library.
 * @param eVideoDev   the decoder
 * @param pstRequest  as registered
 * @param eDataType   QLX_VideoCcDataType
 * @param pstData     the data
 */
typedef void (*QLX_VideoCcCallback)(uint32_t eVideoDev, void* pstRequest, uint32_t eDataType,
                                    const QLX_VideoCcData* pstData);

/** Registers the receiver of the captions; QLX_FAILED while one is registered. */
int32_t QLX_VideoCcParserRegisterCallback(uint32_t eVideoDev, void* pstRequest,
                                          QLX_VideoCcCallback callback);

/** Ends it: when it returns, none runs, unless it is called by one. QLX_FAILED for another callback
 *  than the registered one. */
int32_t QLX_VideoCcParserUnRegisterCallback(uint32_t eVideoDev, QLX_VideoCcCallback callback);

/** Lets captions of one type come; a type that comes already is a success.
 *  @param eDataType  QLX_VideoCcDataType */
int32_t QLX_VideoCcParserStart(uint32_t eVideoDev, uint32_t eDataType);

/** Ends both types; a success also when none was started. When it returns, no callback runs, unless
 *  it is called by one. */
int32_t QLX_VideoCcParserStop(uint32_t eVideoDev);

#ifdef __cplusplus
}
#endif

#endif
