#!/usr/bin/env python3
"""`orvml report` in a shell. What is in its pages is tested where they are made."""
import json
import re
import stat
import unittest

import exchange_writer
from shell import Shell, tetrahedron

MISSING = ("orvml: error: this build of the command has no reports\n"
           "  cure: build it where there are node and npm, as docs/libraries.md says\n")


class Report(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.h5", tetrahedron())
        code, _, told = self.run_line("orvml report part.h5 -o probe.html")
        if told == MISSING:
            self.assertEqual(code, 2)
            self.assertFalse((self.folder / "probe.html").exists())
            self.skipTest("a build without reports, which says so")

    def write_both(self, name):
        other = tetrahedron()
        other.parameters = {b"growth": 2.5}
        exchange_writer.write_file(self.folder / name, {"OrvInput": tetrahedron(), "OrvOutput": other})

    def report_in(self, html):
        begin = '<script type="application/json" id="report">'
        return json.loads(html.split(begin, 1)[1].split("</script", 1)[0])

    def report_of(self, line, name="part.html"):
        code, printed, told = self.run_line(line)
        self.assertEqual((code, told), (0, ""))
        self.assertRegex(printed, rf"^{re.escape(name)}: [0-9.]+ [KM]B\n")
        return self.report_in((self.folder / name).read_text())

    def test_pages_are_named_after_their_files(self):
        (self.folder / "below").mkdir()
        self.write("below/other.h5", tetrahedron())
        report = self.report_of("orvml report below/other.h5", "other.html")
        self.assertEqual(report["title"], "other.h5")
        self.assertEqual([document["name"] for document in report["documents"]], ["other.h5"])

    def test_pages_tell_of_their_file_and_its_findings(self):
        document = self.report_of("orvml report part.h5 -o part.html")["documents"][0]
        self.assertEqual(document["file"]["bytes"], (self.folder / "part.h5").stat().st_size)
        self.assertRegex(document["file"]["formatVersion"], r"^\d+\.\d+")
        printed = json.loads(self.run_line("orvml check --json part.h5")[1])
        self.assertEqual([finding["code"] for finding in document["findings"]],
                         [finding["code"] for finding in printed["files"][0]["findings"]])

    def test_checks_can_be_left_out_and_titles_given(self):
        report = self.report_of("orvml report part.h5 -o part.html --no-check --title '<Part>'")
        self.assertIsNone(report["documents"][0]["findings"])
        self.assertEqual(report["title"], "<Part>")

    def test_two_files_are_compared(self):
        other = tetrahedron()
        other.coordinates[0, 0] = 0.125
        self.write("other.h5", other)
        report = self.report_of("orvml report part.h5 other.h5 -o part.html")
        self.assertEqual(report["title"], "part.h5 and other.h5")
        self.assertEqual([difference["object"] for difference in report["differences"]],
                         ["/Nodes/coordinates"])

    def test_the_output_is_shown_unless_the_input_is_meant(self):
        self.write_both("both.h5")
        for options, kinds in (("", ["output"]), ("--input", ["input"]), ("--output", ["output"]),
                               ("--both", ["input", "output"])):
            with self.subTest(options=options):
                report = self.report_of(f"orvml report both.h5 -o part.html {options}")
                self.assertEqual([document["kind"] for document in report["documents"]], kinds)

    def test_documents_that_there_are_not_are_refused(self):
        self.assert_prints("orvml report part.h5 --output", "", 2,
                           "orvml: error: part.h5: there is no output document\n"
                           "  cure: leave --output out\n")
        self.assert_prints("orvml report part.h5 --both", "", 2,
                           "orvml: error: part.h5: there is no output document\n"
                           "  cure: leave --both out\n")
        for options in ("--input --output", "--both --input", "part.h5 --both"):
            self.assertEqual(self.run_line(f"orvml report part.h5 {options}")[0], 2, options)

    def test_standard_input_and_output_do(self):
        code, page, told = self.run_line("orvml report - -o - <part.h5")
        self.assertEqual(code, 0)
        self.assertRegex(told, r"^standard output: [0-9.]+ [KM]B\n$")
        self.assertEqual(self.report_in(page)["documents"][0]["name"], "standard input")
        self.assertEqual(self.run_line("orvml report - <part.h5")[::2],
                         (2, "orvml: error: the page of standard input has no name\n"
                             "  cure: name it with -o\n"))

    def test_files_are_replaced_as_a_whole_and_keep_their_rights(self):
        old = self.folder / "old.html"
        old.write_text("old")
        old.chmod(0o640)
        self.report_of("orvml report part.h5 -o old.html", "old.html")
        self.assertEqual(stat.S_IMODE(old.stat().st_mode), 0o640)
        self.assertEqual([path.name for path in self.folder.glob(".*")], [])

    def test_the_file_that_is_shown_is_not_replaced(self):
        before = (self.folder / "part.h5").read_bytes()
        (self.folder / "link").symlink_to("part.h5")
        for name in ("part.h5", "./part.h5", "link"):
            self.assert_prints(f"orvml report part.h5 -o {name}", "", 2,
                               f"orvml: error: {name}: is the file that is shown\n"
                               "  cure: name another file with -o\n")
        self.assertEqual((self.folder / "part.h5").read_bytes(), before)

    def test_files_with_findings_are_shown_all_the_same(self):
        def change(file):
            file["OrvInput/Faces/connectivities"][1] = 99
            file["OrvInput/Nodes/coordinates"][3] = float("nan")

        self.damage("part.h5", change)
        code, printed, told = self.run_line("orvml report part.h5 -o part.html")
        self.assertEqual((code, told), (0, ""))
        self.assertIn("\n  4 faces are not drawn: ", printed)
        document = self.report_in((self.folder / "part.html").read_text())["documents"][0]
        self.assertIn("orvml.mesh.index-out-of-range",
                      [finding["code"] for finding in document["findings"]])

    def test_what_is_no_exchange_file_is_told(self):
        (self.folder / "text").write_text("no mesh")
        code, printed, told = self.run_line("orvml report text")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("orvml.file.not-hdf5", told)
        self.assertFalse((self.folder / "text.html").exists())


if __name__ == "__main__":
    unittest.main()
