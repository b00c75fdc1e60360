"""Unattended runs: verdicts row by row, selections, resumption after a death at every row, and
checklists of every shape."""
import os
import re
import subprocess
import unittest

import bench

MODULES = ("GPIO", "I2C")


def rows_of(module, mark="Y"):
    return [(name, mark) for m, _, name, _, _ in bench.list_cases() if m == module]


def automatic(module):
    return [auto for m, _, _, auto, _ in bench.list_cases() if m == module]


class AutoTest(bench.BenchTest):
    def two_modules(self):
        bench.write_checklist(self.path("checklist.xls"), [(m, rows_of(m)) for m in MODULES])

    def results(self, module):
        return [row[3] for row in self.report()[module]]

    def expected(self):
        return {m: ["Pass" if auto else "Manual" for auto in automatic(m)] for m in MODULES}

    def test_a_whole_run(self):
        self.two_modules()
        code, out = self.auto()
        self.assertEqual(code, 0)
        report = self.report()
        self.assertEqual(list(report), list(MODULES))
        for module in MODULES:
            self.assertEqual(self.results(module), self.expected()[module])
            self.assertEqual([r[0] for r in report[module]],
                             list(range(1, len(report[module]) + 1)))
            self.assertEqual([r[2] for r in report[module]], ["Y"] * len(report[module]))
        # Nothing is printed twice by the two processes, and each says its own.
        for line in ("Test case will automatic running in 10s", "Will fork a mornitor proc",
                     "This is the space of mornitor proc", "The pid of mornitor is",
                     "*** Welcome to Vantiro", "[TC_GPIO_GetValue_001] TEST Result: SUCCESS",
                     "mornitor proc will quit"):
            self.assertEqual(out.count(line), 1, line)
        # The start: ten seconds in which it can still be stopped, then one loader after the other.
        begin = int(re.search(r"\[(\d+)\.0\]Test case will automatic running in 10s", out).group(1))
        steps = ["[PLATFORM_INFO]PLATFORM=5", "[%d.0]=========Feature config" % (begin + 10),
                 "]----ATV channels", "[TUNERDEV0]TUNER_TRANSMISSIONSYSTEM=", "[COMMON]AV_SOURCE=",
                 "[COMMON]COMMON_TEST_REPORT_FILE=", "[COMMON]COMMON_CHECKLIST_FILE=",
                 "[COMMON]COMMON_REBOOT_CMD=", "[%d.0]Will fork a mornitor proc" % (begin + 10)]
        places = [out.index(step) for step in steps]
        self.assertEqual(places, sorted(places))
        self.assertIn("There is no module(Tuner) in checklist!", out)
        self.assertNotIn("GoodBye", out)

    def test_a_start_with_closed_standard_descriptors(self):
        self.two_modules()
        shell = 'exec "$@" <&- >&- 2>&-'
        process = subprocess.Popen(["sh", "-c", shell, "sh"] + bench.command(bench.PROGRAM, "auto"),
                                   cwd=self.dir, env=self.environment, start_new_session=True,
                                   preexec_fn=bench.die_with_the_test)
        self.groups.append(process.pid)
        self.assertEqual(process.wait(timeout=bench.PATIENCE_S), 0)
        self.wait_for_group(process.pid)
        for module in MODULES:
            self.assertEqual(self.results(module), self.expected()[module])

    def test_a_complete_report_is_not_run_again(self):
        self.two_modules()
        self.auto()
        code, out = self.auto()
        self.assertEqual(code, 0)
        self.assertIn("all the cases of modules has been tested!", out)
        self.assertNotIn("Start!", out)
        self.assertEqual(self.results("I2C"), self.expected()["I2C"])

    def test_marks_names_and_surplus_rows(self):
        gpio = rows_of("GPIO")
        gpio[1] = (gpio[1][0], "N")
        gpio[4] = ("TC_GPIO_Renamed", "Y")
        gpio[5] = (gpio[5][0], "Yes")
        gpio[6] = (gpio[6][0], "y")
        bench.write_checklist(self.path("checklist.xls"),
                              [("GPIO", gpio + [("TC_Surplus", "Y")]), ("I2C", rows_of("I2C")[:5]),
                               ("Unknown", [("TC_X", "Y"), ("TC_Y", "Y")])])
        _, out = self.auto()
        got = self.results("GPIO")
        want = self.expected()["GPIO"]
        want[1], want[4], want[6] = "N/A", "NoMatch", "N/A"
        self.assertEqual(got, want)
        self.assertIn("[GPIO] module: cases in checklist is more than actual cases", out)
        self.assertEqual(self.results("I2C"), ["Pass"] * 5)
        self.assertNotIn("Unknown", self.report())

    def test_a_blank_line_and_a_missing_closing_row_end_a_sheet(self):
        gpio = rows_of("GPIO")
        gpio[3] = ("", "Y")
        bench.write_checklist(self.path("checklist.xls"), [("GPIO", gpio), ("I2C", rows_of("I2C"))],
                              closing=False)
        _, out = self.auto()
        self.assertIn("blank line in the cheklist, skip cases after the blank line", out)
        self.assertEqual(len(self.results("GPIO")), 3)
        # The last row is never read, so the last case is lost without a closing row.
        self.assertEqual(len(self.results("I2C")), len(rows_of("I2C")) - 1)

    def test_refusals_to_start(self):
        with open(self.path("checklist.xls"), "wb") as file:
            file.write(b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + b"\x55" * 900)
        process = self.start("auto", stdout=subprocess.PIPE)
        out = b""
        while b"Auto test must specify the path of checklist file" not in out:
            got = os.read(process.stdout.fileno(), 65536)
            self.assertTrue(got)
            out += got
        # It stays in its wait loop, and nothing was forked.
        self.assertIsNone(process.poll())
        self.assertIn(b"libxls error", out)
        self.assertNotIn(b"fork", out)
        process.kill()
        process.wait()
        process.stdout.close()

    def resume_after_death_in(self, module, row):
        """Dies in a row's case, then runs to the end; returns what the report must say."""
        name = rows_of(module)[row][0]
        self.two_modules()
        if os.path.exists(self.path("report.xls")):
            os.remove(self.path("report.xls"))
        functions = ("QLX_GPIOInit", "QLX_GPIOGetValue", "QLX_GPIOSetValue", "QLX_I2CInit")
        self.auto(faults=["%s case=%s kill" % (function, name) for function in functions])
        self.assertEqual(self.results(module)[row], "Block", name)
        self.assertEqual(len(self.results(module)), row + 1)
        want = self.expected()
        if (module, row) == ("GPIO", 0):
            # This reads as a fresh start.
            return want
        if (module, row) == ("I2C", len(want["I2C"]) - 1):
            # This reads as a complete run, whose report stays as it is.
            want[module][row] = "Block"
            return want
        # The row that took the process down is not run again.
        want[module][row] = "N/A"
        # Only "Pass" and "Fail" come back from a report, all other words as "N/A".
        want[module][:row] = [w.replace("Manual", "N/A") for w in want[module][:row]]
        if module == "I2C":
            want["GPIO"] = [w.replace("Manual", "N/A") for w in want["GPIO"]]
            # A finished sheet's last row is never read back.
            want["GPIO"][-1] = "N/A"
        return want

    def test_death_at_every_row(self):
        for module in MODULES:
            for row, auto in enumerate(automatic(module)):
                if not auto:
                    continue
                want = self.resume_after_death_in(module, row)
                code, out = self.auto()
                self.assertEqual(code, 0)
                self.assertIn("test report file: report.xls", out)
                self.assertEqual(out.count("mornitor proc will quit"), 1)
                for sheet in MODULES:
                    self.assertEqual(self.results(sheet), want[sheet], (module, row))

    def test_a_death_is_answered_by_the_reboot_command_after_five_minutes(self):
        self.two_modules()
        code, out = self.auto(faults=["QLX_I2COpen case=TC_I2C_Open_005 kill"])
        self.assertNotEqual(code, 0)
        self.assertEqual(self.read("reboots"), "reboot\n")
        self.assertIn("start the cutdown (5 mins) for reboot system", out)
        self.assertIn("in 5 mins, reboot system", out)
        self.assertIn("reboot cmd: ./reboot.sh", out)
        # The last words before the death are there.
        self.assertIn("case 5:[TC_I2C_Open_005] Start!", out)


if __name__ == "__main__":
    unittest.main()
