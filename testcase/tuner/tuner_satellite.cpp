// Satellite equipment: messages of DiSEqC and of EN 50494, the loop of a blind scan over the bands,
// and the threads that put load on it.
#include "testcase/tuner/tuner_satellite.h"

#include <string.h>
#include <unistd.h>

#include "framework/case/wait.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    DISEQC_HEADER_SIZE = 3,
    DISEQC_DATA_MAX = 3,
    BAND_HIGH = 1,
    POLARIZATION_18V = 2,
    INFO_READS = 12000,
    INFO_LIMIT_MS = 500,
    INFO_PERIOD_US = 100000,
    /** How far TUNER_TuningCircleThread tunes away, in kHz. */
    CIRCLE_OFFSET = 20000,
};

uint32_t uTunerNibbleBand;
uint32_t uTunerNibblePolarization;
uint32_t uTunerNibblePosition;
uint32_t uTunerNibbleOption;
uint32_t bTunerUnicableFlag;
uint32_t uTunerUnicableChannel;
uint32_t uTunerUnicableChannelFreq;
uint32_t uTunerLOFLow;
uint32_t uTunerLOFHigh;

uint32_t TUNER_DVBS_GetDiseqcBand(void) {
    return uTunerNibbleBand | uTunerNibblePolarization | uTunerNibblePosition | uTunerNibbleOption;
}

int32_t TUNER_DVBS_SendDiseqcMsg(uint32_t eTunerId, const uint8_t header[3], const uint8_t* data,
                                 uint32_t uLength) {
    uint8_t byte[DISEQC_HEADER_SIZE + DISEQC_DATA_MAX];
    if (uLength > DISEQC_DATA_MAX)
        uLength = DISEQC_DATA_MAX;
    memcpy(byte, header, DISEQC_HEADER_SIZE);
    memcpy(byte + DISEQC_HEADER_SIZE, data, uLength);
    return QLX_TunerSendDiseqcCommand(eTunerId, uLength + DISEQC_HEADER_SIZE, byte, 0, nullptr,
                                      nullptr);
}

int32_t TUNER_DVBS_ScifChannelChange(uint32_t eTunerId, uint32_t uIfFrequency) {
    if (bTunerUnicableFlag == 0)
        return QLX_SUCCESS;
    const uint8_t header[DISEQC_HEADER_SIZE] = {0xE0, 0x10, 0x5A};
    uint32_t bank = TUNER_DVBS_GetDiseqcBand();
    // The tuning word of EN 50494 counts 4 MHz steps from 1400 MHz.
    double sum = static_cast<double>(uIfFrequency) + uTunerUnicableChannelFreq;
    uint32_t T = (static_cast<uint32_t>(sum / 4000.0 + 0.5) - 350) & 0x3FF;
    const uint8_t data[] = {
        // user band in xxx00000, bank in 000xxx00, tuning word from 000000xx on
        static_cast<uint8_t>(((uTunerUnicableChannel - 1) << 5) | ((bank << 2) & 0x1C) |
                             ((T >> 8) & 3)),
        static_cast<uint8_t>(T & 0xFF),
    };
    int32_t code = QLX_TunerSetTonburstState(eTunerId, QLX_LNB_TONE_STATE_OFF);
    code |= QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V);
    usleep(50000);
    code |= QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_18V);
    code |= TUNER_DVBS_SendDiseqcMsg(eTunerId, header, data, sizeof data);
    if (code == QLX_SUCCESS) {
        usleep(5000);
        code |= QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V);
        usleep(20000);
    }
    return code;
}

void TUNER_DVBS_BlindScanCallback(uint32_t eTunerId, uint32_t eEvent,
                                  const QLX_TunerBlindScanInfo* pstInfo,
                                  uint32_t* puFinishedBands) {
    static_cast<void>(eTunerId);
    if (pstInfo == nullptr)
        return;
    if (eEvent == QLX_TUNER_BLINDSCAN_EVENT_PROGRESS)
        zk_log("Progress:%d.\n", static_cast<int>(pstInfo->uProgress));
    else if (eEvent == QLX_TUNER_BLINDSCAN_EVENT_LOCK_FREQUENCY)
        zk_log("Lock frequency:%u.\n", pstInfo->uFrequency);
    if (pstInfo->uProgress == 100 && puFinishedBands != nullptr)
        ++*puFinishedBands;
}

void TUNER_DVBS_BlindScanTuneCallback(uint32_t eTunerId,
                                      const QLX_TunerBlindScanInfo* pstCandidate) {
    if (pstCandidate == nullptr)
        return;
    uint32_t oscillator = uTunerNibbleBand != 0 ? uTunerLOFHigh : uTunerLOFLow;
    TUNER_DVBS_ScifChannelChange(eTunerId, pstCandidate->uFrequency - oscillator);
}

/** One of the LNB's bands: what selects it, and its range on the cable in kHz. */
struct ScanBand {
    uint32_t ePower;
    uint32_t eTone;
    uint32_t uNibbleBand;
    uint32_t uNibblePolarization;
    uint32_t uStartIfFrequency;
    uint32_t uEndIfFrequency;
};

// The range of the first band is the configured one.
// clang-format off
static const ScanBand scanBands[] = {
    {QLX_LNB_POWER_13V, QLX_LNB_TONE_STATE_OFF,   0,         0,                0,      0},
    {QLX_LNB_POWER_18V, QLX_LNB_TONE_STATE_OFF,   0,         POLARIZATION_18V, 950000, 1800000},
    {QLX_LNB_POWER_13V, QLX_LNB_TONE_STATE_22KHZ, BAND_HIGH, 0,                950000, 2150000},
    {QLX_LNB_POWER_18V, QLX_LNB_TONE_STATE_22KHZ, BAND_HIGH, POLARIZATION_18V, 950000, 2150000},
};
// clang-format on

enum { SCAN_BANDS = sizeof scanBands / sizeof scanBands[0] };

/** Counted up by the callback. Not in the loop's frame: a callback may come late when a stop fails.
 */
static uint32_t s_finishedBands;

/** Parameters of a scan of the first band. */
static QLX_TunerBlindScanParams firstScan(void) {
    QLX_TunerBlindScanParams stBlindScanParams = {};
    tuner_get_params_dvbs_BlindScan(&stBlindScanParams);
    if (stBlindScanParams.uLowLnbFrequency == stBlindScanParams.uHighLnbFrequency) {
        // One oscillator for all: its whole range is one band.
        stBlindScanParams.uStartIfFrequency = 950000;
        stBlindScanParams.uEndIfFrequency = 2150000;
    }
    return stBlindScanParams;
}

bool tuner_prepareScan(CaseContext& tc, uint32_t eTunerId) {
    QLX_TunerTuningParams stTuningParams = {};
    QLX_TunerBlindScanParams stBlindScanParams = firstScan();
    if (!TC_EXPECT_RET(
            tuner_get_params(eTunerId, QLX_TRANSMISSION_SYSTEM_DVB_S, 0, &stTuningParams)))
        return false;
    uTunerNibbleBand = 0;
    uTunerNibblePolarization = 0;
    uTunerNibblePosition = 0;
    uTunerNibbleOption = 0;
    bTunerUnicableFlag = stTuningParams.stDvbS.eLnbTypeReal == QLX_LNB_TYPE_UNICABLE ? 1 : 0;
    uTunerUnicableChannel = stTuningParams.stDvbS.uUnicableChannelId;
    uTunerUnicableChannelFreq = stTuningParams.stDvbS.uUnicableChannelFreqKHz;
    uTunerLOFLow = stBlindScanParams.uLowLnbFrequency;
    uTunerLOFHigh = stBlindScanParams.uHighLnbFrequency;
    return true;
}

/** Selects a band and starts to scan it. */
static bool startBand(CaseContext& tc, uint32_t eTunerId, const ScanBand& band,
                      QLX_TunerBlindScanParams* pstBlindScanParams) {
    QLX_TunerBlindScanParams& stBlindScanParams = *pstBlindScanParams;
    uTunerNibbleBand = band.uNibbleBand;
    uTunerNibblePolarization = band.uNibblePolarization;
    stBlindScanParams.uNibbleBand = static_cast<uint8_t>(band.uNibbleBand);
    stBlindScanParams.uNibblePolarization = static_cast<uint8_t>(band.uNibblePolarization);
    if (band.uEndIfFrequency != 0) {
        stBlindScanParams.uStartIfFrequency = band.uStartIfFrequency;
        stBlindScanParams.uEndIfFrequency = band.uEndIfFrequency;
    }
    uint32_t ePower = band.ePower;
    uint32_t eTone = band.eTone;
    // A Unicable LNB takes the band from the commands of the tune callback.
    if (bTunerUnicableFlag == 0 && (!TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, ePower)) ||
                                    !TC_EXPECT_RET(QLX_TunerSetTonburstState(eTunerId, eTone))))
        return false;
    return TC_EXPECT_RET(QLX_TunerBlindScanStart(eTunerId, &stBlindScanParams));
}

/** Goes on with the scan of a band until it ends, and stops it. */
static TunerScanEnd finishBand(CaseContext& tc, uint32_t eTunerId) {
    QLX_TunerBlindScanInfo stResult = {};
    int32_t code;
    do {
        code = QLX_TunerBlindScanNext(eTunerId, &stResult);
    } while (code == 0 || code == 1);
    TunerScanEnd end = SCAN_FAILED;
    if (code == QLX_TUNER_ERR_BLINDSCAN_CANCELED) {
        zk_log("Blind scan canceled.\n");
        end = SCAN_CANCELED;
    } else if (code == QLX_TUNER_ERR_BLINDSCAN_END) {
        zk_log("End of band.\n");
        end = SCAN_FINISHED;
    } else {
        TC_EXPECT_RET_TEXT("QLX_TunerBlindScanNext(eTunerId, &stResult)", code);
    }
    return TC_EXPECT_RET(QLX_TunerBlindScanStop(eTunerId)) ? end : SCAN_FAILED;
}

TunerScanEnd tuner_scanBands(CaseContext& tc, uint32_t eTunerId,
                             const volatile uint32_t* puCancelFlag, const char* endText) {
    QLX_TunerBlindScanParams stBlindScanParams = firstScan();
    s_finishedBands = 0;
    stBlindScanParams.puCancelFlag = puCancelFlag;
    stBlindScanParams.callback = TUNER_DVBS_BlindScanCallback;
    stBlindScanParams.tuneCallback = TUNER_DVBS_BlindScanTuneCallback;
    stBlindScanParams.puFinishedBands = &s_finishedBands;
    for (const ScanBand& band : scanBands) {
        if (!startBand(tc, eTunerId, band, &stBlindScanParams))
            return SCAN_FAILED;
        TunerScanEnd end = finishBand(tc, eTunerId);
        if (end != SCAN_FINISHED)
            return end;
    }
    zk_log("Scan Complete.\n");
    // Each band must have told its end to the callback as well.
    if (!TC_EXPECT_EQUAL(SCAN_BANDS, s_finishedBands))
        return SCAN_FAILED;
    zk_log("%s", endText);
    return SCAN_FINISHED;
}

void* TUNER_DVBS_BlindScanTuneThread(void* argument) {
    const TunerScanThread& thread = *static_cast<TunerScanThread*>(argument);
    CaseContext tc = {thread.name};
    TunerScanEnd end = tuner_scanBands(tc, QLX_TUNER_0, &thread.uCancelFlag, "All finished..\n");
    bool canceled = end == SCAN_CANCELED && thread.uCancelFlag != 0;
    if (canceled)
        zk_log("Success, end blindscan tune by cancel.\n");
    else
        zk_log("Failed, error for cancel search.\n");
    tc_endThread(canceled ? TC_SUCCESS : TC_FAILURE);
}

void* TUNER_DVBS_BlindScanTuneCircleThread(void* argument) {
    const TunerScanThread& thread = *static_cast<TunerScanThread*>(argument);
    CaseContext tc = {thread.name};
    TunerScanEnd end = SCAN_FINISHED;
    while (end != SCAN_FAILED && thread.uCancelFlag == 0) {
        end =
            tuner_scanBands(tc, QLX_TUNER_0, &thread.uCancelFlag, "All finished, circle again.\n");
        // A library that cancels by itself may do so at once, and each time.
        if (end == SCAN_CANCELED && !TC_EXPECT_TRUE(thread.uCancelFlag != 0))
            sleep(1);
    }
    if (thread.uCancelFlag != 0)
        zk_log("Cancel Falg true, Exit.\r\n");
    tc_endThread(tc.result);
}

/** Reads the signal information once; false when that fails or takes too long. */
static bool readInfoInTime(void) {
    QLX_TunerSignalInfo stSignalInfo = {};
    Stopwatch watch;
    int32_t code = QLX_TunerGetSignalInfo(QLX_TUNER_0, &stSignalInfo);
    long long consumed = watch.ms();
    zk_log("getSignalInfoConsumeTime = %lld ms.\n", consumed);
    if (code != QLX_SUCCESS) {
        zk_log("Failed getSgianlInfo error  \r\n");
        return false;
    }
    zk_log("tunedFrequency = %u, lockStatus = %u.\n", stSignalInfo.uTunedFrequency,
           stSignalInfo.eLockStatus);
    return consumed <= INFO_LIMIT_MS;
}

void* TUNER_DVBS_GetSignalInfoThread(void* argument) {
    static_cast<void>(argument);
    int64_t times = 0;
    while (times <= INFO_READS) {
        if (!readInfoInTime())
            tc_endThread(TC_FAILURE);
        times++;
        usleep(INFO_PERIOD_US);
    }
    zk_log("getSignalInfoTime = %lld times, SUCESS!!! \n", static_cast<long long>(times));
    tc_endThread(TC_SUCCESS);
}

void* TUNER_TuningCircleThread(void* argument) {
    const TunerScanThread& thread = *static_cast<TunerScanThread*>(argument);
    CaseContext tc = {thread.name};
    uint32_t eTunerId = QLX_TUNER_0;
    QLX_TunerTuningParams stTuningParams = {};
    TC_EXPECT_RET(tuner_get_params(eTunerId, QLX_TRANSMISSION_SYSTEM_DVB_S, 0, &stTuningParams));
    uint32_t uFrequency = stTuningParams.uFrequency;
    while (tc.result == TC_SUCCESS && thread.uCancelFlag == 0) {
        stTuningParams.uFrequency = uFrequency + CIRCLE_OFFSET;
        TC_EXPECT_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams));
        sleep(5);
        stTuningParams.uFrequency = uFrequency;
        TC_EXPECT_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams));
        sleep(5);
        zk_log("cancelFlag = %d.\r\n", static_cast<int>(thread.uCancelFlag));
    }
    tc_endThread(tc.result);
}
