"""The manual cases of the module Tuner, as an operator runs them at the console: what they ask for,
what the operator then does on the bench, and what they make of it. The operator's hands on cables
and generators are events of the simulated device (docs/simulator-events.md).
"""
import re
import unittest

import bench
from console_operator import Operator

PROMPT = "for case list.\r\n\r\n>"
KEY = "press any key to continue"


class TunerSession(bench.BenchTest):
    """The console, at the case list of the module."""

    def setUp(self):
        super().setUp()
        self.open_module()

    def open_module(self):
        self.numbers = {name: number for module, number, name, _, _ in bench.list_cases()
                        if module == "Tuner"}
        self.operator = Operator(self)
        self.operator.wait("select platfrom")
        self.operator.type("5")
        self.operator.wait("for module list.\r\n\r\n>")
        self.operator.type("3")
        self.operator.wait(PROMPT)
        self.operator.idle = True

    def tearDown(self):
        self.operator.close()
        super().tearDown()

    def begin(self, case, *events):
        self.operator.idle = False
        self.operator.events(*events)
        self.operator.type(str(self.numbers[case]))

    def verdict(self, case, expected):
        """Reads to the end of the case and compares its verdict; answers what was printed."""
        number = self.numbers[case]
        out = self.operator.wait("testcase [%d] SUCCESS!" % number,
                                 "testcase [%d] FAILED!" % number)
        self.assertTrue(out.endswith(expected + "!"), "%s: %s" % (case, out[-3000:]))
        self.assertIn("[%s] TEST Result: %s" %
                      (case, "SUCCESS" if expected == "SUCCESS" else "FAIL"), out)
        self.operator.wait(">")
        self.operator.idle = True
        return out

    def answer_key(self, *events):
        """Waits for the prompt for a key, does what it asks for, and presses one."""
        prompt = self.operator.wait(KEY)
        self.operator.events(*events)
        self.operator.type()
        return prompt


class TunerManualTest(TunerSession):
    """Cables, streams and wake-up bits."""

    def test_no_manual_case_is_left_out(self):
        with open(__file__) as file:
            text = file.read()
        manual = [name for module, _, name, automatic, _ in bench.list_cases()
                  if module == "Tuner" and not automatic]
        self.assertEqual(len(manual), 28)
        self.assertEqual([name for name in manual if '"%s"' % name not in text], [])

    def test_cable_out_and_in(self):
        for case, tuner in (("TC_TUNER_CheckLockStatus_001", 0),
                            ("TC_TUNER_CheckLockStatus_002", 1),
                            ("TC_TUNER_CheckLockStatus_011", 2),
                            ("TC_TUNER_CheckLockStatus_012", 3)):
            out, back = "cable %d out" % tuner, "cable %d in" % tuner
            self.begin(case)
            prompt = self.answer_key(out)
            self.assertIn("Please pull out the cable from the port of Tuner-%d, " % tuner, prompt)
            prompt = self.answer_key(back)
            self.assertIn("Please insert the cable to the port of Tuner-%d to signal again, " %
                          tuner, prompt)
            self.verdict(case, "SUCCESS")
            # The operator pulls another tuner's cable, and then forgets to put it back.
            self.begin(case)
            self.answer_key("cable %d out" % ((tuner + 1) % 4))
            self.verdict(case, "FAILED")
            self.begin(case, "cable %d in" % ((tuner + 1) % 4))
            self.answer_key(out)
            self.answer_key()
            self.verdict(case, "FAILED")
            self.operator.events(back)

    def test_streams_of_another_kind(self):
        """Case, its prompt, what is played rightly, and what wrongly; None: nothing is changed."""
        rows = [
            ("TC_TUNER_DVBT_CheckSignalInfo_022", "stream player as DVB-T2 with the same frequency",
             "air DVB-T SYSTEM=DVB-T2", None),
            ("TC_TUNER_DVBT_CheckSignalInfo_023", None, "air DVB-T CELL_ID=1",
             "air DVB-T CELL_ID=2"),
            ("TC_TUNER_DVBS_Tuning_022", "stream player as DVB-S2 with the same frequency",
             "air DVB-S SYSTEM=DVB-S2 MODULATION=4", "air DVB-S ON=0"),
            ("TC_TUNER_DVBS_Tuning_023", "stream player as DVB-S2 with the same frequency",
             "air DVB-S SYSTEM=DVB-S2 MODULATION=4",
             "air DVB-S SYSTEM=DVB-S FEC_TYPE=1 MODULATION=2 SYMBOL_RATE=39000000"),
        ]
        restore = ["air DVB-T SYSTEM=DVB-T CELL_ID=0",
                   "air DVB-S SYSTEM=DVB-S FEC_TYPE=1 MODULATION=2 SYMBOL_RATE=30000000 ON=1"]
        for case, prompt, right, wrong in rows:
            for event, expected in ((right, "SUCCESS"), (wrong, "FAILED")):
                self.begin(case)
                if prompt is None:
                    # This prompt does not name the key that it waits for.
                    said = self.operator.wait("cell identity set to one(1). \r\n")
                    self.operator.events(event)
                    self.operator.type()
                else:
                    said = self.answer_key(*[event] if event else [])
                    self.assertIn(prompt, said)
                self.verdict(case, expected)
                self.operator.events(*restore)

    def test_pipes_of_the_second_generation(self):
        case = "TC_TUNER_DVBT2_Mplp_Tuning_001"
        for pipes, expected in (("0:128,1:128,2:32", "SUCCESS"),
                                ("0:128,1:128,2:32,3:512", "SUCCESS"), ("0:128,1:128", "FAILED"),
                                ("0:128,1:32,2:32", "FAILED")):
            self.begin(case, "air DVB-T SYSTEM=DVB-T2 PLPS=" + pipes)
            out = self.verdict(case, expected)
            for index in range(pipes.count(":")):
                self.assertIn("The tuning physical layer pipe info. PlpId[%d]:%d. " %
                              (index, index), out)
        self.begin(case, "air DVB-T SYSTEM=DVB-T")
        self.verdict(case, "FAILED")

    def test_wakeup_bits(self):
        off = "air ATSC-T3 EAS=0"
        wakeup, mode = "TC_TUNER_ATSCT3_CheckEasWakeup_001", "TC_TUNER_ATSCT3_CheckEasMode_001"
        for case, events, expected, last in (
                (wakeup, ["in 20000 air ATSC-T3 EAS=3"], "SUCCESS", 3),
                (wakeup, ["in 20000 air ATSC-T3 EAS=2"], "FAILED", 2),
                (wakeup, [], "FAILED", 0),
                # The lock and a second come first; the sixtieth reading is that after 61300 ms.
                (wakeup, ["in 61200 air ATSC-T3 EAS=3"], "SUCCESS", 3),
                (mode, ["in 20000 air ATSC-T3 EAS=3", "in 70000 air ATSC-T3 EAS=2"], "SUCCESS", 2),
                (mode, ["in 20000 air ATSC-T3 EAS=3"], "FAILED", 3),
                (mode, ["in 20000 air ATSC-T3 EAS=2"], "FAILED", 2),
                (wakeup, ["in 61400 air ATSC-T3 EAS=3"], "FAILED", 0)):
            self.begin(case, off, *events)
            out = self.verdict(case, expected)
            self.assertIn("please set ts player wakeup bits to value 3 in 60s !! ", out)
            self.assertEqual(int(re.findall(r"uEaWakeUp bits=(\d+)", out)[-1]), last, events)
            self.assertEqual("bits to value 2 in 60s" in out,
                             case == mode and "EAS=3" in "".join(events))


# What the generator has to send for each table: FEC type, modulation, FEC rate, symbol rate, and
# the number of rows of the table.
TABLES = {
    "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001": (1, 2, 4, 30000000, 16),
    "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_002": (1, 2, 4, 3000000, 18),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_001": (2, 2, 4, 20000000, 22),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_002": (2, 2, 4, 5000000, 18),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_003": (2, 4, 4, 30000000, 15),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalLevel_004": (2, 4, 4, 5000000, 21),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_001": (1, 2, 2, 30000000, 11),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_002": (1, 2, 4, 30000000, 11),
    "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_003": (1, 2, 16, 30000000, 11),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_001": (2, 2, 2, 20000000, 20),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_002": (2, 2, 4, 20000000, 19),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_003": (2, 2, 16, 20000000, 17),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_004": (2, 4, 2, 30000000, 17),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_005": (2, 4, 4, 30000000, 16),
    "TC_TUNER_DVBS2_CheckSignalInfoSignalQuality_006": (2, 4, 16, 30000000, 18),
}


class TunerTableTest(TunerSession):
    """The tables of levels and carrier to noise ratios, row by row."""

    def rows_asked(self):
        """Reads the table that a case prints: (number, input) of each row, and the whole text."""
        out = self.operator.wait("to continue. \r\n")
        rows = re.findall(r"Case caseNum: (\d+),  \w+: (-?[\d.]+) S[SQ]I_MIN: \d+ S[SQ]I_MAX: \d+",
                          out)
        self.assertEqual([int(number) for number, _ in rows], list(range(len(rows))))
        self.assertIn("press caseNum key 0-%d to continue" % (len(rows) - 1), out)
        return [value for _, value in rows], out

    def play_row(self, number, event):
        """Chooses a row, and plays what it asks for."""
        self.operator.type(str(number))
        prompt = self.operator.wait("press any key to continue.\r\n")
        self.operator.events(event)
        self.operator.type()
        return prompt

    def end(self, case, expected):
        self.operator.type("999")
        return self.verdict(case, expected)

    def test_every_row_of_every_satellite_table(self):
        for case, (fec, modulation, rate, symbols, count) in TABLES.items():
            key = "LEVEL" if "Level" in case else "CN"
            self.begin(case, "air DVB-S FEC_TYPE=%d MODULATION=%d FEC_RATE=%d SYMBOL_RATE=%d "
                       "LEVEL=-40 CN=0" % (fec, modulation, rate, symbols))
            inputs, out = self.rows_asked()
            self.assertEqual(len(inputs), count, case)
            self.assertIn("Use SFU device, Transmission: %s(%s), Frequency: 1242M,  Stream: "
                          "DVB_Common_Av_Demux_1.ts.\r\n" %
                          ("DVBS2" if "DVBS2" in case else "DVBS",
                           "8PSK" if modulation == 4 else "QPSK"), out)
            for number, value in enumerate(inputs):
                prompt = self.play_row(number, "air DVB-S %s=%s" % (key, value))
                self.assertIn("%s: %s," % ("RFLevel" if key == "LEVEL" else "CN_input", value),
                              prompt)
                done = self.operator.wait("Case %d success.\r\n" % number,
                                          "Case %d failed.\r\n" % number)
                self.assertTrue(done.endswith("success.\r\n"), "%s: %s" % (case, done[-600:]))
            self.end(case, "SUCCESS")

    def test_a_row_played_wrongly_ends_the_case(self):
        for case, key, number, wrong in (
                ("TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001", "LEVEL", 0, "-90"),
                ("TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001", "LEVEL", 15, "-40"),
                ("TC_TUNER_DVBS_CheckSignalInfoSignalQuality_002", "CN", 5, "7")):
            symbols = "FEC_TYPE=1 MODULATION=2 FEC_RATE=4 SYMBOL_RATE=30000000 LEVEL=-40 CN=0"
            self.begin(case, "air DVB-S " + symbols)
            self.rows_asked()
            self.play_row(number, "air DVB-S %s=%s" % (key, wrong))
            self.assertIn("Case %d failed.\r\n" % number, self.verdict(case, "FAILED"))
        # A generator that sends nothing fails the row as well.
        case = "TC_TUNER_DVBS_CheckSignalInfoSignalLevel_001"
        self.begin(case)
        self.rows_asked()
        self.play_row(3, "air DVB-S ON=0")
        self.assertIn("Case 3 failed.\r\n", self.verdict(case, "FAILED"))

    def test_numbers_that_are_no_row_ask_again(self):
        case = "TC_TUNER_DVBS_CheckSignalInfoSignalQuality_001"
        self.begin(case)
        inputs, _ = self.rows_asked()
        self.assertEqual(len(inputs), 11)
        for wrong in ("11", "-1", "998", "abc", "9999999999999", "1000"):
            self.operator.type(wrong)
            out = self.operator.wait("to continue. \r\n")
            self.assertEqual(out.count("Error caseNum, Please press caseNum again.\r\n"), 1, wrong)
            self.assertIn("press caseNum key 0-10 to continue", out)
        self.end(case, "SUCCESS")

    def test_terrestrial_quality(self):
        case = "TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_001"
        self.begin(case)
        inputs, out = self.rows_asked()
        self.assertEqual(len(inputs), 14)
        self.assertIn("ONLY USE FOR UK FREEVIEW.\r\n", out)
        self.assertIn("Use SFU device, Transmission: DVBT, Frequency: 666M, LEVEL: 45dbm,  Stream: "
                      "UK-itv514M.ts.\r\n", out)
        for number, value in enumerate(inputs):
            self.play_row(number, "air DVB-T/666000 CN=" + value)
            done = self.operator.wait("Case %d success.\r\n" % number,
                                      "Case %d failed.\r\n" % number)
            self.assertTrue(done.endswith("success.\r\n"), done[-600:])
            self.assertIn("Will lock:666000,", done)
        self.end(case, "SUCCESS")
        self.begin(case)
        self.rows_asked()
        self.play_row(0, "air DVB-T/666000 CN=20")
        self.verdict(case, "FAILED")

    def compare_row(self, number, wrong=None):
        """Plays a row of the comparison as it is asked for, or the second multiplex wrongly."""
        self.operator.type(str(number))
        for stream, frequency in ((1, 474000), (2, 690000)):
            prompt = self.operator.wait(KEY)
            asked = re.search(r"Please set stream%d as UK-itv514M.ts, Frequency: %d, "
                              r"rflevel: (-\d+), CNR: ([\d.]+)," % (stream, frequency), prompt)
            self.assertTrue(asked, prompt)
            played = wrong if wrong and stream == 2 else "LEVEL=%s CN=%s" % asked.groups()
            self.operator.events("air DVB-T/%d %s" % (frequency, played))
            self.operator.type()
        out = self.operator.wait("Case %d success.\r\n" % number, "Case %d failed.\r\n" % number)
        self.assertRegex(out, r"deltaSSI: \d+, deltaSQI: \d+\. \r\n")
        return out

    def test_terrestrial_comparison(self):
        case = "TC_TUNER_DVBT_FreeViewHD_CheckSignalInfo_002"
        self.begin(case)
        self.operator.wait("press caseNum key 0-6 to continue. \r\n")
        for number in range(7):
            out = self.compare_row(number)
            self.assertTrue(out.endswith("success.\r\n"), out[-800:])
        self.end(case, "SUCCESS")
        for number, wrong, demand in (
                (5, "LEVEL=-64 CN=0 STRENGTH_OFFSET=0",
                 "deltaSSI > 10 && deltaSQI > 0 && deltaSQI < 20"),
                (3, "LEVEL=-50 CN=0 STRENGTH_OFFSET=14",
                 "deltaSSI > 0 && deltaSSI < 10 && deltaSQI >20"),
                (0, "LEVEL=-50 CN=0 STRENGTH_OFFSET=0", "deltaSSI > 10")):
            self.begin(case)
            self.operator.wait("press caseNum key 0-6 to continue. \r\n")
            out = self.compare_row(number, wrong)
            self.assertTrue(out.endswith("failed.\r\n"), out[-800:])
            self.assertIn("]ASSERT %s \n" % demand, out)
            self.verdict(case, "FAILED")


class TunerLineUpTest(TunerSession):
    """What is on the air is what the channel files say."""

    def setUp(self):
        bench.BenchTest.setUp(self)
        path = "config/common/channel_dvb_c.cfg"
        text = self.read(path)
        self.assertEqual(text.count("FREQUENCY=306000\n"), 1)
        self.write(path, text.replace("FREQUENCY=306000\n", "FREQUENCY=410000\n"))
        self.open_module()

    def test_a_changed_frequency_moves_transmitter_and_tuning(self):
        case = "TC_TUNER_DVBC_Tuning_001"
        self.begin(case)
        out = self.verdict(case, "SUCCESS")
        self.assertIn("tuner-0 Will lock:410000, transSys:16.", out)
        self.assertIn("The tuning tuned frequency: 410000 ", out)


if __name__ == "__main__":
    unittest.main()
