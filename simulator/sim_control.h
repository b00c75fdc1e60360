/*
 * How tests steer the simulated device from within the process: reset it, add faults, read its
 * state and its trace, and play the outside world. The program under test knows nothing of it.
 *
 * A fault is one line:
 *
 *     FUNCTION [case=NAME] [with=ARGUMENT] [call=N | call=N+] ACTION
 *
 * MEMBER is named as in the library's header, "stDigital.stAtscT3.stL1DetailPlp[3].uPlpId"; a
 * single value, and a handle or length beside the data, has a name of its own. docs/call-trace.md
 * tells.
 *
 * It acts on the N-th call of FUNCTION (from 1; "N+": from the N-th on; without: on each), counted
 * over all calls, over those made while case NAME runs, or over those of which the trace tells this
 * argument ("with=filter=2"). FUNCTION is an entry point of the
 * library, or the name of a callback as the trace tells it. ACTION is one of
 *
 *     return=CODE        the call is refused with CODE and does nothing
 *     delay=MS           the call, or callback, comes MS milliseconds late
 *     hang               the call never returns
 *     kill               the process dies as by SIGKILL
 *     corrupt=OFFSET:XX  the byte at OFFSET of the data that the call or callback hands out is
 *                        exchanged for the hexadecimal XX
 *     scramble           every second bit of all of that data is inverted
 *     blank              all of that data is 0
 *     flip=MEMBER        every second bit of that member is inverted
 *     zero=MEMBER        that member is 0
 *     set=MEMBER:VALUE   that member, a number or a text, is VALUE
 *     add=MEMBER:NUMBER  NUMBER, which may be negative, is added to that member
 *     drop               the callback does not come
 *     repeat=N           the callback comes N more times
 *
 * The environment gives the same to a whole process: QLX_SIM_FAULTS names a file of such lines,
 * QLX_SIM_TRACE the file that gets the call trace, QLX_SIM_CONTROL a file whose lines, also those
 * appended later, are events of the outside world, QLX_SIM_SEED the seed of random numbers.
 */
#ifndef SIMULATOR_SIM_CONTROL_H
#define SIMULATOR_SIM_CONTROL_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Puts the device into its state after power on, and removes all faults. */
void qlx_sim_reset(void);

/** Adds a fault. Returns 0, or -1 with a message on standard error for a line that is none. */
int qlx_sim_add_fault(const char* line);
void qlx_sim_clear_faults(void);
/** How many times faults have acted since they were last cleared. */
unsigned qlx_sim_faults_acted(void);

/**
 * Tells what is initialised, open, registered or running, a line each; empty when the device rests.
 * Writes at most size bytes, the closing NUL included; returns the length of the whole text.
 */
size_t qlx_sim_state(char* buffer, size_t size);

/** Starts recording calls and callbacks in memory (forgetting the last record), or stops. */
void qlx_sim_record(int on);
/** The record so far, one line each, as qlx_sim_state answers. */
size_t qlx_sim_recorded(char* buffer, size_t size);
/** What was handed out since recording began, as qlx_sim_state answers: a line for each member that
 *  faults can alter, "NAME MEMBER value|mark zero|set". NAME is the function or callback; a mark is
 *  a handle, a length or a count beside the data; `set` says that it was once not zero. */
size_t qlx_sim_handed_out(char* buffer, size_t size);
/** Writes a line of the caller's own into the trace, between those of calls. */
void qlx_sim_remark(const char* line);

/** An event of the outside world, e.g. "cable 0 out", or "in 500 cable 0 out" to let it come 500 ms
 *  later. Returns 0, or -1 when no family knows it. */
int qlx_sim_event(const char* line);

#ifdef __cplusplus
}
#endif

#endif
