"""Documents, the pages made of them, and the browsers that show them."""
import os
import pathlib
import subprocess

import numpy as np
import pytest

import orvml
from browser import WITHOUT_GRAPHICS, Browser

COMMAND = os.environ["ORVML_COMMAND"]
VIEWER = pathlib.Path(os.environ["ORVML_VIEWER_PAGE"])


@pytest.fixture(scope="session")
def browser():
    window = Browser()
    yield window
    window.close()


@pytest.fixture(scope="session")
def browser_without_graphics():
    window = Browser(WITHOUT_GRAPHICS)
    yield window
    window.close()


def box_of_hexahedra(sides=(4, 3, 2), stretch=1.0):
    """A box of hexahedra with its outer quadrilaterals, attributes of each kind and parameters."""
    nx, ny, nz = sides
    grid = np.stack(np.meshgrid(*[np.arange(n + 1) for n in sides], indexing="ij"), -1)
    points = grid.reshape(-1, 3) * np.array([1.0, 1.0, stretch])
    number = np.arange(len(points)).reshape(nx + 1, ny + 1, nz + 1)
    i, j, k = (axis.ravel() for axis in np.meshgrid(np.arange(nx), np.arange(ny), np.arange(nz),
                                                    indexing="ij"))
    corners = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
    cells = np.stack([number[i + a, j + b, k + c] for a, b, c in corners], 1)
    top = np.stack([number[:-1, :-1, -1], number[1:, :-1, -1], number[1:, 1:, -1],
                    number[:-1, 1:, -1]], -1).reshape(-1, 4)
    document = orvml.Output(points, elements=[("hexahedron", cells)], faces=[("quadrilateral", top)],
                            edges=[("line", [[number[0, 0, 0], number[1, 0, 0]]])],
                            module="ORVML_OCTREE_MESHER", module_format_version="1.2", creator="tests",
                            parameters={f"PARAMETER_{n}": n * 1.5 for n in range(10)},
                            vector_parameters={"SIZES": [0.25, 1e-9, 3]})
    document.nodes.attributes["height"] = points[:, 2]
    document.elements.attributes["region"] = (i >= nx // 2).astype(np.int32)
    document.elements.attributes["load"] = np.linspace(-1, 1, len(cells))
    document.faces.attributes["SURFACE"] = np.arange(len(top), dtype=np.int32) % 3
    return document


def page_of(*arguments):
    """Has the command make a page; returns its path."""
    target = pathlib.Path(arguments[-1])
    made = subprocess.run([COMMAND, "report", *map(str, arguments[:-1]), "-o", str(target)],
                          capture_output=True, text=True)
    assert made.returncode == 0, made.stderr
    return target


@pytest.fixture(scope="session")
def pages(tmp_path_factory):
    return tmp_path_factory.mktemp("pages")


@pytest.fixture(scope="session")
def box():
    return box_of_hexahedra()


@pytest.fixture(scope="session")
def box_file(box, pages):
    orvml.write(pages / "box.h5", box)
    return pages / "box.h5"


@pytest.fixture(scope="session")
def box_page(box_file, pages):
    return page_of(box_file, pages / "box.html")


@pytest.fixture
def page(browser, box_page):
    """The page of the box, as it is when it was opened."""
    yield browser.open(box_page)
    assert browser.console() == []
    assert browser.requests() == []
