#!/bin/sh
# Starts the unattended run, or goes on with it where the report stands. On a board its start-up runs
# this after each boot. The console is shown and kept in console.log.
cd "$(dirname "$0")" || exit 1
if [ ! -x vclock/run ]; then
    [ -x reboot.sh ] || echo "start: no reboot.sh: make it of reboot.sh.template"
    ./zktest auto 2>&1 | tee -a console.log
    exit
fi

# A rehearsal: the simulated device in virtual time. What its reboot command ends is started again.
export LD_LIBRARY_PATH="$PWD" QLX_SIM_ROOT="$PWD/device" ZK_REPORT_SYNC=0
for start in $(seq 50); do
    [ "$start" = 1 ] || echo "start: the device restarts"
    setsid vclock/run ./zktest auto < /dev/null 2>&1 | tee -a console.log
    tail -n 5 console.log | grep -q "all the cases has been tested, mornitor proc will quit" && exit
done
echo "start: fifty starts are enough"
exit 1
