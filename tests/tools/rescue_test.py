#!/usr/bin/env python3
"""What `orvml upgrade` and `rescue` write and tell."""
import unittest

import numpy as np

import exchange_reader
from shell import INT, Shell, tetrahedron


class Rescue(Shell):
    def write_damaged(self):
        document = tetrahedron()
        document.cells["Faces"].connectivities[3] = 99
        self.write("old.h5", document)
        self.damage("old.h5", lambda file: file["OrvInput"].create_group("Extras"))

    def test_sound_file_is_kept_whole(self):
        self.write("old.h5", tetrahedron())
        self.assert_prints("orvml rescue old.h5 new.h5", "old.h5: everything is kept\n")
        self.assertEqual(self.run_line("orvml diff -q old.h5 new.h5")[0], 0)

    def test_what_is_lost_is_told_and_the_rest_is_sound(self):
        self.write_damaged()
        code, printed, told = self.run_line("orvml rescue old.h5 new.h5")
        self.assertEqual((code, told), (1, ""))
        self.assertRegex(printed, r"^old\.h5: \d objects lost, wholly or in part\n")
        self.assertIn("  lost: /OrvInput/Extras ", printed)
        self.assertIn("[orvml.mesh.index-out-of-range]\n    at face 1\n", printed)
        document = exchange_reader.read_file(self.folder / "new.h5")["OrvInput"]
        self.assertEqual(document.cells["Faces"].number_of_cells, 3)
        self.assertIn(self.run_line("orvml check new.h5")[0], (0, 1))

    def test_report_goes_beside_a_file_that_goes_to_standard_output(self):
        self.write_damaged()
        code, _, told = self.run_line("cat old.h5 | orvml rescue - - >new.h5")
        self.assertEqual(code, 1)
        self.assertRegex(told, r"^standard input: \d objects lost")
        self.assertEqual(exchange_reader.read_file(self.folder / "new.h5")["OrvInput"].parameters,
                         tetrahedron().parameters)

    def test_unsound_cells_are_kept_when_asked(self):
        document = tetrahedron()
        document.cells["Elements"].connectivities = np.array([1, 0, 2, 3], INT)
        self.write("old.h5", document)
        self.assertEqual(self.run_line("orvml rescue old.h5 new.h5")[0], 1)
        self.assert_prints("orvml rescue --keep-unsound-cells old.h5 new.h5",
                           "old.h5: everything is kept\n")

    def test_trouble_writes_nothing(self):
        (self.folder / "old.h5").write_text("no such file")
        self.write("part.h5", tetrahedron())
        for line, sentence in (("orvml rescue old.h5 new.h5", "old.h5: "),
                               ("orvml rescue part.h5 part.h5", "part.h5: is the file that is read"),
                               ("orvml upgrade part.h5 part.h5", "part.h5: is the file that is read")):
            with self.subTest(line=line):
                code, printed, told = self.run_line(line)
                self.assertEqual((code, printed), (2, ""))
                self.assertIn(sentence, told)
                self.assertIn("\n  cure: ", told)
        self.assertFalse((self.folder / "new.h5").exists())


class Upgrade(Shell):
    def test_older_layout_gets_names_and_loses_nothing(self):
        self.write_old("old.h5")
        code, printed, told = self.run_line("orvml upgrade old.h5 new.h5")
        self.assertEqual((code, told), (0, ""))
        self.assertTrue(printed.startswith("old.h5: format 1.3, everything is kept\n  changed: "))
        upgraded = exchange_reader.read_file(self.folder / "new.h5")["OrvInput"]
        self.assertEqual(sorted(upgraded.parameters.values()), list(np.arange(11) / 4))
        self.assertEqual(self.run_line("orvml check new.h5")[0], 0)

    def test_file_that_would_lose_something_is_refused(self):
        self.write("old.h5", tetrahedron())
        self.damage("old.h5", lambda file: file["OrvInput"].create_group("Extras"))
        code, _, told = self.run_line("orvml upgrade old.h5 new.h5")
        self.assertEqual(code, 2)
        self.assertIn("old.h5: ", told)
        self.assertFalse((self.folder / "new.h5").exists())


if __name__ == "__main__":
    unittest.main()
