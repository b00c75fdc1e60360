#include "simulator/families.h"

namespace sim {

const Family families[] = {
    // name    reset        describe        control
    {"GPIO", gpioReset, gpioDescribe, nullptr},
    {"I2C", i2cReset, i2cDescribe, nullptr},
    {"Tuner", tunerReset, tunerDescribe, tunerControl},
    {"Sys", sysReset, sysDescribe, nullptr},
    {"Env", envReset, envDescribe, nullptr},
    {"HDCP", hdcpReset, hdcpDescribe, hdcpControl},
    {"Flash", flashReset, flashDescribe, nullptr},
    {"TEEC", teecReset, teecDescribe, nullptr},
    {"PM", pmReset, pmDescribe, pmControl},
    {"Demux", demuxReset, demuxDescribe, demuxControl},
    {"CI", ciReset, ciDescribe, nullptr},
};
const int familyCount = sizeof(families) / sizeof(families[0]);

}  // namespace sim
