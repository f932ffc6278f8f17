"""The documents that both sides exchange: small ones with a purpose, and seeded random ones."""
import numpy as np

from document import CELL_KINDS, DOUBLE, INT, Cells, Document, TypeGroup, Vector

LONGEST_NAME = b"n" * 79
NAMES = [b"size", b"Size", b"a name with spaces", "Größe".encode(), b".hidden", b"0", LONGEST_NAME]
NODES_OF_SHAPE = {1: (2, 3), 2: (3, 6), 3: (4, 8), 4: (4, 10), 5: (8, 20), 6: (6, 15), 8: (5, 13)}


def ints(*values):
    return Vector(np.array(values, INT))


def doubles(*values):
    return Vector(np.array(values, DOUBLE))


def full_document():
    """Every kind of object, with mixed shapes and values at the ends of their ranges."""
    nan_with_payload = np.array([0x7FF8DEADBEEF0001], "uint64").view(DOUBLE)[0]
    return Document(
        creator=b"c" * 79, module=b"ORVML_OCTREE_MESHER", module_version=b"1.0", dimension=3,
        coordinates=np.arange(27, dtype=DOUBLE).reshape(9, 3) / 7,
        node_attributes={
            b"sizes": doubles(0.0, -0.0, 5e-324, 1.7976931348623157e308, np.inf, -np.inf,
                              nan_with_payload, 1 / 3, -1e-15),
            b"id": Vector(np.array([-2**31, 2**31 - 1, 0, 1, -1, 2, 3, 4, 5], INT), True)},
        cells={
            "Edges": Cells([TypeGroup(1, 2, 2), TypeGroup(1, 3, 1)],
                           np.array([0, 1, 1, 2, 0, 2, 1], INT), {b"line": ints(7, 8, 9)}),
            "Faces": Cells([TypeGroup(2, 3, 3), TypeGroup(3, 4, 2)],
                           np.arange(17, dtype=INT) % 9, {b"color": ints(1, 1, 2, 2, 3)}),
            "Elements": Cells([TypeGroup(4, 4, 1), TypeGroup(99, 1, 1)],
                              np.array([0, 1, 2, 3, 8], INT), {})},
        parameters={b"b": 2.0, b"a": 1.0, LONGEST_NAME: -0.0},
        vectors={b"none": doubles(), b"also none": ints(), b"three": ints(3, -3, 0)})


def plane_document():
    return Document(
        creator=b"", module=b"another mesher", module_version=b"", dimension=2,
        coordinates=np.array([[0, 0], [1, 0], [1, 1], [0, 1.5]], DOUBLE),
        cells={"Faces": Cells([TypeGroup(3, 4, 1)], np.array([0, 1, 2, 3], INT),
                              {b"both": doubles(0.5)})},
        parameters={b"tolerance": 1e-9})


def document_without_nodes():
    return Document(dimension=3, parameters={b"a": 1.0}, vectors={b"v": ints(1)})


def document_without_parameters():
    return Document(dimension=3, coordinates=np.zeros((1, 3)))


def document_with_empty_groups():
    """A group of no cells beside another, and a kind of which no group has a cell."""
    return Document(
        dimension=3, coordinates=np.ones((3, 3)), parameters={b"a": 1.0},
        cells={"Edges": Cells([TypeGroup(1, 2, 0)], np.zeros(0, INT)),
               "Faces": Cells([TypeGroup(3, 4, 0), TypeGroup(2, 3, 1)], np.array([0, 1, 2], INT))})


def random_vector(random, length):
    if random.random() < 0.5:
        return Vector(random.integers(-2**31, 2**31, length).astype(INT), random.random() < 0.5)
    bits = random.integers(0, 2**64, length, dtype="uint64")
    return Vector(bits.view(DOUBLE), random.random() < 0.5)


def random_vectors(random, length=None):
    names = random.permutation(len(NAMES))[:random.integers(0, 4)]
    return {NAMES[i]: random_vector(random, random.integers(0, 6) if length is None else length)
            for i in names}


def random_cells(random, number_of_nodes):
    groups = []
    for shape in random.choice(list(NODES_OF_SHAPE), random.integers(1, 4)):
        nodes = int(random.choice(NODES_OF_SHAPE[shape]))
        groups.append(TypeGroup(int(shape), nodes, int(random.integers(1, 5))))
    length = sum(group.cells * group.nodes_per_cell for group in groups)
    cells = Cells(groups, random.integers(0, number_of_nodes, length).astype(INT))
    cells.attributes = random_vectors(random, cells.number_of_cells)
    return cells


def random_document(seed):
    random = np.random.default_rng(seed)
    number_of_nodes, dimension = int(random.integers(1, 12)), int(random.integers(2, 4))
    document = Document(
        creator=NAMES[random.integers(len(NAMES))], module=NAMES[random.integers(len(NAMES))],
        module_version=b"2.5", dimension=dimension,
        coordinates=random.normal(size=(number_of_nodes, dimension)),
        node_attributes=random_vectors(random, number_of_nodes),
        parameters={name: float(random.normal()) for name in NAMES[:random.integers(1, 8)]},
        vectors=random_vectors(random))
    for kind in CELL_KINDS:
        if random.random() < 0.7:
            document.cells[kind] = random_cells(random, number_of_nodes)
    for vector in document.vectors.values():
        vector.must_be_transmitted = False  # only attributes carry the flag
    return document


def all_documents():
    """Returns files as dictionaries of documents, by a name for messages."""
    files = {
        "full": {"OrvInput": full_document()},
        "plane": {"OrvOutput": plane_document()},
        "both": {"OrvInput": full_document(), "OrvOutput": plane_document()},
        "without nodes": {"OrvInput": document_without_nodes()},
        "without parameters": {"OrvInput": document_without_parameters()},
        "empty groups": {"OrvInput": document_with_empty_groups()},
    }
    for seed in range(20):
        group_name = "OrvInput" if seed % 2 else "OrvOutput"
        files[f"random {seed}"] = {group_name: random_document(seed)}
    return files
