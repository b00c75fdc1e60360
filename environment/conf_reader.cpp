// The configuration reader. A start reads tens of thousands of keys, each by a scan of its file, so
// the scan looks at no more than it must: it jumps from header to header, and takes a line apart
// only when it is a header, or begins with the key in the section that is asked for.
#include "environment/conf_reader.h"

#include <ctype.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#define COMMON_CONFIG_FILE "config/common_config.cfg"

enum { LINE_MAX_LENGTH = 1022 };

char* strtrimr(char* s) {
    size_t length = strlen(s);
    while (length > 0 && strchr("\n\r ", s[length - 1]) != nullptr)
        length--;
    s[length] = '\0';
    return s;
}

char* strtriml(char* s) {
    size_t blanks = 0;
    while (isspace(static_cast<unsigned char>(s[blanks])))
        blanks++;
    memmove(s, s + blanks, strlen(s + blanks) + 1);
    return s;
}

char* strtrim(char* s) {
    return strtriml(strtrimr(s));
}

static char* removeWhiteSpace(char* s) {
    char* to = s;
    for (const char* from = s; *from != '\0'; from++) {
        if (!isspace(static_cast<unsigned char>(*from)))
            *to++ = *from;
    }
    *to = '\0';
    return s;
}

char* delspace(char* s) {
    strtrim(s);
    char* equals = strchr(s, '=');
    if (equals == nullptr)
        return removeWhiteSpace(s);
    char* value = strtrim(equals + 1);
    *equals = '\0';
    strtrim(s);
    size_t keyLength = strlen(s);
    s[keyLength] = '=';
    memmove(s + keyLength + 1, value, strlen(value) + 1);
    return s;
}

static void copyText(char* to, const char* from) {
    size_t length = strnlen(from, CONF_TEXT_SIZE - 1);
    memcpy(to, from, length);
    to[length] = '\0';
}

int32_t get_item_from_line(char* line, ConfItem* item) {
    delspace(line);
    if (line[0] == '#')
        return CONF_LINE_COMMENT;
    if (line[0] == '[' && line[strlen(line) - 1] == ']') {
        char* end = strchr(line, ']');
        *end = '\0';
        // An empty pair of brackets names no section: the last one goes on.
        if (line[1] != '\0')
            copyText(item->section, line + 1);
        item->key[0] = '\0';
        item->value[0] = '\0';
        return CONF_LINE_ITEM;
    }
    char* equals = strchr(line, '=');
    if (equals == nullptr)
        return CONF_LINE_EMPTY;
    *equals = '\0';
    copyText(item->key, line);
    copyText(item->value, equals + 1);
    return CONF_LINE_ITEM;
}

/** Reads a whole file into memory of malloc; null when it cannot be read. */
static char* readFile(const char* path, size_t* size) {
    // Without O_NONBLOCK a named pipe in the file's place would hold the start up for ever.
    int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return nullptr;
    struct stat status;
    char* text = nullptr;
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode))
        text = static_cast<char*>(malloc(static_cast<size_t>(status.st_size) + 1));
    *size = 0;
    while (text != nullptr && *size < static_cast<size_t>(status.st_size)) {
        ssize_t got = read(fd, text + *size, static_cast<size_t>(status.st_size) - *size);
        if (got <= 0)
            break;
        *size += static_cast<size_t>(got);
    }
    close(fd);
    return text;
}

static bool isBlank(const char* from, const char* to) {
    while (from < to && isspace(static_cast<unsigned char>(*from)))
        from++;
    return from == to;
}

/** The end of the line that starts at `line`, behind its newline; overlong ones are split. */
static const char* lineEnd(const char* line, const char* end) {
    size_t length = std::min<size_t>(static_cast<size_t>(end - line), LINE_MAX_LENGTH);
    const void* newline = memchr(line, '\n', length);
    return newline != nullptr ? static_cast<const char*>(newline) + 1 : line + length;
}

/** Takes the line between two addresses apart; ConfLine. */
static int32_t parseLine(const char* line, const char* end, ConfItem* item) {
    char copy[LINE_MAX_LENGTH + 1];
    size_t length = static_cast<size_t>(end - line);
    memcpy(copy, line, length);
    copy[length] = '\0';
    return get_item_from_line(copy, item);
}

/** The start of the next line that may be a header, `end` when there is none. `line` is the start
 *  of a line. */
static const char* nextHeader(const char* line, const char* end) {
    const char* from = line;
    for (;;) {
        const void* found = memchr(from, '[', static_cast<size_t>(end - from));
        if (found == nullptr)
            return end;
        const char* bracket = static_cast<const char*>(found);
        const void* newline = memrchr(line, '\n', static_cast<size_t>(bracket - line));
        if (newline != nullptr)
            line = static_cast<const char*>(newline) + 1;
        const char* start = line + (bracket - line) / LINE_MAX_LENGTH * LINE_MAX_LENGTH;
        if (isBlank(start, bracket))
            return start;
        from = bracket + 1;
    }
}

/** Scans the text of a file; the item holds the value when it is found. */
static bool findItem(const char* text, const char* end, const char* section, const char* key,
                     ConfItem* item) {
    size_t keyLength = strlen(key);
    const char* line = text;
    while (line < end) {
        bool inSection = strcmp(item->section, section) == 0;
        if (!inSection)
            line = nextHeader(line, end);
        const char* next = lineEnd(line, end);
        const char* first = line;
        while (first < next && isspace(static_cast<unsigned char>(*first)))
            first++;
        // A line that neither opens a section nor begins with the key need not be taken apart.
        size_t length = static_cast<size_t>(next - first);
        bool matters = length > 0 && (*first == '[' ||
                                      (length >= keyLength && memcmp(first, key, keyLength) == 0));
        if (matters && parseLine(line, next, item) == CONF_LINE_ITEM &&
            strcmp(item->key, key) == 0 && strcmp(item->section, section) == 0)
            return true;
        line = next;
    }
    return false;
}

int32_t read_conf_value(const char* section, const char* key, char* value, const char* path) {
    size_t size = 0;
    char* text = readFile(path, &size);
    if (text == nullptr)
        return 1;
    // Some editors put a byte order mark in front of the first line.
    static const char mark[] = {'\xEF', '\xBB', '\xBF'};
    bool marked = size >= sizeof mark && memcmp(text, mark, sizeof mark) == 0;
    ConfItem item = {};
    bool found = findItem(text + (marked ? sizeof mark : 0), text + size, section, key, &item);
    if (found)
        memcpy(value, item.value, strlen(item.value) + 1);
    free(text);
    return found ? 0 : 1;
}

/** A value as the device's 32-bit strtol reads it: out of range gives the nearest bound. */
static int32_t toNumber(const char* text) {
    long number = strtol(text, nullptr, 0);
    if (number > INT32_MAX)
        return INT32_MAX;
    if (number < INT32_MIN)
        return INT32_MIN;
    return static_cast<int32_t>(number);
}

int32_t get_conf_sting(const char* section, const char* key, char* value) {
    int32_t result = read_conf_value(section, key, value, COMMON_CONFIG_FILE);
    printf("[%s]%s=%s\n", section, key, value);
    return result;
}

int32_t get_conf_value(const char* section, const char* key, int32_t* value) {
    char text[CONF_TEXT_SIZE] = "";
    *value = 0;
    if (read_conf_value(section, key, text, COMMON_CONFIG_FILE) != 0)
        return 1;
    *value = toNumber(text);
    printf("%s=%d\n", key, *value);
    return 0;
}

int32_t get_conf_sting_self(const char* section, const char* key, char* value, const char* path) {
    if (read_conf_value(section, key, value, path) != 0 &&
        read_conf_value(section, key, value, COMMON_CONFIG_FILE) != 0)
        return 1;
    printf("[%s]%s=%s\n", section, key, value);
    return 0;
}

int32_t get_conf_value_self(const char* section, const char* key, int32_t* value,
                            const char* path) {
    char text[CONF_TEXT_SIZE] = "";
    *value = 0;
    if (read_conf_value(section, key, text, path) != 0 &&
        read_conf_value(section, key, text, COMMON_CONFIG_FILE) != 0)
        return 1;
    *value = toNumber(text);
    printf("[%s]%s=%d\n", section, key, *value);
    return 0;
}
