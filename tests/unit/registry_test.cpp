// Holds the registry against what a platform certification must contain: every module with its
// name, description, totals of cases and of automatic ones. Modules still open are named, so that a
// row that gets lost, or a module that is completed without being entered here, is found.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "framework/modules.h"

namespace {

struct Required {
    const TcModule* record;
    const char* name;
    const char* description;
    uint32_t cases;
    uint32_t automatic;
};

// clang-format off
const Required required[TEST_MODULE_COUNT] = {
    {&GPIOModule, "GPIO", "Test module for the gpio", 12, 10},
    {&I2CModule, "I2C", "Test module for the i2c", 31, 29},
    {&TunerModule, "Tuner", "Test module for the TUNER", 407, 379},
    {&DemuxModuleCommon, "Demux-common", "Test cases of Demux (COMMON)", 126, 122},
    {&DemuxModuleAtsc, "Demux-ATSC", "Test cases of Demux (ATSC)", 233, 231},
    {&DemuxModuleIsdb, "Demux-ISDB", "Test cases of Demux (ISDB)", 163, 154},
    {&DemuxModuleDvb, "Demux-DVB", "Test cases of Demux (DVB)", 449, 436},
    {&RecordModule, "Record", "Test module for the Record", 71, 70},
    {&DmxInjectModule, "DmxInject", "Test module for the DemuxInject", 114, 114},
    {&AVCommonModule, "AV-Common", "Test module for AV common test, no distinguishing source", 111, 108},
    {&AVDtvModule, "AV-DTV", "Test module for AV test, the source is DTV", 355, 324},
    {&AVAtvModule, "AV-ATV", "Test module for AV test, the source is ATV", 142, 138},
    {&AVPvrModule, "AV-PVR", "Test module for AV test, the source is PVR", 83, 83},
    {&AVCvbsModule, "AV-CVBS", "Test module for AV test, the source is CVBS", 67, 65},
    {&AVHdmiModule, "AV-HDMI", "Test module for AV test, the source is HDMI", 102, 99},
    {&AVYpbprModule, "AV-YPBPR", "Test module for AV test, the source is YPBPR", 67, 65},
    {&AVDtvVideoCcModule, "AV-VideoCC", "Test module for video CC", 64, 64},
    {&AFEModule, "AFE", "Test module for the ATV ", 165, 153},
    {&AOutModule, "AOUT", "Test module for the AOUT", 163, 150},
    {&VOutModulePrimary, "VOUT-Primary", "Test cases of VOUT for primary interface", 64, 64},
    {&VOutModuleAdvance, "VOUT-Advanced", "Test cases of VOUT for advanced function", 114, 72},
    {&DisplayModule, "DISPLAY", "Test module for the display", 9, 9},
    {&LocalDimmingModule, "LOCALDIMMING", "Test module for the localdimming", 6, 6},
    {&EEPROMModule, "EEPROM", "Test module for the EEPROM", 8, 8},
    {&FLASHModule, "FLASH", "Test module for the FLASH", 6, 6},
    {&MHLModule, "MHL", "Test module for the MHL", 14, 6},
    {&ExtInModule, "EXTIN", "Test module for the ExtIn", 91, 91},
    {&ThreeDModule, "3D", "Test module for the 3D setting", 7, 5},
    {&IntegrationModule, "INTEGRATION", "Test module for Integration", 1, 0},
    {&CIModule, "CI", "Test module for the CI", 30, 6},
    {&CryptoModule, "Crypto", "Test module for the Crpto", 21, 21},
    {&CECModule, "CEC", "Test module for the CEC", 29, 16},
    {&VBIModule, "VBI", "Test module for the VBI ", 165, 165},
    {&StreamModule, "STREAMINJECT", "Test module for the stream inject", 102, 29},
    {&PMModule, "PM", "Test module for the PM", 33, 18},
    {&SMCModule, "Smartcard", "Test module for the smartcard", 18, 12},
    {&DescramblerModule, "DESCRAMBLER", "Test module for the descrambler", 11, 6},
    {&LocalPlayerVideoModule, "LOCALPLAYER_VIDEO", "Test module for the local multimedia player video play", 198, 196},
    {&LocalPlayerAudioModule, "LOCALPLAYER_AUDIO", "Test module for the local multimedia player audio play", 140, 140},
    {&LocalPlayerImageModule, "LOCALPLAYER_IMAGE", "Test module for the local multimedia player image play", 109, 109},
    {&FactoryModule, "Factory", "Test module for the Factory", 13, 13},
    {&SysModule, "SYSTEM", "Test module for system", 19, 15},
    {&TTSModule, "TTS", "Test module for the tts", 46, 44},
    {&TEECModule, "TEEC", "Test module for the TEEC", 9, 6},
    {&ASCAPModule, "ASCAP", "Test module for the ascap", 2, 2},
    {&OSDModule, "OSD", "Test module for the OSD", 8, 8},
};

/** Modules that are not complete yet, with the cases that are built. */
struct Open {
    const char* name;
    uint32_t cases;
    uint32_t automatic;
};
const Open openModules[] = {
    {"Demux-ATSC", 231, 231},
    {"Demux-ISDB", 153, 152},
    {"Demux-DVB", 433, 433},
    {"Record", 0, 0},
    {"DmxInject", 0, 0},
    {"AV-Common", 0, 0},
    {"AV-DTV", 0, 0},
    {"AV-ATV", 0, 0},
    {"AV-PVR", 0, 0},
    {"AV-CVBS", 0, 0},
    {"AV-HDMI", 0, 0},
    {"AV-YPBPR", 0, 0},
    {"AV-VideoCC", 0, 0},
    {"AFE", 0, 0},
    {"AOUT", 0, 0},
    {"VOUT-Primary", 0, 0},
    {"VOUT-Advanced", 0, 0},
    {"DISPLAY", 0, 0},
    {"LOCALDIMMING", 0, 0},
    {"MHL", 0, 0},
    {"EXTIN", 0, 0},
    {"3D", 0, 0},
    {"INTEGRATION", 0, 0},
    {"CI", 0, 0},
    {"CEC", 0, 0},
    {"VBI", 0, 0},
    {"STREAMINJECT", 0, 0},
    {"Smartcard", 0, 0},
    {"DESCRAMBLER", 0, 0},
    {"LOCALPLAYER_VIDEO", 0, 0},
    {"LOCALPLAYER_AUDIO", 0, 0},
    {"LOCALPLAYER_IMAGE", 0, 0},
    {"TTS", 0, 0},
    {"ASCAP", 0, 0},
    {"OSD", 0, 0},
};
// clang-format on

const Open* findOpen(const std::string& name) {
    for (const Open& open : openModules) {
        if (name == open.name)
            return &open;
    }
    return nullptr;
}

uint32_t countAutomatic(const TcModule& module) {
    uint32_t count = 0;
    for (uint32_t i = 0; i < module.caseCount; i++)
        count += module.cases[i].autoFlag == AUTO;
    return count;
}

TEST(Registry, HasEveryModuleInOrderWithItsCases) {
    uint32_t cases = 0;
    uint32_t automatic = 0;
    for (int i = 0; i < TEST_MODULE_COUNT; i++) {
        const Required& want = required[i];
        const TcModule& module = *testModules[i];
        EXPECT_EQ(&module, want.record) << want.name;
        EXPECT_STREQ(module.name, want.name);
        EXPECT_STREQ(module.description, want.description) << want.name;
        const Open* open = findOpen(want.name);
        EXPECT_EQ(module.caseCount, open != nullptr ? open->cases : want.cases) << want.name;
        EXPECT_EQ(countAutomatic(module), open != nullptr ? open->automatic : want.automatic)
            << want.name;
        if (open != nullptr)
            printf("open: %s has %u of %u cases\n", want.name, module.caseCount, want.cases);
        cases += want.cases;
        automatic += want.automatic;
    }
    EXPECT_EQ(cases, 4198u);
    EXPECT_EQ(automatic, 3867u);
}

TEST(Registry, OnlyAvDtvHasAFileForManualCases) {
    for (const TcModule* module : testModules) {
        if (module == &AVDtvModule)
            EXPECT_STREQ(module->configFile, "config/common/AVDtvModule.cfg");
        else
            EXPECT_EQ(module->configFile, nullptr) << module->name;
    }
}

TEST(Registry, RowsAreComplete) {
    for (const TcModule* module : testModules) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& row = module->cases[i];
            ASSERT_NE(row.name, nullptr) << module->name << " row " << i + 1;
            EXPECT_NE(row.function, nullptr) << row.name;
            EXPECT_GT(std::string(row.description).size(), 0u) << row.name;
            EXPECT_LE(row.autoFlag, 1u) << row.name;
            // A name must fit the report's and the checklist's rows.
            EXPECT_LT(std::string(row.name).size(), 200u);
        }
    }
}

}  // namespace
