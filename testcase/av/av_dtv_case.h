/* What the broadcast families of AV-DTV share beside what all sources have (av_case.h). */
#ifndef TESTCASE_AV_AV_DTV_CASE_H
#define TESTCASE_AV_AV_DTV_CASE_H

#include <stdint.h>
#include <stdio.h>

#include "testcase/av/av_case.h"

/** The whole of a variant on a tuner and a demultiplexer.
 *  @param devices  the decoders of its base's arguments, ahead of the selector's */
template <typename Base>
uint32_t AV_RunDtvVariant(const char* name, const char* devices, const AvSelector& selector,
                          Base base) {
    char arguments[96];
    snprintf(arguments, sizeof arguments, "%s, %s", devices, selector.arguments);
    return AV_RunVariant(name, arguments, base);
}

#endif
