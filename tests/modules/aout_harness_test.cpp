// Audio outputs: register tables and resets of the amplifiers, which sinks a board has, and what an
// operation on them undoes.
#include "testcase/aout/aout_harness.h"

#include "testcase/aout/amp.h"
#include "testcase/aout/amp_tables.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"

namespace {

using Bytes = std::vector<uint8_t>;

/** What is known of a table: counts, and the registers and values at both ends. */
struct TableFacts {
    const char* name;
    const uint8_t* table;
    size_t size;
    size_t records;
    size_t longest;
    /** Records of one byte each: register, value. */
    Bytes first;
    Bytes last;
};

const TableFacts tableFacts[] = {
    {"NF8212",
     g_u8AmpNF8212InitTbl,
     sizeof g_u8AmpNF8212InitTbl,
     36,
     1,
     {0x02, 0x02, 0x00, 0x00, 0x38, 0x02},
     {0x28, 0x04, 0x27, 0x00, 0x26, 0x00}},
    {"NF8214",
     g_u8AmpNF8214InitTbl,
     sizeof g_u8AmpNF8214InitTbl,
     36,
     1,
     {0x02, 0x00, 0x00, 0x00, 0x5D, 0x01},
     {0x14, 0x05, 0x15, 0x05, 0x33, 0x00}},
    {"NF8822",
     g_u8AmpNF8822InitTbl,
     sizeof g_u8AmpNF8822InitTbl,
     132,
     4,
     {0x04, 0x00, 0x3C, 0x3F, 0x3D, 0x3F, 0x3E, 0xD5, 0x3F, 0xD5, 0x18, 0x15, 0x19, 0x15},
     {0x7E, 0x00, 0x0A, 0x10, 0x2F, 0x00, 0x2C, 0x00, 0x2A, 0x80,
      0x09, 0x20, 0x2C, 0xDA, 0x2A, 0xDF, 0x08, 0xF4, 0x04, 0xFF}},
    {"TI5711",
     g_u8AmpTI5711InitTbl,
     sizeof g_u8AmpTI5711InitTbl,
     54,
     20,
     {0x1B, 0x00},
     {0x07, 0x1C, 0x08, 0x30, 0x09, 0x30, 0x0A, 0x30, 0x06, 0x00, 0x03,
      0xA0, 0x04, 0x05, 0x05, 0x08, 0x0E, 0xD1, 0x10, 0x02, 0x1A, 0x95,
      0x1C, 0x02, 0x11, 0xB8, 0x12, 0x60, 0x13, 0xA0, 0x14, 0x48}},
    {"NF8928",
     g_u8AmpNF8928InitTbl,
     sizeof g_u8AmpNF8928InitTbl,
     163,
     4,
     {0x00, 0x00, 0x01, 0x00, 0x02, 0x00, 0x03, 0x00, 0x04, 0x4D, 0x05, 0x4E},
     {0x7E, 0x00, 0x0C, 0xED, 0x35, 0x04, 0x34, 0x00, 0x33, 0x00}},
};

Bytes singleRecords(const Bytes& registers) {
    Bytes records;
    for (size_t i = 0; i < registers.size(); i += 2)
        records.insert(records.end(), {1, registers[i], registers[i + 1]});
    return records;
}

TEST(AmpTables, HaveTheirRecords) {
    for (const TableFacts& facts : tableFacts) {
        const Bytes table(facts.table, facts.table + facts.size);
        size_t records = 0;
        size_t longest = 0;
        size_t unities = 0;
        size_t at = 0;
        for (; at < table.size() && table[at] != 0; at += 2 + table[at], records++) {
            Bytes unity(22, 0);
            unity[0] = 20;
            unity[1] = table[at + 1];
            unity[3] = 0x80;
            longest = std::max<size_t>(longest, table[at]);
            const Bytes record(table.begin() + at,
                               table.begin() + std::min(at + 2 + table[at], table.size()));
            unities += record == unity ? 1 : 0;
        }
        EXPECT_EQ(at + 1, table.size()) << facts.name;
        EXPECT_EQ(records, facts.records) << facts.name;
        EXPECT_EQ(longest, facts.longest) << facts.name;
        EXPECT_EQ(unities, facts.longest == 20 ? 20u : 0u) << facts.name;
        const Bytes first = singleRecords(facts.first);
        Bytes last = singleRecords(facts.last);
        last.push_back(0);
        EXPECT_TRUE(std::equal(first.begin(), first.end(), table.begin())) << facts.name;
        EXPECT_TRUE(std::equal(last.rbegin(), last.rend(), table.rbegin())) << facts.name;
    }
}

class AOutHarness : public ModuleBench {
 protected:
    /** Stands on the board whose amplifier has this type. */
    void useBoardOf(uint32_t type) {
        // Of the amplifiers, in the order of their types.
        const int32_t platforms[] = {5, 1, 4, 3, 7};
        set_platform(&g_configFile, &platforms[type - 1]);
        const std::string path = g_configFile.platformDir;
        boardFolder_.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        qlx_sim_reset();
        ASSERT_EQ(AOUT_LoadParams(), TC_SUCCESS);
        ASSERT_EQ(g_stAOutParams.uAMPType, type);
        takeOutput();
    }
    /** What has been recorded, with the milliseconds since the line before; writes as one line. */
    static std::string timedCalls() {
        std::string text(qlx_sim_recorded(nullptr, 0) + 1, '\0');
        qlx_sim_recorded(&text[0], text.size());
        std::istringstream lines(text);
        std::string out;
        double before = -1;
        double time;
        std::string thread;
        std::string call;
        while (lines >> time >> thread && std::getline(lines, call)) {
            const int ms = before < 0 ? 0 : static_cast<int>((time - before) * 1000 + 0.5);
            before = time;
            if (call.find("QLX_I2CWrite") == std::string::npos)
                out += "+" + std::to_string(ms) + call + "\n";
            else if (out.find("write") == std::string::npos)
                out += "+" + std::to_string(ms) + " first write\n";
        }
        return out;
    }

 private:
    BenchFolder boardFolder_;
};

/** The program in a folder of its own, with a common configuration of the test's. */
struct InFolder {
    InFolder() : before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder.path());
        snprintf(g_configFile.common, sizeof g_configFile.common, "common.cfg");
    }
    ~InFolder() {
        std::filesystem::current_path(before);
    }
    BenchFolder folder;
    std::filesystem::path before;
};

TEST_F(AOutHarness, EachAmplifierHasItsReset) {
    const std::string head =
        "+0 QLX_GPIOInit()=0\n+0 QLX_I2CInit()=0\n+0 QLX_I2COpen(bus=0 rate=3)=0\n";
    const std::string tail = " first write\n+1 QLX_I2CClose(bus=0)=0\n";
    for (uint32_t type = AMP_TYPE_NF8212; type <= AMP_TYPE_NF8928; type++) {
        const TableFacts& facts = tableFacts[type - 1];
        useBoardOf(type);
        const std::string pin =
            " QLX_GPIOSetValue(pin=" + std::to_string(g_stAOutParams.uAMPGpioNum);
        const std::string low = pin + " level=0)=0\n";
        const std::string high = pin + " level=1)=0\n";
        const std::string twoSteps = "+0" + low + "+110" + high + "+5";
        const std::string resets[] = {
            twoSteps,
            twoSteps,
            "+0" + low + "+10" + high + "+1" + low + "+1" + high + "+2",
            "+0" + low + "+100" + high + "+10" + low + "+1" + high + "+15",
            "+0 QLX_GPIOSetValue(pin=59 level=1)=0\n+0" + high + "+10" + low + "+5" + high + "+2",
        };
        qlx_sim_record(1);
        EXPECT_EQ(AMP_Init(), TC_SUCCESS) << facts.name;
        EXPECT_EQ(timedCalls(), head + resets[type - 1] + tail) << facts.name;
        EXPECT_EQ(count(recordedCalls(), "QLX_I2CWrite(bus=0 config={chipAddress=" +
                                             std::to_string(g_stAOutParams.uAMPI2CAddr) + " "),
                  facts.records)
            << facts.name;
        const std::string out = takeOutput();
        EXPECT_EQ(count(out, std::string("********AMP ") + facts.name + " INIT\n"), 1u);
        EXPECT_EQ(count(out, "\n DataLength="), facts.records);
        EXPECT_EQ(count(out, "data = 0x"), facts.size - 1 - 2 * facts.records);
        EXPECT_EQ(count(out, "write fail"), 0u) << "the chip takes every register";
    }
}

TEST_F(AOutHarness, NoAmplifierAndAnUnknownOneTouchNothing) {
    qlx_sim_record(1);
    g_stAOutParams.uAMPType = AMP_TYPE_NONE;
    EXPECT_EQ(AMP_Init(), TC_SUCCESS);
    EXPECT_NE(takeOutput().find("AMP chip is closed ! \r\n"), std::string::npos);
    g_stAOutParams.uAMPType = 6;
    EXPECT_EQ(AMP_Init(), TC_FAILURE);
    EXPECT_NE(takeOutput().find("Unknown AMP device ! \r\n"), std::string::npos);
    EXPECT_EQ(recordedCalls(), "");
}

TEST_F(AOutHarness, AWriteThatIsRefusedIsToldAndTheRestWritten) {
    const struct {
        uint32_t type;
        const char* text;
    } rows[] = {
        {AMP_TYPE_NF8212, "]8212 write fail = 80 \n"},
        {AMP_TYPE_NF8214, "]8212 write fail = 23 \n"},
        {AMP_TYPE_NF8822, "]8212 write fail = 63 \n"},
        {AMP_TYPE_TI5711, "]8212 write fail = 61 \n"},
        {AMP_TYPE_NF8928, "]8928 write fail = 4 \n"},
    };
    for (const auto& row : rows) {
        useBoardOf(row.type);
        addFault("QLX_I2CWrite call=5 return=1");
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(AMP_Init(), TC_SUCCESS);
        EXPECT_EQ(count(recordedCalls(), "QLX_I2CWrite("), tableFacts[row.type - 1].records);
        const std::string out = takeOutput();
        EXPECT_EQ(count(out, row.text), 1u) << out;
        EXPECT_EQ(count(out, "write fail"), 1u);
        EXPECT_EQ(count(out, "RETURN ERROR"), 0u);
        qlx_sim_clear_faults();
    }
}

TEST_F(AOutHarness, AFailedResetSkipsTheTableAndClosesTheBus) {
    const struct {
        const char* fault;
        const char* calls;
    } rows[] = {
        {"QLX_GPIOInit return=1", "QLX_GPIOInit "},
        {"QLX_I2CInit return=1", "QLX_GPIOInit QLX_I2CInit "},
        {"QLX_I2COpen return=1", "QLX_GPIOInit QLX_I2CInit QLX_I2COpen "},
        {"QLX_GPIOSetValue call=1 return=1",
         "QLX_GPIOInit QLX_I2CInit QLX_I2COpen QLX_GPIOSetValue QLX_I2CClose "},
        {"QLX_GPIOSetValue call=3 return=1",
         "QLX_GPIOInit QLX_I2CInit QLX_I2COpen QLX_GPIOSetValue QLX_GPIOSetValue "
         "QLX_GPIOSetValue QLX_I2CClose "},
    };
    useBoardOf(AMP_TYPE_NF8928);
    for (const auto& row : rows) {
        addFault(row.fault);
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(AMP_Init(), TC_SUCCESS) << "a board without a speaker still has other sinks";
        EXPECT_EQ(callNames(), row.calls);
        EXPECT_EQ(count(takeOutput(), "[AMP_NF8928Init]["), 1u) << row.fault;
        qlx_sim_clear_faults();
    }
}

TEST_F(AOutHarness, ParametersEndAtTheFirstKeyThatNoFileHas) {
    // The fallback of all boards has every key: there is none in this folder.
    InFolder inFolder;
    BenchFolder& folder = inFolder.folder;
    const std::string amp =
        "[AMP]\nAMP_CHIP_NAME=2\nAMP_GPIO_RESET=5\nAMP_I2C_ADDR=0x34\nAMP_GPIO_MUTE=7\n[AOUT]\n"
        "AOUT_SINK_SPEAKER=1\nAOUT_SINK_HEADPHONE=2\nAOUT_SINK_SPDIF=3\n";
    const std::string rest =
        "AOUT_SINK_LINEOUT=5\nAOUT_SINK_HDMI=4\nAOUT_SINK_BT=6\nAOUT_GPIO_HP_DETECT=8\n";
    folder.write("common.cfg", amp + rest);
    EXPECT_EQ(AOUT_LoadParams(), TC_SUCCESS);
    const AOutParams all = {2, 5, 0x34, 7, 1, 2, 3, 5, 4, 6, 8};
    EXPECT_EQ(memcmp(&g_stAOutParams, &all, sizeof all), 0);
    EXPECT_EQ(count(takeOutput(), "[AOUT_GetConfValue] TEST Result: SUCCESS\n"), 11u);

    folder.write("common.cfg", amp + "AOUT_SINK_LINEOUT=5\n");
    EXPECT_EQ(AOUT_LoadParams(), TC_FAILURE);
    const AOutParams cut = {2, 5, 0x34, 7, 1, 2, 3, 0, 0, 0, 0};
    EXPECT_EQ(memcmp(&g_stAOutParams, &cut, sizeof cut), 0);
    EXPECT_NE(takeOutput().find("FUNC:AOUT_GetConfValue(\"AOUT\",\"AOUT_SINK_HDMI\", (QLX_U32 *) "
                                "&g_stAOutParams.uAoutHdmi) RETURN ERROR VALUE [1] \n"),
              std::string::npos);
    // The sinks that were not read count as absent.
    EXPECT_EQ(TC_AOUT_INIT(), TC_SUCCESS);
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_OPEN(), TC_SUCCESS);
    EXPECT_EQ(count(recordedCalls(), "QLX_AOutOpen("), 3u);
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

TEST_F(AOutHarness, TheAmplifierIsLoadedWhereThereIsASpeaker) {
    InFolder inFolder;
    BenchFolder& folder = inFolder.folder;
    for (bool speaker : {false, true}) {
        folder.write("common.cfg", std::string("[AMP]\nAMP_CHIP_NAME=6\nAMP_GPIO_RESET=5\n"
                                               "AMP_I2C_ADDR=0x34\nAMP_GPIO_MUTE=7\n[AOUT]\n"
                                               "AOUT_SINK_SPEAKER=") +
                                       (speaker ? "1\n" : "0\n"));
        takeOutput();
        EXPECT_EQ(TC_AOUT_INIT(), TC_SUCCESS) << "the amplifier's answer is not looked at";
        const std::string out = takeOutput();
        EXPECT_EQ(count(out, "speaker enabled, init AMP ! \n"), speaker ? 1u : 0u);
        EXPECT_EQ(count(out, "Unknown AMP device ! \r\n"), speaker ? 1u : 0u);
    }
    addFault("QLX_AOutInit return=1");
    EXPECT_EQ(TC_AOUT_INIT(), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "init AMP"), 0u);
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

/** The numbers of the output devices that were opened, closed, set and muted, in order. */
std::string sinkCalls() {
    const struct {
        const char* call;
        const char* sign;
    } signs[] = {{"QLX_AOutOpen(output=", "o"},
                 {"QLX_AOutClose(output=", "c"},
                 {"QLX_AOutSetVolume(output=", "v"},
                 {"QLX_AOutSetMute(output=", "m"},
                 {"QLX_AOutSetAudioDescription(output=", "d"},
                 {"QLX_AOutSetAudioDescriptionVolume(output=", "w"}};
    std::istringstream lines(recordedCalls());
    std::string out;
    for (std::string line; std::getline(lines, line);) {
        for (const auto& sign : signs) {
            if (line.find(sign.call) == 0)
                out += sign.sign + line.substr(strlen(sign.call), 1) + " ";
        }
    }
    return out;
}

TEST_F(AOutHarness, ASinkThatDoesNotOpenClosesThoseBelowIt) {
    const char* const calls[] = {
        "o0 ",
        "o0 o1 c0 ",
        "o0 o1 o2 c1 c0 ",
        "o0 o1 o2 o3 c2 c1 c0 ",
        "o0 o1 o2 o3 o4 c3 c2 c1 c0 ",
        "o0 o1 o2 o3 o4 o5 c4 c3 c2 c1 c0 ",
        // Bluetooth stays open.
        "o0 o1 o2 o3 o4 o5 ",
    };
    ASSERT_EQ(TC_AOUT_INIT(), TC_SUCCESS);
    for (int refused = 0; refused <= 6; refused++) {
        addFault("QLX_AOutOpen call=" + std::to_string(refused + 1) + " return=1");
        // An undo that fails is told, and ends nothing.
        addFault("QLX_AOutClose call=1 return=1");
        qlx_sim_record(1);
        EXPECT_EQ(TC_AOUT_OPEN(), refused < 6 ? TC_FAILURE : TC_SUCCESS);
        EXPECT_EQ(sinkCalls(), calls[refused]);
        qlx_sim_clear_faults();
    }
    addFault("QLX_AOutClose call=2 return=1");
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_CLOSE(), TC_FAILURE);
    EXPECT_EQ(sinkCalls(), "c4 c3 c2 c1 c0 ");
    qlx_sim_clear_faults();
    EXPECT_EQ(TC_AOUT_CLOSE(), TC_SUCCESS);
    EXPECT_EQ(deviceState().find("output 0"), std::string::npos);
    EXPECT_NE(deviceState().find("5"), std::string::npos) << "Bluetooth is open until the end";
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

TEST_F(AOutHarness, StartAndStopEndAtTheFirstFailure) {
    ASSERT_EQ(TC_AOUT_INIT(), TC_SUCCESS);
    qlx_sim_record(1);
    takeOutput();
    EXPECT_EQ(TC_AOUT_START(), TC_SUCCESS);
    EXPECT_EQ(sinkCalls(), "v0 m0 v1 m1 v2 m2 v3 m3 v4 m4 v5 m5 ");
    EXPECT_EQ(count(recordedCalls(), " volume=30)=0"), 6u);
    EXPECT_EQ(count(recordedCalls(), " mute=0)=0"), 6u);
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_STOP(), TC_SUCCESS);
    EXPECT_EQ(sinkCalls(), "m0 m1 m2 m3 m4 m5 ");
    EXPECT_EQ(count(recordedCalls(), " mute=1)=0"), 6u);
    EXPECT_EQ(takeOutput(), "") << "neither has a verdict line";
    addFault("QLX_AOutSetVolume call=3 return=1");
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_START(), TC_FAILURE);
    EXPECT_EQ(sinkCalls(), "v0 m0 v1 m1 v2 ");
    qlx_sim_clear_faults();
    addFault("QLX_AOutSetMute call=2 return=1");
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_STOP(), TC_FAILURE);
    EXPECT_EQ(sinkCalls(), "m0 m1 ");
    qlx_sim_clear_faults();
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

TEST_F(AOutHarness, ABoardWithoutSinksHasNothingToDo) {
    ASSERT_EQ(TC_AOUT_INIT(), TC_SUCCESS);
    g_stAOutParams = {};
    qlx_sim_record(1);
    for (uint32_t (*operation)(void) : {TC_AOUT_OPEN, TC_AOUT_START, TC_AOUT_START_AUDIO_DESC,
                                        TC_AOUT_STOP_AUDIO_DESC, TC_AOUT_STOP, TC_AOUT_CLOSE})
        EXPECT_EQ(operation(), TC_SUCCESS);
    EXPECT_EQ(recordedCalls(), "");
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

TEST_F(AOutHarness, TheDescriptionsVolumeIsThatOfTheFirstDevice) {
    ASSERT_EQ(TC_AOUT_INIT(), TC_SUCCESS);
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_START_AUDIO_DESC(), TC_SUCCESS);
    EXPECT_EQ(sinkCalls(), "d0 w0 d1 w0 ");
    EXPECT_EQ(count(recordedCalls(), " volume=50)=0"), 2u);
    g_stAOutParams.uAoutSpeaker = 0;
    qlx_sim_record(1);
    EXPECT_EQ(TC_AOUT_START_AUDIO_DESC(), TC_SUCCESS);
    EXPECT_EQ(TC_AOUT_STOP_AUDIO_DESC(), TC_SUCCESS);
    EXPECT_EQ(sinkCalls(), "d1 w0 d1 ");
    EXPECT_EQ(TC_AOUT_DEINIT(), TC_SUCCESS);
}

TEST_F(AOutHarness, SinksHaveTheDevicesOfTheirNumbers) {
    uint32_t eDevId = 99;
    for (uint32_t sink = QLX_OUTPUT_SOURCE_SPEAKER; sink <= QLX_OUTPUT_SOURCE_BT; sink++) {
        EXPECT_EQ(AOUT_SourceToID(&eDevId, sink), TC_SUCCESS);
        EXPECT_EQ(eDevId, sink - 1);
    }
    takeOutput();
    EXPECT_EQ(AOUT_SourceToID(&eDevId, 0), TC_FAILURE);
    EXPECT_NE(takeOutput().find("]invalid input parameter ! \n"), std::string::npos);
    EXPECT_EQ(AOUT_SourceToID(&eDevId, 7), TC_FAILURE);
    EXPECT_NE(takeOutput().find("]invalid AOut Source[7] ! \n"), std::string::npos);
    EXPECT_EQ(eDevId, 5u);
    // Without a source there is no play; the device is told all the same.
    EXPECT_EQ(AOUT_AV_Play(3), TC_FAILURE);
    EXPECT_NE(takeOutput().find("]output dev id = 2 \r\n"), std::string::npos);
    EXPECT_EQ(AOUT_AV_Play(7), TC_FAILURE);
    EXPECT_NE(takeOutput().find("]output dev id = -1 \r\n"), std::string::npos);
}

}  // namespace
