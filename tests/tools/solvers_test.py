#!/usr/bin/env python3
"""What `orvml convert` writes for solvers, as CalculiX runs it and as readers of Nastran see it."""
import json
import re
import shutil
import subprocess
import unittest

import gmsh
import meshio
import numpy as np

import reference_cells
from reference_cells import (FORMS, HEXAHEDRON, LINE, POINT, PRISM, PYRAMID, QUADRILATERAL, TETRAHEDRON,
                             TRIANGLE, deformed, reference_nodes, size_by_vtk)
from shell import INT, Cells, Document, Shell, TypeGroup, Vector, documents

KIND_OF_SHAPE = {POINT: "Edges", LINE: "Edges", TRIANGLE: "Faces", QUADRILATERAL: "Faces"}

SECTIONS = """*INCLUDE, INPUT=part.inp
*MATERIAL, NAME=STEEL
*ELASTIC
210000., 0.3
"""
SECTION_OF_KIND = {"Edges": "*SOLID SECTION, ELSET=EDGES, MATERIAL=STEEL\n1.\n",
                   "Faces": "*SHELL SECTION, ELSET=FACES, MATERIAL=STEEL\n1.\n",
                   "Elements": "*SOLID SECTION, ELSET=ELEMENTS, MATERIAL=STEEL\n"}
PLANE_SECTION = "*SOLID SECTION, ELSET=FACES, MATERIAL=STEEL\n1.\n"


def document_of(cells, dimension=3):
    """A document of cells that share no nodes: pairs of a form and the nodes of one."""
    kinds, coordinates, numberOfNodes = {}, [], 0
    for (shape, nodes), points in cells:
        kind = kinds.setdefault(KIND_OF_SHAPE.get(shape, "Elements"), ([], []))
        kind[0].append(TypeGroup(shape, nodes, 1))
        kind[1].extend(range(numberOfNodes, numberOfNodes + nodes))
        coordinates.append(points[:, :dimension])
        numberOfNodes += nodes
    return Document(dimension=dimension, coordinates=np.vstack(coordinates),
                    cells={kind: Cells(groups, np.array(nodes, INT))
                           for kind, (groups, nodes) in kinds.items()})


def cells_of_every_form(random):
    """Curved solids, curved shells in the plane and straight lines, as solvers want them."""
    flat = np.diag([1.0, 1.0, 0.0])
    cells = []
    for form in sorted(FORMS, key=lambda form: ("Edges", "Faces", "Elements").index(
            KIND_OF_SHAPE.get(form[0], "Elements"))):
        points = deformed(reference_nodes(form), random, 0 if form[0] == LINE else 0.05)
        cells.append((form, points @ flat if form[0] in (TRIANGLE, QUADRILATERAL) else points))
    return cells


# What elements stand for a form that solvers have none for, by the nodes that they have of it.
STANDS_FOR = {(HEXAHEDRON, 24): (HEXAHEDRON, 20), (HEXAHEDRON, 27): (HEXAHEDRON, 20), (PRISM, 18): (PRISM, 15),
              (TRIANGLE, 7): (TRIANGLE, 6), (QUADRILATERAL, 9): (QUADRILATERAL, 8),
              (PYRAMID, 19): (PYRAMID, 13)}
PIECES = {(LINE, 4): 3, (PYRAMID, 5): 2, (PYRAMID, 13): 2, (PYRAMID, 19): 2}


def expected_size(form, points):
    stand_in = STANDS_FOR.get(form, form)
    return size_by_vtk(stand_in, points[:stand_in[1]])


@unittest.skipUnless(shutil.which("ccx"), "this release of Debian has no CalculiX")
class InpInCalculix(Shell):
    """CalculiX includes the converted file, with all that a run needs around it."""

    def convert(self, document, options=""):
        self.write("part.h5", document)
        code, printed, told = self.run_line(f"orvml convert --json {options} part.h5 part.inp")
        self.assertEqual(code, 0, told)
        return json.loads(printed)["changes"]

    def solve(self, sections, output, held=""):
        """What CalculiX prints when all nodes are held."""
        (self.folder / "run.inp").write_text(
            SECTIONS + sections + "*STEP\n*STATIC\n*BOUNDARY\nALL_NODES, 1, 3\n" + held + output + "*END STEP\n")
        run = subprocess.run(["ccx", "run"], cwd=self.folder, check=False, timeout=300,
                             capture_output=True, text=True)
        self.assertEqual((run.returncode, re.findall(r"\*ERROR.*\n.*", run.stdout)), (0, []))
        self.assertEqual(re.findall(r"\*WARNING.*", run.stdout.replace(
            "*WARNING: no degrees of freedom in the model", "")), [])
        return (self.folder / "run.dat").read_text()

    def volumes(self, sections, sets):
        """The volume of each element by its number."""
        printed = self.solve(sections, "".join(f"*EL PRINT, ELSET={name}\nEVOL\n" for name in sets))
        return {int(number): float(volume)
                for number, volume in re.findall(r"^ +(\d+) +(\S+)$", printed, re.MULTILINE)}

    def assert_sizes(self, cells, volumes):
        number = 1
        for form, points in cells:
            pieces = PIECES.get(form, 1)
            found = sum(volumes[number + piece] for piece in range(pieces))
            number += pieces
            # Its rules for curved tetrahedra and prisms are not exact, nor is the base of a pyramid in two.
            rough = form[0] in (TETRAHEDRON, PRISM, PYRAMID, TRIANGLE) and form[1] > 6
            with self.subTest(form=form):
                np.testing.assert_allclose(found, expected_size(form, points), rtol=5e-3 if rough else 2e-6)
        self.assertEqual(number, len(volumes) + 1)

    def test_elements_of_every_form_have_the_size_of_their_cells(self):
        cells = cells_of_every_form(np.random.default_rng(15))
        self.convert(document_of(cells))
        self.assert_sizes(cells, self.volumes("".join(SECTION_OF_KIND.values()), ("EDGES", "FACES", "ELEMENTS")))


    def test_pyramids_keep_their_volume_along_either_diagonal(self):
        random = np.random.default_rng(16)
        for form in ((PYRAMID, 5), (PYRAMID, 13), (PYRAMID, 19)):
            points = deformed(reference_nodes(form), random)
            for least in range(4):  # the corner of the base with the least number
                with self.subTest(form=form, least=least):
                    numbers = np.arange(form[1])
                    numbers[[0, least]] = numbers[[least, 0]]
                    document = document_of([(form, points)])
                    document.coordinates = points[numbers]
                    document.cells["Elements"].connectivities = numbers.astype(INT)
                    self.convert(document)
                    found = self.volumes(SECTION_OF_KIND["Elements"], ["ELEMENTS"])
                    np.testing.assert_allclose(sum(found.values()), expected_size(form, points), rtol=5e-3)

    def test_plane_documents_have_elements_of_plane_stress(self):
        random = np.random.default_rng(2)
        cells = [(form, deformed(reference_nodes(form), random) @ np.diag([1.0, 1.0, 0.0]))
                 for form in FORMS if form[0] in (TRIANGLE, QUADRILATERAL)]
        changes = self.convert(document_of(cells, dimension=2))
        self.assertIn(("padded", "/OrvInput/Nodes", sum(form[1] for form, _ in cells)), summary(changes))
        self.assertEqual([element[0] for element in Inp(self.folder / "part.inp").elements],
                         ["CPS3", "CPS6", "CPS6", "CPS4", "CPS8", "CPS8", "CPS8"])
        self.assert_sizes(cells, self.volumes(PLANE_SECTION, ["FACES"]))

    def test_small_and_large_coordinates_are_read_as_they_are(self):
        """CalculiX takes 20 characters of a number and passes over an exponent behind them."""
        random = np.random.default_rng(3)
        form = (HEXAHEDRON, 8)
        for scale in (3e-6, 1.23456789e-5, 1e-3, 1, 1e6, 7e20):
            with self.subTest(scale=scale):
                points = deformed(reference_nodes(form), random)
                self.convert(document_of([(form, scale * points)]))
                found = self.volumes(SECTION_OF_KIND["Elements"], ["ELEMENTS"])[1]
                np.testing.assert_allclose(found, scale**3 * size_by_vtk(form, points), rtol=2e-6)

    def test_sets_have_the_nodes_and_elements_of_each_value(self):
        document, sets = document_with_sets()
        self.convert(document)
        output = "".join(f"*{word} PRINT, {'N' if word == 'NODE' else 'EL'}SET={name}\n{key}\n"
                         for (word, name), key in zip(sets, ["U" if w == "NODE" else "EVOL" for w, _ in sets]))
        held = "".join(f"side_{value}, 4, 6\n" for value in (-3, -2, -1))  # the rotations of shells
        printed = self.solve(SECTION_OF_KIND["Elements"] + SECTION_OF_KIND["Faces"], output, held)
        found = []
        for line in printed.splitlines():
            head = re.search(r"for set (\S+) and time", line)
            if head:
                found.append((head[1], []))
            elif line.strip():
                found[-1][1].append(int(line.split()[0]))
        self.assertEqual([(name, sorted(numbers)) for name, numbers in found],
                         [(name.upper(), numbers) for (_, name), numbers in sets.items()])

    def test_node_sets_of_faces_are_there_when_their_cells_are_not(self):
        document, sets = document_with_sets()
        self.convert(document, "--only elements")
        inp = Inp(self.folder / "part.inp")
        self.assertEqual({element[1] for element in inp.elements}, {"ELEMENTS"})
        self.assertEqual(inp.node_sets["side_-3"], sets["NODE", "side_-3"])
        self.assertNotIn("side_-3", inp.element_sets)


def summary(changes):
    return [(change["kind"], change["object"], change["count"]) for change in changes]


def document_with_sets():
    """Forty tetrahedra with a face each; with the nodes or elements of its sets, by keyword and name."""
    random = np.random.default_rng(4)
    form = (TETRAHEDRON, 4)
    document = document_of([(form, deformed(reference_nodes(form), random) + 3 * i) for i in range(40)])
    tetrahedra = document.cells["Elements"].connectivities.reshape(40, 4)
    document.cells["Elements"].groups = [TypeGroup(TETRAHEDRON, 4, 30), TypeGroup(TETRAHEDRON, 4, 10)]
    colors, sides, marks = random.integers(0, 3, 40), random.integers(-3, 0, 40), random.integers(5, 7, 160)
    document.cells["Elements"].attributes[b"color"] = Vector(colors.astype(INT))
    document.cells["Faces"] = Cells([TypeGroup(TRIANGLE, 3, 40)], tetrahedra[:, :3].ravel().astype(INT),
                                    {b"side": Vector(sides.astype(INT)), b"heat": documents.doubles(*range(40))})
    document.node_attributes[b"mark"] = Vector(marks.astype(INT), True)
    sets = {("NODE", "ALL_NODES"): list(range(1, 161))}
    for value in (5, 6):
        sets["NODE", f"mark_{value}"] = (np.flatnonzero(marks == value) + 1).tolist()
    for value in (-3, -2, -1):
        sets["NODE", f"side_{value}"] = (np.unique(tetrahedra[sides == value][:, :3]) + 1).tolist()
        sets["EL", f"side_{value}"] = (np.flatnonzero(sides == value) + 1).tolist()
    for value in (0, 1, 2):
        sets["EL", f"color_{value}"] = (np.flatnonzero(colors == value) + 41).tolist()
    return document, sets


class Inp:
    """A strict reader of what `orvml convert` may write: all limits of the format are checked."""

    def __init__(self, path):
        self.nodes, self.elements, self.node_sets, self.element_sets = {}, [], {}, {}
        text = path.read_text("ascii")
        for block in re.split(r"^\*(?!\*)", re.sub(r"^\*\*[^\n]*\n", "", text, flags=re.MULTILINE),
                              flags=re.MULTILINE)[1:]:
            head, _, body = block.partition("\n")
            keyword, *options = head.split(", ")
            self.read(keyword, dict((option.split("=") + [""])[:2] for option in options), body)

    def read(self, keyword, options, body):
        lines = []
        for line in body.replace(",\n", ",\0").splitlines():  # a comma at the end goes on
            for part in line.split("\0"):
                assert len(part.rstrip(",").split(",")) <= 16, part
            lines.append([entry.strip() for entry in line.replace("\0", "").split(",")])
        if keyword == "NODE":
            assert all(len(entry) <= 20 for line in lines for entry in line)
            self.nodes = {int(line[0]): tuple(map(float, line[1:])) for line in lines}
            assert list(self.nodes) == list(range(1, len(lines) + 1))
        elif keyword == "ELEMENT":
            for line in lines:
                self.elements.append((options["TYPE"], options["ELSET"], [int(node) for node in line[1:]]))
                assert int(line[0]) == len(self.elements)
        else:
            name = options[keyword]
            assert len(name) <= 80 and re.fullmatch(r"[A-Za-z][A-Za-z0-9_-]*", name), name
            numbers = {"NSET": self.node_sets, "ELSET": self.element_sets}[keyword].setdefault(name, [])
            for line in lines:
                numbers.extend(range(int(line[0]), int(line[1]) + 1) if "GENERATE" in options
                               else map(int, line))
            numbers.sort()


class InpFiles(Shell):
    """What is in the file, whoever reads it."""

    def convert(self, document, options=""):
        self.write("part.h5", document)
        code, printed, told = self.run_line(f"orvml convert --json {options} part.h5 part.inp")
        self.assertEqual(code, 0, told)
        self.changes = json.loads(printed)["changes"]
        return Inp(self.folder / "part.inp")

    def assert_refused(self, document, options, sentence):
        self.write("part.h5", document)
        code, printed, told = self.run_line(f"orvml convert {options} part.h5 part.inp")
        self.assertEqual((code, printed), (2, ""))
        self.assertIn(sentence, told)
        self.assertFalse((self.folder / "part.inp").exists())

    def test_forms_without_an_element_are_told(self):
        for form, kind, count in (((LINE, 4), "split", 1), ((PYRAMID, 5), "split", 1),
                                  ((PYRAMID, 13), "split", 1), ((PYRAMID, 13), "padded", 1),
                                  ((PYRAMID, 19), "approximated", 1), ((PRISM, 12), "padded", 3),
                                  ((PRISM, 18), "approximated", 1), ((HEXAHEDRON, 24), "approximated", 1),
                                  ((HEXAHEDRON, 27), "approximated", 1), ((TRIANGLE, 7), "approximated", 1),
                                  ((QUADRILATERAL, 6), "padded", 2), ((QUADRILATERAL, 9), "approximated", 1),
                                  ((POINT, 1), "dropped", 1)):
            with self.subTest(form=form, kind=kind):
                points = np.zeros((1, 3)) if form[0] == POINT else reference_nodes(form)
                self.convert(document_of([(form, points)]))
                path = "/OrvInput/" + KIND_OF_SHAPE.get(form[0], "Elements")
                self.assertIn((kind, path, count), summary(self.changes))

    def test_forms_with_an_element_are_not_told(self):
        told = {(LINE, 4), (PYRAMID, 5), (PYRAMID, 13), (PRISM, 12), (QUADRILATERAL, 6), *STANDS_FOR}
        for form in sorted(set(FORMS) - told):
            with self.subTest(form=form):
                self.convert(document_of([(form, reference_nodes(form))]))
                self.assertEqual([change for change in self.changes if "Attributes" not in change["object"]
                                  and change["object"] not in ("/OrvInput", "/OrvInput/Nodes/coordinates")], [])

    def test_pyramids_on_both_sides_of_a_base_part_it_alike(self):
        upper = reference_nodes((PYRAMID, 13))
        lower = upper * [1, 1, -1]
        for turn in range(4):  # which corner of the base has the least number
            with self.subTest(turn=turn):
                base = np.roll([0, 1, 2, 3], turn)
                middles = np.roll([5, 6, 7, 8], turn)
                tops, bottoms = np.roll([9, 10, 11, 12], turn), np.roll([14, 15, 16, 17], turn)
                order = lambda apex, up: [*base, apex, *middles, *up]  # noqa: E731
                # Seen from below, and beginning with another corner.
                below = [*base[::-1], 13, *middles[[2, 1, 0, 3]], *bottoms[::-1]]
                document = document_of([((PYRAMID, 13), upper)])
                document.coordinates = np.vstack([upper, lower[4], lower[9:13]])
                document.cells["Elements"] = Cells(
                    [TypeGroup(PYRAMID, 13, 2)], np.array([order(4, tops), below], INT).ravel())
                inp = self.convert(document)
                self.assertEqual(len(inp.nodes), 19)  # one is made, for both
                self.assertEqual(inp.nodes[19], (0.5, 0.5, 0))
                faces = [frozenset(nodes[i] for i in face) for _, _, nodes in inp.elements
                         for face in ((0, 1, 2), (0, 1, 3), (1, 2, 3), (0, 2, 3))]
                single = {face for face in faces if faces.count(face) == 1}
                self.assertEqual(len(single), 8)
                self.assertTrue(all(face & {5, 14} for face in single), "the base is open")

    def test_prisms_share_the_nodes_that_are_made(self):
        first, second = reference_nodes((PRISM, 12)), reference_nodes((PRISM, 12))
        second = np.array([1, 1, 0]) + second * [-1, -1, 1]  # beyond the face between 1, 2, 5 and 4
        both, numbers = np.unique(np.vstack([first, second]), axis=0, return_inverse=True)
        document = document_of([((PRISM, 12), first)])
        document.coordinates = both
        document.cells["Elements"] = Cells([TypeGroup(PRISM, 12, 2)], numbers.ravel().astype(INT))
        inp = self.convert(document)
        self.assertEqual(len(inp.nodes), len(both) + 4)
        self.assertEqual({inp.nodes[len(both) + 1 + i] for i in range(4)},
                         {(0, 0, 0.5), (1, 0, 0.5), (0, 1, 0.5), (1, 1, 0.5)})

    def test_coordinates_keep_as_many_digits_as_fit(self):
        random = np.random.default_rng(5)
        values = np.concatenate([random.normal(size=600), 10.0 ** random.uniform(-300, 300, 600),
                                 -(10.0 ** random.uniform(-20, 20, 600)),
                                 [0.0, -0.0, 5e-324, -1.7976931348623157e308, 1e16, 123456789012345680.0,
                                  0.1, 1 / 3, -1e-5, -9.9999999999999995e-7, 99999.999999999985, 1e22]])
        values = np.resize(values, (len(values) // 3, 3))
        inp = self.convert(Document(coordinates=values))
        found = np.array(list(inp.nodes.values()))
        lost = np.count_nonzero(found != values)
        self.assertGreater(lost, 100)
        # At least twelve digits stay of any double, and all of what is neither long nor small.
        np.testing.assert_allclose(found, values, rtol=5e-13)
        easy = (np.abs(values) >= 0.01) & (np.abs(values) < 1e15)
        np.testing.assert_array_equal(found[easy], values[easy])
        rounded, = [change for change in self.changes if change["kind"] == "approximated"]
        self.assertEqual((rounded["object"], rounded["count"]), ("/OrvInput/Nodes/coordinates", lost))
        told = float(rounded["sentence"].split()[-1])
        np.testing.assert_allclose(told, np.abs(found - values).max(), rtol=1e-5)

    def test_names_of_sets_are_such_that_solvers_take(self):
        names = [b"n" * 79, b"a name, with blanks", "Größe".encode(), b"7th", b"size", b"Size", b"*x"]
        document = Document(coordinates=np.zeros((1, 3)),
                            node_attributes={name: documents.ints(i) for i, name in enumerate(names)})
        inp = self.convert(document)
        self.assertEqual(inp.node_sets, {name: [1] for name in (
            "n" * 68 + "_0", "a_name__with_blanks_1", "Gr____e_2", "SET_7th_3", "size-2_4", "Size_5", "SET__x_6")})
        self.assertEqual(sorted(change["object"] for change in self.changes if change["kind"] == "renamed"),
                         sorted("/OrvInput/Nodes/Attributes/" + name.decode() for name in names
                                if name != b"Size"))

    def test_values_without_a_set_are_told(self):
        document, _ = document_with_sets()
        document.coordinates = np.vstack([document.coordinates, np.zeros((900, 3))])
        document.node_attributes[b"number"] = Vector(np.arange(1060, dtype=INT))
        document.node_attributes[b"mark"] = Vector(np.zeros(1060, INT), True)
        document.parameters, document.vectors = {b"a": 1.0, b"b": 2.0}, {b"v": documents.doubles(1)}
        document.creator = b"somebody"
        inp = self.convert(document)
        self.assertEqual(summary(self.changes), [
            ("dropped", "/OrvInput", 1), ("dropped", "/OrvInput/Nodes/Attributes/mark", 1),
            ("dropped", "/OrvInput/Nodes/Attributes/number", 1060),
            ("dropped", "/OrvInput/Faces/Attributes/heat", 40), ("dropped", "/OrvInput/parameters", 2),
            ("dropped", "/OrvInput/vector parameters", 1)])
        self.assertIn("mark_0", inp.node_sets)
        inp = self.convert(document, "--sets number")
        self.assertEqual((len(inp.node_sets), len(inp.element_sets)), (1060, 0))

    def test_what_cannot_be_written_is_refused(self):
        document, _ = document_with_sets()
        self.assert_refused(document, "--strict", "part.h5: would not come through whole: dropped: ")
        self.assert_refused(document, "--sets heat", "there is no attribute 'heat' of integers")
        document.coordinates[7, 1] = np.nan
        self.assert_refused(document, "", "node 7, counted from 0, has a coordinate that is nan")

    def test_what_comes_through_whole_passes_strictly(self):
        document, _ = document_with_sets()
        document.node_attributes[b"mark"].must_be_transmitted = False
        del document.cells["Faces"].attributes[b"heat"]
        document.coordinates = np.round(document.coordinates, 6)
        self.write("part.h5", document)
        self.assert_prints("orvml convert --strict part.h5 part.inp",
                           "part.h5 -> part.inp (inp): everything is there\n")


class Nastran:
    """A strict reader of bulk data: every field has to be in its columns."""

    def __init__(self, path):
        text = path.read_text("ascii")
        assert text.startswith("CEND\nBEGIN BULK\n") and text.endswith("\nENDDATA\n"), text[:80]
        lines = text.splitlines()[2:-1]
        assert all(len(line) <= 80 and "\t" not in line for line in lines)
        self.nodes, self.elements = {}, []
        while lines:
            name, values = self.card(lines)
            if name == "GRID*":
                self.nodes[int(values[0])] = tuple(map(self.real, values[2:5]))
                assert values[1] == "" and values[5:] == ["", "", ""], values
            else:
                while values[-1] == "":
                    values.pop()
                number, card_property, *nodes = map(int, values)
                self.elements.append((name, card_property, nodes))
                assert number == len(self.elements)
        assert list(self.nodes) == list(range(1, len(self.nodes) + 1))

    @staticmethod
    def card(lines):
        """Takes the lines of a card away; a mark ends each but the last and begins each but the first."""
        name, values, mark = lines[0][:8].strip(), [], ""
        width = 16 if name.endswith("*") else 8
        while True:
            line = lines.pop(0).ljust(80)
            if mark:
                assert line[:8].strip() == mark, line
            fields = [line[i:i + width] for i in range(8, 72, width)]
            assert all(field == field.strip().ljust(width) for field in fields), line
            values += [field.strip() for field in fields]
            mark = line[72:].strip()
            if not mark:
                return name, values
            assert mark == ("*" if width == 16 else "+"), line

    @staticmethod
    def real(text):
        """Reals have a point; their exponent has a sign and may do without a letter."""
        match = re.fullmatch(r"(-?\d*\.\d*)([+-]\d+)?", text)
        assert match, text
        return float(match[1] + "e" + (match[2] or "0"))


# The position of VTK's node for each node of a card, where they are not the same.
NASTRAN_ORDER = {("CHEXA", 20): [*range(12), 16, 17, 18, 19, 12, 13, 14, 15],
                 ("CPENTA", 15): [*range(9), 12, 13, 14, 9, 10, 11]}
NASTRAN_CARDS = {LINE: "CROD", TRIANGLE: "CTRIA", QUADRILATERAL: "CQUAD", TETRAHEDRON: "CTETRA",
                 HEXAHEDRON: "CHEXA", PRISM: "CPENTA", PYRAMID: "CPYRAM"}
NASTRAN_FORMS = [form for form in FORMS if form not in STANDS_FOR and form not in (
    (LINE, 3), (LINE, 4), (PRISM, 12), (QUADRILATERAL, 6))]
# Gmsh takes pyramids of 13 nodes for such of 5; meshio cannot make these two.
NOT_READ = {"gmsh": [(PYRAMID, 13)], "meshio": [(PYRAMID, 13), (PRISM, 15)]}
# The position of VTK's node for each node of Gmsh, where they are not the same.
GMSH_ORDER = {(TETRAHEDRON, 10): [*range(8), 9, 8],
              (HEXAHEDRON, 20): [*range(8), 8, 11, 16, 9, 17, 10, 18, 19, 12, 15, 13, 14],
              (PRISM, 15): [*range(6), 6, 8, 12, 7, 13, 14, 9, 11, 10]}
GMSH_KINDS = {(LINE, 2): 1, (TRIANGLE, 3): 2, (TRIANGLE, 6): 9, (QUADRILATERAL, 4): 3, (QUADRILATERAL, 8): 16,
              (TETRAHEDRON, 4): 4, (TETRAHEDRON, 10): 11, (HEXAHEDRON, 8): 5, (HEXAHEDRON, 20): 17,
              (PRISM, 6): 6, (PRISM, 15): 18, (PYRAMID, 5): 7}


class NastranFiles(Shell):
    def convert(self, document, options=""):
        self.write("part.h5", document)
        code, printed, told = self.run_line(f"orvml convert --json {options} part.h5 part.nas")
        self.assertEqual(code, 0, told)
        self.changes = json.loads(printed)["changes"]
        return Nastran(self.folder / "part.nas")

    def cells(self, forms):
        random = np.random.default_rng(6)
        # Of few digits, which all fit.
        return [(form, np.round(deformed(reference_nodes(form), random), 9)) for form in forms]

    def test_every_card_has_the_nodes_in_its_order(self):
        for form, points in self.cells(NASTRAN_FORMS):
            with self.subTest(form=form):
                file = self.convert(document_of([(form, points)]))
                (name, number, nodes), = file.elements
                digit = str(form[1]) if form[0] in (TRIANGLE, QUADRILATERAL) else ""
                self.assertEqual((name, number), (NASTRAN_CARDS[form[0]] + digit, {
                    "Edges": 1, "Faces": 2}.get(KIND_OF_SHAPE.get(form[0]), 3)))
                order = NASTRAN_ORDER.get((name, form[1]), range(form[1]))
                self.assertEqual([file.nodes[node] for node in nodes], [tuple(points[i]) for i in order])
                self.assertEqual(self.changes, [])

    def test_other_forms_are_split_completed_or_lose_inner_nodes(self):
        for form, kind, names, nodes in (
                ((LINE, 3), "split", ["CROD"] * 2, 2), ((LINE, 4), "split", ["CROD"] * 3, 2),
                ((PRISM, 12), "padded", ["CPENTA"], 15), ((QUADRILATERAL, 6), "padded", ["CQUAD8"], 8),
                *((form, "approximated", [
                    {TRIANGLE: "CTRIA6", QUADRILATERAL: "CQUAD8"}.get(form[0], NASTRAN_CARDS[form[0]])],
                   STANDS_FOR[form][1]) for form in STANDS_FOR)):
            with self.subTest(form=form):
                file = self.convert(document_of([(form, np.round(reference_nodes(form), 9))]))
                self.assertEqual([(name, len(places)) for name, _, places in file.elements],
                                 [(name, nodes) for name in names])
                self.assertEqual([change["kind"] for change in self.changes], [kind])
                if form[0] == LINE:
                    x = [[file.nodes[node][0] for node in places] for _, _, places in file.elements]
                    self.assertEqual([a for a, _ in x] + [1.0], [0.0] + [b for _, b in x])
        self.convert(document_of([((POINT, 1), np.zeros((1, 3)))]))
        self.assertEqual(summary(self.changes), [("dropped", "/OrvInput/Edges", 1)])

    def test_gmsh_reads_the_cells_with_their_nodes(self):
        gmsh.initialize()
        self.addCleanup(gmsh.finalize)
        gmsh.option.setNumber("General.Terminal", 0)
        # A file for each: Gmsh tells of one form in a group of cells alone.
        for form, points in self.cells([form for form in NASTRAN_FORMS if form not in NOT_READ["gmsh"]]):
            with self.subTest(form=form):
                self.convert(document_of([(form, points)]))
                gmsh.clear()
                gmsh.merge(str(self.folder / "part.nas"))
                tags, found, _ = gmsh.model.mesh.getNodes()
                places = dict(zip(tags, found.reshape(-1, 3)))
                kinds, _, nodes = gmsh.model.mesh.getElements()
                self.assertEqual(kinds, [GMSH_KINDS[form]])
                order = GMSH_ORDER.get(form, range(form[1]))
                np.testing.assert_array_equal([places[node] for node in nodes[0]], points[order])

    def test_meshio_reads_the_cells_with_their_nodes(self):
        cells = self.cells([form for form in NASTRAN_FORMS if form not in NOT_READ["meshio"]])
        document = document_of(cells)
        self.convert(document)
        mesh = meshio.read(self.folder / "part.nas", file_format="nastran")
        found = {block.type: mesh.points[block.data] for block in mesh.cells}
        names = {(LINE, 2): "line", (TRIANGLE, 3): "triangle", (TRIANGLE, 6): "triangle6",
                 (QUADRILATERAL, 4): "quad", (QUADRILATERAL, 8): "quad8", (TETRAHEDRON, 4): "tetra",
                 (TETRAHEDRON, 10): "tetra10", (HEXAHEDRON, 8): "hexahedron",
                 (HEXAHEDRON, 20): "hexahedron20", (PRISM, 6): "wedge", (PYRAMID, 5): "pyramid"}
        self.assertEqual(set(found), {names[form] for form, _ in cells})
        for form, points in cells:
            with self.subTest(form=form):
                np.testing.assert_array_equal(found[names[form]], points[np.newaxis])

    def test_values_of_an_attribute_number_the_properties(self):
        document, _ = document_with_sets()
        colors = document.cells["Elements"].attributes[b"color"].values
        colors += 7
        colors[3] = 99999990
        file = self.convert(document, "--sets color")
        # Faces do not have the attribute: theirs is a number behind all others.
        self.assertEqual([(name, number) for name, number, _ in file.elements],
                         [("CTRIA3", 99999992)] * 40 + [("CTETRA", color) for color in colors])
        told = [change["object"] for change in self.changes]
        self.assertIn("/OrvInput/Faces/Attributes/side", told)
        self.assertNotIn("/OrvInput/Elements/Attributes/color", told)

    def test_numbers_of_properties_have_to_fit(self):
        document, _ = document_with_sets()
        colors = document.cells["Elements"].attributes[b"color"].values
        for value, sentence in ((0, "Elements/Attributes/color: the value 0, does not fit"),
                                (-5, "color: the value -5, does"), (100000000, "the value 100000000, does"),
                                (99999998, "cells without the attribute, number 100000001, does not fit")):
            with self.subTest(value=value):
                colors[:] = value
                self.write("part.h5", document)
                code, printed, told = self.run_line("orvml convert --sets color part.h5 part.nas")
                self.assertEqual((code, printed), (2, ""))
                self.assertIn(sentence, told)

    def test_coordinates_keep_as_many_digits_as_fit(self):
        random = np.random.default_rng(7)
        values = np.concatenate([random.normal(size=300), 10.0 ** random.uniform(-300, 300, 300),
                                 -(10.0 ** random.uniform(-20, 20, 300)),
                                 [0.0, -0.0, 0.1, 5e-324, -1.7976931348623157e308, -9.9999999999999e-5,
                                  99999999999999.9, -999999999999999.9, 1e13]]).reshape(-1, 3)
        file = self.convert(Document(coordinates=values))
        found = np.array(list(file.nodes.values()))
        self.assertGreater(np.count_nonzero(found != values), 500)
        np.testing.assert_allclose(found, values, rtol=5e-10)
        near = (np.abs(values) >= 0.1) & (np.abs(values) < 1e13)
        np.testing.assert_allclose(found[near], values[near], rtol=5e-14)
        self.assertEqual(summary(self.changes), [("approximated", "/OrvInput/Nodes/coordinates",
                                                  np.count_nonzero(found != values))])


if __name__ == "__main__":
    unittest.main()
