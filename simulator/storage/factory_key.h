/*
 * The simulated device's key files:
 *
 *     offset  bytes
 *     0       4     "QKEY"
 *     4       1     version, 1
 *     5       1     key type, QLX_FacKeyType_e
 *     6       2     reserved, 0
 *     8       4     length of the payload in bytes, low byte first; 1 to 65536
 *     12      n     payload
 *     12+n    32    SHA-256 of all bytes before
 *
 * Nothing may follow. The payload of a key of type 0 begins with the electronic serial number: up
 * to 127 printable characters and a newline. Other payloads are opaque.
 */
#ifndef SIMULATOR_STORAGE_FACTORY_KEY_H
#define SIMULATOR_STORAGE_FACTORY_KEY_H

#include <stddef.h>
#include <stdint.h>

#include <string>

namespace sim {

/** The largest key file. */
constexpr size_t keyFileLimit = 12 + 65536 + 32;

/** Takes the payload out of a file's contents; false when the file is damaged or its type is not
 *  `type`. */
bool parseKeyFile(const std::string& contents, uint32_t type, std::string* payload);

/** Builds the contents of a key file. */
std::string makeKeyFile(uint32_t type, const std::string& payload);

/** The serial number at the head of a payload, empty when there is none. */
std::string serialNumberOf(const std::string& payload);

}  // namespace sim

#endif
