"""The package of a board, run as a board would; and the farm's examples as far as that needs no
farm software. tests/tools/boards/lava_test.py and labgrid_test.py use LAVA and labgrid themselves."""
import os
import re
import tarfile
import unittest

import yaml

import boards
from boards import BoardTest, FARM, HUNG


class PackageTest(BoardTest):
    def test_the_rehearsal_runs_from_the_package_alone_and_over_a_reboot(self):
        self.pack_rehearsal()
        code, out = boards.run("sh", "-c", self.board() + " " + self.package)
        self.assertEqual(code, 0, out)
        # Elsewhere, and without what the build has around it.
        environment = {"PATH": "/usr/bin:/bin"}
        code, out = boards.run(self.path("power_on.sh"), env=environment, cwd="/")
        self.assertEqual(code, 0, out[-2000:])
        self.assertIn("start: the device restarts", out)
        rows = self.check_run(self.path("board/zktest"))

        # LAVA's monitor finds each verdict of that console once, by the patterns of its job.
        with open(os.path.join(FARM, "lava/job.yaml")) as file:
            monitor = yaml.safe_load(file)["actions"][2]["test"]["monitors"][0]
        with open(self.path("board/zktest/console.log"), errors="replace") as file:
            console = file.read()
        console = console[re.search(monitor["start"], console).end():]
        console = console[:re.search(monitor["end"], console).start()]
        found = [match.groupdict() for match in re.finditer(monitor["pattern"], console)]
        self.assertEqual([one["test_case_id"] for one in found],
                         [case for case in rows if case != HUNG])
        words = {"pass": "Pass", "fail": "Fail"}
        for one in found:
            result = monitor["fixupdict"][one["result"]]
            verdict = rows[one["test_case_id"]]["verdict"]
            self.assertIn(verdict, [words.get(result), "N/A", "Manual"])

    def test_a_boards_package_has_its_platform_alone(self):
        licence = self.path("LIBRARY.txt")
        with open(licence, "w") as file:
            file.write("terms\n")
        out = self.pack("--platform", "rtd2851a_eu", "--out", self.package, "--licence", licence)
        self.assertIn("for rtd2851a_eu", out)
        with tarfile.open(self.package) as package:
            names = package.getnames()
            version = package.extractfile("zktest/VERSION").read().decode()
            selection = package.extractfile(
                "zktest/config/common/auto_test_platform.cfg").read().decode()
            self.assertTrue(package.getmember("zktest/start.sh").mode & 0o100)
        self.assertRegex(selection, r"(?m)^PLATFORM=4$")
        self.assertRegex(version, r"(?m)^version: \d+\.\d+\.\d+$")
        self.assertRegex(version, r"libstdc\+\+\.so\.6: licences/.*\.txt")
        for name in ("zktest", "reboot.sh.template", "licences/LIBRARY.txt",
                     "config/rtd2851a_eu/feature.cfg"):
            self.assertIn("zktest/" + name, names)
        for name in names:
            self.assertNotRegex(name, "mtk|novatek|vclock|libQlx|reboot.sh$")

    def test_what_is_not_there_is_named(self):
        self.assertIn("no platform nowhere",
                      self.pack("--platform", "nowhere", "--out", self.package, code=1))
        self.assertIn("zktest is not there", self.pack("--platform", "novatek", "--build", "/nowhere",
                                                       "--out", self.package, code=1))
        self.pack("--platform", code=2)
        self.assertEqual(os.listdir(self.dir), [])


if __name__ == "__main__":
    unittest.main()
