/*
 * Descriptions of the library's records: what the call trace shows of them, and what faults alter.
 *
 * A record is described once, next to the family whose calls take it, within namespace sim:
 *
 *     SIM_RECORD(QLX_Source, SIM_MEMBER(QLX_Source, eSourceType),
 *                SIM_MEMBER(QLX_Source, uSourceIndex), SIM_MEMBER(QLX_Source, eInputClass))
 *
 * Kind and size of a member follow from its type. A variant of a union is a member with a condition
 * on the record. Whatever of a record is not described is found when its description is first used,
 * and ends the process.
 *
 * Two runs with the same data show the same text: of a pointer nothing but whether it is null.
 */
#ifndef SIMULATOR_CORE_RECORD_H
#define SIMULATOR_CORE_RECORD_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace sim {

struct Record;

enum class MemberKind { unsignedNumber, signedNumber, floating, pointer, text, bytes, record };

struct Member {
    /** As the header calls it; "stDvbTerrestrial.stDvbT" for one that lies deeper. */
    const char* name = "";
    size_t offset = 0;
    /** Bytes of an element, and their number. */
    size_t size = 0;
    size_t count = 1;
    bool array = false;
    MemberKind kind = MemberKind::bytes;
    size_t alignment = 1;
    /** Of a nested record. */
    const Record* record = nullptr;
    /** Whether the record at hand has this member; null: always. */
    bool (*applies)(const void* record) = nullptr;
};

struct Record {
    const char* name;
    size_t size;
    std::vector<Member> members;

    /** Ends the process when the members leave a part of the record out. */
    Record(const char* recordName, size_t recordSize, size_t alignment,
           std::vector<Member> recordMembers);
};

/** The description of a record. Made by SIM_RECORD. */
template <typename T>
const Record& recordOf();

/** The description of a member or value of type T. */
template <typename T>
Member memberOf(const char* name, size_t offset = 0,
                bool (*applies)(const void* record) = nullptr) {
    using Element = std::remove_cv_t<std::remove_all_extents_t<T>>;
    Member member;
    member.name = name;
    member.offset = offset;
    member.size = sizeof(Element);
    member.count = sizeof(T) / sizeof(Element);
    member.array = std::is_array_v<T>;
    member.alignment = alignof(Element);
    member.applies = applies;
    if constexpr (std::is_class_v<Element>) {
        member.kind = MemberKind::record;
        member.record = &recordOf<Element>();
    } else if constexpr (std::is_pointer_v<Element>) {
        member.kind = MemberKind::pointer;
    } else if constexpr (std::is_floating_point_v<Element>) {
        member.kind = MemberKind::floating;
    } else if constexpr (std::is_array_v<T> && std::is_same_v<Element, char>) {
        member.kind = MemberKind::text;
    } else if constexpr (std::is_array_v<T> && sizeof(Element) == 1) {
        member.kind = MemberKind::bytes;
    } else {
        member.kind = std::is_enum_v<Element> || std::is_unsigned_v<Element>
                          ? MemberKind::unsignedNumber
                          : MemberKind::signedNumber;
    }
    return member;
}

#define SIM_MEMBER_TYPE(Type, member) \
    std::remove_reference_t<decltype((std::declval<Type&>().member))>
/** A member of a record's description. */
#define SIM_MEMBER(Type, member) \
    sim::memberOf<SIM_MEMBER_TYPE(Type, member)>(#member, offsetof(Type, member))
/** A member that is there when the condition, on `record`, holds. */
#define SIM_MEMBER_IF(Type, member, condition)                  \
    sim::memberOf<SIM_MEMBER_TYPE(Type, member)>(               \
        #member, offsetof(Type, member), [](const void* at) {   \
            const Type& record = *static_cast<const Type*>(at); \
            return (condition);                                 \
        })
#define SIM_RECORD(Type, ...)                                                                 \
    template <>                                                                               \
    inline const Record& recordOf<Type>() {                                                   \
        static const Record* instance =                                                       \
            new Record(#Type, sizeof(Type), alignof(Type), std::vector<Member>{__VA_ARGS__}); \
        return *instance;                                                                     \
    }

/** "{uFrequency=474000 eBandwidth=8}": the members that are not zero, "null" without a record. */
std::string show(const Record& record, const void* data);
template <typename T>
std::string show(const T* data) {
    return show(recordOf<T>(), data);
}

/**
 * Bytes that a program puts in: up to 16 of them in hexadecimal, of more their number, the first
 * eight and the CRC-32 of all.
 * @param most  what the device would take; of more nothing but the number is read
 */
std::string showBytes(const void* data, size_t size, size_t most = SIZE_MAX);

/** A text in quotation marks, up to its end or `most` characters; what is not printable as \xNN. */
std::string showText(const char* text, size_t most);

/** "null" or "set". */
inline const char* showPointer(const void* pointer) {
    return pointer == nullptr ? "null" : "set";
}
template <typename Result, typename... Arguments>
const char* showPointer(Result (*function)(Arguments...)) {
    return function == nullptr ? "null" : "set";
}

/** A value on its way to the program, with its description. */
struct Value {
    Member member;
    void* data = nullptr;
    /** A handle, a length, an event's number: no payload. Only faults that name it alter it. */
    bool marked = false;

    size_t size() const {
        return member.size * member.count;
    }
};

/** A record or number. @param name  as faults call it, of a number */
template <typename T>
Value value(const char* name, T* data) {
    return {memberOf<T>(name), data, false};
}
/** A handle, length or count. */
template <typename T>
Value marked(const char* name, T* data) {
    return {memberOf<T>(name), data, true};
}
/** A buffer or a text of `size` bytes. */
Value bytesValue(const char* name, void* data, size_t size);
Value textValue(const char* name, char* data, size_t size);

/** What the trace shows of a value. */
std::string show(const Value& value);

/** Where a member lies. */
struct Place {
    Member member;
    void* data;
};

/**
 * Finds a member of a value: "uPid", "stDigital.stAtscT3.stL1DetailPlp[3].uPlpId", of a number or
 * buffer its own name. False when the value has no such member now.
 */
bool findMember(const Value& value, const std::string& path, Place* place);

/** A member that faults can alter. */
struct MemberPath {
    std::string path;
    bool zero;
};

/** The members of a value down to numbers, texts and bytes, without pointers: of an array of
 * records those of the first element, and of the last that is not all zero. */
std::vector<MemberPath> memberPaths(const Value& value);

/** Inverts every second bit. False for a pointer, which would then lead astray. */
bool flipMember(const Place& place);
void zeroMember(const Place& place);
/** Sets a number or a text; false, with the member untouched, when it cannot hold the word. */
bool setMember(const Place& place, const std::string& word);
/** Adds to an integer; false when the member is none, or `word` no number. */
bool addToMember(const Place& place, const std::string& word);

}  // namespace sim

#endif
