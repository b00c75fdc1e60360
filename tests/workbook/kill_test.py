"""A report is whole, and holds every row that was announced, however the program ends."""
import os
import signal
import subprocess
import sys
import tempfile
import unittest

import xlrd

TOOL = sys.argv.pop()


class Kill(unittest.TestCase):
    def rows(self, path):
        """The finished rows of a report, all of which must be whole and in order."""
        count = 0
        for sheet in xlrd.open_workbook(path).sheets():
            self.assertEqual(sheet.row_values(0), ["ID", "Case", "Test", "Result"])
            for row in range(1, sheet.nrows):
                number, name, test, verdict = sheet.row_values(row)
                self.assertEqual((number, test), (row, "Y"))
                self.assertEqual(name, "TC_Module_Function_with_a_long_name_%d" % row)
                count += verdict == "Pass"
        return count

    def kill_during_saves(self, folder, sync, kills):
        path = os.path.join(folder, "report.xls")
        tool = None
        for kill in range(kills):
            # The killed save's temporary file stays for the next run to overwrite.
            tool = subprocess.Popen([TOOL, "grow", path], stdout=subprocess.PIPE,
                                    env=dict(os.environ, ZK_REPORT_SYNC=sync))
            announced = 0
            for _ in range(1 + kill * 37 % 101):
                announced = int(tool.stdout.readline())
            tool.send_signal(signal.SIGKILL)
            # It went on saving until the signal came: those rows are announced too.
            announced = max([announced] + [int(n) for n in tool.stdout.read().split(b"\n")[:-1]])
            tool.stdout.close()
            self.assertEqual(tool.wait(), -signal.SIGKILL)
            # Up to two saves, of a row's verdict and of the next row, were not announced yet.
            self.assertIn(self.rows(path), (announced, announced + 1))
            dumped = subprocess.run([TOOL, "dump", path], stdout=subprocess.PIPE, check=True)
            self.assertGreaterEqual(dumped.stdout.count(b"\tPass\n"), announced)

    def test_without_sync(self):
        with tempfile.TemporaryDirectory() as folder:
            self.kill_during_saves(folder, "0", 60)

    def test_with_sync(self):
        with tempfile.TemporaryDirectory() as folder:
            self.kill_during_saves(folder, "1", 12)


if __name__ == "__main__":
    unittest.main()
