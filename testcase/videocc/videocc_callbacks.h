/*
 * Receivers of captions, and how what they have received is waited for and judged. They run on the
 * library's thread; one mutex and one condition are between them and the case.
 */
#ifndef TESTCASE_VIDEOCC_VIDEOCC_CALLBACKS_H
#define TESTCASE_VIDEOCC_VIDEOCC_CALLBACKS_H

#include <stdint.h>

#include <atomic>

#include "framework/case/check.h"
#include "platform/qlx_videocc.h"

enum {
    /** Notifications that a case of the data looks at. */
    CC_TEST_TOTAL = 200,
};

/** The last notification; user data of AV_VideoCcDataCallback. */
struct CcRequestData {
    /** 1 from a notification on. The waits poll it without the mutex. */
    std::atomic<uint32_t> bNotified;
    /** QLX_VideoCcDataType. */
    uint32_t eDataType;
    /** Its bytes are the library's and gone when it is read: all but the first. */
    QLX_VideoCcData stCcData;
    uint8_t u8FirstByte;
};
extern CcRequestData stCcRequestData;

/** User data of AV_VideoCcDataCallbackParserDigital. */
struct CcParserDigital {
    uint32_t uErrorCount;
    uint32_t uTestCount;
    uint32_t uTotal;
};

/** Tells the captions, and keeps them for the case that waits. */
void AV_VideoCcDataCallback(uint32_t eVideoDev, void* pstRequest, uint32_t eDataType,
                            const QLX_VideoCcData* pstData);

/** Tells them, and takes the packets of the caption channel apart. Counts what is none. */
void AV_VideoCcDataCallbackParserDigital(uint32_t eVideoDev, void* pstRequest, uint32_t eDataType,
                                         const QLX_VideoCcData* pstData);

/** Forgets the last notification. */
void AV_ClearCcRequestData(void);

/** Forgets it and waits at most five seconds for another one; whether one has come. */
bool AV_WaitForCcData(void);

/** Wait for 200 notifications, at most two seconds for each, and note a failure in `tc`: for the
 *  first packet that was counted as an error; for what is no line 21 pair; for what is neither that
 *  nor a packet, and when one of the two never came. */
void AV_JudgeCcPackets(CaseContext& tc, const CcParserDigital& stCcParserDigital);
void AV_JudgeCcPairs(CaseContext& tc);
void AV_JudgeCcBoth(CaseContext& tc);

#endif
