"""Cells of every form with their nodes where the form has them, and their sizes by VTK."""
import itertools

import numpy as np
import vtk

LINE, TRIANGLE, QUADRILATERAL, TETRAHEDRON, HEXAHEDRON, PRISM, POINT, PYRAMID = range(1, 9)

CORNERS = {
    LINE: [(0, 0, 0), (1, 0, 0)],
    TRIANGLE: [(0, 0, 0), (1, 0, 0), (0, 1, 0)],
    QUADRILATERAL: [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)],
    TETRAHEDRON: [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)],
    HEXAHEDRON: [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)],
    PRISM: [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (0, 1, 1)],
    POINT: [(0, 0, 0)],
    PYRAMID: [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0.5, 0.5, 1)]}

TRIANGLE_EDGES, QUADRILATERAL_EDGES = ["01", "12", "20"], ["01", "12", "23", "30"]
HEXAHEDRON_EDGES = QUADRILATERAL_EDGES + ["45", "56", "67", "74", "04", "15", "26", "37"]
PRISM_BASES, PRISM_UPRIGHTS = TRIANGLE_EDGES + ["34", "45", "53"], ["03", "14", "25"]
PYRAMID_EDGES = QUADRILATERAL_EDGES + ["04", "14", "24", "34"]
SIDES = ["0473", "1265", "0154", "3762"]  # x- x+ y- y+

# The corners between whose each further node of a form lies, in VTK's order.
FURTHER_NODES = {
    (LINE, 2): [], (LINE, 3): ["01"], (LINE, 4): ["001", "011"],
    (TRIANGLE, 3): [], (TRIANGLE, 6): TRIANGLE_EDGES, (TRIANGLE, 7): TRIANGLE_EDGES + ["012"],
    (QUADRILATERAL, 4): [], (QUADRILATERAL, 6): ["01", "23"],
    (QUADRILATERAL, 8): QUADRILATERAL_EDGES, (QUADRILATERAL, 9): QUADRILATERAL_EDGES + ["0123"],
    (TETRAHEDRON, 4): [], (TETRAHEDRON, 10): TRIANGLE_EDGES + ["03", "13", "23"],
    (HEXAHEDRON, 8): [], (HEXAHEDRON, 20): HEXAHEDRON_EDGES,
    (HEXAHEDRON, 24): HEXAHEDRON_EDGES + SIDES,
    (HEXAHEDRON, 27): HEXAHEDRON_EDGES + SIDES + ["0321", "4567", "01234567"],
    (PRISM, 6): [], (PRISM, 12): PRISM_BASES, (PRISM, 15): PRISM_BASES + PRISM_UPRIGHTS,
    (PRISM, 18): PRISM_BASES + PRISM_UPRIGHTS + ["0143", "1254", "2035"],
    (PYRAMID, 5): [], (PYRAMID, 13): PYRAMID_EDGES,
    (PYRAMID, 19): PYRAMID_EDGES + ["0123", "014", "124", "234", "304", "01234"]}
FORMS = list(FURTHER_NODES)

VTK_CELLS = {
    (LINE, 2): vtk.vtkLine, (LINE, 3): vtk.vtkQuadraticEdge, (LINE, 4): vtk.vtkCubicLine,
    (TRIANGLE, 3): vtk.vtkTriangle, (TRIANGLE, 6): vtk.vtkQuadraticTriangle,
    (TRIANGLE, 7): vtk.vtkBiQuadraticTriangle, (QUADRILATERAL, 4): vtk.vtkQuad,
    (QUADRILATERAL, 6): vtk.vtkQuadraticLinearQuad, (QUADRILATERAL, 8): vtk.vtkQuadraticQuad,
    (QUADRILATERAL, 9): vtk.vtkBiQuadraticQuad, (TETRAHEDRON, 4): vtk.vtkTetra,
    (TETRAHEDRON, 10): vtk.vtkQuadraticTetra, (HEXAHEDRON, 8): vtk.vtkHexahedron,
    (HEXAHEDRON, 20): vtk.vtkQuadraticHexahedron, (HEXAHEDRON, 24): vtk.vtkBiQuadraticQuadraticHexahedron,
    (HEXAHEDRON, 27): vtk.vtkTriQuadraticHexahedron, (PRISM, 6): vtk.vtkWedge,
    (PRISM, 12): vtk.vtkQuadraticLinearWedge, (PRISM, 15): vtk.vtkQuadraticWedge,
    (PRISM, 18): vtk.vtkBiQuadraticQuadraticWedge, (PYRAMID, 5): vtk.vtkPyramid,
    (PYRAMID, 13): vtk.vtkQuadraticPyramid}


def reference_nodes(form):
    """The nodes of a cell that is not deformed, [nodes x 3]."""
    corners = np.array(CORNERS[form[0]], float)
    further = [corners[[int(corner) for corner in between]].mean(0) for between in FURTHER_NODES[form]]
    return np.vstack([corners, *further])


def deformed(nodes, random, bend=0.05):
    """Turned, stretched and bent at random, with the orientation kept; bends are of second order."""
    stretch = np.eye(3) + random.uniform(-0.2, 0.2, (3, 3))
    bent = nodes @ stretch.T
    for axis in range(3):
        bent[:, axis] += bend * random.uniform(-1, 1) * nodes[:, (axis + 1) % 3] ** 2
    return bent


def _quadrature(shape):
    """Points and weights in VTK's parametric coordinates, exact for what quadratic cells need."""
    points, weights = np.polynomial.legendre.leggauss(5)
    points, weights = (points + 1) / 2, weights / 2
    dimension = {LINE: 1, TRIANGLE: 2, QUADRILATERAL: 2}.get(shape, 3)
    for chosen in itertools.product(range(5), repeat=dimension):
        r, s, t = [*points[list(chosen)], 0, 0][:3]
        weight = weights[list(chosen)].prod()
        if shape in (TRIANGLE, PRISM):
            r, s, weight = r, s * (1 - r), weight * (1 - r)
        elif shape == TETRAHEDRON:
            s, t, weight = s * (1 - r), t * (1 - r) * (1 - s), weight * (1 - r) ** 2 * (1 - s)
        yield np.array([r, s, t]), weight


def size_by_vtk(form, nodes):
    """The length, area or volume of a cell by the shape functions of VTK; signed in space."""
    cell = VTK_CELLS[form]()
    for i, point in enumerate(nodes):
        cell.GetPoints().SetPoint(i, point)

    def place(parameters):
        point = [0.0] * 3
        cell.EvaluateLocation(vtk.reference(0), list(parameters), point, [0.0] * len(nodes))
        return np.array(point)

    size, step = 0.0, 1e-3
    dimension = cell.GetCellDimension()
    for parameters, weight in _quadrature(form[0]):
        if form[0] == LINE and form[1] == 4:
            parameters, weight = 2 * parameters - 1, 2 * weight  # VTK's cubic line goes from -1 to 1
        jacobian = np.zeros((3, dimension))
        for axis in range(dimension):
            away = np.eye(3)[axis] * step
            # Exact for polynomials of the fourth degree.
            jacobian[:, axis] = (8 * (place(parameters + away) - place(parameters - away)) -
                                 (place(parameters + 2 * away) - place(parameters - 2 * away))) / (12 * step)
        gram = np.sqrt(np.linalg.det(jacobian.T @ jacobian))
        size += weight * (np.linalg.det(jacobian) if dimension == 3 else gram)
    return size


def linear_size(form, nodes):
    """The volume between the corners of a pyramid or tetrahedron, by their determinants."""
    volume = 0.0
    for a, b, c, d in {TETRAHEDRON: ["0123"], PYRAMID: ["0124", "0234"]}[form[0]]:
        a, b, c, d = nodes[[int(a), int(b), int(c), int(d)]]
        volume += np.linalg.det([b - a, c - a, d - a]) / 6
    return volume
