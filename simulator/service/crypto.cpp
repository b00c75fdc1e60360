// Crypto engine: OpenSSL's ciphers. Those of the last century (DES, RC4) are in its legacy
// provider, which is loaded into a library context of the engine's own.
//
// Keys are taken as they are: the engine knows no parity and no weak keys.
//
// Board file, section CRYPTO: a mode's name without its first word, as AES128_ECB, with 0 takes the
// mode from the engine.
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <algorithm>
#include <mutex>

#include "platform/qlx_crypto.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"

namespace sim {

SIM_RECORD(QLX_CryptoCtrl, SIM_MEMBER(QLX_CryptoCtrl, mode), SIM_MEMBER(QLX_CryptoCtrl, key),
           SIM_MEMBER(QLX_CryptoCtrl, keyLength), SIM_MEMBER(QLX_CryptoCtrl, iv),
           SIM_MEMBER(QLX_CryptoCtrl, ivLength))

}  // namespace sim

namespace {

struct Mode {
    const char* boardKey;
    /** The library's name. */
    const char* cipher;
    /** Bytes; 0: the cipher takes 1 to largestKey. */
    uint32_t keyLength;
    /** Bytes that the data must be a multiple of. */
    uint32_t block;
    /** Bytes of the vector. */
    uint32_t ivLength;
};

constexpr uint32_t largestKey = 256;
constexpr uint32_t largestIv = 16;

/** By QLX_CryptoMode. */
// clang-format off
const Mode modes[] = {
    // board key    cipher          key  block  iv
    {"AES128_ECB",  "AES-128-ECB",  16,  16,    0},
    {"AES128_CBC",  "AES-128-CBC",  16,  16,    16},
    {"AES128_CTR",  "AES-128-CTR",  16,  1,     16},
    {"DES_ECB",     "DES-ECB",      8,   8,     0},
    {"DES_CBC",     "DES-CBC",      8,   8,     8},
    {"TDES2_ECB",   "DES-EDE-ECB",  16,  8,     0},
    {"TDES2_CBC",   "DES-EDE-CBC",  16,  8,     8},
    {"TDES3_ECB",   "DES-EDE3-ECB", 24,  8,     0},
    {"TDES3_CBC",   "DES-EDE3-CBC", 24,  8,     8},
    {"RC4",         "RC4",          0,   1,     0},
    {"AES256_ECB",  "AES-256-ECB",  32,  16,    0},
    {"AES256_CBC",  "AES-256-CBC",  32,  16,    16},
    {"AES256_CTR",  "AES-256-CTR",  32,  1,     16},
};
// clang-format on
constexpr uint32_t modeCount = sizeof(modes) / sizeof(modes[0]);

/** The ciphers by mode, null for one that the library could not give. Made once. */
struct Engine {
    EVP_CIPHER* ciphers[modeCount] = {};

    Engine() {
        // The library must not tidy up at exit while device threads still use it.
        OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
        OSSL_LIB_CTX* context = OSSL_LIB_CTX_new();
        if (OSSL_PROVIDER_load(context, "default") == nullptr ||
            OSSL_PROVIDER_load(context, "legacy") == nullptr)
            sim::complain("the crypto engine lacks a part of OpenSSL: some modes are missing");
        for (uint32_t i = 0; i < modeCount; i++)
            ciphers[i] = EVP_CIPHER_fetch(context, modes[i].cipher, nullptr);
    }
};

const Engine& engine() {
    static const Engine* instance = new Engine;
    return *instance;
}

bool supported(uint32_t mode) {
    return mode < modeCount && engine().ciphers[mode] != nullptr &&
           sim::board().number("CRYPTO", modes[mode].boardKey) != 0;
}

struct Operation {
    bool encrypt;
    const uint8_t* input;
    uint8_t* output;
    uint32_t inputLength;
    uint32_t* outputLength;
    const QLX_CryptoCtrl* ctrl;
};

bool lengthsFit(const Operation& op, const Mode& mode) {
    const QLX_CryptoCtrl& ctrl = *op.ctrl;
    bool keyFits = mode.keyLength != 0 ? ctrl.keyLength == mode.keyLength
                                       : ctrl.keyLength >= 1 && ctrl.keyLength <= largestKey;
    bool ivFits = mode.ivLength == 0 || ctrl.iv == nullptr || ctrl.ivLength == 0 ||
                  ctrl.ivLength == mode.ivLength;
    return ctrl.key != nullptr && keyFits && ivFits && op.inputLength % mode.block == 0 &&
           *op.outputLength >= op.inputLength;
}

/** Whether the output begins within the input, or the other way about, but not at its start: bytes
 *  would be overwritten before they are read. */
bool overlap(const Operation& op) {
    uintptr_t in = reinterpret_cast<uintptr_t>(op.input);
    uintptr_t out = reinterpret_cast<uintptr_t>(op.output);
    return in != out && in < out + op.inputLength && out < in + op.inputLength;
}

/** Passes the data through the cipher, in pieces that the library's int can count. */
bool transform(const Operation& op, const Mode& mode, const EVP_CIPHER* cipher) {
    static const uint8_t zeros[largestIv] = {};
    const QLX_CryptoCtrl& ctrl = *op.ctrl;
    const uint8_t* iv = ctrl.iv != nullptr && ctrl.ivLength != 0 ? ctrl.iv : zeros;
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    bool good = context != nullptr &&
                EVP_CipherInit_ex2(context, cipher, nullptr, nullptr, op.encrypt, nullptr) == 1;
    if (good && mode.keyLength == 0)
        good = EVP_CIPHER_CTX_set_key_length(context, static_cast<int>(ctrl.keyLength)) == 1;
    good = good && EVP_CipherInit_ex2(context, nullptr, ctrl.key, iv, op.encrypt, nullptr) == 1 &&
           EVP_CIPHER_CTX_set_padding(context, 0) == 1;
    constexpr uint32_t piece = 1u << 20;
    for (uint32_t done = 0; good && done < op.inputLength;) {
        int written = 0;
        uint32_t size = std::min(piece, op.inputLength - done);
        good = EVP_CipherUpdate(context, op.output + done, &written, op.input + done,
                                static_cast<int>(size)) == 1 &&
               static_cast<uint32_t>(written) == size;
        done += size;
    }
    EVP_CIPHER_CTX_free(context);
    return good;
}

/** The arguments for the trace. */
std::string shown(const Operation& op) {
    std::string room = op.outputLength == nullptr ? "null" : std::to_string(*op.outputLength);
    std::string out = sim::format(
        "ctrl=%s input=%s output=%s length=%u room=%s", sim::show(op.ctrl).c_str(),
        sim::showBytes(op.input, op.inputLength, op.outputLength ? *op.outputLength : 0).c_str(),
        op.input == op.output && op.input != nullptr ? "input" : sim::showPointer(op.output),
        op.inputLength, room.c_str());
    if (op.ctrl != nullptr)
        out += " key=" + sim::showBytes(op.ctrl->key, op.ctrl->keyLength, largestKey) +
               " iv=" + sim::showBytes(op.ctrl->iv, op.ctrl->ivLength, largestIv);
    return out;
}

int32_t run(const Operation& op, sim::Call& call) {
    if (op.input == nullptr || op.output == nullptr || op.outputLength == nullptr ||
        op.ctrl == nullptr)
        return QLX_CRYPTO_ERR_INVALID_PARA;
    if (!supported(op.ctrl->mode))
        return QLX_CRYPTO_ERR_NOT_SUPPORTED;
    const Mode& mode = modes[op.ctrl->mode];
    if (!lengthsFit(op, mode) || overlap(op))
        return QLX_CRYPTO_ERR_INVALID_PARA;
    if (!transform(op, mode, engine().ciphers[op.ctrl->mode]))
        return QLX_FAILED;
    *op.outputLength = op.inputLength;
    call.output({sim::bytesValue("output", op.output, op.inputLength),
                 sim::marked("length", op.outputLength)});
    return QLX_SUCCESS;
}

}  // namespace

uint32_t QLX_CryptoModeSupported(uint32_t mode) {
    SIM_ENTRY("mode=%u", mode);
    SIM_RETURN(static_cast<uint32_t>(supported(mode) ? QLX_TRUE : QLX_FALSE));
}

int32_t QLX_CryptoEncrypt(const uint8_t* input, uint8_t* output, uint32_t inputLength,
                          uint32_t* outputLength, const QLX_CryptoCtrl* ctrl) {
    Operation op = {true, input, output, inputLength, outputLength, ctrl};
    SIM_ENTRY("%s", shown(op).c_str());
    SIM_RETURN(run(op, simCall));
}

int32_t QLX_CryptoDecrypt(const uint8_t* input, uint8_t* output, uint32_t inputLength,
                          uint32_t* outputLength, const QLX_CryptoCtrl* ctrl) {
    Operation op = {false, input, output, inputLength, outputLength, ctrl};
    SIM_ENTRY("%s", shown(op).c_str());
    SIM_RETURN(run(op, simCall));
}
