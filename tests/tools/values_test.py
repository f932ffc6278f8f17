#!/usr/bin/env python3
"""What `orvml text` and `extract` print."""
import csv
import io
import unittest

import numpy as np

from shell import (INT, Cells, Document, Shell, TypeGroup, documents, exchange_writer, tetrahedron)

TRIANGLE = """mesh dimension = 3 elemtype Triangle nNode = 3
coordinates
1 0.000000 0.000000 0.000000
2 1.000000 0.000000 0.000000
3 0.000000 1.000000 0.000000
end coordinates
elements
1 1 2 3\x20
end elements
"""


def triangle():
    return Document(dimension=3, coordinates=np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0]], float),
                    parameters={b"a": 1.0},
                    cells={"Faces": Cells([TypeGroup(2, 3, 1)], np.array([0, 1, 2], INT), {})})


class Text(Shell):
    def test_mesh_is_printed_in_its_format(self):
        self.write("part.h5", triangle())
        self.assert_prints("orvml text part.h5", TRIANGLE)
        self.assert_prints("orvml text - <part.h5", TRIANGLE)

    def test_document_without_nodes_prints_nothing(self):
        self.write("part.h5", documents.document_without_nodes())
        self.assert_prints("orvml text part.h5", "")

    def test_large_mesh_comes_through_whole(self):
        large = triangle()
        large.coordinates = np.arange(300000, dtype=float).reshape(100000, 3)
        self.write("part.h5", large)
        lines = self.run_line("orvml text part.h5")[1].splitlines()
        self.assertEqual((len(lines), lines[-1]), (100006, "end elements"))

    def test_file_with_two_documents_needs_a_choice(self):
        exchange_writer.write_file(self.folder / "both.h5", {
            "OrvInput": triangle(), "OrvOutput": documents.document_without_nodes()})
        code, printed, told = self.run_line("orvml text both.h5")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("  cure: say which is meant, with --input or --output\n", told)
        self.assert_prints("orvml text --input both.h5", TRIANGLE)
        self.assert_prints("orvml text --output both.h5", "")


class Extract(Shell):
    def setUp(self):
        super().setUp()
        self.document = documents.full_document()
        self.write("part.h5", self.document)

    def array(self, arguments):
        run = self.run_bytes(f"orvml extract part.h5 {arguments} --format npy")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertEqual(run.stdout.index(b"\n") % 64, 63)
        return np.load(io.BytesIO(run.stdout))

    def assert_same_bits(self, found, expected):
        self.assertEqual((found.dtype, found.shape), (expected.dtype, expected.shape))
        self.assertEqual(found.tobytes(), expected.tobytes())

    def test_npy_has_the_very_bits(self):
        faces = self.document.cells["Faces"]
        for name, expected in (
                ("coordinates", self.document.coordinates),
                ("sizes", self.document.node_attributes[b"sizes"].values),
                ("Nodes/Attributes/id", self.document.node_attributes[b"id"].values),
                ("/OrvInput/Faces/connectivities", faces.connectivities),
                ("Faces/element_types", np.array([2, 3], INT)),
                ("Faces/number_of_elements_by_type", np.array([3, 2], INT)),
                ("Faces/number_of_nodes_by_element", np.array([3, 4], INT)),
                ("three", self.document.vectors[b"three"].values),
                ("none", self.document.vectors[b"none"].values),
                ("b", np.array(2.0))):
            with self.subTest(name=name):
                self.assert_same_bits(self.array(f"'{name}'"), expected)

    def test_cells_of_one_shape_come_as_rows(self):
        self.write("part.h5", tetrahedron())
        self.assert_same_bits(self.array("Faces/connectivities"),
                              tetrahedron().cells["Faces"].connectivities.reshape(4, 3))

    def test_ranges_count_nodes_and_cells(self):
        for text, rows in (("2:4", slice(2, 4)), (":2", slice(0, 2)), ("7:", slice(7, 9)),
                           ("3", slice(3, 4)), ("9:9", slice(9, 9)), (":", slice(0, 9))):
            with self.subTest(range=text):
                self.assert_same_bits(self.array(f"coordinates --range {text}"),
                                      self.document.coordinates[rows])

    def test_ranges_that_are_none_are_refused(self):
        for text in ("5:4", "0:10", "-1:2", "a:b", "1:2:3", "9"):
            with self.subTest(range=text):
                code, printed, told = self.run_line(
                    f"orvml extract part.h5 coordinates --range={text}")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn("is no range of 9 rows\n  cure: ", told)

    def test_text_has_a_row_on_each_line(self):
        self.assert_prints("orvml extract part.h5 Edges/connectivities --range 0:3", "0\n1\n1\n")
        self.write("part.h5", tetrahedron())
        self.assert_prints("orvml extract part.h5 coordinates", "0 0 0\n2 0 0\n0 1 0\n0 0 0.5\n")
        self.assert_prints("orvml extract part.h5 growth", "1.5\n")

    def test_text_is_read_as_the_same_number(self):
        values = self.document.node_attributes[b"sizes"].values
        printed = self.run_line("orvml extract part.h5 sizes")[1].split()
        np.testing.assert_array_equal(np.array([float(word) for word in printed]), values)

    def test_csv_has_a_header(self):
        self.write("part.h5", tetrahedron())
        self.assert_prints("orvml extract part.h5 coordinates --format csv --range 1:3",
                           "x,y,z\n2,0,0\n0,1,0\n")
        self.assert_prints("orvml extract part.h5 Faces/connectivities --format csv --range 0:1",
                           "node0,node1,node2\n0,2,1\n")
        document = tetrahedron()
        document.vectors = {b'a, "b"': documents.ints(1, 2)}
        self.write("part.h5", document)
        printed = self.run_line("orvml extract part.h5 'a, \"b\"' --format csv")[1]
        self.assertEqual(list(csv.reader(io.StringIO(printed))), [['a, "b"'], ["1"], ["2"]])

    def test_json_has_rows_and_texts_for_what_is_no_number(self):
        told = self.json_of("orvml extract part.h5 coordinates --format json", "extract")
        self.assertEqual((told["object"], told["shape"]), ("/OrvInput/Nodes/coordinates", [9, 3]))
        self.assertEqual(told["values"], self.document.coordinates.tolist())
        told = self.json_of("orvml extract part.h5 sizes --format json", "extract")
        self.assertEqual(told["values"][4:7], ["inf", "-inf", "nan"])
        self.assertEqual(self.json_of("orvml extract part.h5 none --format json", "extract")["values"],
                         [])
        self.assertEqual(self.json_of("orvml extract part.h5 b --format json", "extract"),
                         {"object": "/OrvInput/parameters/b", "type": "double", "shape": [],
                          "values": 2.0})

    def test_name_that_may_be_several_things_is_refused_with_all_of_them(self):
        code, printed, told = self.run_line("orvml extract part.h5 connectivities")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("part.h5: 'connectivities' may be /OrvInput/Edges/connectivities, "
                      "/OrvInput/Faces/connectivities, /OrvInput/Elements/connectivities\n", told)

    def test_unknown_name_is_refused(self):
        for name in ("nothing", "", "oordinates", "/"):
            code, _, told = self.run_line(f"orvml extract part.h5 '{name}'")
            self.assertEqual(code, 2)
            self.assertIn(f"part.h5: there is no '{name}'\n  cure: ", told)


if __name__ == "__main__":
    unittest.main()
