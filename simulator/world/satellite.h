/*
 * The antenna of a satellite tuner: LNB, switch and user bands at the far end of the cable.
 *
 * Supply and tone select polarization and band, a tone burst or a DiSEqC message the input of the
 * switch. The LNB also understands ODU_Channel_change (EN 50494): from the first such message until
 * the supply is taken away it delivers user bands, each with the piece of spectrum that its last
 * message asked for, and no longer follows supply and tone.
 *
 * An antenna has no lock: its tuner's lock guards it.
 */
#ifndef SIMULATOR_WORLD_SATELLITE_H
#define SIMULATOR_WORLD_SATELLITE_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace sim {

constexpr uint32_t userBandCount = 8;

/** Values of QLX_TunerSetLnbPower's, the tone as a flag. */
class SatelliteAntenna {
 public:
    /** Where a frequency on the cable comes from. */
    struct Source {
        bool powered = false;
        bool horizontal = false;
        bool highBand = false;
        uint32_t position = 0;
        /** Intermediate frequency behind the LNB, before a user band moved it, in kHz. */
        int64_t frequency = 0;
    };

    void setPower(uint32_t power);
    void setTone(bool on);
    void toneBurst(uint32_t burst);

    /** Takes a DiSEqC message and returns the answer, empty when none is due. */
    std::vector<uint8_t> message(const uint8_t* bytes, size_t length);

    /** Looks from the tuner into the cable. */
    Source sourceOf(int64_t cableFrequency) const;

    uint32_t power() const {
        return power_;
    }
    bool tone() const {
        return tone_;
    }
    /** Whether user bands are delivered. */
    bool channelRouter() const {
        return router_;
    }

 private:
    void channelChange(const uint8_t* data);

    struct UserBand {
        bool on = false;
        uint32_t bank = 0;
        /** Oscillator of the user band, in kHz; the user band mirrors what it takes. */
        int64_t oscillator = 0;
    };

    uint32_t power_ = 0;
    bool tone_ = false;
    /** Committed switch: position in bit 2, option in bit 3, as in DiSEqC's Write N0. */
    uint32_t switch_ = 0;
    bool router_ = false;
    UserBand bands_[userBandCount];
};

/** Centre of a user band of the LNB in kHz: board file, else the platform's tuner parameters for
 *  the band that they name, else the usual plan. Bands count from 0. */
uint32_t userBandFrequency(uint32_t band);

/** Lets the plan of user bands be read again. */
void forgetUserBands();

/** Message ODU_Channel_change (EN 50494), and the frequency at which the carrier then lies. */
struct ChannelChange {
    uint8_t message[5];
    int64_t cableFrequency;
};

/**
 * @param channel        user band from 1, as the message counts it less one
 * @param bandFrequency  centre of the user band in kHz
 * @param frequency      wanted intermediate frequency in kHz
 * @param bank           bit 0 high band, bit 1 horizontal, bit 2 position B
 */
ChannelChange channelChangeMessage(uint32_t channel, uint32_t bandFrequency, uint32_t frequency,
                                   uint32_t bank);

}  // namespace sim

#endif
