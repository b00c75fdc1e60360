#include "testcase/modules.h"
#include "tools/torture/torture.h"

int main(int argc, char** argv) {
    torture::Modules modules(testModules, testModules + TEST_MODULE_COUNT);
    return torture::run(modules, argc, argv);
}
