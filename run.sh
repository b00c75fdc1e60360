#!/bin/sh
# Runs the whole unattended certification on the simulated device:
#     ./run.sh [DIR] [options of build/release/zkbench]
# Installs what is missing, builds, and leaves checklist.xls, report.xls, its readable forms
# report.html, report.xml (JUnit) and report.jsonl, and console.log in DIR (build/bench). Safe to
# repeat. Exits with 0 when the run was completed. Paths of the command line are relative to the
# folder that it is called from.
set -e
project=$(cd "$(dirname "$0")" && pwd)
(
    cd "$project"
    tools/setup.sh
    # What another checkout has compiled serves here, too.
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
    echo "run: building"
    cmake --preset release > /dev/null
    cmake --build --preset release --target zktest mkchecklist mkstreams zkbench vclock vclock_run
    echo "run: starting the runner"
)
exec "$project/build/release/zkbench" --source "$project" "$@"
