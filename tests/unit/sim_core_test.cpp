// The core of the simulated device: faults, the record of calls, and the device's threads.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "framework/registry.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/sim_control.h"
#include "tests/unit/device.h"

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

TEST_F(SimCore, LinesThatAreNoFaultsAreRefused) {
    testing::internal::CaptureStderr();
    for (const char* line :
         {"QLX_GPIOInit", "QLX_GPIOInit return=", "QLX_GPIOInit return=x",
          "QLX_GPIOInit call=0 return=1", "QLX_GPIOInit explode", "QLX_GPIOInit hang=1",
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
              "QLX_GPIOGetValue(pin=4)=0 out=4 level=1\nQLX_GPIOSetValue(pin=4 level=2)=1052161\n");
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
