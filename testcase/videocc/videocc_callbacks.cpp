#include "testcase/videocc/videocc_callbacks.h"

#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <sys/time.h>
#include <unistd.h>

#include <string>

#include "testcase/videocc/cc708_parser.h"

enum {
    POLL_PAUSE_US = 10000,
    POLL_ROUNDS = 500,
    NOTIFY_TIMEOUT_S = 2,
    BYTES_PER_TRIPLET = 3,
    BYTES_PER_PAIR = 2,
    /** Notifications of the first service; the limit of a case lies below it. */
    FIRST_SERVICE_COUNT = 500,
};

static pthread_mutex_t g_ccDataNotifyMtx = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_ccDataNotifyCond = PTHREAD_COND_INITIALIZER;

CcRequestData stCcRequestData;

static const char* wordOf(uint32_t boolean) {
    return boolean != QLX_FALSE ? "True" : "False";
}

static void tellData(uint32_t eDataType, const QLX_VideoCcData& data) {
    if (eDataType == QLX_VIDEO_CC_DATA_TYPE_NTSC)
        zk_log("CC Data Notify: DataType[NTSC]\n");
    else if (eDataType == QLX_VIDEO_CC_DATA_TYPE_DTV)
        zk_log("CC Data Notify: DataType[DTV]\n");
    else
        zk_log("CC Data Notify: DataType[UnKnown]\n");
    zk_log("CC Data Notify: Pts[%llu], IsScte_IsRaw[%s], EvenField[%s], DataLen[%u]\n",
           static_cast<unsigned long long>(data.u64Pts), wordOf(data.bIsScteIsRaw),
           wordOf(data.bEvenField), data.uDataLen);
    if (data.pu8Data == nullptr || data.uDataLen == 0)
        return;
    std::string bytes;
    for (uint32_t i = 0; i < data.uDataLen; i++) {
        char text[8];
        snprintf(text, sizeof text, "0x%02x ", data.pu8Data[i]);
        bytes += text;
    }
    zk_log("CC Data Notify: Data[%s]\n", bytes.c_str());
}

static uint8_t firstByteOf(const QLX_VideoCcData& data) {
    return data.pu8Data != nullptr && data.uDataLen != 0 ? data.pu8Data[0] : 0;
}

void AV_VideoCcDataCallback(uint32_t eVideoDev, void* pstRequest, uint32_t eDataType,
                            const QLX_VideoCcData* pstData) {
    static_cast<void>(eVideoDev);
    if (pstRequest == nullptr || pstData == nullptr)
        return;
    CcRequestData& request = *static_cast<CcRequestData*>(pstRequest);
    pthread_mutex_lock(&g_ccDataNotifyMtx);
    tellData(eDataType, *pstData);
    request.eDataType = eDataType;
    request.stCcData = *pstData;
    request.u8FirstByte = firstByteOf(*pstData);
    request.bNotified = QLX_TRUE;
    pthread_cond_signal(&g_ccDataNotifyCond);
    pthread_mutex_unlock(&g_ccDataNotifyMtx);
}

/** Whether the length is that of triplets or, by its first byte, of a whole packet of the caption
 *  channel. */
static bool isFramed(CaseContext& tc, const QLX_VideoCcData& data, uint8_t u8FirstByte) {
    if (data.bIsScteIsRaw != QLX_FALSE)
        return TC_EXPECT_TRUE(data.uDataLen != 0) &&
               TC_EXPECT_EQUAL(0, data.uDataLen % BYTES_PER_TRIPLET);
    return TC_EXPECT_EQUAL(2u * (u8FirstByte & 0x3F), data.uDataLen);
}

/** Whether the captions are what the caption channel brings. */
static bool isDigital(CaseContext& tc, uint32_t eDataType, const QLX_VideoCcData& data,
                      uint8_t u8Service) {
    if (!TC_EXPECT_EQUAL(QLX_VIDEO_CC_DATA_TYPE_DTV, eDataType) ||
        !isFramed(tc, data, firstByteOf(data)))
        return false;
    if (data.bIsScteIsRaw != QLX_FALSE)
        return true;
    const uint32_t u32Parsed = AV_CC708ServiceParser(data.pu8Data, data.uDataLen, u8Service);
    return TC_EXPECT_EQUAL(1, u32Parsed);
}

void AV_VideoCcDataCallbackParserDigital(uint32_t eVideoDev, void* pstRequest, uint32_t eDataType,
                                         const QLX_VideoCcData* pstData) {
    CaseContext tc = {__func__};
    static_cast<void>(eVideoDev);
    if (pstRequest == nullptr || pstData == nullptr)
        return;
    CcParserDigital& parser = *static_cast<CcParserDigital*>(pstRequest);
    pthread_mutex_lock(&g_ccDataNotifyMtx);
    tellData(eDataType, *pstData);
    parser.uTestCount++;
    zk_log("test count[%d], total[%d]\r\n", static_cast<int>(parser.uTestCount),
           static_cast<int>(parser.uTotal));
    const uint8_t u8Service = parser.uTestCount > FIRST_SERVICE_COUNT ? 2 : 1;
    if (!isDigital(tc, eDataType, *pstData, u8Service))
        parser.uErrorCount++;
    pthread_cond_signal(&g_ccDataNotifyCond);
    pthread_mutex_unlock(&g_ccDataNotifyMtx);
}

/** Called with the mutex held. */
static void clearRequest() {
    stCcRequestData.bNotified = QLX_FALSE;
    stCcRequestData.eDataType = 0;
    stCcRequestData.stCcData = {};
    stCcRequestData.u8FirstByte = 0;
}

void AV_ClearCcRequestData(void) {
    pthread_mutex_lock(&g_ccDataNotifyMtx);
    clearRequest();
    pthread_mutex_unlock(&g_ccDataNotifyMtx);
}

bool AV_WaitForCcData(void) {
    AV_ClearCcRequestData();
    for (int round = 0; round < POLL_ROUNDS && stCcRequestData.bNotified == QLX_FALSE; round++)
        usleep(POLL_PAUSE_US);
    return stCcRequestData.bNotified != QLX_FALSE;
}

/** Waits for a notification; that none has come is told, and no failure. Called with the mutex
 *  held. */
static void waitForNotification() {
    timeval now;
    gettimeofday(&now, nullptr);
    const timespec deadline = {now.tv_sec + NOTIFY_TIMEOUT_S, now.tv_usec * 1000};
    if (pthread_cond_timedwait(&g_ccDataNotifyCond, &g_ccDataNotifyMtx, &deadline) == ETIMEDOUT)
        zk_log("wait cc notify time out\n");
}

void AV_JudgeCcPackets(CaseContext& tc, const CcParserDigital& stCcParserDigital) {
    bool enough = false;
    for (uint32_t round = 0; round < CC_TEST_TOTAL && !enough; round++) {
        pthread_mutex_lock(&g_ccDataNotifyMtx);
        waitForNotification();
        enough = stCcParserDigital.uTestCount > stCcParserDigital.uTotal;
        const uint32_t uErrorCount = stCcParserDigital.uErrorCount;
        pthread_mutex_unlock(&g_ccDataNotifyMtx);
        if (!TC_EXPECT_EQUAL(0, uErrorCount))
            return;
    }
}

/** Whether the last notification is a line 21 pair. */
static bool isPair(CaseContext& tc) {
    const CcRequestData& request = stCcRequestData;
    return TC_EXPECT_EQUAL(QLX_VIDEO_CC_DATA_TYPE_NTSC, request.eDataType) &&
           TC_EXPECT_EQUAL(QLX_TRUE, request.stCcData.bIsScteIsRaw) &&
           TC_EXPECT_EQUAL(BYTES_PER_PAIR, request.stCcData.uDataLen);
}

/** Waits for 200 notifications; `judge` looks at each with the mutex held, and ends it by false. */
template <typename Judge>
static void judgeNotifications(Judge judge) {
    bool good = true;
    for (uint32_t round = 0; round < CC_TEST_TOTAL && good; round++) {
        pthread_mutex_lock(&g_ccDataNotifyMtx);
        waitForNotification();
        if (stCcRequestData.bNotified != QLX_FALSE) {
            good = judge();
            clearRequest();
        }
        zk_log("test count[%d], total[%d]\r\n", static_cast<int>(round + 1), CC_TEST_TOTAL);
        pthread_mutex_unlock(&g_ccDataNotifyMtx);
    }
}

void AV_JudgeCcPairs(CaseContext& tc) {
    judgeNotifications([&] { return isPair(tc); });
}

void AV_JudgeCcBoth(CaseContext& tc) {
    uint32_t uAnalog = 0;
    uint32_t uDigital = 0;
    judgeNotifications([&] {
        if (stCcRequestData.eDataType != QLX_VIDEO_CC_DATA_TYPE_DTV) {
            uAnalog++;
            return isPair(tc);
        }
        uDigital++;
        return isFramed(tc, stCcRequestData.stCcData, stCcRequestData.u8FirstByte);
    });
    TC_EXPECT_TRUE(uAnalog != 0);
    TC_EXPECT_TRUE(uDigital != 0);
}
