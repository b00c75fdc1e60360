"""The interactive console as its operator sees it: menus, input rules, cases by hand, and the ways
in and out. Transcripts are compared with reviewed ones in tests/golden; ZK_GOLDEN=write writes them
anew for a review."""
import os
import pty
import re
import select
import subprocess
import unittest

import bench

GOLDEN = os.path.join(bench.SOURCE, "tests/golden")


def normalise(text):
    """Takes out what differs between runs: time stamps, source lines, date of the build."""
    text = re.sub(r"\[\d+\.\d+\]", "[T]", text)
    text = re.sub(r"\]\[\d+\]FUNC", "][LINE]FUNC", text)
    text = re.sub(r"\]\[\d+\]expect", "][LINE]expect", text)
    return re.sub(r"Compiled time\([^)]*\)", "Compiled time(DATE)", text)


class ConsoleTest(bench.BenchTest):
    def compare(self, name, text):
        path = os.path.join(GOLDEN, name)
        text = normalise(text).replace("\r\n", "\n").replace("\r", "\\r")
        if os.environ.get("ZK_GOLDEN") == "write":
            with open(path, "w") as file:
                file.write(text)
        with open(path) as file:
            self.assertEqual(text, file.read())

    def after_welcome(self, out):
        return out[out.index("*** Welcome"):]

    def shorten(self, out):
        """Cuts the module list to its first line and its last."""
        return re.sub(r"( 1 +GPIO [^\n]*\n).*?(Please input index to select module)", r"\1...\n\2",
                      out, flags=re.S)

    def test_platform_menu_and_quit(self):
        code, out = self.session("q")
        self.assertEqual(code, 0)
        self.compare("console_platform.txt", out)

    def test_a_library_that_does_not_start_ends_the_program(self):
        code, out = self.session("5", faults=["QLX_SysInit return=1"])
        self.assertEqual(code, 255)
        self.assertTrue(out.endswith("]Sorry , init the hal dirver system failed, exit. \r\n"), out)

    def test_a_visit_to_gpio(self):
        code, out = self.session("5", "l", "1", "l", "3", "0x3", "013", "q", "q")
        self.assertEqual(code, 0)
        self.compare("console_gpio.txt", self.shorten(self.after_welcome(out)))

    def test_module_list_names_all(self):
        _, out = self.session("5", "q")
        self.compare("console_modules.txt", self.after_welcome(out))

    def test_wrong_input(self):
        lines = ["", "abc", "0", "47", "-2", "00", "q q", "x" * 300, "1 2 3 4", "99999999999"]
        code, out = self.session("5", *lines, "1", "13", "", "z" * 1000, "q", "q")
        self.assertEqual(code, 0)
        # "-2" reads as 2, I2C; what follows is for its case list, where "0" is not asked.
        self.compare("console_wrong_input.txt", self.shorten(self.after_welcome(out)))

    def test_all_automatic_cases_of_a_module_without_checklist(self):
        code, out = self.session("5", "1", "0", "q", "q")
        self.assertEqual(code, 0)
        self.compare("console_single_module.txt", self.shorten(self.after_welcome(out)))

    def test_all_automatic_cases_of_a_module_with_checklist(self):
        cases = [c for c in bench.list_cases() if c[0] == "GPIO"]
        rows = [(c[2], "Y") for c in cases]
        rows[0] = ("TC_SOMETHING_ELSE", "Y")
        rows[2] = (rows[2][0], "N")
        bench.write_checklist(self.path("checklist.xls"), [("GPIO", rows)])
        code, out = self.session("5", "1", "0", "q", "2", "0", "q", "q")
        self.assertEqual(code, 0)
        self.assertIn("Can't find this case. Skip!", out)
        self.assertIn("There is no module(I2C) in checklist!", out)
        results = {row[1]: row[3] for row in self.report()["GPIO"]}
        self.assertNotIn("TC_SOMETHING_ELSE", results)
        self.assertEqual(results["TC_GPIO_GetValue_002"], "Pass")
        self.assertEqual(results["TC_GPIO_GetValue_003"], "N/A")
        self.assertEqual(results["TC_GPIO_GetValue_004"], "N/A")

    def test_manual_cases(self):
        out = self.session("5", "1", "4", "77", "9", "5", "q", "2", "28", "1", "3", "50", "2",
                           "7FF0", "3", "1", "a2", "ff", "29", "9", "-1", "1", "3", "50", "0", "2",
                           "7FF0", "3", "29", "0", "0", "13", "1", "0", "4", "q", "q")[1]
        self.compare("console_manual.txt", self.shorten(self.after_welcome(out)))

    def test_unknown_argument_and_index_run_without_platform(self):
        for arguments, first in (((), ["9"]), ((), ["l"]), (("something",), [])):
            code, out = self.session(*first, "1", "3", "q", "q", arguments=arguments)
            self.assertEqual(code, 0)
            # Without a platform the fall-back file decides, which names pin 0 or none at all.
            self.assertRegex(out, r"GPIO\[\d+\] level\[\d\]")
            self.assertIn("testcase [3] SUCCESS!", out)

    def test_end_of_input_waits_quietly(self):
        process = self.start(stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdin.write(b"5\n1\n")
        process.stdin.close()
        out = b""
        # The program sleeps between its reads, for ever: what counts is that it prints no more.
        while not out.endswith(b"for case list.\r\n\r\n>"):
            ready, _, _ = select.select([process.stdout], [], [], bench.PATIENCE_S)
            self.assertTrue(ready)
            out += os.read(process.stdout.fileno(), 65536)
        ready, _, _ = select.select([process.stdout], [], [], 0.3)
        self.assertFalse(ready)
        process.kill()
        process.stdout.close()
        process.wait()

    def test_on_a_terminal(self):
        master, slave = pty.openpty()
        process = self.start(stdin=slave, stdout=slave)
        os.close(slave)
        out = b""

        def wait_for(text):
            nonlocal out
            while text not in out:
                ready, _, _ = select.select([master], [], [], bench.PATIENCE_S)
                self.assertTrue(ready, out)
                out += os.read(master, 65536)

        wait_for(b"select platfrom")
        for line, answer in ((b"5\n", b"for module list.\r"), (b"1\n", b"for case list.\r"),
                             (b"3\n", b"testcase [3] SUCCESS!"), (b"q\n", b"for module list.\r"),
                             (b"q\n", b"GoodBye!")):
            out = b""
            os.write(master, line)
            wait_for(answer)
        self.assertEqual(process.wait(timeout=bench.PATIENCE_S), 0)
        os.close(master)


if __name__ == "__main__":
    unittest.main()
