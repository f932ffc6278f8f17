#!/usr/bin/env python3
"""`orvml convert` whatever the format: names, reports, refusals, and files that stay whole."""
import os
import signal
import subprocess
import unittest

import numpy as np

import documents
from shell import COMMAND, INT, Cells, Document, Shell, TypeGroup, exchange_writer, tetrahedron, within_memory

OFF = "OFF\n4 2 0\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n3 0 1 2\n3 0 2 3\n"


def large_mesh(side):
    """Tetrahedra without a meaning, as many as `side` to the third."""
    random = np.random.default_rng(1)
    nodes = random.random((side**3 // 4, 3))
    indices = random.integers(0, len(nodes), (side**3, 4)).astype(INT)
    return Document(dimension=3, coordinates=nodes,
                    cells={"Elements": Cells([TypeGroup(4, 4, side**3)], indices.ravel(), {})})


class Convert(Shell):
    def files(self):
        return sorted(path.name for path in self.folder.iterdir() if path.is_file())

    def test_report_tells_what_became_of_everything(self):
        self.write("part.h5", tetrahedron())
        self.assert_prints("orvml convert part.h5 part.vtu",
                           "part.h5 -> part.vtu (vtu): with changes\n"
                           "  padded: /OrvInput/Elements has no attribute 'size' as other cells do; "
                           "its 1 cell gets nan\n")
        self.assert_prints("orvml convert part.vtu back.h5",
                           "part.vtu -> back.h5 (exchange): everything is there\n")

    def test_report_as_json_is_as_its_schema_says(self):
        self.write("part.h5", tetrahedron())
        self.assertEqual(
            self.json_of("orvml convert part.h5 part.vtu --json", "convert"),
            {"from": {"file": "part.h5", "format": "exchange"},
             "to": {"files": ["part.vtu"], "format": "vtu"}, "isLossless": False,
             "changes": [{"kind": "padded", "object": "/OrvInput/Elements", "count": 1,
                          "sentence": "/OrvInput/Elements has no attribute 'size' as other cells "
                                      "do; its 1 cell gets nan"}]})

    def test_endings_in_any_letters_and_options_name_the_format(self):
        (self.folder / "PART.OFF").write_text(OFF)
        for arguments in ("PART.OFF part.h5", "PART.OFF part.h5 --from off",
                          "- part.h5 --from off <PART.OFF"):
            with self.subTest(arguments=arguments):
                code, printed, told = self.run_line(f"orvml convert {arguments}")
                self.assertEqual((code, told), (0, ""))
                self.assertIn("-> part.h5 (exchange): everything is there\n", printed)
        self.run_line("orvml convert part.h5 part --to vtu")
        self.assertTrue((self.folder / "part").read_bytes().startswith(b"<?xml"))
        code, _, told = self.run_line("orvml convert part.h5 part --to nothing")
        self.assertEqual(code, 2)
        self.assertIn("--to", told)

    def test_unknown_endings_are_refused_for_what_is_written(self):
        self.write("part.step", tetrahedron())  # whatever it is called, it is read
        code, printed, told = self.run_line("orvml convert part.step part.iges")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("part.iges: has an ending that is not known\n  cure: say ", told)
        for arguments in ("part.hdf", "PART.H5", "part.orvml", "part", "part.iges --to exchange"):
            self.assertEqual(self.run_line(f"orvml convert part.step {arguments}")[0], 0)

    def test_document_of_another_format_is_what_is_asked_for(self):
        (self.folder / "part.off").write_text(OFF)
        self.run_line("orvml convert part.off part.h5 --kind output")
        self.assertIn("output document, dimension 3", self.run_line("orvml info part.h5")[1])
        code, _, told = self.run_line("orvml convert part.off part.h5 --dimension 2")
        self.assertEqual(code, 2)
        self.assertIn("there are nodes outside of the plane z = 0", told)
        (self.folder / "plane.off").write_text(OFF.replace("0 0 1", "1 1 0"))
        self.run_line("orvml convert plane.off plane.h5 --dimension 2")
        self.assertIn("input document, dimension 2", self.run_line("orvml info plane.h5")[1])

    def test_file_with_two_documents_needs_a_choice(self):
        exchange_writer.write_file(self.folder / "both.h5", {
            "OrvInput": tetrahedron(), "OrvOutput": documents.plane_document()})
        code, printed, told = self.run_line("orvml convert both.h5 part.vtu")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("  cure: say which is meant, with --input or --output\n", told)
        for option, points in (("--input", 'NumberOfPoints="4" NumberOfCells="5"'),
                               ("--output", 'NumberOfPoints="4" NumberOfCells="1"')):
            self.assertEqual(self.run_line(f"orvml convert both.h5 part.vtu {option}")[0], 0)
            self.assertIn(points.encode(), (self.folder / "part.vtu").read_bytes())

    def test_exchange_files_are_written_again(self):
        exchange_writer.write_file(self.folder / "both.h5", {
            "OrvInput": tetrahedron(), "OrvOutput": documents.plane_document()})
        self.assert_prints("orvml convert both.h5 again.h5",
                           "both.h5 -> again.h5 (exchange): everything is there\n")
        self.assertEqual(self.run_line("orvml diff both.h5 again.h5")[0], 0)

    def test_old_layouts_are_read(self):
        self.write_old("old.h5")
        self.assertEqual(self.run_line("orvml convert old.h5 part.vtu")[0], 0)
        self.assertEqual(self.run_line("orvml convert part.vtu back.h5; orvml diff old.h5 back.h5")[0], 0)

    def test_names_of_files_may_be_anything(self):
        self.write("a part\nö.h5", tetrahedron())
        code, printed, told = self.run_line("orvml convert $'a part\\nö.h5' $'to \\nö.vtu'")
        self.assertEqual((code, told), (0, ""))
        self.assertTrue(printed.startswith("a part\\nö.h5 -> to \\nö.vtu (vtu): with changes\n"))

    def test_links_are_followed_and_rights_stay(self):
        self.write("part.h5", tetrahedron())
        (self.folder / "real.vtu").write_text("old")
        (self.folder / "real.vtu").chmod(0o640)
        (self.folder / "link.vtu").symlink_to("real.vtu")
        self.assertEqual(self.run_line("orvml convert part.h5 link.vtu")[0], 0)
        self.assertTrue((self.folder / "link.vtu").is_symlink())
        self.assertTrue((self.folder / "real.vtu").read_bytes().startswith(b"<?xml"))
        self.assertEqual((self.folder / "real.vtu").stat().st_mode & 0o7777, 0o640)
        self.run_line("umask 027; orvml convert part.h5 new.vtu")
        self.assertEqual((self.folder / "new.vtu").stat().st_mode & 0o7777, 0o640)

    def test_what_cannot_be_written_leaves_the_old_file(self):
        self.write("part.h5", large_mesh(20))
        (self.folder / "part.vtu").write_text("old")
        for line, sentence in (
                ("ulimit -f 100; orvml convert part.h5 part.vtu", "part.vtu: cannot be written: "),
                ("orvml convert part.h5 none/part.vtu", "none/part.vtu: cannot be written: "),
                ("orvml convert part.h5 . --to vtu", ".: is no regular file"),
                ("orvml convert none.h5 part.vtu", "none.h5: there is no such file"),
                ("orvml convert none.vtu part.h5", "none.vtu: cannot be read: ")):
            with self.subTest(line=line):
                code, printed, told = self.run_line(f"trap '' XFSZ; {line}")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn(f"orvml: error: {sentence}", told)
                self.assertEqual((self.folder / "part.vtu").read_text(), "old")
                self.assertEqual(self.files(), ["part.h5", "part.vtu"])

    def test_interrupt_leaves_the_old_file_and_nothing_beside_it(self):
        self.write("part.h5", large_mesh(120))
        (self.folder / "part.vtu").write_text("old")
        for _ in range(5):
            process = subprocess.Popen(
                [COMMAND, "convert", "part.h5", "part.vtu", "--compress"], cwd=self.folder,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=self.environment())
            while process.poll() is None and not any(
                    name.startswith(".orvml_io-") for name in os.listdir(self.folder)):
                pass
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(), -signal.SIGINT)
            self.assertEqual(self.files(), ["part.h5", "part.vtu"])
            self.assertEqual((self.folder / "part.vtu").read_text(), "old")

    def test_split_wants_files_of_another_format(self):
        self.write("part.h5", tetrahedron())
        for line in ("part.h5 other.h5 --split", "part.h5 - --to vtu --split"):
            code, printed, told = self.run_line(f"orvml convert {line}")
            self.assertEqual((code, printed), (2, ""))
            self.assertIn("--split is for files of other formats that have names", told)

    def test_split_files_come_together_or_not_at_all(self):
        document = tetrahedron()
        document.cells["Elements"] = Cells([TypeGroup(99, 1, 1)], np.array([0], INT), {})
        self.write("part.h5", document)
        for line in ("part.h5 part.vtu --split --strict",
                     "part.h5 none/part.vtu --split"):
            code, printed, _ = self.run_line(f"orvml convert {line}")
            self.assertEqual((code, printed), (2, ""))
            self.assertEqual(self.files(), ["part.h5"])

    def test_split_tells_of_each_change_once(self):
        plane = documents.plane_document()
        plane.cells["Edges"] = Cells([TypeGroup(1, 2, 1)], np.array([0, 1], INT), {})
        self.write("part.h5", plane)
        printed = self.run_line("orvml convert part.h5 part.vtu --split")[1]
        self.assertEqual(printed.count("get z = 0"), 1, printed)

    def test_split_of_no_cells_is_refused(self):
        self.write("part.h5", documents.document_without_parameters())
        code, printed, told = self.run_line("orvml convert part.h5 part.vtu --split")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("part.h5: there are no cells to be split", told)

    def test_memory_does_not_grow_with_the_mesh(self):
        """Beyond the pages of the file, which are the system's to take back."""
        self.write("part.h5", large_mesh(140))
        size = (self.folder / "part.h5").stat().st_size
        self.assertGreater(size, 50 * 2**20)
        code, _, told = self.run_line(
            within_memory(f"-d {25 * 1024}", "orvml convert part.h5 part.vtu"))  # KiB of data
        self.assertEqual((code, told), (0, ""))


if __name__ == "__main__":
    unittest.main()
