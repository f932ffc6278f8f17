"""Writes the exchange files that exchange_file.test.mjs reads, by h5py alone.

    python3 tests/viewer/make_exchange_files.py FOLDER
"""
import pathlib
import sys

import h5py
import numpy as np

TABLE = np.dtype([("name", "S80"), ("value", "<f8")])
CUBE = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [1, 1, 1], [0, 1, 1],
                 [0.5, 0.5, 2]])
KINDS = {"Edges": [(1, [[0, 1], [1, 2]])],
         "Faces": [(3, [[0, 3, 2, 1]]), (2, [[4, 5, 8]]), (2, [[5, 6, 8]])],
         "Elements": [(5, [[0, 1, 2, 3, 4, 5, 6, 7]]), (8, [[4, 5, 6, 7, 8]])]}


def begin(path, version="1.4"):
    file = h5py.File(path, "w")
    file.attrs["FORMAT"] = np.bytes_("ORVMESHLIBRARY")
    if version is not None:
        file.attrs["ORVMESHLIBRARY_FORMAT_VERSION"] = np.bytes_(version)
    file.attrs["ORVML_IO_CREATOR"] = "Prüfer"  # of variable length
    file.attrs["ORVML_MODULE_NAME"] = np.bytes_("OrvML_OCTREE_MESHER")
    file.attrs["ORVML_MODULE_FORMAT_VERSION"] = np.bytes_("2.0")
    return file


def write_cells(group, cells):
    group["number_of_elements_by_type"] = np.array([len(rows) for _, rows in cells], "i4")
    group["element_types"] = np.array([shape for shape, _ in cells], "i4")
    group["number_of_nodes_by_element"] = np.array([len(rows[0]) for _, rows in cells], "i4")
    group["connectivities"] = np.concatenate([np.ravel(rows) for _, rows in cells]).astype("i4")


def write_document(file, kind="Output", points=CUBE, kinds=KINDS):
    root = file.create_group(f"Orv{kind}")
    root["dimension"] = np.array([points.shape[1]], "i4")
    root["Nodes/coordinates"] = points
    for name, cells in kinds.items():
        write_cells(root.create_group(name), cells)
    root["parameters"] = np.array(
        [(b"size", 1.0), (b"size", 0.25), (b"limit", np.inf), (b"none", np.nan)], TABLE)
    root["ParametersVector/layers"] = np.arange(150, dtype="i4")
    root["ParametersVector/weights"] = np.array([0.5, -np.inf])
    return root


def write_attributes(root):
    root["Nodes/Attributes/heat"] = np.arange(9) / 2
    root["Nodes/Attributes/heat"].attrs.create("MustBeTransmitted", [1], dtype="i4")
    root["Faces/Attributes/colour"] = np.array([7, -8, 9], "i4")


def complete(path):
    with begin(path) as file:
        write_attributes(write_document(file))
        write_document(file, "Input", CUBE[:4, :2], {"Faces": [(3, [[0, 1, 2, 3]])]})


def one_of_two(path):
    complete(path)
    with h5py.File(path, "r+") as file:
        file["OrvInput/dimension"][...] = 7


def stored_otherwise(path):
    """The output of complete(), as other tools store the same values."""
    complete(path)
    types = {"coordinates": ">f8", "connectivities": ">i8", "element_types": "u1", "heat": ">f4",
             "colour": "<i2", "number_of_elements_by_type": "<u8", "number_of_nodes_by_element": ">u4",
             "layers": ">i2"}
    with h5py.File(path, "r+") as file:
        names = []
        file.visititems(lambda name, item: names.append(name) if isinstance(item, h5py.Dataset) else None)
        for name in names:
            values = file[name][...]
            kind = np.dtype(types.get(name.rsplit("/", 1)[1], values.dtype))
            del file[name]
            if name.endswith("parameters"):
                kind = np.dtype([("key", "S20"), ("number", ">f8")])
            options = {"chunks": True, "compression": "gzip", "shuffle": True} if values.size > 1 else {}
            file.create_dataset(name, data=values.astype(kind), **options)


def made(change):
    """A complete file with a change made to the group of its output."""
    def write(path):
        with begin(path) as file:
            root = write_document(file)
            write_attributes(root)
            change(root)
    return write


def replaced(name, values):
    def change(root):
        del root[name]
        root[name] = values
    return made(change)


def with_places(places):
    def change(root):
        for place, value in places.items():
            root["Nodes/coordinates"][place] = value
    return made(change)


def with_cyclic_links(root):
    del root["Faces"], root["Elements"], root["parameters"]
    root["Faces"] = h5py.SoftLink("/OrvOutput/Faces")
    root["Elements"] = root
    root["parameters"] = h5py.SoftLink("/OrvOutput/ParametersVector/one")
    root["ParametersVector/one"] = h5py.SoftLink("/OrvOutput/parameters")
    root["Nodes/Attributes/loop"] = root["Nodes"]
    root["Nodes/Attributes/nowhere"] = h5py.ExternalLink("missing.h5", "/heat")


def with_wrong_types(root):
    attributes = root["Nodes/Attributes"]
    attributes["text"] = np.bytes_("nine")
    attributes["pairs"] = np.zeros(9, [("a", "i4"), ("b", "f8")])
    attributes["group/inner"] = np.zeros(9)
    attributes["half"] = np.zeros(9, "f2")
    attributes["table"] = np.zeros((9, 2))
    attributes["empty"] = h5py.Empty("f8")
    attributes["flags"] = np.zeros(9, bool)
    del root["parameters"], root["Elements/connectivities"], root["Faces/element_types"], root["Edges"]
    root["parameters/inner"] = 1
    root["Elements/connectivities"] = np.arange(13.0)
    root["Faces/element_types"] = np.array([b"3", b"2", b"2"])
    root["Edges"] = np.arange(4)


def with_claims(root):
    attributes = root["Nodes/Attributes"]
    attributes.create_dataset("chunked", (1 << 50,), "f8", chunks=(1 << 20,))
    attributes.create_dataset("whole", (1 << 33,), "i4")
    attributes.create_dataset("smaller", (1 << 25,), "i4")
    attributes.create_dataset("packed", (1 << 45,), "f8", chunks=(1 << 20,), compression="gzip")
    for name, shape in (("Faces/connectivities", (1 << 31,)), ("Edges/element_types", (1 << 40,))):
        del root[name]
        root.create_dataset(name, shape, "i4", chunks=(1 << 20,))
    del root["Elements/number_of_elements_by_type"]
    root["Elements/number_of_elements_by_type"] = np.array([1 << 27, 1 << 27], "i4")


def with_cells_of_numbers_alone(root):
    root["Faces/number_of_elements_by_type"][...] = [1, (1 << 31) - 3, 1]
    root["Faces/number_of_nodes_by_element"][...] = [4, 0, 3]


def with_names(root):
    attributes = root["Nodes/Attributes"]
    for name in (b"<img src=x onerror=alert(1)>", "\u202egnp.exe".encode(), b"a\x07\x1b[31m", b"\xff\xfe",
                 b"n" * 3000, b"..", b" ", b"__proto__"):
        h5py.h5d.create(attributes.id, name, h5py.h5t.NATIVE_DOUBLE, h5py.h5s.create_simple((9,)))
    attributes["\u202eshort"] = np.zeros(3)
    del root["parameters"]
    root["parameters"] = np.array([(b"\xff<b>", 1.0), (b"", 2.0), (b"x" * 80, 3.0)], TABLE)


def with_values_elsewhere(root):
    layout = h5py.VirtualLayout((9,), "f8")
    layout[:] = h5py.VirtualSource(".", "/OrvOutput/Nodes/Attributes/heat", (9,))
    root["Nodes/Attributes"].create_virtual_dataset("virtual", layout)
    for name in ("/dev/stdin", "/dev/urandom", "missing.raw"):
        root["Nodes/Attributes"].create_dataset(f"of {name.replace('/', ' ')}", (9,), "f8",
                                                external=[(name, 0, 72)])


def with_many_attributes(root):
    for i in range(1100):
        root[f"Nodes/Attributes/a{i:04}"] = np.zeros(1, "i1")


def with_fewer_values(root):
    del root["Faces/connectivities"], root["Elements/number_of_nodes_by_element"]
    del root["Nodes/Attributes/heat"]
    root["Faces/connectivities"] = np.array([0, 3, 2, 1, 4, 5], "i4")
    root["Nodes/Attributes/heat"] = np.arange(4.0)
    root["Elements/number_of_nodes_by_element"] = np.array([8], "i4")


def with_one_column(root):
    del root["Nodes/coordinates"]
    root["Nodes/coordinates"] = CUBE[:, :1]


def older(version):
    return lambda path: begin(path, version).close()


def foreign(path):
    with h5py.File(path, "w") as file:
        file["values"] = np.arange(3)


def other_format(path):
    with begin(path) as file:
        file.attrs["FORMAT"] = np.bytes_("ORVMESHLIBRARY2")
        write_document(file)


FILES = {
    "complete": complete,
    "stored otherwise": stored_otherwise,
    "one of two": one_of_two,
    "older": older("1.3"),
    "without version": older(None),
    "without document": older("1.4"),
    "foreign": foreign,
    "other format": other_format,
    "dimension of 7": replaced("dimension", np.array([7], "i4")),
    "dimension as text": replaced("dimension", np.bytes_("3")),
    "without nodes": made(lambda root: root.pop("Nodes")),
    "coordinates of integers": replaced("Nodes/coordinates", np.arange(27).reshape(9, 3)),
    "coordinates with four columns": replaced("Nodes/coordinates", np.zeros((9, 4))),
    "coordinates with one column": made(with_one_column),
    "places that are not finite": with_places({(2, 1): np.nan, (8, 0): np.inf}),
    "indices out of range": replaced("Faces/connectivities", np.array([0, 3, 2, 1, 4, 5, 9, 5, -1, 8], "i4")),
    "integers beyond 32 bits": replaced("Faces/Attributes/colour", np.array([1 << 40, -1 << 40, -3], "i8")),
    "unknown shapes": replaced("Elements/element_types", np.array([99, -1], "i4")),
    "shapes beside each other": replaced("Faces/element_types", np.array([3, 2, 99], "i4")),
    "solids as faces": replaced("Faces/element_types", np.array([4, 2, 2], "i4")),
    "negative counts": replaced("Faces/number_of_elements_by_type", np.array([1, -1, 1], "i4")),
    "cyclic links": made(with_cyclic_links),
    "wrong types": made(with_wrong_types),
    "claims": made(with_claims),
    "cells of numbers alone": made(with_cells_of_numbers_alone),
    "names": made(with_names),
    "values elsewhere": made(with_values_elsewhere),
    "many attributes": made(with_many_attributes),
    "fewer values": made(with_fewer_values),
}


def main():
    folder = pathlib.Path(sys.argv[1])
    for name, write in FILES.items():
        write(folder / f"{name}.h5")


if __name__ == "__main__":
    main()
