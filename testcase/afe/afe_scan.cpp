// The search for a station, and what its answers are sorted into.
#include <stddef.h>
#include <stdlib.h>
#include <unistd.h>

#include "framework/case/check.h"
#include "framework/case/wait.h"
#include "platform/qlx_sif.h"
#include "testcase/afe/afe_harness.h"

enum {
    /** kHz: the top of the band; the search does not come near it. */
    BAND_TOP = 777250,
    /** How far, in kHz, a search goes from where it began. */
    SPAN = 2000,
    /** Steps in kHz: without a carrier, without a picture, and to where the next search begins. */
    CARRIER_STEP = 1000,
    PICTURE_STEP = 750,
    CHANNEL_STEP = 4000,
    /** How often a carrier is looked for at one frequency, and the pause before each look. */
    LOCK_ROUNDS = 20,
    LOCK_PAUSE_US = 100000,
};

/** The class of a distance on the carrier. */
static const uint32_t classGood = 1;

int32_t AFE_CheckAFCWindow(uint32_t eAFCDistance, uint32_t* pDistanceClass) {
    static const uint32_t classes[] = {1, 1, 2, 2, 4, 4, 4, 6, 7, 5, 5, 5, 3, 3};
    static const int32_t offsets[] = {CARRIER_STEP, 0, 62, -62, 125, -125, 250, -250};
    if (pDistanceClass == nullptr)
        return -1;
    *pDistanceClass = classGood;
    if (eAFCDistance < sizeof classes / sizeof classes[0])
        *pDistanceClass = classes[eAFCDistance];
    return offsets[*pDistanceClass];
}

struct StandardRow {
    /** Bits of the broadcast systems. */
    uint32_t systems;
    uint32_t number;
};

/** The number of the row that has the bit; -1 when none has, and for more than one bit. */
template <size_t N>
static int32_t numberOf(const StandardRow (&rows)[N], uint32_t v) {
    if (v == 0 || (v & (v - 1)) != 0)
        return -1;
    for (const StandardRow& row : rows) {
        if ((row.systems & v) != 0)
            return static_cast<int32_t>(row.number);
    }
    return -1;
}

uint32_t AFE_MapAudioStd(uint32_t v) {
    static const StandardRow rows[] = {
        {QLX_ANALOG_AUDSTD_BG, 0},
        {QLX_ANALOG_AUDSTD_BG_A2 | QLX_ANALOG_AUDSTD_BG_NICAM, 7},
        {QLX_ANALOG_AUDSTD_I, 1},
        {QLX_ANALOG_AUDSTD_DK | QLX_ANALOG_AUDSTD_DK_A2 | QLX_ANALOG_AUDSTD_DK_NICAM, 2},
        {QLX_ANALOG_AUDSTD_L, 3},
        {QLX_ANALOG_AUDSTD_M | QLX_ANALOG_AUDSTD_M_BTSC | QLX_ANALOG_AUDSTD_M_A2 |
             QLX_ANALOG_AUDSTD_M_EIAJ,
         5},
        {QLX_ANALOG_AUDSTD_N, 6},
    };
    int32_t number = numberOf(rows, v);
    if (number < 0) {
        zk_log("broadcast system unknown (%d). set defalut BG\n", static_cast<int>(v));
        number = 0;
    }
    zk_log("Map std audio standard = %d \r\n", number);
    return static_cast<uint32_t>(number);
}

uint32_t AFE_MapColorStd(uint32_t v) {
    static const StandardRow rows[] = {
        {QLX_ANALOG_CLRSTD_NTSC | QLX_ANALOG_CLRSTD_NTSC443, 2},
        {QLX_ANALOG_CLRSTD_PAL_M | QLX_ANALOG_CLRSTD_PAL | QLX_ANALOG_CLRSTD_PAL_N |
             QLX_ANALOG_CLRSTD_PAL_60 | QLX_ANALOG_CLRSTD_PAL_NC,
         0},
        {QLX_ANALOG_CLRSTD_SECAM, 1},
    };
    int32_t number = numberOf(rows, v);
    if (number < 0) {
        zk_log("color system unknown (%d). set defalut PAL\n", static_cast<int>(v));
        number = 0;
    }
    zk_log("Map std color standard = %d \r\n", number);
    return static_cast<uint32_t>(number);
}

/** Tunes, and looks for a carrier until there is one. False when a call is refused. */
static bool lookForCarrier(CaseContext& tc, uint32_t eTunerId,
                           const QLX_AnalogTuningParams* pstTuningParams,
                           QLX_AnalogSignalStatus* pstSignalInfo) {
    const int frequency = static_cast<int>(pstTuningParams->Frequency);
    const Stopwatch tuning;
    if (!TC_EXPECT_RET(QLX_AFESetTuningParam(eTunerId, pstTuningParams)))
        return false;
    zk_log("QLX_AFESetTuningParam[%dkhz] consume %lld ms\n", frequency,
           static_cast<long long>(tuning.ms()));
    for (int round = 0; round < LOCK_ROUNDS; round++) {
        usleep(LOCK_PAUSE_US);
        *pstSignalInfo = {};
        const Stopwatch asking;
        if (!TC_EXPECT_RET(QLX_AFEGetSignalStatus(eTunerId, pstSignalInfo)))
            return false;
        zk_log("QLX_AFEGetSignalStatus [%dkhz] consume %lld ms\n", frequency,
               static_cast<long long>(asking.ms()));
        if (pstSignalInfo->bVifLock != 0) {
            zk_log("vif lock=%d \n", static_cast<int>(pstSignalInfo->bVifLock));
            break;
        }
    }
    return true;
}

/** The step to where the search goes on; 0 when it is at its end. */
static int32_t stepFrom(const QLX_AnalogSignalStatus& status, uint32_t frequency) {
    const int bVideoDecoderLock = static_cast<int>(status.bVideoDecoderLock);
    if (status.bVifLock == 0) {
        zk_log("vif unlock=%d ,1M shift\n", static_cast<int>(status.bVifLock));
        return CARRIER_STEP;
    }
    if (bVideoDecoderLock == 0) {
        zk_log("vd lock=%d. 750k shift \n", bVideoDecoderLock);
        return PICTURE_STEP;
    }
    zk_log("vd lock=%d. \n", bVideoDecoderLock);
    uint32_t distanceClass = 0;
    const int32_t offset = AFE_CheckAFCWindow(status.eAFCDistance, &distanceClass);
    if (distanceClass == classGood)
        zk_log("AFC GOOD. Freq lock =%d. \n", static_cast<int>(frequency));
    else
        zk_log("AFC = %d. offset = %d \n", static_cast<int>(status.eAFCDistance), offset);
    return offset;
}

uint32_t AFE_TuningChannelScan(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams,
                               uint32_t eAFC) {
    CaseContext tc = {__func__};
    static_cast<void>(eAFC);
    const int64_t startFreq = pstTuningParams->Frequency;
    int64_t currentFreq = startFreq;
    zk_log(" freq band is %d =%d khz. \n", static_cast<int>(startFreq), BAND_TOP);
    pstTuningParams->eTuneType = QLX_AFE_TUNE_TYPE_CHANNEL_SCAN;
    for (int32_t step = -1; step != 0; currentFreq += step) {
        zk_log("currentFreq =%d khz\n", static_cast<int>(currentFreq));
        if (llabs(currentFreq - startFreq) > SPAN) {
            zk_log("searching failed. \n");
            return TC_FAILURE;
        }
        QLX_AnalogSignalStatus stSignalInfo = {};
        pstTuningParams->Frequency = static_cast<uint32_t>(currentFreq);
        if (!lookForCarrier(tc, eTunerId, pstTuningParams, &stSignalInfo))
            return TC_FAILURE;
        step = stepFrom(stSignalInfo, pstTuningParams->Frequency);
    }
    uint32_t eColorStandard = 0;
    uint32_t eAudioStandard = 0;
    TC_ASSERT_RET(QLX_SIFGetColorStdDetection(eTunerId, &eColorStandard));
    TC_ASSERT_RET(QLX_SIFGetAudioStdDetection(eTunerId, &eAudioStandard));
    pstTuningParams->Frequency += CHANNEL_STEP;
    zk_log("searching next channel .shift 4M =%d. \n",
           static_cast<int>(pstTuningParams->Frequency));
    return TC_RESULT(tc);
}
