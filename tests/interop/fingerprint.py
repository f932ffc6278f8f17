"""Fingerprints of documents, computed as docs/fingerprint.md says and without the library."""
import struct

import xxhash

from document import INT

PARTS = ("identification", "nodes", "edges", "faces", "elements", "node attributes",
         "edge attributes", "face attributes", "element attributes", "parameters",
         "vector parameters")
KINDS = (("edges", "edge attributes", "Edges"), ("faces", "face attributes", "Faces"),
         ("elements", "element attributes", "Elements"))


def number(value):
    return struct.pack("<q", value)


def text(value):
    return number(len(value)) + value


def array(values):
    flat = values.reshape(-1)
    return number(flat.size) + flat.astype(flat.dtype.newbyteorder("<")).tobytes()


def vector(name, values):
    return text(name) + text(b"int" if values.dtype == INT else b"double") + array(values)


def attributes(vectors, number_of_entities):
    kept = vectors if number_of_entities else {}
    return number(len(kept)) + b"".join(
        vector(name, kept[name].values) + number(int(kept[name].must_be_transmitted))
        for name in sorted(kept))


def groups(cells):
    if cells is None or cells.number_of_cells == 0:
        return number(0)
    sequence, begin = number(len(cells.groups)), 0
    for group in cells.groups:
        end = begin + group.cells * group.nodes_per_cell
        sequence += (number(group.shape) + number(group.nodes_per_cell) + number(group.cells)
                     + array(cells.connectivities[begin:end]))
        begin = end
    return sequence


def sequences(document, kind):
    """The bytes of each part, after the text that names it. The kind is b"input" or b"output"."""
    result = {
        "identification": text(kind) + text(document.module) + text(document.module_version)
        + text(document.creator) + number(document.dimension),
        "nodes": number(document.number_of_nodes) + (
            number(0) if document.coordinates is None else array(document.coordinates)),
        "node attributes": attributes(document.node_attributes, document.number_of_nodes),
        "parameters": number(len(document.parameters)) + b"".join(
            text(name) + struct.pack("<d", document.parameters[name])
            for name in sorted(document.parameters)),
        "vector parameters": number(len(document.vectors)) + b"".join(
            vector(name, document.vectors[name].values) for name in sorted(document.vectors)),
    }
    for part, attributes_part, container in KINDS:
        cells = document.cells.get(container)
        result[part] = groups(cells)
        result[attributes_part] = (attributes(cells.attributes, cells.number_of_cells)
                                   if cells else number(0))
    return result


def of(document, kind):
    """The digests of a document and of its parts, as digits by name."""
    parts = sequences(document, kind)
    digests = {part: xxhash.xxh3_128(text(part.encode()) + parts[part]) for part in PARTS}
    whole = text(b"orvml fingerprint 1") + b"".join(digests[part].digest() for part in PARTS)
    return {"document": xxhash.xxh3_128(whole).hexdigest(),
            **{part: digests[part].hexdigest() for part in PARTS}}
