/*
 * Descramblers: channels that a demultiplexer descrambles with keys of the program's.
 *
 * A descrambler is opened on a demultiplexer that is open, given PIDs, and given keys as often as
 * they change; packets that are not scrambled pass untouched. Any thread may call; no callbacks.
 *
 * Wrong order is answered with QLX_FAILED, a handle, PID or demultiplexer that does not exist or a
 * null pointer with QLX_DESC_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_DESC_H
#define PLATFORM_QLX_DESC_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_DescError {
    QLX_DESC_ERR_INVALID_PARA = 0x100D01,
    /** All descramblers of the demultiplexer are in use. */
    QLX_DESC_ERR_NO_RESOURCE = 0x100D03,
};

enum {
    /** Descramblers that a demultiplexer has. */
    QLX_DESC_PER_DEMUX = 8,
    /** PIDs that a descrambler takes. */
    QLX_DESC_PID_MAX = 16,
    QLX_DESC_KEY_BYTES = 8,
    QLX_DESC_SYSTEM_KEY_BYTES = 32,
};

enum QLX_DescAlgorithm {
    /** MULTI2, as ISDB uses it. */
    QLX_DESC_ALGORITHM_MULTI2 = 256,
};

/** What a descrambler is opened on. */
typedef struct QLX_DescOpenParam {
    /** QLX_DemuxId. */
    uint32_t eDemuxId;
    /** QLX_DescAlgorithm. */
    uint32_t eAlgorithm;
    /** Keep it zero. */
    uint32_t uReserved[29];
} QLX_DescOpenParam;
QLX_RECORD_SIZE(QLX_DescOpenParam, 124);

enum QLX_DescKeyKind {
    /** Clear key material that the program writes. */
    QLX_DESC_KEY_KIND_CLEAR = 17,
};

/** Keys of a descrambler; a word holds one byte. */
typedef struct QLX_DescKeys {
    /** The descrambler, as in the call. */
    uint32_t u32HDesc;
    uint32_t u32EvenKey[QLX_DESC_KEY_BYTES];
    uint32_t u32OddKey[QLX_DESC_KEY_BYTES];
    /** Initial values of the chaining. */
    uint32_t u32EvenIv[QLX_DESC_KEY_BYTES];
    uint32_t u32OddIv[QLX_DESC_KEY_BYTES];
    uint32_t u32SystemKey[QLX_DESC_SYSTEM_KEY_BYTES];
    /** QLX_DescKeyKind of the even and odd keys, of the initial values, and of the system key. */
    uint32_t eEvenKeyKind;
    uint32_t eOddKeyKind;
    uint32_t eIvKind;
    uint32_t eSystemKeyKind;
    /** QLX_TRUE: the keys hold from now on. */
    uint32_t bUpdate;
    /** Keep it zero. */
    uint32_t uReserved[24];
} QLX_DescKeys;
QLX_RECORD_SIZE(QLX_DescKeys, 376);

/**
 * Opens a descrambler.
 * @param stOpenParam  an open demultiplexer, and how its stream is scrambled
 * @param pu32HDesc    receives the handle, which is never 0
 * @return 0; QLX_FAILED when the demultiplexer is not open; QLX_DESC_ERR_NO_RESOURCE;
 *         QLX_DESC_ERR_INVALID_PARA
 */
int32_t QLX_DescOpen(QLX_DescOpenParam stOpenParam, uint32_t* pu32HDesc);

/** Closes a descrambler and forgets its keys. Returns 0; QLX_DESC_ERR_INVALID_PARA. */
int32_t QLX_DescClose(uint32_t u32HDesc);

/** Adds a PID, 0 to 8191. Returns 0; QLX_DESC_ERR_NO_RESOURCE; QLX_DESC_ERR_INVALID_PARA. */
int32_t QLX_DescSetPid(uint32_t u32HDesc, uint32_t u32Pid);

/** Sets the keys in place of the earlier ones. Returns 0; QLX_DESC_ERR_INVALID_PARA. */
int32_t QLX_SetKeys(uint32_t u32HDesc, QLX_DescKeys stKeys);

#ifdef __cplusplus
}
#endif

#endif
