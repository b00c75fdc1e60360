// Encodings of workbook texts. The Unicode forms are converted here; for code pages the C library's
// iconv serves, with tables for pages that it lacks and ISO 8859-1 in its place for all others.
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

// Pages of one byte a character whose upper half iconv does not know; the lower one is ASCII.
struct UpperHalf {
    unsigned codePage;
    uint16_t units[128];
};

// clang-format off
const UpperHalf kUpperHalves[] = {
    {720,  // Arabic, as DOS has it
     {
         0x0080, 0x0081, 0x00E9, 0x00E2, 0x0084, 0x00E0, 0x0086, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF,
         0x00EE, 0x008D, 0x008E, 0x008F, 0x0090, 0x0651, 0x0652, 0x00F4, 0x00A4, 0x0640, 0x00FB, 0x00F9,
         0x0621, 0x0622, 0x0623, 0x0624, 0x00A3, 0x0625, 0x0626, 0x0627, 0x0628, 0x0629, 0x062A, 0x062B,
         0x062C, 0x062D, 0x062E, 0x062F, 0x0630, 0x0631, 0x0632, 0x0633, 0x0634, 0x0635, 0x00AB, 0x00BB,
         0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557,
         0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,
         0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
         0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,
         0x0636, 0x0637, 0x0638, 0x0639, 0x063A, 0x0641, 0x00B5, 0x0642, 0x0643, 0x0644, 0x0645, 0x0646,
         0x0647, 0x0648, 0x0649, 0x064A, 0x2261, 0x064B, 0x064C, 0x064D, 0x064E, 0x064F, 0x0650, 0x2248,
         0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0,
     }},
    {10006,  // Greek, as a Macintosh has it
     {
         0x00C4, 0x00B9, 0x00B2, 0x00C9, 0x00B3, 0x00D6, 0x00DC, 0x0385, 0x00E0, 0x00E2, 0x00E4, 0x0384,
         0x00A8, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00A3, 0x2122, 0x00EE, 0x00EF, 0x2022, 0x00BD,
         0x2030, 0x00F4, 0x00F6, 0x00A6, 0x20AC, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x0393, 0x0394, 0x0398,
         0x039B, 0x039E, 0x03A0, 0x00DF, 0x00AE, 0x00A9, 0x03A3, 0x03AA, 0x00A7, 0x2260, 0x00B0, 0x00B7,
         0x0391, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x0392, 0x0395, 0x0396, 0x0397, 0x0399, 0x039A, 0x039C,
         0x03A6, 0x03AB, 0x03A8, 0x03A9, 0x03AC, 0x039D, 0x00AC, 0x039F, 0x03A1, 0x2248, 0x03A4, 0x00AB,
         0x00BB, 0x2026, 0x00A0, 0x03A5, 0x03A7, 0x0386, 0x0388, 0x0153, 0x2013, 0x2015, 0x201C, 0x201D,
         0x2018, 0x2019, 0x00F7, 0x0389, 0x038A, 0x038C, 0x038E, 0x03AD, 0x03AE, 0x03AF, 0x03CC, 0x038F,
         0x03CD, 0x03B1, 0x03B2, 0x03C8, 0x03B4, 0x03B5, 0x03C6, 0x03B3, 0x03B7, 0x03B9, 0x03BE, 0x03BA,
         0x03BB, 0x03BC, 0x03BD, 0x03BF, 0x03C0, 0x03CE, 0x03C1, 0x03C3, 0x03C4, 0x03B8, 0x03C9, 0x03C2,
         0x03C7, 0x03C5, 0x03B6, 0x03CA, 0x03CB, 0x0390, 0x03B0, 0x00AD,
     }},
    {10081,  // Turkish, as a Macintosh has it
     {
         0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
         0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
         0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
         0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
         0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
         0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
         0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
         0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x011E, 0x011F, 0x0130, 0x0131, 0x015E, 0x015F,
         0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
         0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0xF8A0, 0x02C6, 0x02DC,
         0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
     }},
};
// clang-format on

iconv_t openCodePage(unsigned codePage) {
    char name[24];
    switch (codePage) {
        case 0x8000:
        case 10000:
            snprintf(name, sizeof name, "MACINTOSH");
            break;
        case 10029:
            snprintf(name, sizeof name, "MAC-CENTRALEUROPE");
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

// Converts with iconv; what it cannot convert shows as U+FFFD. Returns the end of the text.
char* convertByIconv(iconv_t converter, const uint8_t* bytes, size_t count, char* out) {
    char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes));
    size_t inLeft = count;
    // Behind each byte that is passed over there is room for the three bytes of U+FFFD.
    size_t outLeft = count * 3;
    for (;;) {
        bool failed = iconv(converter, &in, &inLeft, &out, &outLeft) == SIZE_MAX;
        // A letter that an accent may follow is held back until it is asked for.
        iconv(converter, nullptr, nullptr, &out, &outLeft);
        if (!failed || inLeft == 0 || outLeft < 3) {
            return out;
        }
        size_t written = putUtf8(kReplacement, out);
        out += written;
        outLeft -= written;
        in++;
        inLeft--;
    }
}

char* convertByTable(const uint16_t* upperHalf, const uint8_t* bytes, size_t count, char* out) {
    for (size_t i = 0; i < count; i++) {
        bool upper = bytes[i] >= 0x80 && upperHalf != nullptr;
        out += putUtf8(upper ? upperHalf[bytes[i] - 0x80] : bytes[i], out);
    }
    return out;
}

const uint16_t* findUpperHalf(unsigned codePage) {
    for (const UpperHalf& half : kUpperHalves) {
        if (half.codePage == codePage) {
            return half.units;
        }
    }
    return nullptr;
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
    char* end;
    const uint16_t* upperHalf = findUpperHalf(codePage);
    iconv_t converter =
        upperHalf == nullptr ? openCodePage(codePage) : reinterpret_cast<iconv_t>(-1);
    if (converter != reinterpret_cast<iconv_t>(-1)) {
        end = convertByIconv(converter, bytes, count, scratch);
        iconv_close(converter);
    } else {
        end = convertByTable(upperHalf, bytes, count, scratch);
    }
    char* text = arenaCopy(arena, scratch, static_cast<size_t>(end - scratch));
    free(scratch);
    return text;
}
