/*
 * All modules of a certification, in the order of the console's numbers and of an unattended run.
 *
 * BUILT rows have a record beside their case table; OPEN rows have none yet, and stand in the
 * console's list without a case. A module that is begun becomes BUILT, with the counts that it has;
 * tests/framework/registry_test.cpp holds them.
 */
#ifndef TESTCASE_MODULE_LIST_H
#define TESTCASE_MODULE_LIST_H

// clang-format off
//  state(record, name, description, cases and automatic ones in the end, and those built)
#define TC_MODULE_LIST(BUILT, OPEN) \
    BUILT(GPIOModule,             "GPIO",              "Test module for the gpio",                                  12,  10,  12,  10) \
    BUILT(I2CModule,              "I2C",               "Test module for the i2c",                                   31,  29,  31,  29) \
    BUILT(TunerModule,            "Tuner",             "Test module for the TUNER",                                407, 379, 407, 379) \
    BUILT(DemuxModuleCommon,      "Demux-common",      "Test cases of Demux (COMMON)",                             126, 122, 126, 122) \
    BUILT(DemuxModuleAtsc,        "Demux-ATSC",        "Test cases of Demux (ATSC)",                               233, 231, 231, 231) \
    BUILT(DemuxModuleIsdb,        "Demux-ISDB",        "Test cases of Demux (ISDB)",                               163, 154, 153, 152) \
    BUILT(DemuxModuleDvb,         "Demux-DVB",         "Test cases of Demux (DVB)",                                449, 436, 433, 433) \
    BUILT(RecordModule,           "Record",            "Test module for the Record",                                71,  70,  71,  70) \
    BUILT(DmxInjectModule,        "DmxInject",         "Test module for the DemuxInject",                          114, 114, 114, 114) \
    BUILT(AVCommonModule,         "AV-Common",         "Test module for AV common test, no distinguishing source", 111, 108, 111, 108) \
    BUILT(AVDtvModule,            "AV-DTV",            "Test module for AV test, the source is DTV",               355, 324, 355, 324) \
    BUILT(AVAtvModule,            "AV-ATV",            "Test module for AV test, the source is ATV",               142, 138, 142, 138) \
    BUILT(AVPvrModule,            "AV-PVR",            "Test module for AV test, the source is PVR",                83,  83,  83,  83) \
    BUILT(AVCvbsModule,           "AV-CVBS",           "Test module for AV test, the source is CVBS",               67,  65,  67,  65) \
    BUILT(AVHdmiModule,           "AV-HDMI",           "Test module for AV test, the source is HDMI",              102,  99, 102,  99) \
    BUILT(AVYpbprModule,          "AV-YPBPR",          "Test module for AV test, the source is YPBPR",              67,  65,  67,  65) \
    BUILT(AVDtvVideoCcModule,     "AV-VideoCC",        "Test module for video CC",                                  64,  64,  64,  64) \
    BUILT(AFEModule,              "AFE",               "Test module for the ATV ",                                 165, 153, 165, 153) \
    OPEN (AOutModule,             "AOUT",              "Test module for the AOUT",                                 163, 150,   0,   0) \
    BUILT(VOutModulePrimary,      "VOUT-Primary",      "Test cases of VOUT for primary interface",                  64,  64,  64,  64) \
    OPEN (VOutModuleAdvance,      "VOUT-Advanced",     "Test cases of VOUT for advanced function",                 114,  72,   0,   0) \
    OPEN (DisplayModule,          "DISPLAY",           "Test module for the display",                                9,   9,   0,   0) \
    OPEN (LocalDimmingModule,     "LOCALDIMMING",      "Test module for the localdimming",                           6,   6,   0,   0) \
    BUILT(EEPROMModule,           "EEPROM",            "Test module for the EEPROM",                                 8,   8,   8,   8) \
    BUILT(FLASHModule,            "FLASH",             "Test module for the FLASH",                                  6,   6,   6,   6) \
    OPEN (MHLModule,              "MHL",               "Test module for the MHL",                                   14,   6,   0,   0) \
    OPEN (ExtInModule,            "EXTIN",             "Test module for the ExtIn",                                 91,  91,   0,   0) \
    OPEN (ThreeDModule,           "3D",                "Test module for the 3D setting",                             7,   5,   0,   0) \
    OPEN (IntegrationModule,      "INTEGRATION",       "Test module for Integration",                                1,   0,   0,   0) \
    OPEN (CIModule,               "CI",                "Test module for the CI",                                    30,   6,   0,   0) \
    BUILT(CryptoModule,           "Crypto",            "Test module for the Crpto",                                 21,  21,  21,  21) \
    OPEN (CECModule,              "CEC",               "Test module for the CEC",                                   29,  16,   0,   0) \
    OPEN (VBIModule,              "VBI",               "Test module for the VBI ",                                 165, 165,   0,   0) \
    OPEN (StreamModule,           "STREAMINJECT",      "Test module for the stream inject",                        102,  29,   0,   0) \
    BUILT(PMModule,               "PM",                "Test module for the PM",                                    33,  18,  33,  18) \
    OPEN (SMCModule,              "Smartcard",         "Test module for the smartcard",                             18,  12,   0,   0) \
    BUILT(DescramblerModule,      "DESCRAMBLER",       "Test module for the descrambler",                           11,   6,  11,   6) \
    OPEN (LocalPlayerVideoModule, "LOCALPLAYER_VIDEO", "Test module for the local multimedia player video play",   198, 196,   0,   0) \
    OPEN (LocalPlayerAudioModule, "LOCALPLAYER_AUDIO", "Test module for the local multimedia player audio play",   140, 140,   0,   0) \
    OPEN (LocalPlayerImageModule, "LOCALPLAYER_IMAGE", "Test module for the local multimedia player image play",   109, 109,   0,   0) \
    BUILT(FactoryModule,          "Factory",           "Test module for the Factory",                               13,  13,  13,  13) \
    BUILT(SysModule,              "SYSTEM",            "Test module for system",                                    19,  15,  19,  15) \
    OPEN (TTSModule,              "TTS",               "Test module for the tts",                                   46,  44,   0,   0) \
    BUILT(TEECModule,             "TEEC",              "Test module for the TEEC",                                   9,   6,   9,   6) \
    OPEN (ASCAPModule,            "ASCAP",             "Test module for the ascap",                                  2,   2,   0,   0) \
    OPEN (OSDModule,              "OSD",               "Test module for the OSD",                                    8,   8,   0,   0)
// clang-format on

#endif
