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
void tuner_tuneOnce(CaseContext& tc, TunerRun& run);
void tuner_tuneTwice(CaseContext& tc, TunerRun& run);
void tuner_consumeTune(CaseContext& tc, TunerRun& run);
void tuner_consumeTuneAndDump(CaseContext& tc, TunerRun& run);
void tuner_consumeOpenTune(CaseContext& tc, TunerRun& run);
void tuner_consumeOpenTuneAndDump(CaseContext& tc, TunerRun& run);

// Walks over the band of the run's system. Bodies for tuner_frame.
void tuner_sweepCount(CaseContext& tc, TunerRun& run);
void tuner_sweepConsume(CaseContext& tc, TunerRun& run);

// Tuning with particular parameters or streams. Bodies for tuner_frame.
void tuner_cableOutAndIn(CaseContext& tc, TunerRun& run);
void tuner_dvbtThenDvbs(CaseContext& tc, TunerRun& run);
void tuner_unknownSymbolRate(CaseContext& tc, TunerRun& run);
void tuner_wrongSymbolRate(CaseContext& tc, TunerRun& run);
void tuner_unknownSymbolRateS2(CaseContext& tc, TunerRun& run);
void tuner_wrongSymbolRateS2(CaseContext& tc, TunerRun& run);
void tuner_t2Pipes(CaseContext& tc, TunerRun& run);

// Signal information. Bodies for tuner_frame.
void tuner_infoLockStatus(CaseContext& tc, TunerRun& run);
void tuner_infoTuningType(CaseContext& tc, TunerRun& run);
void tuner_infoTransmissionSystem(CaseContext& tc, TunerRun& run);
void tuner_infoSignalPresent(CaseContext& tc, TunerRun& run);
void tuner_infoModulation(CaseContext& tc, TunerRun& run);
void tuner_infoSymbolRate(CaseContext& tc, TunerRun& run);
void tuner_infoStrengthAndQuality(CaseContext& tc, TunerRun& run);
void tuner_infoSecondGeneration(CaseContext& tc, TunerRun& run);
void tuner_infoCellIdentifier(CaseContext& tc, TunerRun& run);
void tuner_infoOffsetAbove(CaseContext& tc, TunerRun& run);
void tuner_infoOffsetBelow(CaseContext& tc, TunerRun& run);
void tuner_infoFrequencyUnlocked(CaseContext& tc, TunerRun& run);

/** Several tuners at once: the system of each tuner from 0, 0 where a tuner takes no part. */
uint32_t tuner_simultaneous(const char* name, uint32_t system0, uint32_t system1, uint32_t system2,
                            uint32_t system3);

// ATSC 3.0. Bodies for tuner_frame.
void tuner_t3NoPipe(CaseContext& tc, TunerRun& run);
void tuner_t3Pipe0(CaseContext& tc, TunerRun& run);
void tuner_t3Pipe1(CaseContext& tc, TunerRun& run);
void tuner_t3Pipes0And1(CaseContext& tc, TunerRun& run);
void tuner_t3Sweep(CaseContext& tc, TunerRun& run);
void tuner_t3Pipes0To3(CaseContext& tc, TunerRun& run);
void tuner_t3PipeThenPipes(CaseContext& tc, TunerRun& run);
void tuner_t3Details(CaseContext& tc, TunerRun& run);
void tuner_t3Time(CaseContext& tc, TunerRun& run);
void tuner_t3EasWakeup(CaseContext& tc, TunerRun& run);
void tuner_t3EasMode(CaseContext& tc, TunerRun& run);
/** From the system of the frame to another one on the same open tuner. */
void tuner_switchToAtscT(CaseContext& tc, TunerRun& run);
void tuner_switchToAtscC(CaseContext& tc, TunerRun& run);
void tuner_switchToAtscT3(CaseContext& tc, TunerRun& run);

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
void tuner_lnb13V(CaseContext& tc, TunerRun& run);
void tuner_lnb18V(CaseContext& tc, TunerRun& run);
void tuner_toneOff(CaseContext& tc, TunerRun& run);
void tuner_tone22kHz(CaseContext& tc, TunerRun& run);
void tuner_toneburstA(CaseContext& tc, TunerRun& run);
void tuner_toneburstB(CaseContext& tc, TunerRun& run);
void tuner_diseqcCommand(CaseContext& tc, TunerRun& run);
// Unicable and blind scan. Bodies for tuner_frame.
void tuner_unicable(CaseContext& tc, TunerRun& run);
void tuner_blindScan(CaseContext& tc, TunerRun& run);
void tuner_blindScanPoweredUp(CaseContext& tc, TunerRun& run);
void tuner_blindScanCancel(CaseContext& tc, TunerRun& run);
void tuner_blindScanSignalInfo(CaseContext& tc, TunerRun& run);
void tuner_tuningSignalInfo(CaseContext& tc, TunerRun& run);

#endif
