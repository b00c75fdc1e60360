"""A deterministic sample of the torture run and of the time limits."""
import os
import subprocess
import unittest

import bench

TORTURE = os.path.join(bench.BUILD, "torture")
# Kept: what has not changed since the last time is not run again.
OUT = os.path.join(bench.BUILD, "torture_sample")
LISTS = os.path.join(bench.SOURCE, "tests/torture")
# Each N-th case of a module, and of each line of the limits. The sanitizers take longer, and look at
# the same code in each case of a family.
EVERY, EVERY_LIMIT = ("97", "1000") if os.environ.get("ZK_SANITIZE") else ("62", "10")


class TortureTest(bench.BenchTest):
    def run_tool(self, *words):
        subprocess.run([os.path.join(bench.SOURCE, "tools/torture_bench.sh"), bench.BUILD,
                        self.path("bench")], check=True, stdout=subprocess.DEVNULL)
        done = subprocess.run([TORTURE, "--dir", self.path("bench"), "--out", OUT,
                               "--golden", os.path.join(bench.SOURCE, "tests/golden"),
                               "--lists", LISTS] + list(words),
                              stdout=subprocess.PIPE, universal_newlines=True)
        report = os.path.join(OUT, "report.txt")
        details = self.read(report) if os.path.exists(report) else ""
        self.assertEqual(done.returncode, 0, done.stdout + details)
        return done.stdout

    def test_every_fault_of_a_sample_is_caught(self):
        out = self.run_tool("--every", EVERY, "--resume")
        self.assertIn("every fault is caught", out)

    def test_limits_turn_at_their_millisecond(self):
        self.run_tool("--limits", "--every", EVERY_LIMIT)


if __name__ == "__main__":
    unittest.main()
