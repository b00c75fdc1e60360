"""What scenario tests share: a bench folder of their own, the program run in it, workbooks.

A test runs the real program in virtual time when the launcher is built, so that no test waits for
real. ZK_BUILD_DIR names the folder of the built programs.
"""
import ctypes
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import xlrd
import xlwt

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.environ.get("ZK_BUILD_DIR", os.path.join(SOURCE, "build/debug"))
PROGRAM = os.path.join(BUILD, "zktest")
LAUNCHER = os.path.join(BUILD, "vclock/run")
# By name: EXIT["STANDBY"].
with open(os.path.join(SOURCE, "common/exit_codes.h"), encoding="ascii") as header:
    EXIT = {name: int(code) for name, code in re.findall(r"EXIT_(\w+) = (\d+)", header.read())}
# The runner; it is told where the programs are, for those under test need not lie beside it.
RUNNER = [os.path.join(BUILD, "zkbench"), "--build", BUILD, "--source", SOURCE]
# Real seconds after which a program that hangs is a failed test.
PATIENCE_S = 300

# Monitors that outlive their program become children of this process, so that it can collect them.
PR_SET_CHILD_SUBREAPER = 36
PR_SET_PDEATHSIG = 1
LIBC = ctypes.CDLL(None)
LIBC.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def die_with_the_test():
    """In a program about to start: a test that is killed leaves nothing behind that polls on."""
    LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)



def command(*words, seed=None):
    """The words that run a program in virtual time."""
    # No run lasts half a year: what sleeps for ever must not outlive its test.
    prefix = [LAUNCHER, "--limit", "15000000"] + (["--seed", str(seed)] if seed is not None else [])
    return prefix + list(words)


def list_cases():
    """All cases of the build: (module, number, name, automatic, description)."""
    out = subprocess.run([os.path.join(BUILD, "mkchecklist"), "--list"], check=True,
                         stdout=subprocess.PIPE, universal_newlines=True).stdout
    rows = [line.split("\t") for line in out.splitlines()]
    return [(m, int(n), name, flag == "1", text) for m, n, name, flag, text in rows]


def write_checklist(path, sheets, closing=True):
    """A checklist by a writer that is not ours. sheets: [(name, [(case, mark)])]."""
    book = xlwt.Workbook()
    book.add_sheet("Cover").write(0, 0, "cover")
    for name, rows in sheets:
        sheet = book.add_sheet(name)
        for column, text in enumerate(["No.", "Case", "Description", "Kind", "Test"]):
            sheet.write(0, column, text)
        for r, (case, mark) in enumerate(rows):
            sheet.write(r + 1, 0, r + 1)
            sheet.write(r + 1, 1, case)
            sheet.write(r + 1, 4, mark)
        if closing:
            sheet.write(len(rows) + 1, 0, "End of sheet")
    book.save(path)


def read_report(path):
    """A report by a reader that is not ours: {sheet: [(id, case, test, result)]}."""
    book = xlrd.open_workbook(path)
    report = {}
    for sheet in book.sheets():
        rows = [tuple(sheet.row_values(r)) for r in range(sheet.nrows)]
        assert rows[0] == ("ID", "Case", "Test", "Result"), rows[0]
        report[sheet.name] = [(int(i), case, test, result) for i, case, test, result in rows[1:]
                              if i != ""]
    return report


class BenchTest(unittest.TestCase):
    """A test with a bench folder: the configuration tree, and a reboot command as the bench has."""

    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="zk_bench_")
        shutil.copytree(os.path.join(SOURCE, "config"), self.path("config"))
        self.write("reboot.sh", "#!/bin/sh\necho reboot >> reboots\nkill -9 0\n")
        os.chmod(self.path("reboot.sh"), 0o755)
        self.environment = dict(os.environ, QLX_SIM_ROOT=self.path("device"), ZK_REPORT_SYNC="0")
        self.groups = []

    def tearDown(self):
        for group in self.groups:
            try:
                os.killpg(group, signal.SIGKILL)
            except ProcessLookupError:
                pass
        shutil.rmtree(self.dir, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, text):
        with open(self.path(name), "w") as file:
            file.write(text)

    def read(self, name):
        with open(self.path(name), errors="replace") as file:
            return file.read()

    def start(self, *arguments, stdin=subprocess.DEVNULL, stdout=None, seed=None, faults=None):
        """Starts the program in a process group of its own."""
        environment = dict(self.environment)
        if faults:
            self.write("faults", "\n".join(faults) + "\n")
            environment["QLX_SIM_FAULTS"] = self.path("faults")
        process = subprocess.Popen(command(PROGRAM, *arguments, seed=seed), cwd=self.dir,
                                   env=environment, stdin=stdin, stdout=stdout,
                                   stderr=subprocess.STDOUT, start_new_session=True,
                                   preexec_fn=die_with_the_test)
        self.groups.append(process.pid)
        return process

    def session(self, *lines, arguments=(), seed=None, faults=None):
        """A console session: the lines that the operator types; answers (exit code, output)."""
        process = self.start(*arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, seed=seed,
                             faults=faults)
        text = "".join(line + "\n" for line in lines).encode()
        out, _ = process.communicate(text, timeout=PATIENCE_S)
        return process.returncode, out.decode(errors="replace")

    def auto(self, seed=None, faults=None):
        """One start of an unattended run, until nothing of it runs any more; answers (exit code,
        what it printed)."""
        log = self.path("console.log")
        begin = os.path.getsize(log) if os.path.exists(log) else 0
        with open(log, "ab") as out:
            process = self.start("auto", stdout=out, seed=seed, faults=faults)
        code = process.wait(timeout=PATIENCE_S)
        self.wait_for_group(process.pid)
        with open(log, errors="replace") as file:
            file.seek(begin)
            return code, file.read()

    def wait_for_group(self, group):
        """Waits until the monitor has ended too; it is bounded by the test's time-out."""
        for _ in range(PATIENCE_S * 50):
            try:
                os.killpg(group, 0)
            except ProcessLookupError:
                return
            try:
                os.waitpid(-group, os.WNOHANG)
            except ChildProcessError:
                pass
            time.sleep(0.02)
        self.fail("processes of the run are still there")

    def report(self):
        return read_report(self.path("report.xls"))
