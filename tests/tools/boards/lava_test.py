"""The example job by LAVA's own schema and dispatcher: checked, and run on a board of this machine.

Needs lava-common and lava-dispatcher (tools/packages_boards.txt) and root, as the dispatcher does."""
import json
import os
import unittest

import yaml

import boards
from boards import BoardTest, FARM, HUNG


class LavaTest(BoardTest):
    def files(self):
        """The examples, on the board of this machine: (job, device)."""
        self.pack_rehearsal()
        with open(os.path.join(FARM, "lava/job.yaml")) as file:
            job = yaml.safe_load(file)
        with open(os.path.join(FARM, "lava/device.yaml")) as file:
            device = yaml.safe_load(file)
        image = job["actions"][0]["deploy"]["images"]["package"]
        image.clear()
        image["url"] = "file://" + self.package
        commands = device["commands"]
        commands["connections"]["uart0"]["connect"] = self.path("power_on.sh")
        for name in ("power_on", "power_off", "hard_reset"):
            commands[name] = "/bin/true"
        device["actions"]["deploy"]["methods"]["flasher"]["commands"] = [
            "sh -c '%s {PACKAGE}'" % self.board()]
        return job, device

    def lava_run(self, job, device, *words):
        for name, content in (("job.yaml", job), ("device.yaml", device)):
            with open(self.path(name), "w") as file:
                yaml.safe_dump(content, file)
        code, out = boards.run("lava-run", "--job-id", "1", "--output-dir", self.path("out"),
                               "--device", self.path("device.yaml"), *words, self.path("job.yaml"))
        lines = []
        for line in out.splitlines():
            try:
                lines.append(json.loads(line))
            except ValueError:
                pass
        return code, lines, out

    def test_the_examples_follow_the_schemas(self):
        for kind in ("job", "device"):
            code, out = boards.run("/usr/share/lava-common/lava-schema.py", kind,
                                   os.path.join(FARM, "lava", kind + ".yaml"))
            self.assertEqual((code, "invalid" in out), (0, False), out)

    def test_the_dispatcher_takes_the_job_and_refuses_a_broken_one(self):
        job, device = self.files()
        self.assertEqual(self.lava_run(job, device, "--validate")[0], 0)
        del device["actions"]["boot"]["methods"]["minimal"]
        self.assertNotEqual(self.lava_run(job, device, "--validate")[0], 0)

    def test_the_job_goes_through_a_reboot_and_has_a_result_for_each_case(self):
        job, device = self.files()
        code, lines, out = self.lava_run(job, device)
        self.assertEqual(code, 0, out[-3000:])
        results = [line["msg"] for line in lines if line.get("lvl") == "results"]
        self.assertEqual(results[-1]["result"], "pass")
        cases = {one["extra"]["test_case_id"]: one["result"] for one in results
                 if one.get("definition") == "zktest"}
        rows = self.check_run(self.path("board/zktest"))
        self.assertEqual(list(cases), [case for case in rows if case != HUNG])
        for case, result in cases.items():
            if "lost its verdict" in rows[case].get("reason", ""):
                # The report has it no more after the restart; LAVA has it from the console.
                self.assertEqual(result, "pass")
                continue
            self.assertEqual(result == "pass", rows[case]["verdict"] == "Pass", case)


if __name__ == "__main__":
    unittest.main()
