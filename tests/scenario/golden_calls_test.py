"""What each case does to the library, compared with the reviewed golden calls (docs/golden-calls.md).
ZK_GOLDEN=write writes them anew for a review."""
import os
import subprocess
import unittest

import bench

GOLDEN = os.path.join(bench.SOURCE, "tests/golden")


class GoldenCallsTest(bench.BenchTest):
    def test_every_case_calls_what_was_reviewed(self):
        subprocess.run([os.path.join(bench.SOURCE, "tools/torture_bench.sh"), bench.BUILD,
                        self.path("bench")], check=True, stdout=subprocess.DEVNULL)
        words = [os.path.join(bench.BUILD, "goldencalls"), "--dir", self.path("bench"),
                 "--golden", os.path.join(GOLDEN, "calls"),
                 "--operators", os.path.join(GOLDEN, "operator")]
        if os.environ.get("ZK_GOLDEN") == "write":
            words.append("--write")
        # Threads that meet are recorded as they come first: a seed would have them in other orders.
        env = {name: value for name, value in os.environ.items() if name != "VCLOCK_SEED"}
        done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=env,
                              universal_newlines=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        cases = len(bench.list_cases())
        runs = int(done.stdout.rsplit(" runs recorded", 1)[0].rsplit(None, 1)[-1])
        self.assertGreaterEqual(runs, cases, "cases without a record")


if __name__ == "__main__":
    unittest.main()
