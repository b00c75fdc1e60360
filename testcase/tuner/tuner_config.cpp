// Tuning parameters of the board: which keys of the tuner file fill which member of which record.
// The spellings of TUNER_HIGH_LNB_FREQENCY and TUNER_HIERACHY are those of the files.
#include <stdio.h>
#include <string.h>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "testcase/tuner/tuner_harness.h"

static QLX_TunerBlindScanParams s_TuningParams_dvbs_BlindScan;
static TunerDiseqcParams s_TuningParams_dvbs_DiSEqC;

/** Where a key's number goes: a word, or a byte. */
struct ConfKey {
    const char* key;
    uint32_t* word;
    uint8_t* byte;
};

int32_t tuner_get_conf_value(const char* section, const char* key, int32_t* value) {
    return get_conf_value_self(section, key, value, g_configFile.tuner);
}

static uint32_t readWord(const char* section, const char* key) {
    int32_t value = 0;
    tuner_get_conf_value(section, key, &value);
    return static_cast<uint32_t>(value);
}

template <size_t N>
static void readKeys(const char* section, const ConfKey (&keys)[N]) {
    for (const ConfKey& key : keys) {
        uint32_t value = readWord(section, key.key);
        if (key.word != nullptr)
            *key.word = value;
        else
            *key.byte = static_cast<uint8_t>(value);
    }
}

/** Announces a section, and gives the record its fixed members. */
static void beginSection(const char* section, QLX_TunerTuningParams* record, uint32_t system) {
    zk_log("----%s tuning parameters---- \r\n", section);
    record->eTuningType = QLX_TUNER_TUNING_TYPE_DIGITAL;
    record->eTransmissionSystem = system;
}

static void loadDefaultSystems(TcTunerConfig* config) {
    for (uint32_t i = 0; i < QLX_TUNER_MAX; i++) {
        char section[CONF_TEXT_SIZE];
        snprintf(section, sizeof section, "TUNERDEV%d", static_cast<int>(i));
        config->eTransmissionSystem[i] = readWord(section, "TUNER_TRANSMISSIONSYSTEM");
    }
}

static void loadDvbS(QLX_TunerTuningParams* record) {
    QLX_TunerTuningParamsDvbS& part = record->stDvbS;
    QLX_TunerBlindScanParams& scan = s_TuningParams_dvbs_BlindScan;
    TunerDiseqcParams& diseqc = s_TuningParams_dvbs_DiSEqC;
    scan = {};
    const ConfKey keys[] = {
        {"TUNER_MODULATION", &record->eModulation, nullptr},
        {"TUNER_SYMBOLRATE", &record->uSymbolRate, nullptr},
        {"TUNER_SPECTRUM", &record->eSpectrum, nullptr},
        {"TUNER_KNOWN_OFFSET", &part.bKnownOffset, nullptr},
        {"TUNER_KNOWN_SYMBOLRATE", &part.bKnownSymbolRate, nullptr},
        {"TUNER_POLARIZATION", &part.ePolarization, nullptr},
        {"TUNER_LNB_TONESTATE", &part.eLnbToneState, nullptr},
        {"TUNER_FEC_TYPE", &part.eFecType, nullptr},
        {"TUNER_FEC_RATE", &part.eFecRate, nullptr},
        {"TUNER_LOCAL_OSC_FREQUENCY", &part.uLocalOscFrequency, nullptr},
        {"TUNER_RF_BAND", &part.eRfBand, nullptr},
        {"TUNER_LOW_LNB_FREQUENCY", &part.uLowLnbFrequency, nullptr},
        {"TUNER_HIGH_LNB_FREQENCY", &part.uHighLnbFrequency, nullptr},
        {"TUNER_LNB_TYPE_REAL", &part.eLnbTypeReal, nullptr},
        {"TUNER_BLINDSCAN_START_IF_FREQUENCY_KHz", &scan.uStartIfFrequency, nullptr},
        {"TUNER_BLINDSCAN_END_IF_FREQUENCY_KHz", &scan.uEndIfFrequency, nullptr},
        {"TUNER_BLINDSCAN_START_SYMBOLRATE_Ksps", &scan.uStartSymbolRate, nullptr},
        {"TUNER_BLINDSCAN_END_SYMBOLRATE_Ksps", &scan.uEndSymbolRate, nullptr},
        {"TUNER_BLINDSCAN_LOW_LNB_FREQUENCY", &scan.uLowLnbFrequency, nullptr},
        {"TUNER_BLINDSCAN_HIGH_LNB_FREQUENCY", &scan.uHighLnbFrequency, nullptr},
        {"TUNER_DISEQC_FRAMING", &diseqc.uFraming, nullptr},
        {"TUNER_DISEQC_ADDRESS", &diseqc.uAddress, nullptr},
        {"TUNER_DISEQC_COMMAND", &diseqc.uCommand, nullptr},
        {"TUNER_UNICABLE_DEVID", &part.uUnicableDevId, nullptr},
        {"TUNER_UNICABLE_CHANNEL_ID", &part.uUnicableChannelId, nullptr},
        {"TUNER_UNICABLE_CHANNEL_FREQ_KHZ", &part.uUnicableChannelFreqKHz, nullptr},
    };
    beginSection("DVB-S", record, QLX_TRANSMISSION_SYSTEM_DVB_S);
    readKeys("DVB-S", keys);
    // The scan reaches the same equipment as a tuning does.
    scan.eLnbTypeReal = part.eLnbTypeReal;
    scan.uUnicableDevId = part.uUnicableDevId;
    scan.uUnicableChannelId = part.uUnicableChannelId;
    scan.uUnicableChannelFreqKHz = part.uUnicableChannelFreqKHz;
}

static void loadDvbT(QLX_TunerTuningParams* record) {
    QLX_TunerTuningParamsDvbT& part = record->stDvbT;
    const ConfKey keys[] = {
        {"TUNER_MODULATION", &record->eModulation, nullptr},
        {"TUNER_SYMBOLRATE", &record->uSymbolRate, nullptr},
        {"TUNER_SPECTRUM", &record->eSpectrum, nullptr},
        {"TUNER_GUARD_INTERVAL", &part.eGuardInterval, nullptr},
        {"TUNER_TRANSMISSION_MODE", &part.eTransmissionMode, nullptr},
        {"TUNER_ECHO_POSITION", &part.eEchoPosition, nullptr},
        {"TUNER_BAND_WIDTH", &part.eBandWidth, nullptr},
        {"TUNER_FEC_RATE", &part.eFecRate, nullptr},
        {"TUNER_TUNER_MODE", &part.eTunerMode, nullptr},
        {"TUNER_HIERACHY", &part.eHierarchy, nullptr},
        {"TUNER_PRIORITY", &part.ePriority, nullptr},
    };
    beginSection("DVB-T", record, QLX_TRANSMISSION_SYSTEM_DVB_T);
    readKeys("DVB-T", keys);
}

/** The systems whose records have the common members alone. */
static void loadPlain(const char* section, QLX_TunerTuningParams* record, uint32_t system) {
    const ConfKey keys[] = {
        {"TUNER_MODULATION", &record->eModulation, nullptr},
        {"TUNER_SYMBOLRATE", &record->uSymbolRate, nullptr},
        {"TUNER_SPECTRUM", &record->eSpectrum, nullptr},
    };
    beginSection(section, record, system);
    readKeys(section, keys);
}

static void loadAtscT3(QLX_TunerTuningParams* record) {
    QLX_TunerTuningParamsAtscT3& part = record->stAtscT3;
    const ConfKey keys[] = {
        {"TUNER_MODULATION", &record->eModulation, nullptr},
        {"TUNER_BAND_WIDTH", &part.eBandWidth, nullptr},
        {"TUNER_PLP_NUM", nullptr, &part.uPlpNum},
        {"TUNER_PLP_ID0", nullptr, &part.uPlpId[0]},
        {"TUNER_PLP_ID1", nullptr, &part.uPlpId[1]},
        {"TUNER_PLP_ID2", nullptr, &part.uPlpId[2]},
        {"TUNER_PLP_ID3", nullptr, &part.uPlpId[3]},
    };
    beginSection("ATSC-T3", record, QLX_TRANSMISSION_SYSTEM_ATSC_T3);
    readKeys("ATSC-T3", keys);
}

static void loadIsdbT(QLX_TunerTuningParams* record) {
    loadPlain("ISDB-T", record, QLX_TRANSMISSION_SYSTEM_ISDB_T);
    record->stIsdbT.eBandWidth = readWord("ISDB-T", "TUNER_BAND_WIDTH");
}

void TC_TUNER_LOAD_CONFIG(void) {
    TcTunerConfig* config = &zk_testConfig.tunerBlock;
    *config = {};
    zk_log("=========Tuner moudule config======== \r\n");
    loadDefaultSystems(config);
    loadDvbS(&config->stDvbS);
    loadDvbT(&config->stDvbT);
    loadPlain("DVB-C", &config->stDvbC, QLX_TRANSMISSION_SYSTEM_DVB_C);
    loadPlain("ATSC-C", &config->stAtscC, QLX_TRANSMISSION_SYSTEM_ATSC_C);
    loadPlain("ATSC-T", &config->stAtscT, QLX_TRANSMISSION_SYSTEM_ATSC_T);
    loadAtscT3(&config->stAtscT3);
    loadIsdbT(&config->stIsdbT);
    loadPlain("ISDB-S", &config->stIsdbS, QLX_TRANSMISSION_SYSTEM_ISDB_S);
    loadPlain("ISDB-S3", &config->stIsdbS3, QLX_TRANSMISSION_SYSTEM_ISDB_S3);
}

/** The configured record of a system, null where it has none. */
static const QLX_TunerTuningParams* recordOf(uint32_t eTransSys) {
    const TcTunerConfig& config = zk_testConfig.tunerBlock;
    switch (eTransSys) {
        case QLX_TRANSMISSION_SYSTEM_DVB_T:
            return &config.stDvbT;
        case QLX_TRANSMISSION_SYSTEM_DVB_S:
            return &config.stDvbS;
        case QLX_TRANSMISSION_SYSTEM_DVB_C:
            return &config.stDvbC;
        case QLX_TRANSMISSION_SYSTEM_ATSC_T:
            return &config.stAtscT;
        case QLX_TRANSMISSION_SYSTEM_ATSC_C:
            return &config.stAtscC;
        case QLX_TRANSMISSION_SYSTEM_ISDB_T:
            return &config.stIsdbT;
        case QLX_TRANSMISSION_SYSTEM_ISDB_S:
            return &config.stIsdbS;
        case QLX_TRANSMISSION_SYSTEM_ISDB_S3:
            return &config.stIsdbS3;
        case QLX_TRANSMISSION_SYSTEM_ATSC_T3:
            return &config.stAtscT3;
        default:
            return nullptr;
    }
}

/** The channel of a system; the table of ATSC 3.0 is not one that channel readers are given. */
static TcChannelInfo channelOf(uint32_t eTransSys, uint32_t uChannelId) {
    TcChannelInfo stChannelInfo = {};
    if (eTransSys != QLX_TRANSMISSION_SYSTEM_ATSC_T3)
        zk_test_get_dtv_channel_info(eTransSys, uChannelId, &stChannelInfo);
    else
        stChannelInfo =
            zk_testConfig.atscT3[uChannelId < zk_testConfig.atscT3ChannelNum ? uChannelId : 0];
    return stChannelInfo;
}

uint32_t tuner_get_params(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId,
                          QLX_TunerTuningParams* pstTuningParams) {
    if (eTransSys == 0 && eTunerId < QLX_TUNER_MAX)
        eTransSys = zk_testConfig.tunerBlock.eTransmissionSystem[eTunerId];
    const QLX_TunerTuningParams* record = recordOf(eTransSys);
    if (record == nullptr)
        return TC_FAILURE;
    TcChannelInfo stChannelInfo = channelOf(eTransSys, uChannelId);
    memcpy(pstTuningParams, record, sizeof *pstTuningParams);
    pstTuningParams->uFrequency = stChannelInfo.uFrequency;
    if (eTransSys == QLX_TRANSMISSION_SYSTEM_ISDB_S)
        pstTuningParams->stIsdbS.uTsId = stChannelInfo.uTsId;
    else if (eTransSys == QLX_TRANSMISSION_SYSTEM_ISDB_S3)
        pstTuningParams->stIsdbS3.uStreamId = stChannelInfo.uStreamId;
    return TC_SUCCESS;
}

uint32_t tuner_get_params_dvbs_BlindScan(QLX_TunerBlindScanParams* pstBlindScanParams) {
    *pstBlindScanParams = s_TuningParams_dvbs_BlindScan;
    return TC_SUCCESS;
}

uint32_t tuner_get_params_dvbs_DiSEqC(TunerDiseqcParams* pstParams) {
    *pstParams = s_TuningParams_dvbs_DiSEqC;
    return TC_SUCCESS;
}
