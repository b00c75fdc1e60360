"""An operator at the console: reads what the program prints, types answers, and plays the outside
world, which are events of the simulated device (docs/simulator-events.md)."""
import os
import select
import subprocess

# Real seconds after which an output that does not come is a failed test.
PATIENCE_S = 60


class Operator:
    """A console session, and the control file of the device."""

    def __init__(self, test):
        self.test = test
        self.control = test.path("control")
        open(self.control, "w").close()
        test.environment["QLX_SIM_CONTROL"] = self.control
        self.process = test.start(stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.text = ""
        # Whether the console waits for a number of the case list.
        self.idle = False

    def wait(self, *texts):
        """Reads until one of the texts appears; takes what came up to and with it."""
        while True:
            found = [(self.text.index(t), t) for t in texts if t in self.text]
            if found:
                at, which = min(found)
                taken = self.text[:at + len(which)]
                self.text = self.text[at + len(which):]
                return taken
            ready, _, _ = select.select([self.process.stdout], [], [], PATIENCE_S)
            data = os.read(self.process.stdout.fileno(), 1 << 16) if ready else b""
            self.test.assertTrue(data, "no %r after: %s" % (texts, self.text[-2000:]))
            self.text += data.decode(errors="replace")

    def type(self, line=""):
        self.process.stdin.write((line + "\n").encode())
        self.process.stdin.flush()

    def events(self, *lines):
        with open(self.control, "a") as file:
            file.write("".join(line + "\n" for line in lines))

    def close(self):
        """Leaves the program; where a test has failed within a case, without a farewell."""
        if self.idle:
            for _ in range(2):
                self.type("q")
            self.wait("GoodBye!")
            self.test.assertEqual(self.process.wait(timeout=PATIENCE_S), 0)
        else:
            self.process.kill()
            self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()
