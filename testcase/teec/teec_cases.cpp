// TEEC: sessions with a trusted application (TA) and a loopback of command records. A case sends
// records with random payloads; the TA's answers arrive on a thread of the library, where the
// callback compares them with what was sent and releases a semaphore. A wrong answer releases
// nothing, so that the case ends by its time-out.
#include <ctype.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <array>
#include <memory>
#include <new>

#include "framework/case/check.h"
#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "framework/case/wait.h"
#include "platform/qlx_teec.h"
#include "testcase/modules.h"

enum {
    /** Bytes of a payload, and of a slot in the buffer of what was sent. */
    SLOT_SIZE = 64,
    ANSWER_TIMEOUT_S = 3,
};

/** Commands; what the TA does with them is told at each. */
enum TeecCmd {
    /** Gives the payload back. */
    CMD_SINGLE = 1,
    /** The same for two records of one message. */
    CMD_PAIR_FIRST = 2,
    CMD_PAIR_SECOND = 3,
    /** Answers with a header alone. */
    CMD_HEADER_ONLY = 4,
    /** A pair whose payloads come back with the lowest bit of each byte flipped. */
    CMD_FLIPPED_FIRST = 5,
    CMD_FLIPPED_SECOND = 6,
    /** Dies. */
    CMD_DIE = 7,
};

/** The TA under test. */
static int32_t sg_eCtaId;
/** Released when the expected answer is complete. */
static sem_t sg_steeSem;
/** The payloads as sent, a slot for each command. Written before a send, then only read. */
static std::array<std::array<uint8_t, SLOT_SIZE>, CMD_DIE> sg_u8CmdBuffer;
static const char* sg_pUserData = "This is TEE Client user data test";
/** Whether the first half of a pair has come back well; command 1 clears it. Used in the callback
 *  alone. */
static int32_t sg_s32FirstPartReceived;

static uint8_t* slotOf(uint32_t cmdId) {
    return sg_u8CmdBuffer.at(cmdId - 1).data();
}

static void printBytes(const uint8_t* data, uint32_t length) {
    flockfile(stdout);
    for (uint32_t i = 0; i < length; i++)
        printf("0x%02x,%s", data[i], i % 16 == 15 || i + 1 == length ? "\n" : "");
    funlockfile(stdout);
}

static void printRecord(const CaseContext& tc, int line, const QLX_TEECCommand* record,
                        const char* what) {
    zk_log("\n[%s,%d][CMDID = %d,data_len=0x%x][%s]:\n", tc.name, line,
           static_cast<int>(record->cmdId), record->dataLength, what);
    printBytes(record->data, record->dataLength);
}

/** Whether the received bytes are those of a slot. */
static bool _checkReceivedData(const uint8_t* desBuf, uint32_t length, const uint8_t* srcBuf) {
    if (length != SLOT_SIZE)
        return false;
    for (uint32_t i = 0; i < length; i++) {
        if (desBuf[i] != srcBuf[i]) {
            zk_log("desBuf[%d]:%d != srcBuf[%d]:%d.\n", static_cast<int>(i), desBuf[i],
                   static_cast<int>(i), srcBuf[i]);
            return false;
        }
    }
    return true;
}

static void recoverData(QLX_TEECCommand* record) {
    for (uint32_t i = 0; i < record->dataLength; i++)
        record->data[i] ^= 1;
}

/** What an answer is good for: whether it completes what the case waits for. */
static bool completes(const CaseContext& tc, QLX_TEECCommand* record) {
    if (record->cmdId == CMD_HEADER_ONLY) {
        if (record->dataLength == 0 || record->data == nullptr)
            return true;
        printRecord(tc, __LINE__, record, "Receive data");
        return false;
    }
    if (record->dataLength == 0 || record->data == nullptr)
        return false;
    bool single = record->cmdId == CMD_SINGLE;
    bool flipped = record->cmdId == CMD_FLIPPED_FIRST || record->cmdId == CMD_FLIPPED_SECOND;
    if (record->cmdId == CMD_FLIPPED_SECOND)
        record->data = reinterpret_cast<uint8_t*>(record + 1);
    printRecord(tc, __LINE__, record, single ? "Rec Payload data" : "Receive data");
    if (flipped) {
        recoverData(record);
        printRecord(tc, __LINE__, record, "Recover Received data");
    }
    if (!_checkReceivedData(record->data, record->dataLength, slotOf(record->cmdId)))
        return false;
    bool first = record->cmdId == CMD_PAIR_FIRST || record->cmdId == CMD_FLIPPED_FIRST;
    bool complete = single || (!first && sg_s32FirstPartReceived != 0);
    if (single || first)
        sg_s32FirstPartReceived = first ? 1 : 0;
    return complete;
}

static void _teecProcessRxCmds(uint32_t, void* userData, QLX_TEECCommand* record) {
    const CaseContext tc = {__func__};
    if (record == nullptr) {
        zk_log("[%s][%d]Invalid command!\n", __func__, __LINE__);
        return;
    }
    if (userData != nullptr)
        zk_log("pUsrData = %s\n", static_cast<const char*>(userData));
    if (record->cmdId >= CMD_SINGLE && record->cmdId <= CMD_FLIPPED_SECOND &&
        completes(tc, record)) {
        zk_log("[%s,%d]Release TEEC semaphore!!\n", __func__, __LINE__);
        sem_post(&sg_steeSem);
    }
    zk_log("[%s][%d]--end\n", __func__, __LINE__);
}

static void _getPayload(uint8_t* payload, uint32_t length) {
    for (uint32_t i = 0; i < length; i++)
        payload[i] = static_cast<uint8_t>(random() % 255);
}

static bool _semTimedWait(sem_t* semaphore, long seconds) {
    timespec deadline{};
    deadline.tv_sec = time(nullptr) + seconds;
    return tc_waitSemUntil(semaphore, deadline);
}

/** Waits for what the callback releases. */
static bool waitForResponse(CaseContext& tc) {
    zk_log("\nWait for TA's response ...\r\n");
    if (_semTimedWait(&sg_steeSem, ANSWER_TIMEOUT_S)) {
        zk_log("Recevied TA's response! \r\n");
        return true;
    }
    zk_log("Recevied nothing from  TA and timeout(%lds)! \r\n",
           static_cast<long>(ANSWER_TIMEOUT_S));
    tc.result = TC_FAILURE;
    return false;
}

/**
 * Sends one message of `count` records, at most two, each with `payloadLength` random bytes that
 * are kept in the commands' slots.
 * @param payloadLength  0 or SLOT_SIZE
 * @return false when the library refuses it
 */
static bool sendCommands(CaseContext& tc, const uint32_t* cmdIds, uint32_t count,
                         uint32_t payloadLength) {
    const uint32_t recordSize = static_cast<uint32_t>(sizeof(QLX_TEECCommand)) + payloadLength;
    std::unique_ptr<uint8_t[]> message(new (std::nothrow) uint8_t[count * recordSize]);
    if (!TC_EXPECT_TRUE(message != nullptr))
        return false;
    for (uint32_t i = 0; i < count; i++) {
        uint8_t* record = message.get() + i * recordSize;
        uint8_t* payload = record + sizeof(QLX_TEECCommand);
        QLX_TEECCommand header{};
        header.cmdId = cmdIds[i];
        header.dataLength = payloadLength;
        header.data = payloadLength != 0 ? payload : nullptr;
        header.more = i + 1 < count ? 1 : 0;
        memcpy(record, &header, sizeof header);
        _getPayload(slotOf(cmdIds[i]), payloadLength);
        memcpy(payload, slotOf(cmdIds[i]), payloadLength);
    }
    zk_log("\n[Header + Payload]:\r\n");
    printBytes(message.get(), count * recordSize);
    // The heap aligns the first header, and sizes and slots are multiples of its alignment.
    const void* first = message.get();
    if (QLX_TEECTransData(static_cast<uint32_t>(sg_eCtaId),
                          static_cast<const QLX_TEECCommand*>(first)) == QLX_SUCCESS)
        return true;
    zk_log("\n[%s][%d]Ecp transport data failed.\n", tc.name, __LINE__);
    tc.result = TC_FAILURE;
    return false;
}

/** Sends a message, and waits for its answer. */
static bool exchange(CaseContext& tc, const uint32_t* cmdIds, uint32_t count,
                     uint32_t payloadLength) {
    return sendCommands(tc, cmdIds, count, payloadLength) && waitForResponse(tc);
}

// What the cases do with an open session. Each yields whether it went well; the verdict is noted.

static bool nothing(CaseContext&) {
    return true;
}

static bool exchangeSingle(CaseContext& tc) {
    const uint32_t cmdIds[] = {CMD_SINGLE};
    return exchange(tc, cmdIds, 1, SLOT_SIZE);
}

static bool exchangePair(CaseContext& tc) {
    const uint32_t cmdIds[] = {CMD_PAIR_FIRST, CMD_PAIR_SECOND};
    return exchange(tc, cmdIds, 2, SLOT_SIZE);
}

static bool exchangeSinglePairSingle(CaseContext& tc) {
    return exchangeSingle(tc) && exchangePair(tc) && exchangeSingle(tc);
}

static bool exchangeHeader(CaseContext& tc) {
    const uint32_t cmdIds[] = {CMD_HEADER_ONLY};
    return exchange(tc, cmdIds, 1, 0);
}

static bool exchangeFlippedPair(CaseContext& tc) {
    const uint32_t cmdIds[] = {CMD_FLIPPED_FIRST, CMD_FLIPPED_SECOND};
    return exchange(tc, cmdIds, 2, SLOT_SIZE);
}

/** Reads lines until one begins with 'y' or 'n'. 1 for yes; 0 for no, and at the end of input. */
static int _waitYes() {
    char line[512];
    while (tc_askLine(line, sizeof line)) {
        int answer = tolower(static_cast<unsigned char>(line[0]));
        if (answer == 'y' || answer == 'n')
            return answer == 'y';
        zk_log("Your select is not correct!\n");
        zk_log("Please selcect Yes-'y' or NO- 'n'!\n");
    }
    return 0;
}

static bool killAndAsk(CaseContext& tc) {
    const uint32_t cmdIds[] = {CMD_DIE};
    if (!sendCommands(tc, cmdIds, 1, SLOT_SIZE))
        return false;
    zk_log("\nPlease check if TA is dead? Yes-y or NO-n\r\n");
    if (_waitYes())
        zk_log("\nReopen TA session and retry to transfer data\r\n");
    else
        zk_log("\nExit this case!\r\n");
    return true;
}

/** How a case registers the callback. */
struct Session {
    uint32_t id;
    bool withUserData;
};

static bool isPlain(const Session& session) {
    return !session.withUserData;
}

static bool hasUserData(const Session& session) {
    return session.withUserData;
}

// clang-format off
#define UNREGISTER \
    LADDER_CALL("QLX_TEECUnRegisterCallback(sg_eCtaId, _teecProcessRxCmds)", QLX_TEECUnRegisterCallback(bench.id, _teecProcessRxCmds))
static const LadderStep<Session> sessionSteps[] = {
    {LADDER_CALL("QLX_TEECInit()", QLX_TEECInit()),
     LADDER_CALL("QLX_TEECDeInit()", QLX_TEECDeInit())},
    {LADDER_CALL("QLX_TEECOpen(sg_eCtaId)", QLX_TEECOpen(bench.id)),
     LADDER_CALL("QLX_TEECClose(sg_eCtaId)", QLX_TEECClose(bench.id))},
    {LADDER_CALL("QLX_TEECRegisterCallback(sg_eCtaId,_teecProcessRxCmds,NULL)", QLX_TEECRegisterCallback(bench.id, _teecProcessRxCmds, nullptr)),
     UNREGISTER, UNDO_CHECKED, isPlain},
    {LADDER_CALL("QLX_TEECRegisterCallback(sg_eCtaId,_teecProcessRxCmds,sg_pUserData)", QLX_TEECRegisterCallback(bench.id, _teecProcessRxCmds, const_cast<char*>(sg_pUserData))),
     UNREGISTER, UNDO_CHECKED, hasUserData},
};
#undef UNREGISTER
// clang-format on

/** The frame of each case. A step of it that fails ends the case without a verdict line, after what
 *  was opened is closed again. */
static uint32_t framed(const char* name, bool withUserData, bool (*work)(CaseContext& tc)) {
    CaseContext tc = {name};
    Session session = {static_cast<uint32_t>(sg_eCtaId), withUserData};
    Ladder<Session> ladder(tc, session, sessionSteps);
    bool good = ladder.up();
    if (good)
        work(tc);
    good = ladder.down() && good;
    return good ? TC_RESULT(tc) : static_cast<uint32_t>(TC_FAILURE);
}

static uint32_t initBase(const char* name) {
    zk_log(
        "Default TA is CIPLUS, if you want to change TA id, please run testcase TC_TEEC_Set_TA_Id "
        "first.\r\n");
    return framed(name, false, nothing);
}

static uint32_t setTaIdBase(const char* name) {
    CaseContext tc = {name};
    int32_t id = sg_eCtaId;
    zk_log("Please input int sg_eCtaId [0-3] default 0 \r\n");
    bool answered = tc_askNumber(&id) == PROMPT_NUMBER;
    TC_ASSERT_TRUE(answered);
    // Whatever it is: to which applications it has a channel is the library's to say.
    sg_eCtaId = id;
    return TC_RESULT(tc);
}

static uint32_t testSetup(void) {
    zk_log("setup all resources ! \r\n");
    // A visit does not begin with half a pair of the last one.
    sg_s32FirstPartReceived = 0;
    return sem_init(&sg_steeSem, 0, 0) == 0 ? 0 : 1;
}

static uint32_t testTeardown(void) {
    zk_log("release all resources ! \r\n");
    sem_destroy(&sg_steeSem);
    return 0;
}

// clang-format off
#define TEEC_VARIANTS(X) \
    /* case                                           flag    description                                                    body */ \
    X(TC_TEEC_Init_001,                               AUTO,   "open and close the session of the TA",                        initBase(__func__)) \
    X(TC_TEEC_Transfer_Single_Cmd_Data,               AUTO,   "transfer the data of a single command",                       framed(__func__, false, exchangeSingle)) \
    X(TC_TEEC_UsrData_test,                           MANUAL, "transfer a single command with user data for the callback",   framed(__func__, true,  exchangeSingle)) \
    X(TC_TEEC_Transfer_Multiple_Cmds_Data,            AUTO,   "transfer the data of two commands in one message",            framed(__func__, false, exchangePair)) \
    X(TC_TEEC_Transfer_Single_And_Multiple_Cmds_Data, AUTO,   "transfer a single command, two commands, a single command",   framed(__func__, false, exchangeSinglePairSingle)) \
    X(TC_TEEC_Transfer_Header_Cmd_Data_Only,          AUTO,   "transfer the header of a command without data",               framed(__func__, true,  exchangeHeader)) \
    X(TC_TEEC_Transfer_Multiple_Cmds_Scrects_Data,    AUTO,   "transfer two commands whose data the TA transforms",          framed(__func__, true,  exchangeFlippedPair)) \
    X(TC_TEEC_TA_Resurrection,                        MANUAL, "let the TA die and open its session again",                   framed(__func__, false, killAndAsk)) \
    X(TC_TEEC_Set_TA_Id,                              MANUAL, "set the id of the TA under test",                             setTaIdBase(__func__))
TEEC_VARIANTS(TC_VARIANT_FUNCTION)

static constexpr TcCase TEECModuleCases[] = {
    TEEC_VARIANTS(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(TEECModuleCases) == 9 && tcAutoCount(TEECModuleCases) == 6,
              "cases of the module, and those that run by themselves");

const TcModule TEECModule = {
    testSetup,       testTeardown,
    nullptr,         nullptr,
    TEECModuleCases, tcCaseCount(TEECModuleCases),
    "TEEC",          "Test module for the TEEC",
    nullptr,
};
