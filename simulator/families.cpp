#include "simulator/families.h"

namespace sim {

const Family families[] = {
    // name    reset        describe        control
    {"GPIO", gpioReset, gpioDescribe, nullptr},
    {"I2C", i2cReset, i2cDescribe, nullptr},
    {"Tuner", tunerReset, tunerDescribe, tunerControl},
};
const int familyCount = sizeof(families) / sizeof(families[0]);

}  // namespace sim
