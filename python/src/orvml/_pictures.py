"""Pictures of meshes, drawn by VTK without a window."""
from __future__ import annotations

import atexit
import contextlib
import os
import shutil
import subprocess
import sys
import threading
from typing import TYPE_CHECKING, Any, Iterator, Optional, Tuple, Union

import numpy as np

from . import _orvml
from ._documents import ENTITIES
from ._named import integer
from ._texts import writable
from ._vtk import _shared, grid_of

if TYPE_CHECKING:
    from ._documents import Document

_drawing = threading.Lock()
"""Held while a picture is drawn: VTK finds the display by the environment, which all threads share."""

_EDGES = (0.10, 0.16, 0.18)
_PLAIN = (0.62, 0.75, 0.76)


class _Server:
    """The display that pictures are drawn on. It ends with the program that began it."""

    def __init__(self) -> None:
        reading, writing = os.pipe()
        # It is not to begin anew whenever a picture is done, for who comes meanwhile would be turned
        # away, and not to get the interrupts of the program's terminal.
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
             "-noreset"], pass_fds=[writing], start_new_session=True, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        self._program = os.getpid()
        if not number:
            self.process.wait()
            raise RuntimeError("Xvfb did not start")
        self.name = f":{number}"
        atexit.register(self.stop)

    def serves(self) -> bool:
        """Whether it runs, for this program and not for one that it was forked from."""
        return self._program == os.getpid() and self.process.poll() is None

    def stop(self) -> None:
        if self.serves():
            self.process.terminate()
            self.process.wait()


_server: Optional[_Server] = None


def _name_of_display() -> Optional[str]:
    """One of our own, because VTK ends the program at a display that is no longer there; the user's where
    there is no Xvfb. None where there is no X at all."""
    global _server
    if not sys.platform.startswith("linux"):
        return None
    if _server is not None and _server.serves():
        return _server.name
    if shutil.which("Xvfb") is not None:
        _server = _Server()
        return _server.name
    if not os.environ.get("DISPLAY"):
        raise RuntimeError("there is no display to draw on, and no Xvfb to make one: "
                           "install the package xvfb")
    return os.environ["DISPLAY"]


@contextlib.contextmanager
def _display() -> Iterator[None]:
    with _drawing:
        name = _name_of_display()
        before = os.environ.get("DISPLAY")
        if name is not None:
            os.environ["DISPLAY"] = name
        try:
            yield
        finally:
            if before is not None:
                os.environ["DISPLAY"] = before
            elif name is not None:
                del os.environ["DISPLAY"]


def _cells_with(document: "Document", color: Optional[str], cells: Optional[str]) -> Optional[str]:
    """The kind of cells to be drawn: the one that is asked for, or else the highest that has the
    attribute of the colours."""
    if cells is None and color is not None:
        for entity in reversed(ENTITIES):
            if color in getattr(document, entity).attributes:
                return entity
    return cells


def _colors(document: "Document", grid: Any, color: Optional[str], cells: Optional[str]) -> Any:
    """Gives the grid the values that it is coloured by; returns the data set attributes that have
    them, or None."""
    if color is None:
        return None
    chosen = document._main_cells(cells)
    if color in chosen.attributes:
        return _coloured_by(grid.GetCellData(), color)
    if color in document.nodes.attributes:
        return _coloured_by(grid.GetPointData(), color)
    if color not in _orvml.measure_names:
        known = [*chosen.attributes, *document.nodes.attributes, *_orvml.measure_names]
        raise ValueError(f"color is {color!r}, expected one of {', '.join(known)}")
    values = _shared(chosen.quality(color))
    values.SetName(color)
    grid.GetCellData().AddArray(values)
    return _coloured_by(grid.GetCellData(), color)


def _coloured_by(data: Any, name: str) -> Any:
    if data.GetArray(writable(name)) is None:
        raise ValueError(f"color is {name!r}, which has not one value for each")
    data.SetActiveScalars(writable(name))
    return data


def _range_of(array: Any) -> Tuple[float, float]:
    from vtkmodules.util.numpy_support import vtk_to_numpy

    values = vtk_to_numpy(array)
    finite = values[np.isfinite(values)]
    return (float(finite.min()), float(finite.max())) if finite.size else (0.0, 1.0)


def _mapper_of(grid: Any, data: Any) -> Any:
    from vtkmodules.vtkFiltersGeometry import vtkDataSetSurfaceFilter
    from vtkmodules.vtkRenderingCore import vtkPolyDataMapper

    surface = vtkDataSetSurfaceFilter()
    surface.SetInputData(grid)
    surface.SetNonlinearSubdivisionLevel(2)
    mapper = vtkPolyDataMapper()
    mapper.SetInputConnection(surface.GetOutputPort())
    mapper.SetScalarVisibility(data is not None)
    if data is not None:
        mapper.SetScalarRange(*_range_of(data.GetScalars()))
        mapper.SetLookupTable(_palette(mapper.GetScalarRange()))
        mapper.UseLookupTableScalarRangeOn()
    return mapper


_VIRIDIS = ((0.267, 0.005, 0.329), (0.231, 0.322, 0.545), (0.129, 0.569, 0.549),
            (0.369, 0.788, 0.382), (0.993, 0.906, 0.144))
"""Five of the colours of the map viridis, which is read in grey and by the colour-blind, too."""


def _palette(limits: Tuple[float, float]) -> Any:
    from vtkmodules.vtkRenderingCore import vtkColorTransferFunction

    low, high = limits
    table = vtkColorTransferFunction()
    for i, colour in enumerate(_VIRIDIS):
        table.AddRGBPoint(low + (high - low) * i / (len(_VIRIDIS) - 1), *colour)
    table.SetNanColor(0.85, 0.85, 0.85)
    return table


def _set_text(text: Any, size: Tuple[int, int]) -> None:
    text.SetColor(0.1, 0.1, 0.1)
    text.SetFontSize(max(11, round(min(size) / 45)))
    text.SetItalic(False)
    text.SetBold(False)
    text.SetShadow(False)


def _legend(mapper: Any, size: Tuple[int, int]) -> Any:
    from vtkmodules.vtkRenderingAnnotation import vtkScalarBarActor

    legend = vtkScalarBarActor()
    legend.SetLookupTable(mapper.GetLookupTable())
    legend.SetNumberOfLabels(5)
    legend.SetMaximumWidthInPixels(max(60, size[0] // 10))
    legend.SetPosition(0.86, 0.15)
    legend.SetHeight(0.7)
    legend.UnconstrainedFontSizeOn()
    _set_text(legend.GetLabelTextProperty(), size)
    return legend


def _title(title: str, size: Tuple[int, int]) -> Any:
    """The name of what the colours show; in the corner there is room for long ones."""
    from vtkmodules.vtkRenderingCore import vtkTextActor

    actor = vtkTextActor()
    # What VTK would take for a formula is left out.
    actor.SetInput(writable(title).replace("$", ""))
    actor.GetPositionCoordinate().SetCoordinateSystemToNormalizedViewport()
    actor.SetPosition(0.02, 0.93)
    _set_text(actor.GetTextProperty(), size)
    return actor


def _actor_of(mapper: Any, edges: bool) -> Any:
    from vtkmodules.vtkRenderingCore import vtkActor

    actor = vtkActor()
    actor.SetMapper(mapper)
    look = actor.GetProperty()
    look.SetColor(*_PLAIN)
    look.SetEdgeVisibility(edges)
    look.SetEdgeColor(*_EDGES)
    look.SetAmbient(0.3)
    look.SetDiffuse(0.8)
    return actor


def _points_of(mapper: Any) -> Any:
    from vtkmodules.util.numpy_support import vtk_to_numpy

    mapper.Update()
    points = mapper.GetInput().GetPoints()
    return np.zeros((0, 3)) if points is None else vtk_to_numpy(points.GetData())


def _look(renderer: Any, points: Any, direction: Tuple[float, float, float], size: Tuple[int, int],
          has_legend: bool) -> None:
    """Points the camera, and fits the points of a surface into the picture, beside the legend."""
    camera = renderer.GetActiveCamera()
    camera.ParallelProjectionOn()
    up = (0, 1, 0) if direction[0] == direction[1] == 0 else (0, 0, 1)
    camera.SetFocalPoint(0, 0, 0)
    camera.SetPosition(*direction)
    camera.SetViewUp(*up)
    renderer.ResetCamera()

    away = -np.array(camera.GetDirectionOfProjection())
    right = np.cross(up, away)
    right /= np.linalg.norm(right)
    share = 0.84 if has_legend else 1.0
    scale, middle = _extent(points - camera.GetFocalPoint(), right, np.cross(away, right),
                            share * size[0] / size[1])
    camera.SetParallelScale(scale)
    camera.SetFocalPoint(*(camera.GetFocalPoint() + middle))
    camera.SetPosition(*(camera.GetPosition() + middle))
    renderer.ResetCameraClippingRange()
    camera.SetWindowCenter(1 - share, 0)


def _extent(points: Any, right: Any, up: Any, aspect: float) -> Tuple[float, Any]:
    """Half the height of the picture, in the unit of the points, and the middle of what is seen."""
    sides = points @ right
    heights = points @ up
    if not len(points) or not np.isfinite(sides + heights).all():
        return 1.0, np.zeros(3)
    scale = 0.53 * max(np.ptp(heights), np.ptp(sides) / aspect)
    middle = [(values.min() + values.max()) / 2 for values in (sides, heights)]
    return float(scale) or 1.0, middle[0] * right + middle[1] * up


def draw(document: "Document", path: "Union[str, os.PathLike[str]]", color: Optional[str],
         cells: Optional[str], size: Tuple[int, int], direction: Tuple[float, float, float],
         edges: bool) -> None:
    """Draws a picture; see ``Document.plot``."""
    import vtkmodules.vtkRenderingFreeType  # noqa: F401, it makes the texts
    import vtkmodules.vtkRenderingOpenGL2  # noqa: F401, it makes the pictures
    from vtkmodules.vtkRenderingCore import vtkLightKit, vtkRenderer, vtkRenderWindow

    file = os.fsdecode(path)
    if os.path.splitext(file)[1].lower() != ".png":
        raise ValueError(f"path is {file!r}, expected a name that ends in .png")
    size = (integer(size[0], "size"), integer(size[1], "size"))
    if min(size) < 1:
        raise ValueError(f"size is {size}, expected two positive numbers of pixels")
    cells = _cells_with(document, color, cells)
    grid = grid_of(document, cells, turn_prisms=False)
    data = _colors(document, grid, color, cells)
    mapper = _mapper_of(grid, data)
    renderer = vtkRenderer()
    renderer.SetBackground(1, 1, 1)
    renderer.AddActor(_actor_of(mapper, edges))
    if data is not None:
        renderer.AddActor2D(_legend(mapper, size))
        renderer.AddActor2D(_title(str(color), size))
    _look(renderer, _points_of(mapper), (0, 0, 1) if document.dimension == 2 else direction, size,
          data is not None)
    vtkLightKit().AddLightsToRenderer(renderer)
    with _display():
        window = vtkRenderWindow()
        window.SetOffScreenRendering(True)
        window.SetSize(*size)
        window.SetMultiSamples(8)
        window.AddRenderer(renderer)
        _save(window, file)
        window.Finalize()


def _save(window: Any, file: str) -> None:
    from vtkmodules.vtkIOImage import vtkPNGWriter
    from vtkmodules.vtkRenderingCore import vtkWindowToImageFilter

    window.Render()
    pixels = vtkWindowToImageFilter()
    pixels.SetInput(window)
    pixels.ReadFrontBufferOff()
    writer = vtkPNGWriter()
    writer.SetInputConnection(pixels.GetOutputPort())
    # Into memory first: VTK itself only prints that a file cannot be written.
    writer.WriteToMemoryOn()
    writer.Write()
    from vtkmodules.util.numpy_support import vtk_to_numpy

    with open(file, "wb") as picture:
        picture.write(vtk_to_numpy(writer.GetResult()).tobytes())
