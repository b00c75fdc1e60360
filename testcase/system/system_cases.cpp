// SYSTEM: chip identity, clock, capabilities, random numbers, environment stores, serial port and
// panel supply, keypad lock, HDCP for wireless display. Most cases make one call and look at its
// result; those that cut something off bring it back after ten seconds.
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "framework/case/prompt.h"
#include "platform/qlx_env.h"
#include "platform/qlx_hdcp.h"
#include "platform/qlx_sys.h"
#include "testcase/modules.h"

TC_HOOK(testSetup, "setup all resources")
TC_HOOK(testTeardown, "release all resources")
TC_CASE_SETUP_HOOK(testCaseSetupImp, "setup all resources")
TC_HOOK(testCaseTeardownImp, "release all resources")

static uint32_t TC_SYSTEM_GET_CHIPID(void) {
    CaseContext tc = {__func__};
    char chipID[QLX_SYS_CHIP_ID_SIZE] = "0";
    TC_ASSERT_RET(QLX_SysGetChipID(chipID));
    return TC_RESULT(tc);
}

/** The calendar's time as text, without the newline at its end. */
static const char* linuxTime(char (&text)[32]) {
    time_t now = time(nullptr);
    struct tm parts {};
    text[0] = '\0';
    if (localtime_r(&now, &parts) != nullptr)
        strftime(text, sizeof text, "%a %b %e %H:%M:%S %Y", &parts);
    return text;
}

static uint32_t TC_SYSTEM_SET_LINUXSYSTEM_TIME(void) {
    CaseContext tc = {__func__};
    char text[32];
    struct timeval timeNow {};
    struct timezone tz {};
    zk_log("Current linux time is %s\n", linuxTime(text));
    gettimeofday(&timeNow, nullptr);
    timeNow.tv_sec += 120;
    TC_ASSERT_RET_TEXT("QLX_SysSetLinuxSystemTime(timeNow,tz)",
                       QLX_SysSetLinuxSystemTime(timeNow, tz));
    zk_log("Add 2 minute,Current linux time is %s\n", linuxTime(text));
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_SYS_INIT(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SysInit());
    return TC_RESULT(tc);
}

static void printCapability(const QLX_SysCapability& capability) {
    zk_log(
        "TV Capability:\n"
        "QLX_U32 NumberOfTuners:              %d\n"
        "QLX_U32 NumberOfCvbsSources:         %d\n"
        "QLX_U32 NumberOfYcSources:           %d\n"
        "QLX_U32 NumberOfYcCvbsSources:       %d\n"
        "QLX_U32 NumberOfYpbprSources:        %d\n"
        "QLX_U32 NumberOfYpbprCvbsSources:    %d\n"
        "QLX_U32 NumberOfYpbprYcCvbsSources:  %d\n"
        "QLX_U32 NumberOfScarts:              %d\n"
        "QLX_U32 NumberOfVgaSources:          %d\n"
        "QLX_U32 NumberOfHdmiSources:         %d\n"
        "QLX_U32 NumberOfCiSlots:             %d\n"
        "QLX_U32 NumberOfDemuxes:             %d\n"
        "QLX_U32 NumberOfVideoPlayers:        %d\n"
        "QLX_U32 NumberOfAudioPlayers:        %d\n"
        "QLX_U32 NumberOfVideoOut:            %d\n"
        "QLX_U32 NumberOfAudioOut:            %d\n"
        "QLX_U32 NumberOfVideoWindow:         %d\n"
        "QLX_U32 NumberOfRecorders:           %d\n",
        capability.NumberOfTuners, capability.NumberOfCvbsSources, capability.NumberOfYcSources,
        capability.NumberOfYcCvbsSources, capability.NumberOfYpbprSources,
        capability.NumberOfYpbprCvbsSources, capability.NumberOfYpbprYcCvbsSources,
        capability.NumberOfScarts, capability.NumberOfVgaSources, capability.NumberOfHdmiSources,
        capability.NumberOfCiSlots, capability.NumberOfDemuxes, capability.NumberOfVideoPlayers,
        capability.NumberOfAudioPlayers, capability.NumberOfVideoOut, capability.NumberOfAudioOut,
        capability.NumberOfVideoWindow, capability.NumberOfRecorders);
}

static uint32_t TC_SYSTEM_GET_CAPABILITY(void) {
    CaseContext tc = {__func__};
    QLX_SysCapability capability{};
    TC_ASSERT_RET(QLX_SysGetCapability(&capability));
    // clang-format off
    TC_ASSERT_RET(capability.NumberOfTuners > 0? QLX_SUCCESS : QLX_FAILED);
    TC_ASSERT_RET(capability.NumberOfHdmiSources > 0? QLX_SUCCESS : QLX_FAILED);
    TC_ASSERT_RET(capability.NumberOfDemuxes > 0? QLX_SUCCESS : QLX_FAILED);
    TC_ASSERT_RET(capability.NumberOfVideoPlayers > 0? QLX_SUCCESS : QLX_FAILED);
    TC_ASSERT_RET(capability.NumberOfAudioPlayers > 0? QLX_SUCCESS : QLX_FAILED);
    TC_ASSERT_RET(capability.NumberOfVideoWindow > 0? QLX_SUCCESS : QLX_FAILED);
    // clang-format on
    printCapability(capability);
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_GET_RANDOM_NUMBER(void) {
    CaseContext tc = {__func__};
    uint32_t number1 = 0, number2 = 0;
    TC_ASSERT_RET(QLX_GetRandomNumber(&number1));
    TC_ASSERT_RET(QLX_GetRandomNumber(&number2));
    zk_log("random number 1: %d, random number 2: %d\n", static_cast<int>(number1),
           static_cast<int>(number2));
    // clang-format off
    TC_ASSERT_RET((number1 != number2 && number1 != 0)? QLX_SUCCESS : QLX_FAILED);
    // clang-format on
    return TC_RESULT(tc);
}

/** Drops what is left of a typed line, its newline included. */
static void dropLine() {
    int character;
    do
        character = getchar();
    while (character != '\n' && character != EOF);
}

/** Asks for "key = value" until both are there. False at the end of input. */
static bool askForEnv(char (&key)[QLX_ENV_TEXT_SIZE], char (&value)[QLX_ENV_TEXT_SIZE]) {
    for (;;) {
        zk_log("Please env to set: key = value\n");
        // A line may begin with the blanks and the newline that the last answer left.
        int converted = scanf(" ");
        if (converted != EOF)
            converted = scanf("%63[^= \t\n] = %63s", key, value);
        if (converted == 2)
            return true;
        if (converted == EOF || feof(stdin) != 0)
            return false;
        dropLine();
    }
}

static uint32_t TC_SYSTEM_SET_ENV(void) {
    CaseContext tc = {__func__};
    char key[QLX_ENV_TEXT_SIZE], value[QLX_ENV_TEXT_SIZE];
    bool answered = askForEnv(key, value);
    TC_ASSERT_TRUE(answered);
    zk_log("set env [%s] to [%s]\n", key, value);
    TC_ASSERT_RET(QLX_SetEnv(key, value));
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_GET_ENV(void) {
    CaseContext tc = {__func__};
    char key[QLX_ENV_TEXT_SIZE], value[QLX_ENV_TEXT_SIZE] = "";
    zk_log("Please enter key of Env\n");
    bool answered = tc_askWord(key, sizeof key);
    TC_ASSERT_TRUE(answered);
    TC_ASSERT_RET(QLX_GetEnv(key, value));
    zk_log("Env: [%s] = [%s]\n", key, value);
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_SET_BOOTENV(void) {
    CaseContext tc = {__func__};
    char val[2] = "1";
    // clang-format off
    TC_ASSERT_RET(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, (void *)val));
    val[0] = '0';
    TC_ASSERT_RET(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, (void *)val));
    // clang-format on
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_SAVE_BOOTENV(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SaveBootEnv());
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_SET_COM_ENABLED(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SetComEnabled(0));
    TC_ASSERT_RET(QLX_SetComEnabled(1));
    return TC_RESULT(tc);
}

/**
 * Cuts something off for ten seconds, in which the operator looks whether it is.
 * @param what            as the texts call it
 * @param enable          the library's switch; `offText` and `onText` are its two calls
 */
static uint32_t cutOffBase(const char* name, const char* what, int32_t (*enable)(uint32_t),
                           const char* offText, const char* onText) {
    CaseContext tc = {name};
    zk_log(
        "Will disable %s and re-enable %s after 10s.\n"
        "Please check if the %s is disabled within the next 10s.\n",
        what, what, what);
    TC_ASSERT_RET_TEXT(offText, enable(0));
    sleep(10);
    TC_ASSERT_RET_TEXT(onText, enable(1));
    zk_log("Re-enable %s\n", what);
    return TC_RESULT(tc);
}

#define CUT_OFF(what, enable) cutOffBase(__func__, what, enable, #enable "(0)", #enable "(1)")

// The keypad's lock counts backwards: 0 enables it, 1 disables it.

static uint32_t setKeypadLockBase(const char* name, const char* word, uint32_t bKeypadLockValue) {
    CaseContext tc = {name};
    zk_log("Test set keypad lock %s in hotelmode.\n", word);
    TC_ASSERT_RET(QLX_KeypadLockValueSet(bKeypadLockValue));
    return TC_RESULT(tc);
}

static uint32_t getKeypadLockBase(const char* name, const char* word) {
    CaseContext tc = {name};
    uint32_t bKeypadLockValue = 0;
    zk_log("Test get keypad lock %s in hotelmode.\n", word);
    TC_ASSERT_RET(QLX_KeypadLockValueGet(&bKeypadLockValue));
    return TC_RESULT(tc);
}

// clang-format off
#define CUT_OFF_VARIANTS(X) \
    /* case                              flag    description                            body */ \
    X(TC_SYSTEM_SET_UART_ENABLED,        MANUAL, "disable the UART for 10s",            CUT_OFF("UART", QLX_SysSetUartEnabled)) \
    X(TC_SYSTEM_SET_PANEL_POWER,         MANUAL, "disable the panel power for 10s",     CUT_OFF("panel power", QLX_SysSetPanelPower))
#define KEYPAD_LOCK_VARIANTS(X) \
    /* case                              flag    description                             body */ \
    X(TC_SYSTEM_SET_KEYPAD_LOCK_ENABLE,  AUTO,   "set keypad lock enable in hotelmode",  setKeypadLockBase(__func__, "enable", 0)) \
    X(TC_SYSTEM_SET_KEYPAD_LOCK_DISABLE, AUTO,   "set keypad lock disable in hotelmode", setKeypadLockBase(__func__, "disable", 1)) \
    X(TC_SYSTEM_GET_KEYPAD_LOCK_ENABLE,  AUTO,   "get keypad lock enable in hotelmode",  getKeypadLockBase(__func__, "enable")) \
    X(TC_SYSTEM_GET_KEYPAD_LOCK_DISABLE, AUTO,   "get keypad lock disable in hotelmode", getKeypadLockBase(__func__, "disable"))
// clang-format on
CUT_OFF_VARIANTS(TC_VARIANT_FUNCTION)
KEYPAD_LOCK_VARIANTS(TC_VARIANT_FUNCTION)

static void hdcpCallBack(uint32_t, int32_t state) {
    zk_log("hdcpCallBack:%d\n", state);
}

static uint32_t TC_SYSTEM_SET_HDCP_CALLBACK(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_HDCPSetMiracastHdcpStatusCallack(hdcpCallBack));
    return TC_RESULT(tc);
}

/** The service on its usual port. */
static QLX_HDCPMiracastData miracastData() {
    QLX_HDCPMiracastData data{};
    data.role = 1;
    data.port = 4990;
    return data;
}

static uint32_t TC_SYSTEM_START_HDCP(void) {
    CaseContext tc = {__func__};
    QLX_HDCPMiracastData pstHDCPData = miracastData();
    TC_ASSERT_RET(QLX_HDCPStartMiracast(&pstHDCPData));
    return TC_RESULT(tc);
}

static uint32_t TC_SYSTEM_STOP_HDCP(void) {
    CaseContext tc = {__func__};
    QLX_HDCPMiracastData pstHDCPData = miracastData();
    TC_ASSERT_RET(QLX_HDCPStopMiracast(&pstHDCPData));
    return TC_RESULT(tc);
}

// clang-format off
static constexpr TcCase SysModuleCases[] = {
    //      case                               flag    description
    TC_CASE(TC_SYSTEM_GET_CHIPID,              AUTO,   "get the chip ID"),
    TC_CASE(TC_SYSTEM_SET_LINUXSYSTEM_TIME,    AUTO,   "set the linux system time 2 minutes ahead"),
    TC_CASE(TC_SYSTEM_SYS_INIT,                AUTO,   "init the system once more"),
    TC_CASE(TC_SYSTEM_GET_CAPABILITY,          AUTO,   "get the capability of the system"),
    TC_CASE(TC_SYSTEM_GET_RANDOM_NUMBER,       AUTO,   "get two random numbers"),
    TC_CASE(TC_SYSTEM_SET_ENV,                 MANUAL, "set an env"),
    TC_CASE(TC_SYSTEM_GET_ENV,                 MANUAL, "get an env"),
    TC_CASE(TC_SYSTEM_SET_BOOTENV,             AUTO,   "set the boot env of the data base table"),
    TC_CASE(TC_SYSTEM_SAVE_BOOTENV,            AUTO,   "save the boot env"),
    TC_CASE(TC_SYSTEM_SET_COM_ENABLED,         AUTO,   "disable and enable the com port"),
    CUT_OFF_VARIANTS(TC_VARIANT_ROW)
    KEYPAD_LOCK_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_SYSTEM_SET_HDCP_CALLBACK,       AUTO,   "set the HDCP callback of wireless display"),
    TC_CASE(TC_SYSTEM_START_HDCP,              AUTO,   "start HDCP of wireless display"),
    TC_CASE(TC_SYSTEM_STOP_HDCP,               AUTO,   "stop HDCP of wireless display"),
};
// clang-format on
static_assert(tcCaseCount(SysModuleCases) == 19 && tcAutoCount(SysModuleCases) == 15,
              "cases of the module, and those that run by themselves");

const TcModule SysModule = {
    testSetup,        testTeardown,
    testCaseSetupImp, testCaseTeardownImp,
    SysModuleCases,   tcCaseCount(SysModuleCases),
    "SYSTEM",         "Test module for system",
    nullptr,
};
