"""Virtual time, property by property: runs the small programs of probe.cpp and judges them."""
import os
import random
import re
import select
import signal
import subprocess
import sys
import tempfile
import textwrap
import time
import unittest

BUILD = os.environ.get("ZK_BUILD_DIR", "build/debug")
RUN = os.path.join(BUILD, "vclock", "run")
PROBE = os.path.join(BUILD, "vclock_probe")
# The address sanitizer of gcc 12 takes the unwinding of a cancelled thread for a fault.
SANITIZED = "address" in os.environ.get("ZK_SANITIZE", "")
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
with open(os.path.join(SOURCE, "common/exit_codes.h"), encoding="ascii") as header:
    EXIT = {name: int(code) for name, code in re.findall(r"EXIT_(\w+) = (\d+)", header.read())}
# Each run here says itself whether it has a seed.
for name in [name for name in os.environ if name.startswith("VCLOCK_")]:
    del os.environ[name]
# Nothing here takes real time; a hang is what this ends.
LIMIT = 60


def run(probe, *options, stdin=subprocess.DEVNULL, env=None):
    """Runs one probe in virtual time and gives its completed process."""
    return subprocess.run([RUN, *options, PROBE, probe], stdin=stdin, capture_output=True,
                          text=True, timeout=LIMIT, env=env, check=False)


class Properties(unittest.TestCase):
    def check(self, probe, *options, **more):
        done = run(probe, *options, **more)
        self.assertEqual(done.returncode, 0, f"{probe} {options}: {done.stdout}{done.stderr}")
        return done.stdout

    def test_probes_that_judge_themselves(self):
        for probe in ("timed_waits", "time_stands_still", "one_at_a_time", "mutexes", "conditions",
                      "cpp_library", "threads_end", "cancellation", "pipes_and_queues",
                      "processes", "killed_children", "other_programs", "signals_to_threads",
                      "signals_to_processes", "masked_waits", "ends_of_children", "jumps_out", "alarms", "timers",
                      "programs_outside", "fork_handlers"):
            if probe == "cancellation" and SANITIZED:
                continue
            for options in ((), ("--seed", "1"), ("--seed", "2")):
                with self.subTest(probe=probe, options=options):
                    self.check(probe, *options)

    def test_order_is_first_come_first_served_without_a_seed(self):
        self.check("first_come_first_served")
        self.assertEqual(self.check("race"), "012345" * 5 + "\n")

    def test_polling_lets_time_creep(self):
        self.assertEqual(self.check("spinning"), "world goes on\n")

    def test_calendar(self):
        self.check("calendar", "--start", "1000000000")
        self.check("calendar_deadlines")
        # The host's own clock stayed where it was, and is where a run begins unless told.
        self.assertLess(abs(time.time() - os.stat(RUN).st_atime), 10 * 365 * 86400)

    def test_end_of_a_process(self):
        out = self.check("ending")
        self.assertEqual(out, "main at 1000\ndestructor at 1005\norphan at 2000\n")

    def test_input_from_outside_takes_no_time(self):
        read, write = os.pipe()
        with subprocess.Popen([RUN, PROBE, "echo_input"], stdin=read, stdout=subprocess.PIPE,
                              text=True) as program:
            os.close(read)
            for i, word in enumerate(("one", "two", "three")):
                os.write(write, (word + "\n").encode())
                self.assertEqual(program.stdout.readline(), f"{word} after {2 * i}\n")
            os.close(write)
            self.assertEqual(program.wait(LIMIT), 0)

    def test_deadlock_is_reported(self):
        done = run("deadlock")
        self.assertEqual(done.returncode, EXIT["DEADLOCK"])
        self.assertEqual(done.stdout, "before the deadlock\n")
        for line in (r'process 1 \(pid \d+\) thread 1 "vclock_probe" waits for end-of-thread 3',
                     r'process 2 \(pid \d+\) thread 2 .* waits for semaphore \d+ at 0x',
                     r'thread 3 "left" waits for mutex \d+ at 0x.*, held by thread 4',
                     r'thread 4 "right" waits for mutex \d+ at 0x.*, held by thread 3',
                     r'after 1\.000000000 s'):
            self.assertRegex(done.stderr, line)
        # Where: frames of the program, not of the clock.
        self.assertRegex(done.stderr, r"#0 .*\n")
        self.assertNotIn("libvclock", done.stderr)

    def test_a_thread_that_keeps_all_others_waiting(self):
        # It calls nothing: it is stopped now and again, and said to be so.
        done = run("spins_without_call", "--patience", "1")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, r'^vclock: process 1 \(pid \d+\) thread 1 "vclock_probe" has run '
                         r"for 1 s without a call that waits: from now on its processor time "
                         r"passes for all\n$")
        # A machine that lets it wait does not let time go on: what passes is what it has run.
        with subprocess.Popen([RUN, "--patience", "1", PROBE, "spins_half_a_second"],
                              stderr=subprocess.PIPE, text=True) as program:
            self.assertIn("has run for 1 s", program.stderr.readline())
            while program.poll() is None:
                program.send_signal(signal.SIGSTOP)
                time.sleep(0.06)
                program.send_signal(signal.SIGCONT)
                time.sleep(0.02)
            self.assertEqual(program.returncode, 0, program.stderr.read())
        # It sleeps in a call that is not replaced: that is said, and nothing more can be done.
        with subprocess.Popen([RUN, "--patience", "1", PROBE, "sleeps_in_unknown_call"],
                              stderr=subprocess.PIPE, text=True) as program:
            self.assertRegex(program.stderr.readline(),
                             r'thread 1 "locker" has kept all others waiting for \d+ s, asleep in a '
                             r"call that virtual time does not replace: system call \d+, flock")
            self.assertIsNone(program.poll())
            program.kill()

    def test_a_descriptor_of_signals_waits_for_the_world_outside(self):
        with subprocess.Popen([RUN, PROBE, "awaits_signal"], stdout=subprocess.PIPE,
                              text=True) as program:
            self.assertEqual(program.stdout.readline(), "ready\n")
            time.sleep(0.1)  # The wait has most likely begun.
            program.send_signal(signal.SIGUSR1)
            self.assertEqual(program.wait(LIMIT), 0)

    def test_no_signal_from_outside_is_lost(self):
        with subprocess.Popen([RUN, PROBE, "counts_signals"], stdout=subprocess.PIPE,
                              text=True) as program:
            self.assertEqual(program.stdout.readline(), "ready\n")
            # In bursts, and each at a moment of its own.
            for i in range(4000):
                os.kill(program.pid, signal.SIGRTMIN + 2)
                if i > 1000:
                    time.sleep(0)
            os.kill(program.pid, signal.SIGRTMIN + 3)
            self.assertEqual(program.stdout.read(), "4000\n")
            self.assertEqual(program.wait(LIMIT), 0)

    def test_limit_ends_all(self):
        # The pair takes about 500 seconds, and its monitor 300 more.
        done = run("pair_of_processes", "--limit", "400")
        self.assertEqual((done.returncode, done.stdout), (EXIT["LIMIT"], ""))
        self.assertEqual(done.stderr, "vclock: ended after the limit of 400 s\n")
        self.check("pair_of_processes", "--limit", "10000")


class Repeating(unittest.TestCase):
    def traced(self, probe, seed):
        with tempfile.TemporaryDirectory() as folder:
            trace = os.path.join(folder, "trace")
            options = ("--trace", trace, "--start", "1")
            done = run(probe, *options, *(("--seed", str(seed)) if seed is not None else ()))
            with open(trace, "rb") as file:
                return done.stdout, file.read()

    def test_same_seed_same_trace_other_seed_other_order(self):
        for probe in ("race", "pair_of_processes", "processes", "cpp_library"):
            seen = set()
            for seed in (None, 0, 1, 2):
                with self.subTest(probe=probe, seed=seed):
                    first = self.traced(probe, seed)
                    self.assertGreater(len(first[1].splitlines()), 20)
                    self.assertEqual(first, self.traced(probe, seed))
                    seen.add(first[1])
            # Two seeds may agree on a short program.
            self.assertGreater(len(seen), 2, probe)

    def test_the_trace_repeats_under_load(self):
        load = subprocess.Popen(["sh", "-c", "while :; do :; done"])
        try:
            self.assertEqual(len({self.traced("processes", 5) for _ in range(4)}), 1)
        finally:
            load.kill()
            load.wait()


class Kills(unittest.TestCase):
    """A main process and its monitor, killed at any moment: who is left goes on to the end."""

    def members(self, group):
        found = []
        for entry in os.listdir("/proc"):
            if entry.isdigit():
                try:
                    with open(f"/proc/{entry}/stat", encoding="ascii") as file:
                        fields = file.read().rsplit(")", 1)[1].split()
                except OSError:
                    continue
                if int(fields[2]) == group and fields[0] not in "ZX":
                    found.append(int(entry))
        return sorted(found)

    def test_kills_at_random_moments(self):
        moments = random.Random(11)
        outcomes = {"main": 0, "monitor": 0, "both": 0}
        trials = 0
        # Some programs are gone before their kill comes: a fast machine takes more trials.
        while min(outcomes.values()) < 20:
            trials += 1
            self.assertLess(trials, 1000, outcomes)
            victim = min(outcomes, key=outcomes.get)
            program = subprocess.Popen([RUN, PROBE, "pair_of_processes"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True,
                                       start_new_session=True)
            pids = []
            while len(pids) < 2 and program.poll() is None:
                pids = self.members(program.pid)
            lives = {}
            for pid in pids:
                try:
                    lives[pid] = os.pidfd_open(pid)
                except ProcessLookupError:
                    pass
            moment = moments.randrange(100000)
            for _ in range(moment):  # processor time, not the clock's
                pass
            monitor = next((pid for pid in pids if pid != program.pid), None)
            targets = {"main": [program.pid], "monitor": [monitor],
                       "both": [program.pid, monitor]}[victim]
            alive = [pid for pid in targets if pid in self.members(program.pid)]
            for pid in alive:
                os.kill(pid, signal.SIGKILL)
            outcomes[victim] += len(alive) == len(targets)
            out, _ = program.communicate(timeout=LIMIT)
            if program.returncode == 0:
                self.assertIn("main: done", out)
            if victim == "main" and program.returncode != 0:
                # The kill may come between the last word and the exit.
                self.assertEqual(out.replace("main: done\n", ""), "monitor: silence\n")
            for pid, life in lives.items():
                self.assertTrue(select.select([life], [], [], LIMIT)[0], f"{pid} of {pids} stays")
                os.close(life)


class OtherPrograms(unittest.TestCase):
    """Programs of the distribution, which nobody here wrote: threads, timers, children, signals."""

    def check(self, words, output, limit="100000", status=0):
        for seed in ("", "3"):
            with self.subTest(words=words[:2], seed=seed):
                done = subprocess.run([RUN, "--limit", limit, *words], stdin=subprocess.DEVNULL,
                                      env=dict(os.environ, VCLOCK_SEED=seed), capture_output=True,
                                      text=True, timeout=LIMIT, check=False)
                self.assertEqual((done.returncode, done.stdout), (status, output), done.stderr)

    def python(self, code, output):
        self.check(["/usr/bin/python3", "-c", textwrap.dedent(code)], output)

    def test_python(self):
        self.python("""
            import queue, threading, time
            done = queue.Queue()
            def work(length):
                for _ in range(100):
                    time.sleep(length)
                    done.put(length)
            began = time.monotonic()
            threads = [threading.Thread(target=work, args=(i,)) for i in range(1, 9)]
            [thread.start() for thread in threads]
            [thread.join() for thread in threads]
            print(done.qsize(), time.monotonic() - began)
            """, "800 800.0\n")
        self.python("""
            import asyncio, time
            async def work(length):
                for _ in range(50):
                    await asyncio.sleep(length)
                return length
            async def all():
                began = time.monotonic()
                print(await asyncio.gather(*map(work, range(1, 5))))
                print(round(time.monotonic() - began, 1))
                child = await asyncio.create_subprocess_exec("echo", "child", stdout=-1)
                print((await child.communicate())[0])
            asyncio.run(all())
            """, "[1, 2, 3, 4]\n200.0\nb'child\\n'\n")
        self.python("""
            import signal, subprocess, time
            ticks = []
            signal.signal(signal.SIGALRM, lambda *_: ticks.append(time.monotonic()))
            signal.setitimer(signal.ITIMER_REAL, 10, 0.5)
            while len(ticks) < 100:
                signal.pause()
            print(ticks[-1] - ticks[0])
            signal.setitimer(signal.ITIMER_REAL, 0)
            done = subprocess.run(["sh", "-c", "sleep 0.1; echo late"], stdout=-1, timeout=30)
            print(done.stdout)
            try:
                subprocess.run(["sleep", "60"], timeout=0.2)
            except subprocess.TimeoutExpired:
                print("expired")
            """, "49.5\nb'late\\n'\nexpired\n")
        self.python("""
            import multiprocessing, time
            def work(number):
                time.sleep(10)
                return number * number
            if __name__ == "__main__":
                began = time.monotonic()
                with multiprocessing.Pool(4) as pool:
                    print(pool.map(work, range(8)), round(time.monotonic() - began))
            """, "[0, 1, 4, 9, 16, 25, 36, 49] 20\n")

    def test_perl_and_shell(self):
        self.check(["perl", "-e", """
            eval { local $SIG{ALRM} = sub { die "alarm\\n" }; alarm 500; sleep 10000 }; print $@;
            use Time::HiRes qw(setitimer ITIMER_REAL);
            my $ticks = 0; $SIG{ALRM} = sub { $ticks++ };
            setitimer(ITIMER_REAL, 0.1, 0.1);
            select(undef, undef, undef, 1000) while $ticks < 50; print "$ticks\\n";
            """.replace("\\\\", "\\")], "alarm\n50\n")
        self.check(["bash", "-c", "trap 'echo caught' USR1; kill -USR1 $$; (sleep 0.1; exit 3) &"
                    "wait $!; echo $?; seq 1000 | sort -rn | head -1; read -t 1 x < /dev/zero;"
                    "echo $((SECONDS < 10))"], "caught\n3\n1000\n1\n")
        # Time measured by a program outside is its own: timeout lets it have as much.
        self.check(["timeout", "5", "sh", "-c", "sleep 0.2; echo in time"], "in time\n")
        self.check(["timeout", "0.3", "sleep", "60"], "", status=124)

    def test_tools_with_threads(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "numbers")
            numbers = [str(number * 7919 % 100003) for number in range(200000)]
            with open(path, "w", encoding="ascii") as file:
                file.write("\n".join(numbers) + "\n")
            self.check(["sort", "-n", "--parallel=4", "-S", "1M", "-u", path],
                       "".join(f"{number}\n" for number in sorted(set(map(int, numbers)))))
            self.check(["xz", "-0", "-T4", "-k", "-f", "--block-size=100KiB", path], "")
            unpacked = subprocess.run(["xz", "-dc", path + ".xz"], stdout=subprocess.PIPE,
                                      text=True, check=True).stdout
            self.assertEqual(unpacked.split(), numbers)
            with open(os.path.join(folder, "build.ninja"), "w", encoding="ascii") as file:
                file.write("rule r\n command = sleep 0.1; echo $out\n")
                file.writelines(f"build {name}: r\n" for name in "abcd")
            done = subprocess.run([RUN, "ninja", "-j2", "-C", folder], stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, timeout=LIMIT, check=False)
            self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
            self.assertIn("[4/4]", done.stdout)


class Launcher(unittest.TestCase):
    def test_refusals(self):
        for arguments, status in (([], 2), (["--seed"], 2), (["--seed", "x", PROBE], 2),
                                  (["--start", "99999999999", PROBE], 2), (["--what", PROBE], 2),
                                  (["/nonexistent/program"], 127), (["/etc/passwd"], 126)):
            done = subprocess.run([RUN, *arguments], capture_output=True, text=True, timeout=LIMIT,
                                  check=False)
            self.assertEqual(done.returncode, status, arguments)
            self.assertRegex(done.stderr, r"\S")

    def test_help(self):
        done = subprocess.run([RUN, "--help"], capture_output=True, text=True, timeout=LIMIT,
                              check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("--patience", done.stdout)

    def test_passes_arguments_environment_and_status(self):
        env = dict(os.environ, LD_PRELOAD="", PROBE_TEXT="a b")
        done = subprocess.run([RUN, "--", sys.executable, "-c",
                               "import os, sys, time; t = time.time(); time.sleep(1e5);"
                               "print(sys.argv[1], os.environ['PROBE_TEXT'], 'LD_PRELOAD' in os.environ,"
                               " round(time.time() - t)); sys.exit(3)", "-x"], env=env,
                              capture_output=True, text=True, timeout=LIMIT, check=False)
        self.assertEqual((done.returncode, done.stdout), (3, "-x a b False 100000\n"), done.stderr)


if __name__ == "__main__":
    unittest.main()
