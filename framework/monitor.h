/*
 * The monitor: a second process that expects a sign of life on a pipe before every row of an
 * automated run, and reboots the device when none has come for five minutes.
 */
#ifndef FRAMEWORK_MONITOR_H
#define FRAMEWORK_MONITOR_H

/** The monitor's whole life, in the forked child. */
[[noreturn]] void runMornitorProc(void);

/** Tells the monitor that a row begins. Console thread. */
void monitorAlive(void);

/** Tells the monitor, one second after the last row, that the run is over. Console thread. */
void monitorRunIsOver(void);

#endif
