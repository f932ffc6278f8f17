"""Documents and files that the tests of the Python package share."""
import pathlib
import sys

import numpy as np
import pytest

import orvml

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests/interop"))


def make_cube(kind=orvml.Input):
    """Six tetrahedra in a unit cube, with its twelve boundary triangles and a few named values."""
    corners = np.array([[i, j, k] for k in (0, 1) for j in (0, 1) for i in (0, 1)], float)
    cuts = [(0, 1, 3, 7), (0, 3, 2, 7), (0, 2, 6, 7), (0, 6, 4, 7), (0, 4, 5, 7), (0, 5, 1, 7)]
    sides = [(0, 2, 3), (0, 3, 1), (0, 4, 6), (0, 6, 2), (0, 1, 5), (0, 5, 4),
             (7, 3, 2), (7, 2, 6), (7, 6, 4), (7, 4, 5), (7, 5, 1), (7, 1, 3)]
    cube = kind(corners, faces=[("triangle", sides)], elements=[("tetrahedron", cuts)],
                module="ORVML_OCTREE_MESHER", module_format_version="1.2", creator="tests",
                parameters={"size": 0.5, "growth": 1.25},
                vector_parameters={"sizes": [0.5, 0.25], "counts": [1, 2, 3]})
    cube.nodes.attributes["temperature"] = corners[:, 0] * 100
    cube.nodes.attributes.set("id", np.arange(8), must_be_transmitted=True)
    cube.faces.attributes["side"] = np.repeat(np.arange(6), 2)
    cube.elements.attributes["material"] = [1, 1, 1, 2, 2, 2]
    return cube


@pytest.fixture
def cube():
    return make_cube()


@pytest.fixture
def cube_file(tmp_path):
    path = tmp_path / "cube.h5"
    orvml.write(path, make_cube())
    return path
