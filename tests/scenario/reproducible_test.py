"""Two unattended runs with one seed print the same to the byte, but for process numbers."""
import os
import re
import subprocess
import unittest

import bench


class ReproducibleTest(bench.BenchTest):
    def run_with_seed(self, name, seed):
        folder = self.path(name)
        subprocess.run(bench.RUNNER + ["--quiet", "--auto", "--seed", str(seed), "--module", "GPIO",
                                       "--module", "SYSTEM", "--module", "TEEC", "--name", "*",
                                       folder], check=True, stdout=subprocess.DEVNULL)
        with open(os.path.join(folder, "console.log"), "rb") as file:
            log = file.read()
        with open(os.path.join(folder, "report.xls"), "rb") as file:
            report = file.read()
        return re.sub(rb"pid of mornitor is \d+", b"pid", log), report

    def test_one_seed_gives_one_run(self):
        first = self.run_with_seed("a", 5)
        self.assertGreater(len(first[0]), 10000)
        self.assertEqual(first, self.run_with_seed("b", 5))


if __name__ == "__main__":
    unittest.main()
