#!/bin/sh
# The whole torture run and all time limits, on build/release. Goes on where it stopped.
set -e
cd "$(dirname "$0")/.."
tools/torture_bench.sh build/release build/torture/bench
torture="build/release/torture --dir build/torture/bench --golden tests/golden --lists tests/torture"
$torture --out build/torture/limits --limits
exec $torture --out build/torture/results --resume "$@"
