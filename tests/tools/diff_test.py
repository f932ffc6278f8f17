#!/usr/bin/env python3
"""What `orvml diff`, `patch` and `apply` do, and how they end."""
import unittest

import numpy as np

import exchange_reader
import fingerprint
from shell import INT, Shell, documents, exchange_writer, tetrahedron

EQUAL = "/OrvInput: the comparison of the flat interface calls them equal\n"


class Diff(Shell):
    def setUp(self):
        super().setUp()
        self.write("a.h5", tetrahedron())

    def write_changed(self):
        document = tetrahedron()
        document.parameters[b"growth"] = 1.25
        document.cells["Faces"].attributes[b"size"].values[2] = 1 + 1e-6
        self.write("b.h5", document)

    def test_same_documents_end_with_0(self):
        self.write("b.h5", tetrahedron())
        self.assert_prints("orvml diff a.h5 b.h5", EQUAL)

    def test_differences_are_printed_and_end_with_1(self):
        self.write_changed()
        code, printed, told = self.run_line("orvml diff a.h5 b.h5")
        self.assertEqual((code, told), (1, ""))
        lines = printed.splitlines()
        self.assertTrue(lines[0].startswith("/OrvInput/Faces/Attributes/size: 1 of 4 values differs"))
        self.assertEqual(lines[1], "/OrvInput/parameters/growth: is 1.5 in the first, 1.25 in the "
                                   "second")
        self.assertEqual(lines[2], "/OrvInput: the comparison of the flat interface calls them "
                                   "different")

    def test_trouble_ends_with_2(self):
        for arguments in ("a.h5 missing.h5", "a.h5", "--absolute x a.h5 a.h5",
                          "--absolute-of size a.h5 a.h5", "--relative -1 a.h5 a.h5"):
            with self.subTest(arguments=arguments):
                code, printed, told = self.run_line(f"orvml diff {arguments}")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn("  cure: ", told)

    def test_tolerances_of_all_and_of_one_name(self):
        self.write_changed()
        for options, code in (("--absolute 0.3", 0), ("--relative 0.2", 0), ("--absolute 1e-5", 1),
                              ("--absolute-of growth=0.3 --absolute-of size=1e-5", 0),
                              ("--absolute-of growth=0.3", 1),
                              ("--relative-of growth=0.2 --relative-of size=1e-5", 0)):
            with self.subTest(options=options):
                self.assertEqual(self.run_line(f"orvml diff --quiet {options} a.h5 b.h5"),
                                 (code, "", ""))

    def test_renumbered_mesh_matches(self):
        document = tetrahedron()
        order = np.array([2, 0, 3, 1])
        document.coordinates = document.coordinates[order]
        document.node_attributes[b"id"].values = document.node_attributes[b"id"].values[order]
        place = np.argsort(order).astype(INT)
        for cells in document.cells.values():
            cells.connectivities = place[cells.connectivities]
        self.write("b.h5", document)
        self.assertEqual(self.run_line("orvml diff -q a.h5 b.h5")[0], 1)
        code, printed, _ = self.run_line("orvml diff --match 1e-9 a.h5 b.h5")
        self.assertEqual(code, 0, printed)
        self.assertIn("  nodes: 4 matched, 0 only in the first, 0 only in the second, renumbered\n",
                      printed)
        match = self.json_of("orvml diff --json --match 1e-9 a.h5 b.h5", "diff")["documents"][0]
        self.assertEqual(match["match"]["nodes"]["matched"], 4)

    def test_json_has_where_the_difference_is_largest(self):
        self.write_changed()
        told = self.json_of("orvml diff --json a.h5 b.h5", "diff", code=1)
        size = told["documents"][0]["differences"][0]
        self.assertEqual((size["object"], size["count"], size["worst"]),
                         ("/Faces/Attributes/size", 1, 2))
        self.assertAlmostEqual(size["largest"], 1e-6)

    def test_document_in_one_file_alone_is_a_difference(self):
        self.write("b.h5", tetrahedron(), kind="OrvOutput")
        self.assert_prints("orvml diff a.h5 b.h5", "/OrvInput is in the first alone\n"
                           "/OrvOutput is in the second alone\n", code=1)
        self.json_of("orvml diff --json a.h5 b.h5", "diff", code=1)


class Patch(Shell):
    def write_both(self, first, second):
        exchange_writer.write_file(self.folder / "a.h5", first)
        exchange_writer.write_file(self.folder / "b.h5", second)

    def assert_same_content(self, name, other):
        prints = [{kind: fingerprint.of(document, kind[3:].lower().encode()) for kind, document
                   in exchange_reader.read_file(self.folder / file).items()} for file in (name, other)]
        self.assertEqual(*prints)

    def test_applied_patch_gives_the_second_file(self):
        changed = tetrahedron()
        changed.parameters[b"growth"] = 9.0
        for first, second in (({"OrvInput": tetrahedron()}, {"OrvInput": changed}),
                              ({"OrvInput": tetrahedron()},
                               {"OrvInput": documents.full_document(), "OrvOutput": changed}),
                              ({"OrvOutput": documents.full_document()}, {"OrvInput": changed})):
            self.write_both(first, second)
            self.assert_prints("orvml patch a.h5 b.h5 change.patch", "", code=1)
            self.assert_prints("orvml apply change.patch a.h5 c.h5", "")
            self.assert_same_content("c.h5", "b.h5")

    def test_patch_of_the_same_file_ends_with_0_and_changes_nothing(self):
        self.write_both({"OrvInput": tetrahedron()}, {"OrvInput": tetrahedron()})
        self.assert_prints("orvml patch a.h5 b.h5 change.patch", "")
        self.assert_prints("orvml apply change.patch a.h5 c.h5", "")
        self.assert_same_content("c.h5", "a.h5")

    def test_wrong_base_is_refused_with_1_and_nothing_is_written(self):
        self.write_both({"OrvInput": tetrahedron()}, {"OrvInput": documents.plane_document()})
        self.run_line("orvml patch a.h5 b.h5 change.patch")
        code, _, told = self.run_line("orvml apply change.patch b.h5 c.h5")
        self.assertEqual(code, 1)
        self.assertIn("change.patch: ", told)
        self.assertIn("[orvml.patch.wrong-base]", told)
        self.assertFalse((self.folder / "c.h5").exists())

    def test_file_that_is_no_patch_is_trouble(self):
        self.write_both({"OrvInput": tetrahedron()}, {"OrvInput": tetrahedron()})
        code, _, told = self.run_line("orvml apply a.h5 b.h5 c.h5")
        self.assertEqual(code, 2)
        self.assertIn("[orvml.patch.none]", told)

    def test_patches_go_through_pipes(self):
        self.write_both({"OrvInput": tetrahedron()}, {"OrvInput": documents.plane_document()})
        self.assert_prints("orvml patch a.h5 b.h5 - | orvml apply - a.h5 - >c.h5", "")
        self.assert_same_content("c.h5", "b.h5")

    def test_few_changed_values_of_a_large_file_make_a_small_patch(self):
        large = tetrahedron()
        large.coordinates = np.arange(300000, dtype=float).reshape(100000, 3)
        large.node_attributes = {}
        changed = tetrahedron()
        changed.coordinates, changed.node_attributes = large.coordinates, {}
        changed.parameters = {b"growth": 2.0, b"size": 3.0}
        self.write_both({"OrvInput": large}, {"OrvInput": changed})
        self.run_line("orvml patch a.h5 b.h5 change.patch")
        self.assertLess((self.folder / "change.patch").stat().st_size, 20000)


if __name__ == "__main__":
    unittest.main()
