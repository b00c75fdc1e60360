/*
 * The families of the device, for what is done with all of them: reset, and telling their state.
 */
#ifndef SIMULATOR_FAMILIES_H
#define SIMULATOR_FAMILIES_H

#include <string>

namespace sim {

struct Family {
    const char* name;
    /** Puts the family into its state after power on. No lock of it may be held. */
    void (*reset)();
    /** Appends one line for each thing that is initialised, open, registered or running. */
    void (*describe)(std::string* out);
    /** Takes an event of the outside world, "cable 0 out"; false when it is not this family's.
     *  Null: there are none. */
    bool (*control)(const std::string& event);
};

/** All families. */
extern const Family families[];
extern const int familyCount;

void gpioReset();
void gpioDescribe(std::string* out);
void i2cReset();
void i2cDescribe(std::string* out);
void tunerReset();
void tunerDescribe(std::string* out);
bool tunerControl(const std::string& event);
void sysReset();
void sysDescribe(std::string* out);
void envReset();
void envDescribe(std::string* out);
void hdcpReset();
void hdcpDescribe(std::string* out);
bool hdcpControl(const std::string& event);
void flashReset();
void flashDescribe(std::string* out);
void teecReset();
void teecDescribe(std::string* out);
void pmReset();
void pmDescribe(std::string* out);
bool pmControl(const std::string& event);
void demuxReset();
void demuxDescribe(std::string* out);
bool demuxControl(const std::string& event);
void ciReset();
void ciDescribe(std::string* out);

}  // namespace sim

#endif
