// Prints the closed captions of a stream as text: of each picture that ends a row, its number, the
// PID, the service, and the row.
#include <stdio.h>

#include <string>
#include <vector>

#include "simulator/media/caption_text.h"
#include "simulator/media/captions.h"
#include "tools/common/files.h"
#include "tools/common/options.h"

namespace {

/** The captions of a PID, whichever coding brings them. */
std::vector<std::vector<uint8_t>> captionsOf(const sim::TsStream& stream, uint16_t pid) {
    for (sim::VideoCoding coding :
         {sim::VideoCoding::mpeg2, sim::VideoCoding::h264, sim::VideoCoding::hevc}) {
        auto pictures = sim::captionsByStamp(stream, pid, coding);
        if (!pictures.empty())
            return pictures;
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Prints the closed captions of a stream as text: picture, PID, service and row.");
    std::string path;
    int32_t wanted = -1;
    app.add_option("STREAM", path, "transport stream file")->required()->check(readable());
    app.add_option("--pid", wanted, "the pictures' PID; all of them else")
        ->check(wholeNumber(0, sim::tsPidCount - 1));
    const int answer = readOptions(&app, argc, argv);
    if (answer >= 0)
        return answer;
    const std::string content = readText(path);
    const sim::TsStream stream(std::vector<uint8_t>(content.begin(), content.end()), 0);
    size_t count = 0;
    for (uint32_t pid = 0; pid < sim::tsPidCount && stream.packetCount() != 0; pid++) {
        if (wanted >= 0 && pid != static_cast<uint32_t>(wanted))
            continue;
        const auto number = static_cast<uint16_t>(pid);
        if (stream.packetsOf(number).empty())
            continue;
        for (const sim::CaptionRow& row : sim::captionRows(captionsOf(stream, number))) {
            printf("%6zu  0x%04x  %-3s  %s\n", row.picture, pid, row.service.c_str(),
                   row.text.c_str());
            count++;
        }
    }
    if (count != 0)
        return EXIT_DONE;
    fprintf(stderr, "showcc: there are no captions in %s\n", path.c_str());
    return EXIT_FAILED;
}
