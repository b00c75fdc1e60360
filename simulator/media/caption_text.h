/*
 * Captions as a person reads them: the rows of each service, in the order in which they are shown.
 */
#ifndef SIMULATOR_MEDIA_CAPTION_TEXT_H
#define SIMULATOR_MEDIA_CAPTION_TEXT_H

#include <stdint.h>

#include <string>
#include <vector>

namespace sim {

struct CaptionRow {
    /** "CC1" and "CC3" of line 21, "S1" to "S63" of the DTV caption channel. */
    std::string service;
    /** UTF-8. */
    std::string text;
    /** The picture that brought its last character, from 0. */
    size_t picture;
};

/** The rows that pictures bring. @param pictures  triplets of each, in the order in which they are
 *  shown. What is damaged is left out. */
std::vector<CaptionRow> captionRows(const std::vector<std::vector<uint8_t>>& pictures);

}  // namespace sim

#endif
