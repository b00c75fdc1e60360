#!/bin/sh
# Restarts the simulated device: ends all that runs on it. The bench runner starts it again.
echo reboot >> .bench/reboots
kill -9 0
