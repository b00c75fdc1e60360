#!/bin/sh
# Runs the benchmarks of a build: bench/run.sh BUILD [options of benchmarks]
# First those of real time. Then those that wait for hours, in virtual time: there the column "Time"
# is that time, and the column "CPU" is what it costs.
set -e
cd "$1"
shift
./benchmarks --benchmark_min_time=0.2 "$@"
exec vclock/run ./benchmarks --benchmark_min_time=0.2 "$@"
