"""Recovery: a case that hangs, reboot commands that kill one process or both, processes killed at
any moment, and runs that repeat to the byte."""
import os
import random
import re
import signal
import subprocess
import unittest

import bench

MODULES = ("GPIO", "I2C")
HUNG = "TC_I2C_Open_005"
# More of them make a longer test.
KILLS = int(os.environ.get("ZK_KILLS", "45"))


def cases(module):
    return [(name, auto) for m, _, name, auto, _ in bench.list_cases() if m == module]


class RecoveryTest(bench.BenchTest):
    def setUp(self):
        super().setUp()
        bench.write_checklist(self.path("checklist.xls"),
                              [(m, [(name, "Y") for name, _ in cases(m)]) for m in MODULES])

    def reboot_command(self, *lines):
        self.write("reboot.sh", "#!/bin/sh\necho reboot >> reboots\n" + "\n".join(lines) + "\n")

    def reboots(self):
        return len(self.read("reboots").splitlines()) if os.path.exists(self.path("reboots")) else 0

    def check_whole_report(self, lost):
        """Every row is there; those that a death took have "N/A", and all other automatic ones their
        verdict, but for the last one of a finished sheet, which a resumed run does not read back."""
        report = self.report()
        self.assertEqual(list(report), list(MODULES))
        for module in MODULES:
            self.assertEqual([row[1] for row in report[module]], [n for n, _ in cases(module)])
            for (name, auto), row in zip(cases(module), report[module]):
                if name in lost:
                    self.assertEqual(row[3], "N/A", name)
                elif auto and (module == MODULES[-1] or row is not report[module][-1]):
                    self.assertEqual(row[3], "Pass", name)
                else:
                    self.assertIn(row[3], ("Pass", "Manual", "N/A"), name)

    def seconds(self, out, text):
        """The time stamps of the lines that hold a text, in microseconds."""
        found = re.findall(r"\[(\d+)\.(\d+)\][^\n\[]*" + re.escape(text), out)
        return [int(s) * 1000000 + int(us) for s, us in found]

    def test_a_hang_is_answered_after_301_silent_polls_and_the_run_resumes(self):
        for seed in (None, 1, 2):
            with self.subTest(seed=seed):
                for name in ("report.xls", "reboots"):
                    if os.path.exists(self.path(name)):
                        os.remove(self.path(name))
                code, out = self.auto(seed=seed, faults=[f"QLX_I2COpen case={HUNG} hang"])
                self.assertEqual(code, -signal.SIGKILL)
                self.assertEqual(self.reboots(), 1)
                # The last silence begins with poll 1 and reboots at poll 301, a second each.
                quiet = self.seconds(out, "start the cutdown (5 mins) for reboot system")[-1]
                reboot = self.seconds(out, "in 5 mins, reboot system")
                self.assertEqual(len(reboot), 1)
                self.assertEqual(reboot[0] - quiet, 300 * 1000000)
                self.assertEqual(self.report()["I2C"][-1][1::2], (HUNG, "Block"))
                code, out = self.auto(seed=seed)
                self.assertEqual(code, 0)
                self.assertIn("mornitor proc will quit", out)
                self.check_whole_report({HUNG})
                self.assertEqual(self.reboots(), 1)

    def test_a_reboot_command_that_kills_one_process_or_both(self):
        # The program leads its process group; the monitor is its only child.
        both = "main=$(ps -o pgid= -p $$); monitor=$(pgrep -P $main)"
        commands = {
            # The monitor survives: nobody is left to write, so it reboots each second until the
            # device is gone for good.
            "main": ("[ $(wc -l < reboots) -lt 4 ] || kill -9 0", both, "kill -9 $main"),
            # The hung main process outlives its monitor for a moment.
            "monitor": (both, "kill -9 $monitor", "kill -9 $main"),
            "both": (both, "kill -9 $main $monitor"),
        }
        for victim, lines in commands.items():
            with self.subTest(victim=victim):
                for name in ("report.xls", "reboots"):
                    if os.path.exists(self.path(name)):
                        os.remove(self.path(name))
                self.reboot_command(*lines)
                self.auto(faults=[f"QLX_I2COpen case={HUNG} hang"])
                out = self.read("console.log")
                self.assertEqual(self.reboots(), 4 if victim == "main" else 1)
                if victim == "main":
                    times = self.seconds(out, "in 5 mins, reboot system")
                    self.assertEqual([t - times[0] for t in times[:4]],
                                     [n * 1000000 for n in range(4)])
                self.assertEqual(self.auto()[0], 0)
                self.check_whole_report({HUNG})
                os.remove(self.path("console.log"))

    def kill_at_line(self, victim, line, seed):
        """Starts the program, kills at a line of its output; answers whether there was one."""
        process = self.start("auto", stdout=subprocess.PIPE, seed=seed)
        monitor = None
        killed = False
        with process.stdout as output:
            for number, text in enumerate(output):
                found = re.search(rb"The pid of mornitor is (\d+)", text)
                monitor = int(found.group(1)) if found else monitor
                if number < line or killed or (victim != "main" and monitor is None):
                    continue
                killed = True
                for pid in {"main": [process.pid], "monitor": [monitor],
                            "both": [process.pid, monitor]}[victim]:
                    try:
                        os.kill(pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass
        code = process.wait(timeout=bench.PATIENCE_S)
        self.wait_for_group(process.pid)
        if not killed:
            self.assertEqual(code, 0)
        return killed

    def test_kills_at_any_moment(self):
        chance = random.Random(7)
        # Some starts fall in the replay of what is done, most behind it.
        length = 3 * sum(len(cases(m)) for m in MODULES)
        kills = 0
        completed = 0
        while kills < KILLS:
            if os.path.exists(self.path("report.xls")):
                os.remove(self.path("report.xls"))
            deaths = 0
            while self.kill_at_line(("main", "monitor", "both")[kills % 3],
                                    chance.randrange(length), kills if kills % 2 else None):
                kills += 1
                deaths += 1
                # A reader finds the old file or the new one, whole.
                if os.path.exists(self.path("report.xls")):
                    for rows in self.report().values():
                        self.assertLessEqual({row[3] for row in rows},
                                             {"Pass", "N/A", "Manual", "Block"})
                if deaths >= 8:
                    self.auto()
                    break
            completed += 1
            report = self.report()
            self.assertEqual(list(report), list(MODULES))
            lost = {row[1] for rows in report.values() for row in rows if row[3] == "N/A"}
            automatic = {name for m in MODULES for name, auto in cases(m) if auto}
            # A death takes the row that it falls in, and a finished sheet's last row is not read
            # back.
            self.assertLessEqual(len(lost & automatic), deaths + len(MODULES))
            for module in MODULES:
                self.assertEqual([row[1] for row in report[module]], [n for n, _ in cases(module)])
        self.assertGreater(completed, KILLS // 15)

    def test_a_run_repeats_to_the_byte(self):
        for seed in (None, 3):
            runs = set()
            for _ in range(2):
                for name in ("report.xls", "console.log"):
                    if os.path.exists(self.path(name)):
                        os.remove(self.path(name))
                _, out = self.auto(seed=seed)
                with open(self.path("report.xls"), "rb") as file:
                    report = file.read()
                runs.add((re.sub(r"pid of mornitor is \d+|0x[0-9a-f]+", "", out), report))
            self.assertEqual(len(runs), 1, seed)


if __name__ == "__main__":
    unittest.main()
