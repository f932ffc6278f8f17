#!/usr/bin/env python3
"""What `orvml link-vtk` tells, how it ends, and what the other commands make of linked files."""
import os
import re
import unittest

import numpy as np

from shell import Cells, INT, Shell, TypeGroup, tetrahedron

NAME = ("orvml: note: part.h5: ParaView opens it under a name that ends in .hdf; a symbolic link will "
        "do\n")


class LinkVtk(Shell):
    def setUp(self):
        super().setUp()
        self.write("part.hdf", tetrahedron())
        self.write("same.h5", tetrahedron())

    def read(self, name="part.hdf"):
        return (self.folder / name).read_bytes()

    def test_what_became_of_each_part_is_printed(self):
        code, printed, told = self.run_line("orvml link-vtk part.hdf")
        self.assertEqual((code, told), (0, ""))
        lines = printed.splitlines()
        self.assertRegex(lines[0], r"^part\.hdf: the input with 4 points and 5 cells, from \S+ KB to \S+ KB$")
        self.assertEqual(lines[1:], [
            "  linked: /OrvInput/Nodes/coordinates is /VTKHDF/Points",
            "  linked: /OrvInput/Faces/connectivities is part of /VTKHDF/Connectivity",
            "  linked: /OrvInput/Elements/connectivities is part of /VTKHDF/Connectivity",
            "  linked: /OrvInput/Nodes/Attributes/id is /VTKHDF/PointData/id",
            "  linked: /OrvInput/Faces/Attributes/size is part of /VTKHDF/CellData/size",
            "  padded: /OrvInput/Faces/Attributes/size is padded with nan for elements",
            "  copied: /OrvInput/parameters is copied to /VTKHDF/FieldData",
            "  linked: /OrvInput/ParametersVector/sizes is /VTKHDF/FieldData/sizes"])

    def test_json_is_as_its_schema_says(self):
        before = len(self.read())
        found = self.json_of("orvml link-vtk --json part.hdf", "link-vtk")
        self.assertEqual((found["document"], found["points"], found["cells"]), ("input", 4, 5))
        self.assertEqual((found["bytesBefore"], found["bytesAfter"]), (before, len(self.read())))
        self.assertEqual({note["kind"] for note in found["changes"]}, {"linked", "copied", "padded"})
        removed = self.json_of("orvml link-vtk --json --remove part.hdf", "link-vtk")
        self.assertEqual((removed["isLinked"], removed["wasLinked"]), (False, True))

    def test_removal_is_told(self):
        self.run_line("orvml link-vtk part.hdf")
        code, printed, told = self.run_line("orvml link-vtk --remove part.hdf")
        self.assertEqual((code, told), (0, ""))
        self.assertRegex(printed, r"^part\.hdf: from \S+ KB to \S+ KB\n$")
        self.assert_prints("orvml link-vtk --remove part.hdf",
                           "part.hdf: there was no group to remove\n")

    def test_name_that_paraview_does_not_open_is_told(self):
        code, _, told = self.run_line("ln part.hdf part.h5; orvml link-vtk part.h5")
        self.assertEqual((code, told), (0, NAME))

    def test_example_of_the_help_runs(self):
        printed = self.run_line("orvml link-vtk --help")[1]
        example = re.search(r"Example:\n  (.+)\n", printed).group(1)
        self.assertEqual(self.run_line(example)[0], 0)

    def test_kinds_of_cells_are_chosen(self):
        found = self.json_of("orvml link-vtk --json --strict --only faces part.hdf", "link-vtk")
        self.assertEqual((found["cells"], {note["kind"] for note in found["changes"]}),
                         (4, {"linked", "copied"}))
        self.assertEqual(self.json_of("orvml link-vtk --json --only edges,elements part.hdf",
                                      "link-vtk")["cells"], 1)

    def test_strict_refuses_and_leaves_the_file(self):
        before = self.read()
        code, printed, told = self.run_line("orvml link-vtk --strict part.hdf")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("part.hdf: would not be shown as it is: /OrvInput/Faces/Attributes/size is "
                      "padded with nan for elements [orvml.convert.loses]\n  cure: ", told)
        self.assertEqual(self.read(), before)

    def test_trouble_ends_with_2_and_leaves_the_file(self):
        self.damage("same.h5", lambda file: file.create_group("VTKHDF"))
        document = tetrahedron()
        document.cells["Elements"] = Cells([TypeGroup(4, 4, 1)], np.array([0, 1, 2, 9], INT), {})
        self.write("bad.hdf", document)
        for arguments, sentence in (
                ("missing.hdf", "there is no such file"), ("-", "standard input has none"),
                ("--output part.hdf", "holds no output document"),
                ("--only nodes part.hdf", "nodes"), ("--remove --strict part.hdf", "excludes"),
                ("same.h5", "/VTKHDF was made by another program [orvml.vtk.group-of-others]"),
                ("--remove same.h5", "/VTKHDF was made by another program"),
                ("bad.hdf", "/OrvInput/Elements has a cell, number 0, that names node 9 of 4 "
                            "[orvml.convert.bad-index]")):
            with self.subTest(arguments=arguments):
                before = {name: self.read(name) for name in ("part.hdf", "same.h5", "bad.hdf")}
                code, printed, told = self.run_line(f"orvml link-vtk {arguments}")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn(sentence, told)
                self.assertIn("  cure: ", told)
                self.assertEqual({name: self.read(name) for name in before}, before)

    def test_other_commands_find_what_they_found(self):
        lines = ["orvml check --strict {}", "orvml info --json {}", "orvml text {}",
                 "orvml extract {} Faces/Attributes/size"]
        before = [self.run_line(line.format("part.hdf")) for line in lines]
        self.run_line("orvml link-vtk part.hdf")
        after = [self.run_line(line.format("part.hdf")) for line in lines]
        size = r'"fileBytes": \d+|"bytes": \d+'
        self.assertEqual([re.sub(size, "", run[1]) for run in after],
                         [re.sub(size, "", run[1]) for run in before])
        self.assertEqual([(run[0], run[2]) for run in after], [(run[0], run[2]) for run in before])
        self.assertEqual(self.run_line("orvml diff --quiet part.hdf same.h5"), (0, "", ""))

    def test_edit_tells_that_the_file_has_to_be_linked_again(self):
        self.run_line("orvml link-vtk part.hdf")
        self.assertEqual(self.run_line("orvml edit part.hdf --param growth=1.25"),
                         (0, "", "orvml: note: part.hdf: VTK opens it no more; orvml link-vtk links it "
                                 "again\n"))
        self.assert_prints("orvml link-vtk --remove part.hdf",
                           "part.hdf: there was no group to remove\n")

    def test_upgrade_and_rescue_keep_everything_but_the_link(self):
        self.run_line("orvml link-vtk part.hdf")
        for command in ("upgrade", "rescue"):
            with self.subTest(command=command):
                code, printed, told = self.run_line(f"orvml {command} part.hdf new.h5")
                self.assertEqual((code, told), (0, ""))
                self.assertIn("everything is kept\n  changed: /VTKHDF is left out", printed)

    def test_link_leads_to_the_file_which_stays_where_it_is(self):
        os.symlink("part.hdf", self.folder / "link.hdf")
        self.assertEqual(self.run_line("orvml link-vtk link.hdf")[0], 0)
        self.assertTrue((self.folder / "link.hdf").is_symlink())


if __name__ == "__main__":
    unittest.main()
