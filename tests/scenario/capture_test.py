"""What a played channel puts on the panel and into the speaker, as files that a person opens: the
channel's own bars at their places, its own tone."""
import cmath
import math
import os
import struct
import subprocess
import tempfile
import unittest
import wave
import zlib

import bench

# A small panel: its pixels are looked at one by one.
BOARD = "[DISPLAY]\nWIDTH=320\nHEIGHT=180\n"
PANEL = (320, 180)
# The stream maker's bars of 75 %, white to black, each channel beginning with another one.
BARS = [(191, 191, 191), (191, 191, 0), (0, 191, 191), (0, 191, 0),
        (191, 0, 191), (191, 0, 0), (0, 0, 191), (0, 0, 0)]
MPEG2, H264 = 2, 16
MPEG_AUDIO, AAC = 1, 8
# Tones are multiples of this, up to five times.
PITCH_HZ = 375


def read_png(path):
    """Width, height and the rows of a PNG of 8 bits RGB, by the standard's own rules."""
    with open(path, "rb") as file:
        data = file.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "no PNG"
    at, packed = 8, b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            assert (depth, colour) == (8, 2), "not RGB of 8 bits"
        packed += body if kind == b"IDAT" else b""
        at += length + 12
    raw, stride, rows, above = zlib.decompress(packed), 3 * width, [], bytes(3 * width)
    for y in range(height):
        row = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = row[i - 3] if i >= 3 else 0
            corner = above[i - 3] if i >= 3 else 0
            row[i] = (row[i] + predicted(raw[y * (stride + 1)], left, above[i], corner)) & 255
        rows.append(row)
        above = row
    return width, height, rows


def predicted(kind, left, up, corner):
    """What a PNG filter takes a byte for."""
    if kind == 4:
        return min((left, up, corner), key=lambda value: abs(left + up - corner - value))
    return (0, left, up, (left + up) // 2)[kind]


def bar_of(pixel):
    """The number of the bar whose colour is the pixel's. The bars are drawn for standard definition,
    so that in high definition they are a little off."""
    distance, bar = min((max(abs(a - b) for a, b in zip(pixel, colour)), number)
                        for number, colour in enumerate(BARS))
    assert distance < 45, "no colour of a bar: %s" % (pixel,)
    return bar


def loudness(samples, rate):
    """The amplitudes of the multiples of the base pitch in one channel, by multiple."""
    amplitudes = {}
    # The end, so that a capture that is shorter than asked for shows.
    end = samples[-9600:]
    for multiple in range(1, 41):
        turn = cmath.exp(-2j * math.pi * PITCH_HZ * multiple / rate)
        total, phase = 0, 1
        for sample in end:
            total += sample * phase
            phase *= turn
        amplitudes[multiple] = 2 * abs(total) / len(end)
    return amplitudes


def loudest(samples, rate):
    """The multiple of the base pitch that is loudest in the left channel, and its amplitude."""
    return max(loudness(samples, rate).items(), key=lambda pair: (pair[1], -pair[0]))


class CaptureTest(bench.BenchTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", cls.kept], check=True,
                       stdout=subprocess.DEVNULL)

    def captured(self, system, channel, video, audio):
        """Panel and speaker of a channel in play: (rows, samples of the left channel, rate)."""
        with tempfile.TemporaryDirectory() as folder:
            board = os.path.join(folder, "board.cfg")
            with open(board, "w", encoding="ascii") as file:
                file.write(BOARD)
            player = os.path.join(bench.BUILD, "line_up_player")
            subprocess.run(bench.command(player, system, str(channel), str(video), str(audio),
                                         folder),
                           cwd=self.kept, check=True, stdout=subprocess.DEVNULL,
                           env=dict(os.environ, QLX_SIM_BOARD=board), timeout=bench.PATIENCE_S)
            width, height, rows = read_png(os.path.join(folder, "panel.png"))
            self.assertEqual((width, height), PANEL)
            with wave.open(os.path.join(folder, "speaker.wav")) as sound:
                self.assertEqual(sound.getnchannels(), 2)
                frames = sound.readframes(sound.getnframes())
                samples = struct.unpack("<%dh" % (len(frames) // 2), frames)
                return rows, samples[::2], sound.getframerate()

    def test_a_channel_shows_its_own_bars_and_plays_its_own_tone(self):
        seen = {}
        for channel, video, audio in ((0, MPEG2, MPEG_AUDIO), (1, H264, AAC)):
            rows, samples, rate = self.captured("DVB-T", channel, video, audio)
            # Row 150 has neither box nor squares. Coded bars are whole macroblocks, so they are a
            # little wider than an eighth, and the last one is cut.
            row = rows[150]
            bars = [bar_of(tuple(row[3 * x:3 * x + 3])) for x in range(20, 320, 40)]
            self.assertEqual(bars, [(bars[0] + i) % 8 for i in range(8)], channel)
            pitch, amplitude = loudest(samples, rate)
            # 20 dB below full scale.
            self.assertAlmostEqual(amplitude / 3277, 1, delta=0.15)
            self.assertEqual(len(samples), rate)
            seen[channel] = (bars[0], pitch)
        self.assertNotEqual(seen[0][0], seen[1][0], seen)
        self.assertNotEqual(seen[0][1], seen[1][1], seen)

    def test_what_does_not_decode_is_black_and_silent(self):
        rows, samples, _ = self.captured("DVB-T", 0, H264, AAC)
        self.assertFalse(any(any(row) for row in rows))
        self.assertFalse(any(samples))


if __name__ == "__main__":
    unittest.main()
