#include "testcase/record/record_output.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

#include <memory>

#include "framework/base/zk_log.h"
#include "platform/qlx_crypto.h"

// A recording grows beyond 2 GiB, also on a device of 32 bits.
static_assert(sizeof(off_t) == 8, "build with _FILE_OFFSET_BITS=64");

enum {
    REC_PACKET_SIZE = 192,
    /** Where the sync byte stands in a packet with its time stamp. */
    REC_SYNC_PLACE = 4,
    REC_SYNC_BYTE = 0x47,
    REC_CHECKED_PACKETS = 16,
    REC_CHECKED_SIZE = REC_CHECKED_PACKETS * REC_PACKET_SIZE,
    REC_ENOUGH_EVENTS = 4,
    REC_NAME_SIZE = 256,
    LIVENESS_PERIOD_US = 500000,
    GROWTH_WAKE_US = 100000,
    /** Wake-ups from look to look, and where their count begins anew. */
    GROWTH_LOOK = 20,
    GROWTH_WRAP = 6000,
};

uint32_t g_recHandles[QLX_DEMUX_NUM_MAX];
FILE* gp_tsFileHdl[QLX_DEMUX_NUM_MAX];
FILE* gp_indxFileHdl[QLX_DEMUX_NUM_MAX];
uint8_t cbUserData[32];
std::atomic<uint32_t> bRecordEncrypt;
uint32_t bRecordStoreDisk;
RecTsCount g_recordTS;
std::atomic<uint32_t> ischeckingData;
std::atomic<uint32_t> noDataFlag;
std::atomic<uint32_t> resultHasData;
RecFileSizeData g_fileSizeData;

/** Of the open files, kept for their deletion. */
static char tsName[QLX_DEMUX_NUM_MAX][REC_NAME_SIZE];
static char indexName[QLX_DEMUX_NUM_MAX][REC_NAME_SIZE];
/** A file that could not be written gets nothing more, so that what it has stays whole. */
static std::atomic<bool> writeFailed[QLX_DEMUX_NUM_MAX];

static uint32_t slotOf(uint32_t recHandle) {
    uint32_t slot = 0;
    while (slot < QLX_DEMUX_NUM_MAX && g_recHandles[slot] != recHandle)
        slot++;
    return slot;
}

// The callbacks.

uint32_t Encrypt(const uint8_t* pSource, uint8_t* pTarget, uint32_t uLen, uint32_t* pResultLength) {
    static const uint8_t key[16] = {0x52, 0x45, 0x43, 0x4F, 0x52, 0x44, 0x20, 0x54,
                                    0x45, 0x53, 0x54, 0x20, 0x4B, 0x45, 0x59, 0x31};
    if (pSource == nullptr || pTarget == nullptr || pResultLength == nullptr) {
        printf("\n\n==>[%s() %d]I:Wrong input param!.\n", __func__, __LINE__);
        return 1;
    }
    QLX_CryptoCtrl stParameters = {};
    stParameters.key = key;
    stParameters.keyLength = sizeof key;
    *pResultLength = uLen;
    if (QLX_CryptoEncrypt(pSource, pTarget, uLen, pResultLength, &stParameters) == QLX_FAILED)
        printf("\n\n==>[%s() %d]I:QLX_CryptoEncrypt failed!.\n", __func__, __LINE__);
    printf("\n\n==>[%s() %d]I:Encrypt len:%d.\n", __func__, __LINE__,
           static_cast<int>(*pResultLength));
    return 0;
}

static void writeRecorded(uint32_t slot, const uint8_t* data, uint32_t size) {
    FILE* file = gp_tsFileHdl[slot];
    if (file == nullptr || writeFailed[slot])
        return;
    if (fwrite(data, 1, size, file) == size && fflush(file) == 0)
        return;
    printf("\n\n==>[%s() %d]E:Fail to write ts file:%s, error:%s.\n", __func__, __LINE__,
           tsName[slot], strerror(errno));
    writeFailed[slot] = true;
}

int32_t TestCaseTSCallback(uint32_t hRecord, uint32_t eEvent, uint8_t* pTsData, uint32_t uLen,
                           void* pUserData) {
    if (ischeckingData != 0) {
        noDataFlag = 0;
        printf("\n\n==>[%s() %d]I:TS data received while checking, len:%d.\n", __func__, __LINE__,
               static_cast<int>(uLen));
        return 0;
    }
    if (pTsData == nullptr || pUserData != cbUserData) {
        printf("\n\n==>[%s() %d]I:pTsData = NULL || pUserData != origin pUserData\n", __func__,
               __LINE__);
        return 1;
    }
    g_recordTS.recordTSCount++;
    if (g_recordTS.recordTSCount == REC_ENOUGH_EVENTS) {
        g_recordTS.bEnough = 1;
        printf("\n\n==>[%s() %d]I:g_recordTS.recordTSCount:%d\n", __func__, __LINE__,
               static_cast<int>(g_recordTS.recordTSCount));
    }
    const uint32_t slot = slotOf(hRecord);
    printf("\n\n==>[%s() %d]I:demux%d TS data received, event:%d, len:%d.\n", __func__, __LINE__,
           static_cast<int>(slot), static_cast<int>(eEvent), static_cast<int>(uLen));
    if (slot == QLX_DEMUX_NUM_MAX)
        return 1;
    uint32_t resultLength = 0;
    const std::unique_ptr<uint8_t, decltype(&free)> work(
        static_cast<uint8_t*>(bRecordEncrypt == 1 ? malloc(uLen) : nullptr), free);
    if (work != nullptr && Encrypt(pTsData, work.get(), uLen, &resultLength) == 0)
        writeRecorded(slot, work.get(), resultLength);
    else
        writeRecorded(slot, pTsData, uLen);
    return 0;
}

int32_t TestCaseIndexCallback(uint32_t, uint32_t, const QLX_RecordIndex*, uint32_t, void*) {
    return 0;
}

int32_t RecRegister(uint32_t recHandle) {
    const QLX_RecordCallbacks stCallbacks = {TestCaseTSCallback, cbUserData, TestCaseIndexCallback,
                                             cbUserData + 16};
    return QLX_RecordRegisterCb(recHandle, &stCallbacks);
}

int32_t RecUnregister(uint32_t recHandle) {
    const QLX_RecordCallbacks stCallbacks = {TestCaseTSCallback, nullptr, TestCaseIndexCallback,
                                             nullptr};
    return QLX_RecordUnRegisterCb(recHandle, &stCallbacks);
}

// The files.

uint32_t OpenRecFile(uint32_t recHandle, const char* record_file) {
    const uint32_t slot = slotOf(recHandle);
    if (slot == QLX_DEMUX_NUM_MAX)
        return 0;
    if (record_file != nullptr) {
        snprintf(tsName[slot], sizeof tsName[slot], "%s", record_file);
    } else {
        snprintf(tsName[slot], sizeof tsName[slot], "%stestRec.ts",
                 bRecordStoreDisk == 1 ? "/mnt/" : "/OAD/");
        bRecordStoreDisk = 0;
    }
    // A name that is too long is cut, and then cannot be opened under what is left of it.
    if (snprintf(indexName[slot], sizeof indexName[slot], "%.*s.idx", REC_NAME_SIZE - 5,
                 tsName[slot]) < 0)
        return 1;
    zk_log("=================start record ( demux  %d )==================\n",
           static_cast<int>(slot));
    writeFailed[slot] = false;
    gp_tsFileHdl[slot] = fopen(tsName[slot], "wb+");
    if (gp_tsFileHdl[slot] == nullptr) {
        printf("\n\n==>[%s() %d]E:Fail to open ts file:%s, error:%s.\n", __func__, __LINE__,
               tsName[slot], strerror(errno));
        CloseRecFile(0);
        return 1;
    }
    gp_indxFileHdl[slot] = fopen(indexName[slot], "wb+");
    if (gp_indxFileHdl[slot] == nullptr) {
        printf("\n\n==>[%s() %d]E:Fail to open index file:%s, error:%s.\n", __func__, __LINE__,
               indexName[slot], strerror(errno));
        CloseRecFile(0);
        return 1;
    }
    return 0;
}

static void closeOne(FILE** file, char* name, const char* kind, uint32_t bDelete) {
    if (*file != nullptr)
        fclose(*file);
    *file = nullptr;
    if (bDelete != 0 && name[0] != '\0')
        zk_log("Delete %s file %s!\n", kind, remove(name) == 0 ? "success" : "fail");
    name[0] = '\0';
}

uint32_t CloseRecFile(uint32_t bDelete) {
    for (uint32_t slot = 0; slot < QLX_DEMUX_NUM_MAX; slot++) {
        closeOne(&gp_tsFileHdl[slot], tsName[slot], "ts", bDelete);
        closeOne(&gp_indxFileHdl[slot], indexName[slot], "index", bDelete);
    }
    return 0;
}

// The checks.

/** How many of the packets at the head of `data` begin with their sync byte where it belongs. */
static int packetsInPlace(const uint8_t* data) {
    int count = 0;
    while (count < REC_CHECKED_PACKETS &&
           data[REC_SYNC_PLACE + count * REC_PACKET_SIZE] == REC_SYNC_BYTE)
        count++;
    return count;
}

static void readChecked(FILE* file, uint8_t* data) {
    const size_t size = fread(data, 1, REC_CHECKED_SIZE, file);
    if (size < REC_CHECKED_SIZE)
        zk_log("Something's wrong on reading from ts file(%d bytes)!\n", static_cast<int>(size));
}

uint32_t CheckPacketSize(void) {
    uint8_t data[REC_CHECKED_SIZE] = {};
    FILE* file = gp_tsFileHdl[0];
    if (file == nullptr) {
        zk_log("gp_tsFileHdl is NULL!\n");
        return 1;
    }
    // The callback writes meanwhile, behind what it has written.
    flockfile(file);
    const off_t place = ftello(file);
    fseeko(file, 0, SEEK_SET);
    readChecked(file, data);
    fseeko(file, place, SEEK_SET);
    funlockfile(file);
    if (packetsInPlace(data) < REC_CHECKED_PACKETS) {
        zk_log("Recording packet size is not 192!\n");
        return 1;
    }
    zk_log("Recording packet size is 192!\n");
    return 0;
}

uint32_t CheckEncryption(void) {
    uint8_t data[REC_CHECKED_SIZE] = {};
    FILE* file = gp_tsFileHdl[0];
    if (file == nullptr) {
        zk_log("gp_tsFileHdl is NULL!\n");
        return 1;
    }
    flockfile(file);
    const off_t place = ftello(file);
    readChecked(file, data);
    fseeko(file, place, SEEK_SET);
    funlockfile(file);
    if (packetsInPlace(data) < REC_CHECKED_PACKETS) {
        zk_log("Recording seems to be encrypted!\n");
        return 0;
    }
    zk_log("Recording seems not to be encrypted!\n");
    return 1;
}

uint32_t CheckTimestamp(void) {
    FILE* file = gp_tsFileHdl[0];
    if (file == nullptr) {
        zk_log("gp_tsFileHdl is NULL!\n");
        return 1;
    }
    fseeko(file, 0, SEEK_END);
    const off_t size = ftello(file);
    const int times = static_cast<int>(size / REC_PACKET_SIZE);
    printf("\n\n==>[%s() %d]I:file size = %lld\uff0c times = %d\n", __func__, __LINE__,
           static_cast<long long>(size), times);
    fseeko(file, 0, SEEK_SET);
    uint8_t packet[REC_PACKET_SIZE];
    int32_t prev = 0;
    for (int loop = 0; loop < times; loop++) {
        if (fread(packet, 1, sizeof packet, file) != sizeof packet) {
            zk_log("Something's wrong on reading from ts file(%d bytes)!\n", 0);
            return 1;
        }
        const auto cur = static_cast<int32_t>(uint32_t{packet[0]} << 24 | packet[1] << 16 |
                                              packet[2] << 8 | packet[3]);
        if (loop % 200 <= 1)
            printf("\n\n==>[%s() %d]I:loop[%d], times[%d], cur[%x], prev[%x]\n", __func__, __LINE__,
                   loop, times, cur, prev);
        if (loop > 0 && cur < prev) {
            printf(
                "\n\n==>[%s() %d]E:timestamp is not increasing. loop[%d], times[%d], cur[%x], "
                "prev[%x]\n",
                __func__, __LINE__, loop, times, cur, prev);
            return 1;
        }
        prev = cur;
    }
    return 0;
}

void* CheckTsCallBackDataThread(void*) {
    while (ischeckingData != 0) {
        usleep(LIVENESS_PERIOD_US);
        if (noDataFlag == 0) {
            noDataFlag = 1;
            printf(
                "\n\n==>[%s() %d]I: has data, reset noDataFlag.noDataFlag = %d, resultHasData = "
                "%d.\n",
                __func__, __LINE__, static_cast<int>(noDataFlag), static_cast<int>(resultHasData));
        } else if (ischeckingData != 0) {
            resultHasData = 0;
            ischeckingData = 0;
        }
    }
    return nullptr;
}

void* FileSizeThread(void* file) {
    uint32_t wakeUps = 0;
    while (g_fileSizeData.bStop == 0) {
        usleep(GROWTH_WAKE_US);
        wakeUps = (wakeUps + 1) % GROWTH_WRAP;
        if (wakeUps % GROWTH_LOOK != 0 || g_fileSizeData.bStop != 0)
            continue;
        const int64_t recFileSizeBefore = g_fileSizeData.recFileSize;
        g_fileSizeData.recFileSize = ftello(static_cast<FILE*>(file));
        if (recFileSizeBefore >= g_fileSizeData.recFileSize) {
            g_fileSizeData.bNotGrowing = 1;
            zk_log(
                "+++++++++++++++++++++RecFileSizeBefore >= "
                "g_fileSizeData.recFileSize+++++++++++++=\n");
            break;
        }
    }
    return nullptr;
}
