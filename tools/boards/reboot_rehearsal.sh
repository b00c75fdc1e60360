#!/bin/sh
# Restarts the simulated device: ends all that runs on it. start.sh starts it again.
kill -9 0
