"""The decoders on the made streams: every channel of the line-up from several moments of its loop."""
import configparser
import os
import subprocess
import unittest

import bench

# A tuner locks in 300 ms and the calls around take less than 150: this is left of the limits of
# 2200 ms for the synchronised picture and of 1700 ms for the sound.
SYNC_LIMIT_MS = 2200 - 450
SOUND_LIMIT_MS = 1700 - 450
START_MS = 5

PLAYED = "start_frame_present_sync_absent_stop"
# Channels of DVB-T: picture, proportions of frame and picture, AFD, dynamic range, primaries, and
# sound as the decoder tells them.
CONTENT = {
    0: ("720x576i25", "5/5", 0, 1, 3, 2, 0),
    1: ("1920x1080i25", "5/5", 0, 1, 1, 2, 0),
    2: ("1440x1080i25", "5/5", 0, 1, 1, 7, 1),
    3: ("720x576i25", "1/1", 0, 1, 3, 2, 0),
    4: ("3840x2160p50", "5/5", 0, 3, 2, 2, 0),
    5: ("1280x720p25", "5/5", 0, 1, 1, 7, 1),
    6: ("720x576i25", "1/1", 12, 1, 3, 2, 0),
    7: ("1920x1080p50", "5/5", 0, 1, 1, 2, 0),
    8: ("1920x1080i25", "5/5", 0, 1, 1, 2, 0),
    9: ("720x480i30", "1/1", 0, 1, 4, 2, 0),
    10: ("3840x2160p50", "5/5", 0, 2, 2, 2, 0),
}
# Its picture and its sound are of two kinds in turn.
CHANGING = 11
CHANGING_CONTENT = [("720x576i25", "1/5", 10), ("1280x720p50", "5/5", 8)]
# From a stream, its PID, since it was started behind 3 s of play.
MULTI, DESCRIBED = 3, "1:%d:3000" % 0x0268
MPEG2, H264 = 2, 16
MPEG_AUDIO, AC3 = 1, 2


def channels(streams_config, system):
    """Formats by channel: {number: (video, audio)}."""
    name = "channel_%s.cfg" % system.lower().replace("-", "_")
    parser = configparser.ConfigParser(strict=False, inline_comment_prefixes="#")
    parser.read(os.path.join(streams_config, name))
    return {int(section[7:]): (int(parser[section]["VIDEO_FORMAT"], 0),
                               int(parser[section]["AUDIO_FORMAT0"], 0))
            for section in parser.sections() if section.startswith("CHANNEL")}


class DecoderTest(bench.BenchTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        # The made streams; they are made once, and kept.
        cls.kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", cls.kept], check=True,
                       stdout=subprocess.DEVNULL)

    def play(self, *arguments):
        """What the player tells: [(system, channel, {word: value})]."""
        player = os.path.join(bench.BUILD, "line_up_player")
        done = subprocess.run(bench.command(player, *arguments), cwd=self.kept, check=True,
                              stdout=subprocess.PIPE, universal_newlines=True,
                              timeout=bench.PATIENCE_S)
        rows = []
        for line in done.stdout.splitlines():
            name, *words = line.split()
            system, channel = name.split("/")
            rows.append((system, int(channel), dict(word.split("=") for word in words)))
        return rows

    def check_content(self, channel, told):
        if channel == CHANGING:
            self.assertIn((told["size"], told["aspect"], int(told["afd"])), CHANGING_CONTENT)
        else:
            self.assertEqual((told["size"], told["aspect"]) +
                             tuple(int(told[word]) for word in
                                   ("afd", "hdr", "primaries", "channels", "lfe")),
                             CONTENT[channel], channel)

    def test_every_channel_plays_from_any_moment(self):
        rows = self.play()
        played = {}
        for system, channel, told in rows:
            name = "%s/%d %s" % (system, channel, told)
            video, audio = channels(os.path.join(self.kept, "config/common"), system)[channel]
            played.setdefault((system, channel), []).append(int(told["present_ms"]))
            if channel != CHANGING:
                self.assertEqual(told["video"], PLAYED, name)
                self.assertEqual(told["audio"], "present_absent_stop", name)
            self.assertEqual((int(told["format"]), int(told["audio_format"])), (video, audio), name)
            self.assertEqual((told["pts"], told["sound_pts"]), ("1", "1"), name)
            self.assertLess(START_MS, int(told["present_ms"]), name)
            self.assertLess(int(told["present_ms"]), int(told["sync_ms"]), name)
            self.assertLessEqual(int(told["sync_ms"]), SYNC_LIMIT_MS, name)
            self.assertLessEqual(int(told["sound_ms"]), SOUND_LIMIT_MS, name)
            if system == "DVB-T":
                self.check_content(channel, told)
                described = DESCRIBED if channel == MULTI else "0:0:-1"
                self.assertEqual(told["described"], described, name)
        self.assertGreater(len(played), 70)
        # How long a picture takes depends on the moment.
        spread = [max(times) - min(times) for times in played.values()]
        self.assertGreater(sorted(spread)[len(spread) // 2], 100, spread)

    def test_data_of_another_coding_give_no_picture(self):
        for channel, video, audio in ((0, H264, AC3), (1, MPEG2, MPEG_AUDIO)):
            (_, _, told), = self.play("DVB-T", str(channel), str(video), str(audio))
            self.assertEqual(told["video"], "start_error_absent_stop", told)
            self.assertEqual(told["audio"], "error_absent_stop", told)
            self.assertEqual((told["pts"], told["sound_pts"]), ("0", "0"), told)


if __name__ == "__main__":
    unittest.main()
