/*
 * Common interface slots: the path of a transport stream through a slot. Any thread may call.
 *
 * Wrong order is answered with QLX_FAILED, a bad number or null pointer with
 * QLX_CI_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_CI_H
#define PLATFORM_QLX_CI_H

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_CISlot {
    QLX_CI_SLOT_0 = 0,
    QLX_CI_SLOT_1 = 1,
    QLX_CI_SLOT_MAX = 2,
};

enum QLX_CIError {
    QLX_CI_ERR_INVALID_PARA = 0x101B01,
};

enum QLX_CITsMode {
    /** Past the slot. */
    QLX_CI_TS_MODE_BYPASS = 0,
    /** Through the module in the slot; an empty slot closes the loop by itself. */
    QLX_CI_TS_MODE_PASS_THROUGH = 1,
};

/** The path of a transport stream. */
typedef struct QLX_CITsConfig {
    /** QLX_CITsMode. */
    uint32_t eMode;
    /** Where the stream comes from: a tuner. */
    QLX_Source stSource;
    /** Where it goes: QLX_SOURCE_TYPE_DEMUX, and the demultiplexer's number. */
    uint32_t eSinkType;
    uint32_t uSinkIndex;
} QLX_CITsConfig;
QLX_RECORD_SIZE(QLX_CITsConfig, 24);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_CIInit(void);

/** Ends the service and closes open slots. Returns 0. */
int32_t QLX_CIDeInit(void);

/**
 * Opens a slot, with a module in it or not.
 * @param eSlot  QLX_CI_SLOT_0 or QLX_CI_SLOT_1
 * @return 0; QLX_FAILED before init; QLX_CI_ERR_INVALID_PARA
 */
int32_t QLX_CIOpen(uint32_t eSlot);

/** Closes a slot; its stream goes past it again. Returns 0; QLX_FAILED when it is not open. */
int32_t QLX_CIClose(uint32_t eSlot);

/**
 * Tells whether a module is in the slot, open or not.
 * @param pbPresent  receives QLX_TRUE or QLX_FALSE; QLX_FALSE before init
 * @return 0; QLX_CI_ERR_INVALID_PARA
 */
int32_t QLX_CIIsCamPresent(uint32_t eSlot, uint32_t* pbPresent);

/**
 * Chooses the kind of source that the slots are fed from.
 * @param eSourceType  QLX_SOURCE_TYPE_TUNER or QLX_SOURCE_TYPE_RECORD
 * @return 0; QLX_FAILED before init; QLX_CI_ERR_INVALID_PARA
 */
int32_t QLX_CISetSrcType(uint32_t eSourceType);

/**
 * Sets the path of the stream.
 * @param eSlot       an open slot
 * @param pstConfig   the path
 * @return 0; QLX_FAILED when the slot is not open; QLX_CI_ERR_INVALID_PARA
 */
int32_t QLX_CISetTsConfig(uint32_t eSlot, const QLX_CITsConfig* pstConfig);

#ifdef __cplusplus
}
#endif

#endif
