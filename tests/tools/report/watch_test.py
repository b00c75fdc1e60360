"""A run in progress: how far it is, and the page of it, whatever is sent to it."""
import http.client
import json
import os
import re
import signal
import socket
import subprocess
import threading
import time
import unittest

import runs
from runs import Console, FAILED, ReportTest, USAGE

NAME = "TC_<b>&\x07"


class FollowTest(ReportTest):
    def setUp(self):
        super().setUp()
        self.folder = self.path("bench")
        os.makedirs(self.folder)
        runs.write_checklist(self.path("bench", "checklist.xls"),
                             {"GPIO": [("TC_1", "Y"), ("TC_2", "Y"), ("TC_3", "N")],
                              "PM": [("TC_1", "Y"), ("TC_4", "Y")]})
        self.write("bench/.bench/durations",
                   "2000 GPIO/TC_1\n3000 GPIO/TC_2\n9000 GPIO/TC_3\n4000 PM/TC_1\n5000 PM/TC_4\n")

    def once(self, log):
        self.write("bench/console.log", log.text)
        return self.zkreport("watch", self.folder, "--once")

    def test_how_far_it_is(self):
        log = Console()
        self.assertIn("bench: no row yet\n0 of 5 rows", self.once(log))
        log.start().setup("GPIO").case(1, "TC_1", took_ms=1500)
        log.begin(2, "TC_2").raw(runs.RED + "[TC_2][9]expect 1 \n")
        text = self.once(log)
        self.assertIn("GPIO / TC_2\n1 of 5 rows, 1 passed, 0 failed", text)
        self.assertIn("1.5 s on the device's clock, about 12.0 s left", text)
        log.end(2, "TC_2", "FAILED")
        log.line("case 3:[TC_3] Case hase been marked as 'N' in checklist. Skip! ")
        log.setup("PM").begin(1, "TC_1").monitor_reboot().start().setup("PM")
        text = self.once(log)
        self.assertIn("4 of 5 rows, 1 passed, 1 failed, 0 n/a, 1 skipped, 1 lost, 1 restarts", text)
        self.assertIn("about 5.0 s left", text)
        self.assertIn("  GPIO/TC_2: [TC_2][9]expect 1", text)
        self.assertIn("  PM/TC_1: the device went down", text)
        log.case(2, "TC_4", "UNSUPPORT").over()
        text = self.once(log)
        self.assertIn("the run is over\n5 of 5 rows", text)
        self.assertIn("1 n/a", text)

    def test_it_ends_with_the_run_and_reads_a_new_log_from_its_beginning(self):
        self.write("bench/console.log", Console().start().setup("GPIO").case(1, "TC_1").text)
        process = subprocess.Popen([runs.PROGRAM, "watch", self.folder], stdout=subprocess.PIPE)
        time.sleep(0.6)
        os.rename(self.path("bench/console.log"), self.path("bench/last-console.log"))
        log = Console().start().setup("GPIO").case(1, "TC_1", "FAILED").over()
        half = len(log.text) // 2
        self.write("bench/console.log", log.text[:half])
        time.sleep(0.6)
        self.write("bench/console.log", log.text)
        out = process.communicate(timeout=runs.PATIENCE_S)[0].decode()
        self.assertEqual(process.returncode, 0)
        self.assertIn("the run is over\n1 of 5 rows, 0 passed, 1 failed", out)

    def test_bad_use(self):
        self.assertIn("no folder", self.zkreport("watch", self.path("nowhere"), code=FAILED))
        for address in ("x", "1.2.3.4:", ":99999", "a:b:80", "70000", ":"):
            self.zkreport("watch", self.folder, "--http", address, code=USAGE)
        self.assertIn("cannot be listened at", self.zkreport("watch", self.folder, "--http",
                                                             "203.0.113.1:1", code=FAILED))


class PageTest(ReportTest):
    def setUp(self):
        super().setUp()
        os.makedirs(self.path("bench"))
        log = Console().start().setup("GPIO").begin(1, NAME)
        log.raw(runs.RED + "<script>alert(1)</script>\n").end(1, NAME, "FAILED")
        self.log = log
        self.write("bench/console.log", log.text)
        self.process = subprocess.Popen([runs.PROGRAM, "watch", self.path("bench"), "--http", "0"],
                                        stdout=subprocess.PIPE)
        self.addCleanup(self.stop)
        line = self.process.stdout.readline().decode()
        found = re.fullmatch(r"page: http://127\.0\.0\.1:(\d+)/\n", line)
        self.assertTrue(found, line)
        self.port = int(found.group(1))
        self.drain = threading.Thread(target=self.process.stdout.read, daemon=True)
        self.drain.start()

    def stop(self):
        self.process.kill()
        self.process.wait()
        self.drain.join()
        self.process.stdout.close()

    def get(self, path="/", method="GET", timeout=30, **more):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout)
        connection.request(method, path, **more)
        answer = connection.getresponse()
        text = answer.read().decode()
        connection.close()
        return answer.status, text, answer

    def test_it_tells_how_far_the_run_is_and_escapes_it(self):
        status, text, answer = self.get()
        self.assertEqual(status, 200)
        self.assertIn("TC_&lt;b&gt;&amp;\u2407: &lt;script&gt;alert(1)&lt;/script&gt;", text)
        self.assertNotIn("<script>alert", text)
        self.assertIn("default-src 'none'", answer.headers["Content-Security-Policy"])
        status, text, _ = self.get("/status.json")
        self.assertEqual(json.loads(text)["failed"], 1)
        self.log.case(2, "TC_2")
        self.write("bench/console.log", self.log.text)
        for _ in range(200):
            if json.loads(self.get("/status.json")[1])["passed"] == 1:
                return
            time.sleep(0.05)
        self.fail("the page does not follow the log")

    def test_other_paths_and_methods_give_nothing(self):
        for path in ("/console.log", "/../../etc/passwd", "/%2e%2e/console.log", "/report.xls",
                     "/" + "x" * 3000):
            status, text, _ = self.get(path)
            self.assertIn(status, (400, 404, 414), path)
            self.assertNotIn("TC_", text)
        for method in ("POST", "PUT", "DELETE", "PATCH", "OPTIONS", "TRACE"):
            self.assertGreaterEqual(self.get("/", method)[0], 400, method)
        status, _, _ = self.get("/", "POST", body=b"x" * 5000)
        self.assertGreaterEqual(status, 400)
        self.assertEqual(self.get()[0], 200)

    def test_damaged_requests_do_no_harm(self):
        for request in (b"\r\n\r\n", b"GET", b"\x00" * 5000, b"GET / HTTP/9.9\r\n\r\n",
                        b"GET / HTTP/1.1\r\nContent-Length: -5\r\n\r\n",
                        b"GET / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n",
                        b"GET / HTTP/1.1\r\nRange: bytes=5-1,9999999999999999999-\r\n\r\n",
                        b"GET / HTTP/1.1\r\n" + b"X: y\r\n" * 20000 + b"\r\n",
                        b"GET /" + b"a" * 200000 + b" HTTP/1.1\r\n\r\n"):
            with socket.create_connection(("127.0.0.1", self.port)) as connection:
                try:
                    connection.sendall(request)
                    connection.settimeout(10)
                    while connection.recv(65536):
                        pass
                except OSError:
                    pass
            self.assertEqual(self.get()[0], 200, request[:60])

    def test_slow_readers_hold_nobody_up_for_long(self):
        slow = []
        for i in range(60):
            connection = socket.create_connection(("127.0.0.1", self.port))
            # Some never finish their request, the others never read the answer.
            connection.sendall(b"GET / HTTP/1.1\r\nHo" if i % 2 else b"GET / HTTP/1.1\r\n\r\n")
            slow.append(connection)
        self.assertEqual(self.get()[0], 200)
        for connection in slow:
            connection.close()

    def test_many_at_once(self):
        statuses = []

        def ask():
            for _ in range(10):
                statuses.append(self.get()[0])

        threads = [threading.Thread(target=ask) for _ in range(40)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(statuses, [200] * 400)

    def test_it_ends_when_it_is_told_to_though_readers_hang_on(self):
        with socket.create_connection(("127.0.0.1", self.port)) as connection:
            connection.sendall(b"GET /")
            self.process.send_signal(signal.SIGTERM)
            self.assertEqual(self.process.wait(timeout=runs.PATIENCE_S), 0)


if __name__ == "__main__":
    unittest.main()
