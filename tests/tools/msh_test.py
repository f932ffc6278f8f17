#!/usr/bin/env python3
"""Files of Gmsh: what `orvml convert` writes is read by Gmsh and meshio, what those write is read by it."""
import unittest

import gmsh
import meshio
import numpy as np

from cell_forms import FORMS
from msh_shell import MshShell, cells_of, deformed_cells, setUpModule, tearDownModule  # noqa: F401
from node_orders import ORDERS
from shell import INT, Cells, TypeGroup, Vector, documents, tetrahedron

MODES = ("", "--text")
# As the manual of Gmsh numbers them.
TYPES = {("point", 1): 15, ("line", 2): 1, ("line", 3): 8, ("line", 4): 26, ("triangle", 3): 2,
         ("triangle", 6): 9, ("quadrilateral", 4): 3, ("quadrilateral", 8): 16, ("quadrilateral", 9): 10,
         ("tetrahedron", 4): 4, ("tetrahedron", 10): 11, ("hexahedron", 8): 5, ("hexahedron", 20): 17,
         ("hexahedron", 27): 12, ("prism", 6): 6, ("prism", 15): 18, ("prism", 18): 13,
         ("pyramid", 5): 7, ("pyramid", 13): 19}


def with_values(document):
    """Attributes of both types; one name is there three times."""
    random = np.random.default_rng(4)
    nodes = document.number_of_nodes
    strange = np.array([np.nan, np.inf, -np.inf, -0.0, 5e-324, 1.7976931348623157e308, 0.1])
    document.node_attributes = {b"size": Vector(np.resize(strange, nodes)),
                                b"id": documents.ints(*random.integers(-2**31, 2**31, nodes))}
    for kind, shift in (("Faces", 1), ("Elements", 2)):
        cells = document.cells[kind]
        cells.attributes = {b"size": Vector(np.arange(cells.number_of_cells) / 7 + shift)}
    faces = document.cells["Faces"]
    faces.attributes[b"color"] = Vector(np.arange(faces.number_of_cells, dtype=INT) // 4 + 5, True)
    return document


class Written(MshShell):
    def type_of(self, form):
        """Gmsh's type of a form, and where it has the nodes of the undeformed cell."""
        kind = TYPES[form.shape, form.nodes]
        name, dimension, _, nodes, places, _ = gmsh.model.mesh.getElementProperties(kind)
        self.assertEqual((name.split()[0].lower(), dimension, nodes),
                         (form.shape, form.dimension, form.nodes))
        local = np.zeros((nodes, 3))
        local[:, :max(1, dimension)] = np.reshape(places, (nodes, -1))
        return kind, local

    def nodes_of_elements(self, kind):
        """[elements x nodes x 3], as Gmsh sees them."""
        tags, coordinates, _ = gmsh.model.mesh.getNodes()
        place = np.zeros((int(tags.max()) + 1, 3))
        place[tags.astype(int)] = coordinates.reshape(-1, 3)
        _, _, _, nodes, _, _ = gmsh.model.mesh.getElementProperties(kind)
        return place[gmsh.model.mesh.getElementsByType(kind)[1].astype(int)].reshape(-1, nodes, 3)

    def test_gmsh_has_each_node_where_its_own_cell_has_it(self):
        document, _ = cells_of(FORMS, lambda form: form.places)
        self.write("part.h5", document)
        for mode in MODES:
            self.assertEqual(self.convert("part.h5", f"part.msh {mode}"), [])
            self.open("part.msh")
            for form in FORMS:
                with self.subTest(form=form, mode=mode):
                    kind, local = self.type_of(form)
                    np.testing.assert_allclose(self.nodes_of_elements(kind)[0], local, atol=1e-15)

    def test_page_about_nodes_says_where_gmsh_has_them(self):
        for form in (one for one in FORMS if one.dimension > 0):
            order = ORDERS["Gmsh"].get((form.number, form.nodes), range(form.nodes))
            np.testing.assert_allclose(form.places[list(order)], self.type_of(form)[1], atol=1e-15)

    def test_measures_of_deformed_cells_are_those_of_their_shape_functions(self):
        document, places = deformed_cells(1)
        self.write("part.h5", document)
        self.convert("part.h5", "part.msh")
        self.open("part.msh")
        for form in (one for one in FORMS if one.dimension > 0):
            with self.subTest(form=form):
                kind, _ = self.type_of(form)
                points, weights = gmsh.model.mesh.getIntegrationPoints(kind, "Gauss6")
                found = gmsh.model.mesh.getJacobians(kind, points)[1].reshape(-1, len(weights))
                self.assertEqual(len(found), 3)
                self.assertGreater(found.min(), 0)
                if form.is_polynomial:
                    own = [form.measures(nodes, points.reshape(-1, 3))
                           for nodes in places[form.shape, form.nodes]]
                    np.testing.assert_allclose(found, own, rtol=1e-10)
                    np.testing.assert_allclose(found @ weights, np.array(own) @ weights, rtol=1e-10)

    def test_check_of_gmsh_finds_nothing(self):
        document = deformed_cells(2, [form for form in FORMS if form.dimension == 3])[0]
        elements = document.cells["Elements"].connectivities
        document.cells["Edges"] = Cells([TypeGroup(1, 2, 4), TypeGroup(7, 1, 2)], elements[:10])
        document.cells["Faces"] = Cells([TypeGroup(2, 3, 8)], elements[:24])
        self.write("part.h5", with_values(document))
        for mode in ("", "--text", "--sets color", "--sets color --text"):
            with self.subTest(mode=mode):
                self.convert("part.h5", f"part.msh {mode}")
                code, printed, told = self.run_line("gmsh -check part.msh")
                self.assertEqual((code, told), (0, ""), printed)
                self.assertIn("Done checking mesh coherence", printed)

    def values_of_views(self):
        """What Gmsh shows: by name and kind of data, the tags and values."""
        views = {}
        for tag in gmsh.view.getTags():
            kind, tags, values, _, components = gmsh.view.getModelData(tag, 0)
            self.assertEqual(components, 1)
            name = gmsh.option.getString(f"View[{gmsh.view.getIndex(tag)}].Name")
            views[name, kind] = (tags.astype(int), np.array([one[0] for one in values]))
        return views

    def test_gmsh_has_the_very_coordinates_and_values(self):
        document = with_values(deformed_cells(3)[0])
        edges, faces, elements = (document.cells[kind].number_of_cells
                                  for kind in ("Edges", "Faces", "Elements"))
        sizes = np.concatenate([document.cells[kind].attributes[b"size"].values
                                for kind in ("Faces", "Elements")])
        self.write("part.h5", document)
        for mode in MODES:
            with self.subTest(mode=mode):
                self.convert("part.h5", f"part.msh {mode}")
                self.open("part.msh")
                tags, coordinates, _ = gmsh.model.mesh.getNodes()
                order = np.argsort(tags)
                self.assertEqual(list(tags[order]), list(range(1, document.number_of_nodes + 1)))
                np.testing.assert_array_equal(coordinates.reshape(-1, 3)[order], document.coordinates)
                views = self.values_of_views()
                self.assertEqual(len(views), 4)
                for (name, kind), tags, values in (
                        (("size", "NodeData"), tags[order], document.node_attributes[b"size"].values),
                        (("id", "NodeData"), tags[order], document.node_attributes[b"id"].values),
                        (("size", "ElementData"), edges + 1 + np.arange(faces + elements), sizes),
                        (("color", "ElementData"), edges + 1 + np.arange(faces),
                         document.cells["Faces"].attributes[b"color"].values)):
                    found = views[name, kind]
                    np.testing.assert_array_equal(found[0], tags)
                    np.testing.assert_array_equal(found[1], values)
                    np.testing.assert_array_equal(np.signbit(found[1]), np.signbit(values))

    def test_cells_of_one_value_are_an_entity_and_a_physical_group(self):
        document = tetrahedron()
        document.cells["Faces"].attributes = {b"color": documents.ints(7, -1, 7, 3)}
        self.write("part.h5", document)
        for mode in MODES:
            report = self.convert("part.h5", f"part.msh --sets color {mode}")
            self.assertEqual(report, [
                "  renamed: /OrvInput/Faces/Attributes/color has cells of -1, which are the entity 1 "
                "of dimension 2: tags of entities are positive"])
            self.open("part.msh")
            self.assertEqual(gmsh.model.getEntities(), [(2, 1), (2, 3), (2, 7), (3, 1)])
            self.assertEqual(gmsh.model.getPhysicalGroups(), [(2, 1), (2, 3), (2, 7), (3, 1)])
            found = {tag: list(gmsh.model.mesh.getElements(2, tag)[1][0]) for tag in (1, 3, 7)}
            self.assertEqual(found, {1: [2], 3: [4], 7: [1, 3]})
            self.assertEqual(self.run_line("orvml convert part.msh back.h5")[0], 0)
            self.assert_same(document, "back.h5")
        lines = (self.folder / "part.msh").read_text().splitlines()
        begin = lines.index("$Entities")
        self.assertEqual(lines[begin + 1:begin + 6], [
            "0 0 3 1", "1 0 0 0 2 0 0.5 1 1 0", "3 0 0 0 0 1 0.5 1 3 0", "7 0 0 0 2 1 0.5 1 7 0",
            "1 0 0 0 2 1 0.5 1 1 0"])

    def test_attribute_that_is_no_set_is_refused(self):
        self.write("part.h5", tetrahedron())
        self.assertIn("no cells have an attribute 'colour'",
                      self.convert("part.h5", "part.msh --sets colour", code=2))
        self.assertIn("holds doubles", self.convert("part.h5", "part.msh --sets size", code=2))
        self.assertFalse((self.folder / "part.msh").exists())

    def test_cells_that_gmsh_has_none_for_are_dropped_with_their_values(self):
        document = tetrahedron()
        document.cells["Faces"] = Cells(
            [TypeGroup(2, 3, 1), TypeGroup(2, 7, 2), TypeGroup(10, 1, 1)],
            (np.arange(18) % 4).astype(INT), {b"size": documents.doubles(1, 2, 3, 4)})
        document.cells["Elements"] = Cells([TypeGroup(5, 24, 1), TypeGroup(8, 19, 0)],
                                           (np.arange(24) % 4).astype(INT), {b"a": documents.ints(1)})
        self.write("part.h5", document)
        self.assertEqual(self.convert("part.h5", "part.msh"), [
            "  dropped: /OrvInput/Faces loses 2 triangles of 7 nodes, which msh has no cell for",
            "  dropped: /OrvInput/Faces loses 1 circle of 1 node, which msh has no cell for",
            "  dropped: /OrvInput/Elements loses 1 hexahedron of 24 nodes, which msh has no cell for",
            "  dropped: /OrvInput/Elements/Attributes/a goes with all its cells"])
        self.open("part.msh")
        self.assertEqual(self.values_of_views()["size", "ElementData"], ([1], [1.0]))
        told = self.convert("part.h5", "strict.msh --strict", code=2)
        self.assertIn("would not come through whole", told)
        self.assertFalse((self.folder / "strict.msh").exists())

    def test_names_that_gmsh_cannot_hold_are_changed_and_come_back(self):
        names = [b'qu"ote', b"qu'ote", b"two\nlines", b"\xff", "Größe".encode(), b" blanks ", b"$End",
                 b"n" * 79]
        document = tetrahedron()
        document.node_attributes = {name: documents.ints(1, 2, 3, 4 + i) for i, name in enumerate(names)}
        document.cells["Faces"].attributes = {name: documents.ints(*range(4)) for name in names}
        self.write("part.h5", document)
        report = self.convert("part.h5", "part.msh")
        self.assertEqual(len(report), 2 * 4, report)
        self.assertTrue(all(line.startswith("  renamed: ") for line in report))
        self.open("part.msh")
        self.assertEqual({name for name, kind in self.values_of_views() if kind == "NodeData"},
                         {"qu'ote", "qu'ote-2", "two\\nlines", "\\xff", "Größe", " blanks ", "$End",
                          "n" * 79})
        self.convert("part.msh", "back.h5")
        self.assert_same(document, "back.h5")

    def test_facts_of_any_length_are_passed_over_by_gmsh_and_meshio(self):
        document = tetrahedron()
        document.cells["Faces"].attributes = {}
        document.parameters = {b"$" * length: 1.0 for length in range(1, 80)}
        self.write("part.h5", document)
        for mode in MODES:
            self.convert("part.h5", f"part.msh {mode}")
            self.open("part.msh")
            self.assertEqual(len(gmsh.model.mesh.getNodes()[0]), 4)
            code, _, told = self.run_line("gmsh -check part.msh")
            self.assertEqual((code, told), (0, ""))
            mesh = meshio.read(self.folder / "part.msh")
            self.assertEqual([block.type for block in mesh.cells], ["triangle", "tetra"])
            self.convert("part.msh", "back.h5")
            self.assert_same(document, "back.h5")

    def test_meshio_has_the_same_cells_and_values(self):
        known = [form for form in FORMS if (form.shape, form.nodes) not in
                 (("prism", 15), ("prism", 18), ("pyramid", 13))]  # which it has not, or in another order
        document, _ = deformed_cells(5, known)
        document.node_attributes = {b"size": Vector(np.arange(document.number_of_nodes) / 7)}
        elements = document.cells["Elements"]
        elements.attributes = {b"id": Vector(np.arange(elements.number_of_cells, dtype=INT))}
        self.write("part.h5", document)
        for mode in MODES:
            with self.subTest(mode=mode):
                self.convert("part.h5", f"part.msh --only elements {mode}")
                mesh = meshio.read(self.folder / "part.msh")
                np.testing.assert_array_equal(mesh.points, document.coordinates)
                np.testing.assert_array_equal(mesh.point_data["size"],
                                              document.node_attributes[b"size"].values)
                np.testing.assert_array_equal(np.concatenate(mesh.cell_data["id"]),
                                              np.arange(elements.number_of_cells))
                np.testing.assert_array_equal(
                    np.concatenate([block.data.ravel() for block in mesh.cells]), elements.connectivities)


class RoundTrip(MshShell):
    def assert_comes_back(self, document, kind="OrvInput"):
        for mode in MODES:
            self.write("part.h5", document, kind)
            self.convert("part.h5", f"part.msh {mode}")
            self.assertEqual(self.convert("part.msh", "back.h5"), [])
            self.assert_same(document, "back.h5", kind)

    def test_every_form_with_values_comes_back(self):
        self.assert_comes_back(with_values(deformed_cells(6)[0]))

    def test_every_kind_of_document_comes_back(self):
        self.assert_comes_back(documents.plane_document(), "OrvOutput")
        self.assert_comes_back(documents.document_without_nodes())
        self.assert_comes_back(documents.document_without_parameters(), "OrvOutput")
        self.assert_comes_back(documents.document_with_empty_groups())

    def test_random_documents_come_back(self):
        for seed in range(40):
            with self.subTest(seed=seed):
                document = documents.random_document(seed)
                kind = "OrvInput" if seed % 2 else "OrvOutput"
                self.assert_comes_back(document, kind)

    def test_cells_of_one_shape_in_two_containers_come_back(self):
        document = documents.plane_document()
        document.cells["Elements"] = Cells([TypeGroup(3, 4, 1), TypeGroup(2, 3, 1), TypeGroup(2, 3, 1)],
                                           np.array([1, 2, 3, 0, 0, 1, 2, 0, 2, 3], INT),
                                           {b"both": documents.ints(1, 2, 3)})
        self.assert_comes_back(document)

    def test_plane_gets_a_third_coordinate_which_is_said(self):
        self.write("part.h5", documents.plane_document())
        self.assertEqual(self.convert("part.h5", "part.msh"),
                         ["  padded: /OrvInput/Nodes get z = 0, which msh has of every node"])

    def test_bits_of_a_nan_are_lost_by_text_alone(self):
        document = documents.full_document()
        document.cells["Elements"] = Cells([TypeGroup(4, 4, 1)], np.array([0, 1, 2, 3], INT), {})
        self.write("part.h5", document)
        self.assertEqual(self.convert("part.h5", "part.msh"), [])
        self.assertEqual(self.convert("part.h5", "part.msh --text"), [
            "  approximated: /OrvInput/Nodes/Attributes/sizes has NaN with bits of their own, which "
            "text does not have"])


if __name__ == "__main__":
    unittest.main()
