/*
 * What a recording leaves: a file for each demultiplexer, which the recorder's callback writes, and
 * the checks of it. The console thread opens, checks and closes; the library's thread writes.
 */
#ifndef TESTCASE_RECORD_RECORD_OUTPUT_H
#define TESTCASE_RECORD_RECORD_OUTPUT_H

#include <stdint.h>
#include <stdio.h>

#include <atomic>

#include "platform/qlx_demux.h"
#include "platform/qlx_record.h"

/** The open handle of each demultiplexer; 0 without one. */
extern uint32_t g_recHandles[QLX_DEMUX_NUM_MAX];
extern FILE* gp_tsFileHdl[QLX_DEMUX_NUM_MAX];
extern FILE* gp_indxFileHdl[QLX_DEMUX_NUM_MAX];

/** User data of the data callback; that of the index callback lies 16 bytes behind it. */
extern uint8_t cbUserData[32];

/** Encrypt what is recorded. */
extern std::atomic<uint32_t> bRecordEncrypt;
/** The next file goes to the removable disk. */
extern uint32_t bRecordStoreDisk;

/** Reports of data since the start. */
struct RecTsCount {
    std::atomic<uint32_t> recordTSCount;
    /** Four or more have come. */
    std::atomic<uint32_t> bEnough;
};
extern RecTsCount g_recordTS;

/** While data are only watched: the flag that no data came since the last look, and the result. */
extern std::atomic<uint32_t> ischeckingData;
extern std::atomic<uint32_t> noDataFlag;
extern std::atomic<uint32_t> resultHasData;

/** Of the thread that looks whether a file grows. */
struct RecFileSizeData {
    std::atomic<uint32_t> bStop;
    std::atomic<uint32_t> bNotGrowing;
    int64_t recFileSize;
};
extern RecFileSizeData g_fileSizeData;

/** The recorder's callbacks. Data under another user data pointer are refused; the index is not
 *  kept. */
int32_t TestCaseTSCallback(uint32_t hRecord, uint32_t eEvent, uint8_t* pTsData, uint32_t uLen,
                           void* pUserData);
int32_t TestCaseIndexCallback(uint32_t hRecord, uint32_t eEvent, const QLX_RecordIndex* pIndex,
                              uint32_t uLen, void* pUserData);

/** Registers them on a recorder, and takes them away again. The library's answer. */
int32_t RecRegister(uint32_t recHandle);
int32_t RecUnregister(uint32_t recHandle);

/**
 * Encrypts a buffer by the library, under a fixed key.
 * @param pTarget        has room for `uLen` bytes
 * @param pResultLength  receives the bytes written
 * @return 1 for a null pointer; else 0, also when the library refuses
 */
uint32_t Encrypt(const uint8_t* pSource, uint8_t* pTarget, uint32_t uLen, uint32_t* pResultLength);

/**
 * Opens the files of a handle in g_recHandles.
 * @param record_file  path of the recording; its index is that with ".idx". Null: "testRec.ts" on
 *                     the disk below /mnt/ if bRecordStoreDisk is 1, which is cleared, or in /OAD/
 * @return 0, also for a handle that is not there; 1 with a message when a file cannot be opened,
 *         and none is open then
 */
uint32_t OpenRecFile(uint32_t recHandle, const char* record_file);
/** Closes the files of all demultiplexers, and removes them if `bDelete`. Always 0. */
uint32_t CloseRecFile(uint32_t bDelete);

/* Checks of the file of demultiplexer 0: 0 or 1, with a line on the console. */

/** Sixteen packets of 192 bytes stand at its start. Where writing goes on stays as it was. */
uint32_t CheckPacketSize(void);
/** At the place where writing goes on there are no packets of 192 bytes. */
uint32_t CheckEncryption(void);
/** The time stamps never fall; as signed numbers of 32 bits. */
uint32_t CheckTimestamp(void);

/** Thread bodies. The first looks every 500 ms whether data came, until they did not or
 *  ischeckingData is cleared; the second every two seconds whether the file that is its argument
 *  has grown, until it has not or is stopped. */
void* CheckTsCallBackDataThread(void* unused);
void* FileSizeThread(void* file);

#endif
