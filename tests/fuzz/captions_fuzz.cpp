// Fuzz target of captions: bytes as packets of the DTV caption channel, which the cases take apart,
// and as coded pictures, out of which the device takes them.
//
// The first byte tells the way. For the cases' parser the bytes are cut into packets of the size
// that each one claims, exactly as long as the parser demands, and beside them as they are: a read
// behind the end of either is found.
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "framework/base/zk_log.h"
#include "simulator/media/caption_text.h"
#include "simulator/media/captions.h"
#include "testcase/videocc/cc708_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/** In place of the console's: what is told of each code is not what is looked for. */
void zk_log(const char*, ...) {}

static void require(bool holds) {
    if (!holds)
        abort();
}

static uint32_t parse(const uint8_t* data, size_t size, uint8_t service) {
    // A block of exactly this size, so that its end is guarded.
    std::unique_ptr<uint8_t[]> packet(new uint8_t[size]);
    memcpy(packet.get(), data, size);
    const uint32_t answer =
        AV_CC708ServiceParser(packet.get(), static_cast<uint32_t>(size), service);
    require(answer <= 1 && g_u8CC708_Service_Size <= 252);
    return answer;
}

static void parsePackets(const uint8_t* data, size_t size) {
    const uint8_t service = data[0] & 0x3F;
    g_u16Sn_err_count = 0;
    parse(data, size, service);
    for (size_t at = 1; at < size;) {
        size_t packet = 2u * (data[at] & 0x3F);
        packet = std::min(packet == 0 ? 128 : packet, size - at);
        parse(data + at, packet, service);
        at += packet;
    }
}

static void readPictures(const uint8_t* data, size_t size) {
    for (sim::VideoCoding coding :
         {sim::VideoCoding::mpeg2, sim::VideoCoding::h264, sim::VideoCoding::hevc}) {
        std::unique_ptr<uint8_t[]> picture(new uint8_t[size]);
        memcpy(picture.get(), data, size);
        const std::vector<uint8_t> triplets = sim::captionsInPicture(coding, picture.get(), size);
        require(triplets.size() % sim::bytesPerTriplet == 0 && triplets.size() <= size);
    }
    std::vector<std::vector<uint8_t>> pictures;
    for (size_t at = 0; at < size; at += 60)
        pictures.emplace_back(data + at, data + at + std::min<size_t>(60, size - at));
    sim::captionRows(pictures);
    sim::CaptionChannel channel;
    for (const std::vector<uint8_t>& triplets : pictures) {
        for (const std::vector<uint8_t>& packet : channel.take(triplets)) {
            const size_t code = packet[0] & 0x3F;
            require(packet.size() == (code == 0 ? 128 : 2 * code));
            parse(packet.data(), packet.size(), 1);
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    if (data[0] % 2 == 0)
        parsePackets(data + 1, size - 1);
    else
        readPictures(data + 1, size - 1);
    return 0;
}
