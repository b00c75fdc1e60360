"""The labgrid example on a console of this machine that ser2net exports.

Needs labgrid and ser2net (tools/packages_boards.txt)."""
import os
import socket
import subprocess
import time
import unittest

import yaml

import boards
from boards import BoardTest, FARM


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


class LabgridTest(BoardTest):
    def test_the_run_goes_through_a_reboot_over_the_exported_console(self):
        self.pack_rehearsal()
        install = self.board()
        port = free_port()
        with open(os.path.join(FARM, "labgrid/ser2net.yaml")) as file:
            text = file.read()
        text = text.replace("127.0.0.1,7001", "127.0.0.1,%d" % port)
        # A board stays on when its run is over.
        with open(self.path("stays_on.sh"), "w") as file:
            file.write("#!/bin/sh\n%s\nexec sleep 600\n" % self.path("power_on.sh"))
        os.chmod(self.path("stays_on.sh"), 0o755)
        text = text.replace("serialdev,/dev/ttyUSB0,115200n81,local",
                            "pty,%s" % self.path("stays_on.sh"))
        with open(self.path("ser2net.yaml"), "w") as file:
            file.write(text)
        exporter = subprocess.Popen(["ser2net", "-n", "-c", self.path("ser2net.yaml")])
        self.addCleanup(exporter.wait)
        self.addCleanup(exporter.kill)
        time.sleep(1)
        with open(os.path.join(FARM, "labgrid/board.yaml")) as file:
            board = yaml.safe_load(file)
        main = board["targets"]["main"]
        main["resources"]["NetworkSerialPort"].update(host="127.0.0.1", port=port)
        for name in main["drivers"]["ExternalPowerDriver"]:
            main["drivers"]["ExternalPowerDriver"][name] = "true"
        home = self.path("board/zktest")
        board["options"] = {"install": "sh -c '%s {package}'" % install,
                            "fetch": "cp %s/report.xls %s/checklist.xls {out}" % (home, home)}
        with open(self.path("board.yaml"), "w") as file:
            yaml.safe_dump(board, file)
        code, out = boards.run("/usr/bin/python3", os.path.join(FARM, "labgrid/run_board.py"),
                               "--config", self.path("board.yaml"), "--package", self.package,
                               "--out", self.path("result"), "--silence", "60")
        self.assertEqual(code, 0, out[-3000:])
        self.assertIn("run completed", out)
        rows = self.check_run(self.path("result"))
        self.assertEqual(len(rows), 43)


if __name__ == "__main__":
    unittest.main()
