"""What zkreport makes of a run's files: reasons, durations, restarts, and files that are none."""
import os
import unittest

import runs
from runs import Console, FAILED, ReportTest


class ReasonsTest(ReportTest):
    def test_the_log_explains_what_the_report_only_names(self):
        names = ["TC_A_%03d" % i for i in range(1, 10)]
        words = ["Pass", "Fail", "N/A", "N/A", "N/A", "Manual", "NoMatch", "N/A", "Block"]
        report = {"GPIO": [(n, "N" if n.endswith("4") else "Y", w) for n, w in zip(names, words)]}
        log = Console().start().setup("GPIO")
        log.case(1, names[0], took_ms=250)
        log.case(2, names[1], "FAILED", 1500,
                 runs.RED + "[%s][7]expect 1, but actually 2  \n%s" % (names[1], runs.RESET) +
                 runs.RED + "[%s] TEST Result: FAIL\n" % names[1])
        log.case(3, names[2], "UNSUPPORT")
        log.line("case 4:[%s] Case hase been marked as 'N' in checklist. Skip! " % names[3])
        log.begin(5, names[4]).raw("a last word\n").monitor_reboot()
        log.start().setup("GPIO")
        log.line("case 6:[%s] Manual case. Skip! " % names[5])
        log.line("case 7:[%s] Can't find this case. Skip! " % names[6])
        log.case(8, names[7], "FAILED")
        log.begin(9, names[8])
        folder = self.run_folder("bench", report, log=log)
        run, restarts, rows = self.lines(folder)
        row = [rows["GPIO/" + name] for name in names]

        self.assertEqual([r["verdict"] for r in row], words)
        self.assertEqual([r["durationMs"] for r in row[:3]], [250, 1500, 0])
        self.assertEqual(row[1]["failure"], "[TC_A_002][7]expect 1, but actually 2")
        self.assertIn("board does not have", row[2]["reason"])
        self.assertIn("not marked", row[3]["reason"])
        self.assertIn("device went down in this case: five minutes", row[4]["reason"])
        self.assertIn("ended with FAILED, and the report lost", row[7]["reason"])
        self.assertIn("was running", row[8]["reason"])
        self.assertEqual([r["bad"] for r in row],
                         [False, True, False, False, True, False, True, True, True])
        self.assertFalse(run["complete"])
        self.assertEqual(len(restarts), 1)
        self.assertEqual((restarts[0]["module"], restarts[0]["case"]), ("GPIO", names[4]))
        # The clock begins anew at the restart, the run's time goes on.
        self.assertEqual(restarts[0]["atMs"], 250 + 1500 + 301000)
        with open(os.path.join(folder, "console.log"), "rb") as file:
            file.seek(row[4]["log"]["offset"])
            own = file.read(row[4]["log"]["bytes"]).decode()
        self.assertTrue(own.startswith("[1001.750000]case 5:[TC_A_005] Start!"), own)
        self.assertIn("a last word", own)
        self.assertNotIn("automatic running", own)

    def test_a_restart_without_the_monitors_word_is_told_apart(self):
        log = Console().start().setup("GPIO").begin(1, "TC_A").start(2000).over()
        report = {"GPIO": [("TC_A", "Y", "N/A"), ("TC_B", "Y", "Pass")]}
        _, restarts, rows = self.lines(self.run_folder("bench", report, log=log))
        self.assertIn("without the monitor's word", restarts[0]["cause"])
        # A clock that runs on was not set back: the gap belongs to the run.
        self.assertEqual(restarts[0]["atMs"], 1000000)
        self.assertTrue(rows["GPIO/TC_A"]["bad"])

    def test_the_runs_time_goes_on_over_many_restarts(self):
        log = Console()
        for i in range(4):
            log.start().setup("GPIO").begin(i + 1, "TC_%d" % i)
            log.us += 5000000000
            log.line("still there")
        report = {"GPIO": [("TC_%d" % i, "Y", "N/A") for i in range(4)]}
        run, restarts, rows = self.lines(self.run_folder("bench", report, log=log))
        self.assertEqual([restart["atMs"] for restart in restarts], [5000000, 10000000, 15000000])
        self.assertEqual([rows["GPIO/TC_%d" % i]["startMs"] for i in range(4)],
                         [0, 5000000, 10000000, 15000000])
        self.assertEqual(run["durationMs"], 20000000)

    def test_rows_that_never_came_into_the_report_are_not_lost(self):
        report = {"GPIO": [("TC_A", "Y", "Pass")]}
        checklist = {"GPIO": [("TC_A", "Y"), ("TC_B", "Y"), ("TC_C", "N")], "I2C": [("TC_D", "Y")],
                     "PM": [("TC_E", "Y")]}
        log = Console().start().setup("GPIO").case(1, "TC_A")
        log.line("[GPIO] module: cases in checklist is more than actual cases, update the "
                 "checklist please!!!  ")
        log.setup("I2C").line("[I2C] module setup failed!!!  ")
        folder = self.run_folder("bench", report, checklist, log)
        run, _, rows = self.lines(folder)
        self.assertEqual(run["counts"]["Missing"], 4)
        self.assertFalse(run["complete"])
        self.assertIn("fewer cases", rows["GPIO/TC_B"]["reason"])
        self.assertIn("set-up failed", rows["I2C/TC_D"]["reason"])
        self.assertIn("no sheet", rows["PM/TC_E"]["reason"])
        bad = {name for name, row in rows.items() if row["bad"]}
        self.assertEqual(bad, {"GPIO/TC_B", "I2C/TC_D", "PM/TC_E"})

    def test_names_in_two_modules_and_twice_in_one(self):
        rows = [("TC_SAME", "Y", "Pass"), ("TC_SAME", "Y", "Fail")]
        log = Console().start()
        # Neither module has a set-up that the log would name.
        log.case(1, "TC_SAME", took_ms=1).case(2, "TC_SAME", "FAILED", 2)
        log.setup("I2C").case(1, "TC_SAME", took_ms=3).case(2, "TC_SAME", "FAILED", 4)
        folder = self.run_folder("bench", {"GPIO": rows, "I2C": rows}, log=log)
        text = self.zkreport("write", folder, "--tap", "-")
        self.assertEqual([line.split(": ")[1] for line in text.splitlines() if "duration" in line],
                         ["1", "2", "3", "4"])

    def test_a_log_of_another_run_is_noticed(self):
        log = Console().start().setup("GPIO").case(1, "TC_A", "FAILED")
        folder = self.run_folder("bench", {"GPIO": [("TC_A", "Y", "Pass")]}, log=log)
        run, _, _ = self.lines(folder)
        self.assertIn("another verdict than the report for 1 rows", run["notes"][0])

    def test_recorded_durations_serve_where_the_log_has_none(self):
        report = {"GPIO": [("TC_A", "Y", "Pass"), ("TC_B", "Y", "Pass"), ("TC_C", "N", "N/A")]}
        log = Console().start().setup("GPIO").case(1, "TC_A", took_ms=5)
        folder = self.run_folder("bench", report, log=log)
        self.write("bench/.bench/durations", "70 GPIO/TC_A\n80 GPIO/TC_B\n90 GPIO/TC_C\n")
        self.assertEqual(self.zkreport("write", folder, "--learn", "-"),
                         "5 GPIO/TC_A\n80 GPIO/TC_B\n")


class BadInputTest(ReportTest):
    def refused(self, path, *parts):
        message = self.zkreport("write", path, "--jsonl", "-", code=FAILED)
        self.assertEqual(message.count("\n"), 1, message)
        self.assertTrue(message.startswith("zkreport: " + path), message)
        for part in parts:
            self.assertIn(part, message)

    def test_files_that_are_no_report_get_one_clear_message(self):
        runs.write_report(self.path("good.xls"), {"GPIO": [("TC_A", "Y", "Pass")] * 40})
        with open(self.path("good.xls"), "rb") as file:
            good = file.read()
        self.refused(self.path("none.xls"), "No such file")
        self.refused(self.write("empty.xls", b""), "the file is empty")
        self.refused(self.write("text.xls", b"not a workbook at all\n" * 99), "no readable workbook")
        self.refused(self.write("half.xls", good[:len(good) // 2]), "no readable workbook")
        os.mkdir(self.path("folder"))
        self.refused(self.path("folder"), "no report.xls in this folder")
        runs.write_checklist(self.path("checklist.xls"), {"GPIO": [("TC_A", "Y")]})
        self.refused(self.path("checklist.xls"), "no report", '"Cover"')
        runs.write_report(self.path("no_rows.xls"), {"GPIO": []})
        self.refused(self.path("no_rows.xls"), "has no row")

    def test_rows_that_are_none_of_a_reports_are_named(self):
        for row, what in [(("TC_A", "Y", "Passed"), 'the result "Passed"'),
                          (("TC_A", "Y", ""), "has no result"), (("", "Y", "Pass"), "has no case")]:
            runs.write_report(self.path("bad.xls"), {"GPIO": [("TC_1", "Y", "Pass"), row]})
            self.refused(self.path("bad.xls"), 'sheet "GPIO", row 3', what)

    def test_a_damaged_workbook_never_does_harm(self):
        runs.write_report(self.path("good.xls"), {"GPIO": [("TC_A", "Y", "Pass")] * 9})
        with open(self.path("good.xls"), "rb") as file:
            good = file.read()
        for at in range(0, len(good), max(1, len(good) // 60)):
            self.write("bad.xls", good[:at] + bytes([good[at] ^ 0xFF]) + good[at + 1:])
            done = runs.subprocess.run([runs.PROGRAM, "write", self.path("bad.xls"), "--jsonl",
                                        "-"], stdout=runs.subprocess.PIPE,
                                       stderr=runs.subprocess.PIPE, timeout=runs.PATIENCE_S)
            self.assertIn(done.returncode, (0, FAILED), at)
            self.assertEqual(done.returncode == FAILED, done.stderr.startswith(b"zkreport: "), at)

    def test_a_damaged_file_of_durations_names_its_line(self):
        folder = self.run_folder("bench", {"GPIO": [("TC_A", "Y", "Pass")]})
        durations = self.write("durations", "5 GPIO/TC_A\nGPIO/TC_B 6\n")
        message = self.zkreport("write", folder, "--durations", durations, "--jsonl", "-", code=FAILED)
        self.assertIn("durations: line 2", message)

    def test_nothing_half_written_is_left(self):
        folder = self.run_folder("bench", {"GPIO": [("TC_A", "Y", "Pass")]})
        message = self.zkreport("write", folder, "--jsonl", self.path("bench") + "/no/x", code=FAILED)
        self.assertIn("cannot be written", message)
        self.zkreport("write", folder, "--jsonl", folder, code=FAILED)
        self.assertEqual(os.listdir(self.dir), ["bench"])


if __name__ == "__main__":
    unittest.main()
