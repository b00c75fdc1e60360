// TEEC: what the trusted application answers decides the verdict, a wrong answer by its time-out;
// the rules of sessions, and a TA that dies and comes back.
#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "platform/qlx_teec.h"
#include "simulator/core/sim.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

class TeecModuleTest : public testing::Test {
 protected:
    TeecModuleTest() {
        TEECModule.setup();
    }
    ~TeecModuleTest() override {
        TEECModule.teardown();
    }

    uint32_t run(const char* name) {
        testing::internal::CaptureStdout();
        int64_t start = sim::nowMs();
        uint32_t result = runCaseByName(TEECModule, name);
        tookMs_ = sim::nowMs() - start;
        text_ = testing::internal::GetCapturedStdout();
        return result;
    }
    bool says(const char* text) {
        return text_.find(text) != std::string::npos;
    }

    BenchFolder bench_;
    std::string text_;
    int64_t tookMs_ = 0;
};

TEST_F(TeecModuleTest, AutomaticCasesPassInOrderAndLeaveNothing) {
    for (uint32_t i = 0; i < TEECModule.caseCount; i++) {
        if (TEECModule.cases[i].autoFlag != AUTO)
            continue;
        EXPECT_EQ(run(TEECModule.cases[i].name), 0u) << text_;
        EXPECT_EQ(deviceState(), "");
    }
    EXPECT_EQ(run("TC_TEEC_UsrData_test"), 0u);
    EXPECT_TRUE(says("pUsrData = This is TEE Client user data test\n"));
}

TEST_F(TeecModuleTest, WrongAnswersEndByTheTimeOut) {
    const struct {
        const char* name;
        const char* fault;
        const char* text;
    } rows[] = {
        {"TC_TEEC_Transfer_Single_Cmd_Data", "TEECCommand corrupt=63:ff",
         "desBuf[63]:255 != srcBuf"},
        {"TC_TEEC_Transfer_Single_Cmd_Data", "TEECCommand drop", "Recevied nothing from  TA"},
        {"TC_TEEC_Transfer_Single_Cmd_Data", "TEECCommand delay=3100", "Recevied nothing from  TA"},
        {"TC_TEEC_Transfer_Single_Cmd_Data", "TEECCommand zero=record", "Invalid command!"},
        // The second of a pair releases nothing without the first, nor with a wrong first.
        {"TC_TEEC_Transfer_Multiple_Cmds_Data", "TEECCommand call=1 drop", "timeout(3s)!"},
        {"TC_TEEC_Transfer_Multiple_Cmds_Data", "TEECCommand call=1 corrupt=0:ff", "desBuf[0]:255"},
        {"TC_TEEC_Transfer_Multiple_Cmds_Data", "TEECCommand call=2 corrupt=0:ff", "desBuf[0]:255"},
        // 255 is flipped on recovery; it never was in the payload.
        {"TC_TEEC_Transfer_Multiple_Cmds_Scrects_Data", "TEECCommand call=2 corrupt=5:fe",
         "desBuf[5]:255"},
        {"TC_TEEC_Transfer_Single_And_Multiple_Cmds_Data", "TEECCommand call=4 drop",
         "Recevied nothing from  TA"},
        {"TC_TEEC_Transfer_Header_Cmd_Data_Only", "TEECCommand drop", "Recevied nothing from  TA"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.fault);
        qlx_sim_reset();
        TEECModule.teardown();
        TEECModule.setup();
        ASSERT_EQ(qlx_sim_add_fault(row.fault), 0);
        EXPECT_EQ(run(row.name), 1u);
        EXPECT_TRUE(says(row.text)) << text_;
        EXPECT_GE(tookMs_, 2000);
        EXPECT_LE(tookMs_, 3500);
        EXPECT_EQ(deviceState(), "");
        // What came too late must not count for the next case.
        qlx_sim_clear_faults();
        EXPECT_EQ(run(row.name), 0u) << text_;
    }
}

TEST_F(TeecModuleTest, ARefusedMessageGoesOnToTheClosingCalls) {
    qlx_sim_record(1);
    qlx_sim_add_fault("QLX_TEECTransData return=1");
    EXPECT_EQ(run("TC_TEEC_Transfer_Single_Cmd_Data"), 1u);
    qlx_sim_record(0);
    EXPECT_TRUE(says("Ecp transport data failed.\n"));
    EXPECT_TRUE(says("TEST Result: FAIL"));
    EXPECT_EQ(tookMs_, 0);
    std::string calls = recordedCalls();
    size_t unregister = calls.find("QLX_TEECUnRegisterCallback(ta=0 callback=set)=0");
    EXPECT_NE(unregister, std::string::npos);
    EXPECT_LT(unregister, calls.find("QLX_TEECClose(ta=0)=0"));
    EXPECT_EQ(deviceState(), "");
}

TEST_F(TeecModuleTest, WithAFailedMessageNoOtherIsSent) {
    const struct {
        const char* fault;
        unsigned sent;
    } rows[] = {
        {"QLX_TEECTransData call=1 return=1", 1},
        {"QLX_TEECTransData call=2 return=1", 2},
        {"TEECCommand call=1 drop", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        qlx_sim_reset();
        qlx_sim_record(1);
        ASSERT_EQ(qlx_sim_add_fault(row.fault), 0);
        EXPECT_EQ(run("TC_TEEC_Transfer_Single_And_Multiple_Cmds_Data"), 1u);
        qlx_sim_record(0);
        EXPECT_TRUE(says("TEST Result: FAIL"));
        std::string calls = recordedCalls();
        unsigned sent = 0;
        for (size_t at = 0; (at = calls.find("QLX_TEECTransData(", at)) != calls.npos; at++)
            sent++;
        EXPECT_EQ(sent, row.sent) << calls;
        EXPECT_EQ(deviceState(), "");
    }
}

TEST_F(TeecModuleTest, AHeaderThatComesWithDataIsPrintedAndReleasesNothing) {
    // The answer of command 1, told to be that of command 4.
    qlx_sim_add_fault("TEECCommand set=cmd:4");
    EXPECT_EQ(run("TC_TEEC_Transfer_Single_Cmd_Data"), 1u);
    EXPECT_TRUE(says("[CMDID = 4,data_len=0x40][Receive data]:\n0x")) << text_;
    EXPECT_FALSE(says("Release TEEC semaphore!!"));
    EXPECT_TRUE(says("Recevied nothing from  TA and timeout(3s)!"));
    EXPECT_EQ(deviceState(), "");
}

/** A program of its own on a session. */
struct Client {
    struct Answer {
        uint32_t cmdId;
        uint32_t more;
        std::vector<uint8_t> payload;
        bool behindHeader;
    };
    std::vector<Answer> answers;

    static void receive(uint32_t, void* userData, QLX_TEECCommand* command) {
        Client* client = static_cast<Client*>(userData);
        client->answers.push_back({command->cmdId,
                                   command->more,
                                   {command->data, command->data + command->dataLength},
                                   command->data == reinterpret_cast<uint8_t*>(command + 1)});
    }
};

/** One record of `cmdId` with a payload. */
std::vector<uint8_t> record(uint32_t cmdId, uint32_t more, const std::vector<uint8_t>& payload) {
    QLX_TEECCommand header{cmdId, static_cast<uint32_t>(payload.size()), nullptr, more};
    std::vector<uint8_t> bytes(sizeof header);
    memcpy(bytes.data(), &header, sizeof header);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

int32_t send(uint32_t taId, std::vector<uint8_t> message) {
    const void* first = message.data();
    int32_t code = QLX_TEECTransData(taId, static_cast<const QLX_TEECCommand*>(first));
    // The transport has its own copy.
    std::fill(message.begin(), message.end(), 0xEE);
    return code;
}

class TeecDevice : public testing::Test {
 protected:
    void openSession(uint32_t taId) {
        ASSERT_EQ(QLX_TEECOpen(taId), 0);
        ASSERT_EQ(QLX_TEECRegisterCallback(taId, Client::receive, &client_), 0);
    }

    BenchFolder bench_;
    Client client_;
};

TEST_F(TeecDevice, AnswersOncePerRecordInOrder) {
    ASSERT_EQ(QLX_TEECInit(), 0);
    openSession(3);
    std::vector<uint8_t> message = record(5, 1, {0, 1, 0xFE});
    // A payload of odd length leaves the next header unaligned.
    for (const auto& next : {record(2, 1, {9}), record(4, 1, {7, 7}), record(99, 1, {}),
                             record(3, 0, std::vector<uint8_t>(64, 0x5A))})
        message.insert(message.end(), next.begin(), next.end());
    ASSERT_EQ(send(3, message), 0);
    EXPECT_TRUE(client_.answers.empty());
    sleep(1);
    ASSERT_EQ(client_.answers.size(), 4u);
    EXPECT_EQ(client_.answers[0].payload, (std::vector<uint8_t>{1, 0, 0xFF}));
    EXPECT_TRUE(client_.answers[0].behindHeader);
    EXPECT_EQ(client_.answers[1].payload, (std::vector<uint8_t>{9}));
    EXPECT_EQ(client_.answers[2].cmdId, 4u);
    EXPECT_TRUE(client_.answers[2].payload.empty());
    EXPECT_EQ(client_.answers[3].payload, std::vector<uint8_t>(64, 0x5A));
    EXPECT_EQ(client_.answers[3].more, 0u);
}

TEST_F(TeecDevice, ADeadApplicationComesBackWithItsSession) {
    ASSERT_EQ(QLX_TEECInit(), 0);
    openSession(0);
    openSession(1);
    // What is still to be answered dies with it; others live on.
    ASSERT_EQ(send(0, record(1, 0, {1})), 0);
    ASSERT_EQ(send(1, record(1, 0, {2})), 0);
    ASSERT_EQ(send(0, record(7, 0, {3})), 0);
    sleep(1);
    ASSERT_EQ(client_.answers.size(), 1u);
    EXPECT_EQ(client_.answers[0].payload, (std::vector<uint8_t>{2}));
    EXPECT_EQ(send(0, record(1, 0, {4})), QLX_TEEC_ERR_TA_DEAD);
    EXPECT_EQ(QLX_TEECOpen(0), 0);
    EXPECT_EQ(send(0, record(1, 0, {4})), QLX_TEEC_ERR_TA_DEAD);
    EXPECT_EQ(QLX_TEECUnRegisterCallback(0, Client::receive), 0);
    EXPECT_EQ(QLX_TEECClose(0), 0);
    openSession(0);
    EXPECT_EQ(send(0, record(1, 0, {5})), 0);
    sleep(1);
    ASSERT_EQ(client_.answers.size(), 2u);
    EXPECT_EQ(client_.answers[1].payload, (std::vector<uint8_t>{5}));
}

TEST_F(TeecDevice, NothingComesAfterUnregisterCloseOrDeInit) {
    for (int way = 0; way < 3; way++) {
        ASSERT_EQ(QLX_TEECInit(), 0);
        openSession(2);
        ASSERT_EQ(send(2, record(1, 0, {1})), 0);
        if (way == 0) {
            EXPECT_EQ(QLX_TEECUnRegisterCallback(2, Client::receive), 0);
        }
        if (way == 1) {
            EXPECT_EQ(QLX_TEECClose(2), 0);
        }
        EXPECT_EQ(QLX_TEECDeInit(), 0);
        sleep(1);
        EXPECT_TRUE(client_.answers.empty());
    }
}

TEST_F(TeecDevice, RefusesCallsInTheWrongOrder) {
    EXPECT_EQ(QLX_TEECOpen(0), QLX_TEEC_ERR_NOT_INIT);
    EXPECT_EQ(QLX_TEECClose(0), QLX_TEEC_ERR_NOT_INIT);
    EXPECT_EQ(send(0, record(1, 0, {1})), QLX_TEEC_ERR_NOT_INIT);
    EXPECT_EQ(QLX_TEECDeInit(), 0);
    ASSERT_EQ(QLX_TEECInit(), 0);
    ASSERT_EQ(QLX_TEECInit(), 0);
    EXPECT_EQ(QLX_TEECOpen(4), QLX_TEEC_ERR_INVALID_PARA);
    EXPECT_EQ(send(0, record(1, 0, {1})), QLX_TEEC_ERR_NOT_OPEN);
    EXPECT_EQ(QLX_TEECRegisterCallback(0, Client::receive, nullptr), QLX_TEEC_ERR_NOT_OPEN);
    openSession(0);
    EXPECT_EQ(QLX_TEECRegisterCallback(0, nullptr, nullptr), QLX_TEEC_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TEECUnRegisterCallback(1, Client::receive), QLX_TEEC_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TEECTransData(0, nullptr), QLX_TEEC_ERR_INVALID_PARA);
    // A length that the memory behind it does not have must not be followed.
    QLX_TEECCommand endless{1, 0xFFFFFFF0u, nullptr, 0};
    EXPECT_EQ(QLX_TEECTransData(0, &endless), QLX_TEEC_ERR_INVALID_PARA);
    std::vector<uint8_t> message;
    for (int i = 0; i < 17; i++) {
        auto next = record(1, i < 16, {});
        message.insert(message.end(), next.begin(), next.end());
    }
    EXPECT_EQ(send(0, message), QLX_TEEC_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TEECDeInit(), 0);
    EXPECT_EQ(deviceState(), "");
}

}  // namespace
