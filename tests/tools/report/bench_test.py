"""The forms that a run of the bench leaves beside its report."""
import json
import os
import subprocess
import unittest
import xml.etree.ElementTree as xml

import runs
from runs import ReportTest


class BenchTest(ReportTest):
    def test_a_run_leaves_its_forms_beside_the_report_and_says_where(self):
        os.makedirs(self.path("bench"))
        for name in ("report.html", "report.xml", "report.jsonl"):
            self.write("bench/" + name, "of an earlier run")
        done = subprocess.run([os.path.join(runs.BUILD, "zkbench"), "--source", runs.SOURCE,
                               self.path("bench"), "--module", "GPIO", "--module", "I2C"],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
        out = done.stdout.decode()
        self.assertEqual(done.returncode, 0, out)
        for name in ("report.html", "report.xml", "report.jsonl"):
            self.assertIn(self.path("bench/" + name), out)
        self.assertIn("43 rows in 2 modules", self.read("bench/report.html"))
        self.assertEqual(xml.parse(self.path("bench/report.xml")).getroot().get("tests"), "43")
        lines = [json.loads(line) for line in self.read("bench/report.jsonl").splitlines()]
        self.assertEqual(lines[-1], {"kind": "end", "rows": 43, "restarts": 0})
        self.assertTrue(all("durationMs" in line for line in lines if line.get("verdict") == "Pass"))


if __name__ == "__main__":
    unittest.main()
