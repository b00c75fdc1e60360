// Records of the workbook stream ([MS-XLS]). Each is a number and a length of two bytes each, then
// its content; what is longer than 8224 bytes goes on in CONTINUE records.
#pragma once

#include <stddef.h>
#include <stdint.h>

enum BiffRecord : uint16_t {
    BIFF_FORMULA = 0x0006,
    BIFF_EOF = 0x000A,
    BIFF_FILEPASS = 0x002F,
    BIFF_FONT = 0x0031,
    BIFF_CONTINUE = 0x003C,
    BIFF_WINDOW1 = 0x003D,
    BIFF_CODEPAGE = 0x0042,
    BIFF_BOUNDSHEET = 0x0085,
    BIFF_MULRK = 0x00BD,
    BIFF_MULBLANK = 0x00BE,
    BIFF_RSTRING = 0x00D6,
    BIFF_XF = 0x00E0,
    BIFF_SST = 0x00FC,
    BIFF_LABELSST = 0x00FD,
    BIFF_DIMENSIONS = 0x0200,
    BIFF_BLANK = 0x0201,
    BIFF_NUMBER = 0x0203,
    BIFF_LABEL = 0x0204,
    BIFF_BOOLERR = 0x0205,
    BIFF_FORMULA3 = 0x0206,  // as earlier versions number it; some writers still do
    BIFF_STRING = 0x0207,
    BIFF_ROW = 0x0208,
    BIFF_WINDOW2 = 0x023E,
    BIFF_RK = 0x027E,
    BIFF_STYLE = 0x0293,
    BIFF_FORMULA4 = 0x0406,
    BIFF_BOF = 0x0809
};

const uint16_t kBiffVersion5 = 0x0500;
const uint16_t kBiffVersion8 = 0x0600;
const uint16_t kBiffGlobals = 0x0005;    // kinds of substream, in a BOF record
const uint16_t kBiffWorksheet = 0x0010;  //
const size_t kBiffHeaderSize = 4;
const size_t kBiffMaxContent = 8224;

// The option bits of a BIFF8 string.
const uint8_t kBiffWide = 0x01;      // two bytes a character
const uint8_t kBiffPhonetic = 0x04;  // phonetic data follows the characters
const uint8_t kBiffRich = 0x08;      // formatting runs follow the characters
