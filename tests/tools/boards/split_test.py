"""A checklist cut into parts for several boards: the merged report is that of the whole run."""
import os
import shutil
import unittest

import xlrd

import boards
from boards import BUILD, BoardTest, run

WHAT = ["--module", "GPIO", "--module", "I2C", "--module", "EEPROM", "--module", "FLASH",
        "--module", "PM"]


def cells(path):
    return {sheet.name: [sheet.row_values(r) for r in range(sheet.nrows)]
            for sheet in xlrd.open_workbook(path).sheets()}


class SplitTest(BoardTest):
    def checklist(self, *words, code=0, name="checklist.xls"):
        done, out = run(os.path.join(BUILD, "mkchecklist"), self.path(name), *words)
        self.assertEqual(done, code, out)
        return out

    def certify(self, name, *words):
        """A run of a rehearsal's package by such a checklist; answers its folder."""
        self.checklist(*words)
        board = self.path("board")
        shutil.rmtree(board, ignore_errors=True)
        os.mkdir(board)
        code, out = run("tar", "-C", board, "-xzf", self.package)
        self.assertEqual(code, 0, out)
        shutil.copy(self.path("checklist.xls"), os.path.join(board, "zktest/checklist.xls"))
        code, out = run(os.path.join(board, "zktest/start.sh"))
        self.assertEqual(code, 0, out[-2000:])
        os.mkdir(self.path(name))
        for file in ("report.xls", "checklist.xls", "console.log"):
            shutil.copy(os.path.join(board, "zktest", file), self.path(name, file))
        return self.path(name)

    def zkreport(self, *words, code=0):
        done, out = run(os.path.join(BUILD, "zkreport"), *words)
        self.assertEqual(done, code, out)
        return out

    def test_the_merged_report_is_that_of_the_whole_run(self):
        self.pack("--rehearsal", "--platform", "mtk9602_eu", "--out", self.package)
        whole = self.certify("whole", *WHAT)
        durations = self.path("durations")
        self.zkreport("write", whole, "--learn", durations)
        shards = [self.certify("shard%d" % i, *WHAT, "--shard", "%d/3" % i, "--durations",
                               durations) for i in (1, 2, 3)]
        self.assertIn("missing of 3 shards: 2", self.zkreport(
            "merge", self.path("merged.xls"), shards[0], shards[2], code=1))
        self.zkreport("merge", self.path("merged.xls"), *shards)
        self.assertEqual(cells(self.path("merged.xls")),
                         cells(os.path.join(whole, "report.xls")))

    def test_parts_take_the_same_time_and_hold_every_case_once(self):
        names = run(os.path.join(BUILD, "mkchecklist"), "--list", "--auto")[1].splitlines()
        names = [line.split("\t")[0] + "/" + line.split("\t")[2] for line in names]
        # One part's work stands at the beginning, as slow cases do.
        took = {name: 60000 if i < 40 else 1000 for i, name in enumerate(names)}
        with open(self.path("durations"), "w") as file:
            file.writelines("%d %s\n" % (ms, name) for name, ms in took.items())
        parts = []
        for i in (1, 2, 3, 4):
            out = run(os.path.join(BUILD, "mkchecklist"), "--list", "--auto", "--shard", "%d/4" % i,
                      "--durations", self.path("durations"))[1]
            parts.append([line.split("\t")[0] + "/" + line.split("\t")[2]
                          for line in out.splitlines()])
        self.assertEqual(sum(parts, []), names)
        times = [sum(took[name] for name in part) for part in parts]
        self.assertLess(max(times), sum(times) / 4 + 60000)

    def test_what_is_no_part_is_refused(self):
        for text in ("0/2", "3/2", "1", "1/2/3", "a/b", "-1/2"):
            self.assertIn("no part", self.checklist("--shard", text, code=2))
        self.assertIn("fewer cases than parts",
                      self.checklist("--module", "GPIO", "--shard", "1/99", code=1))
        with open(self.path("durations"), "w") as file:
            file.write("nonsense\n")
        self.assertIn("line 1", self.checklist("--shard", "1/2", "--durations",
                                               self.path("durations"), code=1))


if __name__ == "__main__":
    unittest.main()
