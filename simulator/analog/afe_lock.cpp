// The windows of the front end, as a synchronous demodulator has them: its phase-locked loop pulls
// a carrier in from half a megahertz on each side, but the picture's upper end is then cut off or
// its sound lies in it, so the video decoder wants the tuning nearer. The sound carrier of the
// channel below is no picture carrier: it is not modelled as one.
#include "simulator/analog/afe_lock.h"

#include <cstdlib>

#include "platform/qlx_sif.h"

namespace sim {

namespace {

/** Distance in kHz up to which each stage locks, and the level that it needs. */
constexpr int32_t vifWindow = 500;
constexpr int32_t videoWindow = 400;
constexpr double vifLevelDbm = -90;
constexpr double videoLevelDbm = -80;

/** Width of a step of the discriminator, and the last step on each side. */
constexpr int32_t afcStep = 25;
constexpr int32_t lowestStep = -8;
constexpr int32_t highestStep = 7;

}  // namespace

uint32_t afcDistance(int32_t distance) {
    int32_t step = distance / afcStep - (distance % afcStep < 0 ? 1 : 0);
    if (step < lowestStep)
        step = lowestStep;
    if (step > highestStep)
        step = highestStep;
    // Four bits that count down from the middle: 0 just below the carrier, 15 just above it.
    return static_cast<uint32_t>(-1 - step) & 15;
}

AnalogLock decideAnalogLock(uint32_t frequency, const std::vector<Station>& stations) {
    AnalogLock lock;
    int32_t nearest = vifWindow;
    for (const Station& station : stations) {
        int32_t distance = static_cast<int32_t>(frequency) - station.carrier();
        if (station.levelDbm < vifLevelDbm || std::abs(distance) > nearest)
            continue;
        nearest = std::abs(distance);
        lock.vif = true;
        lock.video = nearest <= videoWindow && station.levelDbm >= videoLevelDbm;
        lock.afc = afcDistance(distance);
        lock.station = station;
    }
    return lock;
}

uint32_t soundSystemOf(const Station& station) {
    const uint32_t mode = station.sound;
    const bool nicam =
        mode >= QLX_SND_OUT_MODE_NICAM_MONO && mode <= QLX_SND_OUT_MODE_NICAM_DUAL_AB;
    const bool btsc = mode >= QLX_SND_OUT_MODE_BTSC_MONO && mode <= QLX_SND_OUT_MODE_BTSC_MONO_SAP;
    const bool secondCarrier = mode >= QLX_SND_OUT_MODE_STEREO && mode <= QLX_SND_OUT_MODE_DUAL_AB;
    // System, and what it is with NICAM, multichannel sound, and a second carrier; 0: has it not.
    static const struct {
        uint32_t system, withNicam, withBtsc, withSecondCarrier;
    } rows[] = {
        {QLX_ANALOG_AUDSTD_BG, QLX_ANALOG_AUDSTD_BG_NICAM, 0, QLX_ANALOG_AUDSTD_BG_A2},
        {QLX_ANALOG_AUDSTD_DK, QLX_ANALOG_AUDSTD_DK_NICAM, 0, QLX_ANALOG_AUDSTD_DK_A2},
        {QLX_ANALOG_AUDSTD_M, 0, QLX_ANALOG_AUDSTD_M_BTSC, QLX_ANALOG_AUDSTD_M_A2},
    };
    for (const auto& row : rows) {
        if (row.system != station.audio)
            continue;
        const uint32_t found = nicam           ? row.withNicam
                               : btsc          ? row.withBtsc
                               : secondCarrier ? row.withSecondCarrier
                                               : 0;
        return found != 0 ? found : station.audio;
    }
    return station.audio;
}

}  // namespace sim
