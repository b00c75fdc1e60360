/* Exit codes of the programs of this tree: one number, one meaning. docs/exit-codes.md lists them.
 */
#ifndef COMMON_EXIT_CODES_H
#define COMMON_EXIT_CODES_H

enum ExitCode {
    /** Done; of the runner: the run was completed, whatever its verdicts. */
    EXIT_DONE = 0,
    /** Not done; standard error says why. */
    EXIT_FAILED = 1,
    /** Options or arguments that make no sense. */
    EXIT_USAGE = 2,
    /** A run of the torture passed its bound: between the torture's processes only. */
    EXIT_ENDLESS = 3,
    /** The report tool: there is a new failure, or an expectation has run out. */
    EXIT_NEW_FAILURE = 4,
    /** Virtual time: all threads wait and none has a deadline. */
    EXIT_DEADLOCK = 86,
    /** Virtual time: the launcher's limit. */
    EXIT_LIMIT = 87,
    /** The simulated device restarts: start the program again. */
    EXIT_RESTART = 88,
    /** The simulated device is in standby: start the program again when something has woken it. */
    EXIT_STANDBY = 89,
    /** A program that was to be started is there but cannot be. */
    EXIT_CANNOT_RUN = 126,
    /** A program that was to be started is not there. */
    EXIT_NOT_FOUND = 127,
    /** zktest's -1: the hardware library could not be brought up. */
    EXIT_NO_HARDWARE = 255,
};

#endif
