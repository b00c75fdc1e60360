// Video decoders: what they tell of a picture, and their entry points. States are those of
// decoder_state.cpp, the order and times of events those of decoder_run.cpp.
#include <algorithm>
#include <cmath>

#include "simulator/av/decoder_state.h"
#include "simulator/core/family.h"

namespace sim {

SIM_RECORD(QLX_VideoAttr, SIM_MEMBER(QLX_VideoAttr, eSourceType),
           SIM_MEMBER(QLX_VideoAttr, uSourceIndex), SIM_MEMBER(QLX_VideoAttr, eInputClass),
           SIM_MEMBER(QLX_VideoAttr, eInputMode))
SIM_RECORD(QLX_VideoCapability, SIM_MEMBER(QLX_VideoCapability, uFormats),
           SIM_MEMBER(QLX_VideoCapability, uMaxWidth), SIM_MEMBER(QLX_VideoCapability, uMaxHeight),
           SIM_MEMBER(QLX_VideoCapability, uReserved))
SIM_RECORD(QLX_VideoDecInfo, SIM_MEMBER(QLX_VideoDecInfo, eVideoPresent),
           SIM_MEMBER(QLX_VideoDecInfo, uFrameRate), SIM_MEMBER(QLX_VideoDecInfo, uFrameWidth),
           SIM_MEMBER(QLX_VideoDecInfo, uFrameHeight), SIM_MEMBER(QLX_VideoDecInfo, eFrameAspect),
           SIM_MEMBER(QLX_VideoDecInfo, ePictureAspectRatio),
           SIM_MEMBER(QLX_VideoDecInfo, eVideoFormat), SIM_MEMBER(QLX_VideoDecInfo, uReserved1),
           SIM_MEMBER(QLX_VideoDecInfo, bAuxInfoValid), SIM_MEMBER(QLX_VideoDecInfo, bInterlaced),
           SIM_MEMBER(QLX_VideoDecInfo, uAuxInfo), SIM_MEMBER(QLX_VideoDecInfo, uReserved2),
           SIM_MEMBER(QLX_VideoDecInfo, eVideoAttrA), SIM_MEMBER(QLX_VideoDecInfo, uReserved3),
           SIM_MEMBER(QLX_VideoDecInfo, eHdrType), SIM_MEMBER(QLX_VideoDecInfo, eVideoAttrB),
           SIM_MEMBER(QLX_VideoDecInfo, eColorPrimariesType),
           SIM_MEMBER(QLX_VideoDecInfo, eVideoAttrC), SIM_MEMBER(QLX_VideoDecInfo, eAFDType),
           SIM_MEMBER(QLX_VideoDecInfo, uReserved4), SIM_MEMBER(QLX_VideoDecInfo, bSupportOverscan),
           SIM_MEMBER(QLX_VideoDecInfo, uReserved5))
SIM_RECORD(QLX_VideoInfo, SIM_MEMBER(QLX_VideoInfo, eParamType),
           SIM_MEMBER(QLX_VideoInfo, uReserved),
           SIM_MEMBER_IF(QLX_VideoInfo, uPts, record.eParamType == QLX_VIDEO_PARAMTYPE_GET_PTS),
           SIM_MEMBER_IF(QLX_VideoInfo, eStatus,
                         record.eParamType >= QLX_VIDEO_PARAMTYPE_GET_FRAMERDY),
           SIM_MEMBER_IF(QLX_VideoInfo, stVideoDecInfo,
                         record.eParamType == QLX_VIDEO_PARAMTYPE_GET_DECINFO))

namespace {

/** The attributes A and B without a picture. */
constexpr uint32_t noAttribute = 4;
constexpr uint16_t mostWidth = 3840;
constexpr uint16_t mostHeight = 2160;

struct Coding {
    uint32_t format;
    VideoCoding coding;
};
constexpr Coding codings[] = {
    {QLX_VIDEO_FORMAT_MPEG1, VideoCoding::mpeg1}, {QLX_VIDEO_FORMAT_MPEG2, VideoCoding::mpeg2},
    {QLX_VIDEO_FORMAT_MPEG4, VideoCoding::mpeg4}, {QLX_VIDEO_FORMAT_H264, VideoCoding::h264},
    {QLX_VIDEO_FORMAT_HEVC, VideoCoding::hevc},
};

const Coding* codingOf(uint32_t format) {
    for (const Coding& coding : codings) {
        if (coding.format == format)
            return &coding;
    }
    return nullptr;
}

uint32_t formatOf(VideoCoding found) {
    for (const Coding& coding : codings) {
        if (coding.coding == found)
            return coding.format;
    }
    return QLX_VIDEO_FORMAT_NONE;
}

/** The named proportions that a picture of this width to height has, to a hundredth. */
uint32_t aspectOf(double ratio) {
    constexpr struct {
        double ratio;
        uint32_t aspect;
    } aspects[] = {
        {4.0 / 3, QLX_VIDEO_ASPECT_4_3},   {5.0 / 4, QLX_VIDEO_ASPECT_5_4},
        {14.0 / 9, QLX_VIDEO_ASPECT_14_9}, {16.0 / 10, QLX_VIDEO_ASPECT_16_10},
        {16.0 / 9, QLX_VIDEO_ASPECT_16_9}, {1.85, QLX_VIDEO_ASPECT_185_100},
        {2.0, QLX_VIDEO_ASPECT_2_1},       {2.21, QLX_VIDEO_ASPECT_221_100},
        {21.0 / 9, QLX_VIDEO_ASPECT_21_9}, {1.0, QLX_VIDEO_ASPECT_1_1},
    };
    for (const auto& row : aspects) {
        if (std::abs(ratio / row.ratio - 1) < 0.01)
            return row.aspect;
    }
    return QLX_VIDEO_ASPECT_OTHER;
}

/** Of the active format description: which part of a frame the picture fills (ETSI TS 101 154,
 *  annex B). Codes that are reserved, or that leave the frame as it is, answer the frame's. */
uint32_t pictureAspect(uint8_t activeFormat, uint32_t frameAspect) {
    switch (activeFormat) {
        case 2:
        case 10:
        case 14:
        case 15:
            return QLX_VIDEO_ASPECT_16_9;
        case 3:
        case 11:
            return QLX_VIDEO_ASPECT_14_9;
        case 9:
        case 13:
            return QLX_VIDEO_ASPECT_4_3;
        case 4:
            return QLX_VIDEO_ASPECT_221_100;
        default:
            return frameAspect;
    }
}

uint32_t hdrOf(const VideoFormat& format) {
    switch (format.transfer) {
        case 16:
            return QLX_VIDEO_HDR_TYPE_HDR10;
        case 18:
            return QLX_VIDEO_HDR_TYPE_HLG;
        default:
            return QLX_VIDEO_HDR_TYPE_SDR;
    }
}

uint32_t primariesOf(uint8_t codePoint) {
    switch (codePoint) {
        case 1:
            return QLX_VIDEO_COLOR_PRIMARIES_BT709;
        case 2:
            return QLX_VIDEO_COLOR_PRIMARIES_UNKNOWN;
        case 5:
            return QLX_VIDEO_COLOR_PRIMARIES_BT601_625;
        case 6:
            return QLX_VIDEO_COLOR_PRIMARIES_BT601_525;
        case 9:
            return QLX_VIDEO_COLOR_PRIMARIES_BT2100;
        default:
            return QLX_VIDEO_COLOR_PRIMARIES_OTHER;
    }
}

uint32_t wholeRate(uint32_t numerator, uint32_t denominator) {
    return denominator == 0 ? 0 : numerator / denominator;
}

DecoderInfo absent() {
    DecoderInfo info = {};
    info.video.eVideoPresent = QLX_VIDEO_NOT_PRESENT;
    info.video.eVideoAttrA = noAttribute;
    info.video.eVideoAttrB = noAttribute;
    return info;
}

DecoderInfo ofUnit(const Decoder&, const EsUnits& units, uint32_t unit) {
    DecoderInfo info = {};
    QLX_VideoDecInfo& video = info.video;
    const VideoFormat* format = static_cast<const VideoIndex&>(units).formatAt(unit);
    if (format == nullptr)
        return absent();
    video.eVideoPresent = QLX_VIDEO_PRESENT;
    video.uFrameRate = wholeRate(format->frameRate.num, format->frameRate.den);
    video.uFrameWidth = format->width;
    video.uFrameHeight = format->height;
    Ratio aspect = format->displayAspect;
    if (aspect.num == 0)
        aspect = {format->width, format->height};
    video.eFrameAspect = aspectOf(double(aspect.num) / aspect.den);
    video.ePictureAspectRatio = pictureAspect(format->activeFormat, video.eFrameAspect);
    video.eVideoFormat = formatOf(format->coding);
    video.bInterlaced = format->interlaced;
    video.eHdrType = hdrOf(*format);
    video.eColorPrimariesType = primariesOf(format->primaries);
    video.eAFDType = format->activeFormat;
    // Standard definition has edges that sets of its time did not show.
    video.bSupportOverscan = format->height <= 576;
    return info;
}

bool ofSignal(const Decoder&, const SignalSource& signal, DecoderInfo* info) {
    const SignalPicture& picture = signal.picture;
    QLX_VideoDecInfo& video = info->video;
    *info = {};
    video.eVideoPresent = QLX_VIDEO_PRESENT;
    video.uFrameRate = wholeRate(picture.rateNumerator, picture.rateDenominator);
    video.uFrameWidth = picture.width;
    video.uFrameHeight = picture.height;
    video.eFrameAspect = aspectOf(double(picture.aspectWidth) / picture.aspectHeight);
    video.ePictureAspectRatio = video.eFrameAspect;
    video.bInterlaced = picture.interlaced;
    video.eHdrType = QLX_VIDEO_HDR_TYPE_SDR;
    video.bSupportOverscan = picture.height <= 576;
    return video.uFrameRate != 0 && picture.width != 0 && picture.height != 0;
}

std::shared_ptr<const EsUnits> indexOf(const TsStreamPtr& stream, uint16_t pid, uint32_t format) {
    const Coding* coding = codingOf(format);
    return coding == nullptr ? nullptr : videoIndex(stream, pid, coding->coding);
}

Value infoValue(DecoderInfo* info) {
    return value("info", &info->video);
}

std::shared_ptr<const CaptionIndex> captionsOf(const TsStreamPtr& stream, uint16_t pid,
                                               uint32_t format, const EsUnits& units) {
    const Coding* coding = codingOf(format);
    return coding == nullptr ? nullptr : captionIndex(stream, pid, coding->coding, units);
}

const DecoderKind videoKind = {
    "Video",
    "video",
    "VIDEO",
    "VideoEvent",
    "NumberOfVideoPlayers",
    QLX_VIDEO_ERR_INVALID_PARA,
    sizeof(QLX_VideoDecInfo),
    {QLX_EVENT_VIDEO_START_DONE, QLX_EVENT_VIDEO_DECODE_ERROR, QLX_EVENT_VIDEO_STOP_DONE,
     QLX_EVENT_VIDEO_FRAME_READY, QLX_EVENT_VIDEO_INFO_CHANGE, QLX_EVENT_VIDEO_SYNC_DONE,
     QLX_EVENT_VIDEO_SYNC_LOST},
    true,
    false,
    absent,
    indexOf,
    ofUnit,
    ofSignal,
    infoValue,
    captionsOf,
};

/** The answer to a question, of an open decoder. False for a question that there is not. */
bool answer(const Decoder& decoder, uint32_t question, QLX_VideoInfo* info) {
    static const DecoderRun resting;
    const DecoderRun& run = decoder.run != nullptr ? *decoder.run : resting;
    *info = {};
    info->eParamType = question;
    switch (question) {
        case QLX_VIDEO_PARAMTYPE_GET_PTS: {
            std::optional<UnitMoment> moment = shownMoment(run);
            if (moment.has_value() && moment->pts != noStamp)
                info->uPts = moment->pts;
            return true;
        }
        case QLX_VIDEO_PARAMTYPE_GET_DECINFO:
            info->stVideoDecInfo = run.infoTold ? run.info.video : absent().video;
            return true;
        case QLX_VIDEO_PARAMTYPE_GET_FRAMERDY:
            info->eStatus = run.firstTold;
            return true;
        case QLX_VIDEO_PARAMTYPE_GET_REACHSYNC:
            info->eStatus = run.synced;
            return true;
        case QLX_VIDEO_PARAMTYPE_GET_DECSTATUS:
            info->eStatus = run.decoding();
            return true;
        default:
            return false;
    }
}

}  // namespace

DecoderFamily& videoFamily() {
    static DecoderFamily* instance = new DecoderFamily(videoKind);
    return *instance;
}

VideoShown videoShown(uint32_t videoDev) {
    VideoShown shown;
    DecoderFamily& family = videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (refusalOf(family, videoDev) != QLX_SUCCESS)
        return shown;
    const Decoder& decoder = family.decoders[videoDev];
    const DecoderSource& source = decoder.source;
    shown.open = true;
    shown.source = {source.kind, source.index, source.inputClass, source.inputMode};
    shown.info = absent().video;
    if (decoder.run == nullptr)
        return shown;
    shown.origin = originOf(*decoder.run);
    // A first picture whose time has not come yet is shown all the same.
    if (shown.origin.kind == DecoderOrigin::Kind::stream)
        shown.origin.atUs = std::max(shown.origin.atUs, decoder.run->first.shownUs);
    shown.origin.signalKind = source.kind;
    if (const Coding* coding = codingOf(decoder.run->format))
        shown.coding = coding->coding;
    if (decoder.run->infoTold)
        shown.info = decoder.run->info.video;
    shown.paused = decoder.run->pausedUs != 0;
    return shown;
}

bool anyVideoDecoderOpen() {
    DecoderFamily& family = videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    for (const Decoder& decoder : family.decoders) {
        if (decoder.open)
            return true;
    }
    return false;
}

static void reset() {
    resetDecoders(videoFamily());
}

static void describe(std::string* out) {
    describeDecoders(videoFamily(), out);
}

extern const Family familyVideo = {reset, describe};

}  // namespace sim

int32_t QLX_VideoInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    SIM_RETURN(sim::decodersInit(sim::videoFamily()));
}

int32_t QLX_VideoDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    SIM_RETURN(sim::decodersDeInit(sim::videoFamily()));
}

int32_t QLX_VideoOpen(uint32_t eVideoDev, const QLX_VideoAttr* pstVideoAttr) {
    SIM_ENTRY("video=%d attr=%s", static_cast<int>(eVideoDev), sim::show(pstVideoAttr).c_str());
    sim::DecoderSource source;
    if (pstVideoAttr != nullptr)
        source = {pstVideoAttr->eSourceType, pstVideoAttr->uSourceIndex, pstVideoAttr->eInputClass,
                  pstVideoAttr->eInputMode};
    SIM_RETURN(sim::decoderOpen(sim::videoFamily(), eVideoDev,
                                pstVideoAttr != nullptr ? &source : nullptr));
}

int32_t QLX_VideoClose(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    SIM_RETURN(sim::decoderClose(sim::videoFamily(), eVideoDev));
}

int32_t QLX_VideoGetCapability(uint32_t eVideoDev, QLX_VideoCapability* pstVideoCapability) {
    SIM_ENTRY("video=%d capability=%s", static_cast<int>(eVideoDev),
              sim::showPointer(pstVideoCapability));
    std::lock_guard<std::mutex> lock(sim::videoFamily().mutex);
    if (pstVideoCapability == nullptr)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::videoFamily(), eVideoDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *pstVideoCapability = {};
    for (const sim::Coding& coding : sim::codings)
        pstVideoCapability->uFormats |= coding.format;
    pstVideoCapability->uMaxWidth = sim::mostWidth;
    pstVideoCapability->uMaxHeight = sim::mostHeight;
    simCall.output({sim::value("capability", pstVideoCapability)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoRegisterCallback(uint32_t eVideoDev, void* pUserdata, QLX_VideoCallback callback) {
    SIM_ENTRY("video=%d userdata=%s callback=%s", static_cast<int>(eVideoDev),
              sim::showPointer(pUserdata), sim::showPointer(callback));
    SIM_RETURN(sim::decoderRegister(sim::videoFamily(), eVideoDev, pUserdata, callback));
}

int32_t QLX_VideoUnRegisterCallback(uint32_t eVideoDev, QLX_VideoCallback callback) {
    SIM_ENTRY("video=%d callback=%s", static_cast<int>(eVideoDev), sim::showPointer(callback));
    SIM_RETURN(sim::decoderUnRegister(sim::videoFamily(), eVideoDev, callback));
}

int32_t QLX_VideoStart(uint32_t eVideoDev, uint32_t eVideoFormat, uint32_t uPid) {
    SIM_ENTRY("video=%d format=%u pid=%u", static_cast<int>(eVideoDev), eVideoFormat, uPid);
    if (eVideoFormat != QLX_VIDEO_FORMAT_NONE && sim::codingOf(eVideoFormat) == nullptr)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    SIM_RETURN(sim::decoderStart(sim::videoFamily(), eVideoDev, eVideoFormat, uPid));
}

int32_t QLX_VideoStop(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    SIM_RETURN(sim::decoderStop(sim::videoFamily(), eVideoDev));
}

int32_t QLX_VideoFlush(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    SIM_RETURN(sim::decoderFlush(sim::videoFamily(), eVideoDev));
}

int32_t QLX_VideoPause(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    SIM_RETURN(sim::decoderPause(sim::videoFamily(), eVideoDev, true));
}

int32_t QLX_VideoResume(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    SIM_RETURN(sim::decoderPause(sim::videoFamily(), eVideoDev, false));
}

int32_t QLX_VideoGetState(uint32_t eVideoDev, uint32_t* peVideoState) {
    SIM_ENTRY("video=%d state=%s", static_cast<int>(eVideoDev), sim::showPointer(peVideoState));
    std::lock_guard<std::mutex> lock(sim::videoFamily().mutex);
    if (peVideoState == nullptr)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::videoFamily(), eVideoDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *peVideoState = sim::decoderState(sim::videoFamily().decoders[eVideoDev]);
    simCall.output({sim::value("state", peVideoState)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoGetVideoInfo(uint32_t eVideoDev, uint32_t eParamType,
                              QLX_VideoInfo* pstVideoInfo) {
    SIM_ENTRY("video=%d type=%u info=%s", static_cast<int>(eVideoDev), eParamType,
              sim::showPointer(pstVideoInfo));
    std::lock_guard<std::mutex> lock(sim::videoFamily().mutex);
    if (pstVideoInfo == nullptr)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::videoFamily(), eVideoDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    QLX_VideoInfo info;
    if (!sim::answer(sim::videoFamily().decoders[eVideoDev], eParamType, &info))
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    *pstVideoInfo = info;
    simCall.output({sim::value("info", pstVideoInfo)});
    SIM_RETURN(QLX_SUCCESS);
}
