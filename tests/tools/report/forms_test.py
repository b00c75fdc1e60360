"""The machine forms, by their schemas and by the programs that read them."""
import json
import os
import re
import subprocess
import unittest
import xml.etree.ElementTree as xml

import jsonschema

import runs
from runs import Console, FAILED, ReportTest

HOSTILE = "TC_<b>&amp;\"x\" # TODO ]]> \u202e\\"
NOISE = ("<script>alert(1)</script> ]]> & \x00\x01\x1b[2J\x1b]0;title\x07 \xff\xfe \x7f\x85 end\n"
         .encode("latin-1"))


class FormsTest(ReportTest):
    def setUp(self):
        super().setUp()
        report = {"GPIO": [("TC_A_001", "Y", "Pass"), (HOSTILE, "Y", "Fail"),
                           ("TC_A_003", "Y", "N/A"), ("TC_A_004", "Y", "Manual")],
                  "I2C": [("TC_B_001", "Y", "Fail"), ("TC_B_001", "Y", "Pass"),
                          ("TC_B_002", "Y", "Block")]}
        checklist = {name: [(case, mark) for case, mark, _ in rows]
                     for name, rows in report.items()}
        checklist["PM"] = [("TC_C_001", "Y")]
        log = Console().start().setup("GPIO").case(1, "TC_A_001", took_ms=1234)
        log.begin(2, HOSTILE)
        text = log.text.encode() + NOISE + b"x" * 40000 + b"\n" * 3000
        log.pieces.clear()
        log.end(2, HOSTILE, "FAILED", 10)
        self.folder = self.run_folder("bench", report, checklist, text + log.text.encode())
        self.expect = self.write("expect.json", json.dumps({"board": "b", "expect": [
            {"case": "I2C/TC_B_*", "reason": "known <b>bug</b>", "until": "2026-12-31"}]}))

    def form(self, option, *words):
        return self.zkreport("write", self.folder, option, "-", *words)

    def judged(self, option):
        return self.form(option, "--expect", self.expect, "--today", "2026-12-31")

    def test_junit_is_valid_and_tells_each_row_once(self):
        for text in (self.form("--junit"), self.judged("--junit")):
            path = self.write("report.xml", text)
            done = subprocess.run(["xmllint", "--noout", "--schema",
                                   os.path.join(runs.SCHEMAS, "junit.xsd"), path],
                                  stderr=subprocess.PIPE)
            self.assertEqual(done.returncode, 0, done.stderr)
        root = xml.fromstring(self.form("--junit"))
        cases = root.findall("testsuite/testcase")
        children = [[child.tag for child in case] for case in cases]
        self.assertEqual(children, [[], ["failure"], ["skipped"], ["skipped"], ["failure"], [],
                                    ["error"], ["error"]])
        self.assertEqual(cases[1].get("name"), HOSTILE.replace("\u202e", "\ufffd"))
        self.assertEqual(cases[0].get("time"), "1.234")
        self.assertEqual((root.get("tests"), root.get("failures"), root.get("errors")),
                         ("8", "2", "2"))
        log = cases[1].find("failure").text
        self.assertIn("<script>alert(1)</script> ]]> & \u2400\u2401\u241b]0;title\u2407", log)
        self.assertRegex(log, r"\.\.\. \d+ lines \(\d+ bytes\) left out \.\.\.")
        self.assertLess(len(log), 20000)
        known = xml.fromstring(self.judged("--junit")).findall("testsuite/testcase")
        self.assertIn("known failure: known <b>bug</b>", known[4].find("skipped").text)

    def test_json_lines_follow_the_documented_schema(self):
        with open(os.path.join(runs.SOURCE, "docs/report-jsonl.schema.json")) as file:
            schema = jsonschema.Draft7Validator(json.load(file))
        text = self.judged("--jsonl")
        self.assertNotRegex(text, "[\x00-\x09\x0b-\x1f\x7f]")
        lines = [json.loads(line) for line in text.splitlines()]
        for line in lines:
            schema.validate(line)
        states = [line.get("expected", {}).get("state") for line in lines if line["kind"] == "row"]
        self.assertEqual(states, [None] * 4 + ["known-failure", "unexpected-pass", "known-failure",
                                               None])
        # The schema refuses what is not documented.
        self.assertFalse(schema.is_valid(dict(lines[1], surprise=1)))
        self.assertFalse(schema.is_valid(dict(lines[1], verdict="Passed")))

    def test_prove_reads_tap(self):
        done = subprocess.run(["prove", "-v", self.write("r.tap", self.judged("--tap"))],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        text = done.stdout.decode()
        self.assertIn("Tests: 8 Failed: 2)", text)
        self.assertRegex(text, r"Failed tests: +2, 8")
        self.assertIn("TODO passed:   6", text)
        self.assertNotIn("Parse errors", text)
        self.assertNotEqual(done.returncode, 0)

    def test_ctrf_is_valid_and_adds_up(self):
        with open(os.path.join(runs.SCHEMAS, "ctrf.json")) as file:
            schema = json.load(file)
        ctrf = json.loads(self.judged("--ctrf"))
        jsonschema.validate(ctrf, schema)
        summary = ctrf["results"]["summary"]
        self.assertEqual([summary[word] for word in
                          ("tests", "passed", "failed", "other", "pending", "skipped")],
                         [8, 2, 1, 1, 2, 2])

    def test_lava_signals_have_plain_and_distinct_ids(self):
        lines = self.form("--lava").splitlines()
        cases = [re.fullmatch(r"<LAVA_SIGNAL_TESTCASE TEST_CASE_ID=([A-Za-z0-9_.-]+) "
                              r"RESULT=(pass|fail|skip)(?: MEASUREMENT=\d+\.\d+ UNITS=seconds)?>",
                              line) for line in lines if "TESTCASE" in line]
        self.assertNotIn(None, cases)
        self.assertEqual([case.group(2) for case in cases],
                         ["pass", "fail", "skip", "skip", "fail", "pass", "fail", "fail"])
        names = [case.group(1) for case in cases]
        self.assertEqual(len(set(names)), 8)
        self.assertEqual(names[4:6], ["TC_B_001", "TC_B_001-2"])
        self.assertEqual(lines.count("<LAVA_SIGNAL_TESTSET STOP>"), 3)


if __name__ == "__main__":
    unittest.main()
