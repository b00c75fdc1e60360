#!/bin/sh
# All benchmarks, on the release build: report saves, start-up, virtual time, stream reading.
set -e
cd "$(dirname "$0")"
tools/setup.sh
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake --preset release > /dev/null
cmake --build --preset release
for program in build/release/*_bench; do
    echo "== $(basename "$program")"
    "$program"
done
