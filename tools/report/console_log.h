// What the console's log tells of a run.
#pragma once

#include <stdint.h>

#include <string_view>

#include "tools/report/run_data.h"

namespace report {

/** A line of the console that moves a run on. */
struct LogEvent {
    enum Kind {
        None,
        /** The program has started with "auto". */
        ProgramStart,
        ModuleSetup,
        ModuleSetupFailed,
        /** The checklist has more rows than the module has cases. */
        TooManyRows,
        ModuleUnknown,
        CaseStart,
        CaseSuccess,
        CaseUnsupported,
        CaseFailed,
        CaseSkipped,
        /** The monitor runs the reboot command after five silent minutes. */
        MonitorReboot,
        RunOver,
    };
    Kind kind = None;
    /** The module of a module's event, the case of a case's. Part of the line. */
    std::string_view name;
    /** The row's number, from 1. */
    unsigned number = 0;
    /** Microseconds of the device's clock, -1 for a line without them. */
    int64_t stampUs = -1;
};

/** Reads one line, without its newline. */
LogEvent readLogLine(std::string_view line);

/** Lays run->log over the run's rows: durations, lines, reasons, restarts. Lines of the log that
 *  fit no row are left alone. */
void takeConsoleLog(Run* run);

}  // namespace report
