"""Each word of the torture's report can appear: the run on cases that are wrong on purpose."""
import os
import shutil
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../../scenario"))

import bench

TORTURE = os.path.join(bench.BUILD, "torture_bad")


class BadModuleTest(bench.BenchTest):
    def setUp(self):
        super().setUp()
        shutil.copytree(os.path.join(HERE, "lists"), self.path("lists"))

    def torture(self, *words):
        return subprocess.run([TORTURE, "--dir", self.path("."), "--out", self.path("out"),
                               "--golden", os.path.join(HERE, "golden"),
                               "--lists", self.path("lists")] + list(words),
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              universal_newlines=True)

    def test_each_word_of_the_report_appears(self):
        done = self.torture()
        self.assertEqual(done.returncode, bench.EXIT["FAILED"], done.stdout)
        self.assertIn("FAULTS ARE MISSED", done.stdout)
        with open(os.path.join(HERE, "report.txt")) as file:
            expected = file.read()
        if os.environ.get("ZK_SANITIZE"):
            # A sanitizer's allocator does not tell how much is in use.
            lines = [line for line in expected.splitlines(True) if "LeftMemory" not in line]
            expected = "".join(lines).replace("heap=grows", "heap=steady")
        self.maxDiff = None
        self.assertEqual(self.read(self.path("out/report.txt")), expected)

    def test_a_good_case_alone_is_no_error(self):
        done = self.torture("--name", "TC_BAD_None")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(self.read(self.path("out/report.txt")), "")

    def test_a_run_without_a_step_is_an_error(self):
        done = self.torture("--name", "TC_BAD_MakesNoCallByRule")
        self.assertEqual(done.returncode, bench.EXIT["FAILED"], done.stdout)
        self.assertEqual(self.read(self.path("out/report.txt")), "EMPTY   no step was taken\n")

    def test_profiles_are_written_for_a_review(self):
        words = ["--name", "TC_BAD_MemberNotJudged"]
        self.assertEqual(self.torture(*words).returncode, bench.EXIT["FAILED"])
        done = self.torture("--write", *words)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(self.read(self.path("lists/members/Bad.txt")).splitlines()[1:],
                         ["TC_BAD_None", "    QLX_GPIOGetValue: judges level",
                          "TC_BAD_MemberNotJudged TC_BAD_NoSuchCase",
                          "    QLX_GPIOGetValue: ignores level"])
        self.assertEqual(self.torture(*words).returncode, 0)

    def test_results_stand_until_what_they_depend_on_changes(self):
        words = ["--resume", "--name", "TC_BAD_None"]
        self.assertNotIn("as they were", self.torture(*words).stdout)
        self.assertIn("1 of 1 cases are as they were", self.torture(*words).stdout)
        self.write("config/common/auto_test_platform.cfg",
                   self.read("config/common/auto_test_platform.cfg") + "\n# edited\n")
        self.assertNotIn("as they were", self.torture(*words).stdout)

    def test_a_limit_that_is_one_millisecond_off(self):
        done = self.torture("--limits")
        self.assertEqual(done.returncode, bench.EXIT["FAILED"], done.stdout)
        self.assertIn("LIMIT   TC_BAD_Limit QLX_GPIOSetValue#1: 0 at 99 ms, 0 one later; "
                      "turns behind 100 ms\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
