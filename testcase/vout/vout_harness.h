/*
 * The video output for all modules: output device 0, on the panel.
 *
 * The order is TC_VOUT_INIT, TC_VOUT_OPEN, TC_VOUT_START, and the reverse with TC_VOUT_STOP,
 * TC_VOUT_CLOSE, TC_VOUT_DEINIT. Each prints its verdict line and answers TC_SUCCESS or TC_FAILURE.
 */
#ifndef TESTCASE_VOUT_VOUT_HARNESS_H
#define TESTCASE_VOUT_VOUT_HARNESS_H

#include <stdint.h>

#include "framework/case/check.h"
#include "platform/qlx_video.h"
#include "platform/qlx_vout.h"

/** What the output has reported. Written on the library's thread. */
struct VOutRequestData {
    /** All QLX_VOutEvent bits so far. */
    uint32_t uEvents;
    /** Data word of QLX_VOUT_EVENT_SOURCE_CHANGED. */
    uint32_t uSourceChanged;
};

/** The configured source as the output is opened on it; filled by VOUT_LoadParams. */
extern QLX_Source stVOutSource;
/** The log of output device 0, user data of its callback. */
extern VOutRequestData stVoutRequestData;

/** Fills stVOutSource from the configuration; TC_FAILURE for a source that does not exist. */
uint32_t VOUT_LoadParams(void);

/** Receiver of the output's events; user data is a VOutRequestData. */
void VOUT_EventCallbck(uint32_t eDevId, void* pUserData, uint32_t eEvent, void* pData);

/** VOUT_LoadParams, and the service. */
uint32_t TC_VOUT_INIT(void);

/** Ends the service, and with it what is open. */
uint32_t TC_VOUT_DEINIT(void);

/**
 * Opens the output, registers its callback and enables it, muted. Needs the service, and a source
 * that is up. Leaves it closed on failure.
 * @param pstSource  null: stVOutSource
 */
uint32_t TC_VOUT_OPEN(const QLX_Source* pstSource);

/** Disables, unregisters and closes, each whatever the others answer. */
uint32_t TC_VOUT_CLOSE(void);

/** The default output rectangle: the panel, or 800 by 600 at its corner where the panel does not
 *  exceed that in both directions. False, with a failure noted, when the panel does not answer. */
bool VOUT_GetDefaultRect(CaseContext& tc, QLX_VOutRect* pstOutRect);

/**
 * Shows the picture: places it in the default rectangle, and unmutes the open output. Undoes
 * nothing on failure.
 * @param pstInRect  the part of the picture to show; null is a failure
 */
uint32_t TC_VOUT_START(const QLX_VOutRect* pstInRect);

/** The same with a whole picture. */
uint32_t VOUT_StartOnPicture(const QLX_VideoDecInfo& stVideoDecInfo);

/** Mutes the output. */
uint32_t TC_VOUT_STOP(void);

/** Asks the operator; see AV_CheckConfirm. */
uint32_t VOUT_CheckConfirm(const char* text);

#endif
