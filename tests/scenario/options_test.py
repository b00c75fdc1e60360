"""What all tools say and answer alike: help, and options that make no sense."""
import os
import subprocess
import unittest

import bench

LISTS = os.path.join(bench.SOURCE, "tests/torture")
GOLDEN = os.path.join(bench.SOURCE, "tests/golden")


def run_tool(tool, *words):
    """Runs a tool where it cannot do harm; answers (exit code, standard output, standard error)."""
    done = subprocess.run([os.path.join(bench.BUILD, tool)] + list(words), cwd="/",
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, universal_newlines=True)
    return done.returncode, done.stdout, done.stderr


class OptionsTest(unittest.TestCase):
    def test_help_is_an_answer_and_no_mistake(self):
        for tool in ("mkchecklist", "mkstreams", "torture", "zkbench", "zkreport", "goldencalls"):
            code, out, err = run_tool(tool, "--help")
            self.assertEqual((code, err), (0, ""), tool)
            self.assertIn("Usage: " + tool, out)

    def test_a_mistake_is_named_and_nothing_is_done(self):
        torture = ["torture", "--out", "/nowhere", "--golden", GOLDEN]
        mistakes = [
            (["mkchecklist"], "name the workbook to write"),
            (["mkchecklist", "--bogus"], "--bogus"),
            (["mkchecklist", "--name"], "--name"),
            (["mkchecklist", "/nowhere/a.xls", "/nowhere/b.xls"], "/nowhere/b.xls"),
            (["mkchecklist", "--list", "/nowhere/a.xls"], "--list"),
            (["mkchecklist", "--list", "--module", "GPIOO"], "there is no module GPIOO"),
            (["mkchecklist", "--list", "--failed", "/nowhere/r.xls"],
             "cannot read /nowhere/r.xls: No such file or directory"),
            (["mkstreams", "--config", "/nowhere"], "--out"),
            (["torture", "--out", "/nowhere", "--lists", LISTS], "--golden"),
            (torture, "--lists"),
            (torture + ["--lists", "/nowhere/l"], "Directory does not exist: /nowhere/l"),
            (torture + ["--lists", LISTS], "/ is no bench folder"),
        ]
        for number in ("0", "-1", "two", "1x", "", "4294967296"):
            mistakes.append((torture + ["--lists", LISTS, "--every", number],
                             "--every: %s is no whole number" % number))
        for words, expected in mistakes:
            code, out, err = run_tool(*words)
            self.assertEqual((code, out), (2, ""), words)
            self.assertTrue(err.startswith(words[0] + ": "), err)
            self.assertIn(expected, err, words)
        self.assertFalse(os.path.exists("/nowhere"))

    def test_repeated_options_add_up(self):
        code, out, _ = run_tool("mkchecklist", "--list", "--module", "GPIO", "--module", "I2C",
                                "--name", "*_Open_00?", "--name", "*GPIO_GetValue*")
        self.assertEqual(code, 0)
        modules = {line.split("\t")[0] for line in out.splitlines()}
        self.assertEqual(modules, {"GPIO", "I2C"})


if __name__ == "__main__":
    unittest.main()
