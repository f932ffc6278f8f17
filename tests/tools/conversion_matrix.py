"""What comes through a conversion and back: the table of docs/convert-matrix.md, made by converting
a document of each form of cells, with a value of each kind, to each format and back.

    ORVML_COMMAND=... conversion_matrix.py --write    makes the page anew
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import numpy as np

import exchange_reader
import exchange_writer
from cells_of_vtk import CONTAINERS, CORNERS, VTK_TYPES, random_cell
from document import INT, Cells, Document, TypeGroup, Vector

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/convert-matrix.md"
ROUND_TRIPS = ("vtu", "msh", "stl", "ply", "obj", "off")
WRITTEN_ONLY = ("inp", "nas")
NAMES = {1: "line", 2: "triangle", 3: "quadrilateral", 4: "tetrahedron", 5: "hexahedron", 6: "prism",
         7: "point", 8: "pyramid", 9: "sphere", 10: "circle"}
FORMS = sorted([*VTK_TYPES, (8, 14), (9, 1), (10, 1)])
# What a letter of the table stands for.
PARTS = {"C": "the cells with their nodes", "i": "ints of nodes", "d": "doubles of nodes",
         "I": "ints of cells", "D": "doubles of cells", "f": "flags of attributes",
         "P": "scalar parameters", "V": "vector parameters"}


def document_of(form):
    """Two cells of a form with values of each kind."""
    shape, nodes = form
    random = np.random.default_rng(1)
    if form in VTK_TYPES:
        cells = [random_cell(random, shape, nodes) + [3 * i, 0, 0] for i in range(2)]
    else:
        cells = [random.random((nodes, 3)) + [3 * i, 0, 0] for i in range(2)]
    # Values that single precision holds, so that the letters tell of the kinds alone.
    coordinates = np.concatenate(cells).astype("float32").astype(float)
    ints, doubles = np.arange(2 * nodes).astype(INT), np.arange(2 * nodes) / 4
    return Document(
        creator=b"matrix", module=b"mesher", module_version=b"1", dimension=3, coordinates=coordinates,
        node_attributes={b"i": Vector(ints, True), b"d": Vector(doubles)},
        cells={CONTAINERS.get(shape, "Elements"): Cells(
            [TypeGroup(shape, nodes, 2)], np.arange(2 * nodes).astype(INT),
            {b"I": Vector(np.array([7, 8], INT)), b"D": Vector(np.array([0.5, 0.25]), True)})},
        parameters={b"P": 1.5}, vectors={b"V": Vector(np.array([1, 2], INT))})


def is_same(one, other):
    return (one is not None and other is not None and one.values.dtype == other.values.dtype
            and one.values.tobytes() == other.values.tobytes())


def cells_as_coordinates(document):
    """The cells as the places of their nodes, because a format may number nodes anew."""
    found = []
    for cells in document.cells.values():
        first = 0
        for group in cells.groups:
            for _ in range(group.cells):
                nodes = cells.connectivities[first:first + group.nodes_per_cell]
                found.append((group.shape, document.coordinates[nodes].tobytes()))
                first += group.nodes_per_cell
    return sorted(found)


def letters_of(before, after):
    """What of a document is in another one."""
    (container, cells), = before.cells.items()
    others = after.cells.get(container)
    attributes = others.attributes if others else {}
    nodes = after.node_attributes
    flags = ([nodes[b"i"].must_be_transmitted] if b"i" in nodes else [False]) + (
        [attributes[b"D"].must_be_transmitted] if b"D" in attributes else [False])
    kept = {"C": cells_as_coordinates(before) == cells_as_coordinates(after),
            "i": is_same(before.node_attributes[b"i"], nodes.get(b"i")),
            "d": is_same(before.node_attributes[b"d"], nodes.get(b"d")),
            "I": is_same(cells.attributes[b"I"], attributes.get(b"I")),
            "D": is_same(cells.attributes[b"D"], attributes.get(b"D")),
            "f": any(flags), "P": after.parameters.get(b"P") == 1.5,
            "V": is_same(before.vectors[b"V"], after.vectors.get(b"V"))}
    letters = "".join(letter for letter, is_kept in kept.items() if is_kept)
    return "all" if len(letters) == len(PARTS) else letters or "–"


class Converter:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.command = os.environ["ORVML_COMMAND"]

    def convert(self, *arguments):
        run = subprocess.run([self.command, "convert", *arguments, "--json"], cwd=self.folder,
                             capture_output=True, text=True, check=False)
        return json.loads(run.stdout)["changes"] if run.returncode == 0 else None

    def cell_of(self, form, ending):
        document = document_of(form)
        exchange_writer.write_file(self.folder / "part.h5", {"OrvInput": document})
        changes = self.convert("part.h5", f"part.{ending}")
        if changes is None:
            return "–"
        if ending in WRITTEN_ONLY:
            container, = document.cells
            kinds = {change["kind"] for change in changes
                     if change["object"] == f"/OrvInput/{container}"}
            return "–" if "dropped" in kinds else ", ".join(sorted(kinds)) or "written"
        if self.convert(f"part.{ending}", "back.h5") is None:
            return "refused"
        return letters_of(document, exchange_reader.read_file(self.folder / "back.h5")["OrvInput"])


def table():
    endings = ROUND_TRIPS + WRITTEN_ONLY
    lines = ["| Shape, nodes | " + " | ".join(f".{ending}" for ending in endings) + " |",
             "|---|" + "---|" * len(endings)]
    with tempfile.TemporaryDirectory() as folder:
        converter = Converter(folder)
        for form in FORMS:
            cells = [converter.cell_of(form, ending) for ending in endings]
            lines.append(f"| {NAMES[form[0]]} {form[1]} | " + " | ".join(cells) + " |")
    return "\n".join(lines)


def page():
    head, rest = PAGE.read_text().split("<!-- table -->\n", 1)
    tail = rest.split("<!-- end of the table -->\n", 1)[1]
    return f"{head}<!-- table -->\n{table()}\n<!-- end of the table -->\n{tail}"


if __name__ == "__main__" and sys.argv[1:] == ["--write"]:
    PAGE.write_text(page())
