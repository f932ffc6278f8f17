"""What programs do with the package, for mypy to look at: this file is checked and not run."""
from pathlib import Path
from typing import Optional

import numpy as np
import numpy.typing as npt

import orvml


def build() -> orvml.Input:
    part = orvml.Input([[0, 0, 0], [1, 0, 0], [0, 1, 0]], faces=[("triangle", [[0, 1, 2]])],
                       parameters={"size": 0.5})
    part.points = [[0.0, 0.0, 0.0], [1.0, 0.0, 0.0], [0.0, 1.0, 0.0]]
    part.faces = [(orvml.Shape.TRIANGLE, np.array([[0, 1, 2]]))]
    part.parameters = {"size": 0.25}
    part.nodes.attributes["id"] = orvml.AttributeArray([1, 2, 3])
    part.nodes.attributes.set("size", [0.1, 0.2, 0.3], must_be_transmitted=True)
    return part.copy()


def use(path: Path) -> Optional[float]:
    document = orvml.read(path, "input", tolerant=True)
    points: npt.NDArray[np.float64] = document.points
    nodes: npt.NDArray[np.int32] = document.faces[0].node_indices
    flag: bool = document.nodes.attributes["id"].must_be_transmitted
    size: float = document.parameters["size"]
    orvml.write(path, document, flush=False)
    for finding in orvml.check(path).findings:
        print(finding.code, finding.places)
    description = orvml.describe(path)
    if description.input is not None and description.input.nodes.coordinates is not None:
        print(description.input.nodes.coordinates.extents[0])
    print(orvml.fingerprint(document).document, orvml.diff(document, path).are_same, flag)
    return float(points.sum()) + int(nodes.max()) + size
