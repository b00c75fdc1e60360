#include "simulator/storage/factory_key.h"

#include <openssl/sha.h>

#include <algorithm>

namespace sim {

constexpr size_t headSize = 12;
constexpr size_t longestSerialNumber = 127;

static std::string digestOf(const std::string& data) {
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest);
    return std::string(reinterpret_cast<const char*>(digest), sizeof digest);
}

bool parseKeyFile(const std::string& contents, uint32_t type, std::string* payload) {
    if (contents.size() <= headSize + SHA256_DIGEST_LENGTH || contents.size() > keyFileLimit)
        return false;
    const unsigned char* head = reinterpret_cast<const unsigned char*>(contents.data());
    size_t length = head[8] | static_cast<size_t>(head[9]) << 8 |
                    static_cast<size_t>(head[10]) << 16 | static_cast<size_t>(head[11]) << 24;
    size_t body = contents.size() - SHA256_DIGEST_LENGTH;
    if (contents.compare(0, 4, "QKEY") != 0 || head[4] != 1 || head[5] != type || head[6] != 0 ||
        head[7] != 0 || length != body - headSize)
        return false;
    if (contents.substr(body) != digestOf(contents.substr(0, body)))
        return false;
    *payload = contents.substr(headSize, length);
    return true;
}

std::string makeKeyFile(uint32_t type, const std::string& payload) {
    std::string contents = "QKEY";
    contents += '\1';
    contents += static_cast<char>(type);
    contents += std::string(2, '\0');
    for (int shift = 0; shift < 32; shift += 8)
        contents += static_cast<char>(payload.size() >> shift & 0xFF);
    contents += payload;
    return contents + digestOf(contents);
}

std::string serialNumberOf(const std::string& payload) {
    size_t end = payload.find('\n');
    if (end == std::string::npos || end > longestSerialNumber)
        return "";
    auto printable = [](char c) { return c > ' ' && c <= '~'; };
    if (!std::all_of(payload.begin(), payload.begin() + static_cast<long>(end), printable))
        return "";
    return payload.substr(0, end);
}

}  // namespace sim
