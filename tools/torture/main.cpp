#include "testcase/modules.h"
#include "tools/torture/torture.h"

// clang-format off
#define ENTRY(record, ...) {&record, #record},
// clang-format on

int main(int argc, char** argv) {
    return torture::run({TC_MODULE_LIST(ENTRY, ENTRY)}, argc, argv);
}
