#!/usr/bin/env python3
"""Files that `orvml link-vtk` has linked, opened by VTK's own reader."""
import itertools
import unittest

import numpy as np
import vtk
from vtk.util.numpy_support import vtk_to_numpy

from shell import INT, Cells, Document, Shell, TypeGroup, documents, tetrahedron

LINE, TRIANGLE, QUADRILATERAL, TETRAHEDRON, HEXAHEDRON, PRISM, POINT, PYRAMID, SPHERE = range(1, 10)

SQUARE = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)]
CUBE = SQUARE + [(0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
SIMPLEX = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)]
WEDGE = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (0, 1, 1)]
PYRAMID_CORNERS = SQUARE + [(0.5, 0.5, 1)]

# Shape, its corners, of which corners each further node is the middle, VTK's type by number of nodes.
# The order is that of docs/checks.md, the types are those of vtkCellType.h.
SHAPES = [
    ("Edges", LINE, SIMPLEX[:2], ["01"], {2: 3, 3: 21}),
    ("Faces", TRIANGLE, SIMPLEX[:3], ["01", "12", "20", "012"], {3: 5, 6: 22, 7: 34}),
    ("Faces", QUADRILATERAL, SQUARE, ["01", "12", "23", "30", "0123"], {4: 9, 8: 23, 9: 28}),
    ("Elements", TETRAHEDRON, SIMPLEX, ["01", "12", "20", "03", "13", "23"], {4: 10, 10: 24}),
    ("Elements", HEXAHEDRON, CUBE,
     ["01", "12", "23", "30", "45", "56", "67", "74", "04", "15", "26", "37",
      "0473", "1265", "0154", "3762", "0321", "4567", "01234567"], {8: 12, 20: 25, 24: 33, 27: 29}),
    ("Elements", PRISM, WEDGE,
     ["01", "12", "20", "34", "45", "53", "03", "14", "25", "0143", "1254", "2035"],
     {6: 13, 12: 31, 15: 26, 18: 32}),
    ("Elements", PYRAMID, PYRAMID_CORNERS,
     ["01", "12", "23", "30", "04", "14", "24", "34", "0123", "014", "124", "234", "304", "01234"],
     {5: 14, 13: 27, 19: 37}),
    ("Edges", POINT, SIMPLEX[:1], [], {1: 1}),
]
# The volume of the cell over that of the space of its parameters.
JACOBIAN = {TETRAHEDRON: 1, HEXAHEDRON: 1, PRISM: 1}


def nodes_of(corners, middles, number):
    corners = np.array(corners, float)
    further = [corners[[int(digit) for digit in middle]].mean(axis=0) for middle in middles]
    return np.vstack([corners] + further)[:number]


def forms():
    for container, shape, corners, middles, types in SHAPES:
        for number, vtk_type in types.items():
            yield container, shape, nodes_of(corners, middles, number), vtk_type
    yield "Edges", LINE, np.array([(0, 0, 0), (1, 0, 0), (1 / 3, 0, 0), (2 / 3, 0, 0)]), 35
    yield "Faces", QUADRILATERAL, nodes_of(SQUARE, ["01", "23"], 6), 30


def document_of(cells_of_kinds, coordinates, dimension=3):
    """A document of cells: for each kind a list of shapes with the node indices of each cell."""
    cells = {kind: Cells([TypeGroup(shape, len(rows[0]), len(rows)) for shape, rows in groups],
                         np.concatenate([np.ravel(rows) for _, rows in groups]).astype(INT), {})
             for kind, groups in cells_of_kinds.items()}
    return Document(creator=b"tests", dimension=dimension, coordinates=coordinates, cells=cells,
                    parameters={b"growth": 1.5})


def read(path):
    reader = vtk.vtkHDFReader()
    reader.SetFileName(str(path))
    reader.Update()
    return reader.GetOutput()


def points_of(grid):
    return vtk_to_numpy(grid.GetPoints().GetData())


def cells_of(grid):
    """The node indices of each cell."""
    offsets = vtk_to_numpy(grid.GetCells().GetOffsetsArray())
    indices = vtk_to_numpy(grid.GetCells().GetConnectivityArray())
    return [list(indices[begin:end]) for begin, end in zip(offsets, offsets[1:])]


def types_of(grid):
    return list(vtk_to_numpy(grid.GetCellTypesArray()))


def arrays_of(data):
    return {data.GetArrayName(i): list(vtk_to_numpy(data.GetArray(i)))
            for i in range(data.GetNumberOfArrays())}


def place_in(cell, parameters):
    place, weights, part = [0.0] * 3, [0.0] * cell.GetNumberOfPoints(), vtk.reference(0)
    cell.EvaluateLocation(part, list(parameters), place, weights)
    return np.array(place)


def determinant_at(cell, parameters):
    """That of the derivatives of VTK's own shape functions, of at most the second degree."""
    step = 1e-4
    columns = [(place_in(cell, parameters + step * axis) - place_in(cell, parameters - step * axis))
               / (2 * step) for axis in np.eye(3)]
    return np.linalg.det(np.array(columns).T)


def tetrahedra(cubes):
    """A cube of tetrahedra, six in each small cube."""
    along = cubes + 1
    grid = np.stack(np.meshgrid(*[np.arange(along)] * 3, indexing="ij"), -1).reshape(-1, 3)
    first = np.array([(x * along + y) * along + z
                      for x, y, z in itertools.product(range(cubes), repeat=3)])
    corner = [(x * along + y) * along + z for x, y, z in itertools.product((0, 1), repeat=3)]
    cells = [(0, 4, 6, 7), (0, 6, 2, 7), (0, 2, 3, 7), (0, 3, 1, 7), (0, 1, 5, 7), (0, 5, 4, 7)]
    rows = np.array([[first + corner[node] for node in cell] for cell in cells])
    return grid.astype(float), rows.transpose(2, 0, 1).reshape(-1, 4)


class Vtk(Shell):
    def link(self, document, options=""):
        """Links a file of its own, for VTK keeps files open in HDF5, and reads it."""
        name = f"part {len(list(self.folder.iterdir()))}.hdf"
        self.write(name, document, "OrvOutput")
        code, _, told = self.run_line(f"orvml link-vtk {options} '{name}'")
        self.assertEqual((code, told), (0, ""))
        return read(self.folder / name)

    def placed(self, nodes):
        """The nodes of a cell somewhere in space, turned and stretched, and by how much."""
        random = np.random.default_rng(3)
        change = np.eye(3) + 0.3 * random.random((3, 3))
        return nodes @ change.T + 5, np.linalg.det(change)

    def test_every_shape_is_read_with_its_type_and_its_nodes(self):
        for container, shape, nodes, vtk_type in forms():
            with self.subTest(shape=shape, nodes=len(nodes)):
                coordinates, _ = self.placed(nodes)
                row = np.arange(len(nodes))
                grid = self.link(document_of({container: [(shape, [row, row[::-1]])]}, coordinates))
                self.assertEqual(types_of(grid), [vtk_type] * 2)
                self.assertEqual(cells_of(grid), [list(row), list(row[::-1])])
                np.testing.assert_array_equal(points_of(grid), coordinates)
                self.assertEqual(grid.GetCell(0).GetCellType(), vtk_type)

    def test_volumes_by_the_shape_functions_are_those_of_the_cells(self):
        for container, shape, nodes, _ in forms():
            if shape not in JACOBIAN:
                continue
            with self.subTest(shape=shape, nodes=len(nodes)):
                coordinates, stretch = self.placed(nodes)
                document = document_of({container: [(shape, [np.arange(len(nodes))])]}, coordinates)
                cell = self.link(document).GetCell(0)
                for place in ((0.25, 0.25, 0.25), (0.1, 0.2, 0.6), (0.5, 0.3, 0.1)):
                    self.assertAlmostEqual(determinant_at(cell, np.array(place)), stretch, 6)

    def test_pyramids_are_not_inside_out(self):
        for container, shape, nodes, _ in forms():
            if shape == PYRAMID:
                coordinates, _ = self.placed(nodes)
                document = document_of({container: [(shape, [np.arange(len(nodes))])]}, coordinates)
                cell = self.link(document).GetCell(0)
                self.assertGreater(determinant_at(cell, np.array((0.4, 0.5, 0.3))), 0, len(nodes))

    def test_turned_prisms_are_the_mirror_image_in_every_form(self):
        for container, shape, nodes, _ in forms():
            if shape == PRISM:
                coordinates, stretch = self.placed(nodes)
                document = document_of({container: [(shape, [np.arange(len(nodes))])]}, coordinates)
                cell = self.link(document, "--older-prisms").GetCell(0)
                for place in ((0.25, 0.25, 0.25), (0.1, 0.2, 0.6), (0.5, 0.3, 0.1)):
                    self.assertAlmostEqual(determinant_at(cell, np.array(place)), -stretch, 6)

    # This VTK is older than 9.7: its filters take the other order for right.
    def test_filters_of_older_vtk_find_turned_prisms_outside_out(self):
        document = document_of({"Elements": [(PRISM, [np.arange(6)])]}, np.array(WEDGE, float))
        for options, volume in (("", -0.5), ("--older-prisms", 0.5)):
            with self.subTest(options=options):
                sizes = vtk.vtkCellSizeFilter()
                sizes.SetInputData(self.link(document, options))
                sizes.Update()
                found = arrays_of(sizes.GetOutput().GetCellData())["Volume"]
                self.assertAlmostEqual(found[0], volume)

    def test_kinds_of_cells_follow_each_other_with_all_that_belongs_to_them(self):
        document = tetrahedron()
        document.cells["Edges"] = Cells([TypeGroup(LINE, 2, 2)], np.array([0, 1, 2, 3], INT),
                                        {b"size": documents.doubles(7, 8),
                                         b"100%": documents.ints(1, 2)})
        grid = self.link(document)
        self.assertEqual(cells_of(grid), [[0, 1], [2, 3], [0, 2, 1], [0, 1, 3], [1, 2, 3], [0, 3, 2],
                                          [0, 1, 2, 3]])
        self.assertEqual(types_of(grid), [3, 3, 5, 5, 5, 5, 10])
        self.assertEqual(arrays_of(grid.GetPointData()), {"id": [4, 3, 2, 1]})
        found = arrays_of(grid.GetCellData())
        self.assertEqual(found["orvml.container"], [1, 1, 2, 2, 2, 2, 3])
        self.assertEqual(found["100%"], [1, 2, -1, -1, -1, -1, -1])
        np.testing.assert_array_equal(found["size"], [7, 8, 0.5, 0.25, 1, 2, np.nan])
        self.assertEqual(arrays_of(grid.GetFieldData()),
                         {"growth": [1.5], "size": [0.25], "sizes": [0.5, 0.25]})

    def test_cells_without_a_type_do_not_keep_the_others_from_being_read(self):
        coordinates = np.vstack([SIMPLEX, [(1, 1, 1)]]).astype(float)
        document = document_of({"Elements": [(TETRAHEDRON, [(0, 1, 2, 3)]), (SPHERE, [(4,), (0,)]),
                                             (TETRAHEDRON, [(1, 4, 2, 3)])]}, coordinates)
        document.cells["Elements"].attributes[b"size"] = documents.doubles(1, 2, 3, 4)
        grid = self.link(document)
        self.assertEqual(cells_of(grid), [[0, 1, 2, 3], [1, 4, 2, 3]])
        self.assertEqual(arrays_of(grid.GetCellData())["size"], [1, 4])

    def test_meshes_of_the_plane_lie_where_z_is_0(self):
        grid = self.link(documents.plane_document())
        np.testing.assert_array_equal(points_of(grid), [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1.5, 0]])
        self.assertEqual(cells_of(grid), [[0, 1, 2, 3]])
        self.assertEqual(arrays_of(grid.GetCellData())["both"], [0.5])

    def test_documents_with_everything_are_read(self):
        document = documents.full_document()
        grid = self.link(document)
        np.testing.assert_array_equal(points_of(grid), document.coordinates)
        self.assertEqual(grid.GetNumberOfCells(), 3 + 5 + 1)  # one element has no type
        np.testing.assert_array_equal(arrays_of(grid.GetPointData())["sizes"],
                                      document.node_attributes[b"sizes"].values)

    def test_nodes_alone_are_read(self):
        self.assertEqual(self.link(document_of({}, np.eye(3))).GetNumberOfPoints(), 3)

    def test_mesh_of_tetrahedra_grows_by_less_than_two_percent(self):
        coordinates, rows = tetrahedra(30)
        self.write("part.hdf", document_of({"Elements": [(TETRAHEDRON, rows)]}, coordinates))
        before = (self.folder / "part.hdf").stat().st_size
        self.run_line("orvml link-vtk part.hdf")
        growth = (self.folder / "part.hdf").stat().st_size / before - 1
        print(f"{before} bytes grow by {100 * growth:.2f} %")
        self.assertLess(growth, 0.02)
        grid = read(self.folder / "part.hdf")
        np.testing.assert_array_equal(points_of(grid), coordinates)
        np.testing.assert_array_equal(vtk_to_numpy(grid.GetCells().GetConnectivityArray()),
                                      rows.ravel())
        self.run_line("orvml link-vtk --remove part.hdf")
        self.assertLess((self.folder / "part.hdf").stat().st_size, before + 1024)


if __name__ == "__main__":
    unittest.main()
