#!/usr/bin/python3
"""An unattended run on a board that labgrid reaches.

    run_board.py --config board.yaml --package zktest.tar.gz --out DIR

Installs the package, switches the board off and on, and reads its console until the run is over; the
board starts the program itself and may reboot meanwhile. Leaves console.log in DIR, and what the
farm's fetch command brings (report.xls, checklist.xls); zkreport takes DIR. Exit code 0 when the run
was completed, 1 when the board was silent for too long.
"""
import argparse
import os
import subprocess
import sys
import time

from labgrid import Environment
from pexpect import TIMEOUT
from serial import SerialException

OVER = b"all the cases has been tested, mornitor proc will quit"
VERDICT = b"]case "


def run_option(environment, name, **values):
    """A command of the file's options."""
    command = environment.config.get_option(name, "")
    if command:
        subprocess.run(command.format(**values), shell=True, check=True)


def follow(console, log, silence_s):
    """Reads the console into `log` until the run is over; False after too long a silence."""
    line, last = b"", time.monotonic()
    while time.monotonic() - last < silence_s:
        try:
            data = console.read(size=65536, timeout=1)
        except TIMEOUT:
            continue
        last = time.monotonic()
        log.write(data)
        log.flush()
        *lines, line = (line + data).split(b"\n")
        for whole in lines:
            if VERDICT in whole:
                print(whole.split(VERDICT, 1)[1].decode(errors="replace").rstrip(), flush=True)
            if OVER in whole:
                return True
        line = line[-65536:]
    return False


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--config", required=True)
    parser.add_argument("--package", required=True)
    parser.add_argument("--out", required=True)
    # The monitor waits five minutes before it reboots, then the board boots.
    parser.add_argument("--silence", type=float, default=900, help="seconds (900)")
    arguments = parser.parse_args()
    os.makedirs(arguments.out, exist_ok=True)
    environment = Environment(arguments.config)
    run_option(environment, "install", package=os.path.abspath(arguments.package))
    target = environment.get_target("main")
    power = target.get_driver("PowerProtocol")
    console = target.get_driver("ConsoleProtocol")
    power.cycle()
    with open(os.path.join(arguments.out, "console.log"), "wb") as log:
        try:
            complete = follow(console, log, arguments.silence)
        except SerialException as error:
            print("the console is gone: %s" % error)
            complete = False
    run_option(environment, "fetch", out=os.path.abspath(arguments.out))
    print("run completed" if complete else "RUN NOT COMPLETED")
    environment.cleanup()
    return 0 if complete else 1


if __name__ == "__main__":
    sys.exit(main())
