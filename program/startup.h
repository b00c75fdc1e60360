/* What a start loads before any case can run. Initial thread. */
#ifndef PROGRAM_STARTUP_H
#define PROGRAM_STARTUP_H

/** Leads standard descriptors that are closed to nowhere, so that no file or pipe that the program
 *  opens takes the place of its input or its log. Called first in main. */
void zk_holdStandardFiles(void);

/** Loads features, channels and the modules' parameters, in this order, from the files that
 *  g_configFile names. What is missing there stays 0 or empty. */
void zk_loadEnvironment(void);

#endif
