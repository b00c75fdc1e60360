/*
 * Video outputs: where the picture of a decoder stands on the panel.
 *
 * An output is opened on a source, enabled, given a rectangle and unmuted; it then shows what the
 * source's decoder delivers. A source must be up for it: a video decoder open, or the
 * demultiplexer, external input or analog front end of the source's kind. Decoding does not depend
 * on an output.
 *
 * Any thread may call, callbacks included. Wrong order is answered with QLX_FAILED, a bad number or
 * null pointer with QLX_VOUT_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_VOUT_H
#define PLATFORM_QLX_VOUT_H

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_VOutDev {
    QLX_VOUTDEV_NUMBER_0 = 0,
    QLX_VOUTDEV_NUMBER_1 = 1,
    QLX_VOUTDEV_NUMBER_2 = 2,
    QLX_VOUTDEV_NUMBER_MAX = 3,
};

enum QLX_VOutError {
    QLX_VOUT_ERR_INVALID_PARA = 0x100B01,
};

enum QLX_VOutEvent {
    /** The output's timing has changed; the data word is its frame rate. */
    QLX_VOUT_EVENT_SOURCE_CHANGED = 2,
};

/** A rectangle, in pixels of the decoder's picture or of the panel. */
typedef struct QLX_VOutRect {
    uint32_t x;
    uint32_t y;
    uint32_t uWidth;
    uint32_t uHeight;
    /** Kept as it is set. */
    uint32_t uReserved;
} QLX_VOutRect;
QLX_RECORD_SIZE(QLX_VOutRect, 20);

/**
 * Event of an output. Runs on a thread of the library.
 * @param eDevId     the output
 * @param pUserData  as registered
 * @param eEvent     QLX_VOutEvent bits
 * @param pData      the event's data word
 */
typedef void (*QLX_VOutCallback)(uint32_t eDevId, void* pUserData, uint32_t eEvent, void* pData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_VOutInit(void);

/** Ends the service and closes what is open; a success also without init. Returns 0. */
int32_t QLX_VOutDeInit(void);

/**
 * Opens an output on a source. An open output changes over to the new source and stays as it is in
 * all else.
 * @param eDevId     QLX_VOUTDEV_NUMBER_0 to QLX_VOUTDEV_NUMBER_2
 * @param pstSource  kind, port or device, input class
 * @return 0; QLX_FAILED before init and when no such source is up; QLX_VOUT_ERR_INVALID_PARA
 */
int32_t QLX_VOutOpen(uint32_t eDevId, const QLX_Source* pstSource);

/** Closes an output: it shows nothing, and its callback is forgotten. A success also when it is not
 *  open. Returns 0; QLX_VOUT_ERR_INVALID_PARA. */
int32_t QLX_VOutClose(uint32_t eDevId);

/**
 * Registers the receiver of an output's events, in place of an earlier one.
 * @return 0; QLX_FAILED when the output is not open; QLX_VOUT_ERR_INVALID_PARA
 */
int32_t QLX_VOutRegisterCallback(uint32_t eDevId, void* pUserData, QLX_VOutCallback callback);

/** Ends the events; a success also when none is registered. Waits for a running callback, unless it
 *  is called by one. Returns 0; QLX_VOUT_ERR_INVALID_PARA. */
int32_t QLX_VOutUnRegisterCallback(uint32_t eDevId, QLX_VOutCallback callback);

/** Lets the output show its picture. Returns 0; QLX_FAILED when it is not open. */
int32_t QLX_VOutEnable(uint32_t eDevId);

/** Takes the picture from the panel. A success also when the output is not open. */
int32_t QLX_VOutDisable(uint32_t eDevId);

/**
 * Places the picture.
 * @param eDevId      an open output
 * @param pstInRect   part of the decoder's picture
 * @param pstOutRect  where it goes; what lies beyond the panel is not seen
 * @param bNonLinear  QLX_TRUE: the sides are stretched more than the middle
 * @param bDotToDot   QLX_TRUE: not scaled, one pixel of the picture is one of the panel
 * @return 0, for any rectangle; QLX_FAILED when the output is not open; QLX_VOUT_ERR_INVALID_PARA
 */
int32_t QLX_VOutSetRect(uint32_t eDevId, const QLX_VOutRect* pstInRect,
                        const QLX_VOutRect* pstOutRect, uint32_t bNonLinear, uint32_t bDotToDot);

/** Gives what QLX_VOutSetRect was given last, all zero when there was no call. */
int32_t QLX_VOutGetRect(uint32_t eDevId, QLX_VOutRect* pstInRect, QLX_VOutRect* pstOutRect,
                        uint32_t* pbNonLinear, uint32_t* pbDotToDot);

/** Blacks the output's rectangle out, or shows the picture again; needs init alone. An output is
 *  muted until it is told otherwise, and again after QLX_VOutClose. @param bMute  QLX_TRUE or
 *  QLX_FALSE */
int32_t QLX_VOutSetMute(uint32_t eDevId, uint32_t bMute);

/** Tells whether the output is muted, QLX_TRUE or QLX_FALSE. */
int32_t QLX_VOutGetMute(uint32_t eDevId, uint32_t* pbMute);

/** Holds the picture that is shown, or lets it go on. QLX_FAILED when the output is not open.
 *  @param bFreeze  QLX_TRUE or QLX_FALSE */
int32_t QLX_VOutFreeze(uint32_t eDevId, uint32_t bFreeze);

/*
 * Picture controls of an open output. A setter takes the value in its range, and answers QLX_FAILED
 * when the output is not open, QLX_VOUT_ERR_INVALID_PARA beyond the range; a getter tells the value
 * in force. Controls stay as they are set until QLX_VOutDeInit, and no one of them changes another.
 */

/** A preset of the others, which keep what they are set to: 0 to 39 without 14. */
int32_t QLX_VOutSetPictureMode(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetPictureMode(uint32_t eDevId, int32_t* psValue);

/** Brightness, 0 to 255. */
int32_t QLX_VOutSetBrightness(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetBrightness(uint32_t eDevId, int32_t* psValue);

/** Contrast, 0 to 255. */
int32_t QLX_VOutSetContrast(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetContrast(uint32_t eDevId, int32_t* psValue);

/** Hue, 0 to 255. */
int32_t QLX_VOutSetHue(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetHue(uint32_t eDevId, int32_t* psValue);

/** Saturation, 0 to 255. */
int32_t QLX_VOutSetSaturation(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetSaturation(uint32_t eDevId, int32_t* psValue);

/** Sharpness, 0 to 255. */
int32_t QLX_VOutSetSharpness(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetSharpness(uint32_t eDevId, int32_t* psValue);

/** The panel's own test pattern in place of the picture: 0 off, 1 on. */
int32_t QLX_VOutSetTestPattern(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetTestPattern(uint32_t eDevId, int32_t* psValue);

/** Colour temperature: 0 warm to 1024 cold. */
int32_t QLX_VOutSetColorTemp(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetColorTemp(uint32_t eDevId, int32_t* psValue);

/** Noise reduction: 0 off to 4. */
int32_t QLX_VOutSetNR(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetNR(uint32_t eDevId, int32_t* psValue);

/** Reduction of block noise: 0 off to 4. */
int32_t QLX_VOutSetMpegNR(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetMpegNR(uint32_t eDevId, int32_t* psValue);

/** Curve: 0 to 49. */
int32_t QLX_VOutSetGamma(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetGamma(uint32_t eDevId, int32_t* psValue);

/** Levels of HDMI: 0 automatic, 1 limited, 2 full. */
int32_t QLX_VOutSetHdmiRange(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetHdmiRange(uint32_t eDevId, int32_t* psValue);

/** Strength of the colour tuner, 0 to 255. */
int32_t QLX_VOutSetColorTuner(uint32_t eDevId, int32_t sValue);
int32_t QLX_VOutGetColorTuner(uint32_t eDevId, int32_t* psValue);

#ifdef __cplusplus
}
#endif

#endif
