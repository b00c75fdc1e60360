#include "tools/mutate/scopes.h"

namespace {

/** A module of cases: its golden calls, suites of its tests, and the rows of its table. */
Scope moduleOf(const char* name, std::vector<const char*> sources, std::vector<const char*> golden,
               std::vector<const char*> suites, std::vector<const char*> scripts = {}) {
    suites.push_back("EveryCase");
    return {name,
            std::move(sources),
            std::move(golden),
            {{"module_tests", true, std::move(suites)}, {"unit_tests", false, {"Registry"}}},
            std::move(scripts),
            {"zktest"}};
}

const std::vector<const char*> demux = {"Demux-common", "Demux-ATSC", "Demux-ISDB", "Demux-DVB"};
const std::vector<Scope> all = {
    moduleOf("GPIO", {"testcase/gpio/*"}, {"GPIO"}, {"DeviceCases"}),
    moduleOf("I2C", {"testcase/i2c/*"}, {"I2C"}, {"DeviceCases", "I2CRegister"}),
    moduleOf("Tuner", {"testcase/tuner/*"}, {"Tuner"}, {"Tuner*"}),
    moduleOf("Demux-common", {"testcase/demux/demux_*"}, demux, {"Demux*"}),
    moduleOf("Demux-ATSC", {"testcase/demux/section_atsc_*"}, {"Demux-ATSC"}, {"Demux*"}),
    moduleOf("Demux-ISDB", {"testcase/demux/section_isdb_*"}, {"Demux-ISDB"}, {"Demux*"}),
    moduleOf("Demux-DVB", {"testcase/demux/section_dvb_*"}, {"Demux-DVB"}, {"Demux*"}),
    moduleOf("Demux-sections",
             {"testcase/demux/section_bodies*", "testcase/demux/section_frame*",
              "testcase/demux/section_tables*", "testcase/demux/ts_reader*"},
             demux, {"Demux*"}),
    moduleOf("Record", {"testcase/record/*"}, {"Record"}, {"RecordModuleTest"}),
    moduleOf("EEPROM", {"testcase/eeprom/*"}, {"EEPROM"}, {"DeviceCases", "StorageModules"}),
    moduleOf("FLASH", {"testcase/flash/*"}, {"FLASH"}, {"DeviceCases", "StorageModules"}),
    moduleOf("Crypto", {"testcase/crypto/*"}, {"Crypto"}, {"DeviceCases", "Crypto*"}),
    moduleOf("PM", {"testcase/pm/*"}, {"PM"}, {"PmModuleTest"}, {"device_manual_test"}),
    moduleOf("Factory", {"testcase/factory/*"}, {"Factory"}, {"FactoryKeys", "StorageModules"},
             {"device_manual_test"}),
    moduleOf("SYSTEM", {"testcase/system/*"}, {"SYSTEM"}, {"SystemModule", "DeviceCases"},
             {"device_manual_test"}),
    moduleOf("TEEC", {"testcase/teec/*"}, {"TEEC"}, {"Teec*"}, {"device_manual_test"}),
    moduleOf("AV-Common", {"testcase/av/av_common_*"}, {"AV-Common"}, {"AvCommonModule"}),
    {"framework",
     {"framework/*.cpp", "framework/base/*", "framework/case/*"},
     {"GPIO", "I2C"},
     {{"unit_tests", false, {"Runner", "ReportSave", "Case*", "Registry"}},
      {"module_tests", true, {"DeviceCases", "I2CRegister", "TunerHarness"}}},
     {"auto_test", "console_test", "operator_test", "recovery_test"},
     {"zktest"}},
    {"workbook",
     {"framework/workbook/*"},
     {},
     {{"unit_tests", false, {"Workbook*", "ReportSave", "Runner"}}},
     {},
     {}},
    {"environment",
     {"environment/*"},
     {"GPIO"},
     {{"unit_tests", false, {"Conf*", "Environment", "DiffTime", "Platforms"}},
      {"module_tests", true, {"TunerConfig", "DemuxConfigFile"}}},
     {"console_test"},
     {"zktest"}},
    {"program", {"program/*", "testcase/*.cpp"}, {}, {}, {"auto_test", "console_test"}, {"zktest"}},
    {"device-core",
     {"simulator/core/*.cpp"},
     {},
     {{"device_tests", true, {"*"}}},
     {},
     {"libQlx.so"}},
    {"device-demux",
     {"simulator/demux/*.cpp"},
     {},
     {{"device_tests", true, {"SimDemux*"}}, {"module_tests", true, {"Demux*"}}},
     {},
     {"libQlx.so"}},
    {"device-tuner",
     {"simulator/tuner/*.cpp"},
     {},
     {{"device_tests", true, {"Tuner*", "SimTuner*", "Satellite"}},
      {"module_tests", true, {"Tuner*"}}},
     {},
     {"libQlx.so"}},
    {"tools-golden",
     {"tools/golden/*"},
     {"GPIO", "I2C", "TEEC"},
     {{"unit_tests", false, {"Golden*"}}},
     {"golden_calls_test"},
     {}},
};

}  // namespace

const std::vector<Scope>& scopes() {
    return all;
}
