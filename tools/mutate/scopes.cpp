#include "tools/mutate/scopes.h"

namespace {

/** A module of cases: its golden calls, suites of its tests, and the rows of its table. */
Scope moduleOf(const char* name, std::vector<const char*> sources, std::vector<const char*> golden,
               std::vector<const char*> suites) {
    return {name,
            std::move(sources),
            std::move(golden),
            {{"module_tests", true, std::move(suites)}, {"unit_tests", false, {"Registry"}}},
            {},
            {}};
}

}  // namespace

const std::vector<Scope>& scopes() {
    static const std::vector<const char*> demux = {"Demux-common", "Demux-ATSC", "Demux-ISDB",
                                                   "Demux-DVB"};
    static const std::vector<Scope> all = {
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
        moduleOf("EEPROM", {"testcase/eeprom/*"}, {"EEPROM"}, {"DeviceCases", "StorageModules"}),
        moduleOf("FLASH", {"testcase/flash/*"}, {"FLASH"}, {"DeviceCases", "StorageModules"}),
        moduleOf("Crypto", {"testcase/crypto/*"}, {"Crypto"}, {"DeviceCases", "Crypto*"}),
        moduleOf("PM", {"testcase/pm/*"}, {"PM"}, {"PmModuleTest"}),
        moduleOf("Factory", {"testcase/factory/*"}, {"Factory"}, {"FactoryKeys", "StorageModules"}),
        moduleOf("SYSTEM", {"testcase/system/*"}, {"SYSTEM"}, {"SystemModule", "DeviceCases"}),
        moduleOf("TEEC", {"testcase/teec/*"}, {"TEEC"}, {"Teec*"}),
    };
    return all;
}
