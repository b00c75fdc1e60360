/* The console's question which platform the program runs on. */
#ifndef FRAMEWORK_PLATFORM_SELECT_H
#define FRAMEWORK_PLATFORM_SELECT_H

#include <stdint.h>

#include "environment/config_files.h"

/** Offers the platforms on the console, reads one number and takes that platform. Returns 0, or -1
 *  when the operator quits. */
int32_t select_platform(ConfigFiles* files, int32_t* index);

#endif
