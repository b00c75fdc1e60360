/* Kinds of signal source, shared by all families that take their input from another device. */
#ifndef PLATFORM_QLX_SOURCE_H
#define PLATFORM_QLX_SOURCE_H

#include "platform/qlx_types.h"

enum QLX_SourceType {
    QLX_SOURCE_TYPE_NONE = 0,
    QLX_SOURCE_TYPE_TUNER = 1,
    QLX_SOURCE_TYPE_AV_CVBS = 2,
    QLX_SOURCE_TYPE_AV_YPBPR = 5,
    QLX_SOURCE_TYPE_VGA = 9,
    QLX_SOURCE_TYPE_HDMI = 10,
    QLX_SOURCE_TYPE_LOCAL_PLAYER = 11,
    /** A recording in play: transport stream that a program writes into a demultiplexer. */
    QLX_SOURCE_TYPE_RECORD = 12,
    QLX_SOURCE_TYPE_STREAM_INJECT = 14,
    QLX_SOURCE_TYPE_DEMUX = 16,
    /** No kind of source; every call that takes a kind refuses it. */
    QLX_SOURCE_TYPE_INVALID = 0xffff,
};

/** How the input stage in front of a decoder or an output is switched. */
enum QLX_InputClass {
    /** No analog input stage: broadcast, recordings, streams, HDMI, VGA. */
    QLX_INPUT_CLASS_NONE = 0,
    QLX_INPUT_CLASS_CVBS = 1,
    QLX_INPUT_CLASS_YPBPR = 3,
};

/** A source: which device of which kind. */
typedef struct QLX_Source {
    /** QLX_SourceType. */
    uint32_t eSourceType;
    /** Number of the device among its kind, from 0. */
    uint32_t uSourceIndex;
    /** QLX_InputClass; a demultiplexer's source has none. */
    uint32_t eInputClass;
} QLX_Source;
QLX_RECORD_SIZE(QLX_Source, 12);

#endif
