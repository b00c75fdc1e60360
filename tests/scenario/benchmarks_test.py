"""The benchmarks come to an end, and print their figures and nothing else."""
import csv
import os
import subprocess
import unittest

import bench


class BenchmarksTest(unittest.TestCase):
    def figures(self, pattern):
        """The rows of a short run: names, and milliseconds of both columns."""
        done = subprocess.run([os.path.join(bench.SOURCE, "bench/run.sh"), bench.BUILD,
                               "--benchmark_min_time=0", "--benchmark_format=csv",
                               "--benchmark_filter=" + pattern], check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True, timeout=bench.PATIENCE_S)
        rows = {}
        for row in csv.DictReader(done.stdout.splitlines()):
            if row["name"] == "name":
                continue  # The heading of the second table.
            # What anybody else prints is no row.
            self.assertRegex(row["name"], r"^\w+(/[\w:]+)*$")
            rows[row["name"].split("/")[0]] = float(row["real_time"]), float(row["cpu_time"])
        return rows

    def test_real_time_and_virtual_time(self):
        # An hour is over at once, and each benchmark is measured in its own time only.
        rows = self.figures("Stream|Shipped|rows:100/|DemuxHourOfSections|ThreadHandOver|Lock")
        self.assertEqual(set(rows), {
            "StreamPlainRead", "StreamSectionSearch", "StreamLibdvbpsiSearch",
            "StartWithShippedConfiguration", "ReportSave", "ReportBareWrite", "ReportSaveSynced",
            "DemuxHourOfSections", "ThreadHandOver", "UncontendedLock",
            "UncontendedLockOfTheCLibrary"})
        virtual_ms, processor_ms = rows["DemuxHourOfSections"]
        self.assertEqual(virtual_ms, 3600 * 1000)
        self.assertLess(processor_ms, virtual_ms)
        for name, (_, processor) in rows.items():
            self.assertGreater(processor, 0, name)


if __name__ == "__main__":
    unittest.main()
