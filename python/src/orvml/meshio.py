"""Thirty other formats, through meshio.

Importing this module makes exchange files a format of meshio: ``meshio.read("part.h5")`` and
``meshio.write("part.h5", mesh)``, for files that end in .h5, .hdf5 and .orvml.
"""
from __future__ import annotations

import os
import warnings
from typing import Any, Dict, List, NamedTuple, Optional, Tuple, Type, Union

import meshio
import numpy as np

from . import _files
from ._arrays import AnyArray
from ._documents import ENTITIES, Document, Input, Output
from ._errors import error_of
from ._shapes import Shape, shape_name
from ._texts import writable

__all__ = ["CONTAINER", "ConversionWarning", "from_meshio", "read", "to_meshio", "write"]

CONTAINER = "orvml.container"
"""The cell data that tells which kind a cell is of: 1 is an edge, 2 a face, 3 an element."""


class ConversionWarning(UserWarning):
    """Something is not in the other format, or not as it was."""


_NAMES: Dict[Tuple[int, int], str] = {
    (Shape.POINT, 1): "vertex",
    (Shape.LINE, 2): "line",
    (Shape.LINE, 3): "line3",
    (Shape.TRIANGLE, 3): "triangle",
    (Shape.TRIANGLE, 6): "triangle6",
    (Shape.QUADRILATERAL, 4): "quad",
    (Shape.QUADRILATERAL, 8): "quad8",
    (Shape.QUADRILATERAL, 9): "quad9",
    (Shape.TETRAHEDRON, 4): "tetra",
    (Shape.TETRAHEDRON, 10): "tetra10",
    (Shape.HEXAHEDRON, 8): "hexahedron",
    (Shape.HEXAHEDRON, 20): "hexahedron20",
    (Shape.HEXAHEDRON, 27): "hexahedron27",
    (Shape.PRISM, 6): "wedge",
    (Shape.PRISM, 18): "wedge18",
    (Shape.PYRAMID, 5): "pyramid",
}
"""The cells of meshio; it can make none of 15 nodes in a prism or 13 in a pyramid. The order of the
nodes is the same in both, that of prisms included."""

_SHAPES = {name: shape for shape, name in _NAMES.items()}

_DIMENSIONS = {Shape.POINT: 0, Shape.LINE: 1, Shape.TRIANGLE: 2, Shape.QUADRILATERAL: 2,
               Shape.TETRAHEDRON: 3, Shape.HEXAHEDRON: 3, Shape.PRISM: 3, Shape.PYRAMID: 3}


class _Losses:
    """What does not come along, each thing once."""

    def __init__(self) -> None:
        self.sentences: List[str] = []

    def add(self, sentence: str) -> None:
        if sentence not in self.sentences:
            self.sentences.append(sentence)

    def tell(self, strict: bool, calls: int) -> None:
        """Warns, or raises; of the line that is so many calls away from who tells."""
        if strict and self.sentences:
            raise error_of("orvml.convert.loses", "; ".join(self.sentences), None, "", "")
        for sentence in self.sentences:
            warnings.warn(sentence, ConversionWarning, stacklevel=calls + 1)


# Towards meshio


class _Block(NamedTuple):
    name: str
    nodes: AnyArray
    entity: str
    first: int
    """The number of its first cell among those of its kind."""


def _blocks_of(document: Document, losses: _Losses) -> List[_Block]:
    blocks = []
    for entity in ENTITIES:
        first = 0
        for group in getattr(document, entity):
            name = _NAMES.get((int(group.shape), group.nodes_per_cell))
            if name is None:
                losses.add(f"{entity}: {group.size} of {shape_name(int(group.shape))} with "
                           f"{group.nodes_per_cell} nodes have no cell in meshio")
            elif group.size:
                blocks.append(_Block(name, group.node_indices, entity, first))
            first += group.size
    return blocks


def _cell_data_of(document: Document, blocks: List[_Block],
                  losses: _Losses) -> Dict[str, List[AnyArray]]:
    shown: Dict[str, Dict[str, AnyArray]] = {}
    for entity in ENTITIES:
        cells = getattr(document, entity)
        for name, values in cells.attributes.items():
            if values.size != cells.size:
                losses.add(f"{entity}: the attribute {name!r} has not one value for each cell")
            elif any(block.entity == entity for block in blocks):
                shown.setdefault(_shown_name(name, losses), {})[entity] = np.asarray(values)
    data = {name: _joined(parts, blocks) for name, parts in shown.items()}
    # The last: formats with room for one array take the first.
    data[CONTAINER] = [np.full(len(b.nodes), 1 + ENTITIES.index(b.entity), np.int32)
                       for b in blocks]
    return data


def _joined(parts: Dict[str, AnyArray], blocks: List[_Block]) -> List[AnyArray]:
    """One array for each block, with what is no value where the cells have none."""
    dtype = np.result_type(*parts.values())
    none = -1 if dtype.kind == "i" else np.nan
    return [parts[block.entity][block.first:block.first + len(block.nodes)].astype(dtype, copy=False)
            if block.entity in parts else np.full(len(block.nodes), none, dtype)
            for block in blocks]


def _shown_name(name: str, losses: _Losses) -> str:
    shown = writable(name)
    if shown != name:
        losses.add(f"the attribute {name!r} is named {shown!r}")
    return shown


def to_meshio(document: Document, *, strict: bool = False, _calls: int = 2) -> meshio.Mesh:
    """A mesh of meshio on the arrays of a document. What it cannot hold is warned about.

    Edges come before faces before elements; ``cell_data["orvml.container"]`` tells them apart. An
    attribute that some kinds of cells have alone is NaN on the others, or -1 where it holds integers.

    Args:
        strict: Whether an Error is raised where something would be lost.
    """
    losses = _Losses()
    if document.nodes.size and not document.points.shape[1]:
        raise ValueError("the coordinates of the nodes are not known")
    blocks = _blocks_of(document, losses)
    for name in (*document.parameters, *document.vector_parameters):
        losses.add(f"the parameter {name!r} has no place in meshio")
    if document.module or document.module_format_version or document.creator:
        losses.add("module and creator have no place in meshio")
    for attributes in (document.nodes.attributes, document.edges.attributes,
                       document.faces.attributes, document.elements.attributes):
        for name, values in attributes.items():
            if values.must_be_transmitted:
                losses.add(f"the attribute {name!r} no longer says that it must be transmitted")
    point_data = {}
    for name, values in document.nodes.attributes.items():
        if values.size == document.nodes.size:
            point_data[_shown_name(name, losses)] = np.asarray(values)
        else:
            losses.add(f"nodes: the attribute {name!r} has not one value for each node")
    mesh = meshio.Mesh(document.points, [(block.name, block.nodes) for block in blocks],
                       point_data=point_data, cell_data=_cell_data_of(document, blocks, losses))
    losses.tell(strict, _calls)
    return mesh


# From meshio


def _entity_of(shape: int, container: Optional[AnyArray]) -> str:
    if container is not None and container.size:
        kind = int(container.flat[0])
        if np.all(container == kind) and 1 <= kind <= len(ENTITIES):
            return ENTITIES[kind - 1]
    return ENTITIES[max(_DIMENSIONS[Shape(shape)], 1) - 1]


def _points_of(mesh: meshio.Mesh) -> AnyArray:
    points = np.asarray(mesh.points, dtype=float)
    if points.ndim == 2 and points.shape[1] == 1:
        points = np.column_stack([points, np.zeros(len(points))])
    return points


def _scalars(values: Any, name: str, where: str, losses: _Losses) -> Optional[AnyArray]:
    """The values of an attribute: int32 or float64, one for each node or cell."""
    if not name or name == "." or "/" in name or "\0" in name or len(name.encode()) > 79:
        losses.add(f"{where}: the data {name!r} have a name that no file can hold")
        return None
    array = np.asarray(values)
    if array.ndim == 2 and array.shape[1] == 1:
        array = array[:, 0]
    if array.ndim != 1 or array.dtype.kind not in "biuf":
        losses.add(f"{where}: the data {name!r} of {array.dtype}, shape {array.shape}, have not one "
                   "number for each")
        return None
    if array.dtype.kind in "iu" and array.size and (
            int(array.min()) < -2**31 or int(array.max()) >= 2**31):
        losses.add(f"{where}: the data {name!r} have integers of more than 32 bits")
        return None
    return array


def _is_padding(values: AnyArray) -> bool:
    return bool(np.all(np.isnan(values)) if values.dtype.kind == "f" else np.all(values == -1))


class _Gathered:
    """The cells of one kind, and which block each group comes from."""

    def __init__(self) -> None:
        self.groups: List[Tuple[int, AnyArray]] = []
        self.blocks: List[int] = []


def _gather(mesh: meshio.Mesh, losses: _Losses) -> Dict[str, _Gathered]:
    gathered = {entity: _Gathered() for entity in ENTITIES}
    containers = mesh.cell_data.get(CONTAINER)
    for i, block in enumerate(mesh.cells):
        found = _SHAPES.get(block.type)
        if found is None:
            losses.add(f"{len(block.data)} cells of the type {block.type!r} are no cells of the "
                       "format")
            continue
        container = None if containers is None else np.asarray(containers[i])
        target = gathered[_entity_of(found[0], container)]
        target.groups.append((found[0], np.asarray(block.data)))
        target.blocks.append(i)
    return gathered


def _set_cell_data(document: Document, mesh: meshio.Mesh, gathered: Dict[str, _Gathered],
                   losses: _Losses) -> None:
    for name, parts in mesh.cell_data.items():
        if name == CONTAINER:
            continue
        made = {}
        for entity, cells in gathered.items():
            if cells.blocks:
                values = _scalars(np.concatenate([np.asarray(parts[i]) for i in cells.blocks]),
                                  name, entity, losses)
                if values is not None:
                    made[entity] = values
        # What only fills up the other kinds of cells is no attribute of theirs, in a mesh of ours.
        real = made
        if CONTAINER in mesh.cell_data and len(made) > 1:
            real = {e: v for e, v in made.items() if not _is_padding(v)} or made
        for entity, values in real.items():
            getattr(document, entity).attributes[name] = values


def from_meshio(mesh: meshio.Mesh, kind: str = "output", *, strict: bool = False, _calls: int = 2,
                **identification: Any) -> Document:
    """A document of a mesh of meshio. What the format does not have is warned about.

    Cells are edges, faces or elements by their dimension, unless
    ``cell_data["orvml.container"]`` tells.

    Args:
        kind: "input" or "output".
        strict: Whether an Error is raised where something would be lost.
        identification: As for Document: module, module_format_version, creator, parameters.
    """
    if kind not in ("input", "output"):
        raise ValueError(f"kind is {kind!r}, expected 'input' or 'output'")
    losses = _Losses()
    gathered = _gather(mesh, losses)
    make: Type[Document] = Input if kind == "input" else Output
    made = make(
        _points_of(mesh),
        **{entity: cells.groups for entity, cells in gathered.items()},  # type: ignore[arg-type]
        **identification)
    for name, values in mesh.point_data.items():
        scalars = _scalars(values, name, "nodes", losses)
        if scalars is not None:
            made.nodes.attributes[name] = scalars
    _set_cell_data(made, mesh, gathered, losses)
    for part in ("point_sets", "cell_sets", "field_data", "info", "gmsh_periodic"):
        if getattr(mesh, part, None):
            losses.add(f"the {part} of the mesh have no place in the format")
    losses.tell(strict, _calls)
    return made


# The format


def read(path: Union[str, "os.PathLike[str]"], document: Optional[str] = None, *,
         strict: bool = False) -> meshio.Mesh:
    """Reads an exchange file as a mesh of meshio; see orvml.read() and to_meshio()."""
    return to_meshio(_files.read(path, document), strict=strict, _calls=3)


def write(path: Union[str, "os.PathLike[str]"], mesh: meshio.Mesh, kind: str = "output", *,
          strict: bool = False, flush: bool = True, **identification: Any) -> None:
    """Writes a mesh of meshio as an exchange file; see from_meshio() and orvml.write()."""
    document = from_meshio(mesh, kind, strict=strict, _calls=3, **identification)
    _files.write(path, document, flush=flush)


# An Error goes through to the caller: no other format of meshio has these endings.
meshio.register_format("orvml", [".h5", ".hdf5", ".orvml"], read, {"orvml": write})
