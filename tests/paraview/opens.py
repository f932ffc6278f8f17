#!/usr/bin/env python3
"""Has ParaView open files and draw them, coloured by an array, and looks at the pictures, which it
leaves beside the files.

    opens.py POINTS CELLS ARRAY FILE...
"""
import sys

from paraview import simple
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkIOImage import vtkPNGReader


def draw(reader, array, picture):
    view = simple.CreateRenderView()
    view.ViewSize = [900, 600]
    view.UseColorPaletteForBackground = 0
    view.Background = [1, 1, 1]
    shown = simple.Show(reader, view)
    shown.Representation = "Surface With Edges"
    simple.ColorBy(shown, ("POINTS" if array in [data.Name for data in reader.PointData] else "CELLS",
                           array))
    simple.GetActiveCamera().Azimuth(30)
    simple.GetActiveCamera().Elevation(-60)
    simple.ResetCamera(view)
    simple.SaveScreenshot(picture, view)


def pixels_of(picture):
    reader = vtkPNGReader()
    reader.SetFileName(picture)
    reader.Update()
    return vtk_to_numpy(reader.GetOutput().GetPointData().GetScalars())


def open_and_draw(path, points, cells, array):
    picture = f"{path}.png"
    reader = simple.OpenDataFile(path)
    assert reader is not None, "no reader found"
    reader.UpdatePipeline()
    found = reader.GetDataInformation()
    counts = found.GetNumberOfPoints(), found.GetNumberOfCells()
    assert counts == (points, cells), counts
    arrays = [data.Name for data in [*reader.PointData, *reader.CellData]]
    assert array in arrays, arrays
    draw(reader, array, picture)
    pixels = pixels_of(picture)
    drawn = (pixels[:, :3] < 240).any(axis=1).mean()
    colours = len({tuple(pixel // 32) for pixel in pixels[:, :3]})
    assert drawn > 0.1 and colours > 20, (drawn, colours)
    print(f"{path}: {points} points and {cells} cells, drawn on {drawn:.0%} of the picture")


if __name__ == "__main__":
    points, cells, array, *files = sys.argv[1:]
    for file in files:
        open_and_draw(file, int(points), int(cells), array)
