#!/usr/bin/env python3
"""How the command behaves in a shell: on terminals, in pipes, when it is interrupted, and its help."""
import os
import pathlib
import re
import signal
import subprocess
import time
import unittest

import numpy as np

import exchange_reader
from shell import (COMMANDS, INT, SOURCE, Cells, Shell, TypeGroup, documents, exchange_writer,
                   run_on_terminal, tetrahedron)


class Terminal(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.h5", documents.full_document())

    def show(self, line, **more):
        return run_on_terminal(line, self.folder, self.environment(**more))

    def test_colours_are_on_a_terminal_alone_and_obey_the_user(self):
        code, shown = self.show("orvml check part.h5")
        self.assertEqual(code, 2)
        self.assertIn("\x1b[31merror\x1b[0m", shown)
        for line, more in (("orvml check part.h5", {"NO_COLOR": "1"}),
                           ("orvml check part.h5 | cat", {})):
            self.assertNotIn("\x1b", self.show(line, **more)[1])
        self.assertIn("\x1b[31merror", self.show("orvml check part.h5", NO_COLOR="")[1])

    def test_messages_have_colours_of_their_own_stream(self):
        self.assertIn("\x1b[31merror: \x1b[0mmissing.h5", self.show("orvml info missing.h5")[1])
        self.assertNotIn("\x1b", self.show("orvml info missing.h5 2>&1 | cat")[1])

    def test_progress_is_shown_of_what_takes_long_and_taken_away(self):
        line = "(sleep 1; cat part.h5) | orvml info --fast - >out"
        shown = self.show(line)[1]
        self.assertRegex(shown, r"^(\r\x1b\[Kreading standard input, (\d[^,]*, )?0\.\d s)+")
        self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown))
        self.assertEqual(self.show(line + " 2>messages")[1], "")
        self.assertEqual((self.folder / "messages").read_text(), "")

    def test_progress_is_not_shown_of_what_is_done_at_once(self):
        self.assertEqual(self.show("orvml check part.h5 >out")[1], "")

    def test_binary_output_is_not_for_terminals(self):
        for line in ("orvml new -", "orvml extract part.h5 coordinates --format npy"):
            code, shown = self.show(line)
            self.assertEqual(code, 2)
            self.assertIn("standard output is a terminal", shown)


class Streams(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.h5", tetrahedron())

    def test_full_disk_is_told(self):
        for line in ("orvml info part.h5", "orvml text part.h5", "orvml check --json part.h5",
                     "orvml extract part.h5 coordinates", "orvml new -", "orvml --help"):
            with self.subTest(line=line):
                code, _, told = self.run_line(f"{line} >/dev/full")
                self.assertEqual((code, told), (
                    3 if "check" in line else 2,
                    "orvml: error: standard output cannot be written: No space left on device\n"))

    def test_reader_that_wants_no_more_is_no_error(self):
        large = tetrahedron()
        large.coordinates = np.arange(300000, dtype=float).reshape(100000, 3)
        large.node_attributes = {}
        self.write("large.h5", large)
        for line in ("orvml text large.h5", "orvml extract large.h5 coordinates",
                     "orvml edit - --param a=1 <large.h5"):
            with self.subTest(line=line):
                self.assert_prints(f"{line} | head -c 1 >/dev/null; echo ${{PIPESTATUS[0]}}", "141\n")


class Interrupted(Shell):
    """A large file is edited and interrupted at random moments."""

    def write_large(self):
        random = np.random.default_rng(3)
        large = tetrahedron()
        large.coordinates = random.random((400000, 3))
        large.node_attributes = {b"size": documents.doubles(*range(4))}
        large.node_attributes[b"size"].values = random.random(400000)
        large.cells = {"Elements": Cells([TypeGroup(4, 4, 400000)],
                                         random.integers(0, 400000, 1600000).astype(INT), {})}
        self.write("part.h5", large)

    def interrupt_after(self, seconds, signal_number):
        command = subprocess.Popen(["orvml", "edit", "part.h5", "--param", "growth=2"],
                                   cwd=self.folder, env=self.environment(), stderr=subprocess.PIPE)
        time.sleep(seconds)
        command.send_signal(signal_number)
        told = command.communicate(timeout=60)[1]
        return command.returncode, told

    def test_old_or_new_file_stays_and_nothing_beside_it(self):
        self.write_large()
        interrupted = 0
        for i in range(24):
            number = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)[i % 3]
            code, told = self.interrupt_after(0.004 * i, number)
            with self.subTest(after=0.004 * i):
                self.assertIn((code, told), ((0, b""), (-number, b"")))
                interrupted += code != 0
                self.assertEqual(sorted(os.listdir(self.folder)), ["part.h5", "passing"])
                growth = exchange_reader.read_file(self.folder / "part.h5")["OrvInput"].parameters
                self.assertIn(growth[b"growth"], (1.5, 2))
        self.assertGreater(interrupted, 0)

    def test_what_passed_through_goes_too(self):
        command = subprocess.Popen(["bash", "-c", "(echo some; sleep 20) | exec orvml info -"],
                                   cwd=self.folder, env=self.environment(), start_new_session=True)
        for _ in range(200):
            if list(self.passing.glob("*/standard input")):
                break
            time.sleep(0.05)
        self.assertTrue(list(self.passing.iterdir()))
        os.killpg(command.pid, signal.SIGINT)
        command.wait(60)
        for _ in range(200):
            if not list(self.passing.iterdir()):
                break
            time.sleep(0.05)
        self.assertEqual(list(self.passing.iterdir()), [])


class Help(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.h5", tetrahedron())
        self.write("before.h5", tetrahedron())
        self.write("old.h5", tetrahedron())
        self.write("after.h5", documents.full_document())
        self.write("part.hdf", documents.full_document())
        (self.folder / "part.stl").write_text(
            "solid\nfacet\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendfacet\nendsolid\n")

    def example_of(self, command):
        code, printed, _ = self.run_line(f"orvml {command} --help")
        self.assertEqual(code, 0)
        return re.search(r"^Example:\n  (.*)$", printed, re.M).group(1)

    def test_example_of_each_command_works(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                if command == "apply":
                    self.run_line(self.example_of("patch"))
                code, _, told = self.run_line(self.example_of(command))
                self.assertEqual(told, "")
                self.assertEqual(code, 1 if command == "diff" else 0)

    def test_help_lists_every_command(self):
        printed = self.run_line("orvml --help")[1]
        listed = re.findall(r"^  ([\w-]+)  ", printed.split("Subcommands:")[1], re.M)
        self.assertEqual(sorted(listed), sorted(COMMANDS))

    def test_manual_page_knows_every_option(self):
        manual = (SOURCE / "tools/orvml/orvml.1").read_text().replace("\\-", "-")
        for command in COMMANDS:
            for option in self.options_of(command):
                with self.subTest(command=command, option=option):
                    self.assertIn(option, manual)

    def test_manual_page_has_no_mistakes_of_form(self):
        page = SOURCE / "tools/orvml/orvml.1"
        self.assert_prints(f"groff -man -Tutf8 -ww '{page}' >/dev/null", "")

    def test_wrong_use_is_told_with_where_to_look(self):
        self.assert_prints("orvml frob", "", code=2, told="orvml: error: there is no command 'frob'\n"
                                                         "  cure: see orvml --help\n")
        for line, cure in (("orvml", "orvml --help"), ("orvml info", "orvml info --help"),
                           ("orvml diff a", "orvml diff --help"),
                           ("orvml extract a b --format odd", "orvml extract --help")):
            code, printed, told = self.run_line(line)
            self.assertEqual((code, printed), (2, ""))
            self.assertIn(f"  cure: see {cure}\n", told)

    def test_version_is_that_of_the_library(self):
        self.assert_prints("orvml --version", "1.10.0\n")


if __name__ == "__main__":
    unittest.main()
