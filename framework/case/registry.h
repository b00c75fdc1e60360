/*
 * What can be run: constant tables of modules and, in each, of cases.
 *
 * A stand-alone case is its body and one row; a family is one body with arguments and a list of
 * variants that is expanded twice, into functions and into rows:
 *
 *     #define OPEN_VARIANTS(X) \
 *         X(TC_I2C_Open_002, AUTO, "open I2C bus-0 with slow rate", openBase(__func__, QLX_I2C_0))
 * \ X(TC_I2C_Open_003, AUTO, "open I2C bus-0 with normal rate", openBase(__func__, ...))
 *     OPEN_VARIANTS(TC_VARIANT_FUNCTION)
 *
 *     static const TcCase I2CModuleCases[] = {
 *         TC_CASE(TC_I2C_Open_001, AUTO, "open I2C bus-0 before init"),
 *         OPEN_VARIANTS(TC_VARIANT_ROW)
 *     };
 */
#ifndef FRAMEWORK_CASE_REGISTRY_H
#define FRAMEWORK_CASE_REGISTRY_H

#include <stdint.h>

/** The auto flag of a case: whether it may run without an operator. */
enum TcAutoFlag {
    MANUAL = 0,
    AUTO = 1,
};

/** One case. */
struct TcCase {
    /** The body; prints its own verdict and returns a TcResultCode. Null: a success. */
    uint32_t (*function)(void);
    /** What a checklist row is matched against; the function's name but for a few rows. */
    const char* name;
    /** What the console lists. */
    const char* description;
    uint32_t autoFlag;
};

/** One module. All hooks run on the console thread, may be null, and answer 0 for success. */
struct TcModule {
    uint32_t (*setup)(void);
    uint32_t (*teardown)(void);
    /** Called before a case with (null, null), and for a manual case at the console a second time
     *  with the case's name and the module's configFile. */
    uint32_t (*caseSetup)(const char* caseName, const char* configFile);
    uint32_t (*caseTeardown)(void);
    const TcCase* cases;
    uint32_t caseCount;
    /** What the console prints, and the exact name of the checklist's and report's sheet. */
    const char* name;
    const char* description;
    /** Parameters of manual cases, for caseSetup; null where a module has none. */
    const char* configFile;
};

/**
 * The name of the case whose body or hooks run now, null between cases. Written by the console
 * thread alone. It tells a core dump, a debugger, and the platform library's own diagnostics which
 * case they look at.
 */
extern "C" const char* volatile zk_currentCaseName;

/** Row of a case that is a function of the same name. */
#define TC_CASE(function, flag, description) \
    { function, #function, description, flag }
/** Row of a case whose listed name is not that of its function. */
#define TC_CASE_NAMED(function, name, flag, description) \
    { function, name, description, flag }
/** Expansions of a family's list of variants: X(name, flag, description, body call). */
#define TC_VARIANT_FUNCTION(name, flag, description, ...) \
    static uint32_t name(void) {                          \
        return __VA_ARGS__;                               \
    }
#define TC_VARIANT_ROW(name, flag, description, ...) TC_CASE(name, flag, description),

/** The count of a case table. */
template <uint32_t N>
constexpr uint32_t tcCaseCount(const TcCase (&)[N]) {
    return N;
}

/** How many cases of a table run without an operator. */
template <uint32_t N>
constexpr uint32_t tcAutoCount(const TcCase (&cases)[N]) {
    uint32_t count = 0;
    for (const TcCase& testCase : cases)
        count += testCase.autoFlag == AUTO ? 1 : 0;
    return count;
}

#endif
