// The parser of the DTV caption channel at its borders: packet sizes, sequence numbers, service
// blocks that claim more than there is, and every code; and the receivers of captions.
#include "testcase/videocc/cc708_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testcase/videocc/videocc_callbacks.h"

namespace {

using Bytes = std::vector<uint8_t>;

class Cc708Parser : public testing::Test {
 protected:
    void SetUp() override {
        g_u8FCC708PacketSeqNo_MonitorFlag = 1;
        g_u16Sn_err_count = 0;
        testing::internal::CaptureStdout();
    }
    void TearDown() override {
        testing::internal::GetCapturedStdout();
    }
    static std::string said() {
        std::string text = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        return text;
    }
    static uint32_t parse(const Bytes& packet, uint8_t service = 1) {
        return AV_CC708ServiceParser(packet.data(), static_cast<uint32_t>(packet.size()), service);
    }
    /** A packet of that size in bytes. */
    static Bytes packet(unsigned sequence, size_t size, Bytes contents) {
        contents.insert(contents.begin(), static_cast<uint8_t>(sequence << 6 | (size / 2 & 0x3F)));
        contents.resize(size);
        return contents;
    }
    /** What is told of the codes of a service, each text without its time. */
    static std::string codes(const Bytes& block) {
        g_u8CC708_Service_Size = static_cast<uint8_t>(block.size());
        // Nothing lies behind the block that could be read unnoticed.
        const Bytes exact(block.begin(), block.end());
        AV_CC708CodingParser(1, exact.data());
        std::string text = said();
        std::string all;
        for (size_t at = 0; (at = text.find("Called...", at)) != std::string::npos;) {
            at = text.find(']', at) + 1;
            const size_t end = text.find("\n", at);
            all += text.substr(at, end - at) + " ";
        }
        return all;
    }
};

TEST_F(Cc708Parser, PacketsHaveTheSizeThatTheyTell) {
    EXPECT_EQ(parse(packet(0, 128, {0x21, 'a'})), 1u) << "size code 0 stands for 128 bytes";
    EXPECT_NE(said().find("EachPacketBufferSize=128,"), std::string::npos);
    EXPECT_EQ(parse(packet(1, 126, {0x21, 'a'})), 1u);
    Bytes bytes = packet(2, 4, {0x21, 'a'});
    bytes.pop_back();
    EXPECT_EQ(parse(bytes), 0u);
    EXPECT_NE(said().find("u32Length(3) is not equal PacketBuffer_Size(4)\n"), std::string::npos);
    EXPECT_EQ(AV_CC708ServiceParser(nullptr, 4, 1), 0u);
    EXPECT_EQ(AV_CC708ServiceParser(bytes.data(), 0, 1), 0u);
    EXPECT_NE(said().find("Error: AV_CC708ServiceParser u32Length = 0\n"), std::string::npos);
    EXPECT_EQ(parse({0x81, 0x00}), 1u) << "nothing but a null block";
}

TEST_F(Cc708Parser, FiveSequenceErrorsPassSixDoNot) {
    EXPECT_EQ(parse(packet(2, 4, {0x21, 'a'})), 1u) << "the first number counts as it is";
    for (unsigned error = 1; error <= 6; error++) {
        // One packet is lost: an error; the next is taken as it comes.
        EXPECT_EQ(parse(packet(0, 4, {0x21, 'a'})), error <= 5 ? 1u : 0u) << error;
        EXPECT_EQ(g_u16Sn_err_count, error);
        EXPECT_EQ(parse(packet(2, 4, {0x21, 'a'})), 1u) << error;
    }
    // A packet without a block may have any number, and leaves the count alone.
    EXPECT_EQ(parse(packet(0, 4, {})), 1u);
    EXPECT_EQ(parse(packet(3, 4, {0x21, 'a'})), 1u);
    EXPECT_EQ(parse(packet(0, 4, {0x21, 'a'})), 1u);
    EXPECT_EQ(g_u16Sn_err_count, 6);
}

TEST_F(Cc708Parser, BlocksOfTheWantedServiceArePutTogether) {
    EXPECT_EQ(parse(packet(0, 12, {0x22, 'a', 'b', 0x41, 'x', 0x21, 'c', 0xE1, 0x08, 'y'})), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 3);
    EXPECT_EQ(parse(packet(1, 12, {0x22, 'a', 'b', 0x41, 'x', 0x21, 'c', 0xE1, 0x08, 'y'}), 8), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 1);
    EXPECT_NE(said().find("<y : 79>"), std::string::npos) << "an extended number";
    EXPECT_EQ(parse(packet(2, 8, {0x00, 0x22, 'a', 'b'})), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 0) << "a null block ends the packet";
    EXPECT_NE(said().find("Warning: Cc708 Service Header is NULL\n"), std::string::npos);
}

TEST_F(Cc708Parser, ABlockThatClaimsMoreIsCut) {
    EXPECT_EQ(parse(packet(0, 16, {0x3F})), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 14) << "31 in a packet of 16";
    EXPECT_EQ(parse(packet(1, 16, {0x21, 'a', 0x3F})), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 1 + 12) << "the second has what is left";
    // In the last byte of a packet stands nothing that could begin.
    EXPECT_EQ(parse(packet(2, 4, {0x21, 'a', 0x3F})), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 1);
    EXPECT_EQ(parse(packet(3, 4, {0x40, 0xE1, 0x08}), 8), 1u);
    EXPECT_EQ(g_u8CC708_Service_Size, 0);
}

TEST_F(Cc708Parser, EveryCodeIsToldWithWhatBelongsToIt) {
    const struct {
        Bytes block;
        const char* told;
    } rows[] = {
        {{0x00, 0x93, 0x96}, "[CODE_NULL] [CODE_NULL] [CODE_NULL] "},
        {{0x01, 0x02, 0x04, 0x07, 0x09, 0x0B, 0x0F},
         "[CODE_SIGCMD_INVALID] [CODE_SIGCMD_INVALID] [CODE_SIGCMD_INVALID] [CODE_SIGCMD_INVALID] "
         "[CODE_SIGCMD_INVALID] [CODE_SIGCMD_INVALID] [CODE_SIGCMD_INVALID] "},
        {{0x03, 0x08, 0x0C, 0x0D, 0x0E}, "[CODE_ETX] [BS] [CODE_FF] [CODE_CR] [CODE_HCR] "},
        {{0x80, 0x87}, "[CODE_CW:0] [CODE_CW:7] "},
        {{0x88, 0x01, 0x8D, 0x01, 0x8E, 0x8F}, "[CODE_CLW] [CODE_DLY] [CODE_DLC] [CODE_RST] "},
        {{0x89, 0x01, 0x8A, 0x02, 0x8B, 0xFF, 0x8C, 0x00},
         "[CODE_DSW]:0x1 [CODE_HDW]:0x2 [CODE_TGW]:0xff [CODE_DLW]:0x0 "},
        {{0x90, 1, 2, 'a'}, "[CODE_SPA] <a : 61> "},
        {{0x90}, "[CODE_SPA] "},
        {{0x91, 1, 2, 63, 'a'}, "[CODE_SPC] <a : 61> "},
        {{0x91, 1, 2, 64, 'a'}, "[CODE_SPC] <@ : 40> <a : 61> "},
        {{0x92, 1, 2, 'a'}, "[CODE_SPL] <a : 61> "},
        {{0x97, 1, 2, 3, 4, 'a'}, "[CODE_SWA] <a : 61> "},
        {{0x98, 1, 2, 3, 4, 5, 6, 'a'}, "[CODE_DF]100 <a : 61> "},
        {{0x9F, 1, 2, 3, 4, 63, 63, 'a'}, "[CODE_DF]107 <a : 61> "},
        {{0x98, 1, 2, 3, 4, 64, 6, 'a'}, "[CODE_DF]100 "},
        {{0x98, 1, 2, 3, 4, 5, 64, 'a'}, "[CODE_DF]100 "},
        {{0x10, 'a', 0x18, 'b'}, "<\x10 : 10> <a : 61> <\x18 : 18> <b : 62> "},
        {{0x11, 'a', 0x17, 'b', 'c'}, "<\x11 : 11> <\x17 : 17> <c : 63> "},
        {{0x19, 'a', 'b', 0x1F, 'c', 'd', 'e'}, "<\x19 : 19> <\x1F : 1f> <e : 65> "},
        // What is not whole ends the walk: a character's, a parameter's.
        {{0x17}, "<\x17 : 17> "},
        {{0x19, 'a'}, "<\x19 : 19> "},
        {{'a', 0x88}, "<a : 61> ERROR:AV_CC708CheckValidCodingLength error "},
        {{0x8D}, "ERROR:AV_CC708CheckValidCodingLength error "},
        {{0x91, 1, 2}, "ERROR:AV_CC708CheckValidCodingLength error "},
        {{0x92, 1}, "ERROR:AV_CC708CheckValidCodingLength error "},
        {{0x97, 1, 2, 3}, "ERROR:AV_CC708CheckValidCodingLength error "},
        {{0x98, 1, 2, 3, 4, 5}, "ERROR:AV_CC708CheckValidCodingLength error "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(codes(row.block), row.told);
    EXPECT_NE(codes(Bytes(252, 0x90)), "") << "the largest block ends";
}

class CcCallbacks : public Cc708Parser {
 protected:
    static QLX_VideoCcData dataOf(const Bytes& bytes, bool raw) {
        QLX_VideoCcData data = {};
        data.pu8Data = bytes.data();
        data.uDataLen = static_cast<uint32_t>(bytes.size());
        data.u64Pts = 90000;
        data.bIsScteIsRaw = raw ? QLX_TRUE : QLX_FALSE;
        return data;
    }
    static uint32_t errors(uint32_t type, const Bytes& bytes, bool raw, uint32_t count = 0) {
        CcParserDigital parser = {0, count, 200};
        const QLX_VideoCcData data = dataOf(bytes, raw);
        AV_VideoCcDataCallbackParserDigital(0, &parser, type, &data);
        EXPECT_EQ(parser.uTestCount, count + 1);
        return parser.uErrorCount;
    }
};

TEST_F(CcCallbacks, WhatIsNotOfTheCaptionChannelIsAnError) {
    const uint32_t dtv = QLX_VIDEO_CC_DATA_TYPE_DTV;
    EXPECT_EQ(errors(dtv, packet(0, 4, {0x21, 'a'}), false), 0u);
    EXPECT_EQ(errors(QLX_VIDEO_CC_DATA_TYPE_NTSC, packet(1, 4, {0x21, 'a'}), false), 1u);
    EXPECT_EQ(errors(dtv, packet(0, 128, {}), false), 1u) << "a size code of 0 is no length here";
    EXPECT_EQ(errors(dtv, {}, false), 1u);
    EXPECT_EQ(errors(dtv, {0xFE, 1, 2}, true), 0u);
    EXPECT_EQ(errors(dtv, {0xFE, 1, 2, 0xFE, 3}, true), 1u) << "a triplet that is too short";
    EXPECT_EQ(errors(dtv, {}, true), 1u);
    // The second service would have its turn beyond the count of a case.
    said();
    EXPECT_EQ(errors(dtv, packet(1, 4, {0x41, 'b'}), false, 499), 0u);
    EXPECT_EQ(said().find("<b : 62>"), std::string::npos);
    EXPECT_EQ(errors(dtv, packet(2, 4, {0x41, 'b'}), false, 500), 0u);
    EXPECT_NE(said().find("<b : 62>"), std::string::npos);
}

TEST_F(CcCallbacks, ANotificationIsToldAndKept) {
    AV_ClearCcRequestData();
    const Bytes pair = {0x94, 0x2C};
    QLX_VideoCcData data = dataOf(pair, true);
    data.bEvenField = QLX_TRUE;
    AV_VideoCcDataCallback(0, &stCcRequestData, QLX_VIDEO_CC_DATA_TYPE_NTSC, &data);
    const std::string text = said();
    EXPECT_NE(text.find("]CC Data Notify: DataType[NTSC]\n"), std::string::npos) << text;
    EXPECT_NE(text.find("]CC Data Notify: Pts[90000], IsScte_IsRaw[True], EvenField[True], "
                        "DataLen[2]\n"),
              std::string::npos);
    EXPECT_NE(text.find("]CC Data Notify: Data[0x94 0x2c ]\n"), std::string::npos);
    EXPECT_EQ(stCcRequestData.bNotified, 1u);
    EXPECT_EQ(stCcRequestData.u8FirstByte, 0x94);
    data = dataOf({}, false);
    AV_VideoCcDataCallback(0, &stCcRequestData, 7, &data);
    EXPECT_NE(said().find("]CC Data Notify: DataType[UnKnown]\n"), std::string::npos);
    AV_ClearCcRequestData();
    EXPECT_EQ(stCcRequestData.bNotified, 0u);
    AV_VideoCcDataCallback(0, nullptr, 0, &data);
    AV_VideoCcDataCallback(0, &stCcRequestData, 0, nullptr);
    EXPECT_EQ(stCcRequestData.bNotified, 0u);
}

}  // namespace
