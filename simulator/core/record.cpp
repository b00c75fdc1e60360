#include "simulator/core/record.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "simulator/core/sim.h"
#include "simulator/core/words.h"

namespace sim {

namespace {

constexpr size_t wholeBytes = 16;
constexpr size_t firstBytes = 8;

/** The CRC-32 of ISO 3309, as zip files have it. */
uint32_t crc32Of(const uint8_t* bytes, size_t size) {
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> made{};
        for (uint32_t i = 0; i < made.size(); i++) {
            made[i] = i;
            for (int bit = 0; bit < 8; bit++)
                made[i] = (made[i] >> 1) ^ ((made[i] & 1) != 0 ? 0xedb88320u : 0);
        }
        return made;
    }();
    uint32_t crc = ~0u;
    for (size_t i = 0; i < size; i++)
        crc = (crc >> 8) ^ table[(crc ^ bytes[i]) & 0xff];
    return ~crc;
}

size_t roundUp(size_t place, size_t alignment) {
    return (place + alignment - 1) / alignment * alignment;
}

bool hasPointer(const Member& member) {
    if (member.kind != MemberKind::record)
        return member.kind == MemberKind::pointer;
    return std::any_of(member.record->members.begin(), member.record->members.end(), hasPointer);
}

std::string hexOf(const uint8_t* bytes, size_t size) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (size_t i = 0; i < size; i++) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 15];
    }
    return out;
}

bool allZero(const uint8_t* bytes, size_t size) {
    return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
}

uint64_t unsignedAt(const uint8_t* at, size_t size) {
    uint64_t whole = 0;
    uint32_t word = 0;
    uint16_t half = 0;
    switch (size) {
        case 8:
            memcpy(&whole, at, size);
            return whole;
        case 4:
            memcpy(&word, at, size);
            return word;
        case 2:
            memcpy(&half, at, size);
            return half;
        default:
            return *at;
    }
}

int64_t signedAt(const uint8_t* at, size_t size) {
    unsigned unused = static_cast<unsigned>(64 - 8 * size);
    return static_cast<int64_t>(unsignedAt(at, size) << unused) >> unused;
}

std::string showElement(const Member& member, const uint8_t* at) {
    switch (member.kind) {
        case MemberKind::signedNumber:
            return std::to_string(signedAt(at, member.size));
        case MemberKind::floating: {
            double number = 0;
            float single = 0;
            if (member.size == sizeof single) {
                memcpy(&single, at, sizeof single);
                number = static_cast<double>(single);
            } else {
                memcpy(&number, at, sizeof number);
            }
            return format("%.9g", number);
        }
        case MemberKind::pointer:
            return allZero(at, member.size) ? "null" : "set";
        case MemberKind::record:
            return show(*member.record, at);
        default:
            return std::to_string(unsignedAt(at, member.size));
    }
}

/** "[1 2 0*22]": elements that repeat are counted. */
std::string showArray(const Member& member, const uint8_t* at) {
    std::string out;
    for (size_t i = 0; i < member.count;) {
        const uint8_t* element = at + i * member.size;
        size_t same = 1;
        while (i + same < member.count &&
               memcmp(element, element + same * member.size, member.size) == 0)
            same++;
        out += (out.empty() ? "" : " ") + showElement(member, element);
        if (same > 1)
            out += "*" + std::to_string(same);
        i += same;
    }
    return "[" + out + "]";
}

std::string showMember(const Member& member, const uint8_t* at) {
    if (member.kind == MemberKind::text)
        return showText(reinterpret_cast<const char*>(at), member.count);
    if (member.kind == MemberKind::bytes)
        return showBytes(at, member.count);
    return member.array ? showArray(member, at) : showElement(member, at);
}

/** Of "[3].uPlpId" the index; the rest is left in `path`. */
bool takeIndex(std::string* path, size_t* index) {
    std::string digits;
    int64_t number = 0;
    if (!partWord(path->substr(1), ']', &digits, path) ||
        !readNumber(digits, 0, INT32_MAX, &number, 10))
        return false;
    *index = static_cast<size_t>(number);
    return true;
}

/** Finds what `path`, the rest behind the member's name, leads to. */
bool findWithin(Member member, uint8_t* at, std::string path, Place* place) {
    if (!path.empty() && path[0] == '[') {
        size_t index = 0;
        if (!member.array || !takeIndex(&path, &index) || index >= member.count)
            return false;
        at += index * member.size;
        member.count = 1;
        member.array = false;
        if (member.kind == MemberKind::bytes || member.kind == MemberKind::text)
            member.kind = MemberKind::unsignedNumber;
    }
    if (path.empty()) {
        *place = {member, at};
        return true;
    }
    if (path[0] != '.' || member.kind != MemberKind::record || member.array)
        return false;
    path.erase(0, 1);
    for (const Member& inner : member.record->members) {
        size_t length = strlen(inner.name);
        if (path.compare(0, length, inner.name) == 0 &&
            (inner.applies == nullptr || inner.applies(at)) &&
            findWithin(inner, at + inner.offset, path.substr(length), place))
            return true;
    }
    return false;
}

void collectPaths(const Member& member, const uint8_t* at, const std::string& path,
                  std::vector<MemberPath>* paths) {
    if (member.kind == MemberKind::pointer)
        return;
    if (member.kind != MemberKind::record) {
        paths->push_back({path, allZero(at, member.size * member.count)});
        return;
    }
    size_t last = member.count - 1;
    while (last > 0 && allZero(at + last * member.size, member.size))
        last--;
    for (size_t index = 0; index < member.count; index++) {
        if (index != 0 && index != last)
            continue;
        const uint8_t* record = at + index * member.size;
        std::string place = path + (member.array ? format("[%zu]", index) : "");
        for (const Member& inner : member.record->members) {
            if (inner.applies == nullptr || inner.applies(record))
                collectPaths(inner, record + inner.offset,
                             place + (place.empty() ? "" : ".") + inner.name, paths);
        }
    }
}

bool readBits(const Member& member, const std::string& word, uint64_t* bits) {
    unsigned unused = static_cast<unsigned>(64 - 8 * member.size);
    if (member.kind != MemberKind::signedNumber)
        return readUnsigned(word, UINT64_MAX >> unused, bits);
    int64_t number = 0;
    if (!readNumber(word, INT64_MIN >> unused, INT64_MAX >> unused, &number))
        return false;
    *bits = static_cast<uint64_t>(number);
    return true;
}

bool setFloating(const Place& place, const std::string& word) {
    double number = 0;
    if (!readDecimal(word, &number))
        return false;
    float single = static_cast<float>(number);
    if (place.member.size == sizeof single)
        memcpy(place.data, &single, sizeof single);
    else
        memcpy(place.data, &number, sizeof number);
    return true;
}

}  // namespace

Record::Record(const char* recordName, size_t recordSize, size_t alignment,
               std::vector<Member> recordMembers)
    : name(recordName), size(recordSize), members(std::move(recordMembers)) {
    std::vector<Member> byPlace = members;
    std::stable_sort(byPlace.begin(), byPlace.end(),
                     [](const Member& a, const Member& b) { return a.offset < b.offset; });
    size_t end = 0;
    for (const Member& member : byPlace) {
        if (member.offset > roundUp(end, member.alignment))
            break;
        end = std::max(end, member.offset + member.size * member.count);
    }
    if (roundUp(end, alignment) == size)
        return;
    complain("the description of %s leaves out what lies at %zu", name, end);
    abort();
}

std::string show(const Record& record, const void* data) {
    if (data == nullptr)
        return "null";
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    std::string out;
    for (const Member& member : record.members) {
        const uint8_t* at = bytes + member.offset;
        if ((member.applies != nullptr && !member.applies(data)) ||
            allZero(at, member.size * member.count))
            continue;
        out += (out.empty() ? "" : " ") + std::string(member.name) + "=" + showMember(member, at);
    }
    return "{" + out + "}";
}

std::string show(const Value& value) {
    if (value.data == nullptr)
        return "null";
    return showMember(value.member, static_cast<const uint8_t*>(value.data));
}

std::string showBytes(const void* data, size_t size, size_t most) {
    if (data == nullptr)
        return "null";
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    if (size == 0 || size > most)
        return format("%zu bytes", size);
    if (size <= wholeBytes)
        return hexOf(bytes, size);
    return format("%zu bytes %s.. crc32 %08" PRIx32, size, hexOf(bytes, firstBytes).c_str(),
                  crc32Of(bytes, size));
}

std::string showText(const char* text, size_t most) {
    if (text == nullptr)
        return "null";
    std::string out = "\"";
    for (size_t i = 0; i < most && text[i] != '\0'; i++) {
        char letter = text[i];
        if (letter < ' ' || letter > '~')
            out += format("\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(letter)));
        else
            out += (letter == '"' || letter == '\\' ? "\\" : "") + std::string(1, letter);
    }
    return out + "\"";
}

Value bytesValue(const char* name, void* data, size_t size) {
    Value value;
    value.member.name = name;
    value.member.size = 1;
    value.member.count = size;
    value.member.array = true;
    value.data = data;
    return value;
}

Value textValue(const char* name, char* data, size_t size) {
    Value value = bytesValue(name, data, size);
    value.member.kind = MemberKind::text;
    return value;
}

bool findMember(const Value& value, const std::string& path, Place* place) {
    if (value.data == nullptr)
        return false;
    uint8_t* at = static_cast<uint8_t*>(value.data);
    if (value.member.kind == MemberKind::record)
        return findWithin(value.member, at, "." + path, place);
    size_t length = strlen(value.member.name);
    return path.compare(0, length, value.member.name) == 0 &&
           findWithin(value.member, at, path.substr(length), place);
}

std::vector<MemberPath> memberPaths(const Value& value) {
    std::vector<MemberPath> paths;
    if (value.data != nullptr) {
        bool record = value.member.kind == MemberKind::record;
        collectPaths(value.member, static_cast<const uint8_t*>(value.data),
                     record ? "" : value.member.name, &paths);
    }
    return paths;
}

bool flipMember(const Place& place) {
    if (hasPointer(place.member))
        return false;
    uint8_t* bytes = static_cast<uint8_t*>(place.data);
    for (size_t i = 0; i < place.member.size * place.member.count; i++)
        bytes[i] ^= 0x55;
    return true;
}

void zeroMember(const Place& place) {
    memset(place.data, 0, place.member.size * place.member.count);
}

bool setMember(const Place& place, const std::string& word) {
    const Member& member = place.member;
    if (member.kind == MemberKind::text) {
        if (word.size() > member.count)
            return false;
        zeroMember(place);
        memcpy(place.data, word.data(), word.size());
        return true;
    }
    if (member.array || member.kind == MemberKind::record || member.kind == MemberKind::pointer)
        return false;
    if (member.kind == MemberKind::floating)
        return setFloating(place, word);
    uint64_t bits = 0;
    if (!readBits(member, word, &bits))
        return false;
    uint8_t bytes[sizeof bits];
    for (size_t i = 0; i < member.size; i++)
        bytes[i] = static_cast<uint8_t>(bits >> (8 * i));
    // Both this machine and the device are little-endian.
    memcpy(place.data, bytes, member.size);
    return true;
}

bool addToMember(const Place& place, const std::string& word) {
    const Member& member = place.member;
    int64_t number = 0;
    bool integer =
        member.kind == MemberKind::unsignedNumber || member.kind == MemberKind::signedNumber;
    if (!integer || member.array || !readNumber(word, INT64_MIN, INT64_MAX, &number))
        return false;
    uint64_t bits = 0;
    memcpy(&bits, place.data, member.size);
    bits += static_cast<uint64_t>(number);
    memcpy(place.data, &bits, member.size);
    return true;
}

}  // namespace sim
