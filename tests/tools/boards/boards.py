"""What the farm's tests share: a package of the rehearsal, and a board that it is installed on."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
BUILD = os.path.abspath(os.environ.get("ZK_BUILD_DIR", os.path.join(SOURCE, "build/debug")))
FARM = os.path.join(SOURCE, "tools/boards")
PATIENCE_S = 300
# A case in which the device hangs, and how many rows the checklist has.
HUNG = "TC_I2C_Open_006"
MODULES = ["GPIO", "I2C"]

sys.path.insert(0, os.path.join(SOURCE, "tests/tools/report"))


def run(*words, **more):
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          timeout=PATIENCE_S, **more)
    return done.returncode, done.stdout.decode(errors="replace")


class BoardTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="zk_farm_")
        self.addCleanup(shutil.rmtree, self.dir, ignore_errors=True)
        self.package = self.path("zktest.tar.gz")

    def path(self, *names):
        return os.path.join(self.dir, *names)

    def pack(self, *words, code=0):
        done, out = run(os.path.join(FARM, "package.sh"), "--build", BUILD, *words)
        self.assertEqual(done, code, out)
        return out

    def pack_rehearsal(self):
        words = [os.path.join(BUILD, "mkchecklist"), self.path("checklist.xls"), "--auto"]
        for module in MODULES:
            words += ["--module", module]
        self.assertEqual(run(*words)[0], 0)
        return self.pack("--rehearsal", "--platform", "mtk9602_eu", "--checklist",
                         self.path("checklist.xls"), "--out", self.package)

    def board(self):
        """A board's commands: what installs a package, and what runs when it is switched on. One
        case hangs its device, so it reboots in the middle of the run."""
        board = self.path("board")
        with open(self.path("faults"), "w") as file:
            file.write("QLX_I2COpen case=%s hang\n" % HUNG)
        with open(self.path("power_on.sh"), "w") as file:
            file.write("#!/bin/sh\nexport QLX_SIM_FAULTS=%s\nexec %s/zktest/start.sh\n"
                       % (self.path("faults"), board))
        os.chmod(self.path("power_on.sh"), 0o755)
        return "rm -rf %s && mkdir %s && tar -C %s -xzf" % (board, board, board)

    def lines(self, folder):
        out = self.path("out.jsonl")
        code, text = run(os.path.join(BUILD, "zkreport"), "write", folder, "--jsonl", out)
        self.assertEqual(code, 0, text)
        import json
        with open(out) as file:
            return [json.loads(line) for line in file]

    def check_run(self, folder):
        """The run in `folder` went through, over one reboot; answers its rows by case."""
        lines = self.lines(folder)
        rows = {line["case"]: line for line in lines if line["kind"] == "row"}
        restarts = [line for line in lines if line["kind"] == "restart"]
        self.assertTrue(lines[0]["complete"])
        self.assertEqual([restart["case"] for restart in restarts], [HUNG])
        self.assertIn("monitor ran the reboot command", restarts[0]["cause"])
        self.assertEqual([case for case, row in rows.items() if row["bad"]], [HUNG])
        return rows
