"""The plays and controls that ask their operator, at the console: when a question is asked, the panel
shows and the speaker plays what it is about."""
import os
import subprocess
import unittest

import bench
import capture_test
from console_operator import Operator
from play_controls_test import tones

PROMPT = "for case list.\r\n\r\n>"
MODULES = {"AV-Common": 10, "AV-DTV": 11}


class AvSession(bench.BenchTest):
    """The console on the made streams, with a panel whose pixels can be looked at one by one."""

    def setUp(self):
        super().setUp()
        kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", kept], check=True, stdout=subprocess.DEVNULL)
        os.symlink(os.path.join(kept, "stream"), self.path("stream"))
        self.write("board.cfg", capture_test.BOARD)
        self.environment["QLX_SIM_BOARD"] = self.path("board.cfg")

    def tearDown(self):
        self.operator.close()
        super().tearDown()

    def enter(self, module):
        self.numbers = {name: number for name_of, number, name, _, _ in bench.list_cases()
                        if name_of == module}
        self.operator = Operator(self)
        self.operator.wait("select platfrom")
        self.operator.type("5")
        self.operator.wait("for module list.\r\n\r\n>")
        self.operator.type(str(MODULES[module]))
        self.operator.wait(PROMPT)
        self.operator.idle = True

    def begin(self, case, *events):
        self.operator.idle = False
        self.operator.events(*events)
        self.operator.type(str(self.numbers[case]))

    def answer(self, answer, *looks):
        """Looks at the device, then types. A look is "panel NAME" or "sound NAME"; the library's
        next call takes it before it does its own work."""
        for look in looks:
            kind, name = look.split()
            self.operator.events("capture %s %s%s" % (kind, self.path(name),
                                                      " speaker 250" if kind == "sound" else ""))
        self.operator.type(answer)

    def verdict(self, case, expected):
        number = self.numbers[case]
        out = self.operator.wait("testcase [%d] SUCCESS!" % number,
                                 "testcase [%d] FAILED!" % number)
        self.assertTrue(out.endswith(expected + "!"), "%s: %s" % (case, out[-3000:]))
        self.operator.wait(">")
        self.operator.idle = True

    def panel(self, name):
        return capture_test.read_png(self.path(name))[2]

    def bars(self, name):
        """The bars of a captured panel, by their numbers."""
        row = self.panel(name)[150]
        return [capture_test.bar_of(tuple(row[3 * x:3 * x + 3])) for x in range(20, 320, 40)]

    def sound(self, name):
        return tones(self.path(name))


class AvManualTest(AvSession):
    def test_the_configured_source_is_seen_and_heard(self):
        self.enter("AV-Common")
        # The sound first: a whole play leaves its decoder muted, and a sound alone unmutes nothing.
        self.begin("TC_AV_Play_041")
        self.operator.wait("Playing Ok?")
        self.answer("1", "panel sound_only", "sound tone")
        self.verdict("TC_AV_Play_041", "SUCCESS")
        self.begin("TC_AV_Play_042")
        self.operator.wait("Playing Ok?")
        self.answer("1", "panel picture", "sound picture_only")
        self.verdict("TC_AV_Play_042", "SUCCESS")
        for answer, word in (("1", "SUCCESS"), ("0", "FAILED")):
            self.begin("TC_AV_Play_040")
            self.operator.wait("Playing Ok?")
            self.answer(answer, "panel both", "sound both_tone")
            self.verdict("TC_AV_Play_040", word)
        self.assertFalse(any(any(row) for row in self.panel("sound_only")))
        self.assertEqual(self.sound("picture_only"), [{}, {}])
        self.assertEqual(self.bars("picture"), self.bars("both"))
        left, right = self.sound("tone")
        (pitch,), (twice,) = left, right
        self.assertEqual(twice, 2 * pitch)
        self.assertEqual([list(side) for side in self.sound("both_tone")], [[pitch], [twice]])
        # A second sound alone is played by a decoder that is still muted: no honest operator says yes.
        self.begin("TC_AV_Play_041")
        self.operator.wait("Playing Ok?")
        self.answer("0", "sound silence")
        self.verdict("TC_AV_Play_041", "FAILED")
        self.assertEqual(self.sound("silence"), [{}, {}])

    def test_a_pause_is_seen_and_heard(self):
        case = "TC_AV_DtvPauseResume_001"
        self.enter("AV-DTV")
        # The picture is held from 1.5 s on.
        self.begin(case, "in 2500 capture panel " + self.path("held"))
        for question, look, answer in (("video paused?", "panel still", "0"),
                                       ("video resumed?", "panel moving", "0"),
                                       ("Audio paused?", "sound silence", "0"),
                                       ("Audio resumed?", "sound tone", "1")):
            self.operator.wait(question)
            self.operator.wait("input 0")
            self.answer(answer, look)
        self.verdict(case, "SUCCESS")
        self.assertEqual(self.panel("held"), self.panel("still"))
        self.assertNotEqual(self.panel("still"), self.panel("moving"))
        self.assertEqual(self.bars("still"), self.bars("moving"))
        self.assertEqual(self.sound("silence"), [{}, {}])
        self.assertEqual([len(side) for side in self.sound("tone")], [1, 1])

    def test_typed_audio_modes_are_heard(self):
        case = "TC_AV_DtvSetAudioMode_002"
        self.enter("AV-DTV")
        self.begin(case)
        self.operator.wait("number 999 to exit")
        for mode in (1, 2, 3, 4, 5):
            self.answer(str(mode), *(["sound mode%d" % (mode - 1)] if mode > 1 else []))
            # What is answered tells that the mode before has been set.
            self.answer("6")
            self.operator.wait("Invalid number, input again")
        self.answer("999", "sound mode5")
        self.verdict(case, "SUCCESS")
        heard = {mode: [list(side) for side in self.sound("mode%d" % mode)]
                 for mode in (1, 2, 3, 4, 5)}
        (left,), (right,) = heard[1]
        self.assertEqual(heard, {1: [[left], [right]], 2: [[left], [left]], 3: [[right], [right]],
                                 4: [[left, right], [left, right]], 5: [[left], [right]]})


if __name__ == "__main__":
    unittest.main()
