#!/bin/sh
# Installs what is missing, builds with gcc, with clang and its address and undefined-behaviour
# sanitizers, and with the thread sanitizer, and runs all tests.
# Safe to repeat. Options:
#     --quick     only the debug build and its tests
#     --torture   also the whole torture run, some minutes
#     --mutants   also a sample of the mutants of the modules that are through
#     --arm       also the device's architecture, in an emulator
#     --browser   also the report's page in a browser
#     --farm      also the examples of board farms, with LAVA and labgrid
set -e
cd "$(dirname "$0")"
quick=
torture=
mutants=
arm=
browser=
farm=
for word in "$@"; do
    case $word in
    --quick) quick=1 ;;
    --torture) torture=1 ;;
    --mutants) mutants=1 ;;
    --arm) arm=1 ;;
    --browser) browser=1 ;;
    --farm) farm=1 ;;
    *) sed -n '2,9p' "$0" >&2; exit 2 ;;
    esac
done
tools/setup.sh
# What another checkout has compiled serves here, too.
export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
jobs=$(nproc)

# build PRESET [--target TARGET]
build() {
    preset=$1
    shift
    echo "test: building preset $preset"
    cmake --preset "$preset" > /dev/null
    cmake --build --preset "$preset" -j "$jobs" "$@"
}

build debug
echo "test: making the streams of the line-up"
build/debug/zkbench --source . --quiet --lay-out build/debug/golden_bench
if [ -z "$quick" ]; then
    build asan
    echo "test: preset asan, with the fuzz targets for some seconds"
    # Not the tests that only read the sources, nor what runs each case again for each of its calls
    # (golden_test runs each case once), nor the bad cases that are made to crash and hang.
    ctest --preset asan -j "$jobs" -LE slow -E \
        '^(unit\.(Tree|ExitCodes|SimDocuments)|tree\.format|modules\.(EveryCase|AvOperations)|scenario\.(av_faults|torture)_test|boards\..*|torture\.bad_module_test)'
    build tsan --target race_tests
    echo "test: preset tsan, the simulated device's core and who reads while callbacks write"
    ctest --preset tsan -j "$jobs" -R '^race.(SimCore|Storage|DemuxRace)'
fi
echo "test: preset debug"
ctest --preset debug -j "$jobs"
if [ -n "$torture" ]; then
    build release
    tools/torture.sh
fi
if [ -n "$mutants" ]; then
    echo "test: a sample of the mutants"
    # Modules join the list when each survivor of theirs is answered.
    build/debug/mutate --sample 12 --seed 1 --module GPIO --module I2C --module EEPROM \
        --module FLASH --module PM --module Factory --module SYSTEM --module TEEC
fi
if [ -n "$arm" ]; then
    tools/arm.sh
fi
if [ -n "$browser" ]; then
    tools/browser.sh
fi
if [ -n "$farm" ]; then
    tools/boards/test.sh
fi
