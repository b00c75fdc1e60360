#!/bin/sh
# All benchmarks, on the release build, as tables: report saves, start-up, stream reading, the
# simulated demultiplexer and decoders, virtual time. Options are those of build/release/benchmarks,
# for instance --benchmark_filter=Report or --benchmark_format=json.
set -e
cd "$(dirname "$0")"
tools/setup.sh >&2
# What another checkout has compiled serves here, too.
export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
cmake --preset release > /dev/null
cmake --build --preset release --target benchmarks vclock vclock_run >&2
exec bench/run.sh build/release "$@"
