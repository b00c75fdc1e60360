/* How the process ends when the device goes down, for the bench to tell. */
#ifndef SIMULATOR_SERVICE_POWER_EXIT_H
#define SIMULATOR_SERVICE_POWER_EXIT_H

enum SimPowerExit {
    /** The device is in standby: start the program again when something has woken it. */
    SIM_EXIT_STANDBY = 87,
    /** The device restarts: start the program again. */
    SIM_EXIT_RESTART = 88,
};

#endif
