"""The manual tuner cases with an operator: prompts answered, cables pulled, the generator set.

The operator is a script that reads the console, and plays what it is asked for by events of the
simulated device (docs/simulator-events.md). Each case is gone through with a faithful operator, and
the kinds of case once with one who does something else."""
import os
import re
import select
import subprocess
import time
import unittest

import bench

# Transmissions of the satellite tables, as the prompt names them: FEC type, modulation.
TRANSMISSIONS = {"DVBS(QPSK)": (1, 2), "DVBS2(QPSK)": (2, 2), "DVBS2(8PSK)": (2, 4)}

# What the generator is set to beside the transmission: code rate, symbol rate.
TABLES = {
    "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001": (4, 30000000),
    "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_002": (4, 3000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_001": (4, 20000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_002": (4, 5000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_003": (4, 30000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_004": (4, 5000000),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_001": (2, 30000000),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_002": (4, 30000000),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_003": (16, 30000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_001": (2, 20000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_002": (4, 20000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_003": (16, 20000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_004": (2, 30000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_005": (4, 30000000),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_006": (16, 30000000),
}
ROW_PROMPT = r"press 999  to stop case, press caseNum key 0-(\d+) to continue"
PLAY_PROMPT = r"Please  play the  stream as (RFLevel|CN_input|CNR): (-?[\d.]+), press any key"


class ManualTunerTest(bench.BenchTest):
    """One program per test, at the list of cases of module Tuner."""

    def setUp(self):
        super().setUp()
        self.control = self.path("control.txt")
        self.write("control.txt", "")
        self.environment["QLX_SIM_CONTROL"] = self.control
        self.numbers = {name: n for m, n, name, _, _ in bench.list_cases() if m == "Tuner"}
        self.program = self.start(stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.text = ""
        self.type("5")
        self.type("3")

    def tearDown(self):
        self.type("q")
        self.type("q")
        self.assertEqual(self.program.wait(timeout=bench.PATIENCE_S), 0)
        self.program.stdin.close()
        self.program.stdout.close()
        super().tearDown()

    def type(self, line):
        self.program.stdin.write((line + "\n").encode())
        self.program.stdin.flush()

    def event(self, line):
        with open(self.control, "a") as file:
            file.write(line + "\n")

    def expect(self, *patterns):
        """Reads on until one of the patterns is there; answers its number and its match."""
        end = time.monotonic() + bench.PATIENCE_S
        while True:
            found = [(match.start(), i, match) for i, match in
                     enumerate(re.search(p, self.text) for p in patterns) if match]
            if found:
                _, i, match = min(found, key=lambda f: f[:2])
                self.text = self.text[match.end():]
                return i, match
            ready, _, _ = select.select([self.program.stdout], [], [], end - time.monotonic())
            part = os.read(self.program.stdout.fileno(), 65536) if ready else b""
            self.assertTrue(part, f"no {patterns} in: {self.text[-2000:]}")
            self.text += part.decode(errors="replace")

    def begin(self, case):
        self.type(str(self.numbers[case]))

    def result(self, case):
        _, match = self.expect(r"\[%s\] TEST Result: (\w+)" % case)
        return match.group(1)

    def play(self, transmission, fec_rate, symbol_rate):
        fec_type, modulation = TRANSMISSIONS[transmission]
        self.event(f"air DVB-S FEC_TYPE={fec_type} MODULATION={modulation} FEC_RATE={fec_rate} "
                   f"SYMBOL_RATE={symbol_rate} LEVEL=-40 CN=0")

    def test_no_manual_case_is_left_out(self):
        with open(__file__) as file:
            sessions = file.read()
        for module, _, name, automatic, _ in bench.list_cases():
            if module == "Tuner" and not automatic:
                self.assertIn(name, sessions)

    def test_cables(self):
        for name, tuner in (("TC_TUNER_CheckLockStatus_001", 0),
                            ("TC_TUNER_CheckLockStatus_002", 1),
                            ("TC_TUNER_CheckLockStatus_011", 2),
                            ("TC_TUNER_CheckLockStatus_012", 3)):
            self.begin(name)
            self.expect(r"Please pull out the cable from the port of Tuner-%d" % tuner)
            self.event(f"cable {tuner} out")
            self.type("")
            self.expect(r"Please insert the cable to the port of Tuner-%d" % tuner)
            self.event(f"cable {tuner} in")
            self.type("")
            self.assertEqual(self.result(name), "SUCCESS")

    def test_a_cable_that_stays(self):
        name = "TC_TUNER_CheckLockStatus_001"
        self.begin(name)
        self.expect(r"Please pull out the cable")
        self.event("cable 1 out")
        self.type("")
        if self.expect(r"Please insert the cable", r"TEST Result: FAIL")[0] == 0:
            self.type("")
            self.assertEqual(self.result(name), "FAIL")

    def answer_rows(self, name, events_of, rows):
        """Goes through rows of a table case, then ends it; answers its verdict."""
        for row in rows:
            self.expect(ROW_PROMPT)
            self.type(str(row))
            i, match = self.expect(PLAY_PROMPT, r"Error caseNum, Please press caseNum again")
            if i == 1:
                continue
            for line in events_of(match.group(1), match.group(2)):
                self.event(line)
            self.type("")
            if self.expect(r"Case %d success" % row, r"Case %d failed" % row)[0] == 1:
                return self.result(name)
        self.expect(ROW_PROMPT)
        self.type("999")
        return self.result(name)

    def satellite_events(self, kind, value):
        return [f"air DVB-S {'LEVEL' if kind == 'RFLevel' else 'CN'}={value}"]

    def begin_table(self, name):
        self.begin(name)
        _, match = self.expect(r"Use SFU device, Transmission: (\S+),")
        self.play(match.group(1), *TABLES[name])
        # The prompt for the first row tells how many there are; it stays in the text.
        _, match = self.expect(ROW_PROMPT)
        self.text = match.group(0) + self.text
        return int(match.group(1)) + 1

    def test_satellite_tables(self):
        for name in TABLES:
            count = self.begin_table(name)
            self.assertGreaterEqual(count, 11)
            verdict = self.answer_rows(name, self.satellite_events, range(count))
            self.assertEqual(verdict, "SUCCESS", name)

    def test_a_generator_at_another_level(self):
        name = "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001"
        self.begin_table(name)
        self.assertEqual(self.answer_rows(name, lambda *_: ["air DVB-S LEVEL=-75"], [0]), "FAIL")
        # Another symbol rate is no signal at all.
        name = "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_002"
        self.begin_table(name)
        self.assertEqual(
            self.answer_rows(name, lambda *_: ["air DVB-S SYMBOL_RATE=22000000"], [0]), "FAIL")

    def test_the_number_of_a_row(self):
        name = "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_001"
        count = self.begin_table(name)
        verdict = self.answer_rows(name, self.satellite_events, [count, count - 1, -1, 0])
        self.assertEqual(verdict, "SUCCESS")
        self.begin_table(name)
        self.assertEqual(self.answer_rows(name, self.satellite_events, []), "SUCCESS")

    def test_uk_quality_table(self):
        name = "TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_001"
        self.begin(name)
        verdict = self.answer_rows(
            name, lambda kind, value: [f"air DVB-T/666000 LEVEL=-45 CN={value}"], range(14))
        self.assertEqual(verdict, "SUCCESS")

    def compare_uk_channels(self, rows, events_of):
        name = "TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_002"
        self.begin(name)
        for row in rows:
            self.expect(ROW_PROMPT)
            self.type(str(row))
            for _ in range(2):
                _, match = self.expect(r"Frequency: (\d+), rflevel: (-?\d+), CNR: ([\d.]+), press")
                self.event(events_of(*match.groups()))
                self.type("")
            if self.expect(r"Case %d success" % row, r"Case %d failed" % row)[0] == 1:
                return self.result(name)
        self.expect(ROW_PROMPT)
        self.type("999")
        return self.result(name)

    def test_uk_comparison(self):
        def asked(frequency, level, ratio):
            return f"air DVB-T/{frequency} LEVEL={level} CN={ratio}"

        def alike(frequency, level, ratio):
            return f"air DVB-T/{frequency} LEVEL=-50 CN=3"

        self.assertEqual(self.compare_uk_channels(range(7), asked), "SUCCESS")
        self.assertEqual(self.compare_uk_channels([2], alike), "FAIL")

    def test_second_generations(self):
        for name, event, expected in (
                ("TC_TUNER_DVBT_CheckSignalInfo_022", "air DVB-T SYSTEM=DVB-T2", "SUCCESS"),
                ("TC_TUNER_DVBT2_Mplp_Tuning_001", "air DVB-T SYSTEM=DVB-T2", "SUCCESS"),
                ("TC_TUNER_DVBT2_Mplp_Tuning_001", "air DVB-T PLPS=0:128,1:32", "FAIL"),
                ("TC_TUNER_DVBT_CheckSignalInfo_022", "air DVB-T SYSTEM=DVB-T", "FAIL"),
                ("TC_TUNER_DVBT_CheckSignalInfo_023", "air DVB-T CELL_ID=1", "SUCCESS"),
                ("TC_TUNER_DVBT_CheckSignalInfo_023", "air DVB-T CELL_ID=2", "FAIL"),
                ("TC_TUNER_DVBS_Tuning_022", "air DVB-S SYSTEM=DVB-S2 MODULATION=4", "SUCCESS"),
                ("TC_TUNER_DVBS_Tuning_023", "air DVB-S SYSTEM=DVB-S2 MODULATION=4", "SUCCESS"),
                ("TC_TUNER_DVBS_Tuning_022", "air DVB-S ON=0", "FAIL")):
            self.event(event)
            self.begin(name)
            if "Mplp" not in name:
                self.expect(r"Please (switch|set) the  ?stream player")
                self.type("")
            self.assertEqual(self.result(name), expected, name)

    def test_emergency_wake_up(self):
        self.event("in 5000 air ATSC-T3 EAS=3")
        self.begin("TC_TUNER_ATSCT3_CheckEasWakeup_001")
        self.assertEqual(self.result("TC_TUNER_ATSCT3_CheckEasWakeup_001"), "SUCCESS")
        self.event("air ATSC-T3 EAS=0")
        self.event("in 5000 air ATSC-T3 EAS=3")
        self.event("in 20000 air ATSC-T3 EAS=2")
        self.begin("TC_TUNER_ATSCT3_CheckEasMode_001")
        self.assertEqual(self.result("TC_TUNER_ATSCT3_CheckEasMode_001"), "SUCCESS")
        # The second value comes after the minute is over.
        self.event("air ATSC-T3 EAS=3")
        self.event("in 90000 air ATSC-T3 EAS=2")
        self.begin("TC_TUNER_ATSCT3_CheckEasMode_001")
        self.assertEqual(self.result("TC_TUNER_ATSCT3_CheckEasMode_001"), "FAIL")


if __name__ == "__main__":
    unittest.main()
