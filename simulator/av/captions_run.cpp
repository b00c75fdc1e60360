// When a running video decoder tells the captions of a picture: in the order in which pictures are
// shown, and in three parts a third of the picture's time apart, so that a program that keeps one
// of them has the time to look at it: the line 21 pair of the first field with the picture, then
// what the caption channel has brought, then the pair of the second field.
//
// Board file: CC_RAW of section VIDEO, 1 for hardware that hands out the triplets of the caption
// channel as they come, 0 for one that puts the packets together.
#include <algorithm>
#include <climits>

#include "simulator/av/decoder_state.h"
#include "simulator/core/board.h"

namespace sim {

namespace {

constexpr uint32_t partCount = 3;
constexpr uint32_t channelPart = 1;
/** Of pictures that do not tell theirs. */
constexpr int64_t usualPictureUs = 33367;

/** Microseconds between two parts of a picture's captions. */
int64_t partUs(const EsUnits& units, uint32_t unit) {
    const VideoFormat* format = static_cast<const VideoIndex&>(units).formatAt(unit);
    int64_t pictureUs = usualPictureUs;
    if (format != nullptr && format->frameRate.num != 0)
        pictureUs = int64_t{1000000} * format->frameRate.den / format->frameRate.num;
    return pictureUs / partCount;
}

int64_t dueUs(const DecoderRun& run) {
    const CaptionMoment& picture = *run.captions.picture;
    return picture.moment.shownUs +
           run.captions.part * partUs(*run.captions.units, picture.moment.unit);
}

void put(Decoder& decoder, uint32_t type, std::vector<uint8_t> bytes, bool raw, bool even) {
    const CaptionChoices& choices = decoder.captions;
    if (!choices.started[type] || choices.callback == nullptr)
        return;
    const uint64_t pts = decoder.run->captions.picture->moment.pts;
    auto report = std::make_shared<CaptionReport>();
    report->type = type;
    report->bytes = std::move(bytes);
    report->data.u64Pts = pts == noStamp ? 0 : pts;
    report->data.bIsScteIsRaw = raw ? QLX_TRUE : QLX_FALSE;
    report->data.bEvenField = even ? QLX_TRUE : QLX_FALSE;
    report->callback = choices.callback;
    report->userData = choices.userData;
    decoder.events.push_back({0, 0, {}, nullptr, nullptr, std::move(report)});
}

/** The pairs of a field. */
void putPairs(Decoder& decoder, const std::vector<uint8_t>& triplets, uint8_t field) {
    for (size_t at = 0; at + bytesPerTriplet <= triplets.size(); at += bytesPerTriplet) {
        if ((triplets[at] & captionValid) != 0 && (triplets[at] & captionType) == field)
            put(decoder, QLX_VIDEO_CC_DATA_TYPE_NTSC, {triplets[at + 1], triplets[at + 2]}, true,
                field != 0);
    }
}

void putChannel(Decoder& decoder, const std::vector<uint8_t>& triplets) {
    if (board().number("VIDEO", "CC_RAW") == 0) {
        for (std::vector<uint8_t>& packet : decoder.run->captions.channel.take(triplets))
            put(decoder, QLX_VIDEO_CC_DATA_TYPE_DTV, std::move(packet), false, false);
        return;
    }
    std::vector<uint8_t> raw;
    for (size_t at = 0; at + bytesPerTriplet <= triplets.size(); at += bytesPerTriplet) {
        if ((triplets[at] & captionValid) != 0 && (triplets[at] & captionType) >= 2)
            raw.insert(raw.end(), &triplets[at], &triplets[at] + bytesPerTriplet);
    }
    if (!raw.empty())
        put(decoder, QLX_VIDEO_CC_DATA_TYPE_DTV, std::move(raw), true, false);
}

}  // namespace

void cutCaptions(DecoderRun& run, int64_t now) {
    run.captions.picture.reset();
    run.captions.part = 0;
    run.captions.fromUs = now;
    run.captions.channel = {};
}

int64_t nextCaptionsUs(const Decoder& decoder, int64_t now) {
    DecoderRun& run = *decoder.run;
    CaptionRun& captions = run.captions;
    if (!decoder.captions.any() || captions.index == nullptr || captions.units != run.feed.index)
        return INT64_MAX;
    if (!captions.picture.has_value()) {
        captions.part = 0;
        captions.picture = nextCaptions(*run.feed.stream, *captions.units, *captions.index,
                                        run.first, std::max(captions.fromUs, now - 1000));
    }
    return captions.picture.has_value() ? dueUs(run) : INT64_MAX;
}

void takeCaptions(Decoder& decoder) {
    CaptionRun& captions = decoder.run->captions;
    const std::vector<uint8_t>& triplets = captions.picture->picture->triplets;
    if (captions.part == channelPart)
        putChannel(decoder, triplets);
    else
        putPairs(decoder, triplets, captions.part == 0 ? 0 : 1);
    if (++captions.part < partCount)
        return;
    captions.fromUs = captions.picture->moment.shownUs + 1;
    captions.picture.reset();
}

void tellCaptions(const Decoder& decoder, CaptionReport& report) {
    uint8_t* bytes = report.bytes.data();
    report.data.pu8Data = bytes;
    report.data.uDataLen = static_cast<uint32_t>(report.bytes.size());
    deliver(
        "VideoCc", format("video=%u", decoder.number),
        {marked("type", &report.type), marked("length", &report.data.uDataLen),
         value("pts", &report.data.u64Pts), value("raw", &report.data.bIsScteIsRaw),
         value("even", &report.data.bEvenField), bytesValue("data", bytes, report.bytes.size())},
        [&] { report.callback(decoder.number, report.userData, report.type, &report.data); });
}

}  // namespace sim
