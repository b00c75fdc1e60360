// TEEC: sessions with a trusted application (TA) and a loopback of command records. A case sends
// records with random payloads; the TA's answers arrive on a thread of the library, where the
// callback compares them with what was sent and releases a semaphore. A wrong answer releases
// nothing, so that the case ends by its time-out.
#include <ctype.h>
#include <errno.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "framework/modules.h"
#include "framework/tc_check.h"
#include "platform/qlx_teec.h"

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
static uint8_t sg_u8CmdBuffer[CMD_DIE * SLOT_SIZE];
static const char* sg_pUserData = "This is TEE Client user data test";
/** Whether the first half of a pair has come back well; command 1 clears it. Used in the callback
 *  alone. */
static int32_t sg_s32FirstPartReceived;

static uint8_t* slotOf(uint32_t cmdId) {
    return sg_u8CmdBuffer + (cmdId - 1) * SLOT_SIZE;
}

static void printBytes(const uint8_t* data, uint32_t length) {
    flockfile(stdout);
    for (uint32_t i = 0; i < length; i++)
        printf("0x%02x,%s", data[i], i % 16 == 15 || i + 1 == length ? "\n" : "");
    funlockfile(stdout);
}

static void printRecord(const char* function, int line, const QLX_TEECCommand* record,
                        const char* what) {
    zk_log("\n[%s,%d][CMDID = %d,data_len=0x%x][%s]:\n", function, line,
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
static bool completes(const char* function, QLX_TEECCommand* record) {
    if (record->cmdId == CMD_HEADER_ONLY) {
        if (record->dataLength == 0 || record->data == nullptr)
            return true;
        printRecord(function, __LINE__, record, "Receive data");
        return false;
    }
    if (record->dataLength == 0 || record->data == nullptr)
        return false;
    bool single = record->cmdId == CMD_SINGLE;
    bool flipped = record->cmdId == CMD_FLIPPED_FIRST || record->cmdId == CMD_FLIPPED_SECOND;
    if (record->cmdId == CMD_FLIPPED_SECOND)
        record->data = reinterpret_cast<uint8_t*>(record + 1);
    printRecord(function, __LINE__, record, single ? "Rec Payload data" : "Receive data");
    if (flipped) {
        recoverData(record);
        printRecord(function, __LINE__, record, "Recover Received data");
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
    if (record == nullptr) {
        zk_log("[%s][%d]Invalid command!\n", __func__, __LINE__);
        return;
    }
    if (userData != nullptr)
        zk_log("pUsrData = %s\n", static_cast<const char*>(userData));
    if (record->cmdId >= CMD_SINGLE && record->cmdId <= CMD_FLIPPED_SECOND &&
        completes(__func__, record)) {
        zk_log("[%s,%d]Release TEEC semaphore!!\n", __func__, __LINE__);
        sem_post(&sg_steeSem);
    }
    zk_log("[%s][%d]--end\n", __func__, __LINE__);
}

static void _getPayload(uint8_t* payload, uint32_t length) {
    for (uint32_t i = 0; i < length; i++)
        payload[i] = static_cast<uint8_t>(random() % 255);
}

static int _semTimedWait(sem_t* semaphore, long seconds) {
    timespec deadline{};
    deadline.tv_sec = time(nullptr) + seconds;
    int waited;
    do
        waited = sem_timedwait(semaphore, &deadline);
    while (waited != 0 && errno == EINTR);
    return waited;
}

/** Waits for what the callback releases. */
static uint32_t waitForResponse() {
    zk_log("\nWait for TA's response ...\r\n");
    if (_semTimedWait(&sg_steeSem, ANSWER_TIMEOUT_S) != 0) {
        zk_log("Recevied nothing from  TA and timeout(%lds)! \r\n",
               static_cast<long>(ANSWER_TIMEOUT_S));
        return TC_FAILURE;
    }
    zk_log("Recevied TA's response! \r\n");
    return TC_SUCCESS;
}

/**
 * Sends one message of `count` records, at most two, each with `payloadLength` random bytes that
 * are kept in the commands' slots.
 * @param payloadLength  0 or SLOT_SIZE
 * @return TC_SUCCESS, or TC_FAILURE when the library refuses it
 */
static uint32_t sendCommands(const char* function, const uint32_t* cmdIds, uint32_t count,
                             uint32_t payloadLength) {
    const uint32_t recordSize = static_cast<uint32_t>(sizeof(QLX_TEECCommand)) + payloadLength;
    uint8_t* message = static_cast<uint8_t*>(malloc(count * recordSize));
    if (message == nullptr) {
        tc_fail(function, __LINE__, "expect %d, but actually %d  \n", 1, 0);
        return TC_FAILURE;
    }
    for (uint32_t i = 0; i < count; i++) {
        uint8_t* record = message + i * recordSize;
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
    printBytes(message, count * recordSize);
    // The heap aligns the first header, and sizes and slots are multiples of its alignment.
    const void* first = message;
    int32_t sent = QLX_TEECTransData(static_cast<uint32_t>(sg_eCtaId),
                                     static_cast<const QLX_TEECCommand*>(first));
    if (sent != QLX_SUCCESS)
        zk_log("\n[%s][%d]Ecp transport data failed.\n", function, __LINE__);
    free(message);
    return sent == QLX_SUCCESS ? TC_SUCCESS : TC_FAILURE;
}

/** Sends a message, and waits for its answer. */
static uint32_t exchange(const char* function, const uint32_t* cmdIds, uint32_t count,
                         uint32_t payloadLength) {
    if (sendCommands(function, cmdIds, count, payloadLength) != TC_SUCCESS)
        return TC_FAILURE;
    return waitForResponse();
}

static uint32_t exchangeSingle(const char* function) {
    const uint32_t cmdIds[] = {CMD_SINGLE};
    return exchange(function, cmdIds, 1, SLOT_SIZE);
}

static uint32_t exchangePair(const char* function) {
    const uint32_t cmdIds[] = {CMD_PAIR_FIRST, CMD_PAIR_SECOND};
    return exchange(function, cmdIds, 2, SLOT_SIZE);
}

/** Registers the callback. */
static bool registerCallback(const char* function, bool withUserData) {
    // clang-format off
    if (withUserData)
        return tc_checkRet(function, __LINE__,
            "QLX_TEECRegisterCallback(sg_eCtaId,_teecProcessRxCmds,sg_pUserData)",
            QLX_TEECRegisterCallback(static_cast<uint32_t>(sg_eCtaId), _teecProcessRxCmds,
                                     const_cast<char*>(sg_pUserData)));
    return tc_checkRet(function, __LINE__,
        "QLX_TEECRegisterCallback(sg_eCtaId,_teecProcessRxCmds,NULL)",
        QLX_TEECRegisterCallback(static_cast<uint32_t>(sg_eCtaId), _teecProcessRxCmds, nullptr));
    // clang-format on
}

/**
 * The frame of each case: opens the session, does the case's work, and closes. A step of the frame
 * that fails ends the case without a verdict line, after what had been opened is closed again.
 * @param function      the case's name
 * @param withUserData  whether the callback is registered with user data
 * @param work          the case's own part; null when the frame is all
 */
static uint32_t framed(const char* function, bool withUserData,
                       uint32_t (*work)(const char* function)) {
    uint32_t id = static_cast<uint32_t>(sg_eCtaId);
    if (!tc_checkRet(function, __LINE__, "QLX_TEECInit()", QLX_TEECInit()))
        return TC_FAILURE;
    uint32_t result = TC_SUCCESS;
    bool good = tc_checkRet(function, __LINE__, "QLX_TEECOpen(sg_eCtaId)", QLX_TEECOpen(id));
    if (good) {
        good = registerCallback(function, withUserData);
        if (good) {
            if (work != nullptr)
                result = work(function);
            good = tc_checkRet(function, __LINE__,
                               "QLX_TEECUnRegisterCallback(sg_eCtaId, _teecProcessRxCmds)",
                               QLX_TEECUnRegisterCallback(id, _teecProcessRxCmds));
        }
        good =
            tc_checkRet(function, __LINE__, "QLX_TEECClose(sg_eCtaId)", QLX_TEECClose(id)) && good;
    }
    good = tc_checkRet(function, __LINE__, "QLX_TEECDeInit()", QLX_TEECDeInit()) && good;
    return good ? tc_result(function, result) : static_cast<uint32_t>(TC_FAILURE);
}

static uint32_t TC_TEEC_Init_001(void) {
    zk_log(
        "Default TA is CIPLUS, if you want to change TA id, please run testcase TC_TEEC_Set_TA_Id "
        "first.\r\n");
    return framed(__func__, false, nullptr);
}

static uint32_t TC_TEEC_Transfer_Single_Cmd_Data(void) {
    return framed(__func__, false, exchangeSingle);
}

static uint32_t TC_TEEC_UsrData_test(void) {
    return framed(__func__, true, exchangeSingle);
}

static uint32_t TC_TEEC_Transfer_Multiple_Cmds_Data(void) {
    return framed(__func__, false, exchangePair);
}

/** A failed exchange does not keep the next one from being tried. */
static uint32_t exchangeSinglePairSingle(const char* function) {
    uint32_t result = exchangeSingle(function);
    if (exchangePair(function) != TC_SUCCESS)
        result = TC_FAILURE;
    if (exchangeSingle(function) != TC_SUCCESS)
        result = TC_FAILURE;
    return result;
}

static uint32_t TC_TEEC_Transfer_Single_And_Multiple_Cmds_Data(void) {
    return framed(__func__, false, exchangeSinglePairSingle);
}

static uint32_t exchangeHeader(const char* function) {
    const uint32_t cmdIds[] = {CMD_HEADER_ONLY};
    return exchange(function, cmdIds, 1, 0);
}

static uint32_t TC_TEEC_Transfer_Header_Cmd_Data_Only(void) {
    return framed(__func__, true, exchangeHeader);
}

static uint32_t exchangeFlippedPair(const char* function) {
    const uint32_t cmdIds[] = {CMD_FLIPPED_FIRST, CMD_FLIPPED_SECOND};
    return exchange(function, cmdIds, 2, SLOT_SIZE);
}

static uint32_t TC_TEEC_Transfer_Multiple_Cmds_Scrects_Data(void) {
    return framed(__func__, true, exchangeFlippedPair);
}

/** Reads lines until one begins with 'y' or 'n'. 1 for yes; 0 for no, and at the end of input. */
static int _waitYes() {
    char line[512];
    zk_logFlush();
    while (fgets(line, sizeof line, stdin) != nullptr) {
        int answer = tolower(static_cast<unsigned char>(line[0]));
        if (answer == 'y' || answer == 'n')
            return answer == 'y';
        zk_log("Your select is not correct!\n");
        zk_log("Please selcect Yes-'y' or NO- 'n'!\n");
        zk_logFlush();
    }
    return 0;
}

static uint32_t killAndAsk(const char* function) {
    const uint32_t cmdIds[] = {CMD_DIE};
    if (sendCommands(function, cmdIds, 1, SLOT_SIZE) != TC_SUCCESS)
        return TC_FAILURE;
    zk_log("\nPlease check if TA is dead? Yes-y or NO-n\r\n");
    if (_waitYes())
        zk_log("\nReopen TA session and retry to transfer data\r\n");
    else
        zk_log("\nExit this case!\r\n");
    return TC_SUCCESS;
}

static uint32_t TC_TEEC_TA_Resurrection(void) {
    return framed(__func__, false, killAndAsk);
}

static uint32_t TC_TEEC_Set_TA_Id(void) {
    uint32_t result = TC_SUCCESS;
    int32_t id = sg_eCtaId;
    zk_log("Please input int sg_eCtaId [0-3] default 0 \r\n");
    zk_logFlush();
    bool answered = scanf("%d", &id) == 1;
    TC_ASSERT_TRUE(answered);
    // What is no TA would make every later case of the visit fail.
    TC_ASSERT_TRUE(id >= 0 && id < QLX_TEEC_TA_COUNT);
    sg_eCtaId = id;
    return TC_RESULT(result);
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
static const TcCase TEECModuleCases[] = {
    //      case                                            flag    description
    TC_CASE(TC_TEEC_Init_001,                               AUTO,   "open and close the session of the TA"),
    TC_CASE(TC_TEEC_Transfer_Single_Cmd_Data,               AUTO,   "transfer the data of a single command"),
    TC_CASE(TC_TEEC_UsrData_test,                           MANUAL, "transfer a single command with user data for the callback"),
    TC_CASE(TC_TEEC_Transfer_Multiple_Cmds_Data,            AUTO,   "transfer the data of two commands in one message"),
    TC_CASE(TC_TEEC_Transfer_Single_And_Multiple_Cmds_Data, AUTO,   "transfer a single command, two commands, a single command"),
    TC_CASE(TC_TEEC_Transfer_Header_Cmd_Data_Only,          AUTO,   "transfer the header of a command without data"),
    TC_CASE(TC_TEEC_Transfer_Multiple_Cmds_Scrects_Data,    AUTO,   "transfer two commands whose data the TA transforms"),
    TC_CASE(TC_TEEC_TA_Resurrection,                        MANUAL, "let the TA die and open its session again"),
    TC_CASE(TC_TEEC_Set_TA_Id,                              MANUAL, "set the id of the TA under test"),
};
// clang-format on
static_assert(tcCaseCount(TEECModuleCases) == 9, "cases of the module");

const TcModule TEECModule = {
    testSetup,       testTeardown,
    nullptr,         nullptr,
    TEECModuleCases, tcCaseCount(TEECModuleCases),
    "TEEC",          "Test module for the TEEC",
    nullptr,
};
