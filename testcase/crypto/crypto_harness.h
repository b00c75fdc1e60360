/* What the cipher cases share: the round trip through a mode, and its judges. */
#ifndef TESTCASE_CRYPTO_CRYPTO_HARNESS_H
#define TESTCASE_CRYPTO_CRYPTO_HARNESS_H

#include <stdint.h>
#include <sys/time.h>

#include "framework/case/check.h"
#include "platform/qlx_crypto.h"

enum {
    /** Bytes that a round trip passes through a mode. */
    CRYPTO_BUFFER_SIZE = 0x10E0000,
};

/** A key and vector that GenerateKey allocates, with the record that the library takes. */
struct CryptoKey {
    QLX_CryptoCtrl ctrl;
    uint8_t* key;
    uint8_t* iv;
};

/** Prints a line of the ciphers' log: "==>[name() line] ", then the text. */
void crp_say(const CaseContext& tc, int line, const char* format, ...) ZK_PRINTF(3, 4);
#define CRP_SAY(...) crp_say(tc, __LINE__, __VA_ARGS__)

/** The same for what fails the test. Returns false. */
bool crp_fail(CaseContext& tc, int line, const char* format, ...) ZK_PRINTF(3, 4);
#define CRP_FAIL(...) crp_fail(tc, __LINE__, __VA_ARGS__)

/** The mode's name, "UnknownCryptoMode" for a number that is none. */
const char* GetCryptoModeStr(uint32_t mode);

/** Fills the buffer from the unseeded random(): every run has the same data, and no byte is 255. */
void GenerateInput(uint8_t* buffer, uint32_t length);

/** Allocates and fills key and vector for key->ctrl.mode; FreeKey releases them, also after a
 *  failure. Returns 0, or 1 with a message. */
uint32_t GenerateKey(CryptoKey* key);
void FreeKey(CryptoKey* key);

/**
 * Judges an encryption: the lengths must agree, and at most 9 bytes in a row may have stayed as
 * they were. Only the first run of equal bytes in the buffer is looked at: the place where the last
 * one was equal stays behind at the first gap. Returns 0, or 1 with a message.
 */
uint32_t CheckEncryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength);

/** Judges a decryption: lengths and bytes must agree. Returns 0, or 1 with a message. */
uint32_t CheckDecryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength);

/** The time from start to end. Alters `end` when a second has to be borrowed. */
void CalculateTimeDiff(const timeval* start, timeval* end, timeval* result);

/** Encrypts and decrypts a buffer of CRYPTO_BUFFER_SIZE with random key and vector, each in less
 *  than two seconds. Returns 0, or 1 with a message. Releases what it takes. */
uint32_t EnDecrypt(uint32_t mode);

#endif
