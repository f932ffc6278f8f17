"""Documents: what a pre-processor sends to a meshing module, and what comes back."""
from __future__ import annotations

import copy as copying
from typing import TYPE_CHECKING, Any, ClassVar, Mapping, Optional, Tuple, Type, TypeVar, Union

import numpy as np
import numpy.typing as npt

from . import _texts
from ._arrays import Doubles, as_points
from ._cells import CellGroup, Cells, CellsLike, Nodes
from ._named import Parameters, VectorParameters, integer, text
from ._settable import Settable

if TYPE_CHECKING:
    import os

    import matplotlib.figure

    from ._orvml import RawDocument
    from ._reports import Finding

AnyDocument = TypeVar("AnyDocument", bound="Document")

ENTITIES = ("edges", "faces", "elements")


class Document:
    """A mesh with parameters and attributes; it is an Input or an Output.

    Arrays are shared and not copied: those of a file are read-only views of its memory, which they
    keep alive, and those that a program sets are its own.

    Args:
        points: Coordinates, ``(n, 2)`` or ``(n, 3)``.
        edges, faces, elements: Groups of cells: pairs of a shape, such as ``"triangle"``, and an
            array of node indices, ``(cells, nodes per cell)``, 0-based.
        dimension: 2 or 3; that of the points where it is not given.
        module: The meshing module that the document is meant for or from, up to 79 bytes.
        module_format_version: The version of the module's parameters.
        creator: The program that makes the document.
        parameters: Named numbers.
        vector_parameters: Named vectors of integers or numbers.

    Raises:
        ValueError, TypeError: They name the argument, what it is and what was expected.
    """

    kind: ClassVar[str] = ""
    """"input" or "output"."""

    nodes: Nodes
    findings: Tuple["Finding", ...]
    """What a tolerant reader met and went on from."""

    def __init__(self, points: Optional[npt.ArrayLike] = None, *, edges: CellsLike = (),
                 faces: CellsLike = (), elements: CellsLike = (), dimension: Optional[int] = None,
                 module: str = "", module_format_version: str = "", creator: str = "",
                 parameters: Optional[Mapping[str, float]] = None,
                 vector_parameters: Optional[Mapping[str, npt.ArrayLike]] = None) -> None:
        if type(self) is Document:
            raise TypeError("a document is an orvml.Input or an orvml.Output")
        if dimension is not None and integer(dimension, "dimension") not in (2, 3):
            raise ValueError(f"dimension is {dimension}, expected 2 or 3")
        made = as_points(np.zeros((0, dimension or 3)) if points is None else points, "points",
                         dimension)
        self._begin(made, made.shape[1])
        self.module = module
        self.module_format_version = module_format_version
        self.creator = creator
        self._edges.set(edges)
        self._faces.set(faces)
        self._elements.set(elements)
        self.parameters = parameters or {}
        self.vector_parameters = vector_parameters or {}

    def _begin(self, points: Doubles, dimension: int) -> None:
        self._dimension = dimension
        self.nodes = Nodes(points)
        self._edges = Cells(self.nodes, "edges")
        self._faces = Cells(self.nodes, "faces")
        self._elements = Cells(self.nodes, "elements")
        self._parameters = Parameters()
        self._vector_parameters = VectorParameters()
        self.findings = ()

    @property
    def dimension(self) -> int:
        """Coordinates per node, 2 or 3."""
        columns = self.nodes.points.shape[1]
        return int(columns) if columns else self._dimension

    module: Settable[str, str] = Settable(
        lambda self: self._module, lambda self, given: setattr(self, "_module", text(given, "module")),
        "The meshing module that the document is meant for or from.")
    module_format_version: Settable[str, str] = Settable(
        lambda self: self._module_format_version,
        lambda self, given: setattr(self, "_module_format_version",
                                    text(given, "module_format_version")),
        "The version of the module's parameters.")
    creator: Settable[str, str] = Settable(
        lambda self: self._creator,
        lambda self, given: setattr(self, "_creator", text(given, "creator")),
        "The program that made the document.")
    points: Settable[Doubles, npt.ArrayLike] = Settable(
        lambda self: self.nodes.points, lambda self, given: setattr(self.nodes, "points", given),
        "The coordinates of the nodes, ``(n, dimension)``.")
    edges: Settable[Cells, CellsLike] = Settable(
        lambda self: self._edges, lambda self, given: self._edges.set(given),
        "The edges, in groups of one shape.")
    faces: Settable[Cells, CellsLike] = Settable(
        lambda self: self._faces, lambda self, given: self._faces.set(given),
        "The faces, in groups of one shape.")
    elements: Settable[Cells, CellsLike] = Settable(
        lambda self: self._elements, lambda self, given: self._elements.set(given),
        "The volume elements, in groups of one shape.")
    parameters: Settable[Parameters, Mapping[str, float]] = Settable(
        lambda self: self._parameters,
        lambda self, given: setattr(self, "_parameters", Parameters(given)),
        "Named numbers.")
    vector_parameters: Settable[VectorParameters, Mapping[str, npt.ArrayLike]] = Settable(
        lambda self: self._vector_parameters,
        lambda self, given: setattr(self, "_vector_parameters", VectorParameters(given)),
        "Named vectors.")

    def copy(self: AnyDocument) -> AnyDocument:
        """A document that shares nothing with this one, and whose arrays may be written."""
        return copying.deepcopy(self)

    def to_vtk(self, cells: Optional[str] = None, turn_prisms: bool = False) -> Any:
        """The mesh as a vtkUnstructuredGrid that shows the arrays of this document.

        What VTK writes into it is written into the document; of a file that is open() it must write
        nothing, because the pages of the file cannot be written. ``document.copy().to_vtk()`` may be.

        Copied are coordinates of the plane, which get a third one, groups of cells that do not lie
        one behind the other in memory, as those of files do, and prisms that are turned.

        Args:
            cells: "edges", "faces" or "elements"; those of the highest dimension where it is not
                given.
            turn_prisms: Whether prisms get the order in which VTK before 9.7 has their faces
                outward.

        Raises:
            ImportError: VTK is not installed.
        """
        from ._vtk import grid_of

        return grid_of(self, cells, turn_prisms)

    def plot(self, path: "Union[str, os.PathLike[str]]", color: Optional[str] = None, *,
             cells: Optional[str] = None, size: Tuple[int, int] = (1200, 900),
             direction: Tuple[float, float, float] = (-1, -1.3, 0.8), edges: bool = True) -> None:
        """Draws the mesh into a PNG file, without a window.

        Args:
            path: Where the picture goes.
            color: An attribute of the cells or of the nodes, or a measure of ``Cells.quality``.
            cells: As for to_vtk().
            size: Width and height in pixels.
            direction: From the middle of the mesh to who looks; a mesh of dimension 2 is seen from
                above.
            edges: Whether the edges of the cells are drawn.

        Raises:
            ImportError: VTK is not installed.
            RuntimeError: There is no display, and no Xvfb to make one.
        """
        from ._pictures import draw

        draw(self, path, color, cells, size, direction, edges)

    def plot_quality(self, path: "Optional[Union[str, os.PathLike[str]]]" = None,
                     measure: str = "scaled Jacobian",
                     cells: Optional[str] = None) -> "matplotlib.figure.Figure":
        """A histogram of a measure of ``Cells.quality``, as a figure of matplotlib.

        Args:
            path: Where the picture goes, in the format of its ending; nowhere if it is not given.
            measure: As for ``Cells.quality``.
            cells: As for to_vtk().
        """
        from ._histograms import histogram

        return histogram(self, path, measure, cells)

    def plot_sizes(self, path: "Optional[Union[str, os.PathLike[str]]]" = None,
                   cells: Optional[str] = None) -> "matplotlib.figure.Figure":
        """A histogram of the lengths, areas or volumes of the cells, as plot_quality()."""
        from ._histograms import histogram

        return histogram(self, path, "size", cells)

    def __repr__(self) -> str:
        return _texts.plain(self)

    def _repr_html_(self) -> str:
        from ._pages import frame_of

        return _texts.html(self) + (frame_of(self) or "")

    def report(self, page: "Union[str, os.PathLike[str]]", *, title: str = "",
               check: bool = True) -> Tuple[str, ...]:
        """Writes one HTML file that shows the document in any browser, as orvml.report() does."""
        from ._pages import report

        return report(page, self, title=title, check=check)

    def _main_cells(self, cells: Optional[str] = None) -> Cells:
        """The cells of a name, or those of the highest dimension that there are."""
        if cells is None:
            for entity in reversed(ENTITIES):
                found: Cells = getattr(self, entity)
                if found.size:
                    return found
            return self.elements
        if cells not in ENTITIES:
            raise ValueError(f"cells is {cells!r}, expected one of {', '.join(ENTITIES)}")
        chosen: Cells = getattr(self, cells)
        return chosen

    @classmethod
    def _from_raw(cls: Type[AnyDocument], raw: "RawDocument") -> AnyDocument:
        """Shows a document of the library."""
        document = cls.__new__(cls)
        document._begin(raw["points"], raw["dimension"])
        document.module = raw["module"]
        document.module_format_version = raw["module_format_version"]
        document.creator = raw["creator"]
        for entity in ENTITIES:
            cells: Cells = getattr(document, entity)
            cells._take([CellGroup._of_file(shape, indices) for shape, indices
                         in raw[entity]])  # type: ignore[literal-required]
            cells.attributes._adopt(
                raw["attributes"][entity])  # type: ignore[literal-required]
        document.nodes.attributes._adopt(raw["attributes"]["nodes"])
        document.parameters.update(raw["parameters"])
        document.vector_parameters._adopt(raw["vector_parameters"])
        return document

    def _raw(self) -> "RawDocument":
        """Shows this document to the library."""
        def groups(cells: Cells) -> Any:
            return [(group._shape, group.node_indices) for group in cells]

        return {
            "kind": self.kind,
            "module": self.module,
            "module_format_version": self.module_format_version,
            "creator": self.creator,
            "dimension": self.dimension,
            "points": self.points,
            "edges": groups(self.edges),
            "faces": groups(self.faces),
            "elements": groups(self.elements),
            "attributes": {
                "nodes": self.nodes.attributes._rows(),
                "edges": self.edges.attributes._rows(),
                "faces": self.faces.attributes._rows(),
                "elements": self.elements.attributes._rows(),
            },
            "parameters": list(self.parameters.items()),
            "vector_parameters": self.vector_parameters._rows(),
        }


class Input(Document):
    """The document that a pre-processor sends to a meshing module."""

    kind = "input"


class Output(Document):
    """The document that a meshing module sends back."""

    kind = "output"
