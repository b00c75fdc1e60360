/*
 * Injections: a recording's file, fed block by block into a demultiplexer while the decoders play
 * it.
 *
 * A chain is an injector that is open and started, a thread that feeds it, and decoders and outputs
 * that play. InjTestWriteDataBegin brings it up on what DmxInj_CaseSetup leaves, and takes it down
 * again on a failure; InjTestWriteDataFinish ends it. One chain at a time; console thread.
 */
#ifndef TESTCASE_DMX_INJECT_INJECT_HARNESS_H
#define TESTCASE_DMX_INJECT_INJECT_HARNESS_H

#include <semaphore.h>
#include <stdint.h>
#include <stdio.h>

#include <atomic>

#include "environment/test_env.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_dmxinject.h"

enum {
    INJ_PATH_SIZE = 120,
    /** Bytes of a block. */
    INJ_BLOCK_SIZE = 0x18000,
};

struct stInjectParams {
    char recorder_sd_ts_file[INJ_PATH_SIZE];
    char recorder_hd_ts_file[INJ_PATH_SIZE];
    char recorder_multi_ts_file[INJ_PATH_SIZE];
    char byte_unalign_ts_file[INJ_PATH_SIZE];
    /** A seek test still waits for QLX_EVENT_AUDIO_INFO_CHANGE. */
    uint32_t bAudioEvent;
    /** The count of displayed frames did not change. */
    uint32_t bFrameCount;
};
extern stInjectParams g_stInjectParams;

/** The feature table, by ZkFeature. */
extern const int32_t* tcInjectFeature;

/** The open injector; 0 outside of a chain. */
extern uint32_t g_injectHdl;

/** Feed by SeekInjectThread. */
extern uint32_t g_testSeek;
enum InjSeekDirection {
    INJ_SEEK_NONE = 0,
    INJ_SEEK_REWIND = 1,
    INJ_SEEK_FASTFORWARD = 2,
};
/** What that thread does next, and the offset in the file that it goes to. */
extern std::atomic<uint32_t> g_seekDirection;
extern std::atomic<int64_t> g_seekInterval;
/** Bytes of the file that is fed. */
extern int64_t g_fileSize;
/** The next feed begins a block behind the file's beginning. */
extern uint32_t g_beginAtPosition;
/** Ends SeekThread, which moves the place that is read on by a block from time to time. */
extern std::atomic<uint32_t> g_bSeekExit;

/** Hooks of the module, and around each case: demultiplexers, decoders and outputs up, on recorded
 *  data. */
uint32_t DmxInj_TestSetup(void);
uint32_t DmxInj_TestTeardown(void);
uint32_t DmxInj_CaseSetup(const char* caseName, const char* configFile);
uint32_t DmxInj_CaseTeardown(void);

/** Reads section DMXINJECT; a file without a key has its usual name. Always 0. */
int32_t load_dmxinjec_params(void);
void show_dmxinjec_params(void);

/** Receiver of the injector's events, on the library's thread. */
int32_t DmxInject_Callback(uint32_t hInject, uint32_t eEvent, void* pUserData);

/** Opens a file and starts the thread that feeds it. 0; 1 when there is no such file. */
uint32_t BeginInject(uint32_t hInject, const char* pFile);
/**
 * Ends the feeding.
 * @param bWaitDone  1: waits until everything has been played, for ever
 * @return 1 when that has been told before, or will not be; or when a seek test has not seen what
 * it was to see. The thread has ended and the file is closed in any case.
 */
uint32_t FinishInject(uint32_t hInject, uint32_t bWaitDone);

/**
 * Brings a chain up.
 * @param uAudioIndex     which sound of the channel is played
 * @param pFile           null: the SD file
 * @param pstChannelInfo  what to play instead of channel 0 of the playback file; null: that
 */
uint32_t InjTestWriteDataBegin(uint32_t eDemuxId, uint32_t uAudioIndex, const char* pFile,
                               const TcChannelInfo* pstChannelInfo = nullptr);
uint32_t InjTestWriteDataPause(void);
uint32_t InjTestWriteDataResume(void);
uint32_t InjTestWriteDataFinish(uint32_t eDemuxId, uint32_t bWaitDone);
/** A whole chain in which the place that is read moves on. */
uint32_t InjTestWriteDataSeek(uint32_t eDemuxId);
/** A whole chain at all speeds. */
uint32_t InjTestWriteDataSetSpeed(uint32_t eDemuxId);

/** Whether as many pictures were ready as there were seeks, or nearly. 0 or 1. */
uint32_t CheckVideoFrameReady(uint32_t uSeek);

#endif
