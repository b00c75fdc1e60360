/* A growing byte string with the big-endian writes that tables and headers are made of. */
#ifndef TOOLS_MKSTREAMS_BYTES_H
#define TOOLS_MKSTREAMS_BYTES_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

namespace mkstreams {

using Bytes = std::vector<uint8_t>;

inline void put8(Bytes& to, unsigned value) {
    to.push_back(static_cast<uint8_t>(value));
}

inline void put16(Bytes& to, unsigned value) {
    put8(to, value >> 8);
    put8(to, value);
}

inline void put24(Bytes& to, unsigned value) {
    put8(to, value >> 16);
    put16(to, value);
}

inline void put32(Bytes& to, uint32_t value) {
    put16(to, value >> 16);
    put16(to, value & 0xFFFF);
}

inline void putText(Bytes& to, const std::string& text) {
    to.insert(to.end(), text.begin(), text.end());
}

inline void append(Bytes& to, const Bytes& from) {
    to.insert(to.end(), from.begin(), from.end());
}

/** Appends a descriptor: tag, length of the body, body (at most 255 bytes). */
inline void putDescriptor(Bytes& to, unsigned tag, const Bytes& body) {
    put8(to, tag);
    put8(to, static_cast<unsigned>(body.size()));
    append(to, body);
}

/** Bits collected from the most significant on, for headers that are not made of whole bytes. */
class BitWriter {
 public:
    /** The low `count` bits of value, count 0 to 32. */
    void put(uint32_t value, unsigned count) {
        while (count-- > 0) {
            if (used_ == 0)
                bytes_.push_back(0);
            bytes_.back() =
                static_cast<uint8_t>(bytes_.back() | ((value >> count & 1) << (7 - used_)));
            used_ = (used_ + 1) % 8;
        }
    }
    void align() {
        used_ = 0;
    }
    const Bytes& bytes() const {
        return bytes_;
    }

 private:
    Bytes bytes_;
    unsigned used_ = 0;
};

}  // namespace mkstreams

#endif
