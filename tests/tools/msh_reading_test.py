#!/usr/bin/env python3
"""Files of Gmsh that others wrote, and damaged ones: what `orvml convert` makes of them."""
import os
import struct
import unittest

import gmsh
import h5py
import meshio
import numpy as np

from msh_shell import MshShell, setUpModule, tearDownModule  # noqa: F401
from shell import INT, Cells, Document, TypeGroup, documents, tetrahedron

HEAD = "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n"
NODES = "$Nodes\n1 4 1 4\n3 1 0 4\n1\n2\n3\n4\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n$EndNodes\n"
ELEMENTS = "$Elements\n2 2 1 2\n2 5 2 1\n1 1 2 3\n3 6 4 1\n2 1 2 3 4\n$EndElements\n"
CHANGES = int(os.environ.get("ORVML_MSH_CHANGES", "100"))  # of bytes, for each form of a file
CUT_STEP = 7  # bytes; no size of a number or of a line, so that cuts fall into all parts of them
FIELD = '${0}\n1\n"{1}"\n1\n{2}\n3\n{3}\n{4}\n{5}\n{6}\n$End{0}\n'
OF_GMSH = "  dropped: $Entities loses which entities bound which, and which ones nodes lie on"


def extruded(layers_of, order, is_incomplete):
    """A box of Gmsh's own mesher: of tetrahedra, prisms or hexahedra."""
    gmsh.clear()
    geometry = gmsh.model.geo
    points = [geometry.addPoint(x, y, 0, 0.5) for x, y in ((0, 0), (1, 0), (1, 1), (0, 1))]
    lines = [geometry.addLine(points[i], points[(i + 1) % 4]) for i in range(4)]
    face = geometry.addPlaneSurface([geometry.addCurveLoop(lines)])
    if layers_of == "hexahedra":
        geometry.mesh.setTransfiniteSurface(face)
        geometry.mesh.setRecombine(2, face)
    made = geometry.extrude([(2, face)], 0, 0, 2, [] if layers_of == "tetrahedra" else [2],
                            recombine=layers_of != "tetrahedra")
    geometry.synchronize()
    volume = next(tag for dimension, tag in made if dimension == 3)
    gmsh.model.addPhysicalGroup(2, [face], 5)
    gmsh.model.setPhysicalName(2, 5, "base")
    gmsh.model.addPhysicalGroup(3, [volume], 7)
    gmsh.option.setNumber("Mesh.SecondOrderIncomplete", is_incomplete)
    gmsh.model.mesh.generate(3)
    gmsh.model.mesh.setOrder(order)
    return face, volume


class Foreign(MshShell):
    def arrays(self, kind="Elements"):
        """The groups of cells of a kind, as (shape, nodes, cells), and the attributes."""
        with h5py.File(self.folder / "read.h5") as file:
            group = file["OrvInput"][kind]
            groups = [tuple(int(value) for value in row) for row in zip(
                group["element_types"], group["number_of_nodes_by_element"],
                group["number_of_elements_by_type"])]
            return groups, {name: values[:] for name, values in group.get("Attributes", {}).items()}

    def node_attributes(self):
        with h5py.File(self.folder / "read.h5") as file:
            return {name: values[:] for name, values in file["OrvInput/Nodes/Attributes"].items()}

    def read_text(self, text, code=0):
        (self.folder / "read.msh").write_text(text)
        return self.convert("read.msh", "read.h5", code)

    def test_meshes_of_gmsh_keep_their_volume_and_their_groups(self):
        for shape, nodes in (("tetrahedra", (4, 10)), ("prisms", (6, 18, 15)), ("hexahedra", (8, 27, 20))):
            for order, is_incomplete in ((1, 0), (2, 0), (2, 1)):
                for binary in (0, 1):
                    with self.subTest(shape=shape, order=order, is_incomplete=is_incomplete, binary=binary):
                        self.assert_mesh_of_gmsh_is_read(shape, nodes, order, is_incomplete, binary)

    def assert_mesh_of_gmsh_is_read(self, shape, nodes, order, is_incomplete, binary):
        face, volume = extruded(shape, order, is_incomplete)
        gmsh.option.setNumber("Mesh.Binary", binary)
        gmsh.option.setNumber("Mesh.SaveAll", 1)
        gmsh.write(str(self.folder / "read.msh"))
        cells = len(gmsh.model.mesh.getElements(3)[1][0])
        of_face = len(gmsh.model.mesh.getElements(2, face)[1][0])
        report = self.convert("read.msh", "read.h5")
        self.assertIn('  dropped: $PhysicalNames is not kept: 5 of dimension 2 "base"', report)
        self.assertIn(OF_GMSH, report)
        groups, attributes = self.arrays()
        expected = nodes[min(order - 1 + is_incomplete, len(nodes) - 1)]
        self.assertEqual([(of_group[1], of_group[2]) for of_group in groups], [(expected, cells)])
        self.assertEqual(set(attributes["entity"]), {volume})
        self.assertEqual(set(attributes["physical"]), {7})
        faces = self.arrays("Faces")[1]
        self.assertEqual(((faces["entity"] == face) == (faces["physical"] == 5)).sum(), len(faces["entity"]))
        self.assertEqual((faces["physical"] == 5).sum(), of_face)
        self.assert_volume("read.h5", 2.0)

    def assert_volume(self, name, expected):
        self.convert(name, "again.msh")
        volumes = self.volumes("again.msh")
        self.assertGreater(volumes.min(), 0)
        self.assertAlmostEqual(volumes.sum(), expected, delta=1e-9 * expected)

    def test_files_of_meshio_are_read(self):
        points = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [1, 1, 1],
                           [0, 1, 1], [0.5, 0.5, 2]], float)
        cells = [("hexahedron", [range(8)]), ("pyramid", [[4, 5, 6, 7, 8]])]
        mesh = meshio.Mesh(points, cells, cell_data={"id": [[1.5], [2.5]], "gmsh:geometrical": [[4], [6]],
                                                   "gmsh:physical": [[1], [2]]},
                           point_data={"size": np.arange(9) / 4, "flow": points,
                                       "gmsh:dim_tags": np.array([[3, 4]] * 8 + [[3, 6]])})
        for binary in (True, False):
            with self.subTest(binary=binary):
                mesh.write(self.folder / "read.msh", file_format="gmsh", binary=binary)
                self.assertEqual(self.convert("read.msh", "read.h5"), [
                    "  split: array 'flow' has 3 components, each of which becomes one: 'flow.0' and so on",
                    OF_GMSH])
                groups, attributes = self.arrays()
                self.assertEqual(groups, [(5, 8, 1), (8, 5, 1)])
                np.testing.assert_array_equal(attributes["id"], [1.5, 2.5])
                np.testing.assert_array_equal(attributes["entity"], [4, 6])
                np.testing.assert_array_equal(attributes["physical"], [1, 2])
                found = self.node_attributes()
                np.testing.assert_array_equal(found["size"], np.arange(9) / 4)
                np.testing.assert_array_equal([found[f"flow.{axis}"] for axis in range(3)], points.T)

    def test_cells_of_meshio_of_second_order_keep_their_nodes(self):
        for name, shape, nodes in (("tetra10", 4, 10), ("hexahedron20", 5, 20), ("hexahedron27", 5, 27)):
            cells = np.random.default_rng(7).permutation(3 * nodes).reshape(3, nodes)
            points = np.random.default_rng(8).normal(size=(3 * nodes, 3))
            meshio.Mesh(points, [(name, cells)]).write(self.folder / "read.msh", file_format="gmsh")
            self.assertEqual(self.convert("read.msh", "read.h5"), [])
            self.assertEqual(self.arrays()[0], [(shape, nodes, 3)])
            with h5py.File(self.folder / "read.h5") as file:
                np.testing.assert_array_equal(file["OrvInput/Nodes/coordinates"], points)
                np.testing.assert_array_equal(file["OrvInput/Elements/connectivities"], cells.ravel())

    def test_values_of_several_steps_components_and_sections(self):
        text = HEAD + NODES + ELEMENTS + "".join((
            FIELD.format("NodeData", "T", 0, 0, 1, 2, "1 10\n2 20"),
            FIELD.format("NodeData", "T", 0, 0, 1, 2, "3 30\n4 nan"),
            FIELD.format("NodeData", "T", 0.5, 1, 1, 4, "1 1\n2 2\n3 3\n4 4"),
            FIELD.format("NodeData", "u", 0, 0, 2, 3, "1 1 2\n2 3 4\n9 5 6"),
            FIELD.format("ElementData", "p", 0, 0, 1, 1, "2 7")))
        self.assertEqual(self.read_text(text), [
            "  split: array 'T' has 2 time steps, each of which becomes one: 'T.step0' and so on",
            "  dropped: array 'u' loses 1 value of nodes or elements that are not there, or were dropped",
            "  split: array 'u' has 2 components, each of which becomes one: 'u.0' and so on",
            "  dropped: 1 section of values have a time that is not kept",
            "  padded: Nodes array 'u.0' has no value for 2 of them, which get nan",
            "  padded: Nodes array 'u.1' has no value for 2 of them, which get nan"])
        found = self.node_attributes()
        for name, values in (("T.step0", [10, 20, 30, np.nan]), ("T.step1", [1, 2, 3, 4]),
                             ("u.0", [1, 3, np.nan, np.nan]), ("u.1", [2, 4, np.nan, np.nan])):
            np.testing.assert_array_equal(found[name], values)
        np.testing.assert_array_equal(self.arrays()[1]["p"], [7])
        self.assertEqual(set(self.arrays("Faces")[1]), {"entity"})

    def test_tags_may_be_sparse_and_huge(self):
        text = HEAD + NODES.replace("1\n2\n3\n4\n0 0 0", "18446744073709551615\n7\n3\n900000000000\n0 0 0")
        text += ("$Elements\n1 2 5 99\n3 1 4 2\n99 3 18446744073709551615 7 900000000000\n"
                 "5 7 3 900000000000 18446744073709551615\n$EndElements\n"
                 + FIELD.format("ElementData", "p", 0, 0, 1, 2, "5 1\n99 2"))
        self.assertEqual(self.read_text(text), [
            "  renamed: nodes have tags that are not 1, 2, 3 and so on, which are not kept",
            "  renamed: elements have tags that are not 1, 2, 3 and so on, which are not kept"])
        with h5py.File(self.folder / "read.h5") as file:
            self.assertEqual(list(file["OrvInput/Elements/connectivities"]), [2, 0, 1, 3, 1, 2, 3, 0])
        np.testing.assert_array_equal(self.arrays()[1]["p"], [2, 1])

    def test_what_has_no_place_is_said(self):
        elements = ("$Elements\n3 3 1 3\n2 5 21 1\n1 1 2 3 4 1 2 3 4 1 2\n"
                    "3 6 14 1\n2 1 2 3 4 1 2 3 4 1 2 3 4 1 2\n3 6 4 1\n3 1 2 3 4\n$EndElements\n")
        text = HEAD + ("$Periodic\n0\n$EndPeriodic\n$GhostElements\n$EndGhostElements\n"
                       "$PartitionedEntities\n0\n$EndPartitionedEntities\n$Mine\n$Hers\n$EndMine\n"
                       "$Entities\n0 0 0 1\n6 0 0 0 1 1 1 2 8 -9 1 4\n$EndEntities\n") + NODES + elements + (
                       FIELD.format("ElementData", "p", 0, 0, 1, 2, "1 5\n3 6")
                       + "$InterpolationScheme\nx\n$EndInterpolationScheme\n"
                       + FIELD.format("ElementNodeData", "q", 0, 0, 1, 1, "1 3 0 0 0"))
        self.assertEqual(self.read_text(text), [
            "  dropped: array 'p' loses 1 value of nodes or elements that are not there, or were dropped",
            "  renamed: elements have tags that are not 1, 2, 3 and so on, which are not kept",
            "  dropped: 1 element of Gmsh's type 21, of 10 nodes, have no shape in exchange files",
            "  approximated: 1 pyramid of 14 nodes come without the node in the middle of the base, with "
            "13 nodes",
            "  dropped: $ElementNodeData is not read", "  dropped: $GhostElements is not read",
            "  dropped: $InterpolationScheme is not read", "  dropped: $Mine is not read",
            "  dropped: $PartitionedEntities is not read", "  dropped: $Periodic is not read",
            "  dropped: $Entities has entities in several physical groups, of which the first one is "
            "kept: 1", OF_GMSH,
            "  padded: Elements array 'p' has no value for 1 of them, which get nan"])
        self.assertEqual(self.arrays()[0], [(8, 13, 1), (4, 4, 1)])
        np.testing.assert_array_equal(self.arrays()[1]["physical"], [8, 8])
        self.assertIn("would not come through whole", self.convert("read.msh", "no.h5 --strict", code=2))

    def test_inverted_prisms_are_turned(self):
        nodes = "$Nodes\n1 6 1 6\n3 1 0 6\n1\n2\n3\n4\n5\n6\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n1 0 1\n0 1 1\n$EndNodes\n"
        cells = "$Elements\n1 2 1 2\n3 1 6 2\n1 1 2 3 4 5 6\n2 1 3 2 4 6 5\n$EndElements\n"
        self.assertEqual(len(self.read_text(HEAD + nodes + cells)), 1)
        with h5py.File(self.folder / "read.h5") as file:
            self.assertEqual(list(file["OrvInput/Elements/connectivities"]), [0, 1, 2, 3, 4, 5] * 2)

    def test_both_orders_of_bytes_are_read(self):
        for order in "<>":
            pack = lambda form, *values: struct.pack(order + form, *values)  # noqa: E731
            content = (b"$MeshFormat\n4.1 1 8\n" + pack("i", 1) + b"\n$EndMeshFormat\n$Nodes\n"
                       + pack("4Q3iQ", 1, 3, 1, 3, 2, 1, 0, 3) + pack("3Q9d", 1, 2, 3, *np.arange(9) / 8)
                       + b"\n$EndNodes\n$Elements\n" + pack("4Q3iQ4Q", 1, 1, 1, 1, 2, 1, 2, 1, 1, 3, 1, 2)
                       + b'\n$EndElements\n$NodeData\n1\n"T"\n1\n0\n3\n0\n1\n3\n'
                       + b"".join(pack("i", tag) + pack("d", value)
                                  for tag, value in ((1, 0.5), (3, 1.5), (2, 2.5))) + b"\n$EndNodeData\n")
            (self.folder / "read.msh").write_bytes(content)
            self.assertEqual(self.convert("read.msh", "read.h5"), [])
            with h5py.File(self.folder / "read.h5") as file:
                np.testing.assert_array_equal(file["OrvInput/Nodes/coordinates"][:].ravel(), np.arange(9) / 8)
                self.assertEqual(list(file["OrvInput/Faces/connectivities"]), [2, 0, 1])
            np.testing.assert_array_equal(self.node_attributes()["T"], [0.5, 2.5, 1.5])

    def test_older_formats_are_refused_with_a_cure_that_works(self):
        extruded("prisms", 1, 0)
        gmsh.option.setNumber("Mesh.Binary", 0)
        for version in (2.2, 4.0):
            gmsh.option.setNumber("Mesh.MshFileVersion", version)
            gmsh.write(str(self.folder / "old.msh"))
            told = self.convert("old.msh", "read.h5", code=2)
            self.assertIn(f"it is not of the format 4.1 of msh, but of {version:g}", told)
            self.assertIn("'gmsh IN.msh -save -format msh41 -o OUT.msh' makes one of 4.1", told)
            self.run_line("gmsh old.msh -save -format msh41 -o new.msh")
            self.convert("new.msh", "read.h5")
        gmsh.option.setNumber("Mesh.MshFileVersion", 4.1)

    def test_changed_cells_are_read_in_spite_of_facts(self):
        self.write("part.h5", tetrahedron())
        self.convert("part.h5", "part.msh --text")
        text = (self.folder / "part.msh").read_text()
        text = text.replace("2 5 1 5\n", "1 1 5 5\n").replace("2 1 2 4\n1 1 3 2\n2 1 2 4\n3 2 3 4\n4 1 4 3\n", "")
        self.read_text(text)
        self.assertEqual(self.arrays()[0], [(4, 4, 1)])

    def test_facts_that_are_none_are_passed_over(self):
        for line in ("{}", '{"format": 4}', '{"format": "orvml-document", "version": "1"}', "[", ""):
            text = HEAD + f"$OrvmlDocument\n{line}\n$EndOrvmlDocument\n" + NODES
            self.assertEqual(self.read_text(text), ["  dropped: $OrvmlDocument is not read"], line)

    def test_what_does_not_fit_is_refused_by_name(self):
        for name, text, sentence in (
                ("no header", "$Nodes\n", "it does not begin with $MeshFormat"),
                ("unknown node", HEAD + NODES + ELEMENTS.replace("1 1 2 3", "1 1 2 77", 1),
                 "the element 1 has the node 77, which is not there"),
                ("node twice", HEAD + NODES.replace("1\n2\n3\n4\n", "1\n2\n2\n4\n") + ELEMENTS,
                 "the node 2 is there twice"),
                ("element twice", HEAD + NODES + ELEMENTS.replace("2 1 2 3 4", "1 1 2 3 4"),
                 "the element 1 is there twice"),
                ("too many nodes", HEAD + NODES.replace("1 4 1 4", "1 99999999999 1 4"),
                 "there cannot be 99999999999 things"),
                ("wrong sum", HEAD + NODES.replace("1 4 1 4", "1 3 1 4"), "do not have as many"),
                ("polygon", HEAD + NODES + ELEMENTS.replace("2 5 2 1", "2 5 34 1"), "of type 34"),
                ("no number", HEAD + NODES.replace("0 1 0", "0 one 0"), "'one' is not the number"),
                ("no end", HEAD + NODES[:-10], "does not end where it should"),
                ("unknown without end", HEAD + "$Mine\n1 2 3\n", "$Mine has no end"),
                ("nodes twice", HEAD + NODES + NODES, "nodes behind the nodes"),
                ("noise", HEAD + "noise\n", "something between its sections")):
            with self.subTest(name):
                told = self.read_text(text, code=2)
                self.assertIn(sentence, told)
                self.assertIn("read.msh", told)

    def test_values_that_would_fill_the_memory_are_refused(self):
        cells = 20000
        text = (HEAD + NODES + f"$Elements\n1 {cells} 1 {cells}\n0 1 15 {cells}\n"
                + "".join(f"{tag} 1\n" for tag in range(1, cells + 1)) + "$EndElements\n"
                + "".join(FIELD.format("ElementData", name, 0, 0, 1, 1, "1 5") for name in range(300)))
        self.assertIn("far more memory", self.read_text(text, code=2))


class Damaged(MshShell):
    """All in one shell, which tells how each run ended. Each run is a process: thousands of changes
    a second are the business of the fuzzer of the readers."""

    def assert_all_end_well(self, files):
        """Returns how many are refused."""
        return sum(self.assert_some_end_well(files[first:first + 200]) for first in range(0, len(files), 200))

    def assert_some_end_well(self, files):
        for number, content in enumerate(files):
            (self.folder / f"bad{number}.msh").write_bytes(content)
        line = (f"for i in $(seq 0 {len(files) - 1}); do told=$(orvml convert bad$i.msh out.h5 2>&1 >/dev/null);"
                ' echo "$? $told" | tr "\\n" " "; echo; done')
        runs = self.run_bytes(line).stdout.decode(errors="replace").split("\n")[:-1]
        self.assertEqual(len(runs), len(files))
        for number, run in enumerate(runs):
            good = run.strip() == "0" or run.startswith(f"2 orvml: error: bad{number}.msh: ")
            self.assertTrue(good, (number, run, files[number]))
        return sum(run.startswith("2 ") for run in runs)

    def written(self, mode):
        document = Document(dimension=3, coordinates=np.eye(3), node_attributes={b"a": documents.ints(1, 2, 3)},
                            cells={"Faces": Cells([TypeGroup(2, 3, 1)], np.arange(3, dtype=INT),
                                                  {b"b": documents.doubles(0.5)})})
        self.write("part.h5", document)
        self.convert("part.h5", f"part.msh {mode}")
        return (self.folder / "part.msh").read_bytes()

    def test_cuts_of_a_file_end_well(self):
        for mode in ("", "--text"):
            whole = self.written(mode)
            cuts = [whole[:size] for size in range(0, len(whole), CUT_STEP)]
            self.assertGreater(self.assert_all_end_well(cuts), len(cuts) * 0.9)

    def test_changed_bytes_end_well(self):
        random = np.random.default_rng(15)
        for mode in ("", "--text"):
            whole = np.frombuffer(self.written(mode), "uint8")
            files = []
            for _ in range(CHANGES):
                changed = whole.copy()
                places = random.integers(0, len(whole), random.integers(1, 4))
                changed[places] = random.integers(0, 256, len(places))
                files.append(changed.tobytes())
            self.assert_all_end_well(files)


if __name__ == "__main__":
    unittest.main()
