/*
 * Block and stream ciphers of the platform's crypto engine, on whole buffers. They need no
 * initialisation; any thread may call; no callbacks.
 */
#ifndef PLATFORM_QLX_CRYPTO_H
#define PLATFORM_QLX_CRYPTO_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_CryptoError {
    QLX_CRYPTO_ERR_INVALID_PARA = 0x101201,
    /** The engine does not have the mode. */
    QLX_CRYPTO_ERR_NOT_SUPPORTED = 0x101202,
};

/** Cipher and chaining mode, with key bytes. A chaining mode without a vector starts from zeros. */
enum QLX_CryptoMode {
    CRYPTO_MODE_AES128_ECB = 0,   // 16
    CRYPTO_MODE_AES128_CBC = 1,   // 16
    CRYPTO_MODE_AES128_CTR = 2,   // 16
    CRYPTO_MODE_DES_ECB = 3,      // 8
    CRYPTO_MODE_DES_CBC = 4,      // 8
    CRYPTO_MODE_TDES2_ECB = 5,    // 16
    CRYPTO_MODE_TDES2_CBC = 6,    // 16
    CRYPTO_MODE_TDES3_ECB = 7,    // 24
    CRYPTO_MODE_TDES3_CBC = 8,    // 24
    CRYPTO_MODE_RC4 = 9,          // 1 to 256
    CRYPTO_MODE_AES256_ECB = 10,  // 32
    CRYPTO_MODE_AES256_CBC = 11,  // 32
    CRYPTO_MODE_AES256_CTR = 12,  // 32
};

/** What an operation needs beside the data. The library reads key and vector and alters neither. */
typedef struct QLX_CryptoCtrl {
    /** QLX_CryptoMode. */
    uint32_t mode;
    const uint8_t* key;
    /** Bytes. */
    uint32_t keyLength;
    /** Initialisation vector, or null. */
    const uint8_t* iv;
    /** Bytes: those of the cipher's block, or 0 for none. */
    uint32_t ivLength;
} QLX_CryptoCtrl;
QLX_RECORD_SIZE_32(QLX_CryptoCtrl, 20);

/** Whether the engine has the mode: 0 no, else yes. */
uint32_t QLX_CryptoModeSupported(uint32_t mode);

/**
 * Encrypts a buffer, without padding.
 * @param input         data
 * @param output        receives as many bytes as were put in; may be the same buffer as input
 * @param inputLength   bytes; for ECB and CBC a multiple of the cipher's block
 * @param outputLength  in: room at output in bytes, at least inputLength; out: bytes written
 * @param ctrl          mode, key and vector
 * @return 0; QLX_CRYPTO_ERR_INVALID_PARA for a null pointer or lengths that do not fit;
 *         QLX_CRYPTO_ERR_NOT_SUPPORTED
 */
int32_t QLX_CryptoEncrypt(const uint8_t* input, uint8_t* output, uint32_t inputLength,
                          uint32_t* outputLength, const QLX_CryptoCtrl* ctrl);

/** Decrypts a buffer; otherwise as QLX_CryptoEncrypt. */
int32_t QLX_CryptoDecrypt(const uint8_t* input, uint8_t* output, uint32_t inputLength,
                          uint32_t* outputLength, const QLX_CryptoCtrl* ctrl);

#ifdef __cplusplus
}
#endif

#endif
