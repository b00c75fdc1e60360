#!/bin/sh
# Runs the whole unattended certification on the simulated device:
#     ./run.sh [DIR] [options of build/release/zkbench]
# Installs what is missing, builds, and leaves checklist.xls, report.xls and console.log in DIR
# (build/bench). Safe to repeat. Exits with 0 when the run was completed.
set -e
here=$(cd "$(dirname "$0")" && pwd)
cd "$here"
tools/setup.sh
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
echo "run: building"
cmake --preset release > /dev/null
cmake --build --preset release --target zktest mkchecklist mkstreams zkbench vclock vclock_run
echo "run: starting the bench"
exec build/release/zkbench --source "$here" "$@"
