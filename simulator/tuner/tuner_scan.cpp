// Blind scan: the walk through one band of the satellite in steps, each looked through for
// carriers.
//
// The band is that which the LNB's supply and tone select when the scan starts. A step belongs to
// one call of QLX_TunerBlindScanNext, which waits while the scan's thread works: it tells the
// program the candidate, so that the program can move its user band there, takes the time of a
// spectrum measurement, tries to lock each carrier that it found, and tells the progress. 100
// percent is told once, by the step that reaches the end of the band; the call after that answers
// that the band has ended.
#include <algorithm>

#include "simulator/core/board.h"
#include "simulator/tuner/reception.h"
#include "simulator/tuner/tuner_curves.h"
#include "simulator/tuner/tuner_records.h"
#include "simulator/tuner/tuner_state.h"

namespace sim {

namespace {

/** A user band moves in steps, and shows its piece of spectrum around its centre. */
constexpr int64_t userBandTolerance = 2000;

uint32_t oscillator(const BlindScan& scan) {
    return scan.highBand ? scan.params.uHighLnbFrequency : scan.params.uLowLnbFrequency;
}

uint32_t stepEnd(const BlindScan& scan) {
    int64_t step = std::max<int64_t>(1, board().number("TUNER", "SCAN_STEP_KHZ"));
    int64_t end = std::min<int64_t>(scan.params.uEndIfFrequency, scan.next + step);
    return static_cast<uint32_t>(end);
}

QLX_TunerBlindScanInfo infoAt(const BlindScan& scan, uint32_t frequency) {
    QLX_TunerBlindScanInfo info = {};
    uint64_t width = scan.params.uEndIfFrequency - scan.params.uStartIfFrequency;
    uint64_t done = frequency - scan.params.uStartIfFrequency;
    // Only the end of the band is 100 percent.
    info.uProgress = done >= width ? 100 : static_cast<uint32_t>(done * 100 / width);
    info.uFrequency = frequency + oscillator(scan);
    info.ePolarization = scan.horizontal ? QLX_POLARIZATION_HORIZONTAL : QLX_POLARIZATION_VERTICAL;
    info.eRfBand = scan.highBand ? QLX_RF_BAND_HIGH : QLX_RF_BAND_LOW;
    return info;
}

/** The carriers from `first` up to `end`, by rising frequency. Called with the mutex held. */
std::vector<TransmitterPtr> carriersOfStep(const Tuner& tuner, uint32_t first, uint32_t end) {
    const BlindScan& scan = tuner.scan;
    SatelliteAntenna::Source source;
    int64_t centre = (static_cast<int64_t>(first) + end) / 2;
    if (scan.params.eLnbTypeReal == QLX_LNB_TYPE_UNICABLE && tuner.antenna.channelRouter()) {
        source = tuner.antenna.sourceOf(scan.params.uUnicableChannelFreqKHz);
        if (source.frequency < centre - userBandTolerance ||
            source.frequency > centre + userBandTolerance)
            return {};
    } else {
        source = tuner.antenna.sourceOf(centre);
    }
    std::vector<TransmitterPtr> found;
    if (!cablePlugged(tuner.id))
        return found;
    for (const TransmitterPtr& carrier : transmittersOnAir()) {
        const Transmitter& t = *carrier;
        uint32_t rate = t.symbolRate / 1000;
        // The last step takes the end of the range in.
        bool inside =
            t.frequency >= first &&
            (t.frequency < end || (t.frequency == end && end == scan.params.uEndIfFrequency));
        if (satelliteSystem(t.system) && comesFrom(source, t) && inside && carrierHolds(t) &&
            rate >= scan.params.uStartSymbolRate && rate <= scan.params.uEndSymbolRate)
            found.push_back(carrier);
    }
    std::sort(found.begin(), found.end(), [](const TransmitterPtr& a, const TransmitterPtr& b) {
        return a->frequency < b->frequency;
    });
    return found;
}

void tell(const Tuner& tuner, const BlindScan& scan, uint32_t event, QLX_TunerBlindScanInfo info) {
    if (scan.params.callback == nullptr)
        return;
    deliver("TunerBlindScan", format("tuner=%u", tuner.id),
            {marked("event", &event), value("info", &info)},
            [&] { scan.params.callback(tuner.id, event, &info, scan.params.puFinishedBands); });
}

void askForCandidate(const Tuner& tuner, const BlindScan& scan, uint32_t first, uint32_t end) {
    if (scan.params.tuneCallback == nullptr)
        return;
    QLX_TunerBlindScanInfo info = infoAt(scan, first);
    info.uFrequency = first + (end - first) / 2 + oscillator(scan);
    deliver("TunerBlindScanTune", format("tuner=%u", tuner.id), {value("candidate", &info)},
            [&] { scan.params.tuneCallback(tuner.id, &info); });
}

/** One step, on the scan's thread. It works on a copy: a stop may come meanwhile. */
void runStep(Tuner& tuner) {
    TunerFamily& family = tunerFamily();
    std::unique_lock<std::mutex> lock(family.mutex);
    BlindScan scan = tuner.scan;
    uint32_t first = scan.next;
    uint32_t end = stepEnd(scan);
    lock.unlock();

    askForCandidate(tuner, scan, first, end);
    sleepMs(board().number("TUNER", "SCAN_STEP_MS"));
    lock.lock();
    std::vector<TransmitterPtr> carriers = carriersOfStep(tuner, first, end);
    lock.unlock();

    QLX_TunerBlindScanInfo result = infoAt(scan, end);
    for (const TransmitterPtr& carrier : carriers) {
        sleepMs(board().number("TUNER", "SCAN_LOCK_MS"));
        QLX_TunerBlindScanInfo info = infoAt(scan, carrier->frequency);
        // A carrier at the very end must not be taken for the end itself.
        info.uProgress = std::min(info.uProgress, 99u);
        info.uSymbolRate = carrier->symbolRate / 1000;
        info.eModulation = carrier->modulation;
        info.eFecType = carrier->fecType;
        info.eFecRate = carrier->fecRate;
        tell(tuner, scan, QLX_TUNER_BLINDSCAN_EVENT_LOCK_FREQUENCY, info);
        uint32_t progress = result.uProgress;
        result = info;
        result.uProgress = progress;
    }
    tell(tuner, scan, QLX_TUNER_BLINDSCAN_EVENT_PROGRESS, infoAt(scan, end));

    lock.lock();
    tuner.scan.next = end;
    tuner.scan.ended = end >= scan.params.uEndIfFrequency;
    tuner.scan.found = !carriers.empty();
    tuner.scan.result = result;
    tuner.scan.stepping = false;
    family.changed.notify_all();
}

bool cancelled(const BlindScan& scan) {
    return scan.params.puCancelFlag != nullptr && *scan.params.puCancelFlag != 0;
}

bool validRange(const QLX_TunerBlindScanParams& params) {
    return params.uStartIfFrequency < params.uEndIfFrequency &&
           params.uStartSymbolRate <= params.uEndSymbolRate;
}

}  // namespace

void stopScan(std::unique_lock<std::mutex>& lock, Tuner& tuner) {
    tuner.scan.running = false;
    if (!tuner.scanner->isCurrent())
        tunerFamily().changed.wait(lock, [&] { return !tuner.scan.stepping; });
}

}  // namespace sim

using sim::Tuner;
using sim::tunerFamily;
using sim::TunerNeed;
using sim::tunerRefusal;

int32_t QLX_TunerBlindScanStart(uint32_t eTunerId, const QLX_TunerBlindScanParams* pstParams) {
    SIM_ENTRY("tuner=%u params=%s", eTunerId, sim::show(pstParams).c_str());
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (pstParams == nullptr || !sim::validRange(*pstParams))
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    if (tuner.scan.running || tuner.scan.stepping)
        SIM_RETURN(QLX_FAILED);
    tuner.scan = sim::BlindScan();
    tuner.scan.running = true;
    tuner.scan.params = *pstParams;
    tuner.scan.next = pstParams->uStartIfFrequency;
    if (pstParams->eLnbTypeReal == QLX_LNB_TYPE_UNICABLE) {
        tuner.scan.horizontal = pstParams->uNibblePolarization != 0;
        tuner.scan.highBand = pstParams->uNibbleBand != 0;
    } else {
        tuner.scan.horizontal = tuner.antenna.power() == QLX_LNB_POWER_18V;
        tuner.scan.highBand = tuner.antenna.tone();
    }
    // The demodulator leaves the carrier that it was tuned to.
    uint64_t number = sim::leaveCarrier(tuner);
    lock.unlock();
    sim::setReception(eTunerId, number, nullptr);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerBlindScanNext(uint32_t eTunerId, QLX_TunerBlindScanInfo* pstResult) {
    SIM_ENTRY("tuner=%u result=%s", eTunerId, sim::showPointer(pstResult));
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (pstResult == nullptr)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    sim::BlindScan& scan = tuner.scan;
    if (!scan.running || scan.stepping || tuner.scanner->isCurrent())
        SIM_RETURN(QLX_FAILED);
    if (!scan.ended && !sim::cancelled(scan)) {
        scan.stepping = true;
        tuner.scanner->post(&tuner, 0, [&tuner] { sim::runStep(tuner); });
        tunerFamily().changed.wait(lock, [&] { return !scan.stepping; });
        *pstResult = scan.result;
        simCall.output({sim::value("result", pstResult)});
        if (!sim::cancelled(scan))
            SIM_RETURN(scan.found ? 1 : 0);
    }
    SIM_RETURN(sim::cancelled(scan) ? QLX_TUNER_ERR_BLINDSCAN_CANCELED
                                    : QLX_TUNER_ERR_BLINDSCAN_END);
}

int32_t QLX_TunerBlindScanStop(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%u", eTunerId);
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    sim::stopScan(lock, tunerFamily().tuners[eTunerId]);
    SIM_RETURN(QLX_SUCCESS);
}
