"""What was on the air comes back: a recording that is injected shows and plays what the broadcast
did, picture by picture and sample by sample."""
import os
import subprocess
import unittest

import bench


class TimeShiftTest(bench.BenchTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        # The made streams; they are made once, and kept.
        cls.kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", cls.kept], check=True,
                       stdout=subprocess.DEVNULL)

    def test_the_recording_is_what_was_on_the_air(self):
        player = os.path.join(bench.BUILD, "time_shift_player")
        # Packet size; channel of DVB-T with its formats: MPEG-2, and H.264 with AAC.
        for words in (("192", "0", "2", "1"), ("188", "1", "16", "8")):
            done = subprocess.run(bench.command(player, *words), cwd=self.kept, check=True,
                                  stdout=subprocess.PIPE, universal_newlines=True,
                                  timeout=bench.PATIENCE_S)
            told = dict(word.split("=") for word in done.stdout.split())
            self.assertEqual((told["pictures_differ"], told["sounds_differ"]), ("0", "0"), told)
            # What began before the recording's first access point cannot come back.
            self.assertGreater(int(told["pictures_same"]), 0.5 * int(told["pictures"]), told)
            self.assertGreater(int(told["sounds_same"]), 0.5 * int(told["sounds"]), told)
            self.assertEqual((told["beside"], told["broadcast"]), ("1", "1"), told)


if __name__ == "__main__":
    unittest.main()
