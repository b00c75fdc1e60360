/* Reading of a tool's options: what all tools say and answer alike. */
#ifndef TOOLS_COMMON_OPTIONS_H
#define TOOLS_COMMON_OPTIONS_H

#include <stdint.h>

#include <CLI/CLI.hpp>

#include "common/exit_codes.h"

/**
 * Reads the command line into what `app` has been given.
 * @return -1 to go on; else what main returns at once: 0 after --help, which has been printed on
 *         standard output, EXIT_USAGE after a mistake, which has been named on standard error
 */
int readOptions(CLI::App* app, int argc, char** argv);

enum PathKind { FILE_TO_READ, FOLDER };

/** Takes only paths of this kind that can be read; says why where one cannot. */
CLI::Validator readable(PathKind kind = FILE_TO_READ);

/** Takes only decimal numbers from `least` to `most`. */
CLI::Validator wholeNumber(uint64_t least, uint64_t most = UINT64_MAX);

#endif
