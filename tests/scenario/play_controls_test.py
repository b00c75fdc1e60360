"""What a program controls of a broadcast in play, as it comes out: the gain ahead of the volume,
volumes and mutes, channels, audio description, a held picture and a held sound, and the clock."""
import os
import re
import struct
import subprocess
import tempfile
import unittest
import wave

import bench
import capture_test

# Channel 3 of DVB-T: MPEG-2 video, a tone with twice its pitch on the right, and a description.
CHANNEL = ("DVB-T", "3", "2", "1")
STAMPS_PER_S = 90000
# Of a tone of 3277 at full volume; coding makes noise below.
AUDIBLE = 100
STEREO, TRACK_A, TRACK_B, MIX, BOTH = 1, 2, 3, 4, 5


def tones(path):
    """Of each side of a captured sound, the amplitude of each multiple of the base pitch in it."""
    with wave.open(path) as sound:
        frames = sound.readframes(sound.getnframes())
        samples = struct.unpack("<%dh" % (len(frames) // 2), frames)
        sides = [capture_test.loudness(samples[side::2], sound.getframerate()) for side in (0, 1)]
        return [{pitch: loud for pitch, loud in side.items() if loud > AUDIBLE} for side in sides]


class PlayControlsTest(bench.BenchTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", cls.kept], check=True,
                       stdout=subprocess.DEVNULL)

    def control(self, *words):
        """Plays the channel and does what the words say; "sound NAME" and "panel NAME" capture.
        Answers the captured tones and panels by name, and the time stamps that were told."""
        with tempfile.TemporaryDirectory() as folder:
            board = os.path.join(folder, "board.cfg")
            with open(board, "w", encoding="ascii") as file:
                file.write(capture_test.BOARD)
            path = lambda name: os.path.join(folder, name)
            lines = [re.sub(r"^sound (\w+)$", lambda m: "capture sound %s speaker 250" %
                            path(m.group(1)), word) for word in words]
            lines = [re.sub(r"^panel (\w+)$", lambda m: "capture panel " + path(m.group(1)), line)
                     for line in lines]
            player = os.path.join(bench.BUILD, "line_up_player")
            done = subprocess.run(bench.command(player, *CHANNEL, folder, *lines), cwd=self.kept,
                                  check=True, stdout=subprocess.PIPE, universal_newlines=True,
                                  env=dict(os.environ, QLX_SIM_BOARD=board),
                                  timeout=bench.PATIENCE_S)
            sounds = {word.split()[1]: tones(path(word.split()[1])) for word in words
                      if word.startswith("sound ")}
            panels = {word.split()[1]: capture_test.read_png(path(word.split()[1]))[2]
                      for word in words if word.startswith("panel ")}
            stamps = [tuple(int(n) for n in re.findall(r"=(\d+)", line))
                      for line in done.stdout.splitlines() if line.startswith("told ")]
            return sounds, panels, stamps

    def test_gain_and_volumes_are_heard(self):
        sounds, _, _ = self.control(
            "sound plain", "prescaler 50", "sound low", "prescaler 150", "sound high",
            "prescaler 0", "sound none", "prescaler 128", "volume 50", "sound half",
            "sink-volume 30", "sound quiet", "mute 1", "sound muted", "mute 0", "sink-mute 1",
            "sound shut", "sink-mute 0", "sound again")
        loud = {name: max(left.values(), default=0) for name, (left, _) in sounds.items()}
        self.assertAlmostEqual(loud["low"] / loud["plain"], 50 / 128, delta=0.01)
        self.assertAlmostEqual(loud["high"] / loud["plain"], 150 / 128, delta=0.01)
        self.assertAlmostEqual(loud["half"] / loud["plain"], 0.5, delta=0.01)
        self.assertAlmostEqual(loud["quiet"] / loud["half"], 0.3, delta=0.01)
        self.assertAlmostEqual(loud["again"], loud["quiet"], delta=5)
        self.assertEqual([loud[name] for name in ("none", "muted", "shut")], [0, 0, 0])

    def test_each_audio_mode_sends_its_channels_to_the_loudspeakers(self):
        words = []
        for mode in (STEREO, TRACK_A, TRACK_B, MIX, BOTH):
            words += ["audio-mode %d" % mode, "sound mode%d" % mode]
        sounds, _, _ = self.control(*words)
        (left, level), = sounds["mode1"][0].items()
        (right, _), = sounds["mode1"][1].items()
        self.assertEqual(right, 2 * left)
        pitches = {name: [list(side) for side in sides] for name, sides in sounds.items()}
        self.assertEqual(pitches["mode2"], [[left], [left]])
        self.assertEqual(pitches["mode3"], [[right], [right]])
        self.assertEqual(pitches["mode4"], [[left, right], [left, right]])
        self.assertEqual(pitches["mode5"], [[left], [right]])
        for side in sounds["mode4"]:
            for loud in side.values():
                self.assertAlmostEqual(loud / level, 0.5, delta=0.05)

    def test_a_description_is_heard_where_it_is_mixed_in(self):
        sounds, _, _ = self.control(
            "sound plain", "describe-volume 100", "describe 1", "wait 500", "sound aside",
            "sink-describe 1", "sound mixed", "describe-volume 50", "sound half",
            "describe-volume 0", "sound silent", "describe-volume 100", "describe 0",
            "sound ended")
        left = {name: sides[0] for name, sides in sounds.items()}
        (main, level), = left["plain"].items()
        for name in ("aside", "silent", "ended"):
            self.assertEqual(list(left[name]), [main], name)
        (description,) = set(left["mixed"]) - {main}
        self.assertAlmostEqual(left["mixed"][description] / level, 1, delta=0.15)
        self.assertAlmostEqual(left["half"][description] / left["mixed"][description], 0.5,
                               delta=0.05)
        self.assertAlmostEqual(left["half"][main] / level, 1, delta=0.05)

    def test_what_is_held_stands_still_and_goes_on_with_what_is_on_the_air(self):
        _, panels, stamps = self.control(
            "video-pause 1", "tell", "panel held", "wait 2000", "tell", "panel still",
            "video-pause 0", "wait 500", "tell", "panel later", "panel-mute 1", "panel black")
        self.assertEqual(panels["held"], panels["still"])
        self.assertNotEqual(panels["held"], panels["later"])
        self.assertTrue(any(any(row) for row in panels["held"]))
        self.assertFalse(any(any(row) for row in panels["black"]))
        video, audio, stc = zip(*stamps)
        self.assertEqual(video[0], video[1])
        self.assertAlmostEqual(video[2] - video[0], 2.5 * STAMPS_PER_S, delta=0.1 * STAMPS_PER_S)
        # The decoder's clock waits with its picture, the sound does not.
        self.assertEqual(stc[0], stc[1])
        self.assertAlmostEqual(stc[2] - stc[0], 2.5 * STAMPS_PER_S, delta=10)
        self.assertAlmostEqual(audio[1] - audio[0], 2 * STAMPS_PER_S, delta=0.1 * STAMPS_PER_S)

        sounds, _, stamps = self.control(
            "audio-pause 1", "tell", "sound held", "wait 1000", "tell", "audio-pause 0",
            "wait 300", "tell", "sound again")
        video, audio, _ = zip(*stamps)
        self.assertEqual((sounds["held"], audio[0]), ([{}, {}], audio[1]))
        self.assertGreater(max(sounds["again"][0].values()), 1000)
        self.assertAlmostEqual(audio[2] - audio[0], 1.3 * STAMPS_PER_S, delta=0.1 * STAMPS_PER_S)
        self.assertAlmostEqual(video[1] - video[0], STAMPS_PER_S, delta=0.1 * STAMPS_PER_S)

    def test_the_clock_runs_in_each_mode_and_the_stamps_with_it(self):
        words = []
        for mode in (0, 1, 2):
            words += ["sync %d" % mode, "wait 300", "tell", "wait 1000", "tell"]
        _, _, stamps = self.control(*words)
        for first, second in zip(stamps[::2], stamps[1::2]):
            self.assertAlmostEqual(second[2] - first[2], STAMPS_PER_S, delta=10)
            for stamp in (0, 1):
                self.assertAlmostEqual(second[stamp], second[2], delta=0.2 * STAMPS_PER_S)


if __name__ == "__main__":
    unittest.main()
