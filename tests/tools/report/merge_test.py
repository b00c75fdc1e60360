"""The reports of a split run joined to that of the whole, and every way in which that cannot be."""
import os
import unittest

import xlrd

import runs
from runs import FAILED, ReportTest

CASES = {"GPIO": 3, "Tuner": 5, "PM": 2}
MANUAL = {"TC_Tuner_3"}
# Marks of the whole checklist: all but one row.
UNMARKED = {"TC_Tuner_4"}


def cells(path):
    return {sheet.name: [sheet.row_values(r) for r in range(sheet.nrows)]
            for sheet in xlrd.open_workbook(path).sheets()}


class MergeTest(ReportTest):
    def rows(self, module, marked):
        """The rows that a run reports of a module's sheet, and those of its checklist."""
        report, checklist = [], []
        for i in range(CASES[module]):
            case = "TC_%s_%d" % (module, i + 1)
            mark = "Y" if case in marked else "N"
            word = "Manual" if case in MANUAL else "N/A" if mark == "N" else \
                "Fail" if i % 3 == 1 else "Pass"
            report.append((case, mark, word))
            checklist.append((case, mark))
        return report, checklist

    def part(self, name, marked, cover):
        """A folder with the run of a part: modules in which nothing is marked have no sheet."""
        modules = [m for m in CASES if any(("TC_%s_%d" % (m, i + 1)) in marked
                                           for i in range(CASES[m]))]
        both = {m: self.rows(m, marked) for m in modules}
        folder = self.run_folder(name, {m: b[0] for m, b in both.items()})
        runs.write_checklist(os.path.join(folder, "checklist.xls"),
                             {m: b[1] for m, b in both.items()}, cover)
        return folder

    def shards(self, *cut):
        """Parts that hold the rows up to each place of `cut`, and the report of the whole."""
        every = ["TC_%s_%d" % (m, i + 1) for m in CASES for i in range(CASES[m])]
        marked = [case for case in every if case not in UNMARKED]
        whole = self.part("whole", set(marked), ["a checklist"])
        folders = []
        for i, (begin, end) in enumerate(zip((0,) + cut, cut + (len(marked),))):
            mark = "Shard %d of %d of checklist 0123abcd" % (i + 1, len(cut) + 1)
            folders.append(self.part("shard%d" % (i + 1), set(marked[begin:end]), ["a", mark]))
        return whole, folders

    def merged(self, *folders, code=0):
        return self.zkreport("merge", self.path("merged.xls"), *folders, code=code)

    def test_the_merged_report_is_that_of_the_whole_run(self):
        for cut in [(3,), (1, 4, 7), (2, 8), (4, 5, 6)]:
            whole, folders = self.shards(*cut)
            self.assertIn("10 rows", self.merged(*reversed(folders)))
            self.assertEqual(cells(self.path("merged.xls")),
                             cells(os.path.join(whole, "report.xls")))

    def refused(self, folders, *parts):
        message = self.merged(*folders, code=FAILED)
        for part in parts:
            self.assertIn(part, message)
        self.assertFalse(os.path.exists(self.path("merged.xls")))

    def test_missing_double_and_foreign_shards_are_named(self):
        whole, folders = self.shards(1, 4, 7)
        self.refused(folders[:1] + folders[3:], "missing of 4 shards: 2, 3")
        self.refused(folders + folders[:1], "shard 1 is there twice")
        self.refused(folders + [whole], "whole/checklist.xls", "no part of a split checklist")
        other = self.part("other", {"TC_GPIO_1"}, ["Shard 4 of 4 of checklist 9999"])
        self.refused(folders[:3] + [other], "does not go with")
        os.remove(os.path.join(folders[1], "report.xls"))
        self.refused(folders, "shard2: there is no report.xls")

    def test_unfinished_shards_are_named(self):
        _, folders = self.shards(4)
        report = dict(cells(os.path.join(folders[1], "report.xls")))
        rows = {m: [tuple(row[1:]) for row in sheet[1:]] for m, sheet in report.items()}
        path = os.path.join(folders[1], "report.xls")
        runs.write_report(path, {"Tuner": rows["Tuner"], "PM": rows["PM"][:1]})
        self.refused(folders, "shard 2 is unfinished", "PM row 2")
        runs.write_report(path, {"Tuner": rows["Tuner"]})
        self.refused(folders, "shard 2 is unfinished", "PM row 2")
        runs.write_report(path, dict(rows, PM=[rows["PM"][0], rows["PM"][1][:2] + ("Block",)]))
        self.refused(folders, "shard 2 is unfinished", 'PM row 2 is "Block"')
        runs.write_report(path, {"Tuner": rows["Tuner"][:-1], "PM": rows["PM"]})
        self.refused(folders, "shard 2 has no verdict for Tuner row 5")
        # A module whose set-up failed on one board only: its rows there are in no report.
        runs.write_report(path, {"PM": rows["PM"]})
        self.refused(folders, "shard 2 has no verdict for Tuner row 2, TC_Tuner_2")

    def test_a_report_of_another_checklist_is_refused(self):
        _, folders = self.shards(4)
        runs.write_report(os.path.join(folders[0], "report.xls"),
                          {"GPIO": [("TC_OTHER", "Y", "Pass")] * 3})
        self.refused(folders, "GPIO row 1 is not the one of")

    def test_a_module_whose_setup_fails_everywhere_is_left_out_as_in_a_whole_run(self):
        whole, folders = self.shards(4)
        for folder in folders + [whole]:
            path = os.path.join(folder, "report.xls")
            rows = {m: [tuple(row[1:]) for row in sheet[1:]] for m, sheet in cells(path).items()
                    if m != "GPIO"}
            runs.write_report(path, rows)
        self.merged(*folders)
        self.assertEqual(cells(self.path("merged.xls")), cells(os.path.join(whole, "report.xls")))
        self.assertNotIn("GPIO", cells(self.path("merged.xls")))


if __name__ == "__main__":
    unittest.main()
