#!/usr/bin/env python3
"""What `orvml info` prints."""
import unittest

import numpy as np

import fingerprint
from shell import Shell, documents, exchange_writer, tetrahedron

PLAIN = """part.h5: format 1.4, {size}
  input document, dimension 3
    module        ORVML_OCTREE_MESHER, format 1.0
    creator       shell test
    nodes         4
    faces         4: 4 triangles of 3 nodes
    elements      1: 1 tetrahedron of 4 nodes
    bounding box  0 0 0 to 2 1 0.5
    fingerprint   {fingerprint}
    parameters:
      growth  1.5
      size  0.25
    vector parameters:
      sizes  2 doubles  0.25 to 0.5
    attributes of nodes:
      id  4 ints  1 to 4
    attributes of faces:
      size  4 doubles  0.25 to 2
"""


def range_of(values):
    finite = values[np.isfinite(values)]
    return {"minimum": finite.min(), "maximum": finite.max()} if len(finite) else None


class Info(Shell):
    def test_text_has_everything_in_the_order_of_the_format(self):
        self.write("part.h5", tetrahedron())
        bytes_ = (self.folder / "part.h5").stat().st_size
        size = f"{bytes_ // 1000}.{bytes_ % 1000 // 100} KB"

        self.assert_prints("orvml info part.h5", PLAIN.format(
            size=size, fingerprint=fingerprint.of(tetrahedron(), b"input")["document"]))

    def test_fast_text_is_the_same_without_what_needs_values(self):
        self.write("part.h5", tetrahedron())
        slow = self.run_line("orvml info part.h5")[1].splitlines()
        fast = self.run_line("orvml info --fast part.h5")[1].splitlines()

        self.assertEqual([line.split("  0.25 to")[0].split("  1 to")[0] for line in slow
                          if "bounding" not in line and "fingerprint" not in line], fast)

    def assert_vectors_agree(self, told, vectors, slow):
        self.assertEqual([vector["name"] for vector in told],
                         [name.decode() for name in sorted(vectors)])
        for vector in told:
            values = vectors[vector["name"].encode()].values
            self.assertEqual((vector["size"], vector["type"]),
                             (len(values), "int" if values.dtype.kind == "i" else "double"))
            self.assertEqual(vector.get("range"), range_of(values) if slow else None)

    def assert_agrees(self, told, document, slow):
        self.assertEqual(told["dimension"], document.dimension)
        self.assertEqual(told["nodes"]["count"], document.number_of_nodes)
        self.assertEqual({p["name"].encode(): p["value"] for p in told["parameters"]},
                         document.parameters)
        self.assert_vectors_agree(told["vectorParameters"], document.vectors, slow)
        self.assert_vectors_agree(told["nodes"]["attributes"], document.node_attributes, slow)
        for kind, cells in document.cells.items():
            self.assertEqual(told[kind.lower()]["count"], cells.number_of_cells)
            self.assert_vectors_agree(told[kind.lower()]["attributes"], cells.attributes, slow)
        expected = fingerprint.of(document, told["kind"].encode())["document"] if slow else None
        self.assertEqual(told.get("fingerprint"), expected)

    def test_json_is_as_its_schema_says_and_agrees_with_what_was_written(self):
        for name, document in {"full": documents.full_document(), "sound": tetrahedron(),
                               "plane": documents.plane_document(),
                               "no nodes": documents.document_without_nodes(),
                               "no parameters": documents.document_without_parameters()}.items():
            for options in ("", "--fast"):
                with self.subTest(document=name, options=options):
                    self.write("part.h5", document)
                    told = self.json_of(f"orvml info {options} --json part.h5", "info")
                    self.assert_agrees(told["files"][0]["documents"][0], document, not options)

    def test_file_with_two_documents_has_both(self):
        exchange_writer.write_file(self.folder / "both.h5", {
            "OrvInput": tetrahedron(), "OrvOutput": documents.plane_document()})
        told = self.json_of("orvml info --json both.h5", "info")["files"][0]
        self.assertEqual([document["kind"] for document in told["documents"]], ["input", "output"])

    def test_file_that_cannot_be_read_does_not_keep_the_others_from_being_told(self):
        self.write("part.h5", tetrahedron())
        code, printed, told = self.run_line("orvml info missing.h5 part.h5")
        self.assertEqual((code, printed.splitlines()[1]), (2, "  input document, dimension 3"))
        self.assertEqual(told, "orvml: error: missing.h5: there is no such file "
                               "[orvml.file.not-found]\n  cure: look at the path; a relative one "
                               "counts from the present folder\n")
        files = self.json_of("orvml info --json missing.h5 part.h5", "info", code=2)["files"]
        self.assertEqual(files[0]["error"]["code"], "orvml.file.not-found")
        self.assertEqual(files[1]["file"], "part.h5")

    def test_standard_input_is_read_through_a_pipe(self):
        self.write("part.h5", tetrahedron())
        code, printed, _ = self.run_line("cat part.h5 | orvml info -")
        self.assertEqual((code, printed.split(":")[0]), (0, "standard input"))
        self.assertEqual(printed.splitlines()[1:],
                         self.run_line("orvml info part.h5")[1].splitlines()[1:])

    def test_names_of_files_may_have_blanks_line_breaks_and_any_letters(self):
        for name, shown in (("a part.h5", "a part.h5"), ("a\npart.h5", "a\\npart.h5"),
                            ("Größe 大.h5", "Größe 大.h5"), ("-part.h5", "-part.h5")):
            with self.subTest(name=name):
                self.write(name, tetrahedron())
                code, printed, told = self.run_line('orvml info --fast -- "$name"', name=name)
                self.assertEqual((code, told), (0, ""))
                self.assertTrue(printed.startswith(shown + ": format 1.4"), printed)
                json = self.json_of(f"orvml info --json -- $'{name}'".replace("\n", "\\n"), "info")
                self.assertEqual(json["files"][0]["file"], name)

    def test_names_in_a_file_cannot_reach_the_terminal_as_control_characters(self):
        document = tetrahedron()
        for name, shown in ((b"\x1b[31mred\r", "\\x1b[31mred\\r"), (b"\xc2\x9b31m", "\\xc2\\x9b31m"),
                            (b"latin \xe9", "latin \\xe9"), (b"\xed\xa0\x80", "\\xed\\xa0\\x80"),
                            (b"\xc0\xaf\xf5", "\\xc0\\xaf\\xf5"), (b"cut \xe5\xa4", "cut \\xe5\\xa4"),
                            ("Größe 大 😀".encode(), "Größe 大 😀")):
            with self.subTest(name=name):
                document.parameters = {name: 1.0}
                self.write("part.h5", document)
                self.assertIn(f"      {shown}  1\n", self.run_line("orvml info part.h5")[1])
                self.json_of("orvml info --json part.h5", "info")

    def test_file_without_a_document_is_described(self):
        exchange_writer.write_file(self.folder / "empty.h5", {})
        self.assertEqual(self.run_line("orvml info empty.h5")[1].splitlines()[1], "  no document")


if __name__ == "__main__":
    unittest.main()
