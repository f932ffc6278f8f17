"""Writes exchange files of format 1.4 with h5py and numpy alone, as docs/format.md describes them."""
import h5py
import numpy as np

from document import CELL_KINDS, DOUBLE, INT

PARAMETER_RECORD = np.dtype(
    {"names": ["name", "value"], "formats": ["S80", DOUBLE], "offsets": [0, 80], "itemsize": 88})


def string_type(size):
    """A null-terminated string of one size; h5py's own strings are padded with null bytes."""
    text_type = h5py.h5t.C_S1.copy()
    text_type.set_size(size)
    return text_type


def record_type():
    record = h5py.h5t.create(h5py.h5t.COMPOUND, 88)
    record.insert(b"name", 0, string_type(80))
    record.insert(b"value", 80, h5py.h5t.NATIVE_DOUBLE)
    return record


def write_text(location, name, text):
    """Sets a text attribute: one null-terminated string, one byte longer than the text."""
    text_type = string_type(len(text) + 1)
    if h5py.h5a.exists(location.id, name):
        h5py.h5a.delete(location.id, name)
    attribute = h5py.h5a.create(location.id, name, text_type, h5py.h5s.create(h5py.h5s.SCALAR))
    attribute.write(np.array(text, dtype=f"S{len(text) + 1}"), mtype=text_type)


def write_vectors(document_group, path, vectors):
    if not vectors:
        return
    group = document_group.create_group(path)
    for name in sorted(vectors):
        dataset = group.create_dataset(name, data=vectors[name].values)
        if vectors[name].must_be_transmitted:
            dataset.attrs.create("MustBeTransmitted", np.ones(1, INT))


def write_nodes(document_group, document):
    if document.number_of_nodes == 0:
        return
    document_group.create_dataset("Nodes/coordinates", data=document.coordinates)
    write_vectors(document_group, "Nodes/Attributes", document.node_attributes)


def write_cells(document_group, kind, cells):
    if not cells.groups:
        return
    group = document_group.create_group(kind)
    for name, values in (
        ("number_of_elements_by_type", [one.cells for one in cells.groups]),
        ("element_types", [one.shape for one in cells.groups]),
        ("number_of_nodes_by_element", [one.nodes_per_cell for one in cells.groups]),
        ("connectivities", cells.connectivities),
    ):
        group.create_dataset(name, data=np.array(values, INT))
    write_vectors(group, "Attributes", cells.attributes)


def write_parameters(document_group, parameters):
    if not parameters:
        return
    records = np.zeros(len(parameters), PARAMETER_RECORD)
    for record, name in zip(records, sorted(parameters)):
        record["name"] = name
        record["value"] = parameters[name]
    table = document_group.create_dataset("parameters", shape=records.shape, chunks=(10,),
                                          maxshape=(None,), dtype=h5py.Datatype(record_type()))
    table.id.write(h5py.h5s.ALL, h5py.h5s.ALL, records, record_type())
    for name, text in ((b"CLASS", b"TABLE"), (b"VERSION", b"3.0"), (b"TITLE", b"parameters"),
                       (b"FIELD_0_NAME", b"name"), (b"FIELD_1_NAME", b"value")):
        write_text(table, name, text)


def write_document(file, group_name, document):
    document_group = file.create_group(group_name)
    write_text(file, b"ORVML_IO_CREATOR", document.creator)
    write_text(file, b"ORVML_MODULE_NAME", document.module)
    write_text(file, b"ORVML_MODULE_FORMAT_VERSION", document.module_version)
    document_group.create_dataset("dimension", data=np.array([document.dimension], INT))
    write_nodes(document_group, document)
    for kind in CELL_KINDS:
        if kind in document.cells:
            write_cells(document_group, kind, document.cells[kind])
    write_parameters(document_group, document.parameters)
    write_vectors(document_group, "ParametersVector", document.vectors)


def write_file(path, documents):
    """Writes the documents: a dictionary with the keys "OrvInput", "OrvOutput" or both."""
    with h5py.File(path, "w") as file:
        write_text(file, b"FORMAT", b"ORVMESHLIBRARY")
        write_text(file, b"ORVMESHLIBRARY_FORMAT_VERSION", b"1.4")
        for group_name in ("OrvInput", "OrvOutput"):
            if group_name in documents:
                write_document(file, group_name, documents[group_name])
