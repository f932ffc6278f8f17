"""Formats before 1.4: parameters and attributes by position, as docs/format.md describes them."""
from document import CELL_KINDS, DOUBLE, INT, Vector

OCTREE_MESHER = b"ORVML_OCTREE_MESHER"
PREFIX = b"ORVML_OCTREEMESHER_"
VOLUMES_SIZES = PREFIX + b"VOLUMES_SIZES"
PARAMETERS = [PREFIX + name for name in (
    b"GENERAL_MESH_SIZE", b"SIZE_TRANSITION_FACTOR", b"TOLERANCE_FOR_GAPS", b"QUADRATIC_TYPE",
    b"INPUT_IS_WATERTIGHT", b"MAX_RELATIVE_CHORDAL_ERROR", b"MAX_CHORDAL_ERROR",
    b"PRIORIZE_OUTER_PART_WHEN_COLORING", b"MIN_COSINUS_FOR_SHARP_EDGES",
    b"ONLY_GET_INNER_TETRAHEDRA", b"DELETE_OUTER_EMBEDDED_ELEMENTS")]

# In the order of reading: group, type, flag, name of a position that has none.
ATTRIBUTE_GROUPS = (
    ("FunctionAttributes", DOUBLE, False, "function-attribute-{}"),
    ("UserAttributes", DOUBLE, True, "user-attribute-{}"),
    ("FunctionMarkers", INT, False, "function-marker-{}"),
    ("UserMarkers", INT, True, "user-marker-{}"))

# By group and container: the names of the first positions.
ATTRIBUTE_NAMES = {
    "UserMarkers": {
        "Nodes": [PREFIX + b"NODES_DISTANCES"], "Edges": [PREFIX + b"EDGES_LINE_ID"],
        "Faces": [PREFIX + b"FACES_SURFACE_ID"], "Elements": [b""]},
    "FunctionMarkers": {
        "Nodes": [PREFIX + b"NODES_FORCED"], "Edges": [PREFIX + b"EDGES_COLORS"],
        "Faces": [PREFIX + b"FACES_EMBEDDED", PREFIX + b"FACES_INTERFACES_1",
                  PREFIX + b"FACES_INTERFACES_2"],
        "Elements": [PREFIX + b"ELEMENTS_COLORS"]},
    "FunctionAttributes": {
        "Nodes": [PREFIX + b"NODES_SIZES"], "Edges": [PREFIX + b"EDGES_SIZES"],
        "Faces": [PREFIX + b"FACES_SIZES"], "Elements": [b""]},
    "UserAttributes": {},
}


def decimal(position):
    return str(position).encode()


def attribute_name(group, kind, position, fallback):
    names = ATTRIBUTE_NAMES[group].get(kind, [])
    return names[position] if position < len(names) else fallback.format(position).encode()


def members(parent, path, value_type):
    """Yields the position and the values of each dataset that a group by position holds."""
    if path not in parent:
        return
    group = parent[path]
    for position in range(int(group.attrs["MAX_ID"][0])):
        if str(position) in group:
            yield position, group[str(position)].astype(value_type)[()]


def read_scalars(group, document, names):
    values = group["parameters"][()] if "parameters" in group else []
    named = len(values) if len(values) <= 11 else 10
    for position in range(named):
        name = names[position] if position < len(names) else decimal(position)
        document.parameters[name] = float(values[position])
    if named == len(values):
        return
    last = 11 + int(values[10])
    document.vectors[VOLUMES_SIZES] = Vector(values[11:last].astype(DOUBLE))
    if len(values) > last:
        document.parameters[PARAMETERS[10]] = float(values[last])


def read_vectors(group, document, is_octree_mesher):
    for position, values in members(group, "GenericMarkers", INT):
        if len(values):
            document.vectors[decimal(position)] = Vector(values)
    for position, values in members(group, "GenericAttributes", DOUBLE):
        if len(values):
            is_sizes = is_octree_mesher and position == 0
            document.vectors[VOLUMES_SIZES if is_sizes else decimal(position)] = Vector(values)


def read_attributes(group, kind, attributes):
    for name, value_type, flag, fallback in ATTRIBUTE_GROUPS:
        for position, values in members(group, f"{kind}/{name}", value_type):
            attributes[attribute_name(name, kind, position, fallback)] = Vector(values, flag)


def read(group, document):
    """Adds the parameters and attributes of a document group to the document."""
    is_octree_mesher = document.module in (b"", OCTREE_MESHER)
    read_scalars(group, document, PARAMETERS if is_octree_mesher else [])
    read_vectors(group, document, is_octree_mesher)
    for kind in ("Nodes",) + CELL_KINDS:
        if kind == "Nodes" or kind in document.cells:
            read_attributes(group, kind, document.attributes_of(kind))
