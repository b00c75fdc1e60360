"""The matrix of docs/av-faults.md: each fault in each judged case of the AV modules.

A source has three devices, so that three faults go into one run of the program. ZK_GOLDEN=write
writes the matrix anew, for a review.
"""
import os
import subprocess
import unittest

import bench

DOCUMENT = os.path.join(bench.SOURCE, "docs/av-faults.md")
DEVICES = 3

# The cases of a column by source, and of that by device.
FAMILIES = [
    # column, name, first number; of YPBPR and of broadcasts another name
    ("VI", "GetVideoInfo", 1, {}),
    ("VO", "VideoEventFlow", 1, {"Ypbpr": "EventFlow"}),
    ("VR", "VideoEventFlow", 41, {"Ypbpr": "EventFlow"}),
    ("VC", "VideoEventInfoChange", 1, {}),
    ("VT", "VideoEventConsumption", 1, {}),
    ("AI", "GetAudioInfo", 1, {"Ypbpr": "AudioInfo"}),
    ("AO", "AudioEventFlow", 1, {}),
    ("AR", "AudioEventFlow", 41, {}),
    ("AC", "AudioEventInfoChange", 1, {}),
    ("AT", "AudioEventConsumption", 1, {}),
    ("P", "Play", 51, {}),
]
# Letter, and of each device the source's word and how far its number lies from a family's first.
SOURCES = [
    ("D", [("Dtv", 0), ("Dtv", 1), ("Dtv", 2)]),
    ("A", [("Atv", 4), ("Atv", 5), ("Atv", 6)]),
    ("H", [("Hdmi", 8), ("Hdmi", 9), ("Hdmi", 10)]),
    ("C", [("Cvbs", 11), ("Cvbs", 12), ("Ypbpr", 13)]),
]
MODULES = ["AV-DTV", "AV-ATV", "AV-HDMI", "AV-CVBS", "AV-YPBPR"]


def case_of(family, device):
    _, name, first, others = family
    word, offset = device
    if word == "Dtv" and name == "VideoEventFlow" and first == 41:
        return "TC_AV_DtvVideoEventFlow_041_0%d" % (offset + 1)
    return "TC_AV_%s%s_%03d" % (word, others.get(word, name), first + offset)


def read_matrix():
    """[line number, fault, cells] of the document, and its lines."""
    with open(DOCUMENT) as file:
        lines = file.read().splitlines()
    rows = []
    for number, line in enumerate(lines):
        cells = [cell.strip() for cell in line.split("|")[1:-1]]
        if len(cells) == 2 + len(FAMILIES) and cells[1].startswith("`"):
            rows.append((number, cells[1].strip("`"), cells))
    return rows, lines


class AvFaultsTest(bench.BenchTest):
    def run_faults(self, faults):
        """The cells of up to three faults."""
        places = [(f, letter, family[0], case_of(family, devices[f]))
                  for f in range(len(faults)) for letter, devices in SOURCES for family in FAMILIES]
        path = self.path("faults")
        with open(path, "w") as file:
            for f, _, _, case in places:
                function, rest = faults[f].split(" ", 1)
                file.write("%s case=%s %s\n" % (function, case, rest))
        chosen = [word for module in MODULES for word in ("--module", module)]
        chosen += [word for place in places for word in ("--name", place[3])]
        done = subprocess.run(bench.RUNNER + ["--quiet", "--auto"] + chosen + [self.folder],
                              env=dict(os.environ, QLX_SIM_FAULTS=path), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, universal_newlines=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        verdicts = {case: result
                    for rows in bench.read_report(os.path.join(self.folder, "report.xls")).values()
                    for _, case, _, result in rows}
        cells = [{family[0]: "" for family in FAMILIES} for _ in faults]
        for f, letter, column, case in places:
            self.assertIn(verdicts[case], ("Pass", "Fail"), case)
            if verdicts[case] == "Fail":
                cells[f][column] += letter
        return [[row[family[0]] for family in FAMILIES] for row in cells]

    def test_each_fault_turns_its_cases(self):
        # The folder may be kept, for its streams are the same from run to run.
        self.folder = os.path.join(bench.BUILD, "av_faults_bench")
        rows, lines = read_matrix()
        self.assertGreater(len(rows), 30)
        self.maxDiff = None
        for at in range(0, len(rows), DEVICES):
            part = rows[at:at + DEVICES]
            got = self.run_faults([fault for _, fault, _ in part])
            for (number, fault, cells), new in zip(part, got):
                if os.environ.get("ZK_GOLDEN") == "write":
                    lines[number] = "|" + "|".join(" %s " % cell if cell else " "
                                                     for cell in cells[:2] + new) + "|"
                else:
                    self.assertEqual(new, cells[2:], fault)
                self.assertTrue(any(new), fault + " turns nothing")
        if os.environ.get("ZK_GOLDEN") == "write":
            with open(DOCUMENT, "w") as file:
                file.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    unittest.main()
