// When the access units of an index have their turns.
#include "simulator/media/es_index.h"

#include <algorithm>

namespace sim {

namespace {

constexpr int64_t ticksPerUs = 27;
constexpr int64_t ticksPerStamp = 300;
constexpr uint64_t stampRange = UINT64_C(1) << 33;
/** A picture that is to wait longer than this, or is later, has a stamp of another clock. */
constexpr int64_t furthestStampTicks = INT64_C(10) * 27000000;

int64_t ticksToUs(int64_t ticks) {
    return (ticks + ticksPerUs - 1) / ticksPerUs;
}

}  // namespace

UnitMoment unitMoment(const TsStream& stream, const EsUnits& index, uint64_t loop,
                      uint32_t number) {
    const AccessUnit& unit = index.units[number];
    auto loopTicks = static_cast<int64_t>(stream.beginTicks(loop * stream.packetCount()));
    auto beginTicks =
        static_cast<int64_t>(stream.beginTicks(loop * stream.packetCount() + unit.first));
    UnitMoment moment = {};
    moment.loop = loop;
    moment.unit = number;
    moment.beginUs = ticksToUs(beginTicks);
    moment.arrivedUs = stream.endUs(loop * stream.packetCount() + unit.last);
    moment.shownUs = moment.arrivedUs;
    moment.pts = noStamp;
    if (unit.pts == noStamp)
        return moment;
    uint64_t clockBase = index.clockBase;
    moment.pts = unit.pts;
    if (stream.lineage() == 0)
        moment.pts = (unit.pts + static_cast<uint64_t>(loopTicks / ticksPerStamp)) % stampRange;
    for (const TsClockPiece& piece : stream.clockPieces()) {
        // What comes before a clock follows the first one.
        if (piece.place > unit.first && &piece != &stream.clockPieces().front())
            break;
        loopTicks = static_cast<int64_t>(stream.beginTicks(piece.place));
        clockBase = piece.clock;
    }
    auto ahead = static_cast<int64_t>((unit.pts - clockBase) % stampRange);
    if (ahead >= static_cast<int64_t>(stampRange / 2))
        ahead -= static_cast<int64_t>(stampRange);
    int64_t shownTicks = loopTicks + ahead * ticksPerStamp;
    if (std::abs(shownTicks - beginTicks) <= furthestStampTicks)
        moment.shownUs = ticksToUs(shownTicks);
    return moment;
}

std::optional<UnitMoment> nextUnit(const TsStream& stream, const EsUnits& index, int64_t fromUs,
                                   uint8_t flags) {
    uint64_t packet = stream.packetAt(std::max<int64_t>(fromUs, 0));
    uint64_t loop = packet / stream.packetCount();
    auto place = static_cast<uint32_t>(packet % stream.packetCount());
    auto has = [&](const AccessUnit& unit) { return (unit.flags & flags) == flags; };
    auto from =
        std::lower_bound(index.units.begin(), index.units.end(), place,
                         [](const AccessUnit& unit, uint32_t least) { return unit.first < least; });
    auto found = std::find_if(from, index.units.end(), has);
    if (found == index.units.end()) {
        if (stream.lineage() != 0)
            return std::nullopt;
        loop++;
        found = std::find_if(index.units.begin(), from, has);
        if (found == from)
            return std::nullopt;
    }
    return unitMoment(stream, index, loop, static_cast<uint32_t>(found - index.units.begin()));
}

std::optional<UnitMoment> unitShown(const TsStream& stream, const EsUnits& index, int64_t sinceUs,
                                    int64_t atUs) {
    uint64_t loop = stream.packetAt(std::max<int64_t>(atUs, 0)) / stream.packetCount();
    uint64_t ticksOfLoop = uint64_t{stream.packetCount()} * stream.packetTicks();
    uint64_t back = furthestStampTicks / ticksOfLoop + 1;
    std::optional<UnitMoment> shown;
    for (uint64_t at = loop - std::min(loop, back); at <= loop; at++) {
        for (uint32_t number = 0; number < index.units.size(); number++) {
            UnitMoment moment = unitMoment(stream, index, at, number);
            if (moment.beginUs >= sinceUs && moment.shownUs <= atUs &&
                (!shown.has_value() || moment.shownUs >= shown->shownUs))
                shown = moment;
        }
    }
    return shown;
}

}  // namespace sim
