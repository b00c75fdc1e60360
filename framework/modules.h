/* The records of all modules; each is defined beside its case table. */
#ifndef FRAMEWORK_MODULES_H
#define FRAMEWORK_MODULES_H

#include "framework/case/registry.h"

extern const TcModule GPIOModule;
extern const TcModule I2CModule;
extern const TcModule TunerModule;
extern const TcModule DemuxModuleCommon;
extern const TcModule DemuxModuleAtsc;
extern const TcModule DemuxModuleIsdb;
extern const TcModule DemuxModuleDvb;
extern const TcModule RecordModule;
extern const TcModule DmxInjectModule;
extern const TcModule AVCommonModule;
extern const TcModule AVDtvModule;
extern const TcModule AVAtvModule;
extern const TcModule AVPvrModule;
extern const TcModule AVCvbsModule;
extern const TcModule AVHdmiModule;
extern const TcModule AVYpbprModule;
extern const TcModule AVDtvVideoCcModule;
extern const TcModule AFEModule;
extern const TcModule AOutModule;
extern const TcModule VOutModulePrimary;
extern const TcModule VOutModuleAdvance;
extern const TcModule DisplayModule;
extern const TcModule LocalDimmingModule;
extern const TcModule EEPROMModule;
extern const TcModule FLASHModule;
extern const TcModule MHLModule;
extern const TcModule ExtInModule;
extern const TcModule ThreeDModule;
extern const TcModule IntegrationModule;
extern const TcModule CIModule;
extern const TcModule CryptoModule;
extern const TcModule CECModule;
extern const TcModule VBIModule;
extern const TcModule StreamModule;
extern const TcModule PMModule;
extern const TcModule SMCModule;
extern const TcModule DescramblerModule;
extern const TcModule LocalPlayerVideoModule;
extern const TcModule LocalPlayerAudioModule;
extern const TcModule LocalPlayerImageModule;
extern const TcModule FactoryModule;
extern const TcModule SysModule;
extern const TcModule TTSModule;
extern const TcModule TEECModule;
extern const TcModule ASCAPModule;
extern const TcModule OSDModule;

#endif
