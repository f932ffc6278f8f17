#!/usr/bin/env python3
"""`orvml convert` to VTK's XML files and back, with VTK and meshio as the other side."""
import binascii
import pathlib
import unittest

import meshio
import numpy as np
import vtk
from vtk.util.numpy_support import numpy_to_vtk, vtk_to_numpy

import documents
from cells_of_vtk import CONTAINERS, VTK_TYPES, random_cell
from shell import INT, Cells, Document, Shell, TypeGroup, Vector, tetrahedron, within_memory

OLDER_PRISMS = {6: [0, 2, 1, 3, 5, 4], 12: [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9],
                15: [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9, 12, 14, 13],
                18: [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9, 12, 14, 13, 17, 16, 15]}


def document_of_cells(seed, forms):
    """A document with three random cells of each form, no two of which share a node."""
    random = np.random.default_rng(seed)
    coordinates, groups, indices = [], {}, {}
    for shape, nodes in forms:
        container = CONTAINERS.get(shape, "Elements")
        groups.setdefault(container, []).append(TypeGroup(shape, nodes, 3))
        for cell in range(3):
            first = sum(map(len, coordinates))
            coordinates.append(random_cell(random, shape, nodes) + 2 * len(coordinates))
            indices.setdefault(container, []).append(np.arange(first, first + nodes))
    return Document(
        creator=b"vtu test", dimension=3, coordinates=np.concatenate(coordinates),
        cells={container: Cells(groups[container],
                                np.concatenate(indices[container]).astype(INT), {})
               for container in groups})


def read_grid(path):
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.SetFileName(str(path))
    reader.Update()
    return reader.GetOutput()


def write_grid(path, grid, mode="appended", **settings):
    writer = vtk.vtkXMLUnstructuredGridWriter()
    writer.SetFileName(str(path))
    writer.SetInputData(grid)
    {"ascii": writer.SetDataModeToAscii, "binary": writer.SetDataModeToBinary,
     "appended": writer.SetDataModeToAppended}[mode]()
    for name, value in settings.items():
        getattr(writer, name)(value) if value is not None else getattr(writer, name)()
    assert writer.Write() == 1


def grid_of(document):
    """VTK's grid of a document, made without our library."""
    grid, points = vtk.vtkUnstructuredGrid(), vtk.vtkPoints()
    points.SetDataTypeToDouble()
    for point in document.coordinates:
        points.InsertNextPoint(point)
    grid.SetPoints(points)
    for container in ("Edges", "Faces", "Elements"):
        cells = document.cells.get(container)
        first = 0
        for group in cells.groups if cells else []:
            for _ in range(group.cells):
                nodes = cells.connectivities[first:first + group.nodes_per_cell]
                grid.InsertNextCell(VTK_TYPES[group.shape, group.nodes_per_cell], len(nodes),
                                    [int(node) for node in nodes])
                first += group.nodes_per_cell
    return grid


def cell_nodes(grid, cell):
    ids = grid.GetCell(cell).GetPointIds()
    return [ids.GetId(i) for i in range(ids.GetNumberOfIds())]


class Vtu(Shell):
    def convert(self, arguments):
        code, printed, told = self.run_line(f"orvml convert {arguments}")
        self.assertEqual((code, told), (0, ""), printed)
        return printed

    def assert_equal_files(self, one, other):
        code, printed, told = self.run_line(f"orvml diff {one} {other}")
        self.assertEqual((code, told), (0, ""), printed)

    def assert_round_trip(self, name, options=""):
        self.convert(f"{name} there.vtu {options}")
        self.convert("there.vtu back.h5")
        self.assert_equal_files(name, "back.h5")

    def assert_same_grid(self, document, grid, order=lambda nodes: list(nodes)):
        expected = grid_of(document)
        np.testing.assert_array_equal(vtk_to_numpy(grid.GetPoints().GetData()),
                                      vtk_to_numpy(expected.GetPoints().GetData()))
        self.assertEqual(grid.GetNumberOfCells(), expected.GetNumberOfCells())
        for cell in range(grid.GetNumberOfCells()):
            self.assertEqual(grid.GetCellType(cell), expected.GetCellType(cell))
            self.assertEqual(cell_nodes(grid, cell), order(cell_nodes(expected, cell)))


class Written(Vtu):
    def test_vtk_reads_every_form_in_its_order(self):
        document = document_of_cells(1, VTK_TYPES)
        self.write("part.h5", document)
        for options in ("", "--compress"):
            with self.subTest(options=options):
                self.convert(f"part.h5 part.vtu {options}")
                self.assert_same_grid(document, read_grid(self.folder / "part.vtu"))

    def test_volume_elements_have_a_positive_jacobian_in_vtk(self):
        forms = [form for form in VTK_TYPES if form[0] in (4, 5, 6, 8)]
        self.write("part.h5", document_of_cells(2, forms))
        self.convert("part.h5 part.vtu")
        grid = read_grid(self.folder / "part.vtu")
        for cell in range(grid.GetNumberOfCells()):
            found = grid.GetCell(cell)
            centre = [0.0, 0.0, 0.0]
            sub = found.GetParametricCenter(centre)
            axes = []
            for axis in range(3):
                ends = []
                for step in (-1e-6, 1e-6):
                    place = list(centre)
                    place[axis] += step
                    point, weights = [0.0] * 3, [0.0] * found.GetNumberOfPoints()
                    found.EvaluateLocation(vtk.reference(sub), place, point, weights)
                    ends.append(np.array(point))
                axes.append(ends[1] - ends[0])
            self.assertGreater(np.linalg.det(np.array(axes)), 0, grid.GetCellType(cell))

    def test_older_prisms_come_in_the_other_order(self):
        forms = [form for form in VTK_TYPES if form[0] == 6]
        document = document_of_cells(3, forms)
        self.write("part.h5", document)
        self.convert("part.h5 part.vtu --older-prisms")
        self.assert_same_grid(document, read_grid(self.folder / "part.vtu"),
                              lambda nodes: [nodes[i] for i in OLDER_PRISMS[len(nodes)]])

    def test_older_prisms_have_a_positive_size_in_older_vtk(self):
        self.write("part.h5", document_of_cells(3, [(6, 6)]))
        for options, sign in (("--older-prisms", 1), ("", -1)):
            self.convert(f"part.h5 part.vtu {options}")
            sizes = vtk.vtkCellSizeFilter()
            sizes.SetInputData(read_grid(self.folder / "part.vtu"))
            sizes.Update()
            volumes = vtk_to_numpy(sizes.GetOutput().GetCellData().GetArray("Volume"))
            self.assertTrue((volumes * sign > 0.1).all(), volumes)

    def test_attributes_and_parameters_are_arrays(self):
        document = tetrahedron()
        document.cells["Elements"].attributes = {b"size": documents.doubles(3.5),
                                                 b"a & <b>": documents.ints(-2)}
        self.write("part.h5", document)
        printed = self.convert("part.h5 part.vtu")
        self.assertIn("padded: /OrvInput/Faces has no attribute 'a & <b>' as other cells do; "
                      "its 4 cells get -1\n", printed)
        grid = read_grid(self.folder / "part.vtu")
        data = grid.GetCellData()
        np.testing.assert_array_equal(vtk_to_numpy(grid.GetPointData().GetArray("id")), [4, 3, 2, 1])
        np.testing.assert_array_equal(vtk_to_numpy(data.GetArray("size")), [0.5, 0.25, 1, 2, 3.5])
        np.testing.assert_array_equal(vtk_to_numpy(data.GetArray("a & <b>")), [-1, -1, -1, -1, -2])
        np.testing.assert_array_equal(vtk_to_numpy(data.GetArray("orvml.container")),
                                      [2, 2, 2, 2, 3])
        fields = grid.GetFieldData()
        self.assertEqual(fields.GetArray("growth").GetValue(0), 1.5)
        np.testing.assert_array_equal(vtk_to_numpy(fields.GetArray("sizes")), [0.5, 0.25])

    def test_missing_doubles_are_nan(self):
        self.write("part.h5", tetrahedron())
        self.convert("part.h5 part.vtu")
        data = read_grid(self.folder / "part.vtu").GetCellData()
        self.assertTrue(np.isnan(vtk_to_numpy(data.GetArray("size"))[4]))

    def test_plane_meshes_get_a_third_coordinate(self):
        self.write("part.h5", documents.plane_document())
        self.assertIn("padded: /OrvInput/Nodes/coordinates get z = 0, because vtu has points in "
                      "space alone\n", self.convert("part.h5 part.vtu"))
        np.testing.assert_array_equal(
            vtk_to_numpy(read_grid(self.folder / "part.vtu").GetPoints().GetData()),
            [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1.5, 0]])

    def test_cells_that_vtk_does_not_have_are_told(self):
        self.write("part.h5", documents.full_document())
        self.assertIn("dropped: /OrvInput/Elements loses 1 cell of shape 99 of 1 node, which vtu "
                      "has no cell for\n", self.convert("part.h5 part.vtu"))
        self.assertEqual(read_grid(self.folder / "part.vtu").GetNumberOfCells(), 9)

    def test_each_container_can_have_its_own_file(self):
        self.write("part.h5", tetrahedron())
        self.assertEqual(self.convert("part.h5 'out put.vtu' --split"),
                         "part.h5 -> out put.faces.vtu (vtu): everything is there\n"
                         "part.h5 -> out put.elements.vtu (vtu): everything is there\n")
        self.assertEqual(
            [read_grid(self.folder / f"out put.{part}.vtu").GetNumberOfCells()
             for part in ("faces", "elements")], [4, 1])
        self.assertEqual(self.convert("part.h5 faces.vtu --only faces"),
                         "part.h5 -> faces.vtu (vtu): everything is there\n")

    def cannot_be_read_by_meshio(self, name):
        """Whether it fails on base64 of its own, which it makes of raw arrays one after another: Python
        3.13 does not take all that 3.11 took."""
        try:
            meshio.read(self.folder / name)
        except binascii.Error:
            return True
        return False

    def rewrite_by_vtk(self, options):
        raw = {"EncodeAppendedDataOff": None, "SetHeaderTypeToUInt64": None}
        write_grid(self.folder / "rewritten.vtu", read_grid(self.folder / "part.vtu"),
                   **raw, **({} if options else {"SetCompressorTypeToNone": None}))

    def test_meshio_reads_it(self):
        forms = [(1, 2), (2, 3), (3, 4), (4, 4), (4, 10), (5, 8), (5, 20), (5, 27), (8, 5)]
        document = document_of_cells(4, forms)
        self.write("part.h5", document)
        for options in ("", "--compress"):
            self.convert(f"part.h5 part.vtu {options}")
            if self.cannot_be_read_by_meshio("part.vtu"):
                self.rewrite_by_vtk(options)
                self.assertTrue(self.cannot_be_read_by_meshio("rewritten.vtu"))
                continue
            mesh = meshio.read(self.folder / "part.vtu")
            np.testing.assert_array_equal(mesh.points, document.coordinates)
            self.assertEqual(sum(len(block.data) for block in mesh.cells), 3 * len(forms))
            self.assertEqual(sum(block.data.size for block in mesh.cells), len(document.coordinates))

    def test_standard_output_takes_it(self):
        self.write("part.h5", tetrahedron())
        self.convert("part.h5 part.vtu")
        run = self.run_bytes("orvml convert part.h5 - --to vtu | cmp - part.vtu")
        self.assertEqual((run.returncode, run.stdout), (0, b""))
        self.assertIn(b"part.h5 -> standard output (vtu): with changes\n", run.stderr)

    def test_strict_refuses_and_leaves_the_old_file(self):
        self.write("part.h5", documents.plane_document())
        (self.folder / "part.vtu").write_text("old")
        code, printed, told = self.run_line("orvml convert part.h5 part.vtu --strict")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("orvml: error: part.h5: would not come through whole: padded: /OrvInput/", told)
        self.assertEqual((self.folder / "part.vtu").read_text(), "old")
        self.assertEqual([path.name for path in self.folder.iterdir() if path.is_file()],
                         [name for name in ("part.h5", "part.vtu")
                          if (self.folder / name).exists()] or None)

    def test_indices_beyond_the_nodes_are_refused(self):
        document = tetrahedron()
        document.cells["Elements"].connectivities[3] = 4
        self.write("part.h5", document)
        code, printed, told = self.run_line("orvml convert part.h5 part.vtu")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn("part.h5: cells of Elements name nodes that there are not\n  cure: ", told)
        self.assertFalse((self.folder / "part.vtu").exists())


class RoundTrip(Vtu):
    def test_documents_come_back_equal(self):
        files = dict(documents.all_documents())
        files = {name: file for name, file in files.items() if len(file) == 1}
        self.assertGreater(len(files), 5)
        for name, file in files.items():
            for kind, document in file.items():
                with self.subTest(document=name):
                    for cells in document.cells.values():
                        if any((group.shape, group.nodes_per_cell) not in VTK_TYPES
                               for group in cells.groups):
                            break
                    else:
                        self.write("part.h5", document, kind)
                        self.assert_round_trip("part.h5")

    def test_every_form_comes_back_equal(self):
        self.write("part.h5", document_of_cells(5, VTK_TYPES), "OrvOutput")
        for options in ("", "--compress", "--older-prisms"):
            with self.subTest(options=options):
                self.assert_round_trip("part.h5", options)

    def test_flags_types_and_kinds_come_back(self):
        document = tetrahedron()
        document.node_attributes[b"id"].must_be_transmitted = True
        document.cells["Faces"].attributes = {b"size": documents.ints(4, 3, 2, 1),
                                              "Größe/".encode()[:-1]: documents.doubles(1, 2, 3, 4)}
        document.cells["Elements"].attributes = {b"size": Vector(np.array([0.5]), True)}
        self.write("part.h5", document, "OrvOutput")
        self.assert_round_trip("part.h5")


    def test_what_vtk_has_read_and_written_again_comes_back_equal(self):
        """As ParaView does, which keeps field data."""
        document = document_of_cells(8, VTK_TYPES)
        document.parameters = {b"growth": 1.5}
        self.write("part.h5", document)
        self.convert("part.h5 part.vtu")
        write_grid(self.folder / "saved.vtu", read_grid(self.folder / "part.vtu"))
        self.convert("saved.vtu found.h5")
        self.assert_equal_files("part.h5", "found.h5")

    def test_facts_of_a_mesh_that_was_changed_are_left_aside_and_told(self):
        document = document_of_cells(9, [(4, 4), (5, 8)])
        self.write("part.h5", document)
        self.convert("part.h5 part.vtu")
        grid, kept = read_grid(self.folder / "part.vtu"), vtk.vtkThreshold()
        cells = numpy_to_vtk(np.arange(grid.GetNumberOfCells()), deep=True)
        cells.SetName("cell")
        grid.GetCellData().AddArray(cells)
        kept.SetInputData(grid)
        kept.SetInputArrayToProcess(0, 0, 0, 1, "cell")
        kept.SetLowerThreshold(2)
        kept.SetUpperThreshold(100)
        kept.Update()
        changed = kept.GetOutput()
        changed.SetFieldData(grid.GetFieldData())
        write_grid(self.folder / "changed.vtu", changed)
        self.assertIn("  dropped: the division of cells into groups is that of other cells ", self.convert("changed.vtu found.h5"))


class Foreign(Vtu):
    """Files of VTK's and meshio's own writers."""

    def volumes_are_positive(self, name):
        code, printed, told = self.run_line(f"orvml check {name} --json")
        self.assertNotIn("orvml.mesh.inverted", printed)

    def test_every_mode_of_vtk_is_read(self):
        document = document_of_cells(6, VTK_TYPES)
        document.node_attributes = {}
        grid = grid_of(document)
        values = numpy_to_vtk(np.arange(grid.GetNumberOfCells()) / 3, deep=True)
        values.SetName("of cells")
        grid.GetCellData().AddArray(values)
        ints = numpy_to_vtk(np.arange(grid.GetNumberOfPoints(), dtype="int32"), deep=True)
        ints.SetName("of points")
        grid.GetPointData().AddArray(ints)
        self.write("expected.h5", document)
        modes = {"appended base64": ("appended", {}),
                 "appended raw": ("appended", {"EncodeAppendedDataOff": None}),
                 "raw, not compressed": ("appended", {"EncodeAppendedDataOff": None,
                                                      "SetCompressorTypeToNone": None}),
                 "base64, not compressed": ("appended", {"SetCompressorTypeToNone": None}),
                 "ascii": ("ascii", {}), "binary": ("binary", {}),
                 "lz4": ("appended", {"SetCompressorTypeToLZ4": None}),
                 "lzma": ("appended", {"SetCompressorTypeToLZMA": None}),
                 "64-bit headers": ("appended", {"SetHeaderTypeToUInt64": None}),
                 "inline with 64-bit headers": ("binary", {"SetHeaderTypeToUInt64": None}),
                 "small blocks": ("appended", {"SetBlockSize": 24 * 8}),
                 "big-endian": ("appended", {"SetByteOrderToBigEndian": None})}
        for name, (mode, settings) in modes.items():
            with self.subTest(mode=name):
                write_grid(self.folder / "foreign.vtu", grid, mode, **settings)
                self.convert("foreign.vtu found.h5")
                code, printed, told = self.run_line(
                    "orvml extract found.h5 Nodes/Attributes/'of points'")
                self.assertEqual((code, told), (0, ""))
                self.assertEqual(printed.split(), [str(i) for i in range(len(document.coordinates))])
                self.run_line("orvml edit found.h5 --remove 'Nodes/Attributes/of points'")
                self.convert("found.h5 again.vtu")
                self.assert_same_grid(document, read_grid(self.folder / "again.vtu"))

    def test_prisms_of_older_vtk_are_turned(self):
        document = document_of_cells(7, [(6, 6), (6, 15), (6, 18), (6, 12)])
        older = document_of_cells(7, [(6, 6), (6, 15), (6, 18), (6, 12)])
        cells, first = older.cells["Elements"], 0
        for group in cells.groups:
            for _ in range(group.cells):
                nodes = cells.connectivities[first:first + group.nodes_per_cell]
                nodes[:] = nodes[OLDER_PRISMS[group.nodes_per_cell]]
                first += group.nodes_per_cell
        write_grid(self.folder / "foreign.vtu", grid_of(older))
        self.assertIn("turned: 12 prisms had a negative volume and got the order of nodes that "
                      "makes it positive\n", self.convert("foreign.vtu found.h5"))
        self.convert("found.h5 again.vtu")
        self.assert_same_grid(document, read_grid(self.folder / "again.vtu"))

    def test_pieces_become_one_mesh(self):
        grid = grid_of(tetrahedron())
        write_grid(self.folder / "one.vtu", grid, "ascii")
        text = (self.folder / "one.vtu").read_text()
        begin, end = text.index("<Piece"), text.index("</Piece>") + len("</Piece>")
        (self.folder / "two.vtu").write_text(text[:begin] + 2 * text[begin:end] + text[end:])
        self.assertIn("2 pieces became one mesh", self.convert("two.vtu two.h5"))
        printed = self.run_line("orvml info --fast two.h5")[1]
        self.assertIn("nodes         8\n", printed)
        self.assertIn("elements      2: 2 tetrahedra of 4 nodes\n", printed)

    def test_other_cells_are_told_or_turned(self):
        grid, points = vtk.vtkUnstructuredGrid(), vtk.vtkPoints()
        for z in (0, 1):
            for y in (0, 1):
                for x in (0, 1):
                    points.InsertNextPoint(x, y, z)
        grid.SetPoints(points)
        for kind, nodes in ((11, range(8)), (8, range(4)), (7, (0, 1, 3)), (7, (0, 1, 3, 7, 2)),
                            (6, (0, 1, 2, 3)), (2, (0, 1))):
            grid.InsertNextCell(kind, len(nodes), list(nodes))
        values = numpy_to_vtk(np.arange(6.0), deep=True)
        values.SetName("number")
        grid.GetCellData().AddArray(values)
        write_grid(self.folder / "foreign.vtu", grid)
        printed = self.convert("foreign.vtu found.h5")
        for sentence in (
                "dropped: 1 cell of VTK's type 2 with 2 nodes has no shape in an exchange file\n",
                "dropped: 1 cell of VTK's type 6 with 4 nodes has no shape in an exchange file\n",
                "dropped: 1 cell of VTK's type 7 with 5 nodes has no shape in an exchange file\n",
                "turned: 2 pixel or voxels got the order of nodes of quadrilaterals and hexahedra\n"):
            self.assertIn(sentence, printed)
        self.assert_prints("orvml extract found.h5 Elements/Attributes/number", "0\n")
        self.assert_prints("orvml extract found.h5 Elements/connectivities", "0 1 3 2 4 5 7 6\n")
        self.assert_prints("orvml extract found.h5 Faces/Attributes/number", "1\n2\n")

    def test_components_are_split(self):
        grid = grid_of(tetrahedron())
        values = numpy_to_vtk(np.arange(12.0).reshape(4, 3), deep=True)
        values.SetName("displacement")
        grid.GetPointData().AddArray(values)
        write_grid(self.folder / "foreign.vtu", grid)
        self.assertIn("split: the array 'displacement' has 3 components, which become "
                      "'displacement.0' and so on\n", self.convert("foreign.vtu found.h5"))
        self.assert_prints("orvml extract found.h5 displacement.1", "1\n4\n7\n10\n")

    def test_integers_beyond_32_bits_are_told(self):
        grid = grid_of(tetrahedron())
        for name, values in (("large", [2**40, 1, 2, 3]), ("larger", [2**53 + 1, 1, 2, 3]), ("small", [1, 2, 3, 4])):
            array = numpy_to_vtk(np.array(values, "int64"), deep=True)
            array.SetName(name)
            grid.GetPointData().AddArray(array)
        write_grid(self.folder / "foreign.vtu", grid)
        report = self.convert("foreign.vtu found.h5")
        told = "  approximated: the array '{}' has integers beyond 32 bits and becomes one of doubles\n"
        for name in ("large", "larger"):
            self.assertIn(told.format(name), report)
        self.assertNotIn("'small'", report)
        self.assert_prints("orvml extract found.h5 large", "1099511627776\n1\n2\n3\n")

    def test_meshio_files_are_read(self):
        points = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [0, 1, 1]], float)
        mesh = meshio.Mesh(points, [("wedge", [[0, 1, 2, 3, 4, 5]]), ("triangle", [[0, 1, 2]])],
                           cell_data={"q": [[0.5], [0.25]]}, point_data={"p": np.arange(6)})
        for binary in (True, False):
            with self.subTest(binary=binary):
                meshio.write(self.folder / "foreign.vtu", mesh, binary=binary)
                self.convert("foreign.vtu found.h5")
                self.assert_prints("orvml extract found.h5 Elements/connectivities", "0 1 2 3 4 5\n")
                self.assert_prints("orvml extract found.h5 Elements/Attributes/q", "0.5\n")
                self.assert_prints("orvml extract found.h5 Faces/Attributes/q", "0.25\n")
                self.assert_prints("orvml extract found.h5 p", "0\n1\n2\n3\n4\n5\n")


class Hostile(Vtu):
    def assert_refused_or_read(self, name):
        code, printed, told = self.run_line(f"timeout 60 orvml convert {name} found.h5")
        self.assertIn(code, (0, 2), told)
        if code == 2:
            self.assertIn(f"orvml: error: {name}: ", told)

    def samples(self):
        grid = grid_of(document_of_cells(8, [(2, 3), (4, 4), (6, 15)]))
        values = numpy_to_vtk(np.arange(grid.GetNumberOfCells() * 2.0).reshape(-1, 2), deep=True)
        values.SetName("q")
        grid.GetCellData().AddArray(values)
        for mode, settings in (("appended", {}), ("appended", {"EncodeAppendedDataOff": None}),
                               ("ascii", {}), ("binary", {"SetCompressorTypeToLZ4": None})):
            write_grid(self.folder / "sound.vtu", grid, mode, **settings)
            yield bytearray((self.folder / "sound.vtu").read_bytes())

    def test_cut_files_are_refused(self):
        random = np.random.default_rng(9)
        for sample in self.samples():
            for length in random.integers(0, len(sample), 12):
                (self.folder / "cut.vtu").write_bytes(sample[:length])
                self.assert_refused_or_read("cut.vtu")

    def test_changed_files_are_refused_or_read(self):
        random = np.random.default_rng(10)
        for sample in self.samples():
            for _ in range(25):
                changed = bytearray(sample)
                for place in random.integers(0, len(sample), 3):
                    changed[place] = random.integers(0, 256)
                (self.folder / "changed.vtu").write_bytes(changed)
                self.assert_refused_or_read("changed.vtu")

    def test_sizes_that_lie_take_no_memory(self):
        text = ('<VTKFile type="UnstructuredGrid" byte_order="LittleEndian" header_type="UInt64"{}>'
                '<UnstructuredGrid><Piece NumberOfPoints="{}" NumberOfCells="{}"><Points>'
                '<DataArray type="Float64" NumberOfComponents="3" format="appended" offset="{}"/>'
                '</Points></Piece></UnstructuredGrid><AppendedData encoding="raw">_{}'
                '</AppendedData></VTKFile>')
        huge = "\x7f" * 16
        for values in (("", 2**31, 0, 0, ""), ("", 2**30, 0, 0, huge), ("", 1, 0, 2**63, ""),
                       (' compressor="vtkZLibDataCompressor"', 2**30, 0, 0, huge * 3),
                       (' compressor="nobody"', 3, 0, 0, huge * 3), ("", -1, 0, 0, "")):
            with self.subTest(values=values):
                (self.folder / "huge.vtu").write_text(text.format(*values))
                code, _, told = self.run_line(
                    within_memory("-v 2000000", "orvml convert huge.vtu found.h5"))
                self.assertEqual(code, 2, told)
                self.assertIn("orvml: error: huge.vtu: ", told)


if __name__ == "__main__":
    unittest.main()
