/*
 * The environment stores: named texts of the application, and the boot loader's tagged settings.
 * Any thread may call; no callbacks.
 */
#ifndef PLATFORM_QLX_ENV_H
#define PLATFORM_QLX_ENV_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_EnvError {
    QLX_ENV_ERR_INVALID_PARA = 0x100201,
    QLX_ENV_ERR_NOT_FOUND = 0x100202,
    /** The store did not take the change. */
    QLX_ENV_ERR_IO = 0x100203,
};

enum {
    /** Bytes of a key, a value or a boot setting, the closing NUL included. */
    QLX_ENV_TEXT_SIZE = 64,
};

/** Settings of the boot loader. */
enum QLX_BootEnvTag {
    /** Which of the two copies of the data base is in force: "0" or "1". */
    QLX_BOOT_ENV_TAG_DBTABLE = 0,
};

/**
 * Stores a text under a name; it outlives power off.
 * @param key    1 to 63 characters, none of them '=' or a newline
 * @param value  up to 63 characters without a newline
 * @return 0; QLX_ENV_ERR_INVALID_PARA; QLX_ENV_ERR_IO
 */
int32_t QLX_SetEnv(const char* key, const char* value);

/**
 * Reads a text.
 * @param key    as for QLX_SetEnv
 * @param value  receives the text, QLX_ENV_TEXT_SIZE bytes; empty for an unknown key
 * @return 0; QLX_ENV_ERR_INVALID_PARA; QLX_ENV_ERR_NOT_FOUND
 */
int32_t QLX_GetEnv(const char* key, char* value);

/**
 * Changes a setting of the boot loader; QLX_SaveBootEnv makes the change last.
 * @param tag    QLX_BootEnvTag
 * @param value  text of up to 63 characters
 * @return 0; QLX_ENV_ERR_INVALID_PARA for a null pointer, an unknown tag, or a longer text
 */
int32_t QLX_SetBootEnv(uint32_t tag, const void* value);

/** Writes the changed settings to the boot loader's store. Returns 0, or QLX_ENV_ERR_IO. */
int32_t QLX_SaveBootEnv(void);

#ifdef __cplusplus
}
#endif

#endif
