// Fuzz target of the room media: coded data as decoders of each kind get them, and index files.
//
// The first byte tells the coding, the second how the data come: as one PES packet, or cut into
// pieces of that many bytes with a PES packet each. What the index says of the data must fit them.
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include <algorithm>
#include <string>

#include "simulator/media/ac4.h"
#include "simulator/media/decoder/av.h"
#include "simulator/media/index_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static void require(bool holds) {
    if (!holds)
        abort();
}

template <typename Format>
static void check(const sim::Es& es, const sim::EsIndex<Format>& index) {
    size_t end = 0;
    for (const sim::AccessUnit& unit : index.units) {
        require(unit.offset >= end && unit.offset + size_t{unit.size} <= es.data.size());
        require(unit.last >= unit.first);
        end = unit.offset + size_t{unit.size};
    }
    uint32_t next = 0;
    for (const auto& change : index.changes) {
        require(change.unit >= next && change.unit < index.units.size());
        require((index.units[change.unit].flags & sim::unit_decoded) != 0);
        next = change.unit + 1;
    }
}

static sim::Es esOf(const uint8_t* data, size_t size, size_t piece) {
    sim::Es es;
    es.data.assign(data, data + size);
    for (size_t at = 0; at < size; at += piece) {
        auto place = static_cast<uint32_t>(es.pes.size());
        es.pes.push_back({at, place, place * uint64_t{3600}});
        es.marks.push_back({at, place});
    }
    return es;
}

static void decodeVideo(const sim::Es& es, sim::VideoCoding coding) {
    sim::VideoIndex index;
    sim::indexVideoUnits(es, coding, &index);
    check(es, index);
    std::vector<sim::MediaBytes> units;
    for (const sim::AccessUnit& unit : index.units)
        units.push_back({&es.data[unit.offset], unit.size});
    sim::Picture picture =
        sim::decodeWantedPicture(coding, units, units.empty() ? 0 : units.size() - 1);
    require(picture.rgb.size() == size_t{picture.width} * picture.height * 3);
}

static void decodeAudio(const sim::Es& es, sim::AudioCoding coding) {
    sim::AudioIndex index;
    if (coding == sim::AudioCoding::ac4)
        sim::indexAc4(es, &index);
    else
        sim::indexAudioUnits(es, coding, &index);
    check(es, index);
    std::vector<sim::MediaBytes> units;
    for (const sim::AccessUnit& unit : index.units)
        units.push_back({&es.data[unit.offset], unit.size});
    require(sim::decodeWholeSound(coding, units).samples.size() % 2 == 0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3)
        return 0;
    sim::Es es = esOf(data + 2, size - 2, data[1] == 0 ? size : data[1]);
    constexpr unsigned videos = 5;
    constexpr unsigned sounds = 6;
    unsigned coding = data[0] % (videos + sounds + 1);
    if (coding < videos) {
        decodeVideo(es, static_cast<sim::VideoCoding>(coding));
    } else if (coding < videos + sounds) {
        decodeAudio(es, static_cast<sim::AudioCoding>(coding - videos));
    } else {
        sim::IndexFile file;
        std::string contents(data + 2, data + size);
        if (sim::readIndexFile(contents, &file) == sim::IndexFileState::good)
            require(sim::writeIndexFile(file) == contents);
    }
    return 0;
}
