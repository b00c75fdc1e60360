#include "testcase/videocc/cc708_parser.h"

#include <stddef.h>
#include <string.h>

#include <algorithm>

#include "framework/base/zk_log.h"

enum {
    /** Of a packet with the size code 0. */
    LARGEST_PACKET = 128,
    /** What two packets of one service may hold. */
    SERVICE_BUFFER = 252,
    SEQUENCE_ERRORS_ALLOWED = 5,
    EXTENDED_SERVICE = 7,
    /** Colours and sizes of six bits. */
    LARGEST_PARAMETER = 63,
};

uint8_t g_u8CC708_Service_Size;
uint8_t g_u8CC708_Packet_LastSeqNo;
uint8_t g_u8FCC708PacketSeqNo_MonitorFlag = 1;
uint16_t g_u16Sn_err_count;

/** Whether a packet is in sequence, or out of it for the first few times. */
static bool followSequence(uint8_t u8SeqNo, uint32_t u32PacketSize, bool bNeedCheckPktNumber) {
    if (g_u8FCC708PacketSeqNo_MonitorFlag == 1) {
        g_u8CC708_Packet_LastSeqNo = (u8SeqNo + 3) & 3;
        g_u8FCC708PacketSeqNo_MonitorFlag = 0;
    }
    zk_log("SeqNO: %x, LastSeqNO:%x,EachPacketBufferSize=%d,bNeedCheckPktNumber:%d\n", u8SeqNo,
           g_u8CC708_Packet_LastSeqNo, static_cast<int>(u32PacketSize), bNeedCheckPktNumber);
    if (!bNeedCheckPktNumber || u8SeqNo == ((g_u8CC708_Packet_LastSeqNo + 1) & 3))
        return true;
    g_u8FCC708PacketSeqNo_MonitorFlag = 1;
    zk_log("Warning: AV_CC708ServiceParser u8CC708_Packet_Sequence_Number(%d) is not in loop\n",
           u8SeqNo);
    if (++g_u16Sn_err_count <= SEQUENCE_ERRORS_ALLOWED)
        return true;
    zk_log("Error: AV_CC708ServiceParser u8CC708_Packet_Sequence_Number  too many err \n");
    return false;
}

/** Puts the blocks of the wanted service together. Returns their bytes in all. */
static uint32_t collectService(const uint8_t* pu8Data, uint32_t u32PacketSize, uint8_t u8Service,
                               uint8_t* pu8Buffer) {
    uint32_t u32Length = 0;
    for (uint32_t at = 1; at < u32PacketSize - 1;) {
        const uint8_t u8Header = pu8Data[at++];
        if (u8Header == 0) {
            zk_log("Warning: Cc708 Service Header is NULL\n");
            break;
        }
        uint8_t u8Number = u8Header >> 5;
        if (u8Number == EXTENDED_SERVICE)
            u8Number = pu8Data[at++] & 0x3F;
        // A block may claim more than there is.
        const uint32_t u32Block = std::min<uint32_t>(u8Header & 0x1F, u32PacketSize - 2);
        if (u8Number == u8Service) {
            const uint32_t u32There = std::min(u32Block, u32PacketSize - at);
            const uint32_t u32Taken = std::min(u32There, SERVICE_BUFFER - u32Length);
            memcpy(pu8Buffer + u32Length, pu8Data + at, u32Taken);
            u32Length += u32Taken;
        }
        zk_log("u8CC708_Service_Number = %d,CC708_Service_Size=%d,u8SerivceLen=%d\n\n", u8Number,
               static_cast<int>(u32Block), static_cast<int>(u32Length));
        at += u32Block;
    }
    return u32Length;
}

uint32_t AV_CC708ServiceParser(const uint8_t* pu8Data, uint32_t u32Length, uint8_t u8Service) {
    uint8_t u8Buffer[SERVICE_BUFFER];
    if (pu8Data == nullptr || u32Length == 0) {
        zk_log("Error: AV_CC708ServiceParser u32Length = %d\n", static_cast<int>(u32Length));
        return 0;
    }
    const uint8_t u8SeqNo = pu8Data[0] >> 6;
    uint32_t u32PacketSize = 2u * (pu8Data[0] & 0x3F);
    if (u32PacketSize == 0)
        u32PacketSize = LARGEST_PACKET;
    if (u32Length != u32PacketSize) {
        zk_log("Error: AV_CC708ServiceParser u32Length(%d) is not equal PacketBuffer_Size(%d)\n",
               static_cast<int>(u32Length), static_cast<int>(u32PacketSize));
        return 0;
    }
    const bool bNeedCheckPktNumber = pu8Data[1] != 0;
    if (!followSequence(u8SeqNo, u32PacketSize, bNeedCheckPktNumber))
        return 0;
    g_u8CC708_Service_Size =
        static_cast<uint8_t>(collectService(pu8Data, u32PacketSize, u8Service, u8Buffer));
    if (g_u8CC708_Service_Size != 0)
        AV_CC708CodingParser(u8Service, u8Buffer);
    if (bNeedCheckPktNumber)
        g_u8CC708_Packet_LastSeqNo = u8SeqNo;
    return 1;
}

bool AV_CC708CheckValidCodingLength(uint8_t u8Index, uint16_t u16Code) {
    uint32_t u32Need = 0;
    if (u16Code >= 0x88 && u16Code <= 0x8D)
        u32Need = 2;
    else if (u16Code == 0x91)
        u32Need = 4;
    else if (u16Code == 0x92)
        u32Need = 3;
    else if (u16Code == 0x97)
        u32Need = 5;
    else if (u16Code >= 0x98 && u16Code <= 0x9F)
        u32Need = 7;
    return u8Index + u32Need <= g_u8CC708_Service_Size;
}

/** Codes that are told by a text and have a number of parameters. */
struct CodeRow {
    uint8_t first;
    uint8_t last;
    const char* text;
    uint8_t extra;
};

static void tellName(const char* name) {
    zk_log("[%s]\n", name);
}

static void tellWindows(const char* name, uint8_t windows) {
    zk_log("[%s]:0x%x\n", name, windows);
}

/** Codes that are told by their name alone. */
static const CodeRow namedCodes[] = {
    {0x00, 0x00, "CODE_NULL", 0}, {0x01, 0x02, "CODE_SIGCMD_INVALID", 0},
    {0x03, 0x03, "CODE_ETX", 0},  {0x04, 0x07, "CODE_SIGCMD_INVALID", 0},
    {0x08, 0x08, "BS", 0},        {0x09, 0x0B, "CODE_SIGCMD_INVALID", 0},
    {0x0C, 0x0C, "CODE_FF", 0},   {0x0D, 0x0D, "CODE_CR", 0},
    {0x0E, 0x0E, "CODE_HCR", 0},  {0x0F, 0x0F, "CODE_SIGCMD_INVALID", 0},
    {0x88, 0x88, "CODE_CLW", 1},  {0x8D, 0x8D, "CODE_DLY", 1},
    {0x8E, 0x8E, "CODE_DLC", 0},  {0x8F, 0x8F, "CODE_RST", 0},
    {0x90, 0x90, "CODE_SPA", 2},  {0x92, 0x92, "CODE_SPL", 2},
    {0x93, 0x96, "CODE_NULL", 0}, {0x97, 0x97, "CODE_SWA", 4},
};

/** Codes that are told with the windows that they are for. */
static const CodeRow windowCodes[] = {
    {0x89, 0x89, "CODE_DSW", 1},
    {0x8A, 0x8A, "CODE_HDW", 1},
    {0x8B, 0x8B, "CODE_TGW", 1},
    {0x8C, 0x8C, "CODE_DLW", 1},
};

template <size_t N>
static const CodeRow* rowOf(const CodeRow (&rows)[N], uint8_t code) {
    for (const CodeRow& row : rows) {
        if (code >= row.first && code <= row.last)
            return &row;
    }
    return nullptr;
}

/** Ends the walk over the codes. */
enum { LEAVE = -1 };

/** A pen's colour: at the third parameter beyond its range, two are left. */
static int tellPenColour(const uint8_t* pu8Block, uint32_t u32Index) {
    zk_log("[CODE_SPC]\n");
    if (u32Index + 3 >= g_u8CC708_Service_Size)
        return LEAVE;
    if (pu8Block[u32Index + 3] <= LARGEST_PARAMETER)
        return 3;
    zk_log("[CODE_SPC]:Command Parameter Invalid !!!\n");
    return 2;
}

static int tellWindow(const uint8_t* pu8Block, uint32_t u32Index) {
    zk_log("[CODE_DF]%x\n", pu8Block[u32Index] + 104u);
    if (u32Index + 5 >= g_u8CC708_Service_Size - 1u || pu8Block[u32Index + 5] > LARGEST_PARAMETER ||
        pu8Block[u32Index + 6] > LARGEST_PARAMETER)
        return LEAVE;
    return 6;
}

/** Characters, and what brings in those of further sets. */
static int tellCharacter(const uint8_t* pu8Block, uint32_t u32Index) {
    const uint8_t code = pu8Block[u32Index];
    int extra = 0;
    zk_log("<%c : %x>\n", code, code);
    if (code >= 0x11 && code <= 0x17)
        extra = 1;
    else if (code >= 0x19 && code <= 0x1F)
        extra = 2;
    return u32Index + static_cast<uint32_t>(extra) < g_u8CC708_Service_Size ? extra : LEAVE;
}

/** Tells a code. Returns how many bytes behind it belong to it, or LEAVE. */
static int tellCode(const uint8_t* pu8Block, uint32_t u32Index) {
    const uint8_t code = pu8Block[u32Index];
    if (const CodeRow* row = rowOf(namedCodes, code)) {
        tellName(row->text);
        return row->extra;
    }
    if (const CodeRow* row = rowOf(windowCodes, code)) {
        tellWindows(row->text, pu8Block[u32Index + 1]);
        return row->extra;
    }
    if (code >= 0x80 && code <= 0x87) {
        zk_log("[CODE_CW:%d]\n", code - 0x80);
        return 0;
    }
    if (code == 0x91)
        return tellPenColour(pu8Block, u32Index);
    if (code >= 0x98 && code <= 0x9F)
        return tellWindow(pu8Block, u32Index);
    return tellCharacter(pu8Block, u32Index);
}

void AV_CC708CodingParser(uint8_t u8Service, const uint8_t* pu8Block) {
    static_cast<void>(u8Service);
    for (uint32_t u8Loopi = 0; u8Loopi < g_u8CC708_Service_Size; u8Loopi++) {
        zk_log("u8Loopi =%d,Called...", static_cast<int>(u8Loopi));
        if (!AV_CC708CheckValidCodingLength(static_cast<uint8_t>(u8Loopi), pu8Block[u8Loopi])) {
            zk_log("ERROR:AV_CC708CheckValidCodingLength error\n");
            return;
        }
        const int extra = tellCode(pu8Block, u8Loopi);
        if (extra == LEAVE)
            return;
        u8Loopi += static_cast<uint32_t>(extra);
    }
}
