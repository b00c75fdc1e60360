/* What the EEPROM cases share. */
#ifndef TESTCASE_EEPROM_EEPROM_HARNESS_H
#define TESTCASE_EEPROM_EEPROM_HARNESS_H

#include <stdint.h>

/** An address below `range`, drawn anew from the time of day in seconds: two calls within a second
 *  give the same. A range of 0 is none, and gives 4. Prints the result. */
uint32_t get_random_address(uint32_t range);

#endif
