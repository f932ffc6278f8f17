"""Compares the library's fingerprints with those of fingerprint.py, on files that Python writes, on
the same files stored in other ways, and on the test vectors of docs/fingerprint.md.

    fingerprint_test.py PRINT_FINGERPRINTS H5REPACK PAGE

PRINT_FINGERPRINTS prints, for the files named by its arguments, lines of "GROUP PART DIGITS"."""
import os
import re
import subprocess
import sys
import tempfile
import unittest

import h5py
import numpy as np

import documents
import exchange_reader
import exchange_writer
import fingerprint
from document import DOUBLE, INT, Cells, Document, TypeGroup, Vector

KIND_OF_GROUP = {"OrvInput": b"input", "OrvOutput": b"output"}


def empty_document():
    return Document(dimension=2)


def small_document():
    return Document(
        creator=b"test", module=b"M", module_version=b"1.0", dimension=3,
        coordinates=np.array([[0, 0.5, -0.0], [1, 2, 3]], DOUBLE),
        node_attributes={b"id": Vector(np.array([-1, 7], INT), True)},
        cells={"Edges": Cells([TypeGroup(1, 2, 1)], np.array([0, 1], INT),
                              {b"length": Vector(np.array([1.5], DOUBLE))})},
        parameters={b"a": 1.0, b"b": -2.5},
        vectors={b"v": Vector(np.array([], INT)), b"w": Vector(np.array([0.25], DOUBLE))})


def printed(path):
    """What the library says of a file: digests by group and part."""
    run = subprocess.run([PRINT_FINGERPRINTS, path], check=True, capture_output=True, text=True)
    result = {}
    for line in run.stdout.splitlines():
        group, rest = line.split(" ", 1)
        part, digits = rest.rsplit(" ", 1)
        result.setdefault(group, {})[part] = digits
    return result


def rewrite_big_endian(source, target):
    """Copies a file, with every number of its datasets stored the other way round."""
    with h5py.File(source, "r") as old, h5py.File(target, "w") as new:
        for name, value in old.attrs.items():
            new.attrs.create(name, value, dtype=old.attrs.get_id(name).dtype)

        def copy(name, item):
            if isinstance(item, h5py.Group):
                new.require_group(name)
                return
            if item.dtype.kind not in "if":
                old.copy(item, new[os.path.dirname(name)], os.path.basename(name))
                return
            made = new.create_dataset(name, data=item[()], dtype=item.dtype.newbyteorder(">"))
            for attribute, value in item.attrs.items():
                made.attrs.create(attribute, value, dtype=np.dtype(">i4"))

        old.visititems(copy)


class FingerprintTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "file.h5")
        self.other = os.path.join(folder.name, "other.h5")

    def check_each_file(self, store_otherwise):
        """Writes each file and stores it in another way, of which the path is returned."""
        for name, file in documents.all_documents().items():
            with self.subTest(name):
                exchange_writer.write_file(self.path, file)
                # A file has one identification, and holds what its reader sees.
                expected = {group: fingerprint.of(document, KIND_OF_GROUP[group])
                            for group, document in exchange_reader.read_file(self.path).items()}
                self.assertEqual(printed(store_otherwise()), expected)

    def repack(self):
        # No filter for arrays without values: h5repack 1.10 makes chunks of their size.
        subprocess.run([H5REPACK, "-m", "1", "-f", "GZIP=5", self.path, self.other], check=True)
        return self.other

    def swap_bytes(self):
        rewrite_big_endian(self.path, self.other)
        with h5py.File(self.other, "r") as file:
            orders = {file[group]["dimension"].dtype.byteorder for group in file}
        self.assertEqual(orders, {">"})
        return self.other

    def test_the_library_computes_what_the_page_says(self):
        self.check_each_file(lambda: self.path)

    def test_compressed_files_have_the_same_fingerprints(self):
        self.check_each_file(self.repack)
        exchange_writer.write_file(self.path, {"OrvInput": small_document()})
        with h5py.File(self.repack(), "r") as file:
            self.assertEqual(file["OrvInput/Nodes/coordinates"].compression, "gzip")

    def test_files_of_the_other_byte_order_have_the_same_fingerprints(self):
        self.check_each_file(self.swap_bytes)

    def test_the_vectors_of_the_page_are_right(self):
        with open(PAGE, encoding="utf-8") as page:
            rows = re.findall(r"^\| ([a-z ]+) \| `([0-9a-f]{32})` \| `([0-9a-f]{32})` \|$",
                              page.read(), re.MULTILINE)
        empty = fingerprint.of(empty_document(), b"output")
        small = fingerprint.of(small_document(), b"input")
        self.assertEqual({part: (first, second) for part, first, second in rows},
                         {part: (empty[part], small[part]) for part in empty})

    def test_the_library_agrees_with_the_vectors_of_the_page(self):
        exchange_writer.write_file(self.path, {"OrvInput": small_document()})
        exchange_writer.write_file(self.other, {"OrvOutput": empty_document()})
        self.assertEqual(printed(self.path)["OrvInput"],
                         fingerprint.of(small_document(), b"input"))
        self.assertEqual(printed(self.other)["OrvOutput"],
                         fingerprint.of(empty_document(), b"output"))


if __name__ == "__main__":
    PRINT_FINGERPRINTS, H5REPACK, PAGE = sys.argv[1:4]
    del sys.argv[1:4]
    unittest.main(verbosity=2)
