"""A run of the size of a whole certification, made up: 4200 rows of 46 modules, a console log of
30 MB, restarts, every verdict, and names and lines that try to be markup.

    big_run.py DIR                    makes it in DIR
    big_run.py DIR --measure PROGRAM  makes it, and measures zkreport at writing all forms of it
"""
import os
import random
import resource
import subprocess
import sys
import time

import runs

ROWS = 4200
MODULES = 46
LOG_BYTES = 30 * 1000 * 1000
FORMS = ["html", "junit", "jsonl", "tap", "lava", "ctrf", "learn"]


def make(folder):
    """Writes report.xls, checklist.xls and console.log into `folder`."""
    os.makedirs(folder, exist_ok=True)
    chance = random.Random(19)
    report, checklist = {}, {}
    log = runs.Console().start()
    filler = "section data: " + " ".join("%02x" % chance.randrange(256) for _ in range(60)) + "\n"
    number = 0
    for m in range(MODULES):
        module = "Module-%02d" % (m + 1)
        rows = ROWS // MODULES + (1 if m < ROWS % MODULES else 0)
        report[module], checklist[module] = [], []
        log.setup(module)
        for r in range(1, rows + 1):
            number += 1
            case = "TC_%s_Check_%03d" % (module.replace("-", "_"), r)
            if number == 77:
                case = "TC_<img src=x onerror=alert(1)>&amp;"
            mark, word = "Y", "Pass"
            lot = chance.random()
            took = int(chance.expovariate(1 / 1500))
            inside = filler * int(1.16 * LOG_BYTES / ROWS / len(filler))
            if number in (900, 2500, 3700):
                word = "N/A"
                log.begin(r, case).raw(inside)
                if number != 2500:
                    log.monitor_reboot()
                log.start(1000 if number != 2500 else log.us // 1000000 + 40).setup(module)
            elif lot < 0.02 or number == 77:
                word = "Fail"
                inside += "%s[%s][%d]expect %d, but actually <b>%d</b>  \n%s" % (
                    runs.RED, case, chance.randrange(900), 1, 2, runs.RESET)
                inside += "%s[%s] TEST Result: FAIL\n%s" % (runs.RED, case, runs.RESET)
                log.case(r, case, "FAILED", took, inside)
            elif lot < 0.07:
                word = "Manual"
                log.line("case %d:[%s] Manual case. Skip! " % (r, case))
            elif lot < 0.12:
                mark, word = "N", "N/A"
                log.line("case %d:[%s] Case hase been marked as 'N' in checklist. Skip! "
                         % (r, case))
            elif lot < 0.15:
                word = "N/A"
                log.case(r, case, "UNSUPPORT", 0, inside)
            else:
                log.case(r, case, "SUCCESS", took, "\033[1;32m[%s] good\n\033[0m" % case + inside)
            report[module].append((case, mark, word))
            checklist[module].append((case, mark))
    log.over()
    runs.write_report(os.path.join(folder, "report.xls"), report)
    runs.write_checklist(os.path.join(folder, "checklist.xls"), checklist)
    with open(os.path.join(folder, "console.log"), "w", newline="") as file:
        file.write(log.text)


def measure(program, folder):
    words = [program, "write", folder]
    for form in FORMS:
        words += ["--" + form, os.path.join(folder, "out." + form)]
    begin = time.monotonic()
    subprocess.run(words, check=True)
    took = time.monotonic() - begin
    memory = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
    log = os.path.getsize(os.path.join(folder, "console.log")) / 1e6
    print("%d rows, a log of %.1f MB, %d forms: %.2f s, %.0f MB" %
          (ROWS, log, len(FORMS), took, memory))
    for form in FORMS:
        print("  %-6s %9d bytes" % (form, os.path.getsize(os.path.join(folder, "out." + form))))


if __name__ == "__main__":
    make(sys.argv[1])
    if len(sys.argv) == 4:
        measure(sys.argv[3], sys.argv[1])
