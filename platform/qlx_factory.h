/*
 * Provisioning: the device's key files of content protection and service schemes. Any thread may
 * call; no callbacks.
 */
#ifndef PLATFORM_QLX_FACTORY_H
#define PLATFORM_QLX_FACTORY_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_FactoryError {
    QLX_FACTORY_ERR_INVALID_PARA = 0x101401,
    /** The file cannot be read. */
    QLX_FACTORY_ERR_FILE = 0x101402,
    /** The file is no key file, is damaged, or is of another type. */
    QLX_FACTORY_ERR_FORMAT = 0x101403,
    /** The device holds no such key. */
    QLX_FACTORY_ERR_NOT_FOUND = 0x101404,
    /** The device's store did not take the key. */
    QLX_FACTORY_ERR_STORE = 0x101405,
};

typedef enum QLX_FacKeyType_e {
    QLX_FACTORYKEY_NETFLIX = 0,
    QLX_FACTORYKEY_HDCP22 = 1,
    QLX_FACTORYKEY_WIDEVINE = 2,
    QLX_FACTORYKEY_CIPLUS_NON_ECP = 3,
    QLX_FACTORYKEY_CIPLUS_ECP = 4,
    QLX_FACTORYKEY_HDCP14 = 5,
    QLX_FACTORYKEY_PLAYREADY25 = 6,
    QLX_FACTORYKEY_PLAYREADY40 = 7,
    QLX_FACTORYKEY_YOUTUBE = 8,
    QLX_FACTORYKEY_FREEVIEW = 9,
    QLX_FACTORYKEY_MARLIN = 10,
    QLX_FACTORYKEY_COUNT = 11,
} QLX_FacKeyType_e;

/**
 * Stores the key of a file in the device, in the place of an earlier one of its type.
 * @param keyType  QLX_FacKeyType_e
 * @param keyPath  path of the file
 * @return 0; QLX_FACTORY_ERR_INVALID_PARA; QLX_FACTORY_ERR_FILE; QLX_FACTORY_ERR_FORMAT;
 *         QLX_FACTORY_ERR_STORE
 */
int32_t QLX_FactoryWritekey(uint32_t keyType, const char* keyPath);

/** Returns 0 when the device holds a good key of the type; QLX_FACTORY_ERR_NOT_FOUND;
 *  QLX_FACTORY_ERR_INVALID_PARA. */
int32_t QLX_FactoryCheckKey(uint32_t keyType);

/**
 * Tells the electronic serial number that the streaming service knows the device by.
 * @param esnid  receives the text and a NUL
 * @param size   bytes at esnid; the text must fit
 * @return 0; QLX_FACTORY_ERR_INVALID_PARA; QLX_FACTORY_ERR_NOT_FOUND
 */
int32_t QLX_FactoryGetNetflixEsnid(char* esnid, uint32_t size);

#ifdef __cplusplus
}
#endif

#endif
