// The program itself: what it writes, when it makes a file again, and what it says of bad input.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "tests/streams/made_streams.h"
#include "tools/mkstreams/cfg_file.h"

namespace {

using namespace mkstreams;
namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string said;
};

/** Runs the program with arguments, behind commands of the shell; what it writes to either output
 * is returned. */
Outcome run(const std::string& arguments, const std::string& before = "") {
    std::string command = "(" + before + ZK_MKSTREAMS + " " + arguments + ") 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    Outcome outcome = {-1, ""};
    char buffer[256];
    for (size_t size; (size = fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
        outcome.said.append(buffer, size);
    int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::string contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

class Tool : public testing::Test {
 protected:
    void SetUp() override {
        // In memory where there is such a folder: each file is put on the disk before it counts.
        std::string name = fs::exists("/dev/shm") ? "/dev/shm" : "/tmp";
        name += "/mkstreams_test.XXXXXX";
        ASSERT_NE(mkdtemp(&name[0]), nullptr);
        folder_ = name;
        fs::create_directories(folder_ / "config");
        fs::copy(ZK_SOURCE_DIR "/config/common", folder_ / "config/common");
        arguments_ = "--config " + (folder_ / "config").string() + " --out " +
                     (folder_ / "out").string() + " --only 'dvbt_*' ";
    }
    void TearDown() override {
        fs::remove_all(folder_);
    }

    fs::path folder_;
    std::string arguments_;
};

TEST_F(Tool, MakesTheSameBytesAndOnlyWhatChanged) {
    const std::string both = "dvbt_main.ts: 6400 packets\ndvbt_hd.ts: 6400 packets\n";
    Outcome first = run(arguments_ + "--variants");
    ASSERT_EQ(first.status, 0) << first.said;
    EXPECT_EQ(first.said, both);
    fs::path file = folder_ / "out/dvbt_main.ts";
    std::string bytes = contents(file);
    const Bytes& inProcess = streamOf("dvbt_main.ts").packets;
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), inProcess.begin(), inProcess.end(),
                           [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; }));
    // Comments change nothing. The manifest, with the variants in it, stays as it is.
    std::string manifest = contents(folder_ / "out/streams.cfg");
    auto written = fs::last_write_time(file);
    fs::path channels = folder_ / "config/common/channel_dvb_t.cfg";
    std::ofstream(channels, std::ios::app) << "# edited\n";
    Outcome second = run(arguments_);
    EXPECT_EQ(second.said, "");
    EXPECT_EQ(fs::last_write_time(file), written);
    EXPECT_EQ(contents(folder_ / "out/streams.cfg"), manifest);
    // A file that was cut is made again, and one in which a byte was changed.
    fs::resize_file(file, 1000);
    EXPECT_EQ(run(arguments_).said, "dvbt_main.ts: 6400 packets\n");
    EXPECT_EQ(contents(file), bytes);
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary) << 'x';
    EXPECT_EQ(run(arguments_).said, "dvbt_main.ts: 6400 packets\n");
    EXPECT_EQ(contents(file), bytes);
    // The PID of a table is the matter of one multiplex, a frequency that of the network's tables.
    std::string text = contents(channels);
    std::string other = text;
    other.replace(other.find("PMT_PID=0x0220"), 14, "PMT_PID=0x0230");
    std::ofstream(channels) << other;
    EXPECT_EQ(run(arguments_).said, "dvbt_hd.ts: 6400 packets\n");
    text.replace(text.find("FREQUENCY=482000"), 16, "FREQUENCY=562000");
    std::ofstream(channels) << text;
    EXPECT_EQ(run(arguments_).said, both);
}

TEST_F(Tool, RemovesWhatItMadeAndNobodyNames) {
    ASSERT_EQ(run(arguments_ + "--variants").status, 0);
    fs::path out = folder_ / "out";
    std::ofstream(out / "mine.ts") << "not made here";
    fs::path channels = folder_ / "config/common/channel_dvb_t.cfg";
    std::string text = contents(channels);
    text.replace(text.find("CHANNEL_NUM=12"), 14, "CHANNEL_NUM=1");
    std::ofstream(channels) << text;
    // With one multiplex less the network's tables are others, and so is what variants are made of.
    Outcome outcome = run(arguments_);
    EXPECT_EQ(outcome.said.rfind("dvbt_main.ts: 6400 packets\n", 0), 0u) << outcome.said;
    EXPECT_NE(outcome.said.find("dvbt_hd.ts: removed\n"), std::string::npos) << outcome.said;
    std::set<std::string> left;
    for (const fs::directory_entry& entry : fs::directory_iterator(out))
        left.insert(entry.path().filename().string());
    EXPECT_EQ(left, (std::set<std::string>{"dvbt_main.ts", "dvbt_main.ts.index",
                                           "dvbt_main.ts.stamp", "mine.ts", "streams.cfg"}));
}

/** A file that cannot be written whole leaves the old one, and nothing of its own. */
TEST_F(Tool, FullDisksLoseNothing) {
    ASSERT_EQ(run(arguments_).status, 0);
    fs::path file = folder_ / "out/dvbt_hd.ts";
    std::string bytes = contents(file);
    fs::path channels = folder_ / "config/common/channel_dvb_t.cfg";
    std::string text = contents(channels);
    text.replace(text.find("PMT_PID=0x0220"), 14, "PMT_PID=0x0230");
    std::ofstream(channels) << text;
    Outcome outcome = run(arguments_, "trap '' XFSZ; ulimit -f 500;");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.said.find("dvbt_hd.ts: cannot be written"), std::string::npos)
        << outcome.said;
    EXPECT_EQ(contents(file), bytes);
    EXPECT_FALSE(fs::exists(file.string() + ".tmp"));
    EXPECT_EQ(contents(folder_ / "out/streams.cfg").find("dvbt_hd.ts"), std::string::npos);
    EXPECT_EQ(run(arguments_).said, "dvbt_hd.ts: 6400 packets\n");
}

/** What the build takes for another version of the code that makes streams. */
TEST_F(Tool, CommentsAreNoOtherVersion) {
    auto version = [&](const char* code) {
        fs::path source = folder_ / "code.cpp";
        fs::path header = folder_ / "version.h";
        std::ofstream(source) << code;
        std::string command = std::string(ZK_CMAKE) + " -DCODER=" + source.string() +
                              " -DVARIANTS=" + source.string() + " -DOUTPUT=" + header.string() +
                              " -P " ZK_SOURCE_DIR "/tools/mkstreams/coder_version.cmake";
        EXPECT_EQ(system(command.c_str()), 0);
        return contents(header);
    };
    const std::string plain = version("int one() {\n    return 1; }\n");
    EXPECT_EQ(version("/** One; \"two\"; // three */\nint one()\n{ return 1; } // [one]\n"), plain);
    EXPECT_EQ(version("int /* a */ one() { /* b */ return 1; /* c\n * d */ }"), plain);
    EXPECT_NE(version("int one() {\n    return 2; }\n"), plain);
    EXPECT_NE(version("char c = '\"'; const char* s = \"// a \\\" /* \";"),
              version("char c = '\"'; const char* s = \"// b \\\" /* \";"));
    EXPECT_NE(version("int one() { /* a */ return 1; } int two; /* b */"), plain);
}

TEST_F(Tool, ManifestTellsWhatIsOnTheAir) {
    ASSERT_EQ(run(arguments_).status, 0);
    CfgFile manifest;
    ASSERT_TRUE(manifest.load((folder_ / "out/streams.cfg").string()));
    EXPECT_EQ(manifest.number("COMMON", "TRANSMITTER_NUM"), 2u);
    struct Row {
        const char* key;
        const char* main;
        const char* hd;
    };
    const Row rows[] = {{"SYSTEM", "1", "1"},
                        {"FREQUENCY", "474000", "690000"},
                        {"TS_ID", "1025", "1026"},
                        {"STREAM_ID", "0", "0"},
                        {"FIRST_CHANNEL", "0", "1"},
                        {"CHANNELS", "0", "1"},
                        {"FILE", "dvbt_main.ts", "dvbt_hd.ts"},
                        {"PACKET_SIZE", "188", "188"},
                        {"PACKETS", "6400", "6400"},
                        {"PACKET_TICKS", "40500", "40500"},
                        {"BIT_RATE", "1002667", "1002667"},
                        {"DURATION_MS", "9600", "9600"}};
    for (const Row& row : rows) {
        EXPECT_EQ(manifest.text("TRANSMITTER0", row.key), row.main) << row.key;
        EXPECT_EQ(manifest.text("TRANSMITTER1", row.key), row.hd) << row.key;
    }
}

/** Channels of one frequency share a multiplex; a file that two standards name is made once. */
TEST_F(Tool, SharedFrequenciesAndSharedFiles) {
    fs::path common = folder_ / "config/common";
    for (const fs::directory_entry& entry : fs::directory_iterator(common))
        fs::remove(entry.path());
    std::ofstream(common / "demux_config.cfg")
        << "[COMMON]\nDEMUX_INVALID_PID=0x1B00\nDEMUX_INVALID_TABLE_ID=0xF0\n"
           "[DVB-T]\nTS_FILE_NUM=1\nTS_FILE_0=both_multi.ts\nTS_FILE_0_CHANNEL_ID=1\n"
           "[DVB-C]\nTS_FILE_NUM=1\nTS_FILE_0=both_multi.ts\nTS_FILE_0_CHANNEL_ID=0\n";
    const char* channels =
        "[COMMON]\nCHANNEL_NUM=2\n"
        "[CHANNEL0]\nFREQUENCY=474000\nVIDEO_PID=0x201\nVIDEO_FORMAT=1\nPCR_PID=0x201\n"
        "PMT_PID=0x200\nAUDIO_NUM=0\nEIT_PID=18\n"
        "[CHANNEL1]\nFREQUENCY=474000\nVIDEO_PID=0x301\nVIDEO_FORMAT=4\nPCR_PID=0x301\n"
        "PMT_PID=0x300\nAUDIO_NUM=1\nAUDIO_PID0=0x304\nAUDIO_FORMAT0=2\nPES_PID=0x305\n";
    std::ofstream(common / "channel_dvb_t.cfg") << channels;
    std::ofstream(common / "channel_dvb_c.cfg") << channels;
    Outcome outcome =
        run("--config " + (folder_ / "config").string() + " --out " + (folder_ / "out").string());
    ASSERT_EQ(outcome.status, 0) << outcome.said;
    CfgFile manifest;
    ASSERT_TRUE(manifest.load((folder_ / "out/streams.cfg").string()));
    EXPECT_EQ(manifest.number("COMMON", "TRANSMITTER_NUM"), 2u);
    for (const char* section : {"TRANSMITTER0", "TRANSMITTER1"}) {
        EXPECT_EQ(manifest.text(section, "CHANNELS"), "0 1");
        EXPECT_EQ(manifest.text(section, "FILE"), "both_multi.ts");
    }
    std::string bytes = contents(folder_ / "out/both_multi.ts");
    Bytes stream(bytes.begin(), bytes.end());
    std::set<unsigned> pids;
    for (const PacketView& packet : packetsOf(stream))
        pids.insert(packet.pid());
    for (unsigned pid : {0x200u, 0x201u, 0x300u, 0x301u, 0x304u, 0x305u})
        EXPECT_EQ(pids.count(pid), 1u) << pid;
}

TEST_F(Tool, SaysWhatIsWrong) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("--config x").status, 2);
    EXPECT_EQ(run("--what").status, 2);
    Outcome missing = run("--config /nowhere --out " + (folder_ / "out").string());
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.said.find("/nowhere/common/demux_config.cfg"), std::string::npos);
    EXPECT_FALSE(fs::exists(folder_ / "out"));
    // A file that networks with different identifiers name.
    fs::path demux = folder_ / "config/common/demux_config.cfg";
    std::string files = contents(demux);
    std::string wrong = files;
    wrong.replace(wrong.find("=isdbs_ac3.ts"), 13, "=isdb_ac3.ts");
    std::ofstream(demux) << wrong;
    Outcome shared = run(arguments_);
    EXPECT_EQ(shared.status, 1);
    EXPECT_NE(shared.said.find("isdb_ac3.ts is played by multiplexes that differ"),
              std::string::npos)
        << shared.said;
    std::ofstream(demux) << files;
    // A format that there is no encoder for, and a PID that must stay free.
    fs::path channel = folder_ / "config/common/channel_dvb_t.cfg";
    std::string text = contents(channel);
    std::string strange = text;
    strange.replace(strange.find("VIDEO_FORMAT=2"), 14, "VIDEO_FORMAT=8");
    std::ofstream(channel) << strange;
    Outcome unknown = run(arguments_);
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.said.find("dvbt_main.ts: no encoder for video format 8"), std::string::npos)
        << unknown.said;
    std::string forbidden = text;
    forbidden.replace(forbidden.find("PMT_PID=0x0200"), 14, "PMT_PID=0x1B00");
    std::ofstream(channel) << forbidden;
    EXPECT_NE(run(arguments_).said.find("must stay free"), std::string::npos);
}

}  // namespace
