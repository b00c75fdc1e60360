"""The whole unattended run on the default board, compared with the reviewed verdicts row by row.

tests/golden/verdicts.txt has a line for each automatic case: module, case, verdict, and for a verdict
other than Pass the reason, tab-separated. ZK_GOLDEN=write writes the verdicts anew and keeps the
reasons of those that stay; a person then reviews the change and writes the reasons by hand.
"""
import os
import subprocess
import unittest

import bench

GOLDEN = os.path.join(bench.SOURCE, "tests/golden/verdicts.txt")


def read_golden():
    rows = []
    with open(GOLDEN) as file:
        for line in file:
            if line.strip() and not line.startswith("#"):
                module, case, verdict, reason = (line.rstrip("\n").split("\t") + ["", ""])[:4]
                rows.append((module, case, verdict, reason))
    return rows


def write_golden(rows):
    with open(GOLDEN) as file:
        head = [line for line in file if line.startswith("#")]
    with open(GOLDEN, "w") as file:
        file.writelines(head)
        for module, case, verdict, reason in rows:
            file.write("\t".join([module, case, verdict, reason]).rstrip("\t") + "\n")


class GoldenTest(bench.BenchTest):
    def setUp(self):
        super().setUp()
        # The folder may be kept, for its streams are the same from run to run.
        self.folder = os.path.join(bench.BUILD, "golden_bench")

    def test_every_verdict_is_the_reviewed_one(self):
        done = subprocess.run(bench.RUNNER + ["--quiet", "--auto", self.folder],
                              stdout=subprocess.PIPE, universal_newlines=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        report = bench.read_report(os.path.join(self.folder, "report.xls"))
        automatic = {(m, n): auto for m, n, _, auto, _ in bench.list_cases()}
        got = [(module, case, result) for module, rows in report.items()
               for number, case, _, result in rows if automatic[(module, number)]]
        reasons = {}
        for module, case, verdict, reason in read_golden():
            reasons.setdefault((module, case, verdict), reason)
        if os.environ.get("ZK_GOLDEN") == "write":
            write_golden([row + (reasons.get(row, ""),) for row in got])
        golden = read_golden()
        self.maxDiff = None
        self.assertEqual(["\t".join(row) for row in got], ["\t".join(row[:3]) for row in golden])
        for module, case, verdict, reason in golden:
            if verdict != "Pass":
                self.assertGreater(len(reason), 10, "%s %s has no reason" % (module, case))


if __name__ == "__main__":
    unittest.main()
