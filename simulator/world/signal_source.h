/*
 * Sources whose picture and sound come without coded data: external inputs (QLX_SOURCE_TYPE_HDMI,
 * _AV_CVBS, _AV_YPBPR, _VGA, with the port's number) and analog front ends (QLX_SOURCE_TYPE_TUNER,
 * with the tuner's).
 *
 * The families of inputs and front ends tell here what they receive; decoders and outputs ask, and
 * hear of changes by a SignalListener. Any thread may call, also with a family's lock held.
 */
#ifndef SIMULATOR_WORLD_SIGNAL_SOURCE_H
#define SIMULATOR_WORLD_SIGNAL_SOURCE_H

#include <stdint.h>

#include <string>

namespace sim {

/** A picture as it comes in. */
struct SignalPicture {
    uint16_t width = 0; /**< Pixels of a frame. */
    uint16_t height = 0;
    uint32_t rateNumerator = 0; /**< Frames a second, not fields: 25/1, 30000/1001. */
    uint32_t rateDenominator = 1;
    bool interlaced = false;
    uint8_t aspectWidth = 16; /**< Of the whole picture: 16:9, 4:3. */
    uint8_t aspectHeight = 9;
};

/** Sound as it comes in: a tone. */
struct SignalSound {
    uint8_t channels = 0; /**< 0: the source has no sound. */
    uint32_t samplingRate = 48000;
    uint32_t toneHz = 0;
};

struct SignalSource {
    /** Whether the program has opened the input or the front end. Nothing is received before. */
    bool open = false;
    /** Whether a signal is received and stable. */
    bool locked = false;
    /** Device time (nowMs) since which it is locked; 0 while it is not. */
    int64_t sinceMs = 0;
    /** What the source calls itself in its picture: "HDMI 1", "ATV 471.25 MHz". */
    std::string name;
    SignalPicture picture; /**< Holds while locked. */
    SignalSound sound;     /**< Holds while locked. */
};

/** The source as it is now; one that does not exist is not open. */
SignalSource signalSource(uint32_t kind, uint32_t index);

/**
 * Which source of a kind a decoder takes that is connected to number `wanted`: this one when it is
 * open, else the first of the kind that is. A program may name another front end than the one that
 * it has opened.
 * @return false when none of the kind is open
 */
bool findOpenSource(uint32_t kind, uint32_t wanted, uint32_t* index);

/** For the family of the source: how it is from now on. Tells who listens when that is news. */
void setSignalSource(uint32_t kind, uint32_t index, const SignalSource& source);

/**
 * Who is told of changes, from the loading of the library on. `told` runs on the thread that made
 * the change, which may hold a family's lock: post what is to be done on a thread of your own.
 * Define it at namespace scope.
 */
class SignalListener {
 public:
    explicit SignalListener(void (*told)(uint32_t kind, uint32_t index));
};

}  // namespace sim

#endif
