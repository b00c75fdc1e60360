// What the workbook reader and writer share: little-endian numbers, a buffer that grows, and an
// arena for strings. All memory comes from malloc, and to be without it is an ordinary result.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

inline uint16_t getLe16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

inline uint32_t getLe32(const uint8_t* p) {
    return getLe16(p) | static_cast<uint32_t>(getLe16(p + 2)) << 16;
}

inline uint64_t getLe64(const uint8_t* p) {
    return getLe32(p) | static_cast<uint64_t>(getLe32(p + 4)) << 32;
}

inline void putLe16(uint8_t* p, unsigned value) {
    p[0] = static_cast<uint8_t>(value);
    p[1] = static_cast<uint8_t>(value >> 8);
}

inline void putLe32(uint8_t* p, uint32_t value) {
    putLe16(p, value & 0xFFFF);
    putLe16(p + 2, value >> 16);
}

inline void putLe64(uint8_t* p, uint64_t value) {
    putLe32(p, static_cast<uint32_t>(value));
    putLe32(p + 4, static_cast<uint32_t>(value >> 32));
}

// An all-zero one is empty. Its memory is kept until bufferFree.
struct ByteBuffer {
    uint8_t* data;
    size_t size;
    size_t capacity;
};

// Makes room for an array of `count` records of `recordSize` bytes, of which `*capacity` fit now.
// At least doubles it. False without memory, and then nothing has changed.
inline bool growArray(void** array, size_t* capacity, size_t count, size_t recordSize) {
    if (count <= *capacity) {
        return true;
    }
    size_t wanted = *capacity < 8 ? 8 : *capacity;
    while (wanted < count) {
        if (wanted > SIZE_MAX / 2 / recordSize) {
            return false;
        }
        wanted *= 2;
    }
    void* grown = realloc(*array, wanted * recordSize);
    if (grown == nullptr) {
        return false;
    }
    *array = grown;
    *capacity = wanted;
    return true;
}

// Makes room for `more` bytes behind those in the buffer. False without memory.
inline bool bufferReserve(ByteBuffer* buffer, size_t more) {
    if (more > SIZE_MAX - buffer->size) {
        return false;
    }
    void* data = buffer->data;
    bool ok = growArray(&data, &buffer->capacity, buffer->size + more, 1);
    buffer->data = static_cast<uint8_t*>(data);
    return ok;
}

// Lengthens the buffer by `count` bytes, for which there must be room; returns where they start.
inline uint8_t* bufferExtend(ByteBuffer* buffer, size_t count) {
    uint8_t* place = buffer->data + buffer->size;
    buffer->size += count;
    return place;
}

inline void bufferFree(ByteBuffer* buffer) {
    free(buffer->data);
    *buffer = ByteBuffer{};
}

// Strings that are freed together. An all-zero one is empty.
struct StringArena {
    struct Block {
        Block* previous;
        size_t size;
        size_t used;
    };
    Block* last;
};

// Room for `size` bytes in the arena, or null.
inline char* arenaReserve(StringArena* arena, size_t size) {
    const size_t blockSize = 16 * 1024;
    StringArena::Block* block = arena->last;
    if (block == nullptr || block->size - block->used < size) {
        size_t wanted = size > blockSize ? size : blockSize;
        if (wanted > SIZE_MAX - sizeof(StringArena::Block)) {
            return nullptr;
        }
        block = static_cast<StringArena::Block*>(malloc(sizeof(StringArena::Block) + wanted));
        if (block == nullptr) {
            return nullptr;
        }
        *block = StringArena::Block{arena->last, wanted, 0};
        arena->last = block;
    }
    char* place = reinterpret_cast<char*>(block + 1) + block->used;
    block->used += size;
    return place;
}

// A copy of `length` characters of `text` with a NUL behind them, or null.
inline char* arenaCopy(StringArena* arena, const char* text, size_t length) {
    char* copy = arenaReserve(arena, length + 1);
    if (copy != nullptr) {
        memcpy(copy, text, length);
        copy[length] = '\0';
    }
    return copy;
}

inline void arenaFree(StringArena* arena) {
    while (arena->last != nullptr) {
        StringArena::Block* previous = arena->last->previous;
        free(arena->last);
        arena->last = previous;
    }
}
