#!/usr/bin/env python3
"""Damaged, deformed and old files: whatever is in them, each command ends as it says."""
import unittest

import h5py
import numpy as np

from shell import Shell, documents, exchange_writer, tetrahedron

LINES = ("info {0}", "info --fast --json {0}", "check --quality {0}", "check --sarif {0}",
         "diff {0} part.h5", "diff --match 1 part.h5 {0}", "patch part.h5 {0} out", "text {0}",
         "apply {0} part.h5 out", "extract {0} coordinates", "edit {0} --param a=1")


def replaced(path, values):
    def change(file):
        del file[path]
        file[path] = values
    return change


DEFORMED = {
    "no version": lambda file: file.attrs.__delitem__("ORVMESHLIBRARY_FORMAT_VERSION"),
    "another marker": lambda file: exchange_writer.write_text(file, b"FORMAT", b"OTHER"),
    "dimension 7": replaced("OrvInput/dimension", np.array([7], "int32")),
    "no dimension": lambda file: file.__delitem__("OrvInput/dimension"),
    "coordinates of texts": replaced("OrvInput/Nodes/coordinates", np.array([b"a"])),
    "coordinates of rank 3": replaced("OrvInput/Nodes/coordinates", np.zeros((2, 3, 3))),
    "negative count": replaced("OrvInput/Faces/number_of_elements_by_type", np.array([-4], "int32")),
    "huge count": replaced("OrvInput/Faces/number_of_elements_by_type", np.array([2**31 - 1], "int32")),
    "wild indices": replaced("OrvInput/Faces/connectivities", np.full(12, -2**31, "int32")),
    "indices of 64 bits": replaced("OrvInput/Faces/connectivities", np.full(12, 2**40, "int64")),
    "parameters are a group": replaced("OrvInput/parameters", np.zeros(0)),
    "link to itself": lambda file: file.__setitem__("OrvInput/Edges", h5py.SoftLink("/OrvInput/Edges")),
    "link to another file": lambda file: file.__setitem__(
        "OrvInput/Edges", h5py.ExternalLink("elsewhere.h5", "/OrvInput/Edges")),
    "the document is in itself": lambda file: file.__setitem__("OrvInput/Elements/Attributes",
                                                               file["OrvInput"]),
}


class Hostile(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.h5", tetrahedron())

    def assert_all_end_well(self, name):
        for line in LINES:
            code, _, told = self.run_line(f"cp {name} copy.h5; orvml " + line.format("copy.h5"))
            self.assertIn(code, (0, 1, 2, 3), (line, told))
            self.assertNotIn("HDF5-DIAG", told)
            if code == 3 or (code == 2 and not line.startswith("check")):
                self.assertIn("copy.h5", told, line)

    def test_deformed_files(self):
        for name, change in DEFORMED.items():
            with self.subTest(name):
                self.write("bad.h5", tetrahedron())
                self.damage("bad.h5", change)
                self.assert_all_end_well("bad.h5")

    def test_cut_files(self):
        content = (self.folder / "part.h5").read_bytes()
        for size in (0, 1, 8, 100, len(content) // 2, len(content) - 1):
            with self.subTest(size=size):
                (self.folder / "bad.h5").write_bytes(content[:size])
                self.assert_all_end_well("bad.h5")

    def test_flipped_bytes(self):
        self.write("part.h5", documents.full_document())
        content = np.frombuffer((self.folder / "part.h5").read_bytes(), "uint8")
        random = np.random.default_rng(14)
        for trial in range(12):
            with self.subTest(trial=trial):
                flipped = content.copy()
                flipped[random.integers(0, len(flipped), 20)] ^= 255
                (self.folder / "bad.h5").write_bytes(flipped)
                self.assert_all_end_well("bad.h5")

    def test_old_layout_is_looked_at_and_checked_with_a_note(self):
        self.write_old("old.h5")

        def change(file):
            group = file["OrvInput"].create_group("GenericAttributes")
            group.attrs.create("MAX_ID", np.array([1], "int32"))
            group["0"] = np.array([0.5, 0.25])

        self.damage("old.h5", change)
        self.assertIn("old.h5: format 1.3, ", self.run_line("orvml info old.h5")[1])
        told = self.json_of("orvml info --json old.h5", "info")["files"][0]["documents"][0]
        self.assertEqual((len(told["parameters"]), told["nodes"]["count"]), (11, 4))
        code, printed, _ = self.run_line("orvml check old.h5")
        self.assertEqual(code, 0)
        self.assertIn("note orvml.file.legacy-layout", printed)
        self.assert_all_end_well("old.h5")


if __name__ == "__main__":
    unittest.main()
