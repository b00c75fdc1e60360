// External inputs: state rules, ports by the platform's features, what a registration and the
// outside world lead to, to the millisecond.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <numeric>
#include <string>
#include <vector>

#include "platform/qlx_extin.h"
#include "simulator/core/sim.h"
#include "simulator/world/inputs.h"
#include "simulator/world/signal_source.h"
#include "tests/shared/device.h"

namespace {

constexpr int32_t invalid = QLX_EXTIN_ERR_INVALID_PARA;
const QLX_ExtInSource hdmi0 = {QLX_SOURCE_TYPE_HDMI, 0, QLX_INPUT_CLASS_NONE};
const QLX_ExtInSource cvbs1 = {QLX_SOURCE_TYPE_AV_CVBS, 1, QLX_INPUT_CLASS_CVBS};
const QLX_ExtInSource vga0 = {QLX_SOURCE_TYPE_VGA, 0, QLX_INPUT_CLASS_NONE};

/** What the program hears: "+MS KIND/PORT cable|signal VALUE", MS since the last clearing. */
struct Ear {
    std::mutex mutex;
    int64_t beganUs = sim::nowUs();
    std::vector<std::string> heard;

    static void callback(uint32_t event, void* user, void* data) {
        Ear* ear = static_cast<Ear*>(user);
        const uint32_t* words = static_cast<const uint32_t*>(data);
        const char* what = event == QLX_EXTIN_EVENT_CABLE_LINKED ? "cable" : "signal";
        std::lock_guard<std::mutex> lock(ear->mutex);
        ear->heard.push_back(sim::format("+%d %s/%u %s %u",
                                         static_cast<int>((sim::nowUs() - ear->beganUs) / 1000),
                                         sim::nameOfInputKind(words[0]), words[2], what, words[3]));
    }
    /** All within the time, and begins anew. */
    std::vector<std::string> listen(int64_t milliseconds) {
        sim::sleepMs(milliseconds);
        std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> all;
        all.swap(heard);
        beganUs = sim::nowUs();
        return all;
    }
};

class SimExtIn : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }
};

using Lines = std::vector<std::string>;

uint32_t statusOf(const QLX_ExtInSource& source) {
    uint32_t status = 99;
    EXPECT_EQ(QLX_ExtInGetSignalStatus(&source, &status), 0);
    return status;
}

TEST_F(SimExtIn, EachStateRefusesWhatItMust) {
    static uint32_t word;
    static QLX_ExtInAdcPhase phase = {100, 0, 0};
    struct {
        const char* what;
        std::function<int32_t(const QLX_ExtInSource*)> call;
        int32_t beforeOpen;
        /** Kinds that the call is for. */
        bool hdmi, vga, cvbs;
    } calls[] = {
        {"open", QLX_ExtInOpen, 0, true, true, true},
        {"close", QLX_ExtInClose, QLX_FAILED, true, true, true},
        {"cable", [](auto* s) { return QLX_ExtInGetCableLinkedStatus(s, &word); }, QLX_FAILED, true,
         true, true},
        {"signal", [](auto* s) { return QLX_ExtInGetSignalStatus(s, &word); }, QLX_FAILED, true,
         true, true},
        {"phase", [](auto* s) { return QLX_ExtInSetAdcPhase(s, &phase); }, QLX_FAILED, false, true,
         false},
        {"get phase", [](auto* s) { return QLX_ExtInGetAdcPhase(s, &phase); }, QLX_FAILED, false,
         true, false},
        {"phases", [](auto* s) { return QLX_ExtInGetAdcPhaseRange(s, &word); }, QLX_FAILED, false,
         true, false},
        {"type", [](auto* s) { return QLX_ExtInGetHdmiType(s, &word); }, QLX_FAILED, true, false,
         false},
        {"set format", [](auto* s) { return QLX_ExtInSetHDMISignalFormat(s, 1); }, 0, true, false,
         false},
        {"get format", [](auto* s) { return QLX_ExtInGetHDMISignalFormat(s, &word); }, 0, true,
         false, false},
    };
    const QLX_ExtInSource absent = {QLX_SOURCE_TYPE_HDMI, 3, 0};
    for (const auto& row : calls) {
        for (const auto& [source, served] :
             {std::make_pair(hdmi0, row.hdmi), std::make_pair(vga0, row.vga),
              std::make_pair(cvbs1, row.cvbs)}) {
            qlx_sim_reset();
            EXPECT_EQ(row.call(&source), served ? QLX_FAILED : invalid) << row.what;
            EXPECT_EQ(QLX_ExtInInit(), 0);
            EXPECT_EQ(QLX_ExtInInit(), 0);
            EXPECT_EQ(row.call(&source), served ? row.beforeOpen : invalid) << row.what;
            EXPECT_EQ(QLX_ExtInOpen(&source), 0);
            EXPECT_EQ(QLX_ExtInOpen(&source), 0);
            EXPECT_EQ(row.call(&absent), invalid) << row.what;
            EXPECT_EQ(row.call(nullptr), invalid) << row.what;
            EXPECT_EQ(row.call(&source), served ? 0 : invalid) << row.what;
            EXPECT_EQ(QLX_ExtInDeInit(), 0);
            EXPECT_EQ(row.call(&source), served ? QLX_FAILED : invalid) << row.what;
            EXPECT_EQ(QLX_ExtInDeInit(), 0);
        }
    }
}

TEST_F(SimExtIn, PortsAreThoseOfTheFeatures) {
    uint32_t count = 99;
    EXPECT_EQ(QLX_ExtInGetSourcePortNum(QLX_SOURCE_TYPE_HDMI, &count), QLX_FAILED);
    EXPECT_EQ(QLX_ExtInInit(), 0);
    const std::vector<std::pair<uint32_t, uint32_t>> ports = {{QLX_SOURCE_TYPE_HDMI, 3},
                                                              {QLX_SOURCE_TYPE_AV_CVBS, 2},
                                                              {QLX_SOURCE_TYPE_AV_YPBPR, 2},
                                                              {QLX_SOURCE_TYPE_VGA, 1},
                                                              {QLX_SOURCE_TYPE_DEMUX, 0}};
    for (const auto& [kind, expected] : ports) {
        EXPECT_EQ(QLX_ExtInGetSourcePortNum(kind, &count), 0);
        EXPECT_EQ(count, expected) << kind;
    }
}

TEST_F(SimExtIn, ARegistrationIsToldEveryPortAndThenEachChange) {
    Ear ear;
    EXPECT_EQ(QLX_ExtInRegisterCallback(&ear, Ear::callback), QLX_FAILED);
    EXPECT_EQ(QLX_ExtInUnRegisterCallback(Ear::callback), QLX_FAILED);
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(QLX_ExtInRegisterCallback(&ear, nullptr), invalid);
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(QLX_ExtInRegisterCallback(&ear, Ear::callback), 0);
        Lines all = ear.listen(1000);
        std::sort(all.begin(), all.end());
        EXPECT_EQ(all, Lines({"+100 CVBS/0 signal 1", "+100 CVBS/1 signal 1", "+100 HDMI/0 cable 1",
                              "+100 HDMI/0 signal 1", "+100 HDMI/1 cable 1", "+100 HDMI/1 signal 1",
                              "+100 HDMI/2 cable 1", "+100 HDMI/2 signal 1", "+100 VGA/0 signal 1",
                              "+100 YPBPR/0 signal 1", "+100 YPBPR/1 signal 1"}));
        if (round == 0) {
            EXPECT_EQ(QLX_ExtInUnRegisterCallback(Ear::callback), 0);
        }
        ear.listen(500);
    }
    EXPECT_EQ(qlx_sim_event("input HDMI/1 CABLE=0"), 0);
    EXPECT_EQ(ear.listen(500), Lines({"+0 HDMI/1 cable 0", "+0 HDMI/1 signal 0"}));
    EXPECT_EQ(qlx_sim_event("input HDMI/1 CABLE=1"), 0);
    EXPECT_EQ(ear.listen(500),
              Lines({"+0 HDMI/1 cable 1", "+0 HDMI/1 signal 2", "+200 HDMI/1 signal 1"}));
    EXPECT_EQ(qlx_sim_event("input CVBS/0 HEIGHT=480 RATE=30000/1001"), 0);
    EXPECT_EQ(ear.listen(500), Lines({"+0 CVBS/0 signal 2", "+200 CVBS/0 signal 1"}));
    EXPECT_EQ(qlx_sim_event("input VGA TONE=440"), 0);
    EXPECT_EQ(ear.listen(500), Lines()) << "another tone is no other signal";
    for (const char* wrong : {"input", "input SCART CABLE=0", "input HDMI/9 CABLE=0",
                              "input HDMI CABLE=2", "input HDMI RATE=0/1", "input HDMI COLOUR=1"})
        EXPECT_EQ(qlx_sim_event(wrong), -1) << wrong;
    EXPECT_EQ(ear.listen(500), Lines());
    EXPECT_EQ(QLX_ExtInUnRegisterCallback(Ear::callback), 0);
    EXPECT_EQ(qlx_sim_event("input HDMI CABLE=0"), 0);
    EXPECT_EQ(ear.listen(500), Lines());
}

TEST_F(SimExtIn, TheEndOfTheServiceEndsWhatWasToCome) {
    Ear ear;
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(QLX_ExtInRegisterCallback(&ear, Ear::callback), 0);
    EXPECT_EQ(QLX_ExtInDeInit(), 0);
    EXPECT_EQ(ear.listen(50), Lines());
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(QLX_ExtInRegisterCallback(&ear, Ear::callback), 0);
    EXPECT_EQ(ear.listen(99), Lines()) << "nothing of the first registration";
    EXPECT_EQ(ear.listen(50).size(), 11u);
}

TEST_F(SimExtIn, AnOpenedPortNeedsTimeToMeasure) {
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(QLX_ExtInOpen(&hdmi0), 0);
    EXPECT_EQ(statusOf(hdmi0), static_cast<uint32_t>(QLX_EXTIN_SIGNAL_STATUS_UNSTABLE));
    EXPECT_TRUE(sim::signalSource(QLX_SOURCE_TYPE_HDMI, 0).open);
    sim::sleepMs(199);
    EXPECT_FALSE(sim::signalSource(QLX_SOURCE_TYPE_HDMI, 0).locked);
    sim::sleepMs(1);
    EXPECT_EQ(statusOf(hdmi0), static_cast<uint32_t>(QLX_EXTIN_SIGNAL_STATUS_STABLE));
    sim::sleepMs(1);
    sim::SignalSource source = sim::signalSource(QLX_SOURCE_TYPE_HDMI, 0);
    EXPECT_TRUE(source.locked);
    EXPECT_EQ(source.sinceMs, sim::nowMs() - 1);
    EXPECT_EQ(source.picture.width, 1920);
    EXPECT_EQ(source.sound.toneHz, 1000u);
    uint32_t linked = 9;
    EXPECT_EQ(QLX_ExtInGetCableLinkedStatus(&hdmi0, &linked), 0);
    EXPECT_EQ(linked, 1u);
    EXPECT_EQ(qlx_sim_event("input HDMI/0 SIGNAL=0"), 0);
    EXPECT_EQ(statusOf(hdmi0), static_cast<uint32_t>(QLX_EXTIN_SIGNAL_STATUS_NONE));
    EXPECT_FALSE(sim::signalSource(QLX_SOURCE_TYPE_HDMI, 0).locked);
    EXPECT_EQ(QLX_ExtInGetCableLinkedStatus(&hdmi0, &linked), 0);
    EXPECT_EQ(linked, 1u) << "the cable is still in";
    EXPECT_EQ(QLX_ExtInClose(&hdmi0), 0);
    EXPECT_FALSE(sim::signalSource(QLX_SOURCE_TYPE_HDMI, 0).open);
}

TEST_F(SimExtIn, WhatIsSetIsReadBack) {
    EXPECT_EQ(QLX_ExtInInit(), 0);
    uint32_t value = 9;
    EXPECT_EQ(QLX_ExtInSetHDMISignalFormat(&hdmi0, QLX_EXTIN_HDMI_SIGNAL_FORMAT_ENHANCED), 0);
    EXPECT_EQ(QLX_ExtInSetHDMISignalFormat(&hdmi0, 2), invalid);
    EXPECT_EQ(QLX_ExtInGetHDMISignalFormat(&hdmi0, &value), 0);
    EXPECT_EQ(value, static_cast<uint32_t>(QLX_EXTIN_HDMI_SIGNAL_FORMAT_ENHANCED));
    const QLX_ExtInSource hdmi1 = {QLX_SOURCE_TYPE_HDMI, 1, 0};
    EXPECT_EQ(QLX_ExtInGetHDMISignalFormat(&hdmi1, &value), 0);
    EXPECT_EQ(value, static_cast<uint32_t>(QLX_EXTIN_HDMI_SIGNAL_FORMAT_STANDARD));
    EXPECT_EQ(QLX_ExtInOpen(&vga0), 0);
    EXPECT_EQ(QLX_ExtInGetAdcPhaseRange(&vga0, &value), 0);
    QLX_ExtInAdcPhase phase = {1, 2, value - 1};
    EXPECT_EQ(QLX_ExtInSetAdcPhase(&vga0, &phase), 0);
    QLX_ExtInAdcPhase beyond = {1, value, 3};
    EXPECT_EQ(QLX_ExtInSetAdcPhase(&vga0, &beyond), invalid);
    QLX_ExtInAdcPhase got = {};
    EXPECT_EQ(QLX_ExtInGetAdcPhase(&vga0, &got), 0);
    EXPECT_EQ(got.uRY, 1u);
    EXPECT_EQ(got.uG, 2u);
    EXPECT_EQ(got.uB, value - 1);
    EXPECT_EQ(QLX_ExtInOpen(&hdmi0), 0);
    EXPECT_EQ(QLX_ExtInGetHdmiType(&hdmi0, &value), 0);
    EXPECT_EQ(value, static_cast<uint32_t>(QLX_EXTIN_HDMI_TYPE_HDMI));
    EXPECT_EQ(qlx_sim_event("input HDMI/0 HDMI_SOURCE=0"), 0);
    EXPECT_EQ(QLX_ExtInGetHdmiType(&hdmi0, &value), 0);
    EXPECT_EQ(value, static_cast<uint32_t>(QLX_EXTIN_HDMI_TYPE_DVI));
}

using Bytes = std::vector<uint8_t>;

int32_t operate(uint32_t operation, uint32_t port, Bytes* data) {
    QLX_HdmiEdid edid = {data->data(), static_cast<uint32_t>(data->size()), port};
    return QLX_ExtInEDIDOperate(operation, &edid);
}

/** The data blocks of the extension by tag, all of one tag one after the other. */
std::map<int, Bytes> dataBlocks(const Bytes& edid) {
    std::map<int, Bytes> blocks;
    for (size_t at = 128 + 4; at < 128u + edid[128 + 2];) {
        size_t length = edid[at] & 31;
        Bytes& block = blocks[edid[at] >> 5];
        block.insert(block.end(), edid.begin() + static_cast<ptrdiff_t>(at + 1),
                     edid.begin() + static_cast<ptrdiff_t>(at + 1 + length));
        at += 1 + length;
    }
    return blocks;
}

TEST_F(SimExtIn, TheEdidIsWholeAndTakesDescriptors) {
    Bytes edid(256);
    Bytes eac3 = {0x55, 0x06, 0x01};
    EXPECT_EQ(QLX_ExtInEDIDInit(0, QLX_HDMI_EDID_2_0), QLX_FAILED);
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 0, &edid), QLX_FAILED) << "there is none yet";
    EXPECT_EQ(QLX_ExtInEDIDInit(3, QLX_HDMI_EDID_2_0), invalid);
    EXPECT_EQ(QLX_ExtInEDIDInit(0, 2), invalid);
    for (uint32_t version : {QLX_HDMI_EDID_1_4, QLX_HDMI_EDID_2_0}) {
        for (uint32_t port : {0u, 2u}) {
            EXPECT_EQ(QLX_ExtInEDIDInit(port, version), 0);
            ASSERT_EQ(operate(QLX_HDMI_EDID_READ, port, &edid), 0);
            EXPECT_EQ(Bytes(edid.begin(), edid.begin() + 8),
                      Bytes({0, 255, 255, 255, 255, 255, 255, 0}));
            EXPECT_EQ(edid[126], 1) << "one extension";
            EXPECT_EQ(edid[128], 2) << "of CTA-861";
            for (size_t block : {0, 128}) {
                uint8_t sum = 0;
                for (size_t i = 0; i < 128; i++)
                    sum = static_cast<uint8_t>(sum + edid[block + i]);
                EXPECT_EQ(sum, 0);
            }
            std::map<int, Bytes> blocks = dataBlocks(edid);
            EXPECT_EQ(blocks[1], Bytes({0x09, 0x07, 0x07, 0x15, 0x07, 0x50}));
            EXPECT_EQ(blocks[3][3], (port + 1) << 4) << "physical address";
            EXPECT_EQ(std::count(blocks[2].begin(), blocks[2].end(), 97), version);
            EXPECT_EQ(blocks[3].size(), version == QLX_HDMI_EDID_2_0 ? 14u : 7u);
        }
    }
    EXPECT_EQ(operate(QLX_HDMI_EDID_AUDIO_SAD_UPDAE, 0, &eac3), 0);
    Bytes sixLpcm = {0x0D, 0x07, 0x07};
    EXPECT_EQ(operate(QLX_HDMI_EDID_AUDIO_SAD_UPDAE, 0, &sixLpcm), 0);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 0, &edid), 0);
    EXPECT_EQ(dataBlocks(edid)[1], Bytes({0x0D, 7, 7, 0x15, 7, 0x50, 0x55, 6, 1}));
    EXPECT_EQ(std::accumulate(edid.begin() + 128, edid.end(), 0) % 256, 0);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 2, &edid), 0);
    EXPECT_EQ(dataBlocks(edid)[1].size(), 6u) << "another port has its own";
    for (uint8_t format = 3; format < 10; format++) {
        Bytes further = {static_cast<uint8_t>(format << 3), 1, 1};
        EXPECT_EQ(operate(QLX_HDMI_EDID_AUDIO_SAD_UPDAE, 0, &further), 0);
    }
    Bytes tooMany = {11 << 3, 1, 1};
    EXPECT_EQ(operate(QLX_HDMI_EDID_AUDIO_SAD_UPDAE, 0, &tooMany), QLX_FAILED);
    Bytes small(255), two(2);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 0, &small), invalid);
    EXPECT_EQ(operate(QLX_HDMI_EDID_AUDIO_SAD_UPDAE, 0, &two), invalid);
    EXPECT_EQ(operate(1, 0, &edid), invalid);
    EXPECT_EQ(QLX_ExtInEDIDOperate(QLX_HDMI_EDID_READ, nullptr), invalid);
    EXPECT_EQ(QLX_ExtInDeInit(), 0);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 0, &edid), QLX_FAILED);
    EXPECT_EQ(QLX_ExtInInit(), 0);
    EXPECT_EQ(operate(QLX_HDMI_EDID_READ, 0, &edid), QLX_FAILED) << "it went with the service";
}

}  // namespace
