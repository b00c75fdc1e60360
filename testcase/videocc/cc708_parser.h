/*
 * The packets of the DTV caption channel (CTA-708), taken apart down to the codes of a service,
 * each of which is told on the console. Nothing is drawn: the parse shows that the data are well
 * formed.
 *
 * State is kept from packet to packet and from case to case. One thread at a time.
 */
#ifndef TESTCASE_VIDEOCC_CC708_PARSER_H
#define TESTCASE_VIDEOCC_CC708_PARSER_H

#include <stdint.h>

/** Bytes of the service that the last packet held, 0 to 252. */
extern uint8_t g_u8CC708_Service_Size;
/** Sequence number of the last packet with a block. */
extern uint8_t g_u8CC708_Packet_LastSeqNo;
/** 1: the next packet's number is taken as it is. */
extern uint8_t g_u8FCC708PacketSeqNo_MonitorFlag;
/** Packets out of sequence so far; the owner of a case sets it to 0. */
extern uint16_t g_u16Sn_err_count;

/**
 * Takes a packet.
 * @param u32Length  of the data, which has to be that of the packet
 * @param u8Service  whose codes are told, 1 to 63
 * @return 1; 0 for a packet of another length, or after more than five out of sequence
 */
uint32_t AV_CC708ServiceParser(const uint8_t* pu8Data, uint32_t u32Length, uint8_t u8Service);

/** Tells the codes of a service, of which there are g_u8CC708_Service_Size bytes; ends at the first
 *  that is not whole. */
void AV_CC708CodingParser(uint8_t u8Service, const uint8_t* pu8Block);

/** Whether a code at a place still has its parameters within the service's bytes. */
bool AV_CC708CheckValidCodingLength(uint8_t u8Index, uint16_t u16Code);

#endif
