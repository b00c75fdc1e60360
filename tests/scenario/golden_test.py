"""The whole unattended run on the default board, compared with the reviewed verdicts row by row.

tests/golden/verdicts has a file for each module, with a line for each automatic case: case, verdict,
and for a verdict other than Pass the reason, tab-separated. ZK_GOLDEN=write writes the verdicts anew
and keeps the reasons of those that stay; a person then reviews the change and writes the reasons by
hand.
"""
import os
import subprocess
import unittest

import bench

GOLDEN = os.path.join(bench.SOURCE, "tests/golden/verdicts")


def path_of(module):
    return os.path.join(GOLDEN, module + ".txt")


def read_golden(modules):
    rows = []
    for module in modules:
        if not os.path.exists(path_of(module)):
            continue
        with open(path_of(module)) as file:
            for line in file:
                case, verdict, reason = (line.rstrip("\n").split("\t") + [""])[:3]
                rows.append((module, case, verdict, reason))
    return rows


def write_golden(rows):
    for module in {row[0] for row in rows}:
        with open(path_of(module), "w") as file:
            for row in rows:
                if row[0] == module:
                    file.write("\t".join(row[1:]).rstrip("\t") + "\n")


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
        for module, case, verdict, reason in read_golden(report):
            reasons.setdefault((module, case, verdict), reason)
        if os.environ.get("ZK_GOLDEN") == "write":
            write_golden([row + (reasons.get(row, ""),) for row in got])
        golden = read_golden(report)
        files = {name[:-4] for name in os.listdir(GOLDEN)}
        self.assertEqual(files - set(report), set(), "verdicts of modules that did not run")
        self.maxDiff = None
        self.assertEqual(["\t".join(row) for row in got], ["\t".join(row[:3]) for row in golden])
        for module, case, verdict, reason in golden:
            if verdict != "Pass":
                self.assertGreater(len(reason), 10, "%s %s has no reason" % (module, case))


if __name__ == "__main__":
    unittest.main()
