/*
 * What the cases of the AV modules share: what they run on, and how a variant runs its base.
 */
#ifndef TESTCASE_AV_AV_CASE_H
#define TESTCASE_AV_AV_CASE_H

#include <stdint.h>
#include <stdio.h>

#include "environment/test_env.h"
#include "framework/case/check.h"
#include "testcase/av/av_decoder.h"

/** What a case runs on: a kind of source and its device, with decoders 0. */
struct AvSelector {
    /** AvSourceKind. */
    uint32_t eSource;
    /** ZkFeature that the board must have, or AV_ON_EVERY_BOARD. */
    uint32_t feature;
    /** Port, tuner or demultiplexer; of a broadcast, the tuner. */
    uint32_t device;
    /** Of a broadcast, the demultiplexer. */
    uint32_t eDemuxDev;
    /** The arguments of a base, as its failed call is printed. */
    const char* arguments;
};

enum { AV_ON_EVERY_BOARD = FEATURE_COUNT };

// clang-format off
//                              source            feature            device     text
constexpr AvSelector cvbs0  = {AV_SOURCE_CVBS,  FEATURE_CVBS0,     0, 0, "0"};
constexpr AvSelector cvbs1  = {AV_SOURCE_CVBS,  FEATURE_CVBS1,     1, 0, "1"};
constexpr AvSelector hdmi0  = {AV_SOURCE_HDMI,  FEATURE_HDMI0,     0, 0, "0"};
constexpr AvSelector hdmi1  = {AV_SOURCE_HDMI,  FEATURE_HDMI1,     1, 0, "1"};
constexpr AvSelector hdmi2  = {AV_SOURCE_HDMI,  FEATURE_HDMI2,     2, 0, "2"};
constexpr AvSelector ypbpr0 = {AV_SOURCE_YPBPR, FEATURE_YPBPR0,    0, 0, "0"};
constexpr AvSelector ypbpr1 = {AV_SOURCE_YPBPR, FEATURE_YPBPR1,    1, 0, "1"};
constexpr AvSelector atv0   = {AV_SOURCE_ATV,   AV_ON_EVERY_BOARD, 0, 0, "QLX_TUNER_0"};
constexpr AvSelector atv1   = {AV_SOURCE_ATV,   AV_ON_EVERY_BOARD, 1, 0, "QLX_TUNER_1"};
constexpr AvSelector atv2   = {AV_SOURCE_ATV,   AV_ON_EVERY_BOARD, 2, 0, "QLX_TUNER_2"};
constexpr AvSelector atv3   = {AV_SOURCE_ATV,   AV_ON_EVERY_BOARD, 3, 0, "QLX_TUNER_3"};
constexpr AvSelector pvr0   = {AV_SOURCE_PVR,   AV_ON_EVERY_BOARD, 0, 0, "QLX_DEMUX_0"};
constexpr AvSelector pvr1   = {AV_SOURCE_PVR,   AV_ON_EVERY_BOARD, 1, 0, "QLX_DEMUX_1"};
constexpr AvSelector pvr2   = {AV_SOURCE_PVR,   AV_ON_EVERY_BOARD, 2, 0, "QLX_DEMUX_2"};
constexpr AvSelector pvr3   = {AV_SOURCE_PVR,   AV_ON_EVERY_BOARD, 3, 0, "QLX_DEMUX_3"};
// Tuner, then demultiplexer.
constexpr AvSelector dtv00  = {AV_SOURCE_DTV,   AV_ON_EVERY_BOARD, 0, 0, "QLX_TUNER_0, QLX_DEMUX_0"};
constexpr AvSelector dtv10  = {AV_SOURCE_DTV,   AV_ON_EVERY_BOARD, 1, 0, "QLX_TUNER_1, QLX_DEMUX_0"};
constexpr AvSelector dtv01  = {AV_SOURCE_DTV,   AV_ON_EVERY_BOARD, 0, 1, "QLX_TUNER_0, QLX_DEMUX_1"};
constexpr AvSelector dtv11  = {AV_SOURCE_DTV,   AV_ON_EVERY_BOARD, 1, 1, "QLX_TUNER_1, QLX_DEMUX_1"};
// clang-format on

/** Whether the board has it. */
bool AV_IsOnBoard(const AvSelector& selector);

/** The configured source with the selector's kind and devices, and decoders 0. */
AvSource AV_SelectSource(const AvSelector& selector);

/** The same of a manual broadcast case: besides, all is 0 but the channel, which the console reads
 *  for the case (AV_DtvTestCaseSetup). */
AvSource AV_SelectManualSource(const AvSelector& selector);

/** The name of a variant's base, TC_AV_CvbsOpenClose_027_base of TC_AV_CvbsOpenClose_027_01. */
struct AvBaseName {
    char text[64];
};
AvBaseName AV_BaseNameOf(const char* variant);

/**
 * The whole of a variant: runs its base, and prints its verdict behind that of the base.
 * @param name       the variant's
 * @param arguments  of the base, as its failed call is printed
 * @param base       called with the base's name; any answer but TC_SUCCESS is a failure
 */
template <typename Base>
uint32_t AV_RunVariant(const char* name, const char* arguments, Base base) {
    CaseContext tc = {name};
    const AvBaseName baseName = AV_BaseNameOf(name);
    char text[256];
    snprintf(text, sizeof text, "%s(%s)", baseName.text, arguments);
    TC_EXPECT_RET_TEXT(text, base(baseName.text));
    return TC_RESULT(tc);
}

/** A row of another module's: nothing. */
#define AV_NOT_HERE(...)

#endif
