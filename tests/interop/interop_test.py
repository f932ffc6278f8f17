#!/usr/bin/env python3
"""Exchanges files between the library and the reader and writer in Python, in both directions.

    interop_test.py LIBRARY_SIDE [unittest arguments]
"""
import copy
import pathlib
import subprocess
import sys
import tempfile
import unittest

import h5py
import numpy as np

import documents
import exchange_reader
import exchange_writer
import file_tree
import record
from document import CELL_KINDS, INT, Vector

LIBRARY_SIDE = None
PREFIX = "ORVML_OCTREEMESHER_"


def as_the_library_reads(written):
    """The losses of a read, as docs/format.md tells them: no flags, no cells where there are none,
    and one identification for both documents."""
    expected = copy.deepcopy(written)
    last = written.get("OrvOutput", written.get("OrvInput"))
    for document in expected.values():
        document.creator, document.module = last.creator, last.module
        document.module_version = last.module_version
        for attributes in document.all_attributes():
            for vector in attributes.values():
                vector.must_be_transmitted = False
        document.cells = {kind: cells for kind, cells in document.cells.items()
                          if cells.number_of_cells > 0}
    return expected


def result_of_reading(written):
    """0, or 1 for a file with a document without nodes or without scalar parameters."""
    is_whole = all(document.number_of_nodes and document.parameters
                   for document in written.values())
    return 0 if is_whole else 1


class Exchange(unittest.TestCase):
    """A folder for each test, and the library behind two functions."""

    maxDiff = 4000

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.path = self.folder / "file.h5"

    def library(self, command, asked):
        """Runs the library's side for a dictionary of documents; returns its lines and result."""
        record_path = self.folder / "record"
        record_path.write_text("\n".join(record.of_documents(asked)) + "\n")
        run = subprocess.run([LIBRARY_SIDE, command, record_path, self.path], check=False,
                             capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        *lines, result = run.stdout.splitlines()
        return lines, int(result.split()[1])

    def assert_library_reads(self, expected, result=0):
        lines, found_result = self.library("read", expected)
        self.assertEqual(lines, record.of_documents(expected))
        self.assertEqual(found_result, result)


class Format14(Exchange):
    def test_python_reads_what_the_library_writes(self):
        for name, written in documents.all_documents().items():
            with self.subTest(name):
                self.assertEqual(self.library("write", written), ([], 0))
                expected = copy.deepcopy(written)
                last = written.get("OrvOutput", written.get("OrvInput"))
                for document in expected.values():
                    document.creator, document.module = last.creator, last.module
                    document.module_version = last.module_version
                self.assertEqual(record.of_documents(exchange_reader.read_file(self.path)),
                                 record.of_documents(expected))

    def test_the_library_reads_what_python_writes(self):
        for name, written in documents.all_documents().items():
            with self.subTest(name):
                exchange_writer.write_file(self.path, written)
                self.assert_library_reads(as_the_library_reads(written),
                                          result_of_reading(written))

    def test_both_write_the_same_tree_of_objects(self):
        for name, written in documents.all_documents().items():
            with self.subTest(name):
                self.library("write", written)
                by_library = file_tree.describe(self.path)
                exchange_writer.write_file(self.path, written)
                self.assertEqual(file_tree.describe(self.path), by_library)

    def test_what_another_tool_rewrites_in_its_own_types_reads_the_same(self):
        """Byte order, widths, chunks, compression and variable-length texts are HDF5's matter."""
        written = {"OrvInput": documents.plane_document()}
        written["OrvInput"].cells["Faces"].attributes = {b"color": documents.ints(7)}
        exchange_writer.write_file(self.path, written)
        with h5py.File(self.path, "r+") as file:
            for name in ("ORVML_MODULE_NAME", "FORMAT"):
                text = exchange_reader.read_text(file, name).decode()
                file.attrs.create(name, text, dtype=h5py.string_dtype())
            for path, stored_type in (
                    ("dimension", ">i8"), ("Nodes/coordinates", ">f4"),
                    ("Faces/element_types", "<i2"), ("Faces/connectivities", "u1"),
                    ("Faces/Attributes/color", ">i4")):
                values = file["OrvInput"][path][()]
                del file["OrvInput"][path]
                file["OrvInput"].create_dataset(path, data=values.astype(stored_type),
                                                chunks=values.shape, compression="gzip")
        self.assert_library_reads(written)
        self.assertEqual(record.of_documents(exchange_reader.read_file(self.path)),
                         record.of_documents(written))

    def test_integers_beyond_32_bits_read_as_the_nearest_that_fits(self):
        written = {"OrvInput": documents.plane_document()}
        exchange_writer.write_file(self.path, written)
        with h5py.File(self.path, "r+") as file:
            vectors = file.create_group("OrvInput/ParametersVector")
            vectors.create_dataset("wide", data=np.array([2**40, -2**40, 7], "int64"))
        written["OrvInput"].vectors[b"wide"] = documents.ints(2**31 - 1, -2**31, 7)
        self.assert_library_reads(written)
        self.assertEqual(record.of_documents(exchange_reader.read_file(self.path)),
                         record.of_documents(written))

    def test_a_file_without_the_marker_is_none_for_either(self):
        exchange_writer.write_file(self.path, {"OrvInput": documents.plane_document()})
        with h5py.File(self.path, "r+") as file:
            exchange_writer.write_text(file, b"FORMAT", b"ORVMESHLIBRARY2")
        with self.assertRaises(exchange_reader.NotAnExchangeFile):
            exchange_reader.read_file(self.path)
        self.assertEqual(self.library("read", {"OrvInput": documents.plane_document()}), ([], 0))


class FormatsBefore14(Exchange):
    """Files whose parameters and attributes lie by position."""

    def write_positional(self, version, module, scalars, markers, generic_attributes):
        """A document with a mesh of 1.4 and everything else by position."""
        mesh = documents.full_document()
        mesh.module = module
        mesh.node_attributes, mesh.parameters, mesh.vectors = {}, {}, {}
        for cells in mesh.cells.values():
            cells.attributes = {}
        exchange_writer.write_file(self.path, {"OrvInput": mesh})
        with h5py.File(self.path, "r+") as file:
            exchange_writer.write_text(file, b"ORVMESHLIBRARY_FORMAT_VERSION", version)
            group = file["OrvInput"]
            group.create_dataset("parameters", data=np.array(scalars, "float64"))
            self.write_positions(group, "GenericMarkers", dict(enumerate(markers)))
            self.write_positions(group, "GenericAttributes", dict(enumerate(generic_attributes)))
            self.write_attributes(group, mesh)
        return mesh

    def write_attributes(self, group, mesh):
        for kind in ("Nodes",) + CELL_KINDS:
            count = (mesh.number_of_nodes if kind == "Nodes"
                     else mesh.cells[kind].number_of_cells)
            for offset, name in enumerate(("FunctionAttributes", "UserAttributes",
                                           "FunctionMarkers", "UserMarkers")):
                values = np.arange(count) + 100 * offset
                stored = values.astype(INT) if "Markers" in name else values / 8
                self.write_positions(group[kind], name, {0: stored, 1: stored + 1, 3: stored + 3})

    @staticmethod
    def write_positions(parent, name, vectors):
        group = parent.create_group(name)
        group.attrs.create("MAX_ID", np.array([max(vectors) + 1], INT))
        for position, values in vectors.items():
            group.create_dataset(str(position), data=values)

    def assert_both_read_the_same(self):
        read = exchange_reader.read_file(self.path)
        self.assert_library_reads(read)
        return read["OrvInput"]

    def test_the_octree_mesher_gets_its_names(self):
        self.write_positional(b"1.3", b"OrvML_OCTREE_MESHER", np.arange(11) / 4,
                              [np.array([1, 2], INT)], [np.array([0.5]), np.array([0.25])])

        document = self.assert_both_read_the_same()

        self.assertEqual(document.module, b"ORVML_OCTREE_MESHER")
        self.assertEqual(document.parameters[f"{PREFIX}TOLERANCE_FOR_GAPS".encode()], 0.5)
        self.assertEqual(sorted(document.vectors),
                         [b"0", b"1", f"{PREFIX}VOLUMES_SIZES".encode()])
        self.assertEqual(
            [(name.decode().replace(PREFIX, ""), vector.must_be_transmitted)
             for name, vector in sorted(document.cells["Faces"].attributes.items())],
            [("FACES_EMBEDDED", False), ("FACES_INTERFACES_1", False), ("FACES_SIZES", False),
             ("FACES_SURFACE_ID", True), ("function-attribute-1", False),
             ("function-attribute-3", False), ("function-marker-3", False),
             ("user-attribute-0", True), ("user-attribute-1", True), ("user-attribute-3", True),
             ("user-marker-1", True), ("user-marker-3", True)])
        self.assertIn(b"", document.cells["Elements"].attributes)

    def test_volume_sizes_follow_the_tenth_scalar(self):
        scalars = [*range(10), 3.0, 0.1, 0.2, 0.3, 1.0]
        self.write_positional(b"1.3", b"", scalars, [np.array([1], INT)], [np.array([])])

        document = self.assert_both_read_the_same()

        self.assertEqual(document.vectors[f"{PREFIX}VOLUMES_SIZES".encode()].values.tolist(),
                         [0.1, 0.2, 0.3])
        self.assertEqual(len(document.parameters), 11)
        self.assertEqual(document.parameters[f"{PREFIX}DELETE_OUTER_EMBEDDED_ELEMENTS".encode()],
                         1.0)

    def test_other_modules_get_positions_for_names(self):
        self.write_positional(b"1.2.9", b"another mesher", [4.0, 5.0], [np.array([1], INT)],
                              [np.array([0.5])])

        document = self.assert_both_read_the_same()

        self.assertEqual(document.parameters, {b"0": 4.0, b"1": 5.0})
        self.assertEqual(record.of_vector(document.vectors[b"0"]),
                         record.of_vector(Vector(np.array([0.5]))))

    def test_a_version_text_without_a_number_is_below_14(self):
        self.write_positional(b"new", b"", [4.0], [np.array([1], INT)], [np.array([0.5])])

        document = self.assert_both_read_the_same()

        self.assertEqual(document.parameters, {f"{PREFIX}GENERAL_MESH_SIZE".encode(): 4.0})


if __name__ == "__main__":
    LIBRARY_SIDE = sys.argv.pop(1)
    unittest.main(verbosity=2)
