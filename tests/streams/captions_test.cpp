// Captions of the caption channels, as FFmpeg and libzvbi read them, and the DTV caption channel
// taken apart by the letter of CTA-708.
#include "tools/mkstreams/captions.h"

#include <gtest/gtest.h>
#include <libzvbi.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "simulator/media/caption_text.h"
#include "simulator/media/captions.h"
#include "tests/streams/decoded.h"
#include "tests/streams/made_streams.h"

namespace {

using namespace mkstreams;

const size_t pictures = 288;
const size_t seconds = 10;

/** cc_data of the channel's pictures, out of the decoder in the order of presentation. */
const std::vector<Bytes>& captionsOf(const std::string& file) {
    static std::map<std::string, std::vector<Bytes>>* known =
        new std::map<std::string, std::vector<Bytes>>;
    std::vector<Bytes>& captions = (*known)[file];
    if (captions.empty()) {
        Streams streams = decode(streamOf(file).packets);
        captions = streams[multiplexOf(file).channels.front().videoPid].captions;
    }
    return captions;
}

std::string timeOf(size_t second) {
    return "00:30:0" + std::to_string(second);
}

TEST(Captions, ComeOutWithTheirPictures) {
    for (const char* file : {"atsc_caption.ts", "dvb_caption.ts"}) {
        std::vector<Bytes> sent = captionLoop("Laboratory 10", pictures);
        ASSERT_EQ(sent.size(), pictures);
        EXPECT_TRUE(captionsOf(file) == sent) << file;
    }
}

/* Line 21 -------------------------------------------------------------------------------------- */

/** What FFmpeg's decoder shows of a field, each text once, a line break between rows. */
std::set<std::string> shownByDecoder(const std::vector<Bytes>& captions, const char* field) {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_EIA_608);
    AVCodecContext* context = avcodec_alloc_context3(codec);
    context->pkt_timebase = {1, 30};
    AVDictionary* options = nullptr;
    av_dict_set(&options, "real_time", "1", 0);
    av_dict_set(&options, "data_field", field, 0);
    EXPECT_EQ(avcodec_open2(context, codec, &options), 0);
    av_dict_free(&options);
    std::set<std::string> shown;
    AVPacket* packet = av_packet_alloc();
    for (size_t i = 0; i < captions.size(); i++) {
        EXPECT_EQ(av_new_packet(packet, static_cast<int>(captions[i].size())), 0);
        std::copy(captions[i].begin(), captions[i].end(), packet->data);
        packet->pts = static_cast<int64_t>(i);
        AVSubtitle subtitle = {};
        int got = 0;
        EXPECT_GE(avcodec_decode_subtitle2(context, &subtitle, &got, packet), 0);
        for (unsigned k = 0; got != 0 && k < subtitle.num_rects; k++) {
            std::string line = subtitle.rects[k]->ass;
            // Behind the eighth comma, and a place on the screen in braces.
            for (int comma = 0; comma < 8; comma++)
                line.erase(0, line.find(',') + 1);
            line.erase(0, line.find('}') + 1);
            shown.insert(line.substr(0, line.find_last_not_of(' ') + 1));
        }
        if (got != 0)
            avsubtitle_free(&subtitle);
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avcodec_free_context(&context);
    return shown;
}

TEST(Captions, Line21IsReadByFfmpeg) {
    // The decoder shows a row when the next picture comes.
    std::vector<Bytes> captions = captionsOf("atsc_caption.ts");
    captions.push_back(captions.front());
    std::set<std::string> english = shownByDecoder(captions, "first");
    std::set<std::string> spanish = shownByDecoder(captions, "second");
    for (size_t second = 0; second < seconds; second++) {
        std::string line = "Laboratory 10 " + timeOf(second);
        std::string other = "Canal 10 " + timeOf(second);
        auto endsWith = [](const std::set<std::string>& shown, const std::string& end) {
            return std::any_of(shown.begin(), shown.end(), [&](const std::string& text) {
                return text.size() >= end.size() &&
                       text.compare(text.size() - end.size(), end.size(), end) == 0;
            });
        };
        EXPECT_TRUE(endsWith(english, line)) << line;
        EXPECT_TRUE(endsWith(spanish, other)) << other;
    }
}

/** The text of a row of a caption page, without blanks around it. */
std::string rowOf(vbi_decoder* decoder, int page, int row) {
    vbi_page content;
    EXPECT_TRUE(vbi_fetch_cc_page(decoder, &content, page, TRUE));
    std::string text;
    for (int column = 0; column < content.columns; column++)
        text += static_cast<char>(content.text[row * content.columns + column].unicode);
    vbi_unref_page(&content);
    size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

TEST(Captions, Line21IsReadByLibzvbi) {
    const std::vector<Bytes>& captions = captionsOf("atsc_caption.ts");
    vbi_decoder* decoder = vbi_decoder_new();
    ASSERT_NE(decoder, nullptr);
    vbi_event_handler_register(
        decoder, VBI_EVENT_CAPTION, [](vbi_event*, void*) {}, nullptr);
    for (size_t i = 0; i < captions.size(); i++) {
        vbi_sliced lines[2] = {};
        for (int field = 0; field < 2; field++) {
            lines[field].id = field == 0 ? VBI_SLICED_CAPTION_525_F1 : VBI_SLICED_CAPTION_525_F2;
            lines[field].line = field == 0 ? 21 : 284;
            std::copy_n(&captions[i][3 * static_cast<size_t>(field) + 1], 2, lines[field].data);
        }
        vbi_decode(decoder, lines, 2, static_cast<double>(i) * 1001 / 30000);
        if (i % 30 != 17 || i < 17)
            continue;
        // The last of three rows that roll up, and the one before it.
        size_t second = i / 30;
        EXPECT_EQ(rowOf(decoder, 1, 14), "Laboratory 10 " + timeOf(second));
        EXPECT_EQ(rowOf(decoder, 3, 14), "Canal 10 " + timeOf(second));
        if (second > 0) {
            EXPECT_EQ(rowOf(decoder, 1, 13), "Laboratory 10 " + timeOf(second - 1));
        }
    }
    vbi_decoder_delete(decoder);
}

/* DTV captions --------------------------------------------------------------------------------- */

/** The packets of the caption channel (CTA-708, 5): type 3 begins one, type 2 goes on. */
std::vector<Bytes> packetsOf(const std::vector<Bytes>& captions) {
    std::vector<Bytes> packets;
    for (const Bytes& data : captions)
        for (size_t i = 0; i + 2 < data.size(); i += 3) {
            if ((data[i] & 0x04) == 0 || (data[i] & 0x03) < 2)
                continue;
            if ((data[i] & 0x03) == 3)
                packets.emplace_back();
            packets.back().insert(packets.back().end(), {data[i + 1], data[i + 2]});
        }
    return packets;
}

/** Bytes that follow a code in its service block (CTA-708, 7.1.4 and 8.10.5). */
size_t parametersOf(unsigned code) {
    if (code >= 0x98 && code <= 0x9F)
        return 6;
    switch (code) {
        case 0x10:
        case 0x88:
        case 0x89:
        case 0x8A:
        case 0x8B:
        case 0x8C:
        case 0x8D:
            return 1;
        case 0x90:
        case 0x92:
            return 2;
        case 0x91:
            return 3;
        case 0x97:
            return 4;
        default:
            return 0;
    }
}

/** A service as a receiver follows it: the row that is being written, and those that were. */
struct Service {
    std::string row;
    std::vector<std::string> rows;
    std::set<unsigned> codes;

    void write(const Bytes& block) {
        for (size_t i = 0; i < block.size(); i += 1 + parametersOf(block[i])) {
            unsigned code = block[i];
            ASSERT_LE(i + 1 + parametersOf(code), block.size()) << "a command is cut: " << code;
            codes.insert(code);
            if (code == 0x08)
                row.pop_back();
            else if (code == 0x0E)
                row.clear();
            else if (code == 0x0D || code == 0x0C || code == 0x8F)
                finish();
            else if (code == 0x10)
                row += '#';
            else if ((code >= 0x20 && code < 0x80) || code >= 0xA0)
                row += static_cast<char>(code);
        }
    }
    void finish() {
        if (!row.empty())
            rows.push_back(row);
        row.clear();
    }
};

TEST(Captions, DtvCaptionChannelIsWellFormed) {
    std::vector<Bytes> packets = packetsOf(captionsOf("atsc_caption.ts"));
    ASSERT_GT(packets.size(), 200u);
    std::map<unsigned, Service> services;
    unsigned told = 0;  // packets with a block
    for (size_t i = 0; i < packets.size(); i++) {
        const Bytes& packet = packets[i];
        SCOPED_TRACE(i);
        // Numbers run on, whether packets with nothing but a null block count or not.
        EXPECT_EQ(packet[0] >> 6, i % 4);
        EXPECT_EQ(2u * (packet[0] & 0x3F), packet.size());
        ASSERT_GE(packet.size(), 2u);
        if (packet[1] != 0) {
            EXPECT_EQ(packet[0] >> 6, told % 4);
            told++;
        }
        for (size_t at = 1; at < packet.size() && packet[at] != 0;) {
            size_t size = packet[at] & 0x1F;
            unsigned service = packet[at++] >> 5;
            EXPECT_GT(size, 0u);
            if (service == 7) {
                ASSERT_LT(at, packet.size());
                service = packet[at++];
                EXPECT_GT(service, 6u);
                EXPECT_LE(service, 63u);
            }
            ASSERT_LE(at + size, packet.size());
            services[service].write(Bytes(packet.begin() + static_cast<long>(at),
                                          packet.begin() + static_cast<long>(at + size)));
            at += size;
        }
    }
    EXPECT_EQ(packets.size() % 4, 0u);
    EXPECT_EQ(told % 4, 0u);
    EXPECT_LT(told, packets.size());
    ASSERT_EQ(services.size(), 3u);
    for (auto& [number, service] : services) {
        service.finish();
        ASSERT_EQ(service.rows.size(), seconds) << number;
    }
    for (size_t second = 0; second < seconds; second++) {
        EXPECT_EQ(services[1].rows[second], "Laboratory 10 " + timeOf(second));
        EXPECT_EQ(services[2].rows[second],
                  "Se\xF1"
                  "al 10 " +
                      timeOf(second));
        EXPECT_EQ(services[8].rows[second], "Kanal 10 " + timeOf(second));
    }
    std::set<unsigned> commands = {0x03, 0x08, 0x0C, 0x0D, 0x0E, 0x10, 0x90, 0x91, 0x92, 0x97};
    for (unsigned code = 0x80; code <= 0x8F; code++)
        commands.insert(code);
    for (unsigned code = 0x98; code <= 0x9F; code++)
        commands.insert(code);
    for (unsigned code : commands)
        EXPECT_EQ(services[1].codes.count(code), 1u) << code;
}

TEST(Captions, AnyNameKeepsTheRules) {
    for (const char* name : {"Lab 1", "Laboratory 9", "Laboratory 10", "Test 1234567"}) {
        std::vector<Bytes> packets = packetsOf(captionLoop(name, pictures));
        EXPECT_EQ(packets.size() % 4, 0u) << name;
        size_t empty = 0;
        for (const Bytes& packet : packets) {
            EXPECT_EQ(2u * (packet[0] & 0x3F), packet.size()) << name;
            empty += packet[1] == 0 ? 1 : 0;
        }
        EXPECT_EQ(empty, 9 * 4u) << name;
    }
}

/* The simulated device ------------------------------------------------------------------------- */

/** The stream of a file as the device has it, with what decoding finds in its pictures. */
struct OnDevice {
    sim::TsStreamPtr stream;
    uint16_t pid;
    sim::VideoCoding coding;
    std::shared_ptr<const sim::VideoIndex> index;
    std::shared_ptr<const sim::CaptionIndex> captions;
};

OnDevice onDevice(const std::string& file, sim::VideoCoding coding) {
    OnDevice device;
    device.stream = std::make_shared<const sim::TsStream>(streamOf(file).packets, 0);
    device.pid = static_cast<uint16_t>(multiplexOf(file).channels.front().videoPid);
    device.coding = coding;
    device.index = sim::videoIndex(device.stream, device.pid, coding);
    device.captions = sim::captionIndex(device.stream, device.pid, coding, *device.index);
    return device;
}

/** What the device takes out of the coded pictures is what FFmpeg has beside the decoded ones, to
 *  the byte and in the same order; and it is the text that was written. */
TEST(Captions, TheDeviceFindsWhatFfmpegFinds) {
    const struct {
        const char* file;
        sim::VideoCoding coding;
    } rows[] = {{"atsc_caption.ts", sim::VideoCoding::mpeg2},
                {"dvb_caption.ts", sim::VideoCoding::mpeg2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        OnDevice device = onDevice(row.file, row.coding);
        std::vector<Bytes> found;
        for (const sim::CaptionedPicture& picture : *device.captions)
            found.push_back(picture.triplets);
        EXPECT_TRUE(found == captionsOf(row.file)) << found.size();
        EXPECT_TRUE(sim::captionsByStamp(*device.stream, device.pid, row.coding) == found);
        std::map<std::string, std::vector<std::string>> texts;
        for (const sim::CaptionRow& text : sim::captionRows(found))
            texts[text.service].push_back(text.text);
        ASSERT_EQ(texts.size(), 5u);
        for (auto& [service, lines] : texts)
            ASSERT_EQ(lines.size(), seconds) << service;
        for (size_t second = 0; second < seconds; second++) {
            EXPECT_EQ(texts["CC1"][second], "Laboratory 10 " + timeOf(second));
            EXPECT_EQ(texts["CC3"][second], "Canal 10 " + timeOf(second));
            EXPECT_EQ(texts["S1"][second], "Laboratory 10 " + timeOf(second));
            EXPECT_EQ(texts["S2"][second],
                      "Se\xC3\xB1"
                      "al 10 " +
                          timeOf(second));
            EXPECT_EQ(texts["S8"][second], "Kanal 10 " + timeOf(second));
        }
    }
}

/** Pictures have their turns in the order in which they are shown, across the end of a loop, and
 *  none from before decoding began. */
TEST(Captions, TurnsFollowTheOrderOfPresentation) {
    OnDevice device = onDevice("atsc_caption.ts", sim::VideoCoding::mpeg2);
    const std::vector<Bytes>& sent = captionsOf("atsc_caption.ts");
    const auto first =
        sim::nextUnit(*device.stream, *device.index, 4000000, sim::unit_access | sim::unit_decoded);
    ASSERT_TRUE(first.has_value());
    int64_t fromUs = 0;
    size_t place = sent.size();
    for (size_t turn = 0; turn < 2 * sent.size(); turn++) {
        auto next =
            sim::nextCaptions(*device.stream, *device.index, *device.captions, *first, fromUs);
        ASSERT_TRUE(next.has_value());
        EXPECT_GE(next->moment.shownUs, first->shownUs);
        const auto at = static_cast<size_t>(next->picture - device.captions->data());
        if (turn != 0) {
            EXPECT_EQ(at, (place + 1) % sent.size()) << turn;
            EXPECT_NEAR(static_cast<double>(next->moment.shownUs - fromUs), 33333, 3) << turn;
        }
        place = at;
        fromUs = next->moment.shownUs + 1;
    }
}

}  // namespace
