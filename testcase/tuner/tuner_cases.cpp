// The case table of the module Tuner. A row is the case's name, its flag, its description, and what
// it runs: mostly a frame with tuner, transmission system, and the body between set-up and undoing.
#include "framework/case/registry.h"
#include "testcase/modules.h"
#include "testcase/tuner/tuner_families.h"
#include "testcase/tuner/tuner_harness.h"

// The systems of the rows.
enum {
    DVB_T = QLX_TRANSMISSION_SYSTEM_DVB_T,
    DVB_S = QLX_TRANSMISSION_SYSTEM_DVB_S,
    DVB_C = QLX_TRANSMISSION_SYSTEM_DVB_C,
    ATSC_T = QLX_TRANSMISSION_SYSTEM_ATSC_T,
    ATSC_C = QLX_TRANSMISSION_SYSTEM_ATSC_C,
    ATSC_T3 = QLX_TRANSMISSION_SYSTEM_ATSC_T3,
    ISDB_T = QLX_TRANSMISSION_SYSTEM_ISDB_T,
    ISDB_S = QLX_TRANSMISSION_SYSTEM_ISDB_S,
    ISDB_S3 = QLX_TRANSMISSION_SYSTEM_ISDB_S3,
};

// clang-format off
#define OPEN_CASES(X) \
    /* case              flag  description                        case, tuner, times */ \
    X(TC_TUNER_OPEN_001, AUTO, "Open tuner-0 without inited",     tuner_openWithoutInit(__func__, 0)) \
    X(TC_TUNER_OPEN_002, AUTO, "Open tuner-0 after inited",       tuner_openAfterInit(__func__, 0)) \
    X(TC_TUNER_OPEN_003, AUTO, "Open tuner-1 without inited",     tuner_openWithoutInit(__func__, 1)) \
    X(TC_TUNER_OPEN_004, AUTO, "Open tuner-1 after inited",       tuner_openAfterInit(__func__, 1)) \
    X(TC_TUNER_OPEN_005, AUTO, "Open the invalid tuner id",       tuner_openInvalidId(__func__)) \
    X(TC_TUNER_OPEN_006, AUTO, "Open and close tuner-0 2 times",  tuner_openRepeatedly(__func__, 0, 2)) \
    X(TC_TUNER_OPEN_007, AUTO, "Open and close tuner-1 2 times",  tuner_openRepeatedly(__func__, 1, 2)) \
    X(TC_TUNER_OPEN_008, AUTO, "Open and close tuner-0 10 times", tuner_openRepeatedly(__func__, 0, 10)) \
    X(TC_TUNER_OPEN_009, AUTO, "Open and close tuner-1 10 times", tuner_openRepeatedly(__func__, 1, 10)) \
    X(TC_TUNER_OPEN_011, AUTO, "Open tuner-2 without inited",     tuner_openWithoutInit(__func__, 2)) \
    X(TC_TUNER_OPEN_012, AUTO, "Open tuner-2 after inited",       tuner_openAfterInit(__func__, 2)) \
    X(TC_TUNER_OPEN_013, AUTO, "Open tuner-3 without inited",     tuner_openWithoutInit(__func__, 3)) \
    X(TC_TUNER_OPEN_014, AUTO, "Open tuner-3 after inited",       tuner_openAfterInit(__func__, 3)) \
    X(TC_TUNER_OPEN_015, AUTO, "Open the invalid tuner id",       tuner_openInvalidId(__func__)) \
    X(TC_TUNER_OPEN_016, AUTO, "Open and close tuner-2 2 times",  tuner_openRepeatedly(__func__, 2, 2)) \
    X(TC_TUNER_OPEN_017, AUTO, "Open and close tuner-3 2 times",  tuner_openRepeatedly(__func__, 3, 2)) \
    X(TC_TUNER_OPEN_018, AUTO, "Open and close tuner-2 10 times", tuner_openRepeatedly(__func__, 2, 10)) \
    X(TC_TUNER_OPEN_019, AUTO, "Open and close tuner-3 10 times", tuner_openRepeatedly(__func__, 3, 10))

#define INPUT_CASES(X) \
    /* case                                flag  description                                        case, tuner, what is spoiled */ \
    X(TC_TUNER_CheckInputTuningParams_001, AUTO, "Tune tuner-0 with invalid tuning type 3",         tuner_checkInput(__func__, 0, SPOILED_TYPE_3)) \
    X(TC_TUNER_CheckInputTuningParams_002, AUTO, "Tune tuner-1 with invalid tuning type 3",         tuner_checkInput(__func__, 1, SPOILED_TYPE_3)) \
    X(TC_TUNER_CheckInputTuningParams_005, AUTO, "Tune tuner-0 with invalid transmission system 3", tuner_checkInput(__func__, 0, SPOILED_SYSTEM_3)) \
    X(TC_TUNER_CheckInputTuningParams_006, AUTO, "Tune tuner-1 with invalid transmission system 3", tuner_checkInput(__func__, 1, SPOILED_SYSTEM_3)) \
    X(TC_TUNER_CheckInputTuningParams_007, AUTO, "Tune tuner-0 with invalid transmission system 0", tuner_checkInput(__func__, 0, SPOILED_SYSTEM_0)) \
    X(TC_TUNER_CheckInputTuningParams_008, AUTO, "Tune tuner-1 with invalid transmission system 0", tuner_checkInput(__func__, 1, SPOILED_SYSTEM_0)) \
    X(TC_TUNER_CheckInputTuningParams_011, AUTO, "Tune tuner-2 with invalid tuning type 3",         tuner_checkInput(__func__, 2, SPOILED_TYPE_3)) \
    X(TC_TUNER_CheckInputTuningParams_012, AUTO, "Tune tuner-3 with invalid tuning type 3",         tuner_checkInput(__func__, 3, SPOILED_TYPE_3)) \
    X(TC_TUNER_CheckInputTuningParams_015, AUTO, "Tune tuner-2 with invalid transmission system 3", tuner_checkInput(__func__, 2, SPOILED_SYSTEM_3)) \
    X(TC_TUNER_CheckInputTuningParams_016, AUTO, "Tune tuner-3 with invalid transmission system 3", tuner_checkInput(__func__, 3, SPOILED_SYSTEM_3)) \
    X(TC_TUNER_CheckInputTuningParams_017, AUTO, "Tune tuner-2 with invalid transmission system 0", tuner_checkInput(__func__, 2, SPOILED_SYSTEM_0)) \
    X(TC_TUNER_CheckInputTuningParams_018, AUTO, "Tune tuner-3 with invalid transmission system 0", tuner_checkInput(__func__, 3, SPOILED_SYSTEM_0))

#define DEFAULT_TUNING_CASES(X) \
    /* case                flag  description                                        frame, tuner, system, body */ \
    X(TC_TUNER_Tuning_001, AUTO, "Tune tuner-0 in its default transmission system", tuner_frame(__func__, 0, 0, tuner_tuneOnce)) \
    X(TC_TUNER_Tuning_002, AUTO, "Tune tuner-1 in its default transmission system", tuner_frame(__func__, 1, 0, tuner_tuneOnce)) \
    X(TC_TUNER_Tuning_011, AUTO, "Tune tuner-2 in its default transmission system", tuner_frame(__func__, 2, 0, tuner_tuneOnce)) \
    X(TC_TUNER_Tuning_012, AUTO, "Tune tuner-3 in its default transmission system", tuner_frame(__func__, 3, 0, tuner_tuneOnce))

#define LOCK_STATUS_CASES(X) \
    /* case                         flag    description                                        frame, tuner, system, body */ \
    X(TC_TUNER_CheckLockStatus_001, MANUAL, "Check the lock of tuner-0 with cable out and in", tuner_frame(__func__, 0, 0, tuner_cableOutAndIn)) \
    X(TC_TUNER_CheckLockStatus_002, MANUAL, "Check the lock of tuner-1 with cable out and in", tuner_frame(__func__, 1, 0, tuner_cableOutAndIn)) \
    X(TC_TUNER_CheckLockStatus_011, MANUAL, "Check the lock of tuner-2 with cable out and in", tuner_frame(__func__, 2, 0, tuner_cableOutAndIn)) \
    X(TC_TUNER_CheckLockStatus_012, MANUAL, "Check the lock of tuner-3 with cable out and in", tuner_frame(__func__, 3, 0, tuner_cableOutAndIn))

#define DVBC_TUNING_CASES(X) \
    /* case                     flag  description                                                 frame, tuner, system, body */ \
    X(TC_TUNER_DVBC_Tuning_001, AUTO, "Tune DVB-C on tuner-0",                                    tuner_frame(__func__, 0, DVB_C, tuner_tuneOnce)) \
    X(TC_TUNER_DVBC_Tuning_002, AUTO, "Tune DVB-C on tuner-1",                                    tuner_frame(__func__, 1, DVB_C, tuner_tuneOnce)) \
    X(TC_TUNER_DVBC_Tuning_003, AUTO, "Tune DVB-C on tuner-0 2 times",                            tuner_frame(__func__, 0, DVB_C, tuner_tuneTwice)) \
    X(TC_TUNER_DVBC_Tuning_004, AUTO, "Tune DVB-C on tuner-1 2 times",                            tuner_frame(__func__, 1, DVB_C, tuner_tuneTwice)) \
    X(TC_TUNER_DVBC_Tuning_005, AUTO, "Consumption time of tuning DVB-C on tuner-0",              tuner_frame(__func__, 0, DVB_C, tuner_consumeTune)) \
    X(TC_TUNER_DVBC_Tuning_006, AUTO, "Consumption time of tuning DVB-C on tuner-1",              tuner_frame(__func__, 1, DVB_C, tuner_consumeTune)) \
    X(TC_TUNER_DVBC_Tuning_007, AUTO, "Consumption time of open, tuning DVB-C, close on tuner-0", tuner_initFrame(__func__, 0, DVB_C, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBC_Tuning_008, AUTO, "Consumption time of open, tuning DVB-C, close on tuner-1", tuner_initFrame(__func__, 1, DVB_C, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBC_Tuning_011, AUTO, "Tune DVB-C on tuner-2",                                    tuner_frame(__func__, 2, DVB_C, tuner_tuneOnce)) \
    X(TC_TUNER_DVBC_Tuning_012, AUTO, "Tune DVB-C on tuner-3",                                    tuner_frame(__func__, 3, DVB_C, tuner_tuneOnce)) \
    X(TC_TUNER_DVBC_Tuning_013, AUTO, "Tune DVB-C on tuner-2 2 times",                            tuner_frame(__func__, 2, DVB_C, tuner_tuneTwice)) \
    X(TC_TUNER_DVBC_Tuning_014, AUTO, "Tune DVB-C on tuner-3 2 times",                            tuner_frame(__func__, 3, DVB_C, tuner_tuneTwice)) \
    X(TC_TUNER_DVBC_Tuning_015, AUTO, "Consumption time of tuning DVB-C on tuner-2",              tuner_frame(__func__, 2, DVB_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBC_Tuning_016, AUTO, "Consumption time of tuning DVB-C on tuner-3",              tuner_frame(__func__, 3, DVB_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBC_Tuning_017, AUTO, "Consumption time of open, tuning DVB-C, close on tuner-2", tuner_initFrame(__func__, 2, DVB_C, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_DVBC_Tuning_018, AUTO, "Consumption time of open, tuning DVB-C, close on tuner-3", tuner_initFrame(__func__, 3, DVB_C, tuner_consumeOpenTuneAndDump))

#define DVBT_TUNING_CASES(X) \
    /* case                     flag  description                                                 frame, tuner, system, body */ \
    X(TC_TUNER_DVBT_Tuning_001, AUTO, "Tune DVB-T on tuner-0",                                    tuner_frame(__func__, 0, DVB_T, tuner_tuneOnce)) \
    X(TC_TUNER_DVBT_Tuning_002, AUTO, "Tune DVB-T on tuner-1",                                    tuner_frame(__func__, 1, DVB_T, tuner_tuneOnce)) \
    X(TC_TUNER_DVBT_Tuning_003, AUTO, "Tune DVB-T on tuner-0 2 times",                            tuner_frame(__func__, 0, DVB_T, tuner_tuneTwice)) \
    X(TC_TUNER_DVBT_Tuning_004, AUTO, "Tune DVB-T on tuner-1 2 times",                            tuner_frame(__func__, 1, DVB_T, tuner_tuneTwice)) \
    X(TC_TUNER_DVBT_Tuning_005, AUTO, "Consumption time of tuning DVB-T on tuner-0",              tuner_frame(__func__, 0, DVB_T, tuner_consumeTune)) \
    X(TC_TUNER_DVBT_Tuning_006, AUTO, "Consumption time of tuning DVB-T on tuner-1",              tuner_frame(__func__, 1, DVB_T, tuner_consumeTune)) \
    X(TC_TUNER_DVBT_Tuning_007, AUTO, "Consumption time of open, tuning DVB-T, close on tuner-0", tuner_initFrame(__func__, 0, DVB_T, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBT_Tuning_008, AUTO, "Consumption time of open, tuning DVB-T, close on tuner-1", tuner_initFrame(__func__, 1, DVB_T, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBT_Tuning_011, AUTO, "Tune DVB-T on tuner-2",                                    tuner_frame(__func__, 2, DVB_T, tuner_tuneOnce)) \
    X(TC_TUNER_DVBT_Tuning_012, AUTO, "Tune DVB-T on tuner-3",                                    tuner_frame(__func__, 3, DVB_T, tuner_tuneOnce)) \
    X(TC_TUNER_DVBT_Tuning_013, AUTO, "Tune DVB-T on tuner-2 2 times",                            tuner_frame(__func__, 2, DVB_T, tuner_tuneTwice)) \
    X(TC_TUNER_DVBT_Tuning_014, AUTO, "Tune DVB-T on tuner-3 2 times",                            tuner_frame(__func__, 3, DVB_T, tuner_tuneTwice)) \
    X(TC_TUNER_DVBT_Tuning_015, AUTO, "Consumption time of tuning DVB-T on tuner-2",              tuner_frame(__func__, 2, DVB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBT_Tuning_016, AUTO, "Consumption time of tuning DVB-T on tuner-3",              tuner_frame(__func__, 3, DVB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBT_Tuning_017, AUTO, "Consumption time of open, tuning DVB-T, close on tuner-2", tuner_initFrame(__func__, 2, DVB_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_DVBT_Tuning_018, AUTO, "Consumption time of open, tuning DVB-T, close on tuner-3", tuner_initFrame(__func__, 3, DVB_T, tuner_consumeOpenTuneAndDump))

#define ISDBT_TUNING_CASES(X) \
    /* case                      flag  description                                                  frame, tuner, system, body */ \
    X(TC_TUNER_ISDBT_Tuning_001, AUTO, "Tune ISDB-T on tuner-0",                                    tuner_frame(__func__, 0, ISDB_T, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBT_Tuning_002, AUTO, "Tune ISDB-T on tuner-1",                                    tuner_frame(__func__, 1, ISDB_T, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBT_Tuning_003, AUTO, "Tune ISDB-T on tuner-0 2 times",                            tuner_frame(__func__, 0, ISDB_T, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBT_Tuning_004, AUTO, "Tune ISDB-T on tuner-1 2 times",                            tuner_frame(__func__, 1, ISDB_T, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBT_Tuning_005, AUTO, "Consumption time of tuning ISDB-T on tuner-0",              tuner_frame(__func__, 0, ISDB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_006, AUTO, "Consumption time of tuning ISDB-T on tuner-1",              tuner_frame(__func__, 1, ISDB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_007, AUTO, "Consumption time of open, tuning ISDB-T, close on tuner-0", tuner_initFrame(__func__, 0, ISDB_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_008, AUTO, "Consumption time of open, tuning ISDB-T, close on tuner-1", tuner_initFrame(__func__, 1, ISDB_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_011, AUTO, "Tune ISDB-T on tuner-2",                                    tuner_frame(__func__, 2, ISDB_T, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBT_Tuning_012, AUTO, "Tune ISDB-T on tuner-3",                                    tuner_frame(__func__, 3, ISDB_T, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBT_Tuning_013, AUTO, "Tune ISDB-T on tuner-2 2 times",                            tuner_frame(__func__, 2, ISDB_T, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBT_Tuning_014, AUTO, "Tune ISDB-T on tuner-3 2 times",                            tuner_frame(__func__, 3, ISDB_T, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBT_Tuning_015, AUTO, "Consumption time of tuning ISDB-T on tuner-2",              tuner_frame(__func__, 2, ISDB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_016, AUTO, "Consumption time of tuning ISDB-T on tuner-3",              tuner_frame(__func__, 3, ISDB_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_017, AUTO, "Consumption time of open, tuning ISDB-T, close on tuner-2", tuner_initFrame(__func__, 2, ISDB_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBT_Tuning_018, AUTO, "Consumption time of open, tuning ISDB-T, close on tuner-3", tuner_initFrame(__func__, 3, ISDB_T, tuner_consumeOpenTuneAndDump))

#define ISDBS_TUNING_CASES(X) \
    /* case                      flag  description                                                  frame, tuner, system, body */ \
    X(TC_TUNER_ISDBS_Tuning_001, AUTO, "Tune ISDB-S on tuner-0",                                    tuner_frame(__func__, 0, ISDB_S, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS_Tuning_002, AUTO, "Tune ISDB-S on tuner-1",                                    tuner_frame(__func__, 1, ISDB_S, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS_Tuning_003, AUTO, "Tune ISDB-S on tuner-0 2 times",                            tuner_frame(__func__, 0, ISDB_S, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS_Tuning_004, AUTO, "Tune ISDB-S on tuner-1 2 times",                            tuner_frame(__func__, 1, ISDB_S, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS_Tuning_005, AUTO, "Consumption time of tuning ISDB-S on tuner-0",              tuner_frame(__func__, 0, ISDB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_006, AUTO, "Consumption time of tuning ISDB-S on tuner-1",              tuner_frame(__func__, 1, ISDB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_007, AUTO, "Consumption time of open, tuning ISDB-S, close on tuner-0", tuner_initFrame(__func__, 0, ISDB_S, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_008, AUTO, "Consumption time of open, tuning ISDB-S, close on tuner-1", tuner_initFrame(__func__, 1, ISDB_S, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_011, AUTO, "Tune ISDB-S on tuner-2",                                    tuner_frame(__func__, 2, ISDB_S, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS_Tuning_012, AUTO, "Tune ISDB-S on tuner-3",                                    tuner_frame(__func__, 3, ISDB_S, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS_Tuning_013, AUTO, "Tune ISDB-S on tuner-2 2 times",                            tuner_frame(__func__, 2, ISDB_S, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS_Tuning_014, AUTO, "Tune ISDB-S on tuner-3 2 times",                            tuner_frame(__func__, 3, ISDB_S, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS_Tuning_015, AUTO, "Consumption time of tuning ISDB-S on tuner-2",              tuner_frame(__func__, 2, ISDB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_016, AUTO, "Consumption time of tuning ISDB-S on tuner-3",              tuner_frame(__func__, 3, ISDB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_017, AUTO, "Consumption time of open, tuning ISDB-S, close on tuner-2", tuner_initFrame(__func__, 2, ISDB_S, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS_Tuning_018, AUTO, "Consumption time of open, tuning ISDB-S, close on tuner-3", tuner_initFrame(__func__, 3, ISDB_S, tuner_consumeOpenTuneAndDump))

#define ISDBS3_TUNING_CASES(X) \
    /* case                       flag  description                                                   frame, tuner, system, body */ \
    X(TC_TUNER_ISDBS3_Tuning_001, AUTO, "Tune ISDB-S3 on tuner-0",                                    tuner_frame(__func__, 0, ISDB_S3, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS3_Tuning_002, AUTO, "Tune ISDB-S3 on tuner-1",                                    tuner_frame(__func__, 1, ISDB_S3, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS3_Tuning_003, AUTO, "Tune ISDB-S3 on tuner-0 2 times",                            tuner_frame(__func__, 0, ISDB_S3, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS3_Tuning_004, AUTO, "Tune ISDB-S3 on tuner-1 2 times",                            tuner_frame(__func__, 1, ISDB_S3, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS3_Tuning_005, AUTO, "Consumption time of tuning ISDB-S3 on tuner-0",              tuner_frame(__func__, 0, ISDB_S3, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_006, AUTO, "Consumption time of tuning ISDB-S3 on tuner-1",              tuner_frame(__func__, 1, ISDB_S3, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_007, AUTO, "Consumption time of open, tuning ISDB-S3, close on tuner-0", tuner_initFrame(__func__, 0, ISDB_S3, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_008, AUTO, "Consumption time of open, tuning ISDB-S3, close on tuner-1", tuner_initFrame(__func__, 1, ISDB_S3, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_011, AUTO, "Tune ISDB-S3 on tuner-2",                                    tuner_frame(__func__, 2, ISDB_S3, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS3_Tuning_012, AUTO, "Tune ISDB-S3 on tuner-3",                                    tuner_frame(__func__, 3, ISDB_S3, tuner_tuneOnce)) \
    X(TC_TUNER_ISDBS3_Tuning_013, AUTO, "Tune ISDB-S3 on tuner-2 2 times",                            tuner_frame(__func__, 2, ISDB_S3, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS3_Tuning_014, AUTO, "Tune ISDB-S3 on tuner-3 2 times",                            tuner_frame(__func__, 3, ISDB_S3, tuner_tuneTwice)) \
    X(TC_TUNER_ISDBS3_Tuning_015, AUTO, "Consumption time of tuning ISDB-S3 on tuner-2",              tuner_frame(__func__, 2, ISDB_S3, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_016, AUTO, "Consumption time of tuning ISDB-S3 on tuner-3",              tuner_frame(__func__, 3, ISDB_S3, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_017, AUTO, "Consumption time of open, tuning ISDB-S3, close on tuner-2", tuner_initFrame(__func__, 2, ISDB_S3, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ISDBS3_Tuning_018, AUTO, "Consumption time of open, tuning ISDB-S3, close on tuner-3", tuner_initFrame(__func__, 3, ISDB_S3, tuner_consumeOpenTuneAndDump))

#define DVBS_TUNING_CASES(X) \
    /* case                     flag    description                                                 frame, tuner, system, body */ \
    X(TC_TUNER_DVBS_Tuning_001, AUTO,   "Tune DVB-S on tuner-0",                                    tuner_frame(__func__, 0, DVB_S, tuner_tuneOnce)) \
    X(TC_TUNER_DVBS_Tuning_002, AUTO,   "Tune DVB-S on tuner-1",                                    tuner_frame(__func__, 1, DVB_S, tuner_tuneOnce)) \
    X(TC_TUNER_DVBS_Tuning_003, AUTO,   "Tune DVB-S on tuner-0 2 times",                            tuner_frame(__func__, 0, DVB_S, tuner_tuneTwice)) \
    X(TC_TUNER_DVBS_Tuning_004, AUTO,   "Tune DVB-S on tuner-1 2 times",                            tuner_frame(__func__, 1, DVB_S, tuner_tuneTwice)) \
    X(TC_TUNER_DVBS_Tuning_005, AUTO,   "Consumption time of tuning DVB-S on tuner-0",              tuner_frame(__func__, 0, DVB_S, tuner_consumeTune)) \
    X(TC_TUNER_DVBS_Tuning_006, AUTO,   "Consumption time of tuning DVB-S on tuner-1",              tuner_frame(__func__, 1, DVB_S, tuner_consumeTune)) \
    X(TC_TUNER_DVBS_Tuning_007, AUTO,   "Consumption time of open, tuning DVB-S, close on tuner-0", tuner_initFrame(__func__, 0, DVB_S, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBS_Tuning_008, AUTO,   "Consumption time of open, tuning DVB-S, close on tuner-1", tuner_initFrame(__func__, 1, DVB_S, tuner_consumeOpenTune)) \
    X(TC_TUNER_DVBS_Tuning_011, AUTO,   "Tune DVB-S on tuner-2",                                    tuner_frame(__func__, 2, DVB_S, tuner_tuneOnce)) \
    X(TC_TUNER_DVBS_Tuning_012, AUTO,   "Tune DVB-S on tuner-3",                                    tuner_frame(__func__, 3, DVB_S, tuner_tuneOnce)) \
    X(TC_TUNER_DVBS_Tuning_013, AUTO,   "Tune DVB-S on tuner-2 2 times",                            tuner_frame(__func__, 2, DVB_S, tuner_tuneTwice)) \
    X(TC_TUNER_DVBS_Tuning_014, AUTO,   "Tune DVB-S on tuner-3 2 times",                            tuner_frame(__func__, 3, DVB_S, tuner_tuneTwice)) \
    X(TC_TUNER_DVBS_Tuning_015, AUTO,   "Consumption time of tuning DVB-S on tuner-2",              tuner_frame(__func__, 2, DVB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBS_Tuning_016, AUTO,   "Consumption time of tuning DVB-S on tuner-3",              tuner_frame(__func__, 3, DVB_S, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_DVBS_Tuning_017, AUTO,   "Consumption time of open, tuning DVB-S, close on tuner-2", tuner_initFrame(__func__, 2, DVB_S, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_DVBS_Tuning_018, AUTO,   "Consumption time of open, tuning DVB-S, close on tuner-3", tuner_initFrame(__func__, 3, DVB_S, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_DVBS_Tuning_019, AUTO,   "Tune DVB-T and then DVB-S on tuner-0",                     tuner_frame(__func__, 0, DVB_T, tuner_dvbtThenDvbs)) \
    X(TC_TUNER_DVBS_Tuning_020, AUTO,   "Tune DVB-S on tuner-0 with unknown symbol rate",           tuner_frame(__func__, 0, DVB_S, tuner_unknownSymbolRate)) \
    X(TC_TUNER_DVBS_Tuning_021, AUTO,   "Tune DVB-S on tuner-0 with wrong symbol rate",             tuner_frame(__func__, 0, DVB_S, tuner_wrongSymbolRate)) \
    X(TC_TUNER_DVBS_Tuning_022, MANUAL, "Tune DVB-S2 on tuner-0 with unknown symbol rate",          tuner_frame(__func__, 0, DVB_S, tuner_unknownSymbolRateS2)) \
    X(TC_TUNER_DVBS_Tuning_023, MANUAL, "Tune DVB-S2 on tuner-0 with wrong symbol rate",            tuner_frame(__func__, 0, DVB_S, tuner_wrongSymbolRateS2))

#define ATSCC_TUNING_CASES(X) \
    /* case                      flag  description                                                  frame, tuner, system, body */ \
    X(TC_TUNER_ATSCC_Tuning_001, AUTO, "Tune ATSC-C on tuner-0",                                    tuner_frame(__func__, 0, ATSC_C, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCC_Tuning_002, AUTO, "Tune ATSC-C on tuner-1",                                    tuner_frame(__func__, 1, ATSC_C, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCC_Tuning_003, AUTO, "Tune ATSC-C on tuner-0 2 times",                            tuner_frame(__func__, 0, ATSC_C, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCC_Tuning_004, AUTO, "Tune ATSC-C on tuner-1 2 times",                            tuner_frame(__func__, 1, ATSC_C, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCC_Tuning_005, AUTO, "Consumption time of tuning ATSC-C on tuner-0",              tuner_frame(__func__, 0, ATSC_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_006, AUTO, "Consumption time of tuning ATSC-C on tuner-1",              tuner_frame(__func__, 1, ATSC_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_007, AUTO, "Consumption time of open, tuning ATSC-C, close on tuner-0", tuner_initFrame(__func__, 0, ATSC_C, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_008, AUTO, "Consumption time of open, tuning ATSC-C, close on tuner-1", tuner_initFrame(__func__, 1, ATSC_C, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_009, AUTO, "Sweep the band of ATSC-C on tuner-0",                       tuner_frame(__func__, 0, ATSC_C, tuner_sweepCount)) \
    X(TC_TUNER_ATSCC_Tuning_010, AUTO, "Sweep the band of ATSC-C on tuner-1",                       tuner_frame(__func__, 1, ATSC_C, tuner_sweepCount)) \
    X(TC_TUNER_ATSCC_Tuning_011, AUTO, "Consumption time of sweeping ATSC-C on tuner-0",            tuner_frame(__func__, 0, ATSC_C, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCC_Tuning_012, AUTO, "Consumption time of sweeping ATSC-C on tuner-1",            tuner_frame(__func__, 1, ATSC_C, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCC_Tuning_021, AUTO, "Tune ATSC-C on tuner-2",                                    tuner_frame(__func__, 2, ATSC_C, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCC_Tuning_022, AUTO, "Tune ATSC-C on tuner-3",                                    tuner_frame(__func__, 3, ATSC_C, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCC_Tuning_023, AUTO, "Tune ATSC-C on tuner-2 2 times",                            tuner_frame(__func__, 2, ATSC_C, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCC_Tuning_024, AUTO, "Tune ATSC-C on tuner-3 2 times",                            tuner_frame(__func__, 3, ATSC_C, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCC_Tuning_025, AUTO, "Consumption time of tuning ATSC-C on tuner-2",              tuner_frame(__func__, 2, ATSC_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_026, AUTO, "Consumption time of tuning ATSC-C on tuner-3",              tuner_frame(__func__, 3, ATSC_C, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_027, AUTO, "Consumption time of open, tuning ATSC-C, close on tuner-2", tuner_initFrame(__func__, 2, ATSC_C, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_028, AUTO, "Consumption time of open, tuning ATSC-C, close on tuner-3", tuner_initFrame(__func__, 3, ATSC_C, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCC_Tuning_029, AUTO, "Sweep the band of ATSC-C on tuner-2",                       tuner_frame(__func__, 2, ATSC_C, tuner_sweepCount)) \
    X(TC_TUNER_ATSCC_Tuning_030, AUTO, "Sweep the band of ATSC-C on tuner-3",                       tuner_frame(__func__, 3, ATSC_C, tuner_sweepCount)) \
    X(TC_TUNER_ATSCC_Tuning_031, AUTO, "Consumption time of sweeping ATSC-C on tuner-2",            tuner_frame(__func__, 2, ATSC_C, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCC_Tuning_032, AUTO, "Consumption time of sweeping ATSC-C on tuner-3",            tuner_frame(__func__, 3, ATSC_C, tuner_sweepConsume))

#define ATSCT_TUNING_CASES(X) \
    /* case                      flag  description                                                  frame, tuner, system, body */ \
    X(TC_TUNER_ATSCT_Tuning_001, AUTO, "Tune ATSC-T on tuner-0",                                    tuner_frame(__func__, 0, ATSC_T, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCT_Tuning_002, AUTO, "Tune ATSC-T on tuner-1",                                    tuner_frame(__func__, 1, ATSC_T, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCT_Tuning_003, AUTO, "Tune ATSC-T on tuner-0 2 times",                            tuner_frame(__func__, 0, ATSC_T, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCT_Tuning_004, AUTO, "Tune ATSC-T on tuner-1 2 times",                            tuner_frame(__func__, 1, ATSC_T, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCT_Tuning_005, AUTO, "Consumption time of tuning ATSC-T on tuner-0",              tuner_frame(__func__, 0, ATSC_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_006, AUTO, "Consumption time of tuning ATSC-T on tuner-1",              tuner_frame(__func__, 1, ATSC_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_007, AUTO, "Consumption time of open, tuning ATSC-T, close on tuner-0", tuner_initFrame(__func__, 0, ATSC_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_008, AUTO, "Consumption time of open, tuning ATSC-T, close on tuner-1", tuner_initFrame(__func__, 1, ATSC_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_009, AUTO, "Sweep the band of ATSC-T on tuner-0",                       tuner_frame(__func__, 0, ATSC_T, tuner_sweepCount)) \
    X(TC_TUNER_ATSCT_Tuning_010, AUTO, "Sweep the band of ATSC-T on tuner-1",                       tuner_frame(__func__, 1, ATSC_T, tuner_sweepCount)) \
    X(TC_TUNER_ATSCT_Tuning_011, AUTO, "Consumption time of sweeping ATSC-T on tuner-0",            tuner_frame(__func__, 0, ATSC_T, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCT_Tuning_012, AUTO, "Consumption time of sweeping ATSC-T on tuner-1",            tuner_frame(__func__, 1, ATSC_T, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCT_Tuning_021, AUTO, "Tune ATSC-T on tuner-2",                                    tuner_frame(__func__, 2, ATSC_T, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCT_Tuning_022, AUTO, "Tune ATSC-T on tuner-3",                                    tuner_frame(__func__, 3, ATSC_T, tuner_tuneOnce)) \
    X(TC_TUNER_ATSCT_Tuning_023, AUTO, "Tune ATSC-T on tuner-2 2 times",                            tuner_frame(__func__, 2, ATSC_T, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCT_Tuning_024, AUTO, "Tune ATSC-T on tuner-3 2 times",                            tuner_frame(__func__, 3, ATSC_T, tuner_tuneTwice)) \
    X(TC_TUNER_ATSCT_Tuning_025, AUTO, "Consumption time of tuning ATSC-T on tuner-2",              tuner_frame(__func__, 2, ATSC_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_026, AUTO, "Consumption time of tuning ATSC-T on tuner-3",              tuner_frame(__func__, 3, ATSC_T, tuner_consumeTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_027, AUTO, "Consumption time of open, tuning ATSC-T, close on tuner-2", tuner_initFrame(__func__, 2, ATSC_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_028, AUTO, "Consumption time of open, tuning ATSC-T, close on tuner-3", tuner_initFrame(__func__, 3, ATSC_T, tuner_consumeOpenTuneAndDump)) \
    X(TC_TUNER_ATSCT_Tuning_029, AUTO, "Sweep the band of ATSC-T on tuner-2",                       tuner_frame(__func__, 2, ATSC_T, tuner_sweepCount)) \
    X(TC_TUNER_ATSCT_Tuning_030, AUTO, "Sweep the band of ATSC-T on tuner-3",                       tuner_frame(__func__, 3, ATSC_T, tuner_sweepCount)) \
    X(TC_TUNER_ATSCT_Tuning_031, AUTO, "Consumption time of sweeping ATSC-T on tuner-2",            tuner_frame(__func__, 2, ATSC_T, tuner_sweepConsume)) \
    X(TC_TUNER_ATSCT_Tuning_032, AUTO, "Consumption time of sweeping ATSC-T on tuner-3",            tuner_frame(__func__, 3, ATSC_T, tuner_sweepConsume))

#define DVBT2_TUNING_CASES(X) \
    /* case                           flag    description                              frame, tuner, system, body */ \
    X(TC_TUNER_DVBT2_Mplp_Tuning_001, MANUAL, "Tune three pipes of DVB-T2 on tuner-0", tuner_frame(__func__, 0, DVB_T, tuner_t2Pipes))

#define DVBC_INFO_CASES(X) \
    /* case                              flag  description                                           frame, tuner, system, body */ \
    X(TC_TUNER_DVBC_CheckSignalInfo_001, AUTO, "Check the lock status of DVB-C on tuner-0",          tuner_frame(__func__, 0, DVB_C, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_002, AUTO, "Check the lock status of DVB-C on tuner-1",          tuner_frame(__func__, 1, DVB_C, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_003, AUTO, "Check the tuning type of DVB-C on tuner-0",          tuner_frame(__func__, 0, DVB_C, tuner_infoTuningType)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_004, AUTO, "Check the tuning type of DVB-C on tuner-1",          tuner_frame(__func__, 1, DVB_C, tuner_infoTuningType)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_005, AUTO, "Check the system of DVB-C on tuner-0",               tuner_frame(__func__, 0, DVB_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_006, AUTO, "Check the system of DVB-C on tuner-1",               tuner_frame(__func__, 1, DVB_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_007, AUTO, "Check the signal present of DVB-C on tuner-0",       tuner_frame(__func__, 0, DVB_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_008, AUTO, "Check the signal present of DVB-C on tuner-1",       tuner_frame(__func__, 1, DVB_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_011, AUTO, "Check the lock status of DVB-C on tuner-2",          tuner_frame(__func__, 2, DVB_C, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_012, AUTO, "Check the lock status of DVB-C on tuner-3",          tuner_frame(__func__, 3, DVB_C, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_013, AUTO, "Check the tuning type of DVB-C on tuner-2",          tuner_frame(__func__, 2, DVB_C, tuner_infoTuningType)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_014, AUTO, "Check the tuning type of DVB-C on tuner-3",          tuner_frame(__func__, 3, DVB_C, tuner_infoTuningType)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_015, AUTO, "Check the system of DVB-C on tuner-2",               tuner_frame(__func__, 2, DVB_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_016, AUTO, "Check the system of DVB-C on tuner-3",               tuner_frame(__func__, 3, DVB_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_017, AUTO, "Check the signal present of DVB-C on tuner-2",       tuner_frame(__func__, 2, DVB_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_018, AUTO, "Check the signal present of DVB-C on tuner-3",       tuner_frame(__func__, 3, DVB_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_019, AUTO, "Check the modulation of DVB-C on tuner-0",           tuner_frame(__func__, 0, DVB_C, tuner_infoModulation)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_020, AUTO, "Check the symbol rate of DVB-C on tuner-0",          tuner_frame(__func__, 0, DVB_C, tuner_infoSymbolRate)) \
    X(TC_TUNER_DVBC_CheckSignalInfo_021, AUTO, "Check the strength and quality of DVB-C on tuner-0", tuner_frame(__func__, 0, DVB_C, tuner_infoStrengthAndQuality))

#define DVBT_INFO_CASES(X) \
    /* case                              flag    description                                           frame, tuner, system, body */ \
    X(TC_TUNER_DVBT_CheckSignalInfo_001, AUTO,   "Check the lock status of DVB-T on tuner-0",          tuner_frame(__func__, 0, DVB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_002, AUTO,   "Check the lock status of DVB-T on tuner-1",          tuner_frame(__func__, 1, DVB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_003, AUTO,   "Check the tuning type of DVB-T on tuner-0",          tuner_frame(__func__, 0, DVB_T, tuner_infoTuningType)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_004, AUTO,   "Check the tuning type of DVB-T on tuner-1",          tuner_frame(__func__, 1, DVB_T, tuner_infoTuningType)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_005, AUTO,   "Check the system of DVB-T on tuner-0",               tuner_frame(__func__, 0, DVB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_006, AUTO,   "Check the system of DVB-T on tuner-1",               tuner_frame(__func__, 1, DVB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_007, AUTO,   "Check the signal present of DVB-T on tuner-0",       tuner_frame(__func__, 0, DVB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_008, AUTO,   "Check the signal present of DVB-T on tuner-1",       tuner_frame(__func__, 1, DVB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_011, AUTO,   "Check the lock status of DVB-T on tuner-2",          tuner_frame(__func__, 2, DVB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_012, AUTO,   "Check the lock status of DVB-T on tuner-3",          tuner_frame(__func__, 3, DVB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_013, AUTO,   "Check the tuning type of DVB-T on tuner-2",          tuner_frame(__func__, 2, DVB_T, tuner_infoTuningType)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_014, AUTO,   "Check the tuning type of DVB-T on tuner-3",          tuner_frame(__func__, 3, DVB_T, tuner_infoTuningType)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_015, AUTO,   "Check the system of DVB-T on tuner-2",               tuner_frame(__func__, 2, DVB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_016, AUTO,   "Check the system of DVB-T on tuner-3",               tuner_frame(__func__, 3, DVB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_017, AUTO,   "Check the signal present of DVB-T on tuner-2",       tuner_frame(__func__, 2, DVB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_018, AUTO,   "Check the signal present of DVB-T on tuner-3",       tuner_frame(__func__, 3, DVB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_019, AUTO,   "Check the modulation of DVB-T on tuner-0",           tuner_frame(__func__, 0, DVB_T, tuner_infoModulation)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_020, AUTO,   "Check the symbol rate of DVB-T on tuner-0",          tuner_frame(__func__, 0, DVB_T, tuner_infoSymbolRate)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_021, AUTO,   "Check the strength and quality of DVB-T on tuner-0", tuner_frame(__func__, 0, DVB_T, tuner_infoStrengthAndQuality)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_022, MANUAL, "Check the system of DVB-T2 tuned as DVB-T",          tuner_frame(__func__, 0, DVB_T, tuner_infoSecondGeneration)) \
    X(TC_TUNER_DVBT_CheckSignalInfo_023, MANUAL, "Check the cell identifier of DVB-T",                 tuner_frame(__func__, 0, DVB_T, tuner_infoCellIdentifier))

#define DVBS_INFO_CASES(X) \
    /* case                              flag  description                                           frame, tuner, system, body */ \
    X(TC_TUNER_DVBS_CheckSignalInfo_001, AUTO, "Check the lock status of DVB-S on tuner-0",          tuner_frame(__func__, 0, DVB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_002, AUTO, "Check the lock status of DVB-S on tuner-1",          tuner_frame(__func__, 1, DVB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_003, AUTO, "Check the tuning type of DVB-S on tuner-0",          tuner_frame(__func__, 0, DVB_S, tuner_infoTuningType)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_004, AUTO, "Check the tuning type of DVB-S on tuner-1",          tuner_frame(__func__, 1, DVB_S, tuner_infoTuningType)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_005, AUTO, "Check the system of DVB-S on tuner-0",               tuner_frame(__func__, 0, DVB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_006, AUTO, "Check the system of DVB-S on tuner-1",               tuner_frame(__func__, 1, DVB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_007, AUTO, "Check the signal present of DVB-S on tuner-0",       tuner_frame(__func__, 0, DVB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_008, AUTO, "Check the signal present of DVB-S on tuner-1",       tuner_frame(__func__, 1, DVB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_011, AUTO, "Check the lock status of DVB-S on tuner-2",          tuner_frame(__func__, 2, DVB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_012, AUTO, "Check the lock status of DVB-S on tuner-3",          tuner_frame(__func__, 3, DVB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_013, AUTO, "Check the tuning type of DVB-S on tuner-2",          tuner_frame(__func__, 2, DVB_S, tuner_infoTuningType)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_014, AUTO, "Check the tuning type of DVB-S on tuner-3",          tuner_frame(__func__, 3, DVB_S, tuner_infoTuningType)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_015, AUTO, "Check the system of DVB-S on tuner-2",               tuner_frame(__func__, 2, DVB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_016, AUTO, "Check the system of DVB-S on tuner-3",               tuner_frame(__func__, 3, DVB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_017, AUTO, "Check the signal present of DVB-S on tuner-2",       tuner_frame(__func__, 2, DVB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_018, AUTO, "Check the signal present of DVB-S on tuner-3",       tuner_frame(__func__, 3, DVB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_019, AUTO, "Check the modulation of DVB-S on tuner-0",           tuner_frame(__func__, 0, DVB_S, tuner_infoModulation)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_020, AUTO, "Check the symbol rate of DVB-S on tuner-0",          tuner_frame(__func__, 0, DVB_S, tuner_infoSymbolRate)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_021, AUTO, "Check the strength and quality of DVB-S on tuner-0", tuner_frame(__func__, 0, DVB_S, tuner_infoStrengthAndQuality)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_022, AUTO, "Check the offset of DVB-S 2 MHz above",              tuner_frame(__func__, 0, DVB_S, tuner_infoOffsetAbove)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_023, AUTO, "Check the offset of DVB-S 2 MHz below",              tuner_frame(__func__, 0, DVB_S, tuner_infoOffsetBelow)) \
    X(TC_TUNER_DVBS_CheckSignalInfo_024, AUTO, "Check the frequency of DVB-S unlocked",              tuner_frame(__func__, 0, DVB_S, tuner_infoFrequencyUnlocked))

#define ATSCC_INFO_CASES(X) \
    /* case                               flag  description                                      frame, tuner, system, body */ \
    X(TC_TUNER_ATSCC_CheckSignalInfo_001, AUTO, "Check the lock status of ATSC-C on tuner-0",    tuner_frame(__func__, 0, ATSC_C, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_002, AUTO, "Check the lock status of ATSC-C on tuner-1",    tuner_frame(__func__, 1, ATSC_C, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_003, AUTO, "Check the tuning type of ATSC-C on tuner-0",    tuner_frame(__func__, 0, ATSC_C, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_004, AUTO, "Check the tuning type of ATSC-C on tuner-1",    tuner_frame(__func__, 1, ATSC_C, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_005, AUTO, "Check the system of ATSC-C on tuner-0",         tuner_frame(__func__, 0, ATSC_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_006, AUTO, "Check the system of ATSC-C on tuner-1",         tuner_frame(__func__, 1, ATSC_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_007, AUTO, "Check the signal present of ATSC-C on tuner-0", tuner_frame(__func__, 0, ATSC_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_008, AUTO, "Check the signal present of ATSC-C on tuner-1", tuner_frame(__func__, 1, ATSC_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_011, AUTO, "Check the lock status of ATSC-C on tuner-2",    tuner_frame(__func__, 2, ATSC_C, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_012, AUTO, "Check the lock status of ATSC-C on tuner-3",    tuner_frame(__func__, 3, ATSC_C, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_013, AUTO, "Check the tuning type of ATSC-C on tuner-2",    tuner_frame(__func__, 2, ATSC_C, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_014, AUTO, "Check the tuning type of ATSC-C on tuner-3",    tuner_frame(__func__, 3, ATSC_C, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_015, AUTO, "Check the system of ATSC-C on tuner-2",         tuner_frame(__func__, 2, ATSC_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_016, AUTO, "Check the system of ATSC-C on tuner-3",         tuner_frame(__func__, 3, ATSC_C, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_017, AUTO, "Check the signal present of ATSC-C on tuner-2", tuner_frame(__func__, 2, ATSC_C, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCC_CheckSignalInfo_018, AUTO, "Check the signal present of ATSC-C on tuner-3", tuner_frame(__func__, 3, ATSC_C, tuner_infoSignalPresent))

#define ATSCT_INFO_CASES(X) \
    /* case                               flag  description                                      frame, tuner, system, body */ \
    X(TC_TUNER_ATSCT_CheckSignalInfo_001, AUTO, "Check the lock status of ATSC-T on tuner-0",    tuner_frame(__func__, 0, ATSC_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_002, AUTO, "Check the lock status of ATSC-T on tuner-1",    tuner_frame(__func__, 1, ATSC_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_003, AUTO, "Check the tuning type of ATSC-T on tuner-0",    tuner_frame(__func__, 0, ATSC_T, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_004, AUTO, "Check the tuning type of ATSC-T on tuner-1",    tuner_frame(__func__, 1, ATSC_T, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_005, AUTO, "Check the system of ATSC-T on tuner-0",         tuner_frame(__func__, 0, ATSC_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_006, AUTO, "Check the system of ATSC-T on tuner-1",         tuner_frame(__func__, 1, ATSC_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_007, AUTO, "Check the signal present of ATSC-T on tuner-0", tuner_frame(__func__, 0, ATSC_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_008, AUTO, "Check the signal present of ATSC-T on tuner-1", tuner_frame(__func__, 1, ATSC_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_011, AUTO, "Check the lock status of ATSC-T on tuner-2",    tuner_frame(__func__, 2, ATSC_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_012, AUTO, "Check the lock status of ATSC-T on tuner-3",    tuner_frame(__func__, 3, ATSC_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_013, AUTO, "Check the tuning type of ATSC-T on tuner-2",    tuner_frame(__func__, 2, ATSC_T, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_014, AUTO, "Check the tuning type of ATSC-T on tuner-3",    tuner_frame(__func__, 3, ATSC_T, tuner_infoTuningType)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_015, AUTO, "Check the system of ATSC-T on tuner-2",         tuner_frame(__func__, 2, ATSC_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_016, AUTO, "Check the system of ATSC-T on tuner-3",         tuner_frame(__func__, 3, ATSC_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_017, AUTO, "Check the signal present of ATSC-T on tuner-2", tuner_frame(__func__, 2, ATSC_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ATSCT_CheckSignalInfo_018, AUTO, "Check the signal present of ATSC-T on tuner-3", tuner_frame(__func__, 3, ATSC_T, tuner_infoSignalPresent))

#define ISDBT_INFO_CASES(X) \
    /* case                               flag  description                                      frame, tuner, system, body */ \
    X(TC_TUNER_ISDBT_CheckSignalInfo_001, AUTO, "Check the lock status of ISDB-T on tuner-0",    tuner_frame(__func__, 0, ISDB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_002, AUTO, "Check the lock status of ISDB-T on tuner-1",    tuner_frame(__func__, 1, ISDB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_003, AUTO, "Check the tuning type of ISDB-T on tuner-0",    tuner_frame(__func__, 0, ISDB_T, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_004, AUTO, "Check the tuning type of ISDB-T on tuner-1",    tuner_frame(__func__, 1, ISDB_T, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_005, AUTO, "Check the system of ISDB-T on tuner-0",         tuner_frame(__func__, 0, ISDB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_006, AUTO, "Check the system of ISDB-T on tuner-1",         tuner_frame(__func__, 1, ISDB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_007, AUTO, "Check the signal present of ISDB-T on tuner-0", tuner_frame(__func__, 0, ISDB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_008, AUTO, "Check the signal present of ISDB-T on tuner-1", tuner_frame(__func__, 1, ISDB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_011, AUTO, "Check the lock status of ISDB-T on tuner-2",    tuner_frame(__func__, 2, ISDB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_012, AUTO, "Check the lock status of ISDB-T on tuner-3",    tuner_frame(__func__, 3, ISDB_T, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_013, AUTO, "Check the tuning type of ISDB-T on tuner-2",    tuner_frame(__func__, 2, ISDB_T, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_014, AUTO, "Check the tuning type of ISDB-T on tuner-3",    tuner_frame(__func__, 3, ISDB_T, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_015, AUTO, "Check the system of ISDB-T on tuner-2",         tuner_frame(__func__, 2, ISDB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_016, AUTO, "Check the system of ISDB-T on tuner-3",         tuner_frame(__func__, 3, ISDB_T, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_017, AUTO, "Check the signal present of ISDB-T on tuner-2", tuner_frame(__func__, 2, ISDB_T, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBT_CheckSignalInfo_018, AUTO, "Check the signal present of ISDB-T on tuner-3", tuner_frame(__func__, 3, ISDB_T, tuner_infoSignalPresent))

#define ISDBS_INFO_CASES(X) \
    /* case                               flag  description                                      frame, tuner, system, body */ \
    X(TC_TUNER_ISDBS_CheckSignalInfo_001, AUTO, "Check the lock status of ISDB-S on tuner-0",    tuner_frame(__func__, 0, ISDB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_002, AUTO, "Check the lock status of ISDB-S on tuner-1",    tuner_frame(__func__, 1, ISDB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_003, AUTO, "Check the tuning type of ISDB-S on tuner-0",    tuner_frame(__func__, 0, ISDB_S, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_004, AUTO, "Check the tuning type of ISDB-S on tuner-1",    tuner_frame(__func__, 1, ISDB_S, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_005, AUTO, "Check the system of ISDB-S on tuner-0",         tuner_frame(__func__, 0, ISDB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_006, AUTO, "Check the system of ISDB-S on tuner-1",         tuner_frame(__func__, 1, ISDB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_007, AUTO, "Check the signal present of ISDB-S on tuner-0", tuner_frame(__func__, 0, ISDB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_008, AUTO, "Check the signal present of ISDB-S on tuner-1", tuner_frame(__func__, 1, ISDB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_011, AUTO, "Check the lock status of ISDB-S on tuner-2",    tuner_frame(__func__, 2, ISDB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_012, AUTO, "Check the lock status of ISDB-S on tuner-3",    tuner_frame(__func__, 3, ISDB_S, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_013, AUTO, "Check the tuning type of ISDB-S on tuner-2",    tuner_frame(__func__, 2, ISDB_S, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_014, AUTO, "Check the tuning type of ISDB-S on tuner-3",    tuner_frame(__func__, 3, ISDB_S, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_015, AUTO, "Check the system of ISDB-S on tuner-2",         tuner_frame(__func__, 2, ISDB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_016, AUTO, "Check the system of ISDB-S on tuner-3",         tuner_frame(__func__, 3, ISDB_S, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_017, AUTO, "Check the signal present of ISDB-S on tuner-2", tuner_frame(__func__, 2, ISDB_S, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS_CheckSignalInfo_018, AUTO, "Check the signal present of ISDB-S on tuner-3", tuner_frame(__func__, 3, ISDB_S, tuner_infoSignalPresent))

#define ISDBS3_INFO_CASES(X) \
    /* case                                flag  description                                       frame, tuner, system, body */ \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_001, AUTO, "Check the lock status of ISDB-S3 on tuner-0",    tuner_frame(__func__, 0, ISDB_S3, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_002, AUTO, "Check the lock status of ISDB-S3 on tuner-1",    tuner_frame(__func__, 1, ISDB_S3, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_003, AUTO, "Check the tuning type of ISDB-S3 on tuner-0",    tuner_frame(__func__, 0, ISDB_S3, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_004, AUTO, "Check the tuning type of ISDB-S3 on tuner-1",    tuner_frame(__func__, 1, ISDB_S3, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_005, AUTO, "Check the system of ISDB-S3 on tuner-0",         tuner_frame(__func__, 0, ISDB_S3, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_006, AUTO, "Check the system of ISDB-S3 on tuner-1",         tuner_frame(__func__, 1, ISDB_S3, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_007, AUTO, "Check the signal present of ISDB-S3 on tuner-0", tuner_frame(__func__, 0, ISDB_S3, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_008, AUTO, "Check the signal present of ISDB-S3 on tuner-1", tuner_frame(__func__, 1, ISDB_S3, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_011, AUTO, "Check the lock status of ISDB-S3 on tuner-2",    tuner_frame(__func__, 2, ISDB_S3, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_012, AUTO, "Check the lock status of ISDB-S3 on tuner-3",    tuner_frame(__func__, 3, ISDB_S3, tuner_infoLockStatus)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_013, AUTO, "Check the tuning type of ISDB-S3 on tuner-2",    tuner_frame(__func__, 2, ISDB_S3, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_014, AUTO, "Check the tuning type of ISDB-S3 on tuner-3",    tuner_frame(__func__, 3, ISDB_S3, tuner_infoTuningType)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_015, AUTO, "Check the system of ISDB-S3 on tuner-2",         tuner_frame(__func__, 2, ISDB_S3, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_016, AUTO, "Check the system of ISDB-S3 on tuner-3",         tuner_frame(__func__, 3, ISDB_S3, tuner_infoTransmissionSystem)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_017, AUTO, "Check the signal present of ISDB-S3 on tuner-2", tuner_frame(__func__, 2, ISDB_S3, tuner_infoSignalPresent)) \
    X(TC_TUNER_ISDBS3_CheckSignalInfo_018, AUTO, "Check the signal present of ISDB-S3 on tuner-3", tuner_frame(__func__, 3, ISDB_S3, tuner_infoSignalPresent))

#define FREEVIEW_CASES(X) \
    /* case                                         flag    description                         case */ \
    X(TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_001, MANUAL, "Check the quality of UK FreeView", tuner_freeViewQuality(__func__)) \
    X(TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_002, MANUAL, "Compare two UK FreeView channels", tuner_freeViewCompare(__func__))

#define LEVEL_TABLE_CASES(X) \
    /* case                                          flag    description                           case, table */ \
    X(TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001,  MANUAL, "Strength of DVB-S QPSK 3/4 30000k",  tuner_levelTable(__func__, tunerDvbsLevel001)) \
    X(TC_TUNER_DVBS_CheckSignalInfoSignalLevel_002,  MANUAL, "Strength of DVB-S QPSK 3/4 3000k",   tuner_levelTable(__func__, tunerDvbsLevel002)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_001, MANUAL, "Strength of DVB-S2 QPSK 3/4 20000k", tuner_levelTable(__func__, tunerDvbs2Level001)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_002, MANUAL, "Strength of DVB-S2 QPSK 3/4 5000k",  tuner_levelTable(__func__, tunerDvbs2Level002)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_003, MANUAL, "Strength of DVB-S2 8PSK 3/4 30000k", tuner_levelTable(__func__, tunerDvbs2Level003)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_004, MANUAL, "Strength of DVB-S2 8PSK 3/4 5000k",  tuner_levelTable(__func__, tunerDvbs2Level004))

#define QUALITY_TABLE_CASES(X) \
    /* case                                            flag    description                          case, table */ \
    X(TC_TUNER_DVBS_CheckSignalInfoSignalQuality_001,  MANUAL, "Quality of DVB-S QPSK 2/3 30000k",  tuner_levelTable(__func__, tunerDvbsQuality001)) \
    X(TC_TUNER_DVBS_CheckSignalInfoSignalQuality_002,  MANUAL, "Quality of DVB-S QPSK 3/4 30000k",  tuner_levelTable(__func__, tunerDvbsQuality002)) \
    X(TC_TUNER_DVBS_CheckSignalInfoSignalQuality_003,  MANUAL, "Quality of DVB-S QPSK 5/6 30000k",  tuner_levelTable(__func__, tunerDvbsQuality003)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_001, MANUAL, "Quality of DVB-S2 QPSK 2/3 20000k", tuner_levelTable(__func__, tunerDvbs2Quality001)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_002, MANUAL, "Quality of DVB-S2 QPSK 3/4 20000k", tuner_levelTable(__func__, tunerDvbs2Quality002)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_003, MANUAL, "Quality of DVB-S2 QPSK 5/6 20000k", tuner_levelTable(__func__, tunerDvbs2Quality003)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_004, MANUAL, "Quality of DVB-S2 8PSK 2/3 30000k", tuner_levelTable(__func__, tunerDvbs2Quality004)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_005, MANUAL, "Quality of DVB-S2 8PSK 3/4 30000k", tuner_levelTable(__func__, tunerDvbs2Quality005)) \
    X(TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_006, MANUAL, "Quality of DVB-S2 8PSK 5/6 30000k", tuner_levelTable(__func__, tunerDvbs2Quality006))

#define SIMULTANEOUS_CASES(X) \
    /* case                     flag  description                                                 case, system of each tuner from 0, 0 where it takes no part */ \
    X(TC_TUNER_ISDB_Tuning_001, AUTO, "Tune ISDB-T on 0, ISDB-S on 1",                            tuner_simultaneous(__func__, ISDB_T, ISDB_S, 0, 0)) \
    X(TC_TUNER_ISDB_Tuning_002, AUTO, "Tune ISDB-S on 0, ISDB-T on 1",                            tuner_simultaneous(__func__, ISDB_S, ISDB_T, 0, 0)) \
    X(TC_TUNER_ISDB_Tuning_003, AUTO, "Tune ISDB-T on 2, ISDB-S on 3",                            tuner_simultaneous(__func__, 0, 0, ISDB_T, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_004, AUTO, "Tune ISDB-T on 1, ISDB-T on 2, ISDB-T on 3",               tuner_simultaneous(__func__, 0, ISDB_T, ISDB_T, ISDB_T)) \
    X(TC_TUNER_ISDB_Tuning_005, AUTO, "Tune ISDB-S on 1, ISDB-S on 2, ISDB-S on 3",               tuner_simultaneous(__func__, 0, ISDB_S, ISDB_S, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_006, AUTO, "Tune ISDB-T on 1, ISDB-S on 2, ISDB-S on 3",               tuner_simultaneous(__func__, 0, ISDB_T, ISDB_S, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_012, AUTO, "Tune ISDB-S3 on 0, ISDB-T on 1, ISDB-T on 2, ISDB-T on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_T, ISDB_T, ISDB_T)) \
    X(TC_TUNER_ISDB_Tuning_013, AUTO, "Tune ISDB-S3 on 0, ISDB-S on 1, ISDB-S on 2, ISDB-S on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_S, ISDB_S, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_014, AUTO, "Tune ISDB-S3 on 0, ISDB-T on 1, ISDB-S on 2, ISDB-S on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_T, ISDB_S, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_015, AUTO, "Tune ISDB-S3 on 0, ISDB-T on 1, ISDB-T on 2, ISDB-S on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_T, ISDB_T, ISDB_S)) \
    X(TC_TUNER_ISDB_Tuning_016, AUTO, "Tune ISDB-S3 on 0, ISDB-S on 1, ISDB-T on 2, ISDB-T on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_S, ISDB_T, ISDB_T)) \
    X(TC_TUNER_ISDB_Tuning_017, AUTO, "Tune ISDB-S3 on 0, ISDB-S on 1, ISDB-S on 2, ISDB-T on 3", tuner_simultaneous(__func__, ISDB_S3, ISDB_S, ISDB_S, ISDB_T))

#define ATSCT3_CASES(X) \
    /* case                                flag    description                                    frame, tuner, system, body */ \
    X(TC_TUNER_ATSCT3_Tuning_001,          AUTO,   "Lock tuner and demod",                        tuner_frame(__func__, 0, ATSC_T3, tuner_t3NoPipe)) \
    X(TC_TUNER_ATSCT3_Tuning_002,          AUTO,   "Lock tuner, demod and PLP 0",                 tuner_frame(__func__, 0, ATSC_T3, tuner_t3Pipe0)) \
    X(TC_TUNER_ATSCT3_Tuning_003,          AUTO,   "Lock tuner, demod and PLP 1",                 tuner_frame(__func__, 0, ATSC_T3, tuner_t3Pipe1)) \
    X(TC_TUNER_ATSCT3_Tuning_004,          AUTO,   "Lock tuner, demod and PLPs 0, 1",             tuner_frame(__func__, 0, ATSC_T3, tuner_t3Pipes0And1)) \
    X(TC_TUNER_ATSCT3_Tuning_005,          AUTO,   "Sweep the band of ATSC-T3 on tuner-0",        tuner_frame(__func__, 0, ATSC_T3, tuner_t3Sweep)) \
    X(TC_TUNER_ATSCT3_Tuning_006,          AUTO,   "Lock tuner, demod and PLPs[0,3]",             tuner_frame(__func__, 0, ATSC_T3, tuner_t3Pipes0To3)) \
    X(TC_TUNER_ATSCT3_Tuning_007,          AUTO,   "Lock tuner, demod and PLP 0, then PLPs[0,3]", tuner_frame(__func__, 0, ATSC_T3, tuner_t3PipeThenPipes)) \
    X(TC_TUNER_ATSCT3_CheckSignalInfo_001, AUTO,   "Check the L1 detail of ATSC-T3",              tuner_frame(__func__, 0, ATSC_T3, tuner_t3Details)) \
    X(TC_TUNER_ATSCT3_CheckSignalInfo_002, AUTO,   "Check the L1 time of ATSC-T3 200 times",      tuner_frame(__func__, 0, ATSC_T3, tuner_t3Time)) \
    X(TC_TUNER_ATSCT3_CheckEasWakeup_001,  MANUAL, "Check the emergency wake-up bits",            tuner_frame(__func__, 0, ATSC_T3, tuner_t3EasWakeup)) \
    X(TC_TUNER_ATSCT3_CheckEasMode_001,    MANUAL, "Check the emergency alert mode",              tuner_frame(__func__, 0, ATSC_T3, tuner_t3EasMode))

#define SWITCH_SYSTEM_CASES(X) \
    /* case                               flag  description                              frame, tuner, system, body */ \
    X(TC_TUNER_ATSC_swtich_trans_sys_001, AUTO, "Switch tuner-0 from ATSC-T3 to ATSC-T", tuner_frame(__func__, 0, ATSC_T3, tuner_switchToAtscT)) \
    X(TC_TUNER_ATSC_swtich_trans_sys_002, AUTO, "Switch tuner-0 from ATSC-T3 to ATSC-C", tuner_frame(__func__, 0, ATSC_T3, tuner_switchToAtscC)) \
    X(TC_TUNER_ATSC_swtich_trans_sys_003, AUTO, "Switch tuner-0 from ATSC-T to ATSC-T3", tuner_frame(__func__, 0, ATSC_T, tuner_switchToAtscT3)) \
    X(TC_TUNER_ATSC_swtich_trans_sys_004, AUTO, "Switch tuner-0 from ATSC-C to ATSC-T3", tuner_frame(__func__, 0, ATSC_C, tuner_switchToAtscT3))

#define BLIND_SCAN_CASES(X) \
    /* case                            flag  description                                   frame, tuner, system, body */ \
    X(TC_TUNER_DVBS_BlindScanTune_001, AUTO, "Blind scan on tuner-0",                      tuner_frame(__func__, 0, DVB_S, tuner_blindScanPoweredUp)) \
    X(TC_TUNER_DVBS_BlindScanTune_002, AUTO, "Blind scan on tuner-1",                      tuner_frame(__func__, 1, DVB_S, tuner_blindScan)) \
    X(TC_TUNER_DVBS_BlindScanTune_003, AUTO, "Cancel a blind scan on tuner-0",             tuner_frame(__func__, 0, DVB_S, tuner_blindScanCancel)) \
    X(TC_TUNER_DVBS_BlindScanTune_011, AUTO, "Blind scan on tuner-2",                      tuner_frame(__func__, 2, DVB_S, tuner_blindScan)) \
    X(TC_TUNER_DVBS_BlindScanTune_012, AUTO, "Blind scan on tuner-3",                      tuner_frame(__func__, 3, DVB_S, tuner_blindScan)) \
    X(TC_TUNER_DVBS_BlindScanTune_013, AUTO, "Read signal information during blind scans", tuner_frame(__func__, 0, DVB_S, tuner_blindScanSignalInfo)) \
    X(TC_TUNER_DVBS_BlindScanTune_014, AUTO, "Read signal information during tunings",     tuner_frame(__func__, 0, DVB_S, tuner_tuningSignalInfo))

#define LNB_POWER_CASES(X) \
    /* case                       flag  description                             frame, tuner, body */ \
    X(TC_TUNER_DVBS_LnbPower_001, AUTO, "Set the LNB power of tuner-0 to 13 V", tuner_openFrame(__func__, 0, tuner_lnb13V)) \
    X(TC_TUNER_DVBS_LnbPower_002, AUTO, "Set the LNB power of tuner-1 to 13 V", tuner_openFrame(__func__, 1, tuner_lnb13V)) \
    X(TC_TUNER_DVBS_LnbPower_003, AUTO, "Set the LNB power of tuner-0 to 18 V", tuner_openFrame(__func__, 0, tuner_lnb18V)) \
    X(TC_TUNER_DVBS_LnbPower_004, AUTO, "Set the LNB power of tuner-1 to 18 V", tuner_openFrame(__func__, 1, tuner_lnb18V)) \
    X(TC_TUNER_DVBS_LnbPower_011, AUTO, "Set the LNB power of tuner-2 to 13 V", tuner_openFrame(__func__, 2, tuner_lnb13V)) \
    X(TC_TUNER_DVBS_LnbPower_012, AUTO, "Set the LNB power of tuner-3 to 13 V", tuner_openFrame(__func__, 3, tuner_lnb13V)) \
    X(TC_TUNER_DVBS_LnbPower_013, AUTO, "Set the LNB power of tuner-2 to 18 V", tuner_openFrame(__func__, 2, tuner_lnb18V)) \
    X(TC_TUNER_DVBS_LnbPower_014, AUTO, "Set the LNB power of tuner-3 to 18 V", tuner_openFrame(__func__, 3, tuner_lnb18V))

#define TONE_CASES(X) \
    /* case                       flag  description                              frame, tuner, body */ \
    X(TC_TUNER_DVBS_Tonburst_001, AUTO, "Set the LNB tone of tuner-0 to off",    tuner_openFrame(__func__, 0, tuner_toneOff)) \
    X(TC_TUNER_DVBS_Tonburst_002, AUTO, "Set the LNB tone of tuner-1 to off",    tuner_openFrame(__func__, 1, tuner_toneOff)) \
    X(TC_TUNER_DVBS_Tonburst_003, AUTO, "Set the LNB tone of tuner-0 to 22 kHz", tuner_openFrame(__func__, 0, tuner_tone22kHz)) \
    X(TC_TUNER_DVBS_Tonburst_004, AUTO, "Set the LNB tone of tuner-1 to 22 kHz", tuner_openFrame(__func__, 1, tuner_tone22kHz)) \
    X(TC_TUNER_DVBS_Tonburst_011, AUTO, "Set the LNB tone of tuner-2 to off",    tuner_openFrame(__func__, 2, tuner_toneOff)) \
    X(TC_TUNER_DVBS_Tonburst_012, AUTO, "Set the LNB tone of tuner-3 to off",    tuner_openFrame(__func__, 3, tuner_toneOff)) \
    X(TC_TUNER_DVBS_Tonburst_013, AUTO, "Set the LNB tone of tuner-2 to 22 kHz", tuner_openFrame(__func__, 2, tuner_tone22kHz)) \
    X(TC_TUNER_DVBS_Tonburst_014, AUTO, "Set the LNB tone of tuner-3 to 22 kHz", tuner_openFrame(__func__, 3, tuner_tone22kHz))

#define SWITCH_TONBURST_CASES(X) \
    /* case                             flag  description                       frame, tuner, body */ \
    X(TC_TUNER_DVBS_Switch_Tonburst_01, AUTO, "Switch tone burst A on tuner-0", tuner_openFrame(__func__, 0, tuner_toneburstA)) \
    X(TC_TUNER_DVBS_Switch_Tonburst_02, AUTO, "Switch tone burst B on tuner-0", tuner_openFrame(__func__, 0, tuner_toneburstB))

#define UNICABLE_CASES(X) \
    /* case                             flag  description                          frame, tuner, system, body */ \
    X(TC_TUNER_DVBS_UnicableTuning_001, AUTO, "Tune DVB-S by Unicable on tuner-0", tuner_frame(__func__, 0, DVB_S, tuner_unicable)) \
    X(TC_TUNER_DVBS_UnicableTuning_002, AUTO, "Tune DVB-S by Unicable on tuner-1", tuner_frame(__func__, 1, DVB_S, tuner_unicable)) \
    X(TC_TUNER_DVBS_UnicableTuning_011, AUTO, "Tune DVB-S by Unicable on tuner-2", tuner_frame(__func__, 2, DVB_S, tuner_unicable)) \
    X(TC_TUNER_DVBS_UnicableTuning_012, AUTO, "Tune DVB-S by Unicable on tuner-3", tuner_frame(__func__, 3, DVB_S, tuner_unicable))

#define DISEQC_CASES(X) \
    /* case                            flag  description                           frame, tuner, body */ \
    X(TC_TUNER_DVBS_DiseqcCommand_001, AUTO, "Send the DiSEqC command on tuner-0", tuner_openFrame(__func__, 0, tuner_diseqcCommand)) \
    X(TC_TUNER_DVBS_DiseqcCommand_002, AUTO, "Send the DiSEqC command on tuner-1", tuner_openFrame(__func__, 1, tuner_diseqcCommand)) \
    X(TC_TUNER_DVBS_DiseqcCommand_011, AUTO, "Send the DiSEqC command on tuner-2", tuner_openFrame(__func__, 2, tuner_diseqcCommand)) \
    X(TC_TUNER_DVBS_DiseqcCommand_012, AUTO, "Send the DiSEqC command on tuner-3", tuner_openFrame(__func__, 3, tuner_diseqcCommand))

#define ALL_CASES(X) \
    OPEN_CASES(X) \
    INPUT_CASES(X) \
    DEFAULT_TUNING_CASES(X) \
    LOCK_STATUS_CASES(X) \
    DVBC_TUNING_CASES(X) \
    DVBT_TUNING_CASES(X) \
    ISDBT_TUNING_CASES(X) \
    ISDBS_TUNING_CASES(X) \
    ISDBS3_TUNING_CASES(X) \
    DVBS_TUNING_CASES(X) \
    ATSCC_TUNING_CASES(X) \
    ATSCT_TUNING_CASES(X) \
    DVBT2_TUNING_CASES(X) \
    DVBC_INFO_CASES(X) \
    DVBT_INFO_CASES(X) \
    DVBS_INFO_CASES(X) \
    ATSCC_INFO_CASES(X) \
    ATSCT_INFO_CASES(X) \
    ISDBT_INFO_CASES(X) \
    ISDBS_INFO_CASES(X) \
    ISDBS3_INFO_CASES(X) \
    FREEVIEW_CASES(X) \
    LEVEL_TABLE_CASES(X) \
    QUALITY_TABLE_CASES(X) \
    SIMULTANEOUS_CASES(X) \
    ATSCT3_CASES(X) \
    SWITCH_SYSTEM_CASES(X) \
    BLIND_SCAN_CASES(X) \
    LNB_POWER_CASES(X) \
    TONE_CASES(X) \
    SWITCH_TONBURST_CASES(X) \
    UNICABLE_CASES(X) \
    DISEQC_CASES(X)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase TunerModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(TunerModuleCases) == 407, "cases of the module");
static_assert(tcAutoCount(TunerModuleCases) == 379, "automatic ones");

const TcModule TunerModule = {
    TUNER_TestSetup,
    TUNER_TestTeardown,
    TUNER_TestCaseSetupImp,
    TUNER_TestCaseTeardownImp,
    TunerModuleCases,
    tcCaseCount(TunerModuleCases),
    "Tuner",
    "Test module for the TUNER",
    nullptr,
};
