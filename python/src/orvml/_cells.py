"""The parts of a mesh: nodes, and cells in groups of one shape."""
from __future__ import annotations

from collections.abc import Iterable as IterableABC
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any, Iterable, List, Sequence, Tuple, Union, overload

import numpy as np
import numpy.typing as npt

from ._arrays import Doubles, Ints, as_node_indices, as_points
from ._named import Attributes, Count
from ._settable import Settable
from ._shapes import Shape, ShapeLike, shape_name, shape_number, shape_of

if TYPE_CHECKING:
    import pandas


class CellGroup:
    """Consecutive cells of one shape and one number of nodes."""

    def __init__(self, shape: ShapeLike, node_indices: npt.ArrayLike,
                 argument: str = "node_indices") -> None:
        self._shape = shape_number(shape, argument)
        self._node_indices = as_node_indices(node_indices, argument)

    @classmethod
    def _of_file(cls, shape: int, node_indices: Ints) -> "CellGroup":
        """A group as the library has it: a tolerant reader may know the number of the cells alone."""
        group = cls.__new__(cls)
        group._shape = shape
        group._node_indices = node_indices
        return group

    @property
    def shape(self) -> Union[Shape, int]:
        """The shape; a plain number where a file holds one that names none."""
        return shape_of(self._shape)

    @property
    def node_indices(self) -> Ints:
        """``(cells, nodes per cell)``, 0-based; no columns where a file tells the number of cells
        alone."""
        return self._node_indices

    @property
    def nodes_per_cell(self) -> int:
        return int(self._node_indices.shape[1])

    @property
    def size(self) -> int:
        """The number of cells."""
        return int(self._node_indices.shape[0])

    def __len__(self) -> int:
        return self.size

    def __getitem__(self, cell: Any) -> Any:
        return self._node_indices[cell]

    def __array__(self, dtype: Any = None, copy: Any = None) -> Any:
        if copy:
            return np.array(self._node_indices, dtype=dtype)
        return np.asarray(self._node_indices, dtype=dtype)

    def __repr__(self) -> str:
        return f"<{self.size} of {shape_name(self._shape)} with {self.nodes_per_cell} nodes>"


CellsLike = Iterable[Union[CellGroup, Tuple[ShapeLike, npt.ArrayLike]]]


def _size_may_change(part: str, attributes: Attributes, now: int, then: int) -> None:
    if attributes and now != then:
        raise ValueError(f"{part} has {then} entries, its attributes {', '.join(attributes)} have "
                         f"{now}: remove them first, so that none is lost unseen")


def _beside(table: "pandas.DataFrame", attributes: Attributes) -> "pandas.DataFrame":
    """A table with the attributes at its right; those of a name that it has stand there all the same."""
    import pandas

    values = attributes.to_pandas()
    joined = pandas.concat([table, values], axis=1)
    joined.attrs.update(values.attrs)
    return joined


class Cells(Sequence[CellGroup]):
    """The edges, the faces or the volume elements: a sequence of groups."""

    def __init__(self, nodes: "Nodes", entity: str) -> None:
        self._nodes = nodes
        self._entity = entity
        self._groups: List[CellGroup] = []
        self._count = Count()
        self.attributes = Attributes(entity, self._count)
        """One value per cell, over all groups, by name."""

    @property
    def size(self) -> int:
        """The number of cells of all groups."""
        return self._count.value

    @overload
    def __getitem__(self, index: int) -> CellGroup: ...

    @overload
    def __getitem__(self, index: slice) -> List[CellGroup]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[CellGroup, List[CellGroup]]:
        return self._groups[index]

    def __len__(self) -> int:
        return len(self._groups)

    def __repr__(self) -> str:
        return f"<{self.size} {self._entity}: {', '.join(map(repr, self._groups)) or 'none'}>"

    def set(self, groups: CellsLike) -> None:
        """Sets the cells. Attributes stay where the number of cells does; else they have to be
        removed first.

        Args:
            groups: Groups, or pairs of a shape and an array ``(cells, nodes per cell)``.
        """
        if isinstance(groups, (str, bytes, Mapping, np.ndarray)) or not isinstance(groups, IterableABC):
            raise TypeError(f"{self._entity} is {type(groups).__name__}, expected pairs of a shape "
                            "and an array")
        if isinstance(groups, tuple) and len(groups) == 2 and isinstance(groups[0], (str, Shape)):
            groups = [groups]  # type: ignore[list-item]
        made = []
        for index, group in enumerate(groups):
            argument = f"{self._entity}[{index}]"
            if not isinstance(group, CellGroup):
                try:
                    shape, node_indices = group
                except (TypeError, ValueError):
                    raise TypeError(f"{argument} is {type(group).__name__}, expected a shape and "
                                    "an array") from None
                group = CellGroup(shape, node_indices, argument)
            made.append(group)
        self._take(made)

    def _take(self, groups: List[CellGroup]) -> None:
        size = sum(group.size for group in groups)
        _size_may_change(self._entity, self.attributes, self.size, size)
        self._groups = groups
        self._count.value = size

    def quality(self, measure: str = "scaled Jacobian") -> Doubles:
        """Measures every cell.

        Args:
            measure: "scaled Jacobian", "aspect ratio", "smallest angle", "largest angle" (in
                degrees, of volume elements between faces) or "size" (length, area or volume).

        Returns:
            One value per cell, NaN where the measure is not defined.

        Raises:
            Error: A tolerant reader found the number of the cells alone.
        """
        from ._reports import measure_cells

        return measure_cells(self._nodes.points, self._entity,
                             [(group._shape, group.node_indices) for group in self], measure)

    def sizes(self) -> Doubles:
        """The length, the area or the volume of every cell, negative where it is inside out."""
        return self.quality("size")

    def to_pandas(self) -> "pandas.DataFrame":
        """A table with a row for each cell: its shape, its nodes and its attributes."""
        import pandas

        # A few bytes of a file can claim billions of cells that it does not have.
        if any(group.size and not group.nodes_per_cell for group in self._groups):
            raise ValueError(f"the nodes of the {self._entity} are not known")
        shapes = [shape_name(g._shape) for g in self._groups for _ in range(g.size)]
        nodes = [tuple(map(int, cell)) for g in self._groups for cell in g.node_indices]
        table = pandas.DataFrame({"shape": pandas.Categorical(shapes), "nodes": nodes})
        return _beside(table, self.attributes)


class Nodes:
    """The nodes of a mesh."""

    def __init__(self, points: Doubles) -> None:
        self._points = points
        self._count = Count(int(points.shape[0]))
        self.attributes = Attributes("nodes", self._count)
        """One value per node, by name."""

    def _set_points(self, points: npt.ArrayLike) -> None:
        made = as_points(points, "points")
        _size_may_change("points", self.attributes, self.size, made.shape[0])
        self._points = made
        self._count.value = int(made.shape[0])

    points: Settable[Doubles, npt.ArrayLike] = Settable(
        lambda self: self._points, _set_points,
        "``(n, dimension)``; no columns where a tolerant reader could not read them.")

    @property
    def size(self) -> int:
        """The number of nodes."""
        return self._count.value

    def __len__(self) -> int:
        return self.size

    def __repr__(self) -> str:
        return f"<{self.size} nodes>"

    def to_pandas(self) -> "pandas.DataFrame":
        """A table with a row for each node: its coordinates and its attributes."""
        import pandas

        columns = {axis: self._points[:, i]
                   for i, axis in enumerate("xyz"[:self._points.shape[1]])}
        return _beside(pandas.DataFrame(columns), self.attributes)
