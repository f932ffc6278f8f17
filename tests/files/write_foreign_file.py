"""Writes an exchange file as another program would, in one of several kinds of storage.

Usage: write_foreign_file.py VARIANT PATH

The content is the same in every variant; the tests hold the document that it must be read as.
"""

import sys

import h5py
import numpy as np

PARAMETERS = [("size", 0.5), ("angle", 40.0), ("a longer name with spaces", -1.25)]


class Storage:
    """How a variant stores integers, floats, texts and datasets."""

    def __init__(self, variant):
        self.integer = {"big_endian": ">i4", "wide": "<i8", "narrow": "<i2"}.get(variant, "<i4")
        self.real = {"big_endian": ">f8", "narrow": "<f4"}.get(variant, "<f8")
        # The table of parameters has one layout; only the order of its bytes may differ.
        self.table = ">f8" if variant == "big_endian" else "<f8"
        self.variable_length = variant == "variable_length_text"
        self.file_options = {
            "latest": {"libver": "latest"},
            "track_order": {"track_order": True},
            "user_block": {"userblock_size": 512},
        }.get(variant, {})
        self.dataset_options = {
            "chunked": {"chunks": True},
            "gzip": {"chunks": True, "compression": "gzip", "compression_opts": 9},
            "checked": {"chunks": True, "shuffle": True, "fletcher32": True},
        }.get(variant, {})

    def text(self, text):
        return text if self.variable_length else np.bytes_(text)

    def put(self, group, name, values, kind):
        group.create_dataset(name, data=np.array(values, dtype=kind), **self.dataset_options)

    def put_integers(self, group, name, values):
        self.put(group, name, values, self.integer)

    def put_reals(self, group, name, values):
        self.put(group, name, values, self.real)

    def put_dimension(self, group, value):
        self.put_integers(group, "dimension", [value])

    def put_parameters(self, group):
        self.put(group, "parameters", PARAMETERS, [("name", "S80"), ("value", self.table)])


def write_cells(storage, group, counts, shapes, nodes, connectivities):
    storage.put_integers(group, "number_of_elements_by_type", counts)
    storage.put_integers(group, "element_types", shapes)
    storage.put_integers(group, "number_of_nodes_by_element", nodes)
    storage.put_integers(group, "connectivities", connectivities)


def write_document(storage, group):
    storage.put_dimension(group, 3)
    nodes = group.create_group("Nodes")
    coordinates = [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [0.5, -0.25, 8]]
    storage.put_reals(nodes, "coordinates", coordinates)
    storage.put_reals(nodes, "Attributes/size", [1, 2, 3, 4, 0.5])
    write_cells(storage, group.create_group("Edges"), [2], [1], [2], [0, 1, 1, 2])
    faces = group.create_group("Faces")
    write_cells(storage, faces, [1, 1], [2, 3], [3, 4], [0, 1, 2, 0, 1, 2, 3])
    storage.put_integers(faces, "Attributes/surface", [7, -8])
    write_cells(storage, group.create_group("Elements"), [1], [4], [4], [0, 1, 2, 3])
    storage.put_parameters(group)
    storage.put_integers(group, "ParametersVector/layers", [3, 2, 1])
    storage.put_reals(group, "ParametersVector/sizes", [0.5, 0.25])


def main():
    variant, path = sys.argv[1:]
    storage = Storage(variant)
    with h5py.File(path, "w", **storage.file_options) as file:
        file.attrs["FORMAT"] = storage.text("ORVMESHLIBRARY")
        file.attrs["ORVMESHLIBRARY_FORMAT_VERSION"] = storage.text("1.4")
        file.attrs["ORVML_MODULE_NAME"] = storage.text("OrvML_OCTREE_MESHER")
        file.attrs["ORVML_MODULE_FORMAT_VERSION"] = storage.text("2.1")
        file.attrs["ORVML_IO_CREATOR"] = storage.text("another program")
        write_document(storage, file.create_group("OrvInput"))
        write_document(storage, file.create_group("OrvOutput"))


if __name__ == "__main__":
    main()
