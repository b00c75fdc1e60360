// Encodings of workbook texts: UTF-16 in BIFF8, a code page of bytes in BIFF5, UTF-8 outside.
// What cannot be converted shows as U+FFFD, so every text comes through.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "framework/workbook/bytes.h"

// Converts `count` UTF-16 units to UTF-8 and returns the number of bytes, at most 3 * count.
// No NUL is added.
size_t utf8FromUtf16(const uint16_t* units, size_t count, char* out);

// Converts UTF-8 up to its NUL into at most `limit` UTF-16 units and returns their number. What is
// too long is cut between characters.
size_t utf16FromUtf8(const char* text, uint16_t* units, size_t limit);

// Converts bytes of a Windows code page (as a CODEPAGE record numbers it) to UTF-8 in the arena.
// Returns the text with its NUL, or null without memory.
char* utf8FromCodePage(unsigned codePage, const uint8_t* bytes, size_t count, StringArena* arena);
