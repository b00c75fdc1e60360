#!/bin/sh
# The whole torture run and all time limits, on build/release. Goes on where it stopped.
set -e
cd "$(dirname "$0")/.."
tools/torture_bench.sh build/release build/torture/bench
build/release/torture --dir build/torture/bench --out build/torture/limits \
    --limits tests/torture/limits
exec build/release/torture --dir build/torture/bench --out build/torture/results --resume \
    --exceptions tests/torture/exceptions --answers tests/torture/answers.txt "$@"
