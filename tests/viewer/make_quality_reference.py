"""Writes quality_reference.json: cells of every form and what the C++ layer measures of them.

    PYTHONPATH=build/py/python/package python3 tests/viewer/make_quality_reference.py

The page measures cells of dropped files in JavaScript; quality.test.mjs compares it with these values.
"""
import json
import math
import pathlib

import numpy as np

import orvml

CORNERS = {
    "line": [[0, 0, 0], [1, 0, 0]],
    "triangle": [[0, 0, 0], [1, 0, 0], [0.5, 0.75**0.5, 0]],
    "quadrilateral": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]],
    "tetrahedron": [[0, 0, 0], [1, 0, 0], [0.5, 0.75**0.5, 0], [0.5, 0.75**0.5 / 3, (2 / 3)**0.5]],
    "hexahedron": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0],
                   [0, 0, 1], [1, 0, 1], [1, 1, 1], [0, 1, 1]],
    "prism": [[0, 0, 0], [1, 0, 0], [0.5, 0.75**0.5, 0],
              [0, 0, 1], [1, 0, 1], [0.5, 0.75**0.5, 1]],
    "pyramid": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0.5, 0.5, 0.5**0.5]],
}
NODE_COUNTS = {
    "line": [2, 3, 4], "triangle": [3, 6, 7], "quadrilateral": [4, 6, 8, 9], "tetrahedron": [4, 10],
    "hexahedron": [8, 20, 24, 27], "prism": [6, 12, 15, 18], "pyramid": [5, 13, 19], "point": [1],
}
RARE = {  # with the least Jacobian in the principal axes, and with one above that of the ideal cell
    "hexahedron": [[-1, 0.2, 1.5], [1.6, -0.1, 0], [-0.4, 0.4, 0.4], [0.6, 1.2, 0],
                   [-0.8, -1.2, -0.2], [1.1, -0.1, 0.4], [0.7, -0.3, -0.2], [-0.3, 1.4, -0.4]],
    "pyramid": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0.5, 0.5, 0.8]],
}
ENTITIES = {"line": "edges", "triangle": "faces", "quadrilateral": "faces"}
MEASURES = ["scaled Jacobian", "aspect ratio", "smallest angle", "largest angle", "size"]


def deformed_corners(corners, random):
    """Cells from ideal to useless: small and large ones, turned, flattened, crushed and inverted."""
    x = np.array(corners, float)
    turn = np.linalg.qr(random.normal(size=(3, 3)))[0]
    if len(x) == 1:
        yield x
        return
    yield from [x, 1e-7 * x + 3, 1e6 * x @ turn.T, x * [1, 1, 1e-3], x * [1, 1e-9, 1], x * [1, 1, 0], 0 * x]
    yield from [x[::-1], x * [1, 1, -1], np.vstack([x[1:2], x[1:]]), np.vstack([x[:-1], x[:1] - x[-1:]])]
    if len(x) > 3:
        yield x[[0, 1, 0] + [-1] * (len(x) - 3)]
        yield x[[0, 1, 1] + [-1] * (len(x) - 3)]
    yield from (x + amount * random.normal(size=x.shape) for amount in [0.1, 0.3, 1.0] * 3)
    yield np.vstack([[0, math.nan, 0], x[1:]])


def rows():
    """Shapes, numbers of nodes and corners, with six digits that other programs read as they are."""
    random = np.random.default_rng(20)
    for shape, counts in NODE_COUNTS.items():
        deformed = [np.array(RARE[shape], float)] if shape in RARE else []
        deformed += deformed_corners(CORNERS.get(shape, [[0, 0, 0]]), random)
        for count in counts:
            for corners in deformed if count == counts[0] else deformed[-3:]:
                yield shape, count, np.array([[float(f"{x:.6g}") for x in point] for point in corners])


def reference_of(shape, count, corners):
    points = np.vstack([corners, np.full((count - len(corners), 3), 0.5)])
    entity = ENTITIES.get(shape, "elements")
    document = orvml.Output(points, **{entity: [(shape, np.arange(count)[None, :])]})
    values = [float(getattr(document, entity).quality(measure)[0]) for measure in MEASURES]
    return [None if math.isnan(value) else float(f"{value:.9g}") for value in values]


def row_of(shape, count, corners):
    return json.dumps({
        "shape": shape,
        "nodesPerCell": count,
        "corners": [None if math.isnan(x) else float(x) for point in corners for x in point],
        "values": reference_of(shape, count, corners)})


def main():
    lines = [row_of(*row) for row in rows()]
    target = pathlib.Path(__file__).with_name("quality_reference.json")
    target.write_text('{"measures": %s,\n"cells": [\n%s\n]}\n' % (json.dumps(MEASURES), ",\n".join(lines)))


if __name__ == "__main__":
    main()
