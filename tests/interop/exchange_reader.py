"""Reads exchange files with h5py and numpy alone, as docs/format.md describes them."""
import re

import h5py
import numpy as np

import positional_layouts
from document import CELL_KINDS, DOUBLE, INT, Cells, Document, TypeGroup, Vector


class NotAnExchangeFile(Exception):
    pass


def read_text(location, name):
    """Returns a text attribute up to its first null byte; None when there is none."""
    if name not in location.attrs:
        return None
    value = location.attrs[name]
    text = value.encode() if isinstance(value, str) else bytes(value)
    return text.split(b"\0")[0]


def version_number(text):
    """The number at the start of a version text, as C's strtod reads it; 0 when there is none."""
    start = re.match(rb"\s*[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?", text or b"")
    return float(start.group()) if start else 0.0


def as_vector(dataset):
    """Integers of any size become INT, floats of any size DOUBLE, as HDF5 converts them; None for any
    other type."""
    if dataset.dtype.kind in "iu":
        return dataset.astype(INT)[()]
    return dataset.astype(DOUBLE)[()] if dataset.dtype.kind == "f" else None


def read_vectors(parent, path):
    vectors = {}
    for name, dataset in parent[path].items() if path in parent else ():
        values = as_vector(dataset) if isinstance(dataset, h5py.Dataset) else None
        if values is not None:
            flag = dataset.attrs.get("MustBeTransmitted", np.zeros(1))
            vectors[name.encode("utf-8", "surrogateescape")] = Vector(values, bool(flag[0]))
    return vectors


def read_cells(group):
    shapes = group["element_types"][()]
    nodes_per_cell = group["number_of_nodes_by_element"][()]
    numbers_of_cells = group["number_of_elements_by_type"][()]
    groups = [TypeGroup(int(shape), int(nodes), int(cells))
              for shape, nodes, cells in zip(shapes, nodes_per_cell, numbers_of_cells)]
    return Cells(groups, group["connectivities"].astype(INT)[()])


def read_parameters(document_group):
    if "parameters" not in document_group:
        return {}
    return {bytes(record["name"]): float(record["value"])
            for record in document_group["parameters"][()]}


def read_document(file, group_name):
    group = file[group_name]
    is_positional = version_number(read_text(file, "ORVMESHLIBRARY_FORMAT_VERSION")) < 1.4
    document = Document(
        creator=read_text(file, "ORVML_IO_CREATOR") or b"",
        module=read_text(file, "ORVML_MODULE_NAME") or b"",
        module_version=read_text(file, "ORVML_MODULE_FORMAT_VERSION") or b"",
        dimension=int(group["dimension"][0]))
    if document.module == b"OrvML_OCTREE_MESHER":
        document.module = b"ORVML_OCTREE_MESHER"
    if "Nodes/coordinates" in group:
        document.coordinates = group["Nodes/coordinates"].astype(DOUBLE)[()]
    for kind in CELL_KINDS:
        if kind in group:
            document.cells[kind] = read_cells(group[kind])
    if is_positional:
        positional_layouts.read(group, document)
        return document
    document.node_attributes.update(read_vectors(group, "Nodes/Attributes"))
    for kind, cells in document.cells.items():
        cells.attributes.update(read_vectors(group, f"{kind}/Attributes"))
    document.parameters = read_parameters(group)
    document.vectors = read_vectors(group, "ParametersVector")
    return document


def read_file(path):
    """Returns the documents of a file by the names of their groups, "OrvInput" and "OrvOutput"."""
    with h5py.File(path, "r") as file:
        if read_text(file, "FORMAT") != b"ORVMESHLIBRARY":
            raise NotAnExchangeFile(path)
        return {group_name: read_document(file, group_name)
                for group_name in ("OrvInput", "OrvOutput") if group_name in file}
