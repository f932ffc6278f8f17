"""The cells of exchange files by VTK's description of them: where the nodes lie that are not corners,
and the polynomials that interpolate between nodes. Nothing here knows how the command orders nodes."""
import dataclasses
import itertools

import numpy as np

CORNERS = {
    "point": [[0, 0, 0]],
    "line": [[-1, 0, 0], [1, 0, 0]],
    "triangle": [[0, 0, 0], [1, 0, 0], [0, 1, 0]],
    "quadrilateral": [[-1, -1, 0], [1, -1, 0], [1, 1, 0], [-1, 1, 0]],
    "tetrahedron": [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]],
    "hexahedron": [[-1, -1, -1], [1, -1, -1], [1, 1, -1], [-1, 1, -1],
                   [-1, -1, 1], [1, -1, 1], [1, 1, 1], [-1, 1, 1]],
    "prism": [[0, 0, -1], [1, 0, -1], [0, 1, -1], [0, 0, 1], [1, 0, 1], [0, 1, 1]],
    "pyramid": [[-1, -1, 0], [1, -1, 0], [1, 1, 0], [-1, 1, 0], [0, 0, 1]],
}
# The node behind the corners lies in the middle of these corners.
MIDDLES = {
    "line": "01", "triangle": "01 12 20", "quadrilateral": "01 12 23 30 0123",
    "tetrahedron": "01 12 20 03 13 23",
    "hexahedron": "01 12 23 30 45 56 67 74 04 15 26 37 0374 1265 0154 3267 0123 4567 01234567",
    "prism": "01 12 20 34 45 53 03 14 25 0143 1254 2035", "pyramid": "01 12 23 30 04 14 24 34",
}
SHAPES = {"line": 1, "triangle": 2, "quadrilateral": 3, "tetrahedron": 4, "hexahedron": 5, "prism": 6,
          "point": 7, "pyramid": 8}
DIMENSIONS = {"point": 0, "line": 1, "triangle": 2, "quadrilateral": 2}


def powers(*highest):
    return list(itertools.product(*(range(power + 1) for power in highest)))


def of_degree(degree):
    return [(a, b) for a, b in powers(degree, degree) if a + b <= degree]


def with_third(pairs, thirds):
    return [(a, b, c) for a, b in pairs for c in thirds]


def superlinear(exponents):
    """The degree without the variables that are linear."""
    return sum(power for power in exponents if power > 1)


# Exponents of the monomials that interpolate, by shape and number of nodes; none for pyramids, whose
# functions are no polynomials.
MONOMIALS = {
    ("point", 1): [(0, 0, 0)],
    ("line", 2): powers(1), ("line", 3): powers(2), ("line", 4): powers(3),
    ("triangle", 3): of_degree(1), ("triangle", 6): of_degree(2),
    ("quadrilateral", 4): powers(1, 1), ("quadrilateral", 9): powers(2, 2),
    ("quadrilateral", 8): [pair for pair in powers(2, 2) if superlinear(pair) <= 2],
    ("tetrahedron", 4): [three for three in powers(1, 1, 1) if sum(three) <= 1],
    ("tetrahedron", 10): [three for three in powers(2, 2, 2) if sum(three) <= 2],
    ("hexahedron", 8): powers(1, 1, 1), ("hexahedron", 27): powers(2, 2, 2),
    ("hexahedron", 20): [three for three in powers(2, 2, 2) if superlinear(three) <= 2],
    ("prism", 6): with_third(of_degree(1), (0, 1)),
    ("prism", 15): with_third(of_degree(2), (0, 1)) + with_third(of_degree(1), (2,)),
    ("prism", 18): with_third(of_degree(2), (0, 1, 2)),
    ("pyramid", 5): None, ("pyramid", 13): None,
}


@dataclasses.dataclass
class Form:
    shape: str
    nodes: int

    @property
    def number(self):
        return SHAPES[self.shape]

    @property
    def dimension(self):
        return DIMENSIONS.get(self.shape, 3)

    @property
    def kind(self):
        return {0: "Edges", 1: "Edges", 2: "Faces"}.get(self.dimension, "Elements")

    @property
    def places(self):
        """Where the nodes are in the cell that all others are deformed from."""
        corners = np.array(CORNERS[self.shape], float)
        if (self.shape, self.nodes) == ("line", 4):
            return np.vstack([corners, [[-1 / 3, 0, 0], [1 / 3, 0, 0]]])
        middles = [corners[[int(letter) for letter in word]].mean(axis=0)
                   for word in MIDDLES.get(self.shape, "").split()]
        return np.vstack([corners, *middles])[:self.nodes]

    @property
    def is_polynomial(self):
        return MONOMIALS[self.shape, self.nodes] is not None

    def derivatives(self, points):
        """[points x nodes x dimension]: how much of each node is in the tangents at the points."""
        exponents = np.array([tuple(e) + (0, 0, 0)[len(e):] for e in MONOMIALS[self.shape, self.nodes]])
        functions = np.linalg.inv(np.prod(self.places[:, None, :] ** exponents, axis=2))
        tangents = []
        for axis in range(self.dimension):
            lower = exponents.copy()
            lower[:, axis] = np.maximum(lower[:, axis] - 1, 0)
            tangents.append(np.prod(points[:, None, :] ** lower, axis=2) * exponents[:, axis] @ functions)
        return np.stack(tangents, axis=2)

    def measures(self, nodes, points):
        """[points]: the length, area or signed volume around each point, of a cell with those nodes."""
        tangents = np.einsum("pnd,nx->pdx", self.derivatives(points), nodes)
        if self.dimension == 3:
            return np.linalg.det(tangents)
        return np.sqrt(np.linalg.det(tangents @ tangents.transpose(0, 2, 1)))


FORMS = [Form(shape, nodes) for shape, nodes in MONOMIALS]
