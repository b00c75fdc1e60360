// SYSTEM: chip identity, clock, capabilities, random numbers, environment stores, serial port and
// panel supply, keypad lock, HDCP for wireless display. Most cases make one call and look at its
// result; those that cut something off bring it back after ten seconds.
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "framework/modules.h"
#include "framework/tc_check.h"
#include "platform/qlx_env.h"
#include "platform/qlx_hdcp.h"
#include "platform/qlx_sys.h"

static uint32_t printSetup() {
    zk_log("setup all resources ! \r\n");
    return 0;
}

static uint32_t printRelease() {
    zk_log("release all resources ! \r\n");
    return 0;
}

static uint32_t testSetup(void) {
    return printSetup();
}

static uint32_t testTeardown(void) {
    return printRelease();
}

static uint32_t testCaseSetupImp(const char*, const char*) {
    return printSetup();
}

static uint32_t testCaseTeardownImp(void) {
    return printRelease();
}

static uint32_t TC_SYSTEM_GET_CHIPID(void) {
    uint32_t result = TC_SUCCESS;
    char chipID[QLX_SYS_CHIP_ID_SIZE] = "0";
    TC_ASSERT_RET(QLX_SysGetChipID(chipID));
    return TC_RESULT(result);
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
    uint32_t result = TC_SUCCESS;
    char text[32];
    struct timeval timeNow {};
    struct timezone tz {};
    zk_log("Current linux time is %s\n", linuxTime(text));
    gettimeofday(&timeNow, nullptr);
    timeNow.tv_sec += 120;
    TC_ASSERT_RET_TEXT("QLX_SysSetLinuxSystemTime(timeNow,tz)",
                       QLX_SysSetLinuxSystemTime(timeNow, tz), 0);
    zk_log("Add 2 minute,Current linux time is %s\n", linuxTime(text));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SYS_INIT(void) {
    uint32_t result = TC_SUCCESS;
    TC_ASSERT_RET(QLX_SysInit());
    return TC_RESULT(result);
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
    uint32_t result = TC_SUCCESS;
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
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_GET_RANDOM_NUMBER(void) {
    uint32_t result = TC_SUCCESS;
    uint32_t number1 = 0, number2 = 0;
    TC_ASSERT_RET(QLX_GetRandomNumber(&number1));
    TC_ASSERT_RET(QLX_GetRandomNumber(&number2));
    zk_log("random number 1: %d, random number 2: %d\n", static_cast<int>(number1),
           static_cast<int>(number2));
    // clang-format off
    TC_ASSERT_RET((number1 != number2 && number1 != 0)? QLX_SUCCESS : QLX_FAILED);
    // clang-format on
    return TC_RESULT(result);
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
        key[0] = value[0] = '\0';
        zk_log("Please env to set: key = value\n");
        zk_logFlush();
        // A line may begin with the blanks and the newline that the last answer left.
        int converted = scanf(" ");
        if (converted != EOF)
            converted = scanf("%63[^= \t\n] = %63s", key, value);
        if (key[0] != '\0' && value[0] != '\0')
            return true;
        if (converted == EOF || feof(stdin) != 0)
            return false;
        dropLine();
    }
}

static uint32_t TC_SYSTEM_SET_ENV(void) {
    uint32_t result = TC_SUCCESS;
    char key[QLX_ENV_TEXT_SIZE], value[QLX_ENV_TEXT_SIZE];
    bool answered = askForEnv(key, value);
    TC_ASSERT_TRUE(answered);
    zk_log("set env [%s] to [%s]\n", key, value);
    TC_ASSERT_RET(QLX_SetEnv(key, value));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_GET_ENV(void) {
    uint32_t result = TC_SUCCESS;
    char key[QLX_ENV_TEXT_SIZE] = "", value[QLX_ENV_TEXT_SIZE] = "";
    zk_log("Please enter key of Env\n");
    zk_logFlush();
    bool answered = scanf("%63s", key) == 1;
    TC_ASSERT_TRUE(answered);
    TC_ASSERT_RET(QLX_GetEnv(key, value));
    zk_log("Env: [%s] = [%s]\n", key, value);
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SET_BOOTENV(void) {
    uint32_t result = TC_SUCCESS;
    char val[2] = "1";
    // clang-format off
    TC_ASSERT_RET(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, (void *)val));
    val[0] = '0';
    TC_ASSERT_RET(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, (void *)val));
    // clang-format on
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SAVE_BOOTENV(void) {
    uint32_t result = TC_SUCCESS;
    TC_ASSERT_RET(QLX_SaveBootEnv());
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SET_COM_ENABLED(void) {
    uint32_t result = TC_SUCCESS;
    TC_ASSERT_RET(QLX_SetComEnabled(0));
    TC_ASSERT_RET(QLX_SetComEnabled(1));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SET_UART_ENABLED(void) {
    uint32_t result = TC_SUCCESS;
    zk_log(
        "Will disable UART and re-enable UART after 10s.\n"
        "Please check if the UART is disabled within the next 10s.\n");
    TC_ASSERT_RET(QLX_SysSetUartEnabled(0));
    sleep(10);
    TC_ASSERT_RET(QLX_SysSetUartEnabled(1));
    zk_log("Re-enable UART\n");
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SET_PANEL_POWER(void) {
    uint32_t result = TC_SUCCESS;
    zk_log(
        "Will disable panel power and re-enable panel power after 10s.\n"
        "Please check if the panel power is disabled within the next 10s.\n");
    TC_ASSERT_RET(QLX_SysSetPanelPower(0));
    sleep(10);
    TC_ASSERT_RET(QLX_SysSetPanelPower(1));
    zk_log("Re-enable panel power\n");
    return TC_RESULT(result);
}

// The keypad's lock counts backwards: 0 enables it, 1 disables it.

static uint32_t TC_SYSTEM_SET_KEYPAD_LOCK_ENABLE(void) {
    uint32_t result = TC_SUCCESS;
    uint32_t bKeypadLockValue = 0;
    zk_log("Test set keypad lock enable in hotelmode.\n");
    TC_ASSERT_RET(QLX_KeypadLockValueSet(bKeypadLockValue));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_SET_KEYPAD_LOCK_DISABLE(void) {
    uint32_t result = TC_SUCCESS;
    uint32_t bKeypadLockValue = 1;
    zk_log("Test set keypad lock disable in hotelmode.\n");
    TC_ASSERT_RET(QLX_KeypadLockValueSet(bKeypadLockValue));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_GET_KEYPAD_LOCK_ENABLE(void) {
    uint32_t result = TC_SUCCESS;
    uint32_t bKeypadLockValue = 0;
    zk_log("Test get keypad lock enable in hotelmode.\n");
    TC_ASSERT_RET(QLX_KeypadLockValueGet(&bKeypadLockValue));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_GET_KEYPAD_LOCK_DISABLE(void) {
    uint32_t result = TC_SUCCESS;
    uint32_t bKeypadLockValue = 0;
    zk_log("Test get keypad lock disable in hotelmode.\n");
    TC_ASSERT_RET(QLX_KeypadLockValueGet(&bKeypadLockValue));
    return TC_RESULT(result);
}

static void hdcpCallBack(uint32_t, int32_t state) {
    zk_log("hdcpCallBack:%d\n", state);
}

static uint32_t TC_SYSTEM_SET_HDCP_CALLBACK(void) {
    uint32_t result = TC_SUCCESS;
    TC_ASSERT_RET(QLX_HDCPSetMiracastHdcpStatusCallack(hdcpCallBack));
    return TC_RESULT(result);
}

/** The service on its usual port. */
static QLX_HDCPMiracastData miracastData() {
    QLX_HDCPMiracastData data{};
    data.role = 1;
    data.port = 4990;
    return data;
}

static uint32_t TC_SYSTEM_START_HDCP(void) {
    uint32_t result = TC_SUCCESS;
    QLX_HDCPMiracastData pstHDCPData = miracastData();
    TC_ASSERT_RET(QLX_HDCPStartMiracast(&pstHDCPData));
    return TC_RESULT(result);
}

static uint32_t TC_SYSTEM_STOP_HDCP(void) {
    uint32_t result = TC_SUCCESS;
    QLX_HDCPMiracastData pstHDCPData = miracastData();
    TC_ASSERT_RET(QLX_HDCPStopMiracast(&pstHDCPData));
    return TC_RESULT(result);
}

// clang-format off
static const TcCase SysModuleCases[] = {
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
    TC_CASE(TC_SYSTEM_SET_UART_ENABLED,        MANUAL, "disable the UART for 10s"),
    TC_CASE(TC_SYSTEM_SET_PANEL_POWER,         MANUAL, "disable the panel power for 10s"),
    TC_CASE(TC_SYSTEM_SET_KEYPAD_LOCK_ENABLE,  AUTO,   "set keypad lock enable in hotelmode"),
    TC_CASE(TC_SYSTEM_SET_KEYPAD_LOCK_DISABLE, AUTO,   "set keypad lock disable in hotelmode"),
    TC_CASE(TC_SYSTEM_GET_KEYPAD_LOCK_ENABLE,  AUTO,   "get keypad lock enable in hotelmode"),
    TC_CASE(TC_SYSTEM_GET_KEYPAD_LOCK_DISABLE, AUTO,   "get keypad lock disable in hotelmode"),
    TC_CASE(TC_SYSTEM_SET_HDCP_CALLBACK,       AUTO,   "set the HDCP callback of wireless display"),
    TC_CASE(TC_SYSTEM_START_HDCP,              AUTO,   "start HDCP of wireless display"),
    TC_CASE(TC_SYSTEM_STOP_HDCP,               AUTO,   "stop HDCP of wireless display"),
};
// clang-format on
static_assert(tcCaseCount(SysModuleCases) == 19, "cases of the module");

const TcModule SysModule = {
    testSetup,        testTeardown,
    testCaseSetupImp, testCaseTeardownImp,
    SysModuleCases,   tcCaseCount(SysModuleCases),
    "SYSTEM",         "Test module for system",
    nullptr,
};
