/* The families of the module Tuner: whole cases by their arguments, and bodies for the frames. */
#ifndef TESTCASE_TUNER_TUNER_FAMILIES_H
#define TESTCASE_TUNER_TUNER_FAMILIES_H

#include <stdint.h>

#include "testcase/tuner/tuner_case.h"

// Opening. Whole cases.
uint32_t tuner_openWithoutInit(const char* name, uint32_t eTunerId);
uint32_t tuner_openAfterInit(const char* name, uint32_t eTunerId);
uint32_t tuner_openInvalidId(const char* name);
uint32_t tuner_openRepeatedly(const char* name, uint32_t eTunerId, uint32_t times);

/** A parameter that the library must refuse: what is spoiled of the default parameters. */
enum TunerSpoiled {
    SPOILED_TYPE_3,
    SPOILED_SYSTEM_3,
    SPOILED_SYSTEM_0,
};
uint32_t tuner_checkInput(const char* name, uint32_t eTunerId, TunerSpoiled spoiled);

// Tuning. Bodies for tuner_frame; those of the last two for tuner_initFrame.
uint32_t tuner_tuneOnce(TunerRun* run);
uint32_t tuner_tuneTwice(TunerRun* run);
uint32_t tuner_consumeTune(TunerRun* run);
uint32_t tuner_consumeTuneAndDump(TunerRun* run);
uint32_t tuner_consumeOpenTune(TunerRun* run);
uint32_t tuner_consumeOpenTuneAndDump(TunerRun* run);

// Walks over the band of the run's system. Bodies for tuner_frame.
uint32_t tuner_sweepCount(TunerRun* run);
uint32_t tuner_sweepConsume(TunerRun* run);

// Tuning with particular parameters or streams. Bodies for tuner_frame.
uint32_t tuner_cableOutAndIn(TunerRun* run);
uint32_t tuner_dvbtThenDvbs(TunerRun* run);
uint32_t tuner_unknownSymbolRate(TunerRun* run);
uint32_t tuner_wrongSymbolRate(TunerRun* run);
uint32_t tuner_unknownSymbolRateS2(TunerRun* run);
uint32_t tuner_wrongSymbolRateS2(TunerRun* run);
uint32_t tuner_t2Pipes(TunerRun* run);

// Signal information. Bodies for tuner_frame.
uint32_t tuner_infoLockStatus(TunerRun* run);
uint32_t tuner_infoTuningType(TunerRun* run);
uint32_t tuner_infoTransmissionSystem(TunerRun* run);
uint32_t tuner_infoSignalPresent(TunerRun* run);
uint32_t tuner_infoModulation(TunerRun* run);
uint32_t tuner_infoSymbolRate(TunerRun* run);
uint32_t tuner_infoStrengthAndQuality(TunerRun* run);
uint32_t tuner_infoSecondGeneration(TunerRun* run);
uint32_t tuner_infoCellIdentifier(TunerRun* run);
uint32_t tuner_infoOffsetAbove(TunerRun* run);
uint32_t tuner_infoOffsetBelow(TunerRun* run);
uint32_t tuner_infoFrequencyUnlocked(TunerRun* run);

/** Several tuners at once: the system of each tuner from 0, 0 where a tuner takes no part. */
uint32_t tuner_simultaneous(const char* name, uint32_t system0, uint32_t system1, uint32_t system2,
                            uint32_t system3);

// ATSC 3.0. Bodies for tuner_frame.
uint32_t tuner_t3NoPipe(TunerRun* run);
uint32_t tuner_t3Pipe0(TunerRun* run);
uint32_t tuner_t3Pipe1(TunerRun* run);
uint32_t tuner_t3Pipes0And1(TunerRun* run);
uint32_t tuner_t3Sweep(TunerRun* run);
uint32_t tuner_t3Pipes0To3(TunerRun* run);
uint32_t tuner_t3PipeThenPipes(TunerRun* run);
uint32_t tuner_t3Details(TunerRun* run);
uint32_t tuner_t3Time(TunerRun* run);
uint32_t tuner_t3EasWakeup(TunerRun* run);
uint32_t tuner_t3EasMode(TunerRun* run);
/** From the system of the frame to another one on the same open tuner. */
uint32_t tuner_switchToAtscT(TunerRun* run);
uint32_t tuner_switchToAtscC(TunerRun* run);
uint32_t tuner_switchToAtscT3(TunerRun* run);

// Manual tables of levels and carrier to noise ratios. Whole cases on tuner 0.
struct TunerLevelTable;
extern const TunerLevelTable tunerDvbsLevel001;
extern const TunerLevelTable tunerDvbsLevel002;
extern const TunerLevelTable tunerDvbs2Level001;
extern const TunerLevelTable tunerDvbs2Level002;
extern const TunerLevelTable tunerDvbs2Level003;
extern const TunerLevelTable tunerDvbs2Level004;
extern const TunerLevelTable tunerDvbsQuality001;
extern const TunerLevelTable tunerDvbsQuality002;
extern const TunerLevelTable tunerDvbsQuality003;
extern const TunerLevelTable tunerDvbs2Quality001;
extern const TunerLevelTable tunerDvbs2Quality002;
extern const TunerLevelTable tunerDvbs2Quality003;
extern const TunerLevelTable tunerDvbs2Quality004;
extern const TunerLevelTable tunerDvbs2Quality005;
extern const TunerLevelTable tunerDvbs2Quality006;
uint32_t tuner_levelTable(const char* name, const TunerLevelTable& table);
uint32_t tuner_freeViewQuality(const char* name);
uint32_t tuner_freeViewCompare(const char* name);

// Satellite equipment. Bodies for tuner_openFrame.
uint32_t tuner_lnb13V(TunerRun* run);
uint32_t tuner_lnb18V(TunerRun* run);
uint32_t tuner_toneOff(TunerRun* run);
uint32_t tuner_tone22kHz(TunerRun* run);
uint32_t tuner_toneburstA(TunerRun* run);
uint32_t tuner_toneburstB(TunerRun* run);
uint32_t tuner_diseqcCommand(TunerRun* run);
// Unicable and blind scan. Bodies for tuner_frame.
uint32_t tuner_unicable(TunerRun* run);
uint32_t tuner_blindScan(TunerRun* run);
uint32_t tuner_blindScanPoweredUp(TunerRun* run);
uint32_t tuner_blindScanCancel(TunerRun* run);
uint32_t tuner_blindScanSignalInfo(TunerRun* run);
uint32_t tuner_tuningSignalInfo(TunerRun* run);

#endif
