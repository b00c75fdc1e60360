"""The page for people: every row is in it as text, every link leads somewhere, nothing leaves it."""
import json
import re
import subprocess
import unittest
from html.parser import HTMLParser

import runs
from runs import Console, FAILED, ReportTest

VOID = {"meta", "link", "input", "br", "col", "img"}
NAME = "TC_<img src=x onerror=alert(1)>&amp;\"'"


class Page(HTMLParser):
    """The page as a tree's walk: what stands where, and whether all that opens is closed."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.open, self.elements, self.text, self.errors = [], [], {}, []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        self.elements.append((tag, dict(attributes)))
        if tag not in VOID:
            self.open.append((tag, dict(attributes).get("id")))

    def handle_endtag(self, tag):
        if not self.open or self.open.pop()[0] != tag:
            self.errors.append("</%s> at %s" % (tag, self.getpos()))

    def handle_data(self, data):
        for _, name in self.open:
            if name:
                self.text[name] = self.text.get(name, "") + data


class HtmlTest(ReportTest):
    def page(self, folder, *words):
        text = self.zkreport("write", folder, "--html", "-", *words)
        page = Page(text)
        self.assertEqual((page.errors, page.open), ([], []))
        names = [attributes["id"] for _, attributes in page.elements if "id" in attributes]
        self.assertEqual(len(names), len(set(names)))
        for tag, attributes in page.elements:
            for key in ("href", "src", "action"):
                link = attributes.get(key)
                if link is None or link == "data:,":
                    continue
                self.assertTrue(link.startswith("#") and link[1:] in names, link)
            self.assertFalse([key for key in attributes if key.startswith("on")], attributes)
            self.assertIn(tag, {
                "html", "head", "meta", "title", "link", "style", "body", "a", "main", "h1", "h2",
                "h3", "p", "ul", "ol", "li", "div", "b", "nav", "table", "thead", "tbody", "tr",
                "th", "td", "i", "span", "small", "article", "details", "summary", "pre", "button",
                "section", "colgroup", "col", "input", "select", "option", "fieldset", "legend",
                "label", "output", "script"})
        self.assertNotRegex(text, r"https?://|url\(|@import|[\x00-\x08\x0b-\x1f\x7f]")
        return page

    def make(self, **options):
        rows = [("TC_1", "Y", "Pass"), (NAME, "Y", "Fail"), ("TC_3", "Y", "N/A"),
                ("TC_4", "Y", "Manual")]
        log = Console().start().setup("GPIO").case(1, "TC_1", took_ms=4000)
        log.begin(2, NAME).raw("before </pre></script><b>markup</b>\x07\n" + runs.RED +
                               "[f][1]expect 1, but actually 2 & more \n" + runs.RESET)
        log.end(2, NAME, "FAILED", 1500).begin(3, "TC_3").monitor_reboot().start().over()
        return self.run_folder("bench", {"GPIO": rows, "PM": rows[:1]}, log=log, **options)

    def test_all_rows_are_text_and_all_links_lead_somewhere(self):
        page = self.page(self.make())
        rows = {name: page.text[name] for name in page.text if re.fullmatch(r"r-\d+-\d+", name)}
        self.assertEqual(len(rows), 5)
        self.assertIn(NAME, rows["r-0-1"])
        self.assertIn("Fail", rows["r-0-1"])
        self.assertIn("expect 1, but actually 2 & more", rows["r-0-1"])
        self.assertIn("went down", rows["r-0-2"])
        self.assertIn("4.0 s", rows["r-0-0"])

    def test_what_is_bad_stands_with_its_log(self):
        page = self.page(self.make())
        self.assertEqual({name for name in page.text if name.startswith("f-")}, {"f-0-1", "f-0-2"})
        failure = page.text["f-0-1"]
        self.assertIn("before </pre></script><b>markup</b>\u2407", failure)
        self.assertIn("1.5 s", failure)
        spans = [attributes.get("class") for tag, attributes in page.elements if tag == "span"]
        self.assertIn("c1 b", spans)
        self.assertIn("monitor ran the reboot command", page.text["f-0-2"])

    def test_known_failures_change_the_verdict(self):
        entries = [{"case": "GPIO/*", "reason": "<i>old</i>", "until": "2030-01-01"}]
        expect = self.write("e.json", json.dumps({"board": "b", "expect": entries}))
        folder = self.make()
        text = self.zkreport("write", folder, "--html", "-")
        self.assertIn("Failed: 2 rows need a look", text)
        text = self.zkreport("write", folder, "--html", "-", "--expect", expect,
                             "--today", "2030-01-01")
        self.assertIn('<p class="verdict good">Passed, 2 known failures', text)
        self.assertIn("&lt;i&gt;old&lt;/i&gt;", text)
        text = self.zkreport("write", folder, "--html", "-", "--expect", expect,
                             "--today", "2030-01-02")
        self.assertIn("Failed: 2 rows need a look", text)

    def test_an_unfinished_run_is_never_called_passed(self):
        folder = self.run_folder("bench", {"GPIO": [("TC_1", "Y", "Pass")]},
                                 {"GPIO": [("TC_1", "Y"), ("TC_2", "N")]})
        self.assertIn('<p class="verdict bad">Not complete', self.zkreport("write", folder,
                                                                           "--html", "-"))

    def test_a_report_in_which_everything_fails_stays_of_a_size_to_be_opened(self):
        rows = [("TC_%d" % i, "Y", "Fail") for i in range(1, 2001)]
        log = Console().start().setup("GPIO")
        for i, (case, _, _) in enumerate(rows):
            log.case(i + 1, case, "FAILED", 1, "line %d of the log\n" % i * 400)
        text = self.zkreport("write", self.run_folder("bench", {"GPIO": rows}, log=log),
                             "--html", "-")
        self.assertLess(len(text), 8000000)
        self.assertEqual(text.count("lines ("), 2000)

    def test_the_script_is_valid(self):
        """Only where there is a program that knows."""
        try:
            subprocess.run(["node", "--version"], check=True, stdout=subprocess.DEVNULL)
        except FileNotFoundError:
            self.skipTest("node is not installed")
        subprocess.run(["node", "--check", runs.SOURCE + "/tools/report/page/report.js"],
                       check=True)


if __name__ == "__main__":
    unittest.main()
