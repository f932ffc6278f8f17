#!/usr/bin/env python3
"""Surfaces that `orvml convert` writes, as VTK, Gmsh and meshio see them, and those of theirs that it reads."""
import json
import struct
import unittest

import gmsh
import meshio
import numpy as np
import vtk
from vtk.util.numpy_support import numpy_to_vtk, vtk_to_numpy

import exchange_reader
from reference_cells import (FORMS, HEXAHEDRON, LINE, PRISM, PYRAMID, QUADRILATERAL, TETRAHEDRON,
                             TRIANGLE, VTK_CELLS, deformed, linear_size, reference_nodes, size_by_vtk)
from shell import INT, Cells, Document, Shell, TypeGroup, documents

FORMATS = ("stl", "ply", "obj", "off")
VTK_READERS = {"stl": vtk.vtkSTLReader, "ply": vtk.vtkPLYReader, "obj": vtk.vtkOBJReader}


def surface(random, quadrilaterals=True):
    """A bent plate of triangles and quadrilaterals, whose nodes are floats and come in their order."""
    size = 6
    x, y = np.meshgrid(np.arange(size), np.arange(size))
    points = np.column_stack([x.ravel(), y.ravel(), random.uniform(-0.3, 0.3, size * size)])
    corner = np.array([j * size + i for j in range(size - 1) for i in range(size - 1)])
    quads = np.column_stack([corner, corner + 1, corner + 1 + size, corner + size])
    half = 13 if quadrilaterals else 25
    triangles = np.vstack([quads[:half, [0, 1, 2]], quads[:half, [0, 2, 3]]])
    groups = [TypeGroup(TRIANGLE, 3, len(triangles))]
    faces = [triangles.ravel()]
    if quadrilaterals:
        groups.append(TypeGroup(QUADRILATERAL, 4, 25 - half))
        faces.append(quads[half:].ravel())
    _, order = np.unique(np.concatenate(faces), return_index=True)
    numbers = np.empty(len(points), INT)  # nodes in the order in which faces have them
    numbers[np.concatenate(faces)[np.sort(order)]] = np.arange(len(points))
    sorted_points = np.empty_like(points)
    sorted_points[numbers] = points
    return Document(creator=b"orvml", coordinates=sorted_points.astype("float32").astype(float),
                    cells={"Faces": Cells(groups, numbers[np.concatenate(faces)].astype(INT))})


def faces_of(document):
    """The corners of each face, as lists of points."""
    cells, first, found = document.cells["Faces"], 0, []
    for group in cells.groups:
        size = group.cells * group.nodes_per_cell
        found += document.coordinates[cells.connectivities[first:first + size].reshape(
            -1, group.nodes_per_cell)].tolist()
        first += size
    return found


def parted(faces):
    """Quadrilaterals as two triangles, along the shorter diagonal."""
    for face in np.array(faces, object):
        corners = np.array(list(face), float)
        if len(corners) == 3:
            yield corners.tolist()
        elif np.linalg.norm(corners[0] - corners[2]) <= np.linalg.norm(corners[1] - corners[3]):
            yield from (corners[[0, 1, 2]].tolist(), corners[[0, 2, 3]].tolist())
        else:
            yield from (corners[[0, 1, 3]].tolist(), corners[[1, 2, 3]].tolist())


class Surfaces(Shell):
    def convert(self, source, written, options=""):
        code, printed, told = self.run_line(f"orvml convert --json {options} {source} {written}")
        self.assertEqual(code, 0, told)
        return [(change["kind"], change["object"], change["count"])
                for change in json.loads(printed)["changes"]]

    def faces_by_vtk(self, name):
        reader = VTK_READERS[name.rpartition(".")[2]]()
        reader.SetFileName(str(self.folder / name))
        reader.Update()
        found = reader.GetOutput()
        return [[found.GetPoint(cell.GetPointId(i)) for i in range(cell.GetNumberOfPoints())]
                for cell in map(found.GetCell, range(found.GetNumberOfCells()))]

    def faces_by_meshio(self, name):
        mesh = meshio.read(self.folder / name)
        return [face for block in mesh.cells for face in mesh.points[block.data].tolist()]

    def faces_by_gmsh(self, name):
        gmsh.initialize()
        try:
            gmsh.option.setNumber("General.Terminal", 0)
            gmsh.open(str(self.folder / name))
            tags, points, _ = gmsh.model.mesh.getNodes()
            places = dict(zip(tags, points.reshape(-1, 3)))
            kinds, _, nodes = gmsh.model.mesh.getElements(2)
            self.assertEqual(list(kinds), [2])
            return [[places[node] for node in face] for face in np.array(nodes[0]).reshape(-1, 3)]
        finally:
            gmsh.finalize()

    def read(self, name, kind="OrvInput"):
        return exchange_reader.read_file(self.folder / name)[kind]


class WrittenSurfaces(Surfaces):
    def assert_faces(self, found, expected, tolerance=0.0):
        self.assertEqual([len(face) for face in found], [len(face) for face in expected])
        np.testing.assert_allclose(np.vstack(found), np.vstack(expected), rtol=tolerance, atol=0)

    def test_other_programs_read_the_faces(self):
        document = surface(np.random.default_rng(1))
        self.write("part.h5", document)
        faces = faces_of(document)
        triangles = list(parted(faces))
        for name, options, readers in (
                ("binary.stl", "", "vmg"), ("text.stl", "--text", "vmg"), ("binary.ply", "", "vm"),
                ("text.ply", "--text", "vm"), ("part.obj", "", "vm"), ("part.off", "", "")):
            self.convert("part.h5", name, options)
            expected = triangles if name.endswith("stl") else faces
            for reader in readers:
                with self.subTest(name=name, reader=reader):
                    read = {"v": self.faces_by_vtk, "m": self.faces_by_meshio, "g": self.faces_by_gmsh}[reader]
                    self.assert_faces(read(name), expected)

    def test_other_programs_read_triangles_of_every_format(self):
        document = surface(np.random.default_rng(2), quadrilaterals=False)
        self.write("part.h5", document)
        for name, options, readers in (("binary.ply", "", "vmg"), ("text.ply", "--text", "vmg"),
                                       ("part.off", "", "m")):
            self.convert("part.h5", name, options)
            for reader in readers:
                with self.subTest(name=name, reader=reader):
                    read = {"v": self.faces_by_vtk, "m": self.faces_by_meshio, "g": self.faces_by_gmsh}[reader]
                    self.assert_faces(read(name), faces_of(document))

    def test_what_loses_nothing_comes_back_equal_and_passes_strictly(self):
        random = np.random.default_rng(3)
        floats, doubles = surface(random, False), surface(random, False)
        doubles.coordinates = random.normal(size=doubles.coordinates.shape)
        mixed = surface(random)
        turned = surface(random)  # quadrilaterals first
        faces = turned.cells["Faces"]
        faces.groups.reverse()
        faces.connectivities = np.roll(faces.connectivities, 4 * faces.groups[0].cells)
        for name, document, files in (
                ("floats", floats, ["stl", "ply", "obj", "off", "stl --text", "ply --text"]),
                ("doubles", doubles, ["obj", "off", "stl --text", "ply --text"]),
                ("mixed", mixed, ["obj", "off", "ply", "ply --text"]),
                ("turned", turned, ["obj", "off", "ply", "ply --text"])):
            self.write("part.h5", document)
            document.creator = b""
            self.write("nameless.h5", document)
            for file in files:
                with self.subTest(name=name, file=file):
                    ending, _, options = file.partition(" ")
                    self.assertEqual(self.convert("nameless.h5", f"part.{ending}", options + " --strict"), [])
                    self.assertEqual(self.convert(f"part.{ending}", "back.h5"), [])
                    self.assert_prints("orvml diff --quiet part.h5 back.h5", "")

    def test_doubles_are_rounded_to_floats_where_a_format_has_those(self):
        document = surface(np.random.default_rng(4), False)
        document.coordinates[3] = [0.1, 0.2, 1e-3]
        self.write("part.h5", document)
        for name in ("stl", "ply"):
            with self.subTest(name=name):
                self.assertIn(("approximated", "/OrvInput/Nodes/coordinates", 3),
                              self.convert("part.h5", f"part.{name}"))
                self.convert(f"part.{name}", "back.h5")
                np.testing.assert_array_equal(
                    self.read("back.h5").coordinates, document.coordinates.astype("float32"))
        document.coordinates[3, 0] = 1e39
        self.write("part.h5", document)
        for name in ("stl", "ply"):
            code, _, told = self.run_line(f"orvml convert part.h5 large.{name}")
            self.assertEqual((code, (self.folder / f"large.{name}").exists()), (2, False))
            self.assertIn("there is a coordinate 1e+39, beyond the range of floats", told)

    def test_what_a_surface_cannot_hold_is_told(self):
        document = surface(np.random.default_rng(5), False)
        document.creator = b"somebody"
        document.coordinates = np.vstack([document.coordinates, [[9, 9, 9]]])
        document.node_attributes[b"heat"] = documents.doubles(*range(37))
        faces = document.cells["Faces"]
        faces.groups = [TypeGroup(TRIANGLE, 3, 10), TypeGroup(TRIANGLE, 3, 40)]
        faces.attributes[b"color"] = documents.ints(*range(50))
        document.cells["Edges"] = Cells([TypeGroup(LINE, 2, 2)], np.array([0, 1, 1, 2], INT))
        document.cells["Elements"] = Cells([TypeGroup(TETRAHEDRON, 4, 1)], np.array([0, 1, 2, 36], INT))
        document.parameters = {b"a": 1.0}
        document.vectors = {b"v": documents.ints(1)}
        self.write("part.h5", document)
        told = [("dropped", "/OrvInput/Edges", 2), ("dropped", "/OrvInput/Elements", 1),
                ("dropped", "/OrvInput/Faces", 2), ("dropped", "/OrvInput", 1),
                ("dropped", "/OrvInput/Nodes/Attributes/heat", 37),
                ("dropped", "/OrvInput/Faces/Attributes/color", 50), ("dropped", "/OrvInput/parameters", 1),
                ("dropped", "/OrvInput/vector parameters", 1)]
        for name in FORMATS:
            with self.subTest(name=name):
                unused = [("dropped", "/OrvInput/Nodes", 1)] if name == "stl" else []
                self.assertEqual(sorted(self.convert("part.h5", f"part.{name}")), sorted(told + unused))
                code, _, message = self.run_line(f"orvml convert --strict part.h5 strict.{name}")
                self.assertEqual((code, (self.folder / f"strict.{name}").exists()), (2, False))
                self.assertIn("would not come through whole: dropped: /OrvInput/", message)

    def test_nodes_at_one_place_are_told_where_places_tell_nodes(self):
        document = surface(np.random.default_rng(6), False)
        document.coordinates[5] = document.coordinates[9]
        document.cells["Faces"].connectivities = np.roll(document.cells["Faces"].connectivities, 3)
        self.write("part.h5", document)
        changes = self.convert("part.h5", "part.stl")
        self.assertIn(("dropped", "/OrvInput/Nodes", 1), changes)
        self.assertIn("turned", [kind for kind, _, _ in changes])
        self.assertNotIn("turned", [kind for kind, _, _ in self.convert("part.h5", "part.off")])

    def test_nodes_in_the_plane_get_a_third_coordinate(self):
        document = surface(np.random.default_rng(7), False)
        document.dimension, document.coordinates = 2, document.coordinates[:, :2]
        self.write("part.h5", document)
        for name in FORMATS:
            self.assertIn(("padded", "/OrvInput/Nodes", 36), self.convert("part.h5", f"part.{name}"))
            self.convert(f"part.{name}", "back.h5", "--dimension 2")
            np.testing.assert_array_equal(self.read("back.h5").coordinates, document.coordinates)

    def test_bent_quadrilaterals_are_parted_inside(self):
        """The second corner lies inside of the triangle of the others."""
        document = Document(coordinates=np.array([[0, 0, 0], [1, 1, 0], [4, 0, 0], [1, 4, 0]], float),
                            cells={"Faces": Cells([TypeGroup(QUADRILATERAL, 4, 1)], np.arange(4, dtype=INT))})
        self.write("part.h5", document)
        self.assertIn(("split", "/OrvInput/Faces", 1), self.convert("part.h5", "part.stl"))
        normals = [np.cross(b - a, c - a)[2] for a, b, c in np.array(self.faces_by_vtk("part.stl"))]
        self.assertEqual(len(normals), 2)
        self.assertTrue(all(normal > 0 for normal in normals) or all(normal < 0 for normal in normals))

    def test_documents_without_a_surface_are_refused(self):
        lines = Document(coordinates=np.zeros((2, 3)),
                         cells={"Edges": Cells([TypeGroup(LINE, 2, 1)], np.array([0, 1], INT))})
        self.write("part.h5", lines)
        for name in FORMATS:
            code, printed, told = self.run_line(f"orvml convert part.h5 part.{name}")
            self.assertEqual((code, printed), (2, ""))
            self.assertIn("there are no faces to write", told)
        broken = surface(np.random.default_rng(8))
        broken.coordinates[4, 2] = np.inf
        self.write("part.h5", broken)
        self.assertIn("node 4, counted from 0, has a coordinate that is inf",
                      self.run_line("orvml convert part.h5 part.obj")[2])


def volume_of(triangles):
    """What a closed surface encloses, positive when it looks outward."""
    return sum(np.dot(a, np.cross(b, c)) for a, b, c in np.asarray(triangles, float)) / 6


class Skins(Surfaces):
    """Volume elements without faces give the surface around them."""

    def skin(self, document, options=""):
        self.write("part.h5", document)
        self.changes = self.convert("part.h5", "skin.off", options)
        self.convert("skin.off", "skin.h5")
        return self.read("skin.h5")

    def assert_closed(self, skin):
        """Each edge lies between two faces, which go through it in opposite directions."""
        cells, first, edges = skin.cells["Faces"], 0, []
        for group in cells.groups:
            size = group.cells * group.nodes_per_cell
            for face in cells.connectivities[first:first + size].reshape(-1, group.nodes_per_cell).tolist():
                edges += list(zip(face, face[1:] + face[:1]))
            first += size
        self.assertEqual(len(edges), len(set(edges)))
        self.assertEqual(set(edges), {(b, a) for a, b in edges})

    def test_one_cell_of_every_form_has_a_closed_skin_around_its_volume(self):
        random = np.random.default_rng(9)
        for form in FORMS:
            if form[0] not in (TETRAHEDRON, HEXAHEDRON, PRISM, PYRAMID):
                continue
            with self.subTest(form=form):
                points = deformed(reference_nodes(form), random, 0)
                skin = self.skin(Document(coordinates=points, cells={"Elements": Cells(
                    [TypeGroup(*form, 1)], np.arange(form[1], dtype=INT))}))
                self.assert_closed(skin)
                volume = size_by_vtk(form, points) if form in VTK_CELLS else linear_size(form, points)
                np.testing.assert_allclose(volume_of(list(parted(faces_of(skin)))), volume, rtol=1e-9)
                # Every node but those inside of the cell lies on it.
                inside = {(HEXAHEDRON, 27): 1, (PYRAMID, 19): 1}.get(form, 0)
                self.assertEqual(len(skin.coordinates), form[1] - inside)
                self.assertIn(("dropped", "/OrvInput/Elements", 1), self.changes)

    def mixed(self):
        """A hexahedron, a pyramid on its top, a prism and two tetrahedra at its sides."""
        cube = reference_nodes((HEXAHEDRON, 8))
        points = np.vstack([cube, [[0.5, 0.5, 2], [2, 0, 0], [2, 0, 1], [2.5, 1.5, 0.4], [0.4, 0.6, -1]]])
        return Document(coordinates=points, cells={"Elements": Cells(
            [TypeGroup(HEXAHEDRON, 8, 1), TypeGroup(PYRAMID, 5, 1), TypeGroup(PRISM, 6, 1), TypeGroup(TETRAHEDRON, 4, 1)],
            np.array([*range(8), 4, 5, 6, 7, 8, 1, 9, 2, 5, 10, 6, 9, 11, 10, 2], INT))})

    def test_faces_between_cells_are_not_on_the_skin(self):
        skin = self.skin(self.mixed())
        shapes = {group.shape: group.cells for group in skin.cells["Faces"].groups}
        # 4 quadrilaterals of the hexahedron and 2 of the prism; 4 + 2 + 4 triangles, as the tetrahedron
        # lies on a half of a quadrilateral.
        self.assertEqual(shapes, {QUADRILATERAL: 6, TRIANGLE: 10})
        self.assertEqual(len(skin.coordinates), 12)  # the last node is of no cell
        self.assertIn(("dropped", "/OrvInput/Nodes", 1), self.changes)

    def test_large_block_has_the_skin_that_vtk_finds(self):
        size = 8
        random = np.random.default_rng(10)
        nodes = np.arange((size + 1) ** 3).reshape((size + 1,) * 3)
        corner = nodes[:-1, :-1, :-1].ravel()
        step = [nodes[i, j, k] for k, j, i in reference_nodes((HEXAHEDRON, 8)).astype(int)]
        hexahedra = corner[:, None] + np.array(step)
        tetrahedra = np.vstack([hexahedra[:, list(map(int, cell))] for cell in (
            "0126", "0236", "0376", "0746", "0456", "0516")])  # around the diagonal from 0 to 6
        tetrahedra = random.permutation(tetrahedra)[:2000]  # with holes
        points = np.column_stack(np.unravel_index(np.arange(nodes.size), nodes.shape))[:, ::-1].astype(float)
        skin = self.skin(Document(coordinates=points, cells={"Elements": Cells(
            [TypeGroup(TETRAHEDRON, 4, len(tetrahedra))], tetrahedra.astype(INT).ravel())}))
        grid = vtk.vtkUnstructuredGrid()
        vtk_points = vtk.vtkPoints()
        vtk_points.SetData(numpy_to_vtk(points, deep=True))
        grid.SetPoints(vtk_points)
        for cell in tetrahedra:
            grid.InsertNextCell(vtk.VTK_TETRA, 4, cell.tolist())
        geometry = vtk.vtkGeometryFilter()
        geometry.SetInputData(grid)
        geometry.Update()
        output = geometry.GetOutput()
        expected = vtk_to_numpy(output.GetPoints().GetData())[
            vtk_to_numpy(output.GetPolys().GetConnectivityArray()).reshape(-1, 3)]
        normal_form = lambda faces: sorted(tuple(map(tuple, np.roll(  # noqa: E731
            face, -np.lexsort(np.array(face).T[::-1])[0], axis=0).tolist())) for face in faces)
        self.assertEqual(normal_form(faces_of(skin)), normal_form(expected.tolist()))

    def test_faces_go_before_elements_unless_these_alone_are_asked_for(self):
        document = self.mixed()
        document.cells["Faces"] = Cells([TypeGroup(TRIANGLE, 3, 1)], np.array([0, 1, 2], INT))
        self.assertEqual(len(faces_of(self.skin(document))), 1)
        self.assertEqual(len(self.read("skin.h5").coordinates), 13)
        self.assertEqual(len(faces_of(self.skin(document, "--only elements"))), 16)

    def test_quadratic_faces_are_parted_with_all_of_their_nodes(self):
        random = np.random.default_rng(11)
        for form in FORMS:
            if form[0] not in (TRIANGLE, QUADRILATERAL):
                continue
            with self.subTest(form=form):
                points = deformed(reference_nodes(form), random, 0)
                skin = self.skin(Document(coordinates=points, cells={"Faces": Cells(
                    [TypeGroup(*form, 1)], np.arange(form[1], dtype=INT))}))
                triangles = np.array(list(parted(faces_of(skin))))
                normals = np.cross(triangles[:, 1] - triangles[:, 0], triangles[:, 2] - triangles[:, 0]) / 2
                direction = normals.sum(0) / np.linalg.norm(normals.sum(0))
                self.assertTrue(((normals @ direction) > 0).all())
                np.testing.assert_allclose((normals @ direction).sum(), size_by_vtk(form, points), rtol=1e-9)
                self.assertEqual(sorted(set(skin.cells["Faces"].connectivities)), list(range(form[1])))
                is_linear = form[1] == len(reference_nodes((form[0], {TRIANGLE: 3, QUADRILATERAL: 4}[form[0]])))
                self.assertEqual(self.changes, [] if is_linear else [("split", "/OrvInput/Faces", 1)])


class ReadSurfaces(Surfaces):
    """Files of other programs, and what the formats allow."""

    def test_files_of_vtk_and_meshio_are_read(self):
        document = surface(np.random.default_rng(12), False)
        faces = np.array(faces_of(document))
        triangles = document.cells["Faces"].connectivities.reshape(-1, 3)
        mesh = meshio.Mesh(document.coordinates, [("triangle", triangles)])
        for ending, binary in (("stl", False), ("stl", True), ("ply", False), ("ply", True), ("obj", None), ("off", None)):
            with self.subTest(program="meshio", ending=ending, binary=binary):
                mesh.write(self.folder / f"m.{ending}", **({} if binary is None else {"binary": binary}))
                self.convert(f"m.{ending}", "back.h5")
                np.testing.assert_array_equal(faces_of(self.read("back.h5")), faces)
        data = vtk.vtkPolyData()
        points = vtk.vtkPoints()
        points.SetData(numpy_to_vtk(document.coordinates, deep=True))
        data.SetPoints(points)
        cells = vtk.vtkCellArray()
        for triangle in triangles:
            cells.InsertNextCell(3, triangle.tolist())
        data.SetPolys(cells)
        for writer, ending in ((vtk.vtkSTLWriter, "stl"), (vtk.vtkPLYWriter, "ply"), (vtk.vtkOBJWriter, "obj")):
            for kind in ("SetFileTypeToBinary", "SetFileTypeToASCII"):
                with self.subTest(program="vtk", ending=ending, kind=kind):
                    instance = writer()
                    if hasattr(instance, kind):
                        getattr(instance, kind)()
                    instance.SetFileName(str(self.folder / f"v.{ending}"))
                    instance.SetInputData(data)
                    instance.Write()
                    self.convert(f"v.{ending}", "back.h5")
                    np.testing.assert_allclose(faces_of(self.read("back.h5")), faces, rtol=2e-5, atol=2e-6)

    def assert_reads(self, name, content, faces, changes=()):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())
        self.assertEqual(self.convert(name, "back.h5"), list(changes))
        self.assertEqual(faces_of(self.read("back.h5")), [np.array(face, float).tolist() for face in faces])

    FACE = [[(0, 0, 0), (1, 0, 0), (0, 1, 0)]]

    def test_what_other_programs_make_of_text_stl_is_read(self):
        text = ("solid\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
                "endloop\nendfacet\nendsolid\n")
        for content in (text, text.upper(), text.replace("\n", "\r\n"), text.replace("\n", "\n   "),
                        text.replace("endsolid\n", ""), "solid # a name, 2.0\n" + text[6:]):
            self.assert_reads("part.stl", content, self.FACE)
        self.assert_reads("part.stl", text + text.replace("1 0 0", "2 0 0"),
                          self.FACE + [[(0, 0, 0), (2, 0, 0), (0, 1, 0)]])

    def test_binary_stl_is_told_by_its_size(self):
        facet = struct.pack("<12fH", 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 7)
        content = b"solid name".ljust(80) + struct.pack("<I", 1) + facet
        self.assert_reads("part.stl", content, self.FACE, [("dropped", "attribute words of facets", 1)])
        for wrong in (content[:-1], content + b"\n"):
            (self.folder / "part.stl").write_bytes(wrong.replace(b"solid name", b"some part "))
            code, _, told = self.run_line("orvml convert part.stl back.h5")
            self.assertEqual(code, 2)
            self.assertIn(f"one of 1 facets has 134 bytes, this one has {len(wrong)}", told)

    def test_obj_lines_go_on_behind_a_backslash(self):
        self.assert_reads("part.obj", "v 0 0 \\\n0\nv 1 0 0\nv 0 1 0\nf 1 2\\\n\\\n 3\n", self.FACE)
        self.assert_reads("part.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\\", self.FACE)

    def test_what_is_passed_over_is_told(self):
        vertices = "v 0 0 0 1 0 0\nv 1 0 0 2\nv 0 1 0 1\nvt 0 0\nvn 0 0 1\nvn 0 0 1\nl 1 2\n"
        self.assert_reads("part.obj", vertices + "f -3/1/1 -2/1/1 -1/1/1\n", self.FACE, [
            ("dropped", "l: lines", 1), ("dropped", "v: colours of vertices", 1),
            ("dropped", "v: weights of vertices", 1), ("dropped", "vn: lines", 2), ("dropped", "vt: lines", 1)])
        self.assert_reads("part.off", "OFF 3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2 0.5 0.5 0.5\n", self.FACE,
                          [("dropped", "colours of faces", 1)])
        self.assert_reads("part.off", "COFF\n3 1 0\n0 0 0 255 0 0 255\n1 0 0 0 0 0 0\n0 1 0 1 1 1 1\n3 0 1 2\n",
                          self.FACE, [("dropped", "colours of vertices", 3)])
        self.assert_reads("part.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty double x\nproperty double y\n"
                          "property double z\nproperty float heat\nelement face 1\nproperty list uchar uint vertex_index\n"
                          "end_header\n0 0 0 5\n1 0 0 6\n0 1 0 7\n3 0 1 2\n", self.FACE,
                          [("dropped", "vertex.heat", 3)])

    def test_names_of_what_is_passed_over_have_an_end(self):
        lines = "".join(f"w{i}\n" for i in range(1000))
        self.assertLess(len(self.changes_of("part.obj", lines + "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")), 25)

    def changes_of(self, name, content):
        (self.folder / name).write_text(content)
        return self.convert(name, "back.h5")

    def test_doubles_of_text_keep_their_bits(self):
        random = np.random.default_rng(13)
        values = np.concatenate([random.normal(size=297), [5e-324, 1e300, -1 / 3]]).reshape(-1, 3)
        text = "".join(f"v {x!r} {y!r} {z!r}\n" for x, y, z in values.tolist())
        self.changes_of("part.obj", text + "f 1 2 3\n")
        np.testing.assert_array_equal(self.read("back.h5").coordinates, values)

    def test_damaged_files_end_with_a_message(self):
        document = surface(np.random.default_rng(14))
        self.write("part.h5", document)
        random = np.random.default_rng(15)
        for name, options in (("b.stl", ""), ("t.stl", "--text"), ("b.ply", ""), ("t.ply", "--text"),
                              ("a.obj", ""), ("a.off", "")):
            self.convert("part.h5", name, options)
            content = (self.folder / name).read_bytes()
            damaged = [content[:size] for size in random.integers(0, len(content), 15)]
            for _ in range(25):
                flipped = bytearray(content)
                for place in random.integers(0, len(content) if random.random() < 0.5 else 400, 3):
                    flipped[place % len(content)] ^= 1 << int(random.integers(0, 8))
                damaged.append(bytes(flipped))
            for trial, bytes_ in enumerate(damaged):
                with self.subTest(name=name, trial=trial):
                    (self.folder / ("bad." + name)).write_bytes(bytes_)
                    code, _, told = self.run_line(f"orvml convert bad.{name} back.h5")
                    self.assertIn(code, (0, 2), told)
                    self.assertEqual(code == 2, "bad." + name in told, told)

    def test_numbers_that_no_node_has_are_refused(self):
        head = ("ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
                "element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n")
        for face in ("3 0 1 nan", "3 0 1 inf", "3 0 1 1e300", "1e300 0 1 2", "3 0 1 0.5", "nan 0 1 2", "3 0 1 -1"):
            with self.subTest(face=face):
                (self.folder / "part.ply").write_text(head + face + "\n")
                code, printed, told = self.run_line("orvml convert part.ply back.h5")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn("part.ply: ", told)


if __name__ == "__main__":
    unittest.main()
