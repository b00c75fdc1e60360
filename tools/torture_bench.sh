#!/bin/sh
# Lays out the bench for the torture run: tools/torture_bench.sh BUILD BENCH
# BUILD is a built preset. Beside the usual bench, the device has the key files that
# tests/golden/operator/Factory.txt names, and one key in its store.
set -e
build=$1
bench=$2
cd "$(dirname "$0")/.."
"$build/zkbench" --source . --quiet --lay-out "$bench"
tools/mkkey all "$bench/device/mnt/usb"
tools/mkkey hdcp14 "$bench/device/factory/key05.bin"
