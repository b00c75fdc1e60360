/* A bench for tests of modules: the shipped configuration, a device at rest, captured output. */
#ifndef TESTS_SHARED_MODULE_BENCH_H
#define TESTS_SHARED_MODULE_BENCH_H

#include <gtest/gtest.h>
#include <sys/time.h>

#include <string>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "program/startup.h"
#include "tests/shared/device.h"

/** Points the program's configuration at the shipped one, of the board that tests stand on. */
inline void chooseShippedConfiguration() {
    int32_t platform = 5;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    set_platform(&g_configFile, &platform);
}

/** Runs a case on the device as it is, under a fault that has to act. */
inline uint32_t runCaseUnder(const TcModule& module, const std::string& name,
                             const std::string& fault) {
    if (!fault.empty()) {
        EXPECT_EQ(qlx_sim_add_fault(fault.c_str()), 0) << fault;
    }
    uint32_t result = runCaseByName(module, name);
    if (!fault.empty()) {
        EXPECT_GT(qlx_sim_faults_acted(), 0u) << name << " with " << fault;
    }
    qlx_sim_clear_faults();
    return result;
}

class ModuleBench : public testing::Test {
 protected:
    void SetUp() override {
        chooseShippedConfiguration();
        testing::internal::CaptureStdout();
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        takeOutput();
    }
    void TearDown() override {
        qlx_sim_record(0);
        qlx_sim_reset();
        takeOutput();
        testing::internal::GetCapturedStdout();
        // Messages of failed expectations are in what was captured.
        if (HasFailure())
            fputs(log_.c_str(), stderr);
    }

    /** What was printed since the last time. */
    std::string takeOutput() {
        std::string text = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        log_ += text;
        return text;
    }
    static void addFault(const std::string& line) {
        EXPECT_EQ(qlx_sim_add_fault(line.c_str()), 0) << line;
    }
    static void event(const std::string& line) {
        EXPECT_EQ(qlx_sim_event(line.c_str()), 0) << line;
    }
    static int64_t nowMs() {
        timeval now;
        gettimeofday(&now, nullptr);
        return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_usec / 1000;
    }
    /** The names of the recorded calls, each with a blank behind it; no callbacks. */
    static std::string callNames() {
        std::istringstream lines(recordedCalls());
        std::string names;
        for (std::string line; std::getline(lines, line);) {
            if (line.find("QLX_") == 0)
                names += line.substr(0, line.find('(')) + " ";
        }
        return names;
    }
    static size_t count(const std::string& text, const std::string& part) {
        size_t found = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            found++;
        return found;
    }

 private:
    std::string log_;
};

#endif
