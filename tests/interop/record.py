"""Documents as lines of text, exact to the bit: what the two sides of the test tell each other.

Byte strings stand as "x" and hexadecimal digits, doubles as the 16 digits of their bits. Lines with
values:

    document OrvInput|OrvOutput
    creator TEXT                 module TEXT                module_version TEXT
    dimension N                  coordinates NODES DOUBLE...
    group KIND SHAPE NODES CELLS
    connectivities KIND INT...
    attribute KIND NAME int|double 0|1 VALUE...
    parameter NAME DOUBLE        vector NAME int|double VALUE...
    counts PARAMETERS VECTORS
"""
import numpy as np

from document import CELL_KINDS, DOUBLE, INT


def of_text(text):
    return "x" + text.hex()


def of_doubles(values):
    return [f"{bits:016x}" for bits in np.asarray(values, DOUBLE).ravel().view("uint64")]


def of_vector(vector):
    if vector.values.dtype == INT:
        return ["int"], [str(value) for value in vector.values]
    return ["double"], of_doubles(vector.values)


def of_attributes(kind, attributes):
    for name in sorted(attributes):
        value_type, values = of_vector(attributes[name])
        flag = str(int(attributes[name].must_be_transmitted))
        yield ["attribute", kind, of_text(name), *value_type, flag, *values]


def of_cells(kind, cells):
    for group in cells.groups:
        yield ["group", kind, str(group.shape), str(group.nodes_per_cell), str(group.cells)]
    yield ["connectivities", kind, *(str(index) for index in cells.connectivities)]
    yield from of_attributes(kind, cells.attributes)


def of_document(group_name, document):
    yield ["document", group_name]
    yield ["creator", of_text(document.creator)]
    yield ["module", of_text(document.module)]
    yield ["module_version", of_text(document.module_version)]
    yield ["dimension", str(document.dimension)]
    if document.number_of_nodes:
        yield ["coordinates", str(document.number_of_nodes), *of_doubles(document.coordinates)]
    yield from of_attributes("Nodes", document.node_attributes)
    for kind in CELL_KINDS:
        if kind in document.cells and document.cells[kind].groups:
            yield from of_cells(kind, document.cells[kind])
    for name in sorted(document.parameters):
        yield ["parameter", of_text(name), *of_doubles([document.parameters[name]])]
    for name in sorted(document.vectors):
        value_type, values = of_vector(document.vectors[name])
        yield ["vector", of_text(name), *value_type, *values]
    yield ["counts", str(len(document.parameters)), str(len(document.vectors))]


def of_documents(documents):
    """Returns the lines of a dictionary of documents, the input first."""
    return [" ".join(line) for group_name in ("OrvInput", "OrvOutput") if group_name in documents
            for line in of_document(group_name, documents[group_name])]
