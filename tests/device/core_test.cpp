// The core of the simulated device: faults, the record of calls, and the device's threads.
#include <gtest/gtest.h>
#include <string.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "framework/case/registry.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "platform/qlx_sys.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/core/words.h"
#include "simulator/sim_control.h"
#include "simulator/world/air.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

/** A record with a member of each kind. */
struct Inner {
    int8_t small;
    uint8_t key[3];
};
struct Sample {
    uint16_t id;
    int64_t offset;
    float ratio;
    char name[6];
    uint8_t bytes[20];
    const void* pointer;
    uint32_t numbers[5];
    Inner inner[2];
    uint32_t system;
    union {
        uint32_t first;
        uint8_t second[4];
    };
};
/** One of which the description forgets a part. */
struct Forgotten {
    uint32_t told;
    uint32_t untold;
};

}  // namespace

namespace sim {

SIM_RECORD(Inner, SIM_MEMBER(Inner, small), SIM_MEMBER(Inner, key))
SIM_RECORD(Sample, SIM_MEMBER(Sample, id), SIM_MEMBER(Sample, offset), SIM_MEMBER(Sample, ratio),
           SIM_MEMBER(Sample, name), SIM_MEMBER(Sample, bytes), SIM_MEMBER(Sample, pointer),
           SIM_MEMBER(Sample, numbers), SIM_MEMBER(Sample, inner), SIM_MEMBER(Sample, system),
           SIM_MEMBER_IF(Sample, first, record.system == 1),
           SIM_MEMBER_IF(Sample, second, record.system == 2))
SIM_RECORD(Forgotten, SIM_MEMBER(Forgotten, told))

}  // namespace sim

namespace {

class SimCore : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
        zk_currentCaseName = nullptr;
    }
};

TEST_F(SimCore, FaultsActOnTheCallThatTheyName) {
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIOInit call=2 return=0x100e02"), 0);
    EXPECT_EQ(QLX_GPIOInit(), 0);
    EXPECT_EQ(QLX_GPIOInit(), 0x100e02);
    EXPECT_EQ(QLX_GPIOInit(), 0);
    EXPECT_EQ(qlx_sim_faults_acted(), 1u);
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIODeInit call=2+ return=-1"), 0);
    EXPECT_EQ(QLX_GPIODeInit(), 0);
    EXPECT_EQ(QLX_GPIODeInit(), -1);
    EXPECT_EQ(QLX_GPIODeInit(), -1);
}

TEST_F(SimCore, FaultsCountTheCallsWithTheirArgument) {
    EXPECT_EQ(QLX_GPIOInit(), 0);
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIOSetValue with=pin=12 call=2 return=7"), 0);
    for (uint32_t pin : {1, 12, 1, 120})
        EXPECT_NE(QLX_GPIOSetValue(pin, 0), 7) << pin;
    EXPECT_EQ(QLX_GPIOSetValue(12, 0), 7);
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIOSetValue with= return=7"), -1);
}

TEST_F(SimCore, ARefusedCallDoesNothing) {
    EXPECT_EQ(QLX_GPIOInit(), 0);
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIODeInit return=5"), 0);
    EXPECT_EQ(QLX_GPIODeInit(), 5);
    EXPECT_EQ(deviceState(), "GPIO initialised\n");
    qlx_sim_clear_faults();
    EXPECT_EQ(QLX_GPIODeInit(), 0);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(SimCore, FaultsOfACaseCountThatCasesCallsOnly) {
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIOInit case=TC_B call=1 return=9"), 0);
    zk_currentCaseName = "TC_A";
    EXPECT_EQ(QLX_GPIOInit(), 0);
    zk_currentCaseName = "TC_B";
    EXPECT_EQ(QLX_GPIOInit(), 9);
    EXPECT_EQ(QLX_GPIOInit(), 0);
    zk_currentCaseName = nullptr;
}

TEST_F(SimCore, FaultsCorruptWhatACallHandsOut) {
    int32_t level = 7;
    QLX_GPIOInit();
    EXPECT_EQ(qlx_sim_add_fault("QLX_GPIOGetValue corrupt=0:5a corrupt=400:11"), 0);
    EXPECT_EQ(QLX_GPIOGetValue(3, &level), 0);
    EXPECT_EQ(level, 0x5a);
    qlx_sim_clear_faults();
    QLX_GPIOSetValue(3, 1);
    qlx_sim_add_fault("QLX_GPIOGetValue call=1 scramble");
    qlx_sim_add_fault("QLX_GPIOGetValue call=2 blank");
    QLX_GPIOGetValue(3, &level);
    EXPECT_EQ(level, 0x55555554);
    QLX_GPIOGetValue(3, &level);
    EXPECT_EQ(level, 0);
}

TEST_F(SimCore, FaultsAlterSingleMembers) {
    QLX_SysCapability untouched = {};
    QLX_SysCapability altered = {};
    EXPECT_EQ(QLX_SysGetCapability(&untouched), 0);
    EXPECT_EQ(qlx_sim_add_fault("QLX_SysGetCapability set=NumberOfDemuxes:0x7 zero=NumberOfTuners "
                                "flip=NumberOfScarts"),
              0);
    qlx_sim_record(1);
    EXPECT_EQ(QLX_SysGetCapability(&altered), 0);
    qlx_sim_record(0);
    EXPECT_NE(recordedCalls().find("NumberOfDemuxes=7 "), std::string::npos) << recordedCalls();
    EXPECT_EQ(altered.NumberOfDemuxes, 7u);
    EXPECT_EQ(altered.NumberOfTuners, 0u);
    EXPECT_EQ(altered.NumberOfScarts, untouched.NumberOfScarts ^ 0x55555555u);
    EXPECT_EQ(altered.NumberOfHdmiSources, untouched.NumberOfHdmiSources);
    qlx_sim_clear_faults();
    EXPECT_EQ(qlx_sim_add_fault("QLX_SysGetCapability add=NumberOfTuners:-1 add=NumberOfScarts:2"),
              0);
    EXPECT_EQ(QLX_SysGetCapability(&altered), 0);
    EXPECT_EQ(altered.NumberOfTuners, untouched.NumberOfTuners - 1);
    EXPECT_EQ(altered.NumberOfScarts, untouched.NumberOfScarts + 2);
}

TEST_F(SimCore, WhatWasHandedOutIsListedMemberByMember) {
    int32_t level = 0;
    uint32_t handle = 0;
    QLX_GPIOInit();
    QLX_DemuxInit();
    QLX_DemuxOpen(0);
    qlx_sim_record(1);
    QLX_GPIOGetValue(3, &level);
    QLX_DemuxCreateSectionFilter(0, &handle);
    QLX_GPIOSetValue(3, 1);
    QLX_GPIOGetValue(3, &level);
    QLX_GPIOSetValue(3, 0);
    qlx_sim_record(0);
    QLX_DemuxCreatePesFilter(0, &handle);
    std::string lines(1000, '\0');
    lines.resize(qlx_sim_handed_out(&lines[0], lines.size()));
    // Once not zero is enough.
    EXPECT_EQ(lines,
              "QLX_GPIOGetValue level value set\n"
              "QLX_DemuxCreateSectionFilter handle mark set\n");
    QLX_SysCapability capability = {};
    qlx_sim_record(1);
    QLX_SysGetCapability(&capability);
    qlx_sim_record(0);
    lines.resize(2000);
    lines.resize(qlx_sim_handed_out(&lines[0], lines.size()));
    EXPECT_NE(lines.find("QLX_SysGetCapability NumberOfTuners value set\n"), std::string::npos);
    EXPECT_EQ(lines.find("QLX_GPIO"), std::string::npos) << "a new record begins empty";
}

TEST_F(SimCore, HandlesAndLengthsAreAlteredByTheirNameAlone) {
    uint32_t handle = 0;
    QLX_DemuxInit();
    QLX_DemuxOpen(0);
    qlx_sim_add_fault("QLX_DemuxCreateSectionFilter scramble corrupt=0:77");
    qlx_sim_record(1);
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &handle), 0);
    EXPECT_EQ(handle, 1u);
    qlx_sim_add_fault("QLX_DemuxCreateSectionFilter set=handle:9");
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &handle), 0);
    EXPECT_EQ(handle, 9u);
    qlx_sim_record(0);
    EXPECT_EQ(recordedCalls(),
              "QLX_DemuxCreateSectionFilter(demux=0 filter=set)=0 handle=1\n"
              "QLX_DemuxCreateSectionFilter(demux=0 filter=set)=0 handle=9\n");
}

TEST_F(SimCore, AMemberThatACallDoesNotHandOutIsToldOf) {
    const struct {
        const char* fault;
        const char* told;
    } rows[] = {
        {"QLX_GPIOGetValue flip=levels", "QLX_GPIOGetValue hands out no 'levels'"},
        {"QLX_GPIOGetValue zero=level[0]", "no 'level[0]'"},
        {"QLX_GPIOGetValue add=level:one", "'level' that QLX_GPIOGetValue hands out"},
        {"QLX_GPIOGetValue set=level:seven", "'level' that QLX_GPIOGetValue hands out"},
        {"QLX_GPIOGetValue set=level:0x80000000", "cannot be made so"},
        {"QLX_GPIOSetValue zero=level", "QLX_GPIOSetValue hands out no 'level'"},
        {"TestEvent zero=other", "TestEvent hands out no 'other'"},
    };
    QLX_GPIOInit();
    for (const auto& row : rows) {
        int32_t level = 0;
        uint32_t brought = 3;
        EXPECT_EQ(qlx_sim_add_fault(row.fault), 0) << row.fault;
        testing::internal::CaptureStderr();
        QLX_GPIOSetValue(3, 1);
        QLX_GPIOGetValue(3, &level);
        sim::deliver("TestEvent", "who=1", {sim::value("status", &brought)}, [] {});
        std::string told = testing::internal::GetCapturedStderr();
        EXPECT_NE(told.find(row.told), std::string::npos) << row.fault << ": " << told;
        EXPECT_EQ(level, 1) << row.fault;
        EXPECT_EQ(brought, 3u) << row.fault;
        qlx_sim_clear_faults();
    }
}

TEST_F(SimCore, FaultsAlterWhatACallbackBrings) {
    uint32_t status = 3;
    uint32_t seen = 0;
    auto bring = [&] {
        status = 3;
        sim::deliver("TestEvent", "who=1", {sim::value("status", &status)}, [&] { seen = status; });
    };
    qlx_sim_record(1);
    // The argument that a fault looks for is the one before its own change.
    qlx_sim_add_fault("TestEvent with=status=3 call=1 set=status:8");
    bring();
    EXPECT_EQ(seen, 8u);
    bring();
    EXPECT_EQ(seen, 3u);
    qlx_sim_record(0);
    EXPECT_EQ(recordedCalls(),
              "callback TestEvent(who=1 status=8)\ncallback TestEvent(who=1 status=3)\n");
}

TEST_F(SimCore, LinesThatAreNoFaultsAreRefused) {
    testing::internal::CaptureStderr();
    for (const char* line :
         {"QLX_GPIOInit", "QLX_GPIOInit return=", "QLX_GPIOInit return=x",
          "QLX_GPIOInit call=0 return=1", "QLX_GPIOInit explode", "QLX_GPIOInit hang=1",
          "QLX_GPIOInit flip=", "QLX_GPIOInit zero", "QLX_GPIOInit add=level",
          "QLX_GPIOInit add=:1", "QLX_GPIOInit set=level", "QLX_GPIOInit set=:1",
          "QLX_GPIOInit corrupt=1:fff", "QLX_GPIOInit delay=-1", "QLX_GPIOInit case= return=1"})
        EXPECT_EQ(qlx_sim_add_fault(line), -1) << line;
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(QLX_GPIOInit(), 0);
}

TEST_F(SimCore, TheRecordTellsCallsInOrder) {
    int32_t level = 0;
    qlx_sim_record(1);
    QLX_GPIOInit();
    QLX_GPIOSetValue(4, 1);
    QLX_GPIOGetValue(4, &level);
    QLX_GPIOSetValue(4, 2);
    qlx_sim_record(0);
    QLX_GPIODeInit();
    EXPECT_EQ(recordedCalls(),
              "QLX_GPIOInit()=0\nQLX_GPIOSetValue(pin=4 level=1)=0\n"
              "QLX_GPIOGetValue(pin=4 level=set)=0 out=1\n"
              "QLX_GPIOSetValue(pin=4 level=2)=1052161\n");
}

TEST(SimWords, NumbersAreReadWholeAndWithinTheirLimits) {
    const struct {
        const char* word;
        int base;
        bool good;
        int64_t value;
    } rows[] = {
        {"12", 0, true, 12},  {"-3", 0, true, -3},  {"0x1F", 0, true, 31},
        {"010", 0, true, 8},  {"1f", 16, true, 31}, {"100", 0, true, 100},
        {"101", 0, false, 0}, {"-11", 0, false, 0}, {"", 0, false, 0},
        {"12x", 0, false, 0}, {" 12", 0, false, 0}, {"1f", 0, false, 0},
        {"12 ", 0, false, 0}, {"x", 16, false, 0},  {"99999999999999999999", 0, false, 0},
    };
    for (const auto& row : rows) {
        int64_t value = 77;
        EXPECT_EQ(sim::readNumber(row.word, -10, 100, &value, row.base), row.good) << row.word;
        EXPECT_EQ(value, row.good ? row.value : 77) << row.word;
    }
    uint64_t large = 0;
    EXPECT_TRUE(sim::readUnsigned("0xffffffffffffffff", UINT64_MAX, &large));
    EXPECT_EQ(large, UINT64_MAX);
    EXPECT_FALSE(sim::readUnsigned("-1", UINT64_MAX, &large));
    sim::Words words(" cable  3 out ");
    std::string word;
    int64_t number = 0;
    EXPECT_TRUE(words.next(&word));
    EXPECT_TRUE(words.nextNumber(0, 7, &number));
    EXPECT_EQ(word + std::to_string(number), "cable3");
    EXPECT_FALSE(words.atEnd());
    EXPECT_FALSE(words.nextNumber(0, 7, &number)) << "out is no number";
    EXPECT_TRUE(words.atEnd());
}

TEST(SimBoard, AWordInThePlaceOfANumberIsToldOf) {
    BenchFolder bench;
    testing::internal::CaptureStderr();
    bench.useBoard("[TUNER]\nLOCK_MS=3oo\nUNLOCK_MS=0x10\n[DVB-T/474000]\nNOISE_FLOOR=-8,1\n");
    EXPECT_EQ(sim::board().number("TUNER", "UNLOCK_MS"), 16);
    EXPECT_EQ(sim::board().number("TUNER", "COUNT"), 4) << "the default board's";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "simulated device: board file: '-8,1' is no number for NOISE_FLOOR of section "
              "DVB-T/474000\n"
              "simulated device: board file: '3oo' is no number for LOCK_MS of section TUNER\n");
}

TEST_F(SimCore, EventsThatSayNothingChangeNothing) {
    testing::internal::CaptureStderr();
    for (const char* line : {"",
                             "cable",
                             "cable 8 out",
                             "cable 0 off",
                             "cable 0 out now",
                             "air",
                             "air DVB-X ON=0",
                             "air DVB-T ON",
                             "air DVB-T ON=2",
                             "air DVB-T LEVEL=low",
                             "air DVB-T SYSTEM=DVB-X",
                             "air DVB-T PLPS=0:1,x",
                             "air DVB-T/474000x ON=0",
                             "air DVB-T/1 ON=0",
                             "stream a.ts",
                             "stream a.ts byte 3 123",
                             "stream a.ts byte -1 12",
                             "stream a.ts table 8192 1 1 1",
                             "stream a.ts intact now",
                             "miracast",
                             "miracast x",
                             "in 5",
                             "in x cable 0 out",
                             "in -1 cable 0 out",
                             "earthquake"})
        EXPECT_EQ(qlx_sim_event(line), -1) << line;
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(sim::cablePlugged(0));
    EXPECT_EQ(qlx_sim_event("cable 0 out"), 0);
    EXPECT_FALSE(sim::cablePlugged(0));
    qlx_sim_reset();
    EXPECT_TRUE(sim::cablePlugged(0));
}

TEST(Records, AreShownByTheirDescription) {
    Sample sample = {};
    EXPECT_EQ(sim::show(&sample), "{}");
    EXPECT_EQ(sim::show(static_cast<Sample*>(nullptr)), "null");
    sample.id = 0xfffe;
    sample.offset = -5;
    sample.ratio = 0.25f;
    memcpy(sample.name, "a\"b\n\xfft", 6);
    sample.bytes[0] = 0xab;
    sample.pointer = &sample;
    sample.numbers[0] = sample.numbers[1] = 7;
    sample.inner[1] = {-128, {1, 2, 3}};
    sample.system = 2;
    sample.first = 0x04030201;
    // Bytes by the CRC-32 of zlib.
    EXPECT_EQ(sim::show(&sample),
              "{id=65534 offset=-5 ratio=0.25 name=\"a\\\"b\\x0a\\xfft\" "
              "bytes=20 bytes ab00000000000000.. crc32 4caa10d2 pointer=set numbers=[7*2 0*3] "
              "inner=[{} {small=-128 key=010203}] system=2 second=01020304}");
    sample = {};
    sample.system = 1;
    sample.first = 9;
    EXPECT_EQ(sim::show(&sample), "{system=1 first=9}");
}

TEST(Records, MembersAreFoundByTheirPath) {
    Sample sample = {};
    sample.system = 1;
    sim::Value value = sim::value("sample", &sample);
    const struct {
        const char* path;
        const char* word;
        const char* shown;
    } rows[] = {
        {"id", "0xffff", "{id=65535 system=1}"},
        {"offset", "-9223372036854775808", "{offset=-9223372036854775808 system=1}"},
        {"ratio", "1.5", "{ratio=1.5 system=1}"},
        {"name", "eth0", "{name=\"eth0\" system=1}"},
        {"name[1]", "0x41", "{name=\"\" system=1}"},
        {"bytes[19]", "255", "{bytes=20 bytes 0000000000000000.. crc32 22d77400 system=1}"},
        {"numbers[4]", "010", "{numbers=[0*4 8] system=1}"},
        {"inner[1].small", "-128", "{inner=[{} {small=-128}] system=1}"},
        {"inner[0].key[2]", "1", "{inner=[{key=000001} {}] system=1}"},
        {"first", "4294967295", "{system=1 first=4294967295}"},
    };
    for (const auto& row : rows) {
        sim::Place place;
        ASSERT_TRUE(sim::findMember(value, row.path, &place)) << row.path;
        EXPECT_TRUE(sim::setMember(place, row.word)) << row.path;
        EXPECT_EQ(sim::show(&sample), row.shown);
        EXPECT_TRUE(sim::flipMember(place)) << row.path;
        sim::zeroMember(place);
    }
    const char* const none[] = {
        "",       "i",        "idd",    "id[0]",       "numbers[5]",  "inner.small", "inner[2]",
        "second", "numbers[", "name.x", "numbers[-1]", "inner[0].id", "numbers]",    "sample"};
    for (const char* path : none) {
        sim::Place place;
        EXPECT_FALSE(sim::findMember(value, path, &place)) << path;
    }
    const struct {
        const char* path;
        const char* word;
    } unfit[] = {{"id", "65536"},     {"id", "-1"},
                 {"id", ""},          {"id", "1x"},
                 {"ratio", "x"},      {"inner[0].small", "128"},
                 {"name", "7chars!"}, {"inner[0].small", "-129"},
                 {"numbers", "1"},    {"offset", "9223372036854775808"},
                 {"inner[0]", "1"},   {"pointer", "1"}};
    for (const auto& row : unfit) {
        sim::Place place;
        ASSERT_TRUE(sim::findMember(value, row.path, &place)) << row.path;
        EXPECT_FALSE(sim::setMember(place, row.word)) << row.path << " " << row.word;
    }
    sample.pointer = &sample;
    sim::Place place;
    ASSERT_TRUE(sim::findMember(value, "pointer", &place));
    EXPECT_FALSE(sim::flipMember(place)) << "it would lead astray";
    sim::zeroMember(place);
    EXPECT_EQ(sim::show(&sample), "{system=1}");
}

TEST(Records, BytesAndTextsKeepToTheirRoom) {
    const uint8_t bytes[17] = {1, 2, 3};
    EXPECT_EQ(sim::showBytes(bytes, 16), "01020300000000000000000000000000");
    EXPECT_EQ(sim::showBytes(bytes, 17), "17 bytes 0102030000000000.. crc32 d89475e4");
    EXPECT_EQ(sim::showBytes(bytes, 0), "0 bytes");
    EXPECT_EQ(sim::showBytes(nullptr, 5), "null");
    // Of more than the device takes nothing is read.
    EXPECT_EQ(sim::showBytes(bytes, 0xffffffff, 17), "4294967295 bytes");
    const char unended[3] = {'a', 'b', 'c'};
    EXPECT_EQ(sim::showText(unended, sizeof unended), "\"abc\"");
}

TEST(RecordsDeathTest, ADescriptionThatLeavesSomethingOutIsFound) {
    Forgotten forgotten = {};
    EXPECT_DEATH(sim::show(&forgotten), "Forgotten leaves out what lies at 4");
}

TEST_F(SimCore, JobsRunInTheOrderOfTheirTimes) {
    static sim::EventThread* thread = new sim::EventThread("test");
    std::mutex mutex;
    std::condition_variable done;
    std::vector<int> order;
    auto note = [&](int number) {
        std::lock_guard<std::mutex> lock(mutex);
        order.push_back(number);
        done.notify_all();
    };
    thread->post(&order, 300, [&] { note(3); });
    thread->post(&order, 10, [&] { note(1); });
    thread->post(&order, 10, [&] { note(2); });
    thread->post(&note, 200, [&] { note(99); });
    thread->cancel(&note);
    std::unique_lock<std::mutex> lock(mutex);
    done.wait(lock, [&] { return order.size() == 3; });
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_F(SimCore, CancelWaitsForTheRunningJobButNotOnItsOwnThread) {
    static sim::EventThread* thread = new sim::EventThread("test2");
    std::mutex mutex;
    std::condition_variable changed;
    bool started = false;
    bool released = false;
    std::atomic<bool> finished{false};
    int owner = 0;
    thread->post(&owner, 0, [&] {
        thread->cancel(&owner);  // must return at once
        EXPECT_TRUE(thread->isCurrent());
        std::unique_lock<std::mutex> lock(mutex);
        started = true;
        changed.notify_all();
        changed.wait(lock, [&] { return released; });
        finished = true;
    });
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return started; });
        released = true;
        changed.notify_all();
    }
    thread->cancel(&owner);
    EXPECT_TRUE(finished);
    EXPECT_FALSE(thread->isCurrent());
}

TEST(Storage, PathsOfTheDeviceStayBelowItsFolder) {
    setenv("QLX_SIM_ROOT", "/tmp/root", 1);
    EXPECT_EQ(sim::storagePath("/media/sda1/a.ts"), "/tmp/root/media/sda1/a.ts");
    EXPECT_EQ(sim::storagePath("../../etc//passwd"), "/tmp/root/etc/passwd");
    EXPECT_EQ(sim::storagePath("/"), "/tmp/root");
    unsetenv("QLX_SIM_ROOT");
}

TEST_F(SimCore, I2CRefusesWhatTheBoardDoesNotHave) {
    QLX_I2CConfig config = {};
    uint8_t data[4] = {1, 2, 3, 4};
    uint32_t length = 0;
    config.chipAddress = 0x7f;
    EXPECT_NE(QLX_I2COpen(0, 0), 0);
    EXPECT_EQ(QLX_I2CInit(), 0);
    for (uint32_t bus = 0; bus < 4; bus++)
        for (uint32_t rate = 0; rate < 4; rate++) {
            EXPECT_EQ(QLX_I2COpen(bus, rate), 0);
            EXPECT_NE(QLX_I2COpen(bus, rate), 0);
            EXPECT_EQ(QLX_I2CClose(bus), 0);
            EXPECT_NE(QLX_I2CClose(bus), 0);
        }
    EXPECT_NE(QLX_I2COpen(4, 0), 0);
    EXPECT_NE(QLX_I2COpen(0, 4), 0);
    EXPECT_EQ(QLX_I2COpen(0, 0), 0);
    EXPECT_NE(QLX_I2CWrite(0, &config, data, 4, &length), 0) << "no such chip";
    EXPECT_EQ(deviceState(), "I2C initialised\nI2C bus 0 open\n");
    EXPECT_EQ(QLX_I2CDeInit(), 0);
    EXPECT_EQ(deviceState(), "");
}

}  // namespace
