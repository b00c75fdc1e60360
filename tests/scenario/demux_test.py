"""The demultiplexer modules on the made streams: a byte that is changed on the air, and manual cases.

A changed byte must turn the cases that compare it, and no others, to "Fail"."""
import os
import re
import subprocess
import unittest

import bench

TS = 188
SDT_PID, SDT_TABLE = 0x11, 0x42


def section_starts(path, pid, table):
    """Offsets in the file where sections of the table begin."""
    with open(path, "rb") as file:
        data = file.read()
    starts = []
    for at in range(0, len(data) - TS + 1, TS):
        packet = data[at:at + TS]
        if (packet[1] << 8 | packet[2]) & 0x1FFF != pid or not packet[1] & 0x40:
            continue
        begin = 4 + (1 + packet[4] if packet[3] & 0x20 else 0)
        begin += 1 + packet[begin]
        if packet[begin] == table:
            starts.append((at + begin, data[at + begin:at + begin + 32]))
    return starts


class DemuxTest(bench.BenchTest):
    def lay_out(self):
        """Brings the made streams into the test's folder. They are made once, and kept."""
        kept = os.path.join(bench.BUILD, "demux_scenario")
        subprocess.run(bench.RUNNER + ["--lay-out", kept], check=True, stdout=subprocess.DEVNULL)
        os.makedirs(self.path("bench"))
        os.symlink(os.path.join(kept, "stream"), self.path("bench/stream"))
        return self.path("bench/stream/ts")

    def test_a_changed_byte_fails_what_compares_it_and_nothing_else(self):
        streams = self.lay_out()
        starts = section_starts(os.path.join(streams, "dvbc_main.ts"), SDT_PID, SDT_TABLE)
        self.assertGreater(len(starts), 1)
        # original_network_id, behind the header of eight bytes
        self.write("control.txt", "".join("stream dvbc_main.ts byte %d %02x\n" %
                                          (at + 9, section[9] ^ 0x10) for at, section in starts))
        done = subprocess.run(bench.RUNNER + ["--quiet", "--module", "Demux-DVB", "--module",
                                              "Demux-ISDB", self.path("bench")],
                              env=dict(os.environ, QLX_SIM_CONTROL=self.path("control.txt")),
                              stdout=subprocess.PIPE, universal_newlines=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        report = bench.read_report(self.path("bench/report.xls"))
        failed = [case for rows in report.values() for _, case, _, result in rows
                  if result == "Fail"]
        self.assertEqual(failed, ["TC_DEMUX_SectionDvbc_%s" % number for number in
                                  ("150_1", "150_2", "350_1", "350_2", "550_1", "550_2", "750_1",
                                   "750_2")])

    def test_other_tables_on_the_air_fail_what_compares_them_and_nothing_else(self):
        self.lay_out()
        self.write("control.txt", """stream dvbt_main.ts table 16 0x40 20 41
stream dvbc_main.ts table 20 0x70 5 41
stream dvbs_main.ts table 0 0 3 41
stream dvbc_hd.ts table 18 0x50 40 41
stream atsct_main.ts table 8187 0xCD 12 41
""")
        done = subprocess.run(bench.RUNNER + ["--quiet", "--module", "Demux-DVB", "--module",
                                              "Demux-ATSC", "--module", "Demux-ISDB",
                                              self.path("bench")],
                              env=dict(os.environ, QLX_SIM_CONTROL=self.path("control.txt")),
                              stdout=subprocess.PIPE, universal_newlines=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        report = bench.read_report(self.path("bench/report.xls"))
        failed = {case.replace("TC_DEMUX_Section", "") for rows in report.values()
                  for _, case, _, result in rows if result == "Fail"}
        expected = {
            "Dvbt": "120 121 320 321 520 521 720 721",
            # The first series compares the table id of the TDT alone.
            "Dvbc": "260 261 460 461 660 661 138 338 538 738",
            "Dvbs": "004 016 017 021 204 216 217 221 404 416 417 421 604 616 617 621 "
                    "804 816 817 821",
            "Atsct": "120 121 169 182 320 321 520 521 720 721",
            # These fail by themselves: they wait for the absence of the PAT.
            "Atscc": "006 007 206 207 406 407 606 607",
        }
        self.assertEqual(failed, {"%s_%s" % (family, number) for family, numbers in expected.items()
                                  for number in numbers.split()})

    def manual(self, module, platform_number, module_number, name, *answers):
        """A session with one manual case; answers what was printed."""
        os.makedirs(self.path("stream"), exist_ok=True)
        os.symlink(self.lay_out(), self.path("stream/ts"))
        number = {n: i for m, i, n, _, _ in bench.list_cases() if m == module}[name]
        code, out = self.session(platform_number, module_number, str(number), *answers, "q", "q")
        self.assertEqual(code, 0, out)
        return out

    def test_the_operator_names_a_table_for_one_request(self):
        out = self.manual("Demux-common", "5", "4", "TC_DEMUX_Section_001_02", "0 0 3000")
        self.assertIn("Please input PID (hex), table id (hex) and time-out (ms)", out)
        self.assertEqual(len(re.findall(r"Demux_SectionFilterCb 8\n", out)), 1)
        self.assertIn("[TC_DEMUX_Section_001_base] TEST Result: SUCCESS", out)

    def test_a_table_that_does_not_come_fails_the_request(self):
        out = self.manual("Demux-common", "5", "4", "TC_DEMUX_Section_001_01", "1b00 f0 1000")
        self.assertIn("expect 8, but actually 16  ", out)
        self.assertIn("[TC_DEMUX_Section_001_base] TEST Result: FAIL", out)

    def test_the_operator_names_a_table_to_receive_continuously(self):
        out = self.manual("Demux-ISDB", "5", "6", "TC_DEMUX_SectionIsdbs_169", "0 0")
        received = re.search(r"received (\d+) times in 10 seconds", out)
        self.assertIsNotNone(received, out[-2000:])
        self.assertGreater(int(received.group(1)), 90)
        self.assertIn("[TC_DEMUX_SectionIsdbs_169] TEST Result: SUCCESS", out)

    def test_an_answer_that_is_no_table_ends_the_case(self):
        out = self.manual("Demux-ISDB", "5", "6", "TC_DEMUX_SectionIsdbs_169", "what?")
        self.assertIn("expect 1, but actually 0  ", out)
        self.assertIn("[TC_DEMUX_SectionIsdbs_169] TEST Result: FAIL", out)


if __name__ == "__main__":
    unittest.main()
