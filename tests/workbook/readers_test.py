"""What we save, xlrd reads; what xlwt saves, we read."""
import os
import subprocess
import sys
import tempfile
import unicodedata
import unittest

import xlrd
import xlwt

TOOL = sys.argv.pop()
os.environ["ZK_REPORT_SYNC"] = "0"


def dump(path):
    """Our reading of a workbook: per sheet its name, last row and {(row, col): text}."""
    output = subprocess.run([TOOL, "dump", path], stdout=subprocess.PIPE, check=True).stdout
    sheets = []
    for line in output.decode("utf-8").rstrip("\n").split("\n"):
        kind, *fields = line.split("\t")
        if kind == "sheet":
            assert fields[2] == "No error", line
            sheets.append((fields[0], int(fields[1]), {}))
        else:
            sheets[-1][2][int(fields[0]), int(fields[1])] = fields[2]
    return sheets


class Readers(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = os.path.join(self.folder.name, "book.xls")

    def tool(self, command, *arguments):
        subprocess.run([TOOL, command, self.path, *map(str, arguments)], check=True)

    def test_a_whole_report(self):
        self.tool("write", 40, 4200)
        book = xlrd.open_workbook(self.path)
        self.assertEqual(book.sheet_names(), ["Module-%d" % (i + 1) for i in range(40)])
        for sheet in book.sheets():
            self.assertEqual(sheet.nrows, 106)
            self.assertEqual(sheet.row_values(0), ["ID", "Case", "Test", "Result"])
            for row in range(1, 106):
                name = "TC_Module_Function_with_a_long_name_%d" % row
                verdict = "Fail" if row % 3 == 0 else "Pass"
                self.assertEqual(sheet.row_values(row), [row, name, "Y", verdict])

    def test_strings_at_the_end_of_a_record(self):
        for length in range(8180, 8230):
            self.tool("strings", length)
            sheet = xlrd.open_workbook(self.path).sheet_by_index(0)
            self.assertEqual(sheet.name, "中文")
            texts = ["a" * length, "bc", "中文", "déjà vu", "e" * 20000 + "中文", "😀",
                     "bad\ufffdbytes"]
            self.assertEqual(sheet.col_values(0)[:7], texts)
            self.assertEqual(sheet.col_values(1)[7:], [0, -1, 536870911, 536870912, -2**31])

    def test_a_report_of_more_than_seven_megabytes(self):
        self.tool("write", 3, 120000)
        book = xlrd.open_workbook(self.path)
        self.assertGreater(os.path.getsize(self.path), 8000000)
        self.assertEqual(book.sheet_by_index(2).cell_value(40000, 1),
                         "TC_Module_Function_with_a_long_name_40000")

    def test_a_checklist_of_another_writer(self):
        for encoding in ("ascii", "utf-8"):
            book = xlwt.Workbook(encoding=encoding)
            expected = []
            bold = xlwt.easyxf("font: bold on; pattern: pattern solid, fore_colour yellow")
            for name, rows in (("Cover", 0), ("GPIO", 20), ("Demux-ATSC", 3000), ("Üben", 5)):
                sheet = book.add_sheet(name)
                cells = {}
                for row in range(rows):
                    text = "TC_%s_%d_%s" % (name, row, "ü" if row % 7 == 0 else "x" * (row % 300))
                    sheet.write(row, 1, text, bold)
                    sheet.write(row, 4, "Y" if row % 2 else "N")
                    cells[row, 1] = text
                    cells[row, 4] = "Y" if row % 2 else "N"
                expected.append((name, max(rows - 1, 0), cells))
            book.save(self.path)
            self.assertEqual(dump(self.path), expected)

    def test_code_pages(self):
        # Where two tables of one page differ, both are in use: the delta or the increment, the
        # maker's sign, and what became of the currency sign.
        differ = {"mac_roman": (0xC6, 0xF0), "mac_cyrillic": (0xA2, 0xFF)}
        pages = {number: f"cp{number}" for number in (
            437, 720, 737, 775, 850, 852, 855, 857, 858, 860, 861, 862, 863, 864, 865, 866, 869,
            874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258)}
        pages.update({10000: "mac_roman", 10006: "mac_greek", 10007: "mac_cyrillic",
                      10029: "mac_latin2", 10081: "mac_turkish"})
        for number, codec in pages.items():
            output = subprocess.run([TOOL, "codepage", str(number)], stdout=subprocess.PIPE,
                                    check=True).stdout.decode("utf-8")
            for byte, text in zip(range(0x20, 0x100), output.split("\n")):
                with self.subTest(codec=codec, byte=hex(byte)):
                    wanted = "x" + bytes([byte]).decode(codec, "replace")
                    if byte not in differ.get(codec, ()):
                        self.assertEqual(text, unicodedata.normalize("NFC", wanted))

    def test_kinds_of_cells_of_another_writer(self):
        book = xlwt.Workbook()
        sheet = book.add_sheet("Kinds")
        rich = (("ri", xlwt.easyfont("bold on")), "ch")
        sheet.write_rich_text(0, 0, rich)
        for col, value in enumerate((5, -2.5, 1e300, True, False, 0.01, 123456789), 1):
            sheet.write(0, col, value)
        sheet.write(1, 0, "")
        sheet.write(1, 1, None)
        sheet.row(2).set_cell_error(0, 0x2A)
        sheet.write_merge(3, 9, 0, 2, "merged")
        sheet.col(0).width = 9000
        hidden = book.add_sheet("Hidden")
        hidden.visibility = 1
        hidden.row(11).height = 500
        book.save(self.path)
        kinds, second = dump(self.path)
        self.assertEqual(kinds[2], {
            (0, 0): "rich", (0, 1): "5", (0, 2): "-2.5", (0, 3): "1e+300", (0, 4): "TRUE",
            (0, 5): "FALSE", (0, 6): "0.01", (0, 7): "123456789", (2, 0): "#N/A",
            (3, 0): "merged"})
        self.assertEqual(kinds[1], 9)
        self.assertEqual(second, ("Hidden", 11, {}))


if __name__ == "__main__":
    unittest.main()
