// Encodings of workbook texts. The Unicode forms are converted here; for code pages the C library's
// iconv serves, with ISO 8859-1 in its place where it does not know the page.
#include "framework/workbook/text.h"

#include <iconv.h>
#include <stdio.h>

namespace {

const uint32_t kReplacement = 0xFFFD;

size_t putUtf8(uint32_t c, char* out) {
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | c >> 6);
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<char>(0xE0 | c >> 12);
        out[1] = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | c >> 18);
    out[1] = static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out[2] = static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

// Takes one character off `text`. A byte that starts no valid sequence counts alone. The NUL at
// the end is never passed, because it continues no sequence.
uint32_t takeUtf8(const uint8_t** text) {
    const uint8_t* p = *text;
    unsigned more = 0;
    uint32_t least = 0;
    uint32_t c = *p++;
    *text = p;
    if (c < 0x80) {
        return c;
    }
    if (c >= 0xC2 && c <= 0xDF) {
        more = 1;
        least = 0x80;
        c &= 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        more = 2;
        least = 0x800;
        c &= 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        more = 3;
        least = 0x10000;
        c &= 0x07;
    } else {
        return kReplacement;
    }
    for (; more > 0; more--, p++) {
        if ((*p & 0xC0) != 0x80) {
            return kReplacement;
        }
        c = c << 6 | (*p & 0x3F);
    }
    if (c < least || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        return kReplacement;
    }
    *text = p;
    return c;
}

iconv_t openCodePage(unsigned codePage) {
    char name[24];
    switch (codePage) {
        case 0x8000:
            snprintf(name, sizeof name, "MACINTOSH");
            break;
        case 0:
        case 1200:    // UTF-16 cannot be meant where a string is made of bytes.
        case 0x8001:  // the mark of the earlier BIFF versions for ANSI Latin
            snprintf(name, sizeof name, "CP1252");
            break;
        case 367:
            snprintf(name, sizeof name, "ASCII");
            break;
        default:
            snprintf(name, sizeof name, "CP%u", codePage);
            break;
    }
    return iconv_open("UTF-8", name);
}

}  // namespace

size_t utf8FromUtf16(const uint16_t* units, size_t count, char* out) {
    size_t length = 0;
    for (size_t i = 0; i < count; i++) {
        uint32_t c = units[i];
        if (c >= 0xD800 && c <= 0xDFFF) {
            bool paired =
                c <= 0xDBFF && i + 1 < count && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
            c = paired ? 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00u) : kReplacement;
        }
        length += putUtf8(c, out + length);
    }
    return length;
}

size_t utf16FromUtf8(const char* text, uint16_t* units, size_t limit) {
    const uint8_t* p = reinterpret_cast<const uint8_t*>(text);
    size_t count = 0;
    while (*p != 0) {
        uint32_t c = takeUtf8(&p);
        size_t need = c > 0xFFFF ? 2 : 1;
        if (need > limit - count) {
            break;
        }
        if (need == 2) {
            units[count++] = static_cast<uint16_t>(0xD800 + ((c - 0x10000) >> 10));
            units[count++] = static_cast<uint16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            units[count++] = static_cast<uint16_t>(c);
        }
    }
    return count;
}

char* utf8FromCodePage(unsigned codePage, const uint8_t* bytes, size_t count, StringArena* arena) {
    // No code page takes more than three bytes of UTF-8 for a byte.
    char* scratch = static_cast<char*>(malloc(count * 3 + 4));
    if (scratch == nullptr) {
        return nullptr;
    }
    char* out = scratch;
    char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes));
    size_t inLeft = count;
    size_t outLeft = count * 3;
    iconv_t converter = openCodePage(codePage);
    if (converter != reinterpret_cast<iconv_t>(-1)) {
        while (inLeft > 0 && iconv(converter, &in, &inLeft, &out, &outLeft) == SIZE_MAX &&
               inLeft > 0 && outLeft >= 3) {
            size_t written = putUtf8(kReplacement, out);
            out += written;
            outLeft -= written;
            in++;
            inLeft--;
        }
        iconv_close(converter);
    } else {
        for (size_t i = 0; i < count; i++) {
            out += putUtf8(bytes[i], out);
        }
    }
    char* text = arenaCopy(arena, scratch, static_cast<size_t>(out - scratch));
    free(scratch);
    return text;
}
