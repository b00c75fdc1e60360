// The five amplifiers differ in their reset, their registers, and nothing else.
#include "testcase/aout/amp.h"

#include <unistd.h>

#include "framework/case/check.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "testcase/aout/amp_tables.h"
#include "testcase/aout/aout_harness.h"

enum {
    /** What the chips need between two writes. */
    AMP_WRITE_PAUSE_US = 1000,
    AMP_RESET_STEPS_MAX = 4,
};

/** A level at a pin, and how long it is left alone then. */
struct AmpResetStep {
    /** The call as a failed check prints it; null ends a sequence. */
    const char* text;
    uint32_t AOutParams::*pin;
    int32_t level;
    uint32_t waitMs;
};

#define AMP_STEP(pin, level, waitMs) \
    { "QLX_GPIOSetValue(g_stAOutParams." #pin "," #level ")", &AOutParams::pin, level, waitMs }

struct AmpChip {
    const char* name;
    const uint8_t* table;
    AmpResetStep reset[AMP_RESET_STEPS_MAX + 1];
    /** Of the text that a refused write is told by. */
    int writeErrorName;
};

// clang-format off
static const AmpChip chipNF8212 = {"NF8212", g_u8AmpNF8212InitTbl, {
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  110),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 5)}, 8212};
static const AmpChip chipNF8214 = {"NF8214", g_u8AmpNF8214InitTbl, {
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  110),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 5)}, 8212};
static const AmpChip chipNF8822 = {"NF8822", g_u8AmpNF8822InitTbl, {
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  10),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 1),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  1),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 2)}, 8212};
static const AmpChip chipTI5711 = {"TI5711", g_u8AmpTI5711InitTbl, {
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  100),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 10),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_LOW,  1),
    AMP_STEP(uAMPGpioNum, QLX_GPIO_VALUE_HIGH, 15)}, 8212};
// Its mute line is released ahead of the reset.
static const AmpChip chipNF8928 = {"NF8928", g_u8AmpNF8928InitTbl, {
    AMP_STEP(uAMPGpioMute, QLX_GPIO_VALUE_HIGH, 0),
    AMP_STEP(uAMPGpioNum,  QLX_GPIO_VALUE_HIGH, 10),
    AMP_STEP(uAMPGpioNum,  QLX_GPIO_VALUE_LOW,  5),
    AMP_STEP(uAMPGpioNum,  QLX_GPIO_VALUE_HIGH, 2)}, 8928};
// clang-format on

static bool reset(CaseContext& tc, const AmpChip& chip) {
    for (const AmpResetStep* step = chip.reset; step->text != nullptr; step++) {
        if (!TC_EXPECT_RET_TEXT(step->text,
                                QLX_GPIOSetValue(g_stAOutParams.*step->pin, step->level)))
            return false;
        usleep(step->waitMs * 1000);
    }
    return true;
}

/** One record. A write that the chip refuses is told, and is no failure: the registers behind it
 *  may still bring a sound out. */
static void writeRecord(const AmpChip& chip, const uint8_t* record) {
    const uint32_t length = record[0];
    const uint8_t* data = &record[2];
    uint32_t written = 0;
    QLX_I2CConfig stAddress = {};
    zk_log("\n DataLength=%d reg=[%#x] ", static_cast<int>(length), record[1]);
    for (uint32_t i = 0; i < length; i++)
        zk_log("data = 0x%x ", data[i]);
    stAddress.chipAddress = static_cast<uint8_t>(g_stAOutParams.uAMPI2CAddr);
    stAddress.registerAddressLength = 1;
    stAddress.registerAddress[0] = record[1];
    if (QLX_I2CWrite(QLX_I2C_0, &stAddress, data, length, &written) != QLX_SUCCESS)
        zk_log("%d write fail = %d \n", chip.writeErrorName, record[1]);
    usleep(AMP_WRITE_PAUSE_US);
}

/** Neither GPIO nor I2C is de-initialised: other parts of the bench use them too. */
static uint32_t initChip(const char* name, const AmpChip& chip) {
    CaseContext tc = {name};
    zk_log("********AMP %s INIT\n", chip.name);
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_ASSERT_RET(QLX_I2CInit());
    TC_ASSERT_RET_TEXT("QLX_I2COpen(QLX_I2C_0,QLX_I2C_BUSRATE_FAST)",
                       QLX_I2COpen(QLX_I2C_0, QLX_I2C_BUSRATE_FAST));
    if (reset(tc, chip)) {
        const uint8_t* record = chip.table;
        do {
            writeRecord(chip, record);
            record += 2 + record[0];
        } while (record[0] != 0);
    }
    TC_EXPECT_RET(QLX_I2CClose(QLX_I2C_0));
    return tc.result;
}

static uint32_t AMP_NF8212Init(void) {
    return initChip(__func__, chipNF8212);
}

static uint32_t AMP_NF8214Init(void) {
    return initChip(__func__, chipNF8214);
}

static uint32_t AMP_NF8822Init(void) {
    return initChip(__func__, chipNF8822);
}

static uint32_t AMP_TI5711Init(void) {
    return initChip(__func__, chipTI5711);
}

static uint32_t AMP_NF8928Init(void) {
    return initChip(__func__, chipNF8928);
}

uint32_t AMP_Init(void) {
    // Behind AMP_TYPE_NONE, in the order of AmpType.
    static uint32_t (*const chips[])(void) = {
        AMP_NF8212Init, AMP_NF8214Init, AMP_NF8822Init, AMP_TI5711Init, AMP_NF8928Init,
    };
    const uint32_t uAMPType = g_stAOutParams.uAMPType;
    if (uAMPType == AMP_TYPE_NONE) {
        zk_log("AMP chip is closed ! \r\n");
        return TC_SUCCESS;
    }
    if (uAMPType > AMP_TYPE_NF8928) {
        zk_log("Unknown AMP device ! \r\n");
        return TC_FAILURE;
    }
    // A board whose amplifier does not answer still has its other sinks.
    chips[uAMPType - AMP_TYPE_NF8212]();
    return TC_SUCCESS;
}
