"""Runs against each other, and a run against what its board is known to fail."""
import json
import unittest

from runs import Console, FAILED, NEW_FAILURE, ReportTest, USAGE


class CompareTest(ReportTest):
    def verdicts(self, *columns, **options):
        """Folders whose n-th has the n-th verdict of each row; answers their paths."""
        folders = []
        for i in range(len(columns[0])):
            rows = [("TC_%d" % (r + 1), "Y", verdicts[i]) for r, verdicts in enumerate(columns)
                    if verdicts[i]]
            checklist = None
            if options.get("checklist"):
                checklist = {"GPIO": [(case, mark) for case, mark, _ in rows]}
            folders.append(self.run_folder("run%d" % i, {"GPIO": rows}, checklist))
        return folders

    def compared(self, folders, code):
        self.zkreport("compare", *folders, "--json", self.path("out.json"), code=code)
        comparison = json.loads(self.read("out.json"))
        names = {key: [change["case"] for change in value]
                 for key, value in comparison.items() if isinstance(value, list) and key != "runs"}
        return comparison, {key: value for key, value in names.items() if value}

    def test_two_runs(self):
        folders = self.verdicts(("Pass", "Pass"), ("Pass", "Fail"), ("Fail", "Pass"),
                                ("Fail", "Fail"), ("Pass", "N/A"), ("N/A", "Fail"), ("Pass", ""),
                                ("", "Pass"), ("", "Fail"), ("Pass", "Block"))
        comparison, names = self.compared(folders, code=NEW_FAILURE)
        self.assertEqual(names, {"newFailures": ["TC_2", "TC_6", "TC_10", "TC_9"],
                                 "lost": ["TC_7"], "fixed": ["TC_3"],
                                 "changed": ["TC_5", "TC_8"]})
        self.assertEqual((comparison["same"], comparison["stillBad"]), (1, 1))
        text = self.zkreport("compare", *folders, code=NEW_FAILURE)
        order = [text.index(title) for title in
                 ("New failures (4)", "Not in the last report any more (1)", "Fixed (1)",
                  "Changed otherwise (2)")]
        self.assertEqual(order, sorted(order))

    def test_without_a_new_failure_the_exit_code_is_0(self):
        _, names = self.compared(self.verdicts(("Fail", "Pass"), ("Fail", "Fail"),
                                               ("Pass", "N/A")), code=0)
        self.assertEqual(names, {"fixed": ["TC_1"], "changed": ["TC_3"]})

    def test_a_row_that_the_last_checklist_leaves_out_is_not_lost(self):
        folders = self.verdicts(("Pass", "Pass"), ("Pass", ""), checklist=True)
        _, names = self.compared(folders, code=0)
        self.assertEqual(names, {"changed": ["TC_2"]})

    def test_several_runs(self):
        _, names = self.compared(self.verdicts(
            ("Pass", "Fail", "Pass", "Fail"), ("Pass", "Pass", "Fail", "Fail"),
            ("Fail", "Fail", "Pass", "Pass"), ("Pass", "N/A", "Pass", "Pass")), code=NEW_FAILURE)
        self.assertEqual(names, {"newFailures": ["TC_2"], "fixed": ["TC_3"],
                                 "changed": ["TC_4"], "flaky": ["TC_1"]})

    def test_a_case_that_takes_the_device_down_is_a_new_failure_though_it_reads_not_applicable(self):
        rows = [("TC_1", "Y", "Pass"), ("TC_2", "Y", "Pass")]
        good = self.run_folder("a", {"GPIO": rows})
        log = Console().start().setup("GPIO").begin(1, "TC_1").monitor_reboot().start()
        log.setup("GPIO").case(2, "TC_2")
        bad = self.run_folder("b", {"GPIO": [("TC_1", "Y", "N/A"), rows[1]]}, log=log)
        comparison, names = self.compared([good, bad], code=NEW_FAILURE)
        self.assertEqual(names, {"newFailures": ["TC_1"]})
        self.assertIn("went down", comparison["newFailures"][0]["reason"])

    def test_slower_needs_the_factor_and_the_time(self):
        folders = []
        for name, times in [("a", (100, 10000, 4000)), ("b", (900, 14000, 6100))]:
            log = Console().start().setup("GPIO")
            for i, ms in enumerate(times):
                log.case(i + 1, "TC_%d" % (i + 1), took_ms=ms)
            rows = [("TC_%d" % i, "Y", "Pass") for i in (1, 2, 3)]
            folders.append(self.run_folder(name, {"GPIO": rows}, log=log))
        _, names = self.compared(folders, code=0)
        self.assertEqual(names, {"slower": ["TC_3"]})

    def test_bad_use(self):
        folders = self.verdicts(("Pass", "Pass"))
        self.zkreport("compare", folders[0], code=USAGE)
        self.zkreport("compare", *folders, "--slower-factor", "0", code=USAGE)
        self.assertIn("nowhere", self.zkreport("compare", folders[0], "nowhere", code=FAILED))


class ExpectationsTest(ReportTest):
    def setUp(self):
        super().setUp()
        self.folder = self.run_folder("bench", {
            "GPIO": [("TC_1", "Y", "Fail"), ("TC_2", "Y", "Fail"), ("TC_3", "Y", "Pass"),
                     ("TC_4", "Y", "N/A")]})

    def check(self, *entries, code, today="2026-06-30"):
        entries = [dict(zip(("case", "reason", "until"), entry)) for entry in entries]
        path = self.write("expect.json", "// of this board\n" +
                          json.dumps({"board": "b", "expect": entries}))
        return self.zkreport("check", self.folder, "--expect", path, "--today", today, code=code)

    def test_known_new_fixed_and_unused(self):
        text = self.check(("GPIO/TC_1", "first", "2026-06-30"), ("TC_[34]", "other", "2027-01-01"),
                          ("I2C/*", "gone", "2027-01-01"), code=NEW_FAILURE)
        self.assertIn("New failures (1)\n  GPIO/TC_2", text)
        self.assertIn("Known failures (1)\n  GPIO/TC_1: first", text)
        self.assertIn("Expected to fail, and did not (1)\n  GPIO/TC_3: other", text)
        self.assertIn("Expectations that match no row (1)\n  I2C/*", text)
        self.assertNotIn("run out", text)

    def test_only_known_failures_are_good(self):
        self.check(("TC_1", "a", "2026-07-01"), ("*/TC_2", "b", "2026-07-01"), code=0)

    def test_an_expired_expectation_is_an_error_even_for_a_case_that_passes(self):
        text = self.check(("TC_[12]", "a", "2026-07-01"), ("TC_3", "b", "2026-06-29"), code=NEW_FAILURE)
        self.assertIn("Expectations that have run out (1)\n  TC_3 (until 2026-06-29): b", text)
        self.assertNotIn("New failures", text)
        text = self.check(("TC_[12]", "a", "2026-06-29"), code=NEW_FAILURE)
        self.assertIn("New failures (2)", text)

    def test_a_damaged_file_is_refused_with_its_place(self):
        good = {"case": "TC_1", "reason": "r", "until": "2026-01-01"}
        for text, part in [("{", "no JSON"), ("[]", '"expect" is missing'),
                           ('{"expect": []}', '"board" is missing'),
                           (dict(good, until="2026-02-30"), "entry 2: \"until\" is no day"),
                           (dict(good, until="soon"), "entry 2: \"until\" is no day"),
                           (dict(good, reason=""), "entry 2: \"reason\" is missing"),
                           (dict(good, untill="x"), "entry 2: \"untill\" is not known")]:
            if isinstance(text, dict):
                text = json.dumps({"board": "b", "expect": [good, text]})
            path = self.write("expect.json", text)
            message = self.zkreport("check", self.folder, "--expect", path, code=FAILED)
            self.assertTrue(message.startswith("zkreport: " + path), message)
            self.assertIn(part, message)


if __name__ == "__main__":
    unittest.main()
