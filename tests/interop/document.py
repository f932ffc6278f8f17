"""A document of an exchange file as plain Python values."""
import dataclasses

import numpy as np

CELL_KINDS = ("Edges", "Faces", "Elements")

INT = np.dtype("int32")
DOUBLE = np.dtype("float64")


@dataclasses.dataclass
class Vector:
    """A vector parameter or an attribute: values of type INT or DOUBLE."""

    values: np.ndarray
    must_be_transmitted: bool = False


@dataclasses.dataclass
class TypeGroup:
    """Cells of one shape and one number of nodes, consecutive in the connectivities."""

    shape: int
    nodes_per_cell: int
    cells: int


@dataclasses.dataclass
class Cells:
    """The edges, the faces or the volume elements of a document."""

    groups: list
    connectivities: np.ndarray
    attributes: dict = dataclasses.field(default_factory=dict)

    @property
    def number_of_cells(self):
        return sum(group.cells for group in self.groups)


@dataclasses.dataclass
class Document:
    """Names are byte strings. `coordinates` is [nodes x dimension], or None without nodes."""

    creator: bytes = b""
    module: bytes = b""
    module_version: bytes = b""
    dimension: int = 3
    coordinates: np.ndarray = None
    node_attributes: dict = dataclasses.field(default_factory=dict)
    cells: dict = dataclasses.field(default_factory=dict)  # from CELL_KINDS
    parameters: dict = dataclasses.field(default_factory=dict)
    vectors: dict = dataclasses.field(default_factory=dict)

    @property
    def number_of_nodes(self):
        return 0 if self.coordinates is None else len(self.coordinates)

    def attributes_of(self, kind):
        """The attributes of "Nodes" or of one of CELL_KINDS."""
        return self.node_attributes if kind == "Nodes" else self.cells[kind].attributes

    def all_attributes(self):
        yield self.node_attributes
        for kind in CELL_KINDS:
            if kind in self.cells:
                yield self.cells[kind].attributes
