/*
 * The channel to a trusted application (TA) in the secure world. Any thread may call. Answers come
 * on a thread of the library.
 */
#ifndef PLATFORM_QLX_TEEC_H
#define PLATFORM_QLX_TEEC_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_TEECError {
    QLX_TEEC_ERR_INVALID_PARA = 0x101301,
    QLX_TEEC_ERR_NOT_INIT = 0x101302,
    QLX_TEEC_ERR_NOT_OPEN = 0x101303,
    /** The TA has died; the session has to be closed and opened again. */
    QLX_TEEC_ERR_TA_DEAD = 0x101304,
};

enum {
    /** Trusted applications are numbered from 0 to QLX_TEEC_TA_COUNT - 1. */
    QLX_TEEC_TA_COUNT = 4,
};

/** Header of a command or answer; the payload stands directly behind it, and behind that, without
 *  a gap, the next header of the same message. */
typedef struct QLX_TEECCommand {
    uint32_t cmdId;
    /** Bytes of payload. */
    uint32_t dataLength;
    /** The payload behind this header. */
    uint8_t* data;
    /** 1: another record follows; 0: this is the last. */
    uint32_t more;
} QLX_TEECCommand;
QLX_RECORD_SIZE_32(QLX_TEECCommand, 16);

/**
 * An answer of a TA. The record and its payload are the library's, valid until the function
 * returns.
 */
typedef void (*QLX_TEECCallback)(uint32_t taId, void* userData, QLX_TEECCommand* command);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_TEECInit(void);

/** Ends the service and all sessions, whatever the number of initialisations was. Returns 0. */
int32_t QLX_TEECDeInit(void);

/** Opens the session with a TA, and starts the TA when it does not run; a repeated call is a
 *  success. Returns 0, QLX_TEEC_ERR_NOT_INIT or QLX_TEEC_ERR_INVALID_PARA. */
int32_t QLX_TEECOpen(uint32_t taId);

/** Ends the session. What the TA has not answered yet is dropped, its callback forgotten. Returns
 *  0, also for a session that is not open; QLX_TEEC_ERR_NOT_INIT; QLX_TEEC_ERR_INVALID_PARA. */
int32_t QLX_TEECClose(uint32_t taId);

/**
 * Sets the function that a session's answers are handed to, in the place of an earlier one.
 * @param userData  handed to the callback as it is
 * @return 0; QLX_TEEC_ERR_INVALID_PARA; QLX_TEEC_ERR_NOT_INIT; QLX_TEEC_ERR_NOT_OPEN
 */
int32_t QLX_TEECRegisterCallback(uint32_t taId, QLX_TEECCallback callback, void* userData);

/** Takes the function back. When it returns, no callback runs or will run. Returns 0;
 *  QLX_TEEC_ERR_INVALID_PARA for a function that is not registered; QLX_TEEC_ERR_NOT_INIT. */
int32_t QLX_TEECUnRegisterCallback(uint32_t taId, QLX_TEECCallback callback);

/**
 * Sends a message of one or more records. They are copied before the call returns. Each record is
 * answered by itself, in order.
 * @return 0; QLX_TEEC_ERR_INVALID_PARA for a null pointer or a message beyond 16 records of 64 KiB;
 *         QLX_TEEC_ERR_NOT_INIT; QLX_TEEC_ERR_NOT_OPEN; QLX_TEEC_ERR_TA_DEAD
 */
int32_t QLX_TEECTransData(uint32_t taId, const QLX_TEECCommand* command);

#ifdef __cplusplus
}
#endif

#endif
