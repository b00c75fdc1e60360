#!/bin/sh
# Tests the farm's examples with LAVA's and labgrid's own software, which it installs where it is
# missing. Needs root for LAVA's dispatcher, and build/debug.
set -e
cd "$(dirname "$0")/../.."
tools/setup.sh tools/packages_boards.txt
for test in package lava labgrid; do
    echo "farm: $test"
    timeout 600 /usr/bin/python3 "tests/tools/boards/${test}_test.py"
done
