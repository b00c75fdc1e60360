/*
 * The streams of line-ups, build/streams of the project: making them takes longer than a run, so
 * bench folders of one line-up share them, and point there with the link stream/ts.
 *
 * A folder of the store is named after the common configuration. A new one begins with the files of
 * its predecessor (as hard links: mkstreams replaces files, it does not change them), so that only
 * what differs is made. One that no bench folder points to any more is removed.
 */
#ifndef TOOLS_ZKBENCH_STREAM_STORE_H
#define TOOLS_ZKBENCH_STREAM_STORE_H

#include <filesystem>

/**
 * Makes the streams of this bench folder's line-up and lets stream/ts point to them. A stream/ts
 * that is the user's own stays as it is.
 * @param place  the store's folder, made if need be
 * @param tool   mkstreams
 * @return whether all streams are there; else it has been said why not
 */
bool makeStreams(const std::filesystem::path& place, const std::filesystem::path& tool);

#endif
