// Kinds of source: how the signal of each is brought up, and what decoders and outputs are told of
// it.
#include <stdio.h>
#include <string.h>

#include "framework/case/ladder.h"
#include "testcase/afe/afe_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/extin/extin_harness.h"
#include "testcase/tuner/tuner_harness.h"

/** A kind of source as the decoders see it. */
struct SourceKind {
    uint32_t eSource;
    const char* name;
    uint32_t eVideoType;
    uint32_t eAudioType;
    /** Where the number of its device stands; null: there is none. */
    uint32_t AvSource::*index;
    uint32_t eInputClass;
    uint32_t eInputMode;
    /** Behind the name on the console: the number, and what ends the line. */
    bool numbered;
    const char* tail;
};

// clang-format off
static const SourceKind sourceKinds[] = {
    // source          name      video type                     audio type                     device                   input class              input mode                      shown
    {AV_SOURCE_ATV,    "ATV",    QLX_SOURCE_TYPE_TUNER,         QLX_SOURCE_TYPE_TUNER,         &AvSource::eATVTunerDev, QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_TUNER,     true,  " \n"},
    {AV_SOURCE_CVBS,   "CVBS",   QLX_SOURCE_TYPE_AV_CVBS,       QLX_SOURCE_TYPE_AV_CVBS,       &AvSource::uExtInPort,   QLX_INPUT_CLASS_CVBS,    QLX_VIDEO_INPUT_MODE_EXTERNAL,  true,  " \n"},
    {AV_SOURCE_YPBPR,  "YPBPR",  QLX_SOURCE_TYPE_AV_YPBPR,      QLX_SOURCE_TYPE_AV_YPBPR,      &AvSource::uExtInPort,   QLX_INPUT_CLASS_YPBPR,   QLX_VIDEO_INPUT_MODE_EXTERNAL,  true,  " \n"},
    {AV_SOURCE_HDMI,   "HDMI",   QLX_SOURCE_TYPE_HDMI,          QLX_SOURCE_TYPE_HDMI,          &AvSource::uExtInPort,   QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_EXTERNAL,  true,  " \n"},
    // To the video decoder a recording is a demultiplexer like another.
    {AV_SOURCE_PVR,    "PVR",    QLX_SOURCE_TYPE_DEMUX,         QLX_SOURCE_TYPE_RECORD,        &AvSource::eDTVDemuxDev, QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_PVR,       false, "\n"},
    {AV_SOURCE_STREAM, "Stream", QLX_SOURCE_TYPE_STREAM_INJECT, QLX_SOURCE_TYPE_STREAM_INJECT, nullptr,                 QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_STREAM,    false, " \n"},
    {AV_SOURCE_DTV,    "DTV",    QLX_SOURCE_TYPE_DEMUX,         QLX_SOURCE_TYPE_DEMUX,         &AvSource::eDTVDemuxDev, QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_TUNER,     true,  " \n"},
};
/** Of a decoder that works alone, where they deviate. */
static const SourceKind loneSourceKinds[] = {
    {AV_SOURCE_ATV,    "ATV",    QLX_SOURCE_TYPE_TUNER,         QLX_SOURCE_TYPE_TUNER,         &AvSource::eDTVTunerDev, QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_TUNER,     true,  " \n"},
    {AV_SOURCE_PVR,    "PVR",    QLX_SOURCE_TYPE_RECORD,        QLX_SOURCE_TYPE_RECORD,        nullptr,                 QLX_INPUT_CLASS_NONE,    QLX_VIDEO_INPUT_MODE_PVR,       false, "\n"},
};
// clang-format on

template <size_t N>
static const SourceKind* findKind(const SourceKind (&kinds)[N], uint32_t eSource) {
    for (const SourceKind& kind : kinds) {
        if (kind.eSource == eSource)
            return &kind;
    }
    return nullptr;
}

static uint32_t indexOf(const AvSource& source, const SourceKind& kind) {
    return kind.index != nullptr ? source.*kind.index : 0;
}

static bool fillAttr(const AvSource& source, const SourceKind* kind, QLX_VideoAttr* pstVideoAttr,
                     QLX_AudioAttr* pstAudioSource) {
    memset(pstVideoAttr, 0, sizeof *pstVideoAttr);
    memset(pstAudioSource, 0, sizeof *pstAudioSource);
    if (kind == nullptr) {
        zk_log("Unknow source %d \n", static_cast<int>(source.eSource));
        return false;
    }
    const uint32_t index = indexOf(source, *kind);
    char number[16] = "";
    if (kind->numbered)
        snprintf(number, sizeof number, "[%d]", static_cast<int>(index));
    zk_log("AV source is %s%s%s", kind->name, number, kind->tail);
    *pstVideoAttr = {kind->eVideoType, index, kind->eInputClass, kind->eInputMode};
    *pstAudioSource = {kind->eAudioType, index, kind->eInputClass};
    return true;
}

const AvSource* AV_SourceOrConfigured(const AvSource* pstSource) {
    return pstSource != nullptr ? pstSource : &zk_testConfig.av.stSource;
}

bool AV_FillDecoderAttr(const AvSource& source, QLX_VideoAttr* pstVideoAttr,
                        QLX_AudioAttr* pstAudioSource) {
    return fillAttr(source, findKind(sourceKinds, source.eSource), pstVideoAttr, pstAudioSource);
}

bool AV_FillLoneDecoderAttr(const AvSource& source, QLX_VideoAttr* pstVideoAttr,
                            QLX_AudioAttr* pstAudioSource) {
    const SourceKind* kind = findKind(loneSourceKinds, source.eSource);
    if (kind == nullptr)
        kind = findKind(sourceKinds, source.eSource);
    return fillAttr(source, kind, pstVideoAttr, pstAudioSource);
}

uint32_t AV_AvSource2QlxSource(const AvSource* pstSource, QLX_Source* pstQlxSource) {
    const AvSource& source = *AV_SourceOrConfigured(pstSource);
    const SourceKind* kind = findKind(sourceKinds, source.eSource);
    if (kind == nullptr) {
        zk_log("Unknow source %d \n", static_cast<int>(source.eSource));
        return TC_FAILURE;
    }
    // An output shows a recording as one: the kind is the source's own.
    pstQlxSource->eSourceType = source.eSource;
    if (kind->index == nullptr)
        return TC_SUCCESS;
    pstQlxSource->uSourceIndex = indexOf(source, *kind);
    pstQlxSource->eInputClass = kind->eInputClass;
    return TC_SUCCESS;
}

bool AV_IsCoded(const AvSource& source) {
    return source.eSource == AV_SOURCE_DTV || source.eSource == AV_SOURCE_PVR;
}

/** A source whose signal is brought up or taken down. */
struct SignalBench {
    const AvSource* pstSource;
    QLX_ExtInSource stAVSource;
    QLX_Source stDemuxSource;
};

static SignalBench signalBenchOf(const AvSource* pstSource) {
    const AvSource& source = *pstSource;
    SignalBench bench = {};
    bench.pstSource = pstSource;
    if (const SourceKind* kind = findKind(sourceKinds, source.eSource)) {
        const uint16_t port = static_cast<uint16_t>(source.uExtInPort);
        bench.stAVSource = {source.eSource, port, kind->eInputClass};
    }
    if (source.eSource == AV_SOURCE_DTV)
        bench.stDemuxSource = {QLX_SOURCE_TYPE_TUNER, source.eDTVTunerDev, 0};
    else
        bench.stDemuxSource = {QLX_SOURCE_TYPE_RECORD, 0, 0};
    return bench;
}

static bool isAnalog(const SignalBench& bench) {
    return bench.pstSource->eSource == AV_SOURCE_ATV;
}

static bool isExternal(const SignalBench& bench) {
    const uint32_t eSource = bench.pstSource->eSource;
    return eSource == AV_SOURCE_CVBS || eSource == AV_SOURCE_YPBPR || eSource == AV_SOURCE_HDMI;
}

static bool isTuned(const SignalBench& bench) {
    return bench.pstSource->eSource == AV_SOURCE_DTV;
}

static bool isDemultiplexed(const SignalBench& bench) {
    return AV_IsCoded(*bench.pstSource);
}

static uint32_t startTuner(const AvSource* pstSource) {
    return TC_TUNER_START(pstSource->eDTVTunerDev, pstSource->TransmissionSystem_e,
                          pstSource->uDTVChannelId);
}

// clang-format off
static const LadderStep<SignalBench> signalSteps[] = {
    // up                                                                                                                                                                 down                                                                                                                       undo          sources that have it
    {LADDER_CALL("TC_ANALOG_START(pstSource->eATVTunerDev, pstSource->uATVChannelId)", TC_ANALOG_START(bench.pstSource->eATVTunerDev, bench.pstSource->uATVChannelId)),   LADDER_CALL("TC_ANALOG_END(pstSource->eATVTunerDev)", TC_ANALOG_END(bench.pstSource->eATVTunerDev)),                       UNDO_CHECKED, isAnalog},
    {LADDER_CALL("TC_EXTIN_START(&stAVSource)", TC_EXTIN_START(&bench.stAVSource)),                                                                                       LADDER_CALL("TC_EXTIN_STOP(&stAVSource)", TC_EXTIN_STOP(&bench.stAVSource)),                                               UNDO_CHECKED, isExternal},
    {LADDER_CALL("TC_TUNER_START(pstSource->eDTVTunerDev, pstSource ->TransmissionSystem_e, pstSource->uDTVChannelId)", startTuner(bench.pstSource)),                     LADDER_CALL("TC_TUNER_STOP(pstSource->eDTVTunerDev)", TC_TUNER_STOP(bench.pstSource->eDTVTunerDev)),                       UNDO_CHECKED, isTuned},
    // A demultiplexer that runs on still needs its tuner.
    {LADDER_CALL("TC_DEMUX_START(pstSource->eDTVDemuxDev, &stDemuxSource)", TC_DEMUX_START(bench.pstSource->eDTVDemuxDev, &bench.stDemuxSource)),                         LADDER_CALL("TC_DEMUX_STOP(pstSource->eDTVDemuxDev)", TC_DEMUX_STOP(bench.pstSource->eDTVDemuxDev)),                       UNDO_OR_STAY, isDemultiplexed},
};
// clang-format on

/** Whether the source has a signal at all; else a line on the console, and a failure. */
static bool isSupported(CaseContext& tc, const SignalBench& bench) {
    if (isAnalog(bench) || isExternal(bench) || isDemultiplexed(bench))
        return true;
    zk_log("unsupport source %d \r\n", static_cast<int>(bench.pstSource->eSource));
    tc.result = TC_FAILURE;
    return false;
}

uint32_t TC_AV_START_SOURCE(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    SignalBench bench = signalBenchOf(AV_SourceOrConfigured(pstSource));
    if (isSupported(tc, bench))
        ladderUp(tc, bench, signalSteps);
    return TC_RESULT(tc);
}

uint32_t TC_AV_STOP_SOURCE(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    SignalBench bench = signalBenchOf(AV_SourceOrConfigured(pstSource));
    if (isSupported(tc, bench))
        ladderDown(tc, bench, signalSteps);
    return TC_RESULT(tc);
}
