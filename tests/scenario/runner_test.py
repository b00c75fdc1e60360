"""The runner: what it does to its folder, what it says of a run, and when it gives up."""
import os
import re
import resource
import shutil
import signal
import stat
import subprocess
import time
import unittest

import bench

SMALL = ["--module", "GPIO", "--module", "I2C"]


def small_files(limit):
    """In a program about to start: no file can grow beyond the limit, as on a full disk."""
    def limit_them():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
    return limit_them


class RunnerTest(bench.BenchTest):
    def setUp(self):
        super().setUp()
        self.folder = self.path("bench")
        # Streams of its own: none are needed here, and none are made.
        os.makedirs(self.inside("stream/ts"))

    def inside(self, name):
        return os.path.join(self.folder, name)

    def put(self, name, text):
        os.makedirs(os.path.dirname(self.inside(name)), exist_ok=True)
        with open(self.inside(name), "w") as file:
            file.write(text)

    def get(self, name):
        with open(self.inside(name), "rb") as file:
            return file.read()

    def run_bench(self, *words, folder=None, faults=(), cwd=None, preexec=None, build=None):
        """Runs the runner; answers (exit code, what it printed on both outputs)."""
        environment = dict(os.environ)
        if faults:
            self.write("faults", "\n".join(faults) + "\n")
            environment["QLX_SIM_FAULTS"] = self.path("faults")
        runner = list(bench.RUNNER)
        if build is not None:
            runner[2] = build
        done = subprocess.run(runner + list(words) + [folder or self.folder], cwd=cwd,
                              env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, preexec_fn=preexec,
                              timeout=bench.PATIENCE_S)
        return done.returncode, done.stdout.decode(errors="replace")

    def results(self, module):
        return [row[3] for row in bench.read_report(self.inside("report.xls"))[module]]

    def other_program(self, *lines):
        """A folder of built programs, in which a shell script stands for the program."""
        build = self.path("build")
        os.makedirs(build)
        for tool in ("mkchecklist", "mkstreams", "vclock"):
            os.symlink(os.path.join(bench.BUILD, tool), os.path.join(build, tool))
        with open(os.path.join(build, "zktest"), "w") as file:
            file.write("#!/bin/sh\n" + "\n".join(lines) + "\n")
        os.chmod(os.path.join(build, "zktest"), 0o755)
        return build


class SummaryTest(RunnerTest):
    """What has no verdict is named, and such a run is not complete."""

    def test_a_whole_run(self):
        code, out = self.run_bench(*SMALL)
        self.assertEqual(code, 0, out)
        self.assertIn("\nrun completed\n", out)
        self.assertRegex(out, r"\nall +39 +0 +0 +0 +0 +4\n")
        for title in ("without a verdict", "took the device down", "a restart lost"):
            self.assertNotIn(title, out)

    def test_a_module_whose_set_up_fails(self):
        code, out = self.run_bench("--module", "GPIO", "--module", "Demux-ISDB",
                                   faults=["QLX_TunerInit return=77"])
        self.assertEqual(code, 1)
        self.assertRegex(out, r"RUN NOT COMPLETED: (\d+) marked rows have no verdict")
        self.assertRegex(out, r"    Demux-ISDB 1-(\d+) \(\1 rows\): the module's set-up failed")
        self.assertNotIn("GPIO 1", out)

    def test_a_disk_that_fills_in_the_run(self):
        # The report outgrows the disk with its last rows; the console is whole.
        build = self.other_program(
            "trap '' XFSZ", "ulimit -f 12", "exec '%s' \"$@\"" % bench.PROGRAM)
        code, out = self.run_bench("--real-time", *SMALL, build=build)
        self.assertEqual(code, 1)
        saved = bench.read_report(self.inside("report.xls"))["I2C"]
        self.assertLess(len(saved), 31)
        self.assertRegex(out, r"\n    I2C %d-31 \(\d+ rows\): the report could not be saved when it "
                         "ran\n" % (len(saved) + 1))

    def test_a_console_that_cannot_be_kept(self):
        self.run_bench(*SMALL)
        for name in ("report.xls", "console.log"):
            os.remove(self.inside(name))
        os.makedirs(self.inside("console.log"))
        code, out = self.run_bench("--resume")
        self.assertEqual(code, 1)
        self.assertRegex(out, r"\nall +39 +0")
        self.assertIn("RUN NOT COMPLETED: console.log could not be written: Is a directory", out)

    def test_a_crash_is_named_and_selected_for_the_next_run(self):
        code, out = self.run_bench(*SMALL, faults=["QLX_I2COpen case=TC_I2C_Open_005 kill"])
        self.assertEqual(code, 0, out)
        self.assertIn("the device restarts (1 of 50)", out)
        self.assertIn("took the device down, or ran when it was ended:\n    I2C 5 TC_I2C_Open_005",
                      out)
        # GPIO's last row is not read back at the restart.
        self.assertIn("a restart lost, now N/A in the report:\n    GPIO 12 TC_GPIO_SetValue_007: "
                      "the case ended with SUCCESS", out)
        self.assertEqual(self.results("I2C")[4], "N/A")

        def selected(*words):
            done = subprocess.run([os.path.join(bench.BUILD, "mkchecklist"), "--list"] +
                                  list(words), check=True, stdout=subprocess.PIPE,
                                  universal_newlines=True)
            return [line.split("\t")[2] for line in done.stdout.splitlines()]
        report = self.inside("report.xls")
        self.assertEqual(selected("--failed", report),
                         ["TC_GPIO_SetValue_007", "TC_I2C_Open_005"])
        self.assertEqual(len(selected("--report", report, "--outcome", "Pass")), 37)
        by_words = selected("--report", report, "--outcome", "N/A", "--outcome", "Fail")
        self.assertIn("TC_I2C_Open_005", by_words)
        # A second run takes its marks from the first one's report.
        code, out = self.run_bench("--failed", report)
        self.assertEqual(code, 0, out)
        self.assertIn("2 cases marked Y on 2 sheets", out)
        self.assertEqual(self.results("I2C")[4], "Pass")
        # Now the earlier report has another name, and so has its console.
        self.assertEqual(selected("--failed", self.inside("last-report.xls")),
                         ["TC_GPIO_SetValue_007", "TC_I2C_Open_005"])

    def test_what_the_board_lacks_is_no_crash(self):
        self.run_bench("--lay-out")
        path = "config/mtk9602_eu/feature.cfg"
        text = self.get(path).decode()
        # A rate alone lets a case run; without any, and without bus 0, the board lacks its cases.
        self.put(path, re.sub("(FEATURE_I2C_BUS(0|_[A-Z]+))=1", r"\1=0", text))
        code, out = self.run_bench(*SMALL, "--auto")
        self.assertEqual(code, 0, out)
        self.assertIn(path + " is the folder's own and stays as it is", out)
        rows = bench.read_report(self.inside("report.xls"))["I2C"]
        lacking = [row[1] for row in rows if row[2] == "Y" and row[3] == "N/A"]
        self.assertGreater(len(lacking), 3)
        mkchecklist = [os.path.join(bench.BUILD, "mkchecklist"), "--list", "--failed"]
        done = subprocess.run(mkchecklist + [self.inside("report.xls")], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)
        self.assertEqual((done.stdout, done.stderr), (b"", b""))
        # A report alone cannot tell the one from the other, and that is said.
        shutil.copy(self.inside("report.xls"), self.path("alone.xls"))
        done = subprocess.run(mkchecklist + [self.path("alone.xls")], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)
        self.assertEqual(done.stdout.count(b"\n"), len(lacking))
        self.assertIn(b"there is no console log", done.stderr)

    def test_sheets_in_another_order_than_the_modules(self):
        rows = {m: [(name, "Y") for module, _, name, _, _ in bench.list_cases() if module == m]
                for m in ("GPIO", "I2C")}
        bench.write_checklist(self.inside("checklist.xls"),
                              [("I2C", rows["I2C"]), ("GPIO", rows["GPIO"])])
        code, out = self.run_bench(faults=["QLX_GPIOInit case=TC_GPIO_GetValue_003 kill"])
        self.assertIn("checklist.xls is the folder's own and stays as it is", out)
        # The sheet that was reached is the last one: all of I2C is taken for done.
        self.assertEqual(set(self.results("I2C")), {"N/A"})
        self.assertEqual(code, 1)
        self.assertIn("I2C 1-31 (31 rows): the row never started, although the report says N/A",
                      out)
        self.assertIn("RUN NOT COMPLETED: 31 marked rows have no verdict", out)

    def test_rows_that_the_program_never_reads(self):
        gpio = [(name, "Y") for m, _, name, _, _ in bench.list_cases() if m == "GPIO"]
        i2c = [(name, "Y") for m, _, name, _, _ in bench.list_cases() if m == "I2C"]
        i2c[9] = ("", "Y")
        bench.write_checklist(self.inside("checklist.xls"),
                              [("GPIO", gpio), ("I2C", i2c), ("Nobody", gpio)], closing=False)
        code, out = self.run_bench()
        self.assertEqual(code, 1)
        self.assertIn("GPIO 12 TC_GPIO_SetValue_007: the program never reads a sheet's last row",
                      out)
        self.assertIn("I2C 11-31 (21 rows): below a row without a name the program reads nothing",
                      out)
        self.assertRegex(out, r"Nobody 1-11 \(11 rows\): the report has no sheet of this module")


class FolderTest(RunnerTest):
    """What is the user's stays."""

    def test_a_folder_with_files_of_its_own(self):
        gpio = [(name, "Y" if number == 3 else "N") for m, number, name, _, _ in bench.list_cases()
                if m == "GPIO"]
        bench.write_checklist(self.inside("checklist.xls"), [("GPIO", gpio)])
        own = {"checklist.xls": self.get("checklist.xls")}
        for name, text in (("config/common/auto_test_platform.cfg",
                            "[PLATFORM_INFO]\nPLATFORM=1\n"),
                           ("reboot.sh", "#!/bin/sh\nkill -9 0\n"),
                           ("report.xls", "my report"), ("console.log", "my console\n"),
                           ("report.html", "my page"),
                           ("stream/ts/my.ts", "my stream")):
            self.put(name, text)
            own[name] = text.encode()
        os.chmod(self.inside("reboot.sh"), 0o700)
        for run in range(3):
            code, out = self.run_bench()
            self.assertEqual(code, 0, out)
            for name, content in own.items():
                if name not in ("report.xls", "console.log", "report.html"):
                    self.assertEqual(self.get(name), content, name)
            self.assertEqual(stat.S_IMODE(os.stat(self.inside("reboot.sh")).st_mode), 0o700)
            for name in ("checklist.xls", "config/common/auto_test_platform.cfg", "stream/ts"):
                self.assertIn(name + " is the folder's own and stays as it is", out)
            # The user's report is kept through all runs; the runner's own only once.
            self.assertEqual(self.get("last-report.xls"), b"my report")
            self.assertEqual(self.get("last-console.log"), b"my console\n")
            self.assertEqual(self.get("last-report.html"), b"my page")
            self.assertEqual(os.path.exists(self.inside("last-report-2.xls")), run > 0)
            self.assertFalse(os.path.exists(self.inside("last-report-3.xls")))
            last = ("last-report.xls", "last-report-2.xls", "last-report-2.xls")[run]
            self.assertRegex(out, r"of the last run there stay .*\breport.xls as " + last)
        self.assertEqual(self.results("GPIO")[2], "Pass")

    def test_a_report_with_notes_is_the_users(self):
        self.run_bench(*SMALL)
        with open(self.inside("report.xls"), "ab") as file:
            file.write(b"a note")
        noted = self.get("report.xls")
        for _ in range(3):
            self.run_bench(*SMALL)
        self.assertEqual(self.get("last-report.xls"), noted)

    def test_options_do_not_replace_an_edited_checklist(self):
        self.run_bench(*SMALL)
        with open(self.inside("checklist.xls"), "ab") as file:
            file.write(b"edited")
        edited = self.get("checklist.xls")
        report = self.get("report.xls")
        code, out = self.run_bench("--module", "TEEC")
        self.assertEqual(code, 2)
        self.assertIn("checklist.xls is the folder's own: its marks select what runs", out)
        self.assertEqual(self.get("checklist.xls"), edited)
        self.assertEqual(self.get("report.xls"), report)
        # Without options the marks count; with the runner's own checklist, options do.
        self.assertEqual(self.run_bench()[0], 0)
        os.remove(self.inside("checklist.xls"))
        code, out = self.run_bench("--module", "TEEC")
        self.assertEqual(code, 0, out)
        code, out = self.run_bench("--module", "GPIO")
        self.assertIn("checklist.xls is replaced by a newer one; it was as the runner had written "
                      "it", out)

    def project(self):
        """A project of which only the configuration is there."""
        project = self.path("project")
        shutil.copytree(self.path("config"), os.path.join(project, "config"))
        return project

    def test_newer_configuration_comes_and_edits_stay(self):
        project = self.project()
        words = ["--source", project, "--lay-out"]
        self.assertEqual(self.run_bench(*words)[0], 0)
        for name, line in (("av_config.cfg", "# newer\n"), ("demux_config.cfg", "# newer\n")):
            with open(os.path.join(project, "config/common", name), "a") as file:
                file.write(line)
        with open(self.inside("config/common/demux_config.cfg"), "a") as file:
            file.write("# mine\n")
        code, out = self.run_bench(*words)
        self.assertEqual(code, 0)
        self.assertIn("config/common/av_config.cfg is replaced by a newer one", out)
        self.assertIn("config/common/demux_config.cfg is the folder's own", out)
        self.assertTrue(self.get("config/common/av_config.cfg").endswith(b"# newer\n"))
        self.assertTrue(self.get("config/common/demux_config.cfg").endswith(b"# mine\n"))
        self.assertEqual(self.run_bench(*words)[1].count("av_config"), 0)

    def test_a_full_disk_leaves_nothing_half_written(self):
        project = self.project()
        words = ["--source", project, "--lay-out"]
        code, out = self.run_bench(*words, preexec=small_files(1500))
        self.assertEqual(code, 1)
        self.assertRegex(out, r"zkbench: .*cannot write: File too large \[config/.*\.cfg\]")
        names = [os.path.relpath(os.path.join(path, name), self.folder)
                 for path, _, files in os.walk(self.inside("config")) for name in files]
        for name in names:
            with open(os.path.join(bench.SOURCE, name), "rb") as file:
                self.assertEqual(self.get(name), file.read(), name)
        self.assertEqual([name for name in names if name.endswith(".new")], [])
        # A newer file that does not fit leaves the old one, which is not taken for edited later.
        self.assertEqual(self.run_bench(*words)[0], 0)
        with open(os.path.join(project, "config/common/av_config.cfg"), "a") as file:
            file.write("# newer\n" * 300)
        old = self.get("config/common/av_config.cfg")
        self.assertEqual(self.run_bench(*words, preexec=small_files(len(old)))[0], 1)
        self.assertEqual(self.get("config/common/av_config.cfg"), old)
        code, out = self.run_bench(*words)
        self.assertEqual(code, 0)
        self.assertNotIn("_config.cfg is the folder's own", out)
        self.assertTrue(self.get("config/common/av_config.cfg").endswith(b"# newer\n"))

    def test_the_configuration_names_the_workbooks(self):
        self.run_bench("--lay-out")
        path = "config/mtk9602_eu/common_config.cfg"
        self.put(path, self.get(path).decode().replace("=report.xls", "=out/result.xls")
                 .replace("=checklist.xls", "=plan.xls"))
        os.makedirs(self.inside("out"))
        for _ in range(2):
            code, out = self.run_bench(*SMALL)
            self.assertEqual(code, 0, out)
        self.assertIn("\nreport " + self.inside("out/result.xls"), out)
        self.assertTrue(os.path.exists(self.inside("plan.xls")))
        self.assertTrue(os.path.exists(self.inside("out/last-result.xls")))
        self.assertFalse(os.path.exists(self.inside("report.xls")))

    def test_paths_are_the_users(self):
        here = self.path("here")
        os.makedirs(here)
        code, out = self.run_bench(*SMALL, folder="mine", cwd=here)
        self.assertEqual(code, 0, out)
        self.assertTrue(os.path.exists(os.path.join(here, "mine/report.xls")))
        self.write("here/answers", "x\n")
        code, out = self.run_bench("--input", "answers", "--module", "GPIO", "--module", "Factory",
                                   folder="mine", cwd=here)
        self.assertEqual(code, 0, out)
        code, out = self.run_bench("--failed", "mine/report.xls", folder="mine", cwd=here)
        self.assertEqual(code, 0, out)
        self.assertIn("12 cases marked Y on 1 sheets", out)

    def test_run_sh_keeps_the_users_folder(self):
        """run.sh with all that it calls replaced by scripts that tell how they were called."""
        project = self.path("project")
        os.makedirs(os.path.join(project, "tools"))
        os.makedirs(os.path.join(project, "build/release"))
        os.makedirs(self.path("bin"))
        shutil.copy(os.path.join(bench.SOURCE, "run.sh"), project)
        for name, line in (("project/tools/setup.sh", "exit 0"), ("bin/cmake", "exit 0"),
                           ("project/build/release/zkbench", 'pwd; printf "%s\\n" "$@"')):
            self.write(name, "#!/bin/sh\n%s\n" % line)
            os.chmod(self.path(name), 0o755)
        os.makedirs(self.path("here"))
        done = subprocess.run([os.path.join(project, "run.sh"), "my folder", "--seed", "1"],
                              cwd=self.path("here"), stdout=subprocess.PIPE, check=True,
                              env=dict(os.environ, PATH=self.path("bin") + ":" +
                                       os.environ["PATH"]), universal_newlines=True)
        self.assertEqual(done.stdout.splitlines()[-6:],
                         [self.path("here"), "--source", project, "my folder", "--seed", "1"])


class StreamStoreTest(RunnerTest):
    """Streams are shared, and made from what there is; mkstreams is a script here."""

    def setUp(self):
        super().setUp()
        self.project = self.path("project")
        shutil.copytree(self.path("config"), os.path.join(self.project, "config"))
        self.build = self.other_program()
        tool = os.path.join(self.build, "mkstreams")
        os.remove(tool)
        # It makes a file where there is none, as the real one does with what is unchanged.
        self.write("build/mkstreams", "#!/bin/sh\ncd \"$5\" || exit 1\n"
                   "[ -e a.ts ] || { echo made; echo a > a.ts; }\n"
                   "echo TRANSMITTERS > streams.cfg\n")
        os.chmod(tool, 0o755)

    def lay_out(self, folder):
        code, out = self.run_bench("--source", self.project, "--lay-out", folder=self.path(folder),
                                   build=self.build)
        self.assertEqual(code, 0, out)
        return out, os.path.realpath(self.path(folder + "/stream/ts"))

    def edit(self, folder):
        with open(self.path(folder + "/config/common/channel_dvb_t.cfg"), "a") as file:
            file.write("# a comment\n")

    def store(self):
        path = os.path.join(self.project, "build/streams")
        return sorted(name for name in os.listdir(path) if not name.startswith("."))

    def test_line_ups_share_streams_and_unused_ones_go(self):
        out, first = self.lay_out("one")
        self.assertIn("made", out)
        self.assertEqual(os.path.dirname(first), os.path.join(self.project, "build/streams"))
        out, second = self.lay_out("two")
        self.assertEqual(second, first)
        self.assertNotIn("made", out)
        # Another line-up begins with the files of its predecessor, which the other folder keeps.
        self.edit("two")
        out, second = self.lay_out("two")
        self.assertNotEqual(second, first)
        self.assertNotIn("made", out)
        self.assertTrue(os.path.samefile(os.path.join(first, "a.ts"),
                                         os.path.join(second, "a.ts")))
        self.assertEqual(len(self.store()), 2)
        # The folder that nobody points to goes, whether its last user is gone or has moved on.
        shutil.rmtree(self.path("one"))
        self.edit("two")
        out, third = self.lay_out("two")
        self.assertEqual(self.store(), [os.path.basename(third)])
        self.assertEqual(out.count("no bench folder uses any more"), 2)
        with open(os.path.join(third, "a.ts")) as file:
            self.assertEqual(file.read(), "a\n")

    def test_a_link_of_the_users_stays(self):
        os.makedirs(self.path("one/stream"))
        os.makedirs(self.path("elsewhere"))
        os.symlink(self.path("elsewhere"), self.path("one/stream/ts"))
        out, target = self.lay_out("one")
        self.assertEqual(target, self.path("elsewhere"))
        self.assertIn("stream/ts is the folder's own", out)
        self.assertEqual(os.listdir(target), [])


class GivingUpTest(RunnerTest):
    """Nothing is waited for in silence for ever."""

    def test_a_program_that_refuses_to_run(self):
        self.run_bench("--lay-out")
        path = "config/mtk9602_eu/common_config.cfg"
        self.put(path, self.get(path).decode().replace("=report.xls", "=r"))
        code, out = self.run_bench(*SMALL)
        self.assertEqual(code, 1)
        self.assertRegex(out, "RUN NOT COMPLETED: the program refuses to run\nits last words:\n"
                         r"(    .*\n)*    \[[\d.]+\]Auto test must specify the path of test report")

    def test_a_checklist_that_is_none(self):
        self.put("checklist.xls", "no workbook")
        code, out = self.run_bench()
        self.assertEqual(code, 1)
        self.assertIn("zkbench: checklist.xls: no readable workbook", out)
        self.assertEqual(self.get("checklist.xls"), b"no workbook")

    def test_a_reboot_that_does_nothing(self):
        self.put("reboot.sh", "#!/bin/sh\nexit 0\n")
        os.chmod(self.inside("reboot.sh"), 0o755)
        code, out = self.run_bench(*SMALL, faults=["QLX_I2COpen case=TC_I2C_Open_005 hang"])
        self.assertEqual(code, 1)
        self.assertIn("the reboot command was called 60 times and has not ended the program", out)
        self.assertIn("reboot cmd: ./reboot.sh", out)
        self.assertRegex(out, r"without a verdict:\n    I2C 5 TC_I2C_Open_005: .*\n"
                         r"    I2C 6-31 \(26 rows\): the run did not come to this row")

    def test_a_program_that_falls_silent(self):
        build = self.other_program("echo Hello", "exec sleep 1000")
        started = time.monotonic()
        code, out = self.run_bench("--real-time", "--silence", "1", *SMALL, build=build)
        self.assertLess(time.monotonic() - started, 60)
        self.assertEqual(code, 1)
        self.assertRegex(out, "the program has said nothing for 1 s\nits last words:\n    Hello\n")

    def test_a_program_that_ends_at_once(self):
        for lines, words in ((["echo no such library; exit 127"], "    no such library\n"),
                             (["kill -9 $$"], "it said nothing")):
            build = self.other_program(*lines)
            code, out = self.run_bench("--real-time", *SMALL, build=build)
            self.assertEqual(code, 1)
            self.assertIn("RUN NOT COMPLETED: no row was finished since the last start", out)
            self.assertIn(words, out)
            shutil.rmtree(build)

    def test_a_device_that_is_restarted_too_often(self):
        code, out = self.run_bench("--restarts", "1", *SMALL, faults=[
            "QLX_I2COpen case=TC_I2C_Open_00%d kill" % n for n in (2, 3, 4)])
        self.assertEqual(code, 1)
        self.assertIn("RUN NOT COMPLETED: the device was restarted 1 times", out)

    def start_slow(self, *words):
        """A run whose program does not end by itself."""
        build = self.other_program("echo running", "exec sleep 1000")
        runner = list(bench.RUNNER)
        runner[2] = build
        process = subprocess.Popen(runner + ["--real-time"] + SMALL + list(words) + [self.folder],
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   universal_newlines=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.kill)
        for _ in range(1000):
            if os.path.exists(self.inside("console.log")) and self.get("console.log"):
                return process
            time.sleep(0.02)
        self.fail("the program was not started")

    def test_one_runner_a_folder(self):
        first = self.start_slow()
        for words in (["--lay-out"], SMALL, ["--resume"]):
            code, out = self.run_bench(*words)
            self.assertEqual(code, 1)
            self.assertIn("%s is in use by another runner: process %d" % (self.folder, first.pid),
                          out)
        self.assertEqual(self.get("console.log"), b"running\n")
        first.send_signal(signal.SIGTERM)
        first.wait(timeout=60)
        self.assertEqual(self.run_bench("--lay-out")[0], 0)

    def test_an_interrupted_run_says_so_and_leaves_nothing_behind(self):
        for number in (signal.SIGINT, signal.SIGHUP):
            process = self.start_slow()
            process.send_signal(number)
            out, _ = process.communicate(timeout=60)
            self.assertEqual(process.returncode, 1)
            self.assertIn("RUN NOT COMPLETED: interrupted: %s; --resume goes on" %
                          signal.strsignal(number), out)
            shutil.rmtree(self.path("build"))
            os.remove(self.inside("console.log"))

    def test_resume_goes_on_behind_the_last_row(self):
        code, out = self.run_bench("--restarts", "0", *SMALL,
                                   faults=["QLX_I2COpen case=TC_I2C_Open_005 kill"])
        self.assertEqual(code, 1)
        self.assertIn("the device was restarted 0 times", out)
        checklist = self.get("checklist.xls")
        code, out = self.run_bench("--resume")
        self.assertEqual(code, 0, out)
        self.assertEqual(self.get("checklist.xls"), checklist)
        self.assertEqual(self.get("console.log").count(b"case 4:[TC_I2C_Open_004] Start!"), 1)
        self.assertIn("    I2C 5 TC_I2C_Open_005: the device went down in this case", out)
        code, out = self.run_bench("--resume", "--module", "GPIO")
        self.assertEqual(code, 2)
        self.assertIn("--resume", out)

    def test_options_that_make_no_sense(self):
        for words, message in ((["--input", "/nowhere"], "--input: cannot read /nowhere: No such"),
                               (["--input", "/"], "--input: / is a folder"),
                               (["--seed", "x"], "--seed: x is no whole number"),
                               (["--seed", "1", "--real-time"], "--real-time excludes --seed"),
                               (["--failed", "/nowhere"], "--failed: cannot read /nowhere"),
                               (["--restarts", "-1"], "--restarts: -1 is no whole number"),
                               (["--source", "/nowhere"], "--source: cannot read /nowhere")):
            code, out = self.run_bench(*words)
            self.assertEqual(code, 2)
            self.assertIn("zkbench: " + message, out)
            self.assertEqual(os.listdir(self.folder), ["stream"])
        for words, message in ((["--module", "GPIOO"], "there is no module GPIOO"),
                               (["--name", "TC_Nobody"], "no case is selected"),
                               (["--outcome", "Pass"], "--outcome requires --report")):
            code, out = self.run_bench(*words)
            self.assertNotEqual(code, 0)
            self.assertIn(message, out)
            self.assertFalse(os.path.exists(self.inside("report.xls")))


class LongCaseTest(RunnerTest):
    def test_the_two_long_blind_scans_end_as_na_by_the_monitors_reboot(self):
        scans = ["TC_TUNER_DVBS_BlindScanTune_013", "TC_TUNER_DVBS_BlindScanTune_014"]
        names = ["--name", scans[0], "--name", scans[1]]
        code, out = self.run_bench(*names)
        self.assertNotEqual(code, 0, out)
        self.assertEqual(out.count("outlasts the monitor's five minutes"), 2)
        code, out = self.run_bench("--long", *names)
        self.assertEqual(code, 0, out)
        self.assertEqual(out.count("the device restarts"), 2)
        self.assertEqual(self.get(".bench/reboots"), b"reboot\n" * 2)
        rows = {row[1]: row for row in bench.read_report(self.inside("report.xls"))["Tuner"]}
        console = self.get("console.log").decode(errors="replace")
        for scan in scans:
            self.assertEqual(rows[scan][2:], ("Y", "N/A"))
            self.assertRegex(out, r"\n    Tuner %d %s: the device went down in this case: five "
                             "minutes without a sign of life" % (rows[scan][0], scan))
            # The case was running, and went on, when the monitor lost its patience.
            started = console.index("[%s] Start!" % scan)
            reboot = console.index("in 5 mins, reboot system", started)
            self.assertIn("start the cutdown (5 mins) for reboot system",
                          console[started:reboot])
            self.assertNotIn("[%s] SUCCESS" % scan, console)

    def test_a_recording_of_ten_minutes_ends_as_na_and_can_be_played_as_far_as_it_came(self):
        case = "TC_RecWholeFlowLongTime_001"
        self.folder = self.path("recorded")  # With the streams of the line-up.
        code, out = self.run_bench("--long", "--name", case)
        self.assertEqual(code, 0, out)
        rows = {row[1]: row for row in bench.read_report(self.inside("report.xls"))["Record"]}
        self.assertEqual(rows[case][2:], ("Y", "N/A"))
        recording = self.get("record/test_demux0.ts")
        self.assertGreater(len(recording), 10 << 20)
        whole = len(recording) // 192 * 192
        self.assertEqual(set(recording[4:whole:192]), {0x47})


if __name__ == "__main__":
    unittest.main()
