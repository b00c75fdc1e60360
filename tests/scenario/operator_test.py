"""What docs/operator.md tells of the program itself: old reports, the console's "0", closed
terminals."""
import os
import pty
import re
import signal
import time
import unittest

import bench

MODULES = ("GPIO", "I2C")


class ChecklistTest(bench.BenchTest):
    """A test with a checklist that marks all of two modules."""

    def setUp(self):
        super().setUp()
        self.rows = {m: [name for module, _, name, _, _ in bench.list_cases() if module == m]
                     for m in MODULES}
        bench.write_checklist(self.path("checklist.xls"),
                              [(m, [(name, "Y") for name in self.rows[m]]) for m in MODULES])


class ReportTest(ChecklistTest):
    def test_a_zero_at_the_console_replaces_the_report(self):
        self.auto()
        self.assertEqual(set(self.report()), set(MODULES))
        code, _ = self.session("5", "2", "0", "q", "q")
        self.assertEqual(code, 0)
        self.assertEqual(set(self.report()), {"I2C"})
        # A single case leaves it alone, and so does a session that runs nothing.
        before = self.report()
        self.session("5", "1", "3", "q", "q")
        self.assertEqual(self.report(), before)

    def test_only_pass_and_fail_come_back_from_an_old_report(self):
        rows = [(name, "Y") for name in self.rows["I2C"]]
        rows[2] = ("TC_Renamed", "Y")
        bench.write_checklist(self.path("checklist.xls"),
                              [("GPIO", [(name, "Y") for name in self.rows["GPIO"]]), ("I2C", rows)])
        faults = ["QLX_I2CClose case=TC_I2C_Open_002 return=77",
                  "QLX_I2COpen case=TC_I2C_ReadWrite_001 kill"]
        self.auto(faults=faults)
        words = [row[3] for row in self.report()["I2C"]]
        self.assertEqual(words[:4], ["Pass", "Fail", "NoMatch", "Pass"])
        self.assertEqual(words[-1], "Block")
        # Another firmware that has none of these faults: what is in the report is not run again.
        _, out = self.auto()
        self.assertNotIn("[TC_I2C_Open_002] Start!", out)
        again = [row[3] for row in self.report()["I2C"]]
        self.assertEqual(again[:4], ["Pass", "Fail", "N/A", "Pass"])
        self.assertEqual(again[len(words) - 1], "N/A")
        self.assertEqual([row[3] for row in self.report()["GPIO"]].count("Manual"), 0)
        # Without the old report everything runs.
        os.remove(self.path("report.xls"))
        self.auto()
        self.assertEqual([row[3] for row in self.report()["I2C"]][:4],
                         ["Pass", "Pass", "NoMatch", "Pass"])


class TerminalTest(ChecklistTest):
    def start_on_a_terminal(self, words, hangup, faults=()):
        """Starts the program as the leader of a terminal's session; answers its number and the
        terminal's other end."""
        environment = dict(self.environment)
        self.write("faults", "\n".join(faults) + "\n")
        environment["QLX_SIM_FAULTS"] = self.path("faults")
        pid, terminal = pty.fork()
        if pid == 0:
            bench.die_with_the_test()
            signal.signal(signal.SIGHUP, hangup)
            os.chdir(self.dir)
            os.execve(words[0], words, environment)
        self.groups.append(pid)
        return pid, terminal

    def read_until(self, terminal, text):
        out = b""
        while text not in out:
            out += os.read(terminal, 65536)
        return out

    def wait_for(self, pid):
        for _ in range(bench.PATIENCE_S * 50):
            ended, status = os.waitpid(pid, os.WNOHANG)
            if ended:
                return status
            time.sleep(0.02)
        self.fail("process %d does not end" % pid)

    def test_closing_the_terminal_ends_program_and_monitor(self):
        # In real time: the case hangs, and the monitor has five minutes of patience left.
        pid, terminal = self.start_on_a_terminal(
            [bench.PROGRAM, "auto"], signal.SIG_DFL,
            faults=["QLX_I2COpen case=TC_I2C_Open_005 hang"])
        out = self.read_until(terminal, b"[TC_I2C_Open_005] Start!")
        monitor = int(re.search(rb"The pid of mornitor is (\d+)", out).group(1))
        os.close(terminal)
        self.assertEqual(os.WTERMSIG(self.wait_for(pid)), signal.SIGHUP)
        self.assertEqual(os.WTERMSIG(self.wait_for(monitor)), signal.SIGHUP)
        # Nobody restarts the device; the report ends with the row, and the next start goes on.
        self.assertFalse(os.path.exists(self.path("reboots")))
        self.assertEqual(self.report()["I2C"][-1][1::2], ("TC_I2C_Open_005", "Block"))
        self.assertEqual(self.auto()[0], 0)
        words = [row[3] for row in self.report()["I2C"]]
        self.assertEqual((words[3], words[4], words[5]), ("Pass", "N/A", "Pass"))

    def test_a_run_that_ignores_the_hang_up_goes_on(self):
        pid, terminal = self.start_on_a_terminal(bench.command(bench.PROGRAM, "auto"),
                                                 signal.SIG_IGN)
        self.read_until(terminal, b"automatic running in 10s")
        os.close(terminal)
        status = self.wait_for(pid)
        self.assertEqual((os.WIFEXITED(status), os.WEXITSTATUS(status)), (True, 0))
        self.assertEqual(len(self.report()["I2C"]), len(self.rows["I2C"]))
        self.assertNotIn("Block", [row[3] for row in self.report()["I2C"]])


if __name__ == "__main__":
    unittest.main()
