// Elementary streams as decoders take them, and when their access units have their turns: streams
// made by hand, in which each byte and each time is known.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "simulator/media/es_index.h"
#include "simulator/media/es_reader.h"
#include "simulator/media/index_file.h"
#include "tests/shared/demux_streams.h"

namespace {

using demux_test::Bytes;
using demux_test::makePes;
using sim::AccessUnit;
using sim::Es;
using sim::noStamp;
using sim::TsStream;

constexpr uint16_t pid = 0x101;
constexpr uint32_t packetTicks = 27000;  // a packet a millisecond
constexpr size_t headerBytes = 14;

Bytes payloadOf(const Bytes& pes) {
    return Bytes(pes.begin() + headerBytes, pes.end());
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/** A stream of three PES packets of three packets each, after `change` has altered them. */
Es esOf(bool bounded, const std::function<void(Bytes*)>& change) {
    demux_test::StreamMaker maker;
    for (uint64_t i = 0; i < 3; i++)
        maker.pes(pid, makePes(9000 * i, 500, bounded));
    Bytes bytes = maker.bytes;
    EXPECT_EQ(bytes.size(), 9 * sim::tsPacketBytes);
    change(&bytes);
    TsStream stream(bytes, packetTicks);
    return readEs(stream, pid);
}

uint8_t* packet(Bytes* bytes, size_t number) {
    return &(*bytes)[number * sim::tsPacketBytes];
}

void cut(Bytes* bytes, size_t number) {
    auto at = bytes->begin() + static_cast<ptrdiff_t>(number * sim::tsPacketBytes);
    bytes->erase(at, at + sim::tsPacketBytes);
}

}  // namespace

TEST(MediaEsReader, GivesWhatPesPacketsCarryAndTellsWhatIsMissing) {
    const Bytes whole = payloadOf(makePes(0, 500, true));
    for (bool bounded : {true, false}) {
        SCOPED_TRACE(bounded);
        Es es = esOf(bounded, [](Bytes*) {});
        EXPECT_EQ(es.data, whole + whole + whole);
        EXPECT_TRUE(es.gaps.empty());
        ASSERT_EQ(es.pes.size(), 3u);
        for (size_t i = 0; i < 3; i++) {
            EXPECT_EQ(es.pes[i].offset, whole.size() * i);
            EXPECT_EQ(es.pes[i].first, 3 * i);
            EXPECT_EQ(es.pes[i].pts, 9000 * i);
        }
        AccessUnit unit = accessUnitAt(es, whole.size(), whole.size());
        EXPECT_EQ(unit.first, 3u);
        EXPECT_EQ(unit.last, 5u);
        EXPECT_EQ(unit.flags, 0);
    }
    // What is done to the second PES packet, and the access unit that is damaged by it.
    struct Row {
        const char* name;
        std::function<void(Bytes*)> change;
        bool bounded;
        int damaged;
    };
    const Row rows[] = {
        {"lost in its middle", [](Bytes* b) { cut(b, 4); }, true, 1},
        {"lost in its middle, length not told", [](Bytes* b) { cut(b, 4); }, false, 1},
        {"its end is lost", [](Bytes* b) { cut(b, 5); }, true, 1},
        {"its end is lost, length not told", [](Bytes* b) { cut(b, 5); }, false, 1},
        {"its beginning is lost", [](Bytes* b) { cut(b, 3); }, true, -1},
        {"marked as damaged", [](Bytes* b) { packet(b, 4)[1] |= 0x80; }, true, 1},
        {"scrambled", [](Bytes* b) { packet(b, 4)[3] |= 0x80; }, true, 1},
        {"no PES packet", [](Bytes* b) { packet(b, 3)[6] = 2; }, true, -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Es es = esOf(row.bounded, row.change);
        int damaged = -1;
        for (size_t i = 0; i < es.pes.size(); i++) {
            size_t end = i + 1 < es.pes.size() ? es.pes[i + 1].offset : es.data.size();
            if (accessUnitAt(es, es.pes[i].offset, end - es.pes[i].offset).flags != 0)
                damaged = static_cast<int>(i);
        }
        EXPECT_EQ(damaged, row.damaged);
        EXPECT_LT(es.data.size(), whole.size() * 3);
    }
}

TEST(MediaEsReader, ReadsOnOverTheLoopPoint) {
    demux_test::StreamMaker maker;
    maker.pes(pid, makePes(0, 500, false));
    maker.pes(pid, makePes(9000, 500, false));
    Bytes bytes = maker.bytes;
    // The loop begins with the last packet of its last PES packet.
    Bytes turned(bytes.end() - sim::tsPacketBytes, bytes.end());
    turned.insert(turned.end(), bytes.begin(), bytes.end() - sim::tsPacketBytes);
    TsStream stream(turned, packetTicks);
    Es es = readEs(stream, pid);
    const Bytes whole = payloadOf(makePes(0, 500, false));
    EXPECT_EQ(es.data, whole + whole);
    AccessUnit last = accessUnitAt(es, whole.size(), whole.size());
    EXPECT_EQ(last.first, 4u);
    EXPECT_EQ(last.last, 6u);  // place 0 of the next loop
}

TEST(MediaEsReader, AHashTellsThePidsPacketsApart) {
    auto hashOf = [](const std::function<void(Bytes*)>& change) {
        demux_test::StreamMaker maker;
        maker.pes(pid, makePes(0, 500, true));
        maker.pes(pid + 1, makePes(0, 500, true));
        change(&maker.bytes);
        return hashOfPid(TsStream(maker.bytes, packetTicks), pid);
    };
    uint64_t hash = hashOf([](Bytes*) {});
    EXPECT_EQ(hash, hashOf([](Bytes* b) { packet(b, 4)[100] ^= 1; })) << "another PID";
    EXPECT_NE(hash, hashOf([](Bytes* b) { packet(b, 1)[100] ^= 1; }));
    EXPECT_NE(hash, hashOf([](Bytes* b) { packet(b, 2)[187] ^= 1; }));
    EXPECT_NE(hash, hashOf([](Bytes* b) {
                  std::swap_ranges(packet(b, 2), packet(b, 2) + sim::tsPacketBytes, packet(b, 3));
              }))
        << "another time";
}

namespace {

/** A loop of a second; three pictures with their turns at 100, 400 and 700 ms. */
struct Timeline {
    Timeline() {
        demux_test::StreamMaker maker;
        while (maker.bytes.size() < 1000 * sim::tsPacketBytes)
            maker.pes(pid, makePes(0, 150, true));
        stream = std::make_shared<const TsStream>(maker.bytes, packetTicks);
        // The second one is sent before the third and shown after it.
        index.units = {{100, 119, 90 * 300, 0, 10, sim::unit_access | sim::unit_decoded},
                       {400, 409, 90 * 900, 10, 10, 0},
                       {700, 719, 90 * 800, 20, 10, sim::unit_access}};
    }
    std::shared_ptr<const TsStream> stream;
    sim::VideoIndex index;
};

constexpr int64_t ms = 1000;

}  // namespace

TEST(MediaTurns, NextUnitIsFoundInThisLoopOrTheNext) {
    Timeline t;
    ASSERT_EQ(t.stream->packetCount(), 1000u);
    struct Row {
        int64_t fromUs;
        uint8_t flags;
        int64_t beginUs;
        uint32_t unit;
    };
    const Row rows[] = {
        {0, 0, 100 * ms, 0},
        {100 * ms, 0, 100 * ms, 0},
        {100 * ms + 1, 0, 400 * ms, 1},
        {100 * ms + 1, sim::unit_access, 700 * ms, 2},
        {700 * ms + 1, 0, 1100 * ms, 0},
        {100 * ms + 1, sim::unit_decoded, 1100 * ms, 0},
        {-5, sim::unit_access | sim::unit_decoded, 100 * ms, 0},
        {3600000 * ms + 1, sim::unit_decoded, 3600100 * ms, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fromUs);
        auto found = nextUnit(*t.stream, t.index, row.fromUs, row.flags);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->beginUs, row.beginUs);
        EXPECT_EQ(found->unit, row.unit);
    }
    auto first = nextUnit(*t.stream, t.index, 5000 * ms, 0);
    EXPECT_EQ(first->loop, 5u);
    EXPECT_EQ(first->arrivedUs, 5120 * ms);
    EXPECT_EQ(first->shownUs, 5300 * ms);
    EXPECT_EQ(first->pts, 90u * 5300);
    EXPECT_FALSE(nextUnit(*t.stream, t.index, 0, sim::unit_damaged).has_value());
    EXPECT_FALSE(nextUnit(*t.stream, sim::VideoIndex(), 0, 0).has_value());
}

TEST(MediaTurns, StampsRunOverTheirRangeAndThoseOfAnotherClockAreLeftOut) {
    Timeline t;
    constexpr uint64_t range = UINT64_C(1) << 33;
    t.index.clockBase = range - 90 * 200;  // passes 0 at 200 ms
    t.index.units[0].pts = 90 * 100;
    auto first = nextUnit(*t.stream, t.index, 0, 0);
    EXPECT_EQ(first->shownUs, 300 * ms);
    EXPECT_EQ(first->pts, 90u * 100);
    t.index.units[0].pts = range - 90 * 50;
    EXPECT_EQ(nextUnit(*t.stream, t.index, 0, 0)->shownUs, 150 * ms);
    EXPECT_EQ(nextUnit(*t.stream, t.index, 1000 * ms, 0)->pts, 90u * 950) << "beyond the range";
    for (uint64_t strange : {noStamp, uint64_t{90} * 11000, range / 2}) {
        t.index.units[0].pts = strange;
        EXPECT_EQ(nextUnit(*t.stream, t.index, 0, 0)->shownUs, 120 * ms) << strange;
    }
}

TEST(MediaTurns, ThePictureOnTheScreenIsTheLatestByItsStamp) {
    Timeline t;
    auto at = [&](int64_t sinceMs, int64_t atMs) {
        auto shown = unitShown(*t.stream, t.index, sinceMs * ms, atMs * ms);
        return shown.has_value() ? static_cast<int>(shown->loop * 10 + shown->unit) : -1;
    };
    EXPECT_EQ(at(0, 299), -1);
    EXPECT_EQ(at(0, 300), 0);
    EXPECT_EQ(at(0, 799), 0);
    EXPECT_EQ(at(0, 800), 2);
    EXPECT_EQ(at(0, 900), 1);
    EXPECT_EQ(at(0, 1299), 1);
    EXPECT_EQ(at(0, 1300), 10);
    EXPECT_EQ(at(101, 799), -1) << "the first picture began before";
    EXPECT_EQ(at(101, 900), 1);
    EXPECT_EQ(at(0, 3600350), 36000);
}

namespace {

sim::IndexFile someFile() {
    sim::IndexFile file;
    Timeline t;
    auto& video = file.video[{0x101, sim::VideoCoding::hevc}];
    video.hash = 0x123456789abcdef0;
    video.index = t.index;
    video.index.clockBase = 77;
    sim::VideoFormat format;
    format.coding = sim::VideoCoding::hevc;
    format.width = 3840;
    format.height = 2160;
    format.frameRate = {60000, 1001};
    format.displayAspect = {16, 9};
    format.transfer = 16;
    format.contentLight = true;
    video.index.changes = {{0, format}};
    auto& audio = file.audio[{0x102, sim::AudioCoding::ac4}];
    sim::AudioFormat sound;
    sound.coding = sim::AudioCoding::ac4;
    sound.channels = 6;
    sound.lfe = true;
    sound.samplingRate = 48000;
    sound.presentations = {{6, true, "en"}, {2, false, ""}};
    audio.index.units = {{1, 2, noStamp, 3, 4, sim::unit_decoded}};
    audio.index.changes = {{0, sound}};
    return file;
}

}  // namespace

TEST(MediaIndexFile, ComesBackAsItWasAndIsRefusedWithAnyByteChanged) {
    const sim::IndexFile file = someFile();
    const std::string contents = writeIndexFile(file);
    sim::IndexFile back;
    ASSERT_EQ(readIndexFile(contents, &back), sim::IndexFileState::good);
    const auto& video = back.video.at({0x101, sim::VideoCoding::hevc});
    EXPECT_EQ(video.hash, 0x123456789abcdef0u);
    EXPECT_EQ(video.index.clockBase, 77u);
    ASSERT_EQ(video.index.units.size(), 3u);
    EXPECT_EQ(video.index.units[2].pts, 90u * 800);
    EXPECT_EQ(video.index.units[2].flags, sim::unit_access);
    EXPECT_TRUE(video.index.changes[0].format ==
                file.video.begin()->second.index.changes[0].format);
    const auto& audio = back.audio.at({0x102, sim::AudioCoding::ac4});
    EXPECT_EQ(audio.index.units[0].pts, noStamp);
    EXPECT_TRUE(audio.index.changes[0].format ==
                file.audio.begin()->second.index.changes[0].format);
    EXPECT_EQ(writeIndexFile(back), contents);

    for (size_t i = 0; i < contents.size(); i++) {
        std::string changed = contents;
        changed[i] = static_cast<char>(changed[i] ^ 0x10);
        bool version = i >= 4 && i < 8;
        EXPECT_EQ(readIndexFile(changed, &back),
                  version ? sim::IndexFileState::otherVersion : sim::IndexFileState::damaged)
            << i;
        EXPECT_TRUE(back.video.empty() && back.audio.empty());
        EXPECT_EQ(readIndexFile(contents.substr(0, i), &back), sim::IndexFileState::damaged) << i;
    }
    EXPECT_EQ(readIndexFile(contents + '\0', &back), sim::IndexFileState::damaged);
}
