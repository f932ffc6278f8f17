"""What the tests of Gmsh's files share: documents with cells of all forms, and Gmsh itself."""
import gmsh
import numpy as np

from cell_forms import FORMS
from shell import INT, Cells, Document, Shell, TypeGroup


def setUpModule():
    gmsh.initialize(["gmsh", "-nopopup"])
    gmsh.option.setNumber("General.Terminal", 0)


def tearDownModule():
    gmsh.finalize()


def cells_of(forms, nodes_of_form, cells=1):
    """A document with some cells of each form, each cell with nodes of its own."""
    document = Document(creator=b"msh test", dimension=3, parameters={b"growth": 1.25})
    coordinates, places, number = [], {}, 0
    for kind in ("Edges", "Faces", "Elements"):
        groups, indices = [], []
        for form in (one for one in forms if one.kind == kind):
            nodes = nodes_of_form(form)
            groups.append(TypeGroup(form.number, form.nodes, cells))
            indices.append(np.arange(number, number + len(nodes)))
            places[form.shape, form.nodes] = nodes.reshape(cells, form.nodes, 3)
            coordinates.append(nodes)
            number += len(nodes)
        if groups:
            document.cells[kind] = Cells(groups, np.concatenate(indices).astype(INT))
    document.coordinates = np.concatenate(coordinates)
    return document, places


def deformed_cells(seed, forms=None, cells=3):
    """Cells that are turned, stretched, and have each node moved by its own bit."""
    random = np.random.default_rng(seed)

    def nodes_of(form):
        turned = np.linalg.qr(random.normal(size=(3, 3)))[0]
        turned *= np.sign(np.linalg.det(turned)) * random.uniform(0.5, 2)
        all_nodes = [form.places @ turned + random.normal(size=3) * 10 for _ in range(cells)]
        return np.concatenate(all_nodes) + random.uniform(-0.04, 0.04, (cells * form.nodes, 3))

    return cells_of(FORMS if forms is None else forms, nodes_of, cells)


class MshShell(Shell):
    def convert(self, read, written, code=0):
        """Converts a file and returns the lines of the report, or what is told."""
        found, printed, told = self.run_line(f"orvml convert {read} {written}")
        self.assertEqual(found, code, printed + told)
        return printed.splitlines()[1:] if code == 0 else told

    def open(self, name):
        gmsh.clear()
        gmsh.open(str(self.folder / name))

    def assert_same(self, document, read="part.h5", kind="OrvInput"):
        """A round trip gives the file that it began with."""
        self.write("first.h5", document, kind)
        code, printed, told = self.run_line(f"orvml diff first.h5 {read}")
        self.assertEqual((code, told), (0, ""), printed)

    def volumes(self, name):
        """The measures of all elements of dimension 3, by Gmsh's quadrature."""
        self.open(name)
        found = []
        for kind in gmsh.model.mesh.getElementTypes(3):
            points, weights = gmsh.model.mesh.getIntegrationPoints(kind, "Gauss6")
            measures = gmsh.model.mesh.getJacobians(kind, points)[1].reshape(-1, len(weights))
            found.extend(measures @ weights)
        return np.array(found)
