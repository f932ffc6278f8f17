#!/usr/bin/python3
"""Records what VTK's mesh quality filter (the Verdict library) says of random cells.

    record_verdict.py INTO        needs python3-vtk9; made with 9.1.0 of Debian 12

Each line has a shape, its scaled Jacobian, its aspect ratio (of hexahedra the ratio of principal axes, which
VTK calls MaxEdgeRatios), and the coordinates of its corners. Prisms and pyramids have 0 in that version and
are left out, as are quadratic cells.
"""
import random
import sys

import vtk

SHAPES = {
    "triangle": (vtk.VTK_TRIANGLE, [(0, 0, 0), (1, 0, 0), (0, 1, 0)], "Triangle", "AspectRatio"),
    "quadrilateral": (vtk.VTK_QUAD, [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)], "Quad", "AspectRatio"),
    "tetrahedron": (vtk.VTK_TETRA, [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)], "Tet", "AspectRatio"),
    "hexahedron": (vtk.VTK_HEXAHEDRON, [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0),
                                        (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)], "Hex", "MaxEdgeRatios"),
}
CELLS = 60


def measured(kind, points, prefix, measure):
    grid = vtk.vtkUnstructuredGrid()
    places = vtk.vtkPoints()
    places.SetDataTypeToDouble()
    ids = vtk.vtkIdList()
    for point in points:
        ids.InsertNextId(places.InsertNextPoint(point))
    grid.SetPoints(places)
    grid.InsertNextCell(kind, ids)
    quality = vtk.vtkMeshQuality()
    getattr(quality, f"Set{prefix}QualityMeasureTo{measure}")()
    quality.SetInputData(grid)
    quality.Update()
    return quality.GetOutput().GetCellData().GetArray("Quality").GetValue(0)


def main():
    random.seed(20)
    with open(sys.argv[1], "w") as table:
        for name, (kind, corners, prefix, aspect) in SHAPES.items():
            for number in range(CELLS):
                # From slightly deformed to folded and inverted.
                reach = 0.1 + 0.5 * number / CELLS
                points = [[value + random.uniform(-reach, reach) for value in corner] for corner in corners]
                values = [measured(kind, points, prefix, "ScaledJacobian"),
                          measured(kind, points, prefix, aspect)]
                numbers = values + [value for point in points for value in point]
                table.write(name + " " + " ".join(f"{number:.17g}" for number in numbers) + "\n")


if __name__ == "__main__":
    main()
