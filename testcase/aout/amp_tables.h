/*
 * Register tables of the power amplifiers, as their chips are loaded after a reset.
 *
 * A table is a run of records: data length N, register address, N bytes of data. A record of length
 * 0 ends it; the first record always has data. The order matters, and registers repeat on purpose:
 * a chip is muted before its coefficients are written, and unmuted behind them.
 */
#ifndef TESTCASE_AOUT_AMP_TABLES_H
#define TESTCASE_AOUT_AMP_TABLES_H

#include <stdint.h>

extern const uint8_t g_u8AmpNF8212InitTbl[109];
extern const uint8_t g_u8AmpNF8214InitTbl[109];
extern const uint8_t g_u8AmpNF8822InitTbl[607];
extern const uint8_t g_u8AmpTI5711InitTbl[626];
extern const uint8_t g_u8AmpNF8928InitTbl[820];

#endif
