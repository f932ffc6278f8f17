"""A document as VTK's own object, on the same arrays."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, List, Optional, Tuple

import numpy as np

from . import _orvml
from ._arrays import AnyArray, Ints
from ._texts import writable

if TYPE_CHECKING:
    from ._cells import CellGroup, Cells
    from ._documents import Document


def _shared(values: AnyArray, array: Any = None) -> Any:
    """An array of VTK on the memory of one of NumPy, which lives as long.

    Args:
        array: The empty array of VTK to be used; one for the type of the values if not given.
    """
    from vtkmodules.util.numpy_support import create_vtk_array, get_vtk_array_type

    if array is None:
        array = create_vtk_array(get_vtk_array_type(values.dtype))
    array.SetNumberOfComponents(1 if values.ndim == 1 else values.shape[1])
    # VTK asks for a buffer that it may write, though nothing here does.
    memory = f"_{values.ctypes.data:x}_p_void" if values.size else None
    if memory is not None:
        array.SetVoidArray(memory, values.size, 1)
    # The observer goes with the array, and the values with the observer.
    array.AddObserver("DeleteEvent", lambda *_, kept=values: None)
    return array


def _joined(groups: "List[CellGroup]") -> Ints:
    """The node indices of all groups: a view where they lie one behind the other in memory that has
    one owner, as those of files do."""
    flat = [group.node_indices.reshape(-1) for group in groups if group.node_indices.size]
    if not flat:
        return np.zeros(0, np.int32)
    follow = all(_owner_of(a) is _owner_of(b) and a.ctypes.data + a.nbytes == b.ctypes.data
                 for a, b in zip(flat, flat[1:]))
    if not follow:
        return np.concatenate(flat)
    total = sum(part.size for part in flat)
    return np.lib.stride_tricks.as_strided(flat[0], (total,), (4,), writeable=False)


def _owner_of(array: AnyArray) -> Any:
    owner: Any = array
    while isinstance(owner, np.ndarray) and owner.base is not None:
        owner = owner.base
    return owner


def _turned(group: "CellGroup") -> "CellGroup":
    from ._cells import CellGroup
    from ._shapes import Shape

    order = list(_orvml.older_vtk_prism_order(group.nodes_per_cell))
    if group.shape is not Shape.PRISM or not order:
        return group
    return CellGroup(group.shape, np.ascontiguousarray(group.node_indices[:, order]))


def _cell_arrays(groups: "List[CellGroup]") -> Tuple[AnyArray, AnyArray, Ints]:
    """The types of the cells, where each begins, and their nodes."""
    types: List[AnyArray] = [np.zeros(0, np.uint8)]
    widths: List[AnyArray] = [np.zeros(1, np.int32)]
    for group in groups:
        number = _orvml.vtk_cell_type(int(group.shape), group.nodes_per_cell)
        if number is None:
            raise ValueError(f"VTK has no cell for {group!r}")
        types.append(np.full(group.size, number, np.uint8))
        widths.append(np.full(group.size, group.nodes_per_cell, np.int32))
    starts = np.concatenate(widths)
    # In place and with 32 bits, as the nodes have: VTK then takes both as they are.
    np.cumsum(starts, out=starts)
    return np.concatenate(types), starts, _joined(groups)


def _add_attributes(target: Any, attributes: Any, size: int) -> None:
    for name, values in attributes.items():
        if values.size == size:
            array = _shared(np.asarray(values))
            array.SetName(writable(name))
            target.AddArray(array)


def grid_of(document: "Document", cells: Optional[str], turn_prisms: bool) -> Any:
    """A vtkUnstructuredGrid; see ``Document.to_vtk``."""
    from vtkmodules.vtkCommonCore import vtkPoints
    from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkUnstructuredGrid

    chosen: Cells = document._main_cells(cells)
    _refuse_wild_indices(document, chosen)
    points = document.points
    if points.shape[1] == 2:
        points = np.column_stack([points, np.zeros(len(points))])
    places = vtkPoints()
    places.SetData(_shared(points))
    groups = [_turned(group) if turn_prisms else group for group in chosen if group.size]
    types, starts, nodes = _cell_arrays(groups)
    array = vtkCellArray()
    # Into its own arrays: of others it would take the memory, and let them go with what they keep.
    array.Use32BitStorage()
    _shared(starts, array.GetOffsetsArray32())
    _shared(nodes, array.GetConnectivityArray32())
    grid = vtkUnstructuredGrid()
    grid.SetPoints(places)
    grid.SetCells(_shared(types), array)
    _add_attributes(grid.GetPointData(), document.nodes.attributes, document.nodes.size)
    _add_attributes(grid.GetCellData(), chosen.attributes, chosen.size)
    return grid


def _refuse_wild_indices(document: "Document", cells: "Cells") -> None:
    """VTK reads whatever memory an index leads to."""
    if document.nodes.size and not document.points.shape[1]:
        raise ValueError("the coordinates of the nodes are not known")
    for index, group in enumerate(cells):
        nodes = group.node_indices
        if nodes.size and (nodes.min() < 0 or nodes.max() >= document.nodes.size):
            raise ValueError(f"{cells._entity}[{index}] names a node that does not exist")
