"""Every switch of source of AV-Common: what plays is the new source, and nothing of the old one is
left in the device (tests/scenario/switch_watcher.cpp)."""
import os
import subprocess
import unittest

import bench
import capture_test

SWITCHES = 88


class SwitchTest(bench.BenchTest):
    def test_nothing_of_the_source_before_is_left(self):
        kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", kept], check=True, stdout=subprocess.DEVNULL)
        self.write("board.cfg", capture_test.BOARD)
        done = subprocess.run(bench.command(os.path.join(bench.BUILD, "switch_watcher")), cwd=kept,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              universal_newlines=True, timeout=bench.PATIENCE_S,
                              env=dict(os.environ, QLX_SIM_BOARD=self.path("board.cfg")))
        self.assertEqual(done.returncode, 0, done.stderr[-5000:])
        self.assertIn("%d switches of 10 rounds, 0 complaints\n" % SWITCHES, done.stderr)


if __name__ == "__main__":
    unittest.main()
