"""The cases of the device modules that ask their operator or end in a shutdown: SYSTEM, PM, TEEC
and Factory. Each is gone through once as it is meant, and those that read answers once with an
input that ends. Shutdowns are followed by a later start of the program, as the bench would do."""
import os
import subprocess
import sys
import unittest

import bench

MODULES = {"PM": 35, "Factory": 41, "SYSTEM": 42, "TEEC": 44}
MAKE_KEY = os.path.join(bench.SOURCE, "tools/mkkey")

# The write cases of Factory in their order: type of the key file, and the key's number.
KEYS = [("netflix", 0), ("hdcp22", 1), ("hdcp14", 5), ("widevine", 2), ("playready40", 7),
        ("playready25", 6), ("freeview", 9), ("ciplus_ecp", 4), ("ciplus_non_ecp", 3),
        ("youtube", 8), ("marlin", 10)]


class DeviceManualTest(bench.BenchTest):
    def visit(self, module, *lines, status=0):
        """A visit to a module: numbers of cases and answers. What an answer leaves of its line is
        an empty line to the console, which asks again. Answers what was printed."""
        code, out = self.session("5", str(MODULES[module]), *lines, "q", "q")
        self.assertEqual(code, status, out)
        return out

    def events(self, *lines):
        """What the outside world does in the next start of the program."""
        self.write("control", "".join(line + "\n" for line in lines))
        self.environment["QLX_SIM_CONTROL"] = self.path("control")

    def outcome(self, out, module, number):
        """How a case ended at its last run: SUCCESS, FAILED, or None when it did not."""
        words = [word for word in ("SUCCESS", "FAILED")
                 if "[%s] testcase [%d] %s!" % (module, number, word) in out]
        return words[0] if len(words) == 1 else None

    def assert_outcome(self, out, module, number, word):
        self.assertEqual(self.outcome(out, module, number), word, out)

    def until_end_of_input(self, module, number, *answers):
        """Runs a case whose input ends behind the answers; answers what was printed up to the case's
        end. A case that goes on asking never comes there."""
        process = self.start(stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        lines = ["5", str(MODULES[module]), str(number)] + list(answers)
        process.stdin.write("\n".join(lines).encode() + b"\n")
        process.stdin.close()
        out = b""
        while b"testcase [%d] " % number not in out:
            line = process.stdout.readline()
            self.assertTrue(line, out)
            out += line
            self.assertLess(len(out), 1000000)
        process.kill()
        process.stdout.close()
        process.wait()
        return out.decode(errors="replace")

    # SYSTEM

    def test_environment_is_set_and_read_in_a_later_run(self):
        out = self.visit("SYSTEM", "6", "country = GBR")
        self.assertIn("set env [country] to [GBR]", out)
        self.assert_outcome(out, "SYSTEM", 6, "SUCCESS")
        out = self.visit("SYSTEM", "7", "country")
        self.assertIn("]Env: [country] = [GBR]\n", out)
        self.assert_outcome(out, "SYSTEM", 7, "SUCCESS")
        # A device that says yes and hands nothing out.
        _, out = self.session("5", str(MODULES["SYSTEM"]), "7", "country", "q", "q",
                              faults=["QLX_GetEnv return=0"])
        self.assertIn("]Env: [country] = []\n", out)
        out = self.visit("SYSTEM", "7", "unknown")
        self.assertIn("FUNC:QLX_GetEnv(key, value) RETURN ERROR VALUE", out)
        self.assert_outcome(out, "SYSTEM", 7, "FAILED")

    def test_environment_asks_again_for_what_is_no_pair(self):
        # Forms that the pattern does not take must be asked for again, and not be read for ever.
        out = self.visit("SYSTEM", "6", "= x", "a b", "k" * 70 + " = v", "  key=value more")
        self.assertEqual(out.count("Please env to set: key = value"), 4)
        self.assertIn("set env [key] to [value]", out)
        self.assert_outcome(out, "SYSTEM", 6, "SUCCESS")

    def test_serial_port_and_panel_come_back(self):
        out = self.visit("SYSTEM", "11", "12")
        self.assertIn("Re-enable UART", out)
        self.assertIn("Re-enable panel power", out)
        self.assert_outcome(out, "SYSTEM", 11, "SUCCESS")
        self.assert_outcome(out, "SYSTEM", 12, "SUCCESS")

    # TEEC

    def test_trusted_application(self):
        out = self.visit("TEEC", "3", "9", "3", "2", "8", "maybe", "Yes", "2", "8", "n", "9", "x")
        self.assertIn("pUsrData = This is TEE Client user data test", out)
        self.assertIn("Your select is not correct!", out)
        self.assertIn("Please selcect Yes-'y' or NO- 'n'!", out)
        self.assertIn("Reopen TA session and retry to transfer data", out)
        self.assertIn("Exit this case!", out)
        for number in (3, 8, 2):
            self.assert_outcome(out, "TEEC", number, "SUCCESS")
        # x is no number.
        self.assertEqual(out.count("[TEEC] testcase [9] SUCCESS!"), 1)
        self.assertEqual(out.count("[TEEC] testcase [9] FAILED!"), 1)
        # Any number is taken; which of them are applications the library tells.
        for number in ("4", "-1"):
            out = self.visit("TEEC", "9", number, "2")
            self.assert_outcome(out, "TEEC", 9, "SUCCESS")
            self.assertIn("FUNC:QLX_TEECOpen(sg_eCtaId) RETURN ERROR VALUE", out)
            self.assert_outcome(out, "TEEC", 2, "FAILED")

    # Factory

    def make_keys(self):
        for kind, _ in KEYS:
            subprocess.run([sys.executable, MAKE_KEY, kind, self.path("keys/%s.key" % kind), "--esn",
                            "ESN-OF-THE-TEST"], check=True)

    def answers(self):
        return ["keys/%s.key" % kind for kind, _ in KEYS] + ["7"]

    def test_keys_are_written_and_kept(self):
        self.make_keys()
        lines = []
        for number, path in enumerate(self.answers(), 1):
            lines += [str(number), path]
        out = self.visit("Factory", *lines, "13")
        for number, (kind, key) in enumerate(KEYS, 1):
            self.assertIn("key type[%d], path[keys/%s.key], retTc[0]." % (key, kind), out)
            self.assert_outcome(out, "Factory", number, "SUCCESS")
        self.assertIn("key type[7], retTc[0].", out)
        self.assertIn("esnid is [ESN-OF-THE-TEST], retTc[0].", out)
        # They are there after a restart. Of two digits the first counts, and the console takes the
        # other: 12 asks for key 1, and then runs case 2.
        out = self.visit("Factory", "12", "12", "keys/hdcp22.key")
        self.assertIn("key type[1], retTc[0].", out)
        self.assertIn("key type[1], path[keys/hdcp22.key], retTc[0].", out)

    def test_keys_that_are_refused(self):
        self.make_keys()
        out = self.visit("Factory", "1", "keys/hdcp22.key", "2", "keys/none.key", "12", "1")
        self.assertIn("FUNC:QLX_FactoryWritekey(QLX_FACTORYKEY_NETFLIX, keyPath) RETURN ERROR", out)
        self.assertIn("FUNC:QLX_FactoryWritekey(QLX_FACTORYKEY_HDCP22, keyPath) RETURN ERROR", out)
        self.assertIn("FUNC:QLX_FactoryCheckKey((QLX_FacKeyType_e)keytype) RETURN ERROR", out)
        for number in (1, 2, 12):
            self.assert_outcome(out, "Factory", number, "FAILED")

    def test_a_path_is_cut_at_90_characters(self):
        self.make_keys()
        long_path = "keys/" + "./" * 38 + "hdcp22.key"
        self.assertEqual(len(long_path), 91)
        # The rest of the line, which is no number, is what the console reads next.
        out = self.visit("Factory", "2", long_path)
        self.assert_outcome(out, "Factory", 2, "FAILED")
        exact = "keys/" + "./" * 37 + "/hdcp22.key"
        self.assertEqual(len(exact), 90)
        out = self.visit("Factory", "2", exact)
        self.assert_outcome(out, "Factory", 2, "SUCCESS")

    def test_an_unattended_run_with_answers_passes(self):
        self.make_keys()
        names = [name for module, _, name, _, _ in bench.list_cases() if module == "Factory"]
        bench.write_checklist(self.path("checklist.xls"), [("Factory", [(n, "Y") for n in names])])
        self.write("answers", "\n".join(self.answers()) + "\n")
        with open(self.path("answers")) as answers, open(self.path("log"), "wb") as log:
            process = self.start("auto", stdin=answers, stdout=log)
            self.assertEqual(process.wait(timeout=bench.PATIENCE_S), 0)
        self.wait_for_group(process.pid)
        self.assertEqual({row[1]: row[3] for row in self.report()["Factory"]},
                         {name: "Pass" for name in names})

    # End of input

    def test_end_of_input_ends_each_case_that_asks(self):
        expected = [("SYSTEM", 6, "FAILED"), ("SYSTEM", 7, "FAILED"), ("TEEC", 8, "SUCCESS"),
                    ("TEEC", 9, "FAILED")]
        expected += [("Factory", number, "FAILED") for number in range(1, 13)]
        for module, number, word in expected:
            out = self.until_end_of_input(module, number)
            self.assert_outcome(out, module, number, word)
            if word == "FAILED":
                self.assertIn("expect 1, but actually 0  ", out)
        # An input that ends within an answer.
        out = self.until_end_of_input("SYSTEM", 6, "key")
        self.assert_outcome(out, "SYSTEM", 6, "FAILED")

    # PM

    def test_suspend_until_a_source_wakes(self):
        self.events("wakeup ir 0x1c after 60000")
        out = self.visit("PM", "1", "15", "16", "7", "33")
        self.assertIn("Got wake up key: 0x  1c", out)
        self.assertIn("TV was not awakened by CEC (reason:1).", out)
        for number in (1, 15, 16, 7, 33):
            self.assert_outcome(out, "PM", number, "SUCCESS")
        self.events("wakeup lan after 60000")
        out = self.visit("PM", "31")
        self.assert_outcome(out, "PM", 31, "SUCCESS")
        # The operator presses a key while the device sleeps.
        self.events("in 5000 wakeup keypad")
        out = self.visit("PM", "1", "15")
        self.assert_outcome(out, "PM", 1, "SUCCESS")
        self.assertIn("TV was not awakened by IR (reason:2).", out)

    def test_suspend_that_nothing_ends(self):
        self.events("wakeup lan after 100")
        out = self.visit("PM", "1")
        self.assertIn("Time out to wait standby callback", out)
        self.assert_outcome(out, "PM", 1, "FAILED")
        self.events("wakeup ir 1 after 100")
        out = self.visit("PM", "31")
        self.assertIn("Not wakeup by WOL", out)
        self.assert_outcome(out, "PM", 31, "FAILED")

    def test_standby_and_wake_up_by_the_clock(self):
        for number, reason in zip(range(24, 31), (4, 5, 6, 7, 8, 9, 7)):
            out = self.visit("PM", str(number), status=bench.EXIT["STANDBY"])
            self.assertIsNone(self.outcome(out, "PM", number))
            self.assertIn("the device is in standby", out)
            self.assertEqual("Backlight should be off" in out, reason in (5, 8))
            out = self.visit("PM", "7")
            self.assertIn("get wakeup reason: %d" % reason, out)

    def test_standby_and_wake_up_by_the_outside_world(self):
        self.events()
        self.visit("PM", "2", status=bench.EXIT["STANDBY"])
        self.events("wakeup lan", "wakeup ir 0x10")
        out = self.visit("PM", "15")
        self.assertIn("Got wake up key: 0x  10", out)
        self.events("wakeup lan after 60000")
        out = self.visit("PM", "32", status=bench.EXIT["STANDBY"])
        self.assertIn("please recheck wakeup reason == QLX_SYS_WAKEUP_REASON_WOL after DC on", out)
        self.events()
        self.assertIn("get wakeup reason: 11", self.visit("PM", "7"))
        # Mains power is no wake-up.
        self.assertIn("get wakeup reason: 0", self.visit("PM", "7"))

    def test_a_device_that_stays_up_fails_the_standby_cases(self):
        code, out = self.session("5", "35", "2", "24", "q", "q",
                                 faults=["QLX_SysEnterStandby return=1"])
        self.assertEqual(code, 0)
        for number in (2, 24):
            self.assert_outcome(out, "PM", number, "FAILED")
        self.assertIn("FUNC:PM_EnterStandby() RETURN ERROR VALUE [1]", out)

    def test_restart(self):
        out = self.visit("PM", "14", status=bench.EXIT["RESTART"])
        self.assertIn("please check if the TV restarts normally...", out)
        self.assertIn("the device restarts", out)
        code, out = self.session("5", "35", "14", "q", "q", faults=["QLX_SysRestartTV return=3"])
        self.assertEqual(code, 0)
        self.assert_outcome(out, "PM", 14, "FAILED")


if __name__ == "__main__":
    unittest.main()
