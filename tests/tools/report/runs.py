"""What the tests of zkreport share: folders of runs, written by a workbook writer that is not ours,
and the program itself.
"""
import json
import os
import shutil
import subprocess
import tempfile
import unittest

import xlwt

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
BUILD = os.environ.get("ZK_BUILD_DIR", os.path.join(SOURCE, "build/debug"))
PROGRAM = os.path.join(BUILD, "zkreport")
SCHEMAS = os.path.join(SOURCE, "tests/tools/report/schemas")
PATIENCE_S = 120

# Exit codes.
FAILED, USAGE, NEW_FAILURE = 1, 2, 4

RED = "\033[1;31m"
RESET = "\033[0m"


def write_report(path, sheets):
    """sheets: {module: [(case, test, result)]}."""
    book = xlwt.Workbook()
    for module, rows in sheets.items():
        sheet = book.add_sheet(module)
        for column, text in enumerate(["ID", "Case", "Test", "Result"]):
            sheet.write(0, column, text)
        for r, (case, test, result) in enumerate(rows):
            for column, value in enumerate([r + 1, case, test, result]):
                sheet.write(r + 1, column, value)
    book.save(path)


def write_checklist(path, sheets, cover=("cover",)):
    """sheets: {module: [(case, mark)]}."""
    book = xlwt.Workbook()
    first = book.add_sheet("Cover")
    for r, text in enumerate(cover):
        first.write(r, 0, text)
    for module, rows in sheets.items():
        sheet = book.add_sheet(module)
        for column, text in enumerate(["No.", "Case", "Description", "Kind", "Test"]):
            sheet.write(0, column, text)
        for r, (case, mark) in enumerate(rows):
            sheet.write(r + 1, 1, case)
            sheet.write(r + 1, 2, "Describes " + case)
            sheet.write(r + 1, 4, mark)
        sheet.write(len(rows) + 1, 0, "End of sheet")
    book.save(path)


class Console:
    """The console's log of a run, with the device's clock."""

    def __init__(self):
        self.pieces = []
        self.us = 0

    @property
    def text(self):
        return "".join(self.pieces)

    def line(self, text, before=""):
        return self.raw("%s[%d.%d]%s\r\n" % (before, self.us // 1000000, self.us % 1000000, text))

    def raw(self, text):
        self.pieces.append(text)
        return self

    def start(self, at_s=1000):
        self.us = at_s * 1000000
        return self.line("Test case will automatic running in 10s ")

    def setup(self, module):
        return self.line("[%s] module setup!!!  " % module)

    def begin(self, number, case):
        return self.line("case %d:[%s] Start! " % (number, case))

    def end(self, number, case, word, took_ms=0):
        self.us += took_ms * 1000
        return self.line("case %d:[%s] %s! " % (number, case, word), before=RESET)

    def case(self, number, case, word="SUCCESS", took_ms=0, inside=""):
        return self.begin(number, case).raw(inside).end(number, case, word, took_ms)

    def monitor_reboot(self):
        self.us += 301 * 1000000
        return self.line("mornitor proc can't get any response form main test proc in 5 mins, "
                         "reboot system ")

    def over(self):
        return self.line("mornitor proc receive the message that all the cases has been tested, "
                         "mornitor proc will quit ")


class ReportTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="zk_report_")
        self.addCleanup(shutil.rmtree, self.dir, ignore_errors=True)

    def path(self, *names):
        path = os.path.join(self.dir, *names)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        return path

    def write(self, name, text):
        with open(self.path(name), "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        return self.path(name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read().decode()

    def run_folder(self, name, report, checklist=None, log=None):
        """A folder as a run leaves it; answers its path."""
        write_report(self.path(name, "report.xls"), report)
        if checklist:
            write_checklist(self.path(name, "checklist.xls"), checklist)
        if log is not None:
            text = log.text if isinstance(log, Console) else log
            self.write(os.path.join(name, "console.log"), text)
        return self.path(name)

    def zkreport(self, *words, code=0):
        """Runs it; answers standard output, or standard error when it is to refuse its input."""
        done = subprocess.run([PROGRAM, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=PATIENCE_S, cwd=self.dir)
        out, err = done.stdout.decode(), done.stderr.decode()
        self.assertEqual(done.returncode, code, out + err)
        return err if code in (FAILED, USAGE) else out

    def lines(self, folder, *words):
        """The JSON lines of a run: (run, restarts, {"MODULE/CASE": row})."""
        text = self.zkreport("write", folder, "--jsonl", "-", *words)
        lines = [json.loads(line) for line in text.splitlines()]
        self.assertEqual(lines[0]["kind"], "run")
        self.assertEqual(lines[-1]["kind"], "end")
        rows = [line for line in lines if line["kind"] == "row"]
        self.assertEqual(lines[-1]["rows"], len(rows))
        restarts = [line for line in lines if line["kind"] == "restart"]
        return lines[0], restarts, {row["module"] + "/" + row["case"]: row for row in rows}
